// SPDX-License-Identifier: MIT
// Events of record sets.
#include "tests/c/check.h"

typedef struct ear {
  int counts[10];
  int32_t status;         ///< left in each WILL...
  tavelor_status raises;  ///< out of `raises_from`
  int32_t raises_from;
  int32_t column;
  int32_t error_number;
  tavelor_listener** removes;  ///< itself, from the handler
  tavelor_object** releases;   ///< the set, from the handler
  tavelor_apartment* closes;   ///< the apartment, from the handler
  bool moves;
} ear;

static tavelor_status hear(void* user, tavelor_event* event) {
  ear* const of = user;
  CHECK(event->size == sizeof *event);
  CHECK(tavelor_object_kind(event->recordset) == TAVELOR_IS_RECORDSET);
  ++of->counts[event->event];
  if (event->column >= 0) of->column = event->column;
  if (event->error_number != 0) of->error_number = event->error_number;
  const bool will = event->event == TAVELOR_EVENT_WILL_MOVE ||
                    event->event == TAVELOR_EVENT_WILL_CHANGE_FIELD ||
                    event->event == TAVELOR_EVENT_WILL_CHANGE_RECORD;
  if (will && of->status != 0 && event->status == TAVELOR_EVENT_OK) event->status = of->status;
  if (of->moves && event->event == TAVELOR_EVENT_CHANGE_FIELD_DONE) {
    OK(tavelor_recordset_update(event->recordset, &failure));
  }
  if (of->removes != NULL) {
    tavelor_listener_remove(*of->removes);
    *of->removes = NULL;
    of->removes = NULL;
  }
  if (of->releases != NULL) {
    tavelor_object_release(*of->releases);
    *of->releases = NULL;
    of->releases = NULL;
  }
  if (of->closes != NULL) tavelor_apartment_close(of->closes);
  if (event->event == of->raises_from) {
    event->raise = "Not on a Friday";
    return of->raises;
  }
  return TAVELOR_OK;
}

static tavelor_object* two_banks(tavelor_object* main) {
  tavelor_object* const rows = rows_of(main, "SELECT Codigo, Banco FROM Bancos");
  for (int i = 0; i < 2; ++i) {
    OK(tavelor_recordset_add_new(rows, &failure));
    const tavelor_value code = tavelor_of_string(i == 0 ? "1" : "2");
    OK(tavelor_recordset_set(rows, 0, &code, &failure));
    OK(tavelor_recordset_update(rows, &failure));
  }
  OK(tavelor_recordset_move(rows, TAVELOR_FIRST, NULL, &failure));
  return rows;
}

