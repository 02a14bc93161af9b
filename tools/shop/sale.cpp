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

double SaleLine::amount() const {
  return roundHalfAway(quantity * price, 2);
}

double Sale::total() const {
  double sum = 0;
  for (const SaleLine& line : lines) sum += line.amount();
  return roundHalfAway(sum, 2);  // a sum of cents is one, and not what binary fractions leave of it
}

}  // namespace tavelor::shop
