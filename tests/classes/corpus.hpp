// SPDX-License-Identifier: MIT
// Statements of the corpus of the dialect, which holds every statement of the classes.
#pragma once

#include <algorithm>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

#include "tests/dialect/corpus_case.hpp"

namespace tavelor::test {

/// The statement `name` ("ClsClientes.Insertar") of one of these files ("customers-clsclientes").
inline std::string corpusStatement(const std::vector<std::string>& files, const std::string& name) {
  static std::map<std::string, std::vector<tests::CorpusCase>> read;
  for (const std::string& file : files) {
    auto [cases, isNew] = read.try_emplace(file);
    if (isNew) {
      cases->second =
          tests::readCorpus(tests::detail::kSource / "tests/dialect/corpus" / (file + ".txt"));
    }
    const auto found =
        std::find_if(cases->second.begin(), cases->second.end(),
                     [&](const tests::CorpusCase& each) { return each.name == name; });
    if (found != cases->second.end()) return std::string(found->statement().text());
  }
  throw std::out_of_range("The corpus has no " + name);
}

}  // namespace tavelor::test
