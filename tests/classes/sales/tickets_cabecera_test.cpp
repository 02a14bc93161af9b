// SPDX-License-Identifier: MIT
// The customer's data as typed at the till.
#include "tavelor/sales/tickets_cabecera.hpp"

#include <fstream>
#include <iterator>

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kTodos =
    "SELECT Id, Codigo as Código, Nombre, Razon_Social as Empresa, NIF,  Direccion as Dirección, "
    "Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono FROM Tickets_Cabecera";
const std::string kDatos =
    "SELECT Nombre, Razon_Social as Empresa, NIF,  Direccion, Codigo_Postal, Poblacion, "
    "Provincia, Telefono FROM ";

class ClsTicketsCabeceraTest : public test::CatalogueTest<ClsTicketsCabecera> {
 protected:
  void run(const std::string& statement) { shop.run(statement, selector::kDocuments); }
  std::string text(const std::string& statement) {
    return shop.text(statement, selector::kDocuments);
  }
  /// A header of a ticket with what `assignments` say; all else is null.
  void add(int id, int ticket, const std::string& assignments = {},
           const std::string& table = "Tickets_Cabecera") {
    run("INSERT INTO " + table + " (Id, Codigo) VALUES (" + std::to_string(id) + ", " +
        std::to_string(ticket) + ")");
    if (!assignments.empty()) {
      run("UPDATE " + table + " SET " + assignments + " WHERE Id = " + std::to_string(id));
    }
  }
  std::vector<std::string> lines() {
    std::vector<std::string> texts;
    for (const Variant& line : headers.GetCabecera()) texts.push_back(shown(line));
    return texts;
  }

  ClsTicketsCabecera& headers = catalogue;
};

TEST_F(ClsTicketsCabeceraTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetConnectionStrToRpt", "sClassName", "GetConnectionStr", "Insertar",
                          "Obtener", "GetCabecera", "Mover_De_Historicos", "Mover_A_Historicos",
                          "CerrarTicket", "ConvertirSerie", "GetConnection", "DeleteAll",
                          "GetDatos", "IniciaRs", "NuevoCodigo", "SeguridadPermiso"));
  EXPECT_EQ(lastSlot(), "ToTxt");
  EXPECT_EQ(signature("IniciaRs"),
            "IniciaRs([inout cnnActive As Connection], [inout sSelecSql As String], [id As "
            "Variant])");
  EXPECT_EQ(signature("GetDatos"),
            "GetDatos(inout idTel As String, inout sNif As String, inout sNombre As String, inout "
            "sEmpresa As String, inout sDireccion As String, inout sCp As String, inout sPoblacion "
            "As String, inout sProvincia As String, bHistor As Boolean, index As Integer, [inout "
            "objCn As Connection])");
}

TEST_F(ClsTicketsCabeceraTest, TheModes) {
  add(1, 10);
  add(2, 20);
  EXPECT_EQ(open("seleccion", 20).statement, kTodos + " WHERE  Codigo =  20");
  EXPECT_THAT(codes(), ElementsAre("2"));
  EXPECT_EQ(open("ninguno").statement, kTodos + " Where Codigo = 0");
  EXPECT_FALSE(headers.ExistenRegistros());
  const Opened all = open("loquesea");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
}

TEST_F(ClsTicketsCabeceraTest, CabecerasShowsEachCustomerOfThePastOnce) {
  add(1, 10, "Telefono = '91', Razon_Social = 'Ana'", "HTickets_Cabecera");
  add(2, 20, "Telefono = '91', Razon_Social = 'Ana'", "HTickets_Cabecera");
  add(3, 30, "Telefono = '92', Razon_Social = 'Eva'", "HTickets_Cabecera");
  EXPECT_EQ(open("cabeceras").statement,
            "SELECT DISTINCT Telefono AS Código,Razon_social AS Descripción, NIF,  Direccion, "
            "Codigo_Postal, Poblacion, Provincia FROM HTickets_Cabecera");
  EXPECT_THAT(codes(), testing::UnorderedElementsAre("91", "92"));
}

