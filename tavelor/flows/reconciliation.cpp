// SPDX-License-Identifier: MIT
// Reads a day at a time, so that no more than a day lies in memory.
#include "tavelor/flows/reconciliation.hpp"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <optional>
#include <set>
#include <unordered_map>

#include <fmt/format.h>

#include "tavelor/flows/audit.hpp"
#include "tavelor/flows/both_databases.hpp"
#include "tavelor/flows/decisions.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/flows/shop_inner.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

namespace {

std::int64_t cents(double euros) {
  return std::llround(roundHalfAway(euros, 2) * 100);
}

std::string money(std::int64_t amount) {
  return fmt::format("{}{}.{:02}", amount < 0 ? "-" : "", std::abs(amount) / 100,
                     std::abs(amount) % 100);
}

}  // namespace

Tally& Tally::operator+=(const Tally& other) {
  tickets += other.tickets;
  lines += other.lines;
  units += other.units;
  cents += other.cents;
  lineCents += other.lineCents;
  owed += other.owed;
  return *this;
}

void Reconciliation::expect(const Sale& sale) {
  Tally figures{.tickets = 1, .lines = static_cast<std::int64_t>(sale.lines.size())};
  for (const SaleLine& line : sale.lines) {
    figures.units += line.quantity;
    figures.lineCents += flows::cents(line.amount());
  }
  figures.cents = figures.lineCents + flows::cents(sale.surcharge());
  const PaymentMethod* const method = methods_.find(sale.payment);
  if (method != nullptr && method->isOnCredit) figures.owed = figures.cents;
  meant_[{sale.day.days(), sale.till}] += figures;
}

/// What the installation has of one day, by till.
class Reconciliation::Day {
 public:
  explicit Day(double day)
      : day_(sqlNumber(day, 0)),
        main_(DataSession().OpenConnection(selector::kMain)),
        documents_(DataSession().OpenConnection(selector::kDocuments)) {
    const QuietDatabases lock(main_, documents_);  // no sale or closing is seen half
    readTickets("Tickets", false);
    readTickets("HTickets", true);
    readClosings();
    readMovements();
    readAccounts();
    findDisagreements(Date(day));
  }

  PlaceTallies of(const std::string& till) const {
    const auto found = tills_.find(till);
    return found == tills_.end() ? PlaceTallies{} : found->second;
  }
  const std::vector<Finding>& disagreements() const { return disagreements_; }

 private:
  Rows read(int selector, const Statement& statement) {
    return {selector, statement, selector == selector::kMain ? main_ : documents_};
  }

  void add(const std::string& till, bool isHistory, const Tally& figures) {
    tills_[till][kTickets] += figures;
    if (isHistory) tills_[till][kHistory] += figures;
  }

  void readTickets(Statement::Constant table, bool isHistory) {
    Statement tickets("SELECT Numero, Caja, Total, Cierre FROM ");
    tickets << table << " WHERE Fecha = " << spliced(day_);
    for (Rows rows = read(selector::kDocuments, tickets); rows.hasRow(); rows.next()) {
      const std::string till = rows.text("Caja");
      tillOf_[rows.number("Numero")] = till;
      if (const double closing = rows.number("Cierre"); closing != 0) closings_.insert(closing);
      add(till, isHistory, {.tickets = 1, .cents = cents(rows.number("Total"))});
    }
    Statement lines(
        "SELECT Caja, Count(*) AS Lineas, Sum(Cantidad) AS Unidades, Sum(Importe) AS Suma FROM ");
    lines << table << " INNER JOIN " << table << "_Lineas ON " << table << ".Numero = " << table
          << "_Lineas.Numero WHERE Fecha = " << spliced(day_) << " GROUP BY Caja";
    for (Rows rows = read(selector::kDocuments, lines); rows.hasRow(); rows.next()) {
      add(rows.text("Caja"), isHistory,
          {.lines = static_cast<std::int64_t>(rows.number("Lineas")),
           .units = rows.number("Unidades"),
           .lineCents = cents(rows.number("Suma"))});
    }
  }

  void readClosings() {
    Statement statement(
        "SELECT Codigo, Caja, Total + Credito AS Ventas FROM Cierres WHERE Fecha = ");
    statement << spliced(day_);
    for (Rows rows = read(selector::kMain, statement); rows.hasRow(); rows.next()) {
      closings_.insert(rows.number("Codigo"));
      tills_[rows.text("Caja")][kClosings] += {.cents = cents(rows.number("Ventas"))};
    }
  }

  void readMovements() {
    if (tillOf_.empty()) return;
    Statement statement(
        "SELECT Doc_E, Movimiento, Cantidad, Precio FROM Articulos_Movimientos_Almacen WHERE ");
    statement << "Estado = " << spliced(std::to_string(kTicketKind))
              << " AND Doc_E >= " << spliced(sqlNumber(tillOf_.begin()->first, 0))
              << " AND Doc_E <= " << spliced(sqlNumber(tillOf_.rbegin()->first, 0));
    for (Rows rows = read(selector::kMain, statement); rows.hasRow(); rows.next()) {
      const auto ticket = tillOf_.find(rows.number("Doc_E"));
      if (ticket == tillOf_.end()) continue;
      const bool isExit = rows.number("Movimiento") != 0;
      const double units = rows.number("Cantidad") * (isExit ? 1 : -1);
      tills_[ticket->second][kMovements] +=
          {.lines = 1, .units = units, .cents = cents(units * rows.number("Precio"))};
    }
  }

