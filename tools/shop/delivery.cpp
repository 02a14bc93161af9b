// SPDX-License-Identifier: MIT
// What a delivery comes to.
#include "tools/shop/delivery.hpp"

#include "tools/shop/amounts.hpp"

namespace tavelor::shop {

double DeliveryLine::netPrice() const {
  return discounted(price, discount);
}

double DeliveryLine::amount() const {
  return amountOf(quantity, netPrice());
}

double Delivery::total() const {
  return totalOf(lines);
}

}  // namespace tavelor::shop
