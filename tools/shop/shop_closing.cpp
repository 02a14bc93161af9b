// SPDX-License-Identifier: MIT
// The closing of a till, and its slip.
#include "tavelor/platform/quotes.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tools/shop/receipt.hpp"
#include "tools/shop/shop.hpp"
#include "tools/shop/shop_inner.hpp"

namespace tavelor::shop {

namespace {

bool isCash(const std::string& payment, ConnectionPtr& connection) {
  Statement statement("SELECT Contado FROM Formas_Pago WHERE Codigo = ");
  statement << sqlText(payment);
  const Rows rows(selector::kMain, statement, connection);
  return rows.hasRow() && rows.flag("Contado");
}

}  // namespace

std::optional<Closing> Shop::close(const std::string& till, Date day) {
  openTickets();
  Closing closing;
  {
    BothDatabases transaction(main_, documents_);
    Recovered recovered;
    const Counters counters = startedCounters(transaction, recovered);
    refuseLosses(recovered);
    settle(counters, recovered);
    refuseLosses(recovered);
    settleClosings(Extent::kTail, recovered);
    refuseLosses(recovered);
    const std::vector<Variant> sold = openTicketsOf(till, day);
    if (!sold.empty()) {
      closing.number = asNumber(closings_.NuevoCodigo(main_));
      closing.tickets = sold.size();
      for (const Variant& ticket : sold) mark(ticket, closing.number);
      closing.total = writeClosing(closing.number, till, day);
      moveToHistory(closing.number);
    }
    transaction.commit(BothDatabases::First::kMain);
    if (sold.empty()) return std::nullopt;
  }
  writeSlip(closing.number);
  return closing;
}

std::vector<Variant> Shop::openTicketsOf(const std::string& till, Date day) {
  const std::string code = doubledQuotes(till);
  std::vector<Variant> numbers =
      tickets_.ObtenerCol(day, day, code, kNobody, kSeries, false, documents_);
  const std::vector<Variant> credit =
      tickets_.ObtenerColCredito(day, day, code, kNobody, kSeries, false, documents_);
  numbers.insert(numbers.end(), credit.begin(), credit.end());
  return numbers;
}

void Shop::mark(const Variant& ticket, double closing) {
  tickets_.CerrarTicket(ticket, closing, documents_);
  lines_.CerrarTicket(ticket, closing, documents_);
  headers_.CerrarTicket(ticket, closing, documents_);
  comments_.CerrarTicket(ticket, closing, documents_);
  const bool taxIncluded = tickets_.GetIncTax(ticket, documents_) != 0;
  lines_.Mover_Impuestos_A_Historicos(ticket, closing, taxIncluded, documents_);
}

/// The closing and its details, from the sums over the tickets that are marked and still live.
/// Gives their total.
double Shop::writeClosing(double closing, const std::string& till, Date day) {
  const std::string series(kSeries), nobody(kNobody), code = doubledQuotes(till);
  ClsTickets::VentasTramo cash{.dtFechaIni = day,
                               .dtFechaFin = day,
                               .sCaja = code,
                               .sEmpleado = nobody,
                               .sSerie = series,
                               .objCn = documents_};
  tickets_.VentasTotalContado(cash);
  ClsTickets::Entregas money{.dtFechaIni = day,
                             .dtFechaFin = day,
                             .sCaja = code,
                             .sEmpleado = nobody,
                             .sSerie = series,
                             .objCn = documents_};
  tickets_.VentasEntregas(money);
  double paid = 0, credit = 0;
  tickets_.VentasContado(day, day, code, nobody, series, paid, false, documents_);
  tickets_.VentasCredito(day, day, code, nobody, series, credit, false, documents_);

  const auto payments = tickets_.SumColLinTotalFpagoTickets(closing, documents_);
  double intoTill = 0;
  for (std::int32_t i = 1; i <= payments->Count(); ++i) {
    const ClsRegTicketsPtr payment = payments->Item(i);
    if (isCash(text(payment->Codigo), main_)) intoTill += asNumber(payment->Importe);
  }
  double balance = 0;
  closings_.SaldoAnterior(day, code, nobody, series, balance, main_);

  const auto cents = [](double amount) { return roundHalfAway(amount, 2); };
  closings_.Insertar({.vId = closing,
                      .sSerie = series,
                      .dtFecha = day,
                      .sDescripcion = "Cierre de caja " + code,
                      .sCaja = code,
                      .sEmpleado = nobody,
                      // What stays of the money that was handed over; the slip calls it the total.
                      .dEntrega = cents(money.dVentasEntregasContado - money.dVentasEntregasCambio),
                      .dCambio = cents(money.dVentasEntregasCambio),
                      .dEfectivo = cents(paid),
                      .dCredito = cents(credit),
                      .dBase = cents(cash.dVentasBase),
                      .dImpImp = cents(cash.dVentasImpuestos),
                      .dImpRec = cents(cash.dVentasRecargos),
                      .dTotal = cents(cash.dVentasTotal),
                      .SaldoIni = balance,
                      .SaldoFin = cents(balance + intoTill),
                      .objCn = main_});
  writeDetails(closing, *payments);
  return cents(cash.dVentasTotal + credit);
}

void Shop::writeDetails(double closing, const CollectionTickets& payments) {
  const auto families = lines_.SumCollectionLinHFamilias(closing, documents_);
  for (std::int32_t i = 1; i <= families->Count(); ++i) {
    const ClsRegTicketsPtr family = families->Item(i);
    closings_.InsertarCierreFamilias(closing, doubledQuotes(text(family->Codigo)),
                                     roundHalfAway(asNumber(family->Importe), 2), main_);
  }
  const auto taxes = lines_.SumCollectionLinHImpuestos(closing, documents_);
  for (std::int32_t i = 1; i <= taxes->Count(); ++i) {
    const ClsRegTicketsPtr tax = taxes->Item(i);
    closings_.InsertarCierreImpuestos(closing, text(tax->Codigo), asNumber(tax->Suma),
                                      asNumber(tax->Importe), main_);
  }
  for (std::int32_t i = 1; i <= payments.Count(); ++i) {
    const ClsRegTicketsPtr payment = payments.Item(i);
    closings_.InsertarCierreFormasPago(closing, doubledQuotes(text(payment->Codigo)),
                                       asNumber(payment->Importe), main_);
  }
}

void Shop::moveToHistory(double closing) {
  tickets_.Mover_A_Historicos(closing, documents_);
  lines_.Mover_A_Historicos(closing, documents_);
  headers_.Mover_A_Historicos(closing, documents_);
  comments_.Mover_A_Historicos(closing, documents_);
}

}  // namespace tavelor::shop
