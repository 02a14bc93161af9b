// SPDX-License-Identifier: MIT
// A page on its way to a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string_view>

namespace tavelor {

/// A text file in the encoding that the pages announce (iso-8859-1, which browsers read as its
/// superset windows-1252), lines ended by CR LF. Texts come in UTF-8; a character outside of the
/// encoding becomes a numeric reference, and nothing else is escaped.
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

  Page& operator<<(std::string_view text);
  /// The same for a text that is known to be ASCII, and shorter than kBuffer.
  void ascii(std::string_view text) {
    if (text.size() > room()) flush();
    std::memcpy(next_, text.data(), text.size());
    next_ += text.size();
  }
  void number(std::int64_t value);
  /// Ends the line.
  Page& line(std::string_view text = {}) { return *this << text << "\r\n"; }
  void finish();

  static constexpr std::size_t kBuffer = 256UL * 1024;

 private:
  std::size_t room() const { return static_cast<std::size_t>(buffer_.get() + kBuffer - next_); }
  void encode(char32_t character);
  void flush();
  [[noreturn]] void fail(std::string_view what) const;

  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  std::filesystem::path path_;
  std::filesystem::path draft_;
  std::unique_ptr<std::FILE, Closer> file_;
  std::unique_ptr<char[]> buffer_;
  char* next_;
};

}  // namespace tavelor
