// SPDX-License-Identifier: MIT
// Values, money and dates, and what an error tells.
#include "tests/c/check.h"

static void what_is_made_in_one_word_owns_nothing(void) {
  tavelor_value values[] = {
      tavelor_of_empty(),          tavelor_of_null(),      tavelor_of_boolean(7),
      tavelor_of_int32(-5),        tavelor_of_int64(1),    tavelor_of_double(1.5),
      tavelor_of_money(12500),     tavelor_of_date(46346), tavelor_of_string("Año"),
      tavelor_of_bytes("\0\1", 2), tavelor_of_object(NULL)};
  const int32_t types[] = {TAVELOR_EMPTY, TAVELOR_NULL,   TAVELOR_BOOLEAN, TAVELOR_INT32,
                           TAVELOR_INT64, TAVELOR_DOUBLE, TAVELOR_MONEY,   TAVELOR_DATE,
                           TAVELOR_TEXT,  TAVELOR_BYTES,  TAVELOR_OBJECT};
  CHECK(values[2].as.boolean == 1);
  CHECK(values[8].as.text.size == 4);
  for (size_t i = 0; i < COUNT_OF(values); ++i) {
    CHECK(values[i].type == types[i]);
    CHECK(values[i].owned == 0);
    tavelor_value_clear(&values[i]);
    CHECK(values[i].type == TAVELOR_EMPTY);
  }
  tavelor_value_clear(NULL);
  CHECK(tavelor_of_string(NULL).as.text.size == 0);
}

static void a_value_becomes_another_type_by_the_locale(void) {
  shop_of_test shop = open_shop();
  tavelor_value value = tavelor_of_string("1.234,5");
  tavelor_value out = tavelor_of_empty();
  OK(tavelor_value_convert(shop.apartment, &value, TAVELOR_DOUBLE, &out, &failure));
  CHECK(out.type == TAVELOR_DOUBLE && out.as.number == 1234.5);
  OK(tavelor_value_convert(shop.apartment, &value, TAVELOR_MONEY, &out, &failure));
  CHECK(out.type == TAVELOR_MONEY && out.as.money == 12345000);
  OK(tavelor_value_convert(shop.apartment, &out, TAVELOR_TEXT, &out, &failure));
  if (CHECK(out.type == TAVELOR_TEXT && out.owned == 1)) TEXT(out.as.text.data, "1234,5");
  OK(tavelor_value_convert(shop.apartment, &out, TAVELOR_INT32, &out, &failure));
  CHECK(out.type == TAVELOR_INT32 && out.as.int32 == 1234);  // halves to even
  OK(tavelor_value_convert(shop.apartment, &out, TAVELOR_INT16, &out, &failure));
  CHECK(out.type == TAVELOR_INT16 && out.as.int16 == 1234);
  OK(tavelor_value_convert(shop.apartment, &out, TAVELOR_SINGLE, &out, &failure));
  CHECK(out.type == TAVELOR_SINGLE && out.as.single == 1234.0F);
  OK(tavelor_value_convert(shop.apartment, &out, TAVELOR_BOOLEAN, &out, &failure));
  CHECK(out.type == TAVELOR_BOOLEAN && out.as.boolean == 1);
  value = tavelor_of_string("20/11/2026");
  OK(tavelor_value_convert(shop.apartment, &value, TAVELOR_DATE, &out, &failure));
  CHECK(out.type == TAVELOR_DATE && out.as.date == shop.today);
  value = tavelor_of_int64(5000000000);
  OK(tavelor_value_convert(shop.apartment, &value, TAVELOR_DOUBLE, &out, &failure));
  CHECK(out.as.number == 5e9);

  FAILS(TAVELOR_E_OVERFLOW,
        tavelor_value_convert(shop.apartment, &value, TAVELOR_INT32, &out, &failure));
  CHECK(out.as.number == 5e9);  // as it was
  value = tavelor_of_null();
  FAILS(TAVELOR_E_INVALID_USE_OF_NULL,
        tavelor_value_convert(shop.apartment, &value, TAVELOR_TEXT, &out, &failure));
  value = tavelor_of_string("mucho");
  FAILS(TAVELOR_E_TYPE_MISMATCH,
        tavelor_value_convert(shop.apartment, &value, TAVELOR_DOUBLE, &out, &failure));
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_value_convert(shop.apartment, &value, TAVELOR_BYTES, &out, &failure));
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_value_convert(shop.apartment, NULL, TAVELOR_TEXT, &out, &failure));
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_value_convert(shop.apartment, &value, TAVELOR_TEXT, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED,
        tavelor_value_convert(NULL, &value, TAVELOR_TEXT, &out, &failure));
  value.type = 99;
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_value_convert(shop.apartment, &value, TAVELOR_TEXT, &out, &failure));
  value = tavelor_of_text("\xC3", 1);  // half a character
  FAILS(TAVELOR_E_TYPE_MISMATCH,
        tavelor_value_convert(shop.apartment, &value, TAVELOR_TEXT, &out, &failure));
  value = tavelor_of_text(NULL, 3);
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_value_convert(shop.apartment, &value, TAVELOR_TEXT, &out, &failure));
  close_shop(&shop);
}

