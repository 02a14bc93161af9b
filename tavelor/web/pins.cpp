// SPDX-License-Identifier: MIT
// PINs of employees, and roles.
#include "tavelor/web/pins.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/web/hashes.hpp"
#include "tavelor/web/transaction.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kSource = "Pin";
constexpr int kFirstWait = 30;
constexpr int kLongestWait = 3600;
constexpr double kSecondsOfDay = 86'400;
constexpr double kForgottenAfter = 1;  // days without a wrong try
constexpr std::size_t kCodeWidth = 50;

constexpr std::array<std::pair<std::string_view, std::string_view>, 3> kRoles = {{
    {"seller", "till.sell till.return"},
    {"manager", "till.* office.read office.write"},
    {"owner", "*"},
}};

/// What is kept of wrong tries.
struct Tries {
  int wrong = 0;
  int seconds = 0;  ///< of the wait that is on
};

Tries triesOf(std::string_view employee, Date now, const ConnectionPtr& connection) {
  Statement statement("SELECT Fallos, Fecha, Bloqueado FROM Web_Intentos WHERE Empleado = ");
  statement << sqlText(employee);
  const Rows rows(kMain, statement, connection);
  Tries tries;
  if (!rows.hasRow() || now.days() - rows.number("Fecha") > kForgottenAfter) return tries;
  tries.wrong = rows.whole("Fallos");
  const double rest = (rows.number("Bloqueado") - now.days()) * kSecondsOfDay;
  // A clock that was put back must not lock anybody out for longer than a wait can be.
  tries.seconds = static_cast<int>(std::lround(std::clamp<double>(rest, 0, kLongestWait)));
  return tries;
}

/// After so many wrong ones.
int waitAfter(int wrong) {
  if (wrong < kFreeTries) return 0;
  const int doublings = std::min(wrong - kFreeTries, 12);
  return std::min(kFirstWait << doublings, kLongestWait);
}

void keepTries(std::string_view employee, int wrong, Date now, ConnectionPtr& connection) {
  Statement away("DELETE FROM Web_Intentos WHERE Empleado = ");
  away << sqlText(employee) << " OR Fecha < " << sqlLiteral(Date(now.days() - kForgottenAfter));
  DataSession().Execute(kMain, away, connection);
  if (wrong == 0) return;
  Statement statement("INSERT INTO Web_Intentos (Empleado, Fallos, Fecha, Bloqueado) VALUES (");
  statement << sqlText(employee) << ", " << sqlLiteral(wrong) << ", " << sqlLiteral(now) << ", "
            << sqlLiteral(Date(now.days() + waitAfter(wrong) / kSecondsOfDay)) << ")";
  DataSession().Execute(kMain, statement, connection);
}

void signOut(std::string_view employee, ConnectionPtr& connection) {
  Statement statement("DELETE FROM Web_Sesiones WHERE Empleado = ");
  statement << sqlText(employee);
  DataSession().Execute(kMain, statement, connection);
}

std::string hashOfPinOf(std::string_view employee) {
  Statement statement("SELECT Huella FROM Web_Pines WHERE Empleado = ");
  statement << sqlText(employee);
  const Rows rows(kMain, statement);
  return rows.hasRow() ? rows.text("Huella") : std::string();
}

}  // namespace

std::optional<Rights> rightsOfRole(std::string_view role) {
  Statement statement("SELECT Derechos FROM Web_Roles WHERE Rol = ");
  statement << sqlText(role);
  const Rows rows(kMain, statement);
  if (rows.hasRow()) return Rights::of(rows.text("Derechos"));
  for (const auto& [name, words] : kRoles) {
    if (name == role) return Rights::of(words);
  }
  return std::nullopt;
}

std::vector<std::string> roleNames() {
  std::vector<std::string> names;
  for (const auto& [name, words] : kRoles) names.emplace_back(name);
  for (Rows rows(kMain, Statement("SELECT Rol FROM Web_Roles ORDER BY Rol")); rows.hasRow();
       rows.next()) {
    std::string name = rows.text("Rol");
    if (std::find(names.begin(), names.end(), name) == names.end())
      names.push_back(std::move(name));
  }
  return names;
}

std::vector<Caller> employeesWithPin() {
  std::vector<Caller> found;
  const Statement statement(
      "SELECT Web_Pines.Empleado, Web_Pines.Rol, Empleados.Nombre FROM Web_Pines INNER JOIN "
      "Empleados "
      "ON Web_Pines.Empleado = Empleados.Codigo ORDER BY Web_Pines.Empleado");
  for (Rows rows(kMain, statement); rows.hasRow(); rows.next()) {
    found.push_back({.kind = Caller::Kind::kEmployee,
                     .code = rows.text("Empleado"),
                     .name = rows.text("Nombre"),
                     .role = rows.text("Rol")});
  }
  return found;
}

void setPin(std::string_view employee, std::string_view pin, std::string_view role) {
  if (const std::string fault = faultOfPin(pin); !fault.empty()) {
    raise(errors::kInvalidCall, kSource, fault + ".");
  }
  if (!rightsOfRole(role)) {
    raise(errors::kInvalidCall, kSource,
          fmt::format("There is no role {}; there are {}.", role, fmt::join(roleNames(), ", ")));
  }
  Statement known("SELECT Codigo FROM Empleados WHERE Codigo = ");
  known << sqlText(employee);
  if (!Rows(kMain, known).hasRow()) {
    raise(errors::kNoCurrentRecord, kSource, fmt::format("There is no employee {}.", employee));
  }
  const std::string hash = pinHash(pin);
  Transaction transaction;
  ConnectionPtr connection = transaction.connection();
  Statement away("DELETE FROM Web_Pines WHERE Empleado = ");
  away << sqlText(employee);
  DataSession().Execute(kMain, away, connection);
  Statement statement("INSERT INTO Web_Pines (Empleado, Huella, Rol) VALUES (");
  statement << sqlText(employee) << ", " << sqlText(hash) << ", " << sqlText(role) << ")";
  DataSession().Execute(kMain, statement, connection);
  keepTries(employee, 0, Apartment::current().clock().now(), connection);
  signOut(employee, connection);
  transaction.commit();
}

bool removePin(std::string_view employee) {
  Transaction transaction;
  ConnectionPtr connection = transaction.connection();
  Statement statement("DELETE FROM Web_Pines WHERE Empleado = ");
  statement << sqlText(employee);
  const bool wasThere = connection->Execute(statement) > 0;
  signOut(employee, connection);
  transaction.commit();
  return wasThere;
}

PinTry tryPin(std::string_view employee, std::string_view pin) {
  const std::string code(text::left(employee, kCodeWidth));
  const Date now = Apartment::current().clock().now();
  PinTry result;
  Tries tries;
  {
    Transaction transaction;
    ConnectionPtr connection = transaction.connection();
    tries = triesOf(code, now, connection);
    if (tries.seconds > 0) return {.seconds = tries.seconds};
    tries.wrong += 1;
    keepTries(code, tries.wrong, now, connection);
    transaction.commit();
  }
  result.isRight = isPinOf(pin, hashOfPinOf(code));
  if (result.isRight) {
    ConnectionPtr connection;
    keepTries(code, 0, now, connection);
    return result;
  }
  result.left = std::max(0, kFreeTries - tries.wrong);
  result.seconds = waitAfter(tries.wrong);
  return result;
}

}  // namespace tavelor::web
