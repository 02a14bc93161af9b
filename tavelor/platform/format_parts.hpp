// SPDX-License-Identifier: MIT
// The parts of the format function, one for each kind of mask. Not part of the public headers.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/decimal_digits.hpp"

namespace tavelor {

struct Locale;

/// Writes a number by a mask of up to three sections: positive;negative;zero.
std::string formatNumber(const DecimalDigits& number, std::string_view mask, const Locale& locale);

/// The section that a mask keeps for Null, or "".
std::string formatNullSection(std::string_view mask, const Locale& locale);

/// Decimals that a number mask leaves, where it does nothing but round and group and always writes
/// a digit; else negative.
int roundedDecimals(std::string_view mask);

/// True for a mask that begins with AM/PM, A/P or AMPM.
bool startsHalfDay(std::string_view mask);

/// Writes a date by a mask. Raises 6 outside the years 100 to 9999.
std::string formatDate(Date date, std::string_view mask, const Locale& locale);

/// The short date, then the long time unless it is midnight; of day zero the time only.
std::string generalDate(Date date, const Locale& locale);

/// Fills the places of a text mask.
std::string formatText(std::string_view text, std::string_view mask);

}  // namespace tavelor
