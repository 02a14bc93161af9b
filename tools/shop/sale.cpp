// SPDX-License-Identifier: MIT
// What a sale comes to.
#include "tools/shop/sale.hpp"

#include <fmt/format.h>

#include "tavelor/platform/number_text.hpp"

namespace tavelor::shop {

std::string isoDay(Date day) {
  const CivilTime civil = day.civil();
  return fmt::format("{:04}-{:02}-{:02}", civil.year, civil.month, civil.day);
}

double SaleLine::netPrice() const {
  return discount == 0 ? price : roundHalfAway(price * (1 - discount / 100), 4);
}

double SaleLine::amount() const {
  return roundHalfAway(quantity * netPrice(), 2);
}

double Sale::total() const {
  double sum = 0;
  for (const SaleLine& line : lines) sum += line.amount();
  return roundHalfAway(sum, 2);  // a sum of cents is one, and not what binary fractions leave of it
}

}  // namespace tavelor::shop
