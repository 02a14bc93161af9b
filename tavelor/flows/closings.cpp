// SPDX-License-Identifier: MIT
// Tills before and behind their closing.
#include "tavelor/flows/closings.hpp"

#include <algorithm>
#include <cmath>
#include <unordered_map>

#include <fmt/format.h>

#include "tavelor/closing/cierres.hpp"
#include "tavelor/flows/amounts.hpp"
#include "tavelor/flows/cash_count.hpp"
#include "tavelor/flows/parts.hpp"
#include "tavelor/flows/payments.hpp"
#include "tavelor/flows/stored_sale.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::flows {

namespace {

constexpr std::size_t kMostRows = 500;
constexpr std::size_t kEmployeeWidth = 20;
constexpr double kHalfACent = 0.005;

double cents(double amount) {
  return roundHalfAway(amount, 2);
}

std::string wholeText(double number) {
  return sqlNumber(number, 0);
}

ConnectionPtr connectionTo(int selector) {
  return DataSession().OpenConnection(selector);
}

/// Adds the conditions that a question makes.
Statement conditionsOf(const ClosingQuestion& question) {
  Statement where(" WHERE Codigo > 0");
  if (!question.till.empty()) where << " AND Caja = " << sqlText(question.till);
  if (question.from) where << " AND Fecha >= " << spliced(wholeText(question.from->days()));
  if (question.to) where << " AND Fecha < " << spliced(wholeText(question.to->days() + 1));
  return where;
}

constexpr Statement::Constant kRowColumns =
    "SELECT Codigo, Caja, Fecha, Total + Credito AS Ventas, Saldo_Inicio, Saldo_Final FROM Cierres";

ClosingRow rowOf(const Rows& rows) {
  return {.number = rows.number("Codigo"),
          .till = rows.text("Caja"),
          .day = rows.day("Fecha"),
          .total = cents(rows.number("Ventas")),
          .start = cents(rows.number("Saldo_Inicio")),
          .end = cents(rows.number("Saldo_Final"))};
}

StoredCount countOf(const Rows& rows) {
  return {.expected = rows.number("Esperado"),
          .counted = rows.number("Contado"),
          .difference = rows.number("Diferencia"),
          .by = rows.text("Empleado"),
          .moment = Date(rows.number("Momento"))};
}

/// "Codigo IN (3, 2)".
Statement isOneOf(Statement::Constant column, const std::vector<double>& numbers) {
  Statement condition;
  condition << column << " IN (";
  for (std::size_t at = 0; at < numbers.size(); ++at) {
    if (at > 0) condition << ", ";
    condition << spliced(wholeText(numbers[at]));
  }
  condition << ")";
  return condition;
}

void readCounts(std::vector<ClosingRow>& rows, const std::vector<double>& numbers,
                const ConnectionPtr& main) {
  Statement statement(
      "SELECT Cierre, Esperado, Contado, Diferencia, Empleado, Momento FROM Cierres_Arqueos "
      "WHERE ");
  statement << isOneOf("Cierre", numbers);
  for (Rows counts(selector::kMain, statement, main); counts.hasRow(); counts.next()) {
    const double closing = counts.number("Cierre");
    for (ClosingRow& row : rows) {
      if (row.number == closing) row.count = countOf(counts);
    }
  }
}

std::string nameOf(const std::string& code, Statement::Constant catalogue,
                   const ConnectionPtr& main) {
  Statement statement("SELECT Descripcion FROM ");
  statement << catalogue << " WHERE Codigo = " << sqlText(code);
  const Rows row(selector::kMain, statement, main);
  const std::string name = row.hasRow() ? row.text("Descripcion") : std::string();
  return name.empty() ? code : name;
}

std::vector<Share> sharesOf(double closing, Statement::Constant column, Statement::Constant table,
                            Statement::Constant catalogue, const ConnectionPtr& main) {
  Statement statement("SELECT ");
  statement << column << " AS Parte, Importe FROM " << table
            << " WHERE Cierre = " << spliced(wholeText(closing)) << " ORDER BY " << column;
  std::vector<Share> shares;
  for (Rows rows(selector::kMain, statement, main); rows.hasRow(); rows.next()) {
    shares.push_back({rows.text("Parte"), {}, cents(rows.number("Importe"))});
  }
  for (Share& share : shares) share.name = nameOf(share.code, catalogue, main);
  return shares;
}

void readTaxes(ClosingDetails& closing, const ConnectionPtr& main) {
  Statement statement("SELECT Iva, Base, Importe FROM Cierres_Lineas_Impuestos WHERE Cierre = ");
  statement << spliced(wholeText(closing.number)) << " ORDER BY Iva";
  for (Rows rows(selector::kMain, statement, main); rows.hasRow(); rows.next()) {
    closing.taxes.push_back(
        {rows.number("Iva"), cents(rows.number("Base")), cents(rows.number("Importe"))});
  }
}

/// The till's closing before it: a till's very first one begins with whatever lies in its drawer.
void readPrevious(ClosingDetails& closing, const ConnectionPtr& main) {
  Statement last("SELECT Max(Codigo) AS Ultimo FROM Cierres WHERE Caja = ");
  last << sqlText(closing.till) << " AND Codigo < " << spliced(wholeText(closing.number));
  const Rows before(selector::kMain, last, main);
  if (before.isNull("Ultimo")) return;
  closing.previous = before.number("Ultimo");
  Statement statement("SELECT Saldo_Final FROM Cierres WHERE Codigo = ");
  statement << spliced(wholeText(*closing.previous));
  const double end = Rows(selector::kMain, statement, main).number("Saldo_Final");
  closing.isBroken = std::abs(closing.start - end) >= kHalfACent;
}

std::size_t ticketsOf(double closing) {
  Statement statement("SELECT Count(*) AS Cuantos FROM HTickets WHERE Cierre = ");
  statement << spliced(wholeText(closing));
  return static_cast<std::size_t>(Rows(selector::kDocuments, statement).number("Cuantos"));
}

/// By method, of tickets that no closing has taken.
PaymentSums openSums(TillDay& all, const std::string& till, Date day) {
  const ConnectionPtr documents = connectionTo(selector::kDocuments);
  Statement which("Tickets.Cierre = 0 AND Tickets.Serie = '");
  which << kSeries << "' AND Tickets.Caja = " << sqlText(till)
        << " AND Tickets.Fecha = " << spliced(wholeText(day.days()));
  Statement statement(
      "SELECT Forma_Pago, Count(*) AS Cuantos, Sum(Total) AS Importe FROM Tickets WHERE ");
  statement << which << " GROUP BY Forma_Pago ORDER BY Forma_Pago";
  PaymentSums sums;
  for (Rows rows(selector::kDocuments, statement, documents); rows.hasRow(); rows.next()) {
    all.tickets += static_cast<std::size_t>(rows.number("Cuantos"));
    all.total = cents(all.total + rows.number("Importe"));
    sums.emplace_back(rows.text("Forma_Pago"), cents(rows.number("Importe")));
  }
  if (all.tickets > 0) splitByParts(sums, which, documents);
  std::sort(sums.begin(), sums.end());
  return sums;
}

}  // namespace

