// SPDX-License-Identifier: MIT
// ClsTickets: modes, the current row, numbers and connections.
#include "tests/classes/sales/tickets.hpp"

#include <algorithm>

#include "tavelor/frame/component.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

const std::string kLista =
    "SELECT Numero AS Ticket, Serie, Fecha, Codigo AS Cliente, Razon_Social AS Empresa , Tarifa, "
    "Almacen AS Almacén, Referencia, Transportista, Divisa , Valor_Divisa AS Valor, Total_Divisa, "
    "Forma_Pago AS Pago , Descuento, Descuento_PP, Base, Gastos AS Portes, Impuesto , "
    "Importe_Impuestos, Recargo, Importe_recargo, IRPF , Importe_IRPF, Total, Estado, Doc_E, "
    "Facturado , Doc_F,Impreso , CTA_Contable, CTA_Contrapartida, Concepto , Documento_P, "
    "Entrega, Cambio, Pagado, Caja, Empleado, Impuesto_Incluido , Contabilizado, Cierre FROM "
    "Tickets";

class ClsTicketsTest : public testing::Test, protected test::TicketShop {
 protected:
  /// Numbers that a mode shows.
  std::vector<std::string> numbers(const std::string& word, const Variant& id = {}) {
    tickets.IniciaRs(word, id);
    return firstColumn(tickets);
  }
};

// ---- The component

TEST(ClsTickets, TheSlotsOfItsOwnMembersStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsTickets::component().members()) names.push_back(slot.name);
  const auto tail = std::find(names.begin(), names.end(), "EditingRecord");
  EXPECT_THAT(
      std::vector(names.begin(), tail),
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "bEsPedido", "sQAlmacen", "bEstaFacturado", "iQNumero",
                  "iQDocumento", "iQDocumentoF", "dQTotal", "dQCambio", "dQEntrega", "sQFpago",
                  "sQReferencia", "ActualizarEuros", "GetMinFecha", "SumColLinTotalFpagoTickets",
                  "ObtenerCol", "ObtenerColCredito", "TicketsPendientes", "ObtenerColVentaContado",
                  "VentasTotal", "VentasTotalContado", "VentasCredito", "VentasContado",
                  "VentasEntregas", "Mover_De_Historicos", "Mover_A_Historicos", "CerrarTicket",
                  "ConvertirSerie", "FacturarDocumento", "CancelarFacturacion", "CodigoLibre",
                  "GetAlmacen", "GetState", "GetIncTax", "IniciaConnection", "SetConnection",
                  "CnnClose", "Insertar", "Obtener", "IniciaRs", "NuevoCodigo", "GetNumerador",
                  "SetNumerador", "UpdateNumerador", "SeguridadPermiso"));
  const auto own = std::find(names.begin(), names.end(), "ToHtmlGrid") + 1;
  EXPECT_THAT(std::vector(own, names.end()),
              ElementsAre("bEsIvaIncluido", "UpdateIncTax", "UpdateState", "OpenLog", "CloseLog",
                          "SaveLog", "GetTxtFile", "GetTxtFileDisp", "GetTxtFileDraw"));
}

TEST(ClsTickets, ADocumentTakesItsParametersInOrder) {
  std::vector<std::string> names;
  for (const Parameter& each : ClsTickets::component().member("Insertar").parameters) {
    names.push_back(each.name);
  }
  EXPECT_THAT(names,
              ElementsAre("vId", "dtFecha", "sSerie", "sCod", "sEmpresa", "sTarifa", "sAlmacen",
                          "sRef", "sTransportista", "sDivisa", "dCambio", "dTotaldivisa", "sFPago",
                          "dDto", "dDtoPp", "dBase", "dPortes", "iImpuesto", "dTotal", "iEstado",
                          "vDocE", "dImpImp", "bRecargo", "dImpRec", "dIrpf", "dImpIrpf",
                          "sCtaContable", "sCtaContrapartida", "sConcepto", "sTipoFactura", "sCaja",
                          "sEmpleado", "bIncTax", "objCn"));
  EXPECT_THAT(ClsTickets::component().member("Obtener").parameters, SizeIs(32));
  EXPECT_EQ(ClsTickets::component().member("NuevoCodigo").signature(),
            "NuevoCodigo([serie As String], [inout objCn As Connection]) As Variant");
}

