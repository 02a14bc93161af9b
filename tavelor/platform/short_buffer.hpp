// SPDX-License-Identifier: MIT
// A growing row of plain elements that seldom needs the heap.
#pragma once

#include <array>
#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>
#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor {

/// Up to `kRoom` elements lie in the object itself; more of them lie on the heap, all in one piece.
template <typename Element, std::size_t kRoom>
class TAVELOR_API ShortBuffer {
  static_assert(std::is_trivially_copyable_v<Element>);

 public:
  // Without {}: what lies behind the last element needs no value.
  ShortBuffer() {}  // NOLINT(modernize-use-equals-default, *-member-init)
  // Moved as it is copied, so that what is left behind is whole.
  /// Copies the elements.
  ShortBuffer(const ShortBuffer& other) { append(other.elements()); }
  /// The same.
  ShortBuffer& operator=(const ShortBuffer& other) {
    if (this == &other) return *this;
    size_ = 0;
    append(other.elements());
    return *this;
  }

  /// Valid until the next append().
  const Element* data() const { return size_ <= kRoom ? own_.data() : heap_.data(); }
  /// Number of elements.
  std::size_t size() const { return size_; }
  /// All of them, valid until the next append().
  std::span<const Element> elements() const { return {data(), size_}; }

  /// Adds one element.
  void append(const Element& one) {
    if (size_ >= kRoom) [[unlikely]]
      return appendOnHeap({&one, 1});
    own_[size_++] = one;
  }
  /// Adds several, none of which may be its own.
  void append(std::span<const Element> more) {
    if (more.empty()) return;  // which may have no address
    if (size_ + more.size() > kRoom) return appendOnHeap(more);
    std::memcpy(own_.data() + size_, more.data(), more.size_bytes());
    size_ += more.size();
  }

 private:
  // `more` may be a part of this buffer, so what is outgrown goes last. Room on the heap may be
  // left from longer contents that were assigned over; the elements are not there yet.
  [[gnu::noinline, gnu::cold]] void appendOnHeap(std::span<const Element> more) {
    std::vector<Element> grown;
    if (size_ <= kRoom || heap_.capacity() < size_ + more.size()) {
      grown.reserve(2 * (size_ + more.size()));
      grown.assign(data(), data() + size_);
      heap_.swap(grown);
    }
    heap_.resize(size_ + more.size());
    std::memcpy(heap_.data() + size_, more.data(), more.size_bytes());
    size_ = heap_.size();
  }

  std::array<Element, kRoom> own_;
  std::vector<Element> heap_;
  std::size_t size_ = 0;
};

}  // namespace tavelor
