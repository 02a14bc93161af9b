// SPDX-License-Identifier: MIT
// Text to tokens, literals lifted out, every value from outside held inside one literal.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/dialect/dialect.hpp"

namespace tavelor::dialect {

enum class TokenKind : std::uint8_t { kEnd, kWord, kBracketed, kLiteral, kSymbol };

/// The kind of a literal; a number with a point or an exponent, or beyond a LONG, is a decimal.
/// Part of the shape.
enum class LiteralKind : std::uint8_t { kText, kWhole, kDecimal, kDate };

/// The reserved words. All others, function names too, are names.
enum class Word : std::uint8_t {
  kNone,
  kAll,
  kAnd,
  kAs,
  kAsc,
  kBetween,
  kBy,
  kDelete,
  kDesc,
  kDistinct,
  kDistinctRow,
  kEqv,
  kExists,
  kFalse,
  kFrom,
  kGroup,
  kHaving,
  kImp,
  kIn,
  kInner,
  kInsert,
  kInto,
  kIs,
  kJoin,
  kLeft,
  kLike,
  kMod,
  kNot,
  kNull,
  kOn,
  kOr,
  kOrder,
  kOuter,
  kPercent,
  kRight,
  kSelect,
  kSet,
  kTop,
  kTrue,
  kUnion,
  kUpdate,
  kValues,
  kWhere,
  kXor
};

enum class Symbol : std::uint8_t {
  kNone,
  kAmpersand,
  kBackslash,
  kCaret,
  kComma,
  kDot,
  kEqual,
  kGreater,
  kGreaterEqual,
  kLeftParen,
  kLess,
  kLessEqual,
  kMinus,
  kNotEqual,
  kPlus,
  kRightParen,
  kSemicolon,
  kSlash,
  kStar
};

struct Token {
  TokenKind kind = TokenKind::kEnd;
  LiteralKind literalKind = LiteralKind::kText;
  Word word = Word::kNone;
  Symbol symbol = Symbol::kNone;
  std::uint32_t begin = 0;  ///< bytes of the statement, delimiters included
  std::uint32_t end = 0;
  std::int32_t literal = -1;  ///< index of the lifted literal; -1: not lifted, or no literal
};

/// Where a value of the statement stands.
struct ValuePlace {
  std::uint32_t begin = 0;  ///< bytes of the statement
  std::uint32_t end = 0;
  std::int32_t literal = -1;  ///< lifted literal that holds it; -1: the value is part of the shape
  std::uint32_t token = 0;    ///< index of the token that holds it
  char quote = 0;             ///< ' or " around the literal, # of a date, 0 of a bare number
  bool delimited = false;     ///< the value brought the quotes or # itself
};

struct TokenList {
  std::string text;                ///< the statement
  std::vector<Token> tokens;       ///< the last one is kEnd
  Literals literals;               ///< the lifted ones
  std::vector<ValuePlace> values;  ///< one for each value of the statement

  std::string_view textOf(const Token& token) const {
    return std::string_view(text).substr(token.begin, token.end - token.begin);
  }
};

/// Takes a statement apart. A literal is lifted unless it stands after TOP, or in an ORDER BY or
/// GROUP BY clause of its own parentheses, where engines want constants.
///
/// A value from outside must lie in one literal: inside quotes its own quotes must be doubled, a
/// bare one must be exactly one number (a sign and blanks around are allowed), one whole literal
/// with its delimiters, or True or False (which are words and not lifted). Anything else raises
/// kSyntax and names the place; so do NUL bytes, broken UTF-8 and literals without an end.
TokenList lex(const Statement& statement);

/// The same for the schema's DDL, where `--` begins a comment and nothing is lifted.
TokenList lexSchema(std::string_view ddl);

/// A quoted text without its quotes, doubled quotes made single; a date without its #.
std::string unquoted(std::string_view literal);

/// A value in its literal. The literal's text is the prefix, the value and the suffix; where
/// several values share a literal, these follow each other in the order of the statement, each with
/// the constant text before it, and only the last one has a suffix.
struct Slot {
  std::int32_t literal = -1;  ///< index in Shape::literals
  LiteralKind kind = LiteralKind::kText;
  char quote = 0;          ///< as in ValuePlace
  bool delimited = false;  ///< as in ValuePlace
  std::string prefix;      ///< constant text, without quotes
  std::string suffix;
  /// Empty, and only for that the two quotes around it are one doubled quote, or the bytes around
  /// it one letter.
  bool joinsNeighbours = false;
};

/// What two statements have in common that differ in their lifted literals only.
struct Shape {
  /// All tokens with one blank between them, a lifted literal replaced by ?t (text), ?w (whole
  /// number), ?d (decimal) or ?# (date). Letters keep their case: result columns bear them.
  std::string key;
  Literals literals;
  std::vector<LiteralKind> kinds;  ///< of each literal
  std::vector<Slot> slots;         ///< one for each value of the statement
  /// True if every value lies in a lifted literal, so that the text between the values and the
  /// kinds of the literals decide the shape.
  bool spliceable = false;
};

/// Errors as lex().
Shape shapeOf(const Statement& statement);

/// Raises kSyntax: "Syntax error in statement: <complaint>", with the statement and the offset.
[[noreturn]] void raiseSyntax(std::string_view statement, std::size_t offset,
                              std::string_view complaint);
/// "column 61", or "line 2, column 7" in a text of several lines.
std::string placeText(std::string_view statement, std::size_t offset);

}  // namespace tavelor::dialect
