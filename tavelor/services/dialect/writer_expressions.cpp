// SPDX-License-Identifier: MIT
// Tree to text, as all engines have it: expressions.
#include <algorithm>
#include <array>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/services/dialect/functions.hpp"
#include "tavelor/services/dialect/literal_value.hpp"
#include "tavelor/services/dialect/rules.hpp"
#include "tavelor/services/dialect/types.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/dialect/writer_parts.hpp"

namespace tavelor::dialect {

namespace {

std::string_view comparisonSign(Operator op) {
  switch (op) {
    case Operator::kEqual:
      return " = ";
    case Operator::kNotEqual:
      return " <> ";
    case Operator::kLess:
      return " < ";
    case Operator::kLessEqual:
      return " <= ";
    case Operator::kGreater:
      return " > ";
    default:
      return " >= ";
  }
}

/// Calculated with as decimals, by functions: an engine's own signs would calculate with doubles,
/// and make an infinite number of what is too large. Whole numbers and days need neither.
bool isExact(const Expr& expr) {
  if (expr.kind != ExprKind::kBinary) return false;
  if (expr.op != Operator::kAdd && expr.op != Operator::kSubtract &&
      expr.op != Operator::kMultiply) {
    return false;
  }
  return hasDecimals(expr.type);
}

/// And, Or and Not of numbers.
bool isBitwise(const Expr& expr) {
  const bool joins =
      expr.kind == ExprKind::kBinary && (expr.op == Operator::kAnd || expr.op == Operator::kOr);
  return (joins || expr.kind == ExprKind::kNot) && !expr.type.predicate;
}

int levelOf(const Expr& expr) {
  if (isExact(expr) || isBitwise(expr)) return kAtomLevel;
  switch (expr.kind) {
    case ExprKind::kNegate:
      return isMoney(expr.type) ? kAtomLevel : kSignLevel;
    case ExprKind::kNot:
      return kNotLevel;
    case ExprKind::kBinary:
      switch (expr.op) {
        case Operator::kOr:
          return kOrLevel;
        case Operator::kAnd:
          return kAndLevel;
        case Operator::kAdd:
          return engine::isText(expr.type.column) ? kConcatLevel : kAddLevel;
        case Operator::kSubtract:
          return kAddLevel;
        case Operator::kMultiply:
          return kMultiplyLevel;
        case Operator::kJoin:
          return kConcatLevel;
        default:
          return kAtomLevel;
      }
    case ExprKind::kLike:
      return expr.negated ? kNotLevel : kAtomLevel;
    case ExprKind::kCompare:
    case ExprKind::kBetween:
    case ExprKind::kIn:
    case ExprKind::kInSelect:
    case ExprKind::kIsNull:
      return kCompareLevel;
    case ExprKind::kCast:
      if (expr.cast == Cast::kPredicateOfNumber) return kCompareLevel;
      if (expr.cast == Cast::kNumberOfPredicate || expr.cast == Cast::kFlag) return kSignLevel;
      return kAtomLevel;
    case ExprKind::kCall:
      return expr.function->kind == FunctionKind::kIsNull ? kCompareLevel : kAtomLevel;
    default:
      return kAtomLevel;
  }
}

/// The texts joined by a chain of &, from the left.
void collectJoined(const Expr& expr, std::vector<const Expr*>& parts) {
  if (expr.kind == ExprKind::kBinary && expr.op == Operator::kJoin) {
    collectJoined(*expr.left, parts);
    collectJoined(*expr.right, parts);
  } else {
    parts.push_back(&expr);
  }
}

}  // namespace

void StepText::conjunct(const Expr& condition) {
  expression(condition, kAndLevel);
}

void StepText::expression(const Expr& expr, int level, Form form) {
  if (group_ != nullptr && standsInGroup(expr)) {
    const Select* const group = std::exchange(group_, nullptr);
    expression(expr, level, form);
    group_ = group;
    return;
  }
  const Conversion compared = comparedAs(expr);
  if (form == Form::kCompared && compared != expr.conversion) return placeholder(expr, compared);
  const Around around = aroundOf(expr, form);
  if (around.isNothing()) return plain(expr, level);
  *this << around.before;
  plain(expr, around.before.empty() ? std::max<int>(level, kAtomLevel) : 0);
  *this << around.behind;
}

void StepText::plain(const Expr& expr, int level) {
  const int own = levelOf(expr);
  if (own >= level) return bare(expr, own);
  *this << "(";
  open_ += kParenthesisOpen;
  if (open_ > kMostOpen) refuse(Rule::kTooDeep, statement_, expr.offset);
  bare(expr, own);
  open_ -= kParenthesisOpen;
  *this << ")";
}

void StepText::nested(const Expr& expr, int level, int open, Form form) {
  open_ += open;
  if (open_ > kMostOpen) refuse(Rule::kTooDeep, statement_, expr.offset);
  expression(expr, level, form);
  open_ -= open;
}

void StepText::bare(const Expr& expr, int level) {
  switch (expr.kind) {
    case ExprKind::kLiteral:
      return literal(expr);
    case ExprKind::kNull:
      *this << "NULL";
      return;
    case ExprKind::kBoolean:
      *this << (expr.negated ? "0" : "-1");
      return;
    case ExprKind::kColumn:
      if (isOfGroup(expr)) return ofGroup(expr);
      return column(expr, expr.qualified);
    case ExprKind::kStar:
      *this << "*";
      return;
    case ExprKind::kNegate:
      return negation(expr);
    case ExprKind::kNot:
      if (isBitwise(expr)) {
        *this << "tv_not(";
        nested(*expr.left, 0, kFirstArgumentOpen, Form::kCalculated);
        *this << ")";
        return;
      }
      *this << "NOT ";
      return nested(*expr.left, kNotLevel, kParenthesisOpen);
    case ExprKind::kBinary:
      return binary(expr, level);
    case ExprKind::kCompare:
      return compare(expr, level);
    case ExprKind::kLike:
      return like(expr);
    case ExprKind::kBetween:
      return between(expr, level);
    case ExprKind::kIn:
    case ExprKind::kInSelect:
      return membership(expr, level);
    case ExprKind::kIsNull:
      expression(*expr.left, level + 1);
      *this << (expr.negated ? " IS NOT NULL" : " IS NULL");
      return;
    case ExprKind::kExists:
      *this << "EXISTS ";
      [[fallthrough]];
    case ExprKind::kSubselect:
      *this << "(";
      inner(expr);
      *this << ")";
      return;
    case ExprKind::kCall:
      return call(expr);
    case ExprKind::kCast:
      return cast(expr);
  }
}

void StepText::negation(const Expr& expr) {
  if (isMoney(expr.type)) {
    *this << "tv_money_neg(";
    nested(*expr.left, 0, kFirstArgumentOpen, Form::kCalculated);
    *this << ")";
    return;
  }
  // A constant may bring a sign of its own, and two of them begin a comment.
  const bool isConstant =
      expr.left->kind == ExprKind::kLiteral || expr.left->kind == ExprKind::kBoolean;
  *this << "-";
  nested(*expr.left, isConstant ? kAtomLevel + 1 : kAtomLevel, kParenthesisOpen, Form::kCalculated);
}

void StepText::literal(const Expr& expr) {
  const Token& token = expr.literal;
  if (token.literal >= 0) return placeholder(expr, expr.conversion);
  const std::string_view written = statement_.substr(token.begin, token.end - token.begin);
  switch (token.literalKind) {
    case LiteralKind::kText:
      return Writer::quote(step_.sql, unquoted(written), '\'');
    case LiteralKind::kDate: {
      const std::optional<Date> date = parseSqlDate(written.substr(1, written.size() - 2));
      *this << words_.date.before;
      fmt::format_to(std::back_inserter(step_.sql), "{}", date->days());
      *this << words_.date.behind;
      return;
    }
    default:
      if (written.starts_with('&')) {
        *this << readLiteral(written, token.literalKind).whole;
      } else {
        *this << written;
      }
      return;
  }
}

void StepText::placeholder(const Expr& expr, Conversion conversion) {
  const bool isNew = expr.step != number_;
  if (isNew) {
    if (step_.parameters.size() == static_cast<std::size_t>(writer_.mostPlaceholders())) {
      refuse(Rule::kTooManyValues, statement_, expr.offset);
    }
    Parameter parameter;
    parameter.literal = expr.literal.literal;
    parameter.conversion = conversion;
    parameter.columnType = expr.meets;
    parameter.compared = expr.compared;
    if (expr.assignedTo != nullptr) {
      parameter.column = expr.assignedTo->name;
      if (expr.assignedTo->type == ColumnType::kText) parameter.maxLength = expr.assignedTo->size;
    }
    step_.parameters.push_back(std::move(parameter));
    expr.step = number_;
    expr.placeholder = static_cast<std::int32_t>(step_.parameters.size());
  }
  writer_.placeholder(step_.sql, expr.placeholder, isNew);
}

void StepText::function(std::string_view name, const Expr& first, const Expr& second) {
  *this << name << "(";
  nested(first, 0, kFirstArgumentOpen, Form::kCalculated);
  *this << ", ";
  nested(second, 0, kArgumentOpen, Form::kCalculated);
  *this << ")";
}

void StepText::binary(const Expr& expr, int level) {
  if (isExact(expr)) return exact(expr);
  if (isBitwise(expr)) {
    return function(expr.op == Operator::kAnd ? "tv_and" : "tv_or", *expr.left, *expr.right);
  }
  std::string_view sign;
  switch (expr.op) {
    case Operator::kDivide:
      return function("tv_div", *expr.left, *expr.right);
    case Operator::kWholeDivide:
      return function("tv_intdiv", *expr.left, *expr.right);
    case Operator::kModulo:
      return function("tv_mod", *expr.left, *expr.right);
    case Operator::kPower:
      return function("tv_power", *expr.left, *expr.right);
    case Operator::kJoin:
      return joinedTexts(expr);
    case Operator::kOr:
      sign = " OR ";
      break;
    case Operator::kAnd:
      sign = " AND ";
      break;
    case Operator::kAdd:
      sign = level == kConcatLevel ? " || " : " + ";
      break;
    case Operator::kSubtract:
      sign = " - ";
      break;
    default:
      sign = " * ";
      break;
  }
  const bool groupsAlike = expr.op == Operator::kAnd || expr.op == Operator::kOr;
  const Form form = groupsAlike ? Form::kStored : Form::kCalculated;
  expression(*expr.left, level, form);
  *this << sign;
  nested(*expr.right, groupsAlike ? level : level + 1, kOperatorOpen, form);
}

/// A chain of one operation is one call: nested, a long one would be too much for an engine.
void StepText::exact(const Expr& expr) {
  const bool ofMoney = isMoney(expr.type);
  std::vector<const Expr*> operands{expr.right};
  const Expr* left = expr.left;
  while (isExact(*left) && left->op == expr.op && isMoney(left->type) == ofMoney &&
         operands.size() + 1 < words_.mostArguments) {
    operands.push_back(left->right);
    left = left->left;
  }
  operands.push_back(left);
  std::reverse(operands.begin(), operands.end());
  *this << (ofMoney ? "tv_money_" : "tv_")
        << (expr.op == Operator::kAdd        ? "add("
            : expr.op == Operator::kSubtract ? "sub("
                                             : "mul(");
  arguments(operands);
  *this << ")";
}

/// Null counts as an empty text, and only all Null make Null.
void StepText::joinedTexts(const Expr& expr) {
  std::vector<const Expr*> parts;
  collectJoined(expr, parts);
  const auto isNeverNull = [](const Expr* part) { return part->kind == ExprKind::kLiteral; };
  const bool mayBeNull = std::none_of(parts.begin(), parts.end(), isNeverNull);
  if (mayBeNull) {
    *this << "CASE WHEN coalesce(";
    open_ += kCaseOpen;
    arguments(parts);
    open_ -= kCaseOpen;
    *this << ") IS NOT NULL THEN ";
  }
  for (std::size_t i = 0; i < parts.size(); ++i) {
    if (i > 0) *this << " || ";
    if (isNeverNull(parts[i])) {
      expression(*parts[i], kConcatLevel);
    } else {
      *this << "coalesce(";
      nested(*parts[i], 0, kCaseOpen + kFirstArgumentOpen);
      *this << ", '')";
    }
  }
  if (mayBeNull) *this << " END";
}

void StepText::compare(const Expr& expr, int level) {
  const std::array<const Expr*, 2> sides{expr.left, expr.right};
  const Form form = formOf(sides);
  const bool hasOrder = expr.op != Operator::kEqual && expr.op != Operator::kNotEqual;
  if (hasOrder && needsOrder(sides)) {
    sorted(*expr.left, level + 1);
  } else {
    expression(*expr.left, level + 1, form);
  }
  *this << comparisonSign(expr.op);
  nested(*expr.right, level + 1, kOperatorOpen, form);
}

void StepText::between(const Expr& expr, int level) {
  const std::array<const Expr*, 3> sides{expr.left, expr.right, expr.third};
  const Form form = formOf(sides);
  if (needsOrder(sides)) {
    sorted(*expr.left, level + 1);
  } else {
    expression(*expr.left, level + 1, form);
  }
  *this << (expr.negated ? " NOT BETWEEN " : " BETWEEN ");
  open_ += kBetweenOpen;
  if (words_.smaller.empty()) {
    *this << "SYMMETRIC ";
    nested(*expr.right, level + 1, kFirstArgumentOpen, form);
    *this << " AND ";
    nested(*expr.third, level + 1, kFirstArgumentOpen, form);
  } else {
    function(words_.smaller, *expr.right, *expr.third);
    *this << " AND ";
    function(words_.larger, *expr.right, *expr.third);
  }
  open_ -= kBetweenOpen;
}

void StepText::like(const Expr& expr) {
  if (expr.negated) *this << "NOT ";
  function("tv_like", *expr.left, *expr.right);
}

void StepText::membership(const Expr& expr, int level) {
  const Form form = formOfMembers(expr);
  expression(*expr.left, level + 1, form);
  *this << (expr.negated ? " NOT IN (" : " IN (");
  if (expr.kind == ExprKind::kIn) {
    list(expr.arguments, form);
  } else {
    inner(expr, form);
  }
  *this << ")";
}

/// The SELECT of an expression.
void StepText::inner(const Expr& expr, Form form) {
  open_ += kSelectOpen;
  if (open_ > kMostOpen) refuse(Rule::kTooDeep, statement_, expr.offset);
  select(*expr.select, form);
  open_ -= kSelectOpen;
}

void StepText::list(const Expr* first, Form form) {
  for (const Expr* expr = first; expr != nullptr; expr = expr->next) {
    if (expr != first) *this << ", ";
    nested(*expr, 0, expr == first ? kFirstArgumentOpen : kArgumentOpen, form);
  }
}

void StepText::arguments(std::span<const Expr* const> arguments) {
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    if (i > 0) *this << ", ";
    nested(*arguments[i], 0, i == 0 ? kFirstArgumentOpen : kArgumentOpen, Form::kCalculated);
  }
}

}  // namespace tavelor::dialect
