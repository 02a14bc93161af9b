// SPDX-License-Identifier: MIT
// Words of the kinds of events.
#include "tavelor/fiscal/event.hpp"

#include <algorithm>
#include <array>

namespace tavelor::fiscal {

namespace {

constexpr std::array<std::string_view, 11> kKinds = {"01", "02", "03", "04", "05", "06",
                                                     "07", "08", "09", "10", "90"};

}  // namespace

std::string_view word(EventKind kind) {
  return kKinds.at(static_cast<std::size_t>(kind));
}

std::optional<EventKind> eventKindOf(std::string_view word) {
  const auto found = std::find(kKinds.begin(), kKinds.end(), word);
  if (found == kKinds.end()) return std::nullopt;
  return static_cast<EventKind>(found - kKinds.begin());
}

}  // namespace tavelor::fiscal
