// SPDX-License-Identifier: MIT
// Binding, running and fetching.
#include "tavelor/services/sqlite/prepared.hpp"

#include <utility>

#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/sqlite/cells.hpp"

namespace tavelor::engine::sqlite {

namespace {

/// Resets on every way out. Reset repeats the error of the last step, so its answer is not looked
/// at.
class Resetter {
 public:
  explicit Resetter(sqlite3_stmt* statement) : statement_(statement) {}
  Resetter(const Resetter&) = delete;
  Resetter& operator=(const Resetter&) = delete;
  ~Resetter() { sqlite3_reset(statement_); }

 private:
  sqlite3_stmt* statement_;
};

/// A view without bytes may have no address, which the engine would take for Null.
const char* addressOf(std::string_view bytes) {
  return bytes.data() == nullptr ? "" : bytes.data();
}

}  // namespace

void PreparedStatement::bind(int index, const Value& value) {
  sqlite3_stmt* statement = statement_.get();
  int code = SQLITE_OK;
  switch (value.kind) {
    case Value::Kind::kNull:
      code = sqlite3_bind_null(statement, index);
      break;
    case Value::Kind::kBoolean:
    case Value::Kind::kInteger:
      code = sqlite3_bind_int64(statement, index, value.integer);
      break;
    case Value::Kind::kReal:
    case Value::Kind::kDate:
      code = sqlite3_bind_double(statement, index, value.real);
      break;
    case Value::Kind::kCurrency:
      code = sqlite3_bind_double(statement, index, Currency::fromScaled(value.integer).toDouble());
      break;
    case Value::Kind::kText:
      code = sqlite3_bind_text64(statement, index, addressOf(value.text), value.text.size(),
                                 SQLITE_STATIC, SQLITE_UTF8);
      break;
    case Value::Kind::kBytes:
      code = sqlite3_bind_blob64(statement, index, addressOf(value.text), value.text.size(),
                                 SQLITE_STATIC);
      break;
  }
  if (code != SQLITE_OK) [[unlikely]]
    database_->fail(code);
}

std::int64_t PreparedStatement::run() {
  const WriteTurn turn(*database_);
  sqlite3_stmt* statement = statement_.get();
  const int before = sqlite3_total_changes(database_->handle);
  int code = SQLITE_ROW;
  while (code == SQLITE_ROW) code = sqlite3_step(statement);
  if (code != SQLITE_DONE) [[unlikely]]
    failAndReset(code);
  // Of a statement that ran to its end a reset can fail only when its own commit does.
  code = sqlite3_reset(statement);
  if (code != SQLITE_OK) [[unlikely]]
    database_->fail(code);
  // The total tells whether this statement wrote at all, and holds what triggers wrote beside it.
  if (sqlite3_total_changes(database_->handle) == before) return 0;
  return sqlite3_changes(database_->handle);
}

void PreparedStatement::fetchRows(RowStore& rows, std::size_t most) {
  database_->mustNotBeLost();
  std::optional<WriteTurn> turn;
  if (writes_) [[unlikely]]
    turn.emplace(*database_);
  sqlite3_stmt* statement = statement_.get();
  const auto columns = static_cast<int>(rows.columns());
  if (sqlite3_column_count(statement) != columns) {
    throw Error(errors::kUnspecified, std::string(kSource),
                "The statement does not give the columns that were asked for.");
  }
  const CellReader reader(*database_->locale);
  const Resetter resetter(statement);
  for (std::size_t fetched = 0; fetched < most; ++fetched) {
    const int code = sqlite3_step(statement);
    if (code == SQLITE_DONE) return;
    if (code != SQLITE_ROW) failAndReset(code);
    RowStore::Cells cells = rows.cells(rows.append());
    int column = 0;
    try {
      for (; column < columns; ++column) {
        reader.read(sqlite3_column_value(statement, column),
                    rows.type(static_cast<std::size_t>(column)), cells,
                    static_cast<std::size_t>(column));
      }
    } catch (const Error& error) {
      rows.removeLast();
      throw Error(error.number(), error.source(),
                  "Column " + std::string(sqlite3_column_name(statement, column)) + ": " +
                      error.description());
    }
  }
}

// The engine compiles a statement again by itself when a run finds the tables changed.
bool PreparedStatement::metOtherSchema() {
  const int times = sqlite3_stmt_status(statement_.get(), SQLITE_STMTSTATUS_REPREPARE, 0);
  return std::exchange(compiledAgain_, times) != times;
}

void PreparedStatement::failAndReset(int code) {
  const Resetter resetter(statement_.get());
  database_->fail(code);
}

}  // namespace tavelor::engine::sqlite
