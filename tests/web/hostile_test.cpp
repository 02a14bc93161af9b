// SPDX-License-Identifier: MIT
// Every route of the table, with values that would break what takes them for more than values.
#include <set>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "tests/web/web_shop.hpp"

namespace tavelor::test {
namespace {

using web::Json;
using web::Method;

/// What statements, pages, paths, numbers and texts have been broken with.
const std::vector<std::string>& hostileTexts() {
  static const std::vector<std::string> kTexts = {
      "'",
      "''",
      "' OR '1'='1",
      "'; DROP TABLE Tickets; --",
      "\" OR \"\"=\"",
      "] OR [1]=[1",
      "#11/20/2026#",
      "%",
      "*?[a-z]#",
      "\\",
      "<script>alert(1)</script>",
      "../../../../etc/passwd",
      "-1",
      "0",
      "1e308",
      "99999999999999999999",
      "NaN",
      "null",
      "2026-02-30",
      "\xE2\x80\xAE",
      "\xF0\x9F\x98\x80",
      std::string(3'000, 'x'),
  };
  return kTexts;
}

std::string encoded(const std::string& text) {
  std::string made;
  for (const char c : text) made += fmt::format("%{:02X}", static_cast<unsigned char>(c));
  return made;
}

std::string filled(const web::Route& route, const std::string& text) {
  std::string path;
  for (const std::string& segment : route.segments) {
    path += "/" + (segment.starts_with('{') ? encoded(text) : segment);
  }
  char mark = '?';
  for (const web::QueryParameter& parameter : route.description.parameters) {
    path += fmt::format("{}{}={}", mark, parameter.name, encoded(text));
    mark = '&';
  }
  return path.empty() ? "/" : path;
}

/// Members of a body's schema, each with the value.
Json bodyOf(const web::Route& route, const Json& value) {
  Json body = Json::object();
  const Json schema = Json::parse(route.description.body, nullptr, false);
  if (!schema.is_object() || !schema.contains("properties")) return body;
  for (const auto& member : schema["properties"].items()) body[member.key()] = value;
  return body;
}

bool takesBody(Method method) {
  return method == Method::kPost || method == Method::kPut || method == Method::kPatch;
}

class Hostile : public ::testing::Test {
 protected:
  /// Asks a route, and sees that the server neither fails nor tells what it should not.
  void ask(const web::Route& route, const std::string& text, const Json& body) {
    const std::string target = filled(route, text);
    const WebAnswer answer = takesBody(route.method)
                                 ? shop.send(route.method, target, body)
                                 : shop.ask({.method = route.method, .target = target});
    const std::string what =
        fmt::format("{} {} {}: {} {}", web::nameOf(route.method), route.pattern, text.substr(0, 40),
                    answer.status, answer.body.substr(0, 300));
    const bool isLacking = answer.status == 503 && answer.type.starts_with("text/html");
    EXPECT_TRUE(answer.status < 500 || isLacking) << what;
    if (answer.status >= 400 && !isLacking) {
      EXPECT_TRUE(answer.json.contains("error")) << what;
      EXPECT_EQ(answer.body.find("SELECT"), std::string::npos) << what;
    }
    if (answer.type.starts_with("text/html")) {
      EXPECT_EQ(answer.body.find("<script>alert"), std::string::npos) << what;
    }
  }

  WebShop shop;
};

TEST_F(Hostile, TextsBreakNoRoute) {
  const auto before = shop.value("SELECT Count(*) FROM Tickets", 3);
  for (const web::Route& route : shop.application().routes().all()) {
    for (const std::string& text : hostileTexts()) ask(route, text, bodyOf(route, text));
  }
  EXPECT_EQ(shop.value("SELECT Count(*) FROM Tickets", 3), before);
}

TEST_F(Hostile, ValuesOfOtherTypesBreakNoRoute) {
  const std::vector<Json> values = {nullptr,
                                    true,
                                    -1,
                                    1e308,
                                    0,
                                    9'007'199'254'740'993,
                                    Json::array(),
                                    Json::object(),
                                    Json::array({Json::array()}),
                                    Json::array({nullptr}),
                                    Json::array({Json::object()}),
                                    std::string("a\0b", 3),
                                    "\x7F\x1B[2J"};
  for (const web::Route& route : shop.application().routes().all()) {
    if (!takesBody(route.method)) continue;
    for (const Json& value : values) ask(route, "1", bodyOf(route, value));
  }
}

TEST_F(Hostile, BodiesThatAreNoneBreakNoRoute) {
  for (const web::Route& route : shop.application().routes().all()) {
    if (!takesBody(route.method)) continue;
    for (const std::string& body :
         {std::string(), std::string("{"), std::string("[]"), std::string("17"),
          std::string(100'000, '['), std::string("\xff\xfe{}")}) {
      for (const char* const type : {"application/json", "text/plain", ""}) {
        const WebAnswer answer = shop.ask({.method = route.method,
                                           .target = filled(route, "1"),
                                           .headers = {{"content-type", type}},
                                           .body = body});
        EXPECT_LT(answer.status, 500) << route.pattern << ": " << answer.body;
      }
    }
  }
}

TEST_F(Hostile, NobodyMeetsAnythingButTheDoor) {
  const std::set<std::string> open = {"/", "/till", "/health", "/api/v1/session"};
  shop.as = {};
  for (const web::Route& route : shop.application().routes().all()) {
    if (open.contains(route.pattern) || route.pattern.starts_with("/assets/")) continue;
    const WebAnswer answer = takesBody(route.method)
                                 ? shop.send(route.method, filled(route, "1"), Json::object())
                                 : shop.ask({.method = route.method, .target = filled(route, "1")});
    EXPECT_EQ(answer.status, 401) << web::nameOf(route.method) << " " << route.pattern;
  }
}

}  // namespace
}  // namespace tavelor::test
