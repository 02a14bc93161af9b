// SPDX-License-Identifier: MIT
// Moving a database file to another engine, and filling one from there.
#include "tavelor/services/sqlite/moving.hpp"

#include <cmath>
#include <filesystem>
#include <system_error>

#include <fmt/format.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/services/engine/cell_converter.hpp"
#include "tavelor/services/sqlite/cells.hpp"
#include "tavelor/services/sqlite/session.hpp"

namespace tavelor::engine::sqlite {

namespace fs = std::filesystem;

namespace {

bool comesBack(std::int64_t scaled) {
  try {
    return CellConverter::scaled(Currency::fromScaled(scaled).toDouble()) == scaled;
  } catch (const Error&) {
    return false;  // rounded beyond the most that money holds
  }
}

bool nextRow(Database& database, const StatementHandle& statement) {
  const int code = sqlite3_step(statement.get());
  if (code != SQLITE_ROW && code != SQLITE_DONE) database.fail(code);
  return code == SQLITE_ROW;
}

void bindName(const StatementHandle& statement, const std::string& name) {
  sqlite3_bind_text64(statement.get(), 1, name.data(), name.size(), SQLITE_STATIC, SQLITE_UTF8);
}

std::string nameAt(const StatementHandle& statement, int column) {
  return std::string(textOf(sqlite3_column_value(statement.get(), column)));
}

void rename(const fs::path& file, std::string_view ending) {
  fs::path there = file;
  there += ending;
  std::error_code fault;
  if (fs::exists(fs::symlink_status(there, fault))) {
    throw Error(errors::kPathAccess, std::string(kSource),
                fmt::format("The file {} cannot be put away: there is a {}.", file.string(),
                            there.string()));
  }
  fs::rename(file, there, fault);
  if (!fault) return;
  throw Error(errors::kPathAccess, std::string(kSource),
              fmt::format("The file {} cannot be put away: {}.", file.string(), fault.message()));
}

}  // namespace

std::string whyNot(const Column& column, const RowStore::Row& row, std::size_t place) {
  switch (column.type) {
    case ColumnType::kCurrency:
      // Amounts are stored as doubles, which tell ten-thousandths up to some 900,000 millions.
      return comesBack(row.integer(place)) ? "" : "is an amount of more digits than a file keeps";
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate:
      return std::isnan(row.real(place)) ? "is no number" : "";
    default:
      return {};
  }
}

std::vector<Index> FileSession::indexes() {
  const StatementHandle made =
      compile(*database_,
              "SELECT m.name, m.tbl_name, l.\"unique\" FROM sqlite_master AS m"
              " JOIN pragma_index_list(m.tbl_name) AS l ON l.name = m.name"
              " WHERE m.type = 'index' AND l.origin = 'c' AND substr(m.tbl_name, 1, 3) <> 'tv_'"
              " ORDER BY m.rowid");
  std::vector<Index> indexes;
  while (nextRow(*database_, made)) {
    Index& index = indexes.emplace_back();
    index.name = nameAt(made, 0);
    index.table = nameAt(made, 1);
    index.isUnique = sqlite3_column_int(made.get(), 2) != 0;
    const StatementHandle columns =
        compile(*database_, "SELECT name FROM pragma_index_info(?1) ORDER BY seqno");
    bindName(columns, index.name);
    while (nextRow(*database_, columns)) index.columns.push_back(nameAt(columns, 0));
  }
  return indexes;
}

std::int64_t FileSession::lastNumber(const Table& table, const Column& /*counter*/) {
  const StatementHandle read =
      compile(*database_, "SELECT seq FROM sqlite_sequence WHERE name = ?1 COLLATE NOCASE");
  bindName(read, table.name);
  return nextRow(*database_, read) ? sqlite3_column_int64(read.get(), 0) : 0;
}

void FileSession::goOnBehind(const Table& table, const Column& counter, std::int64_t number) {
  if (lastNumber(table, counter) >= number) return;
  // The engine adds the counter with the table's first row.
  for (const std::string_view text :
       {"UPDATE sqlite_sequence SET seq = ?2 WHERE name = ?1 COLLATE NOCASE",
        "INSERT INTO sqlite_sequence (name, seq) SELECT ?1, ?2"
        " WHERE NOT EXISTS (SELECT 1 FROM sqlite_sequence WHERE name = ?1 COLLATE NOCASE)"}) {
    const StatementHandle write = compile(*database_, text);
    bindName(write, table.name);
    sqlite3_bind_int64(write.get(), 2, number);
    nextRow(*database_, write);
  }
}

void FileSession::putAway(std::string_view ending) {
  const fs::path file(sqlite3_db_filename(database_->handle, "main"));
  fs::path log = file;
  log += "-wal";
  std::error_code fault;
  const std::uintmax_t logged = fs::file_size(log, fault);
  rename(file, ending);
  if (fault || logged == 0) return;
  // The log belongs to the file by its name.
  fs::path kept = file;
  kept.concat(ending).concat("-wal");
  fs::rename(log, kept, fault);
}

}  // namespace tavelor::engine::sqlite
