// SPDX-License-Identifier: MIT
// Forms of any class: values there and back, what is refused, conflicts, who may.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/registry_store.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tavelor/web/events.hpp"
#include "tests/support/hostile_values.hpp"
#include "tests/web/office.hpp"

namespace tavelor {
namespace {

using test::Office;
using testing::HasSubstr;
using web::Json;

std::vector<const Component*> classesWithRows() {
  std::vector<const Component*> found;
  for (const Component* each : components()) {
    if (dynamic_cast<RecordClass*>(each->make().get()) != nullptr) found.push_back(each);
  }
  return found;
}

/// Something for a column of each type that no other one would take.
Json exampleOf(const Json& column) {
  const std::string type = column["type"];
  const auto size = column["size"].get<std::size_t>();
  if (type == "text") return std::string("ñ'\"<b>;--x").substr(0, std::min<std::size_t>(size, 5));
  if (type == "memo") return std::string(3000, 'm') + "\nñ'</script>";
  if (type == "integer") return 123;
  if (type == "number") return 1234.5625;  // single precision holds it too
  if (type == "money") return 1234.5678;
  if (type == "date") return "2026-02-28T23:59:58";
  if (type == "binary") return "AAECAwT/";
  return true;
}

// ---- Every class

class EveryForm : public testing::TestWithParam<const Component*> {
 protected:
  Office office;
};

TEST_P(EveryForm, TakesEachTypeAndGivesItBack) {
  const std::string& name = GetParam()->name();
  const auto fresh = office.get(Office::at("classes/" + name + "/new"));
  Json values = Json::object();
  Json wanted = Json::object();
  for (const Json& column : fresh.json["columns"]) {
    const auto& columnName = column["name"].get_ref<const std::string&>();
    // A supplier with this flag is not among "todos".
    if (!column["writable"].get<bool>() || columnName == "Subcontratado") continue;
    const bool isBegun = !fresh.json["values"][columnName].is_null();
    if (column["key"].get<bool>()) {
      if (!isBegun && column["type"] == "text") values[columnName] = "97";
      continue;
    }
    wanted[columnName] = exampleOf(column);
  }
  values.update(wanted);
  const auto made = office.insert(name, values);
  ASSERT_EQ(made.status, 201) << made.body;
  const auto read = office.record(name, made.json["key"]);
  ASSERT_EQ(read.status, 200) << read.body;
  EXPECT_EQ(office.faultOf("get", "/api/v1/classes/{name}/record", read), "");
  for (const auto& [column, value] : wanted.items()) {
    EXPECT_EQ(read.json["values"][column], value) << column;
  }

  // And Null, where it may stand.
  Json nulls = Json::object();
  for (const Json& column : fresh.json["columns"]) {
    const auto& columnName = column["name"].get_ref<const std::string&>();
    if (wanted.contains(columnName) && column["nullable"].get<bool>()) nulls[columnName] = nullptr;
  }
  if (nulls.empty()) return;
  const auto cleared = office.change(name, made.json["key"], read.json["values"], nulls);
  ASSERT_EQ(cleared.status, 200) << cleared.body;
  const auto again = office.record(name, made.json["key"]);
  for (const auto& [column, value] : nulls.items()) {
    if (column == "ExternalID") continue;  // the class gives a customer its outside code
    EXPECT_TRUE(again.json["values"][column].is_null()) << column << again.json["values"][column];
  }
}

TEST_P(EveryForm, TellsEachTextThatIsTooWide) {
  const std::string& name = GetParam()->name();
  const auto fresh = office.get(Office::at("classes/" + name + "/new"));
  Json values = Json::object();
  std::size_t wide = 0;
  for (const Json& column : fresh.json["columns"]) {
    if (column["type"] != "text" || !column["writable"].get<bool>()) continue;
    values[column["name"].get<std::string>()] =
        std::string(column["size"].get<std::size_t>() + 1, 'w');
    ++wide;
  }
  if (wide == 0) return;
  const auto refused = office.insert(name, values);
  ASSERT_EQ(refused.status, 422) << refused.body;
  EXPECT_EQ(refused.json["error"]["faults"].size(), wide);
  for (const Json& fault : refused.json["error"]["faults"]) {
    const auto size = values[fault["field"].get<std::string>()].get<std::string>().size();
    EXPECT_THAT(fault["reason"].get<std::string>(),
                HasSubstr(fmt::format("holds {} characters, and this has {}", size - 1, size)));
  }
}

INSTANTIATE_TEST_SUITE_P(Of, EveryForm, testing::ValuesIn(classesWithRows()),
                         [](const auto& test) { return test.param->name(); });

// ---- One class

class ClassRecord : public testing::Test {
 protected:
  ClassRecord() {
    office.run("INSERT INTO Empleados (Codigo, Nombre, NIF, IRPF) VALUES ('01', 'Ana', 'A1', 2)");
  }
  Json read(const std::string& code) { return office.record("ClsEmpleados", code).json["values"]; }
  Office office;
};

TEST_F(ClassRecord, IsFoundByKeysOfAllForms) {
  for (const Json& key : {Json("01"), Json::array({"01"}), Json{{"Código", "01"}},
                          Json{{"codigo", "01"}}, Json{{"Código", "01"}, {"Nombre", "other"}}}) {
    EXPECT_EQ(office.record("ClsEmpleados", key).status, 200) << key;
  }
  for (const Json& key : {Json(1), Json(nullptr), Json{{"Nombre", "Ana"}}, Json::array(),
                          Json(true), Json::array({"01", "02"}), Json{{"Código", Json::array()}}}) {
    EXPECT_EQ(office.record("ClsEmpleados", key).status, 400) << key;
  }
  EXPECT_EQ(office.record("ClsEmpleados", "nobody").status, 404);
  EXPECT_EQ(office.get("/api/v1/classes/ClsEmpleados/record?key={").status, 400);
  EXPECT_EQ(office.get("/api/v1/classes/ClsEmpleados/record").status, 400);
  for (const std::string& value : test::hostileValues()) {
    if (value.size() > 1000) continue;
    EXPECT_THAT(office.record("ClsEmpleados", {{"Código", value}}).status, testing::AnyOf(400, 404))
        << value;
  }
}

TEST_F(ClassRecord, HostileTextsAreStoredAsTheyAre) {
  for (const std::string& value : test::hostileValues()) {
    const auto changed = office.change("ClsEmpleados", "01", Json::object(), {{"Notas", value}});
    if (changed.status != 200) {
      EXPECT_THAT(changed.status, testing::AnyOf(400, 422)) << value;
      continue;
    }
    EXPECT_EQ(web::dumped(read("01")["Notas"]), web::dumped(Json(value)));
  }
  EXPECT_EQ(office.text("SELECT Count(*) FROM Empleados"), "1");
}

TEST_F(ClassRecord, TellsAllThatIsWrongByItsField) {
  const auto refused = office.insert("ClsEmpleados", {{"Código", "123456789012345678901234567890"},
                                                      {"IRPF", "much"},
                                                      {"Activo", "yes"},
                                                      {"Fecha_Alta", "31/12/2026"},
                                                      {"Nombre", 5}});
  EXPECT_EQ(refused.status, 422) << refused.body;
  EXPECT_EQ(refused.json["error"]["faults"].size(), 5U);
  EXPECT_THAT(refused.json["error"]["message"].get<std::string>(), HasSubstr("4 more"));
  EXPECT_EQ(office.faultOf("post", "/api/v1/classes/{name}/records", refused), "");
  EXPECT_EQ(office.text("SELECT Count(*) FROM Empleados"), "1");
}

TEST_F(ClassRecord, RefusesWhatIsNoForm) {
  EXPECT_EQ(office.insert("ClsEmpleados", {{"Apellido", "x"}}).status, 400);
  EXPECT_EQ(office.insert("ClsEmpleados", Json::array()).status, 400);
  EXPECT_EQ(office.insert("ClsEmpleados", {{"Nombre", Json::object()}}).status, 422);
  EXPECT_EQ(office.insert("ClsEmpleados", {{"Código", nullptr}}).status, 422);
  EXPECT_EQ(office.post("/api/v1/classes/ClsEmpleados/records", {{"rows", 1}}).status, 400);
  EXPECT_EQ(office.insert("Nobody", Json::object()).status, 404);
  EXPECT_EQ(office
                .post(Office::at("classes/ClsEmpleados/records", {{"mode", "todo"}}),
                      {{"values", Json::object()}})
                .status,
            400);
}

TEST_F(ClassRecord, ANumberOutOfItsRangeIsRefusedByName) {
  const auto tooLarge = office.insert("ClsCitas", {{"Box", 1e12}});
  EXPECT_EQ(tooLarge.status, 422) << tooLarge.body;
  EXPECT_THAT(Office::firstFault(tooLarge), testing::StartsWith("Box"));
}

TEST_F(ClassRecord, AKeyThatIsThereAlreadyIsAConflict) {
  const auto again = office.insert("ClsEmpleados", {{"Código", "01"}});
  EXPECT_EQ(again.status, 409) << again.body;
  EXPECT_EQ(office.text("SELECT Nombre FROM Empleados"), "Ana");
}

TEST_F(ClassRecord, BeginsAsTheClassDoes) {
  const auto fresh = office.get("/api/v1/classes/ClsEmpleados/new");
  EXPECT_EQ(fresh.json["values"]["Código"], "2");
  EXPECT_EQ(office.get("/api/v1/classes/clsArticulos/new").json["values"]["Lista"], "PRC");
  EXPECT_EQ(office.text("SELECT Count(*) FROM Empleados"), "1");
}

TEST_F(ClassRecord, RowsOfAGridGetNumbersOfTheirOwn) {
  for (const char* warehouse : {"1", "2"}) {
    const auto made = office.insert("ClsArticulosAlmacenes",
                                    {{"Código", "PAN"}, {"Almacén", warehouse}, {"Cantidad", 3}});
    ASSERT_EQ(made.status, 201) << made.body;
    EXPECT_EQ(made.json["key"], (Json{{"Id", std::stoi(warehouse)}}));
  }
}

// ---- Conflicts

TEST_F(ClassRecord, AChangeOfAnotherOneIsShownAndNothingIsWritten) {
  const Json before = read("01");
  ASSERT_EQ(office.change("ClsEmpleados", "01", before, {{"Nombre", "Berta"}}).status, 200);
  const auto conflict = office.change("ClsEmpleados", "01", before, {{"Nombre", "Carla"}});
  ASSERT_EQ(conflict.status, 409) << conflict.body;
  EXPECT_EQ(conflict.json["theirs"]["Nombre"], "Berta");
  EXPECT_EQ(office.faultOf("patch", "/api/v1/classes/{name}/record", conflict), "");
  EXPECT_EQ(office.text("SELECT Nombre FROM Empleados"), "Berta");
  // Over theirs, once it was seen.
  EXPECT_EQ(
      office.change("ClsEmpleados", "01", conflict.json["theirs"], {{"Nombre", "Carla"}}).status,
      200);
  EXPECT_EQ(office.text("SELECT Nombre FROM Empleados"), "Carla");
}

TEST_F(ClassRecord, OtherColumnsMayChangeMeanwhile) {
  const Json before = read("01");
  office.run("UPDATE Empleados SET NIF = 'B2'");
  const auto changed = office.change("ClsEmpleados", "01", before, {{"Nombre", "Berta"}});
  ASSERT_EQ(changed.status, 200) << changed.body;
  EXPECT_EQ(changed.json["values"]["NIF"], "B2");
}

TEST_F(ClassRecord, ARowDeletedMeanwhileIsMissing) {
  const Json before = read("01");
  office.run("DELETE FROM Empleados");
  EXPECT_EQ(office.change("ClsEmpleados", "01", before, {{"Nombre", "Berta"}}).status, 404);
  EXPECT_EQ(office.remove("ClsEmpleados", "01", before).status, 404);
}

TEST_F(ClassRecord, OnlyTheRowThatWasSeenIsDeleted) {
  const Json before = read("01");
  office.run("UPDATE Empleados SET NIF = 'B2'");
  const auto conflict = office.remove("ClsEmpleados", "01", before);
  EXPECT_EQ(conflict.status, 409);
  EXPECT_EQ(conflict.json["theirs"]["NIF"], "B2");
  EXPECT_EQ(office.remove("ClsEmpleados", "01", read("01")).status, 200);
  EXPECT_EQ(office.text("SELECT Count(*) FROM Empleados"), "0");
}

TEST_F(ClassRecord, RowsThatCannotBeToldApartStayAsTheyAre) {
  for (int i = 0; i < 2; ++i) {
    office.run("INSERT INTO Tickets_Lineas (ID, Numero, Codigo) VALUES (7, 1, 'PAN')",
               selector::kDocuments);
  }
  const auto both =
      office.change("ClsTicketsLineas", {{"ID", 7}}, Json::object(), {{"Cantidad", 2}});
  EXPECT_EQ(both.status, 409);
  EXPECT_THAT(both.body, HasSubstr("2 rows are"));
}

TEST_F(ClassRecord, NothingChangedWritesNothing) {
  const Json before = read("01");
  std::vector<std::string> events;
  const auto listener =
      office.application().events().listen([&](const auto& text) { events.push_back(*text); });
  EXPECT_EQ(office.change("ClsEmpleados", "01", before, before).status, 200);
  EXPECT_TRUE(events.empty());
  EXPECT_EQ(office.change("ClsEmpleados", "01", before, {{"Nombre", "Berta"}}).status, 200);
  ASSERT_EQ(events.size(), 1U);
  EXPECT_THAT(events[0], HasSubstr(R"({"class":"ClsEmpleados","key":{"Código":"01"}})"));
  office.application().events().forget(listener);
}

TEST_F(ClassRecord, AColumnThatIsComputedOrLookedUpIsTold) {
  office.run("INSERT INTO Articulos (Codigo, Descripcion) VALUES ('A100', 'Pan')");
  office.run(
      "INSERT INTO Articulos_Movimientos_Almacen (Id, Codigo, Almacen) VALUES (1, 'A100', '1')");
  const auto form =
      office.record("ClsArticulosMovAlmacen", {{"Mov", 1}}, {{"mode", "vista rapida"}});
  EXPECT_THAT(form.status, testing::AnyOf(200, 404)) << form.body;
  EXPECT_EQ(office.record("ClsCierres", 1, {{"mode", "familias"}, {"id", "1"}}).status, 422);
}

// ---- Who may

TEST_F(ClassRecord, WritingNeedsTheRightAndNoDenial) {
  const auto put = [&] {
    return office.change("ClsEmpleados", "01", Json::object(), {{"NIF", "C3"}}).status;
  };
  office.as.rights = web::Rights::of("office.read");
  EXPECT_EQ(put(), 403);
  EXPECT_EQ(office.get("/api/v1/classes/ClsEmpleados/new").status, 403);
  EXPECT_EQ(office.record("ClsEmpleados", "01").status, 200);
  office.as.rights = web::Rights::of("office.* -class.Empleados.write");
  EXPECT_EQ(put(), 403);
  EXPECT_EQ(office.insert("ClsBancos", {{"Código", "9"}}).status, 201);
  office.as.rights = web::Rights::of("office.*");
  EXPECT_EQ(put(), 200);
  // The installation's own denials hold for everybody.
  Apartment& apartment = office.apartment();
  apartment.registry().set(
      apartment.registryStore().BaseKey(apartment.version().registryRoot() + "\\Seguridad\\") +
          "Seguridad\\Configuraciones\\",
      "class.Empleados.write", "1");
  office.as.rights = web::Rights::of("*");
  EXPECT_EQ(put(), 403);
}

TEST_F(ClassRecord, ChangesAreInTheLog) {
  office.change("ClsEmpleados", "01", Json::object(), {{"NIF", "C3"}});
  EXPECT_EQ(office.text("SELECT Detalle FROM Web_Registro"), "ClsEmpleados {\"Código\":\"01\"}");
  EXPECT_EQ(office.text("SELECT Empleado FROM Web_Registro"), "1");
}

}  // namespace
}  // namespace tavelor
