// SPDX-License-Identifier: MIT
// The short road from a statement to its plan.
#include "tavelor/services/dialect/splice.hpp"

#include <functional>
#include <optional>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"
#include "tavelor/platform/words.hpp"
#include "tavelor/services/dialect/lexer.hpp"

namespace tavelor::dialect {

namespace {

using Piece = Statement::Piece;

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
    look(loadWord(value.data(), size) | eachByte(' ') << (8 * size));
  } else {
    for (std::size_t i = 0; i + kWordSize < size; i += kWordSize) look(loadWord(value.data() + i));
    look(loadWord(value.data() + size - kWordSize));
  }
  if (broken != 0) return false;
  return (high & eachByte(0x80)) == 0 || text::isValidUtf8(value);
}

}  // namespace

Splice::Place Splice::placeOf(LiteralKind kind, bool eitherKind) {
  switch (kind) {
    case LiteralKind::kText:
      return Place::kText;
    case LiteralKind::kDate:
      return Place::kDate;
    case LiteralKind::kWhole:
      return eitherKind ? Place::kNumber : Place::kWhole;
    case LiteralKind::kDecimal:
      return eitherKind ? Place::kNumber : Place::kDecimal;
  }
  return Place::kText;
}

std::uint64_t Splice::hash(const Statement& statement) {
  Word64 hash = kSeed;
  const char* kept = statement.keptText().data();
  for (const Piece& piece : statement.pieces()) {
    switch (piece.kind) {
      case Piece::Kind::kConstant:
        hash = fold(hash ^ reinterpret_cast<std::uintptr_t>(piece.constant), kFactor ^ piece.size);
        break;
      case Piece::Kind::kTrusted:
        hash = fold(hash ^ std::hash<std::string_view>()({kept, piece.size}), kFactor);
        kept += piece.size;
        break;
      case Piece::Kind::kValue:
        hash = fold(hash, kFactor);
        kept += piece.size;
        break;
    }
  }
  return hash;
}

std::optional<Splice> Splice::of(const Statement& statement, const Shape& shape,
                                 const std::vector<bool>& eitherKind) {
  if (!shape.spliceable) return std::nullopt;
  Splice splice;
  splice.literalCount_ = shape.literals.size();
  std::vector<std::size_t> values(shape.literals.size(), 0);
  for (const dialect::Slot& from : shape.slots) {
    if (from.joinsNeighbours) return std::nullopt;
    ++values[static_cast<std::size_t>(from.literal)];
  }

  const auto slotOf = [&](std::size_t i) {
    const dialect::Slot& from = shape.slots[i];
    const auto literal = static_cast<std::size_t>(from.literal);
    Slot slot;
    slot.literal = from.literal;
    slot.quote = from.quote;
    slot.delimited = from.delimited;
    slot.place = placeOf(from.kind, eitherKind[literal]);
    if (values[literal] > 1 || !from.prefix.empty() || !from.suffix.empty()) {
      const bool isFirst = i == 0 || shape.slots[i - 1].literal != from.literal;
      const bool isLast = i + 1 == shape.slots.size() || shape.slots[i + 1].literal != from.literal;
      slot.joint = static_cast<std::int32_t>(splice.joints_.size());
      splice.joints_.push_back({from.prefix, from.suffix, isFirst, isLast});
      splice.joined_.resize(shape.literals.size());
    }
    return slot;
  };
  const char* kept = statement.keptText().data();
  std::size_t value = 0;
  for (const Piece& piece : statement.pieces()) {
    Part& part = splice.parts_.emplace_back(Part{piece.kind, {}, {}});
    switch (piece.kind) {
      case Piece::Kind::kConstant:
        part.text.assign(piece.constant, piece.size);
        continue;
      case Piece::Kind::kTrusted:
        part.text.assign(kept, piece.size);
        break;
      case Piece::Kind::kValue:
        part.slot = slotOf(value++);
        break;
    }
    kept += piece.size;
  }
  for (std::size_t i = 0; i < values.size(); ++i) {
    if (values[i] > 0) continue;
    Fixed fixed;
    fixed.literal = static_cast<std::int32_t>(i);
    fixed.text = shape.literals[i];
    fixed.lifted = lift(fixed.text, shape.kinds[i]);
    splice.fixed_.push_back(std::move(fixed));
  }
  return splice;
}

bool Splice::take(const Statement& statement, std::vector<Lifted>& literals) {
  if (statement.pieces().size() != parts_.size()) return false;
  literals.resize(literalCount_);
  const char* kept = statement.keptText().data();
  const Part* part = parts_.data();
  for (const Piece& piece : statement.pieces()) {
    const Part& known = *part++;
    if (piece.kind != known.kind) return false;
    if (piece.kind == Piece::Kind::kConstant) {
      // By its bytes too: where a plug-in was unloaded, another's constant may lie.
      if (std::string_view(piece.constant, piece.size) != known.text) return false;
      continue;
    }
    const std::string_view text(kept, piece.size);
    kept += piece.size;
    if (piece.kind == Piece::Kind::kTrusted) {
      if (text != known.text) return false;
    } else if (!takeValue(known.slot, text,
                          literals[static_cast<std::size_t>(known.slot.literal)])) {
      return false;
    }
  }
  for (const Fixed& fixed : fixed_) {
    Lifted& literal = literals[static_cast<std::size_t>(fixed.literal)];
    literal = fixed.lifted;
    literal.text = fixed.text;
  }
  return true;
}

bool Splice::takeValue(const Slot& slot, std::string_view value, Lifted& literal) {
  if (slot.quote != 0) return takeQuoted(slot, value, literal);
  if (!readPlain(value, '.', literal)) return false;
  literal.text = value;
  return slot.place == Place::kNumber ||
         (literal.kind == LiteralKind::kWhole) == (slot.place == Place::kWhole);
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
