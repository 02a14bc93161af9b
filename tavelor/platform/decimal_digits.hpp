// SPDX-License-Identifier: MIT
// A number as the decimal digits that a person sees. Not part of the public headers.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace tavelor {

/// The value 0.d1d2d3... times ten to the power `point`; d1 is never '0', nor is the last digit.
/// All rounding happens here, on digits: a binary number that prints as 1.005 is 1.005.
struct DecimalDigits {
  static constexpr int kCapacity = 40;

  std::array<char, kCapacity> digits{};
  int count = 0;  ///< 0 for zero
  int point = 0;  ///< digits before the decimal sign; 0 or less below 1
  bool negative = false;

  bool isZero() const { return count == 0; }
  /// The digit of ten to the power `place`: 0 are the units, -1 the tenths.
  char at(int place) const {
    const int index = point - 1 - place;
    return index >= 0 && index < count ? digits[static_cast<std::size_t>(index)] : '0';
  }
  /// Digits behind the decimal sign.
  int decimals() const { return count > point ? count - point : 0; }
};

enum class Halves { kToEven, kAwayFromZero };

/// The digits of a finite number, 15 significant (7 of a single).
DecimalDigits digitsOf(double value);
DecimalDigits digitsOf(float value);
/// All digits that tell this double from its neighbours, up to 17.
DecimalDigits allDigitsOf(double value);
/// `scaled` divided by ten to the power `decimals`.
DecimalDigits digitsOf(std::int64_t scaled, int decimals);
/// Of a plain form "-123.45e6" that is known to be well formed. Digits behind the capacity only
/// matter to halves, and there just as being zero or not.
DecimalDigits digitsOf(std::string_view plain);

/// Keeps `decimals` digits behind the decimal sign (a negative count rounds to tens, hundreds).
void roundDigits(DecimalDigits& number, int decimals, Halves halves);

/// The number as a whole count of ten to the power minus `decimals`, halves to even; nothing where
/// 64 bits do not hold it.
std::optional<std::int64_t> scaledBy(DecimalDigits number, int decimals);

/// The nearest double; infinite where it does not fit.
double toDouble(const DecimalDigits& number);

/// "-1234.5", never an exponent.
void appendPlain(std::string& out, const DecimalDigits& number, std::string_view decimalSign);

}  // namespace tavelor
