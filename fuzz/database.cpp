// SPDX-License-Identifier: MIT
// A database in memory with all tables of the system and a few rows in each.
#include "fuzz/database.hpp"

#include <string>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/dialect/corpus_case.hpp"

namespace tavelor::fuzz {

namespace {

/// A value for a row that is told from others by its number.
std::string literalOf(const engine::Column& column, int row) {
  const std::string number = std::to_string(row);
  if (engine::isText(column.type)) return "'" + number + "'";
  return column.type == engine::ColumnType::kBoolean ? "-1" : number;
}

void addRows(engine::Session& session, const engine::Table& table) {
  for (int row = 1; row <= 2; ++row) {
    std::string names;
    std::string values;
    for (const engine::Column& column : table.columns) {
      if (column.autoNumber) continue;
      names += (names.empty() ? "\"" : ", \"") + column.name + "\"";
      values += (values.empty() ? "" : ", ") + literalOf(column, row);
    }
    session.execute("INSERT INTO \"" + table.name + "\" (" + names + ") VALUES (" + values + ")");
  }
}

Database make() {
  engine::OpenOptions options;
  options.path = ":memory:";
  options.create = true;
  options.locale = Locale::spanish();
  Database made{engine::sqliteEngine().open(options), nullptr};
  for (const std::string& text :
       dialect::translateSchema(tests::schemaText(), dialect::sqliteWriter())) {
    made.session->execute(text);
  }
  made.catalogue = std::make_shared<const engine::Catalogue>(made.session->describe());
  for (const engine::Table& table : made.catalogue->tables()) addRows(*made.session, table);
  return made;
}

}  // namespace

Database& database() {
  static Database made = make();
  return made;
}

}  // namespace tavelor::fuzz
