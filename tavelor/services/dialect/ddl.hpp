// SPDX-License-Identifier: MIT
// The schema's definitions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/catalogue.hpp"

namespace tavelor::dialect {

class Writer;

enum class DefinitionKind : std::uint8_t {
  kCreateTable,
  kCreateIndex,
  kAddColumn,
  kDropTable,
  kDropIndex
};

struct Definition {
  DefinitionKind kind = DefinitionKind::kCreateTable;
  engine::Table table;  ///< kCreateTable; kAddColumn: its name and the one column; else its name
  std::string index;    ///< name of the index
  bool unique = false;
  std::vector<std::string> indexColumns;
};

/// Reads CREATE TABLE, CREATE [UNIQUE] INDEX, ALTER TABLE .. ADD COLUMN, DROP TABLE and DROP INDEX
/// .. ON .., separated by ';', with comments from -- to the end of the line.
///
/// Types: TEXT(n), MEMO, BYTE, SHORT, LONG, COUNTER, SINGLE, DOUBLE, CURRENCY, DATETIME, BIT,
/// LONGBINARY. A COUNTER must be its table's primary key.
/// Errors: kSyntax with line and column.
std::vector<Definition> parseDefinitions(std::string_view ddl);

/// The engine's text of an index. `table` is null where nothing is known of it but its name.
std::string createIndex(const Definition& index, const engine::Table* table, const Writer& writer);

/// The tables that the definitions create, columns added later included.
std::vector<engine::Table> parseSchema(std::string_view ddl);

}  // namespace tavelor::dialect
