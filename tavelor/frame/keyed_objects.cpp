// SPDX-License-Identifier: MIT
// Finding the items of a collection.
#include "tavelor/frame/keyed_objects.hpp"

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kSource = "Collection";

}  // namespace

void KeyedObjects::add(ObjectPtr item, std::string_view key) {
  std::string folded = text::foldCase(key);
  if (!key.empty() && !places_.emplace(folded, entries_.size()).second) {
    raise(errors::kKeyAlreadyAssociated, kSource, fmt::format("There is an item of key {}", key));
  }
  entries_.push_back({std::move(folded), std::move(item)});
}

void KeyedObjects::remove(const Variant& which) {
  const std::size_t place = find(which);
  if (!entries_[place].key.empty()) places_.erase(entries_[place].key);
  entries_.erase(entries_.begin() + static_cast<std::ptrdiff_t>(place));
  for (std::size_t i = place; i < entries_.size(); ++i) {
    if (!entries_[i].key.empty()) places_[entries_[i].key] = i;
  }
}

std::size_t KeyedObjects::find(const Variant& which) const {
  if (const auto* key = which.getIf<std::string>()) {
    const auto place = places_.find(text::foldCase(*key));
    if (place == places_.end()) {
      raise(errors::kInvalidCall, kSource, fmt::format("There is no item of key \"{}\"", *key));
    }
    return place->second;
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
