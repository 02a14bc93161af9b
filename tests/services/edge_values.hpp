// SPDX-License-Identifier: MIT
// Values for the columns of any table, at the ends of what they hold and in between.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <string_view>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/row_store.hpp"

namespace tavelor::test {

/// Values at the ends of what a column holds on both engines, and in between.
class EdgeValues {
 public:
  void put(engine::RowStore::Cells& cells, std::size_t place, const engine::Column& column,
           int number, bool isOfKey) const {
    if (isOfKey) return putKey(cells, place, column, number);
    if (column.nullable && number % 5 == 4) return;  // stays Null
    switch (column.type) {
      case engine::ColumnType::kByte:
        return cells.setInteger(place, pick(kBytes, 3, number));
      case engine::ColumnType::kInt16:
        return cells.setInteger(place, pick(kInt16, 3, number));
      case engine::ColumnType::kInt32:
        return cells.setInteger(place, pick(kInt32, 3, number));
      case engine::ColumnType::kBoolean:
        return cells.setInteger(place, number % 2 == 0 ? -1 : 0);
      case engine::ColumnType::kSingle:
        return cells.setReal(place, static_cast<double>(pick(kSingles, 4, number)));
      case engine::ColumnType::kDouble:
        return cells.setReal(place, pick(kDoubles, 6, number));
      case engine::ColumnType::kCurrency:
        return cells.setInteger(place, pick(kAmounts, 7, number));
      case engine::ColumnType::kDate:
        return cells.setReal(place, pick(kDays, 7, number));
      case engine::ColumnType::kText:
        return cells.setText(
            place, text::left(pick(kTexts, 6, number), static_cast<std::size_t>(column.size)));
      case engine::ColumnType::kMemo:
        return cells.setText(place, number % 7 == 0 ? long_ : pick(kTexts, 6, number));
      case engine::ColumnType::kBinary:
        return cells.setText(place,
                             number % 3 == 0 ? std::string_view() : std::string_view(bytes_));
    }
  }

 private:
  template <typename T>
  static const T& pick(const T* values, int count, int number) {
    return values[number % count];
  }
  static void putKey(engine::RowStore::Cells& cells, std::size_t place,
                     const engine::Column& column, int number) {
    // Some numbers below 0, and no two alike.
    const int key = column.autoNumber ? number + 1 : number % 2 == 0 ? number : -number;
    switch (column.type) {
      case engine::ColumnType::kText:
      case engine::ColumnType::kMemo:
        return cells.setText(place, std::to_string(number));
      case engine::ColumnType::kByte:
        return cells.setInteger(place, number);
      case engine::ColumnType::kInt16:
      case engine::ColumnType::kInt32:
        return cells.setInteger(place, key);
      case engine::ColumnType::kBoolean:
        return cells.setInteger(place, number % 2 == 0 ? 0 : -1);
      case engine::ColumnType::kCurrency:
        return cells.setInteger(place, key * 10'000);
      default:
        return cells.setReal(place, key);
    }
  }

  static constexpr int kBytes[] = {0, 1, 255};
  static constexpr int kInt16[] = {-0x8000, 0, 0x7FFF};
  static constexpr std::int64_t kInt32[] = {-0x8000'0000LL, 7, 0x7FFF'FFFF};
  static constexpr float kSingles[] = {0.1F, -1.5F, std::numeric_limits<float>::max(), 1e-30F};
  static constexpr double kDoubles[] = {0, 0.1, -1e300, 5e-324, 1.7e308, -0.0};
  // Beyond 2^53 ten-thousandths a file does not tell neighbours apart, but for the first and last.
  static constexpr std::int64_t kAmounts[] = {0,
                                              1,
                                              -1,
                                              9'007'199'254'740'991,
                                              -9'007'199'254'740'991,
                                              std::numeric_limits<std::int64_t>::max(),
                                              std::numeric_limits<std::int64_t>::min()};
  static constexpr double kDays[] = {0, 1.5, 45'000.75, -1.25, -657'434, 2'958'465.5, 0.25};
  static constexpr const char* kTexts[] = {
      "",  "ñandú áéíóú Ç€", "it's \"q\"; DROP TABLE Bancos --", "\xF0\x9F\x90\x9F pez",
      " ", "\\x00%_"};
  std::string long_ = std::string(20'000, 'm') + "ñ";
  std::string bytes_ = [] {
    std::string all;
    for (int byte = 255; byte >= 0; --byte) all.push_back(static_cast<char>(byte));
    return all;
  }();
};

}  // namespace tavelor::test
