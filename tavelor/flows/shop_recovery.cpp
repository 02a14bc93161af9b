// SPDX-License-Identifier: MIT
// What a program that died or a file that was lost has left, and how the flows look for it before
// they begin.
#include <algorithm>
#include <iterator>
#include <set>

#include "tavelor/flows/account.hpp"
#include "tavelor/flows/decisions.hpp"
#include "tavelor/flows/shop_inner.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/quotes.hpp"

namespace tavelor::flows {

namespace {

/// The greatest number of a column; 0 where there is none.
double greatest(int selector, Statement::Constant column, Statement::Constant table,
                const ConnectionPtr& connection) {
  Statement statement("SELECT Max(");
  statement << column << ") AS Ultimo FROM " << table;
  return Rows(selector, statement, connection).number("Ultimo");
}

constexpr double kUnused = -1;  // no counter

void append(std::vector<double>& to, const std::vector<double>& more) {
  to.insert(to.end(), more.begin(), more.end());
}

void append(std::vector<Finding>& to, std::vector<Finding> more) {
  std::move(more.begin(), more.end(), std::back_inserter(to));
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// All of it

Recovered Shop::Inner::recover() {
  return mend(Extent::kTail);
}

Recovered Shop::Inner::recoverAll(Decision decision) {
  Recovered recovered = mend(Extent::kWhole);
  const auto look = [&] {
    recovered.undecided = Decisions::open(Audit(main_, documents_).everything());
  };
  look();
  if (recovered.undecided.empty()) return recovered;
  if (decision == Decision::kKeep) {
    Decisions::keep(recovered.undecided);
    recovered.kept = std::exchange(recovered.undecided, {});
  } else if (decision == Decision::kFollowTickets) {
    followTickets(recovered);
    const Recovered rest = mend(Extent::kWhole);
    append(recovered.sales, rest.sales);
    append(recovered.closings, rest.closings);
    append(recovered.rewritten, rest.rewritten);
    recovered.unused = rest.unused;
    look();
  }
  return recovered;
}

Recovered Shop::Inner::mend(Extent extent) {
  openTickets();
  Recovered recovered;
  BothDatabases transaction(main_, documents_);
  const Counters counters = startedCounters(transaction, recovered);
  if (recovered.undecided.empty()) settle(counters, recovered);
  if (recovered.undecided.empty()) settleClosings(extent, recovered);
  transaction.commit(BothDatabases::First::kMain);
  return recovered;
}

// ---------------------------------------------------------------------------------------------
// Sales

/// The next numbers, of which that of the series in use is above its tickets. Tickets that are
/// ahead of the counter may not have moved their stock; movements that are ahead of the tickets
/// have lost them.
Shop::Inner::Counters Shop::Inner::settle(Counters next, Recovered& recovered) {
  const double written = asNumber(tickets_.NuevoCodigo(kSeries, documents_));
  if (next.a == written) {
    // The road of every sale: nothing is open.
  } else if (next.a < written) {
    finishSales(next.a, recovered);
    useNumber({written - 1, next.b, next.c});
  } else {
    recovered.undecided = Decisions::open(Audit(main_, documents_).tickets(written, Audit::kNoEnd));
    if (recovered.undecided.empty()) recovered.unused = {written, next.a - 1};
  }
  next.a = std::max(next.a, written);
  return next;
}

/// Tickets of all series share their numbers.
Shop::Inner::Counters Shop::Inner::firstFree(Counters next) {
  while (!tickets_.CodigoLibre(next.a, documents_)) ++next.a;
  return next;
}

bool Shop::Inner::isStarted(const Counters& counters) {
  return counters.a != kUnused && counters.b != kUnused && counters.c != kUnused;
}

Shop::Inner::Counters Shop::Inner::storedCounters() {
  Counters next{kUnused, kUnused, kUnused};
  tickets_.GetNumerador(next.a, next.b, next.c, main_);
  return next;
}

/// Of a period whose counters were started.
Shop::Inner::Counters Shop::Inner::startedCounters() {
  const Counters next = storedCounters();
  if (isStarted(next)) return next;
  raise(errors::kTryAgain, "Shop", "Somebody has taken the counters of the period back");
}

/// Once for each period, in a transaction of its own: what a sale has written before it reads its
/// number must not be committed with them.
void Shop::Inner::startCounters() {
  const std::string period = clsNumeradores::currentPeriod();
  if (startedPeriod_ == period) return;
  BothDatabases transaction(main_, documents_);
  Recovered recovered;
  startedCounters(transaction, recovered);
  refuseLosses(recovered);
  transaction.commit(BothDatabases::First::kMain);
  startedPeriod_ = period;
}

/// The next numbers by the counters alone. A period that has none gets them from the tickets, and
/// they are stored before anything else is: only where a counter stands can a ticket be ahead of
/// it. Whether one is nevertheless, as where the main database is of a time before the counters, is
/// asked first: then none are stored.
Shop::Inner::Counters Shop::Inner::startedCounters(BothDatabases& transaction,
                                                   Recovered& recovered) {
  const Counters next = storedCounters();
  if (isStarted(next)) return next;
  const double last = asNumber(tickets_.NuevoCodigo(kSeries, documents_)) - 1;
  recovered.undecided = Decisions::open(Audit(main_, documents_).tickets(last, Audit::kNoEnd));
  if (!recovered.undecided.empty()) return next;
  tickets_.UpdateNumerador(main_);
  transaction.commit(BothDatabases::First::kMain);
  transaction.begin();
  return storedCounters();
}

/// Of the tickets from `first` on. Some may be whole: those of another period, where somebody has
/// gone back to one whose counter stayed behind.
void Shop::Inner::finishSales(double first, Recovered& recovered) {
  for (const Statement::Constant table : kTicketTables) {
    Statement statement("SELECT Numero FROM ");
    statement << table << " WHERE Numero >= " << spliced(numberText(first)) << " AND Serie = '"
              << kSeries << "' ORDER BY Numero";
    for (const double ticket : numbersOf(selector::kDocuments, statement, "Numero", documents_)) {
      if (hasMovedStock(ticket)) continue;
      bookStored(ticket);
      recovered.sales.push_back(ticket);
    }
  }
}

/// What a sale did in the main database, once more, from its ticket.
void Shop::Inner::bookStored(double ticket) {
  const Sale sale = storedSale(ticket);
  book(sale, ticket, isOnCredit(sale));
}

bool Shop::Inner::hasMovedStock(double ticket) {
  Statement statement("SELECT Id FROM Articulos_Movimientos_Almacen WHERE Estado = ");
  statement << spliced(std::to_string(kTicketKind))
            << " AND Doc_E = " << spliced(numberText(ticket));
  return Rows(selector::kMain, statement, main_).hasRow();
}

/// Undoes what book() did. Articles and customers that were made on the way stay.
void Shop::Inner::undo(double ticket) {
  Statement statement(
      "SELECT Codigo, Almacen, Lote, Cantidad, Movimiento FROM Articulos_Movimientos_Almacen WHERE "
      "Estado = ");
  statement << spliced(std::to_string(kTicketKind))
            << " AND Doc_E = " << spliced(numberText(ticket));
  for (Rows rows(selector::kMain, statement, main_); rows.hasRow(); rows.next()) {
    const std::string code = doubledQuotes(rows.text("Codigo"));
    const std::string warehouse = doubledQuotes(rows.text("Almacen"));
    const std::string lot = doubledQuotes(rows.text("Lote"));
    const double units = rows.number("Cantidad");
    const bool wasExit = rows.flag("Movimiento");
    articles_.DescargarStock_V(code, 0.0, units, wasExit, false, main_);
    warehouses_.DescargarStock_V(code, warehouse, 0.0, units, wasExit, false, main_);
    lots_.DescargarStock_V(code, lot, 0.0, units, wasExit, main_);
  }
  movements_.DeleteAll(ticket, kTicketKind, main_);
  undoEntries(ticket);
}

/// The ledger's own Eliminar splices the code of an entry as it is stored, which an apostrophe
/// breaks: then the entries go by themselves, and their accounts are added up anew.
void Shop::Inner::undoEntries(double ticket) {
  Statement entries(" FROM Clientes_Apuntes_Contables WHERE Estado = ");
  entries << spliced(std::to_string(kTicketKind))
          << " AND Documento_E = " << spliced(numberText(ticket));
  Statement statement("SELECT Codigo");
  statement << entries;
  std::set<std::string> customers;
  for (Rows rows(selector::kMain, statement, main_); rows.hasRow(); rows.next()) {
    customers.insert(rows.text("Codigo"));
  }
  const bool isQuoted = std::any_of(customers.begin(), customers.end(), [](const auto& code) {
    return code.find('\'') != std::string::npos;
  });
  if (!isQuoted) return ledger_.Eliminar(kTicketKind, ticket, main_);
  Statement deletion("DELETE");
  deletion << entries;
  DataSession().Execute(selector::kMain, deletion, main_);
  for (const std::string& customer : customers) {
    addUpAccount(LedgerOf::kCustomers, customer, main_);
  }
}

// ---------------------------------------------------------------------------------------------
// Closings

/// Of the tail, closings are looked at behind the last one that both databases have: a program died
/// over those, or a file has lost them.
void Shop::Inner::settleClosings(Extent extent, Recovered& recovered) {
  const double inHistory = greatest(selector::kDocuments, "Cierre", "HTickets", documents_);
  Statement candidates("SELECT Codigo AS Cierre FROM Cierres WHERE Codigo > ");
  candidates << spliced(numberText(extent == Extent::kTail ? inHistory : 0));
  takeBackClosings(candidates, recovered);
  const double closed = greatest(selector::kMain, "Codigo", "Cierres", main_);
  rewriteClosings(closed, recovered);
  append(recovered.undecided,
         Decisions::open(
             Audit(main_, documents_).closings(std::min(inHistory, closed) + 1, Audit::kNoEnd)));
}

/// Deletes those of the closings that a program died over. `candidates` gives their numbers as
/// Cierre.
void Shop::Inner::takeBackClosings(const Statement& candidates, Recovered& recovered) {
  for (const double closing : numbersOf(selector::kMain, candidates, "Cierre", main_)) {
    if (!isUnfinished(closing)) continue;
    deleteClosing(closing);
    recovered.closings.push_back(closing);
  }
}

void Shop::Inner::deleteClosing(double closing) {
  closings_.DeleteAll(closing, main_);
  const auto run = [&](Statement statement) {
    statement << spliced(numberText(closing));
    DataSession().Execute(selector::kMain, statement, main_);
  };
  run(Statement("DELETE FROM Cierres_Arqueos WHERE Cierre = "));
  run(Statement("DELETE FROM Cierres WHERE Codigo = "));
}

/// Whether no ticket belongs to a closing with lines, while those that it closed are open still. A
/// closing whose tickets are nowhere is none of ours: its history may have been put away.
bool Shop::Inner::isUnfinished(double closing) {
  const std::string code = numberText(closing);
  const auto rowsOf = [&](int selector, Statement::Constant select, ConnectionPtr& connection) {
    Statement statement("SELECT ");
    statement << select << " = " << spliced(code);
    return Rows(selector, statement, connection);
  };
  const auto hasRows = [&](int selector, Statement::Constant select, ConnectionPtr& connection) {
    return rowsOf(selector, select, connection).hasRow();
  };
  if (hasRows(selector::kDocuments, "Numero FROM HTickets WHERE Cierre", documents_) ||
      hasRows(selector::kDocuments, "Numero FROM Tickets WHERE Cierre", documents_) ||
      !hasRows(selector::kMain, "Cierre FROM Cierres_Familias WHERE Cierre", main_)) {
    return false;
  }
  const Rows row =
      rowsOf(selector::kMain, "Caja, Fecha FROM Cierres WHERE Facturado = 0 AND Codigo", main_);
  if (!row.hasRow()) return false;
  const double day = row.number("Fecha");
  return day != 0 && !openTicketsOf(row.text("Caja"), Date(day)).empty();
}

bool Shop::Inner::isInvoiced(double closing) {
  Statement statement("SELECT Codigo FROM Cierres WHERE Facturado <> 0 AND Codigo = ");
  statement << spliced(numberText(closing));
  return Rows(selector::kMain, statement, main_).hasRow();
}

/// Writes again the closings behind `after` that only their tickets tell of. In their order, as
/// each begins with the balance of the one before.
void Shop::Inner::rewriteClosings(double after, Recovered& recovered) {
  Statement statement("SELECT DISTINCT Cierre FROM HTickets WHERE Cierre > ");
  statement << spliced(numberText(after)) << " ORDER BY Cierre";
  for (const double closing : numbersOf(selector::kDocuments, statement, "Cierre", documents_)) {
    if (!rewriteClosing(closing)) return;
    recovered.rewritten.push_back(closing);
  }
}

/// Nothing, and false, for a closing that close() did not make: of several tills, days or series.
///
/// The sums are those of a closing, over live tickets: its tickets come back for as long as it
/// takes, the till's open ones step aside, and all of that is undone.
bool Shop::Inner::rewriteClosing(double closing) {
  const std::string code = numberText(closing);
  Statement origins("SELECT DISTINCT Caja, Fecha, Serie FROM HTickets WHERE Cierre = ");
  origins << spliced(code);
  Rows origin(selector::kDocuments, origins, documents_);
  const std::string till = origin.text("Caja");
  const Date day = Date(origin.number("Fecha"));
  const bool isOurs = origin.text("Serie") == kSeries;
  origin.next();
  if (origin.hasRow() || !isOurs) return false;

  Statement statement("SELECT Numero FROM HTickets WHERE Cierre = ");
  statement << spliced(code);
  const std::vector<double> tickets =
      numbersOf(selector::kDocuments, statement, "Numero", documents_);
  DatabaseTransaction rehearsal(documents_);  // never committed
  Statement aside("UPDATE Tickets SET Serie = '' WHERE Serie = '");
  aside << kSeries << "'";
  DataSession().Execute(selector::kDocuments, aside, documents_);
  tickets_.Mover_De_Historicos(closing, documents_);
  lines_.Mover_De_Historicos(closing, documents_);
  for (const double ticket : tickets) {
    tickets_.CerrarTicket(ticket, closing, documents_);
    lines_.CerrarTicket(ticket, closing, documents_);
  }
  writeClosing(closing, till, day);
  return true;
}

// ---------------------------------------------------------------------------------------------
// What a person has decided

/// Looks again under the locks at all that is undecided, as sales go on until then.
void Shop::Inner::followTickets(Recovered& recovered) {
  using Kind = Finding::Kind;
  BothDatabases transaction(main_, documents_);
  Audit audit(main_, documents_);
  for (const Finding& known : recovered.undecided) {
    const double each = known.number;
    for (const Finding& finding :
         known.isOfTicket() ? audit.tickets(each, each) : audit.closings(each, each)) {
      switch (finding.kind) {
        case Kind::kTicketLost:
          undo(each);
          recovered.takenBack.push_back(each);
          break;
        case Kind::kStockNotMoved:
        case Kind::kLinesDiffer:
          undo(each);
          bookStored(each);
          recovered.sales.push_back(each);
          break;
        case Kind::kTicketsOfClosing:
          if (isInvoiced(each)) break;
          deleteClosing(each);
          recovered.closings.push_back(each);
          break;
        case Kind::kClosingLost:
          break;  // those that can be written again are: see rewriteClosings
      }
    }
  }
  transaction.commit(BothDatabases::First::kMain);
}

}  // namespace tavelor::flows
