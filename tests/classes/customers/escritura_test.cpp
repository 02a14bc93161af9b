// SPDX-License-Identifier: MIT
// ClsClientes: writes of one customer, and paths, files and lists.
#include <filesystem>
#include <fstream>

#include "tavelor/frame/component.hpp"
#include "tests/classes/customers/clientes.hpp"
#include "tests/services/faults.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::corpus;
using test::errorOf;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;

class ClsClientesEscrituraTest : public testing::Test, protected test::CustomerShop {
 protected:
  explicit ClsClientesEscrituraTest(const Settings& settings = test::fastSettings())
      : CustomerShop(settings) {}

  static ClsClientes::Alta whole() {
    return {.vId = "00012",
            .sNombre = "Clínica Sol",
            .sRazonSocial = "Clínica Sol, S.L.",
            .sNif = "B12345679",
            .sdir = "Calle Mayor, 1",
            .sCp = "28001",
            .sPob = "Madrid",
            .sProv = "Madrid",
            .stel = "910000000",
            .sMov = "600000000",
            .sEmail = "sol@example.org",
            .seMailDoc = "doc@example.org",
            .bActivo = true,
            .dDescuento = 12.5,
            .sTarifa = "A",
            .sSerie = "A",
            .sConcepto = "Varios",
            .stpcli = "Nuevo",
            .sLista = "PRC",
            .dFecha = {},
            .objCn = {},
            .sExternalId = "00"};
  }
  static void saveAs(const std::string& path, std::string_view statement) {
    RecordsetPtr rows;
    ConnectionPtr connection;
    DataSession().OpenRecordset(selector::kMain, Statement::trusted(statement), rows, connection);
    rows->Save(path);
  }
};

// ---- Insertar

TEST_F(ClsClientesEscrituraTest, ANewCustomerIsWrittenToTheLetter) {
  EXPECT_THAT(traceOf([&] { customers.Insertar(whole()); }), ElementsAre(corpus("Insertar")));
  EXPECT_EQ(column("Razon_Social"), "Clínica Sol, S.L.");
  EXPECT_EQ(column("Activo"), "-1");
  EXPECT_EQ(column("Descuento"), "12,5");
  EXPECT_EQ(column("Fecha"), "05/03/2026");
  EXPECT_EQ(column("ExternalID"), "00");
}

TEST_F(ClsClientesEscrituraTest, AnEmptyListBecomesTheUsualOneForTheCallerToo) {
  ClsClientes::Alta alta;
  alta.vId = "00013";
  alta.sTarifa = "A";
  alta.sSerie = "A";
  EXPECT_THAT(traceOf([&] { customers.Insertar(alta); }),
              ElementsAre(corpus("Insertar / inactive, empty texts")));
  EXPECT_EQ(*alta.sLista, "PRC");
  EXPECT_EQ(column("Lista", "00013"), "PRC");
}

TEST_F(ClsClientesEscrituraTest, TheDateIsTodayWhateverIsGiven) {
  ClsClientes::Alta alta = whole();
  for (const Variant& given : {Variant(Date::of(1999, 12, 31)), Variant("no date"), Variant()}) {
    shop.run("DELETE FROM Clientes");
    alta.dFecha = given;
    customers.Insertar(alta);
    EXPECT_EQ(column("Fecha"), "05/03/2026");
  }
}

TEST_F(ClsClientesEscrituraTest, ByNameTheExternalIdentifierStandsBehindTheConnection) {
  std::vector<Variant> arguments = {"00012", "",   "", "",  "",  "", "", "", "", "", "",
                                    "",      true, 0,  "A", "A", "", "", "", {}, {}, "EXT-7"};
  ClsClientes::component().call(customers, "Insertar", arguments);
  EXPECT_EQ(column("ExternalID"), "EXT-7");
  EXPECT_EQ(arguments[18], Variant("PRC"));
}

TEST_F(ClsClientesEscrituraTest, AnApostropheBreaksTheStatementAndADoubledOneIsOne) {
  ClsClientes::Alta alta = whole();
  alta.sRazonSocial = "L'Hospital, S.L.";
  EXPECT_EQ(errorOf([&] { customers.Insertar(alta); }), errors::kSyntax);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes"), "0");
  alta.sRazonSocial = "L''Hospital, S.L.";
  customers.Insertar(alta);
  EXPECT_EQ(column("Razon_Social"), "L'Hospital, S.L.");
}

