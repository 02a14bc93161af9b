// SPDX-License-Identifier: MIT
// UTF-8 text counted, cut and compared by characters.
#include "tavelor/platform/text.hpp"

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

#include <utf8proc.h>

#include "tavelor/platform/utf8.hpp"

namespace tavelor {

namespace utf8 {

bool isAscii(std::string_view text) {
  std::size_t i = 0;
  for (; i + 8 <= text.size(); i += 8) {
    if ((loadWord(text.data() + i) & kHighBits) != 0) return false;
  }
  for (; i < text.size(); ++i) {
    if (!isAscii(text[i])) return false;
  }
  return true;
}

namespace {

constexpr char32_t kSharpS = 0xDF;

char32_t toUpper(char32_t code) {
  // Spanish and German custom keep the small ß: its capital exists, but nobody's data uses it.
  if (code >= kInvalidBase || code == kSharpS) return code;
  return static_cast<char32_t>(utf8proc_toupper(static_cast<utf8proc_int32_t>(code)));
}

char32_t toLower(char32_t code) {
  if (code >= kInvalidBase) return code;
  return static_cast<char32_t>(utf8proc_tolower(static_cast<utf8proc_int32_t>(code)));
}

}  // namespace

char32_t fold(char32_t code) {
  if (code < 0x80U) return code >= U'A' && code <= U'Z' ? code + 32 : code;
  // Up and then down: the only way that letters with two small forms (σ, ς) meet.
  return toLower(toUpper(code));
}

namespace {

template <typename AsciiMap, typename Map>
std::string mapped(std::string_view text, AsciiMap asciiMap, Map map) {
  std::string out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    if (isAscii(text[i])) {
      out.push_back(asciiMap(text[i++]));
      continue;
    }
    const Character character = decode(text, i);
    append(out, map(character.code));
    i += character.size;
  }
  return out;
}

std::vector<char32_t> codes(std::string_view text) {
  std::vector<char32_t> out;
  out.reserve(text.size());
  for (std::size_t i = 0; i < text.size();) {
    const Character character = decode(text, i);
    out.push_back(character.code);
    i += character.size;
  }
  return out;
}

}  // namespace
}  // namespace utf8

namespace text {

namespace {

/// The byte at which the character number `count` starts, or the end.
std::size_t offsetOf(std::string_view text, std::size_t count) {
  std::size_t i = 0;
  while (count > 0 && i < text.size()) {
    if (count >= 8 && i + 8 <= text.size() && (loadWord(text.data() + i) & utf8::kHighBits) == 0) {
      i += 8;
      count -= 8;
      continue;
    }
    i += utf8::decode(text, i).size;
    --count;
  }
  return i;
}

std::string filler(std::size_t length, std::size_t width, char fill) {
  return length < width ? std::string(width - length, fill) : std::string();
}

}  // namespace

std::size_t length(std::string_view text) {
  std::size_t count = 0;
  std::size_t i = 0;
  while (i < text.size()) {
    if (i + 8 <= text.size() && (loadWord(text.data() + i) & utf8::kHighBits) == 0) {
      i += 8;
      count += 8;
      continue;
    }
    i += utf8::decode(text, i).size;
    ++count;
  }
  return count;
}

std::string_view left(std::string_view text, std::size_t count) {
  if (count >= text.size()) return text;  // never more characters than bytes
  return text.substr(0, offsetOf(text, count));
}

std::string_view right(std::string_view text, std::size_t count) {
  if (count >= text.size()) return text;
  std::size_t begin = text.size();
  for (; count > 0 && begin > 0; --count) begin -= utf8::sizeBefore(text, begin);
  return text.substr(begin);
}

std::string_view mid(std::string_view text, std::size_t start, std::size_t count) {
  return left(text.substr(offsetOf(text, start)), count);
}

std::string padRight(std::string_view text, std::size_t width, char fill) {
  const std::string_view kept = left(text, width);
  return std::string(kept) + filler(length(kept), width, fill);
}

std::string padLeft(std::string_view text, std::size_t width, char fill) {
  const std::string_view kept = left(text, width);
  std::string out = filler(length(kept), width, fill);
  out.append(kept);
  return out;
}

std::string alignRight(std::string_view text, std::size_t width) {
  return filler(length(text), width, ' ').append(text);
}

std::string alignLeft(std::string_view text, std::size_t width) {
  return std::string(text) + filler(length(text), width, ' ');
}

std::string_view trim(std::string_view text) {
  return trimLeft(trimRight(text));
}

std::string_view trimLeft(std::string_view text) {
  const std::size_t begin = text.find_first_not_of(' ');
  return begin == std::string_view::npos ? text.substr(text.size()) : text.substr(begin);
}

std::string_view trimRight(std::string_view text) {
  const std::size_t last = text.find_last_not_of(' ');
  return last == std::string_view::npos ? text.substr(0, 0) : text.substr(0, last + 1);
}

std::string upper(std::string_view text) {
  return utf8::mapped(
      text, [](char c) { return c >= 'a' && c <= 'z' ? static_cast<char>(c - 32) : c; },
      utf8::toUpper);
}

std::string lower(std::string_view text) {
  return utf8::mapped(text, utf8::foldAscii, utf8::toLower);
}

std::string foldCase(std::string_view text) {
  return utf8::mapped(text, utf8::foldAscii, utf8::fold);
}

/// Nothing for what is no UTF-8.
static std::optional<std::string> normalized(std::string_view text, int options) {
  utf8proc_uint8_t* mapped = nullptr;
  const utf8proc_ssize_t size = utf8proc_map(reinterpret_cast<const utf8proc_uint8_t*>(text.data()),
                                             static_cast<utf8proc_ssize_t>(text.size()), &mapped,
                                             static_cast<utf8proc_option_t>(options));
  const std::unique_ptr<utf8proc_uint8_t, decltype(&std::free)> owner(mapped, &std::free);
  if (size < 0) return std::nullopt;
  return std::string(mapped, mapped + size);
}

std::string foldAccents(std::string_view text) {
  const int options = UTF8PROC_COMPOSE | UTF8PROC_STRIPMARK | UTF8PROC_CASEFOLD;
  std::optional<std::string> folded = normalized(text, options);
  return folded ? *std::move(folded) : foldCase(text);
}

std::string composed(std::string_view text) {
  return normalized(text, UTF8PROC_STABLE | UTF8PROC_COMPOSE).value_or(std::string(text));
}

std::vector<std::string_view> lines(std::string_view text) {
  std::vector<std::string_view> found;
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    found.push_back(text.substr(0, end));
    text.remove_prefix(std::min(end + 1, text.size()));
  }
  return found;
}

