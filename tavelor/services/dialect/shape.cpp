// SPDX-License-Identifier: MIT
// What statements have in common that differ in their literals only.
#include "tavelor/platform/utf8.hpp"
#include "tavelor/services/dialect/lexer.hpp"

namespace tavelor::dialect {

namespace {

constexpr std::string_view marker(LiteralKind kind) {
  switch (kind) {
    case LiteralKind::kText:
      return "?t";
    case LiteralKind::kWhole:
      return "?w";
    case LiteralKind::kDecimal:
      return "?d";
    case LiteralKind::kDate:
      return "?#";
  }
  return "";
}

/// A part of a quoted text: its quotes are still doubled.
std::string undoubled(std::string_view part, char quote) {
  std::string text;
  text.reserve(part.size());
  for (std::size_t i = 0; i < part.size(); ++i) {
    text.push_back(part[i]);
    if (part[i] == quote && i + 1 < part.size() && part[i + 1] == quote) ++i;
  }
  return text;
}

void addSlots(const TokenList& list, Shape& shape) {
  const std::string_view text = list.text;
  shape.slots.reserve(list.values.size());
  shape.spliceable = true;
  std::size_t constantBegin = 0;
  for (std::size_t i = 0; i < list.values.size(); ++i) {
    const ValuePlace& place = list.values[i];
    const Token& token = list.tokens[place.token];
    Slot slot;
    slot.literal = place.literal;
    slot.kind = token.literalKind;
    slot.quote = place.quote;
    slot.delimited = place.delimited;
    if (place.literal < 0) shape.spliceable = false;
    if (place.quote != 0 && !place.delimited) {
      const bool first = i == 0 || list.values[i - 1].token != place.token;
      const bool last = i + 1 == list.values.size() || list.values[i + 1].token != place.token;
      if (first) constantBegin = token.begin + 1;
      const auto part = [&](std::size_t begin, std::size_t end) {
        return undoubled(text.substr(begin, end - begin), place.quote);
      };
      slot.prefix = part(constantBegin, place.begin);
      if (last) slot.suffix = part(place.end, token.end - 1);
      constantBegin = place.end;
      const auto behind = static_cast<unsigned char>(text[place.end]);
      slot.joinsNeighbours = place.begin == place.end &&
                             (slot.prefix.ends_with(place.quote) || utf8::isContinuation(behind));
    }
    shape.slots.push_back(std::move(slot));
  }
}

}  // namespace

Shape shapeOf(const Statement& statement) {
  TokenList list = lex(statement);
  Shape shape;
  shape.key.reserve(list.text.size());
  shape.kinds.reserve(list.literals.size());
  for (const Token& token : list.tokens) {
    if (token.kind == TokenKind::kEnd) break;
    if (!shape.key.empty()) shape.key.push_back(' ');
    if (token.literal >= 0) {
      shape.key.append(marker(token.literalKind));
      shape.kinds.push_back(token.literalKind);
    } else {
      shape.key.append(list.textOf(token));
    }
  }
  addSlots(list, shape);
  shape.literals = std::move(list.literals);
  return shape;
}

}  // namespace tavelor::dialect
