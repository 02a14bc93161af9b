// SPDX-License-Identifier: MIT
// clsNumeradores: counters on their way through the texts of statements, by both locales.
#include "tests/classes/numeradores.hpp"

namespace tavelor {
namespace {

using test::Family;
using test::kFamilies;
using test::Triple;

class CountersByLocale : public testing::TestWithParam<const char*>, protected test::NumberingShop {
 protected:
  CountersByLocale() : NumberingShop(test::settingsOf(GetParam())) {}
};
INSTANTIATE_TEST_SUITE_P(, CountersByLocale, testing::Values("es-ES", "neutral"),
                         [](const auto& locale) {
                           return std::string(locale.param) == "es-ES" ? "Spanish" : "Neutral";
                         });

TEST_P(CountersByLocale, EveryFamilyIsReadAsItWasWritten) {
  double expected = 1;
  for (const Family& family : kFamilies) {
    write(family.word, {expected, 26000000 + expected, 999999999999000 + expected});
    EXPECT_EQ(next(family.word),
              (Triple{expected + 1, 26000001 + expected, 999999999999001 + expected}))
        << family.word;
    ++expected;
  }
  EXPECT_EQ(shop.value("SELECT Orden_b FROM Numeradores"), Variant(26000008.0));
}

TEST_P(CountersByLocale, SeedsDoNotDependOnTheLocale) {
  EXPECT_EQ(next("Facturas").a, 260000000);
  write("Albaranes", {0, 0, 0});
  EXPECT_EQ(stored("Albaran_"), "260000, 2600000, 26000000");
  addPeriod("002", "2025");
  EXPECT_EQ(nextOf("Tickets", "2025").a, 250000000);
}

TEST_P(CountersByLocale, AFractionIsWrittenWithTheLocalesSignAndReadBack) {
  write("Facturas", {1.5, -2.25, 3});
  const bool spanish = std::string(GetParam()) == "es-ES";
  EXPECT_EQ(shop.statements().back(),
            std::string("UPDATE Numeradores SET Factura_a ='") + (spanish ? "1,5" : "1.5") +
                "' , Factura_b ='" + (spanish ? "-2,25" : "-2.25") +
                "' , Factura_c ='3'  WHERE (((Numeradores.Codigo) ='001'));");
  EXPECT_EQ(next("Facturas"), (Triple{2.5, -1.25, 4}));
}

TEST_P(CountersByLocale, ANegativeCounterCountsUpThroughZero) {
  write("Facturas", {-2, -1, 0});
  EXPECT_EQ(next("Facturas"), (Triple{-1, 0, 1}));
}

TEST_P(CountersByLocale, DigitsArePlainUpToFifteen) {
  write("Facturas", {999999999999999, 100000000000000, -999999999999999});
  EXPECT_EQ(shop.statements().back(),
            "UPDATE Numeradores SET Factura_a ='999999999999999' , Factura_b ='100000000000000' , "
            "Factura_c ='-999999999999999'  WHERE (((Numeradores.Codigo) ='001'));");
  EXPECT_EQ(next("Facturas"), (Triple{1e15, 100000000000001, -999999999999998}));
}

// The text of a number has 15 digits. No shop gets there; what is read back is no worse than what
// the statement says.
TEST_P(CountersByLocale, BeyondFifteenDigitsTheTextRoundsAndBeyond2To53OneMoreIsNoMore) {
  write("Facturas", {9007199254740992, 1e15, 1e300});
  const bool spanish = std::string(GetParam()) == "es-ES";
  EXPECT_EQ(shop.statements().back(),
            std::string("UPDATE Numeradores SET Factura_a ='9") + (spanish ? "," : ".") +
                "00719925474099E+15' , Factura_b ='1E+15' , Factura_c ='1E+300'  WHERE "
                "(((Numeradores.Codigo) ='001'));");
  EXPECT_EQ(next("Facturas"), (Triple{9007199254740991, 1e15 + 1, 1e300}));
  set("Factura_a = 9007199254740992");
  EXPECT_EQ(next("Facturas").a, 9007199254740992);
}

}  // namespace
}  // namespace tavelor
