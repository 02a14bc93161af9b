// SPDX-License-Identifier: MIT
// /api/v1/session: who is signed in, and what a page needs to begin with.
#include <fmt/format.h>

#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/payments.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/application.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/pins.hpp"
#include "tavelor/web/sessions.hpp"
#include "tavelor/web/transaction.hpp"

namespace tavelor::web {

namespace {

constexpr std::size_t kLongestCode = 50;
constexpr std::size_t kLongestPin = 128;
constexpr std::string_view kWarehouse = "001";  // the one that tills sell from

Json codesAndNames(const Statement& statement) {
  Json all = Json::array();
  for (Rows rows(kMain, statement); rows.hasRow(); rows.next()) {
    all.push_back({{"code", rows.text("Codigo")}, {"name", rows.text("Nombre")}});
  }
  return all;
}

Json localeOf(const Locale& locale) {
  return {{"language", locale.name == "neutral" ? "en" : "es"},
          {"decimal", locale.decimal},
          {"group", locale.thousands},
          {"currency", locale.currencySymbol},
          {"dateOrder", locale.dateOrder == DateOrder::kDayMonthYear ? "dmy" : "ymd"}};
}

Json payments() {
  const flows::PaymentMethods methods;
  Json all = Json::array();
  for (Rows rows(kMain, Statement("SELECT codigo FROM Formas_Pago ORDER BY codigo")); rows.hasRow();
       rows.next()) {
    const flows::PaymentMethod* const method = methods.byCode(rows.text("codigo"));
    if (method == nullptr) continue;
    all.push_back({{"code", method->code},
                   {"name", method->name},
                   {"isCash", method->isCash},
                   {"isOnCredit", method->isOnCredit}});
  }
  return all;
}

Json taxes() {
  Json all = Json::array();
  const Statement statement(
      "SELECT Codigo, Descripcion, Impuesto FROM TIPOS_IMPUESTO ORDER BY Impuesto");
  for (Rows rows(kMain, statement); rows.hasRow(); rows.next()) {
    all.push_back({{"code", rows.text("Codigo")},
                   {"name", rows.text("Descripcion")},
                   {"rate", toJson(rows.number("Impuesto"))}});
  }
  return all;
}

/// A, B and C are columns of every article; further ones are there where an article has a price.
Json tariffs() {
  Json all = Json::array();
  const auto add = [&](std::string_view code) {
    all.push_back({{"code", code}, {"name", fmt::format("Tarifa {}", code)}});
  };
  for (const char* const code : {"A", "B", "C"}) add(code);
  const Statement statement("SELECT DISTINCT Tarifa FROM Articulos_Tarifas ORDER BY Tarifa");
  for (Rows rows(kMain, statement); rows.hasRow(); rows.next()) add(rows.text("Tarifa"));
  return all;
}

Json employees() {
  Json all = Json::array();
  for (const Caller& each : employeesWithPin())
    all.push_back({{"code", each.code}, {"name", each.name}});
  return all;
}

Json sessionOf(const Caller& caller, const std::string& token) {
  Apartment& apartment = Apartment::current();
  const flows::Issuer issuer = flows::issuer();
  Json json = {{"employee", nullptr}, {"role", caller.role}, {"rights", caller.rights.names()}};
  json["shop"] = {{"name", issuer.name}};
  json["locale"] = localeOf(apartment.locale());
  json["employees"] = employees();
  json["version"] = TAVELOR_VERSION;
  if (caller.isNobody()) return json;
  json["employee"] = {{"code", caller.code}, {"name", caller.name}};
  json["token"] = token;
  json["shop"]["fiscalNumber"] = issuer.fiscalNumber;
  json["shop"]["keepsRecords"] = fiscal::readSettings(apartment.installation()).has_value();
  json["shop"]["warehouse"] = kWarehouse;
  json["today"] = dayText(apartment.clock().today());
  json["tills"] =
      codesAndNames(Statement("SELECT Codigo, Descripcion AS Nombre FROM Cajas ORDER BY Codigo"));
  json["payments"] = payments();
  json["taxes"] = taxes();
  json["tariffs"] = tariffs();
  return json;
}

Answer tell(Context& context) {
  return answer(sessionOf(context.caller(), tokenOf(context.request())));
}

std::string waitText(int seconds) {
  return seconds < 120 ? fmt::format("{} seconds", seconds)
                       : fmt::format("{} minutes", (seconds + 59) / 60);
}

/// Raises unless the PIN is right.
void mustBeRight(const PinTry& tried) {
  if (tried.isRight) return;
  if (tried.seconds > 0) {
    throw Failure::locked(
        fmt::format("Too many wrong tries: the next one is taken in {}.", waitText(tried.seconds)),
        tried.seconds);
  }
  Failure failure = Failure::signedOut("The employee or the PIN is not right.");
  failure.details = {{"left", tried.left}};
  throw failure;
}

void takeToken(Context& context) {
  RateLimit& limit = context.application().signIns();
  if (limit.take(context.request().address)) return;
  throw Failure::limit(429, "Too many come from this address; wait a little.", limit.seconds());
}

Answer signIn(Context& context) {
  takeToken(context);
  const Fields fields(context.body());
  fields.allowOnly({"employee", "pin"});
  const std::string code = fields.text("employee", kLongestCode);
  mustBeRight(tryPin(code, fields.text("pin", kLongestPin)));
  // Whoever was signed in here is not any more: a session is never taken over.
  if (!context.caller().session.empty()) endSession(context.caller());
  const std::string secret = beginSession(code);
  Caller caller = callerOfSession(secret);
  context.changed(fmt::format("{} signs in", code));
  Answer made = answer(sessionOf(caller, tokenOf(secret)));
  made.headers.emplace_back("Set-Cookie", cookieOf(secret, context.request().isSecure));
  return made;
}

Answer signOut(Context& context) {
  if (!context.caller().session.empty()) endSession(context.caller());
  context.changed("signs out");
  return {.status = 204,
          .type = "",
          .headers = {{"Set-Cookie", cookieOf("", context.request().isSecure)}}};
}

Answer changePin(Context& context) {
  takeToken(context);
  if (context.caller().kind != Caller::Kind::kEmployee) {
    throw Failure::forbidden("A program has no PIN.");
  }
  const Fields fields(context.body());
  fields.allowOnly({"old", "new"});
  const std::string pin = fields.text("new", kLongestPin);
  mustBeRight(tryPin(context.caller().code, fields.text("old", kLongestPin)));
  setPin(context.caller().code, pin, context.caller().role);
  // All sessions of the old one have ended; this one goes on as a new one.
  const std::string secret = beginSession(context.caller().code);
  context.changed("changes the PIN");
  Answer made = answer(sessionOf(context.caller(), tokenOf(secret)));
  made.headers.emplace_back("Set-Cookie", cookieOf(secret, context.request().isSecure));
  return made;
}

}  // namespace

void addSession(Routes& routes) {
  constexpr std::string_view kPath = "/api/v1/session";
  routes.add(Method::kGet, kPath, Right::kAnyone, tell,
             {.summary = "Who is signed in, and what a page needs to begin with"});
  routes.add(Method::kPost, kPath, Right::kAnyone, signIn,
             {.summary = "Signs an employee in",
              .body = R"({"type":"object","required":["employee","pin"],"properties":{
                "employee":{"type":"string"},"pin":{"type":"string"}}})"});
  routes.add(Method::kDelete, kPath, Right::kSignedIn, signOut, {.summary = "Signs out"});
  routes.add(Method::kPost, "/api/v1/session/pin", Right::kSignedIn, changePin,
             {.summary = "Changes one's own PIN",
              .body = R"({"type":"object","required":["old","new"],"properties":{
                "old":{"type":"string"},"new":{"type":"string"}}})"});
}

}  // namespace tavelor::web
