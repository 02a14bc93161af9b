// SPDX-License-Identifier: MIT
// Brings a database to the tables that the classes expect.
#include "tavelor/services/schema.hpp"

#include <algorithm>
#include <vector>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/ddl.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor::schema {

namespace {

constexpr std::string_view kSource = "Installation";
constexpr std::string_view kVersionTable = "Tavelor_Schema";
constexpr std::string_view kVersionDdl =
    "CREATE TABLE Tavelor_Schema (Id LONG NOT NULL, Version LONG NOT NULL,"
    " CONSTRAINT PK_Tavelor_Schema PRIMARY KEY (Id));";
constexpr std::string_view kReadVersion =
    "SELECT \"Version\" FROM \"Tavelor_Schema\" WHERE \"Id\"=1";
constexpr std::string_view kWriteVersion =
    "INSERT INTO \"Tavelor_Schema\" (\"Id\", \"Version\") VALUES (1, ?) "
    "ON CONFLICT (\"Id\") DO UPDATE SET \"Version\"=excluded.\"Version\"";

[[noreturn]] void refuseDrop() {
  raise(errors::kNotSupported, kSource, "A schema may only add: nothing is dropped.");
}

std::string_view ddlOfFamily(std::string_view name) {
  for (const Family& family : families()) {
    if (family.name == name) return family.ddl;
  }
  return {};
}

/// Cuts the first word off.
std::string_view takeWord(std::string_view& words) {
  const std::size_t blank = std::min(words.find(' '), words.size());
  const std::string_view word = words.substr(0, blank);
  words.remove_prefix(std::min(blank + 1, words.size()));
  return word;
}

engine::TextIndex::Part partOf(std::string_view word, std::string_view table) {
  engine::TextIndex::Part part;
  part.isCode = word.starts_with('=');
  if (part.isCode) word.remove_prefix(1);
  const std::size_t point = word.find('.');
  const bool isOther = point != std::string_view::npos;
  part.table = isOther ? word.substr(0, point) : table;
  part.column = isOther ? word.substr(point + 1) : word;
  return part;
}

/// Adds the columns that a table lacks, in the order of their declaration.
void addMissingColumns(engine::Session& session, const engine::Table& present,
                       const engine::Table& declared, const dialect::Writer& writer) {
  std::string ddl;
  for (const engine::Column& column : declared.columns) {
    if (present.find(column.name) >= 0) continue;
    ddl += fmt::format("ALTER TABLE [{}] ADD COLUMN [{}] {}", present.name, column.name,
                       ddlWord(column.type));
    if (column.type == engine::ColumnType::kText) ddl += fmt::format("({})", column.size);
    if (!column.defaultText.empty()) ddl += " DEFAULT " + column.defaultText;
    // Rows that are there already have nothing to put into a column that wants a value.
    if (!column.nullable && !column.defaultText.empty()) ddl += " NOT NULL";
    ddl += ";\n";
  }
  for (const std::string& text : dialect::translateSchema(ddl, writer)) session.execute(text);
}

/// An index that is there already stays as it is.
std::string unlessPresent(std::string_view createIndex) {
  constexpr std::string_view kWord = " INDEX ";
  const std::size_t place = createIndex.find(kWord);
  std::string text(createIndex);
  if (place != std::string::npos && createIndex.find(" IF NOT EXISTS ") == std::string::npos) {
    text.insert(place + kWord.size(), "IF NOT EXISTS ");
  }
  return text;
}

void addMissing(engine::Session& session, std::string_view ddl, const dialect::Writer& writer) {
  const engine::Catalogue present = session.describe();
  const std::vector<dialect::Definition> definitions = dialect::parseDefinitions(ddl);
  const std::vector<std::string> texts = dialect::translateSchema(ddl, writer);
  for (std::size_t i = 0; i < definitions.size(); ++i) {
    const engine::Table& declared = definitions[i].table;
    const engine::Table* const there = present.find(declared.name);
    switch (definitions[i].kind) {
      case dialect::DefinitionKind::kCreateTable:
      case dialect::DefinitionKind::kAddColumn:
        if (there == nullptr) {
          session.execute(texts[i]);
        } else {
          addMissingColumns(session, *there, declared, writer);
        }
        break;
      case dialect::DefinitionKind::kCreateIndex:
        session.execute(unlessPresent(texts[i]));
        break;
      default:
        refuseDrop();
    }
  }
}

void writeVersion(engine::Session& session, int version, const dialect::Writer& writer) {
  const auto statement = session.prepare(writer.composed(kWriteVersion));
  statement->bind(1, engine::Value::ofInteger(version));
  statement->run();
}

}  // namespace

