// SPDX-License-Identifier: MIT
// Reads tables, columns and keys back out of a database file.
#include "tavelor/services/sqlite/describe.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/sqlite/cells.hpp"
#include "tavelor/services/sqlite/database.hpp"

namespace tavelor::engine::sqlite {

namespace {

constexpr std::array kDeclaredTypes{
    std::pair<std::string_view, ColumnType>{"tinyint", ColumnType::kByte},
    std::pair<std::string_view, ColumnType>{"smallint", ColumnType::kInt16},
    std::pair<std::string_view, ColumnType>{"integer", ColumnType::kInt32},
    std::pair<std::string_view, ColumnType>{"int", ColumnType::kInt32},
    std::pair<std::string_view, ColumnType>{"float", ColumnType::kSingle},
    std::pair<std::string_view, ColumnType>{"double", ColumnType::kDouble},
    std::pair<std::string_view, ColumnType>{"real", ColumnType::kDouble},
    std::pair<std::string_view, ColumnType>{"decimal", ColumnType::kCurrency},
    std::pair<std::string_view, ColumnType>{"datetime", ColumnType::kDate},
    std::pair<std::string_view, ColumnType>{"boolean", ColumnType::kBoolean},
    std::pair<std::string_view, ColumnType>{"blob", ColumnType::kBinary},
    std::pair<std::string_view, ColumnType>{"", ColumnType::kBinary}};

/// Sets type and size from "TEXT(50)".
void readDeclaredType(std::string_view declared, Column& column) {
  const std::size_t bracket = std::min(declared.find('('), declared.size());
  const std::string word = text::foldCase(text::trim(declared.substr(0, bracket)));
  const auto* const known = std::find_if(kDeclaredTypes.begin(), kDeclaredTypes.end(),
                                         [&](const auto& entry) { return entry.first == word; });
  if (known != kDeclaredTypes.end()) {
    column.type = known->second;
    return;
  }
  const bool isCharacters = word == "text" || word.find("char") != std::string::npos ||
                            word.find("clob") != std::string::npos;
  if (!isCharacters) {
    column.type = word.find("int") != std::string::npos ? ColumnType::kInt32 : ColumnType::kDouble;
    return;
  }
  column.type = ColumnType::kMemo;
  if (bracket == declared.size()) return;
  const char* first = declared.data() + bracket + 1;
  const auto read = std::from_chars(first, declared.data() + declared.size(), column.size);
  if (read.ec == std::errc() && column.size > 0) column.type = ColumnType::kText;
}

std::string textAt(sqlite3_stmt* statement, int column) {
  return std::string(textOf(sqlite3_column_value(statement, column)));
}

/// Steps to the next row, if there is one.
bool next(Database& database, const StatementHandle& statement) {
  const int code = sqlite3_step(statement.get());
  if (code == SQLITE_ROW) return true;
  if (code != SQLITE_DONE) database.fail(code);
  return false;
}

bool isAutoNumber(Database& database, const std::string& table, const std::string& column) {
  int autoNumber = 0;
  const int code =
      sqlite3_table_column_metadata(database.handle, "main", table.c_str(), column.c_str(), nullptr,
                                    nullptr, nullptr, nullptr, &autoNumber);
  if (code != SQLITE_OK) database.fail(code);
  return autoNumber != 0;
}

Table describeTable(Database& database, std::string name) {
  Table table;
  table.name = std::move(name);
  const StatementHandle columns = compile(
      database, "SELECT name, type, \"notnull\", dflt_value, pk FROM pragma_table_info(?1)");
  sqlite3_bind_text64(columns.get(), 1, table.name.data(), table.name.size(), SQLITE_STATIC,
                      SQLITE_UTF8);
  std::vector<std::pair<int, std::size_t>> key;
  while (next(database, columns)) {
    Column column;
    column.name = textAt(columns.get(), 0);
    readDeclaredType(textAt(columns.get(), 1), column);
    const int keyPlace = sqlite3_column_int(columns.get(), 4);
    column.nullable = sqlite3_column_int(columns.get(), 2) == 0 && keyPlace == 0;
    column.defaultText = textAt(columns.get(), 3);
    if (keyPlace > 0) {
      key.emplace_back(keyPlace, table.columns.size());
      column.autoNumber = isAutoNumber(database, table.name, column.name);
    }
    table.columns.push_back(std::move(column));
  }
  std::sort(key.begin(), key.end());
  for (const auto& [place, position] : key) table.key.push_back(position);
  return table;
}

}  // namespace

Catalogue describeTables(Database& database) {
  const StatementHandle names = compile(
      database,
      "SELECT name FROM sqlite_master WHERE type = 'table' AND substr(name, 1, 7) <> 'sqlite_' "
      "AND substr(name, 1, 3) <> 'tv_' ORDER BY rowid");
  std::vector<Table> tables;
  while (next(database, names)) tables.push_back(describeTable(database, textAt(names.get(), 0)));
  return Catalogue(std::move(tables));
}

}  // namespace tavelor::engine::sqlite
