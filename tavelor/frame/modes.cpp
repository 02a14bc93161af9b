// SPDX-License-Identifier: MIT
// The words of IniciaRs.
#include "tavelor/frame/modes.hpp"

#include <algorithm>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/platform/quotes.hpp"

namespace tavelor {

std::vector<std::string> modeWords(const ClassInfo& info) {
  std::vector<std::string> words = {"todos"};
  for (const Mode& mode : info.modes) {
    if (mode.word != kAnyOtherWord) words.emplace_back(mode.word);
  }
  words.insert(words.end(), info.madeModes.begin(), info.madeModes.end());
  return words;
}

bool looksForId(const ClassInfo& info, std::string_view word) {
  return std::any_of(info.modes.begin(), info.modes.end(), [&](const Mode& mode) {
    return mode.word == word && (mode.select.text().find("{id}") != std::string_view::npos ||
                                 mode.tail.text().find("{id}") != std::string_view::npos);
  });
}

void openMode(const Component& component, Object& object, std::string_view word,
              std::string_view id) {
  std::vector<Variant> arguments;
  for (const Parameter& parameter : component.member("IniciaRs").parameters) {
    Variant argument;
    if (parameter.name == "sSelecSql") argument = Variant(word);
    if (parameter.name == "id") argument = Variant(doubledQuotes(id));
    arguments.push_back(std::move(argument));
  }
  component.call(object, "IniciaRs", arguments);
}

}  // namespace tavelor
