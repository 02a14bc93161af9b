// SPDX-License-Identifier: MIT
// Record sets, fields, connections and events called by name.
#include "tavelor/frame/recordset_components.hpp"

#include <algorithm>
#include <filesystem>
#include <regex>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/frame/component.hpp"
#include "tests/frame/approved.hpp"
#include "tests/frame/sample.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;
using testing::IsSubsetOf;

const Component& tableOf(std::string_view name) {
  for (const Component* each : recordsetComponents()) {
    if (each->name() == name) return *each;
  }
  throw std::out_of_range(std::string(name));
}

/// Names of the public members that a header declares for a class.
std::set<std::string> publicMembers(const std::string& header, const std::string& name) {
  std::istringstream text(
      bytesOf(std::filesystem::path(TAVELOR_SOURCE_DIR) / "tavelor/services/recordset" / header));
  std::set<std::string> found;
  bool isInside = false;
  const std::regex declaration(R"(^  [^ /].*?\b([A-Za-z]\w*)\()");
  for (std::string line; std::getline(text, line);) {
    if (line.starts_with("class TAVELOR_API " + name + " "))
      isInside = line.find(';') == std::string::npos;
    if (line == " private:" || line == "};") isInside = false;
    if (line.starts_with("  const {")) continue;  // the body of the one above
    std::smatch match;
    if (isInside && std::regex_search(line, match, declaration)) found.insert(match[1]);
  }
  // What makes an object, and what only C++ has a use for.
  for (const std::string& own :
       {name, std::string("typeName"), std::string("begin"), std::string("end"),
        std::string("parts"), std::string("CurrentRow"), std::string("rowOf"),
        std::string("shownRows"), std::string("shownRowsStamp"), std::string("open"),
        std::string("absorbTexts"), std::string("findText")}) {
    found.erase(own);
  }
  return found;
}

std::set<std::string> slotsOf(const std::string& table) {
  std::set<std::string> names;
  for (const Member& slot : tableOf(table).members()) names.insert(slot.name);
  return names;
}

class ByName : public testing::Test {
 protected:
  ByName() {
    for (const char* row : {"'A', 'Ana', 1", "'B', 'Bea', 2", "'C', Null, 3"}) {
      shop.run("INSERT INTO Muestras (Codigo, Nombre, Numero) VALUES (" + std::string(row) + ")");
    }
    connection = shop.apartment().openConnection(1);
    call(*set, "Recordset", "Open",
         {"SELECT Codigo, Nombre, Numero, Notas FROM Muestras ORDER BY Codigo",
          ObjectPtr(connection)});
  }
  static Variant call(Object& object, std::string_view table, std::string_view member,
                      std::vector<Variant> arguments = {}) {
    return tableOf(table).call(object, member, arguments);
  }
  Variant ofSet(std::string_view member, std::vector<Variant> arguments = {}) {
    return call(*set, "Recordset", member, std::move(arguments));
  }
  Variant ofField(const Variant& field, std::string_view member,
                  std::vector<Variant> arguments = {}) {
    return call(**field.getIf<ObjectPtr>(), "Field", member, std::move(arguments));
  }
  Variant field(const Variant& which) { return ofSet("Field", {which}); }

  SampleShop shop;
  ConnectionPtr connection;
  std::unique_ptr<Object> set = tableOf("Recordset").make();
};

TEST_F(ByName, EachPublicMemberIsInItsTable) {
  EXPECT_THAT(publicMembers("recordset.hpp", "Recordset"), IsSubsetOf(slotsOf("Recordset")));
  EXPECT_THAT(publicMembers("field.hpp", "Fields"), IsSubsetOf(slotsOf("Fields")));
  EXPECT_THAT(publicMembers("field.hpp", "Field"), IsSubsetOf(slotsOf("Field")));
  EXPECT_THAT(publicMembers("connection.hpp", "Connection"), IsSubsetOf(slotsOf("Connection")));
  EXPECT_EQ(publicMembers("events.hpp", "RecordsetEvents"), slotsOf("RecordsetEvents"));
  EXPECT_GT(publicMembers("recordset.hpp", "Recordset").size(), 40U) << "the header was read";
}

TEST_F(ByName, ObjectsAreMadeAndTellTheirType) {
  for (const Component* each : recordsetComponents()) {
    EXPECT_EQ(each->make()->typeName(), each->name());
  }
}

