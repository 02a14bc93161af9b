// SPDX-License-Identifier: MIT
// Statements are the joined text, and tell which of its bytes came from values.
#include "tavelor/platform/statement.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tavelor {
namespace {

using Ranges = std::vector<Statement::Range>;

Ranges rangesOf(const Statement& statement) {
  return statement.joined().ranges;
}

TEST(Statement, IsTheJoinedText) {
  Statement statement("SELECT Http as web FROM Bancos WHERE codigo = '");
  const std::string id = "001";
  statement << value(id) << "'";
  EXPECT_EQ(statement.text(), "SELECT Http as web FROM Bancos WHERE codigo = '001'");
  EXPECT_EQ(rangesOf(statement), (Ranges{{47, 50}}));
}

TEST(Statement, TrustedTextLeavesNoRange) {
  Statement statement;
  statement << "SELECT "
            << "1";
  EXPECT_EQ(statement.text(), "SELECT 1");
  EXPECT_TRUE(rangesOf(statement).empty());
}

TEST(Statement, AnEmptyValueHasAnEmptyRange) {
  Statement statement("a");
  statement << value("") << "b";
  EXPECT_EQ(statement.text(), "ab");
  EXPECT_EQ(rangesOf(statement), (Ranges{{1, 1}}));
}

TEST(Statement, AnotherStatementBringsItsRanges) {
  Statement where(" WHERE a = ");
  where << value("1");
  Statement statement("DELETE FROM t");
  statement << value("x") << where << ";";
  EXPECT_EQ(statement.text(), "DELETE FROM tx WHERE a = 1;");
  EXPECT_EQ(rangesOf(statement), (Ranges{{13, 14}, {25, 26}}));
}

TEST(Statement, CanBeAppendedToItself) {
  Statement statement("a");
  statement << value("1");
  statement << statement;
  EXPECT_EQ(statement.text(), "a1a1");
  EXPECT_EQ(rangesOf(statement), (Ranges{{1, 2}, {3, 4}}));
}

// Short ones lie in the object itself, long ones on the heap.
TEST(Statement, GrowsAsFarAsItMust) {
  Statement statement("a");
  statement << value("1");
  std::string text = "a1";
  Ranges ranges{{1, 2}};
  for (int doubled = 0; doubled < 12; ++doubled) {
    const auto size = static_cast<std::uint32_t>(text.size());
    const std::size_t count = ranges.size();
    for (std::size_t i = 0; i < count; ++i) {
      ranges.push_back({ranges[i].begin + size, ranges[i].end + size});
    }
    text += text;
    statement << statement;
    ASSERT_EQ(statement.text(), text);
    ASSERT_EQ(rangesOf(statement), ranges);
  }
  const std::string million(1'000'000, 'x');
  statement << value(million) << "";
  EXPECT_EQ(statement.text(), text + million);
  EXPECT_EQ(rangesOf(statement).back().end - rangesOf(statement).back().begin, million.size());
  const Statement copy = statement;
  EXPECT_EQ(copy.text(), statement.text());
}

TEST(Statement, IsCopiedAndMovedWithItsRanges) {
  Statement statement("a = ");
  statement << value("1") << " AND b = " << value("");
  Statement copy = statement;
  statement << value("2");
  EXPECT_EQ(copy.text(), "a = 1 AND b = ");
  EXPECT_EQ(rangesOf(copy), (Ranges{{4, 5}, {14, 14}}));
  const Statement moved = std::move(copy);
  EXPECT_EQ(moved.text(), "a = 1 AND b = ");
}

TEST(Statement, TakesTextsWithoutAnAddressHoweverLongItIs) {
  Statement statement;
  for (int i = 0; i < 3; ++i) {
    const std::string before(statement.text());
    statement << std::string_view() << value({});
    EXPECT_EQ(statement.text(), before);
    statement << std::string(200, 'x');
  }
  EXPECT_EQ(rangesOf(statement), (Ranges{{0, 0}, {200, 200}, {400, 400}}));
}

TEST(Statement, KeepsWhatIsGivenForALiteralTextOnly) {
  char table[] = "Bancos";
  std::string code = "001";
  Statement statement("SELECT * FROM ");
  statement << std::string_view(table) << " WHERE Codigo = '" << value(code) << "'";
  table[0] = 'X';
  code = "XXX";
  EXPECT_EQ(statement.text(), "SELECT * FROM Bancos WHERE Codigo = '001'");
}

// What an earlier, longer one has left on the heap is room at most.
TEST(Statement, GrowsFromWhatWasAssignedToItWhateverItHeldBefore) {
  Statement statement;
  for (int i = 0; i < 40; ++i) statement << value("a longer text than the next one");
  statement = Statement("SELECT ");
  std::string text = "SELECT ";
  Ranges ranges;
  for (std::uint32_t i = 0; i < 20; ++i) {
    statement << value("7");
    text += "7";
    ranges.push_back({7 + i, 8 + i});
  }
  const std::string rest(500, 'x');
  statement << rest;
  EXPECT_EQ(statement.text(), text + rest);
  EXPECT_EQ(rangesOf(statement), ranges);
}

}  // namespace
}  // namespace tavelor
