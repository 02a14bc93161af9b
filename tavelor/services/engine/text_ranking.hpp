// SPDX-License-Identifier: MIT
// Which of the rows that have the words of a question come first. The same for all engines.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/text_index.hpp"

namespace tavelor::engine {

/// Takes the rows that an index gives, and gives the best ones:
///
/// 1. a code of the row is the question;
/// 2. rows in use before those that are not;
/// 3. a code of the row begins with the question;
/// 4. the title's first word is a word of the question, or begins with one;
/// 5. the shorter title, then titles and keys by their characters.
class TextRanking {
 public:
  explicit TextRanking(std::string_view question);

  /// A row that has the words. `codes` stand a line each. The texts must live until best() was
  /// called; a key that came before counts once.
  void offer(std::string_view key, std::string_view title, std::string_view codes, bool inUse);
  std::vector<TextFound> best(std::size_t most);

 private:
  struct Row {
    std::uint32_t rank = 0;  // the rules 1 to 4, the smaller the better
    std::string_view key;
    std::string_view title;
  };
  std::uint32_t rankOf(std::string_view title, std::string_view codes, bool inUse);

  std::string question_;  // folded, without blanks at its ends
  std::vector<std::string> words_;
  std::string room_;  // of the text being folded
  std::vector<Row> rows_;
};

}  // namespace tavelor::engine