TEST_F(ClsTicketsTest, TheHistoricDatabaseIsReportedWhenAskedFor) {
  TAVELOR_ONLY_IN_FILES("it names the database file");
  std::string kind, source, catalog, user, password;
  tickets.GetConnectionStrToRpt(kind, source, catalog, user, password);
  EXPECT_EQ(source, shop.installation().databaseFile(selector::kDocuments));
  tickets.GetConnectionStrToRpt(kind, source, catalog, user, password, true);
  EXPECT_EQ(source, shop.installation().databaseFile(selector::kHistoric));
}

// ---- Modes

TEST_F(ClsTicketsTest, EachWordHasItsStatement) {
  struct Case {
    std::string word, statement;
  };
  const std::vector<Case> cases = {
      {"vista rapida", kLista},
      {"caja", kLista + " WHERE Caja = '01'"},
      {"cajapendientes", kLista + " WHERE ( Estado < 2) AND (Caja = '01')"},
      {"hcaja",
       "SELECT Numero AS Ticket, Serie, Fecha, Codigo AS Cliente, Razon_Social AS Empresa , "
       "Tarifa, Almacen AS Almacén, Referencia, Transportista, Divisa , Valor_Divisa AS Cambio, "
       "Total_Divisa, Forma_Pago AS Pago , Descuento, Descuento_PP, Base, Gastos AS Portes, "
       "Impuesto , Importe_Impuestos, Recargo, Importe_recargo, IRPF , Importe_IRPF, Total, "
       "Estado, Doc_E, Facturado , Doc_F,Impreso , CTA_Contable, CTA_Contrapartida, Concepto , "
       "Documento_P, Entrega, Cambio as Cambio_Efectivo, Pagado, Caja, Empleado, "
       "Impuesto_Incluido FROM HTickets WHERE Caja = '01'"},
      {"seleccion", kLista + " WHERE Numero = 01"},
      {"now", kLista + " WHERE ((Fecha=46086) AND (Caja='01'));"},
      {"pendientes",
       "SELECT Numero AS Ticket, Serie,Entrega as Entregado , Total as Importe , Fecha, Codigo "
       "AS Cliente, Razon_Social AS Empresa ,Forma_Pago AS Pago ,Caja, Empleado FROM Tickets "
       "WHERE(( Estado < 2) AND (Codigo='01'));"},
      {"hpendientes",
       "SELECT Entrega as Entregado , Total as Importe , Numero AS Ticket, Serie, Fecha, Codigo "
       "AS Cliente, Razon_Social AS Empresa ,Forma_Pago AS Pago ,Caja, Empleado FROM HTickets "
       "WHERE(( Estado < 2) AND (Codigo='01'));"},
      {"deeliminardocumento", kLista + "  Where ( Documento_P =  '01')"},
      {"deeliminaralmacen", kLista + "  Where ( Almacen =  '01')"},
      {"ticketscierre",
       "SELECT Numero AS Ticket, Serie, Fecha, Codigo AS Cliente, Razon_Social AS Empresa , "
       "Forma_Pago AS Pago, Referencia , Entrega as Entregado , Total as Importe, Cambio, "
       "Facturado, Caja, Empleado FROM HTickets WHERE ((Cierre=01))"},
      {"articulos",
       "SELECT HTickets.Fecha, HTickets_Lineas.Codigo, HTickets_Lineas.Descripcion, "
       "HTickets_Lineas.Cantidad FROM HTickets INNER JOIN HTickets_Lineas ON HTickets.Numero = "
       "HTickets_Lineas.Numero WHERE (((HTickets.Codigo)='01'));"},
      {"vistarapidaopen", kLista + " WHERE(( Estado < 2));"},
      {"vistarapidaclose", kLista + " WHERE(( Estado = 2));"},
      {"vistarapidafact", kLista + " WHERE(( Facturado > 2) AND( Estado = 2));"},
  };
  for (const Case& each : cases) {
    std::string word = each.word;
    tickets.IniciaRs(word, "01");
    EXPECT_EQ(word, each.word);
    EXPECT_THAT(shop.statements(), ElementsAre(each.statement)) << each.word;
  }
}

