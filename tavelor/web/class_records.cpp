// SPDX-License-Identifier: MIT
// /classes/{name}/record: a row as a form reads and writes it, through the class's own members.
#include <algorithm>
#include <cmath>
#include <optional>

#include <fmt/format.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/class_cursors.hpp"
#include "tavelor/web/class_endpoints.hpp"
#include "tavelor/web/class_values.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/events.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kRecordSchema = R"json({
  "type": "object", "required": ["key", "values", "columns"],
  "properties": {
    "key": {"$ref": "#/components/schemas/Key"},
    "values": {"$ref": "#/components/schemas/Values"},
    "columns": {"type": "array", "items": {"$ref": "#/components/schemas/Column"}}}})json";
constexpr std::string_view kNewSchema = R"json({
  "type": "object", "required": ["values", "columns"],
  "properties": {
    "values": {"$ref": "#/components/schemas/Values"},
    "columns": {"type": "array", "items": {"$ref": "#/components/schemas/Column"}}}})json";
constexpr std::string_view kInsertSchema = R"json({
  "type": "object", "required": ["values"],
  "properties": {"values": {"$ref": "#/components/schemas/Values"}}})json";
constexpr std::string_view kChangeSchema = R"json({
  "type": "object", "required": ["key", "values"],
  "properties": {
    "key": {"$ref": "#/components/schemas/Key"},
    "original": {"$ref": "#/components/schemas/Values"},
    "values": {"$ref": "#/components/schemas/Values"}}})json";
constexpr std::string_view kDeleteSchema = R"json({
  "type": "object", "required": ["key"],
  "properties": {
    "key": {"$ref": "#/components/schemas/Key"},
    "original": {"$ref": "#/components/schemas/Values"}}})json";

// ---- Reading

/// Opens the row of a key; the columns that it has. Raises Failure 404 where there is none, 409
/// where several have that key.
ClassColumns openRow(Context& context, const OpenClass& opened, const Json& key) {
  opened.openByKey(context);
  ClassColumns columns = opened.columns();
  opened.openByKey(context, keyOf(key, opened.record(), columns));
  const std::int32_t count = opened.rows().RecordCount();
  if (count == 1) return columns;
  const std::string of = fmt::format("{} {}", opened.component().name(), dumped(key));
  if (count == 0) throw Failure::missing(fmt::format("There is no row {} any more.", of));
  throw Failure::conflict(fmt::format(
      "{} rows are {}: their table has no key, and none can be told from the others.", count, of));
}

Json recordOf(const OpenClass& opened, const ClassColumns& columns) {
  return {{"key", keyOfRow(opened.rows(), columns)},
          {"values", valuesOf(opened.rows(), columns)},
          {"columns", toJson(columns)}};
}

Json keyOfQuery(const Context& context) {
  const auto text = context.query("key");
  if (!text) throw Failure::input("The record's key is missing: ?key={\"Código\":\"00001\"}.");
  return parsed(*text);
}

Answer getRecord(Context& context) {
  const OpenClass opened(context, "read");
  const ClassColumns columns = openRow(context, opened, keyOfQuery(context));
  return answer(recordOf(opened, columns));
}

Answer newRecord(Context& context) {
  const OpenClass opened(context, "write");
  opened.openByKey(context);
  const ClassColumns columns = opened.columns();
  opened.record().AddNew(true);
  return answer({{"values", valuesOf(opened.rows(), columns)}, {"columns", toJson(columns)}});
}

// ---- Writing

/// What is wrong with the values of a form, all of it, or one that a listener or the database
/// refuses.
class Faults {
 public:
  void add(const std::string& field, const std::string& reason) {
    faults_.push_back({.field = field, .reason = reason});
  }
  void raiseIfAny() {
    if (faults_.empty()) return;
    const Fault& first = faults_.front();
    std::string message = fmt::format("{} {}.", first.field, first.reason);
    if (faults_.size() > 1) message += fmt::format(" {} more are wrong.", faults_.size() - 1);
    throw Failure::refused(message, std::move(faults_));
  }

