// SPDX-License-Identifier: MIT
// Numbers as text and text as numbers.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

struct Locale;

/// Plain printing: at most 15 significant digits, no trailing zeros, the locale's decimal sign, no
/// grouping ("1234,5" in Spanish), exponent form from 1E+15 on and where a small number needs more
/// than 15 decimals. Zero has no sign; what is not finite is NaN, Infinity or -Infinity. This is
/// what a value spliced between quotes looks like.
TAVELOR_API std::string plainNumber(double value, const Locale& locale);

/// A number for a statement without quotes: a decimal point whatever the locale, never an exponent,
/// at most `decimals` decimals (halves away from zero on the decimal digits), no trailing zeros.
/// Raises 6 for a value that is not finite.
TAVELOR_API std::string sqlNumber(double value, int decimals = 6);

/// Reads a number as the locale writes it: blanks around, sign, grouping marks before the decimal
/// sign, an exponent (E or D), a currency symbol, parentheses for negative, &H and &O. Nothing when
/// the text is no number ("" too) or one that a double cannot hold. Thousands marks are skipped
/// wherever they stand before the decimal sign; &H and &O as readRadix() has them.
TAVELOR_API std::optional<double> parseNumber(std::string_view text, const Locale& locale);

/// A whole number of another base, and the characters that it takes.
struct TAVELOR_API RadixNumber {
  std::int32_t number = 0;
  std::size_t length = 0;
};
/// What begins a text as a number in hexadecimal (&H1A) or octal (&O17), whatever the case of its
/// letters. Up to 16 bits are a signed whole number of 16 bits, more than that one of 32, so
/// &HFFFF and &HFFFFFFFF are -1 and &H10000 is 65536; a & behind the digits belongs to the number
/// and makes 32 bits of it, so &HFFFF& is 65535. Nothing for any other text, and for more than 32
/// bits.
TAVELOR_API std::optional<RadixNumber> readRadix(std::string_view text);

/// Reads a number with a decimal point and nothing else around it, as statements write it.
TAVELOR_API std::optional<double> parseSqlNumber(std::string_view text);

/// Halves to even on the decimal digits as seen (15 significant): 2.45 to 1 decimal is 2.4.
TAVELOR_API double roundHalfEven(double value, int decimals = 0);
/// Halves away from zero on the decimal digits as seen: 1.005 to 2 decimals is 1.01.
TAVELOR_API double roundHalfAway(double value, int decimals = 0);

}  // namespace tavelor