TEST_F(ClsTicketsTest, AnyOtherWordIsAllTicketsAndBecomesTodos) {
  for (const char* other : {"", "registro", "Caja", "VISTA RAPIDA"}) {
    std::string word = other;
    tickets.IniciaRs(word, "01");
    EXPECT_EQ(word, "todos");
    EXPECT_THAT(shop.statements(), ElementsAre(kLista));
  }
}

TEST_F(ClsTicketsTest, ATillShowsItsTicketsAndThoseThatArePending) {
  add(1, "Estado = 0");
  add(2, "Estado = 1");
  add(3, "Estado = 2");
  add(4, "Estado = 0, Caja = '02'");
  EXPECT_THAT(numbers("caja", "01"), ElementsAre("1", "2", "3"));
  EXPECT_THAT(numbers("cajapendientes", "01"), ElementsAre("1", "2"));
  EXPECT_THAT(numbers("vistarapidaopen"), ElementsAre("1", "2", "4"));
  EXPECT_THAT(numbers("vistarapidaclose"), ElementsAre("3"));
  EXPECT_THAT(numbers("pendientes", "00012"), ElementsAre("1", "2", "4"));
}

TEST_F(ClsTicketsTest, NowShowsTheTicketsOfTodayAtOneTill) {
  add(1);
  add(2, "Fecha = #03/04/2026#");
  add(3, "Caja = '02'");
  EXPECT_THAT(numbers("now", "01"), ElementsAre("1"));
}

TEST_F(ClsTicketsTest, AClosingAndATillShowTheirHistory) {
  add(1, "Cierre = 5");
  addToHistory(2, "Cierre = 5, Cambio = 3, Valor_Divisa = 1.5");
  addToHistory(3, "Cierre = 6");
  EXPECT_THAT(numbers("ticketscierre", 5), ElementsAre("2"));
  EXPECT_THAT(numbers("hcaja", "01"), ElementsAre("2", "3"));
  tickets.MoveFirst();
  EXPECT_EQ(field(tickets, "Cambio"), "1,5") << "the rate of the currency";
  EXPECT_EQ(field(tickets, "Cambio_Efectivo"), "3");
}

TEST_F(ClsTicketsTest, ArticulosShowsWhatACustomerBought) {
  addToHistory(1);
  run("INSERT INTO HTickets_Lineas (Numero, Codigo, Descripcion, Cantidad) VALUES (1, 'A1', "
      "'Pan', 2)");
  tickets.IniciaRs("articulos", "00012");
  EXPECT_EQ(field(tickets, "Descripcion"), "Pan");
  EXPECT_EQ(field(tickets, "Cantidad"), "2");
}

// Kinds 1 and 2 are notes and orders that this list leaves out.
TEST_F(ClsTicketsTest, VistarapidafactLeavesKindsOneAndTwoOut) {
  for (const int kind : {1, 2, 3, 10}) {
    add(kind, "Estado = 2, Facturado = " + std::to_string(kind));
  }
  add(11, "Estado = 1, Facturado = 3");
  EXPECT_THAT(numbers("vistarapidafact"), ElementsAre("3", "10"));
}

TEST_F(ClsTicketsTest, SeleccionWithoutANumberIsRefused) {
  EXPECT_EQ(errorOf([&] { tickets.IniciaRs("seleccion"); }), errors::kSyntax);
}

TEST_F(ClsTicketsTest, AQuoteInTheTillIsRefused) {
  EXPECT_EQ(errorOf([&] { tickets.IniciaRs("caja", "O'Hara"); }), errors::kSyntax);
  EXPECT_EQ(errorOf([&] { tickets.IniciaRs("now", "x' or '1'='1"); }), errors::kSyntax);
}

TEST_F(ClsTicketsTest, ATicketIsFoundByItsWholeNumber) {
  add(1);
  add(12);
  tickets.IniciaRs();
  tickets.FindRecord("12");
  EXPECT_EQ(tickets.iQNumero(), 12);
}