 private:
  std::vector<Fault> faults_;
};

void assign(const OpenClass& opened, const ClassColumn& column, const Variant& value,
            Faults& faults) {
  const std::string fault = faultOf(opened.record(), column, value);
  if (!fault.empty()) return faults.add(column.name, fault);
  try {
    opened.rows().Field(static_cast<std::int32_t>(column.place)).Value(value);
  } catch (const Error& error) {
    if (error.kind() != ErrorKind::kValue) throw;
    faults.add(column.name, "does not fit: " + error.description());
  }
}

bool isSame(const Json& a, const Json& b) {
  return a == b || (a.is_number() && b.is_number() && a.get<double>() == b.get<double>());
}

/// Writes what differs from the current row into it. A Null for what a new row has not got yet
/// leaves it to the table's default.
void assignAll(const OpenClass& opened, const ClassColumns& columns, const Json& values) {
  Faults faults;
  for (const auto& member : values.items()) {
    const ClassColumn* const column = findColumn(columns, member.key());
    if (column == nullptr) {
      Failure failure = Failure::input(fmt::format("There is no column {}.", member.key()));
      failure.faults = {{.field = member.key(), .reason = "is no column"}};
      throw failure;
    }
    if (isSame(member.value(), cellOf(opened.rows(), *column))) continue;
    std::string fault;
    const Variant value = valueOf(member.value(), *column, fault);
    if (!column->isWritable) {
      fault = "cannot be written";
    } else if (value.isNull() && !column->isNullable) {
      fault = "must have a value";
    }
    if (fault.empty()) {
      assign(opened, *column, value, faults);
    } else {
      faults.add(column->name, fault);
    }
  }
  faults.raiseIfAny();
}

/// A row of a grid gets its number when the grid is stored; a form stores one row.
void numberNewRow(const OpenClass& opened, const ClassColumns& columns) {
  constexpr double kUnstored = -1;
  for (const ClassColumn& column : columns) {
    const bool isNumber = engine::isNumeric(column.type);
    if (!column.isKey || !column.isWritable || column.isNumbered || !isNumber) continue;
    const Field field = opened.rows().Field(static_cast<std::int32_t>(column.place));
    const Variant value = field.Value();
    const bool isOpen = value.isEmpty() || value.isNull() ||
                        value.toDouble(Apartment::current().locale()) == kUnstored;
    if (isOpen) {
      opened.rows()
          .Field(static_cast<std::int32_t>(column.place))
          .Value(opened.record().NuevoCodigo());
    }
  }
}

/// What another one has made of the row meanwhile.
Failure conflictWith(const Json& theirs) {
  Failure failure = Failure::conflict("Somebody else has changed this row meanwhile.");
  failure.further = {{"theirs", theirs}};
  return failure;
}

/// Raises Failure 409 where the row is no longer as the form has read it, in the columns that
/// count.
void mustBeAsRead(const OpenClass& opened, const ClassColumns& columns, const Json& original,
                  const Json* changed) {
  for (const auto& member : original.items()) {
    const ClassColumn* const column = findColumn(columns, member.key());
    if (column == nullptr) throw Failure::input("There is no column " + member.key() + ".");
    if (changed != nullptr && !changed->contains(member.key())) continue;
    if (!isSame(member.value(), cellOf(opened.rows(), *column))) {
      throw conflictWith(valuesOf(opened.rows(), columns));
    }
  }
}

/// Runs `write`; a row that was changed in this very moment is told as it is now.
template <typename Write>
void writing(Context& context, const OpenClass& opened, const Json& key, Write&& write) {
  try {
    write();
  } catch (const Error& error) {
    if (error.number() != errors::kRowNotLocated) throw;
    const ClassColumns columns = openRow(context, opened, key);
    throw conflictWith(valuesOf(opened.rows(), columns));
  }
}

/// Tells those who listen, and the lists that are open.
void tellChange(Context& context, ClassCursors& cursors, const OpenClass& opened, const Json& key) {
  const std::string& name = opened.component().name();
  cursors.changed(name);
  context.changed(fmt::format("{} {}", name, dumped(key)));
  context.events().publish("change", {{"class", name}, {"key", key}});
}

