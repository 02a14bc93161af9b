// SPDX-License-Identifier: MIT
// Collaborators of clinics.
#include "tavelor/customers/clientes_colaboradores.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

const std::string kTodos =
    "SELECT   Nombre , Activo, Colegiado,NIF, Direccion as Dirección, Codigo_Postal, Poblacion as "
    "Población, Provincia, Telefono as Teléfono, Id, Codigo as Código, Descuento, Preferencias as "
    "Alias, Notas FROM Clientes_Colaboradores";
const std::string kSelecc =
    "SELECT  Id as Código, Nombre as Descripción, Codigo as Clínica  FROM Clientes_Colaboradores";

class ClsClientesColaboradoresTest : public test::CatalogueTest<ClsClientesColaboradores> {
 protected:
  void add(int id, const std::string& clinic, const std::string& name,
           const std::string& assignments = "Activo = True") {
    shop.run("INSERT INTO Clientes_Colaboradores (Id, Codigo, Nombre) VALUES (" +
             std::to_string(id) + ", '" + clinic + "', '" + name + "')");
    shop.run("UPDATE Clientes_Colaboradores SET " + assignments +
             " WHERE Id = " + std::to_string(id));
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Clientes_Colaboradores"); }

  ClsClientesColaboradores& people = catalogue;
};

TEST_F(ClsClientesColaboradoresTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "GetDatos", "GetTel", "GetDto", "DeleteAll",
                          "IniciaRs", "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "UpdateadAffectCurrent");
}

TEST_F(ClsClientesColaboradoresTest, TheModes) {
  shop.run("INSERT INTO Clientes (Codigo, Razon_Social) VALUES ('00012', 'Clínica')");
  add(1, "00012", "Núñez");
  add(2, "00013", "Pi");
  add(3, "00012", "Ros", "Activo = False");
  EXPECT_EQ(open("selecc").statement, kSelecc + " WHERE (activo <> 0 )");
  EXPECT_THAT(codes(), ElementsAre("1", "2"));
  EXPECT_EQ(open("ninguno").statement, kTodos + " Where (Nombre = '0')");
  EXPECT_EQ(open("todos_cli").statement,
            "SELECT Clientes_Colaboradores.ID AS Código, Clientes_Colaboradores.Nombre AS "
            "Descripción, Clientes.Razon_social AS Clínica, Clientes_Colaboradores.Activo, "
            "Clientes_Colaboradores.Colegiado, Clientes_Colaboradores.Telefono AS Teléfono FROM "
            "Clientes_Colaboradores INNER JOIN Clientes ON Clientes_Colaboradores.Codigo = "
            "Clientes.Codigo");
  EXPECT_THAT(codes(), ElementsAre("1", "3"));
  const Opened all = open("seleccion");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
}

TEST_F(ClsClientesColaboradoresTest, AClinicReplacesTheWholeConditionOfSelecc) {
  add(1, "00012", "Núñez");
  add(2, "00013", "Pi");
  const Opened one = open("selecc", "00012");
  EXPECT_EQ(one.statement, kSelecc + " WHERE (Codigo like  '00012' and  activo <> 0 )");
  EXPECT_EQ(one.word, "selecc");
  EXPECT_THAT(codes(), ElementsAre("1"));
  open("selecc", "000*");
  EXPECT_THAT(codes(), ElementsAre("1", "2")) << "a clinic may be a pattern";
  EXPECT_EQ(open("selecc", "").statement, kSelecc + " WHERE (activo <> 0 )");
  EXPECT_EQ(open("selecc", Null()).statement, kSelecc + " WHERE (activo <> 0 )");
}

// ---- Reads

TEST_F(ClsClientesColaboradoresTest, GetDatosGivesTheClinicsFirstCollaborator) {
  add(4, "00012", "Núñez", "Colegiado = 'C7'");
  std::string name;
  std::string number = "as it came";
  Variant id;
  shop.statements();
  people.GetDatos("00012", name, id, number);
  EXPECT_EQ(statement(),
            "SELECT   Nombre , Id, Codigo as Código, Colegiado  FROM Clientes_Colaboradores WHERE "
            "(Codigo =  '00012')");
  EXPECT_EQ(name + "|" + shown(id) + "|" + number, "Núñez|4|C7");
  name = "nombre";
  id = "id";
  people.GetDatos("00013", name, id, number);
  EXPECT_EQ(name + "|" + shown(id) + "|" + number, "nombre|id|C7") << "no row touches nothing";
}

TEST_F(ClsClientesColaboradoresTest, GetTelOfAnUnknownNameIsASingleBlank) {
  add(1, "00012", "Núñez", "Telefono = '93'");
  add(2, "00012", "Pi");
  shop.statements();
  EXPECT_EQ(people.GetTel("00012", "Núñez"), "93");
  EXPECT_EQ(statement(),
            "SELECT   Telefono  FROM Clientes_Colaboradores WHERE (Codigo =  '00012' and Nombre =  "
            "'Núñez')");
  EXPECT_EQ(people.GetTel("00012", "Ros"), " ");
  EXPECT_EQ(people.GetTel("00012", "Pi"), " ") << "Null";
  EXPECT_EQ(people.GetTel("00013", "Núñez"), " ");
}

TEST_F(ClsClientesColaboradoresTest, GetDtoIsThatOfAnActiveCollaboratorOrZero) {
  add(1, "00012", "Núñez", "Descuento = 7.5, Activo = True");
  add(2, "00012", "Pi", "Descuento = 5, Activo = False");
  add(3, "00012", "Ros");
  shop.statements();
  EXPECT_EQ(people.GetDto("00012", "Núñez"), 7.5);
  EXPECT_EQ(statement(),
            "SELECT Descuento FROM Clientes_Colaboradores WHERE ( Codigo =  '00012' and activo <> "
            "0 and Nombre =  'Núñez' )");
  EXPECT_EQ(people.GetDto("00012", "Pi"), 0);
  EXPECT_EQ(people.GetDto("00012", "Ros"), 0) << "Null";
  EXPECT_EQ(people.GetDto("00012", "nadie"), 0);
}

TEST_F(ClsClientesColaboradoresTest, CodesAreTheKeysOfCollaborators) {
  add(3, "00012", "Núñez");
  EXPECT_FALSE(people.CodigoLibre(3));
  EXPECT_EQ(statement(), "SELECT id as Codigo FROM Clientes_Colaboradores where id ='3'");
  EXPECT_EQ(shown(people.NuevoCodigo()), "4");
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Clientes_Colaboradores");
}

// ---- The batch

TEST_F(ClsClientesColaboradoresTest, AddNewGivesTheNextKeyAndAnActiveCollaborator) {
  add(41, "00012", "Núñez");
  people.IniciaRs({}, "ninguno");
  people.AddNew(true);
  EXPECT_EQ(field("Id"), "42");
  EXPECT_EQ(field("Activo"), shown(Variant(true)));
  EXPECT_EQ(field("Nombre"), "Empty");
  people.Cancel();
  shop.statements();
  people.AddNew();
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_EQ(field("Id"), "Empty");
}

TEST_F(ClsClientesColaboradoresTest, ABatchIsKeyedAndWrittenTogether) {
  add(7, "00012", "Núñez");
  people.IniciaRs({}, "ninguno");
  for (const char* name : {"Pi", "Ros"}) {
    people.AddNew(true);
    rows().Field("Nombre").Value(name);
    people.UpdateadAffectCurrent("00013");
  }
  EXPECT_EQ(count(), "1");
  shop.statements();
  people.UpdateId();
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Clientes_Colaboradores");
  EXPECT_EQ(people.AbsolutePosition(), 1);
  EXPECT_EQ(field("Id"), "8");
  people.Update();
  EXPECT_EQ(count(), "3");
  EXPECT_EQ(shop.text("SELECT Id FROM Clientes_Colaboradores WHERE Codigo = '00013' AND Nombre = "
                      "'Ros'"),
            "9");
}

TEST_F(ClsClientesColaboradoresTest, DeleteOnlyMarksAndUpdateWrites) {
  add(1, "00012", "Núñez");
  add(2, "00012", "Pi");
  people.IniciaRs();
  people.Delete();
  EXPECT_EQ(count(), "2");
  people.MoveNext();
  people.Update();
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsClientesColaboradoresTest, DeleteAllDeletesTheCollaboratorsOfOneClinic) {
  add(1, "00012", "Núñez");
  add(2, "00013", "Pi");
  shop.statements();
  people.DeleteAll("00012");
  EXPECT_EQ(statement(), "DELETE  FROM Clientes_Colaboradores WHERE (Codigo = '00012')");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsClientesColaboradoresTest, FindRecordLooksForTheBeginningOfAName) {
  add(1, "00012", "Ana Núñez");
  add(2, "00012", "Pere Pi");
  people.IniciaRs();
  people.FindRecord("Per");
  EXPECT_EQ(field("Nombre"), "Pere Pi");
}

TEST_F(ClsClientesColaboradoresTest, HostileTextInEveryValueChangesNothing) {
  add(1, "00012", "Núñez");
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { people.IniciaRs({}, "selecc", attack); }), 0);
    EXPECT_NE(errorOf([&] { people.GetTel("00012", attack); }), 0);
    EXPECT_NE(errorOf([&] { people.GetDto(attack, "Núñez"); }), 0);
    EXPECT_NE(errorOf([&] { people.DeleteAll(attack); }), 0);
  }
  EXPECT_EQ(count(), "1");
}

}  // namespace
}  // namespace tavelor
