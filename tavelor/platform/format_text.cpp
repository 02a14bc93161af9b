// SPDX-License-Identifier: MIT
// Text masks.
#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/format_parts.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"

namespace tavelor {

namespace {

/// A place for a character, or text that stays.
struct Piece {
  bool isPlace = false;
  bool blankWhenEmpty = false;
  std::string_view literal;
};

struct TextMask {
  std::vector<Piece> pieces;
  std::size_t places = 0;
  bool fromLeft = false;
  bool lower = false;
  bool upper = false;
};

/// Reads one section of the mask, up to a semicolon, and moves `at` behind it.
TextMask readSection(std::string_view mask, std::size_t& at) {
  TextMask result;
  while (at < mask.size()) {
    const char c = mask[at++];
    if (c == ';') break;
    if (c == '@' || c == '&') {
      result.pieces.push_back({true, c == '@', {}});
      ++result.places;
    } else if (c == '<') {
      result.lower = true;
    } else if (c == '>') {
      result.upper = true;
    } else if (c == '!') {
      result.fromLeft = true;
    } else if (c == '\\') {
      result.pieces.push_back({false, false, mask.substr(at < mask.size() ? at : mask.size(), 1)});
      ++at;
    } else if (c == '"') {
      const std::size_t end = mask.find('"', at);
      result.pieces.push_back({false, false, mask.substr(at, end - at)});
      at = end == std::string_view::npos ? mask.size() : end + 1;
    } else {
      result.pieces.push_back({false, false, mask.substr(at - 1, 1)});
    }
  }
  return result;
}

}  // namespace

std::string formatText(std::string_view text, std::string_view mask) {
  std::size_t at = 0;
  TextMask section = readSection(mask, at);
  // The second section is for nothing at all.
  if (text.empty() && at < mask.size()) section = readSection(mask, at);

  std::string cased;
  if (section.lower || section.upper) {
    cased = section.upper ? text::upper(text) : text::lower(text);
    text = cased;
  }
  const std::size_t length = text::length(text);
  std::size_t empty = section.places > length ? section.places - length : 0;
  std::size_t placesLeft = section.places;
  std::string out;
  const auto put = [&](std::size_t count) {
    const std::string_view part = text::left(text, count);
    out += part;
    text.remove_prefix(part.size());
  };
  for (const Piece& piece : section.pieces) {
    if (!piece.isPlace) {
      out += piece.literal;
      continue;
    }
    const bool isEmpty = section.fromLeft ? placesLeft <= empty : empty > 0;
    --placesLeft;
    if (isEmpty) {
      if (!section.fromLeft) --empty;
      if (piece.blankWhenEmpty) out += ' ';
      continue;
    }
    // What is too much goes to the last place, before the text behind it.
    put(placesLeft == 0 ? std::string_view::npos : 1);
  }
  out += text;
  return out;
}

}  // namespace tavelor
