// SPDX-License-Identifier: MIT
// Amounts, rates, days and moments as records write them.
#include "tavelor/fiscal/amount.hpp"

#include <cmath>
#include <cstdlib>
#include <ctime>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/clock.hpp"

namespace tavelor::fiscal {

namespace {

constexpr double kTooLarge = 1e12;
constexpr std::size_t kMostDigits = 12;
constexpr std::int64_t kMinute = 60;
constexpr std::int64_t kDay = 86'400;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// Takes a number of exactly so many digits off a text; -1, and the text as it was, for anything
/// else.
int takeDigits(std::string_view& text, std::size_t count) {
  if (text.size() < count) return -1;
  int number = 0;
  for (std::size_t at = 0; at < count; ++at) {
    if (!isDigit(text[at])) return -1;
    number = number * 10 + (text[at] - '0');
  }
  text.remove_prefix(count);
  return number;
}

/// Writes the last so many digits of a number over those that a text has there.
void putDigits(std::string& text, std::size_t at, std::size_t count, int number) {
  for (; count > 0; number /= 10) text[at + --count] = static_cast<char>('0' + number % 10);
}

bool take(std::string_view& text, char mark) {
  if (!text.starts_with(mark)) return false;
  text.remove_prefix(1);
  return true;
}

/// Days since the beginning of 1970.
std::int64_t dayNumber(Date day) {
  static const double kFirst = Date::of(1970, 1, 1).days();
  return static_cast<std::int64_t>(day.days() - kFirst);
}

/// As if the civil time were that of Greenwich.
std::int64_t civilSeconds(const CivilTime& civil) {
  const Date day = Date::of(civil.year, civil.month, civil.day);
  return dayNumber(day) * kDay + civil.hour * 3600 + civil.minute * 60 + civil.second;
}

std::tm brokenDown(const CivilTime& civil) {
  std::tm parts = {};
  parts.tm_year = civil.year - 1900;
  parts.tm_mon = civil.month - 1;
  parts.tm_mday = civil.day;
  parts.tm_hour = civil.hour;
  parts.tm_min = civil.minute;
  parts.tm_sec = civil.second;
  parts.tm_isdst = -1;
  return parts;
}

/// Seconds that this computer's time is ahead of that of Greenwich. In the hour that summer time
/// ends with, which is there twice, the computer's own clock knows which one it is.
std::int64_t difference(const CivilTime& civil) {
  const std::time_t now = std::time(nullptr);
  std::tm parts = {};
  localtime_r(&now, &parts);
  const CivilTime shown = {parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                           parts.tm_hour,        parts.tm_min,     std::min(parts.tm_sec, 59)};
  if (std::abs(civilSeconds(shown) - civilSeconds(civil)) < kMinute) return parts.tm_gmtoff;
  std::tm fixed = brokenDown(civil);
  std::mktime(&fixed);
  return fixed.tm_gmtoff;
}

}  // namespace

Amount Amount::ofCents(std::int64_t cents) {
  Amount amount;
  amount.cents_ = cents;
  const std::int64_t size = std::abs(cents);
  amount.text_ = fmt::format("{}{}.{:02}", cents < 0 ? "-" : "", size / 100, size % 100);
  return amount;
}

Amount Amount::of(double value) {
  const double rounded = std::isfinite(value) ? roundHalfAway(value, 2) : value;
  if (!(std::abs(rounded) < kTooLarge)) raise(errors::kOverflow, "Fiscal");
  return ofCents(std::llround(rounded * 100));
}

std::optional<Amount> Amount::read(std::string_view text) {
  std::string_view rest = text;
  const bool isNegative = rest.starts_with('-');
  if (isNegative || rest.starts_with('+')) rest.remove_prefix(1);
  std::size_t digits = 0;
  std::int64_t whole = 0;
  for (; !rest.empty() && isDigit(rest.front()); rest.remove_prefix(1), ++digits) {
    if (digits == kMostDigits) return std::nullopt;
    whole = whole * 10 + (rest.front() - '0');
  }
  if (digits == 0) return std::nullopt;
  std::int64_t hundredths = 0;
  if (take(rest, '.')) {
    for (const int weight : {10, 1}) {
      if (rest.empty() || !isDigit(rest.front())) break;
      hundredths += weight * (rest.front() - '0');
      rest.remove_prefix(1);
    }
  }
  if (!rest.empty()) return std::nullopt;
  Amount amount;
  amount.text_ = text;
  amount.cents_ = (isNegative ? -1 : 1) * (whole * 100 + hundredths);
  return amount;
}

std::string dayText(Date day) {
  const CivilTime civil = day.civil();
  std::string text = "00-00-0000";
  putDigits(text, 0, 2, civil.day);
  putDigits(text, 3, 2, civil.month);
  putDigits(text, 6, 4, civil.year);
  return text;
}

std::optional<Date> readDay(std::string_view text) {
  CivilTime civil;
  civil.day = takeDigits(text, 2);
  if (civil.day < 0 || !take(text, '-')) return std::nullopt;
  civil.month = takeDigits(text, 2);
  if (civil.month < 0 || !take(text, '-')) return std::nullopt;
  civil.year = takeDigits(text, 4);
  if (civil.year < 0 || !text.empty()) return std::nullopt;
  return Date::tryOf(civil);
}

std::string momentOf(const Clock& clock) {
  const CivilTime civil = clock.now().civil();
  const std::int64_t ahead = difference(civil) / kMinute;
  return fmt::format("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}{}{:02}:{:02}", civil.year, civil.month,
                     civil.day, civil.hour, civil.minute, civil.second, ahead < 0 ? '-' : '+',
                     std::abs(ahead) / 60, std::abs(ahead) % 60);
}

std::optional<std::int64_t> secondsOf(std::string_view moment) {
  CivilTime civil;
  civil.year = takeDigits(moment, 4);
  if (civil.year < 0 || !take(moment, '-')) return std::nullopt;
  civil.month = takeDigits(moment, 2);
  if (civil.month < 0 || !take(moment, '-')) return std::nullopt;
  civil.day = takeDigits(moment, 2);
  if (civil.day < 0 || !take(moment, 'T')) return std::nullopt;
  civil.hour = takeDigits(moment, 2);
  if (civil.hour < 0 || !take(moment, ':')) return std::nullopt;
  civil.minute = takeDigits(moment, 2);
  if (civil.minute < 0 || !take(moment, ':')) return std::nullopt;
  civil.second = takeDigits(moment, 2);
  if (civil.second < 0 || !Date::tryOf(civil)) return std::nullopt;
  if (moment == "Z") return civilSeconds(civil);
  const bool isBehind = moment.starts_with('-');
  if (!isBehind && !moment.starts_with('+')) return std::nullopt;
  moment.remove_prefix(1);
  const int hours = takeDigits(moment, 2);
  if (hours < 0 || hours > 14 || !take(moment, ':')) return std::nullopt;
  const int minutes = takeDigits(moment, 2);
  if (minutes < 0 || minutes > 59 || !moment.empty()) return std::nullopt;
  return civilSeconds(civil) - (isBehind ? -1 : 1) * (hours * 3600 + minutes * 60);
}

}  // namespace tavelor::fiscal
