// SPDX-License-Identifier: MIT
// A sale, its receipt and the closing of the till, by the flows that the tavelor command uses.
#include <iostream>

#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"

int main() {
  try {
    tavelor::Apartment apartment(tavelor::Installation::create("shop"));
    apartment.clock().fix(tavelor::Date::of(2026, 11, 20));
    tavelor::flows::seedCatalogues();

    // [day]
    tavelor::flows::Shop shop;
    shop.openTills({"01"});
    tavelor::flows::Sale sale;
    sale.reference = "V0001";
    sale.till = "01";
    sale.day = tavelor::Date::of(2026, 11, 20);
    sale.time = "10:32";
    sale.payment = "1";  // cash
    sale.delivered = 5;
    sale.lines = {
        {.code = "PAN", .description = "Barra", .family = "PAN", .quantity = 2, .price = 1.1},
        {.code = "CAFE",
         .description = "Café molido",
         .family = "DES",
         .quantity = 1,
         .price = 2.75}};
    const double number = shop.sell(sale).value();
    const tavelor::flows::Closing closing = shop.close("01", sale.day).value();
    // [day]

    for (const std::string& line : tavelor::flows::ticketText(number)) std::cout << line << '\n';
    std::cout << '\n';
    for (const std::string& line : tavelor::flows::slipText(closing.number)) {
      std::cout << line << '\n';
    }
    return 0;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
