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

}  // namespace tavelor::tools
