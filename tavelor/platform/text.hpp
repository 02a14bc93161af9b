// SPDX-License-Identifier: MIT
// UTF-8 text counted, cut and compared by characters.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor::text {

/// Characters (code points). Bytes that are no UTF-8 count one each, everywhere in this file.
TAVELOR_API std::size_t length(std::string_view text);
TAVELOR_API std::string_view left(std::string_view text, std::size_t count);  ///< the first `count`
TAVELOR_API std::string_view right(std::string_view text, std::size_t count);  ///< the last `count`
/// `start` counts from 0.
TAVELOR_API std::string_view mid(std::string_view text, std::size_t start,
                                 std::size_t count = std::string_view::npos);
/// Cuts to the first `width` characters, or fills behind (padLeft: before) the text.
TAVELOR_API std::string padRight(std::string_view text, std::size_t width, char fill = ' ');
TAVELOR_API std::string padLeft(std::string_view text, std::size_t width,
                                char fill = ' ');  ///< fills before
/// Blanks before (alignLeft: behind) the text up to `width` characters. What is longer stays whole.
TAVELOR_API std::string alignRight(std::string_view text, std::size_t width);
TAVELOR_API std::string alignLeft(std::string_view text, std::size_t width);  ///< blanks behind
/// Blanks (U+0020) only; tabs stay.
TAVELOR_API std::string_view trim(std::string_view text);
TAVELOR_API std::string_view trimLeft(std::string_view text);   ///< those before
TAVELOR_API std::string_view trimRight(std::string_view text);  ///< those behind

/// All letters, not only ASCII, each becoming one letter: ß stays ß in upper case.
TAVELOR_API std::string upper(std::string_view text);
TAVELOR_API std::string lower(std::string_view text);  ///< the same in small letters
/// The form in which texts that differ in case only are equal; accents stay.
TAVELOR_API std::string foldCase(std::string_view text);
TAVELOR_API bool equalsIgnoreCase(std::string_view a,
                                  std::string_view b);  ///< by their folded forms
/// Folded, and every letter without its accents, however they are composed: "Almacén" is "almacen".
TAVELOR_API std::string foldAccents(std::string_view text);
/// Letters and their accents as one character each, where there is one; what is no UTF-8 as it is.
TAVELOR_API std::string composed(std::string_view text);
/// Negative, 0, positive, by folded code points.
TAVELOR_API int compareIgnoreCase(std::string_view a, std::string_view b);

/// What stands between line feeds. One at the end begins no line; an empty text has none.
TAVELOR_API std::vector<std::string_view> lines(std::string_view text);

TAVELOR_API bool isValidUtf8(std::string_view text);  ///< an empty text is

TAVELOR_API std::size_t editDistance(std::string_view a, std::string_view b);  ///< in characters
/// The entry of `candidates` closest to `name` by edit distance without regard to case, "" when
/// none is near. For "did you mean" in messages. `candidates` iterates over string-like values.
/// Names that are too long to be near cost nothing, however long they are.
template <typename Range>
std::string nearest(std::string_view name, const Range& candidates) {
  std::string best;
  const std::size_t size = length(name);
  std::size_t bestDistance = size / 2 + 1;
  for (const auto& candidate : candidates) {
    const std::size_t other = length(candidate);
    if ((size > other ? size - other : other - size) >= bestDistance) continue;
    const std::size_t distance = editDistance(foldCase(name), foldCase(candidate));
    if (distance < bestDistance) {
      bestDistance = distance;
      best = std::string(candidate);
    }
  }
  return best;
}

}  // namespace tavelor::text
