// SPDX-License-Identifier: MIT
// Arithmetic on numbers as people write them.
#pragma once

#include <cstdint>
#include <optional>

#include "tavelor/platform/export.hpp"

namespace tavelor {

// A double stands for the decimal that it prints as. One of up to four decimals, which is what
// money and nearly all quantities are, is calculated with as that decimal and rounded once, to the
// double nearest to the result: 0.1 + 0.2 is 0.3, 4.35 * 100 is 435, 0.3 / 0.1 is 3. So results
// compare equal to what is stored or written. Numbers of more decimals, and those from about
// 900,000,000,000 on, are calculated with as doubles.
//
// Errors: 6 for a result that no double holds.

/// The number as a count of ten-thousandths, the unit of Currency; nothing for one that is not
/// calculated with as a decimal.
TAVELOR_API std::optional<std::int64_t> tenThousandthsOf(double number);

/// As decimals of up to four places; raises 6 for what no double holds.
TAVELOR_API double decimalSum(double a, double b);
/// The same.
TAVELOR_API double decimalDifference(double a, double b);
/// The same.
TAVELOR_API double decimalProduct(double a, double b);
/// `b` must not be 0.
TAVELOR_API double decimalQuotient(double a, double b);
/// The largest whole number that is not above `number`.
TAVELOR_API double decimalFloor(double number);
/// The whole number between `number` and 0 that is nearest to it.
TAVELOR_API double decimalTruncate(double number);

/// The sum of any count of numbers, the same in whatever order they come. Good in zeroed memory.
class TAVELOR_API DecimalSum {
 public:
  /// Takes one more number in.
  void add(double number);
  /// The sum so far.
  double total() const;

 private:
  void addRest(double number);

  std::int64_t tenThousandths_ = 0;
  double rest_ = 0;  // of what is no decimal
  double lost_ = 0;  // what rounding took from the rest
};

}  // namespace tavelor
