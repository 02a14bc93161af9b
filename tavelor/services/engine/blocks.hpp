// SPDX-License-Identifier: MIT
// Memory that grows by blocks.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <vector>

namespace tavelor::engine {

/// Gives out memory in a row and frees it all at once. What it gave never moves. Blocks become
/// larger as more is taken: a small result takes little, a large one few and huge pages.
class Blocks {
 public:
  /// `first`: bytes of the first block.
  explicit Blocks(std::size_t first) : next_(first) {}

  /// Aligned for words as long as only whole words are taken.
  char* take(std::size_t bytes) {
    if (bytes > left_) grow(bytes);
    char* const place = free_;
    free_ += bytes;
    left_ -= bytes;
    return place;
  }

  /// Bytes of all blocks, unused room included.
  std::size_t memory() const { return memory_; }

 private:
  struct Free {
    void operator()(char* block) const { std::free(block); }
  };

  void grow(std::size_t bytes);

  std::vector<std::unique_ptr<char, Free>> blocks_;
  char* free_ = nullptr;
  std::size_t left_ = 0;
  std::size_t next_;
  std::size_t memory_ = 0;
};

}  // namespace tavelor::engine
