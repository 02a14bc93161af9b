// SPDX-License-Identifier: MIT
// ClsTickets: sums and lists of a till.
#include "tavelor/frame/component.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tests/classes/sales/tickets.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::UnorderedElementsAre;

const std::string kSpan =
    " WHERE ((Fecha Between 46082 And 46086)   AND (Serie='A') AND (Caja='01') AND "
    "(Empleado='001')";
const std::string kTotals =
    "SELECT Sum(Base) AS VentasBase, Sum(Importe_Impuestos) AS VentasImpuestos, "
    "Sum(Importe_Recargo) AS VentasRecargos, Sum(Total) AS VentasTotal   FROM Tickets";

class TicketSalesTest : public testing::Test, protected test::TicketShop {
 protected:
  explicit TicketSalesTest(const Settings& settings = test::fastSettings())
      : TicketShop(settings) {}

  const Date first = Date::of(2026, 3, 1);
  const Date last = Date::of(2026, 3, 5);

  std::vector<std::string> cash(bool settled) {
    return shown(tickets.ObtenerCol(first, last, "01", "001", "A", settled));
  }
  ClsTickets::Entregas deliveries(bool settled, double delivered = 0, double change = 0) {
    ClsTickets::Entregas sums = {.dtFechaIni = first,
                                 .dtFechaFin = last,
                                 .sCaja = "01",
                                 .sEmpleado = "001",
                                 .sSerie = "A",
                                 .dVentasEntregasContado = delivered,
                                 .dVentasEntregasCambio = change,
                                 .bCerrados = settled};
    tickets.VentasEntregas(sums);
    return sums;
  }
};

class TicketSalesInAnyLocaleTest : public TicketSalesTest {
 protected:
  TicketSalesInAnyLocaleTest() : TicketSalesTest(test::tillSettings("neutral")) {}
};

// ---- Lists

TEST_F(TicketSalesTest, ObtenerColGivesTheCashTicketsOfASpan) {
  add(1, "Estado = 2");
  add(2, "Estado = 0");
  add(3, "Estado = 2, Facturado = 1");
  add(4, "Fecha = #02/28/2026#");
  add(5, "Fecha = #03/01/2026#, Estado = 2");
  add(6, "Serie = 'B'");
  add(7, "Caja = '02'");
  add(8, "Empleado = '002'");
  addToHistory(9);
  EXPECT_THAT(cash(false), UnorderedElementsAre("1", "2", "5"));
  EXPECT_THAT(cash(true), UnorderedElementsAre("1", "5"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Numero FROM Tickets" + kSpan + " AND (Facturado = 0 ))",
                          "SELECT Numero FROM Tickets" + kSpan +
                              " AND (Facturado = 0 ) AND (Estado = 2))"));
}

