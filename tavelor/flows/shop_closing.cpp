// SPDX-License-Identifier: MIT
// The closing of a till, and its slip.
#include "tavelor/flows/amounts.hpp"
#include "tavelor/flows/cash_count.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/shop_inner.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/sales/registros_tickets.hpp"

namespace tavelor::flows {

std::optional<Closing> Shop::Inner::close(const std::string& till, Date day,
                                          const CashCount* count) {
  if (count != nullptr) requireAmount(*count);
  Closing last;  // of the run whose commit may have had no answer
  return untilThrough([&](Before before) { return closeOnce(till, day, count, before, last); });
}

/// Whether that closing is there, of that till and day. No closing has the number 0.
bool Shop::Inner::isClosed(const Closing& closing, const std::string& till, Date day) {
  Statement statement("SELECT Caja, Fecha FROM Cierres WHERE Codigo = ");
  statement << spliced(numberText(closing.number));
  const Rows row(selector::kMain, statement, main_);
  return row.hasRow() && row.text("Caja") == till && Date(row.number("Fecha")) == day;
}

std::optional<Closing> Shop::Inner::closeOnce(const std::string& till, Date day,
                                              const CashCount* count, Before before,
                                              Closing& closing) {
  forget();  // the one moment of a day at which another look costs nothing
  openTickets();
  BothDatabases transaction(main_, documents_);
  Recovered recovered;
  const Counters counters = startedCounters(transaction, recovered);
  refuseLosses(recovered);
  // Behind the counters: a commit without an answer is through by now, or never will be.
  const bool wasClosed = before == Before::kUnknown && isClosed(closing, till, day);
  if (!wasClosed) {
    settle(counters, recovered);
    refuseLosses(recovered);
    settleClosings(Extent::kTail, recovered);
    refuseLosses(recovered);
    const std::vector<Variant> sold = openTicketsOf(till, day);
    closing = {};
    if (!sold.empty()) {
      closing.number = asNumber(closings_.NuevoCodigo(main_));
      closing.tickets = sold.size();
      markAll(sold, closing.number);
      closing.total = writeClosing(closing.number, till, day);
      if (count != nullptr) writeCount(closing.number, till, *count, main_);
      moveToHistory(closing.number);
    }
  }
  transaction.commit(BothDatabases::First::kMain);
  if (closing.tickets == 0) return std::nullopt;
  // Inside a transaction of the caller's it may still be undone.
  if (main_->transactionLevel() == 0) writeSlip(closing.number);
  return closing;
}

std::vector<Variant> Shop::Inner::openTicketsOf(const std::string& till, Date day) {
  const std::string code = doubledQuotes(till);
  std::vector<Variant> numbers =
      tickets_.ObtenerCol(day, day, code, kNobody, kSeries, false, documents_);
  const std::vector<Variant> credit =
      tickets_.ObtenerColCredito(day, day, code, kNobody, kSeries, false, documents_);
  numbers.insert(numbers.end(), credit.begin(), credit.end());
  return numbers;
}

/// What is read of a ticket, no other one's marks change.
void Shop::Inner::markAll(const std::vector<Variant>& tickets, double closing) {
  ReadAhead ahead(documents_);
  for (const Variant& ticket : tickets) {
    ahead.ask([&] { tickets_.GetIncTax(ticket, documents_); });
    ahead.ask([&] { lines_.Mover_Impuestos_A_Historicos(ticket, closing, true, documents_); });
  }
  for (const Variant& ticket : tickets) mark(ticket, closing);
}

void Shop::Inner::mark(const Variant& ticket, double closing) {
  tickets_.CerrarTicket(ticket, closing, documents_);
  lines_.CerrarTicket(ticket, closing, documents_);
  headers_.CerrarTicket(ticket, closing, documents_);
  comments_.CerrarTicket(ticket, closing, documents_);
  const bool taxIncluded = tickets_.GetIncTax(ticket, documents_) != 0;
  lines_.Mover_Impuestos_A_Historicos(ticket, closing, taxIncluded, documents_);
}

/// The closing and its details, from the sums over the tickets that are marked and still live.
/// Gives their total.
double Shop::Inner::writeClosing(double closing, const std::string& till, Date day) {
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

  const PaymentSums payments = paymentsOf(closing);
  double intoTill = 0;
  for (const auto& [payment, amount] : payments) {
    const PaymentMethod* const method = known_.payment(payment);
    if (method != nullptr && method->isCash) intoTill += amount;
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
  writeDetails(closing, payments);
  return cents(cash.dVentasTotal + credit);
}

/// As the class sums them, by the method that each ticket bears; the parts of those that were paid
/// in several ways go to their own.
PaymentSums Shop::Inner::paymentsOf(double closing) {
  const auto methods = tickets_.SumColLinTotalFpagoTickets(closing, documents_);
  PaymentSums sums;
  for (std::int32_t i = 1; i <= methods->Count(); ++i) {
    const ClsRegTicketsPtr method = methods->Item(i);
    sums.emplace_back(text(method->Codigo), asNumber(method->Importe));
  }
  Statement which("Tickets.Facturado = 0 AND Tickets.Cierre = ");
  which << spliced(numberText(closing));
  splitByParts(sums, which, documents_);
  return sums;
}

void Shop::Inner::writeDetails(double closing, const PaymentSums& payments) {
  const auto families = lines_.SumCollectionLinHFamilias(closing, documents_);
  for (std::int32_t i = 1; i <= families->Count(); ++i) {
    const ClsRegTicketsPtr family = families->Item(i);
    closings_.InsertarCierreFamilias(closing, doubledQuotes(text(family->Codigo)),
                                     roundHalfAway(asNumber(family->Importe), 2), main_);
  }
  for (const auto& [rate, split] : taxesOf(closing)) {
    closings_.InsertarCierreImpuestos(closing, text(Variant(rate)), split.base, split.tax, main_);
  }
  for (const auto& [payment, amount] : payments) {
    closings_.InsertarCierreFormasPago(closing, doubledQuotes(payment), amount, main_);
  }
}

/// By rate, the sums of what the receipts of the tickets told, to the cent: base and tax of all
/// rates are the total. The rows that history keeps of each ticket are summed otherwise: the class
/// rounds either part by itself, and they may miss the total by a cent each.
std::map<double, TaxSplit> Shop::Inner::taxesOf(double closing) {
  Statement statement(
      "SELECT Tickets_Lineas.Numero AS Ticket, IVA, Impuesto_Incluido, Sum(Importe) AS Suma FROM "
      "Tickets INNER JOIN Tickets_Lineas ON Tickets.Numero = Tickets_Lineas.Numero WHERE "
      "Tickets.Cierre = ");
  statement << spliced(numberText(closing))
            << " GROUP BY Tickets_Lineas.Numero, IVA, Impuesto_Incluido";
  std::map<double, TaxSplit> taxes;
  for (Rows rows(selector::kDocuments, statement, documents_); rows.hasRow(); rows.next()) {
    const double rate = rows.number("IVA");
    const TaxSplit each = splitOf(rows.number("Suma"), rate, rows.flag("Impuesto_Incluido"));
    TaxSplit& sum = taxes[rate];
    sum = {roundHalfAway(sum.base + each.base, 2), roundHalfAway(sum.tax + each.tax, 2)};
  }
  return taxes;
}

void Shop::Inner::moveToHistory(double closing) {
  tickets_.Mover_A_Historicos(closing, documents_);
  lines_.Mover_A_Historicos(closing, documents_);
  headers_.Mover_A_Historicos(closing, documents_);
  comments_.Mover_A_Historicos(closing, documents_);
}

}  // namespace tavelor::flows