TEST_F(ByName, ASetIsWalkedAndRead) {
  std::vector<std::string> codes;
  for (; ofSet("Eof") == Variant(false); ofSet("MoveNext")) {
    codes.push_back(*ofField(field("Codigo"), "Value").getIf<std::string>());
  }
  EXPECT_THAT(codes, ElementsAre("A", "B", "C"));
  ofSet("MoveFirst");
  ofSet("Move", {1});
  EXPECT_EQ(ofSet("AbsolutePosition"), Variant(2));
  EXPECT_EQ(ofSet("AbsolutePosition", {3}), Variant(3));
  EXPECT_EQ(ofSet("RecordCount"), Variant(3));
  ofSet("Find", {"Numero = 1", 0, 1, bookmark::kFirst});
  EXPECT_EQ(ofField(field(0), "Value"), Variant("A"));
}

TEST_F(ByName, AFieldIsWrittenAndTheBatchWithItsDefault) {
  EXPECT_EQ(ofField(field("Nombre"), "Value", {"Eva"}), Variant("Eva"));
  EXPECT_EQ(ofField(field("Nombre"), "OriginalValue"), Variant("Ana"));
  EXPECT_EQ(ofSet("EditMode"), Variant(1));
  ofSet("UpdateBatch");
  EXPECT_EQ(shop.text("SELECT Nombre FROM Muestras WHERE Codigo = 'A'"), "Eva");
  EXPECT_TRUE(ofField(field("Nombre"), "Value", {Null{}}).isNull());
  ofSet("CancelBatch");
  EXPECT_EQ(ofSet("hasUnwrittenChanges"), Variant(false));
}

TEST_F(ByName, AConflictIsTold) {
  ofField(field("Nombre"), "Value", {"mío"});
  shop.run("UPDATE Muestras SET Nombre = 'suyo' WHERE Codigo = 'A'");
  EXPECT_EQ(errorOf([&] { ofSet("UpdateBatch"); }), errors::kRowNotLocated);
  ofSet("Resync", {1, 1});
  EXPECT_EQ(ofField(field("Nombre"), "UnderlyingValue"), Variant("suyo"));
  ofSet("Resync");
  EXPECT_EQ(ofField(field("Nombre"), "Value"), Variant("suyo"));
}

TEST_F(ByName, FilterAndOrderAreProperties) {
  EXPECT_EQ(ofSet("Filter", {"Numero > 1"}), Variant("Numero > 1"));
  EXPECT_EQ(ofSet("Filter"), Variant("Numero > 1"));
  EXPECT_EQ(ofSet("RecordCount"), Variant(2));
  EXPECT_EQ(ofSet("Sort", {"Numero DESC"}), Variant("Numero DESC"));
  EXPECT_EQ(ofField(field("Codigo"), "Value"), Variant("C"));
  EXPECT_EQ(ofSet("Filter", {1}), Variant(1)) << "the pending rows";
  EXPECT_EQ(ofSet("Filter", {""}), Variant(""));
}

TEST_F(ByName, RowsComeAsLines) {
  EXPECT_EQ(ofSet("GetRows", {2, {}, "Codigo\nNombre"}), Variant("A\tAna\nB\tBea"));
  EXPECT_EQ(ofSet("AddNew", {"Codigo\nNombre", "D\nDia"}), Variant());
  EXPECT_EQ(ofSet("RecordCount"), Variant(4));
}

TEST_F(ByName, FieldsAreListedAndAppended) {
  const Variant fields = ofSet("Fields");
  Object& list = **fields.getIf<ObjectPtr>();
  EXPECT_EQ(call(list, "Fields", "Count"), Variant(4));
  EXPECT_EQ(ofField(call(list, "Fields", "Item", {1}), "Name"), Variant("Nombre"));
  EXPECT_EQ(ofField(call(list, "Fields", "Item", {"notas"}), "Type"), Variant(203));

  const std::unique_ptr<Object> alone = tableOf("Recordset").make();
  const Variant own = call(*alone, "Recordset", "Fields");
  call(**own.getIf<ObjectPtr>(), "Fields", "Append", {"Nombre", 202, 20});
  call(*alone, "Recordset", "Open");
  call(*alone, "Recordset", "AddNew", {"Nombre", "x"});
  EXPECT_EQ(call(*alone, "Recordset", "RecordCount"), Variant(1));
}

TEST_F(ByName, ACloneAndALoadedSetAreObjects) {
  const Variant clone = ofSet("Clone");
  EXPECT_EQ(call(**clone.getIf<ObjectPtr>(), "Recordset", "RecordCount"), Variant(3));
  const Variant loaded = ofSet("LoadXml", {ofSet("SaveXml")});
  EXPECT_EQ(call(**loaded.getIf<ObjectPtr>(), "Recordset", "RecordCount"), Variant(3));
}

