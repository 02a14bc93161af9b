// SPDX-License-Identifier: MIT
// Lists of any class: modes, filters, order, pages, and what a session keeps.
#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/components.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/modes.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tests/support/hostile_values.hpp"
#include "tests/web/office.hpp"

namespace tavelor {
namespace {

using test::Office;
using testing::Contains;
using testing::HasSubstr;
using web::Json;

// ---- Every class

class EveryClass : public testing::TestWithParam<const Component*> {
 protected:
  const std::string& name() const { return GetParam()->name(); }
  bool hasRows() const { return dynamic_cast<RecordClass*>(GetParam()->make().get()) != nullptr; }
  Office office;
};

TEST_P(EveryClass, IsToldWithItsMembersAndModes) {
  const auto told = office.get(Office::at("classes/" + name()));
  ASSERT_EQ(told.status, 200) << told.body;
  EXPECT_EQ(office.faultOf("get", "/api/v1/classes/{name}", told), "");
  EXPECT_EQ(told.json["members"].size(), GetParam()->members().size());
  EXPECT_EQ(told.json["hasRows"], hasRows());
  EXPECT_EQ(told.json["canWrite"], hasRows());
  if (!hasRows()) {
    EXPECT_THAT(told.json["whyNot"].get<std::string>(), HasSubstr("no rows"));
  }
}

TEST_P(EveryClass, ListsItsRows) {
  const auto answer = office.rows(name());
  if (!hasRows()) {
    EXPECT_EQ(answer.status, 422);
    EXPECT_THAT(answer.body, HasSubstr("has no rows of its own"));
    return;
  }
  ASSERT_EQ(answer.status, 200) << answer.body;
  EXPECT_EQ(office.faultOf("get", "/api/v1/classes/{name}/rows", answer), "");
  const Json& columns = answer.json["columns"];
  ASSERT_FALSE(columns.empty());
  EXPECT_TRUE(std::any_of(columns.begin(), columns.end(),
                          [](const Json& column) { return column["key"].get<bool>(); }));
  for (const Json& row : answer.json["rows"]) EXPECT_EQ(row.size(), columns.size());
}

/// Modes are statements that some of them never were: those answer why, and never with a failure of
/// the server.
TEST_P(EveryClass, OpensEachOfItsModesOrTellsWhyNot) {
  if (!hasRows()) GTEST_SKIP() << "it has no rows";
  const std::unique_ptr<Object> object = GetParam()->make();
  for (const std::string& mode : modeWords(dynamic_cast<RecordClass&>(*object).info())) {
    const auto answer = office.rows(name(), {{"mode", mode}, {"id", "1"}, {"limit", "5"}});
    EXPECT_THAT(answer.status, testing::AnyOf(200, 422)) << mode << ": " << answer.body;
    if (answer.status == 422) {
      EXPECT_THAT(answer.body, HasSubstr("does not open")) << mode;
    }
  }
}

TEST_P(EveryClass, GivesAFormForANewRow) {
  const auto answer = office.get(Office::at("classes/" + name() + "/new"));
  if (!hasRows()) {
    EXPECT_EQ(answer.status, 422);
    return;
  }
  ASSERT_EQ(answer.status, 200) << answer.body;
  EXPECT_EQ(office.faultOf("get", "/api/v1/classes/{name}/new", answer), "");
  EXPECT_EQ(answer.json["values"].size(), answer.json["columns"].size());
  EXPECT_EQ(office.rows(name()).json["total"],
            office.rows(name(), {{"fresh", "true"}}).json["total"]);
}

/// Added as the form begins it, with a key where the class gives none; read, and deleted again.
TEST_P(EveryClass, KeepsARowAndGivesItBack) {
  if (!hasRows()) GTEST_SKIP() << "it has no rows";
  const auto fresh = office.get(Office::at("classes/" + name() + "/new"));
  Json values = Json::object();
  for (const Json& column : fresh.json["columns"]) {
    const auto& columnName = column["name"].get_ref<const std::string&>();
    const Json& begun = fresh.json["values"][columnName];
    const bool isOpen = begun.is_null() || begun == "" || begun == 0;
    if (column["nullable"].get<bool>() && !column["key"].get<bool>()) continue;
    if (!isOpen || column["type"] == "flag" || !column["writable"].get<bool>()) continue;
    values[columnName] = column["type"] == "text" ? Json("97") : Json(97);
  }
  const auto made = office.insert(name(), values);
  ASSERT_EQ(made.status, 201) << made.body << values;
  EXPECT_EQ(office.faultOf("post", "/api/v1/classes/{name}/records", made), "");
  const auto read = office.record(name(), made.json["key"]);
  ASSERT_EQ(read.status, 200) << read.body;
  EXPECT_EQ(read.json["values"], made.json["values"]);
  const auto gone = office.remove(name(), made.json["key"], read.json["values"]);
  EXPECT_EQ(gone.status, 200) << gone.body;
  EXPECT_EQ(office.record(name(), made.json["key"]).status, 404);
  EXPECT_EQ(office.remove(name(), made.json["key"], Json::object()).status, 404);
}

INSTANTIATE_TEST_SUITE_P(Of, EveryClass, testing::ValuesIn(components()),
                         [](const auto& test) { return test.param->name(); });

// ---- Filters, order, pages

class ClassList : public testing::Test {
 protected:
  ClassList() {
    for (int i = 1; i <= 25; ++i) {
      office.run(fmt::format(
          "INSERT INTO Empleados (Codigo, Nombre, Activo, IRPF, Fecha_Alta) VALUES ('{:02}', "
          "'{}', {}, {}, #{}/15/2026 10:30:00#)",
          i, i % 2 == 0 ? "Ana" : "O''Shea", i % 3 == 0 ? -1 : 0, i * 1.5, i % 12 + 1));
    }
    office.run("INSERT INTO Empleados (Codigo, Activo) VALUES ('99', 0)");
  }
  std::int64_t total(std::initializer_list<std::string> filters) {
    Office::Parameters parameters;
    for (const std::string& filter : filters) parameters.emplace_back("filter", filter);
    const auto answer = office.rows("ClsEmpleados", parameters);
    EXPECT_EQ(answer.status, 200) << answer.body;
    return answer.status == 200 ? answer.json["total"].get<std::int64_t>() : -1;
  }
  std::vector<std::string> codes(const Office::Parameters& parameters) {
    std::vector<std::string> codes;
    const auto answer = office.rows("ClsEmpleados", parameters);
    EXPECT_EQ(answer.status, 200) << answer.body;
    for (const Json& row : answer.json["rows"]) codes.push_back(row[0].get<std::string>());
    return codes;
  }
  Office office;
};

TEST_F(ClassList, FiltersByEachTypeAndOperator) {
  EXPECT_EQ(total({}), 26);
  EXPECT_EQ(total({"Nombre:eq:Ana"}), 12);
  EXPECT_EQ(total({"Nombre:eq:O'Shea"}), 13);
  EXPECT_EQ(total({"Nombre:like:SHE"}), 13);
  EXPECT_EQ(total({"Nombre:like:a*"}), 12);
  EXPECT_EQ(total({"Nombre:eq:"}), 1);
  EXPECT_EQ(total({"Nombre:ne:"}), 25);
  EXPECT_EQ(total({"Código:ge:20"}), 7);
  EXPECT_EQ(total({"Codigo:lt:05"}), 4);
  EXPECT_EQ(total({"IRPF:gt:30"}), 5);
  EXPECT_EQ(total({"IRPF:eq:1.5"}), 1);
  EXPECT_EQ(total({"Activo:eq:true"}), 8);
  EXPECT_EQ(total({"Fecha_Alta:eq:2026-01-15"}), 2);
  EXPECT_EQ(total({"Fecha_Alta:ne:2026-01-15"}), 23);
  EXPECT_EQ(total({"Fecha_Alta:le:2026-01-15"}), 2);
  EXPECT_EQ(total({"Fecha_Alta:gt:2026-01-15"}), 23);
  EXPECT_EQ(total({"Fecha_Alta:eq:2026-01-15T10:30"}), 2);
  EXPECT_EQ(total({"Fecha_Alta:eq:"}), 1);
  EXPECT_EQ(total({"Nombre:eq:Ana", "Activo:eq:true", "IRPF:gt:10"}), 3);
}

TEST_F(ClassList, RefusesWhatIsNoFilter) {
  for (const char* filter : {"", "Nombre", "Nombre:eq", "Apellido:eq:x", "Nombre:near:x",
                             "IRPF:eq:mucho", "IRPF:eq:1,5", "IRPF:eq:1e999", "IRPF:eq:nan",
                             "Activo:eq:si", "Activo:lt:true", "Fecha_Alta:eq:15/01/2026",
                             "Fecha_Alta:eq:2026-02-30", "IRPF:lt:", "]:eq:1", "[Nombre]:eq:x"}) {
    const auto answer = office.rows("ClsEmpleados", {{"filter", filter}});
    EXPECT_EQ(answer.status, 400) << filter << ": " << answer.body;
    EXPECT_EQ(answer.json["error"]["kind"], "input");
  }
  const Office::Parameters many(21, {"filter", "Nombre:eq:Ana"});
  EXPECT_EQ(office.rows("ClsEmpleados", many).status, 400);
}

TEST_F(ClassList, AHostileFilterFindsItselfOnly) {
  for (const std::string& value : test::hostileValues()) {
    if (value.size() > 1000) continue;  // the address ends before
    for (const char* op : {"eq", "like", "ge"}) {
      const auto answer = office.rows(
          "ClsEmpleados", {{"filter", fmt::format("Nombre:{}:{}", op, value)}, {"limit", "1"}});
      EXPECT_THAT(answer.status, testing::AnyOf(200, 400)) << op << value << answer.body;
      if (answer.status == 200 && op == std::string("eq") && !value.empty()) {
        EXPECT_EQ(answer.json["total"], 0) << value;
      }
    }
    for (const char* name : {"mode", "order", "offset", "limit"}) {
      const int status = office.rows("ClsEmpleados", {{name, value}}).status;
      EXPECT_THAT(status, testing::AnyOf(200, 400)) << name << value;
    }
    const int status = office.rows("ClsBancos", {{"mode", "registro"}, {"id", value}}).status;
    EXPECT_THAT(status, testing::AnyOf(200, 400, 422)) << value;
    EXPECT_THAT(office.get("/api/v1/classes/" + test::encoded(value) + "/rows").status,
                testing::AnyOf(400, 404))
        << value;
  }
  EXPECT_EQ(total({}), 26);
}

TEST_F(ClassList, OrdersByAColumnAndPages) {
  EXPECT_THAT(codes({{"order", "Código:desc"}, {"limit", "2"}}), testing::ElementsAre("99", "25"));
  EXPECT_THAT(codes({{"order", "IRPF:desc"}, {"limit", "2"}}), testing::ElementsAre("25", "24"));
  EXPECT_THAT(codes({{"order", "Código"}, {"offset", "24"}}), testing::ElementsAre("25", "99"));
  EXPECT_THAT(codes({{"order", "Código"}, {"offset", "26"}}), testing::IsEmpty());
  EXPECT_THAT(codes({{"offset", "999999"}}), testing::IsEmpty());
  EXPECT_THAT(codes({{"limit", "0"}}), testing::IsEmpty());
  EXPECT_EQ(codes({{"limit", "500"}}).size(), 26U);
  for (const Office::Parameters& wrong : {Office::Parameters{{"limit", "501"}},
                                          {{"limit", "-1"}},
                                          {{"offset", "-1"}},
                                          {{"offset", "x"}},
                                          {{"order", "Apellido"}},
                                          {{"order", "Código:up"}},
                                          {{"mode", "todo"}}}) {
    EXPECT_EQ(office.rows("ClsEmpleados", wrong).status, 400) << wrong[0].second;
  }
  EXPECT_THAT(office.rows("ClsEmpleados", {{"mode", "selecion"}}).body,
              HasSubstr("seleccion is near"));
  EXPECT_EQ(office.rows("ClsEmpleado").status, 404);
  EXPECT_THAT(office.rows("ClsEmpleado").body, HasSubstr("ClsEmpleados is near"));
}

TEST_F(ClassList, SeesChangesMadeHereAtOnceAndThoseOfOthersWhenAsked) {
  EXPECT_EQ(total({}), 26);
  office.run("DELETE FROM Empleados WHERE Codigo = '99'");
  EXPECT_EQ(total({}), 26);
  EXPECT_EQ(office.rows("ClsEmpleados", {{"fresh", "true"}}).json["total"], 25);
  ASSERT_EQ(office.remove("ClsEmpleados", "01", Json::object()).status, 200);
  EXPECT_EQ(office.rows("ClsEmpleados", {{"offset", "5"}}).json["total"], 24);
}

TEST_F(ClassList, SessionsDoNotShareWhatTheyRead) {
  office.as.session = "one";
  EXPECT_EQ(total({}), 26);
  office.run("DELETE FROM Empleados WHERE Codigo = '99'");
  office.as.session = "two";
  EXPECT_EQ(total({}), 25);
  office.as.session = "one";
  EXPECT_EQ(total({}), 26);
}

TEST_F(ClassList, ListsABinaryByItsSizeAndTheBeginningOfAMemo) {
  office.run("INSERT INTO Tipos_Documento (Codigo, Comentarios) VALUES ('Z9', '" +
             std::string(500, 'm') + "')");
  ASSERT_EQ(
      office.change("ClsTiposDocumento", "Z9", Json::object(), {{"Logotipo", "AAECAw=="}}).status,
      200);
  const auto answer = office.rows("ClsTiposDocumento", {{"filter", "Código:eq:Z9"}});
  ASSERT_EQ(answer.json["rows"].size(), 1U) << answer.body;
  const Json& columns = answer.json["columns"];
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (columns[i]["name"] == "Logotipo") {
      EXPECT_EQ(answer.json["rows"][0][i], 4);
    }
    if (columns[i]["name"] == "Comentarios") {
      EXPECT_EQ(answer.json["rows"][0][i].get<std::string>().size(), 200U);
    }
  }
  EXPECT_EQ(office.record("ClsTiposDocumento", "Z9").json["values"]["Logotipo"], "AAECAw==");
}

// ---- Who may

TEST_F(ClassList, NeedsTheRightAndNoDenial) {
  office.as.rights = web::Rights::of("till.*");
  EXPECT_EQ(office.rows("ClsEmpleados").status, 403);
  EXPECT_EQ(office.get("/api/v1/classes").status, 403);
  office.as.rights = web::Rights::of("office.read -class.Empleados.read");
  EXPECT_EQ(office.rows("ClsEmpleados").status, 403);
  EXPECT_EQ(office.rows("ClsBancos").status, 200);
  const auto list = office.get("/api/v1/classes");
  EXPECT_EQ(list.json.size(), components().size() - 1);
  for (const Json& line : list.json) EXPECT_FALSE(line["canWrite"].get<bool>());
}

TEST_F(ClassList, CountsRowsWhereItIsAsked) {
  const auto list = office.get("/api/v1/classes?count=true");
  EXPECT_EQ(office.faultOf("get", "/api/v1/classes", list), "");
  for (const Json& line : list.json) {
    if (line["name"] == "ClsEmpleados") {
      EXPECT_EQ(line["count"], 26);
    }
  }
}

// ---- Views

TEST_F(ClassList, RemembersItsViewUnderTheKeysOfTheClass) {
  const std::string view = Office::at("classes/ClsEmpleados/view", {{"mode", "todos"}});
  const Json wanted = {{"columns",
                        {{{"name", "Nombre"}, {"visible", true}, {"width", 240}},
                         {{"name", "Código"}, {"visible", false}, {"width", 60}}}},
                       {"order", {{"column", "IRPF"}, {"descending", true}}},
                       {"filter", "Activo <> 0"}};
  const auto stored = office.send(web::Method::kPut, view, wanted);
  ASSERT_EQ(stored.status, 200) << stored.body;
  EXPECT_EQ(stored.json, wanted);
  EXPECT_EQ(office.get(view).json, wanted);
  EXPECT_THAT(codes({{"limit", "1"}}), testing::ElementsAre("25"));

  // The class's own forms find order and filter where they look for them.
  const std::unique_ptr<Object> object = component("ClsEmpleados").make();
  auto& employees = dynamic_cast<RecordClass&>(*object);
  openMode(component("ClsEmpleados"), *object, "todos", "");
  EXPECT_EQ(employees.GetFilter("todos"), "Activo <> 0");
  EXPECT_EQ(employees.DataMember("Primary")->Field(0).Value(), Variant("25"));
  // Other modes have views of their own.
  EXPECT_EQ(
      office.get(Office::at("classes/ClsEmpleados/view", {{"mode", "seleccion"}})).json["filter"],
      "");
}

TEST_F(ClassList, AViewThatDoesNotReadIsRefused) {
  const std::string view = Office::at("classes/ClsEmpleados/view");
  const auto put = [&](const Json& body) {
    return office.send(web::Method::kPut, view, body).status;
  };
  EXPECT_EQ(put({{"order", {{"column", "Apellido"}}}}), 400);
  EXPECT_EQ(put({{"columns", {{{"name", "Apellido"}}}}}), 400);
  EXPECT_EQ(put({{"columns", "all"}}), 400);
  EXPECT_EQ(put({{"colour", "red"}}), 400);
  EXPECT_EQ(put({{"filter", "Apellido = 1 OR"}}), 422);
  EXPECT_EQ(office.get(view).json["filter"], "");
}

}  // namespace
}  // namespace tavelor
