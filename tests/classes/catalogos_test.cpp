// SPDX-License-Identifier: MIT
// The small code tables.
#include "tavelor/reference/almacenes.hpp"
#include "tavelor/reference/cajas.hpp"
#include "tavelor/reference/incidencias.hpp"
#include "tavelor/reference/rutas.hpp"
#include "tavelor/reference/secciones.hpp"
#include "tavelor/reference/tipos_cliente.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

// ---- Warehouses, tills and incident types: one statement for all words

/// What the three classes that have nothing but code and description share.
template <typename Class>
class PlainCatalogueTest : public test::CatalogueTest<Class> {
 protected:
  std::string table() { return this->catalogue.sClassName(); }
};
using PlainClasses = testing::Types<ClsAlmacenes, ClsCajas, clsIncidencias>;
TYPED_TEST_SUITE(PlainCatalogueTest, PlainClasses);

TYPED_TEST(PlainCatalogueTest, EveryWordOpensTheSameStatement) {
  const std::string statement =
      "SELECT Codigo AS Código, Descripcion AS Descripción FROM " + this->table();
  EXPECT_EQ(this->open("seleccion").statement, statement);
  const auto opened = this->open("lo que sea");
  EXPECT_EQ(opened.statement, statement);
  EXPECT_EQ(opened.word, "todos");
}

TYPED_TEST(PlainCatalogueTest, OnlyTheSavedOrderTellsTheWordsApart) {
  this->shop.run("INSERT INTO " + this->table() + " (Codigo, Descripcion) VALUES ('1', 'b')");
  this->shop.run("INSERT INTO " + this->table() + " (Codigo, Descripcion) VALUES ('2', 'a')");
  this->open("seleccion");
  this->catalogue.SetOrder(1, "", "seleccion");
  this->open("seleccion");
  EXPECT_THAT(this->codes(), ElementsAre("2", "1"));
  this->open("todos");
  EXPECT_THAT(this->codes(), ElementsAre("1", "2"));
}

TYPED_TEST(PlainCatalogueTest, CodesComeFromTheTable) {
  this->catalogue.NuevoCodigo();
  EXPECT_EQ(this->statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM " + this->table());
  this->catalogue.CodigoLibre("1");
  EXPECT_EQ(this->statement(), "SELECT Codigo FROM " + this->table() + " where codigo ='1'");
}

TYPED_TEST(PlainCatalogueTest, ANewRowHasItsCodeOnlyIfDefaultsAreWanted) {
  this->open("todos");
  this->catalogue.AddNew(true);
  EXPECT_EQ(this->field("Código"), "1");
  EXPECT_EQ(this->field("Descripción"), "Empty");
  this->catalogue.Cancel();
  this->catalogue.AddNew(false);
  EXPECT_EQ(this->field("Código"), "Empty");
}

TYPED_TEST(PlainCatalogueTest, HostileTextChangesNothing) {
  this->shop.run("INSERT INTO " + this->table() + " (Codigo) VALUES ('1')");
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_EQ(errorOf([&] { this->catalogue.CodigoLibre(attack); }), errors::kSyntax);
  }
  EXPECT_EQ(this->shop.text("SELECT Count(*) FROM " + this->table()), "1");
}

// The short form of AddNew has no test of the length: the field itself refuses a code too long.
TEST(ClsAlmacenesTest, AddNewOfWarehousesIsTheShortForm) {
  EXPECT_EQ(ClsAlmacenes().info().addNew, AddNewForm::kShort);
  EXPECT_EQ(ClsCajas().info().addNew, AddNewForm::kGeneral);
  EXPECT_EQ(clsIncidencias().info().addNew, AddNewForm::kGeneral);
}

TEST(ClsCajasTest, OnlyTillsAndSectionsClearTheirDataMembersFirst) {
  EXPECT_TRUE(ClsCajas().info().clearsDataMembers);
  EXPECT_TRUE(ClsSecciones().info().clearsDataMembers);
  EXPECT_FALSE(ClsAlmacenes().info().clearsDataMembers);
  EXPECT_FALSE(clsIncidencias().info().clearsDataMembers);
  EXPECT_FALSE(ClsTiposCliente().info().clearsDataMembers);
  EXPECT_FALSE(Rutas().info().clearsDataMembers);
}

class clsIncidenciasTest : public test::CatalogueTest<clsIncidencias> {};

