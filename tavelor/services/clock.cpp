// SPDX-License-Identifier: MIT
// Local time as a day number.
#include "tavelor/services/clock.hpp"

#include <ctime>

namespace tavelor {

Date Clock::now() const {
  if (fixed_) return *fixed_;
  const std::time_t seconds = std::time(nullptr);
  std::tm local{};
  localtime_r(&seconds, &local);
  // A leap second reads as the second before it.
  const int second = local.tm_sec > 59 ? 59 : local.tm_sec;
  return Date::of(
      {local.tm_year + 1900, local.tm_mon + 1, local.tm_mday, local.tm_hour, local.tm_min, second});
}

}  // namespace tavelor
