// SPDX-License-Identifier: MIT
// Session values over the registry.
#include "tavelor/services/session_global.hpp"

#include "tavelor/services/registry_tree.hpp"

namespace tavelor {

namespace {
// The value of a key itself has no name.
constexpr std::string_view kUnnamed;
}  // namespace

std::string SessionGlobal::GetNamedValue(std::string_view key, std::string_view name) {
  return tree_.get(key, name).value_or(std::string());
}

void SessionGlobal::SetNamedValue(std::string_view key, std::string_view name,
                                  std::string_view value) {
  tree_.set(key, name, value);
}

void SessionGlobal::SetValue(std::string_view key, std::string_view value) {
  tree_.set(key, kUnnamed, value);
}

std::string SessionGlobal::GetValue(std::string_view key, InOut<std::string> value) {
  *value = GetNamedValue(key, kUnnamed);
  return *value;
}

}  // namespace tavelor
