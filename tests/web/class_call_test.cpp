// SPDX-License-Identifier: MIT
// Members by their names.
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tests/support/hostile_values.hpp"
#include "tests/web/office.hpp"

namespace tavelor {
namespace {

using test::Office;
using testing::HasSubstr;
using web::Json;

class ClassCall : public testing::Test {
 protected:
  ClassCall() {
    office.run(
        "INSERT INTO Bancos (Codigo, Banco, IBAN, Swift) VALUES ('00001', 'Ahorro', 'ES1', 'BIC')");
  }
  Office office;
};

TEST_F(ClassCall, GivesTheResultAndTheOutputsByTheirNames) {
  const auto found = office.call("ClsBancos", {{"member", "GetIbanBic"}, {"arguments", {"00001"}}});
  ASSERT_EQ(found.status, 200) << found.body;
  EXPECT_EQ(office.faultOf("post", "/api/v1/classes/{name}/call", found), "");
  EXPECT_EQ(found.json["outputs"], (Json{{"sIban", "ES1"}, {"sBic", "BIC"}}));
  const auto byName = office.call(
      "ClsBancos", {{"member", "getibanbic"},
                    {"arguments", {{"vId", "00001"}, {"sIban", nullptr}, {"sBic", nullptr}}}});
  EXPECT_EQ(byName.json["outputs"], found.json["outputs"]);
  EXPECT_EQ(office.call("ClsBancos", {{"member", "sClassName"}}).json["result"], "Bancos");
}

TEST_F(ClassCall, OpensAModeFirst) {
  const auto rows = office.call(
      "ClsBancos", {{"member", "DataMember"}, {"arguments", {"Primary"}}, {"mode", "todos"}});
  const auto any = office.call(
      "ClsBancos", {{"member", "ExistenRegistros"}, {"mode", "registro"}, {"id", "00001"}});
  EXPECT_EQ(any.json["result"], true) << any.body;
  EXPECT_EQ(
      office
          .call("ClsBancos",
                {{"member", "ExistenRegistros"}, {"mode", "registro"}, {"id", "x' or '1'='1"}})
          .json["result"],
      false);
  if (rows.status == 200) {
    EXPECT_EQ(rows.json["result"]["rows"].size(), 1U) << rows.body;
  }
}

TEST_F(ClassCall, RefusesObjectsByTheirNames) {
  const auto control = office.call("ClsBancos", {{"member", "ValidaValue"}, {"arguments", {"x"}}});
  EXPECT_EQ(control.status, 422);
  EXPECT_THAT(control.body, HasSubstr("ClsBancos.ValidaValue takes Text, an object of a form"));
  const auto connection = office.call(
      "ClsBancos", {{"member", "GetIbanBic"}, {"arguments", {"00001", nullptr, nullptr, "main"}}});
  EXPECT_EQ(connection.status, 400);
  EXPECT_THAT(connection.body, HasSubstr("objCn is an object (Connection)"));
}

TEST_F(ClassCall, RefusesWhatIsNoCall) {
  const auto status = [&](const Json& body) { return office.call("ClsBancos", body).status; };
  EXPECT_EQ(status(Json::object()), 400);
  EXPECT_EQ(status({{"member", "NoSuch"}}), 404);
  EXPECT_EQ(
      status({{"member", "GetIbanBic"}, {"arguments", {"1", nullptr, nullptr, nullptr, "x"}}}),
      400);
  EXPECT_EQ(status({{"member", "GetIbanBic"}, {"arguments", {{"sNada", "1"}}}}), 400);
  EXPECT_EQ(status({{"member", "GetIbanBic"}, {"arguments", {Json::array()}}}), 400);
  EXPECT_EQ(status({{"member", "GetIbanBic"}, {"arguments", "x"}}), 400);
  EXPECT_EQ(status({{"member", "AddNew"}, {"arguments", {"yes"}}}), 400);
  EXPECT_EQ(status({{"member", "AddNew"}, {"more", 1}}), 400);
  EXPECT_EQ(office.call("Nobody", {{"member", "AddNew"}}).status, 404);
}

TEST_F(ClassCall, NeedsItsOwnRight) {
  office.as.rights = web::Rights::of("office.read office.write");
  EXPECT_EQ(office.call("ClsBancos", {{"member", "sClassName"}}).status, 403);
  office.as.rights = web::Rights::of("office.* -class.Bancos.call");
  EXPECT_EQ(office.call("ClsBancos", {{"member", "sClassName"}}).status, 403);
}

TEST_F(ClassCall, AHostileArgumentIsAValue) {
  for (const std::string& value : test::hostileValues()) {
    const auto answer =
        office.call("ClsBancos", {{"member", "GetIbanBic"}, {"arguments", {value}}});
    EXPECT_NE(answer.status, 503) << value;
    if (answer.status == 200) {
      EXPECT_EQ(answer.json["outputs"]["sIban"], "") << value;
    }
  }
  EXPECT_EQ(office.text("SELECT Count(*) FROM Bancos"), "1");
}

/// Whatever a member makes of nothing, it is told as an error of the caller's, and the server works
/// on.
TEST_F(ClassCall, EveryMemberWithoutArgumentsIsAnswered) {
  for (const Component* each : components()) {
    for (const Member& member : each->members()) {
      const auto answer = office.call(each->name(), {{"member", member.name}});
      EXPECT_GE(answer.status, 200) << member.name;
      EXPECT_TRUE(answer.json.contains("result") || answer.json.contains("error"))
          << each->name() << "." << member.name;
    }
  }
  EXPECT_EQ(office.get("/health").status, 200);
}

}  // namespace
}  // namespace tavelor
