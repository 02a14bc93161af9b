// SPDX-License-Identifier: MIT
// The masks that the business rules use, in both locales.
#include <string>

#include <gtest/gtest.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {
namespace {

struct Case {
  const char* rule;
  Variant value;
  const char* mask;
  const char* spanish;
  const char* neutral;
};

class RuleMask : public ::testing::TestWithParam<Case> {};

TEST_P(RuleMask, PrintsInBothLocales) {
  const Case& rule = GetParam();
  EXPECT_EQ(format(rule.value, rule.mask, *Locale::spanish()), rule.spanish) << rule.rule;
  EXPECT_EQ(format(rule.value, rule.mask, *Locale::neutral()), rule.neutral) << rule.rule;
}

const Date kToday = Date::of(2026, 11, 21);
const Date kNow = Date::of({2026, 11, 21, 9, 4, 7});

INSTANTIATE_TEST_SUITE_P(
    All, RuleMask,
    ::testing::Values(
        Case{"day number of a date in a condition", kToday, "#", "46347", "46347"},
        Case{"date of a new document", kToday, "Short Date", "21/11/2026", "2026-11-21"},
        Case{"a date in a text file", kToday, "Long Date", "sábado, 21 de noviembre de 2026",
             "Saturday, 21 November 2026"},
        Case{"foot of a page", kNow, "dd/mm/yyyy hh:nn:ss", "21/11/2026 09:04:07",
             "21/11/2026 09:04:07"},
        Case{"line of a log", kNow, "HH:MM:SS", "09:04:07", "09:04:07"},
        Case{"date between number signs", kToday, "MM/DD/YYYY", "11/21/2026", "11/21/2026"},
        Case{"seed of a series", kToday, "yy", "26", "26"},
        Case{"seed of a corrective series", kToday, "yyyy", "2026", "2026"},
        Case{"last date asked for", kToday, "dd/mm/yy", "21/11/26", "21/11/26"},
        Case{"money and quantities", 1234.565, "#,##0.00", "1.234,57", "1,234.57"},
        Case{"money and quantities below zero", -1234.565, "#,##0.00", "-1.234,57", "-1,234.57"},
        Case{"quantities with three decimals", 1.0005, "#,##0.000", "1,001", "1.001"},
        Case{"a running balance", 1234567.005, "Standard", "1.234.567,01", "1,234,567.01"},
        Case{"change of currency", 1000 / 166.386, "Currency", "6,01 €", "€6.01"},
        Case{"a code that is no number", "VISA", "#,##0.00", "VISA", "VISA"},
        Case{"a code that is a number", "001", "#,##0.00", "1,00", "1.00"}));

TEST(RuleMask, AFormattedAmountReadsBackAsARoundedNumber) {
  const Locale& es = *Locale::spanish();
  for (const char* mask : {"#,##0.00", "Standard", "Currency", "0.00"}) {
    EXPECT_EQ(parseNumber(format(1234.565, mask, es), es), 1234.57) << mask;
    EXPECT_EQ(parseNumber(format(-0.005, mask, es), es), -0.01) << mask;
  }
}

}  // namespace
}  // namespace tavelor