TillDay tillDay(const std::string& till, Date day) {
  TillDay all;
  ConnectionPtr main = connectionTo(selector::kMain);
  const PaymentMethods methods(main);
  double cash = 0;
  for (const auto& [payment, amount] : openSums(all, till, day.dayOnly())) {
    const PaymentMethod* const method = methods.byCode(payment);
    TillPayment part;
    part.code = payment;
    part.name = method == nullptr || method->name.empty() ? payment : method->name;
    part.amount = amount;
    part.isCash = method != nullptr && method->isCash;
    if (part.isCash) cash += amount;
    all.payments.push_back(std::move(part));
  }
  double balance = 0;
  ClsCierres().SaldoAnterior(day, doubledQuotes(till), "", kSeries, balance, main);
  all.opening = cents(balance + countedOver(till, main));
  all.expected = cents(all.opening + cash);
  return all;
}

ClosingList listClosings(const ClosingQuestion& question) {
  const ConnectionPtr main = connectionTo(selector::kMain);
  const std::size_t limit = std::min(question.limit, kMostRows);
  ClosingList list;
  std::vector<double> numbers;
  Statement all("SELECT Codigo FROM Cierres");
  all << conditionsOf(question) << " ORDER BY Codigo DESC";
  for (Rows rows(selector::kMain, all, main); rows.hasRow(); rows.next(), ++list.total) {
    if (list.total < question.offset || numbers.size() >= limit) continue;
    numbers.push_back(rows.number("Codigo"));
  }
  if (numbers.empty()) return list;
  Statement statement(kRowColumns);
  statement << " WHERE " << isOneOf("Codigo", numbers) << " ORDER BY Codigo DESC";
  for (Rows rows(selector::kMain, statement, main); rows.hasRow(); rows.next()) {
    list.rows.push_back(rowOf(rows));
  }
  readCounts(list.rows, numbers, main);
  return list;
}

