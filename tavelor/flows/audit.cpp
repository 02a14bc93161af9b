// SPDX-License-Identifier: MIT
// Compares what the main database and the documents tell of the same tickets and closings.
#include "tavelor/flows/audit.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <string_view>

#include "tavelor/flows/shop.hpp"
#include "tavelor/flows/shop_inner.hpp"

namespace tavelor::flows {

namespace {

using Kind = Finding::Kind;

/// "column >= first AND column <= last".
Statement between(Statement::Constant column, double first, double last) {
  Statement condition(column);
  condition << " >= " << spliced(numberText(first)) << " AND " << column
            << " <= " << spliced(numberText(last));
  return condition;
}

/// What both databases tell of one ticket.
struct Ticket {
  bool isThere = false;
  bool isSoldHere = false;  // of the series of the flows
  Date day;
  std::int64_t lines = 0;
  std::int64_t movements = 0;
  double units = 0;       // of the lines, returns negative
  double movedUnits = 0;  // entries negative

  bool isMoved() const {
    // Sums over thousands of weighed lines differ in the last bits.
    constexpr double kLeastUnit = 1e-6;
    return movements == lines && std::abs(units - movedUnits) < kLeastUnit * (1 + std::abs(units));
  }
};

using Tickets = std::map<double, Ticket>;

void readTickets(Statement::Constant table, double first, double last,
                 const ConnectionPtr& documents, Tickets& tickets) {
  Statement heads("SELECT Numero, Serie, Fecha FROM ");
  heads << table << " WHERE " << between("Numero", first, last);
  for (Rows rows(selector::kDocuments, heads, documents); rows.hasRow(); rows.next()) {
    Ticket& ticket = tickets[rows.number("Numero")];
    ticket.isThere = true;
    ticket.isSoldHere = rows.text("Serie") == kSeries;
    ticket.day = rows.day("Fecha");
  }
  Statement lines("SELECT Numero, Count(*) AS Lineas, Sum(Cantidad) AS Unidades FROM ");
  lines << table << "_Lineas WHERE " << between("Numero", first, last) << " GROUP BY Numero";
  for (Rows rows(selector::kDocuments, lines, documents); rows.hasRow(); rows.next()) {
    const auto ticket = tickets.find(rows.number("Numero"));
    if (ticket == tickets.end()) continue;  // lines without a ticket belong to nobody
    ticket->second.lines += static_cast<std::int64_t>(rows.number("Lineas"));
    ticket->second.units += rows.number("Unidades");
  }
}

void readMovements(double first, double last, const ConnectionPtr& main, Tickets& tickets) {
  Statement statement(
      "SELECT Doc_E, Movimiento, Count(*) AS Lineas, Sum(Cantidad) AS Unidades, Min(Fecha) AS Dia "
      "FROM Articulos_Movimientos_Almacen WHERE ");
  statement << between("Doc_E", first, last)
            << " AND Estado = " << spliced(std::to_string(kTicketKind))
            << " GROUP BY Doc_E, Movimiento";
  for (Rows rows(selector::kMain, statement, main); rows.hasRow(); rows.next()) {
    Ticket& ticket = tickets[rows.number("Doc_E")];
    if (!ticket.isThere) ticket.day = rows.day("Dia");
    ticket.movements += static_cast<std::int64_t>(rows.number("Lineas"));
    ticket.movedUnits += rows.number("Unidades") * (rows.flag("Movimiento") ? 1 : -1);
  }
}

/// What both databases tell of one closing.
struct ClosingTraces {
  bool isThere = false;
  bool hasSums = false;
  std::int64_t tickets = 0;
  Date day;
  std::string till;
};

/// The least number above `number` that a table has, or no end.
double nextAbove(double number, int selector, Statement::Constant column, Statement::Constant table,
                 const ConnectionPtr& connection) {
  Statement statement("SELECT Min(");
  statement << column << ") AS Siguiente FROM " << table << " WHERE " << column << " > "
            << spliced(numberText(number));
  const Rows rows(selector, statement, connection);
  return rows.hasRow() && !rows.isNull("Siguiente") ? rows.number("Siguiente") : Audit::kNoEnd;
}

}  // namespace

std::vector<Finding> Audit::tickets(double first, double last) {
  Tickets tickets;
  {
    const QuietDatabases lock(main_, documents_);
    readTickets("Tickets", first, last, documents_, tickets);
    readTickets("HTickets", first, last, documents_, tickets);
    readMovements(first, last, main_, tickets);
  }
  std::vector<Finding> findings;
  for (const auto& [number, ticket] : tickets) {
    const auto find = [&, &number = number, &ticket = ticket](Kind kind) {
      findings.push_back({.kind = kind,
                          .number = number,
                          .day = ticket.day,
                          .till = {},
                          .lines = ticket.lines,
                          .movements = ticket.movements});
    };
    if (!ticket.isThere) {
      find(Kind::kTicketLost);
    } else if (ticket.isSoldHere && !ticket.isMoved()) {
      find(ticket.movements == 0 ? Kind::kStockNotMoved : Kind::kLinesDiffer);
    }
  }
  return findings;
}

std::vector<Finding> Audit::closings(double first, double last) {
  std::map<double, ClosingTraces> closings;
  {
    const QuietDatabases lock(main_, documents_);
    Statement heads("SELECT Codigo, Caja, Fecha FROM Cierres WHERE ");
    heads << between("Codigo", first, last);
    for (Rows rows(selector::kMain, heads, main_); rows.hasRow(); rows.next()) {
      closings[rows.number("Codigo")] = {.isThere = true,
                                         .hasSums = false,
                                         .tickets = 0,
                                         .day = rows.day("Fecha"),
                                         .till = rows.text("Caja")};
    }
    Statement sums("SELECT DISTINCT Cierre FROM Cierres_Familias WHERE ");
    sums << between("Cierre", first, last);
    for (const double closing : numbersOf(selector::kMain, sums, "Cierre", main_)) {
      closings[closing].hasSums = true;
    }
    for (const Statement::Constant table : {kTicketTables[1], kTicketTables[0]}) {
      Statement marks(
          "SELECT Cierre, Count(*) AS Cuantos, Min(Fecha) AS Dia, Min(Caja) AS CajaDe FROM ");
      marks << table << " WHERE " << between("Cierre", first, last) << " GROUP BY Cierre";
      for (Rows rows(selector::kDocuments, marks, documents_); rows.hasRow(); rows.next()) {
        ClosingTraces& closing = closings[rows.number("Cierre")];
        closing.tickets += static_cast<std::int64_t>(rows.number("Cuantos"));
        if (closing.isThere) continue;
        closing.day = rows.day("Dia");
        closing.till = rows.text("CajaDe");
      }
    }
  }
  std::vector<Finding> findings;
  for (const auto& [number, closing] : closings) {
    const bool lacksTickets = closing.isThere && closing.hasSums && closing.tickets == 0;
    const bool lacksClosing = !closing.isThere && closing.tickets > 0;
    if (!lacksTickets && !lacksClosing) continue;
    findings.push_back({.kind = lacksTickets ? Kind::kTicketsOfClosing : Kind::kClosingLost,
                        .number = number,
                        .day = closing.day,
                        .till = closing.till,
                        .lines = closing.tickets,
                        .movements = 0});
  }
  return findings;
}

std::vector<Finding> Audit::everything() {
  constexpr double kPiece = 10000;
  std::vector<Finding> findings;
  const auto add = [&](std::vector<Finding> more) {
    findings.insert(findings.end(), std::make_move_iterator(more.begin()),
                    std::make_move_iterator(more.end()));
  };
  const auto nextTicket = [&](double number) {
    return std::min(
        {nextAbove(number, selector::kDocuments, "Numero", "Tickets", documents_),
         nextAbove(number, selector::kDocuments, "Numero", "HTickets", documents_),
         nextAbove(number, selector::kMain, "Doc_E", "Articulos_Movimientos_Almacen", main_)});
  };
  const auto nextClosing = [&](double number) {
    return std::min({nextAbove(number, selector::kMain, "Codigo", "Cierres", main_),
                     nextAbove(number, selector::kDocuments, "Cierre", "HTickets", documents_)});
  };
  for (double at = nextTicket(0); at < kNoEnd; at = nextTicket(at + kPiece - 1)) {
    add(tickets(at, at + kPiece - 1));
  }
  for (double at = nextClosing(0); at < kNoEnd; at = nextClosing(at + kPiece - 1)) {
    add(closings(at, at + kPiece - 1));
  }
  return findings;
}

}  // namespace tavelor::flows
