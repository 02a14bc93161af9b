// SPDX-License-Identifier: MIT
// Whether a JSON is as a schema of the interface's description tells: as much of JSON Schema as is
// used there.
#pragma once

#include <string>

#include <fmt/format.h>

#include "tavelor/web/json.hpp"

namespace tavelor::test {

/// Follows "#/components/schemas/Values"; null for one that leads nowhere.
inline const web::Json* resolved(const web::Json& document, const std::string& reference) {
  if (!reference.starts_with("#/")) return nullptr;
  const nlohmann::json_pointer<std::string> place(reference.substr(1));
  return document.contains(place) ? &document.at(place) : nullptr;
}

inline bool isOfType(const web::Json& value, const std::string& type) {
  if (type == "object") return value.is_object();
  if (type == "array") return value.is_array();
  if (type == "string") return value.is_string();
  if (type == "boolean") return value.is_boolean();
  if (type == "integer") return value.is_number_integer();
  if (type == "number") return value.is_number();
  return type == "null" && value.is_null();
}

/// The first thing that is wrong with `value`, and where; "" for nothing.
inline std::string faultBySchema(const web::Json& document, const web::Json& schema,
                                 const web::Json& value, const std::string& at = "$") {
  if (schema.contains("$ref")) {
    const web::Json* const target = resolved(document, schema["$ref"].get<std::string>());
    if (target == nullptr) return at + ": " + schema["$ref"].dump() + " leads nowhere";
    return faultBySchema(document, *target, value, at);
  }
  if (schema.contains("type")) {
    const web::Json& types = schema["type"];
    bool fits = types.is_string() && isOfType(value, types.get<std::string>());
    if (types.is_array()) {
      for (const web::Json& type : types) fits = fits || isOfType(value, type.get<std::string>());
    }
    if (!fits) return fmt::format("{} is no {}: {}", at, types.dump(), value.dump().substr(0, 60));
  }
  if (schema.contains("enum")) {
    bool isOne = false;
    for (const web::Json& each : schema["enum"]) isOne = isOne || each == value;
    if (!isOne) return at + " is none of " + schema["enum"].dump();
  }
  if (value.is_array() && schema.contains("items")) {
    for (std::size_t i = 0; i < value.size(); ++i) {
      std::string fault =
          faultBySchema(document, schema["items"], value[i], fmt::format("{}[{}]", at, i));
      if (!fault.empty()) return fault;
    }
  }
  if (!value.is_object()) return {};
  for (const web::Json& name : schema.value("required", web::Json::array())) {
    if (!value.contains(name.get<std::string>())) return at + " lacks " + name.dump();
  }
  for (const auto& member : value.items()) {
    const web::Json* of = nullptr;
    if (schema.contains("properties") && schema["properties"].contains(member.key())) {
      of = &schema["properties"][member.key()];
    } else if (schema.contains("additionalProperties")) {
      of = &schema["additionalProperties"];
    }
    if (of == nullptr || !of->is_object()) continue;
    std::string fault = faultBySchema(document, *of, member.value(), at + "." + member.key());
    if (!fault.empty()) return fault;
  }
  return {};
}

}  // namespace tavelor::test
