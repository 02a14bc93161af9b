// SPDX-License-Identifier: MIT
// Numbers as text, text as numbers, and rounding on decimal digits.
#include "tavelor/platform/number_text.hpp"

#include <array>
#include <cmath>
#include <cstdio>
#include <limits>
#include <optional>
#include <random>
#include <string>

#include <gtest/gtest.h>

#include "tavelor/platform/locale.hpp"
#include "tests/platform/expect_error.hpp"
#include "tests/platform/locales.hpp"

namespace tavelor {
namespace {

using test::es;
using test::neutral;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(PlainNumber, UsesTheDecimalSignOfTheLocaleAndNoGrouping) {
  EXPECT_EQ(plainNumber(1234567.5, es()), "1234567,5");
  EXPECT_EQ(plainNumber(1234567.5, neutral()), "1234567.5");
  EXPECT_EQ(plainNumber(-0.25, es()), "-0,25");
}

TEST(PlainNumber, WholeNumbersHaveNoDecimals) {
  EXPECT_EQ(plainNumber(0, es()), "0");
  EXPECT_EQ(plainNumber(-0.0, es()), "0");
  EXPECT_EQ(plainNumber(42, es()), "42");
  EXPECT_EQ(plainNumber(-2147483648.0, es()), "-2147483648");
}

TEST(PlainNumber, ShowsAtMostFifteenDigits) {
  EXPECT_EQ(plainNumber(0.1 + 0.2, es()), "0,3");
  EXPECT_EQ(plainNumber(1.0 / 3, es()), "0,333333333333333");
  EXPECT_EQ(plainNumber(2.0 / 3, es()), "0,666666666666667");
  EXPECT_EQ(plainNumber(100.0 / 3, es()), "33,3333333333333");
  EXPECT_EQ(plainNumber(0.99999999999999994, es()), "1");
  EXPECT_EQ(plainNumber(123456789012345.6, es()), "123456789012346");
}

TEST(PlainNumber, BecomesExponentFormFromTenToTheFifteenth) {
  EXPECT_EQ(plainNumber(999999999999999, es()), "999999999999999");
  EXPECT_EQ(plainNumber(1e15, es()), "1E+15");
  EXPECT_EQ(plainNumber(-1.5e15, es()), "-1,5E+15");
  EXPECT_EQ(plainNumber(999999999999999.9, es()), "1E+15");
  EXPECT_EQ(plainNumber(1.7976931348623157e308, neutral()), "1.79769313486232E+308");
}

TEST(PlainNumber, BecomesExponentFormBeyondFifteenDecimals) {
  EXPECT_EQ(plainNumber(0.0001, es()), "0,0001");
  EXPECT_EQ(plainNumber(1e-15, es()), "0,000000000000001");
  EXPECT_EQ(plainNumber(1e-16, es()), "1E-16");
  EXPECT_EQ(plainNumber(0.0123456789012345, es()), "1,23456789012345E-02");
  EXPECT_EQ(plainNumber(5e-324, neutral()), "4.94065645841247E-324");
}

TEST(PlainNumber, NumbersThatAreNotFiniteAreWords) {
  EXPECT_EQ(plainNumber(std::nan(""), es()), "NaN");
  EXPECT_EQ(plainNumber(kInfinity, es()), "Infinity");
  EXPECT_EQ(plainNumber(-kInfinity, es()), "-Infinity");
}

TEST(PlainNumber, ShowsTheFifteenDigitsOfEveryNumber) {
  // The C library's own 15 digits are the measure; it prints a point, and so does this locale.
  const auto expected = [](double value) {
    std::array<char, 64> buffer{};
    std::snprintf(buffer.data(), buffer.size(), "%.15g", value);
    return std::string(buffer.data());
  };
  std::mt19937_64 random(20261121);
  std::uniform_int_distribution<std::int64_t> digits(-999'999'999'999, 999'999'999'999);
  std::uniform_int_distribution<int> exponent(0, 8);
  std::uniform_int_distribution<int> steps(-40, 40);
  for (int i = 0; i < 200'000; ++i) {
    double value = static_cast<double>(digits(random)) / std::pow(10.0, exponent(random));
    if (std::fabs(value) < 1e-4) continue;  // there the C library turns to exponents
    // Some units in the last place away, as a calculation leaves it.
    for (int step = steps(random); step != 0; step += step < 0 ? 1 : -1) {
      value = std::nextafter(value, step < 0 ? -HUGE_VAL : HUGE_VAL);
    }
    const std::string wanted = expected(value);
    if (wanted.size() - wanted.find('.') > 16) continue;  // more decimals than the plain form has
    ASSERT_EQ(plainNumber(value, neutral()), wanted);
  }
}

TEST(SqlNumber, HasAPointWhateverTheLocaleAndNoTrailingZeros) {
  EXPECT_EQ(sqlNumber(1.5), "1.5");
  EXPECT_EQ(sqlNumber(-1234.25), "-1234.25");
  EXPECT_EQ(sqlNumber(0), "0");
  EXPECT_EQ(sqlNumber(-0.0), "0");
  EXPECT_EQ(sqlNumber(7), "7");
}

TEST(SqlNumber, RoundsHalvesAwayFromZeroOnTheDigits) {
  EXPECT_EQ(sqlNumber(1.0000005), "1.000001");
  EXPECT_EQ(sqlNumber(-1.0000005), "-1.000001");
  EXPECT_EQ(sqlNumber(1.005, 2), "1.01");
  EXPECT_EQ(sqlNumber(0.0000004), "0");
  EXPECT_EQ(sqlNumber(-0.0000004), "0");
  EXPECT_EQ(sqlNumber(0.0000005), "0.000001");
  EXPECT_EQ(sqlNumber(2.5, 0), "3");
  EXPECT_EQ(sqlNumber(9.9999999), "10");
  EXPECT_EQ(sqlNumber(99.5, 0), "100");
}

TEST(SqlNumber, NeverWritesAnExponent) {
  EXPECT_EQ(sqlNumber(1e15), "1000000000000000");
  EXPECT_EQ(sqlNumber(1.5e20), "150000000000000000000");
  EXPECT_EQ(sqlNumber(1e-7, 10), "0.0000001");
  EXPECT_EQ(sqlNumber(1e300).size(), 301U);
}

TEST(SqlNumber, RaisesOverflowForWhatIsNotFinite) {
  EXPECT_EQ(raisedBy([] { sqlNumber(kInfinity); }), 6);
  EXPECT_EQ(raisedBy([] { sqlNumber(std::nan("")); }), 6);
}

TEST(ParseNumber, ReadsTheDecimalAndThousandsSignsOfTheLocale) {
  EXPECT_EQ(parseNumber("1,5", es()), 1.5);
  EXPECT_EQ(parseNumber("1.500", es()), 1500);
  EXPECT_EQ(parseNumber("1.025", es()), 1025);
  EXPECT_EQ(parseNumber("1.234.567,89", es()), 1234567.89);
  EXPECT_EQ(parseNumber("166,386", es()), 166.386);
  EXPECT_EQ(parseNumber("166,386", neutral()), 166386);
  EXPECT_EQ(parseNumber("0,6", neutral()), 6);
  EXPECT_EQ(parseNumber("1.5", neutral()), 1.5);
}

TEST(ParseNumber, ThousandsSignsMayStandAnywhereBeforeTheDecimalSign) {
  EXPECT_EQ(parseNumber("1.2.3", es()), 123);
  EXPECT_EQ(parseNumber("1.", es()), 1);
  EXPECT_EQ(parseNumber(".5", es()), 5);
  EXPECT_EQ(parseNumber("1,5.0", es()), std::nullopt);
  EXPECT_EQ(parseNumber("1,5,0", es()), std::nullopt);
}

TEST(ParseNumber, OneSideOfTheDecimalSignIsEnough) {
  EXPECT_EQ(parseNumber(",5", es()), 0.5);
  EXPECT_EQ(parseNumber("5,", es()), 5);
  EXPECT_EQ(parseNumber(",", es()), std::nullopt);
  EXPECT_EQ(parseNumber(".", es()), std::nullopt);
}

TEST(ParseNumber, TakesBlanksAndOneSign) {
  EXPECT_EQ(parseNumber(" 37 ", es()), 37);
  EXPECT_EQ(parseNumber("\t- 37\n", es()), -37);
  EXPECT_EQ(parseNumber("+3", es()), 3);
  EXPECT_EQ(parseNumber("--3", es()), std::nullopt);
  EXPECT_EQ(parseNumber("3-", es()), std::nullopt);
  EXPECT_EQ(parseNumber("3 4", es()), std::nullopt);
}

TEST(ParseNumber, TakesAnExponentWithEOrD) {
  EXPECT_EQ(parseNumber("-37,5e2", es()), -3750);
  EXPECT_EQ(parseNumber("3d2", es()), 300);
  EXPECT_EQ(parseNumber("3E-2 ", es()), 0.03);
  EXPECT_EQ(parseNumber("3D+2", es()), 300);
  EXPECT_EQ(parseNumber("33d", es()), std::nullopt);
  EXPECT_EQ(parseNumber("3e", es()), std::nullopt);
  EXPECT_EQ(parseNumber("3e-", es()), std::nullopt);
  EXPECT_EQ(parseNumber("e5", es()), std::nullopt);
}

TEST(ParseNumber, TakesTheCurrencySymbolOnEitherSideOnce) {
  EXPECT_EQ(parseNumber("12 €", es()), 12);
  EXPECT_EQ(parseNumber("12€", es()), 12);
  EXPECT_EQ(parseNumber("€ 12", es()), 12);
  EXPECT_EQ(parseNumber("-1.234,50 €", es()), -1234.5);
  EXPECT_EQ(parseNumber("-€1,234.50", neutral()), -1234.5);
  EXPECT_EQ(parseNumber("€12€", es()), std::nullopt);
  EXPECT_EQ(parseNumber("€", es()), std::nullopt);
  EXPECT_EQ(parseNumber("12 $", es()), std::nullopt);
}

TEST(ParseNumber, ParenthesesAreNegative) {
  EXPECT_EQ(parseNumber("(5)", es()), -5);
  EXPECT_EQ(parseNumber("( 5,25 € )", es()), -5.25);
  EXPECT_EQ(parseNumber("(5", es()), std::nullopt);
  EXPECT_EQ(parseNumber("5)", es()), std::nullopt);
  EXPECT_EQ(parseNumber("(-5)", es()), std::nullopt);
  EXPECT_EQ(parseNumber("((5))", es()), std::nullopt);
}

TEST(ParseNumber, ReadsHexadecimalAndOctal) {
  EXPECT_EQ(parseNumber("&H37", es()), 55);
  EXPECT_EQ(parseNumber("&h1a", es()), 26);
  EXPECT_EQ(parseNumber("&O17", es()), 15);
  EXPECT_EQ(parseNumber("-&H10", es()), -16);
  EXPECT_EQ(parseNumber("&HFFFFFFFF", es()), -1);
  EXPECT_EQ(parseNumber("&HFFFF", es()), -1) << "16 bits are a signed whole number";
  EXPECT_EQ(parseNumber("&H7FFF", es()), 32767);
  EXPECT_EQ(parseNumber("&H10000", es()), 65536);
  EXPECT_EQ(parseNumber("&HFFFF&", es()), 65535) << "the mark behind it makes it long";
  EXPECT_EQ(parseNumber("&o177777", es()), -1);
  EXPECT_EQ(parseNumber("&H", es()), std::nullopt);
  EXPECT_EQ(parseNumber("&", es()), std::nullopt);
  EXPECT_EQ(parseNumber("&HG", es()), std::nullopt);
  EXPECT_EQ(parseNumber("&O8", es()), std::nullopt);
  EXPECT_EQ(parseNumber("&H123456789", es()), std::nullopt);
}

TEST(ParseNumber, NothingIsNoNumber) {
  for (const char* text : {"", " ", "-", "abc", "12a", "nan", "inf", "0x10", "1_000", "12%"}) {
    EXPECT_EQ(parseNumber(text, es()), std::nullopt) << text;
  }
}

TEST(ParseNumber, NumbersTooLargeAreNoNumbersAndTooSmallOnesAreZero) {
  EXPECT_EQ(parseNumber("1e999", es()), std::nullopt);
  EXPECT_EQ(parseNumber("-1e99999999999999", es()), std::nullopt);
  EXPECT_EQ(parseNumber("1e-999", es()), 0);
  EXPECT_EQ(parseNumber("0e999", es()), 0);
  EXPECT_EQ(parseNumber(std::string(400, '0') + "7", es()), 7);
  EXPECT_EQ(parseNumber("0," + std::string(400, '0') + "7e401", es()), 7);
}

TEST(ParseNumber, ReadsEveryPlainNumberBack) {
  for (const double number : {0.0, 1.5, -0.001, 123456.789, 1e15, 1.25e-16, 1e300, -4.5e-7}) {
    EXPECT_EQ(parseNumber(plainNumber(number, es()), es()), number);
    EXPECT_EQ(parseNumber(plainNumber(number, neutral()), neutral()), number);
  }
}

TEST(ParseSqlNumber, ReadsAPointAndNothingAround) {
  EXPECT_EQ(parseSqlNumber("1.5"), 1.5);
  EXPECT_EQ(parseSqlNumber("-2"), -2);
  EXPECT_EQ(parseSqlNumber("+2"), 2);
  EXPECT_EQ(parseSqlNumber(".5"), 0.5);
  EXPECT_EQ(parseSqlNumber("5."), 5);
  EXPECT_EQ(parseSqlNumber("1e3"), 1000);
  EXPECT_EQ(parseSqlNumber("1E-3"), 0.001);
  for (const char* text : {"", " 1", "1 ", "1,5", "1.500.000", "-", "--1", "-+1", ".", "inf", "nan",
                           "-inf", "1e", "0x1", "1e999", "12 €"}) {
    EXPECT_EQ(parseSqlNumber(text), std::nullopt) << text;
  }
  EXPECT_EQ(parseSqlNumber("1E-999"), 0);
}

TEST(RoundHalfEven, RoundsOnTheDigitsAsSeen) {
  EXPECT_EQ(roundHalfEven(2.45, 1), 2.4);
  EXPECT_EQ(roundHalfEven(0.12345, 4), 0.1234);
  EXPECT_EQ(roundHalfEven(3.5), 4);
  EXPECT_EQ(roundHalfEven(-3.5), -4);
  EXPECT_EQ(roundHalfEven(2.5), 2);
  EXPECT_EQ(roundHalfEven(0.5), 0);
  EXPECT_EQ(roundHalfEven(1.5), 2);
  EXPECT_EQ(roundHalfEven(1.005, 2), 1);
  EXPECT_EQ(roundHalfEven(1.015, 2), 1.02);
  EXPECT_EQ(roundHalfEven(2.451, 1), 2.5);
  EXPECT_EQ(roundHalfEven(0.06, 1), 0.1);
  EXPECT_EQ(roundHalfEven(0.05, 1), 0);
  EXPECT_EQ(roundHalfEven(0.005, 1), 0);
}

TEST(RoundHalfAway, RoundsOnTheDigitsAsSeen) {
  EXPECT_EQ(roundHalfAway(1.005, 2), 1.01);
  EXPECT_EQ(roundHalfAway(-1.005, 2), -1.01);
  EXPECT_EQ(roundHalfAway(23.675, 2), 23.68);
  EXPECT_EQ(roundHalfAway(1.73245, 4), 1.7325);
  EXPECT_EQ(roundHalfAway(2.5), 3);
  EXPECT_EQ(roundHalfAway(0.5), 1);
  EXPECT_EQ(roundHalfAway(-0.5), -1);
  EXPECT_EQ(roundHalfAway(0.49), 0);
  EXPECT_EQ(roundHalfAway(999.995, 2), 1000);
  EXPECT_EQ(roundHalfAway(1.0049999999999999, 2), 1.01) << "15 digits read 1.005";
}

TEST(Rounding, LeavesWhatIsNotFiniteAndWholeNumbersAlone) {
  EXPECT_TRUE(std::isnan(roundHalfEven(std::nan(""), 2)));
  EXPECT_EQ(roundHalfAway(kInfinity, 2), kInfinity);
  EXPECT_EQ(roundHalfEven(12345678901234567890.0, 2), 12345678901234567890.0);
}

TEST(Rounding, ANegativeCountRoundsToTensAndHundreds) {
  EXPECT_EQ(roundHalfEven(1250, -2), 1200);
  EXPECT_EQ(roundHalfAway(1250, -2), 1300);
  EXPECT_EQ(roundHalfAway(50, -2), 100);
  EXPECT_EQ(roundHalfAway(50, -3), 0);
}

}  // namespace
}  // namespace tavelor
