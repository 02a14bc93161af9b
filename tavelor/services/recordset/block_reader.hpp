// SPDX-License-Identifier: MIT
// Many rows at once, by columns, into memory of the caller's.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace tavelor {

class Recordset;

/// How the cells of a column are laid down, each row's behind the other's.
enum class CellLayout : std::int32_t {
  kInt32 = 1,    ///< of whole numbers and flags (0, 1)
  kInt64 = 2,    ///< of whole numbers, flags, and money in ten-thousandths
  kDouble = 3,   ///< of all numbers, and of dates as day numbers
  kBool8 = 4,    ///< a byte, 0 or 1; of flags
  kUnixUs = 5,   ///< 64 bits, microseconds since 1970-01-01; of dates, to the nearest second
  kUnixDay = 6,  ///< 32 bits, days since 1970-01-01; of dates, without their time
  kText = 7,     ///< offsets and bytes; of texts, memos and bytes
  kSingle = 8,   ///< of single precision
  kInt16 = 9     ///< of whole numbers of at most 16 bits
};

/// Where the cells of one column go. What is null is not wanted.
struct ColumnTarget {
  std::size_t column = 0;
  CellLayout as = CellLayout::kDouble;
  void* values = nullptr;            ///< aligned; of a Null 0, NaN, or the least number for kUnixUs
  std::uint8_t* validity = nullptr;  ///< a bit a row, the lowest first: 1 where it is no Null
  std::int64_t* offsets = nullptr;   ///< of texts: one more than rows, the first 0
  char* bytes = nullptr;             ///< of texts; null to be told how many
  std::size_t capacity = 0;          ///< of `bytes`
  std::size_t used = 0;              ///< of texts: bytes written, or that would be
  std::size_t nullCount = 0;         ///< of what was read
};

/// Reads up to `rows` rows of the view, from the position `first` on, counted from 0, and gives how
/// many: less at the end, and where the texts of a row do not fit any more. Where not even the
/// first row's do, `used` tells what they want. Shows what is in edit and pending; the cursor
/// stays.
///
/// Errors: 3704 for a closed set, 3265 for a column that there is not, 3421 for one that is not of
/// the layout, 6 for a date outside the years 100 to 9999. What is in the targets means nothing
/// then.
std::int64_t readBlock(Recordset& set, std::int64_t first, std::int64_t rows,
                       std::span<ColumnTarget> targets);

}  // namespace tavelor
