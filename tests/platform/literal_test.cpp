// SPDX-License-Identifier: MIT
// Values as the dialect writes them.
#include "tavelor/platform/literal.hpp"

#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include <gtest/gtest.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/variant.hpp"
#include "tests/platform/expect_error.hpp"

namespace tavelor {
namespace {

TEST(Literal, ATextStandsBetweenQuotesAndItsOwnAreDoubled) {
  EXPECT_EQ(sqlText("L'Hospitalet").text(), "'L''Hospitalet'");
  EXPECT_EQ(sqlText("O'Brien's \"x\"").text(), "'O''Brien''s \"x\"'");
  EXPECT_EQ(sqlText("").text(), "''");
  EXPECT_EQ(sqlText("Null").text(), "'Null'");
  EXPECT_EQ(sqlLiteral("L'Hospitalet").text(), "'L''Hospitalet'");
}

TEST(Literal, JoinsWithTextForAFilter) {
  const std::string town = "L'Hospitalet";
  EXPECT_EQ("Poblacion = " + sqlText(town), "Poblacion = 'L''Hospitalet'");
  EXPECT_EQ("Poblacion = " + sqlText(town) + " AND Saldo > " + sqlLiteral(12.5),
            "Poblacion = 'L''Hospitalet' AND Saldo > 12.5");
  const std::string whole = sqlText(town);
  EXPECT_EQ(whole, "'L''Hospitalet'");
}

TEST(Literal, ANumberHasADecimalPointAndNoExponent) {
  EXPECT_EQ(sqlLiteral(1.5).text(), "1.5");
  EXPECT_EQ(sqlLiteral(-0.1).text(), "-0.1");
  EXPECT_EQ(sqlLiteral(1e15).text(), "1000000000000000");
  EXPECT_EQ(sqlLiteral(1e-10).text(), "0.0000000001");
  EXPECT_EQ(sqlLiteral(std::int16_t{-7}).text(), "-7");
  EXPECT_EQ(sqlLiteral(std::numeric_limits<std::int64_t>::min()).text(), "-9223372036854775808");
  EXPECT_EQ(sqlLiteral(std::size_t{7}).text(), "7");
}

TEST(Literal, ANumberThatIsNotFiniteRaisesOverflow) {
  EXPECT_EQ(raisedBy([] { sqlLiteral(std::nan("")); }), errors::kOverflow);
  EXPECT_EQ(raisedBy([] { sqlLiteral(-HUGE_VAL); }), errors::kOverflow);
}

TEST(Literal, MoneyKeepsItsFourDecimals) {
  EXPECT_EQ(sqlLiteral(Currency::fromScaled(12'345'678)).text(), "1234.5678");
  EXPECT_EQ(sqlLiteral(Currency::fromScaled(-15'000)).text(), "-1.5");
  EXPECT_EQ(sqlLiteral(Currency()).text(), "0");
  EXPECT_EQ(sqlLiteral(Currency::fromScaled(std::numeric_limits<std::int64_t>::max())).text(),
            "922337203685477.5807");
}

TEST(Literal, ADateHasItsTimeWhereThereIsOne) {
  EXPECT_EQ(sqlLiteral(Date::of(2026, 11, 20)).text(), "#11/20/2026#");
  EXPECT_EQ(sqlLiteral(Date::of({2026, 1, 2, 3, 4, 5})).text(), "#01/02/2026 03:04:05#");
  EXPECT_EQ(raisedBy([] { sqlLiteral(Date(1e9)); }), errors::kOverflow);
}

TEST(Literal, AVariantIsWrittenAsItsType) {
  EXPECT_EQ(sqlLiteral(Variant(true)).text(), "True");
  EXPECT_EQ(sqlLiteral(false).text(), "False");
  EXPECT_EQ(sqlLiteral(Variant(Null{})).text(), "Null");
  EXPECT_EQ(sqlLiteral(Variant()).text(), "''");
  EXPECT_EQ(sqlLiteral(Variant(std::int32_t{5})).text(), "5");
  EXPECT_EQ(sqlLiteral(Variant(2.25F)).text(), "2.25");
  EXPECT_EQ(sqlLiteral(Variant("d'Or")).text(), "'d''Or'");
  EXPECT_EQ(sqlLiteral(Variant(Date::of(2026, 2, 1))).text(), "#02/01/2026#");
  EXPECT_EQ(raisedBy([] { sqlLiteral(Variant(Bytes(3))); }), errors::kTypeMismatch);
}

}  // namespace
}  // namespace tavelor
