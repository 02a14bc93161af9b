// SPDX-License-Identifier: MIT
// A till: it opens, recovers, sells at its own and at the shop's prices, takes back, closes and
// prints.
#include <iostream>
#include <string>
#include <vector>

#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"

namespace flows = tavelor::flows;

static void print(const std::vector<std::string>& paper) {
  for (const std::string& line : paper) std::cout << line << '\n';
  std::cout << '\n';
}

int main() {
  try {
    tavelor::Apartment apartment(tavelor::Installation::create("shop"));
    apartment.clock().fix(tavelor::Date::of(2026, 11, 20));  // the same paper every day

    // [till]
    flows::seedCatalogues();
    flows::setIssuer({.name = "Colmado Rius", .fiscalNumber = "12345678Z"});
    flows::Shop shop;
    shop.openTills({"01"});
    shop.recover();  // what a power cut has left of the last sale

    flows::Sale sale;
    sale.reference = "V0001";
    sale.till = "01";
    sale.day = apartment.clock().today();
    sale.payment = "1";  // cash
    sale.delivered = 5;
    sale.lines = {{.code = "PAN", .description = "Barra", .quantity = 3, .price = 1.1, .tax = 4}};
    const double ticket = shop.sell(sale).value();
    print(flows::ticketText(ticket));

    shop.takeBack({.ticket = ticket, .till = "01", .day = sale.day, .lines = {{1, 1}}});

    sale.reference = "V0002";
    sale.lines = {shop.price({.article = "PAN", .quantity = 2})};
    sale.lines.front().discount = 10;
    shop.sell(sale);

    sale.reference = "V0003";
    sale.till = "99";
    sale.lines.front().quantity = 0;
    try {
      shop.sell(sale);
    } catch (const flows::RefusedSale& refused) {
      std::cout << refused.description() << "\n\n";
    }

    print(flows::slipText(shop.close("01", sale.day).value().number));
    // [till]
    return 0;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
