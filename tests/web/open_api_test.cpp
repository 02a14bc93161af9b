// SPDX-License-Identifier: MIT
// The description of the interface is whole: every route, every reference, every class.
#include <algorithm>
#include <set>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/platform/text.hpp"
#include "tests/web/office.hpp"

namespace tavelor {
namespace {

using test::Office;
using web::Json;

class OpenApi : public testing::Test {
 protected:
  /// Calls `look` with each object of a document.
  template <typename Look>
  static void walk(const Json& json, const Look& look) {
    if (json.is_object()) look(json);
    if (json.is_structured()) {
      for (const auto& member : json.items()) walk(member.value(), look);
    }
  }
  /// Pages are for browsers.
  static bool isOfPrograms(const web::Route& route) {
    return route.pattern.starts_with("/api/") || route.pattern == "/health";
  }
  Office office;
  Json document = office.get("/api/v1/openapi.json").json;
};

TEST_F(OpenApi, IsToldToWhoIsSignedIn) {
  office.as.rights = {};
  const auto answer = office.get("/api/v1/openapi.json");
  ASSERT_EQ(answer.status, 200);
  EXPECT_EQ(answer.json["openapi"], "3.1.0");
  EXPECT_EQ(office.faultOf("get", "/api/v1/openapi.json", answer), "");
  office.as = {};
  EXPECT_EQ(office.get("/api/v1/openapi.json").status, 401);
}

TEST_F(OpenApi, HasEveryRouteOnceWithItsPlacesAndItsRight) {
  std::set<std::string> names;
  for (const web::Route& route : office.application().routes().all()) {
    if (!isOfPrograms(route)) continue;
    const std::string method = text::lower(web::nameOf(route.method));
    ASSERT_TRUE(document["paths"].contains(route.pattern)) << route.pattern;
    const Json& operation = document["paths"][route.pattern][method];
    ASSERT_TRUE(operation.is_object()) << method << route.pattern;
    EXPECT_TRUE(names.insert(operation["operationId"].get<std::string>()).second)
        << operation["operationId"];
    EXPECT_FALSE(operation["summary"].get<std::string>().empty()) << route.pattern;
    std::size_t places = 0;
    for (const Json& parameter : operation["parameters"])
      places += parameter["in"] == "path" ? 1U : 0U;
    EXPECT_EQ(places, static_cast<std::size_t>(
                          std::count(route.pattern.begin(), route.pattern.end(), '{')));
    if (!web::nameOf(route.right).empty()) {
      EXPECT_EQ(operation["x-right"], web::nameOf(route.right));
    }
  }
  std::size_t operations = 0;
  for (const auto& path : document["paths"].items()) operations += path.value().size();
  EXPECT_EQ(operations, names.size());
}

TEST_F(OpenApi, EveryReferenceLeadsSomewhere) {
  std::size_t references = 0;
  walk(document, [&](const Json& object) {
    if (!object.contains("$ref")) return;
    ++references;
    EXPECT_NE(test::resolved(document, object["$ref"].get<std::string>()), nullptr) << object;
  });
  EXPECT_GT(references, 20U);
}

TEST_F(OpenApi, TellsTheColumnsOfEveryClass) {
  for (const Json& line : office.get("/api/v1/classes").json) {
    if (!line["hasRows"].get<bool>()) continue;
    const std::string name = line["name"];
    ASSERT_TRUE(document["components"]["schemas"].contains(name)) << name;
    const Json& properties = document["components"]["schemas"][name]["properties"];
    EXPECT_FALSE(properties.empty()) << name;
  }
  const Json& banks = document["components"]["schemas"]["ClsBancos"]["properties"];
  EXPECT_EQ(banks["Codigo"], (Json{{"type", "string"}, {"maxLength", 10}}));
  EXPECT_EQ(banks["Banco"], (Json{{"type", {"string", "null"}}, {"maxLength", 100}}));
}

TEST_F(OpenApi, ErrorsAreAsDescribed) {
  for (const char* path : {"classes/Nobody", "articles/Nobody", "classes/ClsBancos/rows?limit=x"}) {
    const auto answer = office.get(Office::at(path));
    ASSERT_GE(answer.status, 400);
    EXPECT_EQ(
        test::faultBySchema(document, document["components"]["schemas"]["Error"], answer.json), "")
        << path;
  }
}

}  // namespace
}  // namespace tavelor
