// SPDX-License-Identifier: MIT
// Packed rows.
#include "tavelor/services/engine/row_store.hpp"

#include <string>

#include <gtest/gtest.h>

#include "tavelor/platform/error.hpp"

namespace tavelor::engine {
namespace {

TEST(RowStore, ANewRowIsAllNull) {
  RowStore rows(std::vector<ColumnType>(130, ColumnType::kInt32));
  EXPECT_EQ(rows.append(), 0U);
  for (const std::size_t column : {0U, 63U, 64U, 129U}) EXPECT_TRUE(rows.isNull(0, column));
}

TEST(RowStore, ACellKeepsItsValueUntilItIsNullAgain) {
  RowStore rows({ColumnType::kInt32, ColumnType::kDouble, ColumnType::kText});
  rows.append();
  rows.setInteger(0, 0, -7);
  rows.setReal(0, 1, 2.5);
  rows.setText(0, 2, "");
  EXPECT_EQ(rows.integer(0, 0), -7);
  EXPECT_EQ(rows.real(0, 1), 2.5);
  EXPECT_FALSE(rows.isNull(0, 2));
  EXPECT_EQ(rows.text(0, 2), "");
  rows.setText(0, 2, std::string_view());
  EXPECT_FALSE(rows.isNull(0, 2));
  rows.setNull(0, 0);
  EXPECT_TRUE(rows.isNull(0, 0));
  EXPECT_FALSE(rows.isNull(0, 1));
}

TEST(RowStore, TextsOfEveryLengthComeBackWhole) {
  RowStore rows({ColumnType::kMemo});
  std::string text;
  for (std::size_t length = 0; length < 40; ++length) {
    rows.setText(rows.append(), 0, text);
    text += length == 3 ? '\0' : static_cast<char>('a' + length % 26);
  }
  const std::string large(1'000'000, 'z');
  rows.setText(rows.append(), 0, large);
  for (std::size_t length = 0; length < 40; ++length) {
    EXPECT_EQ(rows.text(length, 0), std::string_view(text).substr(0, length)) << length;
  }
  EXPECT_EQ(rows.text(40, 0), large);
}

TEST(RowStore, ViewsOfTextsStayGoodWhileRowsAreAdded) {
  RowStore rows({ColumnType::kText});
  rows.setText(rows.append(), 0, "corto");
  rows.setText(rows.append(), 0, "un texto que no cabe en la celda");
  const std::string_view brief = rows.text(0, 0);
  const std::string_view lengthy = rows.text(1, 0);
  for (int i = 0; i < 100'000; ++i) rows.setText(rows.append(), 0, "otro texto de relleno");
  EXPECT_EQ(brief, "corto");
  EXPECT_EQ(lengthy, "un texto que no cabe en la celda");
  EXPECT_EQ(rows.text(0, 0).data(), brief.data());
}

TEST(RowStore, CellsFillTheirRowAndNoOther) {
  RowStore rows(std::vector<ColumnType>(70, ColumnType::kInt32));
  for (int i = 0; i < 3000; ++i) {
    RowStore::Cells cells = rows.cells(rows.append());
    cells.setInteger(0, i);
    cells.setInteger(69, -i);
  }
  for (const std::size_t row : {0U, 15U, 16U, 1039U, 1040U, 2999U}) {
    EXPECT_EQ(rows.integer(row, 0), static_cast<std::int64_t>(row));
    EXPECT_EQ(rows.integer(row, 69), -static_cast<std::int64_t>(row));
    EXPECT_TRUE(rows.isNull(row, 1));
    EXPECT_TRUE(rows.isNull(row, 68));
  }
}

TEST(RowStore, ARowReadsTheSameAsItsCells) {
  constexpr std::size_t kColumns = 67;  // two words of null bits
  RowStore rows(std::vector<ColumnType>(kColumns, ColumnType::kText));
  constexpr std::size_t kRows = 1100;  // more than the first two chunks hold
  for (std::size_t i = 0; i < kRows; ++i) {
    rows.append();
    rows.setInteger(i, 0, static_cast<std::int64_t>(i) - 5);
    rows.setReal(i, 63, 0.5 * static_cast<double>(i));
    rows.setText(i, 64, std::to_string(i));
    rows.setText(i, 66, "a longer text, number " + std::to_string(i));
  }
  for (const std::size_t i : {0U, 15U, 16U, 17U, 1039U, 1040U, 1099U}) {
    const RowStore::Row row = rows.row(i);
    for (std::size_t column = 0; column < kColumns; ++column) {
      EXPECT_EQ(row.isNull(column), rows.isNull(i, column)) << i << ", " << column;
    }
    EXPECT_EQ(row.integer(0), rows.integer(i, 0));
    EXPECT_EQ(row.real(63), rows.real(i, 63));
    EXPECT_EQ(row.text(64), std::to_string(i));
    EXPECT_EQ(row.text(66), rows.text(i, 66));
  }
}

TEST(RowStore, ARowStaysGoodWhileRowsAreAddedAndShowsWhatIsWrittenToIt) {
  RowStore rows({ColumnType::kText});
  rows.append();
  const RowStore::Row row = rows.row(0);
  for (int i = 0; i < 5000; ++i) rows.append();
  EXPECT_TRUE(row.isNull(0));
  rows.setText(0, 0, "later");
  EXPECT_FALSE(row.isNull(0));
  EXPECT_EQ(row.text(0), "later");
}

TEST(RowStore, ARowThatIsTakenAwayComesBackNull) {
  RowStore rows({ColumnType::kInt32});
  for (int i = 0; i < 17; ++i) rows.setInteger(rows.append(), 0, i);
  rows.removeLast();
  EXPECT_EQ(rows.rows(), 16U);
  EXPECT_EQ(rows.append(), 16U);
  EXPECT_TRUE(rows.isNull(16, 0));
  EXPECT_EQ(rows.integer(15, 0), 15);
}

TEST(RowStore, ShortTextsTakeNoRoomBesideTheirCell) {
  RowStore rows({ColumnType::kText});
  for (int i = 0; i < 1000; ++i) rows.setText(rows.append(), 0, "1234567");
  const std::size_t before = rows.memory();
  for (std::size_t i = 0; i < 1000; ++i) rows.setText(i, 0, "7654321");
  EXPECT_EQ(rows.memory(), before);
  rows.setText(0, 0, "12345678");
  EXPECT_GT(rows.memory(), before);
}

}  // namespace
}  // namespace tavelor::engine
