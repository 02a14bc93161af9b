// SPDX-License-Identifier: MIT
// How prices, discounts and lines become amounts, for what is sold and for what comes in.
#pragma once

#include "tavelor/platform/number_text.hpp"

namespace tavelor::flows {

/// A price less so many percent, to the four decimals that prices keep.
inline double discounted(double price, double discount) {
  return roundHalfAway(price * (1 - discount / 100), 4);
}

/// Quantity by price, in whole cents; half a cent goes away from zero.
inline double amountOf(double quantity, double price) {
  return roundHalfAway(quantity * price, 2);
}

/// An amount by what of it is tax. Both parts are whole cents, and add up to it.
struct TaxSplit {
  double base = 0;
  double tax = 0;
};

/// Of the sum of all lines of a rate (percent) in one ticket, which holds the tax or not.
inline TaxSplit splitOf(double sum, double rate, bool isIncluded = true) {
  sum = roundHalfAway(sum, 2);
  const double tax = roundHalfAway(sum * rate / (isIncluded ? 100 + rate : 100), 2);
  return {isIncluded ? roundHalfAway(sum - tax, 2) : sum, tax};
}

/// The equivalence surcharge (percent) on a base that is in whole cents. It comes on top of what is
/// paid, as the classes add it, and is a part of no price.
inline double surchargeOn(double base, double rate) {
  return rate == 0 ? 0 : roundHalfAway(base * rate / 100, 2);
}

/// The sum of the lines' amounts, each in whole cents.
template <typename Lines>
double totalOf(const Lines& lines) {
  double sum = 0;
  for (const auto& line : lines) sum += line.amount();
  return roundHalfAway(sum, 2);  // a sum of cents is one, and not what binary fractions leave of it
}

}  // namespace tavelor::flows
