// SPDX-License-Identifier: MIT
// Customers at the till: found, and what they owe.
#include <cmath>

#include "tavelor/flows/account.hpp"
#include "tavelor/flows/search.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/routes.hpp"
#include "tavelor/web/till_tickets.hpp"
#include "tavelor/web/till_values.hpp"

namespace tavelor::web {

namespace {

constexpr std::int64_t kMost = 500;
constexpr std::int64_t kUsual = 20;
constexpr std::size_t kWidth = 200;

Answer search(Context& context) {
  mayLook(context);
  flows::CustomerQuestion question;
  question.words = context.query("q", "");
  if (text::length(question.words) > kWidth) {
    throw Failure::input("q may have 200 characters at most.");
  }
  question.most = static_cast<std::size_t>(context.queryWhole("most", 1, kMost, kUsual));
  Json found = Json::array();
  for (const flows::FoundCustomer& each : flows::findCustomers(question)) {
    found.push_back({{"code", each.code},
                     {"name", each.name.empty() ? each.tradeName : each.name},
                     {"tradeName", each.tradeName},
                     {"place", each.place},
                     {"fiscalNumber", each.fiscalNumber},
                     {"phone", each.phone},
                     {"isActive", each.isActive}});
  }
  return answer({{"customers", std::move(found)}});
}

// ---------------------------------------------------------------------------------------------
// One customer

Rows rowOf(const std::string& code) {
  Statement statement(
      "SELECT Codigo, Activo, Bloqueo, Riesgo, Nombre, Razon_Social, NIF, Direccion, "
      "Codigo_Postal, Poblacion, Provincia, Telefono, Movil, E_Mail, Tarifa, Descuento, Recargo, "
      "Forma_Pago FROM Clientes WHERE Codigo = ");
  statement << sqlText(code);
  return {selector::kMain, statement};
}

/// The library tells what the shop owes; a till wants to know what the customer does.
double owed(double balance) {
  return balance == 0 ? 0 : roundHalfAway(-balance, 2);
}

flows::Account accountOf(const std::string& code, std::optional<Date> from,
                         std::optional<Date> to) {
  return flows::readAccount(flows::LedgerOf::kCustomers, code, from, to).value_or(flows::Account());
}

Answer one(Context& context) {
  mayLook(context);
  const std::string& code = context.path("code");
  const Rows row = rowOf(code);
  if (!row.hasRow()) throw Failure::missing("There is no such customer.");
  constexpr double kSetAside = 2;
  const double active = row.number("Activo");
  const std::string legal = row.text("Razon_Social");
  const Json customer = {{"code", row.text("Codigo")},
                         {"name", legal.empty() ? row.text("Nombre") : legal},
                         {"tradeName", row.text("Nombre")},
                         {"fiscalNumber", row.text("NIF")},
                         {"address", row.text("Direccion")},
                         {"postcode", row.text("Codigo_Postal")},
                         {"place", row.text("Poblacion")},
                         {"province", row.text("Provincia")},
                         {"phone", row.text("Telefono")},
                         {"mobile", row.text("Movil")},
                         {"mail", row.text("E_Mail")},
                         {"tariff", row.text("Tarifa")},
                         {"discount", toJson(row.number("Descuento"))},
                         {"hasSurcharge", row.flag("Recargo")},
                         {"payment", row.text("Forma_Pago")}};
  const Json account = {
      {"balance", money(owed(accountOf(code, {}, {}).closing))},
      {"limit", row.isNull("Riesgo") ? Json(nullptr) : money(row.number("Riesgo"))},
      {"blocked", row.flag("Bloqueo")},
      {"active", active != 0 && active != kSetAside}};
  return answer({{"customer", customer}, {"account", account}});
}

void mustBeThere(const std::string& code) {
  if (!rowOf(code).hasRow()) throw Failure::missing("There is no such customer.");
}

Answer account(Context& context) {
  mayLook(context);
  const std::string& code = context.path("code");
  const auto read = flows::readAccount(flows::LedgerOf::kCustomers, code, context.queryDay("from"),
                                       context.queryDay("to"));
  if (!read) throw Failure::missing("There is no such customer.");
  Json entries = Json::array();
  for (const flows::AccountEntry& each : read->entries) {
    entries.push_back({{"day", each.date ? Json(dayText(*each.date)) : Json(nullptr)},
                       {"text", each.text},
                       {"document", jsonOfNumber(each.document)},
                       {"debit", money(each.debit)},
                       {"credit", money(each.credit)},
                       {"balance", money(owed(each.right))}});
  }
  return answer({{"opening", money(owed(read->opening))},
                 {"entries", std::move(entries)},
                 {"debit", money(read->debit)},
                 {"credit", money(read->credit)},
                 {"balance", money(owed(read->closing))}});
}

Answer documents(Context& context) {
  mayLook(context);
  const std::string& code = context.path("code");
  mustBeThere(code);
  flows::TicketQuestion question;
  question.customer = code;
  question.from = context.queryDay("from");
  question.to = context.queryDay("to");
  return answer(ticketsOf(context, std::move(question)));
}

Answer print(Context& context) {
  mayLook(context);
  const auto from = context.queryDay("from");
  const auto to = context.queryDay("to");
  const auto read =
      flows::readAccount(flows::LedgerOf::kCustomers, context.path("customer"), from, to);
  if (!read) throw Failure::missing("There is no such customer.");
  return page(flows::accountPage(*read, from, to));
}

}  // namespace

void addTillCustomers(Routes& routes) {
  const std::vector<QueryParameter> days = {{"from", "first day", "date"},
                                            {"to", "last day", "date"}};
  routes.add(Method::kGet, "/api/v1/customers/search", Right::kSignedIn, search,
             {.summary = "Customers by beginnings of words, codes and fiscal numbers",
              .parameters = {{"q", "what was typed"},
                             {"most", "how many to give, 20 where it is not told", "integer"}}});
  routes.add(Method::kGet, "/api/v1/customers/{code}", Right::kSignedIn, one,
             {.summary = "A customer and what he owes: above 0 he owes the shop"});
  routes.add(Method::kGet, "/api/v1/customers/{code}/account", Right::kSignedIn, account,
             {.summary = "His account: balances above 0 he owes the shop", .parameters = days});
  routes.add(Method::kGet, "/api/v1/customers/{code}/documents", Right::kSignedIn, documents,
             {.summary = "His tickets, the latest first",
              .parameters = {{"from", "first day", "date"},
                             {"to", "last day", "date"},
                             {"offset", "how many to pass over", "integer"},
                             {"limit", "how many to give, 500 at most", "integer"}}});
  routes.add(Method::kGet, "/print/account/{customer}", Right::kSignedIn, print,
             {.summary = "An account to be printed", .parameters = days});
}

}  // namespace tavelor::web
