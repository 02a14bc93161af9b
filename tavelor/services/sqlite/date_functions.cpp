// SPDX-License-Identifier: MIT
// Functions on dates, and the clock.
#include <array>
#include <cmath>

#include <fmt/format.h>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/date_text.hpp"
#include "tavelor/services/sqlite/functions.hpp"

namespace tavelor::engine::sqlite {

namespace {

double dateOf(const Call& call, int i) {
  if (call.isNumber(i)) return sqlite3_value_double(call.argument(i));
  const std::string_view written = call.text(i);
  const auto date = parseDate(written, call.locale());
  if (!date) refuse(errors::kTypeMismatch, "'" + std::string(written) + "' is no date");
  return date->days();
}

void dateValue(Call& call) {
  if (call.isNumber(0)) return call.pass(0);
  call.give(dateOf(call, 0));
}

/// Raises 6 for a day of no year that there is.
void day(Call& call) {
  const double days = dateOf(call, 0);
  static_cast<void>(Date(days).civil());
  call.give(days);
}

/// From 1 on, counted from the day `first`: 1 is Sunday, 0 the country's own, Monday.
std::int64_t weekday(Date date, std::int64_t first) {
  if (first < 0 || first > 7) {
    refuse(errors::kInvalidCall, fmt::format("A week begins on day 1 to 7, not {}", first));
  }
  if (first == 0) first = 2;
  return (date.weekday() - first + 7) % 7 + 1;
}

void part(Call& call) {
  const std::string_view code = call.text(0);
  const Date date(dateOf(call, 1));
  if (code == "w") return call.give(weekday(date, call.count() == 3 ? call.rounded(2) : 1));
  const CivilTime civil = date.civil();
  const auto give = [&](int value) { call.give(std::int64_t{value}); };
  if (code == "yyyy") return give(civil.year);
  if (code == "m") return give(civil.month);
  if (code == "d") return give(civil.day);
  if (code == "h") return give(civil.hour);
  if (code == "n") return give(civil.minute);
  if (code == "s") return give(civil.second);
  refuse(errors::kInvalidCall, "A date has no part '" + std::string(code) + "'");
}

int partOf(const Call& call, int i) {
  const std::int64_t value = call.rounded(i);
  // Far beyond any date, and far from where the sums of years, months and days would overflow.
  if (value < -4'000'000 || value > 4'000'000) refuse(errors::kInvalidCall);
  return static_cast<int>(value);
}

void dateSerial(Call& call) {
  call.give(Date::serial(partOf(call, 0), partOf(call, 1), partOf(call, 2)).days());
}

/// By the session's clock, to the second.
double nowDays(const Call& call) {
  return call.database().time().days();
}

void now(Call& call) {
  call.give(nowDays(call));
}
void today(Call& call) {
  call.give(std::floor(nowDays(call)));
}
void clock(Call& call) {
  const double days = nowDays(call);
  call.give(days - std::floor(days));
}

constexpr std::array kFunctions{Function{"tv_date", 1, entry<dateValue, Nulls::kGiveNull>},
                                Function{"tv_day", 1, entry<day, Nulls::kGiveNull>},
                                Function{"tv_part", 2, entry<part, Nulls::kGiveNull>},
                                Function{"tv_part", 3, entry<part, Nulls::kGiveNull>},
                                Function{"tv_date_serial", 3, entry<dateSerial, Nulls::kGiveNull>},
                                Function{"tv_now", 0, entry<now, Nulls::kTaken>, 0},
                                Function{"tv_today", 0, entry<today, Nulls::kTaken>, 0},
                                Function{"tv_clock", 0, entry<clock, Nulls::kTaken>, 0}};

}  // namespace

void addDateFunctions(Database& database) {
  addFunctions(database, kFunctions.data(), kFunctions.size());
}

}  // namespace tavelor::engine::sqlite
