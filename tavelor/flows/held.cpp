// SPDX-License-Identifier: MIT
// Sales that wait lie beside the tickets that they may become.
#include "tavelor/flows/held.hpp"

#include <string_view>

#include <fmt/format.h>

#include "tavelor/flows/again.hpp"
#include "tavelor/flows/both_databases.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"

namespace tavelor::flows {

namespace {

constexpr Statement::Constant kColumns =
    "SELECT Id, Clave, Caja, Empleado, Etiqueta, Momento, Contenido, Tomado, Tomado_Por FROM "
    "Tickets_Espera WHERE ";

ConnectionPtr documents() {
  return DataSession().OpenConnection(selector::kDocuments);
}

HeldSale saleOf(const Rows& rows) {
  return {.id = rows.number("Id"),
          .key = rows.text("Clave"),
          .till = rows.text("Caja"),
          .employee = rows.text("Empleado"),
          .label = rows.text("Etiqueta"),
          .moment = Date(rows.number("Momento")),
          .content = rows.text("Contenido"),
          .isTaken = !rows.isNull("Tomado")};
}

void requireText(std::string_view what, const std::string& text, std::size_t most) {
  if (text::length(text) > most) {
    raise(errors::kInvalidCall, "HeldSales",
          fmt::format("The {} of a sale that is to wait has more than {} characters.", what, most));
  }
  if (text.find('\0') != std::string::npos) {
    raise(errors::kInvalidCall, "HeldSales",
          fmt::format("The {} of a sale that is to wait holds a zero byte.", what));
  }
}

void requireKey(std::string_view what, const std::string& key) {
  requireText(what, key, HeldLimits::kKey);
  if (!key.empty()) return;
  raise(errors::kInvalidCall, "HeldSales", fmt::format("A sale that is to wait needs a {}.", what));
}

void require(const HeldSale& sale) {
  requireKey("key", sale.key);
  requireText("till", sale.till, HeldLimits::kTill);
  requireText("employee", sale.employee, HeldLimits::kEmployee);
  requireText("label", sale.label, HeldLimits::kLabel);
  requireText("content", sale.content, HeldLimits::kContent);
  if (sale.content.size() > HeldLimits::kContent) {
    raise(errors::kInvalidCall, "HeldSales",
          fmt::format("A sale that is to wait has more than {} bytes.", HeldLimits::kContent));
  }
}

std::optional<HeldSale> byKey(const std::string& key, const ConnectionPtr& connection) {
  Statement statement(kColumns);
  statement << "Clave = " << sqlText(key);
  const Rows row(selector::kDocuments, statement, connection);
  if (!row.hasRow()) return std::nullopt;
  return saleOf(row);
}

void run(const Statement& statement, const ConnectionPtr& connection) {
  ConnectionPtr same = connection;
  DataSession().Execute(selector::kDocuments, statement, same);
}

/// Those that were taken long ago.
void sweep(const ConnectionPtr& connection) {
  const double now = Apartment::current().clock().now().days();
  Statement statement("DELETE FROM Tickets_Espera WHERE Tomado < ");
  statement << spliced(sqlNumber(now - HeldLimits::kDaysTaken));
  run(statement, connection);
}

double holdOnce(const HeldSale& sale, const ConnectionPtr& connection) {
  DatabaseTransaction transaction(connection);
  if (const std::optional<HeldSale> there = byKey(sale.key, connection)) {
    if (!there->isTaken && there->content == sale.content) return there->id;
    // It was taken back and is put aside again, or was typed on after an answer was lost.
    Statement statement("DELETE FROM Tickets_Espera WHERE Clave = ");
    statement << sqlText(sale.key);
    run(statement, connection);
  }
  sweep(connection);
  const Rows waiting(selector::kDocuments,
                     Statement("SELECT Count(*) AS Cuantos FROM Tickets_Espera WHERE Tomado IS "
                               "NULL"),
                     connection);
  if (waiting.number("Cuantos") >= static_cast<double>(HeldLimits::kSales)) {
    raise(errors::kInvalidCall, "HeldSales",
          fmt::format("{} sales wait already: go on with some of them first.", HeldLimits::kSales));
  }
  Statement statement(
      "INSERT INTO Tickets_Espera (Clave, Caja, Empleado, Etiqueta, Momento, Contenido) VALUES (");
  statement << sqlText(sale.key) << ", " << sqlText(sale.till) << ", " << sqlText(sale.employee)
            << ", " << sqlText(sale.label) << ", Now(), " << sqlText(sale.content) << ")";
  run(statement, connection);
  const std::optional<HeldSale> held = byKey(sale.key, connection);
  transaction.commit();
  return held->id;
}

/// The engine lets one of several write the mark, as it looks at the row once more behind the lock.
std::optional<HeldSale> takeOnce(double id, const std::string& taker,
                                 const ConnectionPtr& connection) {
  DatabaseTransaction transaction(connection);
  const std::string number = sqlNumber(id, 0);
  Statement mark("UPDATE Tickets_Espera SET Tomado = Now(), Tomado_Por = ");
  mark << sqlText(taker) << " WHERE Tomado IS NULL AND Id = " << spliced(number);
  run(mark, connection);
  Statement statement(kColumns);
  statement << "Id = " << spliced(number);
  const Rows row(selector::kDocuments, statement, connection);
  if (!row.hasRow()) return std::nullopt;
  if (row.text("Tomado_Por") != taker) {
    throw HeldElsewhere(
        fmt::format("Another till has taken the sale \"{}\" meanwhile.", row.text("Etiqueta")));
  }
  std::optional<HeldSale> sale = saleOf(row);
  transaction.commit();
  return sale;
}

}  // namespace

double holdSale(const HeldSale& sale) {
  require(sale);
  const ConnectionPtr connection = documents();
  return untilThrough(
      *connection, [&](Before /*before*/) { return holdOnce(sale, connection); }, [] {});
}

std::vector<HeldSale> heldSales() {
  Statement statement(kColumns);
  statement << "Tomado IS NULL ORDER BY Id";
  std::vector<HeldSale> all;
  for (Rows rows(selector::kDocuments, statement); rows.hasRow(); rows.next()) {
    all.push_back(saleOf(rows));
  }
  return all;
}

std::optional<HeldSale> takeHeldSale(double id, const std::string& taker) {
  requireKey("word of who takes it", taker);
  const ConnectionPtr connection = documents();
  return untilThrough(
      *connection, [&](Before /*before*/) { return takeOnce(id, taker, connection); }, [] {});
}

}  // namespace tavelor::flows
