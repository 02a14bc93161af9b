// SPDX-License-Identifier: MIT
// The log of changes.
#include "tavelor/web/change_log.hpp"

#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/transaction.hpp"

namespace tavelor::web {

namespace {

constexpr std::size_t kWidth = 255;  // of each text of the table but the shorter ones

}  // namespace

void logChange(const Context& context, int status, std::shared_ptr<Connection> main) {
  const Caller& caller = context.caller();
  const bool isProgram = caller.kind == Caller::Kind::kProgram;
  Statement statement(
      "INSERT INTO Web_Registro (Fecha, Empleado, Programa, Metodo, Ruta, Estado, Direccion, "
      "Detalle) VALUES (");
  const auto cut = [](std::string_view text) { return sqlText(text::left(text, kWidth)); };
  statement << sqlLiteral(Apartment::current().clock().now()) << ", "
            << sqlText(isProgram ? "" : caller.code) << ", "
            << sqlText(isProgram ? caller.code : "") << ", "
            << sqlText(nameOf(context.request().method)) << ", " << cut(context.request().target)
            << ", " << sqlLiteral(status) << ", " << cut(context.request().address) << ", "
            << cut(context.changed()) << ")";
  DataSession().Execute(kMain, statement, main);
}

}  // namespace tavelor::web
