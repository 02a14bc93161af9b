// SPDX-License-Identifier: MIT
// Keeps the last statements and writes them as lines.
#include "tavelor/services/trace.hpp"

#include <algorithm>

#include <fmt/format.h>

namespace tavelor {

void StatementTrace::writeTo(const std::string& file) {
  file_.reset(file.empty() ? nullptr : std::fopen(file.c_str(), "ae"));
}

void StatementTrace::statement(const TraceSink::Entry& traced) {
  if (!on_) return;
  if (entries_.size() == kKept) entries_.pop_front();
  entries_.push_back({traced.selector, std::string(traced.text), traced.microseconds, traced.rows,
                      traced.error, traced.waits});
  if (file_) writeLine(entries_.back());
  if (listener_) listener_(entries_.back());
}

void StatementTrace::writeLine(const TraceEntry& entry) {
  std::string text = entry.text;
  // One statement is one line, whatever its values hold.
  std::replace_if(
      text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x20; }, ' ');
  std::string line = fmt::format("{} {} us ", entry.selector, entry.microseconds);
  if (entry.waits > 0) line += fmt::format("{} waits ", entry.waits);
  if (entry.error != 0) {
    line += fmt::format("error {} ", entry.error);
  } else if (entry.rows < 0) {
    line += "sent ";
  } else {
    line += fmt::format("{} rows ", entry.rows);
  }
  line += text + '\n';
  std::fwrite(line.data(), 1, line.size(), file_.get());
  std::fflush(file_.get());
}

}  // namespace tavelor
