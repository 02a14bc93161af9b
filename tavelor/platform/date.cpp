// SPDX-License-Identifier: MIT
// Dates and times as day numbers.
#include "tavelor/platform/date.hpp"

#include <algorithm>
#include <cmath>
#include <ctime>

#include "tavelor/platform/error.hpp"

namespace tavelor {

namespace {

constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;
constexpr std::int64_t kFirstDay = -657434;  // 0100-01-01
constexpr std::int64_t kLastDay = 2958465;   // 9999-12-31
constexpr std::int64_t kSecondsOfDay = 86400;

struct Moment {
  std::int64_t day = 0;
  int second = 0;
};

/// To the nearest second. Raises 6 outside the years 100 to 9999.
Moment momentOf(double days) {
  if (!(days > static_cast<double>(kFirstDay - 1) && days < static_cast<double>(kLastDay + 1))) {
    raise(errors::kOverflow, "Date");
  }
  Moment moment;
  moment.day = static_cast<std::int64_t>(days);
  const double fraction = std::fabs(days - static_cast<double>(moment.day));
  moment.second = static_cast<int>(std::lround(fraction * static_cast<double>(kSecondsOfDay)));
  if (moment.second == kSecondsOfDay) {
    ++moment.day;
    moment.second = 0;
    if (moment.day > kLastDay) raise(errors::kOverflow, "Date");
  }
  return moment;
}

/// Days since 1899-12-30 of a day of the Gregorian calendar. Years are counted from March, so that
/// the leap day comes last, and in eras of 400 years, which all have the same 146097 days.
std::int64_t dayNumber(std::int64_t year, int month, int day) {
  if (month <= 2) --year;
  const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
  const auto yearOfEra = static_cast<int>(year - era * 400);
  const int dayOfYear = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
  const int dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
  constexpr std::int64_t kDaysFromYearZero = 693899;  // 0000-03-01 to 1899-12-30
  return era * 146097 + dayOfEra - kDaysFromYearZero;
}

void setDay(CivilTime& civil, std::int64_t day) {
  const std::int64_t sinceYearZero = day + 693899;
  const std::int64_t era = (sinceYearZero >= 0 ? sinceYearZero : sinceYearZero - 146096) / 146097;
  const std::int64_t dayOfEra = sinceYearZero - era * 146097;
  const std::int64_t yearOfEra =
      (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
  const std::int64_t dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const std::int64_t marchMonth = (5 * dayOfYear + 2) / 153;
  civil.day = static_cast<int>(dayOfYear - (153 * marchMonth + 2) / 5 + 1);
  civil.month = static_cast<int>(marchMonth < 10 ? marchMonth + 3 : marchMonth - 9);
  civil.year = static_cast<int>(yearOfEra + era * 400 + (civil.month <= 2 ? 1 : 0));
}

double daysOf(std::int64_t day, std::int64_t second) {
  const double fraction = static_cast<double>(second) / static_cast<double>(kSecondsOfDay);
  return day < 0 ? static_cast<double>(day) - fraction : static_cast<double>(day) + fraction;
}

}  // namespace

bool isLeapYear(int year) {
  return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

int daysInMonth(int year, int month) {
  if (month < 1 || month > 12) raise(errors::kInvalidCall, "Date", "There are 12 months.");
  if (month == 2) return isLeapYear(year) ? 29 : 28;
  return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

std::optional<Date> Date::tryOf(const CivilTime& civil) {
  if (civil.year < kFirstYear || civil.year > kLastYear || civil.month < 1 || civil.month > 12 ||
      civil.day < 1 || (civil.day > 28 && civil.day > daysInMonth(civil.year, civil.month)) ||
      civil.hour < 0 || civil.hour > 23 || civil.minute < 0 || civil.minute > 59 ||
      civil.second < 0 || civil.second > 59) {
    return std::nullopt;
  }
  return Date(daysOf(dayNumber(civil.year, civil.month, civil.day),
                     (civil.hour * 60 + civil.minute) * 60 + civil.second));
}

Date Date::now() {
  const std::time_t seconds = std::time(nullptr);
  std::tm local{};
  localtime_r(&seconds, &local);
  return Date::of({local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour,
                   local.tm_min, std::min(local.tm_sec, 59)});
}

Date Date::of(const CivilTime& civil) {
  const std::optional<Date> date = tryOf(civil);
  if (!date) raise(errors::kInvalidCall, "Date", "No such date.");
  return *date;
}

Date Date::serial(int year, int month, int day) {
  const std::int64_t months = static_cast<std::int64_t>(year) * 12 + month - 1;
  const std::int64_t realYear = (months >= 0 ? months : months - 11) / 12;
  const int realMonth = static_cast<int>(months - realYear * 12) + 1;
  const std::int64_t number = dayNumber(realYear, realMonth, 1) + day - 1;
  if (number < kFirstDay || number > kLastDay) {
    raise(errors::kInvalidCall, "Date", "The years go from 100 to 9999.");
  }
  return Date(static_cast<double>(number));
}

CivilTime Date::civil() const {
  const Moment moment = momentOf(days_);
  CivilTime civil;
  setDay(civil, moment.day);
  civil.hour = moment.second / 3600;
  civil.minute = moment.second / 60 % 60;
  civil.second = moment.second % 60;
  return civil;
}

Date Date::dayOnly() const {
  return Date(std::trunc(days_) + 0.0);  // no negative zero
}

int Date::weekday() const {
  // Day 0 was a Saturday.
  const auto rest = static_cast<int>((momentOf(days_).day + 6) % 7);
  return (rest + 7) % 7 + 1;
}

}  // namespace tavelor
