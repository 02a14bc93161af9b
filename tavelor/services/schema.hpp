// SPDX-License-Identifier: MIT
// The tables that the databases must have, and how a database gets them.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/text_index.hpp"

namespace tavelor::engine {
class Catalogue;
class Session;
}  // namespace tavelor::engine
namespace tavelor::dialect {
class Writer;
}

namespace tavelor::schema {

/// Tables that belong together, in the dialect's DDL.
struct Family {
  std::string_view name;
  std::string_view ddl;
};
/// The families of one database, separated by blanks.
struct Assignment {
  int selector;
  std::string_view families;
};
/// A table of one database that is found by the beginnings of its words.
struct Search {
  int selector;
  std::string_view table;
  std::string_view key;
  std::string_view title;
  std::string_view inUse;
  std::string_view parts;  ///< columns, separated by blanks, as databases.txt writes them
};

// Made from the files in schema/.
std::span<const Family> families();
std::span<const Assignment> assignments();
std::span<const Search> searches();
/// The tables whose rows are counters.
std::span<const std::string_view> counters();
/// Raised with each change of the tables.
int currentVersion();

/// All tables and indexes of the database of a selector; "" for one that the schema does not know.
std::string ddlOf(int selector);

/// The text indexes of the database of a selector.
std::vector<engine::TextIndex> textIndexesOf(int selector);
/// Makes them, or makes them anew. Called inside a transaction. Raises kNotSupported for an engine
/// that keeps none.
void makeTextIndexes(engine::Session& session, const std::vector<engine::TextIndex>& indexes);

/// The version that a database was brought to, or 0 when it never was.
int versionOf(engine::Session& session, const dialect::Writer& writer);
/// The tables of a database, with what the schema says of them.
engine::Catalogue describe(engine::Session& session);

/// What a database declares and what to do about it.
struct Target {
  std::string ddl;
  int version = 0;
  /// An empty database may be filled; else only one that has a version already is touched.
  bool mayBeEmpty = false;
  std::string place;  ///< for messages
  /// Made anew with each version.
  std::vector<engine::TextIndex> textIndexes = {};
};

/// Adds the tables, columns and indexes that are missing, in one transaction, and notes the
/// version. Nothing is ever dropped or changed. A database of the current version is only read.
/// Raises kUnspecified, with nothing changed, for a database of a newer version and for one that
/// holds something else.
void bringUpToDate(engine::Session& session, const Target& target, const dialect::Writer& writer);

/// Runs DDL of the dialect that adds tables, columns and indexes, in one transaction. Raises
/// kNotSupported for DDL that drops.
void apply(engine::Session& session, std::string_view ddl, const dialect::Writer& writer);

}  // namespace tavelor::schema
