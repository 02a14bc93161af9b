// SPDX-License-Identifier: MIT
// Money at its limits: whatever gives an amount gives one within them, or raises 6.
#include <cctype>

#include <gtest/gtest.h>

#include "tests/sqlite/dialect_shop.hpp"

namespace tavelor::engine::test {
namespace {

class MoneyAtItsLimits : public DialectBehaviour {
 protected:
  MoneyAtItsLimits() {
    run("DELETE FROM Tarifas");
    run("INSERT INTO Tarifas (Codigo, Precio) VALUES ('most', 922337203685477.5807)");
    run("INSERT INTO Tarifas (Codigo, Precio) VALUES ('least', -922337203685477.5808)");
    run("INSERT INTO Tarifas (Codigo, Precio) VALUES ('step', 0.0001)");
    run("INSERT INTO Tarifas (Codigo, Precio) VALUES ('one', 1)");
  }

  /// An expression of the amounts M (the most), L (the least), S (a step) and O (one), to the last
  /// decimal, or the number of the error.
  std::string of(std::string_view expression) {
    const std::string text = "SELECT " + std::string(expression) +
                             " FROM Tarifas AS TM, Tarifas AS TL, Tarifas AS TS, Tarifas AS T1 "
                             "WHERE TM.Codigo = 'most' AND TL.Codigo = 'least' AND TS.Codigo = "
                             "'step' AND T1.Codigo = 'one'";
    std::string statement;
    for (std::size_t i = 0; i < text.size(); ++i) {
      const auto isLetter = [](char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0; };
      const bool alone =
          (i == 0 || !isLetter(text[i - 1])) && (i + 1 == text.size() || !isLetter(text[i + 1]));
      switch (alone ? text[i] : ' ') {
        case 'M':
          statement += "TM.Precio";
          break;
        case 'L':
          statement += "TL.Precio";
          break;
        case 'S':
          statement += "TS.Precio";
          break;
        case 'O':
          statement += "T1.Precio";
          break;
        default:
          statement += text[i];
      }
    }
    return amountOf(statement);
  }
  std::string amountOf(std::string_view text) {
    std::string amount;
    const std::int32_t number = errorNumber([&] {
      const RowStore rows = fetched(plans, Statement::trusted(text));
      amount = rows.type(0) == ColumnType::kCurrency ? std::to_string(rows.integer(0, 0))
                                                     : "no money but " + first(text);
    });
    return number != 0 ? "error " + std::to_string(number) : amount;
  }

  const std::string most = "9223372036854775807";
  const std::string least = "-9223372036854775808";
  const std::string overflow = "error 6";
};

TEST_F(MoneyAtItsLimits, ConversionTakesTheLimitsAndNothingBeyond) {
  EXPECT_EQ(of("CCur(922337203685477.5807)"), most);
  EXPECT_EQ(of("CCur(-922337203685477.5808)"), least);
  EXPECT_EQ(of("CCur('922.337.203.685.477,5807')"), most);
  EXPECT_EQ(of("CCur('-922337203685477,5808')"), least);
  EXPECT_EQ(of("CCur(M)"), most);
  EXPECT_EQ(of("CCur(L)"), least);
  for (const char* beyond :
       {"922337203685477.5808", "-922337203685477.5809", "'922337203685477,5808'",
        "'-922337203685477,5809'", "922337203685477.58075", "1e15", "-1e15", "CDbl(M) * 2"}) {
    EXPECT_EQ(of("CCur(" + std::string(beyond) + ")"), overflow) << beyond;
  }
  EXPECT_EQ(of("CCur(-&H10)"), "-160000");
  EXPECT_EQ(of("CCur(-(-2.5))"), "25000");
}

TEST_F(MoneyAtItsLimits, SumsAndDifferencesDoNotGoBeyond) {
  EXPECT_EQ(of("M + S"), overflow);
  EXPECT_EQ(of("S + M"), overflow);
  EXPECT_EQ(of("M + 1"), overflow);
  EXPECT_EQ(of("M - (-S)"), overflow);
  EXPECT_EQ(of("L - S"), overflow);
  EXPECT_EQ(of("L - 1"), overflow);
  EXPECT_EQ(of("L + (-S)"), overflow);
  EXPECT_EQ(of("M - L"), overflow);
  EXPECT_EQ(of("M + S - S"), overflow) << "on the way too";
  EXPECT_EQ(of("M + 0"), most);
  EXPECT_EQ(of("L - 0"), least);
  EXPECT_EQ(of("M + L"), "-1");
  EXPECT_EQ(of("M + L + S"), "0");
  EXPECT_EQ(of("M - O - M"), "-10000");
}

TEST_F(MoneyAtItsLimits, TheContraryAndTheSizeOfTheLeastAreNone) {
  EXPECT_EQ(of("-L"), overflow);
  EXPECT_EQ(of("Abs(L)"), overflow);
  EXPECT_EQ(of("Abs(M)"), most);
  EXPECT_EQ(of("Abs(-S)"), "1");
  EXPECT_EQ(of("-S"), "-1");
  EXPECT_EQ(of("- - S"), "1");
  EXPECT_EQ(of("-M"), least) << "the engine's numbers hold every 1,250th of them there";
}

TEST_F(MoneyAtItsLimits, ProductsDoNotGoBeyond) {
  EXPECT_EQ(of("M * O"), most);
  EXPECT_EQ(of("L * 1"), least);
  EXPECT_EQ(of("M * 2"), overflow);
  EXPECT_EQ(of("L * -1"), overflow);
  EXPECT_EQ(of("L * (-O)"), overflow);
  EXPECT_EQ(of("M * (O + S)"), overflow);
  EXPECT_EQ(of("S * S"), "0");
  EXPECT_EQ(of("M * 0"), "0");
}

TEST_F(MoneyAtItsLimits, RoundingDoesNotGoBeyond) {
  EXPECT_EQ(of("Int(M)"), "9223372036854770000");
  EXPECT_EQ(of("Fix(M)"), "9223372036854770000");
  EXPECT_EQ(of("Fix(L)"), "-9223372036854770000");
  EXPECT_EQ(of("Int(L)"), overflow);
  EXPECT_EQ(of("Round(M, 4)"), most);
  EXPECT_EQ(of("Round(L, 30)"), least);
  EXPECT_EQ(of("Round(M, 3)"), overflow);
  EXPECT_EQ(of("Round(M, 1)"), overflow);
  EXPECT_EQ(of("Round(M)"), overflow);
  EXPECT_EQ(of("Round(L, 3)"), overflow);
  EXPECT_EQ(of("Round(L, 2)"), least) << "58 hundredths: as a number of the engine the same";
  EXPECT_EQ(of("Round(S, 2)"), "0");
  EXPECT_EQ(of("Round(O + O * S * 25000, 1)"), "35000");
}

TEST_F(MoneyAtItsLimits, BranchesPassThemOn) {
  EXPECT_EQ(of("IIf(1 = 1, M, S)"), most);
  EXPECT_EQ(of("IIf(1 = 0, M, L)"), least);
  EXPECT_EQ(of("Nz(M, 0)"), most);
  EXPECT_EQ(of("Nz(Null, L)"), least);
  EXPECT_EQ(of("Nz(M, 0) + S"), overflow);
}

TEST_F(MoneyAtItsLimits, TheyCompareAsAmounts) {
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Precio = 922337203685477.5807"), "most");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Precio = -922337203685477.5808"), "least");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Precio > 922337203685477.5807"), "none");
  EXPECT_EQ(first("SELECT Codigo FROM Tarifas WHERE Precio < '-922337203685477,5808'"), "none");
  EXPECT_EQ(errorNumber([&] {
              first("SELECT Codigo FROM Tarifas WHERE Precio < CCur(922337203685477.5808)");
            }),
            errors::kOverflow);
  EXPECT_EQ(errorNumber([&] { first("SELECT Codigo FROM Tarifas WHERE -Precio > 0"); }),
            errors::kOverflow);
}