static void money_goes_to_text_and_back_exactly(void) {
  static const struct {
    int64_t money;
    const char* text;
  } amounts[] = {{0, "0"},
                 {12345, "1.2345"},
                 {-5, "-0.0005"},
                 {10000, "1"},
                 {-12500, "-1.25"},
                 {INT64_MAX, "922337203685477.5807"},
                 {INT64_MIN, "-922337203685477.5808"}};
  for (size_t i = 0; i < COUNT_OF(amounts); ++i) {
    char text[TAVELOR_MONEY_TEXT_SIZE];
    CHECK(tavelor_money_to_text(amounts[i].money, text, sizeof text) == strlen(amounts[i].text));
    TEXT(text, amounts[i].text);
    int64_t read = 1;
    OK(tavelor_money_from_text(text, &read, &failure));
    CHECK(read == amounts[i].money);
  }
  char small[4];
  CHECK(tavelor_money_to_text(1, small, sizeof small) == 0);
  CHECK(tavelor_money_to_text(1, NULL, 99) == 0);
  static const char* const wrong[] = {"", "-", ".", "1,5", "1.23456", "1e3", " 1", "1.2.3", "--1"};
  int64_t money = 7;
  for (size_t i = 0; i < COUNT_OF(wrong); ++i) {
    FAILS(TAVELOR_E_TYPE_MISMATCH, tavelor_money_from_text(wrong[i], &money, &failure));
  }
  FAILS(TAVELOR_E_OVERFLOW, tavelor_money_from_text("922337203685477.5808", &money, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_money_from_text(NULL, &money, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_money_from_text("1", NULL, &failure));
  CHECK(money == 7);
  OK(tavelor_money_from_text("+.5", &money, &failure));
  CHECK(money == 5000);
}

static void dates_are_day_numbers(void) {
  const tavelor_civil moment = {2026, 11, 20, 18, 0, 0};
  double date = 0;
  OK(tavelor_date_from_civil(&moment, &date, &failure));
  CHECK(date == 46346.75);
  tavelor_civil back = {0};
  OK(tavelor_date_to_civil(date, &back, &failure));
  CHECK(memcmp(&back, &moment, sizeof back) == 0);
  const tavelor_civil wrong = {2026, 2, 30, 0, 0, 0};
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_date_from_civil(&wrong, &date, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_date_from_civil(NULL, &date, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_date_from_civil(&moment, NULL, &failure));
  FAILS(TAVELOR_E_OVERFLOW, tavelor_date_to_civil(1e9, &back, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_date_to_civil(1, NULL, &failure));
}

static void an_error_tells_its_statement_and_place(void) {
  shop_of_test shop = open_shop();
  tavelor_object* main = connect_main(&shop);
  tavelor_object* rows = NULL;
  tavelor_error* error = NULL;
  CHECK(tavelor_recordset_open(main, "SELECT Codigo\nFROM Bancos WHERE", NULL, 0,
                               TAVELOR_LOCK_BATCH, &rows, &error) == TAVELOR_E_SYNTAX);
  CHECK(rows == NULL);
  CHECK(tavelor_error_number(error) == TAVELOR_E_SYNTAX);
  CHECK(tavelor_error_kind(error) == TAVELOR_KIND_SYNTAX);
  CHECK(*tavelor_error_source(error) != '\0');
  CHECK(*tavelor_error_description(error) != '\0');
  TEXT(tavelor_error_statement(error), "SELECT Codigo\nFROM Bancos WHERE");
  int64_t line = 0;
  int64_t column = 0;
  CHECK(tavelor_error_place(error, &line, &column) > 14);
  CHECK(line == 2 && column > 1);
  CHECK(strstr(tavelor_error_message(error), tavelor_error_description(error)) != NULL);
  CHECK(tavelor_error_notes(error) != NULL);
  CHECK(tavelor_error_native_code(error) == 0);
  CHECK(tavelor_error_fault_count(error) == 0);
  TEXT(tavelor_error_fault(error, 0, NULL, NULL), "");
  tavelor_error_free(error);

  // Nobody need take the error.
  CHECK(tavelor_connection_execute(main, "DELETE", NULL, 0, NULL, NULL) == TAVELOR_E_SYNTAX);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void no_error_reads_as_nothing(void) {
  CHECK(tavelor_error_number(NULL) == 0);
  CHECK(tavelor_error_kind(NULL) == 0);
  TEXT(tavelor_error_source(NULL), "");
  TEXT(tavelor_error_description(NULL), "");
  TEXT(tavelor_error_notes(NULL), "");
  TEXT(tavelor_error_message(NULL), "");
  TEXT(tavelor_error_statement(NULL), "");
  int64_t line = 7;
  CHECK(tavelor_error_place(NULL, &line, NULL) == -1 && line == 0);
  CHECK(tavelor_error_native_code(NULL) == 0);
  CHECK(tavelor_error_fault_count(NULL) == 0);
  const char* article = NULL;
  TEXT(tavelor_error_fault(NULL, 3, NULL, &article), "");
  TEXT(article, "");
  tavelor_error_free(NULL);
}

const named_test value_tests[] = {
    {"WhatIsMadeInOneWordOwnsNothing", what_is_made_in_one_word_owns_nothing},
    {"AValueBecomesAnotherTypeByTheLocale", a_value_becomes_another_type_by_the_locale},
    {"MoneyGoesToTextAndBackExactly", money_goes_to_text_and_back_exactly},
    {"DatesAreDayNumbers", dates_are_day_numbers},
    {"AnErrorTellsItsStatementAndPlace", an_error_tells_its_statement_and_place},
    {"NoErrorReadsAsNothing", no_error_reads_as_nothing},
    {NULL, NULL}};
