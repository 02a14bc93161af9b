// SPDX-License-Identifier: MIT
// Classes, members and calls.
#include "tests/c/check.h"

static const tavelor_class* class_called(const char* name) {
  const tavelor_class* found = NULL;
  OK(tavelor_class_find(name, &found, &failure));
  return found;
}

static const tavelor_member* member_called(const tavelor_class* of, const char* name) {
  const tavelor_member* found = NULL;
  OK(tavelor_class_find_member(of, name, &found, &failure));
  return found;
}

static tavelor_object* object_of(const shop_of_test* shop, const char* name) {
  tavelor_object* object = NULL;
  OK(tavelor_object_new(shop->apartment, class_called(name), &object, &failure));
  return object;
}

static void every_class_is_listed_with_all_its_members(void) {
  CHECK(tavelor_class_count() == 52);
  CHECK(tavelor_class_at(tavelor_class_count()) == NULL);
  size_t undocumented = 0;
  for (size_t i = 0; i < tavelor_class_count(); ++i) {
    const tavelor_class* const of = tavelor_class_at(i);
    CHECK(class_called(tavelor_class_name(of)) == of);
    CHECK(class_called(tavelor_class_identifier(of)) == of);
    CHECK(tavelor_class_word(of) != NULL);
    CHECK(*tavelor_class_documentation(of) != '\0');
    CHECK(tavelor_class_member_at(of, tavelor_class_member_count(of)) == NULL);
    for (size_t slot = 0; slot < tavelor_class_member_count(of); ++slot) {
      const tavelor_member* const member = tavelor_class_member_at(of, slot);
      CHECK(member_called(of, tavelor_member_name(member)) == member);
      CHECK(strstr(tavelor_member_signature(member), tavelor_member_name(member)) != NULL);
      CHECK(tavelor_member_result(member) != NULL);
      if (*tavelor_member_documentation(member) == '\0') ++undocumented;
      for (size_t at = 0; at < tavelor_member_parameter_count(member); ++at) {
        tavelor_parameter parameter = {.size = sizeof parameter};
        OK(tavelor_member_parameter(member, at, &parameter, &failure));
        CHECK(*parameter.name != '\0' && *parameter.type != '\0');
        CHECK(parameter.direction >= TAVELOR_IN && parameter.direction <= TAVELOR_INOUT);
        CHECK(parameter.by_default.owned == 0);
      }
    }
  }
  CHECK(undocumented == 0);
}

static void a_class_is_found_by_name_or_identifier(void) {
  const tavelor_class* const banks = class_called("ClsBancos");
  CHECK(class_called("clsbancos") == banks);
  CHECK(class_called("Tavelor.ClsBancos") == banks);
  CHECK(class_called(tavelor_class_identifier(banks)) == banks);
  const tavelor_class* none = NULL;
  tavelor_error* error = NULL;
  CHECK(tavelor_class_find("ClsBanco", &none, &error) == TAVELOR_E_MEMBER_NOT_FOUND);
  CHECK(strstr(tavelor_error_description(error), "ClsBancos") != NULL);  // the nearest
  tavelor_error_free(error);
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_class_find(NULL, &none, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_class_find("ClsBancos", NULL, &failure));
  CHECK(none == NULL);
  CHECK(tavelor_class_name(NULL) == NULL && tavelor_class_identifier(NULL) == NULL);
  CHECK(tavelor_class_word(NULL) == NULL && tavelor_class_documentation(NULL) == NULL);
  CHECK(tavelor_class_member_count(NULL) == 0 && tavelor_class_member_at(NULL, 0) == NULL);
}

