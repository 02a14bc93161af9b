// SPDX-License-Identifier: MIT
// Delivery addresses of customers.
#include "tavelor/customers/clientes_direcciones.hpp"
#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::IsEmpty;

const std::string kTodos =
    "SELECT ID, Codigo as Código, Nombre, Razon_Social as Empresa, Direccion as Dirección, "
    "Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono, Telefono_2 as "
    "Teléfono_2, Fax, Movil as Móvil, E_Mail, Http, Predeterminada, Transportista FROM "
    "Clientes_Direcciones";
const std::string kAddress =
    "Nombre, Razon_Social as Empresa, NIF,  Direccion, Codigo_Postal, Poblacion, Provincia, "
    "telefono";

class ClsClientesDireccionesTest : public test::CatalogueTest<ClsClientesDirecciones> {
 protected:
  void add(int id, const std::string& customer, const std::string& assignments = {}) {
    shop.run("INSERT INTO Clientes_Direcciones (ID, Codigo) VALUES (" + std::to_string(id) + ", '" +
             customer + "')");
    if (!assignments.empty()) {
      shop.run("UPDATE Clientes_Direcciones SET " + assignments +
               " WHERE ID = " + std::to_string(id));
    }
  }
  static ClsClientesDirecciones::Direccion filled(const Variant& id) {
    return {.id = id,
            .idTel = "t",
            .sNif = "n",
            .sNombre = "a",
            .sEmpresa = "e",
            .sDireccion = "d",
            .sCp = "c",
            .sPoblacion = "p",
            .sProvincia = "v",
            .vIdDir = "i",
            .sTransportista = "r"};
  }
  static std::string shownAll(const ClsClientesDirecciones::Direccion& a) {
    return a.idTel + "|" + a.sNif + "|" + a.sNombre + "|" + a.sEmpresa + "|" + a.sDireccion + "|" +
           a.sCp + "|" + a.sPoblacion + "|" + a.sProvincia + "|" + a.sTransportista;
  }
  static constexpr const char* kAll =
      "Nombre = 'Obra', Razon_Social = 'Obras SL', NIF = 'B1', Direccion = 'Calle 1', "
      "Codigo_Postal = '08001', Poblacion = 'Barcelona', Provincia = 'BCN', Telefono = '93', "
      "Transportista = 'T1', E_Mail = 'a@b.es', Predeterminada = True";

  ClsClientesDirecciones& addresses = catalogue;
};

TEST_F(ClsClientesDireccionesTest, TheSlotsStandInOrder) {
  EXPECT_THAT(
      firstSlots(),
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "GetTxtFile", "GetDatosCabecera", "GetDatosPredeterminada",
                  "GetTransportista", "GetDatosCabeceraSeleccion", "ExistePredeterminada",
                  "ExistenDirecciones", "EsValida", "ObtenerRegistroActivo", "ObtenerColActivos",
                  "ObtenerMailDoc", "DeleteAll", "IniciaRs", "NuevoCodigo", "SeguridadPermiso",
                  "CodigoLibre"));
  EXPECT_EQ(signature("GetDatosPredeterminada"),
            "GetDatosPredeterminada(id As Variant, out idTel As String, out sNif As String, out "
            "sNombre As String, out sEmpresa As String, out sDireccion As String, out sCp As "
            "String, out sPoblacion As String, out sProvincia As String, out vIdDir As Variant, "
            "out sTransportista As String, [inout objCn As Connection])");
}

