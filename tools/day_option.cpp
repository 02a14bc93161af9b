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
  const std::optional<Date> day = parseSqlDate(text);
  if (!day || text.size() != 10 || text[4] != '-') {
    throw UsageError(fmt::format("{} is no day like 2010-12-31: {}", name, printable(text)));
  }
  return day;
}

}  // namespace tavelor::tools