  /// Entries that name a ticket of the day, whoever their customer is.
  void readAccounts() {
    if (tillOf_.empty()) return;
    Statement statement("SELECT Documento_E, Debe, Haber FROM Clientes_Apuntes_Contables WHERE ");
    statement << "Estado = " << spliced(std::to_string(kTicketKind))
              << " AND Documento_E >= " << spliced(sqlNumber(tillOf_.begin()->first, 0))
              << " AND Documento_E <= " << spliced(sqlNumber(tillOf_.rbegin()->first, 0));
    for (Rows rows = read(selector::kMain, statement); rows.hasRow(); rows.next()) {
      const auto ticket = tillOf_.find(rows.number("Documento_E"));
      if (ticket == tillOf_.end()) continue;
      tills_[ticket->second][kAccounts] +=
          {.owed = cents(rows.number("Debe") - rows.number("Haber"))};
    }
  }

  /// The nearest ticket before or behind those of the day: "Max", "<" or "Min", ">".
  double neighbour(Statement::Constant aggregate, Statement::Constant sign, double number,
                   double otherwise) {
    std::optional<double> nearest;
    for (const Statement::Constant table : kTicketTables) {
      Statement statement("SELECT ");
      statement << aggregate << "(Numero) AS Vecino FROM " << table << " WHERE Numero " << sign
                << " " << spliced(sqlNumber(number, 0));
      const Rows rows = read(selector::kDocuments, statement);
      if (rows.isNull("Vecino")) continue;
      const double found = rows.number("Vecino");
      const bool isNearer = !nearest || (sign == "<" ? found > *nearest : found < *nearest);
      if (isNearer) nearest = found;
    }
    return nearest.value_or(otherwise);
  }

  /// Of the tickets of the day and of what lies between them and their neighbours, so that lost
  /// ones at either end are seen too; and of the day's closings.
  void findDisagreements(Date day) {
    Audit audit(main_, documents_);
    const auto take = [&](const std::vector<Finding>& found) {
      std::copy_if(found.begin(), found.end(), std::back_inserter(disagreements_),
                   [&](const Finding& each) { return each.day.dayOnly() == day; });
    };
    if (!tillOf_.empty()) {
      const double before = neighbour("Max", "<", tillOf_.begin()->first, 0);
      const double behind = neighbour("Min", ">", tillOf_.rbegin()->first, Audit::kNoEnd);
      take(audit.tickets(before + 1, behind - 1));
    }
    for (const double closing : closings_) take(audit.closings(closing, closing));
  }

  std::string day_;
  ConnectionPtr main_;
  ConnectionPtr documents_;
  std::map<double, std::string> tillOf_;  // by ticket
  std::set<double> closings_;             // of the day, and of its tickets
  std::unordered_map<std::string, PlaceTallies> tills_;
  std::vector<Finding> disagreements_;
};

void Reconciliation::compare() {
  throughOutages([this] { compareOnce(); });
}

void Reconciliation::compareOnce() {
  totals_ = {};
  differences_.clear();
  for (auto begin = meant_.begin(); begin != meant_.end();) {
    const double date = begin->first.first;
    const Day day(date);
    auto end = begin;
    for (; end != meant_.end() && end->first.first == date; ++end) {
      PlaceTallies found = day.of(end->first.second);
      found[kMeant] = end->second;
      judge(end->first, found);
    }
    tellDisagreements(Date(date), Decisions::open(day.disagreements()));
    begin = end;
  }
}

void Reconciliation::judge(const TillDay& key, const PlaceTallies& found) {
  const Tally& meant = found[kMeant];
  for (std::size_t place = 0; place < kPlaces; ++place) totals_[place] += found[place];
  const auto differ = [&](Place place, std::string_view what, const std::string& has,
                          const std::string& wanted) {
    if (has == wanted) return;
    differences_.push_back({key.second, Date(key.first), place,
                            fmt::format("{} {} where {} were sold", has, what, wanted)});
  };
  differ(kAccounts, "euros", money(found[kAccounts].owed), money(meant.owed));
  for (const Place place : {kTickets, kHistory, kClosings, kMovements}) {
    const Tally& has = found[place];
    const bool tellsTickets = place == kTickets || place == kHistory;
    if (tellsTickets) {
      differ(place, "tickets", std::to_string(has.tickets), std::to_string(meant.tickets));
      differ(place, "euros in the lines", money(has.lineCents), money(meant.lineCents));
    }
    if (place != kClosings) {
      differ(place, "lines", std::to_string(has.lines), std::to_string(meant.lines));
      differ(place, "units", sqlNumber(has.units), sqlNumber(meant.units));
    }
    // Movements tell prices, and no surcharge.
    const std::int64_t wanted = place == kMovements ? meant.lineCents : meant.cents;
    differ(place, "euros", money(has.cents), money(wanted));
  }
}

void Reconciliation::tellDisagreements(Date day, const std::vector<Finding>& findings) {
  for (const bool isOfTicket : {true, false}) {
    std::vector<Finding> part;
    std::copy_if(findings.begin(), findings.end(), std::back_inserter(part),
                 [&](const Finding& each) { return each.isOfTicket() == isOfTicket; });
    for (std::string& sentence : told(part)) {
      differences_.push_back({{}, day, isOfTicket ? kMovements : kClosings, std::move(sentence)});
    }
  }
}

}  // namespace tavelor::flows
