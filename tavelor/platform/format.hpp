// SPDX-License-Identifier: MIT
// The platform's format function.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Variant;
struct Locale;

/// Writes a value by a mask or a named format. Names (English whatever the locale, case ignored):
/// General Number, Currency, Fixed, Standard, Percent, Scientific, Yes/No, True/False, On/Off,
/// General Date, Long Date, Medium Date, Short Date, Long Time, Medium Time, Short Time.
///
/// Number masks: 0 # . , % E+ E- and up to four sections (positive;negative;zero;null); a comma
/// between digits groups, one before the point or at the end divides by a thousand. Date masks:
/// d to dddd, m to mmmm, yy yyyy, h hh n nn s ss, q w ww, AM/PM; m right after h means minutes.
/// Text masks: @ & < > !. Backslash and quotes keep characters as they are.
///
/// In a date mask / and : become the separators of the locale, - stays. A mask is of numbers, dates
/// or text by its first character with a meaning; numbers and dates convert to what the mask wants
/// ("#" gives the day number of a date), Empty is 0.
///
/// Rounding: halves away from zero on the decimal digits of the number (15 significant): 1.005 by
/// "0.00" is 1.01. What rounds to zero has no sign.
///
/// Null gives the fourth section, or "". A text that does not read as what the mask wants passes
/// unchanged. An empty mask prints plainly.
/// Errors: 6 for a day number outside the years 100 to 9999, 13 for bytes and objects.
TAVELOR_API std::string format(const Variant& value, std::string_view mask, const Locale& locale);

/// A mask taken apart once, to round many numbers by it. Mask and locale must outlive it.
class TAVELOR_API RoundingMask {
 public:
  /// Takes `mask` apart.
  RoundingMask(std::string_view mask, const Locale& locale);

  /// What format() writes, read back as a number by the same locale. Raises 13 where the written
  /// text is no number: a mask without a place before the point, or with words of its own.
  double operator()(double value) const;

 private:
  std::string_view mask_;
  const Locale& locale_;
  int decimals_;  ///< of a mask that does nothing but round and group; else negative
};

/// True if what numbers become by the mask reads as them again by the same locale, rounded to whole
/// ones at most. For masks by which numbers are rounded, not only shown.
TAVELOR_API bool readsBack(std::string_view mask, const Locale& locale);

}  // namespace tavelor
