// SPDX-License-Identifier: MIT
// The words that the dialect takes for itself.
#include "tavelor/services/dialect/reserved_words.hpp"

#include <algorithm>
#include <array>

namespace tavelor::dialect {

namespace {

struct ReservedWord {
  std::string_view text;
  Word word = Word::kNone;
};

constexpr std::array kReservedWords{ReservedWord{"all", Word::kAll},
                                    ReservedWord{"and", Word::kAnd},
                                    ReservedWord{"as", Word::kAs},
                                    ReservedWord{"asc", Word::kAsc},
                                    ReservedWord{"between", Word::kBetween},
                                    ReservedWord{"by", Word::kBy},
                                    ReservedWord{"delete", Word::kDelete},
                                    ReservedWord{"desc", Word::kDesc},
                                    ReservedWord{"distinct", Word::kDistinct},
                                    ReservedWord{"distinctrow", Word::kDistinctRow},
                                    ReservedWord{"eqv", Word::kEqv},
                                    ReservedWord{"exists", Word::kExists},
                                    ReservedWord{"false", Word::kFalse},
                                    ReservedWord{"from", Word::kFrom},
                                    ReservedWord{"group", Word::kGroup},
                                    ReservedWord{"having", Word::kHaving},
                                    ReservedWord{"imp", Word::kImp},
                                    ReservedWord{"in", Word::kIn},
                                    ReservedWord{"inner", Word::kInner},
                                    ReservedWord{"insert", Word::kInsert},
                                    ReservedWord{"into", Word::kInto},
                                    ReservedWord{"is", Word::kIs},
                                    ReservedWord{"join", Word::kJoin},
                                    ReservedWord{"left", Word::kLeft},
                                    ReservedWord{"like", Word::kLike},
                                    ReservedWord{"mod", Word::kMod},
                                    ReservedWord{"not", Word::kNot},
                                    ReservedWord{"null", Word::kNull},
                                    ReservedWord{"on", Word::kOn},
                                    ReservedWord{"or", Word::kOr},
                                    ReservedWord{"order", Word::kOrder},
                                    ReservedWord{"outer", Word::kOuter},
                                    ReservedWord{"percent", Word::kPercent},
                                    ReservedWord{"right", Word::kRight},
                                    ReservedWord{"select", Word::kSelect},
                                    ReservedWord{"set", Word::kSet},
                                    ReservedWord{"top", Word::kTop},
                                    ReservedWord{"true", Word::kTrue},
                                    ReservedWord{"union", Word::kUnion},
                                    ReservedWord{"update", Word::kUpdate},
                                    ReservedWord{"values", Word::kValues},
                                    ReservedWord{"where", Word::kWhere},
                                    ReservedWord{"xor", Word::kXor}};

constexpr std::size_t kLongestWord = 11;

constexpr char lowerAscii(char c) {
  return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
}

constexpr std::size_t kWordSlots = 128;

constexpr std::size_t wordSlot(std::string_view word) {
  const auto first = static_cast<unsigned char>(lowerAscii(word.front()));
  const auto last = static_cast<unsigned char>(lowerAscii(word.back()));
  return (word.size() * 31U + first * 7U + last * 13U) % kWordSlots;
}

constexpr std::array<ReservedWord, kWordSlots> makeWordSlots() {
  std::array<ReservedWord, kWordSlots> slots{};
  for (const ReservedWord& reserved : kReservedWords) {
    std::size_t slot = wordSlot(reserved.text);
    while (slots[slot].word != Word::kNone) slot = (slot + 1) % kWordSlots;
    slots[slot] = reserved;
  }
  return slots;
}
constexpr std::array<ReservedWord, kWordSlots> kWordTable = makeWordSlots();

}  // namespace

Word reservedWord(std::string_view name) {
  if (name.size() > kLongestWord) return Word::kNone;
  for (std::size_t slot = wordSlot(name); kWordTable[slot].word != Word::kNone;
       slot = (slot + 1) % kWordSlots) {
    const std::string_view word = kWordTable[slot].text;
    if (word.size() == name.size() &&
        std::equal(word.begin(), word.end(), name.begin(),
                   [](char a, char b) { return a == lowerAscii(b); })) {
      return kWordTable[slot].word;
    }
  }
  return Word::kNone;
}

}  // namespace tavelor::dialect
