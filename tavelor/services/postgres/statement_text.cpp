// SPDX-License-Identifier: MIT
// What can be told of a statement by its text alone.
#include "tavelor/services/postgres/statement_text.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <string>

#include "tavelor/platform/text.hpp"

namespace tavelor::engine::postgres {

namespace {

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isWordPart(char c) {
  return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
         static_cast<unsigned char>(c) >= 0x80;
}
bool isBlank(char c) {
  return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

constexpr std::array<std::string_view, 3> kDefinitions{"create", "alter", "drop"};
constexpr std::array<std::string_view, 4> kWrites{"insert", "update", "delete", "merge"};

template <typename List>
bool isOneOf(std::string_view word, const List& list) {
  return std::find(list.begin(), list.end(), word) != list.end();
}

/// Steps over one piece of the text at a time.
class Reader {
 public:
  explicit Reader(std::string_view text) : text_(text) {}

  bool atEnd() const { return at_ >= text_.size(); }
  std::size_t at() const { return at_; }
  char here() const { return text_[at_]; }
  char next() const { return at_ + 1 < text_.size() ? text_[at_ + 1] : '\0'; }
  void step() { ++at_; }

  /// Blanks and comments. False when there are none.
  bool skipBlank() {
    if (isBlank(here())) {
      ++at_;
    } else if (here() == '-' && next() == '-') {
      at_ = std::min(text_.find('\n', at_), text_.size());
    } else if (here() == '/' && next() == '*') {
      skipComment();
    } else {
      return false;
    }
    return true;
  }
  /// Up to the other quote; a doubled one belongs to what is quoted.
  void skipQuoted(bool hasEscapes) {
    const char quote = here();
    for (++at_; at_ < text_.size(); ++at_) {
      if (hasEscapes && here() == '\\') {
        ++at_;
      } else if (here() == quote) {
        if (next() != quote) break;
        ++at_;
      }
    }
    ++at_;
  }
  /// "$tag$...$tag$"; false when no such text begins here.
  bool skipDollarQuoted() {
    const std::size_t mark = text_.find('$', at_ + 1);
    if (mark == std::string_view::npos || isDigit(next())) return false;
    const std::string_view tag = text_.substr(at_, mark + 1 - at_);
    const std::string_view inner = tag.substr(1, tag.size() - 2);
    if (!std::all_of(inner.begin(), inner.end(),
                     [](char c) { return isWordPart(c) || isDigit(c); })) {
      return false;
    }
    const std::size_t end = text_.find(tag, mark + 1);
    at_ = end == std::string_view::npos ? text_.size() : end + tag.size();
    return true;
  }
  std::string_view word() {
    const std::size_t begin = at_;
    while (!atEnd() && (isWordPart(here()) || isDigit(here()) || here() == '$')) ++at_;
    return text_.substr(begin, at_ - begin);
  }
  int number() {
    int number = 0;
    const auto read = std::from_chars(text_.data() + at_, text_.data() + text_.size(), number);
    at_ = static_cast<std::size_t>(read.ptr - text_.data());
    return number;
  }

 private:
  void skipComment() {
    int depth = 0;
    do {
      if (here() == '/' && next() == '*') {
        ++depth;
        at_ += 2;
      } else if (here() == '*' && next() == '/') {
        --depth;
        at_ += 2;
      } else {
        ++at_;
      }
    } while (depth > 0 && !atEnd());
  }

  std::string_view text_;
  std::size_t at_ = 0;
};

}  // namespace

StatementText::StatementText(std::string_view text) {
  Reader reader(text);
  std::size_t first = text.size();
  std::size_t end = 0;
  std::string firstWord;
  bool writes = false;
  bool shares = false;
  bool isEnded = false;
  while (!reader.atEnd()) {
    if (reader.skipBlank()) continue;
    if (reader.here() == ';') {
      isEnded = end > 0;
      reader.step();
      continue;
    }
    if (isEnded) isOneStatement = false;
    first = std::min(first, reader.at());
    const char c = reader.here();
    if (c == '\'' || c == '"') {
      reader.skipQuoted(false);
    } else if (c == '$' && isDigit(reader.next())) {
      reader.step();
      placeholders = std::max(placeholders, reader.number());
    } else if (c == '$') {
      if (!reader.skipDollarQuoted()) reader.step();
    } else if (isWordPart(c)) {
      const std::string word = text::foldCase(reader.word());
      if (firstWord.empty()) firstWord = word;
      writes = writes || isOneOf(word, kWrites);
      shares = shares || word == "share";
      const bool isEscaped = word == "e" && !reader.atEnd() && reader.here() == '\'';
      if (isEscaped) reader.skipQuoted(true);
    } else {
      reader.step();
    }
    end = std::min(reader.at(), text.size());
  }
  if (first < end) body = text.substr(first, end - first);
  isDefinition = isOneOf(firstWord, kDefinitions);
  isLocking = writes || shares;
  // What locks rows for an update changes nothing of them.
  isRead = firstWord == "select" || firstWord == "values" || (firstWord == "with" && !writes);
}

}  // namespace tavelor::engine::postgres
