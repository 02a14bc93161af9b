// SPDX-License-Identifier: MIT
// Who asks.
#include "tavelor/web/sessions.hpp"

#include <fmt/format.h>

#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/hashes.hpp"
#include "tavelor/web/headers.hpp"
#include "tavelor/web/pins.hpp"
#include "tavelor/web/transaction.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kCookie = "tavelor_session";
constexpr std::size_t kSecretSize = 64;
constexpr double kHour = 1.0 / 24;
constexpr double kLongest = 12 * kHour;
constexpr double kLongestIdle = 2 * kHour;
constexpr double kUseIsKept = kHour / 12;  // no request writes more often
constexpr int kMostOfEmployee = 20;

/// The cookie's value, where it can be one of ours.
std::string_view secretOf(const Request& request) {
  std::string_view rest = request.header("cookie");
  while (!rest.empty()) {
    std::string_view pair = rest.substr(0, rest.find(';'));
    rest.remove_prefix(std::min(rest.size(), pair.size() + 1));
    pair.remove_prefix(std::min(pair.size(), pair.find_first_not_of(' ')));
    if (pair.size() == kCookie.size() + 1 + kSecretSize && pair.starts_with(kCookie) &&
        pair[kCookie.size()] == '=') {
      return pair.substr(kCookie.size() + 1);
    }
  }
  return {};
}

bool changes(Method method) {
  return method != Method::kGet && method != Method::kHead && method != Method::kOptions;
}

void keepUse(std::string_view hash, Date now) {
  Statement statement("UPDATE Web_Sesiones SET Uso = ");
  statement << sqlLiteral(now) << " WHERE Huella = " << sqlText(hash);
  ConnectionPtr connection;
  DataSession().Execute(kMain, statement, connection);
}

}  // namespace

Caller callerOfSession(std::string_view secret) {
  const std::string hash = hashOf(secret);
  Statement statement(
      "SELECT Web_Sesiones.Empleado, Inicio, Uso, Rol, Nombre FROM (Web_Sesiones INNER JOIN "
      "Web_Pines ON Web_Sesiones.Empleado = Web_Pines.Empleado) INNER JOIN Empleados ON "
      "Web_Sesiones.Empleado = Empleados.Codigo WHERE Web_Sesiones.Huella = ");
  statement << sqlText(hash);
  const Rows rows(kMain, statement);
  if (!rows.hasRow()) return {};
  const Date now = Apartment::current().clock().now();
  const double idle = now.days() - rows.number("Uso");
  if (now.days() - rows.number("Inicio") > kLongest || idle > kLongestIdle) return {};
  Caller caller{.kind = Caller::Kind::kEmployee,
                .code = rows.text("Empleado"),
                .name = rows.text("Nombre"),
                .role = rows.text("Rol"),
                .session = hash};
  caller.rights = rightsOfRole(caller.role).value_or(Rights());
  if (idle > kUseIsKept) keepUse(hash, now);
  return caller;
}

Caller callerOf(const Request& request, bool needsToken) {
  constexpr std::string_view kBearer = "Bearer ";
  if (const std::string_view given = request.header("authorization"); !given.empty()) {
    Caller caller =
        given.starts_with(kBearer) ? callerOfKey(given.substr(kBearer.size())) : Caller();
    if (caller.isNobody()) throw Failure::signedOut("This is no key of a program.");
    return caller;
  }
  if (changes(request.method)) mustBeOfOurPages(request);
  const std::string_view secret = secretOf(request);
  if (secret.empty()) return {};
  Caller caller = callerOfSession(secret);
  if (needsToken && !caller.isNobody() && changes(request.method) &&
      !isSame(request.header("x-tavelor-token"), tokenOf(secret))) {
    throw Failure::forbidden("The token of the session is missing: X-Tavelor-Token.");
  }
  return caller;
}

std::string beginSession(std::string_view employee) {
  std::string secret = newSecret();
  const Date now = Apartment::current().clock().now();
  Transaction transaction;
  ConnectionPtr connection = transaction.connection();
  Statement ended("DELETE FROM Web_Sesiones WHERE Inicio < ");
  ended << sqlLiteral(Date(now.days() - kLongest)) << " OR Uso < "
        << sqlLiteral(Date(now.days() - kLongestIdle));
  DataSession().Execute(kMain, ended, connection);
  Statement all("SELECT Huella FROM Web_Sesiones WHERE Empleado = ");
  all << sqlText(employee) << " ORDER BY Inicio DESC";
  int count = 0;
  for (Rows rows(kMain, all, connection); rows.hasRow(); rows.next()) {
    if (++count < kMostOfEmployee) continue;
    Statement oldest("DELETE FROM Web_Sesiones WHERE Huella = ");
    oldest << sqlText(rows.text("Huella"));
    DataSession().Execute(kMain, oldest, connection);
  }
  Statement statement("INSERT INTO Web_Sesiones (Huella, Empleado, Inicio, Uso) VALUES (");
  statement << sqlText(hashOf(secret)) << ", " << sqlText(employee) << ", " << sqlLiteral(now)
            << ", " << sqlLiteral(now) << ")";
  DataSession().Execute(kMain, statement, connection);
  transaction.commit();
  return secret;
}

void endSession(const Caller& caller) {
  Statement statement("DELETE FROM Web_Sesiones WHERE Huella = ");
  statement << sqlText(caller.session);
  ConnectionPtr connection;
  DataSession().Execute(kMain, statement, connection);
}

std::string tokenOf(std::string_view secret) {
  return hashOf(fmt::format("token of {}", secret));
}

std::string tokenOf(const Request& request) {
  const std::string_view secret = secretOf(request);
  return secret.empty() ? std::string() : tokenOf(secret);
}

std::string cookieOf(std::string_view secret, bool isSecure) {
  return fmt::format("{}={}; Path=/; HttpOnly; SameSite=Strict{}{}", kCookie, secret,
                     isSecure ? "; Secure" : "", secret.empty() ? "; Max-Age=0" : "");
}

}  // namespace tavelor::web
