// SPDX-License-Identifier: MIT
// A list of settings over the apartment's registry.
#include "tavelor/services/list_config.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/registry_tree.hpp"

namespace tavelor {

ListConfig::ListConfig() : apartment_(Apartment::current()) {}

void ListConfig::Key(std::string_view path) {
  key_ = path;
}

std::string ListConfig::GetValue(const Variant& name, std::string_view fallback) {
  requireKey();
  auto value = apartment_.registry().get(key_, name.toText(apartment_.locale()));
  return value ? *std::move(value) : std::string(fallback);
}

void ListConfig::SetValue(const Variant& name, std::string_view value) {
  requireKey();
  apartment_.registry().set(key_, name.toText(apartment_.locale()), value);
}

void ListConfig::requireKey() const {
  if (key_.empty()) raise(errors::kObjectNotSet, "ListConfig", "The list has no key yet.");
}

}  // namespace tavelor
