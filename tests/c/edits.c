// SPDX-License-Identifier: MIT
// Record sets that are written: rows, batches, conflicts.
#include "tests/c/check.h"

static void set_text(tavelor_object* rows, int32_t column, const char* text) {
  const tavelor_value value = tavelor_of_string(text);
  OK(tavelor_recordset_set(rows, column, &value, &failure));
}

static void add_bank(tavelor_object* rows, const char* code, const char* name) {
  OK(tavelor_recordset_add_new(rows, &failure));
  set_text(rows, 0, code);
  set_text(rows, 1, name);
  OK(tavelor_recordset_update(rows, &failure));
}

static void changes_stay_until_a_batch_writes_them(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  tavelor_object* const rows = rows_of(main, "SELECT Codigo, Banco FROM Bancos");
  add_bank(rows, "1", "Uno");
  add_bank(rows, "2", "Dos");
  add_bank(rows, "3", "Tres");
  int32_t edit = -1;
  int32_t status = -1;
  int32_t unwritten = -1;
  OK(tavelor_recordset_state(rows, &edit, &status, &unwritten, &failure));
  CHECK(edit == 0 && (status & 1) != 0 && unwritten == 1);
  tavelor_object* other = rows_of(main, "SELECT Codigo, Banco FROM Bancos");
  CHECK(count_of(other) == 0);
  tavelor_object_release(other);
  OK(tavelor_recordset_filter_group(rows, TAVELOR_ROWS_PENDING, &failure));
  CHECK(count_of(rows) == 3);
  OK(tavelor_recordset_filter_group(rows, TAVELOR_ROWS_ALL, &failure));
  OK(tavelor_recordset_update_batch(rows, TAVELOR_AFFECT_ALL, &failure));
  OK(tavelor_recordset_state(rows, NULL, NULL, &unwritten, &failure));
  CHECK(unwritten == 0);
  other = rows_of(main, "SELECT Codigo, Banco FROM Bancos ORDER BY Codigo");
  CHECK(count_of(other) == 3);
  TEXT(text_at(other, 1), "Uno");

  // Taken back: what is in edit, then what is pending.
  set_text(other, 1, "Un");
  OK(tavelor_recordset_state(other, &edit, NULL, NULL, &failure));
  CHECK(edit == 1);
  TEXT(text_at(other, 1), "Un");
  OK(tavelor_recordset_cancel_update(other, &failure));
  TEXT(text_at(other, 1), "Uno");
  set_text(other, 1, "Un");
  OK(tavelor_recordset_update(other, &failure));
  tavelor_value value = tavelor_of_empty();
  OK(tavelor_recordset_get_value(other, 1, TAVELOR_CELL_ORIGINAL, &value, &failure));
  TEXT(value.as.text.data, "Uno");
  tavelor_value_clear(&value);
  FAILS(TAVELOR_E_INVALID_ARGUMENT, tavelor_recordset_update_batch(other, 42, &failure));
  FAILS(TAVELOR_E_INVALID_ARGUMENT, tavelor_recordset_cancel_batch(other, 42, &failure));
  OK(tavelor_recordset_cancel_batch(other, TAVELOR_AFFECT_ALL, &failure));
  OK(tavelor_recordset_move(other, TAVELOR_FIRST, NULL, &failure));
  TEXT(text_at(other, 1), "Uno");

  OK(tavelor_recordset_delete(other, TAVELOR_AFFECT_CURRENT, &failure));
  FAILS(TAVELOR_E_DELETED_ROW, tavelor_recordset_set(other, 1, &value, &failure));
  OK(tavelor_recordset_update_batch(other, TAVELOR_AFFECT_ALL, &failure));
  CHECK(count_of(other) == 2);

  FAILS(TAVELOR_E_INVALID_ARGUMENT, tavelor_recordset_delete(other, 42, &failure));
  tavelor_object_release(other);
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void a_cell_refuses_what_does_not_fit(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  tavelor_object* rows = rows_of(main, "SELECT Codigo, Banco, Predeterminada FROM Bancos");
  add_bank(rows, "1", "Uno");
  tavelor_value value = tavelor_of_string("12345678901");  // ten characters are taken
  FAILS(TAVELOR_E_MULTIPLE_STEP, tavelor_recordset_set(rows, 0, &value, &failure));
  value = tavelor_of_string("quizá");
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_set(rows, 2, &value, &failure));
  value = tavelor_of_text("a\0b", 3);
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_set(rows, 1, &value, &failure));
  value = tavelor_of_text("\xE9", 1);
  FAILS(TAVELOR_E_TYPE_MISMATCH, tavelor_recordset_set(rows, 1, &value, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_set(rows, 1, NULL, &failure));
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_set(rows, 99, &value, &failure));
  TEXT(text_at(rows, 1), "Uno");
  // A key that is there already: nothing of the batch is written, all of it stays.
  OK(tavelor_recordset_update_batch(rows, TAVELOR_AFFECT_ALL, &failure));
  add_bank(rows, "1", "Otra vez");
  tavelor_error* error = NULL;
  CHECK(tavelor_recordset_update_batch(rows, TAVELOR_AFFECT_ALL, &error) ==
        TAVELOR_E_INTEGRITY_VIOLATION);
  CHECK(tavelor_error_kind(error) == TAVELOR_KIND_INTEGRITY);
  tavelor_error_free(error);
  OK(tavelor_recordset_cancel_batch(rows, TAVELOR_AFFECT_ALL, &failure));
  tavelor_object_release(rows);

  // Where rows are written at once, the row stays in edit.
  OK(tavelor_recordset_open(main, "SELECT Codigo, Banco FROM Bancos", NULL, 0,
                            TAVELOR_LOCK_OPTIMISTIC, &rows, &failure));
  OK(tavelor_recordset_add_new(rows, &failure));
  set_text(rows, 0, "1");
  FAILS(TAVELOR_E_INTEGRITY_VIOLATION, tavelor_recordset_update(rows, &failure));
  int32_t edit = 0;
  OK(tavelor_recordset_state(rows, &edit, NULL, NULL, &failure));
  CHECK(edit == 2);
  set_text(rows, 0, "2");
  OK(tavelor_recordset_update(rows, &failure));
  tavelor_object_release(rows);
  OK(tavelor_recordset_open(main, "SELECT Codigo, Banco FROM Bancos", NULL, 0,
                            TAVELOR_LOCK_READ_ONLY, &rows, &failure));
  CHECK(count_of(rows) == 2);
  FAILS(TAVELOR_E_NOT_SUPPORTED, tavelor_recordset_delete(rows, TAVELOR_AFFECT_CURRENT, &failure));
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void a_conflict_stops_its_row_only(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  tavelor_object* const rows = rows_of(main, "SELECT Codigo, Banco FROM Bancos ORDER BY Codigo");
  add_bank(rows, "1", "Uno");
  add_bank(rows, "2", "Dos");
  OK(tavelor_recordset_update_batch(rows, TAVELOR_AFFECT_ALL, &failure));
  OK(tavelor_recordset_set_position(rows, 1, &failure));
  set_text(rows, 1, "Mine");
  OK(tavelor_recordset_set_position(rows, 2, &failure));
  set_text(rows, 1, "Mine too");
  OK(tavelor_connection_execute(main, "UPDATE Bancos SET Banco = 'Theirs' WHERE Codigo = '1'", NULL,
                                0, NULL, &failure));
  tavelor_error* error = NULL;
  CHECK(tavelor_recordset_update_batch(rows, TAVELOR_AFFECT_ALL, &error) ==
        TAVELOR_E_ROW_NOT_LOCATED);
  CHECK(tavelor_error_kind(error) == TAVELOR_KIND_CONFLICT);
  tavelor_error_free(error);
  OK(tavelor_recordset_filter_group(rows, TAVELOR_ROWS_CONFLICTING, &failure));
  CHECK(count_of(rows) == 1);
  int32_t status = 0;
  OK(tavelor_recordset_state(rows, NULL, &status, NULL, &failure));
  CHECK((status & 0x800) != 0);
  TEXT(text_at(rows, 0), "1");

  // What others have written is told, and written over.
  OK(tavelor_recordset_resync(rows, TAVELOR_AFFECT_GROUP, 1, &failure));
  tavelor_value value = tavelor_of_empty();
  OK(tavelor_recordset_get_value(rows, 1, TAVELOR_CELL_UNDERLYING, &value, &failure));
  TEXT(value.as.text.data, "Theirs");
  tavelor_value_clear(&value);
  TEXT(text_at(rows, 1), "Mine");
  OK(tavelor_recordset_update_batch(rows, TAVELOR_AFFECT_GROUP, &failure));
  OK(tavelor_recordset_filter_group(rows, TAVELOR_ROWS_ALL, &failure));
  OK(tavelor_connection_execute(main, "UPDATE Bancos SET Banco = 'Again' WHERE Codigo = '2'", NULL,
                                0, NULL, &failure));
  OK(tavelor_recordset_resync(rows, TAVELOR_AFFECT_ALL, 0, &failure));
  OK(tavelor_recordset_set_position(rows, 2, &failure));
  TEXT(text_at(rows, 1), "Again");
  FAILS(TAVELOR_E_NOT_ALLOWED_IN_CONTEXT,
        tavelor_recordset_resync(rows, TAVELOR_AFFECT_GROUP, 0, &failure));
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void a_set_without_a_database_holds_rows(void) {
  shop_of_test shop = open_shop();
  tavelor_column_wish wishes[] = {
      {.size = sizeof *wishes, .name = "Nombre", .type = TAVELOR_COLUMN_TEXT, .width = 10},
      {.size = sizeof *wishes, .name = "Dia", .type = TAVELOR_COLUMN_DATE}};
  tavelor_object* rows = NULL;
  OK(tavelor_recordset_new(shop.apartment, wishes, 2, &rows, &failure));
  CHECK(count_of(rows) == 0);
  OK(tavelor_recordset_add_new(rows, &failure));
  tavelor_value value = tavelor_of_null();
  OK(tavelor_recordset_get_value(rows, 0, TAVELOR_CELL_CURRENT, &value, &failure));
  CHECK(value.type == TAVELOR_EMPTY);  // nobody has written it
  set_text(rows, 0, "Ana");
  set_text(rows, 1, "20/11/2026");
  OK(tavelor_recordset_update(rows, &failure));
  double day = 0;
  OK(tavelor_recordset_get_date(rows, 1, &day, NULL, &failure));
  CHECK(day == shop.today);
  OK(tavelor_recordset_update_batch(rows, TAVELOR_AFFECT_ALL, &failure));
  tavelor_object_release(rows);
  rows = NULL;
  FAILS(TAVELOR_E_INVALID_CONNECTION,
        tavelor_recordset_new(shop.apartment, wishes, 0, &rows, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_new(shop.apartment, NULL, 2, &rows, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_new(shop.apartment, wishes, 2, NULL, &failure));
  wishes[1].type = 4242;
  FAILS(TAVELOR_E_INVALID_ARGUMENT,
        tavelor_recordset_new(shop.apartment, wishes, 2, &rows, &failure));
  wishes[1].size = 0;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_new(shop.apartment, wishes, 2, &rows, &failure));
  CHECK(rows == NULL);
  close_shop(&shop);
}

const named_test edit_tests[] = {
    {"ChangesStayUntilABatchWritesThem", changes_stay_until_a_batch_writes_them},
    {"ACellRefusesWhatDoesNotFit", a_cell_refuses_what_does_not_fit},
    {"AConflictStopsItsRowOnly", a_conflict_stops_its_row_only},
    {"ASetWithoutADatabaseHoldsRows", a_set_without_a_database_holds_rows},
    {NULL, NULL}};
