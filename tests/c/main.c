// SPDX-License-Identifier: MIT
// Runs the tests of the C interface: all, or those that are named, each in an empty folder.
#define _XOPEN_SOURCE 700
#include <ftw.h>
#include <stdio.h>
#include <stdlib.h>
#include <unistd.h>

#include "tests/c/check.h"

tavelor_error* failure = NULL;
static int failures = 0;

static void forget(void) {
  tavelor_error_free(failure);
  failure = NULL;
}

bool holds(bool condition, const char* file, int line, const char* what) {
  if (!condition) {
    printf("%s:%d: %s\n", file, line, what);
    ++failures;
  }
  return condition;
}

bool is_ok(tavelor_status status, const char* file, int line, const char* call) {
  const bool ok = holds(status == TAVELOR_OK, file, line, call);
  if (!ok) printf("  %s\n", tavelor_error_message(failure));
  // Told of nothing after success.
  if (ok) holds(failure == NULL, file, line, "no error after success");
  forget();
  return ok;
}

bool fails_with(tavelor_status status, tavelor_status number, const char* file, int line,
                const char* call) {
  const bool ok = holds(status == number, file, line, call);
  if (!ok) printf("  is %d: %s\n", (int)status, tavelor_error_message(failure));
  if (ok) {
    holds(tavelor_error_number(failure) == number, file, line, "the error has the number");
    holds(*tavelor_error_description(failure) != '\0', file, line, "the error tells why");
  }
  forget();
  return ok;
}

bool is_text(const char* text, const char* expected, const char* file, int line, const char* what) {
  const bool ok = holds(text != NULL && strcmp(text, expected) == 0, file, line, what);
  if (!ok) printf("  is '%s', not '%s'\n", text == NULL ? "(null)" : text, expected);
  return ok;
}

shop_of_test open_shop(void) {
  shop_of_test shop = {NULL, NULL, 0};
  const tavelor_settings settings = {.size = sizeof settings, .unsynchronised = 1};
  const tavelor_civil civil = {.year = 2026, .month = 11, .day = 20};
  OK(tavelor_date_from_civil(&civil, &shop.today, &failure));
  OK(tavelor_installation_create("shop", &settings, &shop.installation, &failure));
  OK(tavelor_apartment_open(shop.installation, &shop.apartment, &failure));
  OK(tavelor_apartment_fix_clock(shop.apartment, &shop.today, &failure));
  OK(tavelor_seed(shop.apartment, &failure));
  return shop;
}

void close_shop(shop_of_test* shop) {
  tavelor_apartment_close(shop->apartment);
  tavelor_installation_release(shop->installation);
}

tavelor_object* connect_main(const shop_of_test* shop) {
  tavelor_object* connection = NULL;
  OK(tavelor_connection_open(shop->apartment, 1, &connection, &failure));
  return connection;
}

tavelor_object* rows_of(tavelor_object* connection, const char* statement) {
  tavelor_object* rows = NULL;
  OK(tavelor_recordset_open(connection, statement, NULL, 0, TAVELOR_LOCK_BATCH, &rows, &failure));
  return rows;
}

int32_t column_of(tavelor_object* rows, const char* name) {
  int32_t column = -1;
  OK(tavelor_recordset_find_column(rows, name, &column, &failure));
  return column;
}

int32_t count_of(tavelor_object* rows) {
  int32_t count = -1;
  OK(tavelor_recordset_where(rows, NULL, NULL, &count, NULL, &failure));
  return count;
}

const char* text_at(tavelor_object* rows, int32_t column) {
  static char text[256];
  const char* data = NULL;
  size_t size = 0;
  int32_t is_null = 0;
  OK(tavelor_recordset_get_text(rows, column, &data, &size, &is_null, &failure));
  if (size >= sizeof text) size = sizeof text - 1;
  if (size > 0) memcpy(text, data, size);
  text[size] = '\0';
  return text;
}

static int remove_entry(const char* path, const struct stat* status, int flag, struct FTW* walk) {
  (void)status, (void)flag, (void)walk;
  return remove(path);
}

static void run(const named_test* test, const char* base) {
  char folder[4096];
  snprintf(folder, sizeof folder, "%s/tavelor-c-XXXXXX", base);
  if (mkdtemp(folder) == NULL || chdir(folder) != 0) {
    perror(folder);
    exit(2);
  }
  const int before = failures;
  test->run();
  if (chdir(base) != 0) perror(base);
  nftw(folder, remove_entry, 16, FTW_DEPTH | FTW_PHYS);
  printf("%s %s\n", failures == before ? "ok    " : "FAILED", test->name);
}

int main(int count, char** names) {
  static const named_test* const groups[] = {value_tests,     installation_tests, class_tests,
                                             recordset_tests, edit_tests,         event_tests,
                                             shop_tests,      thread_tests};
  const char* base = getenv("TMPDIR");
  if (base == NULL) base = "/tmp";
  int found = 0;
  for (size_t group = 0; group < COUNT_OF(groups); ++group) {
    for (const named_test* test = groups[group]; test->name != NULL; ++test) {
      bool wanted = count == 1;
      for (int i = 1; i < count; ++i) wanted = wanted || strcmp(names[i], test->name) == 0;
      if (!wanted) continue;
      ++found;
      run(test, base);
    }
  }
  if (found == 0 || (count > 1 && found < count - 1)) {
    printf("There is no such test.\n");
    return 2;
  }
  return failures == 0 ? EXIT_SUCCESS : EXIT_FAILURE;
}
