// SPDX-License-Identifier: MIT
// Bytes read eight at a time.
#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <cstring>

namespace tavelor {

using Word64 = std::uint64_t;  ///< eight bytes

/// bytes of a word
inline constexpr std::size_t kWordSize = sizeof(Word64);

/// That byte in all places.
constexpr Word64 eachByte(unsigned char byte) {
  return Word64{0x0101010101010101U} * byte;
}

/// The bytes at `from`, the first one lowest.
template <typename Word = Word64>
Word64 loadWord(const char* from) {
  Word word = 0;
  std::memcpy(&word, from, sizeof word);
  if constexpr (std::endian::native == std::endian::big) {
    Word swapped = 0;
    for (std::size_t i = 0; i < sizeof word; ++i) swapped = swapped << 8 | (word >> (8 * i) & 0xFF);
    word = swapped;
  }
  return word;
}

/// The same with up to 8 bytes; those above are zero. Reads overlap instead of going byte by byte.
inline Word64 loadWord(const char* from, std::size_t count) {
  const auto bothEnds = [&]<typename Word>(Word) {
    const std::size_t last = count - sizeof(Word);
    return loadWord<Word>(from) | loadWord<Word>(from + last) << (8 * last);
  };
  if (count >= sizeof(std::uint32_t)) return bothEnds(std::uint32_t{});
  if (count >= sizeof(std::uint16_t)) return bothEnds(std::uint16_t{});
  return count == 0 ? 0 : static_cast<unsigned char>(*from);
}

/// The high bit of each byte that is zero, and perhaps of some above the first such one.
constexpr Word64 zeroBytes(Word64 word) {
  return (word - eachByte(1)) & ~word & eachByte(0x80);
}

/// True if no byte is above 9.
constexpr bool areDigits(Word64 word) {
  return (((word + eachByte(0x7F - 9)) | word) & eachByte(0x80)) == 0;
}

}  // namespace tavelor
