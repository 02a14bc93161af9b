// SPDX-License-Identifier: MIT
// Memory of one translation.
#pragma once

#include <cstddef>
#include <string_view>
#include <type_traits>

#include "tavelor/services/engine/blocks.hpp"

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
    const auto upTo = [](std::size_t size, std::size_t step) {
      return (size + step - 1) / step * step;
    };
    const std::size_t begin = upTo(used_, alignment);
    // Whole steps, so that the next piece is aligned too.
    if (begin + bytes > kFirst) return more_.take(upTo(bytes, alignof(std::max_align_t)));
    used_ = begin + bytes;
    return first_ + begin;
  }

  alignas(std::max_align_t) std::byte first_[kFirst];
  std::size_t used_ = 0;
  engine::Blocks more_{kBlock};
};

}  // namespace tavelor::dialect
