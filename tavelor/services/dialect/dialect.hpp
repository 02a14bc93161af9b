// SPDX-License-Identifier: MIT
// Translation of a statement: lexer -> parser -> tree -> binder -> writer.
//
//   lexer.hpp     text to tokens, with the place of each; refuses a value that leaves its literal
//   tree.hpp      what a statement says
//   parser.hpp    tokens to tree, recursive descent
//   binder.hpp    names to columns, types to expressions
//   writer.hpp    tree to an engine's text; one sub-class an engine, holding only what differs
//   plan.hpp      the result
//   plan_cache.hpp  shape of a statement -> prepared plan
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tavelor/services/dialect/plan.hpp"

namespace tavelor {
class Statement;
}

namespace tavelor::dialect {

class Writer;

/// Makes the writer for an engine, for the tables of one schema of its database. An engine whose
/// databases have no schemas takes no notice of it.
using WriterMaker = std::unique_ptr<const Writer> (*)(const std::string& schema);

/// For the embedded engine.
std::unique_ptr<const Writer> sqliteWriter(const std::string& schema);
/// The same, living for ever.
const Writer& sqliteWriter();
/// For PostgreSQL from version 13 on, with this library's functions in the search path.
std::unique_ptr<const Writer> postgresWriter(const std::string& schema);

/// The literals of a statement that were lifted out of it, in the order of the text: quoted texts
/// without their quotes and with doubled quotes made single, dates without #, numbers as written.
using Literals = std::vector<std::string>;

/// Translates one statement for an engine, bound on a catalogue.
///
/// Errors: kSyntax for a text outside the grammar and for a value that leaves its literal,
/// kTableNotFound and kMissingParameter for an unknown table and column (with the nearest name),
/// kCriteriaTypeMismatch where types can't meet, kNotSupported for a named rule of what is not
/// done; each with the statement and the place in it.
Plan translate(const Statement& statement, const engine::Catalogue& catalogue, const Writer& writer,
               Literals& literals);

/// Translates the schema's DDL: any number of CREATE TABLE and CREATE INDEX separated by ';', with
/// comments from -- to the end of the line. Gives the engine's text of each.
std::vector<std::string> translateSchema(std::string_view ddl, const Writer& writer);

}  // namespace tavelor::dialect
