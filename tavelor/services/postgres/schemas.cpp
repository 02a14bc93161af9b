// SPDX-License-Identifier: MIT
// The schemas that must be there before a session works.
#include "tavelor/services/postgres/schemas.hpp"

#include <charconv>
#include <utility>

#include <fmt/format.h>

#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/postgres/errors.hpp"
#include "tavelor/services/postgres/functions.hpp"
#include "tavelor/services/postgres/prepared.hpp"

namespace tavelor::engine::postgres {

namespace {

constexpr std::string_view kFunctionsSchema = "tavelor";
// Kept as the comment of their schema, where anybody may read it.
constexpr std::string_view kVersionComment = "Tavelor functions, version ";
// Whoever makes schemas waits here; it is of this library alone in a database of its own.
constexpr std::int64_t kMakersLock = 0x7461'7665'6C6F'72;  // "tavelor"

struct Found {
  bool hasSchema = false;
  int functions = 0;  // their version; 0 when they are not there

  bool isAll() const { return hasSchema && functions >= functionsVersion(); }
};

Found look(const std::shared_ptr<SessionState>& state) {
  PreparedStatement statement(
      state,
      "SELECT (SELECT count(*) FROM pg_namespace WHERE nspname = $1), "
      "(SELECT obj_description(oid, 'pg_namespace') FROM pg_namespace WHERE nspname = 'tavelor')");
  statement.bind(1, Value::ofText(state->schema));
  RowStore row({ColumnType::kInt32, ColumnType::kMemo});
  statement.fetch(row);
  Found found;
  found.hasSchema = row.integer(0, 0) != 0;
  if (row.isNull(0, 1)) return found;
  const std::string_view comment = row.text(0, 1);
  if (!comment.starts_with(kVersionComment)) return found;
  const std::string_view number = comment.substr(kVersionComment.size());
  std::from_chars(number.data(), number.data() + number.size(), found.functions);
  return found;
}

std::string functionsText() {
  return fmt::format(
      "CREATE SCHEMA IF NOT EXISTS {0};\n{1}\n;GRANT USAGE ON SCHEMA {0} TO PUBLIC;\n"
      "COMMENT ON SCHEMA {0} IS {2}",
      kFunctionsSchema, functionsDdl(),
      quotedText(fmt::format("{}{}", kVersionComment, functionsVersion())));
}

/// On a line of its own: the apartment's may be in the middle of a transaction.
void make(const SessionState& state, bool makesSchema) {
  auto own = std::make_shared<SessionState>();
  own->line = std::make_shared<Line>(state.line->settings());
  own->schema = state.schema;
  ServerSession session(own);
  Transaction transaction(session);
  session.execute(
      fmt::format("SET LOCAL lock_timeout = '60s'; SELECT pg_advisory_xact_lock({})", kMakersLock));
  const Found found = look(own);
  if (found.functions < functionsVersion()) session.execute(functionsText());
  if (makesSchema && !found.hasSchema) {
    session.execute("CREATE SCHEMA " + quotedName(state.schema));
  }
  transaction.commit();
}

[[noreturn]] void refuseMissing(const SessionState& state, const Found& found) {
  const LineSettings& settings = state.line->settings();
  if (found.hasSchema) {
    throw Error(
        errors::kPathAccess, std::string(kSource),
        fmt::format("The functions of the dialect in the database {} are of version {}, and "
                    "this program needs {}: let a session of their owner that may write "
                    "open it once.",
                    settings.server.database, found.functions, functionsVersion()));
  }
  throw Error(errors::kFileNotFound, std::string(kSource),
              fmt::format("There is no schema {} in the database {} on the server: make the "
                          "installation first, as the role that is to own it.",
                          state.schema, settings.server.database));
}

}  // namespace

void schemasMustBeThere(const std::shared_ptr<SessionState>& state, bool create) {
  const Found found = look(state);
  if (found.isAll()) return;
  const LineSettings& settings = state->line->settings();
  const bool isOnlyOld = found.hasSchema;
  if (settings.readOnly || (!create && !isOnlyOld)) refuseMissing(*state, found);
  try {
    make(*state, create);
  } catch (const Error& error) {
    if (error.number() != errors::kPathAccess) throw;
    Error refused(
        errors::kPathAccess, std::string(kSource),
        fmt::format("The schemas {} and {} of the database {}, or their functions, must be "
                    "made or renewed, and the role may not: let the owner of the "
                    "database open it once. {}",
                    kFunctionsSchema, state->schema, settings.server.database,
                    error.description()));
    throw refused.withNativeCode(error.nativeCode());
  }
}

}  // namespace tavelor::engine::postgres
