// SPDX-License-Identifier: MIT
// What of an invoice's total is base, tax and surcharge, rate by rate.
#pragma once

#include <span>
#include <string>
#include <vector>

#include "tavelor/fiscal/record.hpp"

namespace tavelor::fiscal {

/// An amount that is sold at a rate.
struct TaxedAmount {
  double amount = 0;     ///< euros, tax included
  double rate = 0;       ///< percent
  double surcharge = 0;  ///< percent of the base, on top of the amount
};

/// The invoice's amounts.
struct Breakdown {
  std::vector<Detail> details;  ///< by rate
  Amount quota;                 ///< tax and surcharge
  Amount total;
};

/// Of each rate the sum of its amounts, in whole cents, is split: tax first, half a cent away from
/// zero, and the base is what is left, so that base and tax add up to the amounts. The surcharge is
/// its rate of that base, rounded in the same way, and what was paid is all three. What is sold at
/// 0 percent is of `zeroRate`: exempt, not subject, taxed at 0, or with the tax owed by who buys.
Breakdown breakdownOf(std::span<const TaxedAmount> amounts, Operation zeroRate);

/// The same details once more, negative.
Breakdown negated(Breakdown breakdown);

/// The sum of several, rate by rate.
Breakdown joined(std::span<const Breakdown> parts);

}  // namespace tavelor::fiscal
