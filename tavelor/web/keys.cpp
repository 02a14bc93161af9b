// SPDX-License-Identifier: MIT
// Keys of programs.
#include <fmt/format.h>

#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/web/hashes.hpp"
#include "tavelor/web/pins.hpp"
#include "tavelor/web/transaction.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kMark = "tvk_";
constexpr std::size_t kNameWidth = 50;

}  // namespace

std::string makeKey(std::string_view name, std::string_view rights) {
  if (name.empty() || name.size() > kNameWidth) {
    raise(errors::kInvalidCall, "Key",
          fmt::format("A key has a name of 1 to {} characters.", kNameWidth));
  }
  Rights::of(rights);  // raises for what is none
  std::string key = std::string(kMark) + newSecret();
  Statement statement("INSERT INTO Web_Claves (Nombre, Huella, Derechos, Fecha) VALUES (");
  statement << sqlText(name) << ", " << sqlText(hashOf(key)) << ", " << sqlText(rights) << ", "
            << sqlLiteral(Apartment::current().clock().now()) << ")";
  ConnectionPtr connection;
  DataSession().Execute(kMain, statement, connection);
  return key;
}

bool removeKey(std::string_view name) {
  Statement statement("DELETE FROM Web_Claves WHERE Nombre = ");
  statement << sqlText(name);
  return DataSession().OpenConnection(kMain)->Execute(statement) > 0;
}

Caller callerOfKey(std::string_view key) {
  if (!key.starts_with(kMark)) return {};
  Statement statement("SELECT Nombre, Derechos FROM Web_Claves WHERE Huella = ");
  statement << sqlText(hashOf(key));
  const Rows rows(kMain, statement);
  if (!rows.hasRow()) return {};
  return {.kind = Caller::Kind::kProgram,
          .code = rows.text("Nombre"),
          .name = rows.text("Nombre"),
          .rights = Rights::of(rows.text("Derechos"))};
}

}  // namespace tavelor::web
