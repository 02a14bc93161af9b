// SPDX-License-Identifier: MIT
// One session over the line of its apartment.
#include "tavelor/services/postgres/session.hpp"

#include "tavelor/platform/text.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/postgres/describe.hpp"
#include "tavelor/services/postgres/prepared.hpp"

namespace tavelor::engine::postgres {

namespace {

// Of what a table and its columns are, whoever changed it last: the transactions that wrote the
// catalogue's rows change with each, and a table that is gone takes its rows along.
constexpr std::string_view kSchemaVersion =
    "SELECT mod(coalesce(sum(hashint8extended(a.attrelid::int8 << 32 | a.xmin::text::int8, "
    "a.attnum)), 0), 9007199254740881)::float8 "
    "FROM pg_class c JOIN pg_attribute a ON a.attrelid = c.oid "
    "WHERE c.relnamespace = (SELECT oid FROM pg_namespace WHERE nspname = $1) "
    "AND c.relkind IN ('r', 'p') AND a.attnum > 0";

constexpr std::string_view kTable =
    "SELECT 1 FROM pg_class c JOIN pg_namespace n ON n.oid = c.relnamespace "
    "WHERE n.nspname = $1 AND lower(c.relname) = lower($2) AND c.relkind IN ('r', 'p')";

/// The same number in every program and version: they must all meet at the same lock.
std::int64_t lockNumberOf(std::string_view schema, std::string_view table) {
  std::uint64_t hash = 0xCBF29CE484222325;
  const auto take = [&hash](std::string_view bytes) {
    for (const char byte : bytes) {
      hash = (hash ^ static_cast<unsigned char>(byte)) * 0x100000001B3;
    }
  };
  take(schema);
  take(std::string_view("\0", 1));
  take(text::foldCase(table));
  return static_cast<std::int64_t>(hash);
}

}  // namespace

ServerSession::~ServerSession() {
  state_->line->abandon(state_->levels);
  state_->levels = {};
}

std::unique_ptr<Prepared> ServerSession::prepare(std::string_view engineText) {
  return std::make_unique<PreparedStatement>(state_, engineText);
}

void ServerSession::execute(std::string_view engineText) {
  mustNotBeLost();
  if (ahead() == Ahead::kAsk) refuseWhileAsking();
  try {
    state_->line->execute(engineText);
  } catch (Error& error) {
    throw error.inStatement(engineText);
  }
}

int ServerSession::begin() {
  state_->line->begin(state_->levels);
  return depth();
}

int ServerSession::commit() {
  state_->line->commit(state_->levels);
  return depth();
}

int ServerSession::rollback() {
  state_->line->rollback(state_->levels);
  return depth();
}

Catalogue ServerSession::describe() {
  const Line::Aside aside(*state_->line);
  return describeTables(*this, state_->schema);
}

bool ServerSession::hasTable(std::string_view name) {
  const Line::Aside aside(*state_->line);
  const auto read = prepare(kTable);
  read->bind(1, Value::ofText(state_->schema));
  read->bind(2, Value::ofText(name));
  RowStore found({ColumnType::kInt32});
  read->fetch(found);
  return found.rows() > 0;
}

std::int64_t ServerSession::schemaVersion() {
  const Line::Aside aside(*state_->line);
  if (!schemaVersion_) schemaVersion_ = prepare(kSchemaVersion);
  schemaVersion_->bind(1, Value::ofText(state_->schema));
  RowStore version({ColumnType::kDouble});
  schemaVersion_->fetch(version);
  return static_cast<std::int64_t>(version.real(0, 0));
}

void ServerSession::holdNumbersOf(std::string_view table) {
  mustNotBeLost();
  state_->line->hold(lockNumberOf(state_->schema, table));
}

}  // namespace tavelor::engine::postgres