// ---- The current row

TEST_F(ClsTicketsTest, TheRowsColumnsAreRead) {
  add(7,
      "Almacen = '002', Doc_E = 4, Doc_F = 9, Facturado = 3, Total = 12.5, Cambio = 7.5, "
      "Entrega = 20, Forma_Pago = 'CON', Referencia = 'R1', Impuesto_Incluido = True");
  tickets.IniciaRs();
  EXPECT_TRUE(tickets.bEsPedido());
  EXPECT_EQ(tickets.sQAlmacen(), "002");
  EXPECT_TRUE(tickets.bEstaFacturado());
  EXPECT_EQ(tickets.iQNumero(), 7);
  EXPECT_EQ(tickets.iQDocumento(), 4);
  EXPECT_EQ(tickets.iQDocumentoF(), 9);
  EXPECT_EQ(tickets.dQTotal(), 12.5);
  EXPECT_EQ(tickets.dQCambio(), 7.5);
  EXPECT_EQ(tickets.dQEntrega(), 20);
  EXPECT_EQ(tickets.sQFpago(), "CON");
  EXPECT_EQ(tickets.sQReferencia(), "R1");
  EXPECT_TRUE(tickets.bEsIvaIncluido());
}

TEST_F(ClsTicketsTest, WithoutARowTheColumnsReadAsZeroAndRaiseNothing) {
  const auto expectZeros = [](const ClsTickets& of) {
    EXPECT_FALSE(of.bEsPedido());
    EXPECT_EQ(of.sQAlmacen(), "");
    EXPECT_FALSE(of.bEstaFacturado());
    EXPECT_EQ(of.iQNumero(), 0);
    EXPECT_EQ(of.iQDocumento(), 0);
    EXPECT_EQ(of.iQDocumentoF(), 0);
    EXPECT_EQ(of.dQTotal(), 0);
    EXPECT_EQ(of.dQCambio(), 0);
    EXPECT_EQ(of.dQEntrega(), 0);
    EXPECT_EQ(of.sQFpago(), "");
    EXPECT_EQ(of.sQReferencia(), "");
    EXPECT_FALSE(of.bEsIvaIncluido());
  };
  expectZeros(ClsTickets());
  tickets.IniciaRs();
  expectZeros(tickets);
}

TEST_F(ClsTicketsTest, ANullColumnOrOneThatTheModeLacksReadsAsZero) {
  add(1, "Almacen = Null, Doc_E = Null, Total = Null");
  tickets.IniciaRs();
  EXPECT_EQ(tickets.sQAlmacen(), "");
  EXPECT_FALSE(tickets.bEsPedido());
  EXPECT_EQ(tickets.dQTotal(), 0);
  tickets.IniciaRs("pendientes", "00012");
  EXPECT_EQ(tickets.sQAlmacen(), "");
  EXPECT_EQ(tickets.iQNumero(), 1);
}

TEST_F(ClsTicketsTest, TheAmountDeliveredIsWrittenToTheRow) {
  add(1);
  tickets.IniciaRs();
  tickets.dQEntrega(20.5);
  EXPECT_EQ(tickets.dQEntrega(), 20.5);
  EXPECT_EQ(column("Entrega"), "0") << "not stored yet";
  tickets.Update();
  EXPECT_EQ(column("Entrega"), "20,5");
  EXPECT_EQ(errorOf([] { ClsTickets().dQEntrega(1); }), errors::kObjectNotSet);
}

TEST_F(ClsTicketsTest, ByNameTheAmountDeliveredIsWrittenWhenAValueIsGiven) {
  add(1, "Entrega = 3");
  tickets.IniciaRs();
  std::vector<Variant> arguments;
  EXPECT_EQ(ClsTickets::component().call(tickets, "dQEntrega", arguments), Variant(3.0));
  arguments = {"4,5"};
  EXPECT_EQ(ClsTickets::component().call(tickets, "dQEntrega", arguments), Variant(4.5));
  EXPECT_EQ(tickets.dQEntrega(), 4.5);
}

