// SPDX-License-Identifier: MIT
// A number as people write it, turned into plain form. Not part of the public headers.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tavelor {

struct Locale;

/// Reads `text` as parseNumber() does and writes it to `plain` as "-1234.5e3": an optional minus,
/// digits with at most one point, an optional exponent. False when the text is no number; `plain`
/// then holds nothing of use.
bool readPlainForm(std::string_view text, const Locale& locale, std::string& plain);

/// The nearest double of a plain form; infinite where it does not fit.
double plainFormToDouble(std::string_view plain);

}  // namespace tavelor
