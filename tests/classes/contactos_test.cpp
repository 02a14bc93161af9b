// SPDX-License-Identifier: MIT
// Contacts.
#include "tavelor/reference/contactos.hpp"

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

class ClsContactosTest : public test::CatalogueTest<ClsContactos> {
 protected:
  void fill() {
    shop.run(
        "INSERT INTO Contactos (Codigo, Nombre, Razon_Social, Contacto, NIF, Direccion, "
        "Codigo_Postal, Poblacion, Provincia, Telefono, Telefono_2, Movil, Fax, E_Mail, Http, "
        "ExternalID, Predeterminada) VALUES ('1', 'Ana', 'Ana S.L.', 'Jefa', 'B1', 'Calle 1', "
        "'37001', 'Salamanca', 'Salamanca', 't1', 't2', 'm', 'f', 'a@b', 'http', 'x', True)");
    shop.run("INSERT INTO Contactos (Codigo, Activo) VALUES ('2', False)");
    shop.statements();
  }
};

TEST_F(ClsContactosTest, SeleccionShowsActiveContactsByName) {
  fill();
  EXPECT_EQ(
      open("seleccion").statement,
      "SELECT Codigo AS Código, Razon_social AS Descripción FROM Contactos WHERE ( activo <> 0 )");
  EXPECT_THAT(codes(), ElementsAre("1"));
}

// Contacto is shown twice, under its own name and as Tipo: forms bind to either.
TEST_F(ClsContactosTest, AnyOtherWordIsTheFullSelect) {
  const Opened opened = open("seleccioncombo");
  EXPECT_EQ(opened.statement,
            "SELECT Codigo AS Código, Nombre, Razon_Social as Empresa, Contacto, NIF, Direccion as "
            "Dirección, Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono, "
            "Telefono_2 as Teléfono_2, Movil as Móvil, Fax, E_Mail, Http, Contacto as Tipo, "
            "ExternalID FROM Contactos");
  EXPECT_EQ(opened.word, "todos");
}

TEST_F(ClsContactosTest, TheDefaultContactIsGivenByItsName) {
  EXPECT_TRUE(catalogue.GetPredeterminada().isEmpty());
  EXPECT_EQ(statement(), "SELECT Razon_social as ds FROM Contactos where predeterminada <> 0");
  EXPECT_FALSE(catalogue.ExistePredeterminada());
  EXPECT_EQ(statement(), "SELECT Codigo FROM Contactos where predeterminada <> 0");
  fill();
  EXPECT_EQ(catalogue.GetPredeterminada(), Variant("Ana S.L."));
  EXPECT_TRUE(catalogue.ExistePredeterminada());
}

TEST_F(ClsContactosTest, GetTxtFileLiesInTheReportFolderOfTheInstallation) {
  EXPECT_EQ(catalogue.GetTxtFile(), shop.installation().reportFolder() + "/Contactos.txt");
}

TEST_F(ClsContactosTest, ObtenerRegistroActivoReadsTheCurrentRow) {
  fill();
  open("todos");
  ClsContactos::Registro r;
  catalogue.ObtenerRegistroActivo(r);
  EXPECT_THAT((std::vector<std::string>{r.sCod, r.sNom, r.sEmpr, r.sdir, r.sCp, r.sPob, r.sProv,
                                        r.stel, r.stel2, r.sMovil, r.sFax, r.sMail, r.sHttp,
                                        r.sContacto, r.sNif, r.sTipo, r.sExternalID}),
              ElementsAre("1", "Ana", "Ana S.L.", "Calle 1", "37001", "Salamanca", "Salamanca",
                          "t1", "t2", "m", "f", "a@b", "http", "Jefa", "B1", "Jefa", "x"));
  catalogue.MoveNext();
  r.sNom = "kept";
  catalogue.ObtenerRegistroActivo(r);
  EXPECT_EQ(r.sCod, "2");
  EXPECT_EQ(r.sNom, "kept") << "a null leaves what was there";
}

TEST_F(ClsContactosTest, ObtenerRegistroActivoGivesItsParametersInOrder) {
  EXPECT_TRUE(
      signature("ObtenerRegistroActivo")
          .starts_with("ObtenerRegistroActivo(out sCod As String, out sNom As String, out sEmpr As "
                       "String, out sdir As String, out sCp As String, out sPob As String, out "
                       "sProv As String, out stel As String, "));
}

TEST_F(ClsContactosTest, ObtenerRegistroActivoNeedsARow) {
  ClsContactos::Registro r;
  EXPECT_EQ(errorOf([&] { catalogue.ObtenerRegistroActivo(r); }), errors::kObjectNotSet);
  open("todos");
  EXPECT_EQ(errorOf([&] { catalogue.ObtenerRegistroActivo(r); }), errors::kNoCurrentRecord);
}

TEST_F(ClsContactosTest, ANewContactIsActiveByTheTable) {
  open("todos");
  catalogue.AddNew(true);
  EXPECT_EQ(field("Código"), "1");
  rows().Field("Empresa").Value("Nueva S.L.");
  rows().Field("Tipo").Value("Prensa");
  catalogue.Update();
  open("seleccion");
  EXPECT_THAT(codes(), ElementsAre("1"));
  EXPECT_EQ(shop.text("SELECT Contacto FROM Contactos"), "Prensa");
}

TEST_F(ClsContactosTest, FindRecordLooksForTheBeginning) {
  shop.run("INSERT INTO Contactos (Codigo) VALUES ('10')");
  shop.run("INSERT INTO Contactos (Codigo) VALUES ('20')");
  open("todos");
  catalogue.FindRecord("2");
  EXPECT_EQ(field("Código"), "20");
}

TEST_F(ClsContactosTest, CodesComeFromTheTable) {
  catalogue.NuevoCodigo();
  EXPECT_EQ(statement(), "SELECT MAX(Codigo) AS Nuevo_Codigo FROM Contactos");
  catalogue.CodigoLibre("1");
  EXPECT_EQ(statement(), "SELECT Codigo FROM Contactos where codigo ='1'");
}

}  // namespace
}  // namespace tavelor
