// SPDX-License-Identifier: MIT
// Date masks and named date formats.
#include <string>

#include <gtest/gtest.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/variant.hpp"
#include "tests/platform/expect_error.hpp"
#include "tests/platform/locales.hpp"

namespace tavelor {
namespace {

using test::es;
using test::neutral;

const Date kMoment = Date::of({2024, 3, 5, 14, 5, 9});

TEST(FormatDate, NamedFormats) {
  EXPECT_EQ(es(kMoment, "General Date"), "05/03/2024 14:05:09");
  EXPECT_EQ(es(kMoment, "Long Date"), "martes, 5 de marzo de 2024");
  EXPECT_EQ(es(kMoment, "Medium Date"), "05-mar-24");
  EXPECT_EQ(es(kMoment, "Short Date"), "05/03/2024");
  EXPECT_EQ(es(kMoment, "Long Time"), "14:05:09");
  EXPECT_EQ(es(kMoment, "Medium Time"), "02:05 PM");
  EXPECT_EQ(es(kMoment, "Short Time"), "14:05");
  EXPECT_EQ(es(Date::of({2024, 3, 5, 9, 5, 9}), "Long Time"), "9:05:09");
  EXPECT_EQ(neutral(kMoment, "General Date"), "2024-03-05 14:05:09");
  EXPECT_EQ(neutral(kMoment, "Long Date"), "Tuesday, 5 March 2024");
  EXPECT_EQ(neutral(kMoment, "Short Date"), "2024-03-05");
  EXPECT_EQ(es(kMoment, "short date"), "05/03/2024");
}

TEST(FormatDate, GeneralDateLeavesOutMidnightAndDayZero) {
  EXPECT_EQ(es(Date::of(2024, 3, 5), "General Date"), "05/03/2024");
  EXPECT_EQ(es(Date(0.5), "General Date"), "12:00:00");
  EXPECT_EQ(es(Date(), "General Date"), "0:00:00");
  EXPECT_EQ(es(kMoment, "c"), "05/03/2024 14:05:09");
}

TEST(FormatDate, DaysMonthsAndYears) {
  EXPECT_EQ(es(kMoment, "d"), "5");
  EXPECT_EQ(es(kMoment, "dd"), "05");
  EXPECT_EQ(es(kMoment, "ddd"), "mar");
  EXPECT_EQ(es(kMoment, "dddd"), "martes");
  EXPECT_EQ(es(kMoment, "ddddd"), "05/03/2024");
  EXPECT_EQ(es(kMoment, "dddddd"), "martes, 5 de marzo de 2024");
  EXPECT_EQ(es(kMoment, "m"), "3");
  EXPECT_EQ(es(kMoment, "mm"), "03");
  EXPECT_EQ(es(kMoment, "mmm"), "mar");
  EXPECT_EQ(es(kMoment, "mmmm"), "marzo");
  EXPECT_EQ(es(kMoment, "yy"), "24");
  EXPECT_EQ(es(kMoment, "yyyy"), "2024");
  EXPECT_EQ(es(kMoment, "yyy"), es(kMoment, "y")) << "three are the day of the year as one is";
  EXPECT_EQ(es(kMoment, "y"), "65") << "day of the year";
  EXPECT_EQ(es(kMoment, "q"), "1");
  EXPECT_EQ(es(Date::of(2024, 12, 31), "q y"), "4 366");
  EXPECT_EQ(es(Date::of(100, 1, 1), "yyyy yy"), "0100 00");
}

TEST(FormatDate, WeeksBeginOnSundayAndTheFirstHoldsNewYear) {
  EXPECT_EQ(es(kMoment, "w"), "3");
  EXPECT_EQ(es(Date::of(2024, 1, 1), "ww"), "1");
  EXPECT_EQ(es(Date::of(2024, 1, 6), "ww"), "1");
  EXPECT_EQ(es(Date::of(2024, 1, 7), "ww"), "2");
  EXPECT_EQ(es(Date::of(2024, 12, 31), "ww"), "53");
  EXPECT_EQ(es(Date::of(2023, 1, 1), "ww"), "1");
}

TEST(FormatDate, HoursMinutesAndSeconds) {
  EXPECT_EQ(es(kMoment, "h"), "14");
  EXPECT_EQ(es(kMoment, "n"), "5");
  EXPECT_EQ(es(kMoment, "nn"), "05");
  EXPECT_EQ(es(kMoment, "s"), "9");
  EXPECT_EQ(es(kMoment, "ss"), "09");
  EXPECT_EQ(es(kMoment, "hhnnss"), "140509");
  EXPECT_EQ(es(kMoment, "ttttt"), "14:05:09");
}

TEST(FormatDate, MonthsRightBehindHoursAreMinutes) {
  EXPECT_EQ(es(kMoment, "hh:mm"), "14:05");
  EXPECT_EQ(es(kMoment, "HH:MM:SS"), "14:05:09");
  EXPECT_EQ(es(kMoment, "mm:ss"), "03:09");
  EXPECT_EQ(es(kMoment, "hh:nn mm"), "14:05 03");
  EXPECT_EQ(es(kMoment, "hh dd mm"), "14 05 03");
  EXPECT_EQ(es(kMoment, "hh mmmm"), "14 marzo");
}

TEST(FormatDate, LettersDoNotCareAboutCase) {
  EXPECT_EQ(es(kMoment, "DD/MM/YYYY"), "05/03/2024");
  EXPECT_EQ(es(kMoment, "dD-Mm-yY"), "05-03-24");
}

TEST(FormatDate, HalfDayMarksMakeTheClockCountToTwelve) {
  EXPECT_EQ(es(kMoment, "h:nn AM/PM"), "2:05 PM");
  EXPECT_EQ(es(kMoment, "h:nn am/pm"), "2:05 pm");
  EXPECT_EQ(es(kMoment, "h a/p"), "2 p");
  EXPECT_EQ(es(kMoment, "a/p"), "p");
  EXPECT_EQ(es(kMoment, "a/p hh"), "p 02");
  EXPECT_EQ(es(0.25, "A/P"), "A");
  EXPECT_EQ(es(Date(0.0), "h A/P"), "12 A");
  EXPECT_EQ(es(Date(0.5), "hh AM/PM"), "12 PM");
  EXPECT_EQ(es(kMoment, "hh:nn AMPM"), "02:05 ");
}

TEST(FormatDate, KeepsLiteralsAndUsesTheSeparatorsOfTheLocale) {
  EXPECT_EQ(es(kMoment, "d \\d\\e mmmm"), "5 de marzo");
  EXPECT_EQ(es(kMoment, "\"día\" d"), "día 5");
  EXPECT_EQ(es(kMoment, "d\"x"), "5x");
  EXPECT_EQ(es(kMoment, "d\\"), "5");
  Locale other = *Locale::spanish();
  other.dateSeparator = ".";
  other.timeSeparator = "h";
  EXPECT_EQ(format(kMoment, "dd/mm hh:nn", other), "05.03 14h05");
  EXPECT_EQ(format(kMoment, "dd\\/mm", other), "05/03");
}

TEST(FormatDate, NumbersAreDayNumbers) {
  EXPECT_EQ(es(46347, "dd/mm/yyyy"), "21/11/2026");
  EXPECT_EQ(es(0.5, "hh:nn"), "12:00");
  EXPECT_EQ(es(-1.25, "dd/mm/yyyy hh:nn"), "29/12/1899 06:00");
  EXPECT_EQ(raisedBy([] { es(1e9, "yyyy"); }), 6);
}

TEST(FormatDate, TextIsReadByTheLocaleFirst) {
  EXPECT_EQ(es("5/3/2024", "yyyy-mm-dd"), "2024-03-05");
  EXPECT_EQ(es("46347", "dd/mm/yyyy"), "21/11/2026");
  EXPECT_EQ(es("mañana", "dd/mm/yyyy"), "mañana");
  EXPECT_EQ(es("mañana", "Short Date"), "mañana");
  EXPECT_EQ(es("", "yy"), "");
}

TEST(FormatDate, NullGivesNothing) {
  EXPECT_EQ(es(Null(), "dd/mm/yyyy"), "");
  EXPECT_EQ(es(Null(), "Long Date"), "");
}

TEST(FormatDate, TheFirstAndTheLastDay) {
  EXPECT_EQ(es(Date::of(100, 1, 1), "Short Date"), "01/01/0100");
  EXPECT_EQ(es(Date::of({9999, 12, 31, 23, 59, 59}), "General Date"), "31/12/9999 23:59:59");
}

}  // namespace
}  // namespace tavelor
