// SPDX-License-Identifier: MIT
// Text indexes of a database file: one of FTS5 over a table of texts; triggers note what it lacks.
#pragma once

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/text_index.hpp"
#include "tavelor/services/sqlite/database.hpp"

namespace tavelor::engine::sqlite {

/// What makes an index, in place of one that is there, and fills it. Any program's engine with FTS5
/// keeps it on writing, as it needs no function of ours.
std::string textIndexDdl(const TextIndex& index);
/// The triggers that an earlier definition has left.
std::string dropTriggers(Database& database, const TextIndex& index);

/// Cuts texts into words as the engine does.
class Tokenizer {
 public:
  explicit Tokenizer(Database& database);
  Tokenizer(const Tokenizer&) = delete;
  Tokenizer& operator=(const Tokenizer&) = delete;
  ~Tokenizer();
  /// The words of a text, each once, `most` of them.
  std::vector<std::string> words(std::string_view text, std::size_t most) const;

 private:
  struct Parts;
  std::unique_ptr<Parts> parts_;
};

/// Finds rows, with its statements compiled once.
class TextFinder {
 public:
  explicit TextFinder(std::shared_ptr<Database> database);

  /// Takes rows that wait into the index first, where they are many and nobody else writes.
  std::vector<TextFound> find(std::string_view table, std::string_view question, std::size_t most);
  /// Takes all rows that wait into their indexes, some thousand a transaction where none is open,
  /// and waits for the right to write as any writer. What fails is left for those who ask.
  void absorbAll();

 private:
  struct Statements {
    std::string now;                    // the texts as the tables have them, to be selected from
    std::unique_ptr<Prepared> waiting;  // how many, to where they are too many
    std::unique_ptr<Prepared> words;    // rows that have them, and those that wait
    std::unique_ptr<Prepared> best;     // of too many: those whose beginning or code it is
  };
  Statements& statementsOf(std::string_view table);
  std::size_t waiting(Statements& statements) const;
  /// False where it can't be done now: nothing is changed then.
  bool absorb(std::string_view table, const Statements& statements);
  bool hasAll(std::string_view texts, const std::vector<std::string>& beginnings) const;

  std::shared_ptr<Database> database_;
  Tokenizer tokenizer_;
  std::map<std::string, Statements, std::less<>> statements_;
};

}  // namespace tavelor::engine::sqlite