bool equalsIgnoreCase(std::string_view a, std::string_view b) {
  return compareIgnoreCase(a, b) == 0;
}

int compareIgnoreCase(std::string_view a, std::string_view b) {
  std::size_t i = 0;
  std::size_t j = 0;
  while (i < a.size() && j < b.size()) {
    if (i + 8 <= a.size() && j + 8 <= b.size()) {
      const Word64 left = loadWord(a.data() + i);
      const Word64 right = loadWord(b.data() + j);
      if (((left | right) & utf8::kHighBits) == 0 &&
          utf8::foldAsciiWord(left) == utf8::foldAsciiWord(right)) {
        i += 8;
        j += 8;
        continue;
      }
    }
    if (utf8::isAscii(a[i]) && utf8::isAscii(b[j])) {
      const char left = utf8::foldAscii(a[i++]);
      const char right = utf8::foldAscii(b[j++]);
      if (left != right) return left < right ? -1 : 1;
      continue;
    }
    const utf8::Character left = utf8::decode(a, i);
    const utf8::Character right = utf8::decode(b, j);
    const char32_t leftCode = utf8::fold(left.code);
    const char32_t rightCode = utf8::fold(right.code);
    if (leftCode != rightCode) return leftCode < rightCode ? -1 : 1;
    i += left.size;
    j += right.size;
  }
  if (i < a.size()) return 1;
  return j < b.size() ? -1 : 0;
}

bool isValidUtf8(std::string_view text) {
  for (std::size_t i = 0; i < text.size();) {
    const utf8::Character character = utf8::decode(text, i);
    if (character.code >= utf8::kInvalidBase) return false;
    i += character.size;
  }
  return true;
}

std::size_t editDistance(std::string_view a, std::string_view b) {
  const std::vector<char32_t> rows = utf8::codes(a);
  const std::vector<char32_t> columns = utf8::codes(b);
  std::vector<std::size_t> distance(columns.size() + 1);
  for (std::size_t j = 0; j <= columns.size(); ++j) distance[j] = j;
  for (std::size_t i = 0; i < rows.size(); ++i) {
    std::size_t diagonal = distance[0];
    distance[0] = i + 1;
    for (std::size_t j = 0; j < columns.size(); ++j) {
      const std::size_t replaced = diagonal + (rows[i] == columns[j] ? 0 : 1);
      diagonal = distance[j + 1];
      distance[j + 1] = std::min({replaced, distance[j] + 1, diagonal + 1});
    }
  }
  return distance[columns.size()];
}

}  // namespace text
}  // namespace tavelor
