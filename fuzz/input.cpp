// SPDX-License-Identifier: MIT
// Fuzzed bytes as statements, and what every target shares.
#include "fuzz/input.hpp"

#include <cstdio>
#include <cstdlib>

namespace tavelor::fuzz {

using dialect::LiteralKind;
using dialect::Shape;
using dialect::Slot;

Statement statementOf(std::string_view bytes) {
  Statement statement;
  while (!bytes.empty()) {
    const std::size_t begin = bytes.find(kValueBegin);
    statement << Statement::trusted(bytes.substr(0, begin));
    if (begin == std::string_view::npos) break;
    bytes.remove_prefix(begin + 1);
    const std::size_t end = bytes.find(kValueEnd);
    statement << spliced(bytes.substr(0, end));
    if (end == std::string_view::npos) break;
    bytes.remove_prefix(end + 1);
  }
  return statement;
}

namespace {

std::string otherValue(const Slot& slot, std::string_view now) {
  const bool whole = slot.prefix.empty() && slot.suffix.empty();
  if (slot.literal < 0 || (!whole && slot.kind != LiteralKind::kText)) return std::string(now);
  switch (slot.kind) {
    case LiteralKind::kWhole:
      return "7";
    case LiteralKind::kDecimal:
      return "7.5";
    case LiteralKind::kDate:
      return slot.delimited ? "#03/04/2025#" : "03/04/2025";
    case LiteralKind::kText: {
      const std::string quote(slot.delimited ? 1 : 0, slot.quote);
      return quote + "otro ñ" + quote;
    }
  }
  return std::string(now);
}

}  // namespace

Statement withOtherValues(const Statement& statement, const Shape& shape) {
  Statement other;
  const char* kept = statement.keptText().data();
  std::size_t slot = 0;
  for (const Statement::Piece& piece : statement.pieces()) {
    const std::string_view text(kept, piece.size);
    kept += piece.size;
    if (piece.kind == Statement::Piece::Kind::kValue) {
      other << spliced(otherValue(shape.slots[slot++], text));
    } else {
      other << Statement::trusted(text);
    }
  }
  return other;
}

void require(bool holds, std::string_view rule, std::string_view detail) {
  if (holds) return;
  std::fprintf(stderr, "This does not hold: %.*s\n%.*s\n", static_cast<int>(rule.size()),
               rule.data(), static_cast<int>(detail.size()), detail.data());
  std::abort();
}

}  // namespace tavelor::fuzz