TEST_F(ClsTicketsTest, UpdateStateTellsThePaymentFromWhatWasDelivered) {
  struct Case {
    double delivered, total;
    const char *state, *paid;
  };
  add(1);
  tickets.IniciaRs();
  for (const Case& each :
       {Case{10, 10, "2", "Verdadero"}, Case{12, 10, "2", "Verdadero"}, Case{5, 10, "1", "Falso"},
        Case{0, 10, "0", "Falso"}, Case{-1, 10, "0", "Falso"}, Case{0, 0, "2", "Verdadero"},
        Case{-1, 0, "2", "Verdadero"}, Case{-5, -10, "2", "Verdadero"},
        Case{-15, -10, "0", "Falso"}}) {
    tickets.UpdateState(each.delivered, each.total);
    EXPECT_EQ(field(tickets, "Estado"), each.state) << each.delivered << " of " << each.total;
    EXPECT_EQ(field(tickets, "Pagado"), each.paid) << each.delivered << " of " << each.total;
  }
}

TEST_F(ClsTicketsTest, UpdateStateDoesNotSave) {
  add(1);
  tickets.IniciaRs();
  tickets.UpdateState(5, 10);
  EXPECT_EQ(column("Estado"), "0");
  tickets.Update();
  EXPECT_EQ(column("Estado"), "1");
}

TEST_F(ClsTicketsTest, UpdateIncTaxWritesTheFlagOfTheRow) {
  add(1);
  tickets.IniciaRs();
  tickets.UpdateIncTax(true);
  EXPECT_TRUE(tickets.bEsIvaIncluido());
  tickets.Update();
  EXPECT_EQ(tickets.GetIncTax(1), -1);
}

TEST_F(ClsTicketsTest, AddNewFillsANewTicket) {
  add(41);
  tickets.IniciaRs();
  tickets.AddNew(true);
  EXPECT_EQ(field(tickets, "Ticket"), "42");
  EXPECT_EQ(field(tickets, "Fecha"), "05/03/2026");
  for (const char* zero : {"Valor",   "Total_Divisa",    "Descuento", "Descuento_PP",
                           "Base",    "Portes",          "Impuesto",  "Importe_Impuestos",
                           "Recargo", "Importe_recargo", "IRPF",      "Importe_IRPF",
                           "Total",   "Estado",          "Entrega",   "Contabilizado",
                           "Cierre",  "Facturado",       "Doc_F",     "Doc_E"}) {
    EXPECT_EQ(field(tickets, zero), "0") << zero;
  }
  EXPECT_EQ(field(tickets, "Impreso"), "Falso");
  tickets.Update();
  EXPECT_EQ(column("Fecha", 42), "05/03/2026");
  EXPECT_EQ(column("Serie", 42), "Null") << "the caller says which";
}

class ClsTicketsNeutralTest : public testing::Test, protected test::TicketShop {
 protected:
  ClsTicketsNeutralTest() : TicketShop(test::tillSettings("neutral")) {}
};

TEST_F(ClsTicketsNeutralTest, TheShortDateOfANewTicketReadsAsTodayInThisLocaleToo) {
  tickets.IniciaRs();
  tickets.AddNew(true);
  EXPECT_EQ(field(tickets, "Fecha"), "2026-03-05");
  tickets.Update();
  EXPECT_EQ(text("SELECT Numero FROM Tickets WHERE Fecha = #03/05/2026#"), "1");
}

TEST_F(ClsTicketsNeutralTest, NowComparesWithPlainDigitsInThisLocaleToo) {
  add(1);
  std::string word = "now";
  tickets.IniciaRs(word, "01");
  EXPECT_THAT(shop.statements(), ElementsAre(kLista + " WHERE ((Fecha=46086) AND (Caja='01'));"));
  EXPECT_THAT(firstColumn(tickets), ElementsAre("1"));
}

TEST_F(ClsTicketsTest, AddNewWithoutDefaultsAddsAnEmptyRow) {
  tickets.IniciaRs();
  shop.statements();
  tickets.AddNew(false, true);
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_TRUE(tickets.EditingRecord());
  EXPECT_EQ(field(tickets, "Ticket"), field(tickets, "Fecha"));
}

