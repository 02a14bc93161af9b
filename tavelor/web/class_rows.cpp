// SPDX-License-Identifier: MIT
// /classes/{name}/rows: a page of the rows of a mode.
#include <fmt/format.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/class_cursors.hpp"
#include "tavelor/web/class_endpoints.hpp"
#include "tavelor/web/class_filters.hpp"
#include "tavelor/web/class_values.hpp"
#include "tavelor/web/context.hpp"

namespace tavelor::web {

namespace {

constexpr std::int64_t kMostRows = 500;
constexpr std::int64_t kUsualRows = 100;
constexpr std::int64_t kFarthest = 1'000'000'000;

constexpr std::string_view kRowsSchema = R"json({
  "type": "object", "required": ["columns", "rows", "total", "offset"],
  "properties": {
    "columns": {"type": "array", "items": {"$ref": "#/components/schemas/Column"}},
    "rows": {"type": "array", "items": {"type": "array",
      "items": {"type": ["string", "number", "boolean", "null"]}}},
    "total": {"type": "integer"}, "offset": {"type": "integer"}}})json";

/// Whose cursors: those of one session are not shown to another one.
std::string whoOf(const Caller& caller) {
  return fmt::format("{} {} {}", static_cast<int>(caller.kind), caller.code, caller.session);
}

ClassCursor opened(const Context& context, const OpenClass& list) {
  list.openMode(context);
  ClassCursor cursor{.rows = list.record().DataMember("Primary"), .columns = list.columns()};
  cursor.ownOrder = cursor.rows->Sort();
  // The rows stay, and are nobody's but the cursor's: threads may show them in turn.
  cursor.rows->ActiveConnection(nullptr);
  return cursor;
}

Answer pageOfRows(Context& context, ClassCursors& cursors) {
  const OpenClass list(context, "read");
  const std::int64_t offset = context.queryWhole("offset", 0, kFarthest, 0);
  const std::int64_t limit = context.queryWhole("limit", 0, kMostRows, kUsualRows);
  // The first page is asked for when a list is opened, or looked at again.
  const bool isAnew = context.query("fresh", "") == "true";
  const ClassCursors::Wanted wanted = isAnew        ? ClassCursors::Wanted::kAnew
                                      : offset == 0 ? ClassCursors::Wanted::kRecent
                                                    : ClassCursors::Wanted::kAsRead;
  const ClassCursors::Place place{.caller = whoOf(context.caller()),
                                  .className = list.component().name(),
                                  .mode = modeOf(context, list.record()),
                                  .id = context.query("id", "")};
  Json json;
  cursors.use(
      place, wanted, [&] { return opened(context, list); },
      [&](ClassCursor& cursor) {
        cursor.show(criteriaOf(context.queries("filter"), cursor.columns),
                    orderOf(context.query("order", ""), cursor.columns));
        Recordset& rows = *cursor.rows;
        const std::int64_t total = rows.RecordCount();
        json = {{"columns", toJson(cursor.columns)},
                {"rows", Json::array()},
                {"total", total},
                {"offset", offset}};
        if (offset >= total) return;
        rows.AbsolutePosition(static_cast<std::int32_t>(offset + 1));
        json["rows"] = rowsOf(rows, cursor.columns, limit);
      });
  return answer(json);
}

}  // namespace

void addClassRows(Routes& routes, const std::shared_ptr<ClassCursors>& cursors) {
  routes.add(
      Method::kGet, "/api/v1/classes/{name}/rows", Right::kOfficeRead,
      [cursors](Context& context) { return pageOfRows(context, *cursors); },
      {.summary = "A page of the rows of a mode. They are read once for a session; the first page "
                  "reads them anew where they are older than some seconds",
       .parameters = {{.name = "mode", .text = "Word of IniciaRs; todos without one"},
                      {.name = "id", .text = "What the mode looks for, as it is"},
                      {.name = "order",
                       .text =
                           "COLUMN, COLUMN:asc or COLUMN:desc; without one the remembered order"},
                      {.name = "filter",
                       .text =
                           "COLUMN:OP:VALUE, OP of eq, ne, lt, le, gt, ge and like; all must fit",
                       .isRepeated = true},
                      {.name = "offset", .text = "Rows before the first one", .type = "integer"},
                      {.name = "limit", .text = "Rows, at most 500", .type = "integer"},
                      {.name = "fresh", .text = "true: reads them anew", .type = "boolean"}},
       .answer = kRowsSchema});
}

}  // namespace tavelor::web
