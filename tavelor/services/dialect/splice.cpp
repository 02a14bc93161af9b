// SPDX-License-Identifier: MIT
// The short road from a statement to its plan.
#include "tavelor/services/dialect/splice.hpp"

#include <cstring>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/lexer.hpp"

namespace tavelor::dialect {

namespace {

using Word64 = std::uint64_t;

constexpr Word64 kOnes = 0x0101010101010101U;
constexpr Word64 kHighBits = 0x8080808080808080U;
constexpr Word64 kSeed = 0xA0761D6478BD642FU;
constexpr Word64 kFactor = 0xE7037ED1A0B428DBU;

template <typename Word = Word64>
Word load(const char* from) {
  Word word = 0;
  std::memcpy(&word, from, sizeof word);
  return word;
}

/// Up to 16 bytes as two words that hold each of them at least once and nothing else. Reads overlap
/// instead of going byte by byte.
struct Pair {
  Word64 first = 0;
  Word64 second = 0;
  friend bool operator==(const Pair&, const Pair&) = default;
};
Pair loadShort(const char* from, std::size_t count) {
  if (count >= sizeof(Word64)) return {load(from), load(from + count - sizeof(Word64))};
  Word64 word = 0;
  if (count >= sizeof(std::uint32_t)) {
    const Word64 end = load<std::uint32_t>(from + count - sizeof(std::uint32_t));
    word = load<std::uint32_t>(from) | end << 32;
  } else if (count > 0) {
    const auto byte = [&](std::size_t i) {
      return static_cast<Word64>(static_cast<unsigned char>(from[i]));
    };
    word = (byte(0) | byte(count / 2) << 8 | byte(count - 1) << 16 | byte(0) << 24);
    word |= word << 32;
  }
  return {word, word};
}

constexpr std::size_t kShort = 2 * sizeof(Word64);

/// Both halves of the 128-bit product.
Word64 fold(Word64 a, Word64 b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<Word64>(product) ^ static_cast<Word64>(product >> 64);
}

Word64 hashPart(Word64 hash, std::string_view part) {
  const char* at = part.data();
  std::size_t left = part.size();
  for (; left > kShort; left -= kShort, at += kShort) {
    hash = fold(hash ^ load(at), kFactor ^ load(at + sizeof(Word64)));
  }
  const Pair rest = loadShort(at, left);
  // The length tells apart what meets at another place.
  return fold(hash ^ rest.first ^ part.size(), kFactor ^ rest.second);
}

bool sameBytes(const char* a, const char* b, std::size_t count) {
  if (count <= kShort) return loadShort(a, count) == loadShort(b, count);
  return std::memcmp(a, b, count) == 0;
}

/// Calls `visit` with the text before, between and behind the values, until it answers false.
template <typename Visit>
bool eachSegment(const Statement& statement, Visit visit) {
  const std::string_view text = statement.text();
  std::size_t begin = 0;
  for (const Statement::Range& range : statement.ranges()) {
    if (!visit(text.substr(begin, range.begin - begin))) return false;
    begin = range.end;
  }
  return visit(text.substr(begin));
}

constexpr Word64 zeroBytes(Word64 word) {
  return (word - kOnes) & ~word & kHighBits;
}

/// True if a value can stand between these quotes as it is.
bool staysInside(std::string_view value, char quote) {
  const Word64 quotes = kOnes * static_cast<unsigned char>(quote);
  const auto isBroken = [&](Word64 word) {
    return (zeroBytes(word) | zeroBytes(word ^ quotes)) != 0;
  };
  if (value.empty()) return true;
  Word64 high = 0;
  const char* at = value.data();
  std::size_t left = value.size();
  for (; left > kShort; left -= sizeof(Word64), at += sizeof(Word64)) {
    const Word64 word = load(at);
    if (isBroken(word)) return false;
    high |= word;
  }
  const Pair rest = loadShort(at, left);
  if (isBroken(rest.first) || isBroken(rest.second)) return false;
  high |= rest.first | rest.second;
  return (high & kHighBits) == 0 || text::isValidUtf8(value);
}

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

enum class NumberForm { kNone, kWhole, kDecimal };

/// A sign, digits, a point. What else is a number the lexer knows.
NumberForm formOf(std::string_view value) {
  if (!value.empty() && (value[0] == '-' || value[0] == '+')) value.remove_prefix(1);
  bool anyDigit = false;
  bool point = false;
  for (const char c : value) {
    if (isDigit(c)) {
      anyDigit = true;
    } else if (c == '.' && !point) {
      point = true;
    } else {
      return NumberForm::kNone;
    }
  }
  if (!anyDigit) return NumberForm::kNone;
  return point ? NumberForm::kDecimal : NumberForm::kWhole;
}

}  // namespace

std::uint64_t Splice::hash(const Statement& statement) {
  Word64 hash = kSeed;
  eachSegment(statement, [&](std::string_view segment) {
    hash = hashPart(hash, segment);
    return true;
  });
  return hash;
}

std::optional<Splice> Splice::of(const Statement& statement, const Shape& shape,
                                 const std::vector<bool>& eitherKind) {
  if (!shape.spliceable) return std::nullopt;
  Splice splice;
  eachSegment(statement, [&](std::string_view segment) {
    splice.segments_ += segment;
    splice.lengths_.push_back(static_cast<std::uint32_t>(segment.size()));
    return true;
  });
  splice.literalCount_ = shape.literals.size();
  std::vector<std::size_t> parts(shape.literals.size(), 0);
  for (const dialect::Slot& slot : shape.slots) ++parts[static_cast<std::size_t>(slot.literal)];

  for (std::size_t i = 0; i < shape.slots.size(); ++i) {
    const dialect::Slot& from = shape.slots[i];
    const auto literal = static_cast<std::size_t>(from.literal);
    const Statement::Range& range = statement.ranges()[i];
    // An empty value next to a quote inside its literal: whether the two are one doubled quote
    // depends on the value being empty.
    if (range.begin == range.end && from.prefix.ends_with(from.quote)) return std::nullopt;
    Slot slot;
    slot.literal = from.literal;
    slot.quote = from.quote;
    slot.delimited = from.delimited;
    const bool isFirst = i == 0 || shape.slots[i - 1].literal != from.literal;
    const bool isLast = i + 1 == shape.slots.size() || shape.slots[i + 1].literal != from.literal;
    switch (from.kind) {
      case LiteralKind::kText:
        slot.place = Place::kText;
        break;
      case LiteralKind::kDate:
        slot.place = Place::kDate;
        break;
      case LiteralKind::kWhole:
        slot.place = eitherKind[literal] ? Place::kNumber : Place::kWhole;
        break;
      case LiteralKind::kDecimal:
        slot.place = eitherKind[literal] ? Place::kNumber : Place::kDecimal;
        break;
    }
    if (parts[literal] > 1 || !from.prefix.empty() || !from.suffix.empty()) {
      slot.joint = static_cast<std::int32_t>(splice.joints_.size());
      splice.joints_.push_back({from.prefix, from.suffix, isFirst, isLast});
      splice.joined_.resize(shape.literals.size());
    }
    splice.slots_.push_back(std::move(slot));
  }
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (parts[i] > 0) continue;
    Constant constant;
    constant.literal = static_cast<std::int32_t>(i);
    constant.text = shape.literals[i];
    constant.quoted = shape.kinds[i] == LiteralKind::kText;
    if (shape.kinds[i] == LiteralKind::kDate) {
      constant.day = parseSqlDate(constant.text).value_or(Date()).days();
    }
    splice.constants_.push_back(std::move(constant));
  }
  return splice;
}

