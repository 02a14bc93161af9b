// SPDX-License-Identifier: MIT
// What statements have in common that differ in their values only.
#include <gmock/gmock.h>

#include "tavelor/services/dialect/lexer.hpp"
#include "tests/dialect/support.hpp"

namespace tavelor::dialect::test {
namespace {

using testing::ElementsAre;

Shape shape(std::string_view text) {
  return shapeOf(Statement::trusted(text));
}

TEST(Shape, LeavesAMarkOfItsKindForEachLiteral) {
  const Shape found = shape(
      "SELECT  Banco FROM Bancos WHERE Codigo='a''b' AND Orden=-3 "
      "AND Tipo = 1.5 AND Alta=#1/2/2026#");
  EXPECT_EQ(
      found.key,
      "SELECT Banco FROM Bancos WHERE Codigo = ?t AND Orden = ?w AND Tipo = ?d AND Alta = ?#");
  EXPECT_THAT(found.literals, ElementsAre("a'b", "-3", "1.5", "1/2/2026"));
  EXPECT_THAT(found.kinds, ElementsAre(LiteralKind::kText, LiteralKind::kWhole,
                                       LiteralKind::kDecimal, LiteralKind::kDate));
}

TEST(Shape, IsTheSameForOtherValuesAndOtherBlanks) {
  EXPECT_EQ(shape("SELECT Banco FROM Bancos WHERE Codigo = 'a'").key,
            shape("SELECT   Banco FROM Bancos\nWHERE Codigo='longer, with '' inside'").key);
  EXPECT_NE(shape("SELECT Banco FROM Bancos WHERE Orden = 1").key,
            shape("SELECT Banco FROM Bancos WHERE Orden = 1.5").key);
}

TEST(Shape, KeepsTheCaseOfNamesBecauseResultColumnsBearThem) {
  EXPECT_NE(shape("SELECT Banco AS uno FROM Bancos").key,
            shape("SELECT Banco AS UNO FROM Bancos").key);
}

TEST(Shape, KeepsLiteralsThatEnginesWantAsConstants) {
  EXPECT_EQ(shape("SELECT TOP 5 Banco FROM Bancos WHERE Orden > 3").key,
            "SELECT TOP 5 Banco FROM Bancos WHERE Orden > ?w");
  EXPECT_EQ(shape("SELECT Banco FROM Bancos WHERE Orden > 3 ORDER BY 1").key,
            "SELECT Banco FROM Bancos WHERE Orden > ?w ORDER BY 1");
  EXPECT_EQ(shape("SELECT Banco FROM Bancos WHERE Codigo IN (SELECT Banco FROM Apuntes "
                  "GROUP BY Banco, 'x' HAVING Sum(Importe) > 3 ORDER BY 1) AND Orden = 4")
                .key,
            "SELECT Banco FROM Bancos WHERE Codigo IN ( SELECT Banco FROM Apuntes GROUP BY Banco , "
            "'x' HAVING Sum ( Importe ) > ?w ORDER BY 1 ) AND Orden = ?w");
}

TEST(Shape, AMinusThatNoOperandPrecedesBelongsToItsNumber) {
  EXPECT_EQ(shape("SELECT Orden + -3 FROM Bancos").key, "SELECT Orden + ?w FROM Bancos");
  EXPECT_EQ(shape("SELECT Orden -3 FROM Bancos").key, "SELECT Orden - ?w FROM Bancos");
  EXPECT_EQ(shape("SELECT -2 ^ 2 FROM Bancos").key, "SELECT - ?w ^ ?w FROM Bancos");
}

TEST(Shape, OfSplicedTextIsThatOfTheWholeText) {
  Statement statement("UPDATE Bancos SET Orden = Orden + ");
  statement << spliced("-3") << " WHERE Codigo = '" << spliced("a") << "'";
  EXPECT_EQ(shapeOf(statement).key, shape(statement.text()).key);
  EXPECT_EQ(shapeOf(statement).literals, shape(statement.text()).literals);
}

TEST(ShapeSlots, TellWhereEachValueStands) {
  Statement statement("SELECT Banco FROM Bancos WHERE Codigo = 'a''");
  statement << spliced("1") << "''-" << spliced("2") << " ' AND Orden = " << spliced("7")
            << " AND Alta = " << spliced("#1/2/2026#") << " AND Alta > #" << spliced("1/2/2026")
            << "#";
  const Shape found = shapeOf(statement);
  ASSERT_TRUE(found.spliceable);
  ASSERT_EQ(found.slots.size(), 5U);
  EXPECT_EQ(found.slots[0].prefix, "a'");
  EXPECT_EQ(found.slots[0].suffix, "");
  EXPECT_EQ(found.slots[1].prefix, "'-");
  EXPECT_EQ(found.slots[1].suffix, " ");
  EXPECT_EQ(found.slots[1].literal, 0);
  EXPECT_EQ(found.slots[1].quote, '\'');
  EXPECT_EQ(found.slots[2].literal, 1);
  EXPECT_EQ(found.slots[2].quote, 0);
  EXPECT_EQ(found.slots[3].quote, '#');
  EXPECT_TRUE(found.slots[3].delimited);
  EXPECT_EQ(found.slots[4].quote, '#');
  EXPECT_FALSE(found.slots[4].delimited);
}

TEST(ShapeSlots, AreNotEnoughWhereAValueIsAPartOfTheShape) {
  Statement word("UPDATE Bancos SET Activo = ");
  word << spliced("True");
  EXPECT_FALSE(shapeOf(word).spliceable);
  Statement top("SELECT TOP ");
  top << spliced("5") << " Banco FROM Bancos";
  EXPECT_FALSE(shapeOf(top).spliceable);
  EXPECT_TRUE(shape("SELECT Banco FROM Bancos").spliceable);
}

TEST(Shape, LiteralsAreThoseOfTheTranslation) {
  const Statement statement(
      "SELECT Banco FROM Bancos WHERE Codigo IN ('a', 'b') AND Orden = 3 "
      "GROUP BY Banco HAVING Count(*) > 2");
  Literals literals;
  translate(statement, shop(), sqliteWriter(), literals);
  EXPECT_EQ(literals, shapeOf(statement).literals);
}

}  // namespace
}  // namespace tavelor::dialect::test
