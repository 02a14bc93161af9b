// SPDX-License-Identifier: MIT
// A sale as the till hands it over: who, when, what, and how it is paid.
#pragma once

#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"

namespace tavelor::shop {

/// "2026-11-20".
std::string isoDay(Date day);

/// One article of a sale. A negative quantity is a return.
struct SaleLine {
  std::string code;
  std::string description;
  std::string family;
  double quantity = 0;
  double price = 0;  ///< of one unit, euros, tax included
  double tax = 21;   ///< percent

  /// Quantity by price, in whole cents; half a cent goes away from zero.
  double amount() const;
};

/// One ticket. What money it makes follows from its lines.
struct Sale {
  std::string reference;  ///< what the shop calls it elsewhere; of all sales, only this one has it
  std::string till;
  Date day;              ///< without a time
  std::string time;      ///< "10:32"
  std::string customer;  ///< code; "" for one that nobody knows
  std::string name;      ///< of the customer, as typed
  std::string place;     ///< where the customer lives
  std::string payment;   ///< code of the payment method
  double delivered = 0;  ///< euros handed over; less than the total counts as the total
  std::string comment;
  std::vector<SaleLine> lines;

  double total() const;
};

}  // namespace tavelor::shop
