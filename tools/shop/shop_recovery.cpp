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
  settle(recovered);
  takeBackClosings(Statement("SELECT DISTINCT Cierre FROM Cierres_Familias"), recovered);
  transaction.commit(BothDatabases::First::kMain);
  return recovered;
}

/// Gives the next numbers, of which that of the series in use is free. Tickets that are ahead of
/// the counter have not moved their stock; of a year without numbers yet, the counters are made
/// from the tickets.
Shop::Counters Shop::settle(Recovered& recovered) {
  constexpr double kUnused = -1;
  const double written = number(tickets_.NuevoCodigo(kSeries, documents_));
  Counters next{0, kUnused, kUnused};
  tickets_.GetNumerador(next.a, next.b, next.c, main_);
  const bool isUnused = next.b == kUnused || next.c == kUnused;
  if (!isUnused && next.a == written) {
    // The road of every sale: nothing is open.
  } else if (isUnused || next.a < written) {
    if (!isUnused) finishSales(next.a, recovered);
    tickets_.UpdateNumerador(main_);
    tickets_.GetNumerador(next.a, next.b, next.c, main_);
  }
  next.a = std::max(next.a, written);
  while (!tickets_.CodigoLibre(next.a, documents_)) ++next.a;
  return next;
}

void Shop::finishSales(double first, Recovered& recovered) {
  Statement statement("SELECT Numero FROM Tickets WHERE Numero >= ");
  statement << value(numberText(first)) << " AND Serie = '" << kSeries << "' ORDER BY Numero";
  for (const double ticket : numbersOf(selector::kDocuments, statement, documents_)) {
    moveStock(storedSale(ticket), ticket);
    recovered.sales.push_back(ticket);
  }
}

/// What moveStock needs of a live ticket.
Sale Shop::storedSale(double ticket) {
  Statement statement("SELECT Referencia, Fecha, Concepto FROM Tickets WHERE Numero = ");
  statement << value(numberText(ticket));
  const RecordsetPtr row = read(selector::kDocuments, statement, documents_);
  Sale sale;
  take(*row, "Referencia", sale.reference);
  take(*row, "Concepto", sale.time);
  double day = 0;
  take(*row, "Fecha", day);
  sale.day = Date(day);

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

/// Deletes those of the closings with lines that no ticket belongs to. `candidates` gives their
/// numbers.
void Shop::takeBackClosings(const Statement& candidates, Recovered& recovered) {
  for (const double closing : numbersOf(selector::kMain, candidates, main_)) {
    if (!isWithoutTickets(closing)) continue;
    closings_.DeleteAll(closing, main_);
    Statement statement("DELETE FROM Cierres WHERE Codigo = ");
    statement << value(numberText(closing));
    DataSession().Execute(selector::kMain, statement, main_);
    recovered.closings.push_back(closing);
  }
}

bool Shop::isWithoutTickets(double closing) {
  const std::string code = numberText(closing);
  const auto hasRows = [&](int selector, std::string_view from, ConnectionPtr& connection) {
    Statement statement("SELECT ");
    statement << from << " = " << value(code);
    return !read(selector, statement, connection)->Eof();
  };
  return hasRows(selector::kMain, "Cierre FROM Cierres_Familias WHERE Cierre", main_) &&
         hasRows(selector::kMain, "Codigo FROM Cierres WHERE Facturado = 0 AND Codigo", main_) &&
         !hasRows(selector::kDocuments, "Numero FROM HTickets WHERE Cierre", documents_) &&
         !hasRows(selector::kDocuments, "Numero FROM Tickets WHERE Cierre", documents_);
}

}  // namespace tavelor::shop
