// SPDX-License-Identifier: MIT
// What the tests of the C interface say what must hold with. A check that fails tells where, and
// the test goes on.
#ifndef TAVELOR_TESTS_C_CHECK_H
#define TAVELOR_TESTS_C_CHECK_H

#include <stdbool.h>
#include <stddef.h>
#include <string.h>
#include <tavelor.h>

/// Takes the error of the call that is being checked.
extern tavelor_error* failure;

/// What each test begins with: a shop in an empty folder, seeded, on 20 November 2026.
typedef struct shop_of_test {
  tavelor_installation* installation;
  tavelor_apartment* apartment;
  double today;
} shop_of_test;
shop_of_test open_shop(void);
void close_shop(shop_of_test* shop);

tavelor_object* connect_main(const shop_of_test* shop);
tavelor_object* rows_of(tavelor_object* connection, const char* statement);
int32_t column_of(tavelor_object* rows, const char* name);
int32_t count_of(tavelor_object* rows);
/// The text of the current row, in memory that the next call uses again; "" for Null.
const char* text_at(tavelor_object* rows, int32_t column);

bool holds(bool condition, const char* file, int line, const char* what);
bool is_ok(tavelor_status status, const char* file, int line, const char* call);
bool fails_with(tavelor_status status, tavelor_status number, const char* file, int line,
                const char* call);
bool is_text(const char* text, const char* expected, const char* file, int line, const char* what);

#define CHECK(condition) holds((condition), __FILE__, __LINE__, #condition)
/// A call that ends with `&failure` and must succeed.
#define OK(call) is_ok((call), __FILE__, __LINE__, #call)
/// One that must fail with that number, and tell why.
#define FAILS(number, call) fails_with((call), (number), __FILE__, __LINE__, #call)
#define TEXT(text, expected) is_text((text), (expected), __FILE__, __LINE__, #text)

#define COUNT_OF(array) (sizeof(array) / sizeof *(array))

/// One test. Its name says the rule.
typedef struct named_test {
  const char* name;
  void (*run)(void);
} named_test;
/// The tests of a file, ended by one without a name.
extern const named_test value_tests[];
extern const named_test installation_tests[];
extern const named_test class_tests[];
extern const named_test recordset_tests[];
extern const named_test edit_tests[];
extern const named_test event_tests[];
extern const named_test shop_tests[];
extern const named_test thread_tests[];

#endif
