// SPDX-License-Identifier: MIT
// Values that are not of their column's type.
#include "tavelor/services/engine/cell_converter.hpp"

#include <cmath>
#include <string>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"

namespace tavelor::engine {

namespace {

constexpr std::string_view kSource = "Database";

double numberOf(std::string_view text, const Locale& locale) {
  const auto number = parseNumber(text, locale);
  if (!number) raise(errors::kTypeMismatch, kSource, "'" + std::string(text) + "' is no number");
  return *number;
}

double dateOf(std::string_view text, const Locale& locale) {
  const auto date = parseDate(text, locale);
  if (!date) raise(errors::kTypeMismatch, kSource, "'" + std::string(text) + "' is no date");
  return date->days();
}

/// Within the range of a column's type.
std::int64_t wholeOf(double number, ColumnType type, const Locale& locale) {
  const WholeRange range = wholeRange(type);
  const double rounded = roundHalfEven(number);
  if (!(rounded >= static_cast<double>(range.least) &&
        rounded <= static_cast<double>(range.most))) {
    raise(errors::kOverflow, kSource,
          plainNumber(rounded, locale) + " is not between " + std::to_string(range.least) +
              " and " + std::to_string(range.most));
  }
  return static_cast<std::int64_t>(rounded);
}

}  // namespace

std::int64_t CellConverter::scaled(double amount) {
  // Amounts are stored rounded, so the product lies next to a whole number; only what doesn't needs
  // its decimal digits looked at.
  const double product = amount * static_cast<double>(Currency::kScale);
  const double whole = std::nearbyint(product);
  if (std::abs(product - whole) < 0.49 && std::abs(product) < 1e15) {
    return static_cast<std::int64_t>(whole);
  }
  return Currency::fromDouble(amount).scaled();
}

void CellConverter::whole(std::int64_t number, ColumnType type, RowStore::Cells& cells,
                          std::size_t column) const {
  if (isText(type) || type == ColumnType::kBinary) {
    return cells.setText(column, std::to_string(number));
  }
  real(static_cast<double>(number), type, cells, column);
}

void CellConverter::real(double number, ColumnType type, RowStore::Cells& cells,
                         std::size_t column) const {
  switch (type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
    case ColumnType::kBinary:
      return cells.setText(column, plainNumber(number, locale_));
    case ColumnType::kByte:
    case ColumnType::kInt16:
    case ColumnType::kInt32:
      return cells.setInteger(column, wholeOf(number, type, locale_));
    case ColumnType::kBoolean:
      return cells.setInteger(column, number != 0 ? -1 : 0);
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
      return cells.setReal(column, number);
    case ColumnType::kCurrency:
      return cells.setInteger(column, scaled(number));
  }
}

void CellConverter::text(std::string_view written, ColumnType type, RowStore::Cells& cells,
                         std::size_t column) const {
  switch (type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
    case ColumnType::kBinary:
      return cells.setText(column, written);
    case ColumnType::kDate:
      return cells.setReal(column, dateOf(written, locale_));
    default:
      return real(numberOf(written, locale_), type, cells, column);
  }
}

}  // namespace tavelor::engine