TEST_F(ClsClientesDireccionesTest, TheModes) {
  shop.run("INSERT INTO Clientes (Codigo, Razon_Social) VALUES ('00012', 'Obras SL')");
  add(1, "00012");
  add(2, "00013");
  EXPECT_EQ(open("cliente", "00012").statement, kTodos + " WHERE Codigo =  '00012'");
  EXPECT_THAT(codes(), ElementsAre("1"));
  EXPECT_EQ(open("seleccion", "00013").statement,
            "SELECT ID as Código, Nombre as Descripción, Razon_Social as Empresa, Direccion as "
            "Dirección, Codigo_Postal, Poblacion as Población, Provincia, Transportista FROM "
            "Clientes_Direcciones WHERE Codigo =  '00013'");
  EXPECT_THAT(codes(), ElementsAre("2"));
  EXPECT_EQ(open("clsclientesdirecciones").statement,
            "SELECT Clientes.Codigo as Código, Clientes_Direcciones.Id as Descripción, "
            "Clientes.Razon_Social as Cliente, Clientes_Direcciones.Nombre, "
            "Clientes_Direcciones.Razon_Social as Empresa, Clientes_Direcciones.Direccion as "
            "Dirección, Clientes_Direcciones.Codigo_Postal, Clientes_Direcciones.Poblacion as "
            "Población, Clientes_Direcciones.Provincia FROM Clientes INNER JOIN "
            "Clientes_Direcciones ON Clientes.Codigo = Clientes_Direcciones.Codigo");
  EXPECT_THAT(codes(), ElementsAre("00012"));
  const Opened all = open("loquesea");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
}

TEST_F(ClsClientesDireccionesTest, TheRecordSetRidesOnTheCallersConnection) {
  ConnectionPtr connection = DataSession().OpenConnection(1);
  addresses.IniciaRs("todos", {}, connection);
  EXPECT_EQ(addresses.GetConnection(), connection);
}

// ---- Addresses

TEST_F(ClsClientesDireccionesTest, GetDatosCabeceraGivesTheCustomersFirstAddress) {
  add(1, "00012", kAll);
  auto address = filled("00012");
  shop.statements();
  addresses.GetDatosCabecera(address);
  EXPECT_EQ(statement(),
            "SELECT " + kAddress + " FROM Clientes_Direcciones WHERE ( Codigo =  '00012')");
  EXPECT_EQ(shownAll(address), "93|B1|Obra|Obras SL|Calle 1|08001|Barcelona|BCN|r");
}

TEST_F(ClsClientesDireccionesTest, AColumnThatIsNullLeavesItsOutput) {
  add(1, "00012", "Nombre = 'Obra'");
  auto address = filled("00012");
  addresses.GetDatosCabecera(address);
  EXPECT_EQ(shownAll(address), "t|n|Obra|e|d|c|p|v|r");
}

TEST_F(ClsClientesDireccionesTest, GetDatosPredeterminadaGivesTheDefaultAddressItsKeyAndCarrier) {
  add(1, "00012");
  add(2, "00012", kAll);
  auto address = filled("00012");
  shop.statements();
  addresses.GetDatosPredeterminada(address);
  EXPECT_EQ(statement(), "SELECT ID, " + kAddress +
                             ", Transportista FROM Clientes_Direcciones WHERE ( Codigo =  '00012' "
                             "and Predeterminada <> 0)");
  EXPECT_EQ(shownAll(address), "93|B1|Obra|Obras SL|Calle 1|08001|Barcelona|BCN|T1");
  EXPECT_EQ(shown(address.vIdDir), "2");
}

TEST_F(ClsClientesDireccionesTest, WithoutADefaultAddressNoOutputIsTouched) {
  add(1, "00012", "Nombre = 'Obra'");
  auto address = filled("00012");
  addresses.GetDatosPredeterminada(address);
  EXPECT_EQ(shownAll(address), "t|n|a|e|d|c|p|v|r");
  EXPECT_EQ(address.vIdDir, Variant("i"));
}

TEST_F(ClsClientesDireccionesTest, ANullCarrierIsNo) {
  add(1, "00012", "Predeterminada = True");
  auto byCustomer = filled("00012");
  addresses.GetDatosPredeterminada(byCustomer);
  EXPECT_EQ(byCustomer.sTransportista, "no");
  auto byKey = filled(1);
  addresses.GetDatosCabeceraSeleccion(byKey);
  EXPECT_EQ(byKey.sTransportista, "no");
}

// Nothing keeps one default address a customer.
TEST_F(ClsClientesDireccionesTest, OfTwoDefaultAddressesTheFirstDeliveredWins) {
  add(1, "00012", "Predeterminada = True, Nombre = 'primera'");
  add(2, "00012", "Predeterminada = True, Nombre = 'segunda'");
  auto address = filled("00012");
  addresses.GetDatosPredeterminada(address);
  EXPECT_EQ(address.sNombre, "primera");
}

