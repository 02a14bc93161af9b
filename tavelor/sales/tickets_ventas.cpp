// SPDX-License-Identifier: MIT
// ClsTickets: sums and lists of a till.
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kNumbers =
    "SELECT"
    " Numero"
    " FROM "
    "Tickets";
constexpr std::string_view kTotals =
    "SELECT Sum(Base) AS VentasBase, Sum(Importe_Impuestos) AS VentasImpuestos, "
    "Sum(Importe_Recargo) AS VentasRecargos, Sum(Total) AS VentasTotal  "
    " FROM "
    "Tickets";
constexpr std::string_view kCash = " AND (Facturado = 0 )";
constexpr std::string_view kCredit = " AND (Facturado <> 0 )";
// Two of the members ask for credit in this way; the mark is never negative.
constexpr std::string_view kInvoiced = " AND (Facturado > 0 )";

Statement::Constant settledIf(bool bCerrados) {
  return bCerrados ? Statement::Constant(" AND (Estado = 2)") : "";
}

// The day number in plain digits: dates lie in the table without a time. The mask alone would round
// the afternoon up to the next day.
std::string dayNumber(Date date) {
  return format(date.dayOnly(), "#", Apartment::current().locale());
}

/// Which tickets a member is about. All parts are always looked at: an empty one means tickets that
/// have it empty.
struct Span {
  Date first;
  Date last;
  std::string_view till;
  std::string_view employee;
  std::string_view series;
};

template <typename Parameters>
Span spanOf(const Parameters& p) {
  return {p.dtFechaIni, p.dtFechaFin, p.sCaja, p.sEmpleado, p.sSerie};
}

/// `select` of the tickets of a span, with the outer parenthesis still open.
Statement ofSpan(Statement::Constant select, const Span& span) {
  Statement statement(select);
  statement << " WHERE ((Fecha Between " << spliced(dayNumber(span.first)) << " And "
            << spliced(dayNumber(span.last)) << ")  "
            << " AND (Serie='" << spliced(span.series) << "') AND (Caja='" << spliced(span.till)
            << "')"
            << " AND (Empleado='" << spliced(span.employee) << "')";
  return statement;
}

template <typename Ventas>
void takeTotals(Recordset& rows, Ventas& ventas) {
  takeColumn(rows, "VentasBase", ventas.dVentasBase);
  takeColumn(rows, "VentasImpuestos", ventas.dVentasImpuestos);
  takeColumn(rows, "VentasRecargos", ventas.dVentasRecargos);
  takeColumn(rows, "VentasTotal", ventas.dVentasTotal);
}

Statement deliveries(const Span& span, Statement::Constant kind, Statement::Constant state = {}) {
  Statement statement = ofSpan(
      "SELECT Sum(Entrega) AS VentasEntregasContado, Sum(Cambio) AS VentasEntregasCambio"
      " FROM "
      "Tickets",
      span);
  statement << kind << state << ")";
  return statement;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Lists

std::vector<Variant> ClsTickets::ObtenerCol(Date dtFechaIni, Date dtFechaFin,
                                            std::string_view sCaja, std::string_view sEmpleado,
                                            std::string_view sSerie, bool bCerrados,
                                            ObjCn objCn) const {
  Statement statement = ofSpan(kNumbers, {dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie});
  statement << kCash << settledIf(bCerrados) << ")";
  return columnValues(*read(statement, *objCn), "Numero");
}

std::vector<Variant> ClsTickets::ObtenerColCredito(Date dtFechaIni, Date dtFechaFin,
                                                   std::string_view sCaja,
                                                   std::string_view sEmpleado,
                                                   std::string_view sSerie, bool /*bCerrados*/,
                                                   ObjCn objCn) const {
  Statement statement = ofSpan(
      "SELECT"
      " Numero"
      " From "
      "Tickets",
      {dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie});
  statement << kCredit << ")";
  return columnValues(*read(statement, *objCn), "Numero");
}

std::vector<Variant> ClsTickets::ObtenerColVentaContado(Date dtFechaIni, Date dtFechaFin,
                                                        std::string_view sCaja,
                                                        std::string_view sEmpleado,
                                                        std::string_view sSerie, bool bCerrados,
                                                        bool bContado, ObjCn objCn) const {
  Statement statement = ofSpan(kNumbers, {dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie});
  statement << settledIf(bCerrados)
            << (bContado ? Statement::Constant(kCash) : Statement::Constant(kInvoiced)) << ");";
  return columnValues(*read(statement, *objCn), "Numero");
}

bool ClsTickets::TicketsPendientes(const Variant& vId, ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT"
                  " Entrega as Entregado , Total as Importe , Numero AS Ticket, Serie, Fecha, "
                  "Codigo AS Cliente, Razon_Social AS Empresa"
                  " ,Forma_Pago AS Pago"
                  " ,Caja, Empleado"
                  " FROM "
                  "Tickets"
                  " WHERE(( Estado < 2) AND (Codigo='{id}'));",
                  vId),
           *objCn);
  return !(rows->Bof() && rows->Eof());
}

