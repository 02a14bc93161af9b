// SPDX-License-Identifier: MIT
// Which errors are a row's own.
#pragma once

#include <cstdint>

#include "tavelor/platform/error.hpp"

namespace tavelor::tools {

/// Whether an error tells of a row's own values; all others are the shop's trouble.
constexpr bool isOfTheRow(std::int32_t number) {
  switch (number) {
    case errors::kOverflow:
    case errors::kTypeMismatch:
    case errors::kSyntax:
    case errors::kIntegrityViolation:
    case errors::kMultipleStep:
    case errors::kCriteriaTypeMismatch:
      return true;
    default:
      return false;
  }
}

}  // namespace tavelor::tools
