// SPDX-License-Identifier: MIT
// Expects an error by its number.
#pragma once

#include <gtest/gtest.h>

#include "tavelor/platform/error.hpp"

namespace tavelor {

/// The number that `action` raises, or 0 when it raises none.
template <typename Action>
std::int32_t raisedBy(Action action) {
  try {
    action();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

}  // namespace tavelor