TEST_F(ClsTicketsTest, UpdateWritesTheCurrentRowOnly) {
  add(1);
  add(2);
  tickets.IniciaRs();
  tickets.dQEntrega(5);
  tickets.MoveNext();
  tickets.dQEntrega(6);
  tickets.Update();
  EXPECT_EQ(column("Entrega", 1), "0");
  EXPECT_EQ(column("Entrega", 2), "6");
}

// ---- Numbers

TEST_F(ClsTicketsTest, NuevoCodigoCountsSeriesAndHistoryTogether) {
  add(10005, "Serie = 'B'");
  addToHistory(10012, "Serie = 'B'");
  add(77);
  EXPECT_EQ(shown(tickets.NuevoCodigo("B")), "10013");
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT MAX(Numero) AS Nuevo_Codigo FROM Tickets WHERE Serie = 'B'",
                          "SELECT MAX(Numero) AS Nuevo_Codigo FROM HTickets WHERE Serie = 'B'"));
  EXPECT_EQ(shown(tickets.NuevoCodigo("A")), "78");
}

// Not at the first number of the series: that one is for the repair of the counters alone.
TEST_F(ClsTicketsTest, NuevoCodigoOfASeriesWithoutTicketsIsOne) {
  EXPECT_EQ(shown(tickets.NuevoCodigo("B")), "1");
  EXPECT_EQ(shown(tickets.NuevoCodigo()), "1");
}

// The width is that of the column, eight bytes, and is looked at in history only.
TEST_F(ClsTicketsTest, NuevoCodigoGivesANumberOfHistoryAgainWhenTheNextDoesNotFit) {
  addToHistory(99999999);
  EXPECT_EQ(shown(tickets.NuevoCodigo("A")), "99999999");
  add(100000005);
  EXPECT_EQ(shown(tickets.NuevoCodigo("A")), "100000006");
}

TEST_F(ClsTicketsTest, NuevoCodigoBehindANumberTooLargeToCountOnRaisesOverflow) {
  shop.run("INSERT INTO Tickets (Numero, Serie) VALUES (1e19, 'A')", selector::kDocuments);
  EXPECT_EQ(errorOf([&] { tickets.NuevoCodigo("A"); }), errors::kOverflow);
  EXPECT_EQ(shown(tickets.NuevoCodigo("B")), "1");
}

TEST_F(ClsTicketsTest, CodigoLibreLooksAtHistoryTooAndNotAtTheSeries) {
  add(1, "Serie = 'B'");
  addToHistory(2);
  EXPECT_FALSE(tickets.CodigoLibre(1));
  shop.statements();
  EXPECT_FALSE(tickets.CodigoLibre(2));
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT Numero FROM Tickets WHERE Numero = 2",
                                             "SELECT Numero FROM HTickets WHERE Numero = 2"));
  EXPECT_TRUE(tickets.CodigoLibre(3));
}

class TicketCountersTest : public ClsTicketsTest {
 protected:
  TicketCountersTest() {
    clsNumeradores::setCurrentPeriod("2026");
    shop.run("INSERT INTO Numeradores (Codigo, Periodo) VALUES ('001', '2026')");
  }
  std::string counters() {
    return shop.text("SELECT Ticket_a FROM Numeradores") + ", " +
           shop.text("SELECT Ticket_b FROM Numeradores") + ", " +
           shop.text("SELECT Ticket_c FROM Numeradores");
  }
};

TEST_F(TicketCountersTest, TheNumbersOfTicketsAreStoredAndReadInTheCurrentPeriod) {
  double a = 5, b = 10000, c = 25000;
  tickets.SetNumerador(a, b, c);
  EXPECT_EQ(counters(), "5, 10000, 25000");
  tickets.GetNumerador(a, b, c);
  EXPECT_EQ(a, 6);
  EXPECT_EQ(b, 10001);
  EXPECT_EQ(c, 25001);
}

TEST_F(TicketCountersTest, UpdateNumeradorOnEmptyTablesWritesTheFirstNumbers) {
  tickets.UpdateNumerador();
  EXPECT_EQ(counters(), "0, 10000, 25000");
}

