// SPDX-License-Identifier: MIT
// Values from outside: what stays in its literal runs, anything else is a syntax error.
#include <gmock/gmock.h>

#include "tests/dialect/support.hpp"

namespace tavelor::dialect::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

Statement inQuotes(std::string_view text) {
  Statement statement("SELECT Banco FROM Bancos WHERE Codigo = '");
  return statement << spliced(text) << "'";
}
Statement bare(std::string_view text) {
  Statement statement("SELECT Banco FROM Bancos WHERE Orden = ");
  return statement << spliced(text) << " AND Activo <> 0";
}
Literals literalsOf(const Statement& statement) {
  Literals literals;
  translate(statement, shop(), sqliteWriter(), literals);
  return literals;
}

TEST(QuotedValue, IsLiftedAsItStands) {
  EXPECT_EQ(sqlOf(inQuotes("00012")),
            "SELECT Banco, Codigo FROM Bancos WHERE Codigo = ?1 ORDER BY rowid");
  EXPECT_THAT(literalsOf(inQuotes("00012")), ElementsAre("00012"));
  EXPECT_THAT(literalsOf(inQuotes("")), ElementsAre(""));
  EXPECT_THAT(literalsOf(inQuotes("x]; --#*?\\\"")), ElementsAre("x]; --#*?\\\""));
}

TEST(QuotedValue, KeepsADoubledQuoteAsOne) {
  EXPECT_THAT(literalsOf(inQuotes("O''Hara")), ElementsAre("O'Hara"));
  EXPECT_THAT(literalsOf(inQuotes("''")), ElementsAre("'"));
}

TEST(QuotedValue, ThatEndsItsQuotationIsASyntaxErrorWithItsPlace) {
  const Error error = errorOf(inQuotes("O'Hara"));
  EXPECT_EQ(error.number(), errors::kSyntax);
  EXPECT_EQ(error.description(),
            "Syntax error in statement: the value at column 42 ends its quotation: O'Hara");
  EXPECT_EQ(error.offset(), 41);
  EXPECT_EQ(error.statement(), inQuotes("O'Hara").text());
}

TEST(QuotedValue, NeverBecomesAPartOfTheStatement) {
  for (const std::string_view hostile :
       {"'; DELETE FROM Bancos; --", "' or '1'='1", "x' UNION SELECT Codigo FROM Bancos WHERE '1",
        "'", "'''", "a''b'c", "' & Banco & '"}) {
    EXPECT_EQ(errorOf(inQuotes(hostile)).number(), errors::kSyntax) << hostile;
  }
}

TEST(QuotedValue, DoesNotPairItsLastQuoteWithTheOneBehindIt) {
  EXPECT_EQ(errorOf(inQuotes("x'")).number(), errors::kSyntax);
  Statement two("SELECT Banco FROM Bancos WHERE Codigo = '");
  two << spliced("x'") << spliced("'y") << "'";
  EXPECT_EQ(errorOf(two).number(), errors::kSyntax);
}

TEST(QuotedValue, DoesNotPairItsFirstQuoteWithTheOneBeforeIt) {
  Statement statement("SELECT Banco FROM Bancos WHERE Codigo = 'x'");
  statement << spliced("' or ''='");
  EXPECT_EQ(errorOf(statement).number(), errors::kSyntax);
}

TEST(QuotedValue, RefusesNulBytesAndBrokenUtf8) {
  EXPECT_THAT(errorOf(inQuotes(std::string_view("a\0b", 3))).description(), HasSubstr("NUL byte"));
  EXPECT_THAT(errorOf(inQuotes("caf\xe9")).description(), HasSubstr("no valid UTF-8"));
  EXPECT_THAT(errorOf(inQuotes("\xc3")).description(), HasSubstr("no valid UTF-8"));
  EXPECT_EQ(errorOf(inQuotes("café ñ €")).number(), 0);
}

TEST(QuotedValue, OfAMegabytePassesOrFailsAsAShortOne) {
  const std::string big(1 << 20, 'x');
  EXPECT_EQ(literalsOf(inQuotes(big)).at(0), big);
  EXPECT_LT(errorOf(inQuotes(big + "'")).description().size(), 200U);
}

TEST(QuotedValue, InDoubleQuotesMayHoldSingleOnes) {
  Statement statement("SELECT Banco FROM Bancos WHERE Codigo = \"");
  statement << spliced("d'Or") << "\"";
  EXPECT_THAT(literalsOf(statement), ElementsAre("d'Or"));
}

