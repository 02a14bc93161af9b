// SPDX-License-Identifier: MIT
// A sale as the till hands it over: who, when, what, and how it is paid.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

/// "2026-11-20".
std::string isoDay(Date day);

inline constexpr double kMostMoney = 1e9;    // euros of a line
inline constexpr double kGeneralTax = 21;    // percent
inline constexpr double kTaxOfArticle = -1;  // until the line is priced

/// One article of a sale. A negative quantity is a return.
struct SaleLine {
  std::string code;
  std::string description;
  std::string family;
  double quantity = 0;
  double price = 0;  ///< of one unit, euros, tax included
  double tax = kGeneralTax;
  double discount = 0;       ///< percent off the price
  bool wantsPrice = false;   ///< it brings none: the shop's own is to be taken, see Shop::price
  std::uint64_t origin = 0;  ///< line of the file that it comes from; 0 for none

  /// Price less discount, to the four decimals that movements keep.
  double netPrice() const;
  /// Quantity by net price, in whole cents; half a cent goes away from zero.
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
  double delivered = 0;  ///< euros handed over; less than the total counts as the total, and what
                         ///< is sold on credit takes none
  std::string comment;
  std::vector<SaleLine> lines;

  double total() const;
};

}  // namespace tavelor::flows
