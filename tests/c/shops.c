// SPDX-License-Identifier: MIT
// A shop's day: sales, returns, transactions, closings, reconciliation.
#include <stdio.h>

#include "tests/c/check.h"

static tavelor_shop* open_flows(const shop_of_test* shop) {
  tavelor_shop* flows = NULL;
  OK(tavelor_shop_open(shop->apartment, &flows, &failure));
  const char* const tills[] = {"01"};
  OK(tavelor_shop_open_tills(flows, tills, 1, &failure));
  return flows;
}

static const tavelor_sale_line kBread = {.size = sizeof kBread,
                                         .code = "PAN",
                                         .description = "Barra",
                                         .quantity = 3,
                                         .price = 1.1,
                                         .tax = 4};

static tavelor_sale sale_of(const shop_of_test* shop, const char* reference) {
  const tavelor_sale sale = {.size = sizeof sale,
                             .reference = reference,
                             .till = "01",
                             .day = shop->today,
                             .payment = "1",
                             .delivered = 5,
                             .lines = &kBread,
                             .line_count = 1};
  return sale;
}

static void a_day_is_sold_closed_and_reconciled(void) {
  shop_of_test shop = open_shop();
  const tavelor_issuer issuer = {.size = sizeof issuer,
                                 .name = "Colmado Rius",
                                 .company = "Rius, S.L.",
                                 .fiscal_number = "12345678Z",
                                 .address = "Calle Mayor 1",
                                 .place = "Reus",
                                 .postcode = "43201",
                                 .province = "Tarragona"};
  OK(tavelor_set_issuer(shop.apartment, &issuer, &failure));
  tavelor_shop* const flows = open_flows(&shop);
  const tavelor_sale sale = sale_of(&shop, "V1");
  double ticket = 0;
  OK(tavelor_shop_sell(flows, &sale, &ticket, &failure));
  CHECK(ticket == 1);
  double again = 7;
  OK(tavelor_shop_sell(flows, &sale, &again, &failure));
  CHECK(again == 0);  // that very sale is there

  tavelor_value text = tavelor_of_empty();
  OK(tavelor_ticket_text(shop.apartment, ticket, &text, &failure));
  CHECK(text.type == TAVELOR_TEXT && strstr(text.as.text.data, "Colmado Rius") != NULL);
  CHECK(strstr(text.as.text.data, "3,30") != NULL);
  tavelor_value_clear(&text);
  OK(tavelor_ticket_text(shop.apartment, 99, &text, &failure));
  CHECK(text.type == TAVELOR_EMPTY);

  const tavelor_returned_line line = {.line = 1, .quantity = 1};
  tavelor_return back = {.size = sizeof back,
                         .ticket = ticket,
                         .till = "01",
                         .day = shop.today,
                         .time = "12:00",
                         .comment = "No le gusta",
                         .lines = &line,
                         .line_count = 1};
  double returned = 0;
  OK(tavelor_shop_take_back(flows, &back, &returned, &failure));
  CHECK(returned == 2);

  // The shop's own price.
  const tavelor_sale_line priced = {
      .size = sizeof priced, .code = "PAN", .quantity = 2, .wants_price = 1};
  tavelor_sale at_shop_price = sale_of(&shop, "V2");
  at_shop_price.lines = &priced;
  OK(tavelor_shop_sell(flows, &at_shop_price, &ticket, &failure));
  CHECK(ticket == 3);

  tavelor_closing closing = {.size = sizeof closing};
  OK(tavelor_shop_close_till(flows, "01", shop.today, &closing, &failure));
  CHECK(closing.tickets == 3 && closing.number == 1);
  CHECK(closing.total > 4.395 && closing.total < 4.405);
  OK(tavelor_slip_text(shop.apartment, closing.number, &text, &failure));
  CHECK(text.type == TAVELOR_TEXT && strstr(text.as.text.data, "4,40") != NULL);
  tavelor_value_clear(&text);
  OK(tavelor_slip_text(shop.apartment, 42, &text, &failure));
  CHECK(text.type == TAVELOR_EMPTY);
  OK(tavelor_shop_close_till(flows, "01", shop.today, &closing, &failure));
  CHECK(closing.number == 0 && closing.tickets == 0);

  tavelor_recovered recovered = {.size = sizeof recovered};
  for (int32_t decision = TAVELOR_DECIDE_NOTHING; decision <= TAVELOR_KEEP; ++decision) {
    OK(tavelor_shop_recover(flows, decision, &recovered, &failure));
    CHECK(recovered.sales + recovered.closings + recovered.rewritten + recovered.taken_back +
              recovered.kept + recovered.undecided ==
          0);
  }

  tavelor_reconciliation* reconciliation = NULL;
  OK(tavelor_reconciliation_new(shop.apartment, &reconciliation, &failure));
  OK(tavelor_reconciliation_expect(reconciliation, &sale, &failure));
  tavelor_sale_line minus = kBread;
  minus.quantity = -1;
  tavelor_sale taken_back = sale;
  taken_back.lines = &minus;
  OK(tavelor_reconciliation_expect(reconciliation, &taken_back, &failure));
  size_t differences = 0;
  OK(tavelor_reconciliation_compare(reconciliation, &differences, &failure));
  CHECK(differences > 0);  // the third ticket was not told
  tavelor_difference difference = {.size = sizeof difference};
  OK(tavelor_reconciliation_difference(reconciliation, 0, &difference, &failure));
  TEXT(difference.till, "01");
  CHECK(difference.day == shop.today && *difference.place != '\0' && *difference.what != '\0');
  FAILS(TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE,
        tavelor_reconciliation_difference(reconciliation, differences, &difference, &failure));
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_reconciliation_difference(reconciliation, 0, NULL, &failure));
  tavelor_reconciliation_release(reconciliation);

  OK(tavelor_reconciliation_new(shop.apartment, &reconciliation, &failure));
  tavelor_sale_line sold = kBread;
  sold.quantity = 2;
  tavelor_sale third = sale_of(&shop, "V2");
  third.lines = &sold;
  OK(tavelor_reconciliation_expect(reconciliation, &sale, &failure));
  OK(tavelor_reconciliation_expect(reconciliation, &taken_back, &failure));
  OK(tavelor_reconciliation_expect(reconciliation, &third, &failure));
  OK(tavelor_reconciliation_compare(reconciliation, &differences, &failure));
  CHECK(differences == 0);
  tavelor_tally tally = {.size = sizeof tally};
  for (int32_t place = TAVELOR_PLACE_MEANT; place <= TAVELOR_PLACE_HISTORY; ++place) {
    OK(tavelor_reconciliation_tally(reconciliation, place, &tally, &failure));
    CHECK(tally.cents == 440 && tally.tickets == 3 && tally.owed == 0);
  }
  OK(tavelor_reconciliation_tally(reconciliation, TAVELOR_PLACE_MOVEMENTS, &tally, &failure));
  CHECK(tally.units == 4);
  FAILS(TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE,
        tavelor_reconciliation_tally(reconciliation, 42, &tally, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_reconciliation_tally(reconciliation, 0, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_reconciliation_expect(reconciliation, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_reconciliation_new(shop.apartment, NULL, &failure));
  tavelor_reconciliation_release(reconciliation);
  tavelor_reconciliation_release(NULL);
  tavelor_shop_release(flows);
  close_shop(&shop);
}

static void a_refused_sale_tells_all_that_is_wrong(void) {
  shop_of_test shop = open_shop();
  tavelor_shop* const flows = open_flows(&shop);
  tavelor_sale_line lines[] = {kBread, kBread};
  lines[1].quantity = 0;
  tavelor_sale sale = sale_of(&shop, "V1");
  sale.till = "99";
  sale.lines = lines;
  sale.line_count = 2;
  tavelor_error* error = NULL;
  double ticket = 7;
  CHECK(tavelor_shop_sell(flows, &sale, &ticket, &error) == TAVELOR_E_INVALID_CALL);
  CHECK(ticket == 7);
  CHECK(tavelor_error_fault_count(error) == 2);
  size_t line = 7;
  const char* article = NULL;
  CHECK(strstr(tavelor_error_fault(error, 0, &line, &article), "till 99") != NULL);
  CHECK(line == 0);
  CHECK(strstr(tavelor_error_fault(error, 1, &line, &article), "quantity is 0") != NULL);
  CHECK(line == 2);
  TEXT(article, "PAN");
  tavelor_error_free(error);

  // A line without a price that the shop does not have one for.
  const tavelor_sale_line unknown = {
      .size = sizeof unknown, .code = "NADA", .quantity = 1, .wants_price = 1};
  tavelor_sale_line mixed[] = {kBread, unknown};
  sale = sale_of(&shop, "V1");
  sale.lines = mixed;
  sale.line_count = 2;
  CHECK(tavelor_shop_sell(flows, &sale, &ticket, &error) == TAVELOR_E_INVALID_CALL);
  CHECK(tavelor_error_fault_count(error) == 1);
  tavelor_error_fault(error, 0, &line, &article);
  CHECK(line == 2);
  TEXT(article, "NADA");
  tavelor_error_free(error);

  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_sell(flows, NULL, &ticket, &failure));
  sale.size = 8;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_sell(flows, &sale, &ticket, &failure));
  sale.size = sizeof sale;
  mixed[0].size = 8;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_sell(flows, &sale, &ticket, &failure));
  sale.lines = NULL;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_sell(flows, &sale, &ticket, &failure));
  sale = sale_of(&shop, "\xFF");
  FAILS(TAVELOR_E_TYPE_MISMATCH, tavelor_shop_sell(flows, &sale, &ticket, &failure));

  tavelor_return back = {.size = sizeof back, .ticket = 42, .till = "01", .day = shop.today};
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_take_back(flows, &back, &ticket, &failure));
  back.line_count = 1;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_take_back(flows, &back, &ticket, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_take_back(flows, NULL, &ticket, &failure));
  tavelor_closing closing = {.size = 1};
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_shop_close_till(flows, "01", shop.today, &closing, &failure));
  closing.size = sizeof closing;
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_shop_close_till(flows, NULL, shop.today, &closing, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_recover(flows, 42, NULL, &failure));
  tavelor_recovered recovered = {.size = 1};
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_shop_recover(flows, TAVELOR_DECIDE_LATER, &recovered, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_open_tills(flows, NULL, 1, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_shop_open_tills(NULL, NULL, 0, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_open(shop.apartment, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_ticket_text(shop.apartment, 1, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_slip_text(shop.apartment, 1, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_set_issuer(shop.apartment, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_seed(NULL, &failure));
  tavelor_shop_release(flows);
  tavelor_shop_release(NULL);
  close_shop(&shop);
}

static void a_shop_needs_its_counters(void) {
  tavelor_installation* made = NULL;
  tavelor_apartment* apartment = NULL;
  OK(tavelor_installation_create("bare", NULL, &made, &failure));
  OK(tavelor_apartment_open(made, &apartment, &failure));
  tavelor_shop* flows = NULL;
  FAILS(TAVELOR_E_NO_CURRENT_RECORD, tavelor_shop_open(apartment, &flows, &failure));
  const tavelor_issuer issuer = {.size = sizeof issuer, .name = "Nadie"};
  FAILS(TAVELOR_E_NO_CURRENT_RECORD, tavelor_set_issuer(apartment, &issuer, &failure));
  CHECK(flows == NULL);
  tavelor_apartment_close(apartment);
  tavelor_installation_release(made);
}

static void a_transaction_joins_sales_and_what_is_beside_them(void) {
  shop_of_test shop = open_shop();
  tavelor_shop* const flows = open_flows(&shop);
  tavelor_transaction* transaction = NULL;
  const char* const insert =
      "INSERT INTO Bancos (Codigo, Banco, Predeterminada) VALUES ('7', 'Siete', 0)";
  for (int stored = 0; stored < 2; ++stored) {
    OK(tavelor_transaction_begin(flows, &transaction, &failure));
    tavelor_object* main = NULL;
    tavelor_object* documents = NULL;
    OK(tavelor_transaction_connections(transaction, &main, &documents, &failure));
    OK(tavelor_transaction_connections(transaction, NULL, NULL, &failure));
    CHECK(tavelor_object_is_same(main, documents) == 0);
    const tavelor_sale sale = sale_of(&shop, "V1");
    double ticket = 0;
    OK(tavelor_shop_sell(flows, &sale, &ticket, &failure));
    CHECK(ticket == 1);
    OK(tavelor_connection_execute(main, insert, NULL, 0, NULL, &failure));
    tavelor_object_release(documents);
    tavelor_object_release(main);
    if (stored == 1) OK(tavelor_transaction_commit(transaction, &failure));
    tavelor_transaction_release(transaction);

    tavelor_value text = tavelor_of_empty();
    OK(tavelor_ticket_text(shop.apartment, ticket, &text, &failure));
    CHECK((text.type == TAVELOR_TEXT) == (stored == 1));
    tavelor_value_clear(&text);
    main = connect_main(&shop);
    tavelor_object* const rows = rows_of(main, "SELECT Codigo FROM Bancos WHERE Codigo = '7'");
    CHECK(count_of(rows) == stored);
    tavelor_object_release(rows);
    tavelor_object_release(main);
  }
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_transaction_begin(NULL, &transaction, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_transaction_begin(flows, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_transaction_commit(NULL, &failure));
  tavelor_transaction_release(NULL);
  // One that is open keeps its shop, and is undone with its apartment.
  OK(tavelor_transaction_begin(flows, &transaction, &failure));
  tavelor_shop_release(flows);
  OK(tavelor_transaction_connections(transaction, NULL, NULL, &failure));
  close_shop(&shop);
  tavelor_transaction_release(transaction);
}

static void a_price_is_asked_for(void) {
  shop_of_test shop = open_shop();
  tavelor_shop* const flows = open_flows(&shop);
  const tavelor_sale sale = sale_of(&shop, "V1");
  OK(tavelor_shop_sell(flows, &sale, NULL, &failure));
  tavelor_price price = {.size = sizeof price};
  tavelor_price_question question = {.size = sizeof question, .article = "PAN", .quantity = 2};
  OK(tavelor_shop_price(flows, &question, &price, &failure));
  CHECK(price.price > 1.0999 && price.price < 1.1001);
  CHECK(price.tax == 4 && price.discount == 0 && price.surcharge == 0);
  question.day = &shop.today;
  OK(tavelor_shop_price(flows, &question, &price, &failure));
  CHECK(price.price > 1.0999 && price.price < 1.1001);
  question.article = "NADA";
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_price(flows, &question, &price, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_price(flows, NULL, &price, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_price(flows, &question, NULL, &failure));
  price.size = 3;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_price(flows, &question, &price, &failure));
  tavelor_shop_release(flows);
  close_shop(&shop);
}

/// As `tavelor fiscal setup` writes it.
static void keep_records(void) {
  FILE* const file = fopen("shop/fiscal.xml", "w");
  CHECK(file != NULL);
  if (file == NULL) return;
  fputs(
      "<?xml version=\"1.0\"?>\n"
      "<fiscal format=\"1\">\n"
      "  <taxpayer nif=\"12345678Z\" name=\"Colmado Rius\" />\n"
      "  <system producer-nif=\"A58818501\" producer=\"Tavelor\" name=\"Tavelor\" id=\"TV\""
      " installation=\"1\" />\n"
      "  <mode word=\"verifactu\" host=\"test\" />\n"
      "  <start day=\"01-11-2026\" />\n"
      "  <series tickets=\"T\" invoices=\"F\" rectifying=\"R\" />\n"
      "  <operations description=\"Venta al por menor\" zero-rate=\"E1\" />\n"
      "</fiscal>\n",
      file);
  CHECK(fclose(file) == 0);
}

static void an_invoice_replaces_a_ticket_and_another_is_cancelled(void) {
  shop_of_test shop = open_shop();
  tavelor_fiscal_check* check = NULL;
  FAILS(TAVELOR_E_NO_CURRENT_RECORD,
        tavelor_fiscal_check_new(shop.apartment, NULL, NULL, &check, NULL, &failure));
  keep_records();
  tavelor_shop* const flows = open_flows(&shop);
  double tickets[2] = {0, 0};
  tavelor_sale sale = sale_of(&shop, "V1");
  OK(tavelor_shop_sell(flows, &sale, &tickets[0], &failure));
  sale.reference = "V2";
  OK(tavelor_shop_sell(flows, &sale, &tickets[1], &failure));

  tavelor_value number = tavelor_of_empty();
  tavelor_invoice_wish wish = {.size = sizeof wish,
                               .tickets = tickets,
                               .ticket_count = 1,
                               .day = shop.today,
                               .name = "Ñandú SA",
                               .fiscal_number = "A58818502"};
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_invoice_tickets(flows, &wish, &number, &failure));
  CHECK(number.type == TAVELOR_EMPTY);
  wish.fiscal_number = "A58818501";
  OK(tavelor_shop_invoice_tickets(flows, &wish, &number, &failure));
  CHECK(number.type == TAVELOR_TEXT);
  TEXT(number.as.text.data, "F/1");
  tavelor_value_clear(&number);
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_invoice_tickets(flows, &wish, &number, &failure));
  wish.ticket_count = 0;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_invoice_tickets(flows, &wish, &number, &failure));

  const tavelor_return what = {
      .size = sizeof what, .ticket = tickets[1], .till = "01", .day = shop.today};
  double cancelling = 0;
  OK(tavelor_shop_cancel(flows, &what, &cancelling, &failure));
  CHECK(cancelling == 3);
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_shop_cancel(flows, &what, NULL, &failure));

  tavelor_fiscal_report report = {.size = sizeof report};
  OK(tavelor_fiscal_check_new(shop.apartment, NULL, NULL, &check, &report, &failure));
  CHECK(report.records == 4 && report.tickets == 3 && report.flaws == 0);
  CHECK(report.total_cents == 330);
  tavelor_flaw flaw = {.size = sizeof flaw};
  FAILS(TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE, tavelor_fiscal_check_flaw(check, 0, &flaw, &failure));
  tavelor_fiscal_check_release(check);

  // Somebody takes a record away.
  tavelor_object* documents = NULL;
  OK(tavelor_connection_open(shop.apartment, 3, &documents, &failure));
  OK(tavelor_connection_execute(documents, "DELETE FROM Fiscal_Registros WHERE Posicion = 2", NULL,
                                0, NULL, &failure));
  tavelor_object_release(documents);
  OK(tavelor_fiscal_check_new(shop.apartment, &shop.today, &shop.today, &check, &report, &failure));
  CHECK(report.records == 3 && report.flaws > 0);
  OK(tavelor_fiscal_check_flaw(check, 0, &flaw, &failure));
  CHECK(flaw.flaw == TAVELOR_FLAW_REMOVED && flaw.is_of_event == 0 && flaw.chain > 0);
  CHECK(strstr(flaw.sentence, "is missing") != NULL);
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_fiscal_check_flaw(check, 0, NULL, &failure));
  tavelor_fiscal_check_release(check);
  tavelor_shop_release(flows);
  close_shop(&shop);
}

const named_test shop_tests[] = {
    {"APriceIsAskedFor", a_price_is_asked_for},
    {"AnInvoiceReplacesATicketAndAnotherIsCancelled",
     an_invoice_replaces_a_ticket_and_another_is_cancelled},
    {"ADayIsSoldClosedAndReconciled", a_day_is_sold_closed_and_reconciled},
    {"ARefusedSaleTellsAllThatIsWrong", a_refused_sale_tells_all_that_is_wrong},
    {"AShopNeedsItsCounters", a_shop_needs_its_counters},
    {"ATransactionJoinsSalesAndWhatIsBesideThem",
     a_transaction_joins_sales_and_what_is_beside_them},
    {NULL, NULL}};
