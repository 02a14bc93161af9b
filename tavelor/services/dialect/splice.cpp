// SPDX-License-Identifier: MIT
// The short road from a statement to its plan.
#include "tavelor/services/dialect/splice.hpp"

#include <optional>
#include <span>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"
#include "tavelor/platform/words.hpp"
#include "tavelor/services/dialect/lexer.hpp"

namespace tavelor::dialect {

namespace {

constexpr Word64 kSeed = 0xA0761D6478BD642FU;
constexpr Word64 kFactor = 0xE7037ED1A0B428DBU;

/// Both halves of the 128-bit product.
Word64 fold(Word64 a, Word64 b) {
  __extension__ using Wide = unsigned __int128;
  const Wide product = static_cast<Wide>(a) * b;
  return static_cast<Word64>(product) ^ static_cast<Word64>(product >> 64);
}

/// True if a value can stand between these quotes as it is.
bool staysInside(std::string_view value, char quote) {
  const Word64 quotes = eachByte(static_cast<unsigned char>(quote));
  Word64 broken = 0;
  Word64 high = 0;
  const auto look = [&](Word64 word) {
    broken |= zeroBytes(word) | zeroBytes(word ^ quotes);
    high |= word;
  };
  const std::size_t size = value.size();
  if (size < kWordSize) {
    look(load(value.data(), size) | eachByte(' ') << (8 * size));
  } else {
    for (std::size_t i = 0; i + kWordSize < size; i += kWordSize) look(load(value.data() + i));
    look(load(value.data() + size - kWordSize));
  }
  if (broken != 0) return false;
  return (high & eachByte(0x80)) == 0 || text::isValidUtf8(value);
}

}  // namespace

std::uint64_t Splice::hash(const Statement& statement) {
  const std::string_view text = statement.text();
  const std::span<const Statement::Range> ranges = statement.ranges();
  std::size_t length = text.size();
  for (const Statement::Range& range : ranges) length -= range.end - range.begin;
  Word64 hash = fold(kSeed ^ length, kFactor ^ ranges.size());
  const auto add = [&](std::string_view segment) {
    std::size_t at = 0;
    for (; at + kWordSize < segment.size(); at += kWordSize) {
      hash = fold(hash ^ load(segment.data() + at), kFactor);
    }
    hash = fold(hash ^ load(segment.data() + at, segment.size() - at), kFactor);
  };
  if (ranges.empty()) {
    add(text);
  } else {
    add(text.substr(0, ranges.front().begin));
    add(text.substr(ranges.back().end));
  }
  return hash;
}

std::optional<Splice> Splice::of(const Statement& statement, const Shape& shape,
                                 const std::vector<bool>& eitherKind) {
  if (!shape.spliceable) return std::nullopt;
  Splice splice;
  const std::string_view text = statement.text();
  std::size_t begin = 0;
  for (const Statement::Range& range : statement.ranges()) {
    splice.segments_.emplace_back(text.substr(begin, range.begin - begin));
    begin = range.end;
  }
  splice.segments_.emplace_back(text.substr(begin));
  splice.literalCount_ = shape.literals.size();
  std::vector<std::size_t> parts(shape.literals.size(), 0);
  for (const dialect::Slot& slot : shape.slots) ++parts[static_cast<std::size_t>(slot.literal)];

  for (std::size_t i = 0; i < shape.slots.size(); ++i) {
    const dialect::Slot& from = shape.slots[i];
    const auto literal = static_cast<std::size_t>(from.literal);
    const Statement::Range& range = statement.ranges()[i];
    // An empty value next to a quote inside its literal, or within a letter: whether the two are
    // one doubled quote, or the bytes one letter, depends on the value being empty.
    const auto behind = static_cast<unsigned char>(text[range.begin]);
    if (range.begin == range.end &&
        (from.prefix.ends_with(from.quote) || utf8::isContinuation(behind))) {
      return std::nullopt;
    }
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
    constant.lifted = lift(constant.text, shape.kinds[i]);
    splice.constants_.push_back(std::move(constant));
  }
  return splice;
}

Splice::Segment::Segment(std::string_view text)
    : length_(text.size()),
      word_(length_ <= kWordSize ? load(text.data(), length_) : 0),
      text_(length_ <= kWordSize ? std::string_view() : text) {}

inline bool Splice::Segment::is(std::string_view text) const {
  if (text.size() != length_) return false;
  if (length_ <= kWordSize) return load(text.data(), length_) == word_;
  return text == text_;
}

bool Splice::take(const Statement& statement, std::vector<Lifted>& literals) {
  if (statement.ranges().size() != slots_.size()) return false;
  const std::string_view text = statement.text();
  literals.resize(literalCount_);
  const Segment* segment = segments_.data();
  const Statement::Range* range = statement.ranges().data();
  std::size_t begin = 0;
  for (const Slot& slot : slots_) {
    const Statement::Range at = *range++;
    if (!segment++->is({text.data() + begin, at.begin - begin})) return false;
    begin = at.end;
    const std::string_view value(text.data() + at.begin, at.end - at.begin);
    Lifted& literal = literals[static_cast<std::size_t>(slot.literal)];
    if (slot.quote != 0) {
      if (!takeQuoted(slot, value, literal)) return false;
    } else {
      if (!readPlain(value, '.', literal)) return false;
      literal.text = value;
      if (slot.place == Place::kNumber) continue;
      if ((literal.kind == LiteralKind::kWhole) != (slot.place == Place::kWhole)) return false;
    }
  }
  if (!segment->is({text.data() + begin, text.size() - begin})) return false;
  for (const Constant& constant : constants_) {
    Lifted& literal = literals[static_cast<std::size_t>(constant.literal)];
    literal = constant.lifted;
    literal.text = constant.text;
  }
  return true;
}

bool Splice::takeQuoted(const Slot& slot, std::string_view value, Lifted& literal) {
  if (slot.delimited) {
    if (value.size() < 2 || value.front() != slot.quote || value.back() != slot.quote) return false;
    value = value.substr(1, value.size() - 2);
  }
  // What reads as a date has no # in it.
  if (slot.place == Place::kDate && slot.joint < 0) return takeDate(value, literal);
  if (!staysInside(value, slot.quote)) return false;
  literal.text = value;
  literal.kind = LiteralKind::kText;
  if (slot.joint < 0) return true;
  const Joint& joint = joints_[static_cast<std::size_t>(slot.joint)];
  std::string& whole = joined_[static_cast<std::size_t>(slot.literal)];
  if (joint.isFirst) whole.clear();
  whole.append(joint.prefix).append(value).append(joint.suffix);
  literal.text = whole;
  return slot.place == Place::kText || !joint.isLast || takeDate(whole, literal);
}

bool Splice::takeDate(std::string_view text, Lifted& literal) {
  const std::optional<Date> date = parseSqlDate(text);
  if (!date) return false;
  literal.text = text;
  literal.kind = LiteralKind::kDate;
  literal.real = date->days();
  return true;
}

}  // namespace tavelor::dialect