TEST_F(TicketSalesInAnyLocaleTest, DaysArePlainDigitsInEveryLocale) {
  add(1);
  EXPECT_THAT(cash(false), ElementsAre("1"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Numero FROM Tickets" + kSpan + " AND (Facturado = 0 ))"));
}

TEST_F(TicketSalesTest, AnEmptySpanGivesAnEmptyList) {
  EXPECT_THAT(cash(false), IsEmpty());
}

TEST_F(TicketSalesTest, AnEmptyEmployeeMeansTicketsWithoutOne) {
  add(1);
  add(2, "Empleado = ''");
  EXPECT_THAT(shown(tickets.ObtenerCol(first, last, "01", "", "A", false)), ElementsAre("2"));
}

// Dates lie in the table without a time; one that has it falls out of its own last day.
TEST_F(TicketSalesTest, ATicketWithATimeFallsOutOfTheLastDay) {
  add(1, "Fecha = #03/05/2026 10:00:00#");
  EXPECT_THAT(cash(false), IsEmpty());
}

TEST_F(TicketSalesTest, ADateOfDayZeroIsRefused) {
  EXPECT_EQ(errorOf([&] { tickets.ObtenerCol(Date(), last, "01", "001", "A", false); }),
            errors::kSyntax);
}

TEST_F(TicketSalesTest, ObtenerColGivesTheTicketsAsTheyWereStoredNotByDateOrNumber) {
  add(7, "Fecha = #03/01/2026#");
  add(9, "Fecha = #03/03/2026#");
  add(8, "Fecha = #03/02/2026#");
  add(2, "Fecha = #03/01/2026#");
  EXPECT_THAT(cash(false), ElementsAre("7", "9", "8", "2"));
}

// The mask of the day number would round the afternoon up.
TEST_F(TicketSalesTest, AnAfternoonBelongsToItsDay) {
  add(1, "Fecha = #03/01/2026#, Total = 10");
  ClsTickets::VentasDia sums = {.dtFecha = Date::of({2026, 3, 1, 18, 30, 0}),
                                .sCaja = "01",
                                .sEmpleado = "001",
                                .sSerie = "A"};
  tickets.VentasTotal(sums);
  EXPECT_EQ(sums.dVentasTotal, 10);
  EXPECT_THAT(shown(tickets.ObtenerCol(Date::of({2026, 3, 1, 18, 30, 0}),
                                       Date::of({2026, 3, 1, 20, 0, 0}), "01", "001", "A", false)),
              ElementsAre("1"));
}

TEST_F(TicketSalesTest, ObtenerColCreditoGivesWhatIsInvoicedWhateverItsState) {
  add(1, "Estado = 2");
  add(2, "Facturado = 1, Estado = 0");
  add(3, "Facturado = -1");
  EXPECT_THAT(shown(tickets.ObtenerColCredito(first, last, "01", "001", "A", true)),
              ElementsAre("2", "3"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Numero From Tickets" + kSpan + " AND (Facturado <> 0 ))"));
}

TEST_F(TicketSalesTest, ObtenerColVentaContadoPutsTheStateBeforeTheClass) {
  add(1, "Estado = 2");
  add(2, "Facturado = 1, Estado = 2");
  add(3, "Facturado = 1, Estado = 0");
  const auto list = [&](bool settled, bool cashSales) {
    return shown(tickets.ObtenerColVentaContado(first, last, "01", "001", "A", settled, cashSales));
  };
  EXPECT_THAT(list(true, true), ElementsAre("1"));
  EXPECT_THAT(list(true, false), ElementsAre("2"));
  EXPECT_THAT(list(false, false), ElementsAre("2", "3"));
  EXPECT_THAT(list(false, true), ElementsAre("1"));
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Numero FROM Tickets" + kSpan + " AND (Estado = 2) AND (Facturado = 0 ));",
                  "SELECT Numero FROM Tickets" + kSpan + " AND (Estado = 2) AND (Facturado > 0 ));",
                  "SELECT Numero FROM Tickets" + kSpan + " AND (Facturado > 0 ));",
                  "SELECT Numero FROM Tickets" + kSpan + " AND (Facturado = 0 ));"));
}

TEST_F(TicketSalesTest, TicketsPendientesIsFalseWhenAllAreSettled) {
  EXPECT_FALSE(tickets.TicketsPendientes("00012"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Entrega as Entregado , Total as Importe , Numero AS Ticket, "
                          "Serie, Fecha, Codigo AS Cliente, Razon_Social AS Empresa ,Forma_Pago AS "
                          "Pago ,Caja, Empleado FROM Tickets WHERE(( Estado < 2) AND "
                          "(Codigo='00012'));"));
  add(1, "Estado = 2");
  EXPECT_FALSE(tickets.TicketsPendientes("00012"));
  add(2, "Estado = 1");
  EXPECT_TRUE(tickets.TicketsPendientes("00012"));
  EXPECT_FALSE(tickets.TicketsPendientes("00013"));
}

TEST_F(TicketSalesTest, GetMinFechaIsTheOldestTicketOfATill) {
  add(1, "Fecha = #03/02/2026#");
  add(2, "Fecha = #01/15/2026#");
  add(3, "Fecha = #01/01/2026#, Caja = '02'");
  EXPECT_EQ(tickets.GetMinFecha("01"), Date::of(2026, 1, 15));
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Min(Tickets.Fecha) AS MínDeFecha FROM Tickets Where Caja = '01'"));
}

TEST_F(TicketSalesTest, GetMinFechaOfATillWithoutTicketsIsToday) {
  add(1, "Fecha = #01/15/2026#");
  EXPECT_EQ(tickets.GetMinFecha("09"), Date::of(2026, 3, 5));
  EXPECT_EQ(tickets.GetMinFecha(), Date::of(2026, 3, 5));
}

