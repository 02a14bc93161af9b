// SPDX-License-Identifier: MIT
// Memory that grows by blocks.
#include "tavelor/services/engine/blocks.hpp"

#include <cstdint>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

namespace tavelor::engine {
namespace {

TEST(Blocks, TakeNothingBeforeTheyAreAsked) {
  const Blocks blocks(4096);
  EXPECT_EQ(blocks.memory(), 0U);
}

TEST(Blocks, GivePiecesThatStayWhereAndAsTheyAre) {
  struct Piece {
    char* place;
    std::size_t size;
    int content;
  };
  Blocks blocks(256);
  std::vector<Piece> pieces;
  std::size_t given = 0;
  // From small pieces to some that are larger than any block, all in all 40 MB.
  for (int i = 0; given < 40'000'000; ++i) {
    const std::size_t size = i % 1000 == 999 ? 5'000'000 : static_cast<std::size_t>(i) % 700 * 50;
    pieces.push_back({blocks.take(size), size, i % 251});
    if (size > 0) std::memset(pieces.back().place, i % 251, size);
    given += size;
  }
  for (const Piece& piece : pieces) {
    for (std::size_t i = 0; i < piece.size; i += 97) {
      ASSERT_EQ(static_cast<unsigned char>(piece.place[i]), piece.content);
    }
  }
  EXPECT_GE(blocks.memory(), given);
  EXPECT_LT(blocks.memory(), given * 5 / 4);
}

TEST(Blocks, OfLikePiecesHaveNoRestAndAreAskedForSeldom) {
  constexpr std::size_t kPiece = 1000;
  Blocks blocks(5 * kPiece);
  std::vector<std::size_t> sizes;
  for (int i = 0; i < 1000; ++i) {
    const auto place = reinterpret_cast<std::uintptr_t>(blocks.take(kPiece));
    EXPECT_EQ(place % alignof(std::uint64_t), 0U);
    if (sizes.empty() || sizes.back() != blocks.memory()) sizes.push_back(blocks.memory());
  }
  EXPECT_EQ(sizes.front(), 5 * kPiece) << "a small use takes no more than it was told";
  for (const std::size_t size : sizes) EXPECT_EQ(size % kPiece, 0U);
  EXPECT_GT(sizes.size(), 2U) << "nothing is taken long before it is asked for";
  EXPECT_LT(sizes.size(), 15U) << "blocks grow, or a thousand pieces would be two hundred";
}

// Such are the chunks of rows with hundreds of columns, and pictures.
TEST(Blocks, OfPiecesLargerThanAPageHaveLittleRest) {
  for (const std::size_t piece : {2'000'000U, 2'100'000U, 2'500'000U, 4'300'000U, 9'000'000U}) {
    Blocks blocks(4096);
    std::size_t given = 0;
    for (int i = 0; i < 10; ++i) {
      std::memset(blocks.take(piece), i, piece);
      given += piece;
    }
    EXPECT_LE(blocks.memory(), given * 5 / 4) << piece;
  }
}

TEST(Blocks, MoveWithoutTheirPieces) {
  Blocks blocks(64);
  char* const place = blocks.take(8);
  std::memcpy(place, "1234567", 8);
  const std::size_t memory = blocks.memory();
  Blocks other = std::move(blocks);
  EXPECT_STREQ(place, "1234567");
  EXPECT_EQ(other.memory(), memory);
  EXPECT_EQ(other.take(8), place + 8);
}

}  // namespace
}  // namespace tavelor::engine
