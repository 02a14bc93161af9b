// SPDX-License-Identifier: MIT
// Many rows of a record set at once: scratch memory for a block of rows, and what fills it.
#pragma once

#include <cstdint>
#include <vector>

#include "objects.hpp"

namespace tavelor::python {

/// A column as a block reads it.
struct BlockColumn {
  int32_t column = 0;
  int32_t type = 0;
  int32_t as = 0;
};

/// The layout that a column of a type is read in: as large texts, exact money, dates as day numbers
/// or microseconds.
int32_t layoutOf(int32_t type, bool datesAsMicroseconds);
/// Bytes of a cell; 0 for texts.
size_t cellSize(int32_t as);

/// Memory for a block of rows, which is used again and again.
class Block {
 public:
  /// Room for `rows` rows of `columns`.
  Block(std::vector<BlockColumn> columns, int64_t rows);

  /// Reads up to its rows from the row `first` on. -1 with an exception, or how many there were.
  int64_t read(Object* recordset, int64_t first);

  const std::vector<BlockColumn>& columns() const { return columns_; }
  int64_t rows() const { return rows_; }
  bool isNull(size_t column, int64_t row) const {
    const uint8_t byte = validity_[column][static_cast<size_t>(row) / 8];
    return (byte >> (row % 8) & 1) == 0;
  }
  template <typename T>
  const T* cells(size_t column) const {
    return static_cast<const T*>(buffers_[column].values);
  }
  /// A text's bytes and size.
  const char* text(size_t column, int64_t row, Py_ssize_t& size) const {
    const int64_t* const offsets = offsets_[column].data();
    size = static_cast<Py_ssize_t>(offsets[row + 1] - offsets[row]);
    return texts_[column].data() + offsets[row];
  }

 private:
  std::vector<BlockColumn> columns_;
  int64_t rows_;
  std::vector<std::vector<double>> cells_;  // of doubles, so that it is aligned for all
  std::vector<std::vector<uint8_t>> validity_;
  std::vector<std::vector<int64_t>> offsets_;
  std::vector<std::vector<char>> texts_;
  std::vector<tavelor_column_buffer> buffers_;
};

/// Columns of a set by position and type. False with an exception.
bool columnTypes(Object* recordset, std::vector<int32_t>& types);

}  // namespace tavelor::python