TEST_F(ClsClientesEscrituraTest, ACodeThatIsThereIsRefused) {
  customers.Insertar(whole());
  EXPECT_EQ(errorOf([&] { customers.Insertar(whole()); }), errors::kIntegrityViolation);
}

TEST_F(ClsClientesEscrituraTest, AnEmptyConnectionComesBackFilled) {
  ClsClientes::Alta alta = whole();
  customers.Insertar(alta);
  ASSERT_NE(*alta.objCn, nullptr);
  const ConnectionPtr filled = *alta.objCn;
  filled->BeginTrans();
  alta.sNombre = "Luna";
  customers.Actualizar(alta);
  EXPECT_EQ(*alta.objCn, filled);
  filled->RollbackTrans();
  EXPECT_EQ(column("Nombre"), "Clínica Sol");
}

class ClsClientesDecimalPointTest : public ClsClientesEscrituraTest {
 protected:
  ClsClientesDecimalPointTest() : ClsClientesEscrituraTest(test::customerSettings("neutral")) {}
};

TEST_F(ClsClientesDecimalPointTest, TheDiscountIsPrintedAndReadByTheLocale) {
  EXPECT_THAT(traceOf([&] { customers.Insertar(whole()); }).front(),
              testing::HasSubstr("'-1', '12.5', 'A'"));
  EXPECT_EQ(shop.value("SELECT Descuento FROM Clientes"), Variant(12.5));
}

TEST_F(ClsClientesEscrituraTest, AValueWiderThanItsColumnIsRefusedWhole) {
  ClsClientes::Alta alta = whole();
  alta.sNif = std::string(300, '9');
  EXPECT_NE(errorOf([&] { customers.Insertar(alta); }), 0);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes"), "0");
}

// ---- Actualizar and the small ones

TEST_F(ClsClientesEscrituraTest, RewritingEndsWithTheSeries) {
  add("00012", "Concepto = 'was', Lista = 'TDS', ExternalID = 'x'");
  EXPECT_THAT(traceOf([&] { customers.Actualizar(whole()); }), ElementsAre(corpus("Actualizar")));
  EXPECT_EQ(column("Nombre"), "Clínica Sol");
  EXPECT_EQ(column("Serie"), "A");
  EXPECT_EQ(column("Concepto"), "was");
  EXPECT_EQ(column("Lista"), "TDS");
  EXPECT_EQ(column("ExternalID"), "x");
}

TEST_F(ClsClientesEscrituraTest, RewritingNobodyIsPassedOver) {
  customers.Actualizar(whole());
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes"), "0");
}

TEST_F(ClsClientesEscrituraTest, TariffAndExternalIdentifierAreOneStatementEach) {
  add("00012");
  EXPECT_THAT(traceOf([&] { customers.CambiarTarifa("00012", "B"); }),
              ElementsAre(corpus("CambiarTarifa")));
  EXPECT_THAT(traceOf([&] { customers.ActualizarExternalId("00012", "EXT-7"); }),
              ElementsAre(corpus("ActualizarExternalId")));
  EXPECT_EQ(column("Tarifa"), "B");
  EXPECT_EQ(column("ExternalID"), "EXT-7");
}

TEST_F(ClsClientesEscrituraTest, TakingOutOfUseLeavesTheDayOfReturnAndBringingBackSetsIt) {
  add("00012", "Fecha_re = #01/02/2020#");
  EXPECT_THAT(traceOf([&] { customers.CambiarEstadoCliente("00012", 0); }),
              ElementsAre(corpus("CambiarEstadoCliente / 0")));
  EXPECT_EQ(column("Activo"), "0");
  EXPECT_EQ(column("Fecha_re"), "02/01/2020");
  EXPECT_THAT(traceOf([&] { customers.CambiarEstadoCliente("00012", 1); }),
              ElementsAre(corpus("CambiarEstadoCliente / 1")));
  EXPECT_EQ(column("Activo"), "1");
  EXPECT_EQ(column("Fecha_re"), "05/03/2026");
  EXPECT_THAT(traceOf([&] { customers.CambiarEstadoCliente("00012", -1); }),
              ElementsAre(corpus("CambiarEstadoCliente / -1")));
  EXPECT_EQ(column("Activo"), "-1");
}