// ---- Sums

TEST_F(TicketSalesTest, VentasTotalSumsADayPaidOrNot) {
  add(1, "Base = 100, Importe_Impuestos = 21, Importe_recargo = 5.2, Total = 126.2");
  add(2, "Base = 10, Importe_Impuestos = 2.1, Total = 12.1, Estado = 0, Facturado = 3");
  add(3, "Base = 7, Fecha = #03/04/2026#");
  ClsTickets::VentasDia day = {.dtFecha = last, .sCaja = "01", .sEmpleado = "001", .sSerie = "A"};
  tickets.VentasTotal(day);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kTotals + " WHERE ((Fecha=46086) AND ((Serie)='A') AND (Caja='01') AND "
                                    "((Empleado)='001'));"));
  EXPECT_EQ(day.dVentasBase, 110);
  EXPECT_EQ(day.dVentasImpuestos, 23.1);
  EXPECT_EQ(day.dVentasRecargos, 5.2);
  EXPECT_EQ(day.dVentasTotal, 138.3);
}

TEST_F(TicketSalesTest, VentasTotalContadoSumsTheCashTickets) {
  add(1, "Base = 100, Total = 121, Estado = 2");
  add(2, "Base = 10, Total = 12.1, Estado = 0");
  add(3, "Base = 7, Total = 8, Facturado = 1, Estado = 2");
  ClsTickets::VentasTramo sums = {.dtFechaIni = first,
                                  .dtFechaFin = last,
                                  .sCaja = "01",
                                  .sEmpleado = "001",
                                  .sSerie = "A",
                                  .dVentasRecargos = -1};
  tickets.VentasTotalContado(sums);
  EXPECT_EQ(sums.dVentasBase, 110);
  EXPECT_EQ(sums.dVentasTotal, 133.1);
  EXPECT_EQ(sums.dVentasRecargos, -1) << "a sum of nothing but nulls leaves it as passed";
  sums.bCerrados = true;
  tickets.VentasTotalContado(sums);
  EXPECT_EQ(sums.dVentasTotal, 121);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kTotals + kSpan + " AND (Facturado = 0 ))",
                          kTotals + kSpan + " AND (Facturado = 0 ) AND (Estado = 2))"));
}

TEST_F(TicketSalesTest, APaidTicketThatIsInvoicedIsCreditAndItsDeliveryCounts) {
  add(1, "Facturado = 1, Estado = 2, Total = 50, Entrega = 60, Cambio = 10");
  double credit = 0;
  double paid = -1;
  tickets.VentasCredito(first, last, "01", "001", "A", credit, false);
  tickets.VentasContado(first, last, "01", "001", "A", paid, false);
  EXPECT_EQ(credit, 50);
  EXPECT_EQ(paid, -1) << "no cash ticket";
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT Sum(Total) AS VentasCredito FROM Tickets" +
                                                 kSpan + " AND (Facturado <> 0 ))",
                                             "SELECT Sum(Total) AS VentasContado FROM Tickets" +
                                                 kSpan + " AND (Facturado = 0 ))"));
  const ClsTickets::Entregas sums = deliveries(true);
  EXPECT_EQ(sums.dVentasEntregasContado, 60);
  EXPECT_EQ(sums.dVentasEntregasCambio, 10);
}

TEST_F(TicketSalesTest, VentasCreditoWithoutTicketsLeavesTheSumAsPassed) {
  double credit = 7.5;
  tickets.VentasCredito(first, last, "01", "001", "A", credit, false);
  EXPECT_EQ(credit, 7.5);
}

TEST_F(TicketSalesTest, VentasContadoCountsSettledTicketsOnlyWhenAsked) {
  add(1, "Estado = 2, Total = 20");
  add(2, "Estado = 1, Total = 30");
  double paid = 0;
  tickets.VentasContado(first, last, "01", "001", "A", paid, false);
  EXPECT_EQ(paid, 50);
  tickets.VentasContado(first, last, "01", "001", "A", paid, true);
  EXPECT_EQ(paid, 20);
  EXPECT_EQ(shop.statements().back(), "SELECT Sum(Total) AS VentasContado FROM Tickets" + kSpan +
                                          " AND (Facturado = 0 ) AND (Estado = 2))");
}

