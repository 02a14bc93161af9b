// SPDX-License-Identifier: MIT
// Tests of the registry tree.
#include "tavelor/services/registry_store.hpp"

#include "tavelor/services/registry_tree.hpp"

namespace tavelor {

bool RegistryStore::TestValue(std::string_view key, std::string_view name) {
  return tree_.has(key, name);
}

std::string RegistryStore::BaseKey(std::string_view path) const {
  while (path.ends_with('\\')) path.remove_suffix(1);
  return std::string(path) + '\\';
}

}  // namespace tavelor
