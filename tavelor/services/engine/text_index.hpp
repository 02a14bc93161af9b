// SPDX-License-Identifier: MIT
// What an engine does so that rows are found by the beginnings of their words.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/text_found.hpp"

namespace tavelor::engine {

/// The columns by whose words the rows of a table are found.
struct TextIndex {
  /// A column of the table itself, or of another one that names its rows by a column of the same
  /// name as its key.
  struct Part {
    std::string table;
    std::string column;
    bool isCode = false;  ///< may be asked for as a whole
  };

  std::string table;
  std::string key;          ///< its primary key, a text; a code too
  std::string title;        ///< what the rows are ranked by
  std::string inUse;        ///< 0 or Null in rows that are out of use
  std::vector<Part> parts;  ///< beside key and title
};

/// Tables whose names begin so are the engine's own, and none of the catalogue.
inline constexpr std::string_view kOwnTables = "tv_";
/// And so do those of a text index: its table's name follows.
inline constexpr std::string_view kSearchTables = "tv_search_";

/// How many rows an index gives at most, to be ranked, where it is asked once. Their texts must be
/// read: a thousand would be felt at the keyboard.
inline constexpr std::size_t kMostCandidates = 400;
/// Of a question; the words behind them count nothing.
inline constexpr std::size_t kMostWords = 16;

/// A session that keeps text indexes is one of these too.
///
/// Words are letters and digits without case, accents and marks. The index follows its tables by
/// the engine's own triggers, whoever writes, and with the writer's transaction. A text that is
/// written back as it was, and any other column, costs it nothing.
class TextSearch {
 public:
  virtual ~TextSearch() = default;
  /// Makes the index and fills it; one that is there is made anew. Called inside a transaction.
  virtual void makeTextIndex(const TextIndex& index) = 0;
  /// The rows that have, for each word of the question, one that begins with it; the best ones
  /// first (TextRanking). `question` is UTF-8 without NUL, and any text else. A question without
  /// words finds the row whose key it is.
  virtual std::vector<TextFound> findText(std::string_view table, std::string_view question,
                                          std::size_t most) = 0;
  /// Behind the writing of very many rows: brings into the index what the triggers only noted, so
  /// that the next question need not. Whatever is in its way stays for those who ask, and raises
  /// nothing. Nothing to do where the triggers write the index themselves.
  virtual void absorbTexts() {}
};

}  // namespace tavelor::engine
