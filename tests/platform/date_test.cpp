// SPDX-License-Identifier: MIT
// Dates as day numbers.
#include "tavelor/platform/date.hpp"

#include <cmath>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/expect_error.hpp"

namespace tavelor {
namespace {

std::vector<int> parts(double days) {
  const CivilTime civil = Date(days).civil();
  return {civil.year, civil.month, civil.day, civil.hour, civil.minute, civil.second};
}

TEST(Date, DayZeroIsTheThirtiethOfDecember1899) {
  EXPECT_EQ(Date::of(1899, 12, 30).days(), 0);
  EXPECT_EQ(Date().civil(), CivilTime());
}

TEST(Date, KnownDayNumbers) {
  EXPECT_EQ(Date::of(1900, 1, 1).days(), 2);
  EXPECT_EQ(Date::of(1970, 1, 1).days(), 25569);
  EXPECT_EQ(Date::of(2024, 3, 5).days(), 45356);
  EXPECT_EQ(Date::of(2026, 11, 21).days(), 46347);
  EXPECT_EQ(Date::of(100, 1, 1).days(), -657434);
  EXPECT_EQ(Date::of(9999, 12, 31).days(), 2958465);
}

TEST(Date, TheTimeIsTheFraction) {
  EXPECT_EQ(Date::of({2024, 3, 5, 12, 0, 0}).days(), 45356.5);
  EXPECT_EQ(parts(45356.75), (std::vector<int>{2024, 3, 5, 18, 0, 0}));
}

TEST(Date, InNegativeNumbersTheFractionCountsAwayFromZero) {
  EXPECT_EQ(parts(-1.25), (std::vector<int>{1899, 12, 29, 6, 0, 0}));
  EXPECT_EQ(Date::of({1899, 12, 29, 6, 0, 0}).days(), -1.25);
  EXPECT_EQ(parts(-0.5), (std::vector<int>{1899, 12, 30, 12, 0, 0}));
  EXPECT_EQ(Date(-1.25).dayOnly().days(), -1);
}

TEST(Date, IsReadToTheNearestSecond) {
  EXPECT_EQ(parts(1.0 - 1e-9), (std::vector<int>{1899, 12, 31, 0, 0, 0}));
  EXPECT_EQ(parts(45356 + 0.4 / 86400), (std::vector<int>{2024, 3, 5, 0, 0, 0}));
  EXPECT_EQ(parts(45356 + 0.6 / 86400), (std::vector<int>{2024, 3, 5, 0, 0, 1}));
  EXPECT_EQ(parts(-1.9999999999), (std::vector<int>{1899, 12, 30, 0, 0, 0}));
}

TEST(Date, EveryDayOfTheCalendarComesBack) {
  for (double day = -657434; day <= 2958465; day += 1) {
    const CivilTime civil = Date(day).civil();
    ASSERT_EQ(Date::of(civil).days(), day);
  }
}

TEST(Date, EverySecondOfADayComesBack) {
  for (const int day : {5, 29}) {
    const CivilTime base{day == 5 ? 2024 : 1899, day == 5 ? 3 : 12, day, 0, 0, 0};
    for (int second = 0; second < 86400; ++second) {
      CivilTime civil = base;
      civil.hour = second / 3600;
      civil.minute = second / 60 % 60;
      civil.second = second % 60;
      ASSERT_EQ(Date::of(civil).civil(), civil);
    }
  }
}

TEST(Date, LeapYearsFollowTheGregorianRule) {
  EXPECT_FALSE(isLeapYear(1900));
  EXPECT_TRUE(isLeapYear(2000));
  EXPECT_FALSE(isLeapYear(2100));
  EXPECT_TRUE(isLeapYear(2024));
  EXPECT_EQ(daysInMonth(1900, 2), 28);
  EXPECT_EQ(daysInMonth(2000, 2), 29);
  EXPECT_EQ(daysInMonth(2100, 2), 28);
  EXPECT_EQ(Date::of(1900, 3, 1).days() - Date::of(1900, 2, 28).days(), 1);
  EXPECT_EQ(Date::of(2000, 3, 1).days() - Date::of(2000, 2, 28).days(), 2);
}

TEST(Date, MonthsHaveTheirDays) {
  int total = 0;
  for (int month = 1; month <= 12; ++month) total += daysInMonth(2026, month);
  EXPECT_EQ(total, 365);
  EXPECT_EQ(daysInMonth(2026, 4), 30);
  EXPECT_EQ(daysInMonth(2026, 12), 31);
  EXPECT_EQ(raisedBy([] { daysInMonth(2026, 0); }), 5);
  EXPECT_EQ(raisedBy([] { daysInMonth(2026, 13); }), 5);
}

TEST(Date, PartsThatAreNoDateRaiseInvalidCall) {
  EXPECT_EQ(raisedBy([] { Date::of(2023, 2, 29); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of(2024, 13, 1); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of(2024, 0, 1); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of(2024, 1, 0); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of(99, 12, 31); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of(10000, 1, 1); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of({2024, 1, 1, 24, 0, 0}); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of({2024, 1, 1, 0, 60, 0}); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of({2024, 1, 1, 0, 0, 60}); }), 5);
  EXPECT_EQ(raisedBy([] { Date::of({2024, 1, 1, -1, 0, 0}); }), 5);
  EXPECT_FALSE(Date::tryOf({2023, 2, 29, 0, 0, 0}).has_value());
}

TEST(Date, SerialLetsPartsOverflow) {
  EXPECT_EQ(Date::serial(2026, 13, 1), Date::of(2027, 1, 1));
  EXPECT_EQ(Date::serial(2026, 3, 0), Date::of(2026, 2, 28));
  EXPECT_EQ(Date::serial(2026, 0, 1), Date::of(2025, 12, 1));
  EXPECT_EQ(Date::serial(2026, -11, 1), Date::of(2025, 1, 1));
  EXPECT_EQ(Date::serial(2024, 1, 60), Date::of(2024, 2, 29));
  EXPECT_EQ(Date::serial(2024, 1, -1), Date::of(2023, 12, 30));
}

TEST(Date, SerialRaisesInvalidCallOutsideTheYears) {
  EXPECT_EQ(raisedBy([] { Date::serial(99, 12, 31); }), 5);
  EXPECT_EQ(raisedBy([] { Date::serial(9999, 12, 32); }), 5);
  EXPECT_EQ(raisedBy([] { Date::serial(2147483647, 2147483647, 2147483647); }), 5);
  EXPECT_EQ(raisedBy([] { Date::serial(-2147483647, -2147483647, -2147483647); }), 5);
  EXPECT_EQ(Date::serial(99, 13, 1), Date::of(100, 1, 1));
}

TEST(Date, ReadingOutsideTheYearsRaisesOverflow) {
  EXPECT_EQ(raisedBy([] { (void)Date(2958466).civil(); }), 6);
  EXPECT_EQ(raisedBy([] { (void)Date(2958465.9999999).civil(); }), 6);
  EXPECT_EQ(raisedBy([] { (void)Date(-657435).civil(); }), 6);
  EXPECT_EQ(raisedBy([] { (void)Date(std::nan("")).civil(); }), 6);
  EXPECT_EQ(raisedBy([] { (void)Date(HUGE_VAL).civil(); }), 6);
  EXPECT_EQ(raisedBy([] { (void)Date(1e300).weekday(); }), 6);
  EXPECT_EQ(parts(-657434.5), (std::vector<int>{100, 1, 1, 12, 0, 0}));
}

TEST(Date, WeekdaysCountFromSunday) {
  EXPECT_EQ(Date::of(2026, 11, 21).weekday(), 7);
  EXPECT_EQ(Date::of(2026, 11, 22).weekday(), 1);
  EXPECT_EQ(Date::of(2024, 3, 5).weekday(), 3);
  EXPECT_EQ(Date().weekday(), 7);
  EXPECT_EQ(Date(-1).weekday(), 6);
  EXPECT_EQ(Date(-1.25).weekday(), 6);
  EXPECT_EQ(Date(-6).weekday(), 1);
  EXPECT_EQ(Date(-7).weekday(), 7);
}

TEST(Date, DayOnlyDropsTheTimeAndTheSignOfZero) {
  EXPECT_EQ(Date(45356.9).dayOnly().days(), 45356);
  EXPECT_FALSE(std::signbit(Date(-0.5).dayOnly().days()));
}

}  // namespace
}  // namespace tavelor
