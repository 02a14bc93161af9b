// SPDX-License-Identifier: MIT
// A small day: a shop opens, sells, takes back, closes and reconciles, by the flows that the
// tavelor command uses. From C, from Python and by the command it is the same day, and the same
// paper.
#include <iostream>
#include <string>
#include <vector>

#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/reconciliation.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/platform/error.hpp"
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
    const tavelor::Date today = tavelor::Date::of(2025, 11, 20);
    apartment.clock().fix(today);  // the same paper every day

    flows::seedCatalogues();
    flows::setIssuer({.name = "Colmado Rius", .fiscalNumber = "12345678Z"});
    flows::Shop shop;
    shop.openTills({"01"});
    shop.recover();  // what a power cut has left of the last sale

    flows::Sale sale;
    sale.reference = "V0001";
    sale.till = "01";
    sale.day = today;
    sale.time = "10:32";
    sale.payment = "1";  // cash
    sale.delivered = 10;
    sale.lines = {{.code = "PAN",
                   .description = "Barra",
                   .family = "PAN",
                   .quantity = 3,
                   .price = 1.1,
                   .tax = 4},
                  {.code = "CAFE",
                   .description = "Café molido",
                   .family = "DES",
                   .quantity = 1,
                   .price = 2.75,
                   .tax = 10}};
    const double ticket = shop.sell(sale).value();
    print(flows::ticketText(ticket));
    shop.takeBack({.ticket = ticket, .till = "01", .day = today, .lines = {{1, 1}}});

    print(flows::slipText(shop.close("01", today).value().number));

    flows::Reconciliation reconciliation;
    reconciliation.expect(sale);
    sale.lines.resize(1);
    sale.lines.front().quantity = -1;  // what was taken back
    reconciliation.expect(sale);
    reconciliation.compare();
    for (const auto& difference : reconciliation.differences()) {
      std::cout << flows::Reconciliation::kNames[difference.place] << ": " << difference.what
                << '\n';
    }
    const flows::Tally& sold = reconciliation.total(flows::Reconciliation::kHistory);
    std::cout << "history: " << sold.tickets << " tickets, " << sold.lines << " lines, "
              << sold.cents << " cents\n";
    return reconciliation.differences().empty() ? 0 : 1;
  } catch (const tavelor::Error& error) {
    std::cerr << error.what() << '\n';
    return 1;
  }
}
