// SPDX-License-Identifier: MIT
// Finding the items of a collection.
#include "tavelor/frame/keyed_objects.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kSource = "Collection";

}  // namespace

void KeyedObjects::add(ObjectPtr item, std::string_view key) {
  if (!key.empty() && findKey(key) != entries_.size()) {
    raise(errors::kKeyAlreadyAssociated, kSource, fmt::format("There is an item of key {}", key));
  }
  entries_.push_back({std::string(key), std::move(item)});
}

void KeyedObjects::remove(const Variant& which) {
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(find(which)));
}

std::size_t KeyedObjects::findKey(std::string_view key) const {
  const auto found = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
    return text::equalsIgnoreCase(entry.key, key);
  });
  return static_cast<std::size_t>(found - entries_.begin());
}

std::size_t KeyedObjects::find(const Variant& which) const {
  if (const auto* key = which.getIf<std::string>()) {
    const std::size_t place = key->empty() ? entries_.size() : findKey(*key);
    if (place == entries_.size()) {
      raise(errors::kInvalidCall, kSource, fmt::format("There is no item of key \"{}\"", *key));
    }
    return place;
  }
  // No text comes here, so that it does not matter whose locale is asked.
  const std::int32_t position = which.toInt32(*Locale::neutral());
  if (position < 1 || position > count()) {
    raise(errors::kSubscriptOutOfRange, kSource,
          fmt::format("There is no item {} among {}", position, count()));
  }
  return static_cast<std::size_t>(position) - 1;
}

}  // namespace tavelor
