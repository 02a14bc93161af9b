// SPDX-License-Identifier: MIT
// A value of the engine as a cell of a row, and as a Variant.
#pragma once

#include <string_view>
#include <utility>

#include <sqlite3.h>

#include "tavelor/platform/variant.hpp"
#include "tavelor/services/engine/cell_converter.hpp"
#include "tavelor/services/engine/row_store.hpp"

namespace tavelor::engine::sqlite {

inline std::string_view textOf(sqlite3_value* value) {
  // The address first: asking for it may change how long the text is.
  const auto* text = reinterpret_cast<const char*>(sqlite3_value_text(value));
  return {text == nullptr ? "" : text, static_cast<std::size_t>(sqlite3_value_bytes(value))};
}

/// Reads values into cells of a row. What is stored as its column is declared takes the short way;
/// anything else (an expression, a text in a numeric column) is converted.
class CellReader {
 public:
  explicit CellReader(const Locale& locale) : converter_(locale) {}

  /// Leaves the cell as it was (null) for a null. Raises 13 and 6 as Prepared::fetch() tells.
  void read(sqlite3_value* value, ColumnType type, RowStore::Cells& cells,
            std::size_t column) const {
    const int stored = sqlite3_value_type(value);
    if (stored == SQLITE_NULL) return;
    switch (type) {
      case ColumnType::kText:
      case ColumnType::kMemo:
        if (stored == SQLITE_TEXT) return cells.setText(column, textOf(value));
        break;
      case ColumnType::kInt32:
        if (stored == SQLITE_INTEGER) {
          const std::int64_t whole = sqlite3_value_int64(value);
          if (std::in_range<std::int32_t>(whole)) return cells.setInteger(column, whole);
        }
        break;
      case ColumnType::kByte:
      case ColumnType::kInt16:
        if (stored == SQLITE_INTEGER) {
          const std::int64_t whole = sqlite3_value_int64(value);
          const auto [least, most] = wholeRange(type);
          if (whole >= least && whole <= most) return cells.setInteger(column, whole);
        }
        break;
      case ColumnType::kBoolean:
        if (stored == SQLITE_INTEGER) {
          return cells.setInteger(column, sqlite3_value_int64(value) != 0 ? -1 : 0);
        }
        break;
      case ColumnType::kSingle:
      case ColumnType::kDouble:
      case ColumnType::kDate:
        if (stored <= SQLITE_FLOAT) return cells.setReal(column, sqlite3_value_double(value));
        break;
      case ColumnType::kCurrency:
        if (stored <= SQLITE_FLOAT) {
          return cells.setInteger(column, CellConverter::scaled(sqlite3_value_double(value)));
        }
        break;
      case ColumnType::kBinary:
        break;
    }
    convert(value, type, cells, column);
  }

 private:
  static_assert(SQLITE_INTEGER == 1 && SQLITE_FLOAT == 2);

  void convert(sqlite3_value* value, ColumnType type, RowStore::Cells& cells,
               std::size_t column) const;

  CellConverter converter_;
};

/// A value as the Variant that a column of `type` gives; a text stays a text.
Variant variantOf(sqlite3_value* value, ColumnType type);

}  // namespace tavelor::engine::sqlite
