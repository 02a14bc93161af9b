// SPDX-License-Identifier: MIT
// ClsClientes: what IniciaRs opens, word by word.
#include "tavelor/frame/component.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/session_global.hpp"
#include "tests/classes/customers/clientes.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::corpus;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;

class ClsClientesModosTest : public testing::Test, protected test::CustomerShop {
 protected:
  explicit ClsClientesModosTest(const Settings& settings = test::fastSettings())
      : CustomerShop(settings) {}

  /// The statement of a word, which stays.
  std::string statementOf(std::string word, const Variant& id = {}) {
    const std::string asked = word;
    const auto trace = traceOf([&] { customers.IniciaRs(word, id); });
    EXPECT_EQ(word, asked);
    return trace.empty() ? "" : trace.front();
  }
  /// Codes that a word shows, in order.
  std::vector<std::string> shown(std::string word, const Variant& id = {}) {
    customers.IniciaRs(word, id);
    std::vector<std::string> codes;
    const auto rows = customers.DataMember("Primary");
    for (; !rows->Eof(); rows->MoveNext()) codes.push_back(text(rows->Field(0).Value()));
    return codes;
  }
  void deliver(const std::string& customer, const std::string& day, int number) {
    shop.run("INSERT INTO Albaranes (Numero, Codigo, Fecha, Total) VALUES (" +
             std::to_string(number) + ", '" + customer + "', #" + day + "#, 10)");
  }
  void declare(const std::string& series) {
    shop.apartment().sessionGlobal().SetNamedValue(
        shop.apartment().version().sessionRoot() + "Clientes", "Serie", series);
  }
};

// ---- Statements

TEST_F(ClsClientesModosTest, EachWordHasItsStatementToTheLetter) {
  for (const char* word : {"todos",
                           "activos",
                           "vistarapidaactivos",
                           "no_activos",
                           "vistarapidanoactivos",
                           "bajas",
                           "bajas60",
                           "bajas30",
                           "factur_trim",
                           "factur_periodo",
                           "factur_no_periodo",
                           "factur_periodo_ant",
                           "factur_no_año",
                           "low",
                           "lowmes",
                           "lowtrim",
                           "lowsem",
                           "seleccion",
                           "selecciontodos",
                           "seleccion_no_aso",
                           "seleccioncombo",
                           "asociado",
                           "clsclientesdirecciones"}) {
    EXPECT_EQ(statementOf(word), corpus(std::string("IniciaRs / ") + word)) << word;
  }
}

TEST_F(ClsClientesModosTest, TheIdOfAWordIsJoinedIn) {
  EXPECT_EQ(statementOf("deeliminarbanco", "001"), corpus("IniciaRs / deeliminarbanco"));
  EXPECT_EQ(statementOf("deeliminardivisa", "Eur"), corpus("IniciaRs / deeliminardivisa"));
  EXPECT_EQ(statementOf("deeliminarformapago", "Ctd"), corpus("IniciaRs / deeliminarformapago"));
  EXPECT_EQ(statementOf("deeliminartransportista", "001"),
            corpus("IniciaRs / deeliminartransportista"));
  EXPECT_EQ(statementOf("deeliminardocumento", "Est"), corpus("IniciaRs / deeliminardocumento"));
  EXPECT_EQ(statementOf("deeliminartipofactura", "01"), corpus("IniciaRs / deeliminartipofactura"));
}

TEST_F(ClsClientesModosTest, AnUnknownWordOpensAllAndReadsTodosAfterwards) {
  for (std::string word : {"xyz", "", "registro", "Activos", "SELECCION"}) {
    const auto trace = traceOf([&] { customers.IniciaRs(word); });
    EXPECT_EQ(word, "todos");
    EXPECT_EQ(trace.front(), corpus("IniciaRs / todos"));
  }
}

TEST_F(ClsClientesModosTest, TheMixedDescriptionOfAFileDatabaseHoldsTheTradeName) {
  TAVELOR_ONLY_IN_FILES("the class tells files and servers apart");
  EXPECT_EQ(statementOf("seleccionmixta"), corpus("IniciaRs / seleccionmixta, file database"));
  EXPECT_EQ(statementOf("seleccionmixta_center", "Norte"),
            corpus("IniciaRs / seleccionmixta_center, file database"));
}

class ClsClientesModosOnServerTest : public ClsClientesModosTest {
 protected:
  ClsClientesModosOnServerTest() : ClsClientesModosTest(test::customerServer()) {}
};

TEST_F(ClsClientesModosOnServerTest, TheMixedDescriptionHoldsNoTradeName) {
  EXPECT_FALSE(customers.esDbFile());
  EXPECT_EQ(statementOf("seleccionmixta"), corpus("IniciaRs / seleccionmixta, server"));
  EXPECT_EQ(statementOf("seleccionmixta_center", "Norte"),
            corpus("IniciaRs / seleccionmixta_center, server"));
}

