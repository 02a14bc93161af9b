// SPDX-License-Identifier: MIT
// Text files that are kept open under small numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// Open text files by number, from 1; the lowest free number is given first. Texts are UTF-8, lines
/// end in CR LF, and each line is in the file as soon as it is written: a log is most wanted after
/// a program has died. Files still open are closed with the object.
class TAVELOR_API LogFiles {
 public:
  /// Opens a file for writing, empty. Raises 75 with the path when it can't be opened.
  std::int16_t open(const std::string& path);
  /// A number that is not open is passed over.
  void close(std::int16_t number) noexcept;
  /// Raises 52 for a number that is not open, 75 with the path when the line can't be written.
  void writeLine(std::int16_t number, std::string_view line);

 private:
  struct Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  struct Log {
    std::string path;
    std::unique_ptr<std::FILE, Closer> file;
  };

  /// The file of a number, open or not; null for a number that was never given.
  Log* find(std::int16_t number);

  std::vector<Log> logs_;
};

}  // namespace tavelor
