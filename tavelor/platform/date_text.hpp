// SPDX-License-Identifier: MIT
// Text as dates.
#pragma once

#include <optional>
#include <string_view>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

struct Locale;

/// Reads a date, a time, or both, by the locale's order; where that gives no date the other orders
/// are tried ("13-1-1970" reads anywhere). Parted by / or -, or with a month's name ("5 de marzo de
/// 2024"); all three parts are wanted. A time alone is of day zero; fractions of seconds are not
/// read. Years of two digits: 00 to 29 are 2000s, 30 to 99 1900s.
TAVELOR_API std::optional<Date> parseDate(std::string_view text, const Locale& locale);

/// Reads what stands between # and # in a statement: month/day/year whatever the locale (day and
/// month change places where the month would be above 12), yyyy-mm-dd, a time, or both.
TAVELOR_API std::optional<Date> parseSqlDate(std::string_view text);

}  // namespace tavelor
