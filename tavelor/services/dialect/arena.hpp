// SPDX-License-Identifier: MIT
// Memory of one translation.
#pragma once

#include <cstddef>
#include <memory>
#include <string_view>
#include <type_traits>
#include <vector>

namespace tavelor::dialect {

/// Gives out memory in a row and frees it all at once. Only for types without a destructor.
class Arena {
 public:
  Arena() = default;
  Arena(const Arena&) = delete;
  Arena& operator=(const Arena&) = delete;

  template <typename T>
  T* make(T value = {}) {
    static_assert(std::is_trivially_destructible_v<T>);
    return new (allocate(sizeof(T), alignof(T))) T(value);
  }
  /// A copy of `text` that lives as long as the arena.
  std::string_view keep(std::string_view text) {
    if (text.empty()) return {};
    char* place = static_cast<char*>(allocate(text.size(), 1));
    text.copy(place, text.size());
    return {place, text.size()};
  }

 private:
  static constexpr std::size_t kFirst = 8 * 1024;
  static constexpr std::size_t kBlock = 64 * 1024;

  void* allocate(std::size_t bytes, std::size_t alignment) {
    std::size_t begin = (used_ + alignment - 1) / alignment * alignment;
    if (begin + bytes > size_) {
      const std::size_t size = bytes > kBlock ? bytes : kBlock;
      blocks_.push_back(std::make_unique_for_overwrite<std::byte[]>(size));
      block_ = blocks_.back().get();
      size_ = size;
      begin = 0;
    }
    used_ = begin + bytes;
    return block_ + begin;
  }

  alignas(std::max_align_t) std::byte first_[kFirst];
  std::byte* block_ = first_;
  std::size_t size_ = kFirst;
  std::size_t used_ = 0;
  std::vector<std::unique_ptr<std::byte[]>> blocks_;
};

}  // namespace tavelor::dialect
