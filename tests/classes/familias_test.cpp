// SPDX-License-Identifier: MIT
// Article families, of the main and of the import database.
#include "tavelor/reference/familias.hpp"

#include "tests/classes/catalogue.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr int kImport = 5;

class clsFamiliasTest : public test::CatalogueTest<clsFamilias> {
 protected:
  void fill() {
    shop.run("INSERT INTO Familias (Codigo, Descripcion) VALUES ('2', 'Bebidas')");
    shop.run("INSERT INTO Familias (Codigo, Descripcion) VALUES ('3', 'Aceites')");
    shop.run("INSERT INTO Familias (Codigo, Activo) VALUES ('4', False)");
    shop.statements();
  }
};

// ---- Modes

TEST_F(clsFamiliasTest, SeleccomboAndSelecShowActiveFamilies) {
  fill();
  const std::string active =
      "SELECT Codigo AS Código, Descripcion AS Descripción FROM Familias WHERE ( activo <> 0 )";
  EXPECT_EQ(open("seleccombo").statement, active + " Order by Descripcion");
  EXPECT_EQ(open("selec").statement, active);
  EXPECT_THAT(codes(), ElementsAre("2", "3"));
}

TEST_F(clsFamiliasTest, AnyOtherWordShowsAllOfThem) {
  fill();
  const Opened opened = open("seleccion");
  EXPECT_EQ(opened.statement,
            "SELECT Codigo AS Código, Descripcion AS Descripción, Activo  FROM Familias");
  EXPECT_EQ(opened.word, "todos");
  EXPECT_THAT(codes(), ElementsAre("2", "3", "4"));
}

// ---- Reads

TEST_F(clsFamiliasTest, GetDescripcionOfACodeThatIsNotThereIsFamilia) {
  fill();
  EXPECT_EQ(catalogue.GetDescripcion("2"), "Bebidas");
  EXPECT_EQ(statement(), "SELECT Descripcion FROM Familias WHERE Codigo = '2'");
  EXPECT_EQ(catalogue.GetDescripcion("9"), "Familia");
  EXPECT_EQ(catalogue.GetDescripcion("4"), "Familia");
  EXPECT_EQ(catalogue.GetDescripcion(Null{}), "No");
}

TEST_F(clsFamiliasTest, GetFirstIsTheFirstCodeOrEmpty) {
  EXPECT_TRUE(catalogue.GetFirst().isEmpty());
  EXPECT_EQ(statement(), "SELECT Codigo as v  FROM Familias");
  fill();
  EXPECT_EQ(catalogue.GetFirst(), Variant("2"));
}

TEST_F(clsFamiliasTest, GetFirstIsTheCodeStoredFirstNotTheSmallest) {
  shop.run("INSERT INTO Familias (Codigo) VALUES ('9')");
  shop.run("INSERT INTO Familias (Codigo) VALUES ('1')");
  EXPECT_EQ(catalogue.GetFirst(), Variant("9"));
}

TEST_F(clsFamiliasTest, GetValorIsTheDescriptionOrEmpty) {
  fill();
  EXPECT_EQ(catalogue.GetValor("3"), Variant("Aceites"));
  EXPECT_EQ(statement(), "SELECT Descripcion as v  FROM Familias  where codigo = '3'");
  EXPECT_TRUE(catalogue.GetValor("4").isEmpty());
  EXPECT_TRUE(catalogue.GetValor("9").isEmpty());
}

TEST_F(clsFamiliasTest, ExisteFamAsksForTheCode) {
  fill();
  EXPECT_TRUE(catalogue.ExisteFam("4"));
  EXPECT_EQ(statement(), "SELECT Codigo FROM Familias Where codigo ='4'");
  EXPECT_FALSE(catalogue.ExisteFam("9"));
}

// ---- Writes

TEST_F(clsFamiliasTest, CambiarDescripcionaFamiliaWritesOne) {
  fill();
  catalogue.CambiarDescripcionaFamilia("2", "Zumos");
  EXPECT_EQ(statement(), "UPDATE Familias SET Descripcion = 'Zumos'  WHERE (Codigo = '2')");
  EXPECT_EQ(catalogue.GetValor("2"), Variant("Zumos"));
  EXPECT_EQ(catalogue.GetValor("3"), Variant("Aceites"));
  EXPECT_NO_THROW(catalogue.CambiarDescripcionaFamilia("9", "Nada")) << "no row is no error";
}

