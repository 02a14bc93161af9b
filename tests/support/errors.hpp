// SPDX-License-Identifier: MIT
// The error that an action raises, by its parts.
#pragma once

#include <cstdint>
#include <string>

#include "tavelor/platform/error.hpp"

namespace tavelor::test {

/// The number of the tavelor::Error that `action` raises, or 0.
template <typename Action>
std::int32_t errorOf(Action&& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.number();
  }
  return 0;
}

/// Its description, or "".
template <typename Action>
std::string sentenceOf(Action&& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.description();
  }
  return {};
}

}  // namespace tavelor::test