Answer insertRecord(Context& context, ClassCursors& cursors) {
  const OpenClass opened(context, "write");
  const Fields body(context.body());
  body.allowOnly({"values"});
  const Json& values = body.object("values");
  opened.openByKey(context);
  const ClassColumns columns = opened.columns();
  opened.record().AddNew(true);
  assignAll(opened, columns, values);
  numberNewRow(opened, columns);
  opened.record().Update();
  const Json made = recordOf(opened, columns);
  tellChange(context, cursors, opened, made["key"]);
  return answer(made, 201);
}

Answer changeRecord(Context& context, ClassCursors& cursors) {
  const OpenClass opened(context, "write");
  const Fields body(context.body());
  body.allowOnly({"key", "original", "values"});
  const Json& values = body.object("values");
  const Json& key = context.body().value("key", Json());
  const ClassColumns columns = openRow(context, opened, key);
  if (body.has("original")) mustBeAsRead(opened, columns, body.object("original"), &values);
  assignAll(opened, columns, values);
  if (opened.record().EditingRecord()) {
    writing(context, opened, key, [&] { opened.record().Update(); });
    tellChange(context, cursors, opened, keyOfRow(opened.rows(), columns));
  }
  return answer(recordOf(opened, columns));
}

Answer deleteRecord(Context& context, ClassCursors& cursors) {
  const OpenClass opened(context, "write");
  const Fields body(context.body());
  body.allowOnly({"key", "original"});
  const Json key = context.body().value("key", Json());
  const ClassColumns columns = openRow(context, opened, key);
  if (body.has("original")) mustBeAsRead(opened, columns, body.object("original"), nullptr);
  writing(context, opened, key, [&] {
    opened.record().Delete();
    if (opened.record().info().remove == DeleteForm::kMarks) opened.record().Update();
  });
  tellChange(context, cursors, opened, key);
  return answer({{"deleted", true}});
}

}  // namespace

void addClassRecords(Routes& routes, const std::shared_ptr<ClassCursors>& cursors) {
  const std::vector<QueryParameter> ofMode = {
      {.name = "mode", .text = "Among whose rows; todos without one"},
      {.name = "id", .text = "What the mode looks for"}};
  std::vector<QueryParameter> ofKey = ofMode;
  ofKey.push_back({.name = "key", .text = "JSON: the columns of the key with their values"});
  constexpr std::string_view kOne = "/api/v1/classes/{name}/record";
  routes.add(Method::kGet, kOne, Right::kOfficeRead, getRecord,
             {.summary = "A row by its key", .parameters = ofKey, .answer = kRecordSchema});
  routes.add(
      Method::kGet, "/api/v1/classes/{name}/new", Right::kOfficeWrite, newRecord,
      {.summary = "A row as the class begins it", .parameters = ofMode, .answer = kNewSchema});
  routes.add(Method::kPost, "/api/v1/classes/{name}/records", Right::kOfficeWrite,
             [cursors](Context& context) { return insertRecord(context, *cursors); },
             {.summary = "Adds a row: what the class begins it with, and these values",
              .parameters = ofMode,
              .body = kInsertSchema,
              .answer = kRecordSchema});
  routes.add(
      Method::kPatch, kOne, Right::kOfficeWrite,
      [cursors](Context& context) { return changeRecord(context, *cursors); },
      {.summary = "Changes a row. Where one of the changed columns is no longer what `original` "
                  "tells, the answer is 409 with `theirs`",
       .parameters = ofMode,
       .body = kChangeSchema,
       .answer = kRecordSchema});
  routes.add(
      Method::kDelete, kOne, Right::kOfficeWrite,
      [cursors](Context& context) { return deleteRecord(context, *cursors); },
      {.summary = "Deletes a row, where it is as `original` tells",
       .parameters = ofMode,
       .body = kDeleteSchema,
       .answer = R"json({"type": "object", "properties": {"deleted": {"type": "boolean"}}})json"});
}

}  // namespace tavelor::web
