// SPDX-License-Identifier: MIT
// Every endpoint there is, by the file that has it.
#pragma once

namespace tavelor::web {

class Routes;

void addPages(Routes& routes);
void addSession(Routes& routes);
void addHealth(Routes& routes);
void addEvents(Routes& routes);
void addClasses(Routes& routes);
void addArticles(Routes& routes);
void addPartners(Routes& routes);
void addOpenApi(Routes& routes);
void addTillSearch(Routes& routes);
void addTillCustomers(Routes& routes);
void addTillSales(Routes& routes);
void addTillHeld(Routes& routes);
void addTillTickets(Routes& routes);
void addTillClosings(Routes& routes);

/// All of them.
inline void addEndpoints(Routes& routes) {
  addPages(routes);
  addSession(routes);
  addHealth(routes);
  addEvents(routes);
  addClasses(routes);
  addArticles(routes);
  addPartners(routes);
  addOpenApi(routes);
  addTillSearch(routes);
  addTillCustomers(routes);
  addTillSales(routes);
  addTillHeld(routes);
  addTillTickets(routes);
  addTillClosings(routes);
}

}  // namespace tavelor::web
