// SPDX-License-Identifier: MIT
// A page on its way to a file.
#pragma once

#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace tavelor {

/// A text file in the encoding that the pages announce (iso-8859-1, which browsers read as its
/// superset windows-1252), lines ended by CR LF. A character outside of it becomes a numeric
/// reference; nothing else is escaped.
///
/// It is written beside its place and takes it in finish(): an earlier page stays whole until then,
/// and after a failure. Errors: 75 with the path when the folder or the file can't be written.
class Page {
 public:
  explicit Page(std::filesystem::path path);
  /// Without finish() nothing is left.
  ~Page();
  Page(const Page&) = delete;
  Page& operator=(const Page&) = delete;

  Page& operator<<(std::string_view utf8);
  /// Ends the line.
  Page& line(std::string_view utf8 = {}) { return *this << utf8 << "\r\n"; }
  void finish();

 private:
  void flush();
  [[noreturn]] void fail(std::string_view what) const;

  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::filesystem::path path_;
  std::filesystem::path draft_;
  std::unique_ptr<std::FILE, Closer> file_;
  std::string buffer_;
};

}  // namespace tavelor
