// SPDX-License-Identifier: MIT
// What is refused, with its place and the nearest name.
#include <gmock/gmock.h>

#include "tests/dialect/support.hpp"

namespace tavelor::dialect::test {
namespace {

using testing::HasSubstr;

struct Refusal {
  std::string text;
  std::int32_t number;
  std::int64_t offset;
  std::string says;
};

void PrintTo(const Refusal& refusal, std::ostream* out) {
  *out << refusal.text;
}

class Refused : public testing::TestWithParam<Refusal> {};

TEST_P(Refused, WithNumberPlaceAndSentence) {
  const Error error = errorOf(GetParam().text);
  EXPECT_EQ(error.number(), GetParam().number) << error.description();
  EXPECT_EQ(error.offset(), GetParam().offset) << error.description();
  EXPECT_THAT(error.description(), HasSubstr(GetParam().says));
  EXPECT_EQ(error.statement(), GetParam().text);
}

TEST(TooDeep, SixteenOpenPlacesRunAndOneMoreIsRefused) {
  struct Nest {
    std::string open;
    std::string close;
  };
  for (const Nest& nest :
       {Nest{"(Orden + ", ")"}, Nest{"-", ""}, Nest{"Abs(", ")"}, Nest{"NOT ", ""}}) {
    const auto nested = [&](int times) {
      std::string text = "SELECT ";
      for (int i = 0; i < times; ++i) text += nest.open;
      text += "Orden";
      for (int i = 0; i < times; ++i) text += nest.close;
      return text + " FROM Bancos";
    };
    EXPECT_THAT(sqlOf(nested(16)), HasSubstr("Orden")) << nested(16);
    EXPECT_THAT(errorOf(nested(17)).description(), HasSubstr("nest too deeply")) << nested(17);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Syntax, Refused,
    testing::Values(
        Refusal{"", errors::kSyntax, 0, "SELECT, INSERT, UPDATE or DELETE is expected"},
        Refusal{"PRAGMA foreign_keys = off", errors::kSyntax, 0, "not PRAGMA"},
        Refusal{"ATTACH 'x' AS y", errors::kSyntax, 0, "not ATTACH"},
        Refusal{"SELECT Banco FROM Bancos; DELETE FROM Bancos", errors::kSyntax, 26,
                "the end of the statement is expected at column 27, not DELETE"},
        Refusal{"SELECT Banco FROM Bancos;;", errors::kSyntax, 25, "the end of the statement"},
        Refusal{"SELECT Banco FROM", errors::kSyntax, 17, "where the statement ends"},
        Refusal{"SELECT Banco\nFROM Bancos WHERE\n  )", errors::kSyntax, 33, "line 3, column 3"},
        Refusal{"SELECT (Banco FROM Bancos", errors::kSyntax, 14, ") is expected"},
        Refusal{"SELECT Banco FROM Bancos WHERE Codigo = 'abc", errors::kSyntax, 40,
                "never closed"},
        Refusal{"SELECT [Banco FROM Bancos", errors::kSyntax, 7, "never closed"},
        Refusal{"SELECT [] FROM Bancos", errors::kSyntax, 7, "empty name"},
        Refusal{"SELECT Banco FROM Bancos WHERE Alta = #1/1/2026", errors::kSyntax, 38,
                "never closed"},
        Refusal{"SELECT Banco FROM Bancos WHERE Orden = ?", errors::kSyntax, 39, "without meaning"},
        Refusal{"SELECT Banco FROM Bancos -- x", errors::kSyntax, 25, "the end of the statement"},
        Refusal{"SELECT Banco FROM Bancos WHERE Codigo IS 'a'", errors::kSyntax, 41, "NULL"},
        Refusal{"SELECT Banco FROM Bancos WHERE Orden BETWEEN 1", errors::kSyntax, 46, "AND"},
        Refusal{"SELECT Banco FROM Bancos ORDER BY 2", errors::kSyntax, 34, "no column 2"},
        Refusal{"SELECT Banco FROM Bancos WHERE EXISTS (", errors::kSyntax, 39,
                "SELECT is expected at column 40, where the statement ends"},
        Refusal{"SELECT Banco FROM Bancos WHERE EXISTS (Banco FROM Bancos)", errors::kSyntax, 39,
                "SELECT is expected at column 40, not Banco"},
        Refusal{"SELECT Banco FROM Bancos HAVING Orden > 1", errors::kSyntax, 38,
                "HAVING needs a GROUP BY or an aggregate"},
        Refusal{"SELECT * ", errors::kSyntax, 7, "* without a table"},
        Refusal{"SELECT X.* FROM Bancos", errors::kSyntax, 7, "not in FROM"},
        Refusal{"SELECT Sum(*) FROM Bancos", errors::kSyntax, 11, "a * stands"},
        Refusal{"SELECT Banco FROM Bancos WHERE Sum(Orden) > 1", errors::kSyntax, 31,
                "Sum can't stand here"},
        Refusal{"SELECT Sum(Max(Orden)) FROM Bancos", errors::kSyntax, 11, "can't stand here"},
        Refusal{"SELECT Left(Banco) FROM Bancos", errors::kSyntax, 7, "too few arguments"},
        Refusal{"SELECT Trim(Banco, 1) FROM Bancos", errors::kSyntax, 19, "too many arguments"},
        Refusal{"SELECT 1 UNION SELECT 1, 2", errors::kSyntax, 15, "different numbers of columns"},
        Refusal{"INSERT INTO Bancos (Codigo, Banco) VALUES ('a')", errors::kSyntax, 43,
                "1 values for 2 columns"},
        Refusal{"INSERT INTO Bancos (Codigo, codigo) VALUES ('a', 'b')", errors::kSyntax, 28,
                "given twice"},
        Refusal{"INSERT INTO Bancos (Codigo) SELECT 'a', 'b'", errors::kSyntax, 28,
                "not as many columns"},
        Refusal{"UPDATE Bancos SET Banco = 'a', BANCO = 'b'", errors::kSyntax, 31, "set twice"},
        Refusal{"UPDATE Bancos SET WHERE Orden = 1", errors::kSyntax, 18, "a column is expected"},
        Refusal{"SELECT Banco FROM Bancos, Apuntes", errors::kSyntax, 7, "may mean that of Bancos"},
        Refusal{"SELECT Id FROM Apuntes, Apuntes", errors::kSyntax, 24, "stands twice"},
        Refusal{"SELECT Banco FROM Bancos WHERE Codigo IN (SELECT Id, Banco FROM Apuntes)",
                errors::kSyntax, 42, "more than one column"}));

INSTANTIATE_TEST_SUITE_P(
    Names, Refused,
    testing::Values(
        Refusal{"SELECT Codigo FROM Banco", errors::kTableNotFound, 19,
                "Unknown table 'Banco'; did you mean Bancos?"},
        Refusal{"SELECT Codgo FROM Bancos", errors::kMissingParameter, 7,
                "Unknown column 'Codgo' in table Bancos; did you mean Codigo?"},
        Refusal{"SELECT Bancos.Zzzzzzzz FROM Bancos", errors::kMissingParameter, 7,
                "Unknown column 'Zzzzzzzz' in table Bancos"},
        Refusal{"SELECT Banks.Codigo FROM Bancos", errors::kMissingParameter, 7,
                "does not stand in FROM"},
        Refusal{"INSERT INTO Bancos (Codgo) VALUES ('a')", errors::kMissingParameter, 20,
                "did you mean Codigo?"},
        Refusal{"UPDATE Bancos SET Sald = 0", errors::kMissingParameter, 18, "did you mean Saldo?"},
        Refusal{"SELECT Verdadero", errors::kMissingParameter, 7, "Unknown column 'Verdadero'"},
        Refusal{"DELETE Bancos.Nada FROM Bancos", errors::kMissingParameter, 7, "'Nada'"}));

INSTANTIATE_TEST_SUITE_P(
    Types, Refused,
    testing::Values(Refusal{"SELECT Banco FROM Bancos WHERE Codigo = 12",
                            errors::kCriteriaTypeMismatch, 38, "a text meets a number"},
                    Refusal{"SELECT Texto FROM Sueltos WHERE Texto = Numero",
                            errors::kCriteriaTypeMismatch, 38, "a text meets a number"},
                    Refusal{"SELECT Banco FROM Bancos WHERE Codigo = #1/1/2026#",
                            errors::kCriteriaTypeMismatch, 38, "a text meets a date"},
                    Refusal{"SELECT Banco FROM Bancos WHERE Banco", errors::kCriteriaTypeMismatch,
                            31, "a text meets a condition"},
                    Refusal{"SELECT Banco FROM Bancos WHERE Logo = 'a'",
                            errors::kCriteriaTypeMismatch, 36, "bytes"},
                    Refusal{"UPDATE Bancos SET Logo = 'a'", errors::kCriteriaTypeMismatch, 25,
                            "bytes"}));

INSTANTIATE_TEST_SUITE_P(
    Rules, Refused,
    testing::Values(
        Refusal{"CREATE TABLE X (Id LONG)", errors::kSyntax, 0, "by the schema only"},
        Refusal{"drop table Bancos", errors::kSyntax, 0, "by the schema only"},
        Refusal{"SELECT TOP 3 Banco FROM Bancos ORDER BY Banco", errors::kNotSupported, 0,
                "TOP together with ORDER BY"},
        Refusal{"SELECT TOP 3 PERCENT Banco FROM Bancos", errors::kNotSupported, 13, "PERCENT"},
        Refusal{"SELECT Banco FROM Bancos WHERE Activo Xor Orden", errors::kNotSupported, 38,
                "Xor"},
        Refusal{"UPDATE Bancos INNER JOIN Apuntes ON Bancos.Codigo = Apuntes.Banco "
                "SET Orden = 1, Importe = 2",
                errors::kNotSupported, 81, "one table only"},
        Refusal{"DELETE * FROM Bancos, Apuntes", errors::kNotSupported, 7, "one table only"},
        Refusal{"DELETE Bancos.*, Apuntes.* FROM Bancos, Apuntes", errors::kNotSupported, 17,
                "one table only"},
        Refusal{"SELECT DISTINCTROW Bancos.Orden FROM Bancos, Apuntes", errors::kNotSupported, 0,
                "DISTINCTROW over several tables"},
        Refusal{"SELECT X FROM (SELECT 1 AS X) AS T", errors::kNotSupported, 15,
                "in the place of a table"},
        Refusal{"SELECT Trin(Banco) FROM Bancos", errors::kNotSupported, 7,
                "This function is not supported. Trin; did you mean"},
        Refusal{"SELECT load_extension('x')", errors::kNotSupported, 7, "not supported"}));

TEST(Refused, TooManyParenthesesAndTooLongChains) {
  const std::string open(5000, '(');
  EXPECT_THAT(errorOf("SELECT " + open + "1").description(), HasSubstr("too complex"));
  std::string chain = "SELECT 1";
  for (int i = 0; i < 5000; ++i) chain += " + 1";
  EXPECT_THAT(errorOf(chain).description(), HasSubstr("too complex"));
  std::string minus = "SELECT ";
  for (int i = 0; i < 5000; ++i) minus += "- ";
  EXPECT_THAT(errorOf(minus + "1").description(), HasSubstr("too complex"));
  std::string nots = "SELECT Banco FROM Bancos WHERE ";
  for (int i = 0; i < 5000; ++i) nots += "NOT ";
  EXPECT_THAT(errorOf(nots + "Activo").description(), HasSubstr("too complex"));
}

TEST(Refused, ALongListIsNotTooComplex) {
  std::string list = "SELECT Banco FROM Bancos WHERE Orden IN (0";
  for (int i = 1; i < 5000; ++i) list += ", " + std::to_string(i);
  EXPECT_EQ(errorOf(list + ")").number(), 0);
}

}  // namespace
}  // namespace tavelor::dialect::test