TEST_F(ClsTicketsCabeceraTest, ARowIsFoundByTheBeginningOfItsKey) {
  add(1, 10);
  add(41, 20);
  headers.IniciaRs();
  headers.FindRecord("4");
  EXPECT_EQ(field("Id"), "41");
}

TEST_F(ClsTicketsCabeceraTest, InsertarWritesAllButTheTelephone) {
  ConnectionPtr connection;
  headers.Insertar({.vId = 7,
                    .vNum = 1234,
                    .sNif = "12345678Z",
                    .sNombre = "Ana",
                    .sEmpresa = "Bar El Olivo",
                    .sDireccion = "Calle Mayor, 3",
                    .sCp = "28001",
                    .sPoblacion = "Getafe",
                    .sProvincia = "Madrid",
                    .objCn = connection});
  EXPECT_NE(connection, nullptr);
  EXPECT_EQ(statement(),
            "INSERT INTO Tickets_Cabecera ( id, Codigo, Nombre, Razon_Social, NIF,  Direccion, "
            "Codigo_Postal, Poblacion, Provincia ) Values ( 7,1234,'Ana','Bar El "
            "Olivo','12345678Z','Calle Mayor, 3','28001','Getafe','Madrid' )");
  headers.IniciaRs();
  EXPECT_EQ(field("Id") + " " + field("Código"), "7 1234");
  EXPECT_EQ(field("NIF"), "12345678Z");
  EXPECT_EQ(field("Teléfono"), "Null");
  EXPECT_EQ(errorOf([&] { headers.Insertar({.vId = 8, .vNum = 1, .sNombre = "O'Hara"}); }),
            errors::kSyntax);
}

TEST_F(ClsTicketsCabeceraTest, ObtenerReadsAHeaderAndLeavesNullsAsPassed) {
  add(1, 10,
      "NIF = 'N', Razon_Social = 'E', Direccion = 'D', Codigo_Postal = 'C', Poblacion = 'P', "
      "Provincia = 'V'");
  ClsTicketsCabecera::Datos read;
  read.vId = 10;
  read.sNombre = "queda";
  headers.Obtener(read);
  EXPECT_EQ(statement(),
            "SELECT Nombre, Razon_Social as Empresa, NIF,  Direccion, Codigo_Postal, Poblacion, "
            "Provincia FROM Tickets_Cabecera WHERE  Codigo = 10");
  EXPECT_EQ(read.sNombre, "queda");
  EXPECT_EQ(
      read.sNif + read.sEmpresa + read.sDireccion + read.sCp + read.sPoblacion + read.sProvincia,
      "NEDCPV");
}

TEST_F(ClsTicketsCabeceraTest, ObtenerOfATicketWithoutAHeaderLeavesAllAsPassed) {
  ClsTicketsCabecera::Datos read;
  read.vId = 10;
  read.sNombre = "queda";
  headers.Obtener(read);
  EXPECT_EQ(read.sNombre, "queda");
  EXPECT_EQ(read.sNif, "");
}

TEST_F(ClsTicketsCabeceraTest, GetCabeceraGivesTheLinesOfAReceipt) {
  add(1, 10,
      "Nombre = 'Ana', Razon_Social = 'Bar', NIF = '12Z', Direccion = 'Mayor, 3', Codigo_Postal = "
      "'28001', Poblacion = 'Getafe', Provincia = 'Madrid', Telefono = '91'");
  headers.IniciaRs();
  EXPECT_THAT(lines(),
              ElementsAre("Ana", "Bar", "12Z", "Mayor, 3", "28001 Getafe", "Madrid", "91"));
}