TEST_F(clsIncidenciasTest, GetValorIsTheDescriptionOrEmpty) {
  shop.run("INSERT INTO Incidencias (Codigo, Descripcion) VALUES ('1', 'Rotura')");
  shop.run("INSERT INTO Incidencias (Codigo) VALUES ('2')");
  EXPECT_EQ(catalogue.GetValor("1"), Variant("Rotura"));
  EXPECT_EQ(statement(), "SELECT Descripcion as v  FROM Incidencias  where codigo = '1'");
  EXPECT_TRUE(catalogue.GetValor("2").isEmpty());
  EXPECT_TRUE(catalogue.GetValor("9").isEmpty());
  EXPECT_EQ(errorOf([&] { catalogue.GetValor("O'Hara"); }), errors::kSyntax);
}

// ---- Customer types

class ClsTiposClienteTest : public test::CatalogueTest<ClsTiposCliente> {};

TEST_F(ClsTiposClienteTest, Modes) {
  EXPECT_EQ(open("seleccombo").statement,
            "SELECT codigo as Código, Descripcion as Descripción FROM Tipos_Cliente order by "
            "Descripcion");
  EXPECT_EQ(open("seleccion").statement,
            "SELECT codigo as Código, Descripcion as Descripción FROM Tipos_Cliente");
  const Opened opened = open("seleccioncombo");
  EXPECT_EQ(opened.statement,
            "SELECT codigo as Código, Descripcion as Descripción, Importe FROM Tipos_Cliente");
  EXPECT_EQ(opened.word, "todos");
}

TEST_F(ClsTiposClienteTest, CodesComeFromTheTable) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(codigo) AS Nuevo_Codigo FROM Tipos_Cliente");
  catalogue.CodigoLibre("1");
  EXPECT_EQ(statement(), "SELECT Codigo FROM Tipos_Cliente where codigo ='1'");
}

TEST_F(ClsTiposClienteTest, ANewTypeWithDefaultsStartsWithNoAmount) {
  open("todos");
  catalogue.AddNew(true);
  EXPECT_EQ(field("Código"), "1");
  EXPECT_EQ(field("Importe"), "0");
  catalogue.Cancel();
  catalogue.AddNew(false);
  EXPECT_EQ(field("Importe"), "Empty");
}

// The short lists show no amount, and a row is added to them all the same.
TEST_F(ClsTiposClienteTest, ANewTypeInAShortListLeavesTheAmountToTheTable) {
  open("seleccion");
  catalogue.AddNew(true);
  catalogue.Update();
  EXPECT_EQ(shop.text("SELECT Importe FROM Tipos_Cliente WHERE codigo = '1'"), "0");
}

// ---- Sections

class ClsSeccionesTest : public test::CatalogueTest<ClsSecciones> {
 protected:
  void fill() {
    shop.run("INSERT INTO Secciones (Codigo, Descripcion) VALUES ('10', 'Óptica')");
    shop.run("INSERT INTO Secciones (Codigo) VALUES ('20')");
    shop.statements();
  }
};

// The words are short ones here, and callers pass them: "seleccion" is none of them.
TEST_F(ClsSeccionesTest, Modes) {
  const std::string all = "SELECT Codigo AS Código, Descripcion AS Descripción FROM Secciones";
  EXPECT_EQ(open("seleccombo").statement, all + " Order by Descripcion");
  EXPECT_EQ(open("selec").statement, all);
  EXPECT_EQ(open("selec").word, "selec");
  const Opened opened = open("seleccion");
  EXPECT_EQ(opened.statement, all);
  EXPECT_EQ(opened.word, "todos");
}

TEST_F(ClsSeccionesTest, GetDescripcionOfACodeThatIsNotThereIsSeccion) {
  fill();
  EXPECT_EQ(catalogue.GetDescripcion("10"), "Óptica");
  EXPECT_EQ(statement(), "SELECT Descripcion FROM Secciones WHERE Codigo = '10'");
  EXPECT_EQ(catalogue.GetDescripcion("99"), "Sección");
  EXPECT_EQ(catalogue.GetDescripcion("20"), "Sección");
  EXPECT_EQ(catalogue.GetDescripcion(Null{}), "No");
  EXPECT_EQ(errorOf([&] { catalogue.GetDescripcion("O'Hara"); }), errors::kSyntax);
}

