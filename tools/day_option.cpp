// SPDX-License-Identifier: MIT
// Options that name a day.
#include "tools/day_option.hpp"

#include <fmt/format.h>

#include "tavelor/platform/date_text.hpp"
#include "tools/command.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

std::optional<Date> dayOption(const std::string& name, const std::string& text) {
  if (text.empty()) return std::nullopt;
  const bool isIso = text.size() == 10 && text[4] == '-' && text[7] == '-';
  constexpr std::string_view kFirstYear = "0100";
  if (isIso && text.substr(0, kFirstYear.size()) < kFirstYear) {
    throw UsageError(
        fmt::format("{} lies before the year 100, where days begin: {}", name, printable(text)));
  }
  const std::optional<Date> day = parseSqlDate(text);
  if (!day || !isIso) {
    throw UsageError(fmt::format("{} is no day like 2010-12-31: {}", name, printable(text)));
  }
  return day;
}

DayRange dayRange(const std::string& from, const std::string& to) {
  const DayRange days{dayOption("--from", from), dayOption("--to", to)};
  if (days.from && days.to && *days.from > *days.to) {
    throw UsageError(fmt::format("--from lies behind --to: {}, {}", from, to));
  }
  return days;
}

}  // namespace tavelor::tools
