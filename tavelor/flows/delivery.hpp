// SPDX-License-Identifier: MIT
// A delivery as the supplier's note tells it: from whom, when, what, and at which price.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

/// One article of a delivery, in purchase units: boxes of twelve, where the article is bought so.
struct DeliveryLine {
  std::string code = {};
  double quantity = 0;
  double price = 0;                  ///< of one purchase unit, euros, as the note tells it
  double discount = 0;               ///< percent off the price
  std::string warehouse = {};        ///< "" for the shop's main one
  std::string lot = {};              ///< "" for none
  std::optional<Date> expires = {};  ///< last day of the lot
  std::uint64_t origin = 0;          ///< line of the file that it comes from; 0 for none

  /// Price less discount, to the four decimals that prices keep.
  double netPrice() const;
  /// Quantity by net price, in whole cents; half a cent goes away from zero.
  double amount() const;
};

/// One delivery. Of all that a supplier brings, only this one has its note's number.
struct Delivery {
  std::string supplier = {};  ///< code
  std::string note = {};      ///< number of the supplier's delivery note
  Date day = {};              ///< without a time
  std::vector<DeliveryLine> lines = {};

  /// Euros, tax not included.
  double total() const;
};

}  // namespace tavelor::flows