TEST_F(TicketSalesTest, VentasEntregasAddsInvoicedTicketsInWhateverState) {
  add(1, "Estado = 2, Entrega = 20, Cambio = 5");
  add(2, "Estado = 1, Entrega = 7, Cambio = 0");
  add(3, "Estado = 0, Facturado = 3, Entrega = 100, Cambio = 1");
  const std::string select =
      "SELECT Sum(Entrega) AS VentasEntregasContado, Sum(Cambio) AS VentasEntregasCambio FROM "
      "Tickets" +
      kSpan;
  const ClsTickets::Entregas settled = deliveries(true);
  EXPECT_EQ(settled.dVentasEntregasContado, 120) << "without the cash ticket that is not paid";
  EXPECT_EQ(settled.dVentasEntregasCambio, 6);
  EXPECT_THAT(shop.statements(), ElementsAre(select + " AND (Facturado > 0 ))",
                                             select + " AND (Facturado = 0 ) AND (Estado = 2))"));
  const ClsTickets::Entregas all = deliveries(false);
  EXPECT_EQ(all.dVentasEntregasContado, 127);
  EXPECT_EQ(shop.statements().back(), select + " AND (Facturado = 0 ))");
}

TEST_F(TicketSalesTest, VentasEntregasWithoutCashTicketsAddsToWhatWasPassed) {
  EXPECT_EQ(deliveries(false, 3, 4).dVentasEntregasContado, 3);
  add(1, "Facturado = 3, Entrega = 100, Cambio = 1");
  const ClsTickets::Entregas sums = deliveries(false, 3, 4);
  EXPECT_EQ(sums.dVentasEntregasContado, 103);
  EXPECT_EQ(sums.dVentasEntregasCambio, 5);
}

TEST_F(TicketSalesTest, SalesOfAClosingAreSummedByPaymentMethodWithoutTheInvoicedOnes) {
  add(1, "Cierre = 5, Forma_Pago = 'CON', Total = 10.5");
  add(2, "Cierre = 5, Forma_Pago = 'CON', Total = 4.5");
  add(3, "Cierre = 5, Forma_Pago = 'TAR', Total = 7");
  add(4, "Cierre = 5, Forma_Pago = 'TAR', Total = 90, Facturado = 3");
  add(5, "Cierre = 6, Forma_Pago = 'CON', Total = 1000");
  addToHistory(6, "Cierre = 5, Forma_Pago = 'CON', Total = 2000");
  const CollectionTicketsPtr sums = tickets.SumColLinTotalFpagoTickets(5);
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Forma_Pago as Pago, Sum(Tickets.Total) AS Importe From Tickets "
                          "WHERE ((Cierre=5) AND (Facturado = 0)) Group By Forma_Pago"));
  ASSERT_EQ(sums->Count(), 2);
  EXPECT_EQ(shown(sums->Item(1)->Codigo), "CON");
  EXPECT_EQ(shown(sums->Item(1)->Importe), "15");
  EXPECT_EQ(shown(sums->Item(2)->Codigo), "TAR");
  EXPECT_EQ(shown(sums->Item(2)->Importe), "7");
}

TEST_F(TicketSalesTest, AQuoteInTheTillIsRefused) {
  EXPECT_EQ(errorOf([&] { tickets.ObtenerCol(first, last, "') OR ('1'='1", "001", "A", false); }),
            errors::kSyntax);
  EXPECT_EQ(errorOf([&] { tickets.GetMinFecha("O'Hara"); }), errors::kSyntax);
}

TEST_F(TicketSalesTest, CalledByNameTheSumsComeBackInTheArguments) {
  add(1, "Base = 100, Total = 121");
  std::vector<Variant> arguments = {last, "01", "001", "A", -1.0, {}, 3.5, {}};
  ClsTickets::component().call(tickets, "VentasTotal", arguments);
  ASSERT_EQ(arguments.size(), 9U);
  EXPECT_EQ(arguments[4], Variant(100.0));
  EXPECT_EQ(arguments[6], Variant(3.5)) << "no ticket has a surcharge";
  EXPECT_EQ(arguments[7], Variant(121.0));
}

}  // namespace
}  // namespace tavelor