TEST_F(ClsTicketsCabeceraTest, GetCabeceraOfARowWithANameOnlyIsOneLine) {
  add(1, 10, "Nombre = 'Ana'");
  headers.IniciaRs();
  EXPECT_THAT(lines(), ElementsAre("Ana"));
}

TEST_F(ClsTicketsCabeceraTest, APostalCodeWithoutATownIsLeftOutAndATownStandsAlone) {
  add(1, 10, "Codigo_Postal = '28001'");
  add(2, 20, "Poblacion = 'Getafe'");
  headers.IniciaRs();
  EXPECT_THAT(lines(), IsEmpty());
  headers.MoveNext();
  EXPECT_THAT(lines(), ElementsAre("Getafe"));
}

TEST_F(ClsTicketsCabeceraTest, GetCabeceraNeedsACurrentRow) {
  EXPECT_EQ(errorOf([&] { headers.GetCabecera(); }), errors::kObjectNotSet);
  headers.IniciaRs();
  EXPECT_EQ(errorOf([&] { headers.GetCabecera(); }), errors::kNoCurrentRecord);
}

TEST_F(ClsTicketsCabeceraTest, DeleteAllSparesRowsWithoutATicket) {
  add(1, 10);
  add(2, 10);
  add(3, 20);
  run("INSERT INTO Tickets_Cabecera (Id) VALUES (4)");
  headers.DeleteAll(10);
  EXPECT_EQ(statement(), "DELETE  FROM Tickets_Cabecera WHERE (Codigo = 10)");
  EXPECT_EQ(text("SELECT Count(*) FROM Tickets_Cabecera"), "2");
}

// ---- Finding a customer

TEST_F(ClsTicketsCabeceraTest, GetDatosLooksForATelephoneOrACompanyLiveOrInHistory) {
  ClsTicketsCabecera::Busqueda search;
  search.idTel = "91";
  search.sEmpresa = "Bar";
  headers.GetDatos(search);
  search.bHistor = true;
  headers.GetDatos(search);
  search.index = 1;
  headers.GetDatos(search);
  search.index = 2;
  headers.GetDatos(search);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kDatos + "Tickets_Cabecera WHERE  Telefono =  '91'",
                          kDatos + "HTickets_Cabecera WHERE  Telefono =  '91'",
                          kDatos + "HTickets_Cabecera WHERE  Razon_Social = 'Bar' ",
                          kDatos + "HTickets_Cabecera"));
}

TEST_F(ClsTicketsCabeceraTest, AnUnknownTelephoneMakesTheNameNoAndLeavesTheRest) {
  ClsTicketsCabecera::Busqueda search;
  search.idTel = "91";
  search.sNombre = "Ana";
  search.sEmpresa = "Bar";
  headers.GetDatos(search);
  EXPECT_EQ(search.sNombre, "no");
  EXPECT_EQ(search.idTel, "91");
  EXPECT_EQ(search.sEmpresa, "Bar");
}

TEST_F(ClsTicketsCabeceraTest, OfTwoHeadersWithOneTelephoneTheLastOneHolds) {
  add(1, 10, "Telefono = '91', Nombre = 'Ana', NIF = '1'");
  add(2, 20, "Telefono = '91', Nombre = 'Eva', Provincia = 'Madrid'");
  ClsTicketsCabecera::Busqueda search;
  search.idTel = "91";
  search.sNif = "queda";
  headers.GetDatos(search);
  EXPECT_EQ(search.sNombre, "Eva");
  EXPECT_EQ(search.sProvincia, "Madrid");
  EXPECT_EQ(search.sNif, "queda") << "null there, whatever the row before has";
}

TEST_F(ClsTicketsCabeceraTest, ACompanyGivesItsTelephone) {
  add(1, 10, "Telefono = '91', Razon_Social = 'Bar'");
  ClsTicketsCabecera::Busqueda search;
  search.sEmpresa = "Bar";
  search.index = 1;
  headers.GetDatos(search);
  EXPECT_EQ(search.idTel, "91");
}

