// SPDX-License-Identifier: MIT
// Connections and their transactions.
#include "tavelor/c/calls.hpp"
#include "tavelor/c/statements.hpp"
#include "tavelor/services/recordset/connection.hpp"

using namespace tavelor::c;

namespace {

/// Runs `work` on a connection.
template <typename Work>
tavelor_status onConnection(tavelor_object* given, tavelor_error** error, Work&& work) {
  return answered(error, [&] {
    const tavelor_object& object = asConnection(given);
    const Inside inside(object.room());
    work(*object.connection, object.room());
  });
}

}  // namespace

tavelor::Statement tavelor::c::statementOf(const char* statement, const tavelor_value* values,
                                           std::size_t count, const Room& room) {
  Statement made;
  splice(
      text(statement, "statement"), values, count, room,
      [&](std::string_view own) { made << Statement::trusted(own); },
      [&](const Variant& value) { made << sqlLiteral(value); });
  return made;
}

tavelor_status tavelor_connection_open(tavelor_apartment* apartment, int32_t selector,
                                       tavelor_object** connection, tavelor_error** error) {
  return answered(error, [&] {
    const std::shared_ptr<Room>& room = asApartment(apartment).room;
    const Inside inside(*room);
    output(connection, "connection");
    *connection = newObject(room, room->apartment().openConnection(selector));
  });
}

tavelor_status tavelor_connection_execute(tavelor_object* connection, const char* statement,
                                          const tavelor_value* values, size_t count,
                                          int64_t* written, tavelor_error** error) {
  return onConnection(connection, error, [&](tavelor::Connection& on, const Room& room) {
    const std::int64_t rows = on.Execute(statementOf(statement, values, count, room));
    if (written != nullptr) *written = rows;
  });
}

tavelor_status tavelor_connection_begin(tavelor_object* connection, tavelor_error** error) {
  return onConnection(connection, error,
                      [](tavelor::Connection& on, const Room& /*room*/) { on.BeginTrans(); });
}

tavelor_status tavelor_connection_commit(tavelor_object* connection, tavelor_error** error) {
  return onConnection(connection, error,
                      [](tavelor::Connection& on, const Room& /*room*/) { on.CommitTrans(); });
}

tavelor_status tavelor_connection_rollback(tavelor_object* connection, tavelor_error** error) {
  return onConnection(connection, error,
                      [](tavelor::Connection& on, const Room& /*room*/) { on.RollbackTrans(); });
}

tavelor_status tavelor_connection_level(tavelor_object* connection, int32_t* level,
                                        tavelor_error** error) {
  return onConnection(connection, error, [&](tavelor::Connection& on, const Room& /*room*/) {
    output(level, "level") = on.transactionLevel();
  });
}
