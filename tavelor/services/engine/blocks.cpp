// SPDX-License-Identifier: MIT
// Memory that grows by blocks.
#include "tavelor/services/engine/blocks.hpp"

#include <algorithm>
#include <new>

#include <sys/mman.h>

namespace tavelor::engine {

namespace {

constexpr std::size_t kPage = std::size_t{2} * 1024 * 1024;  // a huge one
constexpr std::size_t kLargest = 2 * kPage;

/// A large block, of huge pages as far as it is of whole ones: touching fresh memory page by small
/// page costs nearly as much as filling it.
char* allocateLarge(std::size_t bytes) {
  void* block = nullptr;
  if (posix_memalign(&block, kPage, bytes) != 0) return nullptr;
#ifdef MADV_HUGEPAGE
  // It is advice: where it is refused, pages are small.
  static_cast<void>(madvise(block, bytes / kPage * kPage, MADV_HUGEPAGE));
#endif
  return static_cast<char*>(block);
}

}  // namespace

void Blocks::grow(std::size_t bytes) {
  // A multiple of what is asked for, so that nothing is left over where all pieces are alike.
  std::size_t size = std::max(next_ / bytes, std::size_t{1}) * bytes;
  const bool isLarge = size >= kPage;
  if (isLarge) {
    // To the end of a page, unless the rest of it holds no further piece and is a waste.
    const std::size_t rest = (kPage - size % kPage) % kPage;
    if (rest >= bytes || rest <= size / 4) size += rest;
  }
  blocks_.emplace_back();
  blocks_.back().reset(isLarge ? allocateLarge(size) : static_cast<char*>(std::malloc(size)));
  if (!blocks_.back()) throw std::bad_alloc();
  free_ = blocks_.back().get();
  left_ = size;
  memory_ += size;
  next_ = std::clamp(2 * size, next_, std::max(next_, kLargest));
}

}  // namespace tavelor::engine
