// SPDX-License-Identifier: MIT
// Ranks the rows that a text index gives.
#include "tavelor/services/engine/text_ranking.hpp"

#include <algorithm>
#include <tuple>

#include "tavelor/platform/text.hpp"

namespace tavelor::engine {

namespace {

// Of the letters from U+00C0 on, in two bytes; 0 for what is no letter with a mark.
using namespace std::string_view_literals;
constexpr std::string_view kPlainLetters =
    "aaaaaa\0ceeeeiiii\0nooooo\0\0uuuuy\0\0aaaaaa\0ceeeeiiii\0nooooo\0\0uuuuy\0y"sv;
static_assert(kPlainLetters.size() == 64);

bool isOfWord(char c) {
  return (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || static_cast<unsigned char>(c) >= 0x80;
}

/// As text::foldAccents does; the letters of Western Europe without its help, because some hundred
/// texts are folded between two strokes of a key.
void fold(std::string_view text, std::string& out) {
  constexpr unsigned char kLatin = 0xC3;
  out.clear();
  for (std::size_t i = 0; i < text.size(); ++i) {
    const char c = text[i];
    if (static_cast<unsigned char>(c) < 0x80) {
      out.push_back(c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c);
      continue;
    }
    const bool isLatin = static_cast<unsigned char>(c) == kLatin && i + 1 < text.size();
    const char plain =
        isLatin ? kPlainLetters[static_cast<unsigned char>(text[i + 1]) & 0x3FU] : '\0';
    if (plain == '\0') {
      out = text::foldAccents(text);
      return;
    }
    out.push_back(plain);
    ++i;
  }
}

std::string_view firstWordOf(std::string_view folded) {
  const auto* const begin = std::find_if(folded.begin(), folded.end(), isOfWord);
  const auto* const end = std::find_if_not(begin, folded.end(), isOfWord);
  return {begin, static_cast<std::size_t>(end - begin)};
}

}  // namespace

TextRanking::TextRanking(std::string_view question) {
  fold(text::trim(question), question_);
  std::string_view rest = question_;
  while (words_.size() < kMostWords) {
    const std::string_view word = firstWordOf(rest);
    if (word.empty()) break;
    words_.emplace_back(word);
    rest.remove_prefix(static_cast<std::size_t>(word.data() + word.size() - rest.data()));
  }
}

std::uint32_t TextRanking::rankOf(std::string_view title, std::string_view codes, bool inUse) {
  constexpr std::uint32_t kWord = 1;
  constexpr std::uint32_t kBeginning = 2;
  constexpr std::uint32_t kOther = 3;
  constexpr std::uint32_t kOutOfUse = 4;
  const std::uint32_t use = inUse ? 0 : kOutOfUse;
  fold(codes, room_);
  bool begins = false;
  for (const std::string_view code : text::lines(room_)) {
    if (!code.starts_with(question_)) continue;
    if (code.size() == question_.size()) return 0;
    begins = true;
  }
  if (begins) return 1 + use;
  fold(title, room_);
  const std::string_view first = firstWordOf(room_);
  std::uint32_t rank = kOther;
  for (const std::string& word : words_) {
    if (!first.starts_with(word)) continue;
    rank = std::min(rank, first.size() == word.size() ? kWord : kBeginning);
  }
  return 1 + use + rank;
}

void TextRanking::offer(std::string_view key, std::string_view title, std::string_view codes,
                        bool inUse) {
  rows_.push_back({rankOf(title, codes, inUse), key, title});
}

std::vector<TextFound> TextRanking::best(std::size_t most) {
  const auto isBefore = [](const Row& a, const Row& b) {
    const std::size_t aSize = a.title.size();
    const std::size_t bSize = b.title.size();
    return std::tie(a.rank, aSize, a.title, a.key) < std::tie(b.rank, bSize, b.title, b.key);
  };
  std::sort(rows_.begin(), rows_.end(), isBefore);
  std::vector<TextFound> found;
  for (std::size_t i = 0; i < rows_.size() && found.size() < most; ++i) {
    if (i > 0 && rows_[i].key == rows_[i - 1].key) continue;
    found.push_back({std::string(rows_[i].key), rows_[i].rank == 0});
  }
  return found;
}

}  // namespace tavelor::engine
