// SPDX-License-Identifier: MIT
// Writes the line of a progress.
#include "tools/progress.hpp"

#include <algorithm>
#include <string>

#include <fmt/format.h>
#include <unistd.h>

namespace tavelor::tools {

namespace {

constexpr std::size_t kBar = 30;
constexpr std::chrono::milliseconds kPause{100};

std::string timeLeft(double seconds) {
  const auto whole = static_cast<std::uint64_t>(seconds);
  return fmt::format("{}:{:02}", whole / 60, whole % 60);
}

}  // namespace

Progress::Progress(std::FILE* stream, std::uint64_t total)
    : stream_(stream),
      total_(std::max<std::uint64_t>(total, 1)),
      shown_(isatty(fileno(stream)) == 1) {}

Progress::~Progress() {
  if (shown_) std::fputs("\r\x1b[K", stream_);
}

void Progress::at(std::uint64_t done) {
  const Clock::time_point now = Clock::now();
  if (!shown_ || now - written_ < kPause) return;
  written_ = now;
  const double seconds = std::chrono::duration<double>(now - began_).count();
  const double rate = static_cast<double>(done) / seconds;
  const double left = static_cast<double>(total_ - std::min(done, total_)) / std::max(rate, 1e-9);
  const auto filled = static_cast<std::size_t>(
      static_cast<double>(kBar) * static_cast<double>(done) / static_cast<double>(total_));
  const std::string line = fmt::format("\r[{:<{}}] {:3} %  {:.0f} rows/s  {} left\x1b[K",
                                       std::string(std::min(filled, kBar), '='), kBar,
                                       100 * done / total_, rate, timeLeft(left));
  std::fputs(line.c_str(), stream_);
  std::fflush(stream_);
}

}  // namespace tavelor::tools
