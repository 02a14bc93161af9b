// SPDX-License-Identifier: MIT
// The engine's result codes as errors, and compiling.
#include "tavelor/services/sqlite/database.hpp"

#include <fmt/format.h>

namespace tavelor::engine::sqlite {

namespace {

std::string constraintText(int code, std::string_view engineMessage) {
  const std::size_t colon = engineMessage.find(": ");
  const std::string_view what =
      colon == std::string_view::npos ? std::string_view() : engineMessage.substr(colon + 2);
  switch (code) {
    case SQLITE_CONSTRAINT_PRIMARYKEY:
    case SQLITE_CONSTRAINT_UNIQUE:
    case SQLITE_CONSTRAINT_ROWID:
      return fmt::format("There is a row with this key already: {}.", what);
    case SQLITE_CONSTRAINT_NOTNULL:
      return fmt::format("This column takes no Null: {}.", what);
    default:
      return fmt::format("The table refuses the row: {}.", engineMessage);
  }
}

/// A number and a sentence for a result code.
Error describe(const Database& database, int code, std::string_view engineMessage) {
  const auto error = [](std::int32_t number, std::string text) {
    return Error(number, std::string(kSource), std::move(text));
  };
  const std::string& path = database.path;
  switch (code & 0xFF) {
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
      if (database.turn == WriteQueue::Answer::kOwnThread) {
        return error(
            errors::kBusy,
            fmt::format("The database {} is locked by a transaction of this same thread on "
                        "another connection: waiting for it would never end.",
                        path));
      }
      if (database.turn == WriteQueue::Answer::kCircle) {
        return error(
            errors::kBusy,
            fmt::format("The database {} is locked by a session that itself waits for a "
                        "database that this thread has locked: neither wait would ever end.",
                        path));
      }
      return error(
          errors::kBusy,
          fmt::format("The database {} is locked by another session, and stayed so for the "
                      "{} ms of the wait.",
                      path, database.busyTimeoutMs));
    case SQLITE_CONSTRAINT:
      return error(errors::kIntegrityViolation, constraintText(code, engineMessage));
    case SQLITE_MISMATCH:
      return error(errors::kTypeMismatch,
                   fmt::format("A value is not of the type of its column: {}.", engineMessage));
    case SQLITE_TOOBIG:
      return error(errors::kMultipleStep, "A value is longer than the database can hold.");
    case SQLITE_READONLY:
    case SQLITE_PERM:
    case SQLITE_AUTH:
      return error(errors::kPathAccess,
                   fmt::format("The database {} may not be written: {}.", path, engineMessage));
    case SQLITE_CANTOPEN:
      return error(errors::kPathAccess,
                   fmt::format("The database {}, or a file beside it, can't be "
                               "opened: {}.",
                               path, engineMessage));
    case SQLITE_FULL:
      return error(errors::kUnspecified,
                   fmt::format("There is no room left to write to the database {}.", path));
    case SQLITE_NOTADB:
      return error(errors::kUnspecified, fmt::format("The file {} is no database.", path));
    case SQLITE_CORRUPT:
      return error(errors::kUnspecified,
                   fmt::format("The database {} is damaged: {}.", path, engineMessage));
    case SQLITE_IOERR:
      return error(
          errors::kUnspecified,
          fmt::format("The database {} can't be read or written: {}.", path, engineMessage));
    case SQLITE_NOMEM:
      return error(errors::kUnspecified, "There is not enough memory for the statement.");
    case SQLITE_INTERRUPT:
      return error(errors::kOperationCanceled, "The statement was interrupted.");
    case SQLITE_RANGE:
      return error(errors::kMissingParameter, "The statement has no such parameter.");
    case SQLITE_ERROR:
      if (engineMessage == "integer overflow") {
        return error(errors::kOverflow, "A sum does not fit its type.");
      }
      return error(errors::kSyntax, std::string(engineMessage));
    default:
      return error(errors::kUnspecified, fmt::format("{}: {}.", path, engineMessage));
  }
}

bool isBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n;") == std::string_view::npos;
}

}  // namespace

Error errorOf(const Database& database, int code, std::string_view engineMessage) {
  Error error = describe(database, code, engineMessage);
  error.withNativeCode(code);
  return error;
}

void Database::fail(int code) {
  const int extended = sqlite3_extended_errcode(handle);
  if ((extended & 0xFF) == (code & 0xFF)) code = extended;
  lost = depth > 0 && sqlite3_get_autocommit(handle) != 0;
  if (lost) endTurn();
  if (functionError != 0) {
    Error error(functionError, std::string(kSource), std::move(functionErrorText));
    functionError = 0;
    functionErrorText.clear();
    throw error.withNativeCode(code);
  }
  throw errorOf(*this, code, sqlite3_errmsg(handle));
}

void Database::mustBeInPlace() {
  int moved = 0;
  const int code = sqlite3_file_control(handle, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
  if (code != SQLITE_OK || moved == 0) return;
  throw Error(errors::kPathAccess, std::string(kSource),
              fmt::format("The database {} was removed, moved or replaced while it was open; "
                          "nothing is written until it is opened anew.",
                          path));
}

void Database::takeTurn() {
  if (queue) {
    turn = queue->enter(std::chrono::milliseconds(busyTimeoutMs));
    if (turn != WriteQueue::Answer::kFirst) throw errorOf(*this, SQLITE_BUSY, "");
  }
  // Behind the wait: whoever was waited for may have moved the file.
  try {
    mustBeInPlace();
  } catch (...) {
    endTurn();
    throw;
  }
}

StatementHandle compile(Database& database, std::string_view engineText) {
  if (engineText.empty()) throw Error(errors::kSyntax, std::string(kSource), "No statement.");
  sqlite3_stmt* statement = nullptr;
  const char* tail = nullptr;
  const int code =
      sqlite3_prepare_v3(database.handle, engineText.data(), static_cast<int>(engineText.size()),
                         SQLITE_PREPARE_PERSISTENT, &statement, &tail);
  StatementHandle compiled(statement);
  try {
    if (code != SQLITE_OK) database.fail(code);
    const auto used = static_cast<std::size_t>(tail - engineText.data());
    if (!compiled || !isBlank(engineText.substr(used))) {
      throw Error(errors::kSyntax, std::string(kSource),
                  compiled ? "More than one statement." : "No statement.");
    }
  } catch (Error& error) {
    throw error.inStatement(engineText);
  }
  return compiled;
}

}  // namespace tavelor::engine::sqlite
