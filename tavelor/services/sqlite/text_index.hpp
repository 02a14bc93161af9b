// SPDX-License-Identifier: MIT
// Text indexes of a database file: one of FTS5 over a table of texts that triggers keep.
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

  std::vector<TextFound> find(std::string_view table, std::string_view question, std::size_t most);

 private:
  struct Statements {
    std::unique_ptr<Prepared> words;  // rows that have them, and those not indexed yet
    std::unique_ptr<Prepared> best;   // of too many: those whose beginning or code it is
  };
  Statements& statementsOf(std::string_view table);
  bool hasAll(std::string_view texts, const std::vector<std::string>& beginnings) const;

  std::shared_ptr<Database> database_;
  Tokenizer tokenizer_;
  std::map<std::string, Statements, std::less<>> statements_;
};

}  // namespace tavelor::engine::sqlite
