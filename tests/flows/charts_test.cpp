// SPDX-License-Identifier: MIT
// Texts of a chart that would meet are left out.
#include "tavelor/flows/charts.hpp"

#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/flows/page_text.hpp"
#include "tavelor/platform/locale.hpp"

namespace tavelor::flows {
namespace {

using ::testing::HasSubstr;
using ::testing::Not;

const PageText kText(*Locale::spanish());

std::string hours(int first, int last, double value = 5) {
  std::vector<Column> columns;
  for (int hour = first; hour <= last; ++hour) {
    columns.push_back(
        {.label = std::to_string(hour) + " h", .caption = "C", .title = "", .value = value});
  }
  return columnChart(columns, "Ventas", kText);
}

TEST(ColumnChart, HoursOfAShopsDayHaveALabelEach) {
  const std::string chart = hours(9, 20);
  EXPECT_THAT(chart, HasSubstr(">9 h<"));
  EXPECT_THAT(chart, HasSubstr(">10 h<"));
  EXPECT_THAT(chart, HasSubstr(">20 h<"));
}

TEST(ColumnChart, HoursOfAWholeDayShowEverySecondLabel) {
  const std::string chart = hours(0, 23);
  EXPECT_THAT(chart, HasSubstr(">10 h<"));
  EXPECT_THAT(chart, Not(HasSubstr(">11 h<")));
  EXPECT_THAT(chart, HasSubstr(">12 h<"));
}

TEST(ColumnChart, TheCaptionOfAColumnBelowZeroStaysClearOfTheLabels) {
  const std::string chart = hours(9, 12, -300);
  // The base line is at the top: what hangs from it has its caption above.
  EXPECT_THAT(chart, HasSubstr("y=\"18.0\">C<"));
}

}  // namespace
}  // namespace tavelor::flows