TEST_F(clsFamiliasTest, InsertarMakesAFamilyThatCanBeUsedAtOnce) {
  catalogue.Insertar("5", "Conservas");
  EXPECT_EQ(statement(),
            "INSERT INTO Familias (  Codigo, Descripcion ) values ( '5','Conservas' )");
  open("selec");
  EXPECT_THAT(codes(), ElementsAre("5"));
  EXPECT_EQ(errorOf([&] { catalogue.Insertar("5", "Otra"); }), errors::kIntegrityViolation);
}

TEST_F(clsFamiliasTest, WritesRunOnTheCallersConnectionAndFillAnEmptyOne) {
  ConnectionPtr connection;
  catalogue.Insertar("5", "Conservas", connection);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  catalogue.CambiarDescripcionaFamilia("5", "Zumos", connection);
  catalogue.Insertar("6", "Pan", connection);
  connection->RollbackTrans();
  EXPECT_EQ(catalogue.GetValor("5"), Variant("Conservas"));
  EXPECT_FALSE(catalogue.ExisteFam("6"));
}

// ---- The import database

TEST_F(clsFamiliasTest, FamiliesOfTheImportDatabaseAreListed) {
  fill();
  EXPECT_THAT(catalogue.ObtenerFamiliasImport(), IsEmpty());
  shop.run("INSERT INTO Familias (Codigo, Descripcion) VALUES ('I1', 'Importada')", kImport);
  shop.run("INSERT INTO Familias (Codigo) VALUES ('I2')", kImport);
  shop.statements();
  EXPECT_THAT(catalogue.ObtenerFamiliasImport(), ElementsAre(Variant("I1"), Variant("I2")));
  EXPECT_EQ(statement(), "SELECT Codigo  FROM Familias");
}

TEST_F(clsFamiliasTest, GetDatosImportReadsOneOfThemAndLeavesWhatIsNotThere) {
  fill();
  shop.run("INSERT INTO Familias (Codigo, Descripcion) VALUES ('I1', 'Importada')", kImport);
  shop.run("INSERT INTO Familias (Codigo) VALUES ('I2')", kImport);
  std::string description = "kept";
  for (const char* id : {"2", "I2", "9"}) catalogue.GetDatosImport(id, description);
  EXPECT_EQ(description, "kept") << "'2' is in the main database only";
  shop.statements();
  catalogue.GetDatosImport("I1", description);
  EXPECT_EQ(description, "Importada");
  EXPECT_EQ(statement(),
            "SELECT Codigo as Código, Descripcion FROM Familias Where ( Codigo = 'I1' )");
}

TEST_F(clsFamiliasTest, TheReportConnectionIsThatOfTheHistoricDatabaseIfAsked) {
  TAVELOR_ONLY_IN_FILES("it names the database file");
  std::string kind, main, historic, catalog, user, password, expected;
  catalogue.GetConnectionStrToRpt(kind, main, catalog, user, password);
  catalogue.GetConnectionStrToRpt(kind, historic, catalog, user, password, true);
  DataSession().ReportConnection(selector::kHistoric, kind, expected, catalog, user, password);
  EXPECT_EQ(historic, expected);
  EXPECT_NE(historic, main);
}

// ---- Codes and new rows

TEST_F(clsFamiliasTest, CodesComeFromTheTable) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Familias");
  catalogue.CodigoLibre("1");
  EXPECT_EQ(statement(), "SELECT Codigo FROM Familias where codigo ='1'");
}

TEST_F(clsFamiliasTest, ANewFamilyWithDefaultsIsActive) {
  open("todos");
  catalogue.AddNew(true);
  EXPECT_EQ(field("Código"), "1");
  EXPECT_EQ(field("Activo"), "Verdadero");
  catalogue.Cancel();
  catalogue.AddNew(false);
  EXPECT_EQ(field("Activo"), "Empty");
}

TEST_F(clsFamiliasTest, ANewFamilyInAShortListIsActiveByTheTable) {
  open("selec");
  catalogue.AddNew(true);
  catalogue.Update();
  EXPECT_EQ(shop.text("SELECT Activo FROM Familias WHERE Codigo = '1'"), "Verdadero");
}

TEST_F(clsFamiliasTest, HostileTextChangesNothing) {
  fill();
  std::string description;
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_EQ(errorOf([&] { catalogue.GetDescripcion(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.GetValor(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.ExisteFam(attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.GetDatosImport(attack, description); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.CambiarDescripcionaFamilia("2", attack); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.CambiarDescripcionaFamilia(attack, "x"); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.Insertar(attack, "x"); }), errors::kSyntax);
    EXPECT_EQ(errorOf([&] { catalogue.Insertar("8", attack); }), errors::kSyntax);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Familias"), "3");
  EXPECT_EQ(catalogue.GetValor("2"), Variant("Bebidas"));
}

}  // namespace
}  // namespace tavelor
