// SPDX-License-Identifier: MIT
// Installations and apartments, and what becomes of what outlives them.
#include "tests/c/check.h"

static void an_installation_is_made_once_and_opened_by_folder_or_file(void) {
  TEXT(tavelor_version(), "1.0.0");
  CHECK(tavelor_abi() == TAVELOR_ABI);
  tavelor_installation* made = NULL;
  OK(tavelor_installation_create("first", NULL, &made, &failure));
  const char* const folder = tavelor_installation_folder(made);
  CHECK(folder != NULL && strcmp(folder + strlen(folder) - 6, "/first") == 0);
  CHECK(tavelor_installation_folder(NULL) == NULL);
  tavelor_installation* again = NULL;
  FAILS(TAVELOR_E_PATH_ACCESS, tavelor_installation_create("first", NULL, &again, &failure));
  FAILS(TAVELOR_E_FILE_NOT_FOUND, tavelor_installation_open("second", &again, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_installation_open(NULL, &again, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_installation_open("first", NULL, &failure));
  FAILS(TAVELOR_E_TYPE_MISMATCH, tavelor_installation_open("\xFF", &again, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_installation_create(NULL, NULL, &again, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_installation_create("third", NULL, NULL, &failure));
  CHECK(again == NULL);
  OK(tavelor_installation_open("first", &again, &failure));
  tavelor_installation_release(again);
  OK(tavelor_installation_open("first/tavelor.xml", &again, &failure));
  TEXT(tavelor_installation_folder(again), tavelor_installation_folder(made));
  tavelor_installation_release(again);
  tavelor_installation_release(made);
  tavelor_installation_release(NULL);
}

static void settings_shape_a_new_installation(void) {
  tavelor_settings settings = {.size = sizeof settings,
                               .locale = "neutral",
                               .amount_format = "0.000",
                               .quantity_format = "0",
                               .currency_decimals = 3,
                               .unsynchronised = 1,
                               .busy_timeout_ms = 100,
                               .strict_modes = 1};
  tavelor_installation* made = NULL;
  OK(tavelor_installation_create("first", &settings, &made, &failure));
  tavelor_apartment* apartment = NULL;
  OK(tavelor_apartment_open(made, &apartment, &failure));
  tavelor_value value = tavelor_of_string("1234.5");
  OK(tavelor_value_convert(apartment, &value, TAVELOR_DOUBLE, &value, &failure));
  CHECK(value.as.number == 1234.5);
  tavelor_apartment_close(apartment);
  tavelor_installation_release(made);

  // Those of one are those of the next, but for what is said besides.
  const tavelor_settings alike = {
      .size = sizeof alike, .file = "first/tavelor.xml", .locale = "es-ES"};
  OK(tavelor_installation_create("second", &alike, &made, &failure));
  tavelor_installation_release(made);

  made = NULL;
  settings.locale = "xx-XX";
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_installation_create("third", &settings, &made, &failure));
  settings.size = 12;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_installation_create("third", &settings, &made, &failure));
  const tavelor_settings missing = {.size = sizeof missing, .file = "nowhere.xml"};
  FAILS(TAVELOR_E_FILE_NOT_FOUND, tavelor_installation_create("third", &missing, &made, &failure));
  const tavelor_settings told = {.size = sizeof told, .server = "postgresql://a:secret@b/c"};
  tavelor_error* error = NULL;
  CHECK(tavelor_installation_create("third", &told, &made, &error) == TAVELOR_E_INVALID_CALL);
  CHECK(strstr(tavelor_error_message(error), "secret") == NULL);
  tavelor_error_free(error);
  CHECK(made == NULL);
}

static void a_program_adds_tables_of_its_own(void) {
  shop_of_test shop = open_shop();
  OK(tavelor_installation_add_to_schema(
      shop.installation, 1, "CREATE TABLE Notas (Id LONG NOT NULL, Nota MEMO)", &failure));
  tavelor_object* main = connect_main(&shop);
  int64_t written = 0;
  OK(tavelor_connection_execute(main, "INSERT INTO Notas (Id, Nota) VALUES (1, 'una')", NULL, 0,
                                &written, &failure));
  CHECK(written == 1);
  FAILS(TAVELOR_E_NOT_SUPPORTED,
        tavelor_installation_add_to_schema(shop.installation, 1, "DROP TABLE Notas", &failure));
  FAILS(TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE,
        tavelor_installation_add_to_schema(shop.installation, 42, "CREATE TABLE A (Id LONG)",
                                           &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED,
        tavelor_installation_add_to_schema(NULL, 1, "CREATE TABLE A (Id LONG)", &failure));
  tavelor_object_release(main);
  close_shop(&shop);
}

static void the_clock_is_fixed_and_released(void) {
  shop_of_test shop = open_shop();
  double now = 0;
  OK(tavelor_apartment_now(shop.apartment, &now, &failure));
  CHECK(now == shop.today);
  OK(tavelor_apartment_fix_clock(shop.apartment, NULL, &failure));
  OK(tavelor_apartment_now(shop.apartment, &now, &failure));
  CHECK(now != shop.today);
  const double never = 1e12;
  FAILS(TAVELOR_E_OVERFLOW, tavelor_apartment_fix_clock(shop.apartment, &never, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_apartment_now(shop.apartment, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_apartment_now(NULL, &now, &failure));
  close_shop(&shop);
}

typedef struct prompts_seen {
  int questions;
  int messages;
  int32_t severity;
  int inputs;
  int32_t answer;
  const char* input;
  tavelor_status raises;
} prompts_seen;

static tavelor_status answer_prompt(void* user, tavelor_prompt* prompt) {
  prompts_seen* const seen = user;
  CHECK(prompt->size == sizeof *prompt);
  if (prompt->prompt == TAVELOR_PROMPT_QUESTION) {
    ++seen->questions;
    prompt->answer = seen->answer;
  } else if (prompt->prompt == TAVELOR_PROMPT_MESSAGE) {
    ++seen->messages;
    seen->severity = prompt->severity;
    CHECK(*prompt->text != '\0' && *prompt->title != '\0');
  } else if (prompt->prompt == TAVELOR_PROMPT_INPUT) {
    ++seen->inputs;
    prompt->input = seen->input;
  }
  return seen->raises;
}

static void prompts_reach_the_program(void) {
  shop_of_test shop = open_shop();
  const tavelor_class* of = NULL;
  tavelor_object* customers = NULL;
  OK(tavelor_class_find("ClsClientes", &of, &failure));
  OK(tavelor_object_new(shop.apartment, of, &customers, &failure));
  prompts_seen seen = {0};

  // Nobody is asked: a question is a No.
  OK(tavelor_call_by_name(customers, "LimpiarNIFCIF", NULL, 0, NULL, &failure));
  OK(tavelor_apartment_set_prompts(shop.apartment, answer_prompt, &seen, &failure));
  OK(tavelor_call_by_name(customers, "LimpiarNIFCIF", NULL, 0, NULL, &failure));
  CHECK(seen.questions == 1 && seen.messages == 0);
  seen.answer = 1;
  OK(tavelor_call_by_name(customers, "LimpiarNIFCIF", NULL, 0, NULL, &failure));
  CHECK(seen.questions == 2 && seen.messages == 1 && seen.severity == 1);

  seen.raises = 1234;
  FAILS(1234, tavelor_call_by_name(customers, "LimpiarNIFCIF", NULL, 0, NULL, &failure));
  seen.raises = 0;

  OK(tavelor_class_find("ClsCitas", &of, &failure));
  tavelor_object* agenda = NULL;
  OK(tavelor_object_new(shop.apartment, of, &agenda, &failure));
  seen.input = "31/12/25";
  OK(tavelor_call_by_name(agenda, "descargar_registros", NULL, 0, NULL, &failure));
  CHECK(seen.inputs == 1);
  seen.input = "\xFF";
  FAILS(TAVELOR_E_TYPE_MISMATCH,
        tavelor_call_by_name(agenda, "descargar_registros", NULL, 0, NULL, &failure));

  OK(tavelor_apartment_set_prompts(shop.apartment, NULL, NULL, &failure));
  OK(tavelor_call_by_name(customers, "LimpiarNIFCIF", NULL, 0, NULL, &failure));
  CHECK(seen.questions == 3);
  tavelor_object_release(agenda);
  tavelor_object_release(customers);
  close_shop(&shop);
}

static void messages_that_nobody_takes_are_kept(void) {
  shop_of_test shop = open_shop();
  const tavelor_class* of = NULL;
  tavelor_object* customers = NULL;
  OK(tavelor_class_find("ClsClientes", &of, &failure));
  OK(tavelor_object_new(shop.apartment, of, &customers, &failure));
  size_t count = 7;
  OK(tavelor_apartment_message_count(shop.apartment, &count, &failure));
  CHECK(count == 0);
  OK(tavelor_call_by_name(customers, "LimpiarNIFCIF_v1", NULL, 0, NULL, &failure));
  OK(tavelor_apartment_message_count(shop.apartment, &count, &failure));
  CHECK(count == 1);
  tavelor_prompt message = {.size = sizeof message};
  OK(tavelor_apartment_message(shop.apartment, 0, &message, &failure));
  CHECK(message.prompt == TAVELOR_PROMPT_MESSAGE && message.severity == 1);
  TEXT(message.text, "Proceso completado: NIF y tipos fiscales corregidos.");
  FAILS(TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE,
        tavelor_apartment_message(shop.apartment, 1, &message, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_apartment_message(shop.apartment, 0, NULL, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_apartment_message_count(shop.apartment, NULL, &failure));

  // What somebody takes is not kept.
  prompts_seen seen = {.answer = 1};
  OK(tavelor_apartment_set_prompts(shop.apartment, answer_prompt, &seen, &failure));
  OK(tavelor_call_by_name(customers, "LimpiarNIFCIF", NULL, 0, NULL, &failure));
  CHECK(seen.messages == 1);
  OK(tavelor_apartment_message_count(shop.apartment, &count, &failure));
  CHECK(count == 1);
  OK(tavelor_apartment_clear_messages(shop.apartment, &failure));
  OK(tavelor_apartment_message_count(shop.apartment, &count, &failure));
  CHECK(count == 0);
  tavelor_object_release(customers);
  close_shop(&shop);
}

static void what_outlives_its_apartment_refuses_to_work(void) {
  shop_of_test shop = open_shop();
  tavelor_object* main = connect_main(&shop);
  tavelor_object* rows = rows_of(main, "SELECT Codigo FROM Cajas");
  tavelor_shop* flows = NULL;
  OK(tavelor_shop_open(shop.apartment, &flows, &failure));
  tavelor_transaction* transaction = NULL;
  OK(tavelor_transaction_begin(flows, &transaction, &failure));
  tavelor_reconciliation* reconciliation = NULL;
  OK(tavelor_reconciliation_new(shop.apartment, &reconciliation, &failure));
  close_shop(&shop);

  int32_t open = 0;
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_recordset_is_open(rows, &open, &failure));
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_recordset_move(rows, TAVELOR_FIRST, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_connection_begin(main, &failure));
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_call_by_name(main, "State", NULL, 0, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_transaction_commit(transaction, &failure));
  FAILS(TAVELOR_E_OBJECT_NOT_SET,
        tavelor_shop_recover(flows, TAVELOR_DECIDE_NOTHING, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_reconciliation_compare(reconciliation, NULL, &failure));
  CHECK(tavelor_object_kind(rows) == TAVELOR_IS_RECORDSET);
  CHECK(tavelor_object_is_same(rows, rows) == 1);
  CHECK(tavelor_object_is_same(rows, main) == 0);
  // In any order.
  tavelor_shop_release(flows);
  tavelor_object_release(main);
  tavelor_transaction_release(transaction);
  tavelor_object_release(rows);
  tavelor_reconciliation_release(reconciliation);

  // And the folder is free again.
  tavelor_installation* again = NULL;
  OK(tavelor_installation_open("shop", &again, &failure));
  tavelor_installation_release(again);
}

static void several_apartments_work_side_by_side_on_a_thread(void) {
  shop_of_test shop = open_shop();
  tavelor_installation* other = NULL;
  OK(tavelor_installation_create("other", NULL, &other, &failure));
  tavelor_apartment* beside = NULL;
  OK(tavelor_apartment_open(other, &beside, &failure));
  tavelor_installation_release(other);  // its apartment keeps it

  const tavelor_class* banks = NULL;
  OK(tavelor_class_find("ClsBancos", &banks, &failure));
  tavelor_object* here = NULL;
  tavelor_object* there = NULL;
  OK(tavelor_object_new(shop.apartment, banks, &here, &failure));
  OK(tavelor_object_new(beside, banks, &there, &failure));
  tavelor_value create[] = {tavelor_of_empty(), tavelor_of_string("Caja Rural")};
  OK(tavelor_call_by_name(here, "CrearBanco", create, 2, NULL, &failure));
  tavelor_value_clear(&create[0]);
  tavelor_value exists = tavelor_of_empty();
  tavelor_object* main_here = connect_main(&shop);
  tavelor_object* main_there = NULL;
  OK(tavelor_connection_open(beside, 1, &main_there, &failure));
  tavelor_object* rows = rows_of(main_here, "SELECT Codigo FROM Bancos");
  CHECK(count_of(rows) == 1);
  tavelor_object_release(rows);
  rows = rows_of(main_there, "SELECT Codigo FROM Bancos");
  CHECK(count_of(rows) == 0);
  tavelor_object_release(rows);

  // What belongs to the one is no argument for the other.
  tavelor_value code[] = {tavelor_of_string("1"), tavelor_of_object(main_there)};
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_call_by_name(here, "GetValor", code, 2, &exists, &failure));
  tavelor_object_release(main_there);
  tavelor_object_release(main_here);
  tavelor_object_release(here);
  tavelor_object_release(there);
  tavelor_apartment_close(beside);
  close_shop(&shop);
}

static void handles_of_another_kind_are_refused(void) {
  shop_of_test shop = open_shop();
  tavelor_apartment* made = NULL;
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_apartment_open(NULL, &made, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED,
        tavelor_apartment_open((tavelor_installation*)(void*)shop.apartment, &made, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_apartment_open(shop.installation, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_connection_begin(NULL, &failure));
  tavelor_object* const wrong = (tavelor_object*)(void*)shop.installation;
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_connection_begin(wrong, &failure));
  CHECK(tavelor_object_kind(wrong) == -1 && tavelor_object_kind(NULL) == -1);
  CHECK(tavelor_object_class(NULL) == NULL);
  tavelor_object* main = connect_main(&shop);
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_recordset_update(main, &failure));
  tavelor_object* rows = rows_of(main, "SELECT Codigo FROM Cajas");
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_connection_commit(rows, &failure));
  FAILS(TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE,
        tavelor_connection_open(shop.apartment, 42, &main, &failure));
  tavelor_object_release(rows);
  tavelor_object_release(main);
  tavelor_object_release(NULL);
  tavelor_apartment_close(NULL);
  close_shop(&shop);
}

const named_test installation_tests[] = {
    {"AnInstallationIsMadeOnceAndOpenedByFolderOrFile",
     an_installation_is_made_once_and_opened_by_folder_or_file},
    {"SettingsShapeANewInstallation", settings_shape_a_new_installation},
    {"AProgramAddsTablesOfItsOwn", a_program_adds_tables_of_its_own},
    {"TheClockIsFixedAndReleased", the_clock_is_fixed_and_released},
    {"MessagesThatNobodyTakesAreKept", messages_that_nobody_takes_are_kept},
    {"PromptsReachTheProgram", prompts_reach_the_program},
    {"WhatOutlivesItsApartmentRefusesToWork", what_outlives_its_apartment_refuses_to_work},
    {"SeveralApartmentsWorkSideBySideOnAThread", several_apartments_work_side_by_side_on_a_thread},
    {"HandlesOfAnotherKindAreRefused", handles_of_another_kind_are_refused},
    {NULL, NULL}};
