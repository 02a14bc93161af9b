// SPDX-License-Identifier: MIT
// Growth of the packed rows and of their text arena.
#include "tavelor/services/engine/row_store.hpp"

#include <limits>

#include "tavelor/platform/error.hpp"

namespace tavelor::engine {

std::size_t RowStore::append() {
  const std::size_t row = rows_;
  if (row == 0 && chunks_.empty()) {
    addChunk(kFirstChunkRows);
  } else if (row >= kFirstChunkRows && (row - kFirstChunkRows) % kChunkRows == 0 &&
             chunks_.size() == 1 + (row - kFirstChunkRows) / kChunkRows) {
    addChunk(kChunkRows);
  }
  ++rows_;
  for (std::size_t i = 0; i < nullWords_; ++i) word(row, i) = ~Word{0};
  return row;
}

void RowStore::addChunk(std::size_t rows) {
  char* const place = words_.take(rows * stride_ * sizeof(Word));
  chunks_.push_back(reinterpret_cast<Word*>(place));
}

const char* RowStore::store(std::string_view value) {
  if (value.size() > std::numeric_limits<std::uint32_t>::max()) {
    raise(errors::kMultipleStep, "RowStore", "A value of 4 GiB or more");
  }
  const auto length = static_cast<std::uint32_t>(value.size());
  char* const place = texts_.take(sizeof length + value.size());
  std::memcpy(place, &length, sizeof length);
  std::memcpy(place + sizeof length, value.data(), value.size());
  return place;
}

}  // namespace tavelor::engine
