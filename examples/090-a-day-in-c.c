// SPDX-License-Identifier: MIT
// The small day of 070-a-day.cpp from C: a shop opens, sells, takes back, closes and reconciles.
#include <stdio.h>
#include <stdlib.h>
#include <tavelor.h>

// [check]
/// Ends the program where a call has failed, and tells why.
static void check(tavelor_status status, tavelor_error* error) {
  if (status == TAVELOR_OK) return;
  fprintf(stderr, "%s\n", tavelor_error_message(error));
  tavelor_error_free(error);
  exit(EXIT_FAILURE);
}
// [check]

static void print(tavelor_value* text) {
  printf("%s\n", text->type == TAVELOR_TEXT ? text->as.text.data : "");
  tavelor_value_clear(text);
}

int main(void) {
  tavelor_error* error = NULL;
  tavelor_installation* installation = NULL;
  check(tavelor_installation_create("shop", NULL, &installation, &error), error);
  tavelor_apartment* apartment = NULL;
  check(tavelor_apartment_open(installation, &apartment, &error), error);

  // The same paper every day.
  double today = 0;
  const tavelor_civil civil = {.year = 2025, .month = 11, .day = 20};
  check(tavelor_date_from_civil(&civil, &today, &error), error);
  check(tavelor_apartment_fix_clock(apartment, &today, &error), error);

  check(tavelor_seed(apartment, &error), error);
  const tavelor_issuer issuer = {
      .size = sizeof issuer, .name = "Colmado Rius", .fiscal_number = "12345678Z"};
  check(tavelor_set_issuer(apartment, &issuer, &error), error);
  tavelor_shop* shop = NULL;
  check(tavelor_shop_open(apartment, &shop, &error), error);
  const char* const tills[] = {"01"};
  check(tavelor_shop_open_tills(shop, tills, 1, &error), error);
  check(tavelor_shop_recover(shop, TAVELOR_DECIDE_NOTHING, NULL, &error), error);

  const tavelor_sale_line lines[] = {{.size = sizeof *lines,
                                      .code = "PAN",
                                      .description = "Barra",
                                      .family = "PAN",
                                      .quantity = 3,
                                      .price = 1.1,
                                      .tax = 4},
                                     {.size = sizeof *lines,
                                      .code = "CAFE",
                                      .description = "Café molido",
                                      .family = "DES",
                                      .quantity = 1,
                                      .price = 2.75,
                                      .tax = 10}};
  const tavelor_sale sale = {.size = sizeof sale,
                             .reference = "V0001",
                             .till = "01",
                             .day = today,
                             .time = "10:32",
                             .payment = "1",  // cash
                             .delivered = 10,
                             .lines = lines,
                             .line_count = 2};
  double ticket = 0;
  check(tavelor_shop_sell(shop, &sale, &ticket, &error), error);
  tavelor_value text = tavelor_of_empty();
  check(tavelor_ticket_text(apartment, ticket, &text, &error), error);
  print(&text);

  const tavelor_returned_line back = {.line = 1, .quantity = 1};
  const tavelor_return returned = {.size = sizeof returned,
                                   .ticket = ticket,
                                   .till = "01",
                                   .day = today,
                                   .lines = &back,
                                   .line_count = 1};
  check(tavelor_shop_take_back(shop, &returned, NULL, &error), error);

  tavelor_closing closing = {.size = sizeof closing};
  check(tavelor_shop_close_till(shop, "01", today, &closing, &error), error);
  check(tavelor_slip_text(apartment, closing.number, &text, &error), error);
  print(&text);

  tavelor_reconciliation* reconciliation = NULL;
  check(tavelor_reconciliation_new(apartment, &reconciliation, &error), error);
  check(tavelor_reconciliation_expect(reconciliation, &sale, &error), error);
  tavelor_sale_line minus_one = lines[0];
  minus_one.quantity = -1;
  tavelor_sale taken_back = sale;
  taken_back.lines = &minus_one;
  taken_back.line_count = 1;
  check(tavelor_reconciliation_expect(reconciliation, &taken_back, &error), error);
  size_t differences = 0;
  check(tavelor_reconciliation_compare(reconciliation, &differences, &error), error);
  for (size_t i = 0; i < differences; ++i) {
    tavelor_difference each = {.size = sizeof each};
    check(tavelor_reconciliation_difference(reconciliation, i, &each, &error), error);
    printf("%s: %s\n", each.place, each.what);
  }
  tavelor_tally sold = {.size = sizeof sold};
  check(tavelor_reconciliation_tally(reconciliation, TAVELOR_PLACE_HISTORY, &sold, &error), error);
  printf("history: %lld tickets, %lld lines, %lld cents\n", (long long)sold.tickets,
         (long long)sold.lines, (long long)sold.cents);
  tavelor_reconciliation_release(reconciliation);

  tavelor_shop_release(shop);
  tavelor_apartment_close(apartment);
  tavelor_installation_release(installation);
  return differences == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
