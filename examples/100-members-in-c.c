// SPDX-License-Identifier: MIT
// What a day in C leaves out: why a sale is refused, the rows of a statement, a member of a class.
#include <stdio.h>
#include <stdlib.h>
#include <tavelor.h>

static void check(tavelor_status status, tavelor_error* error) {
  if (status == TAVELOR_OK) return;
  fprintf(stderr, "%s\n", tavelor_error_message(error));
  tavelor_error_free(error);
  exit(EXIT_FAILURE);
}

int main(void) {
  tavelor_error* error = NULL;
  tavelor_installation* installation = NULL;
  check(tavelor_installation_create("shop", NULL, &installation, &error), error);
  tavelor_apartment* apartment = NULL;
  check(tavelor_apartment_open(installation, &apartment, &error), error);
  check(tavelor_seed(apartment, &error), error);
  tavelor_shop* shop = NULL;
  check(tavelor_shop_open(apartment, &shop, &error), error);
  const char* const tills[] = {"01"};
  check(tavelor_shop_open_tills(shop, tills, 1, &error), error);

  double today = 0;
  const tavelor_civil civil = {.year = 2025, .month = 11, .day = 20};
  check(tavelor_date_from_civil(&civil, &today, &error), error);
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
  check(tavelor_shop_sell(shop, &sale, NULL, &error), error);

  // [refused]
  tavelor_sale_line nothing = lines[0];
  nothing.quantity = 0;
  tavelor_sale refused = sale;
  refused.reference = "V0002";
  refused.till = "99";
  refused.lines = &nothing;
  refused.line_count = 1;
  if (tavelor_shop_sell(shop, &refused, NULL, &error) == TAVELOR_E_INVALID_CALL) {
    for (size_t i = 0; i < tavelor_error_fault_count(error); ++i) {
      size_t line = 0;
      const char* const reason = tavelor_error_fault(error, i, &line, NULL);
      printf("line %zu: %s\n", line, reason);
    }
    tavelor_error_free(error);
  }
  // [refused]

  // [rows]
  tavelor_object* connection = NULL;
  check(tavelor_connection_open(apartment, 1, &connection, &error), error);
  const tavelor_value family = tavelor_of_string("PAN");
  tavelor_object* rows = NULL;
  check(tavelor_recordset_open(connection,
                               "SELECT Codigo, Descripcion FROM Articulos WHERE Familia = ?",
                               &family, 1, TAVELOR_LOCK_READ_ONLY, &rows, &error),
        error);
  int32_t on_row = 0;
  check(tavelor_recordset_move(rows, TAVELOR_FIRST, &on_row, &error), error);
  while (on_row != 0) {
    const char* name = NULL;
    size_t size = 0;
    check(tavelor_recordset_get_text(rows, 1, &name, &size, NULL, &error), error);
    printf("Article: %.*s\n", (int)size, name);
    check(tavelor_recordset_move(rows, TAVELOR_NEXT, &on_row, &error), error);
  }
  tavelor_object_release(rows);
  tavelor_object_release(connection);
  // [rows]

  // [call]
  const tavelor_class* articles = NULL;
  const tavelor_member* get_description = NULL;
  check(tavelor_class_find("clsArticulos", &articles, &error), error);
  check(tavelor_class_find_member(articles, "GetDescripcion", &get_description, &error), error);
  tavelor_object* article = NULL;
  check(tavelor_object_new(apartment, articles, &article, &error), error);
  tavelor_value code = tavelor_of_string("CAFE");
  tavelor_value name = tavelor_of_empty();
  check(tavelor_call(article, get_description, &code, 1, &name, &error), error);
  printf("%s gives %s\n", tavelor_member_signature(get_description), name.as.text.data);
  tavelor_value_clear(&name);
  tavelor_object_release(article);
  // [call]

  tavelor_shop_release(shop);
  tavelor_apartment_close(apartment);
  tavelor_installation_release(installation);
  return EXIT_SUCCESS;
}
