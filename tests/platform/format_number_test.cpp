// SPDX-License-Identifier: MIT
// Number masks and named number formats.
#include <cmath>
#include <string>

#include <gtest/gtest.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/variant.hpp"
#include "tests/platform/locales.hpp"

namespace tavelor {
namespace {

using test::es;
using test::neutral;

TEST(FormatNumber, NamedFormats) {
  EXPECT_EQ(es(1234.5, "General Number"), "1234,5");
  EXPECT_EQ(es(1234.5, "Standard"), "1.234,50");
  EXPECT_EQ(es(1234.5, "Currency"), "1.234,50 €");
  EXPECT_EQ(es(-1234.5, "Currency"), "-1.234,50 €");
  EXPECT_EQ(es(1234.5, "Fixed"), "1234,50");
  EXPECT_EQ(es(0.125, "Percent"), "12,50%");
  EXPECT_EQ(es(1234.5, "Scientific"), "1,23E+03");
  EXPECT_EQ(neutral(1234.5, "Standard"), "1,234.50");
  EXPECT_EQ(neutral(1234.5, "Currency"), "€1,234.50");
  EXPECT_EQ(neutral(-1234.5, "Currency"), "-€1,234.50");
}

TEST(FormatNumber, NamesDoNotCareAboutCase) {
  EXPECT_EQ(es(1234.5, "STANDARD"), "1.234,50");
  EXPECT_EQ(es(1234.5, "currency"), "1.234,50 €");
}

TEST(FormatNumber, NamedFormatsRoundHalvesAwayFromZero) {
  EXPECT_EQ(es(1.005, "Standard"), "1,01");
  EXPECT_EQ(es(-1.005, "Currency"), "-1,01 €");
  EXPECT_EQ(es(2.675, "Fixed"), "2,68");
  EXPECT_EQ(es(-0.001, "Currency"), "0,00 €");
  EXPECT_EQ(es(0, "Currency"), "0,00 €");
}

TEST(FormatNumber, BooleanFormatsUseTheWordsOfTheLocale) {
  EXPECT_EQ(es(true, "Yes/No"), "Sí");
  EXPECT_EQ(es(0, "Yes/No"), "No");
  EXPECT_EQ(es(7, "True/False"), "Verdadero");
  EXPECT_EQ(es(false, "True/False"), "Falso");
  EXPECT_EQ(es(-1, "On/Off"), "Activado");
  EXPECT_EQ(es("0", "On/Off"), "Desactivado");
  EXPECT_EQ(es("Verdadero", "Yes/No"), "Sí");
  EXPECT_EQ(es("quizás", "Yes/No"), "quizás");
  EXPECT_EQ(neutral(true, "Yes/No"), "Yes");
  EXPECT_EQ(neutral(false, "On/Off"), "Off");
}

TEST(FormatNumber, ZeroPlacesAreAlwaysWrittenAndOptionalOnesOnlyWhenNeeded) {
  EXPECT_EQ(es(7, "000"), "007");
  EXPECT_EQ(es(7, "###"), "7");
  EXPECT_EQ(es(0, "#"), "");
  EXPECT_EQ(es(0, "0"), "0");
  EXPECT_EQ(es(1.5, "0.00"), "1,50");
  EXPECT_EQ(es(1.5, "0.##"), "1,5");
  EXPECT_EQ(es(1, "0.##"), "1,");
  EXPECT_EQ(es(0, "#.##"), ",");
  EXPECT_EQ(es(1.25, "0.0#"), "1,25");
  EXPECT_EQ(es(1, "0.0#"), "1,0");
  EXPECT_EQ(neutral(-0.1, ".#"), "-.1");
  EXPECT_EQ(es(12345, "0"), "12345") << "places never cut a number";
  EXPECT_EQ(es(12.3, ".00"), "12,30");
  EXPECT_EQ(es(5, "#0#"), "05") << "no leading zero place falls out";
}

TEST(FormatNumber, RoundsHalvesAwayFromZeroOnFifteenDigits) {
  EXPECT_EQ(es(1.005, "0.00"), "1,01");
  EXPECT_EQ(es(-1.005, "0.00"), "-1,01");
  EXPECT_EQ(neutral(23.675, "00.00"), "23.68");
  EXPECT_EQ(neutral(1.73245, "0.0000E+000"), "1.7325E+000");
  EXPECT_EQ(es(1234.5, "#"), "1235");
  EXPECT_EQ(es(0.5, "#"), "1");
  EXPECT_EQ(es(-0.5, "0"), "-1");
  EXPECT_EQ(es(2.5, "0"), "3");
  EXPECT_EQ(es(0.49, "#"), "");
  EXPECT_EQ(es(999.995, "0.00"), "1000,00");
  EXPECT_EQ(es(0.1 + 0.2, "0.00000000000000000"), "0,30000000000000000");
  EXPECT_EQ(es(1.0049999999999999, "0.00"), "1,01");
}

TEST(FormatNumber, WhatRoundsToZeroHasNoSign) {
  EXPECT_EQ(es(-0.001, "0.00"), "0,00");
  EXPECT_EQ(es(-0.0, "0.00"), "0,00");
  EXPECT_EQ(es(-0.4, "#"), "");
}

TEST(FormatNumber, ACommaBetweenPlacesGroups) {
  EXPECT_EQ(es(1234567.891, "#,##0.00"), "1.234.567,89");
  EXPECT_EQ(es(-1234567.891, "#,##0.00"), "-1.234.567,89");
  EXPECT_EQ(neutral(1234567.891, "#,##0.00"), "1,234,567.89");
  EXPECT_EQ(es(1234.5, "#,##0.00"), "1.234,50");
  EXPECT_EQ(es(999, "#,##0"), "999");
  EXPECT_EQ(es(1000, "#,##0"), "1.000");
  EXPECT_EQ(es(999.999, "#,##0.00"), "1.000,00");
  EXPECT_EQ(es(0, "#,##0.00"), "0,00");
  EXPECT_EQ(es(12, "0,000"), "0.012");
  EXPECT_EQ(es(1234567, "#"), "1234567");
  EXPECT_EQ(es(1e15, "#,##0"), "1.000.000.000.000.000");
}

TEST(FormatNumber, ACommaBeforeThePointOrAtTheEndDividesByAThousand) {
  EXPECT_EQ(es(1234567, "0,"), "1235");
  EXPECT_EQ(es(1234567, "0,,"), "1");
  EXPECT_EQ(es(1234567, "#,##0,.00"), "1.234,57");
  EXPECT_EQ(es(1234567890, "#,##0,"), "1.234.568");
}

TEST(FormatNumber, APercentSignMultipliesByAHundred) {
  EXPECT_EQ(es(0.21, "0%"), "21%");
  EXPECT_EQ(es(0.215, "0%"), "22%");
  EXPECT_EQ(es(0.055, "0.0 %"), "5,5 %");
}

TEST(FormatNumber, ScientificMasks) {
  EXPECT_EQ(es(1234.5, "0.00E+00"), "1,23E+03");
  EXPECT_EQ(es(0.00012, "0.0E+00"), "1,2E-04");
  EXPECT_EQ(es(1234.5, "0.0E-0"), "1,2E3");
  EXPECT_EQ(es(0.00012, "0.0e-0"), "1,2e-4");
  EXPECT_EQ(es(9.99, "0.0E+00"), "1,0E+01");
  EXPECT_EQ(es(0, "0.00E+00"), "0,00E+00");
  EXPECT_EQ(es(-12345, "00.0E+0"), "-12,3E+3");
  EXPECT_EQ(es(5, "0 E"), "5 E");
}

TEST(FormatNumber, SectionsAreForPositiveNegativeZeroAndNull) {
  const char* const mask = "0.0;(0.0);\"cero\";\"nada\"";
  EXPECT_EQ(es(1.5, mask), "1,5");
  EXPECT_EQ(es(-1.5, mask), "(1,5)");
  EXPECT_EQ(es(0, mask), "cero");
  EXPECT_EQ(es(Null(), mask), "nada");
  EXPECT_EQ(es(0, "0.0;(0.0)"), "0,0");
  EXPECT_EQ(es(-5, "0;;\\z"), "-5") << "an empty section is the first one";
  EXPECT_EQ(es(0, "0;;\\z"), "z");
  EXPECT_EQ(es(0, "0;-0;"), "0");
  EXPECT_EQ(es(5, "\"a;b\"0"), "a;b5");
}

TEST(FormatNumber, KeepsLiterals) {
  EXPECT_EQ(es(5, "\\#0"), "#5");
  EXPECT_EQ(es(5, "0 \"uds.\""), "5 uds.");
  EXPECT_EQ(es(5, "(0)"), "(5)");
  EXPECT_EQ(es(1234.5, "#,##0.00 €"), "1.234,50 €");
  EXPECT_EQ(es(123456789, "000-000-000"), "123-456-789");
  EXPECT_EQ(es(1234567890, "000-000-000"), "1234-567-890");
  EXPECT_EQ(es(1.5, "0.0.0"), "1,5.0") << "only the first point is one";
  EXPECT_EQ(es(5, "0\\"), "5");
  EXPECT_EQ(es(5, "0\"abc"), "5abc");
}

TEST(FormatNumber, AMaskWithoutPlacesIsJustItself) {
  EXPECT_EQ(es(5, "\"x\""), "x");
  EXPECT_EQ(es(5, "-"), "-");
}

TEST(FormatNumber, EveryNumberTypeIsFormatted) {
  EXPECT_EQ(es(std::int16_t{7}, "0.00"), "7,00");
  EXPECT_EQ(es(std::int32_t{-2147483647 - 1}, "#,##0"), "-2.147.483.648");
  EXPECT_EQ(es(0.1F, "0.0000000000"), "0,1000000000") << "a single shows its own seven digits";
  EXPECT_EQ(es(21.0F, "0"), "21");
  EXPECT_EQ(es(Currency::fromScaled(9223372036854775807), "#,##0.0000"),
            "922.337.203.685.477,5807");
  EXPECT_EQ(es(true, "0"), "-1");
  EXPECT_EQ(es(Date::of(2026, 11, 21), "0"), "46347");
  EXPECT_EQ(es(Variant(), "0.00"), "0,00");
}

TEST(FormatNumber, TextIsReadByTheLocaleFirst) {
  EXPECT_EQ(es("1234,5", "#,##0.00"), "1.234,50");
  EXPECT_EQ(es("1.234,5", "0.0"), "1234,5");
  EXPECT_EQ(neutral("0,6", "Percent"), "600.00%");
  EXPECT_EQ(es("007", "0"), "7");
}

TEST(FormatNumber, TextThatIsNoNumberPassesUnchanged) {
  EXPECT_EQ(es("VISA", "#,##0.00"), "VISA");
  EXPECT_EQ(es("", "0.00"), "");
  EXPECT_EQ(es("abc", "Currency"), "abc");
  EXPECT_EQ(es("abc", "Standard"), "abc");
  EXPECT_EQ(es("abc", "General Number"), "abc");
}

TEST(FormatNumber, NullGivesNothing) {
  EXPECT_EQ(es(Null(), "0.00"), "");
  EXPECT_EQ(es(Null(), "Currency"), "");
  EXPECT_EQ(es(Null(), ""), "");
}

TEST(FormatNumber, NumbersThatAreNotFiniteAreWords) {
  EXPECT_EQ(es(HUGE_VAL, "0.00"), "Infinity");
  EXPECT_EQ(es(std::nan(""), "Currency"), "NaN");
  EXPECT_EQ(es(HUGE_VALF, "0"), "Infinity");
}

TEST(FormatNumber, LargeNumbersShowFifteenDigitsAndZeros) {
  EXPECT_EQ(neutral(1e22, "0"), "10000000000000000000000");
  EXPECT_EQ(neutral(123456789012345678.0, "0"), "123456789012346000");
}

TEST(Format, AnEmptyMaskPrintsPlainly) {
  EXPECT_EQ(es(1234.5, ""), "1234,5");
  EXPECT_EQ(es("text", ""), "text");
  EXPECT_EQ(es(true, ""), "Verdadero");
  EXPECT_EQ(es(Variant(), ""), "");
  EXPECT_EQ(es(Date::of(2024, 3, 5), ""), "05/03/2024");
}

}  // namespace
}  // namespace tavelor
