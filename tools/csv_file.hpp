// SPDX-License-Identifier: MIT
// Rows of a file of comma-separated values.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "tools/input_file.hpp"

namespace tavelor::tools {

/// The first row names the columns. Fields may stand in double quotes, with doubled ones inside;
/// blanks around fields do not count, rows without anything are passed over. Besides what InputFile
/// raises, FileError for quotes that do not fit, for a carriage return within a line, and for a row
/// of more than InputFile::kLongestLine bytes, which a quote that nobody closed makes of all that
/// follows.
class CsvFile {
 public:
  struct Row {
    std::uint64_t line = 0;  ///< where it begins, from 1
    std::vector<std::string> fields;
  };

  /// `separator` 0 takes the one of , ; tab and | that the first row has most of.
  explicit CsvFile(const std::string& path, char separator = 0);
  ~CsvFile();
  CsvFile(const CsvFile&) = delete;
  CsvFile& operator=(const CsvFile&) = delete;

  const std::vector<std::string>& columns() const { return columns_; }
  /// The next row; false at the end. `row` is used again, to make no new strings.
  bool next(Row& row);

 private:
  struct Parser;

  bool take(Row& row);

  InputFile input_;
  std::unique_ptr<Parser> parser_;
  std::vector<std::string> columns_;
};

}  // namespace tavelor::tools