TEST_F(ClsClientesModosTest, TheDeclarationTakesTheSeriesOfTheSession) {
  EXPECT_EQ(statementOf("347"), corpus("IniciaRs / 347, series A"));
  for (const auto& [word, name] : {std::pair("A", "series A"),
                                   {"a", "series A"},
                                   {"B", "series B"},
                                   {"b", "series B"},
                                   {"C", "series C"},
                                   {"c", "series C"},
                                   {"R", "any other series"},
                                   {"todas", "any other series"},
                                   {"'", "any other series"}}) {
    declare(word);
    EXPECT_EQ(statementOf("347"), corpus(std::string("IniciaRs / 347, ") + name)) << word;
  }
}

// ---- Rows

TEST_F(ClsClientesModosTest, TheNegatedWordShowsWhoWasDeliveredToAllTheSame) {
  add("1");
  add("2");
  deliver("1", "02/01/2026", 1);
  EXPECT_THAT(shown("factur_no_periodo"), ElementsAre("1"));
  EXPECT_EQ(shown("factur_periodo"), shown("factur_no_periodo"));
}

TEST_F(ClsClientesModosTest, LossesAreUsableCustomersWithoutADeliveryNote) {
  for (const char* code : {"1", "2", "3", "4"}) add(code);
  add("5", "Activo = 0");
  deliver("1", "03/01/2026", 1);  // this month
  deliver("2", "01/20/2026", 2);  // two months back at most
  deliver("3", "10/01/2025", 3);  // half a year back at most
  EXPECT_THAT(shown("bajas"), ElementsAre("4"));
  EXPECT_THAT(shown("bajas60"), ElementsAre("3", "4"));
  EXPECT_THAT(shown("bajas30"), ElementsAre("2", "3", "4"));
  EXPECT_THAT(shown("lowmes"), ElementsAre("2", "3", "4"));
  EXPECT_THAT(shown("low"), ElementsAre("3", "4"));
}

TEST_F(ClsClientesModosTest, OfTheYearBeforeAndOfTheLastTwelveMonths) {
  for (const char* code : {"1", "2", "3"}) add(code);
  set("2", "Activo = 0");
  deliver("1", "12/31/2025", 1);
  deliver("2", "01/01/2025", 2);
  EXPECT_THAT(shown("factur_periodo_ant"), ElementsAre("1", "2"));
  EXPECT_THAT(shown("factur_no_año"), ElementsAre("2", "3"));
}

TEST_F(ClsClientesModosTest, MonthsAgoEndWithAShorterMonth) {
  shop.apartment().clock().fix(Date::of(2026, 5, 31));
  EXPECT_THAT(statementOf("factur_trim"), testing::HasSubstr("Between #02/28/2026# AND"));
  shop.apartment().clock().fix(Date::of(2026, 1, 31));
  EXPECT_THAT(statementOf("bajas60"), testing::HasSubstr("Between #11/30/2025# AND"));
}

TEST_F(ClsClientesModosTest, AnInvoiceTypeOfSeriesCOnlyIsNotFound) {
  add("1", "Tipo_Factura_A = '01'");
  add("2", "Tipo_Factura_B = '01'");
  add("3", "Tipo_Factura_C = '01'");
  EXPECT_THAT(shown("deeliminartipofactura", "01"), ElementsAre("1", "2"));
}

TEST_F(ClsClientesModosTest, AssociatesAreFoundByACapitalDOnly) {
  add("1", "codigo_fac = '+1'");
  add("2", "codigo_fac = 'D'");
  add("3", "codigo_fac = 'd'");
  EXPECT_THAT(shown("asociado"), ElementsAre("1", "2"));
}

TEST_F(ClsClientesModosTest, WithoutAssociatesANullOfAnInactiveCustomerComesToo) {
  add("1", "codigo_fac = ''");
  add("2", "codigo_fac = '+1'");
  add("3", "Activo = 0");
  add("4", "Activo = 0, codigo_fac = ''");
  EXPECT_THAT(shown("seleccion_no_aso"), ElementsAre("1", "3"));
}

TEST_F(ClsClientesModosTest, ANullNameLeavesTheMixedDescriptionWhole) {
  add("1", "Nombre = Null, Razon_Social = 'Sol'");
  customers.IniciaRs("seleccionmixta");
  EXPECT_EQ(text(customers.DataMember("Primary")->Field("Descripción").Value()), "1Sol");
}

TEST_F(ClsClientesModosTest, TheDeclarationShowsWhoIsAboveTheThreshold) {
  for (const char* code : {"1", "2", "3"}) add(code);
  const auto invoice = [&](int number, const std::string& customer, const std::string& series,
                           const std::string& total) {
    shop.run("INSERT INTO Facturas (Numero, Serie, Codigo, Fecha, Total) VALUES (" +
             std::to_string(number) + ", '" + series + "', '" + customer + "', #06/01/2025#, " +
             total + ")");
  };
  invoice(1, "1", "A", "3000");
  invoice(2, "2", "A", "2999");
  invoice(3, "2", "R", "1.01");
  invoice(4, "3", "B", "9000");
  EXPECT_THAT(shown("347"), ElementsAre("2"));
  EXPECT_EQ(customers.ExistenRegistros_consulta("347"), "1");
  declare("B");
  EXPECT_THAT(shown("347"), ElementsAre("3"));
  declare("todas");
  EXPECT_THAT(shown("347"), ElementsAre("2", "3"));
}

