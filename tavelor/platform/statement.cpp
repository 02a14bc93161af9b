// SPDX-License-Identifier: MIT
// Statements made of constant text and of values, and joined only where their text is needed.
#include "tavelor/platform/statement.hpp"

namespace tavelor {

Statement& Statement::operator<<(const Statement& part) {
  pieces_.append(part.pieces());
  kept_.append(part.keptText());
  return *this;
}

Statement& Statement::operator<<(const Literal& literal) {
  if (literal.text() == "Null") return *this << "Null";
  return keep(literal.text(), Piece::Kind::kValue);
}

Statement& Statement::keep(std::string_view text, Piece::Kind kind) {
  kept_.append(text);
  pieces_.append({nullptr, sizeOf(text), kind});
  return *this;
}

Statement::Joined Statement::joined() const {
  Joined joined;
  std::size_t size = kept_.size();
  for (const Piece& piece : pieces()) size += piece.constant == nullptr ? 0 : piece.size;
  joined.text.reserve(size);
  const char* kept = kept_.data();
  for (const Piece& piece : pieces()) {
    const std::uint32_t begin = sizeOf(joined.text);
    if (piece.kind == Piece::Kind::kConstant) {
      joined.text.append(piece.constant, piece.size);
    } else {
      joined.text.append(kept, piece.size);
      kept += piece.size;
    }
    if (piece.kind == Piece::Kind::kValue) joined.ranges.push_back({begin, sizeOf(joined.text)});
  }
  return joined;
}

}  // namespace tavelor
