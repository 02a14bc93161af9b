// SPDX-License-Identifier: MIT
// The fixed moment, or local time.
#include "tavelor/services/clock.hpp"

namespace tavelor {

Date Clock::now() const {
  return fixed_.value_or(Date::now());
}

}  // namespace tavelor
