// SPDX-License-Identifier: MIT
// Growth of the packed rows and of their text arena.
#include "tavelor/services/engine/row_store.hpp"

#include <algorithm>
#include <limits>

#include "tavelor/platform/error.hpp"

namespace tavelor::engine {

namespace {
constexpr std::size_t kFirstBlock = 4 * 1024;
constexpr std::size_t kBlock = 256 * 1024;
}  // namespace

std::size_t RowStore::append() {
  const std::size_t row = rows_;
  if (row == 0 && chunks_.empty()) {
    chunks_.push_back(std::make_unique_for_overwrite<Word[]>(kFirstChunkRows * stride_));
  } else if (row >= kFirstChunkRows && (row - kFirstChunkRows) % kChunkRows == 0 &&
             chunks_.size() == 1 + (row - kFirstChunkRows) / kChunkRows) {
    chunks_.push_back(std::make_unique_for_overwrite<Word[]>(kChunkRows * stride_));
  }
  ++rows_;
  for (std::size_t i = 0; i < nullWords_; ++i) word(row, i) = ~Word{0};
  return row;
}

const char* RowStore::store(std::string_view value) {
  if (value.size() > std::numeric_limits<std::uint32_t>::max()) {
    raise(errors::kMultipleStep, "RowStore", "A value of 4 GiB or more");
  }
  const std::size_t needed = sizeof(std::uint32_t) + value.size();
  if (needed > freeBytes_) {
    const std::size_t block = std::max(needed, arena_.empty() ? kFirstBlock : kBlock);
    arena_.push_back(std::make_unique_for_overwrite<char[]>(block));
    free_ = arena_.back().get();
    freeBytes_ = block;
    arenaBytes_ += block;
  }
  char* place = free_;
  const auto length = static_cast<std::uint32_t>(value.size());
  std::memcpy(place, &length, sizeof length);
  std::memcpy(place + sizeof length, value.data(), value.size());
  free_ += needed;
  freeBytes_ -= needed;
  return place;
}

std::size_t RowStore::memory() const {
  std::size_t words = 0;
  for (std::size_t i = 0; i < chunks_.size(); ++i) {
    words += (i == 0 ? kFirstChunkRows : kChunkRows) * stride_;
  }
  return words * sizeof(Word) + arenaBytes_;
}

}  // namespace tavelor::engine
