// SPDX-License-Identifier: MIT
// Locales are found by name, and agree with themselves.
#include "tavelor/platform/locale.hpp"

#include <gtest/gtest.h>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {
namespace {

TEST(Locale, IsFoundByNameWithoutRegardToCase) {
  EXPECT_EQ(Locale::byName("es-ES"), Locale::spanish());
  EXPECT_EQ(Locale::byName("ES-es"), Locale::spanish());
  EXPECT_EQ(Locale::byName("Neutral"), Locale::neutral());
  EXPECT_EQ(Locale::byName("xx"), nullptr);
  EXPECT_EQ(Locale::byName(""), nullptr);
}

TEST(Locale, IsTheSameObjectEveryTime) {
  EXPECT_EQ(Locale::spanish().get(), Locale::spanish().get());
}

TEST(Locale, ReadsBackWhatItWrites) {
  for (const auto& locale : {Locale::spanish(), Locale::neutral()}) {
    const Date date = Date::of(2024, 3, 5);
    for (const char* name : {"Short Date", "Long Date", "Medium Date"}) {
      const std::string text = format(date, name, *locale);
      if (std::string_view(name) == "Medium Date" && locale == Locale::neutral()) continue;
      EXPECT_EQ(parseDate(text, *locale), date) << text;
    }
    const Date moment = Date::of({2024, 3, 5, 14, 5, 9});
    EXPECT_EQ(parseDate(format(moment, "General Date", *locale), *locale), moment);
    for (const char* name : {"Currency", "Standard", "General Number", "Fixed"}) {
      const std::string text = format(-1234567.25, name, *locale);
      EXPECT_EQ(parseNumber(text, *locale), -1234567.25) << text;
    }
    EXPECT_TRUE(Variant(locale->trueText).toBoolean(*locale));
    EXPECT_FALSE(Variant(locale->falseText).toBoolean(*locale));
  }
}

TEST(Locale, TheOtherCountriesOfSpainWriteAsSpanishDoes) {
  for (const char* name : {"ca-ES", "gl-ES", "eu-ES", "EU-es", "es-ES"}) {
    EXPECT_EQ(Locale::byName(name), Locale::spanish()) << name;
  }
  EXPECT_EQ(Locale::byName("pt-PT"), nullptr);
}

TEST(Locale, SpanishNamesBeginOnSundayAndInJanuary) {
  const Locale& es = *Locale::spanish();
  EXPECT_EQ(es.dayNames.front(), "domingo");
  EXPECT_EQ(es.dayNames.back(), "sábado");
  EXPECT_EQ(es.monthNames.front(), "enero");
  EXPECT_EQ(es.shortMonthNames.back(), "dic");
}

}  // namespace
}  // namespace tavelor
