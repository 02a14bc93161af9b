// SPDX-License-Identifier: MIT
// Tokens to tree: expressions.
#include <algorithm>

#include "tavelor/services/dialect/grammar.hpp"
#include "tavelor/services/dialect/rules.hpp"

namespace tavelor::dialect {

namespace {

// An engine's own parser keeps what is open on a stack, the embedded one at most a hundred symbols:
// a statement that is translated must not fail there. A parenthesis, a call or a sign is given four
// of them, a SELECT inside of another ten, and the rest stays for what stands around all of it.
constexpr int kMostOpen = 64;
constexpr int kOpenSelect = 10;
constexpr int kMaxDepth = 400;

}  // namespace

Expr* Parser::make(ExprKind kind, std::uint32_t offset) {
  Expr* expr = arena_.make<Expr>();
  expr->kind = kind;
  expr->offset = offset;
  return expr;
}

Expr* Parser::make(ExprKind kind, std::uint32_t offset, Expr* left, Expr* right, Expr* third) {
  Expr* expr = make(kind, offset);
  expr->left = left;
  expr->right = right;
  expr->third = third;
  int depth = 0;
  for (const Expr* part : {left, right, third}) {
    if (part != nullptr) depth = std::max<int>(depth, part->depth);
  }
  if (depth >= kMaxDepth) refuse(Rule::kTooDeep, list_.text, offset);
  expr->depth = static_cast<std::uint16_t>(depth + 1);
  return expr;
}

Parser::BinaryOperator Parser::binaryOperator() const {
  switch (token_->symbol) {
    case Symbol::kCaret:
      return {Operator::kPower, kPowerLevel};
    case Symbol::kStar:
      return {Operator::kMultiply, kMultiplyLevel};
    case Symbol::kSlash:
      return {Operator::kDivide, kMultiplyLevel};
    case Symbol::kBackslash:
      return {Operator::kWholeDivide, kWholeDivideLevel};
    case Symbol::kPlus:
      return {Operator::kAdd, kAddLevel};
    case Symbol::kMinus:
      return {Operator::kSubtract, kAddLevel};
    case Symbol::kAmpersand:
      return {Operator::kJoin, kJoinLevel};
    case Symbol::kEqual:
      return {Operator::kEqual, kCompareLevel};
    case Symbol::kNotEqual:
      return {Operator::kNotEqual, kCompareLevel};
    case Symbol::kLess:
      return {Operator::kLess, kCompareLevel};
    case Symbol::kLessEqual:
      return {Operator::kLessEqual, kCompareLevel};
    case Symbol::kGreater:
      return {Operator::kGreater, kCompareLevel};
    case Symbol::kGreaterEqual:
      return {Operator::kGreaterEqual, kCompareLevel};
    default:
      break;
  }
  switch (token_->word) {
    case Word::kMod:
      return {Operator::kModulo, kModuloLevel};
    case Word::kAnd:
      return {Operator::kAnd, kAndLevel};
    case Word::kOr:
      return {Operator::kOr, kOrLevel};
    case Word::kXor:
    case Word::kEqv:
    case Word::kImp:
      refuse(Rule::kLogicalOperators, list_.text, token_->begin);
    default:
      return {};
  }
}

Expr* Parser::expression(int level) {
  Expr* left = prefixed();
  while (true) {
    if (level <= kCompareLevel && predicateFollows()) {
      left = predicate(left);
      continue;
    }
    const BinaryOperator found = binaryOperator();
    if (found.op == Operator::kNone || found.level < level) return left;
    const std::uint32_t offset = token_->begin;
    ++token_;
    Expr* right = expression(found.level + 1);
    const bool compares = found.level == kCompareLevel;
    left = make(compares ? ExprKind::kCompare : ExprKind::kBinary, offset, left, right);
    left->op = found.op;
  }
}

Expr* Parser::prefixed() {
  const std::uint32_t offset = token_->begin;
  if (isWord(Word::kNot)) {
    enter();
    ++token_;
    Expr* result = make(ExprKind::kNot, offset, expression(kNotLevel));
    leave();
    return result;
  }
  if (isSymbol(Symbol::kMinus) || isSymbol(Symbol::kPlus)) {
    enter();
    const bool minus = isSymbol(Symbol::kMinus);
    ++token_;
    Expr* operand = expression(kPowerLevel);
    leave();
    return minus ? make(ExprKind::kNegate, offset, operand) : operand;
  }
  return operand();
}

bool Parser::predicateFollows() const {
  switch (token_->word) {
    case Word::kIs:
    case Word::kIn:
    case Word::kLike:
    case Word::kBetween:
      return true;
    case Word::kNot: {
      const Word next = token_[1].word;
      return next == Word::kIn || next == Word::kLike || next == Word::kBetween;
    }
    default:
      return false;
  }
}

Expr* Parser::predicate(Expr* left) {
  const std::uint32_t offset = token_->begin;
  if (acceptWord(Word::kIs)) {
    const bool negated = acceptWord(Word::kNot);
    expectWord(Word::kNull, "NULL");
    Expr* result = make(ExprKind::kIsNull, offset, left);
    result->negated = negated;
    return result;
  }
  const bool negated = acceptWord(Word::kNot);
  Expr* result = nullptr;
  if (acceptWord(Word::kLike)) {
    result = make(ExprKind::kLike, offset, left, expression(kJoinLevel));
  } else if (acceptWord(Word::kBetween)) {
    Expr* low = expression(kJoinLevel);
    expectWord(Word::kAnd, "AND");
    result = make(ExprKind::kBetween, offset, left, low, expression(kJoinLevel));
  } else {
    ++token_;  // IN
    result = membership(left, offset);
  }
  result->negated = negated;
  return result;
}

Expr* Parser::membership(Expr* left, std::uint32_t offset) {
  expectSymbol(Symbol::kLeftParen, "(");
  Expr* result = nullptr;
  if (isWord(Word::kSelect)) {
    result = make(ExprKind::kInSelect, offset, left);
    result->select = subSelect();
  } else {
    result = make(ExprKind::kIn, offset, left);
    result->arguments = expressionList();
  }
  expectSymbol(Symbol::kRightParen, ")");
  return result;
}

Expr* Parser::expressionList() {
  ListBuilder<Expr> list;
  do {
    list.add(expression());
  } while (acceptSymbol(Symbol::kComma));
  return list.first();
}

void Parser::enter(int symbols) {
  open_ += symbols;
  if (open_ > kMostOpen) refuse(Rule::kTooDeep, list_.text, token_->begin);
}

/// A SELECT in parentheses; the ';' that some statements leave before the ')' is ignored.
Select* Parser::subSelect() {
  enter(kOpenSelect);
  if (!isWord(Word::kSelect)) failExpected("SELECT");
  Select* select = selectStatement();
  acceptSymbol(Symbol::kSemicolon);
  leave(kOpenSelect);
  return select;
}

Expr* Parser::operand() {
  const Token& token = *token_;
  switch (token.kind) {
    case TokenKind::kLiteral: {
      Expr* literal = make(ExprKind::kLiteral, token.begin);
      literal->literal = token;
      ++token_;
      return literal;
    }
    case TokenKind::kBracketed:
      return columnOrCall();
    case TokenKind::kWord:
      return wordOperand();
    case TokenKind::kSymbol:
      if (token.symbol == Symbol::kLeftParen) return parenthesised();
      break;
    case TokenKind::kEnd:
      break;
  }
  failExpected("a value");
}

Expr* Parser::wordOperand() {
  const Token& token = *token_;
  switch (token.word) {
    case Word::kNone:
      return columnOrCall();
    case Word::kLeft:
    case Word::kRight:
      if (token_[1].symbol == Symbol::kLeftParen) return columnOrCall();
      break;
    case Word::kNull:
      ++token_;
      return make(ExprKind::kNull, token.begin);
    case Word::kTrue:
    case Word::kFalse: {
      Expr* constant = make(ExprKind::kBoolean, token.begin);
      constant->negated = token.word == Word::kFalse;
      ++token_;
      return constant;
    }
    case Word::kExists: {
      ++token_;
      Expr* exists = make(ExprKind::kExists, token.begin);
      expectSymbol(Symbol::kLeftParen, "(");
      exists->select = subSelect();
      expectSymbol(Symbol::kRightParen, ")");
      return exists;
    }
    default:
      break;
  }
  failExpected("a value");
}

Expr* Parser::parenthesised() {
  enter();
  const std::uint32_t offset = token_->begin;
  ++token_;
  Expr* inner = nullptr;
  if (isWord(Word::kSelect)) {
    inner = make(ExprKind::kSubselect, offset);
    inner->select = subSelect();
  } else {
    inner = expression();
  }
  inner->inParentheses = true;
  expectSymbol(Symbol::kRightParen, ")");
  leave();
  return inner;
}

Expr* Parser::columnOrCall() {
  const std::uint32_t offset = token_->begin;
  const bool plainWord = token_->kind == TokenKind::kWord;
  const std::string_view name = takeName();
  if (plainWord && acceptSymbol(Symbol::kLeftParen)) return call(name, offset);
  return columnAfter(name, offset);
}

/// What follows a name: ".column", ".*" or nothing.
Expr* Parser::columnAfter(std::string_view name, std::uint32_t offset) {
  Expr* column = make(ExprKind::kColumn, offset);
  column->name = name;
  if (!acceptSymbol(Symbol::kDot)) return column;
  column->qualifier = name;
  column->name = {};
  if (acceptSymbol(Symbol::kStar)) {
    column->kind = ExprKind::kStar;
  } else if (token_->kind == TokenKind::kWord || token_->kind == TokenKind::kBracketed) {
    column->name = takeName();
  } else {
    failExpected("a column");
  }
  return column;
}

Expr* Parser::call(std::string_view name, std::uint32_t offset) {
  enter();
  Expr* result = make(ExprKind::kCall, offset);
  result->name = name;
  if (isSymbol(Symbol::kStar)) {
    result->arguments = make(ExprKind::kStar, token_->begin);
    ++token_;
  } else if (!isSymbol(Symbol::kRightParen)) {
    result->arguments = expressionList();
    int depth = 0;
    for (const Expr* part = result->arguments; part != nullptr; part = part->next) {
      depth = std::max<int>(depth, part->depth);
    }
    if (depth >= kMaxDepth) refuse(Rule::kTooDeep, list_.text, offset);
    result->depth = static_cast<std::uint16_t>(depth + 1);
  }
  expectSymbol(Symbol::kRightParen, ")");
  leave();
  return result;
}

}  // namespace tavelor::dialect
