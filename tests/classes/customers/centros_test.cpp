// SPDX-License-Identifier: MIT
// Administrative centres of customers.
#include "tavelor/customers/clientes_centros.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::EndsWith;

const std::string kTodos =
    "SELECT ID, Codigo as Código, CentreCode as Centro,  Name as Nombre, RoleTypeCode as Tipo, "
    "Direccion as Dirección, Codigo_Postal, Poblacion as Población, Provincia, Telefono as "
    "Teléfono, E_Mail FROM Clientes_Centros";

class ClsClientesCentrosTest : public test::CatalogueTest<ClsClientesCentros> {
 protected:
  void add(int id, const std::string& customer, const std::string& role) {
    shop.run(
        "INSERT INTO Clientes_Centros (ID, Codigo, CentreCode, Name, RoleTypeCode, Direccion, "
        "Codigo_Postal, Poblacion, Provincia, Telefono) VALUES (" +
        std::to_string(id) + ", '" + customer + "', 'L01', 'Intervención', '" + role +
        "', 'Plaza 1', '08002', 'Barcelona', 'BCN', '93')");
  }
  ClsClientesCentros& centres = catalogue;
};

TEST_F(ClsClientesCentrosTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "GetTxtFile", "GetDatosCentro", "ExistenCentros",
                          "ObtenerColActivos", "DeleteAll", "IniciaRs", "NuevoCodigo",
                          "SeguridadPermiso", "CodigoLibre"));
}

TEST_F(ClsClientesCentrosTest, TheModes) {
  add(1, "00012", "01");
  add(2, "00013", "01");
  EXPECT_EQ(open("cliente", "00012").statement, kTodos + " WHERE Codigo =  '00012'");
  EXPECT_THAT(codes(), ElementsAre("1"));
  const Opened all = open("seleccion");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
  EXPECT_THAT(codes(), ElementsAre("1", "2"));
}

TEST_F(ClsClientesCentrosTest, ACentreIsFoundByCustomerAndRole) {
  add(1, "00012", "01");
  add(2, "00012", "02");
  shop.run("UPDATE Clientes_Centros SET CentreCode = 'L02' WHERE ID = 2");
  ClsClientesCentros::Centro centre = {.id = "00012", .sRole = "02", .sMail = "as it came"};
  shop.statements();
  centres.GetDatosCentro(centre);
  EXPECT_EQ(statement(),
            "SELECT CentreCode as Centro, Name as Nombre, RoleTypeCode as Tipo,  Direccion, "
            "Codigo_Postal, Poblacion, Provincia, telefono, e_mail FROM Clientes_Centros WHERE ( "
            "Codigo =  '00012' and RoleTypeCode ='02')");
  EXPECT_EQ(centre.sCentro, "L02");
  EXPECT_EQ(centre.sNombre, "Intervención");
  EXPECT_EQ(centre.sTipo, "02");
  EXPECT_EQ(centre.sDireccion, "Plaza 1");
  EXPECT_EQ(centre.sCp, "08002");
  EXPECT_EQ(centre.sPoblacion, "Barcelona");
  EXPECT_EQ(centre.sProvincia, "BCN");
  EXPECT_EQ(centre.sTelefono, "93");
  EXPECT_EQ(centre.sMail, "as it came") << "Null";
}

TEST_F(ClsClientesCentrosTest, ACentreThatIsNotThereTouchesNoOutput) {
  add(1, "00012", "01");
  ClsClientesCentros::Centro centre = {.id = "00012", .sRole = "03", .sCentro = "c", .sTipo = "t"};
  centres.GetDatosCentro(centre);
  EXPECT_EQ(centre.sCentro + centre.sTipo, "ct");
}

TEST_F(ClsClientesCentrosTest, WhetherAndWhichCentresThereAre) {
  EXPECT_FALSE(centres.ExistenCentros("00012"));
  EXPECT_EQ(statement(), "SELECT Codigo  FROM Clientes_Centros where((Codigo ='00012'))");
  add(4, "00012", "01");
  EXPECT_TRUE(centres.ExistenCentros("00012"));
  shop.statements();
  EXPECT_THAT(centres.ObtenerColActivos("00012"), ElementsAre(Variant(std::int32_t{4})));
  EXPECT_EQ(statement(), "SELECT Id FROM Clientes_Centros WHERE ( Codigo = '00012')");
}

TEST_F(ClsClientesCentrosTest, CodesAreTheKeysOfCentres) {
  add(3, "00012", "01");
  EXPECT_FALSE(centres.CodigoLibre(3));
  EXPECT_EQ(statement(), "SELECT Codigo FROM Clientes_Centros where ID ='3'");
  EXPECT_EQ(shown(centres.NuevoCodigo()), "4");
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Clientes_Centros");
}

TEST_F(ClsClientesCentrosTest, AddNewGivesKeysOfAnyLength) {
  add(123456, "00012", "01");
  centres.IniciaRs();
  centres.AddNew(true);
  EXPECT_EQ(field("ID"), "123457");
}

TEST_F(ClsClientesCentrosTest, FindRecordLooksForTheBeginningOfAKey) {
  add(7, "00012", "01");
  add(81, "00012", "02");
  centres.IniciaRs();
  centres.FindRecord("8");
  EXPECT_EQ(field("ID"), "81");
}

TEST_F(ClsClientesCentrosTest, DeleteAllDeletesTheCentresOfOneCustomer) {
  add(1, "00012", "01");
  add(2, "00013", "01");
  shop.statements();
  centres.DeleteAll("00012");
  EXPECT_EQ(statement(), "DELETE  FROM Clientes_Centros WHERE (Codigo = '00012')");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes_Centros"), "1");
}

TEST_F(ClsClientesCentrosTest, TheTextFileLiesInTheReportFolder) {
  EXPECT_THAT(centres.GetTxtFile(), EndsWith("/rpt/Clientes_Centros.txt"));
}

TEST_F(ClsClientesCentrosTest, HostileTextInEveryValueChangesNothing) {
  add(1, "00012", "01");
  for (const std::string& attack : test::hostileTexts()) {
    ClsClientesCentros::Centro centre = {.id = "00012", .sRole = attack};
    EXPECT_NE(errorOf([&] { centres.GetDatosCentro(centre); }), 0);
    EXPECT_NE(errorOf([&] { centres.ExistenCentros(attack); }), 0);
    EXPECT_NE(errorOf([&] { centres.DeleteAll(attack); }), 0);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes_Centros"), "1");
}

}  // namespace
}  // namespace tavelor
