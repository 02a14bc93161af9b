// SPDX-License-Identifier: MIT
// Connections and record sets that are read: opening, moving, cells, many rows at once, view.
#include <math.h>
#include <stdlib.h>

#include "tests/c/check.h"

/// A table with a column of each kind and `rows` rows; every third has Nulls.
static tavelor_object* make_table(const shop_of_test* shop, int32_t rows) {
  OK(tavelor_installation_add_to_schema(shop->installation, 1,
                                        "CREATE TABLE Todo (Id LONG NOT NULL, Corto SHORT, "
                                        "Octeto BYTE, Simple SINGLE, Doble DOUBLE,"
                                        " Dinero CURRENCY, Dia DATETIME, Si BIT NOT NULL, Texto "
                                        "TEXT(40), Memo MEMO, Datos LONGBINARY,"
                                        " CONSTRAINT PK_Todo PRIMARY KEY (Id))",
                                        &failure));
  tavelor_object* const main = connect_main(shop);
  OK(tavelor_connection_begin(main, &failure));
  for (int32_t i = 0; i < rows; ++i) {
    const bool null = i % 3 == 2;
    const tavelor_value values[] = {
        tavelor_of_int32(i),
        null ? tavelor_of_null() : tavelor_of_int32(i % 100),
        null ? tavelor_of_null() : tavelor_of_int32(i % 200),
        null ? tavelor_of_null() : tavelor_of_double(i + 0.5),
        null ? tavelor_of_null() : tavelor_of_double(i / 4.0),
        null ? tavelor_of_null() : tavelor_of_money(i * 12345),
        null ? tavelor_of_null() : tavelor_of_date(46346.25 + i),
        tavelor_of_boolean(i % 2),
        null ? tavelor_of_null() : tavelor_of_string(i % 2 == 0 ? "año" : "it's a longer text"),
        null ? tavelor_of_null() : tavelor_of_string("memo?")};
    OK(tavelor_connection_execute(main,
                                  "INSERT INTO Todo (Id, Corto, Octeto, Simple, Doble, Dinero, Dia,"
                                  " Si, Texto, Memo) VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?, ?)",
                                  values, COUNT_OF(values), NULL, &failure));
  }
  OK(tavelor_connection_commit(main, &failure));
  return main;
}

