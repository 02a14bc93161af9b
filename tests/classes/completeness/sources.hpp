// SPDX-License-Identifier: MIT
// The text of the library and its tests, for checks that look for what is missing.
#pragma once

#include <cctype>
#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <vector>

#include "tests/dialect/corpus_case.hpp"

namespace tavelor::test {

/// Files below a folder of the repository, by their paths from its root, with their texts.
inline std::map<std::string, std::string> textsBelow(const std::string& folder,
                                                     const std::set<std::string>& extensions) {
  std::map<std::string, std::string> texts;
  const std::filesystem::path root = tests::detail::kSource;
  for (const auto& entry : std::filesystem::recursive_directory_iterator(root / folder)) {
    if (extensions.count(entry.path().extension().string()) == 0) continue;
    texts[entry.path().lexically_relative(root).string()] = tests::readFile(entry.path());
  }
  return texts;
}

/// A string or character literal of a source, adjacent ones joined.
struct Literal {
  std::string text;
  int line = 0;
};

/// Literals of a C++ source, those of comments and #include left out. Escapes other than of quotes
/// and backslashes stay as they are written: statements have none.
inline std::vector<Literal> literalsOf(std::string_view source) {
  std::vector<Literal> literals;
  bool joins = false;  // to the literal before: nothing but blanks and comments between them
  int line = 1;
  std::size_t at = 0;
  const auto advance = [&](std::size_t to) {
    for (; at < to && at < source.size(); ++at) line += source[at] == '\n' ? 1 : 0;
  };
  const auto upTo = [&](std::string_view mark, std::size_t from) {
    const std::size_t found = source.find(mark, from);
    return found == std::string_view::npos ? source.size() : found;
  };
  while (at < source.size()) {
    const std::string_view rest = source.substr(at);
    if (std::isspace(static_cast<unsigned char>(rest.front())) != 0) {
      advance(at + 1);
    } else if (rest.starts_with("//") || rest.starts_with("#include")) {
      advance(upTo("\n", at));
    } else if (rest.starts_with("/*")) {
      advance(upTo("*/", at) + 2);
    } else if (rest.starts_with("R\"(")) {
      const std::size_t end = upTo(")\"", at);
      literals.push_back({std::string(source.substr(at + 3, end - at - 3)), line});
      advance(end + 2);
      joins = false;
    } else if (rest.front() == '"' || rest.front() == '\'') {
      const char quote = rest.front();
      std::string text;
      std::size_t end = at + 1;
      for (; end < source.size() && source[end] != quote; ++end) {
        const bool escapes = source[end] == '\\' && end + 1 < source.size() &&
                             std::string_view("\\'\"").find(source[end + 1]) != std::string::npos;
        if (escapes) ++end;
        text += source[end];
      }
      if (joins && quote == '"') {
        literals.back().text += text;
      } else {
        literals.push_back({text, line});
      }
      advance(end + 1);
      joins = quote == '"';
    } else {
      // A word whole, so that the mark inside a number like 1'000 opens nothing.
      std::size_t end = at + 1;
      const bool isWord = std::isalnum(static_cast<unsigned char>(rest.front())) != 0;
      while (
          isWord && end < source.size() &&
          (std::isalnum(static_cast<unsigned char>(source[end])) != 0 || source[end] == '_' ||
           (source[end] == '\'' && std::isdigit(static_cast<unsigned char>(rest.front())) != 0))) {
        ++end;
      }
      advance(end);
      joins = false;
    }
  }
  return literals;
}

/// What stands between the places of values: `{id}`, `{}` and the like.
inline std::vector<std::string> piecesOf(std::string_view text) {
  std::vector<std::string> pieces;
  std::string piece;
  for (std::size_t at = 0; at < text.size(); ++at) {
    std::size_t end = at + 1;
    while (text[at] == '{' && end < text.size() &&
           std::islower(static_cast<unsigned char>(text[end])) != 0) {
      ++end;
    }
    if (text[at] == '{' && end < text.size() && text[end] == '}') {
      pieces.push_back(std::move(piece));
      piece.clear();
      at = end;
    } else {
      piece += text[at];
    }
  }
  pieces.push_back(std::move(piece));
  std::erase(pieces, "");
  return pieces;
}

}  // namespace tavelor::test
