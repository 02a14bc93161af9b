// SPDX-License-Identifier: MIT
// Apartments on several threads.
#include <pthread.h>

#include "tests/c/check.h"

typedef struct foreign {
  const shop_of_test* shop;
  tavelor_object* main;
  tavelor_object* rows;
  tavelor_listener* listener;
  tavelor_status statuses[6];
} foreign;

static tavelor_status ignore(void* user, tavelor_event* event) {
  ++*(int*)user;
  (void)event;
  return TAVELOR_OK;
}

/// What belongs to another thread refuses to work, and takes back what is given back.
static void* meddle(void* given) {
  foreign* const of = given;
  double now = 0;
  of->statuses[0] = tavelor_connection_begin(of->main, NULL);
  of->statuses[1] = tavelor_recordset_move(of->rows, TAVELOR_NEXT, NULL, NULL);
  of->statuses[2] = tavelor_recordset_get_integer(of->rows, 0, NULL, NULL, NULL);
  of->statuses[3] = tavelor_apartment_now(of->shop->apartment, &now, NULL);
  of->statuses[4] = tavelor_call_by_name(of->rows, "MoveNext", NULL, 0, NULL, NULL);
  tavelor_shop* flows = NULL;
  of->statuses[5] = tavelor_shop_open(of->shop->apartment, &flows, NULL);
  tavelor_listener_remove(of->listener);
  tavelor_object_release(of->rows);
  return NULL;
}

static void another_thread_is_refused_and_may_give_back(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  int heard = 0;
  foreign of = {&shop, main, rows_of(main, "SELECT Codigo FROM Cajas"), NULL, {0}};
  OK(tavelor_recordset_listen(of.rows, ignore, &heard, &of.listener, &failure));
  tavelor_object* clone = NULL;
  OK(tavelor_recordset_clone(of.rows, 0, &clone, &failure));
  pthread_t thread;
  CHECK(pthread_create(&thread, NULL, meddle, &of) == 0);
  CHECK(pthread_join(thread, NULL) == 0);
  for (size_t i = 0; i < COUNT_OF(of.statuses); ++i) {
    CHECK(of.statuses[i] == TAVELOR_E_INVALID_CALL);
  }
  // Of the listener that was removed there nothing is told.
  const tavelor_value code = tavelor_of_string("zz");
  OK(tavelor_recordset_add_new(clone, &failure));
  OK(tavelor_recordset_set(clone, 0, &code, &failure));
  CHECK(heard == 0);
  tavelor_object_release(clone);
  tavelor_object_release(main);
  close_shop(&shop);
}

/// One till on a thread of its own.
typedef struct till {
  tavelor_installation* installation;
  const char* code;
  double today;
  double tickets;
  tavelor_status status;
} till;

static void* sell(void* given) {
  till* const of = given;
  tavelor_apartment* apartment = NULL;
  tavelor_shop* flows = NULL;
  of->status = tavelor_apartment_open(of->installation, &apartment, NULL);
  if (of->status == TAVELOR_OK)
    of->status = tavelor_apartment_fix_clock(apartment, &of->today, NULL);
  if (of->status == TAVELOR_OK) of->status = tavelor_shop_open(apartment, &flows, NULL);
  for (int i = 0; i < 10 && of->status == TAVELOR_OK; ++i) {
    char reference[] = {of->code[0], of->code[1], '-', (char)('0' + i), '\0'};
    const tavelor_sale_line line = {
        .size = sizeof line, .code = "PAN", .quantity = 1, .price = 1, .tax = 4};
    const tavelor_sale sale = {.size = sizeof sale,
                               .reference = reference,
                               .till = of->code,
                               .day = of->today,
                               .payment = "1",
                               .lines = &line,
                               .line_count = 1};
    double ticket = 0;
    of->status = tavelor_shop_sell(flows, &sale, &ticket, NULL);
    if (ticket > 0) ++of->tickets;
  }
  tavelor_shop_release(flows);
  tavelor_apartment_close(apartment);
  return NULL;
}

static void tills_sell_on_threads_of_their_own(void) {
  shop_of_test shop = open_shop();
  tavelor_shop* flows = NULL;
  OK(tavelor_shop_open(shop.apartment, &flows, &failure));
  static const char* const codes[] = {"01", "02", "03"};
  OK(tavelor_shop_open_tills(flows, codes, COUNT_OF(codes), &failure));
  till tills[COUNT_OF(codes)];
  pthread_t threads[COUNT_OF(codes)];
  for (size_t i = 0; i < COUNT_OF(codes); ++i) {
    tills[i] = (till){shop.installation, codes[i], shop.today, 0, 0};
    CHECK(pthread_create(&threads[i], NULL, sell, &tills[i]) == 0);
  }
  for (size_t i = 0; i < COUNT_OF(codes); ++i) {
    CHECK(pthread_join(threads[i], NULL) == 0);
    CHECK(tills[i].status == TAVELOR_OK && tills[i].tickets == 10);
    tavelor_closing closing = {.size = sizeof closing};
    OK(tavelor_shop_close_till(flows, codes[i], shop.today, &closing, &failure));
    CHECK(closing.tickets == 10 && closing.total == 10);
  }
  tavelor_shop_release(flows);
  close_shop(&shop);
}

static void* close_there(void* given) {
  shop_of_test* const shop = given;
  close_shop(shop);
  return NULL;
}

static void another_thread_may_end_an_apartment_that_is_not_in_use(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const main = connect_main(&shop);
  tavelor_object* const rows = rows_of(main, "SELECT Codigo FROM Cajas");
  pthread_t thread;
  CHECK(pthread_create(&thread, NULL, close_there, &shop) == 0);
  CHECK(pthread_join(thread, NULL) == 0);
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_recordset_update(rows, &failure));
  tavelor_object_release(rows);
  tavelor_object_release(main);
}

const named_test thread_tests[] = {
    {"AnotherThreadIsRefusedAndMayGiveBack", another_thread_is_refused_and_may_give_back},
    {"TillsSellOnThreadsOfTheirOwn", tills_sell_on_threads_of_their_own},
    {"AnotherThreadMayEndAnApartmentThatIsNotInUse",
     another_thread_may_end_an_apartment_that_is_not_in_use},
    {NULL, NULL}};
