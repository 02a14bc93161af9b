// SPDX-License-Identifier: MIT
// The registry of public classes: one line each.
#include "tavelor/components.hpp"

#include <fmt/format.h>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/reference/bancos.hpp"

namespace tavelor {

const std::vector<const Component*>& components() {
  static const std::vector<const Component*> all = {
      &ClsBancos::component(),
  };
  return all;
}

const Component& component(std::string_view nameOrClassId) {
  std::string_view wanted = nameOrClassId;
  constexpr std::string_view kLibrary = "Tavelor.";
  if (text::equalsIgnoreCase(text::left(wanted, kLibrary.size()), kLibrary)) {
    wanted.remove_prefix(kLibrary.size());
  }
  std::vector<std::string> names;
  for (const Component* candidate : components()) {
    if (text::equalsIgnoreCase(candidate->name(), wanted) ||
        text::equalsIgnoreCase(candidate->classId(), wanted)) {
      return *candidate;
    }
    names.push_back(candidate->name());
  }
  const std::string near = text::nearest(wanted, names);
  raise(errors::kMemberNotFound, "Tavelor",
        near.empty() ? fmt::format("There is no class {}", nameOrClassId)
                     : fmt::format("There is no class {}; did you mean {}?", nameOrClassId, near));
}

}  // namespace tavelor
