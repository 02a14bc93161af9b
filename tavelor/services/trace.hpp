// SPDX-License-Identifier: MIT
// What statements went to the databases, for whoever looks for a fault or for the slow one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <deque>
#include <memory>
#include <string>

#include "tavelor/platform/callback.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor {

/// One statement, after it has run.
struct TAVELOR_API TraceEntry {
  int selector = 0;
  std::string text;
  std::int64_t microseconds = 0;
  std::int64_t rows = 0;   ///< fetched or written; -1 where nobody waited to know
  std::int32_t error = 0;  ///< number of the error that it raised, or 0
  std::int64_t waits = 0;  ///< how often it waited for a server
};

/// The last statements of one apartment. Off unless the installation's settings turn it on.
class TAVELOR_API StatementTrace final : public TraceSink {
 public:
  static constexpr std::size_t kKept = 4096;  ///< statements that are kept

  bool isOn() const override { return on_; }
  /// Keeps statements from now on, or no more.
  void turn(bool on) { on_ = on; }

  /// The last kKept statements, oldest first.
  const std::deque<TraceEntry>& entries() const { return entries_; }
  /// Forgets them.
  void clear() { entries_.clear(); }

  /// Appends a line a statement to that file from now on; "" ends it. A file that cannot be written
  /// loses its lines without an error: a trace never stops the work.
  void writeTo(const std::string& file);
  /// Calls `listener` with each statement from now on; an empty one ends it. It must not raise and
  /// must not change the trace.
  void listen(Callback<void(const TraceEntry&)> listener) { listener_ = std::move(listener); }

  /// Keeps a statement, and hands it to the file and the listener.
  void statement(const Entry& traced) override;

 private:
  struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  void writeLine(const TraceEntry& entry);

  bool on_ = false;
  std::deque<TraceEntry> entries_;
  std::unique_ptr<std::FILE, FileCloser> file_;
  Callback<void(const TraceEntry&)> listener_;
};

}  // namespace tavelor
