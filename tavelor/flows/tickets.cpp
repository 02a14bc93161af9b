// SPDX-License-Identifier: MIT
// Reads tickets and lists of them.
#include "tavelor/flows/tickets.hpp"

#include <algorithm>
#include <functional>

#include "tavelor/flows/amounts.hpp"
#include "tavelor/flows/returned.hpp"
#include "tavelor/flows/stored_sale.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

namespace {

constexpr std::size_t kMostRows = 500;
constexpr Statement::Constant kColumns =
    "SELECT Numero, Referencia, Fecha, Concepto, Caja, Codigo, Razon_Social, Forma_Pago, Total, "
    "Cierre, Entrega, Cambio FROM ";

std::string wholeText(double number) {
  return sqlNumber(number, 0);
}

ConnectionPtr connectionTo(int selector) {
  return DataSession().OpenConnection(selector);
}

void readRow(TicketRow& ticket, const Rows& rows) {
  ticket.number = rows.number("Numero");
  ticket.reference = rows.text("Referencia");
  ticket.day = rows.day("Fecha");
  ticket.time = rows.text("Concepto");
  ticket.till = rows.text("Caja");
  ticket.customer = rows.text("Codigo");
  ticket.name = rows.text("Razon_Social");
  ticket.payment = rows.text("Forma_Pago");
  ticket.total = rows.number("Total");
  ticket.closing = rows.number("Cierre");
  ticket.delivered = rows.number("Entrega");
  ticket.change = rows.number("Cambio");
}

void readComments(Ticket& ticket, Statement::Constant table, const ConnectionPtr& documents) {
  Statement statement("SELECT Comentarios FROM ");
  statement << table << "_Comentarios WHERE Codigo = " << spliced(wholeText(ticket.number));
  for (Rows rows(selector::kDocuments, statement, documents); rows.hasRow(); rows.next()) {
    ticket.comments.push_back(rows.text("Comentarios"));
  }
}

/// The returns of a ticket, and what they have taken off its lines.
void readReturns(Ticket& ticket, const std::vector<SaleLine>& lines, const ConnectionPtr& main,
                 const ConnectionPtr& documents) {
  std::vector<double> left;
  for (const SaleLine& line : lines) left.push_back(std::max(line.quantity, 0.0));
  for (int before = 0;; ++before) {
    const auto other = ticketOf(returnReference(ticket.number, before), documents);
    const auto back = other ? findSale(*other, main, documents) : std::nullopt;
    if (!back) break;
    ticket.returns.push_back(*other);
    takeOff(left, lines, *back);
  }
  for (std::size_t at = 0; at < lines.size(); ++at) {
    const double returned = std::max(lines[at].quantity, 0.0) - left[at];
    ticket.lines.push_back({lines[at], returned <= kNoUnits ? 0 : roundHalfAway(returned, 6)});
  }
}

/// A text as a part of a pattern.
std::string within(const std::string& words) {
  std::string pattern = "*";
  for (const char each : words) {
    const bool isSign = each == '*' || each == '?' || each == '#' || each == '[';
    pattern += isSign ? std::string("[") + each + "]" : std::string(1, each);
  }
  return pattern + "*";
}

bool isNumber(const std::string& words) {
  constexpr std::size_t kMostDigits = 15;
  return !words.empty() && words.size() <= kMostDigits &&
         std::all_of(words.begin(), words.end(), [](char c) { return c >= '0' && c <= '9'; });
}

Statement conditionsOf(const TicketQuestion& question) {
  Statement where(" WHERE Numero > 0");
  if (question.from) where << " AND Fecha >= " << spliced(wholeText(question.from->days()));
  if (question.to) where << " AND Fecha < " << spliced(wholeText(question.to->days() + 1));
  if (!question.till.empty()) where << " AND Caja = " << sqlText(question.till);
  if (!question.customer.empty()) where << " AND Codigo = " << sqlText(question.customer);
  if (question.words.empty()) return where;
  where << " AND (Referencia = " << sqlText(question.words);
  if (isNumber(question.words)) where << " OR Numero = " << spliced(question.words);
  where << " OR Razon_Social LIKE " << sqlText(within(question.words)) << ")";
  return where;
}

}  // namespace

std::optional<Ticket> findTicket(double number) {
  const ConnectionPtr main = connectionTo(selector::kMain);
  const ConnectionPtr documents = connectionTo(selector::kDocuments);
  for (const Statement::Constant table : kTicketTables) {
    Statement statement(kColumns);
    statement << table << " WHERE Numero = " << spliced(wholeText(number));
    const Rows row(selector::kDocuments, statement, documents);
    if (!row.hasRow()) continue;
    Ticket ticket;
    readRow(ticket, row);
    ticket.returnOf = returnedBy(ticket.reference);
    readComments(ticket, table, documents);
    const Sale sale = findSale(number, main, documents).value_or(Sale());
    ticket.parts = sale.parts;
    readReturns(ticket, sale.lines, main, documents);
    return ticket;
  }
  return std::nullopt;
}

std::optional<Ticket> findTicket(const std::string& reference) {
  const auto number = ticketOf(reference, connectionTo(selector::kDocuments));
  return number ? findTicket(*number) : std::nullopt;
}

std::optional<TicketRow> findTicketRow(const std::string& reference) {
  const ConnectionPtr documents = connectionTo(selector::kDocuments);
  for (const Statement::Constant table : kTicketTables) {
    Statement statement(kColumns);
    statement << table << " WHERE Referencia = " << sqlText(reference);
    const Rows row(selector::kDocuments, statement, documents);
    if (!row.hasRow()) continue;
    TicketRow ticket;
    readRow(ticket, row);
    return ticket;
  }
  return std::nullopt;
}

TicketList listTickets(const TicketQuestion& question) {
  const ConnectionPtr documents = connectionTo(selector::kDocuments);
  std::vector<double> numbers;
  for (const Statement::Constant table : kTicketTables) {
    Statement all("SELECT Numero FROM ");
    all << table << conditionsOf(question);
    for (Rows rows(selector::kDocuments, all, documents); rows.hasRow(); rows.next()) {
      numbers.push_back(rows.number("Numero"));
    }
  }
  TicketList list;
  list.total = numbers.size();
  std::sort(numbers.begin(), numbers.end(), std::greater<>());
  numbers.erase(numbers.begin(), numbers.begin() + static_cast<std::ptrdiff_t>(
                                                       std::min(question.offset, numbers.size())));
  numbers.resize(std::min({numbers.size(), question.limit, kMostRows}));
  if (numbers.empty()) return list;
  Statement page(" WHERE Numero IN (");
  for (std::size_t at = 0; at < numbers.size(); ++at) {
    if (at > 0) page << ", ";
    page << spliced(wholeText(numbers[at]));
  }
  page << ")";
  for (const Statement::Constant table : kTicketTables) {
    Statement statement(kColumns);
    statement << table << page;
    for (Rows rows(selector::kDocuments, statement, documents); rows.hasRow(); rows.next()) {
      readRow(list.rows.emplace_back(), rows);
    }
  }
  std::sort(list.rows.begin(), list.rows.end(),
            [](const TicketRow& a, const TicketRow& b) { return a.number > b.number; });
  return list;
}

}  // namespace tavelor::flows
