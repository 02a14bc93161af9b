// SPDX-License-Identifier: MIT
// The statements of the corpus, read from text files.
#pragma once

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/ddl.hpp"
#include "tavelor/services/engine/catalogue.hpp"

namespace tavelor::tests {

struct CorpusCase {
  std::string name;
  std::string database;
  std::string marked;  ///< the statement with its values between « and »
  bool runs = true;
  std::string reason;  ///< why it is refused
  int line = 0;

  Statement statement() const;
};

namespace detail {

inline constexpr std::string_view kOpen = "«";
inline constexpr std::string_view kClose = "»";

inline const std::filesystem::path kSource = TAVELOR_SOURCE_DIR;

inline bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

inline std::vector<std::filesystem::path> filesOf(const std::filesystem::path& folder,
                                                  std::string_view extension) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == extension) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace detail

inline Statement CorpusCase::statement() const {
  Statement statement;
  std::string_view rest = marked;
  while (true) {
    const std::size_t open = rest.find(detail::kOpen);
    statement << Statement::trusted(rest.substr(0, open));
    if (open == std::string_view::npos) return statement;
    rest.remove_prefix(open + detail::kOpen.size());
    const std::size_t close = rest.find(detail::kClose);
    if (close == std::string_view::npos) throw std::runtime_error(name + ": « without »");
    statement << spliced(rest.substr(0, close));
    rest.remove_prefix(close + detail::kClose.size());
  }
}

inline std::string readFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

/// All files of the corpus, by name.
inline std::vector<std::filesystem::path> corpusFiles() {
  return detail::filesOf(detail::kSource / "tests" / "dialect" / "corpus", ".txt");
}

inline std::vector<CorpusCase> readCorpus(const std::filesystem::path& file) {
  std::istringstream stream(readFile(file));
  std::vector<CorpusCase> cases;
  CorpusCase current;
  int number = 0;
  for (std::string text; std::getline(stream, text);) {
    ++number;
    std::string_view line = text;
    if (current.marked.empty() && (line.empty() || line.front() == '#')) continue;
    if (detail::takePrefix(line, "== ")) {
      current = {};
      current.name = line;
      current.line = number;
    } else if (detail::takePrefix(line, "database: ")) {
      current.database = line;
    } else if (detail::takePrefix(line, "=> ")) {
      current.runs = line == "runs";
      if (detail::takePrefix(line, "refused: ")) current.reason = line;
      if (!current.runs && current.reason.empty()) {
        throw std::runtime_error(file.string() + ": neither runs nor refused: " + text);
      }
      cases.push_back(std::move(current));
      current = {};
    } else if (!line.empty()) {
      if (!current.marked.empty()) {
        throw std::runtime_error(file.string() + ": a second statement line: " + text);
      }
      current.marked = line;
    }
  }
  return cases;
}

/// The text of all files of the schema, one after the other.
inline std::string schemaText() {
  std::string text;
  for (const std::filesystem::path& file : detail::filesOf(detail::kSource / "schema", ".sql")) {
    text += readFile(file);
    text += "\n";
  }
  return text;
}

inline const engine::Catalogue& schemaCatalogue() {
  static const engine::Catalogue catalogue(dialect::parseSchema(schemaText()));
  return catalogue;
}

/// A file's name as the name of a test.
inline std::string testName(const std::filesystem::path& file) {
  std::string name = file.stem().string();
  std::replace_if(
      name.begin(), name.end(),
      [](char c) { return std::isalnum(static_cast<unsigned char>(c)) == 0; }, '_');
  return name;
}

}  // namespace tavelor::tests
