// SPDX-License-Identifier: MIT
// Numbers as people type them.
#pragma once

#include <string_view>

namespace tavelor {
struct Locale;
}

namespace tavelor::tools {

/// Whether a text that reads as a number keeps its meaning: marks of thousands stand between groups
/// of three digits, which nobody else asks for. Under a decimal comma 9.95 reads as 995, so a price
/// with a decimal point would be taken at a hundred times what it is. True without such a mark.
bool groupsFit(std::string_view text, const Locale& numbers);

/// Raises UsageError for a text that reads as a number only by dropping a mark, naming what it was
/// typed for. Anything else passes, no number included.
void requireTypedNumber(std::string_view what, std::string_view text, const Locale& numbers);

}  // namespace tavelor::tools
