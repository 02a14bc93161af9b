// SPDX-License-Identifier: MIT
// Dates and times as day numbers.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// A date read as a calendar and a clock show it. Years 100 to 9999, months and days from 1,
/// hours 0 to 23; seconds are whole.
struct TAVELOR_API CivilTime {
  int year = 1899;
  int month = 12;
  int day = 30;
  int hour = 0;
  int minute = 0;
  int second = 0;
  friend constexpr bool operator==(const CivilTime&, const CivilTime&) = default;
};

/// A moment without a time zone: days since 1899-12-30, the fraction being the time of the day.
/// In a negative number the fraction counts away from zero (-1.25 is 1899-12-29 06:00).
class TAVELOR_API Date {
 public:
  constexpr Date() = default;
  /// Days since 30 December 1899, the time as a fraction.
  constexpr explicit Date(double days) : days_(days) {}
  /// Raises 5 when the parts are no date of the years 100 to 9999.
  static Date of(const CivilTime& civil);
  /// The same without a time.
  static Date of(int year, int month, int day) { return of({year, month, day, 0, 0, 0}); }
  /// The same with parts that may overflow: month 13 is January of the next year, day 0 the last
  /// of the month before. Raises 5 when the result leaves the years 100 to 9999.
  static Date serial(int year, int month, int day);
  /// This computer's local time, to the second. A leap second reads as the second before it.
  static Date now();
  /// Nothing when the parts are no date.
  static std::optional<Date> tryOf(const CivilTime& civil);

  /// The day number with its fraction.
  constexpr double days() const { return days_; }
  /// To the nearest second. Raises 6 outside the years 100 to 9999.
  CivilTime civil() const;
  /// The day without its time.
  Date dayOnly() const;
  /// 1 Sunday to 7 Saturday.
  int weekday() const;

  friend constexpr auto operator<=>(Date, Date) = default;

 private:
  double days_ = 0;
};

/// Whether a year has a 29th of February.
TAVELOR_API bool isLeapYear(int year);
/// 28 to 31.
TAVELOR_API int daysInMonth(int year, int month);

}  // namespace tavelor
