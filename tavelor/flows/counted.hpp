// SPDX-License-Identifier: MIT
// Counts with their word.
#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include <fmt/format.h>

namespace tavelor::flows {

/// "1 line", "2 lines".
std::string counted(std::integral auto count, std::string_view one, std::string_view many) {
  return fmt::format("{} {}", count, count == 1 ? one : many);
}

}  // namespace tavelor::flows