TEST_F(ClsClientesEscrituraTest, AnyOtherStateIsRefusedByTheDatabase) {
  add("00012");
  for (const double state : {2.0, 0.5, -2.0}) {
    EXPECT_EQ(errorOf([&] { customers.CambiarEstadoCliente("00012", state); }), errors::kSyntax);
  }
  EXPECT_EQ(column("Activo"), "-1");
}

// ---- Paths and files

TEST_F(ClsClientesEscrituraTest, PathsLeadIntoTheirFolders) {
  std::string path = "clientes.xls";
  customers.GetExportPath(path);
  EXPECT_THAT(path, EndsWith("/export/clientes.xls"));
  path = "contrato.doc";
  customers.GetDocPath(path);
  EXPECT_THAT(path, EndsWith("/doc/contrato.doc"));
  path = "Clientes.rpt";
  customers.GetRptPath(path);
  EXPECT_THAT(path, EndsWith("/rpt/Clientes.rpt"));
  EXPECT_THAT(customers.GetTxtFile(), EndsWith("/txt/Clientes.txt"));
  EXPECT_THAT(customers.GetTxtFile_email(), EndsWith("/email/Clientes_e.txt"));
}

TEST_F(ClsClientesEscrituraTest, ReportsMayReadTheHistoricDatabase) {
  TAVELOR_ONLY_IN_FILES("it names the database file");
  std::string kind, source, catalogue, user, password;
  customers.GetConnectionStrToRpt(kind, source, catalogue, user, password);
  EXPECT_THAT(source, EndsWith("/main.db"));
  customers.GetConnectionStrToRpt(kind, source, catalogue, user, password, true);
  EXPECT_THAT(source, EndsWith("/historic.db"));
  EXPECT_EQ(customers.GetConnectionStr(), "");
}

TEST_F(ClsClientesEscrituraTest, CustomersGoOutAsXmlAndComeBackWithTheirColumns) {
  add("1", "Nombre = 'Añil & <Sol>', Riesgo = 12.5, Fecha = #03/05/2026#, Aviso = True");
  add("2", "Nombre = Null");
  const std::string path = shop.installation().folder() + "/clientes.xml";
  EXPECT_THAT(traceOf([&] { customers.Create_xml_Clientes(path); }),
              ElementsAre(corpus("Create_xml_Clientes")));
  const RecordsetPtr rows = customers.IniciaXML(path);
  EXPECT_EQ(customers.DataMember("Primary"), rows);
  EXPECT_THAT(customers.DataMembers(), ElementsAre("Primary"));
  ASSERT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(rows->Field("Codigo").Value(), Variant("1"));
  EXPECT_EQ(rows->Field("Nombre").Value(), Variant("Añil & <Sol>"));
  EXPECT_EQ(rows->Field("Riesgo").Value(), Variant(12.5));
  EXPECT_EQ(rows->Field("Fecha").Value(), Variant(Date::of(2026, 3, 5)));
  EXPECT_EQ(rows->Field("Aviso").Value(), Variant(true));
  rows->MoveNext();
  EXPECT_TRUE(rows->Field("Nombre").Value().isNull());
}

TEST_F(ClsClientesEscrituraTest, WithoutCustomersNoFileIsWritten) {
  const std::string path = shop.installation().folder() + "/clientes.xml";
  customers.Create_xml_Clientes(path);
  EXPECT_FALSE(std::filesystem::exists(path));
  customers.IniciaRs("todos");
  const auto rows = customers.DataMember("Primary");
  EXPECT_EQ(errorOf([&] { customers.IniciaXML(path); }), errors::kFileNotFound);
  EXPECT_EQ(customers.DataMember("Primary"), rows);
}

TEST_F(ClsClientesEscrituraTest, ATruncatedFileIsRefusedAndTheOldRowsStay) {
  add("1");
  const std::string path = shop.installation().folder() + "/clientes.xml";
  customers.Create_xml_Clientes(path);
  std::filesystem::resize_file(path, std::filesystem::file_size(path) / 2);
  customers.IniciaRs("todos");
  const auto rows = customers.DataMember("Primary");
  EXPECT_EQ(errorOf([&] { customers.IniciaXML(path); }), errors::kInvalidArgument);
  EXPECT_EQ(customers.DataMember("Primary"), rows);
  EXPECT_EQ(rows->RecordCount(), 1);
}