// ---- Rows

TEST_F(ClsTicketsCabeceraTest, NuevoCodigoIsTheGreatestIdPlusOne) {
  EXPECT_EQ(shown(headers.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Tickets_Cabecera");
  add(123456, 1);
  EXPECT_EQ(shown(headers.NuevoCodigo()), "123457");
}

TEST_F(ClsTicketsCabeceraTest, AddNewGivesAKeyOfAnyLengthAndOnlyWhenAsked) {
  add(123456, 1);
  headers.IniciaRs();
  headers.AddNew(true);
  EXPECT_EQ(field("Id"), "123457");
  headers.Cancel();
  shop.statements();
  headers.AddNew();
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_NE(field("Id"), "123457");
}

TEST_F(ClsTicketsCabeceraTest, AddNewReadsTheNextKeyOnTheClasssConnection) {
  headers.IniciaRs();
  headers.CnnBeginTrans();
  headers.Insertar({.vId = 40, .vNum = 1, .objCn = headers.GetConnection()});
  headers.AddNew(true);
  EXPECT_EQ(field("Id"), "41") << "of a row that nobody else sees yet";
  headers.Cancel();
  headers.CnnRollbackTrans();
}

TEST_F(ClsTicketsCabeceraTest, UpdateFillsTheTelephone) {
  headers.IniciaRs({}, "ninguno");
  headers.AddNew(true);
  rows().Field("Código").Value(10);
  rows().Field("Teléfono").Value("91");
  headers.Update();
  EXPECT_EQ(text("SELECT Telefono FROM Tickets_Cabecera WHERE Codigo = 10"), "91");
}

// The next key is above the greatest already, and one more is added: the gap is to stay.
TEST_F(ClsTicketsCabeceraTest, UpdateIdWithAGreatestIdOfTenGivesTwelve) {
  add(10, 1);
  headers.IniciaRs({}, "ninguno");
  headers.AddNew();
  rows().Field("Nombre").Value("Ana");
  shop.statements();
  headers.UpdateId(77);
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Tickets_Cabecera");
  EXPECT_EQ(field("Id") + " " + field("Código"), "12 77");
  EXPECT_EQ(text("SELECT Count(*) FROM Tickets_Cabecera"), "1") << "not stored yet";
  headers.Update();
  EXPECT_EQ(text("SELECT Nombre FROM Tickets_Cabecera WHERE Id = 12"), "Ana");
}

TEST_F(ClsTicketsCabeceraTest, UpdateIdPostsTheRowIntoTheBatch) {
  headers.IniciaRs({}, "ninguno");
  headers.AddNew();
  headers.UpdateId(77);
  EXPECT_EQ(rows().EditMode(), EditMode::kNone);
  headers.Update();
  EXPECT_EQ(text("SELECT Id FROM Tickets_Cabecera WHERE Codigo = 77"), "2");
}

TEST_F(ClsTicketsCabeceraTest, UpdateIdWithoutRowsDoesNothing) {
  headers.IniciaRs({}, "ninguno");
  shop.statements();
  headers.UpdateId(77);
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(ClsTicketsCabeceraTest, TheRowsAreWrittenAsAPageAndAsText) {
  add(1, 10, "Nombre = 'Ana'");
  headers.IniciaRs();
  headers.ToHtml();
  headers.ToTxt();
  const auto bytesOf = [&](const std::string& name) {
    std::ifstream in(shop.installation().reportFolder() + "/" + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  EXPECT_THAT(bytesOf("Tickets_Cabecera.htm"), HasSubstr("Ana"));
  EXPECT_THAT(bytesOf("Tickets_Cabecera.txt"), HasSubstr("Nombre: Ana\r\n"));
  EXPECT_FALSE(headers.DataMember("Primary")->Eof()) << "a clone was walked";
}

}  // namespace
}  // namespace tavelor
