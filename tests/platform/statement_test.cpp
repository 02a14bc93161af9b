// SPDX-License-Identifier: MIT
// Statements are the joined text, and tell which of its bytes came from values.
#include "tavelor/platform/statement.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {
namespace {

using Ranges = std::vector<Statement::Range>;

Ranges rangesOf(const Statement& statement) {
  return statement.joined().ranges;
}

TEST(Statement, IsTheJoinedText) {
  Statement statement("SELECT Http as web FROM Bancos WHERE codigo = '");
  const std::string id = "001";
  statement << spliced(id) << "'";
  EXPECT_EQ(statement.text(), "SELECT Http as web FROM Bancos WHERE codigo = '001'");
  EXPECT_EQ(rangesOf(statement), (Ranges{{47, 50}}));
}

TEST(Statement, ATextBringsItsQuotesAndIsOneValue) {
  Statement statement("SELECT Codigo FROM Clientes WHERE Poblacion = ");
  statement << sqlText("L'Hospitalet") << " AND Activo = " << sqlLiteral(true);
  EXPECT_EQ(statement.text(),
            "SELECT Codigo FROM Clientes WHERE Poblacion = 'L''Hospitalet' AND Activo = True");
  EXPECT_EQ(rangesOf(statement), (Ranges{{46, 61}, {75, 79}}));
}

TEST(Statement, NullIsNoValueButTheWord) {
  Statement statement("UPDATE Bancos SET Http = ");
  statement << sqlLiteral(Null{});
  EXPECT_EQ(statement.text(), "UPDATE Bancos SET Http = Null");
  EXPECT_TRUE(rangesOf(statement).empty());
}

TEST(Statement, APartOfAConstantIsAConstant) {
  constexpr Statement::Constant kText = "DELETE FROM Bancos WHERE Codigo = ''";
  Statement statement(kText.part(0, 18));
  statement << kText.part(18);
  EXPECT_EQ(statement.text(), kText.text());
  for (const Statement::Piece& piece : statement.pieces()) {
    EXPECT_EQ(piece.kind, Statement::Piece::Kind::kConstant);
  }
}

// What a text that is known only when running must not find: an overload that takes it silently.
// tests/checks/forgotten_wrappers.sh has the cases that only a compiler can refuse.
template <typename T>
constexpr bool kAppends = requires(Statement statement, const T& text) {
  statement << text;
};
template <typename T>
constexpr bool kBegins = requires(const T& text) {
  Statement(text);
};
static_assert(kAppends<Statement::Value> && kAppends<Statement::Trusted> && kAppends<Literal>);
static_assert(!kAppends<std::string> && !kBegins<std::string>);
static_assert(!kAppends<const char*> && !kBegins<const char*>);
static_assert(!kAppends<int> && !kBegins<int>);
static_assert(!kAppends<double> && !kAppends<Variant> && !kAppends<Date> && !kAppends<Currency>);

TEST(Statement, TrustedTextLeavesNoRange) {
  Statement statement;
  statement << "SELECT "
            << "1";
  EXPECT_EQ(statement.text(), "SELECT 1");
  EXPECT_TRUE(rangesOf(statement).empty());
}

TEST(Statement, AnEmptyValueHasAnEmptyRange) {
  Statement statement("a");
  statement << spliced("") << "b";
  EXPECT_EQ(statement.text(), "ab");
  EXPECT_EQ(rangesOf(statement), (Ranges{{1, 1}}));
}

TEST(Statement, AnotherStatementBringsItsRanges) {
  Statement where(" WHERE a = ");
  where << spliced("1");
  Statement statement("DELETE FROM t");
  statement << spliced("x") << where << ";";
  EXPECT_EQ(statement.text(), "DELETE FROM tx WHERE a = 1;");
  EXPECT_EQ(rangesOf(statement), (Ranges{{13, 14}, {25, 26}}));
}

TEST(Statement, CanBeAppendedToItself) {
  Statement statement("a");
  statement << spliced("1");
  statement << statement;
  EXPECT_EQ(statement.text(), "a1a1");
  EXPECT_EQ(rangesOf(statement), (Ranges{{1, 2}, {3, 4}}));
}

// Short ones lie in the object itself, long ones on the heap.
TEST(Statement, GrowsAsFarAsItMust) {
  Statement statement("a");
  statement << spliced("1");
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
  statement << spliced(million) << "";
  EXPECT_EQ(statement.text(), text + million);
  EXPECT_EQ(rangesOf(statement).back().end - rangesOf(statement).back().begin, million.size());
  const Statement copy = statement;
  EXPECT_EQ(copy.text(), statement.text());
}

TEST(Statement, IsCopiedAndMovedWithItsRanges) {
  Statement statement("a = ");
  statement << spliced("1") << " AND b = " << spliced("");
  Statement copy = statement;
  statement << spliced("2");
  EXPECT_EQ(copy.text(), "a = 1 AND b = ");
  EXPECT_EQ(rangesOf(copy), (Ranges{{4, 5}, {14, 14}}));
  const Statement moved = std::move(copy);
  EXPECT_EQ(moved.text(), "a = 1 AND b = ");
}

TEST(Statement, TakesTextsWithoutAnAddressHoweverLongItIs) {
  Statement statement;
  for (int i = 0; i < 3; ++i) {
    const std::string before(statement.text());
    statement << Statement::trusted({}) << spliced(std::string_view());
    EXPECT_EQ(statement.text(), before);
    statement << Statement::trusted(std::string(200, 'x'));
  }
  EXPECT_EQ(rangesOf(statement), (Ranges{{0, 0}, {200, 200}, {400, 400}}));
}

TEST(Statement, KeepsWhatIsGivenForALiteralTextOnly) {
  char table[] = "Bancos";
  std::string code = "001";
  Statement statement("SELECT * FROM ");
  statement << Statement::trusted(table) << " WHERE Codigo = '" << spliced(code) << "'";
  table[0] = 'X';
  code = "XXX";
  EXPECT_EQ(statement.text(), "SELECT * FROM Bancos WHERE Codigo = '001'");
}

// What an earlier, longer one has left on the heap is room at most.
TEST(Statement, GrowsFromWhatWasAssignedToItWhateverItHeldBefore) {
  Statement statement;
  for (int i = 0; i < 40; ++i) statement << spliced("a longer text than the next one");
  statement = Statement("SELECT ");
  std::string text = "SELECT ";
  Ranges ranges;
  for (std::uint32_t i = 0; i < 20; ++i) {
    statement << spliced("7");
    text += "7";
    ranges.push_back({7 + i, 8 + i});
  }
  const std::string rest(500, 'x');
  statement << Statement::trusted(rest);
  EXPECT_EQ(statement.text(), text + rest);
  EXPECT_EQ(rangesOf(statement), ranges);
}

}  // namespace
}  // namespace tavelor
