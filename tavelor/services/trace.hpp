// SPDX-License-Identifier: MIT
// What statements went to the databases, for whoever looks for a fault or for the slow one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <filesystem>
#include <functional>
#include <string>
#include <string_view>

namespace tavelor {

/// One statement, after it has run.
struct TracedStatement {
  int selector = 0;
  std::string text;
  std::int64_t microseconds = 0;
  std::int64_t rows = 0;   ///< fetched or written
  std::int32_t error = 0;  ///< number of the error that it raised, or 0
};

/// The last statements of one apartment. Off at first unless the installation's settings turn it
/// on.
class StatementTrace {
 public:
  static constexpr std::size_t kKept = 4096;

  bool isOn() const { return on_; }
  void turn(bool on) { on_ = on; }

  /// The last kKept statements, oldest first.
  const std::deque<TracedStatement>& entries() const { return entries_; }
  void clear() { entries_.clear(); }

  /// Appends a line a statement to that file from now on; an empty path ends it. A file that cannot
  /// be written loses its lines without an error: a trace never stops the work.
  void writeTo(std::filesystem::path file) { file_ = std::move(file); }
  /// Calls `listener` with each statement from now on; an empty one ends it.
  void listen(std::function<void(const TracedStatement&)> listener) {
    listener_ = std::move(listener);
  }

  /// Called by the connections of the apartment. Does nothing while the trace is off.
  void add(TracedStatement statement);

 private:
  bool on_ = false;
  std::deque<TracedStatement> entries_;
  std::filesystem::path file_;
  std::function<void(const TracedStatement&)> listener_;
};

}  // namespace tavelor
