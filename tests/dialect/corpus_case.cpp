// SPDX-License-Identifier: MIT
// The statements of the corpus, read from text files.
#include "tests/dialect/corpus_case.hpp"

#include <algorithm>
#include <fstream>
#include <sstream>
#include <stdexcept>

#include "tavelor/services/dialect/ddl.hpp"

namespace tavelor::tests {

namespace {

constexpr std::string_view kOpen = "«";
constexpr std::string_view kClose = "»";

const std::filesystem::path kSource = TAVELOR_SOURCE_DIR;

bool takePrefix(std::string_view& text, std::string_view prefix) {
  if (!text.starts_with(prefix)) return false;
  text.remove_prefix(prefix.size());
  return true;
}

std::vector<std::filesystem::path> filesOf(const std::filesystem::path& folder,
                                           std::string_view extension) {
  std::vector<std::filesystem::path> files;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    if (entry.path().extension() == extension) files.push_back(entry.path());
  }
  std::sort(files.begin(), files.end());
  return files;
}

}  // namespace

Statement CorpusCase::statement() const {
  Statement statement;
  std::string_view rest = marked;
  while (true) {
    const std::size_t open = rest.find(kOpen);
    statement << rest.substr(0, open);
    if (open == std::string_view::npos) return statement;
    rest.remove_prefix(open + kOpen.size());
    const std::size_t close = rest.find(kClose);
    if (close == std::string_view::npos) throw std::runtime_error(name + ": « without »");
    statement << value(rest.substr(0, close));
    rest.remove_prefix(close + kClose.size());
  }
}

std::string readFile(const std::filesystem::path& file) {
  std::ifstream stream(file, std::ios::binary);
  std::ostringstream text;
  text << stream.rdbuf();
  return text.str();
}

std::vector<std::filesystem::path> corpusFiles() {
  return filesOf(kSource / "tests" / "dialect" / "corpus", ".txt");
}

std::vector<CorpusCase> readCorpus(const std::filesystem::path& file) {
  std::istringstream stream(readFile(file));
  std::vector<CorpusCase> cases;
  CorpusCase current;
  int number = 0;
  for (std::string text; std::getline(stream, text);) {
    ++number;
    std::string_view line = text;
    if (current.marked.empty() && (line.empty() || line.front() == '#')) continue;
    if (takePrefix(line, "== ")) {
      current = {};
      current.name = line;
      current.line = number;
    } else if (takePrefix(line, "database: ")) {
      current.database = line;
    } else if (takePrefix(line, "=> ")) {
      current.runs = line == "runs";
      if (takePrefix(line, "refused: ")) current.reason = line;
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

std::string schemaText() {
  std::string text;
  for (const std::filesystem::path& file : filesOf(kSource / "schema", ".sql")) {
    text += readFile(file);
    text += "\n";
  }
  return text;
}

const engine::Catalogue& schemaCatalogue() {
  static const engine::Catalogue catalogue(dialect::parseSchema(schemaText()));
  return catalogue;
}

}  // namespace tavelor::tests