bool Splice::hasText(const Statement& statement) const {
  if (statement.ranges().size() != slots_.size()) return false;
  const char* at = segments_.data();
  const std::uint32_t* length = lengths_.data();
  return eachSegment(statement, [&](std::string_view segment) {
    if (segment.size() != *length || !sameBytes(segment.data(), at, *length)) return false;
    at += *length++;
    return true;
  });
}

bool Splice::take(const Statement& statement, std::vector<Lifted>& literals) {
  if (!hasText(statement)) return false;
  literals.resize(literalCount_);
  for (const Constant& constant : constants_) {
    literals[static_cast<std::size_t>(constant.literal)] = {constant.text, constant.day,
                                                            constant.quoted};
  }
  const std::string_view text = statement.text();
  for (std::size_t i = 0; i < slots_.size(); ++i) {
    const Statement::Range& range = statement.ranges()[i];
    const Slot& slot = slots_[i];
    if (!takeValue(slot, text.substr(range.begin, range.end - range.begin),
                   literals[static_cast<std::size_t>(slot.literal)])) {
      return false;
    }
  }
  return true;
}

bool Splice::takeValue(const Slot& slot, std::string_view value, Lifted& literal) {
  if (slot.quote == 0) {
    const NumberForm form = formOf(value);
    if (form == NumberForm::kNone) return false;
    if (slot.place != Place::kNumber &&
        (form == NumberForm::kWhole) != (slot.place == Place::kWhole)) {
      return false;
    }
    literal = {value, 0, false};
    return true;
  }
  if (slot.delimited) {
    if (value.size() < 2 || value.front() != slot.quote || value.back() != slot.quote) return false;
    value = value.substr(1, value.size() - 2);
  }
  return staysInside(value, slot.quote) && takeText(slot, value, literal);
}

bool Splice::takeText(const Slot& slot, std::string_view text, Lifted& literal) {
  literal = {text, 0, slot.place == Place::kText};
  if (slot.joint >= 0) {
    const Joint& joint = joints_[static_cast<std::size_t>(slot.joint)];
    std::string& whole = joined_[static_cast<std::size_t>(slot.literal)];
    if (joint.isFirst) whole.clear();
    whole.append(joint.prefix).append(text).append(joint.suffix);
    literal.text = whole;
    if (!joint.isLast) return true;
  }
  if (slot.place != Place::kDate) return true;
  const auto date = parseSqlDate(literal.text);
  if (!date) return false;
  literal.day = date->days();
  return true;
}

}  // namespace tavelor::dialect