std::string ddlOf(int selector) {
  std::string ddl;
  for (const Assignment& assignment : assignments()) {
    if (assignment.selector != selector) continue;
    std::string_view rest = assignment.families;
    while (!rest.empty()) {
      ddl += ddlOfFamily(takeWord(rest));
      ddl += '\n';
    }
  }
  return ddl;
}

std::vector<engine::TextIndex> textIndexesOf(int selector) {
  std::vector<engine::TextIndex> indexes;
  for (const Search& search : searches()) {
    if (search.selector != selector) continue;
    engine::TextIndex& index = indexes.emplace_back();
    index.table = search.table;
    index.key = search.key;
    index.title = search.title;
    index.inUse = search.inUse;
    std::string_view rest = search.parts;
    while (!rest.empty()) index.parts.push_back(partOf(takeWord(rest), search.table));
  }
  return indexes;
}

void makeTextIndexes(engine::Session& session, const std::vector<engine::TextIndex>& indexes) {
  if (indexes.empty()) return;
  auto* const keeper = dynamic_cast<engine::TextSearch*>(&session);
  if (keeper == nullptr) {
    raise(errors::kNotSupported, kSource, "The engine keeps no text indexes.");
  }
  for (const engine::TextIndex& index : indexes) keeper->makeTextIndex(index);
}

int versionOf(engine::Session& session, const dialect::Writer& writer) {
  if (!session.hasTable(kVersionTable)) return 0;
  const auto read = session.prepare(writer.composed(kReadVersion));
  engine::RowStore rows({engine::ColumnType::kInt32});
  read->fetch(rows);
  return rows.rows() == 0 || rows.isNull(0, 0) ? 0 : static_cast<int>(rows.integer(0, 0));
}

engine::Catalogue describe(engine::Session& session) {
  engine::Catalogue found = session.describe();
  std::vector<engine::Table> tables = found.tables();
  for (engine::Table& table : tables) {
    table.counter = std::any_of(counters().begin(), counters().end(), [&](std::string_view name) {
      return text::equalsIgnoreCase(name, table.name);
    });
  }
  return engine::Catalogue(std::move(tables));
}

void bringUpToDate(engine::Session& session, const Target& target, const dialect::Writer& writer) {
  if (versionOf(session, writer) == target.version) return;

  engine::Transaction transaction(session);
  session.holdNumbersOf(kVersionTable);
  // Another process may have been faster.
  const int version = versionOf(session, writer);
  if (version == target.version) return;
  if (version > target.version) {
    raise(errors::kUnspecified, kSource,
          fmt::format("The database {} was made by a newer program: its schema is version {}, and "
                      "this one knows version {}.",
                      target.place, version, target.version));
  }
  if (version == 0) {
    if (!target.mayBeEmpty || !session.describe().tables().empty()) {
      raise(errors::kUnspecified, kSource,
            fmt::format("The database {} is none of this system: it has no table {}.", target.place,
                        kVersionTable));
    }
    apply(session, kVersionDdl, writer);
  }
  addMissing(session, target.ddl, writer);
  makeTextIndexes(session, target.textIndexes);
  writeVersion(session, target.version, writer);
  transaction.commit();
}

void apply(engine::Session& session, std::string_view ddl, const dialect::Writer& writer) {
  for (const dialect::Definition& definition : dialect::parseDefinitions(ddl)) {
    if (definition.kind == dialect::DefinitionKind::kDropTable ||
        definition.kind == dialect::DefinitionKind::kDropIndex) {
      refuseDrop();
    }
  }
  const std::vector<std::string> texts = dialect::translateSchema(ddl, writer);
  engine::Transaction transaction(session);
  for (const std::string& text : texts) session.execute(text);
  transaction.commit();
}

}  // namespace tavelor::schema