TEST_F(ClsClientesEscrituraTest, RowsOfAnotherClassAreRefusedAndTheOldOnesStay) {
  add("1");
  shop.run("INSERT INTO Bancos (Codigo, Banco) VALUES ('001', 'Caja Rural')");
  const std::string path = shop.installation().folder() + "/bancos.xml";
  saveAs(path, "SELECT * FROM Bancos");
  customers.IniciaRs("todos");
  const auto rows = customers.DataMember("Primary");
  const auto error = test::raisedBy([&] { customers.IniciaXML(path); });
  EXPECT_EQ(error.number(), errors::kInvalidArgument);
  EXPECT_THAT(error.description(), HasSubstr("bancos.xml holds rows of Bancos, not of Clientes."));
  EXPECT_EQ(customers.DataMember("Primary"), rows);
}

TEST_F(ClsClientesEscrituraTest, SomeColumnsOfACustomerAreRowsOfCustomers) {
  add("1", "Nombre = 'Sol'");
  const std::string path = shop.installation().folder() + "/some.xml";
  saveAs(path, "SELECT 1 + 1 AS Dos, Clientes.Nombre AS Quién FROM Clientes");
  EXPECT_EQ(customers.IniciaXML(path)->Field("Quién").Value(), Variant("Sol"));
}

// Another program need not tell the tables of its fields.
TEST_F(ClsClientesEscrituraTest, FieldsWithoutATableAreTakenAsTheyAre) {
  const std::string path = shop.installation().folder() + "/foreign.xml";
  std::ofstream(path)
      << "<xml xmlns:s='s' xmlns:dt='d' xmlns:rs='r' xmlns:z='z'><s:Schema "
         "id='RowsetSchema'><s:ElementType name='row'><s:AttributeType name='Talla'>"
         "<s:datatype dt:type='string'/></s:AttributeType></s:ElementType>"
         "</s:Schema><rs:data><z:row Talla='x'/></rs:data></xml>";
  EXPECT_EQ(customers.IniciaXML(path)->Field("Talla").Value(), Variant("x"));
}

TEST_F(ClsClientesEscrituraTest, TheInstallationsOwnFilesAreNotOverwritten) {
  TAVELOR_ONLY_IN_FILES("a server has no files of the installation");
  add("1");
  const std::string folder = shop.installation().folder();
  for (const char* file : {"main.db", "documents.db", "documents.db-wal", "registry.db",
                           "main.db-queue", "tavelor.xml", "rpt/../main.db"}) {
    const auto error = test::raisedBy([&] { customers.Create_xml_Clientes(folder + "/" + file); });
    EXPECT_EQ(error.number(), errors::kPathAccess) << file;
    EXPECT_THAT(error.description(), HasSubstr("is the installation's own file.")) << file;
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Clientes"), "1");
}

// ---- Lists

TEST_F(ClsClientesEscrituraTest, ListsOfCodesInUseAndOfThoseBilledToOne) {
  EXPECT_THAT(customers.ObtenerColActivos(), IsEmpty());
  add("1", "codigo_fac = '9'");
  add("2", "Activo = 0, codigo_fac = '9'");
  add("3");
  EXPECT_THAT(traceOf([&] {
                EXPECT_EQ(customers.ObtenerColActivos(), (std::vector<Variant>{"1", "3"}));
              }),
              ElementsAre(corpus("ObtenerColActivos")));
  EXPECT_EQ(customers.ObtenerColAsociados("9"), std::vector<Variant>{"1"});
  EXPECT_THAT(traceOf([&] { EXPECT_THAT(customers.ObtenerColAsociados("00012"), IsEmpty()); }),
              ElementsAre(corpus("ObtenerColAsociados")));
}

TEST_F(ClsClientesEscrituraTest, CentresAreListedOnceWithAllBehindThem) {
  add("1", "Centro = Null");
  add("2", "Centro = ''");
  EXPECT_THAT(traceOf([&] { EXPECT_THAT(customers.ObtenerColCentrosProd(), IsEmpty()); }),
              ElementsAre(corpus("ObtenerColCentrosProd")));
  add("3", "Centro = 'Norte'");
  add("4", "Centro = 'Norte'");
  EXPECT_EQ(customers.ObtenerColCentrosProd(), (std::vector<Variant>{"Norte", "TODOS"}));
}

}  // namespace
}  // namespace tavelor
