// SPDX-License-Identifier: MIT
// Numbers as text and text as numbers.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavelor {

struct Locale;

/// Plain printing: at most 15 significant digits, no trailing zeros, the locale's decimal sign, no
/// grouping ("1234,5" in Spanish), exponent form from 1E+15 on and where a small number needs more
/// than 15 decimals. Zero has no sign; what is not finite is NaN, Infinity or -Infinity. This is
/// what a value spliced between quotes looks like.
std::string plainNumber(double value, const Locale& locale);

/// A number for a statement without quotes: a decimal point whatever the locale, never an exponent,
/// at most `decimals` decimals (halves away from zero on the decimal digits), no trailing zeros.
/// Raises 6 for a value that is not finite.
std::string sqlNumber(double value, int decimals = 6);

/// Reads a number as the locale writes it: blanks around, sign, grouping marks before the decimal
/// sign, an exponent (E or D), a currency symbol, parentheses for negative, &H and &O. Nothing when
/// the text is no number ("" too) or one that a double cannot hold. Thousands marks are skipped
/// wherever they stand before the decimal sign; &HFFFFFFFF is -1.
std::optional<double> parseNumber(std::string_view text, const Locale& locale);

/// Reads a number with a decimal point and nothing else around it, as statements write it.
std::optional<double> parseSqlNumber(std::string_view text);

/// Halves to even on the decimal digits as seen (15 significant): 2.45 to 1 decimal is 2.4.
double roundHalfEven(double value, int decimals = 0);
/// Halves away from zero on the decimal digits as seen: 1.005 to 2 decimals is 1.01.
double roundHalfAway(double value, int decimals = 0);

}  // namespace tavelor
