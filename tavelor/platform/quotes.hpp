// SPDX-License-Identifier: MIT
// Text made fit to stand between quotes.
#pragma once

#include <string>
#include <string_view>

namespace tavelor {

/// What helps after an error that a quote inside a text has brought.
inline constexpr std::string_view kQuotesAreDoubled =
    "A quote inside a text is written twice: sqlText() writes a whole text so, "
    "doubledQuotes() what a member puts between quotes itself.";

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
