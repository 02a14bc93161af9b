// SPDX-License-Identifier: MIT
// /openapi.json: what the routes' table tells, as OpenAPI 3.1.
#include <fmt/format.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/application.hpp"
#include "tavelor/web/class_shape.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"

namespace tavelor::web {

using engine::ColumnType;

namespace {

/// What the schemas of the routes point to.
constexpr std::string_view kShared = R"json({
  "Error": {"type": "object", "required": ["error"], "properties": {
    "error": {"type": "object", "required": ["number", "kind", "message", "faults"], "properties": {
      "number": {"type": "integer"},
      "kind": {"enum": ["input", "signedOut", "forbidden", "missing", "conflict", "refused",
                        "locked", "limit", "busy", "failure"]},
      "message": {"type": "string"},
      "faults": {"type": "array", "items": {"type": "object", "required": ["reason"],
        "properties": {"line": {"type": "integer"}, "code": {"type": "string"},
          "field": {"type": "string"}, "reason": {"type": "string"}}}}}},
    "theirs": {"$ref": "#/components/schemas/Values"}}},
  "Value": {"type": ["string", "number", "boolean", "null"],
    "description": "A day is 2026-11-20, with a time 2026-11-20T10:32:00; bytes are base64; money has four decimals at most."},
  "Values": {"type": "object", "description": "Values by the names of columns",
    "additionalProperties": {"$ref": "#/components/schemas/Value"}},
  "Key": {"type": "object", "description": "The columns that tell a row from all others",
    "additionalProperties": {"$ref": "#/components/schemas/Value"}},
  "Column": {"type": "object",
    "required": ["name", "label", "type", "size", "nullable", "key", "writable"],
    "properties": {
      "name": {"type": "string"}, "label": {"type": "string"},
      "type": {"enum": ["text", "memo", "integer", "number", "money", "date", "flag", "binary"]},
      "size": {"type": "integer", "description": "Characters of a text; 0 of the others"},
      "nullable": {"type": "boolean"}, "key": {"type": "boolean"}, "writable": {"type": "boolean"},
      "hidden": {"type": "boolean"}, "decimals": {"type": "integer"}}}})json";

std::string_view typeOf(ColumnType type) {
  if (engine::isWhole(type)) return "integer";
  if (engine::isNumeric(type)) return "number";
  return type == ColumnType::kBoolean ? "boolean" : "string";
}

Json schemaOf(const engine::Column& column) {
  const std::string_view type = typeOf(column.type);
  Json schema = Json::object();
  schema["type"] = column.nullable ? Json::array({type, "null"}) : Json(type);
  if (engine::isWhole(column.type)) {
    const engine::WholeRange range = engine::wholeRange(column.type);
    schema["minimum"] = range.least;
    schema["maximum"] = range.most;
  }
  if (column.type == ColumnType::kText) schema["maxLength"] = column.size;
  if (column.type == ColumnType::kBinary) schema["contentEncoding"] = "base64";
  if (column.type == ColumnType::kCurrency) schema["multipleOf"] = 0.0001;
  return schema;
}

/// The table of a class, by its own names of columns; a mode calls some of them otherwise, and
/// takes both.
Json schemaOf(const engine::Table& table) {
  Json properties = Json::object();
  for (const engine::Column& column : table.columns) properties[column.name] = schemaOf(column);
  return {{"type", "object"},
          {"description", fmt::format("A row of the table {}", table.name)},
          {"properties", std::move(properties)}};
}

Json schemas(const Installation& installation) {
  Json all = Json::parse(kShared);
  for (const Component* component : components()) {
    const std::unique_ptr<Object> object = component->make();
    const auto* const record = dynamic_cast<const RecordClass*>(object.get());
    if (record == nullptr) continue;
    const ClassInfo& info = record->info();
    const engine::Table* const table =
        installation.catalogue(info.selector)->find(info.table.text());
    if (table != nullptr) all[component->name()] = schemaOf(*table);
  }
  return all;
}

