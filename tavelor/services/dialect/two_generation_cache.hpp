// SPDX-License-Identifier: MIT
// A bounded map that forgets what has not been used for long.
#pragma once

#include <cstddef>
#include <utility>

namespace tavelor::dialect {

/// Two maps: what is found or put moves into the young one; when that is full at a put it becomes
/// the old one, and what was left in the old one goes. So an entry that is used at least once in
/// `capacity` insertions stays, one that is not used in twice as many goes, and no list has to be
/// kept. Where entries are used again while others come, more than `capacity` are held.
template <typename Map>
class TwoGenerationCache {
 public:
  using Value = typename Map::mapped_type;

  explicit TwoGenerationCache(std::size_t capacity) : capacity_(capacity) {}

  /// Null when there is none. Good until the next put().
  template <typename Key>
  Value* find(const Key& key) {
    if (const auto young = young_.find(key); young != young_.end()) return &young->second;
    const auto old = old_.find(key);
    if (old == old_.end()) return nullptr;
    return &young_.insert(old_.extract(old)).position->second;
  }

  /// The key must not be there.
  Value& put(typename Map::key_type key, Value value) {
    if (young_.size() >= capacity_) {
      old_ = std::move(young_);
      young_ = Map();
    }
    return young_.emplace(std::move(key), std::move(value)).first->second;
  }

  void clear() {
    young_.clear();
    old_.clear();
  }

 private:
  std::size_t capacity_;
  Map young_;
  Map old_;
};

}  // namespace tavelor::dialect