Date ClsTickets::GetMinFecha(std::string_view sCaja, ObjCn objCn) const {
  Statement statement(
      "SELECT Min(Tickets.Fecha) AS MínDeFecha"
      " FROM "
      "Tickets"
      " Where Caja = '");
  statement << spliced(sCaja) << "'";
  const Variant oldest = lookUp(statement, "MínDeFecha", *objCn);
  Apartment& apartment = Apartment::current();
  return oldest.isEmpty() ? apartment.clock().today() : oldest.toDate(apartment.locale());
}

// ---------------------------------------------------------------------------------------------
// Sums

void ClsTickets::VentasTotal(VentasDia& ventas) const {
  Statement statement(kTotals);
  statement << " WHERE ((Fecha=" << spliced(dayNumber(ventas.dtFecha)) << ") AND ((Serie)='"
            << spliced(ventas.sSerie) << "') AND (Caja='" << spliced(ventas.sCaja)
            << "') AND ((Empleado)='" << spliced(ventas.sEmpleado) << "'));";
  takeTotals(*read(statement, *ventas.objCn), ventas);
}

void ClsTickets::VentasTotalContado(VentasTramo& ventas) const {
  Statement statement = ofSpan(kTotals, spanOf(ventas));
  statement << kCash << settledIf(ventas.bCerrados) << ")";
  takeTotals(*read(statement, *ventas.objCn), ventas);
}

void ClsTickets::VentasCredito(Date dtFechaIni, Date dtFechaFin, std::string_view sCaja,
                               std::string_view sEmpleado, std::string_view sSerie,
                               InOut<double> dVentasCredito, bool /*bCerrados*/,
                               ObjCn objCn) const {
  Statement statement = ofSpan(
      "SELECT Sum(Total) AS VentasCredito"
      " FROM "
      "Tickets",
      {dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie});
  statement << kCredit << ")";
  takeColumn(*read(statement, *objCn), "VentasCredito", *dVentasCredito);
}

void ClsTickets::VentasContado(Date dtFechaIni, Date dtFechaFin, std::string_view sCaja,
                               std::string_view sEmpleado, std::string_view sSerie,
                               InOut<double> dVentasContado, bool bCerrados, ObjCn objCn) const {
  Statement statement = ofSpan(
      "SELECT Sum(Total) AS VentasContado"
      " FROM "
      "Tickets",
      {dtFechaIni, dtFechaFin, sCaja, sEmpleado, sSerie});
  statement << kCash << settledIf(bCerrados) << ")";
  takeColumn(*read(statement, *objCn), "VentasContado", *dVentasContado);
}

// Money that came in on invoiced tickets is in the till whatever their state, so `bCerrados` is for
// the cash tickets alone.
void ClsTickets::VentasEntregas(Entregas& entregas) const {
  const Span span = spanOf(entregas);
  double deliveredOnCredit = 0;
  double changeOnCredit = 0;
  {
    const RecordsetPtr rows = read(deliveries(span, kInvoiced), *entregas.objCn);
    takeColumn(*rows, "VentasEntregasContado", deliveredOnCredit);
    takeColumn(*rows, "VentasEntregasCambio", changeOnCredit);
  }
  const RecordsetPtr rows =
      read(deliveries(span, kCash, settledIf(entregas.bCerrados)), *entregas.objCn);
  takeColumn(*rows, "VentasEntregasContado", entregas.dVentasEntregasContado);
  takeColumn(*rows, "VentasEntregasCambio", entregas.dVentasEntregasCambio);
  entregas.dVentasEntregasContado += deliveredOnCredit;
  entregas.dVentasEntregasCambio += changeOnCredit;
}

CollectionTicketsPtr ClsTickets::SumColLinTotalFpagoTickets(const Variant& vId, ObjCn objCn) const {
  const RecordsetPtr rows = read(withId("SELECT Forma_Pago as Pago, Sum(Tickets.Total) AS Importe"
                                        " From "
                                        "Tickets"
                                        " WHERE ((Cierre={id}) AND (Facturado = 0))"
                                        " Group By Forma_Pago",
                                        vId),
                                 *objCn);
  auto byMethod = std::make_shared<CollectionTickets>();
  for (; !rows->Eof(); rows->MoveNext()) {
    byMethod->Add({}, rows->Field("Pago").Value(), {}, rows->Field("Importe").Value(), {});
  }
  return byMethod;
}

}  // namespace tavelor
