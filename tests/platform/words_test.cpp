// SPDX-License-Identifier: MIT
// Bytes read eight at a time.
#include "tavelor/platform/words.hpp"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace tavelor {
namespace {

TEST(Words, HoldTheirBytesFromTheLowestOnAndNothingElse) {
  // Of its own size, so that a read beyond its end is found out.
  for (std::size_t count = 0; count <= kWordSize; ++count) {
    const std::string bytes = std::string("\x81\x02\xF3\x04\x05\x06\x07\xE8").substr(0, count);
    const std::vector<char> exact(bytes.begin(), bytes.end());
    Word64 expected = 0;
    for (std::size_t i = 0; i < count; ++i) {
      expected |= Word64{static_cast<unsigned char>(bytes[i])} << (8 * i);
    }
    EXPECT_EQ(loadWord(exact.data(), count), expected) << count;
  }
  EXPECT_EQ(loadWord("\x01\x02\x03\x04\x05\x06\x07\x08"), 0x0807060504030201U);
}

TEST(Words, TellWhetherAByteIsZero) {
  EXPECT_EQ(zeroBytes(0x0101010101010101U), 0U);
  EXPECT_EQ(zeroBytes(0xFF80FF80FF80FF80U), 0U);
  for (int place = 0; place < 8; ++place) {
    const Word64 word = eachByte(0x80) & ~(Word64{0xFF} << (8 * place));
    EXPECT_EQ(zeroBytes(word), Word64{0x80} << (8 * place)) << place;
  }
}

TEST(Words, TellWhetherAllBytesAreDigits) {
  EXPECT_TRUE(areDigits(0));
  EXPECT_TRUE(areDigits(eachByte(9)));
  for (int place = 0; place < 8; ++place) {
    for (Word64 byte = 0; byte < 256; ++byte) {
      const Word64 word = (eachByte(9) & ~(Word64{0xFF} << (8 * place))) | byte << (8 * place);
      EXPECT_EQ(areDigits(word), byte <= 9) << byte << " at " << place;
    }
  }
}

}  // namespace
}  // namespace tavelor