TEST(QuotedValue, SharesItsLiteralWithConstantTextAndOtherValues) {
  Statement statement("SELECT Banco FROM Bancos WHERE Codigo = 'a");
  statement << spliced("1") << "-" << spliced("2") << " '";
  EXPECT_THAT(literalsOf(statement), ElementsAre("a1-2 "));
}

TEST(BareValue, IsOneNumber) {
  EXPECT_EQ(sqlOf(bare("7")),
            "SELECT Banco, Codigo FROM Bancos WHERE Orden = ?1 AND Activo <> ?2 ORDER BY rowid");
  for (const std::string_view number : {"7", "-3", "+3", "12.5", ".5", "1E-05", "1e3", " 7 "}) {
    EXPECT_EQ(errorOf(bare(number)).number(), 0) << number;
  }
}

TEST(BareValue, ThatIsNoNumberIsASyntaxError) {
  for (const std::string_view hostile :
       {"",   " ",       "12,5",  "1 or 1=1",   "1)",        "Codigo",     "--1",
        "-",  ".",       "1.2.3", "0x10",       "1;",        "(SELECT 1)", "Verdadero",
        "1e", "[Orden]", "'a",    "'a' or 'b'", "#1/1/2020", "Null"}) {
    EXPECT_EQ(errorOf(bare(hostile)).number(), errors::kSyntax) << hostile;
  }
  EXPECT_EQ(
      errorOf(bare("")).description(),
      "Syntax error in statement: the value at column 40 is empty where a number is expected");
}

TEST(BareValue, MayBringItsOwnDelimiters) {
  EXPECT_THAT(literalsOf(bare("'12'")), ElementsAre("12", "0"));
  Statement statement("SELECT Banco FROM Bancos WHERE Alta = ");
  statement << spliced("#03/05/2026#");
  EXPECT_THAT(literalsOf(statement), ElementsAre("03/05/2026"));
}

TEST(BareValue, MayBeTrueOrFalse) {
  EXPECT_EQ(sqlOf(bare("True")),
            "SELECT Banco, Codigo FROM Bancos WHERE Orden = -1 AND Activo <> ?1 ORDER BY rowid");
}

TEST(BareValue, DoesNotGrowTogetherWithItsNeighbours) {
  struct Neighbours {
    Statement::Constant before, behind;
  };
  for (const auto& [before, behind] : {Neighbours{"Orden", " = 1"},
                                       {"Orden = 1", ""},
                                       {"Orden = ", "5"},
                                       {"Orden = ", ".5"},
                                       {"Orden = 'a'", ""},
                                       {"Orden = ", "'a'"},
                                       {"Bancos.", " = 1"}}) {
    Statement statement("SELECT Banco FROM Bancos WHERE ");
    statement << before << spliced("7") << behind;
    EXPECT_EQ(errorOf(statement).number(), errors::kSyntax) << statement.text();
  }
  Statement two("SELECT Banco FROM Bancos WHERE Orden = ");
  two << spliced("7") << spliced("8");
  EXPECT_EQ(errorOf(two).number(), errors::kSyntax);
}

TEST(BareValue, MayTouchAWordThatNoNumberContinues) {
  Statement statement("SELECT Banco FROM Bancos WHERE Orden = ");
  statement << spliced("7") << "and Activo <> 0";
  EXPECT_EQ(errorOf(statement).number(), 0);
}

TEST(DateValue, StaysBetweenItsMarks) {
  Statement good("SELECT Banco FROM Bancos WHERE Alta >= #");
  good << spliced("03/05/2026") << "#";
  EXPECT_THAT(literalsOf(good), ElementsAre("03/05/2026"));
  for (const std::string_view hostile :
       {"", "pronto", "03/05/2026# or #1/1/2000", "1#", "13/45/2026"}) {
    Statement bad("SELECT Banco FROM Bancos WHERE Alta >= #");
    bad << spliced(hostile) << "#";
    EXPECT_EQ(errorOf(bad).number(), errors::kSyntax) << hostile;
  }
}

TEST(NameValue, IsRefused) {
  Statement statement("SELECT [");
  statement << spliced("Banco") << "] FROM Bancos";
  EXPECT_THAT(errorOf(statement).description(), HasSubstr("stands in a name"));
}

}  // namespace
}  // namespace tavelor::dialect::test
