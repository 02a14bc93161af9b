// SPDX-License-Identifier: MIT
// Text made fit to stand between quotes.
#pragma once

#include <string>
#include <string_view>

namespace tavelor {

/// The text with each single quote doubled, as a statement writes one inside a quoted text. For
/// callers of members that join values as they are.
inline std::string doubledQuotes(std::string_view text) {
  std::string doubled;
  doubled.reserve(text.size() + 4);
  for (const char c : text) {
    doubled += c;
    if (c == '\'') doubled += c;
  }
  return doubled;
}

}  // namespace tavelor
