// SPDX-License-Identifier: MIT
// /classes/{name}/view: how a list is shown, under the keys where the class keeps its order and its
// filter. What the library has no value for has one of its own there: columns and their widths.
#include "tavelor/web/class_view.hpp"

#include <charconv>
#include <cstdint>

#include <fmt/format.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/list_settings.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/class_cursors.hpp"
#include "tavelor/web/class_endpoints.hpp"
#include "tavelor/web/class_filters.hpp"
#include "tavelor/web/context.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kColumns = "Columnas";  ///< JSON: [["Código", true, 96], ...]
constexpr std::string_view kDescending = " DESC";
constexpr std::int64_t kWidest = 2000;  // pixels
constexpr std::size_t kMostColumns = 500;
constexpr std::size_t kLongestFilter = 4000;

constexpr std::string_view kViewSchema = R"json({
  "type": "object",
  "properties": {
    "columns": {"type": "array", "items": {"type": "object", "required": ["name"], "properties": {
      "name": {"type": "string"}, "visible": {"type": "boolean"}, "width": {"type": "integer"}}}},
    "order": {"type": ["object", "null"], "required": ["column"], "properties": {
      "column": {"type": "string"}, "descending": {"type": "boolean"}}},
    "filter": {"type": "string"}}})json";

Json storedColumns(const std::string& stored, const ClassColumns& columns) {
  Json list = Json::array();
  const Json kept = Json::parse(stored, nullptr, false);
  if (!kept.is_array()) return list;
  for (const Json& each : kept) {
    const bool isOne = each.is_array() && each.size() == 3 && each[0].is_string() &&
                       each[1].is_boolean() && each[2].is_number_integer();
    if (!isOne || findColumn(columns, each[0].get<std::string>()) == nullptr) continue;
    list.push_back({{"name", each[0]}, {"visible", each[1]}, {"width", each[2]}});
  }
  return list;
}

Json storedOrder(ListConfig& settings, const ClassColumns& columns) {
  const std::string index = settings.GetValue(list_value::kOrder, "");
  if (index.empty()) return nullptr;
  std::size_t place = 0;
  const auto [stopped, fault] = std::from_chars(index.data(), index.data() + index.size(), place);
  if (fault != std::errc() || stopped != index.data() + index.size()) return nullptr;
  if (place >= columns.size() || columns[place].isHidden) return nullptr;
  const std::string mode = settings.GetValue(list_value::kDirection, "");
  return {{"column", columns[place].name},
          {"descending", text::equalsIgnoreCase(text::trim(mode), text::trim(kDescending))}};
}

void storeColumns(ListConfig& settings, const Fields& body, const ClassColumns& columns) {
  const Json& given = body.array("columns", kMostColumns);
  Json kept = Json::array();
  for (std::size_t i = 0; i < given.size(); ++i) {
    const Fields fields(given[i], body.placeOf("columns", i));
    fields.allowOnly({"name", "visible", "width"});
    const ClassColumn& column = shownColumn(fields.text("name", 100), columns);
    kept.push_back(Json::array(
        {column.name, fields.flag("visible", true), fields.whole("width", 0, kWidest, 0)}));
  }
  settings.SetValue(kColumns, dumped(kept));
}

void storeOrder(ListConfig& settings, const Fields& body, const ClassColumns& columns) {
  const Fields order(body.object("order"), "order");
  order.allowOnly({"column", "descending"});
  const ClassColumn& column = shownColumn(order.text("column", 100), columns);
  settings.SetValue(list_value::kOrder, std::to_string(column.place));
  settings.SetValue(list_value::kDirection, order.flag("descending") ? kDescending : "");
}

/// Tried on the rows before it is kept: every form of the class would fail with one that does not
/// read.
void storeFilter(const OpenClass& opened, ListConfig& settings, const std::string& filter) {
  try {
    opened.rows().Filter(filter);
  } catch (const Error& error) {
    Failure failure = Failure::refused("The filter does not read: " + error.description());
    failure.faults = {{.field = "filter", .reason = error.description()}};
    throw failure;
  }
  settings.SetValue(list_value::kFilter, filter);
}

Answer getView(Context& context) {
  const OpenClass opened(context, "read");
  opened.openByKey(context);
  return answer(viewOf(opened.record(), modeOf(context, opened.record()), opened.columns()));
}

Answer putView(Context& context, ClassCursors& cursors) {
  const OpenClass opened(context, "read");
  opened.openByKey(context);
  const ClassColumns columns = opened.columns();
  const std::string mode = modeOf(context, opened.record());
  const Fields body(context.body());
  body.allowOnly({"columns", "order", "filter"});
  ListConfig settings = listSettings(opened.record().info(), mode);
  if (body.has("filter")) storeFilter(opened, settings, body.text("filter", kLongestFilter));
  if (body.has("columns")) storeColumns(settings, body, columns);
  if (body.has("order")) {
    storeOrder(settings, body, columns);
    cursors.changed(opened.component().name());
  }
  context.changed(fmt::format("view of {}, {}", opened.component().name(), mode));
  return answer(viewOf(opened.record(), mode, columns));
}

}  // namespace

Json viewOf(const RecordClass& record, std::string_view mode, const ClassColumns& columns) {
  ListConfig settings = listSettings(record.info(), mode);
  return {{"columns", storedColumns(settings.GetValue(kColumns, ""), columns)},
          {"order", storedOrder(settings, columns)},
          {"filter", settings.GetValue(list_value::kFilter, "")}};
}

void addClassViews(Routes& routes, const std::shared_ptr<ClassCursors>& cursors) {
  const std::vector<QueryParameter> parameters = {
      {.name = "mode", .text = "Whose list; todos without one"},
      {.name = "id", .text = "What the mode looks for"}};
  routes.add(Method::kGet, "/api/v1/classes/{name}/view", Right::kOfficeRead, getView,
             {.summary = "How a list is shown: its columns, order and filter, for the whole shop",
              .parameters = parameters,
              .answer = kViewSchema});
  routes.add(Method::kPut, "/api/v1/classes/{name}/view", Right::kOfficeRead,
             [cursors](Context& context) { return putView(context, *cursors); },
             {.summary = "Remembers how a list is shown; what is not given stays",
              .parameters = parameters,
              .body = kViewSchema,
              .answer = kViewSchema});
}

}  // namespace tavelor::web
