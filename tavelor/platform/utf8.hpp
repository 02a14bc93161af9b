// SPDX-License-Identifier: MIT
// Steps over UTF-8 text, shared by the text and pattern code. Not part of the public headers.
#pragma once

#include <array>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tavelor/platform/words.hpp"

namespace tavelor::utf8 {

/// A byte that starts no well-formed character stands for itself, above all real code points, so
/// that damaged text can be counted, cut and compared without an error.
inline constexpr char32_t kInvalidBase = 0x110000;

struct Character {
  char32_t code;
  std::uint32_t size;  ///< bytes
};

inline bool isContinuation(unsigned char byte) {
  return (byte & 0xC0U) == 0x80U;
}

/// The character at `position`, which must be inside the text.
inline Character decode(std::string_view text, std::size_t position) {
  const auto at = [&](std::size_t i) -> std::uint32_t {
    return static_cast<unsigned char>(text[position + i]);
  };
  const std::uint32_t first = at(0);
  if (first < 0x80U) return {first, 1};
  const std::size_t rest = text.size() - position;
  const auto continues = [&](std::size_t i) {
    return i < rest && isContinuation(static_cast<unsigned char>(text[position + i]));
  };
  const Character damaged{kInvalidBase + first, 1};
  if (first < 0xC2U) return damaged;
  if (first < 0xE0U) {
    if (!continues(1)) return damaged;
    return {(first & 0x1FU) << 6U | (at(1) & 0x3FU), 2};
  }
  if (first < 0xF0U) {
    if (!continues(1) || !continues(2)) return damaged;
    const char32_t code = (first & 0x0FU) << 12U | (at(1) & 0x3FU) << 6U | (at(2) & 0x3FU);
    const bool surrogate = code >= 0xD800U && code <= 0xDFFFU;
    return code < 0x800U || surrogate ? damaged : Character{code, 3};
  }
  if (first < 0xF5U) {
    if (!continues(1) || !continues(2) || !continues(3)) return damaged;
    const char32_t code =
        (first & 0x07U) << 18U | (at(1) & 0x3FU) << 12U | (at(2) & 0x3FU) << 6U | (at(3) & 0x3FU);
    return code < 0x10000U || code > 0x10FFFFU ? damaged : Character{code, 4};
  }
  return damaged;
}

/// Bytes of the character that ends right before `end` (above 0): the same boundaries as decode()
/// finds going forward, because well-formed characters never overlap.
inline std::size_t sizeBefore(std::string_view text, std::size_t end) {
  const std::size_t reach = end < 4 ? end : 4;
  for (std::size_t size = 1; size <= reach; ++size) {
    const auto byte = static_cast<unsigned char>(text[end - size]);
    if (isContinuation(byte)) continue;
    return decode(text.substr(0, end), end - size).size == size ? size : 1;
  }
  return 1;
}

inline void append(std::string& out, char32_t code) {
  const auto put = [&](std::uint32_t byte) { out.push_back(static_cast<char>(byte)); };
  if (code >= kInvalidBase) {
    put(code - kInvalidBase);
  } else if (code < 0x80U) {
    put(code);
  } else if (code < 0x800U) {
    put(0xC0U | code >> 6U);
    put(0x80U | (code & 0x3FU));
  } else if (code < 0x10000U) {
    put(0xE0U | code >> 12U);
    put(0x80U | (code >> 6U & 0x3FU));
    put(0x80U | (code & 0x3FU));
  } else {
    put(0xF0U | code >> 18U);
    put(0x80U | (code >> 12U & 0x3FU));
    put(0x80U | (code >> 6U & 0x3FU));
    put(0x80U | (code & 0x3FU));
  }
}

inline constexpr Word64 kHighBits = eachByte(0x80);

/// Turns A..Z of eight ASCII bytes into a..z at once. No byte may have its high bit set.
inline Word64 foldAsciiWord(Word64 bytes) {
  // Told by the high bit of each byte.
  const Word64 aboveOrAtA = bytes + eachByte(0x80 - 'A');
  const Word64 aboveZ = bytes + eachByte(0x7F - 'Z');
  return bytes | ((aboveOrAtA & ~aboveZ & kHighBits) >> 2U);
}

inline char foldAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c;
}
inline bool isAscii(char c) {
  return static_cast<unsigned char>(c) < 0x80U;
}
bool isAscii(std::string_view text);

/// The letter that stands for both cases, one character for one: ß stays ß, ς is σ.
char32_t fold(char32_t code);

}  // namespace tavelor::utf8