static void a_listener_is_told_and_may_say_no(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  tavelor_object* const rows = two_banks(main);
  ear of = {.moves = false};
  tavelor_listener* listener = NULL;
  OK(tavelor_recordset_listen(rows, hear, &of, &listener, &failure));
  OK(tavelor_recordset_move(rows, TAVELOR_NEXT, NULL, &failure));
  CHECK(of.counts[TAVELOR_EVENT_WILL_MOVE] == 1 && of.counts[TAVELOR_EVENT_MOVE_DONE] == 1);
  const tavelor_value name = tavelor_of_string("Dos");
  OK(tavelor_recordset_set(rows, 1, &name, &failure));
  CHECK(of.counts[TAVELOR_EVENT_WILL_CHANGE_FIELD] == 1 && of.column == 1);
  CHECK(of.counts[TAVELOR_EVENT_WILL_CHANGE_RECORD] == 1);
  OK(tavelor_recordset_update(rows, &failure));
  CHECK(of.counts[TAVELOR_EVENT_CHANGE_RECORD_DONE] >= 1);
  OK(tavelor_recordset_move(rows, TAVELOR_NEXT, NULL, &failure));
  CHECK(of.counts[TAVELOR_EVENT_END_OF_RECORDSET] == 1);

  of.status = TAVELOR_EVENT_CANCEL;
  FAILS(TAVELOR_E_OPERATION_CANCELED, tavelor_recordset_move(rows, TAVELOR_FIRST, NULL, &failure));
  CHECK(of.error_number == TAVELOR_E_OPERATION_CANCELED);
  int32_t eof = 0;
  OK(tavelor_recordset_where(rows, NULL, &eof, NULL, NULL, &failure));
  CHECK(eof == 1);  // nothing has changed
  of.status = TAVELOR_EVENT_UNWANTED;
  const int before = of.counts[TAVELOR_EVENT_WILL_MOVE];
  OK(tavelor_recordset_move(rows, TAVELOR_FIRST, NULL, &failure));
  OK(tavelor_recordset_move(rows, TAVELOR_NEXT, NULL, &failure));
  CHECK(of.counts[TAVELOR_EVENT_WILL_MOVE] == before + 1);
  of.status = 0;

  OK(tavelor_recordset_update_batch(rows, TAVELOR_AFFECT_ALL, &failure));
  OK(tavelor_recordset_requery(rows, &failure));
  CHECK(of.counts[TAVELOR_EVENT_WILL_CHANGE_RECORDSET] == 1);
  CHECK(of.counts[TAVELOR_EVENT_CHANGE_RECORDSET_DONE] == 1);
  tavelor_listener_remove(listener);
  const int moves = of.counts[TAVELOR_EVENT_MOVE_DONE];
  OK(tavelor_recordset_move(rows, TAVELOR_LAST, NULL, &failure));
  CHECK(of.counts[TAVELOR_EVENT_MOVE_DONE] == moves);
  tavelor_listener_remove(NULL);

  listener = NULL;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_listen(rows, NULL, &of, &listener, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_recordset_listen(rows, hear, &of, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_recordset_listen(main, hear, &of, &listener, &failure));
  CHECK(listener == NULL);
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void a_handler_raises_errors_of_its_own(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  tavelor_object* const rows = two_banks(main);
  ear of = {.raises = 4242, .raises_from = TAVELOR_EVENT_WILL_MOVE};
  tavelor_listener* listener = NULL;
  OK(tavelor_recordset_listen(rows, hear, &of, &listener, &failure));
  tavelor_error* error = NULL;
  CHECK(tavelor_recordset_move(rows, TAVELOR_NEXT, NULL, &error) == 4242);
  CHECK(strstr(tavelor_error_description(error), "Not on a Friday") != NULL);
  CHECK(tavelor_error_kind(error) == TAVELOR_KIND_OTHER);
  tavelor_error_free(error);
  int32_t position = 0;
  OK(tavelor_recordset_where(rows, NULL, NULL, NULL, &position, &failure));
  CHECK(position == 1);  // out of a WILL... nothing is done
  of.raises_from = TAVELOR_EVENT_MOVE_DONE;
  FAILS(4242, tavelor_recordset_move(rows, TAVELOR_NEXT, NULL, &failure));
  OK(tavelor_recordset_where(rows, NULL, NULL, NULL, &position, &failure));
  CHECK(position == 2);  // out of a ..._DONE it is
  tavelor_listener_remove(listener);
  tavelor_object_release(rows);
  tavelor_object_release(main);
  close_shop(&shop);
}

static void a_handler_may_take_away_what_calls_it(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  tavelor_object* rows = two_banks(main);
  ear of = {.moves = false};
  tavelor_listener* listener = NULL;
  OK(tavelor_recordset_listen(rows, hear, &of, &listener, &failure));
  // The apartment cannot end inside of its own call.
  of.closes = shop.apartment;
  OK(tavelor_recordset_move(rows, TAVELOR_NEXT, NULL, &failure));
  of.closes = NULL;
  // What it does to the set from inside is done.
  of.moves = true;
  const tavelor_value name = tavelor_of_string("Dos");
  OK(tavelor_recordset_set(rows, 1, &name, &failure));
  int32_t edit = 7;
  OK(tavelor_recordset_state(rows, &edit, NULL, NULL, &failure));
  CHECK(edit == 0);
  of.moves = false;
  // Itself, and the last handle of the set.
  of.removes = &listener;
  of.releases = &rows;
  tavelor_object* const set = rows;
  OK(tavelor_recordset_move(set, TAVELOR_FIRST, NULL, &failure));
  CHECK(listener == NULL && rows == NULL);
  CHECK(of.counts[TAVELOR_EVENT_MOVE_DONE] == 1);  // of the move before
  tavelor_object_release(main);
  close_shop(&shop);
}

static void a_listener_outlives_its_set(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  ear of = {.moves = false};
  tavelor_object* rows = two_banks(main);
  tavelor_listener* listener = NULL;
  OK(tavelor_recordset_listen(rows, hear, &of, &listener, &failure));
  tavelor_object* clone = NULL;
  OK(tavelor_recordset_clone(rows, 0, &clone, &failure));
  // Changes that a clone makes are told too.
  const tavelor_value name = tavelor_of_string("Uno");
  OK(tavelor_recordset_set(clone, 1, &name, &failure));
  CHECK(of.counts[TAVELOR_EVENT_CHANGE_FIELD_DONE] == 1);
  tavelor_object_release(clone);
  tavelor_object_release(rows);
  tavelor_listener_remove(listener);

  // And one that is never removed goes with its apartment.
  rows = two_banks(main);
  OK(tavelor_recordset_listen(rows, hear, &of, &listener, &failure));
  close_shop(&shop);
  tavelor_listener_remove(listener);
  tavelor_object_release(rows);
  tavelor_object_release(main);
}

const named_test event_tests[] = {
    {"AListenerIsToldAndMaySayNo", a_listener_is_told_and_may_say_no},
    {"AHandlerRaisesErrorsOfItsOwn", a_handler_raises_errors_of_its_own},
    {"AHandlerMayTakeAwayWhatCallsIt", a_handler_may_take_away_what_calls_it},
    {"AListenerOutlivesItsSet", a_listener_outlives_its_set},
    {NULL, NULL}};
