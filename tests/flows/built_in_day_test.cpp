// SPDX-License-Identifier: MIT
// The day of sales that the shop brings along.
#include "tools/built_in_day.hpp"

#include <algorithm>
#include <cmath>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/platform/text.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::flows {
namespace {

using tools::builtInDay;

const std::vector<std::string> kTills = {"001", "002"};

bool isReturn(const Sale& sale) {
  return sale.reference.front() == 'C';
}

TEST(BuiltInDay, IsTheSameEachTime) {
  const auto first = builtInDay(kTills);
  const auto second = builtInDay(kTills);
  ASSERT_EQ(first.size(), second.size());
  double total = 0;
  for (std::size_t i = 0; i < first.size(); ++i) {
    EXPECT_EQ(first[i].reference, second[i].reference);
    EXPECT_EQ(first[i].time, second[i].time);
    EXPECT_EQ(first[i].total(), second[i].total());
    total += first[i].total();
  }
  EXPECT_EQ(first.size(), 310U);
  EXPECT_EQ(std::lround(total * 100), 403790);
}

TEST(BuiltInDay, UsesEveryTillAndRefusesNone) {
  std::set<std::string> used;
  for (const Sale& sale : builtInDay(kTills)) used.insert(sale.till);
  EXPECT_THAT(used, testing::ElementsAreArray(kTills));
  EXPECT_EQ(test::errorOf([] { builtInDay({}); }), errors::kInvalidCall);
}

TEST(BuiltInDay, HasItsTicketsInTheOrderOfTimeWhileTheShopIsOpen) {
  std::string last;
  for (const Sale& sale : builtInDay(kTills)) {
    EXPECT_EQ(sale.day, Date::of(2026, 11, 20));
    EXPECT_LE(last, sale.time);
    const bool isMorning = sale.time >= "09:30" && sale.time < "14:00";
    const bool isAfternoon = sale.time >= "17:00" && sale.time < "20:30";
    EXPECT_TRUE(isMorning || isAfternoon) << sale.time;
    last = sale.time;
  }
}

TEST(BuiltInDay, NoReferenceComesTwice) {
  std::set<std::string> references;
  for (const Sale& sale : builtInDay(kTills)) {
    EXPECT_TRUE(references.insert(sale.reference).second) << sale.reference;
  }
  EXPECT_TRUE(references.contains("V0001"));
}

TEST(BuiltInDay, CashHandedOverIsEnoughAndACardPaysTheTotal) {
  std::size_t withChange = 0;
  for (const Sale& sale : builtInDay(kTills)) {
    if (sale.payment == "2" || isReturn(sale)) {
      EXPECT_EQ(sale.delivered, sale.total()) << sale.reference;
    } else {
      EXPECT_EQ(sale.payment, "1");
      EXPECT_GE(sale.delivered, sale.total()) << sale.reference;
      if (sale.delivered > sale.total()) ++withChange;
    }
  }
  EXPECT_GT(withChange, 50U);
}

TEST(BuiltInDay, ReturnsAreNegativeAndSayWhy) {
  std::size_t returns = 0;
  for (const Sale& sale : builtInDay(kTills)) {
    ASSERT_FALSE(sale.lines.empty());
    for (const SaleLine& line : sale.lines) EXPECT_EQ(line.quantity < 0, isReturn(sale));
    EXPECT_EQ(sale.comment.empty(), !isReturn(sale));
    if (isReturn(sale)) ++returns;
  }
  EXPECT_EQ(returns, 5U);
}

TEST(BuiltInDay, SellsEightFamiliesAtThreeRates) {
  std::set<std::string> families;
  std::set<std::string> codes;
  std::set<double> rates;
  bool hasApostrophe = false;
  for (const Sale& sale : builtInDay(kTills)) {
    for (const SaleLine& line : sale.lines) {
      families.insert(line.family);
      codes.insert(line.code);
      rates.insert(line.tax);
      hasApostrophe = hasApostrophe || line.description.find('\'') != std::string::npos;
    }
  }
  EXPECT_EQ(families.size(), 8U);
  // A family becomes a row of the catalogue under this word, and its code has room for ten.
  for (const std::string& family : families) EXPECT_LE(text::length(family), 10U) << family;
  EXPECT_EQ(codes.size(), 45U);
  EXPECT_THAT(rates, testing::ElementsAre(4, 10, 21));
  EXPECT_TRUE(hasApostrophe);
}

}  // namespace
}  // namespace tavelor::flows
