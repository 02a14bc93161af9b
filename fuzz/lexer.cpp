// SPDX-License-Identifier: MIT
// Any text with any values: tokens follow each other inside the text, every value lies in one
// literal, and another value of the same kind gives the same shape.
#include "fuzz/input.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor::fuzz {

namespace {

void checkTokens(const Statement& statement) {
  const dialect::TokenList list = dialect::lex(statement);
  std::uint32_t at = 0;
  std::int32_t literal = 0;
  for (const dialect::Token& token : list.tokens) {
    require(token.begin >= at && token.end >= token.begin && token.end <= statement.text().size(),
            "tokens follow each other inside the text", statement.text());
    require(token.literal < 0 || token.literal == literal++,
            "literals are in the order of the text", statement.text());
    at = token.end;
  }
  require(!list.tokens.empty() && list.tokens.back().kind == dialect::TokenKind::kEnd,
          "the last token is the end", statement.text());
  require(literal == static_cast<std::int32_t>(list.literals.size()), "a literal a token",
          statement.text());
  require(list.values.size() == statement.ranges().size(), "a place a value", statement.text());
  for (std::size_t i = 0; i < list.values.size(); ++i) {
    const dialect::ValuePlace& place = list.values[i];
    const Statement::Range range = statement.ranges()[i];
    const dialect::Token& token = list.tokens.at(place.token);
    require(token.begin <= range.end && range.begin <= token.end, "a value lies in its token",
            statement.text());
  }
}

void checkShape(const Statement& statement) {
  const dialect::Shape shape = dialect::shapeOf(statement);
  require(shape.kinds.size() == shape.literals.size(), "a kind a literal", shape.key);
  require(shape.slots.size() == statement.ranges().size(), "a slot a value", shape.key);
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
