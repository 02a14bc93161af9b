// SPDX-License-Identifier: MIT
// Values that are not stored as their column is declared.
#include "tavelor/services/sqlite/cells.hpp"

#include <cmath>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/sqlite/database.hpp"

namespace tavelor::engine::sqlite {

namespace {

/// As a number: a text by the locale.
double numberOf(sqlite3_value* value, const Locale& locale) {
  if (sqlite3_value_type(value) <= SQLITE_FLOAT) return sqlite3_value_double(value);
  const std::string_view text = textOf(value);
  const auto number = parseNumber(text, locale);
  if (!number) raise(errors::kTypeMismatch, kSource, "'" + std::string(text) + "' is no number");
  return *number;
}

/// Within the range of a column's type.
std::int64_t wholeOf(sqlite3_value* value, ColumnType type, const Locale& locale) {
  const WholeRange range = wholeRange(type);
  const double rounded = roundHalfEven(numberOf(value, locale));
  if (!(rounded >= static_cast<double>(range.least) &&
        rounded <= static_cast<double>(range.most))) {
    raise(errors::kOverflow, kSource,
          plainNumber(rounded, locale) + " is not between " + std::to_string(range.least) +
              " and " + std::to_string(range.most));
  }
  return static_cast<std::int64_t>(rounded);
}

double dateOf(sqlite3_value* value, const Locale& locale) {
  if (sqlite3_value_type(value) <= SQLITE_FLOAT) return sqlite3_value_double(value);
  const std::string_view text = textOf(value);
  const auto date = parseDate(text, locale);
  if (!date) raise(errors::kTypeMismatch, kSource, "'" + std::string(text) + "' is no date");
  return date->days();
}

}  // namespace

std::int64_t CellReader::scaled(double amount) {
  // Amounts are stored rounded, so the product lies next to a whole number; only what doesn't needs
  // its decimal digits looked at.
  const double product = amount * static_cast<double>(Currency::kScale);
  const double whole = std::nearbyint(product);
  if (std::abs(product - whole) < 0.49 && std::abs(product) < 1e15) {
    return static_cast<std::int64_t>(whole);
  }
  return Currency::fromDouble(amount).scaled();
}

void CellReader::convert(sqlite3_value* value, ColumnType type, RowStore::Cells& cells,
                         std::size_t column) const {
  switch (type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
      if (sqlite3_value_type(value) == SQLITE_FLOAT) {
        return cells.setText(column, plainNumber(sqlite3_value_double(value), locale_));
      }
      return cells.setText(column, textOf(value));
    case ColumnType::kByte:
    case ColumnType::kInt16:
    case ColumnType::kInt32:
      return cells.setInteger(column, wholeOf(value, type, locale_));
    case ColumnType::kBoolean:
      return cells.setInteger(column, numberOf(value, locale_) != 0 ? -1 : 0);
    case ColumnType::kSingle:
    case ColumnType::kDouble:
      return cells.setReal(column, numberOf(value, locale_));
    case ColumnType::kCurrency:
      return cells.setInteger(column, scaled(numberOf(value, locale_)));
    case ColumnType::kDate:
      return cells.setReal(column, dateOf(value, locale_));
    case ColumnType::kBinary:
      return cells.setText(column, {static_cast<const char*>(sqlite3_value_blob(value)),
                                    static_cast<std::size_t>(sqlite3_value_bytes(value))});
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