std::optional<ClosingDetails> findClosing(double number) {
  const ConnectionPtr main = connectionTo(selector::kMain);
  Statement statement(kRowColumns);
  statement << " WHERE Codigo = " << spliced(wholeText(number));
  const Rows row(selector::kMain, statement, main);
  if (!row.hasRow()) return std::nullopt;
  ClosingDetails closing;
  static_cast<ClosingRow&>(closing) = rowOf(row);
  closing.count = countOf(number);
  closing.tickets = ticketsOf(number);
  closing.families = sharesOf(number, "Familia", "Cierres_Familias", "Familias", main);
  closing.payments = sharesOf(number, "Forma_Pago", "Cierres_Formas_Pago", "Formas_Pago", main);
  readTaxes(closing, main);
  readPrevious(closing, main);
  return closing;
}

std::optional<ClosingDetails> findClosing(const std::string& till, Date day) {
  Statement statement("SELECT Max(Codigo) AS Ultimo FROM Cierres WHERE Caja = ");
  statement << sqlText(till) << " AND Fecha >= " << spliced(wholeText(day.dayOnly().days()))
            << " AND Fecha < " << spliced(wholeText(day.dayOnly().days() + 1));
  const Rows row(selector::kMain, statement);
  if (row.isNull("Ultimo")) return std::nullopt;
  return findClosing(row.number("Ultimo"));
}

// ---------------------------------------------------------------------------------------------
// Counts

std::optional<StoredCount> countOf(double closing) {
  Statement statement(
      "SELECT Esperado, Contado, Diferencia, Empleado, Momento FROM Cierres_Arqueos WHERE Cierre "
      "= ");
  statement << spliced(wholeText(closing));
  const Rows row(selector::kMain, statement);
  if (!row.hasRow()) return std::nullopt;
  return countOf(row);
}

void requireAmount(const CashCount& count) {
  const auto refuse = [](const std::string& why) { raise(errors::kInvalidCall, "Shop", why); };
  if (!std::isfinite(count.counted) || std::abs(count.counted) > kMostMoney) {
    refuse("What was counted is no amount.");
  }
  if (count.counted < 0) refuse("What was counted is below 0.");
  if (std::abs(count.counted - cents(count.counted)) > 1e-6) {
    refuse("What was counted is no whole cents.");
  }
  if (text::length(count.by) > kEmployeeWidth) {
    refuse(fmt::format("The employee who counted has more than {} characters.", kEmployeeWidth));
  }
}

double countedOver(const std::string& till, const ConnectionPtr& main) {
  Statement statement("SELECT Sum(Diferencia) AS Sobra FROM Cierres_Arqueos WHERE Caja = ");
  statement << sqlText(till);
  return Rows(selector::kMain, statement, main).number("Sobra");
}

void writeCount(double closing, const std::string& till, const CashCount& count,
                const ConnectionPtr& main) {
  Statement balance("SELECT Saldo_Final FROM Cierres WHERE Codigo = ");
  balance << spliced(wholeText(closing));
  const double end = Rows(selector::kMain, balance, main).number("Saldo_Final");
  const double expected = cents(end + countedOver(till, main));
  const double counted = cents(count.counted);
  Statement statement(
      "INSERT INTO Cierres_Arqueos (Cierre, Caja, Esperado, Contado, Diferencia, Empleado, "
      "Momento) "
      "VALUES (");
  statement << spliced(wholeText(closing)) << ", " << sqlText(till) << ", "
            << spliced(sqlNumber(expected)) << ", " << spliced(sqlNumber(counted)) << ", "
            << spliced(sqlNumber(cents(counted - expected))) << ", " << sqlText(count.by)
            << ", Now())";
  ConnectionPtr connection = main;
  DataSession().Execute(selector::kMain, statement, connection);
}

}  // namespace tavelor::flows
