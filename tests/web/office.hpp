// SPDX-License-Identifier: MIT
// A shop whose back office is asked.
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "tests/web/json_schema.hpp"
#include "tests/web/web_shop.hpp"

namespace tavelor::test {

/// As a part of an address.
inline std::string encoded(std::string_view text) {
  std::string made;
  for (const char c : text) {
    const auto byte = static_cast<unsigned char>(c);
    const bool isPlain = (byte >= '0' && byte <= '9') || (byte >= 'A' && byte <= 'Z') ||
                         (byte >= 'a' && byte <= 'z') || c == '_' || c == '-';
    made += isPlain ? std::string(1, c) : fmt::format("%{:02X}", byte);
  }
  return made;
}

class Office : public WebShop {
 public:
  using Parameters = std::vector<std::pair<std::string, std::string>>;

  static std::string at(std::string_view path, const Parameters& parameters = {}) {
    std::string target = fmt::format("/api/v1/{}", path);
    char joint = '?';
    for (const auto& [name, value] : parameters) {
      target += fmt::format("{}{}={}", joint, name, encoded(value));
      joint = '&';
    }
    return target;
  }

  WebAnswer rows(std::string_view name, const Parameters& parameters = {}) {
    return get(at(fmt::format("classes/{}/rows", name), parameters));
  }
  WebAnswer record(std::string_view name, const web::Json& key, Parameters parameters = {}) {
    parameters.emplace_back("key", key.dump());
    return get(at(fmt::format("classes/{}/record", name), parameters));
  }
  WebAnswer insert(std::string_view name, const web::Json& values) {
    return post(at(fmt::format("classes/{}/records", name)), {{"values", values}});
  }
  WebAnswer change(std::string_view name, const web::Json& key, const web::Json& original,
                   const web::Json& values) {
    return send(web::Method::kPatch, at(fmt::format("classes/{}/record", name)),
                {{"key", key}, {"original", original}, {"values", values}});
  }
  WebAnswer remove(std::string_view name, const web::Json& key, const web::Json& original) {
    return send(web::Method::kDelete, at(fmt::format("classes/{}/record", name)),
                {{"key", key}, {"original", original}});
  }
  WebAnswer call(std::string_view name, const web::Json& body) {
    return post(at(fmt::format("classes/{}/call", name)), body);
  }

  /// What is wrong with an answer by the description of its route, or "".
  std::string faultOf(const std::string& method, const std::string& pattern,
                      const WebAnswer& answer) {
    if (document_.is_null()) document_ = get("/api/v1/openapi.json").json;
    const web::Json& responses = document_["paths"][pattern][method]["responses"];
    const web::Json& response = responses[answer.status < 300 ? "2XX" : "default"];
    const web::Json& schema = response["content"]["application/json"]["schema"];
    return faultBySchema(document_, schema, answer.json);
  }

  /// The first reason of a refusal, by field: "Nombre holds 100 characters, and this has 120".
  static std::string firstFault(const WebAnswer& answer) {
    const web::Json& faults = answer.json["error"]["faults"];
    if (faults.empty()) return {};
    return faults[0].value("field", "") + " " + faults[0]["reason"].get<std::string>();
  }

 private:
  web::Json document_;
};

}  // namespace tavelor::test