TEST_F(ClsSeccionesTest, GetFirstIsTheFirstCodeOrEmpty) {
  EXPECT_TRUE(catalogue.GetFirst().isEmpty());
  fill();
  EXPECT_EQ(catalogue.GetFirst(), Variant("10"));
  EXPECT_EQ(statement(), "SELECT Codigo as v  FROM Secciones");
}

TEST_F(ClsSeccionesTest, GetFirstIsTheCodeStoredFirstNotTheSmallest) {
  shop.run("INSERT INTO Secciones (Codigo) VALUES ('20')");
  shop.run("INSERT INTO Secciones (Codigo) VALUES ('10')");
  EXPECT_EQ(catalogue.GetFirst(), Variant("20"));
}

TEST_F(ClsSeccionesTest, FindRecordLooksForTheBeginning) {
  fill();
  open("todos");
  catalogue.FindRecord("2");
  EXPECT_EQ(field("Código"), "20");
}

TEST_F(ClsSeccionesTest, CodesComeFromTheTable) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Secciones");
  catalogue.CodigoLibre("1");
  EXPECT_EQ(statement(), "SELECT Codigo FROM Secciones where codigo ='1'");
}

// ---- Routes

class RutasTest : public test::CatalogueTest<Rutas> {
 protected:
  void fill() {
    shop.run("INSERT INTO Rutas (Codigo, Descripcion, Path) VALUES (5, 'Norte', 'c:\\rutas')");
    shop.run("INSERT INTO Rutas (Codigo, Descripcion) VALUES (7, 'Este')");
    shop.run("INSERT INTO Rutas (Codigo) VALUES (9)");
    shop.statements();
  }
};

TEST_F(RutasTest, Modes) {
  const std::string all =
      "SELECT Rutas.Codigo AS Código, Rutas.Descripcion as Descripción From Rutas";
  EXPECT_EQ(open("seleccion").statement, all);
  const Opened opened = open("seleccombo");
  EXPECT_EQ(opened.statement, all + " ORDER BY Rutas.Descripcion");
  EXPECT_EQ(opened.word, "todos");
}

// The table holds phases of work as well, and that is what the fallback says.
TEST_F(RutasTest, GetDescripcionOfACodeThatIsNotThereIsFase) {
  fill();
  EXPECT_EQ(catalogue.GetDescripcion("5"), "Norte");
  EXPECT_EQ(statement(), "SELECT Descripcion FROM Rutas WHERE Codigo = '5'");
  EXPECT_EQ(catalogue.GetDescripcion(std::int32_t{6}), "Fase");
  EXPECT_EQ(catalogue.GetDescripcion("9"), "Fase");
}

TEST_F(RutasTest, GetPathTakesItsCodeWithoutQuotes) {
  fill();
  EXPECT_EQ(catalogue.GetPath("5"), Variant("c:\\rutas"));
  EXPECT_EQ(statement(), "SELECT Path FROM Rutas WHERE Codigo = 5");
  EXPECT_TRUE(catalogue.GetPath(std::int32_t{7}).isEmpty());
  EXPECT_TRUE(catalogue.GetPath("6").isEmpty());
  for (const char* attack : {"", "5 or 1=1", "x", "5; DELETE FROM Rutas"}) {
    EXPECT_NE(errorOf([&] { catalogue.GetPath(attack); }), 0) << attack;
  }
}

// The next code is proposed from the counter, which runs on its own.
TEST_F(RutasTest, NuevoCodigoReadsTheCounterAndCodigoLibreTheCode) {
  fill();
  EXPECT_EQ(catalogue.NuevoCodigo(), Variant(std::int32_t{4}));
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Rutas");
  EXPECT_FALSE(catalogue.CodigoLibre("5"));
  EXPECT_EQ(statement(), "SELECT Codigo FROM Rutas where codigo ='5'");
  EXPECT_TRUE(catalogue.CodigoLibre("4"));
}

TEST_F(RutasTest, ANewRouteIsWrittenUnderTheProposedCode) {
  fill();
  open("todos");
  catalogue.AddNew(true);
  rows().Field("Descripción").Value("Sur");
  catalogue.Update();
  EXPECT_EQ(catalogue.GetDescripcion("4"), "Sur");
}

}  // namespace
}  // namespace tavelor
