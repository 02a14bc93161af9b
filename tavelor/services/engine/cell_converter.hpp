// SPDX-License-Identifier: MIT
// Values that are not of their column's type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tavelor/services/engine/row_store.hpp"

namespace tavelor {
struct Locale;
}

namespace tavelor::engine {

/// Fits values into cells of another type, alike for all engines: texts are read and numbers
/// printed by the locale, whole numbers are rounded halves to even. Raises 13 for what can't be
/// converted and 6 for what does not fit.
class CellConverter {
 public:
  /// `locale` must live as long.
  explicit CellConverter(const Locale& locale) : locale_(locale) {}

  /// A whole number into a cell of any type.
  void whole(std::int64_t number, ColumnType type, RowStore::Cells& cells,
             std::size_t column) const;
  /// A number with a fraction, or a date's day number.
  void real(double number, ColumnType type, RowStore::Cells& cells, std::size_t column) const;
  /// A text, or bytes.
  void text(std::string_view written, ColumnType type, RowStore::Cells& cells,
            std::size_t column) const;

  /// The ten-thousandths of an amount, halves to even.
  static std::int64_t scaled(double amount);

 private:
  const Locale& locale_;
};

}  // namespace tavelor::engine
