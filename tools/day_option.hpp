// SPDX-License-Identifier: MIT
// Options that name a day.
#pragma once

#include <optional>
#include <string>

#include "tavelor/platform/date.hpp"

namespace tavelor::tools {

/// What an option like "--from 2010-12-31" gives; nothing for "". Raises UsageError, naming the
/// option, for what is no such day.
std::optional<Date> dayOption(const std::string& name, const std::string& text);

/// The days of --from and --to.
struct DayRange {
  std::optional<Date> from;
  std::optional<Date> to;
};
/// Raises UsageError as dayOption(), and where --from lies behind --to.
DayRange dayRange(const std::string& from, const std::string& to);

}  // namespace tavelor::tools
