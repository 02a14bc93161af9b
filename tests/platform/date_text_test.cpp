// SPDX-License-Identifier: MIT
// Text as dates, by the locale and in statements.
#include "tavelor/platform/date_text.hpp"

#include <string>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tavelor/platform/locale.hpp"

namespace tavelor {
namespace {

std::optional<Date> es(std::string_view text) {
  return parseDate(text, *Locale::spanish());
}
std::optional<Date> neutral(std::string_view text) {
  return parseDate(text, *Locale::neutral());
}
std::optional<Date> sql(std::string_view text) {
  return parseSqlDate(text);
}

TEST(ParseDate, ReadsDayMonthYearInSpanish) {
  EXPECT_EQ(es("05/03/2024"), Date::of(2024, 3, 5));
  EXPECT_EQ(es("5-3-2024"), Date::of(2024, 3, 5));
  EXPECT_EQ(es(" 5 / 3 / 2024 "), Date::of(2024, 3, 5));
}

TEST(ParseDate, TriesTheOtherOrdersWhereTheFirstGivesNoDate) {
  EXPECT_EQ(es("13-1-1970"), Date::of(1970, 1, 13));
  EXPECT_EQ(es("1-13-1970"), Date::of(1970, 1, 13));
  EXPECT_EQ(es("1970-01-13"), Date::of(1970, 1, 13));
  EXPECT_EQ(es("2024/12/31"), Date::of(2024, 12, 31));
  EXPECT_EQ(neutral("13-1-1970"), Date::of(1970, 1, 13));
  EXPECT_EQ(es("32/13/2024"), std::nullopt);
}

TEST(ParseDate, TheNeutralOrderIsYearMonthDay) {
  EXPECT_EQ(neutral("2024-03-05"), Date::of(2024, 3, 5));
  EXPECT_EQ(neutral("24-03-05"), Date::of(2024, 3, 5));
  EXPECT_EQ(neutral("03/05/2024"), Date::of(2024, 3, 5));
}

TEST(ParseDate, ShortYearsAreOf1930To2029) {
  EXPECT_EQ(es("1/1/00"), Date::of(2000, 1, 1));
  EXPECT_EQ(es("1/1/29"), Date::of(2029, 1, 1));
  EXPECT_EQ(es("1/1/30"), Date::of(1930, 1, 1));
  EXPECT_EQ(es("1/1/99"), Date::of(1999, 1, 1));
  EXPECT_EQ(es("1/1/5"), Date::of(2005, 1, 1));
}

TEST(ParseDate, FullYearsGoFrom100To9999) {
  EXPECT_EQ(es("1/1/100"), Date::of(100, 1, 1));
  EXPECT_EQ(es("31/12/9999"), Date::of(9999, 12, 31));
  EXPECT_EQ(es("1/1/0099"), std::nullopt);
  EXPECT_EQ(es("1/1/10000"), std::nullopt);
}

TEST(ParseDate, LeapDaysAreCheckedAgainstTheYear) {
  EXPECT_EQ(es("29/2/2000"), Date::of(2000, 2, 29));
  EXPECT_EQ(es("29/2/1900"), std::nullopt);
  EXPECT_EQ(es("29/2/2100"), std::nullopt);
  EXPECT_EQ(es("31/4/2024"), std::nullopt);
}

TEST(ParseDate, ReadsTimes) {
  EXPECT_EQ(es("14:05"), Date::of({1899, 12, 30, 14, 5, 0}));
  EXPECT_EQ(es("0:00:00"), Date());
  EXPECT_EQ(es("14:05:09"), Date::of({1899, 12, 30, 14, 5, 9}));
  EXPECT_EQ(es("2:05 PM"), Date::of({1899, 12, 30, 14, 5, 0}));
  EXPECT_EQ(es("12 am"), Date());
  EXPECT_EQ(es("12:30 pm"), Date::of({1899, 12, 30, 12, 30, 0}));
  for (const char* text :
       {"24:00", "12:60", "12:00:60", "13:00 PM", "0:30 AM", "12:", "1:2:3:4", "12:00:00.5"}) {
    EXPECT_EQ(es(text), std::nullopt) << text;
  }
}

TEST(ParseDate, ReadsADateAndATimeInAnyOrder) {
  const Date moment = Date::of({2024, 3, 5, 14, 5, 9});
  EXPECT_EQ(es("05/03/2024 14:05:09"), moment);
  EXPECT_EQ(es("14:05:09 05/03/2024"), moment);
  EXPECT_EQ(es("05/03/2024 2:05:09 PM"), moment);
  EXPECT_EQ(es("05/03/2024 14:05 15:05"), std::nullopt);
  EXPECT_EQ(es("05/03/2024 25:00"), std::nullopt);
}

TEST(ParseDate, ReadsMonthNamesOfTheLocaleAndEnglishOnes) {
  EXPECT_EQ(es("martes, 5 de marzo de 2024"), Date::of(2024, 3, 5));
  EXPECT_EQ(es("sábado 21 de Noviembre del 2026"), Date::of(2026, 11, 21));
  EXPECT_EQ(es("MIÉRCOLES, 6 DE MARZO DE 2024"), Date::of(2024, 3, 6));
  EXPECT_EQ(es("5 mar 24"), Date::of(2024, 3, 5));
  EXPECT_EQ(es("5-mar-2024"), Date::of(2024, 3, 5));
  EXPECT_EQ(es("mar 5, 2024"), Date::of(2024, 3, 5));
  EXPECT_EQ(es("mar, 5 mar 2024"), Date::of(2024, 3, 5));
  EXPECT_EQ(es("Apr 6, 2003"), Date::of(2003, 4, 6));
  EXPECT_EQ(es("2024 marzo 5"), Date::of(2024, 3, 5));
  EXPECT_EQ(neutral("5 marzo 2024"), std::nullopt);
  EXPECT_EQ(es("31 de febrero de 2024"), std::nullopt);
}

TEST(ParseDate, OtherTextIsNoDate) {
  for (const char* text : {"", " ", "abc", "12", "2.5", "02.01.1970", "5 3 2024", "5,3,2024", "5/3",
                           "5/3/", "/5/3/2024", "-5/3/2024", "5/3/2024/1", "5//3/2024", "12345",
                           "5/marzo/marzo", "5/003/2024", "1/1/1/1/1/1/1/1/1/1"}) {
    EXPECT_EQ(es(text), std::nullopt) << text;
  }
}

TEST(ParseSqlDate, IsMonthDayYearWhateverTheLocale) {
  EXPECT_EQ(sql("03/05/2024"), Date::of(2024, 3, 5));
  EXPECT_EQ(sql("3-5-2024"), Date::of(2024, 3, 5));
  EXPECT_EQ(sql("3/5/24"), Date::of(2024, 3, 5));
}

TEST(ParseSqlDate, DayAndMonthChangePlacesAboveTwelve) {
  EXPECT_EQ(sql("21/11/2026"), Date::of(2026, 11, 21));
  EXPECT_EQ(sql("11/21/2026"), Date::of(2026, 11, 21));
  EXPECT_EQ(sql("24-03-05"), Date::of(2005, 3, 24));
  EXPECT_EQ(sql("31/02/2024"), std::nullopt);
}

// The usual form is read without the tokens of the others; a blank before it takes the long way.
TEST(ParseSqlDate, ReadsTheUsualFormAsTheOthers) {
  const auto inTokens = [](const std::string& text) { return sql(" " + text); };
  for (const int year : {0, 99, 100, 1600, 1900, 2000, 2024, 2026, 9999}) {
    for (int month = 0; month <= 13; ++month) {
      for (int day = 0; day <= 32; ++day) {
        const std::string text = fmt::format("{:02}/{:02}/{:04}", month, day, year);
        ASSERT_EQ(sql(text), inTokens(text)) << text;
      }
    }
  }
  const std::string plain = "03/15/2026";
  for (std::size_t place = 0; place < plain.size(); ++place) {
    for (int byte = 0; byte < 256; ++byte) {
      std::string text = plain;
      text[place] = static_cast<char>(byte);
      ASSERT_EQ(sql(text), inTokens(text)) << byte << " at " << place;
    }
  }
  EXPECT_EQ(sql("02/29/2024"), Date::of(2024, 2, 29));
  EXPECT_EQ(sql("02/29/2026"), std::nullopt);
}

TEST(ParseSqlDate, ReadsYearMonthDayAndTimes) {
  EXPECT_EQ(sql("2024-03-05"), Date::of(2024, 3, 5));
  EXPECT_EQ(sql("2024-03-05 14:05:09"), Date::of({2024, 3, 5, 14, 5, 9}));
  EXPECT_EQ(sql("3/5/2024 2:05 PM"), Date::of({2024, 3, 5, 14, 5, 0}));
  EXPECT_EQ(sql("14:05:09"), Date::of({1899, 12, 30, 14, 5, 9}));
  EXPECT_EQ(sql("Apr 6, 2003"), Date::of(2003, 4, 6));
  EXPECT_EQ(sql("12/30/1899"), Date());
  EXPECT_EQ(sql(""), std::nullopt);
  EXPECT_EQ(sql("hello"), std::nullopt);
}

}  // namespace
}  // namespace tavelor