Json parameterOf(const QueryParameter& parameter) {
  const bool isDate = parameter.type == "date";
  Json schema = {{"type", isDate ? "string" : parameter.type}};
  if (isDate) schema["format"] = "date";
  if (parameter.isRepeated) schema = {{"type", "array"}, {"items", std::move(schema)}};
  return {{"name", parameter.name},
          {"in", "query"},
          {"description", parameter.text},
          {"required", false},
          {"schema", std::move(schema)}};
}

Json pathParameters(const Route& route) {
  Json parameters = Json::array();
  for (const std::string& segment : route.segments) {
    if (!segment.starts_with('{')) continue;
    parameters.push_back({{"name", segment.substr(1, segment.size() - 2)},
                          {"in", "path"},
                          {"required", true},
                          {"schema", {{"type", "string"}}}});
  }
  return parameters;
}

Json content(std::string_view schema) {
  return {
      {"application/json", {{"schema", schema.empty() ? Json::object() : Json::parse(schema)}}}};
}

/// "get /api/v1/classes/{name}" is "get_classes_name".
std::string nameOfOperation(const Route& route) {
  std::string name = text::lower(nameOf(route.method));
  for (const std::string& segment : route.segments) {
    if (segment == "api" || segment == "v1") continue;
    name += '_';
    for (const char c : segment) {
      if (c == '.' || c == '-') {
        name += '_';
      } else if (c != '{' && c != '}') {
        name += c;
      }
    }
  }
  return name;
}

Json operationOf(const Route& route) {
  Json operation = {{"operationId", nameOfOperation(route)},
                    {"summary", route.description.summary},
                    {"parameters", pathParameters(route)}};
  for (const QueryParameter& parameter : route.description.parameters) {
    operation["parameters"].push_back(parameterOf(parameter));
  }
  if (!route.description.body.empty()) {
    operation["requestBody"] = {{"required", true}, {"content", content(route.description.body)}};
  }
  Json fault = {{"description", "What was wrong"},
                {"content", content(R"json({"$ref": "#/components/schemas/Error"})json")}};
  operation["responses"] = {
      {"2XX", {{"description", "As asked"}, {"content", content(route.description.answer)}}},
      {"default", std::move(fault)}};
  const std::string_view right = nameOf(route.right);
  if (route.right == Right::kAnyone) {
    operation["security"] = Json::array();
  } else if (!right.empty()) {
    operation["x-right"] = right;
  }
  return operation;
}

/// Pages are for browsers.
bool isOfPrograms(const Route& route) {
  return route.pattern.starts_with("/api/") || route.pattern == "/health";
}

Json describe(const Application& application, const Installation& installation) {
  Json paths = Json::object();
  for (const Route& route : application.routes().all()) {
    if (!isOfPrograms(route)) continue;
    paths[route.pattern][text::lower(nameOf(route.method))] = operationOf(route);
  }
  const auto scheme = [](std::string_view place, std::string_view name) {
    return Json{{"type", "apiKey"}, {"in", place}, {"name", name}};
  };
  return {{"openapi", "3.1.0"},
          {"info",
           {{"title", "Tavelor"},
            {"version", TAVELOR_VERSION},
            {"description",
             "What the till and the back office ask. A program signs in by its key, Authorization: "
             "Bearer tvk_...; a browser by a session, whose changes carry the token of GET "
             "/api/v1/session in X-Tavelor-Token."}}},
          {"servers", Json::array({{{"url", "/"}}})},
          {"security", Json::array({{{"key", Json::array()}},
                                    {{"session", Json::array()}, {"token", Json::array()}}})},
          {"paths", std::move(paths)},
          {"components",
           {{"securitySchemes",
             {{"key", {{"type", "http"}, {"scheme", "bearer"}}},
              {"session", scheme("cookie", "tavelor_session")},
              {"token", scheme("header", "X-Tavelor-Token")}}},
            {"schemas", schemas(installation)}}}};
}

Answer openApi(Context& context) {
  return answer(describe(context.application(), context.apartment().installation()));
}

}  // namespace

void addOpenApi(Routes& routes) {
  routes.add(Method::kGet, "/api/v1/openapi.json", Right::kSignedIn, openApi,
             {.summary = "This description",
              .answer = R"json({"type": "object", "required": ["openapi", "paths"]})json"});
}

}  // namespace tavelor::web
