// SPDX-License-Identifier: MIT
// How far a long work is, on a terminal.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>

namespace tavelor::tools {

/// One line that is written over: a bar, the rate and the time left. Silent where the stream is no
/// terminal. The line is taken away at the end.
class Progress {
 public:
  Progress(std::FILE* stream, std::uint64_t total);
  ~Progress();
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;

  /// `done` of the total. Writes at most ten times a second.
  void at(std::uint64_t done);

 private:
  using Clock = std::chrono::steady_clock;

  std::FILE* stream_;
  std::uint64_t total_;
  bool shown_;
  Clock::time_point began_ = Clock::now();
  Clock::time_point written_ = began_;
};

}  // namespace tavelor::tools