TEST_F(MoneyAtItsLimits, TotalsMayPassBeyondAndNotEndThere) {
  EXPECT_EQ(amountOf("SELECT Sum(Precio) FROM Tarifas WHERE Codigo = 'most'"), most);
  EXPECT_EQ(amountOf("SELECT Sum(Precio) FROM Tarifas WHERE Codigo = 'least'"), least);
  EXPECT_EQ(amountOf("SELECT Sum(Precio) FROM Tarifas WHERE Precio > 0"), overflow);
  EXPECT_EQ(amountOf("SELECT Sum(Precio) FROM Tarifas WHERE Codigo In ('most', 'step')"), overflow);
  EXPECT_EQ(amountOf("SELECT Sum(-Precio) FROM Tarifas WHERE Codigo = 'least'"), overflow);
  EXPECT_EQ(amountOf("SELECT Sum(Precio) FROM Tarifas"), "10000");
  EXPECT_EQ(amountOf("SELECT Avg(Precio) FROM Tarifas WHERE Codigo = 'most'"), most);
  EXPECT_EQ(amountOf("SELECT Avg(Precio) FROM Tarifas WHERE Codigo = 'least'"), least);
  run("INSERT INTO Tarifas (Codigo, Precio) VALUES ('more', 922337203685477.5807)");
  EXPECT_EQ(amountOf("SELECT Avg(Precio) FROM Tarifas WHERE Codigo Like 'mo*'"), most)
      << "the mean is within them";
  EXPECT_EQ(amountOf("SELECT Sum(Precio) FROM Tarifas WHERE Codigo Like 'mo*'"), overflow);
  EXPECT_EQ(amountOf("SELECT Max(Precio) FROM Tarifas"), most);
  EXPECT_EQ(amountOf("SELECT Min(Precio) FROM Tarifas"), least);
}

TEST_F(MoneyAtItsLimits, AColumnTakesThemAndNothingBeyond) {
  const auto stores = [&](const std::string& expression) {
    return error("UPDATE Tarifas SET Precio = " + expression + " WHERE Codigo = 'one'");
  };
  EXPECT_EQ(stores("922337203685477.5807"), 0);
  EXPECT_EQ(stores("-922337203685477.5808"), 0);
  EXPECT_EQ(stores("922337203685477.5808"), errors::kMultipleStep);
  EXPECT_EQ(stores("-922337203685477.5809"), errors::kMultipleStep);
  EXPECT_EQ(stores("- '922337203685477,6'"), 0) << "a text behind a sign is a DOUBLE";
  EXPECT_EQ(stores("-Precio"), errors::kOverflow);
  EXPECT_EQ(amountOf("SELECT Precio FROM Tarifas WHERE Codigo = 'one'"), least) << "as it was";
}

}  // namespace
}  // namespace tavelor::engine::test