static void a_member_tells_its_parameters(void) {
  const tavelor_class* const banks = class_called("ClsBancos");
  const tavelor_member* const member = member_called(banks, "getibanbic");
  TEXT(tavelor_member_name(member), "GetIbanBic");
  CHECK(tavelor_member_is_property(member) == 0);
  CHECK(tavelor_member_is_property(member_called(banks, "EditingRecord")) == 1);
  TEXT(tavelor_member_result(member), "");
  CHECK(strstr(tavelor_member_documentation(member), "IBAN and BIC") != NULL);
  // The frame's own members are documented where the frame is.
  CHECK(*tavelor_member_documentation(member_called(banks, "MoveNext")) != '\0');
  CHECK(tavelor_member_parameter_count(member) == 4);
  tavelor_parameter parameter = {.size = sizeof parameter};
  OK(tavelor_member_parameter(member, 1, &parameter, &failure));
  TEXT(parameter.name, "sIban");
  TEXT(parameter.type, "String");
  CHECK(parameter.direction == TAVELOR_OUT && parameter.optional == 0);
  OK(tavelor_member_parameter(member, 3, &parameter, &failure));
  TEXT(parameter.type, "Connection");
  CHECK(parameter.optional == 1 && parameter.by_default.type == TAVELOR_EMPTY);
  FAILS(TAVELOR_E_SUBSCRIPT_OUT_OF_RANGE,
        tavelor_member_parameter(member, 4, &parameter, &failure));
  parameter.size = 1;
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_member_parameter(member, 0, &parameter, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_member_parameter(member, 0, NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_member_parameter(NULL, 0, &parameter, &failure));
  const tavelor_member* none = NULL;
  FAILS(TAVELOR_E_MEMBER_NOT_FOUND, tavelor_class_find_member(banks, "GetIbn", &none, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_class_find_member(NULL, "GetWeb", &none, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_class_find_member(banks, "GetWeb", NULL, &failure));
  CHECK(none == NULL && tavelor_member_name(NULL) == NULL);
  CHECK(tavelor_member_signature(NULL) == NULL && tavelor_member_documentation(NULL) == NULL);
  CHECK(tavelor_member_result(NULL) == NULL && tavelor_member_parameter_count(NULL) == 0);
  CHECK(tavelor_member_is_property(NULL) == 0);
}

static void a_call_writes_results_and_outputs(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const banks = object_of(&shop, "ClsBancos");
  const tavelor_class* const of = tavelor_object_class(banks);
  CHECK(tavelor_object_kind(banks) == TAVELOR_IS_OBJECT);
  TEXT(tavelor_class_name(of), "ClsBancos");
  const tavelor_member* const create = member_called(of, "CrearBanco");
  tavelor_value arguments[4] = {tavelor_of_string(""), tavelor_of_string("Banco d'Ahorro"),
                                tavelor_of_empty(), tavelor_of_empty()};
  tavelor_value result = tavelor_of_empty();
  // As the member wants it: it puts quotes around the text itself.
  FAILS(TAVELOR_E_SYNTAX, tavelor_call(banks, create, arguments, 2, &result, &failure));
  CHECK(result.type == TAVELOR_EMPTY);
  arguments[1] = tavelor_of_string("Banco d''Ahorro");
  OK(tavelor_call(banks, create, arguments, 2, &result, &failure));
  if (CHECK(result.type == TAVELOR_TEXT)) TEXT(result.as.text.data, "00001");
  if (CHECK(arguments[0].type == TAVELOR_TEXT && arguments[0].owned == 1)) {
    TEXT(arguments[0].as.text.data, "00001");
  }
  // Given again, the argument's old text goes.
  OK(tavelor_call(banks, create, arguments, 2, NULL, &failure));
  TEXT(arguments[0].as.text.data, "00002");
  tavelor_value_clear(&arguments[0]);
  tavelor_value_clear(&result);

  tavelor_object* const main = connect_main(&shop);
  arguments[0] = tavelor_of_string("00001 ");  // as the class stores it
  arguments[1] = tavelor_of_empty();
  arguments[3] = tavelor_of_object(main);
  OK(tavelor_call_by_name(banks, "GetIbanBic", arguments, 4, &result, &failure));
  CHECK(result.type == TAVELOR_EMPTY);
  CHECK(arguments[0].owned == 0);
  TEXT(arguments[1].as.text.data, "0");
  TEXT(arguments[2].as.text.data, "0");
  // A connection that stayed the same keeps its handle.
  CHECK(arguments[3].as.object == main && arguments[3].owned == 0);
  // One that was not given is made, as a variable would be filled.
  arguments[3] = tavelor_of_empty();
  OK(tavelor_call_by_name(banks, "GetIbanBic", arguments, 4, NULL, &failure));
  CHECK(arguments[3].type == TAVELOR_OBJECT && arguments[3].owned == 1);
  CHECK(tavelor_object_kind(arguments[3].as.object) == TAVELOR_IS_CONNECTION);
  CHECK(tavelor_object_is_same(arguments[3].as.object, main) == 0);
  for (size_t i = 0; i < 4; ++i) tavelor_value_clear(&arguments[i]);

  // Outputs that nobody takes are dropped.
  arguments[0] = tavelor_of_string("00001 ");
  OK(tavelor_call_by_name(banks, "GetIbanBic", arguments, 1, NULL, &failure));
  tavelor_object_release(main);
  tavelor_object_release(banks);
  close_shop(&shop);
}

static void a_call_that_fails_tells_why(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const banks = object_of(&shop, "ClsBancos");
  const tavelor_member* const value_of = member_called(class_called("ClsBancos"), "GetValor");
  tavelor_value arguments[9] = {tavelor_of_string("none")};
  tavelor_value result = tavelor_of_int32(7);
  FAILS(TAVELOR_E_NO_CURRENT_RECORD,
        tavelor_call(banks, value_of, arguments, 1, &result, &failure));
  CHECK(result.type == TAVELOR_INT32 && result.as.int32 == 7);
  FAILS(TAVELOR_E_WRONG_NUMBER_OF_ARGUMENTS,
        tavelor_call(banks, value_of, arguments, 0, &result, &failure));
  FAILS(TAVELOR_E_WRONG_NUMBER_OF_ARGUMENTS,
        tavelor_call(banks, value_of, arguments, 9, &result, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_call(banks, value_of, NULL, 1, &result, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_call(banks, NULL, arguments, 1, &result, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_call(NULL, value_of, arguments, 1, &result, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED,
        tavelor_call(banks, (const tavelor_member*)(const void*)tavelor_object_class(banks),
                     arguments, 1, &result, &failure));
  FAILS(TAVELOR_E_MEMBER_NOT_FOUND,
        tavelor_call_by_name(banks, "GetNada", arguments, 1, &result, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_call_by_name(banks, NULL, arguments, 1, &result, &failure));
  arguments[1] = tavelor_of_object(banks);  // no connection
  FAILS(TAVELOR_E_TYPE_MISMATCH, tavelor_call(banks, value_of, arguments, 2, &result, &failure));
  arguments[1] = tavelor_of_object(NULL);
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_call(banks, value_of, arguments, 2, &result, &failure));
  // A member is of its class only.
  tavelor_object* const tills = object_of(&shop, "ClsCajas");
  FAILS(TAVELOR_E_TYPE_MISMATCH, tavelor_call(tills, value_of, arguments, 1, &result, &failure));
  tavelor_object* none = NULL;
  FAILS(TAVELOR_E_OBJECT_REQUIRED, tavelor_object_new(shop.apartment, NULL, &none, &failure));
  FAILS(TAVELOR_E_INVALID_CALL,
        tavelor_object_new(shop.apartment, class_called("ClsBancos"), NULL, &failure));
  FAILS(TAVELOR_E_OBJECT_REQUIRED,
        tavelor_object_new(NULL, class_called("ClsBancos"), &none, &failure));
  CHECK(none == NULL);
  tavelor_object_release(tills);
  tavelor_object_release(banks);
  close_shop(&shop);
}

static void all_types_go_in_and_out(void) {
  shop_of_test shop = open_shop();
  const tavelor_column_wish wishes[] = {
      {.size = sizeof *wishes, .name = "v", .type = TAVELOR_COLUMN_DOUBLE},
      {.size = sizeof *wishes, .name = "b", .type = TAVELOR_COLUMN_BYTES},
      {.size = sizeof *wishes, .name = "m", .type = TAVELOR_COLUMN_MONEY},
      {.size = sizeof *wishes, .name = "f", .type = TAVELOR_COLUMN_SINGLE},
      {.size = sizeof *wishes, .name = "i", .type = TAVELOR_COLUMN_INT16}};
  tavelor_object* rows = NULL;
  OK(tavelor_recordset_new(shop.apartment, wishes, COUNT_OF(wishes), &rows, &failure));
  OK(tavelor_recordset_add_new(rows, &failure));
  // By the classes Recordset and Field of the table.
  tavelor_value which[] = {tavelor_of_string("b")};
  tavelor_value field = tavelor_of_empty();
  OK(tavelor_call_by_name(rows, "Field", which, 1, &field, &failure));
  CHECK(field.type == TAVELOR_OBJECT);
  TEXT(tavelor_class_name(tavelor_object_class(field.as.object)), "Field");
  tavelor_value bytes[] = {tavelor_of_bytes("a\0b", 3)};
  tavelor_value read = tavelor_of_empty();
  OK(tavelor_call_by_name(field.as.object, "Value", bytes, 1, &read, &failure));
  CHECK(read.type == TAVELOR_BYTES && read.as.bytes.size == 3);
  CHECK(memcmp(read.as.bytes.data, "a\0b", 4) == 0);  // with a NUL behind it
  tavelor_value_clear(&read);
  tavelor_value_clear(&field);

  const tavelor_value given[] = {tavelor_of_double(0.1), tavelor_of_null(), tavelor_of_money(12345),
                                 tavelor_of_double(1.5), tavelor_of_int64(-3)};
  const int32_t types[] = {TAVELOR_DOUBLE, TAVELOR_NULL, TAVELOR_MONEY, TAVELOR_SINGLE,
                           TAVELOR_INT16};
  for (int32_t i = 0; i < 5; ++i) {
    OK(tavelor_recordset_set(rows, i, &given[i], &failure));
    OK(tavelor_recordset_get_value(rows, i, TAVELOR_CELL_CURRENT, &read, &failure));
    CHECK(read.type == types[i]);
    tavelor_value_clear(&read);
  }
  OK(tavelor_recordset_get_value(rows, 2, TAVELOR_CELL_CURRENT, &read, &failure));
  CHECK(read.as.money == 12345);
  OK(tavelor_recordset_get_value(rows, 4, TAVELOR_CELL_CURRENT, &read, &failure));
  CHECK(read.as.int16 == -3);
  tavelor_object_release(rows);
  close_shop(&shop);
}

static void a_record_class_gives_its_rows(void) {
  shop_of_test shop = open_shop();
  tavelor_object* const tills = object_of(&shop, "ClsCajas");
  tavelor_object* rows = NULL;
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_object_rows(tills, "Primary", &rows, &failure));
  OK(tavelor_call_by_name(tills, "IniciaRs", NULL, 0, NULL, &failure));
  OK(tavelor_object_rows(tills, "Primary", &rows, &failure));
  CHECK(tavelor_object_kind(rows) == TAVELOR_IS_RECORDSET);
  CHECK(count_of(rows) > 0);
  // The class moves the same cursor.
  OK(tavelor_call_by_name(tills, "MoveLast", NULL, 0, NULL, &failure));
  int32_t position = 0;
  OK(tavelor_recordset_where(rows, NULL, NULL, NULL, &position, &failure));
  CHECK(position == count_of(rows));
  tavelor_object* same = NULL;
  OK(tavelor_object_rows(tills, "Primary", &same, &failure));
  CHECK(same != rows && tavelor_object_is_same(same, rows) == 1);
  CHECK(tavelor_object_is_same(same, tills) == 0 && tavelor_object_is_same(NULL, NULL) == 0);
  tavelor_object_release(same);
  FAILS(TAVELOR_E_OBJECT_NOT_SET, tavelor_object_rows(tills, "Secondary", &same, &failure));
  FAILS(TAVELOR_E_TYPE_MISMATCH, tavelor_object_rows(rows, "Primary", &same, &failure));
  FAILS(TAVELOR_E_INVALID_CALL, tavelor_object_rows(tills, "Primary", NULL, &failure));
  // The rows outlive their class.
  tavelor_object_release(tills);
  CHECK(count_of(rows) > 0);
  CHECK(tavelor_object_retain(rows) == rows && tavelor_object_retain(NULL) == NULL);
  tavelor_object_release(rows);
  CHECK(count_of(rows) > 0);
  tavelor_object_release(rows);
  close_shop(&shop);
}

const named_test class_tests[] = {
    {"EveryClassIsListedWithAllItsMembers", every_class_is_listed_with_all_its_members},
    {"AClassIsFoundByNameOrIdentifier", a_class_is_found_by_name_or_identifier},
    {"AMemberTellsItsParameters", a_member_tells_its_parameters},
    {"ACallWritesResultsAndOutputs", a_call_writes_results_and_outputs},
    {"ACallThatFailsTellsWhy", a_call_that_fails_tells_why},
    {"AllTypesGoInAndOut", all_types_go_in_and_out},
    {"ARecordClassGivesItsRows", a_record_class_gives_its_rows},
    {NULL, NULL}};
