// SPDX-License-Identifier: MIT
// What a program that died has left, and how the flows look for it before they begin.
#include <algorithm>

#include "tools/shop/shop.hpp"
#include "tools/shop/shop_inner.hpp"

namespace tavelor::shop {

Recovered Shop::recover() {
  openTickets();
  Recovered recovered;
  BothDatabases transaction(main_, documents_);
  settle(startedCounters(transaction), recovered);
  takeBackClosings(Statement("SELECT DISTINCT Cierre FROM Cierres_Familias"), recovered);
  transaction.commit(BothDatabases::First::kMain);
  return recovered;
}

/// The next numbers by the counters alone. A period that has none gets them from the tickets, and
/// they are stored before anything else is: only where a counter stands can a ticket be ahead of
/// it.
Shop::Counters Shop::startedCounters(BothDatabases& transaction) {
  constexpr double kUnused = -1;
  const auto stored = [&] {
    Counters next{kUnused, kUnused, kUnused};
    tickets_.GetNumerador(next.a, next.b, next.c, main_);
    return next;
  };
  const Counters next = stored();
  if (next.a != kUnused && next.b != kUnused && next.c != kUnused) return next;
  tickets_.UpdateNumerador(main_);
  transaction.commit(BothDatabases::First::kMain);
  transaction.begin();
  return stored();
}

/// Gives the next numbers, of which that of the series in use is free. Tickets that are ahead of
/// the counter may not have moved their stock.
Shop::Counters Shop::settle(Counters next, Recovered& recovered) {
  const double written = number(tickets_.NuevoCodigo(kSeries, documents_));
  if (next.a == written) {
    // The road of every sale: nothing is open.
  } else if (next.a < written) {
    finishSales(next.a, recovered);
    useNumber({written - 1, next.b, next.c});
  }
  next.a = std::max(next.a, written);
  while (!tickets_.CodigoLibre(next.a, documents_)) ++next.a;
  return next;
}

/// Of the tickets from `first` on. Some may be whole: those of another period, where somebody has
/// gone back to one whose counter stayed behind.
void Shop::finishSales(double first, Recovered& recovered) {
  Statement statement("SELECT Numero FROM Tickets WHERE Numero >= ");
  statement << value(numberText(first)) << " AND Serie = '" << kSeries << "' ORDER BY Numero";
  for (const double ticket : numbersOf(selector::kDocuments, statement, "Numero", documents_)) {
    if (hasMovedStock(ticket)) continue;
    moveStock(storedSale(ticket), ticket);
    recovered.sales.push_back(ticket);
  }
}

bool Shop::hasMovedStock(double ticket) {
  Statement statement("SELECT Id FROM Articulos_Movimientos_Almacen WHERE Estado = ");
  statement << value(std::to_string(kTicketKind)) << " AND Doc_E = " << value(numberText(ticket));
  return Rows(selector::kMain, statement, main_).hasRow();
}

/// What moveStock needs of a live ticket.
Sale Shop::storedSale(double ticket) {
  Statement statement("SELECT Referencia, Fecha, Concepto FROM Tickets WHERE Numero = ");
  statement << value(numberText(ticket));
  const Rows row(selector::kDocuments, statement, documents_);
  Sale sale;
  sale.reference = row.text("Referencia");
  sale.time = row.text("Concepto");
  sale.day = Date(row.number("Fecha"));

  lines_.IniciaRs(documents_, "seleccion", ticket);
  const RecordsetPtr rows = lines_.DataMember("Primary");
  for (; !rows->Eof(); rows->MoveNext()) {
    SaleLine& line = sale.lines.emplace_back();
    take(*rows, "Código", line.code);
    take(*rows, "Descripción", line.description);
    take(*rows, "Familia", line.family);
    take(*rows, "Cantidad", line.quantity);
    take(*rows, "Precio", line.price);
    take(*rows, "IVA", line.tax);
  }
  return sale;
}

/// Deletes those of the closings that a program died over. `candidates` gives their numbers as
/// Cierre.
void Shop::takeBackClosings(const Statement& candidates, Recovered& recovered) {
  for (const double closing : numbersOf(selector::kMain, candidates, "Cierre", main_)) {
    if (!isUnfinished(closing)) continue;
    closings_.DeleteAll(closing, main_);
    Statement statement("DELETE FROM Cierres WHERE Codigo = ");
    statement << value(numberText(closing));
    DataSession().Execute(selector::kMain, statement, main_);
    recovered.closings.push_back(closing);
  }
}

/// Whether no ticket belongs to a closing with lines, while those that it closed are open still. A
/// closing whose tickets are nowhere is none of ours: its history may have been put away.
bool Shop::isUnfinished(double closing) {
  const std::string code = numberText(closing);
  const auto rowsOf = [&](int selector, std::string_view select, ConnectionPtr& connection) {
    Statement statement("SELECT ");
    statement << select << " = " << value(code);
    return Rows(selector, statement, connection);
  };
  const auto hasRows = [&](int selector, std::string_view select, ConnectionPtr& connection) {
    return rowsOf(selector, select, connection).hasRow();
  };
  if (!hasRows(selector::kMain, "Cierre FROM Cierres_Familias WHERE Cierre", main_) ||
      hasRows(selector::kDocuments, "Numero FROM HTickets WHERE Cierre", documents_) ||
      hasRows(selector::kDocuments, "Numero FROM Tickets WHERE Cierre", documents_)) {
    return false;
  }
  const Rows row =
      rowsOf(selector::kMain, "Caja, Fecha FROM Cierres WHERE Facturado = 0 AND Codigo", main_);
  if (!row.hasRow()) return false;
  const double day = row.number("Fecha");
  return day != 0 && !openTicketsOf(row.text("Caja"), Date(day)).empty();
}

}  // namespace tavelor::shop