static void values_never_change_what_a_statement_does(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = make_table(&shop, 4);
  tavelor_object* rows = NULL;
  const tavelor_value nasty = tavelor_of_string("x' OR 1=1 --");
  OK(tavelor_recordset_open(main, "SELECT Id FROM Todo WHERE Texto = ?", &nasty, 1,
                            TAVELOR_LOCK_READ_ONLY, &rows, &failure));
  CHECK(count_of(rows) == 0);
  tavelor_object_release(rows);
  // Marks in quotes, brackets and dates are text.
  const tavelor_value text = tavelor_of_string("it's a longer text");
  OK(tavelor_recordset_open(
      main,
      "SELECT [Id], 'a''?' AS A, \"?\" AS B FROM Todo WHERE Texto = ? AND Memo"
      " Like '*?' AND Dia > #01/01/2000#",
      &text, 1, TAVELOR_LOCK_READ_ONLY, &rows, &failure));
  CHECK(count_of(rows) == 2);
  TEXT(text_at(rows, 1), "a'?");
  tavelor_object_release(rows);
  rows = NULL;

  FAILS(TAVELOR_E_WRONG_NUMBER_OF_ARGUMENTS,
        tavelor_recordset_open(main, "SELECT Id FROM Todo", &nasty, 1, TAVELOR_LOCK_BATCH, &rows,
                               &failure));
  FAILS(TAVELOR_E_WRONG_NUMBER_OF_ARGUMENTS,
        tavelor_recordset_open(main, "SELECT Id FROM Todo WHERE Id = ? OR Id = ?", &nasty, 1,
                               TAVELOR_LOCK_BATCH, &rows, &failure));
  const tavelor_value bytes = tavelor_of_bytes("x", 1);
  FAILS(TAVELOR_E_TYPE_MISMATCH,
        tavelor_recordset_open(main, "SELECT Id FROM Todo WHERE Id = ?", &bytes, 1,
                               TAVELOR_LOCK_BATCH, &rows, &failure));
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_recordset_open(main, "SELECT Id FROM Todo WHERE Id = ?", NULL, 1,
                               TAVELOR_LOCK_BATCH, &rows, &failure));
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_recordset_open(main, NULL, NULL, 0, TAVELOR_LOCK_BATCH, &rows, &failure));
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_recordset_open(main, "SELECT Id FROM Todo", NULL, 0, 42, &rows, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_open(main, "SELECT Id FROM Todo", NULL, 0,
                                                       TAVELOR_LOCK_BATCH, NULL, &failure));
  FAILS(TAVELOR_E_TABLE_NOT_FOUND, tavelor_recordset_open(main, "SELECT Id FROM Nada", NULL, 0,
                                                          TAVELOR_LOCK_BATCH, &rows, &failure));
  CHECK(rows == NULL);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void a_transaction_is_stored_or_undone(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = make_table(&shop, 3);
  int32_t level = -1;
  OK(tavelor_connection_begin(main, &failure));
  OK(tavelor_connection_begin(main, &failure));
  OK(tavelor_connection_level(main, &level, &failure));
  CHECK(level == 2);
  int64_t written = 0;
  OK(tavelor_connection_execute(main, "DELETE FROM Todo", NULL, 0, &written, &failure));
  CHECK(written == 3);
  OK(tavelor_connection_commit(main, &failure));
  OK(tavelor_connection_rollback(main, &failure));
  FAILS(TAVELOR_E_NOT_ALLOWED_IN_CONTEXT, tavelor_connection_rollback(main, &failure));
  FAILS(TAVELOR_E_NOT_ALLOWED_IN_CONTEXT, tavelor_connection_commit(main, &failure));
  tavelor_object* rows = rows_of(main, "SELECT Id FROM Todo");
  CHECK(count_of(rows) == 3);
  FAILS(TAVELOR_E_SYNTAX, tavelor_connection_execute(main, "DELETE", NULL, 0, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_connection_execute(main, NULL, NULL, 0, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_connection_level(main, NULL, &failure));
  // The set works on when its connection's handle has been given back.
  tavelor_object_release(main);
  OK(tavelor_recordset_requery(rows, &failure));
  CHECK(count_of(rows) == 3);
  tavelor_object_release(rows);
  close_shop(&shop);
}

static void the_cursor_moves_and_tells_where_it_stands(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = make_table(&shop, 5);
  tavelor_object* const rows = rows_of(main, "SELECT Id FROM Todo ORDER BY Id");
  int32_t on_row = 0;
  int32_t seen = 0;
  OK(tavelor_recordset_move(rows, TAVELOR_FIRST, &on_row, &failure));
  while (on_row != 0) {
    int64_t id = -1;
    OK(tavelor_recordset_get_integer(rows, 0, &id, NULL, &failure));
    CHECK(id == seen);
    ++seen;
    OK(tavelor_recordset_move(rows, TAVELOR_NEXT, &on_row, &failure));
  }
  CHECK(seen == 5);
  int32_t bof = 1;
  int32_t eof = 0;
  int32_t count = 0;
  int32_t position = 0;
  OK(tavelor_recordset_where(rows, &bof, &eof, &count, &position, &failure));
  CHECK(bof == 0 && eof == 1 && count == 5 && position == -3);
  FAILS(TAVELOR_E_NO_CURRENT_RECORD, tavelor_recordset_move(rows, TAVELOR_NEXT, NULL, &failure));
  int64_t id = -1;
  FAILS(TAVELOR_E_NO_CURRENT_RECORD, tavelor_recordset_get_integer(rows, 0, &id, NULL, &failure));
  OK(tavelor_recordset_move(rows, TAVELOR_PREVIOUS, &on_row, &failure));
  OK(tavelor_recordset_move_by(rows, -2, NULL, &on_row, &failure));
  OK(tavelor_recordset_get_integer(rows, 0, &id, NULL, &failure));
  CHECK(id == 2 && on_row == 1);
  double bookmark = 0;
  OK(tavelor_recordset_bookmark(rows, &bookmark, &failure));
  OK(tavelor_recordset_move(rows, TAVELOR_LAST, NULL, &failure));
  OK(tavelor_recordset_set_bookmark(rows, bookmark, &failure));
  OK(tavelor_recordset_where(rows, NULL, NULL, NULL, &position, &failure));
  CHECK(position == 3);
  OK(tavelor_recordset_set_position(rows, 1, &failure));
  OK(tavelor_recordset_move_by(rows, 1, &bookmark, &on_row, &failure));
  OK(tavelor_recordset_get_integer(rows, 0, &id, NULL, &failure));
  CHECK(id == 3);
  OK(tavelor_recordset_move_by(rows, 100, NULL, &on_row, &failure));
  CHECK(on_row == 0);

  FAILS(TAVELOR_E_INVALID_ARGUMENT, tavelor_recordset_set_position(rows, 6, &failure));
  FAILS(TAVELOR_E_INVALID_ARGUMENT, tavelor_recordset_set_bookmark(rows, 0.5, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_move(rows, 9, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_bookmark(rows, NULL, &failure));

  // A set without rows is walked without a further question.
  tavelor_object* const none = rows_of(main, "SELECT Id FROM Todo WHERE Id > 100");
  OK(tavelor_recordset_move(none, TAVELOR_FIRST, &on_row, &failure));
  CHECK(on_row == 0);
  OK(tavelor_recordset_move(none, TAVELOR_LAST, &on_row, &failure));
  CHECK(on_row == 0);

  int32_t open = 0;
  OK(tavelor_recordset_is_open(rows, &open, &failure));
  CHECK(open == 1);
  OK(tavelor_recordset_close(rows, &failure));
  OK(tavelor_recordset_is_open(rows, &open, &failure));
  CHECK(open == 0);
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_is_open(rows, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_CLOSED, tavelor_recordset_close(rows, &failure));
  FAILS(TAVELOR_E_OBJECT_CLOSED, tavelor_recordset_move(rows, TAVELOR_FIRST, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_CLOSED, tavelor_recordset_where(rows, NULL, NULL, &count, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_CLOSED, tavelor_recordset_column_count(rows, &count, &failure));
  FAILS(TAVELOR_E_OBJECT_CLOSED, tavelor_recordset_requery(rows, &failure));
  tavelor_object_release(none);
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void columns_are_told(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = make_table(&shop, 1);
  tavelor_object* const rows = rows_of(main, "SELECT Id, Texto, Id + 1 AS Suma FROM Todo");
  int32_t count = 0;
  OK(tavelor_recordset_column_count(rows, &count, &failure));
  CHECK(count == 3);
  tavelor_column column = {.size = sizeof column};
  OK(tavelor_recordset_column(rows, 1, &column, &failure));
  TEXT(column.name, "Texto");
  TEXT(column.base_table, "Todo");
  CHECK(column.type == TAVELOR_COLUMN_TEXT && column.width == 40 && column.precision == 255);
  OK(tavelor_recordset_column(rows, 2, &column, &failure));
  TEXT(column.base_table, "");
  CHECK(column_of(rows, "suma") == 2);
  int32_t index = 7;
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_find_column(rows, "Resta", &index, &failure));
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_column(rows, 3, &column, &failure));
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_column(rows, -1, &column, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_column(rows, 0, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_find_column(rows, NULL, &index, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_find_column(rows, "Id", NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_column_count(rows, NULL, &failure));
  CHECK(index == 7);
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

/// Row 1 has values, row 2 Nulls; both are read twice, the second time with changes pending.
static void check_cells(tavelor_object* rows) {
  int64_t whole = 0;
  double real = 0;
  const char* text = NULL;
  const void* bytes = NULL;
  size_t size = 0;
  int32_t null = 7;
  OK(tavelor_recordset_set_position(rows, 2, &failure));
  for (int round = 0; round < 2; ++round) {
    OK(tavelor_recordset_get_integer(rows, 1, &whole, &null, &failure));
    CHECK(whole == 1 && null == 0);
    OK(tavelor_recordset_get_integer(rows, 2, &whole, NULL, &failure));
    CHECK(whole == 1);
    OK(tavelor_recordset_get_number(rows, 3, &real, NULL, &failure));
    CHECK(real == 1.5);
    OK(tavelor_recordset_get_number(rows, 4, &real, NULL, &failure));
    CHECK(real == 0.25);
    OK(tavelor_recordset_get_number(rows, 0, &real, NULL, &failure));
    CHECK(real == 1);
    OK(tavelor_recordset_get_number(rows, 5, &real, NULL, &failure));
    CHECK(real == 1.2345);
    OK(tavelor_recordset_get_money(rows, 5, &whole, NULL, &failure));
    CHECK(whole == 12345);
    OK(tavelor_recordset_get_money(rows, 0, &whole, NULL, &failure));
    CHECK(whole == TAVELOR_MONEY_SCALE);
    OK(tavelor_recordset_get_date(rows, 6, &real, NULL, &failure));
    CHECK(real == 46347.25);
    OK(tavelor_recordset_get_integer(rows, 7, &whole, NULL, &failure));
    CHECK(whole == 1);
    OK(tavelor_recordset_get_text(rows, 8, &text, &size, NULL, &failure));
    CHECK(size == 18 && memcmp(text, "it's a longer text", 18) == 0);
    if (round == 0) {
      const tavelor_value data = tavelor_of_bytes("\0\1\2", 3);
      OK(tavelor_recordset_set(rows, 10, &data, &failure));
    }
    OK(tavelor_recordset_get_bytes(rows, 10, &bytes, &size, NULL, &failure));
    CHECK(size == 3 && memcmp(bytes, "\0\1\2", 3) == 0);
    if (round == 0) OK(tavelor_recordset_update(rows, &failure));
  }
  OK(tavelor_recordset_set_position(rows, 3, &failure));
  OK(tavelor_recordset_get_integer(rows, 1, &whole, &null, &failure));
  CHECK(whole == 0 && null == 1);
  OK(tavelor_recordset_get_number(rows, 4, &real, &null, &failure));
  CHECK(real == 0 && null == 1);
  OK(tavelor_recordset_get_money(rows, 5, &whole, &null, &failure));
  CHECK(whole == 0 && null == 1);
  OK(tavelor_recordset_get_date(rows, 6, &real, &null, &failure));
  CHECK(real == 0 && null == 1);
  OK(tavelor_recordset_get_text(rows, 8, &text, &size, &null, &failure));
  CHECK(size == 0 && text == NULL && null == 1);
  OK(tavelor_recordset_get_bytes(rows, 10, &bytes, &size, &null, &failure));
  CHECK(size == 0 && bytes == NULL && null == 1);
  FAILS(TAVELOR_E_INVALID_USE_OF_NULL,
        tavelor_recordset_get_integer(rows, 1, &whole, NULL, &failure));
}

static void cells_are_read_by_type(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = make_table(&shop, 6);
  tavelor_object* const rows = rows_of(main, "SELECT * FROM Todo ORDER BY Id");
  check_cells(rows);
  int64_t whole = 7;
  double real = 7;
  const char* text = NULL;
  const void* bytes = NULL;
  size_t size = 7;
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_get_integer(rows, 4, &whole, NULL, &failure));
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_get_number(rows, 8, &real, NULL, &failure));
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_get_money(rows, 4, &whole, NULL, &failure));
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_get_date(rows, 4, &real, NULL, &failure));
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_get_text(rows, 4, &text, &size, NULL, &failure));
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_get_bytes(rows, 8, &bytes, &size, NULL, &failure));
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_get_integer(rows, 11, &whole, NULL, &failure));
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_get_number(rows, -1, &real, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_get_integer(rows, 0, NULL, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_get_number(rows, 4, NULL, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_get_money(rows, 5, NULL, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_get_date(rows, 6, NULL, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_get_text(rows, 8, &text, NULL, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_get_bytes(rows, 10, NULL, &size, NULL, &failure));
  CHECK(whole == 7 && real == 7 && size == 7 && text == NULL && bytes == NULL);
  tavelor_value value = tavelor_of_empty();
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_get_value(rows, 0, 9, &value, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_get_value(rows, 0, 0, NULL, &failure));
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_get_value(rows, 99, 0, &value, &failure));
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

enum { kMany = 1000 };

static bool is_valid(const uint8_t* validity, size_t row) {
  return (validity[row / 8] >> (row % 8) & 1) != 0;
}

static void many_rows_are_read_by_columns(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = make_table(&shop, kMany);
  tavelor_object* const rows = rows_of(main, "SELECT * FROM Todo ORDER BY Id");
  // One row with a change, and one that is gone: what is pending counts.
  const tavelor_value changed = tavelor_of_double(-1);
  OK(tavelor_recordset_set_position(rows, 4, &failure));
  OK(tavelor_recordset_set(rows, 4, &changed, &failure));
  OK(tavelor_recordset_update(rows, &failure));
  OK(tavelor_recordset_set_position(rows, kMany, &failure));
  OK(tavelor_recordset_delete(rows, TAVELOR_AFFECT_CURRENT, &failure));

  static int32_t ids[kMany];
  static int64_t wide[kMany];
  static int16_t shorts[kMany];
  static float singles[kMany];
  static double doubles[kMany];
  static int64_t money[kMany];
  static double dollars[kMany];
  static int64_t moments[kMany];
  static int32_t days[kMany];
  static uint8_t flags[kMany];
  static uint8_t validity[kMany / 8];
  static int64_t offsets[kMany + 1];
  static char bytes[kMany * 20];
  tavelor_column_buffer buffers[] = {
      {.size = sizeof *buffers, .column = 0, .as = TAVELOR_AS_INT32, .values = ids},
      {.size = sizeof *buffers, .column = 0, .as = TAVELOR_AS_INT64, .values = wide},
      {.size = sizeof *buffers, .column = 1, .as = TAVELOR_AS_INT16, .values = shorts},
      {.size = sizeof *buffers, .column = 3, .as = TAVELOR_AS_SINGLE, .values = singles},
      {.size = sizeof *buffers,
       .column = 4,
       .as = TAVELOR_AS_DOUBLE,
       .values = doubles,
       .validity = validity},
      {.size = sizeof *buffers, .column = 5, .as = TAVELOR_AS_INT64, .values = money},
      {.size = sizeof *buffers, .column = 5, .as = TAVELOR_AS_DOUBLE, .values = dollars},
      {.size = sizeof *buffers, .column = 6, .as = TAVELOR_AS_UNIX_US, .values = moments},
      {.size = sizeof *buffers, .column = 6, .as = TAVELOR_AS_UNIX_DAY, .values = days},
      {.size = sizeof *buffers, .column = 7, .as = TAVELOR_AS_BOOL8, .values = flags},
      {.size = sizeof *buffers,
       .column = 8,
       .as = TAVELOR_AS_TEXT,
       .offsets = offsets,
       .bytes = bytes,
       .capacity = sizeof bytes}};
  int64_t read = 0;
  OK(tavelor_recordset_read(rows, 0, kMany, buffers, COUNT_OF(buffers), &read, &failure));
  CHECK(read == kMany - 1);
  CHECK(buffers[0].null_count == 0 && buffers[4].null_count == 333);
  CHECK(buffers[10].used == (size_t)offsets[read]);
  for (size_t i = 0; i < (size_t)read; ++i) {
    const bool null = i % 3 == 2;
    bool right = ids[i] == (int32_t)i && wide[i] == (int64_t)i && flags[i] == i % 2;
    right = right && is_valid(validity, i) == !null;
    const size_t size = (size_t)(offsets[i + 1] - offsets[i]);
    if (null) {
      right = right && shorts[i] == 0 && isnan(singles[i]) && isnan(doubles[i]) && money[i] == 0 &&
              isnan(dollars[i]) && moments[i] == INT64_MIN && days[i] == 0 && size == 0;
    } else {
      right = right && shorts[i] == (int16_t)(i % 100) && singles[i] == (float)i + 0.5F;
      right = right && doubles[i] == (i == 3 ? -1 : (double)i / 4.0);
      right = right && money[i] == (int64_t)i * 12345 && dollars[i] == (double)money[i] / 10000;
      right = right && days[i] == 46346 - 25569 + (int32_t)i;
      right = right && moments[i] == ((int64_t)days[i] * 86400 + 21600) * 1000000;
      right = right && size == (i % 2 == 0 ? 4 : 18) &&
              memcmp(bytes + offsets[i], i % 2 == 0 ? "año" : "it's a longer text", size) == 0;
    }
    if (!CHECK(right)) break;
  }
  // The bits behind the last row are 0, and the cursor has stayed.
  CHECK(!is_valid(validity, kMany - 1));

  // From the middle on, and behind the end.
  OK(tavelor_recordset_read(rows, 900, 10, buffers, 1, &read, &failure));
  CHECK(read == 10 && ids[0] == 900 && ids[9] == 909);
  OK(tavelor_recordset_read(rows, kMany, 10, buffers, 1, &read, &failure));
  CHECK(read == 0);
  // In the order and under the filter of the view.
  OK(tavelor_recordset_sort(rows, "Id DESC", &failure));
  OK(tavelor_recordset_read(rows, 0, 1, buffers, 1, &read, &failure));
  CHECK(read == 1 && ids[0] == kMany - 2);

  buffers[0].as = TAVELOR_AS_TEXT;
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_read(rows, 0, 1, buffers, 1, &read, &failure));
  buffers[0].as = 99;
  FAILS(TAVELOR_E_WRONG_TYPE, tavelor_recordset_read(rows, 0, 1, buffers, 1, &read, &failure));
  buffers[0].column = -1;
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_read(rows, 0, 1, buffers, 1, &read, &failure));
  buffers[0].size = 3;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_read(rows, 0, 1, buffers, 1, &read, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_read(rows, -1, 1, buffers, 0, &read, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_read(rows, 0, 1, NULL, 1, &read, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_read(rows, 0, 1, buffers, 0, NULL, &failure));
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void texts_that_do_not_fit_are_read_on(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = make_table(&shop, 500);
  tavelor_object* const rows = rows_of(main, "SELECT Texto, Memo FROM Todo ORDER BY Id");
  tavelor_column_buffer measured[] = {
      {.size = sizeof *measured, .column = 0, .as = TAVELOR_AS_TEXT},
      {.size = sizeof *measured, .column = 1, .as = TAVELOR_AS_TEXT}};
  int64_t read = 0;
  OK(tavelor_recordset_read(rows, 0, 500, measured, 2, &read, &failure));
  CHECK(read == 500 && measured[0].used > 3000 && measured[1].used == 334 * 5);

  int64_t offsets[501];
  char bytes[100];
  size_t total = 0;
  int64_t at = 0;
  int blocks = 0;
  tavelor_column_buffer buffer = {.size = sizeof buffer,
                                  .as = TAVELOR_AS_TEXT,
                                  .offsets = offsets,
                                  .bytes = bytes,
                                  .capacity = sizeof bytes};
  do {
    OK(tavelor_recordset_read(rows, at, 500, &buffer, 1, &read, &failure));
    CHECK((size_t)offsets[read] == buffer.used && buffer.used <= sizeof bytes);
    total += buffer.used;
    at += read;
    ++blocks;
  } while (read > 0 && at < 500);
  CHECK(at == 500 && blocks > 30);
  CHECK(total == measured[0].used);

  buffer.capacity = 10;
  OK(tavelor_recordset_read(rows, 1, 5, &buffer, 1, &read, &failure));
  CHECK(read == 0 && buffer.used == 18);  // what the row wants
  buffer.capacity = buffer.used;
  OK(tavelor_recordset_read(rows, 1, 5, &buffer, 1, &read, &failure));
  CHECK(read == 2 && buffer.used == 18);  // the next one is Null
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void the_view_is_filtered_sorted_and_searched(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = make_table(&shop, 30);
  tavelor_object* const rows = rows_of(main, "SELECT Id, Texto FROM Todo ORDER BY Id");
  const tavelor_value text = tavelor_of_string("it's a longer text");
  OK(tavelor_recordset_filter(rows, "Texto = ?", &text, 1, &failure));
  CHECK(count_of(rows) == 10);
  OK(tavelor_recordset_sort(rows, "Id DESC", &failure));
  const char* filter = NULL;
  const char* order = NULL;
  OK(tavelor_recordset_view(rows, &filter, &order, &failure));
  TEXT(filter, "Texto = 'it''s a longer text'");
  TEXT(order, "Id DESC");
  OK(tavelor_recordset_view(rows, NULL, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_ARGUMENT, tavelor_recordset_filter(rows, "Texto =", NULL, 0, &failure));
  FAILS(TAVELOR_E_WRONG_NUMBER_OF_ARGUMENTS,
        tavelor_recordset_filter(rows, "Id = 1", &text, 1, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_filter(rows, NULL, NULL, 0, &failure));
  FAILS(TAVELOR_E_ITEM_NOT_FOUND, tavelor_recordset_sort(rows, "Nada", &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_sort(rows, NULL, &failure));
  CHECK(count_of(rows) == 10);  // the old filter stays
  OK(tavelor_recordset_filter(rows, "", NULL, 0, &failure));
  OK(tavelor_recordset_sort(rows, "", &failure));

  int32_t found = 0;
  const tavelor_value id = tavelor_of_int32(7);
  OK(tavelor_recordset_find(rows, "Id = ?", &id, 1, 0, 0, &found, &failure));
  CHECK(found == 1);
  double bookmarks[2];
  OK(tavelor_recordset_bookmark(rows, &bookmarks[0], &failure));
  OK(tavelor_recordset_find(rows, "Id < 5", NULL, 0, 0, 1, &found, &failure));
  CHECK(found == 1);
  OK(tavelor_recordset_bookmark(rows, &bookmarks[1], &failure));
  OK(tavelor_recordset_find(rows, "Id > 100", NULL, 0, 1, 0, &found, &failure));
  CHECK(found == 0);
  FAILS(TAVELOR_E_NO_CURRENT_RECORD,
        tavelor_recordset_find(rows, "Id = 1", NULL, 0, 0, 0, &found, &failure));
  OK(tavelor_recordset_filter_bookmarks(rows, bookmarks, 2, &failure));
  CHECK(count_of(rows) == 2);
  bookmarks[1] = 999;
  FAILS(TAVELOR_E_INVALID_ARGUMENT,
        tavelor_recordset_filter_bookmarks(rows, bookmarks, 2, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_filter_bookmarks(rows, NULL, 2, &failure));
  OK(tavelor_recordset_filter_group(rows, TAVELOR_ROWS_ALL, &failure));
  CHECK(count_of(rows) == 30);
  FAILS(TAVELOR_E_INVALID_ARGUMENT, tavelor_recordset_filter_group(rows, 42, &failure));

  // A clone has a cursor, a filter and an order of its own.
  tavelor_object* clone = NULL;
  OK(tavelor_recordset_clone(rows, 1, &clone, &failure));
  OK(tavelor_recordset_filter(clone, "Id < 3", NULL, 0, &failure));
  CHECK(count_of(clone) == 3 && count_of(rows) == 30);
  FAILS(TAVELOR_E_NOT_SUPPORTED, tavelor_recordset_add_new(clone, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_clone(rows, 0, NULL, &failure));
  tavelor_object_release(clone);
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

const named_test recordset_tests[] = {
    {"ValuesNeverChangeWhatAStatementDoes", values_never_change_what_a_statement_does},
    {"ATransactionIsStoredOrUndone", a_transaction_is_stored_or_undone},
    {"TheCursorMovesAndTellsWhereItStands", the_cursor_moves_and_tells_where_it_stands},
    {"ColumnsAreTold", columns_are_told},
    {"CellsAreReadByType", cells_are_read_by_type},
    {"ManyRowsAreReadByColumns", many_rows_are_read_by_columns},
    {"TextsThatDoNotFitAreReadOn", texts_that_do_not_fit_are_read_on},
    {"TheViewIsFilteredSortedAndSearched", the_view_is_filtered_sorted_and_searched},
    {NULL, NULL}};
