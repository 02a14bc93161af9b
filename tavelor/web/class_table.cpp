// SPDX-License-Identifier: MIT
// /classes: which classes there are, and what one of them is like.
#include <algorithm>

#include <fmt/format.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/modes.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/class_cursors.hpp"
#include "tavelor/web/class_endpoints.hpp"
#include "tavelor/web/class_shape.hpp"
#include "tavelor/web/class_view.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kClassSchema = R"json({
  "type": "object", "required": ["name", "word", "table", "title", "modes", "canWrite", "hasRows"],
  "properties": {
    "name": {"type": "string"}, "word": {"type": "string"}, "table": {"type": "string"},
    "title": {"type": "string"}, "hasRows": {"type": "boolean"}, "canWrite": {"type": "boolean"},
    "modes": {"type": "array", "items": {"type": "string"}},
    "modesWithId": {"type": "array", "items": {"type": "string"}},
    "whyNot": {"type": "string"}, "count": {"type": "integer"}}})json";

std::string titleOf(const Component& component) {
  std::string title = component.word().empty() ? component.name() : component.word();
  std::replace(title.begin(), title.end(), '_', ' ');
  return title;
}

/// Why its rows cannot be changed by this caller, or "".
std::string whyNot(const Context& context, const Component& component, const RecordClass* record) {
  if (record == nullptr) return component.name() + " has no rows of its own.";
  const std::string& word = component.word();
  if (!context.caller().may(Right::kOfficeWrite)) return "This needs the right office.write.";
  if (!context.mayWithClass(word, "write")) return fmt::format("class.{}.write is denied.", word);
  return {};
}

std::int64_t countOf(const RecordClass& record) {
  Statement statement("SELECT Count(*) AS Filas FROM ");
  statement << record.info().table;
  RecordsetPtr rows;
  ConnectionPtr connection;
  DataSession().OpenRecordset(record.info().selector, statement, rows, connection);
  return static_cast<std::int64_t>(rows->Field(0).Value().toDouble(Apartment::current().locale()));
}

Json lineOf(const Context& context, const Component& component) {
  const std::unique_ptr<Object> object = component.make();
  const auto* const record = dynamic_cast<const RecordClass*>(object.get());
  const std::string fault = whyNot(context, component, record);
  Json line = {
      {"name", component.name()},    {"word", component.word()},     {"table", ""},
      {"title", titleOf(component)}, {"hasRows", record != nullptr}, {"canWrite", fault.empty()},
      {"modes", Json::array()},      {"modesWithId", Json::array()}};
  if (!fault.empty()) line["whyNot"] = fault;
  if (record == nullptr) return line;
  line["table"] = record->info().table.text();
  for (const std::string& word : modeWords(record->info())) {
    line["modes"].push_back(word);
    if (looksForId(record->info(), word)) line["modesWithId"].push_back(word);
  }
  if (context.query("count", "") == "true") line["count"] = countOf(*record);
  return line;
}

Answer listClasses(Context& context) {
  Json list = Json::array();
  for (const Component* component : components()) {
    const std::string& word = component->word().empty() ? component->name() : component->word();
    if (context.mayWithClass(word, "read")) list.push_back(lineOf(context, *component));
  }
  return answer(list);
}

Answer describeClass(Context& context) {
  const Component& component = classCalled(context.path("name"));
  mustWithClass(context, component, "read");
  Json json = lineOf(context, component);
  Json members = Json::array();
  for (const Member& member : component.members()) {
    members.push_back(
        {{"name", member.name}, {"signature", member.signature()}, {"property", member.property}});
  }
  json["columns"] = Json::array();
  if (json["hasRows"].get<bool>()) {
    const OpenClass opened(context, "read");
    opened.openByKey(context);
    const ClassColumns columns = opened.columns();
    json["columns"] = toJson(columns);
    json["view"] = viewOf(opened.record(), modeOf(context, opened.record()), columns);
  }
  json["members"] = std::move(members);
  return answer(json);
}

}  // namespace

void addClassTable(Routes& routes) {
  static const std::string kList =
      fmt::format(R"json({{"type": "array", "items": {}}})json", kClassSchema);
  routes.add(Method::kGet, "/api/v1/classes", Right::kOfficeRead, listClasses,
             {.summary = "All classes: their modes, and whether their rows may be changed",
              .parameters = {{.name = "count",
                              .text = "true: with the number of rows of each table",
                              .type = "boolean"}},
              .answer = kList});
  routes.add(Method::kGet, "/api/v1/classes/{name}", Right::kOfficeRead, describeClass,
             {.summary = "A class: its modes, the columns of one of them, its members and its view",
              .parameters = {{.name = "mode", .text = "Whose columns and view; todos without one"},
                             {.name = "id", .text = "What the mode looks for"}},
              .answer = kClassSchema});
}

void addClasses(Routes& routes) {
  const auto cursors = std::make_shared<ClassCursors>();
  addClassTable(routes);
  addClassRows(routes, cursors);
  addClassViews(routes, cursors);
  addClassRecords(routes, cursors);
  addClassCalls(routes, cursors);
}

}  // namespace tavelor::web
