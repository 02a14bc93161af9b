// SPDX-License-Identifier: MIT
// Values that are not stored as their column is declared.
#include "tavelor/services/sqlite/cells.hpp"

namespace tavelor::engine::sqlite {

void CellReader::convert(sqlite3_value* value, ColumnType type, RowStore::Cells& cells,
                         std::size_t column) const {
  switch (sqlite3_value_type(value)) {
    case SQLITE_INTEGER:
      return converter_.whole(sqlite3_value_int64(value), type, cells, column);
    case SQLITE_FLOAT:
      return converter_.real(sqlite3_value_double(value), type, cells, column);
    default:
      return converter_.text(textOf(value), type, cells, column);
  }
}

Variant variantOf(sqlite3_value* value, ColumnType type) {
  switch (sqlite3_value_type(value)) {
    case SQLITE_NULL:
      return Null{};
    case SQLITE_INTEGER:
    case SQLITE_FLOAT:
      break;
    default:
      return textOf(value);
  }
  switch (type) {
    case ColumnType::kBoolean:
      return sqlite3_value_double(value) != 0;
    case ColumnType::kDate:
      return Date(sqlite3_value_double(value));
    case ColumnType::kCurrency:
      return Currency::fromDouble(sqlite3_value_double(value));
    case ColumnType::kSingle:
      return static_cast<float>(sqlite3_value_double(value));
    default:
      if (sqlite3_value_type(value) == SQLITE_INTEGER) {
        return static_cast<std::int64_t>(sqlite3_value_int64(value));
      }
      return sqlite3_value_double(value);
  }
}

}  // namespace tavelor::engine::sqlite
