// SPDX-License-Identifier: MIT
// A page on its way to a file.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

namespace tavelor {

struct Locale;

/// A short ASCII text that a page repeats: copied in pieces of a fixed size, which costs less than
/// asking for its length.
class PageMark {
 public:
  explicit PageMark(std::string_view text) : bytes_(text), size_(text.size()) {
    bytes_.resize((size_ + kPiece - 1) / kPiece * kPiece);
  }

 private:
  friend class Page;
  static constexpr std::size_t kPiece = 64;

  std::string bytes_;
  std::size_t size_;
};

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
  Page& operator<<(const PageMark& mark) {
    next_ = behind(mark, 0);
    return *this;
  }
  void number(std::int64_t value);
  /// As plainNumber() prints it.
  void number(double value, const Locale& locale);
  /// A mark and a value behind it, as the calls above write one after the other. Pages of many
  /// cells are written so: one look at the room for both.
  void cell(const PageMark& mark, std::string_view text);
  void cell(const PageMark& mark, std::int64_t value);
  void cell(const PageMark& mark, double value, const Locale& locale);
  /// Ends the line.
  Page& line(std::string_view text = {}) { return *this << text << "\r\n"; }
  void finish();

 private:
  static constexpr std::size_t kBuffer = 256UL * 1024;

  std::size_t room() const { return static_cast<std::size_t>(buffer_.get() + kBuffer - next_); }
  /// Writes a mark; the place behind it, which has room for `more` and which nothing counts yet.
  char* behind(const PageMark& mark, std::size_t more) {
    if (mark.bytes_.size() + more > room()) flush();
    for (std::size_t at = 0; at < mark.size_; at += PageMark::kPiece) {
      std::memcpy(next_ + at, mark.bytes_.data() + at, PageMark::kPiece);
    }
    return next_ + mark.size_;
  }
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