TEST_F(ByName, AConnectionRunsATransaction) {
  const auto of = [&](std::string_view member, std::vector<Variant> arguments = {}) {
    return call(*connection, "Connection", member, std::move(arguments));
  };
  EXPECT_EQ(of("State"), Variant(1));
  EXPECT_EQ(of("BeginTrans"), Variant(1));
  EXPECT_EQ(of("Execute", {"DELETE FROM Muestras"}), Variant(3.0));
  of("Send", {"DELETE FROM Muestras"});
  of("HoldNumbersOf", {"Muestras"});
  EXPECT_EQ(of("anyRow", {"SELECT * FROM Muestras"}), Variant(false));
  of("RollbackTrans");
  EXPECT_EQ(of("firstValue", {"SELECT Count(*) AS n FROM Muestras", "n"}), Variant(3));
  EXPECT_EQ(of("transactionLevel"), Variant(0));
  EXPECT_EQ(of("selector"), Variant(1));
  const bool waits = test::runsOnServer();
  EXPECT_EQ(of("waits") == Variant(0.0), !waits);
}

TEST_F(ByName, EventsComeByTheirNamesAndCanBeRefused) {
  std::vector<std::string> told;
  auto listener = std::make_shared<RecordsetEventsObject>(
      [&told](std::string_view event, std::span<Variant> arguments) {
        told.emplace_back(event);
        if (event == "WillMove" && told.size() > 2) arguments[1] = 4;
      });
  ofSet("addListener", {ObjectPtr(listener)});
  ofSet("MoveNext");
  EXPECT_THAT(told, ElementsAre("WillMove", "MoveComplete"));
  EXPECT_EQ(errorOf([&] { ofSet("MoveNext"); }), errors::kOperationCanceled);
  EXPECT_EQ(ofSet("AbsolutePosition"), Variant(2));
  told.clear();
  ofField(field("Nombre"), "Value", {"x"});
  EXPECT_THAT(told, ElementsAre("WillChangeRecord", "WillChangeField", "FieldChangeComplete",
                                "RecordChangeComplete"));
  ofSet("removeListener", {ObjectPtr(listener)});
  ofSet("CancelUpdate");
  EXPECT_EQ(told.size(), 4U);
}

TEST_F(ByName, AnEventTellsTheFieldByAnObject) {
  auto listener = std::make_shared<RecordsetEventsObject>(
      [&](std::string_view event, std::span<Variant> arguments) {
        if (event == "WillChangeField") {
          EXPECT_EQ(ofField(arguments[0], "Name"), Variant("Nombre"));
          EXPECT_EQ(arguments[1], Variant(1));
        }
      });
  ofSet("addListener", {ObjectPtr(listener)});
  ofField(field("Nombre"), "Value", {"x"});
  ofSet("removeListener", {ObjectPtr(listener)});
}

// Whoever implements a listener by name reads what each event takes from its table.
TEST_F(ByName, AnEventHasTheArgumentsThatItsTableTells) {
  std::vector<std::string> wrong;
  auto listener = std::make_shared<RecordsetEventsObject>(
      [&wrong](std::string_view event, std::span<Variant> arguments) {
        if (tableOf("RecordsetEvents").member(event).parameters.size() != arguments.size()) {
          wrong.emplace_back(event);
        }
      });
  ofSet("addListener", {ObjectPtr(listener)});
  ofSet("MoveLast");
  ofSet("MoveNext");
  ofSet("AddNew", {"Codigo", "E"});
  ofSet("Delete");
  ofSet("Requery");
  ofSet("removeListener", {ObjectPtr(listener)});
  EXPECT_THAT(wrong, ElementsAre());
  EXPECT_EQ(tableOf("RecordsetEvents").member("WillMove").signature(),
            "WillMove(reason As Long, inout status As Long, set As Object)");
}

TEST_F(ByName, MistakesAreNamed) {
  EXPECT_EQ(errorOf([&] { ofSet("MoveNxt"); }), errors::kMemberNotFound);
  EXPECT_EQ(errorOf([&] { ofSet("MoveNext", {1}); }), errors::kWrongNumberOfArguments);
  EXPECT_EQ(errorOf([&] { ofSet("Move", {"lejos"}); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { ofSet("addListener", {1}); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { field("Nada"); }), errors::kItemNotFound);
  FieldObject unbound;
  EXPECT_EQ(errorOf([&] { call(unbound, "Field", "Value"); }), errors::kObjectNotSet);
  FieldsObject none;
  EXPECT_EQ(errorOf([&] { call(none, "Fields", "Count"); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { call(none, "Recordset", "Close"); }), errors::kTypeMismatch);
}

}  // namespace
}  // namespace tavelor::test
