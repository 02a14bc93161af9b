// SPDX-License-Identifier: MIT
// Money with four decimals.
#pragma once

#include <compare>
#include <cstdint>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// An amount as a 64-bit count of ten-thousandths: exact to four decimals within about
/// +-922,337,203,685,477.5807.
///
/// Errors: every operation whose result does not fit raises error 6 (overflow); nothing wraps.
/// Rounding: from a double, and in products, to the nearest ten-thousandth, halves to even.
class TAVELOR_API Currency {
 public:
  static constexpr std::int64_t kScale = 10'000;  ///< parts of one unit

  constexpr Currency() = default;
  /// The amount of `scaled` ten-thousandths.
  static constexpr Currency fromScaled(std::int64_t scaled) {
    Currency c;
    c.scaled_ = scaled;
    return c;
  }
  /// Rounds halves to even on the decimal digits of `amount`. Raises 6 out of range or not a
  /// number.
  static Currency fromDouble(double amount);

  /// Ten-thousandths.
  constexpr std::int64_t scaled() const { return scaled_; }
  /// The nearest double.
  double toDouble() const { return static_cast<double>(scaled_) / static_cast<double>(kScale); }

  /// Raises 6 for the least amount, whose opposite does not fit.
  Currency operator-() const;
  friend TAVELOR_API Currency operator+(Currency a, Currency b);
  friend TAVELOR_API Currency operator-(Currency a, Currency b);
  friend TAVELOR_API Currency operator*(Currency a, Currency b);
  friend constexpr auto operator<=>(Currency, Currency) = default;

 private:
  std::int64_t scaled_ = 0;
};

/// Without its sign.
TAVELOR_API Currency absolute(Currency amount);
/// To so many decimals, halves to even.
TAVELOR_API Currency rounded(Currency amount, int decimals);

/// The sum of any count of amounts, the same in whatever order they come: only a total that does
/// not fit raises 6, not what it passes on the way. Good in zeroed memory.
class TAVELOR_API CurrencySum {
 public:
  void add(Currency amount);  ///< never raises
  Currency total() const;     ///< of what was added; 0 of nothing

 private:
  std::int64_t scaled_ = 0;
  std::int64_t wraps_ = 0;
};

}  // namespace tavelor
