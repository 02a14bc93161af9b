// SPDX-License-Identifier: MIT
// Form 347 of a shop: whom it has bought from and sold to in a year.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/fiscal/form347.hpp"

namespace tavelor::flows {

/// What a look at a year has found.
struct YearOfTrade {
  fiscal::Form347 form;              ///< those that are due, suppliers first, by their numbers
  std::uint64_t below = 0;           ///< how many others there were
  std::vector<std::string> remarks;  ///< what somebody should look at, a sentence each
};

/// The year by third parties: the customers and suppliers who share a fiscal number are one.
///
/// Sales are the records of invoices that name who buys, returns less, cancelled ones left out. Of
/// days before the shop kept records, and in a shop that keeps none, they are the tickets of known
/// customers. What goes abroad untaxed (E2, E5) is declared elsewhere. A ticket that names nobody
/// is nobody's. Cash is what of them was paid in it.
///
/// Purchases are what the ledgers of suppliers were credited: deliveries as they came in, and what
/// was entered besides; as deliveries have no tax, a supplier whose account has nothing else is
/// remarked upon.
YearOfTrade yearOfTrade(int year);

}  // namespace tavelor::flows