TEST_F(TicketCountersTest, UpdateNumeradorTakesTheGreatestOfLiveAndHistory) {
  add(12);
  addToHistory(7);
  add(10003, "Serie = 'B'");
  addToHistory(10044, "Serie = 'B'");
  addToHistory(31, "Serie = 'C'");  // below the series: what is live counts as its first number
  shop.statements();
  tickets.UpdateNumerador();
  EXPECT_EQ(counters(), "12, 10044, 25000");
  const std::vector<std::string> ran = shop.statements();
  ASSERT_GE(ran.size(), 6U);
  EXPECT_EQ(ran[0], "SELECT MAX(Numero) AS Nuevo_Codigo FROM Tickets WHERE Serie = 'A'");
  EXPECT_EQ(ran[1], "SELECT MAX(Numero) AS Nuevo_Codigo FROM HTickets WHERE Serie = 'A'");
  EXPECT_EQ(ran[5], "SELECT MAX(Numero) AS Nuevo_Codigo FROM HTickets WHERE Serie = 'C'");
}

TEST_F(TicketCountersTest, TheConnectionOfUpdateNumeradorIsForTheCounters) {
  ConnectionPtr main = DataSession().OpenConnection(selector::kMain);
  main->BeginTrans();
  tickets.UpdateNumerador(main);
  main->RollbackTrans();
  EXPECT_EQ(counters(), "Null, Null, Null");
}

// ---- Single values

TEST_F(ClsTicketsTest, SingleValuesHaveTheirStatements) {
  add(1, "Almacen = '002', Estado = 1, Impuesto_Incluido = True");
  EXPECT_EQ(tickets.GetAlmacen(1), "002");
  EXPECT_EQ(tickets.GetState(1), 1);
  EXPECT_EQ(tickets.GetIncTax(1), -1);
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Almacen FROM Tickets WHERE Numero = 1",
                          "SELECT Numero, Estado FROM Tickets WHERE Numero = 1",
                          "SELECT Numero, Impuesto_Incluido FROM Tickets WHERE Numero = 1"));
}

TEST_F(ClsTicketsTest, SingleValuesOfATicketThatIsNotThereAreTheUsualOnes) {
  EXPECT_EQ(tickets.GetAlmacen(1), "001");
  EXPECT_EQ(tickets.GetState(1), 0);
  EXPECT_EQ(tickets.GetIncTax(1), 0);
  add(1, "Almacen = Null, Estado = Null");
  EXPECT_EQ(tickets.GetAlmacen(1), "001");
  EXPECT_EQ(tickets.GetState(1), 0);
}

// ---- Connections

TEST_F(ClsTicketsTest, TheConnectionOfASaleIsTheClasssForItsTransactions) {
  tickets.SetConnection();
  const ConnectionPtr connection = tickets.GetConnection();
  ASSERT_NE(connection, nullptr);
  tickets.CnnBeginTrans();
  const ClsTickets::Documento sale = {
      .vId = 1, .dtFecha = Date::of(2026, 3, 5), .vDocE = 0, .objCn = connection};
  tickets.Insertar(sale);
  tickets.CnnRollbackTrans();
  EXPECT_EQ(count("Tickets"), "0");
  tickets.CnnBeginTrans();
  tickets.Insertar(sale);
  tickets.CnnCommitTrans();
  EXPECT_EQ(count("Tickets"), "1");
}

TEST_F(ClsTicketsTest, IniciaConnectionGivesAConnectionThatIsNotTheClasss) {
  const ConnectionPtr given = tickets.IniciaConnection();
  ASSERT_NE(given, nullptr);
  EXPECT_NE(tickets.GetConnection(), given);
  given->BeginTrans();
  given->RollbackTrans();
}

TEST_F(ClsTicketsTest, CnnCloseClosesTheClasssConnection) {
  tickets.SetConnection();
  tickets.CnnClose();
  EXPECT_EQ(errorOf([&] { tickets.CnnBeginTrans(); }), errors::kObjectClosed);
  EXPECT_EQ(errorOf([&] { tickets.CnnClose(); }), errors::kObjectClosed);
}

}  // namespace
}  // namespace tavelor
