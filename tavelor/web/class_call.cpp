// SPDX-License-Identifier: MIT
// /classes/{name}/call: any member by its name.
#include <algorithm>
#include <array>

#include <fmt/format.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/modes.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/class_cursors.hpp"
#include "tavelor/web/class_endpoints.hpp"
#include "tavelor/web/class_values.hpp"
#include "tavelor/web/context.hpp"

namespace tavelor::web {

namespace {

constexpr std::int64_t kMostRows = 500;
constexpr std::size_t kMostArguments = 200;
constexpr std::size_t kLongestName = 100;

constexpr std::string_view kCallSchema = R"json({
  "type": "object", "required": ["member"],
  "properties": {
    "member": {"type": "string"},
    "arguments": {"type": ["array", "object"]},
    "mode": {"type": "string"}, "id": {"type": "string"}}})json";
constexpr std::string_view kResultSchema = R"json({
  "type": "object", "required": ["result", "outputs"],
  "properties": {"result": {}, "outputs": {"type": "object"}}})json";

bool isAnyOf(std::string_view type, std::initializer_list<std::string_view> types) {
  return std::find(types.begin(), types.end(), type) != types.end();
}

Failure wrong(const Parameter& parameter, std::string_view why) {
  Failure failure = Failure::input(fmt::format("The argument {} {}.", parameter.name, why));
  failure.faults = {{.field = parameter.name, .reason = std::string(why)}};
  return failure;
}

/// Connections are the server's own, and are left to the member. What else is an object, nobody can
/// send.
Variant argumentOf(const Json& json, const Parameter& parameter) {
  const std::string& type = parameter.type;
  if (json.is_null()) return {};
  if (!isAnyOf(type,
               {"String", "Variant", "Boolean", "Date", "Integer", "Long", "Single", "Double"})) {
    throw wrong(parameter, fmt::format("is an object ({}), which a request cannot bring", type));
  }
  if (json.is_structured()) throw wrong(parameter, "must be a text, a number, true, false or null");
  if (type == "Boolean" && !json.is_boolean()) throw wrong(parameter, "must be true or false");
  if (isAnyOf(type, {"Integer", "Long", "Single", "Double"}) && !json.is_number()) {
    throw wrong(parameter, "must be a number");
  }
  if (type == "String" && !json.is_string()) throw wrong(parameter, "must be a text");
  if (type == "Date") {
    const auto day = json.is_string() ? dayOf(json.get_ref<const std::string&>()) : std::nullopt;
    if (!day) throw wrong(parameter, "must be a day as 2026-11-20");
    return *day;
  }
  return variantOf(json, parameter.name);
}

/// A control or a grid has to be there: a member that wants one cannot be called from here.
void mustBeCallable(const Component& component, const Member& member) {
  for (const Parameter& parameter : member.parameters) {
    const bool isObject = isAnyOf(parameter.type, {"Object"});
    if (!isObject || parameter.optional) continue;
    throw Failure::refused(
        fmt::format("{}.{} takes {}, an object of a form, which a request cannot bring.",
                    component.name(), member.name, parameter.name));
  }
}

std::vector<Variant> argumentsOf(const Member& member, const Json& given) {
  const std::vector<Parameter>& parameters = member.parameters;
  std::vector<Variant> arguments;
  if (given.is_array()) {
    if (given.size() > parameters.size()) {
      throw Failure::input(
          fmt::format("{} takes {} arguments at most.", member.name, parameters.size()));
    }
    for (std::size_t i = 0; i < given.size(); ++i) {
      arguments.push_back(argumentOf(given[i], parameters[i]));
    }
    return arguments;
  }
  for (const auto& argument : given.items()) {
    const auto found =
        std::find_if(parameters.begin(), parameters.end(), [&](const Parameter& parameter) {
          return text::equalsIgnoreCase(parameter.name, argument.key());
        });
    if (found == parameters.end()) {
      throw Failure::input(fmt::format("{} has no argument {}.", member.name, argument.key()));
    }
    const auto place = static_cast<std::size_t>(found - parameters.begin());
    arguments.resize(std::max(arguments.size(), place + 1));
    arguments[place] = argumentOf(argument.value(), *found);
  }
  return arguments;
}

Json rowsAsJson(Recordset& rows) {
  Json names = Json::array();
  for (std::int32_t i = 0; i < rows.Fields().Count(); ++i) names.push_back(rows.Field(i).Name());
  Json list = Json::array();
  std::int64_t left = kMostRows;
  for (const Row row : rows) {
    if (left-- == 0) break;
    Json cells = Json::array();
    for (std::int32_t i = 0; i < rows.Fields().Count(); ++i) {
      cells.push_back(toJson(row.value(i)));
    }
    list.push_back(std::move(cells));
  }
  return {{"columns", std::move(names)}, {"rows", std::move(list)}, {"total", rows.RecordCount()}};
}

/// Record sets as their rows, other objects as what they are.
Json outcomeOf(const Variant& value) {
  const auto* const object = value.getIf<ObjectPtr>();
  if (object == nullptr || !*object) return toJson(value);
  const auto rows = std::dynamic_pointer_cast<Recordset>(*object);
  if (rows && rows->State() == ObjectState::kOpen) return rowsAsJson(*rows);
  return {{"object", (*object)->typeName()}};
}

Json outputsOf(const Member& member, const std::vector<Variant>& arguments) {
  Json outputs = Json::object();
  for (std::size_t i = 0; i < member.parameters.size() && i < arguments.size(); ++i) {
    const Parameter& parameter = member.parameters[i];
    const bool isOutput = parameter.direction != Parameter::Direction::kIn;
    if (isOutput && parameter.type != "Connection") {
      outputs[parameter.name] = outcomeOf(arguments[i]);
    }
  }
  return outputs;
}

Answer callMember(Context& context, ClassCursors& cursors) {
  const Component& component = classCalled(context.path("name"));
  mustWithClass(context, component, "call");
  const Fields body(context.body());
  body.allowOnly({"member", "arguments", "mode", "id"});
  const Member& member = component.member(body.text("member", kLongestName));
  mustBeCallable(component, member);
  const Json given = context.body().value("arguments", Json::array());
  if (!given.is_structured() || given.size() > kMostArguments) {
    throw Failure::input("arguments must be an array, or an object by the names of parameters.");
  }
  std::vector<Variant> arguments = argumentsOf(member, given);
  const std::unique_ptr<Object> object = component.make();
  if (body.has("mode")) {
    if (dynamic_cast<RecordClass*>(object.get()) == nullptr) {
      throw Failure::refused(component.name() + " has no rows of its own, and so no modes.");
    }
    openMode(component, *object, body.text("mode", kLongestName), body.text("id", 255, ""));
  }
  const Variant result = component.call(*object, member, arguments);
  // Nobody knows what a member writes.
  cursors.changed(component.name());
  context.changed(fmt::format("{}.{}", component.name(), member.name));
  return answer({{"result", outcomeOf(result)}, {"outputs", outputsOf(member, arguments)}});
}

}  // namespace

void addClassCalls(Routes& routes, const std::shared_ptr<ClassCursors>& cursors) {
  routes.add(
      Method::kPost, "/api/v1/classes/{name}/call", Right::kOfficeCall,
      [cursors](Context& context) { return callMember(context, *cursors); },
      {.summary = "Calls a member of a new object of the class, after IniciaRs where a mode is "
                  "given; arguments in their order or by their names",
       .body = kCallSchema,
       .answer = kResultSchema});
}

}  // namespace tavelor::web
