// SPDX-License-Identifier: MIT
// Plain calls of the engine.
#include "bench/driver.hpp"

#include <stdexcept>
#include <utility>

#include <sqlite3.h>

namespace tavelor::bench::driver {

Query::Query(sqlite3* database, std::string_view text) {
  if (sqlite3_prepare_v3(database, text.data(), static_cast<int>(text.size()),
                         SQLITE_PREPARE_PERSISTENT, &statement_, nullptr) != SQLITE_OK) {
    throw std::runtime_error(std::string(sqlite3_errmsg(database)) + ": " + std::string(text));
  }
}

Query::~Query() {
  sqlite3_finalize(statement_);
}

Query::Query(Query&& other) noexcept : statement_(std::exchange(other.statement_, nullptr)) {}

void Query::fail() const {
  throw std::runtime_error(sqlite3_errmsg(sqlite3_db_handle(statement_)));
}

Query& Query::bindNull(int index) {
  if (sqlite3_bind_null(statement_, index) != SQLITE_OK) fail();
  return *this;
}

Query& Query::bind(int index, std::int64_t value) {
  if (sqlite3_bind_int64(statement_, index, value) != SQLITE_OK) fail();
  return *this;
}

Query& Query::bind(int index, double value) {
  if (sqlite3_bind_double(statement_, index, value) != SQLITE_OK) fail();
  return *this;
}

Query& Query::bind(int index, std::string_view value) {
  if (sqlite3_bind_text(statement_, index, value.data(), static_cast<int>(value.size()),
                        SQLITE_STATIC) != SQLITE_OK) {
    fail();
  }
  return *this;
}

std::int64_t Query::run() {
  int code = SQLITE_ROW;
  while (code == SQLITE_ROW) code = sqlite3_step(statement_);
  if (code != SQLITE_DONE) fail();
  sqlite3_reset(statement_);
  return sqlite3_changes64(sqlite3_db_handle(statement_));
}

Rows Query::fetch() {
  Rows rows;
  const int columns = sqlite3_column_count(statement_);
  int code = SQLITE_ROW;
  while ((code = sqlite3_step(statement_)) == SQLITE_ROW) {
    auto& row = rows.emplace_back();
    row.reserve(static_cast<std::size_t>(columns));
    for (int i = 0; i < columns; ++i) {
      switch (sqlite3_column_type(statement_, i)) {
        case SQLITE_INTEGER:
          row.emplace_back(std::int64_t{sqlite3_column_int64(statement_, i)});
          break;
        case SQLITE_FLOAT:
          row.emplace_back(sqlite3_column_double(statement_, i));
          break;
        case SQLITE_NULL:
          row.emplace_back();
          break;
        default: {
          const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, i));
          row.emplace_back(std::in_place_type<std::string>, text,
                           static_cast<std::size_t>(sqlite3_column_bytes(statement_, i)));
        }
      }
    }
  }
  if (code != SQLITE_DONE) fail();
  sqlite3_reset(statement_);
  return rows;
}

std::size_t Query::readThrough() {
  const int columns = sqlite3_column_count(statement_);
  std::size_t rows = 0;
  double seen = 0;
  int code = SQLITE_ROW;
  for (; (code = sqlite3_step(statement_)) == SQLITE_ROW; ++rows) {
    for (int i = 0; i < columns; ++i) {
      switch (sqlite3_column_type(statement_, i)) {
        case SQLITE_INTEGER:
          seen += static_cast<double>(sqlite3_column_int64(statement_, i));
          break;
        case SQLITE_FLOAT:
          seen += sqlite3_column_double(statement_, i);
          break;
        case SQLITE_NULL:
          break;
        default:
          seen += *sqlite3_column_text(statement_, i) + sqlite3_column_bytes(statement_, i);
      }
    }
  }
  if (code != SQLITE_DONE) fail();
  sqlite3_reset(statement_);
  seen_ = seen;
  return rows;
}

std::string Query::firstText() {
  std::string found;
  if (sqlite3_step(statement_) == SQLITE_ROW) {
    const auto* text = reinterpret_cast<const char*>(sqlite3_column_text(statement_, 0));
    found.assign(text, static_cast<std::size_t>(sqlite3_column_bytes(statement_, 0)));
  }
  sqlite3_reset(statement_);
  return found;
}

double Query::firstNumber() {
  const double found =
      sqlite3_step(statement_) == SQLITE_ROW ? sqlite3_column_double(statement_, 0) : 0;
  sqlite3_reset(statement_);
  return found;
}

Database::Database(const std::filesystem::path& file, bool synchronous) {
  const int flags = SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE;
  if (sqlite3_open_v2(file.c_str(), &handle_, flags, nullptr) != SQLITE_OK) {
    throw std::runtime_error("can't open " + file.string());
  }
  sqlite3_busy_timeout(handle_, 5000);
  execute(
      "PRAGMA temp_store = MEMORY; PRAGMA cache_size = -16384; PRAGMA journal_mode = WAL;"
      "PRAGMA journal_size_limit = 33554432");
  execute(synchronous ? "PRAGMA synchronous = FULL" : "PRAGMA synchronous = NORMAL");
}

Database::~Database() {
  sqlite3_close_v2(handle_);
}

void Database::execute(const std::string& text) {
  char* message = nullptr;
  if (sqlite3_exec(handle_, text.c_str(), nullptr, nullptr, &message) != SQLITE_OK) {
    const std::string what = message == nullptr ? "no memory" : message;
    sqlite3_free(message);
    throw std::runtime_error(what + ": " + text);
  }
}

}  // namespace tavelor::bench::driver
