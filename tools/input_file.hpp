// SPDX-License-Identifier: MIT
// A text file, plain or compressed by xz, line by line.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace tavelor::tools {

/// A file that cannot be worked with; what() names it, and the line where that is known.
class FileError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Lines of UTF-8. Holds one block of the file and one line at a time, whatever the file's size.
/// All members raise FileError: for a file that cannot be read or is empty, for a pipe or a device,
/// which could not be read from its beginning again, for damaged compression, for bytes that are no
/// UTF-8, for a line of more than kLongestLine bytes.
class InputFile {
 public:
  static constexpr std::size_t kLongestLine = std::size_t{1} << 20U;

  explicit InputFile(const std::string& path);
  ~InputFile();
  InputFile(const InputFile&) = delete;
  InputFile& operator=(const InputFile&) = delete;

  /// The next line with its line end, if it has one; false at the end. Valid until the next call.
  bool next(std::string_view& line);
  /// Of the last line, from 1.
  std::uint64_t lineNumber() const { return lineNumber_; }
  /// Raises FileError about the last line.
  [[noreturn]] void fail(std::string_view what) const;
  [[noreturn]] void failAt(std::uint64_t line, std::string_view what) const;

 private:
  class Source;

  bool fill();
  void requireText(std::string_view line) const;

  std::string path_;
  std::unique_ptr<Source> source_;
  std::string buffer_;
  std::size_t at_ = 0;
  std::uint64_t lineNumber_ = 0;
};

}  // namespace tavelor::tools