TEST_F(ClsClientesDireccionesTest, GetDatosCabeceraSeleccionFindsTheAddressByItsOwnKey) {
  add(7, "00012", kAll);
  auto address = filled(7);
  shop.statements();
  addresses.GetDatosCabeceraSeleccion(address);
  EXPECT_EQ(statement(),
            "SELECT " + kAddress + ", Transportista FROM Clientes_Direcciones WHERE ( ID =  '7')");
  EXPECT_EQ(shownAll(address), "93|B1|Obra|Obras SL|Calle 1|08001|Barcelona|BCN|T1");
  auto missing = filled(8);
  addresses.GetDatosCabeceraSeleccion(missing);
  EXPECT_EQ(shownAll(missing), "t|n|a|e|d|c|p|v|r");
}

TEST_F(ClsClientesDireccionesTest, GetTransportistaIsNoForNoAddressOrNoCarrier) {
  add(1, "00012", "Transportista = 'T1'");
  add(2, "00012");
  shop.statements();
  EXPECT_EQ(addresses.GetTransportista("00012", 1), "T1");
  EXPECT_EQ(statement(),
            "SELECT Transportista FROM Clientes_Direcciones WHERE ( Codigo =  '00012' and ID =  "
            "'1')");
  EXPECT_EQ(addresses.GetTransportista("00012", 2), "no");
  EXPECT_EQ(addresses.GetTransportista("00012", 3), "no");
  EXPECT_EQ(addresses.GetTransportista("00013", 1), "no");
}

TEST_F(ClsClientesDireccionesTest, ObtenerMailDocIsNoForNoMail) {
  add(1, "00012", "E_Mail = 'a@b.es'");
  add(2, "00012");
  shop.statements();
  EXPECT_EQ(addresses.ObtenerMailDoc("00012", 1), "a@b.es");
  EXPECT_EQ(statement(),
            "SELECT E_Mail FROM Clientes_Direcciones WHERE codigo = '00012' and ID = '1'");
  EXPECT_EQ(addresses.ObtenerMailDoc("00012", 2), "no");
  EXPECT_EQ(addresses.ObtenerMailDoc("00012", 3), "no");
}

TEST_F(ClsClientesDireccionesTest, TheExistenceQuestions) {
  add(1, "00012");
  shop.statements();
  EXPECT_FALSE(addresses.ExistePredeterminada("00012"));
  EXPECT_EQ(statement(),
            "SELECT Codigo  FROM Clientes_Direcciones where((Codigo ='00012') and ( predeterminada "
            "<> 0))");
  EXPECT_TRUE(addresses.ExistenDirecciones("00012"));
  EXPECT_EQ(statement(), "SELECT Codigo  FROM Clientes_Direcciones where((Codigo ='00012'))");
  EXPECT_TRUE(addresses.EsValida("00012", 1));
  EXPECT_EQ(statement(),
            "SELECT Codigo  FROM Clientes_Direcciones where((Codigo ='00012') and ( ID ='1'))");
  add(2, "00013", "Predeterminada = True");
  EXPECT_TRUE(addresses.ExistePredeterminada("00013"));
  EXPECT_FALSE(addresses.ExistenDirecciones("00014"));
  EXPECT_FALSE(addresses.EsValida("00012", 2));
}

TEST_F(ClsClientesDireccionesTest, AnAddressThatIsNoNumberIsAMismatch) {
  EXPECT_NE(errorOf([&] { addresses.EsValida("00012", "uno"); }), 0);
}

// ---- Rows

TEST_F(ClsClientesDireccionesTest, ObtenerColActivosGivesTheKeysOfACustomersAddresses) {
  add(1, "00012");
  add(2, "00013");
  add(3, "00012");
  shop.statements();
  const std::vector<Variant> keys = addresses.ObtenerColActivos("00012");
  EXPECT_EQ(statement(), "SELECT Id FROM Clientes_Direcciones WHERE ( Codigo = '00012')");
  EXPECT_THAT(keys, ElementsAre(Variant(std::int32_t{1}), Variant(std::int32_t{3})));
  EXPECT_THAT(addresses.ObtenerColActivos("00014"), IsEmpty());
}

