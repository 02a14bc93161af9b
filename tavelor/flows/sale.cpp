// SPDX-License-Identifier: MIT
// What a sale comes to.
#include "tavelor/flows/sale.hpp"

#include <fmt/format.h>

#include "tavelor/flows/amounts.hpp"

namespace tavelor::flows {

std::string isoDay(Date day) {
  const CivilTime civil = day.civil();
  return fmt::format("{:04}-{:02}-{:02}", civil.year, civil.month, civil.day);
}

double SaleLine::netPrice() const {
  return discount == 0 ? price : discounted(price, discount);
}

double SaleLine::amount() const {
  return amountOf(quantity, netPrice());
}

double Sale::total() const {
  return totalOf(lines);
}

}  // namespace tavelor::flows