// ---- How many a mode would show

TEST_F(ClsClientesModosTest, CountsAreTextAndComeFromTheModesCondition) {
  add("1");
  add("2");
  deliver("1", "03/01/2026", 1);
  for (const char* word : {"bajas", "bajas60", "bajas30"}) {
    EXPECT_THAT(traceOf([&] { EXPECT_EQ(customers.ExistenRegistros_consulta(word), "1"); }),
                ElementsAre(corpus(std::string("ExistenRegistros_consulta / ") + word)));
  }
  EXPECT_THAT(traceOf([&] { EXPECT_EQ(customers.ExistenRegistros_consulta("347"), "0"); }),
              ElementsAre(corpus("ExistenRegistros_consulta / 347, series A")));
  EXPECT_THAT(traceOf([&] { EXPECT_EQ(customers.ExistenRegistros_consulta("low"), "2"); }),
              ElementsAre(corpus("ExistenRegistros_consulta / any other word")));
}

// ---- The frame of this class

TEST_F(ClsClientesModosTest, OneDataMemberHoweverOftenItIsOpened) {
  customers.IniciaRs("activos");
  customers.IniciaRs("todos");
  EXPECT_THAT(customers.DataMembers(), ElementsAre("Primary"));
  EXPECT_EQ(customers.eventInterface(), "__ClsClientes");
}

TEST_F(ClsClientesModosTest, ARowIsFoundByTheBeginningOfItsCode) {
  add("0001");
  add("0012");
  customers.IniciaRs("todos");
  customers.FindRecord("001");
  EXPECT_EQ(customers.DataMember("Primary")->Field("Código").Value(), Variant("0012"));
}

TEST(ClsClientesComponente, TheSlotsStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsClientes::component().members()) names.push_back(slot.name);
  names.erase(std::find(names.begin(), names.end(), "Delete"), names.end());
  EXPECT_THAT(
      names,
      ElementsAre("EsNIF", "EsNIE", "EsCIF", "LimpiarNIFCIF", "Tipo_Id_Fiscal", "LimpiarNIFCIF_v1",
                  "ValidarNIFCIF", "ObtenerBloqueo", "ExisteCli", "ExisteNif", "ExisteExternalID",
                  "ExistenCentros", "EstaDisponible", "ExistenRegistros_consulta",
                  "ExistenClientesSinCodigoPostal", "ExistenClientesSinIdFiscal", "GetRptPath",
                  "GetExportPath", "sClassName", "ObtenerRegistroActivo", "GetTxtFile",
                  "GetTxtFile_email", "GetConnection", "GetConnectionStrToRpt", "GetConnectionStr",
                  "CambiarTarifa", "CambiarEstadoCliente", "Actualizar_Rs_La_3",
                  "Actualizar_Nif_Cif", "ActualizarCabeceraFra", "ActualizarExternalId",
                  "ActualizaClientesExentosIVA", "Cancelar_report_Facturas", "Actualizar_Param_Rpt",
                  "GetSerie", "GetLista", "GetRefPortes", "GetFacturacion", "IncludeTax",
                  "PortesAlConvertir", "NoesFacturable", "esFacturable", "EsIvaDeducible",
                  "GetCodigo_fac", "GetCodigo_Banco", "GetTipoCli", "GetLenMaxDigit",
                  "esDistribuidor", "esAsociado", "esDbFile", "esActivo", "esSerie_as",
                  "esPortesNoIncl", "GetDatosCabecera", "esPersonaFisica", "GetDatosEmpresa",
                  "GetAdministrativeCentres", "GetDatosFacturar", "GetDatosBonificar", "GetDto",
                  "GetOtrosDatosFacturar", "GetAviso", "GetDatosFacturacion", "GetDtoRpt",
                  "GetIrpfSerie", "GetDtoSerie", "GetCtaTesoreria", "GetDocPath", "GetDocumentos",
                  "ObtenerClientesFacturar", "Create_xml_Clientes", "ObtenerCodigo",
                  "ObtenerColCentrosProd", "ObtenerColActivos", "ObtenerColAsociados",
                  "ObtenerMailDoc", "ObtenerMailDoc_Admin", "ObtenerRiesgo", "ObtenerRazonSocial",
                  "ObtenerCP", "ObtenerPrintPaper", "ObtenerRpt_Fac", "ObtenerRpt_Alb",
                  "ObtenerRpt_dec", "ObtenerHorario", "ObtenerTexto", "IniciaXML", "Actualizar",
                  "Insertar", "Actualizar_A_Nuevo_Registro", "IniciaRs", "NuevoCodigo",
                  "SeguridadPermiso", "CodigoLibre", "CtaLibre", "EditingRecord",
                  "AbsolutePosition", "sQBanco", "sQFormaPago", "sQMailDoc", "AddNew"));
}

}  // namespace
}  // namespace tavelor
