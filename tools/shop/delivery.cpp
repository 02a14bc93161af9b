// SPDX-License-Identifier: MIT
// What a delivery comes to.
#include "tools/shop/delivery.hpp"

#include "tavelor/platform/number_text.hpp"

namespace tavelor::shop {

double DeliveryLine::netPrice() const {
  return roundHalfAway(price * (1 - discount / 100), 4);
}

double DeliveryLine::amount() const {
  return roundHalfAway(quantity * netPrice(), 2);
}

double Delivery::total() const {
  double sum = 0;
  for (const DeliveryLine& line : lines) sum += line.amount();
  return roundHalfAway(sum, 2);  // a sum of cents is one, and not what binary fractions leave of it
}

}  // namespace tavelor::shop
