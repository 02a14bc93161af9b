// SPDX-License-Identifier: MIT
// What a delivery comes to.
#include "tavelor/flows/delivery.hpp"

#include "tavelor/flows/amounts.hpp"

namespace tavelor::flows {

double DeliveryLine::netPrice() const {
  return discounted(price, discount);
}

double DeliveryLine::amount() const {
  return amountOf(quantity, netPrice());
}

double Delivery::total() const {
  return totalOf(lines);
}

}  // namespace tavelor::flows
