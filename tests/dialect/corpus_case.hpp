// SPDX-License-Identifier: MIT
// The statements of the corpus, read from text files.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "tavelor/platform/statement.hpp"
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

/// All files of the corpus, by name.
std::vector<std::filesystem::path> corpusFiles();
std::vector<CorpusCase> readCorpus(const std::filesystem::path& file);

/// The text of all files of the schema, one after the other.
std::string schemaText();
const engine::Catalogue& schemaCatalogue();

std::string readFile(const std::filesystem::path& file);

}  // namespace tavelor::tests
