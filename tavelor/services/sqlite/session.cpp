// SPDX-License-Identifier: MIT
// Statements and transactions of a session.
#include "tavelor/services/sqlite/session.hpp"

#include <utility>

#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/sqlite/describe.hpp"
#include "tavelor/services/sqlite/prepared.hpp"
#include "tavelor/services/sqlite/text_index.hpp"

namespace tavelor::engine::sqlite {

FileSession::FileSession(std::shared_ptr<Database> database, bool readOnly)
    : database_(std::move(database)), beginText_(readOnly ? "BEGIN" : "BEGIN IMMEDIATE") {}

FileSession::~FileSession() {
  // A statement that outlives us keeps the handle, and with it the lock, so end it here.
  if (sqlite3_get_autocommit(database_->handle) == 0) {
    sqlite3_exec(database_->handle, "ROLLBACK", nullptr, nullptr, nullptr);
  }
  database_->depth = 0;
  database_->endTurn();
}

std::unique_ptr<Prepared> FileSession::prepare(std::string_view engineText) {
  return std::make_unique<PreparedStatement>(database_, engineText);
}

void FileSession::execute(std::string_view engineText) {
  const WriteTurn turn(*database_);
  const std::string text(engineText);
  const int code = sqlite3_exec(database_->handle, text.c_str(), nullptr, nullptr, nullptr);
  if (code == SQLITE_OK) return;
  try {
    database_->fail(code);
  } catch (Error& error) {
    throw error.inStatement(engineText);
  }
}

int FileSession::control(StatementHandle& statement, std::string_view text) {
  if (!statement) statement = compile(*database_, text);
  const int code = sqlite3_step(statement.get());
  sqlite3_reset(statement.get());
  return code == SQLITE_DONE ? SQLITE_OK : code;
}

void FileSession::mustControl(StatementHandle& statement, std::string_view text) {
  const int code = control(statement, text);
  if (code != SQLITE_OK) database_->fail(code);
}

int FileSession::begin() {
  if (database_->depth == 0) {
    database_->takeTurn();
    try {
      mustControl(begin_, beginText_);
    } catch (...) {
      database_->endTurn();
      throw;
    }
    commitFailed_ = false;
  } else {
    database_->mustNotBeLost();
    mustControl(savepoint_, "SAVEPOINT level");
  }
  return ++database_->depth;
}

int FileSession::commit() {
  if (database_->depth == 0) {
    raise(errors::kNotAllowedInContext, kSource, "There is no transaction to commit");
  }
  database_->mustNotBeLost();
  if (database_->depth > 1) {
    mustControl(release_, "RELEASE level");
    return --database_->depth;
  }
  const int code = control(commit_, "COMMIT");
  if (code == SQLITE_OK) {
    database_->endTurn();
    return database_->depth = 0;
  }
  const Error error = errorOf(*database_, sqlite3_extended_errcode(database_->handle),
                              sqlite3_errmsg(database_->handle));
  if (sqlite3_get_autocommit(database_->handle) == 0) control(rollback_, "ROLLBACK");
  database_->depth = 0;
  database_->endTurn();
  commitFailed_ = true;
  throw error;
}

int FileSession::rollback() {
  if (database_->depth == 0) {
    if (std::exchange(commitFailed_, false)) return 0;
    raise(errors::kNotAllowedInContext, kSource, "There is no transaction to roll back");
  }
  if (database_->lost) {
    database_->lost = database_->depth > 1;
  } else if (database_->depth == 1) {
    mustControl(rollback_, "ROLLBACK");
    database_->endTurn();
  } else {
    mustControl(undo_, "ROLLBACK TO level");
    mustControl(release_, "RELEASE level");
  }
  return --database_->depth;
}

void FileSession::settle() {
  const WriteTurn turn(*database_);
  const int code = sqlite3_wal_checkpoint_v2(database_->handle, nullptr, SQLITE_CHECKPOINT_TRUNCATE,
                                             nullptr, nullptr);
  if (code != SQLITE_OK) database_->fail(code);
}

std::int64_t FileSession::schemaVersion() {
  if (!schemaVersion_) schemaVersion_ = compile(*database_, "PRAGMA schema_version");
  sqlite3_stmt* const statement = schemaVersion_.get();
  const int code = sqlite3_step(statement);
  const std::int64_t version = code == SQLITE_ROW ? sqlite3_column_int64(statement, 0) : 0;
  sqlite3_reset(statement);
  if (code != SQLITE_ROW) database_->fail(code);
  return version;
}

bool FileSession::hasTable(std::string_view name) {
  const StatementHandle statement = compile(
      *database_, "SELECT 1 FROM sqlite_master WHERE type = 'table' AND name = ?1 COLLATE NOCASE");
  sqlite3_bind_text64(statement.get(), 1, name.data(), name.size(), SQLITE_STATIC, SQLITE_UTF8);
  const int code = sqlite3_step(statement.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) database_->fail(code);
  return code == SQLITE_ROW;
}

Catalogue FileSession::describe() {
  return describeTables(*database_);
}

}  // namespace tavelor::engine::sqlite