TEST_F(ClsClientesDireccionesTest, ObtenerRegistroActivoReadsTheRowAndRaisesWhatItCannotRead) {
  std::string name = "a";
  std::string company = "e";
  std::string street = "d";
  std::string postcode = "c";
  std::string town = "p";
  std::string province = "v";
  std::string telephone = "t";
  Variant code = "x";
  const auto readRow = [&] {
    addresses.ObtenerRegistroActivo(code, name, company, street, postcode, town, province,
                                    telephone);
    return shown(code) + "|" + name + "|" + company + "|" + street + "|" + postcode + "|" + town +
           "|" + province + "|" + telephone;
  };
  EXPECT_EQ(errorOf(readRow), errors::kObjectNotSet) << "before IniciaRs";
  addresses.IniciaRs();
  EXPECT_EQ(errorOf(readRow), errors::kNoCurrentRecord);
  add(3, "00012", kAll);
  addresses.IniciaRs("seleccion", "00012");
  EXPECT_EQ(errorOf(readRow), errors::kItemNotFound) << "the list for choosing shows no name";
  EXPECT_EQ(name, "a");
  addresses.IniciaRs();
  EXPECT_EQ(readRow(), "00012|Obra|Obras SL|Calle 1|08001|Barcelona|BCN|93");
}

TEST_F(ClsClientesDireccionesTest, AddNewGivesTheNextKeyAndNoDefault) {
  add(41, "00012");
  addresses.IniciaRs();
  addresses.AddNew(true);
  EXPECT_EQ(field("ID"), "42");
  EXPECT_EQ(field("Predeterminada"), shown(Variant(false)));
  addresses.Cancel();
  addresses.AddNew();
  EXPECT_EQ(field("ID"), "Empty");
  EXPECT_EQ(field("Predeterminada"), "Empty");
}

TEST_F(ClsClientesDireccionesTest, TheListForChoosingHasNoFlagToSet) {
  addresses.IniciaRs("seleccion", "00012");
  addresses.AddNew(true);
  addresses.Update();
  EXPECT_EQ(shop.text("SELECT Predeterminada FROM Clientes_Direcciones"), shown(Variant(false)));
}

TEST_F(ClsClientesDireccionesTest, CodesAreTheKeysOfAddresses) {
  EXPECT_EQ(shown(addresses.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Clientes_Direcciones");
  EXPECT_TRUE(addresses.CodigoLibre(3));
  EXPECT_EQ(statement(), "SELECT Codigo FROM Clientes_Direcciones where ID ='3'");
  add(3, "00012");
  EXPECT_FALSE(addresses.CodigoLibre(3));
}

TEST_F(ClsClientesDireccionesTest, DeleteAllDeletesTheAddressesOfOneCustomer) {
  add(1, "00012");
  add(2, "00013");
  shop.statements();
  addresses.DeleteAll("00012");
  EXPECT_EQ(statement(), "DELETE  FROM Clientes_Direcciones WHERE (Codigo = '00012')");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes_Direcciones"), "1");
}

TEST_F(ClsClientesDireccionesTest, TheTextFileLiesInTheReportFolder) {
  EXPECT_THAT(addresses.GetTxtFile(), EndsWith("/rpt/Clientes_Direcciones.txt"));
}

TEST_F(ClsClientesDireccionesTest, HostileTextInEveryValueChangesNothing) {
  add(1, "00012");
  for (const std::string& attack : test::hostileTexts()) {
    auto address = filled(attack);
    EXPECT_NE(errorOf([&] { addresses.GetDatosCabecera(address); }), 0);
    EXPECT_NE(errorOf([&] { addresses.GetDatosPredeterminada(address); }), 0);
    EXPECT_NE(errorOf([&] { addresses.GetDatosCabeceraSeleccion(address); }), 0);
    EXPECT_NE(errorOf([&] { addresses.GetTransportista(attack, 1); }), 0);
    EXPECT_NE(errorOf([&] { addresses.EsValida("00012", attack); }), 0);
    EXPECT_NE(errorOf([&] { addresses.ObtenerMailDoc("00012", attack); }), 0);
    EXPECT_NE(errorOf([&] { addresses.DeleteAll(attack); }), 0);
    EXPECT_EQ(shownAll(address), "t|n|a|e|d|c|p|v|r");
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes_Direcciones"), "1");
}

}  // namespace
}  // namespace tavelor
