// SPDX-License-Identifier: MIT
// Any text with any values: tokens follow each other inside the text, every value lies in one
// literal, and another value of the same kind gives the same shape.
#include "fuzz/input.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::fuzz {

namespace {

void checkTokens(const Statement& statement) {
  const dialect::TokenList list = dialect::lex(statement);
  const auto [text, ranges] = statement.joined();
  std::uint32_t at = 0;
  std::int32_t literal = 0;
  for (const dialect::Token& token : list.tokens) {
    require(token.begin >= at && token.end >= token.begin && token.end <= text.size(),
            "tokens follow each other inside the text", text);
    require(token.literal < 0 || token.literal == literal++,
            "literals are in the order of the text", text);
    at = token.end;
  }
  require(!list.tokens.empty() && list.tokens.back().kind == dialect::TokenKind::kEnd,
          "the last token is the end", text);
  require(literal == static_cast<std::int32_t>(list.literals.size()), "a literal a token", text);
  require(list.values.size() == ranges.size(), "a place a value", text);
  for (std::size_t i = 0; i < list.values.size(); ++i) {
    const dialect::ValuePlace& place = list.values[i];
    require(place.begin == ranges[i].begin && place.end == ranges[i].end, "in their order", text);
    const dialect::Token& token = list.tokens.at(place.token);
    require(token.begin <= place.end && place.begin <= token.end, "a value lies in its token",
            text);
  }
}

void checkShape(const Statement& statement) {
  const dialect::Shape shape = dialect::shapeOf(statement);
  require(shape.kinds.size() == shape.literals.size(), "a kind a literal", shape.key);
  require(shape.slots.size() == statement.joined().ranges.size(), "a slot a value", shape.key);
  const dialect::Shape other = dialect::shapeOf(withOtherValues(statement, shape));
  require(other.key == shape.key, "other values of the same kind keep the shape",
          shape.key + "\n" + other.key);
  require(other.literals.size() == shape.literals.size() && other.spliceable == shape.spliceable,
          "other values of the same kind keep the literals", shape.key);
}

}  // namespace

}  // namespace tavelor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavelor::fuzz;
  const tavelor::Statement statement = statementOf({reinterpret_cast<const char*>(data), size});
  try {
    checkTokens(statement);
    checkShape(statement);
  } catch (const tavelor::Error& error) {
    require(error.number() == tavelor::errors::kSyntax, "only syntax errors", error.what());
  }
  return 0;
}
