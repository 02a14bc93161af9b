// SPDX-License-Identifier: MIT
// Types of expressions, and how one becomes another.
#include "tavelor/services/dialect/types.hpp"

#include <string>

#include "tavelor/platform/error.hpp"

namespace tavelor::dialect {

namespace {

bool isLifted(const Expr& expr) {
  return expr.kind == ExprKind::kLiteral && expr.literal.literal >= 0;
}

bool isLiteral(const Expr& expr, LiteralKind kind) {
  return expr.kind == ExprKind::kLiteral && expr.literal.literalKind == kind;
}

bool isFloating(const Type& type) {
  return type.column == ColumnType::kDouble || type.column == ColumnType::kSingle ||
         type.column == ColumnType::kDate;
}

bool isPlainColumn(const Expr& expr) {
  return expr.kind == ExprKind::kColumn;
}

}  // namespace

std::string_view describe(const Type& type) {
  if (type.null) return "Null";
  if (type.predicate) return "a condition";
  switch (type.column) {
    case ColumnType::kText:
    case ColumnType::kMemo:
      return "a text";
    case ColumnType::kDate:
      return "a date";
    case ColumnType::kBoolean:
      return "a flag";
    case ColumnType::kBinary:
      return "bytes";
    default:
      return "a number";
  }
}

ColumnType arithmeticType(const Type& a, const Type& b) {
  if (isFloating(a) || isFloating(b)) return ColumnType::kDouble;
  if (isMoney(a) || isMoney(b)) return ColumnType::kCurrency;
  return ColumnType::kInt32;
}

Type commonType(const Type& a, const Type& b) {
  if (a.null) return b;
  if (b.null || a.column == b.column) return typeOf(a.column);
  if (isNumberLike(a) && isNumberLike(b)) return typeOf(arithmeticType(a, b));
  if ((isDate(a) && isNumberLike(b)) || (isNumberLike(a) && isDate(b))) {
    return typeOf(ColumnType::kDate);
  }
  if (a.column == ColumnType::kMemo || b.column == ColumnType::kMemo) {
    return typeOf(ColumnType::kMemo);
  }
  return typeOf(ColumnType::kText);
}

Expr* Converter::cast(Expr* expr, Cast cast, Type type) const {
  Expr* result = arena_.make<Expr>();
  result->kind = ExprKind::kCast;
  result->cast = cast;
  result->offset = expr->offset;
  result->left = expr;
  result->depth = static_cast<std::uint16_t>(expr->depth + 1);
  result->type = type;
  return result;
}

Expr* Converter::toValue(Expr* expr) const {
  if (!expr->type.predicate) return expr;
  return cast(expr, Cast::kNumberOfPredicate, typeOf(ColumnType::kBoolean));
}

Expr* Converter::toCondition(Expr* expr) const {
  if (expr->type.predicate || expr->type.null) return expr;
  if (expr->kind == ExprKind::kCast && expr->cast == Cast::kNumberOfPredicate) return expr->left;
  checkTruth(expr);
  const bool isOr = expr->kind == ExprKind::kBinary && expr->op == Operator::kOr;
  const bool isAnd = expr->kind == ExprKind::kBinary && expr->op == Operator::kAnd;
  // A bit of either number is a bit of both by Or, and all bits of a true condition are set: what
  // the engine knows as its own And and Or can use an index.
  if (isOr || (isAnd && (isTruth(expr->left->type) || isTruth(expr->right->type)))) {
    expr->left = toCondition(expr->left);
    expr->right = toCondition(expr->right);
    expr->type = predicateType();
    return expr;
  }
  return cast(expr, Cast::kPredicateOfNumber, predicateType());
}

void Converter::checkTruth(const Expr* expr) const {
  if (expr->type.null || isNumberLike(expr->type)) return;
  raiseMismatch(expr->type, predicateType(), expr->offset);
}

Expr* Converter::toNumber(Expr* expr) const {
  if (!isTextual(expr->type)) return toValue(expr);
  if (isLifted(*expr)) {
    expr->conversion = Conversion::kNumberByLocale;
    expr->meets = ColumnType::kDouble;
    expr->type = typeOf(ColumnType::kDouble);
    return expr;
  }
  return cast(expr, Cast::kNumber, typeOf(ColumnType::kDouble));
}

Expr* Converter::toDate(Expr* expr) const {
  if (!isTextual(expr->type)) return toValue(expr);
  if (isLifted(*expr)) {
    expr->conversion = Conversion::kDateByLocale;
    expr->meets = ColumnType::kDate;
    expr->type = typeOf(ColumnType::kDate);
    return expr;
  }
  return cast(expr, Cast::kDate, typeOf(ColumnType::kDate));
}

Expr* Converter::toText(Expr* expr) const {
  expr = toValue(expr);
  if (expr->type.null || isTextual(expr->type)) return expr;
  return cast(expr, Cast::kText, typeOf(ColumnType::kText));
}

Expr* Converter::toCommon(Expr* expr, const Type& type) const {
  if (isTextual(type)) return toText(expr);
  return toValue(expr);
}

void Converter::match(Expr*& left, Expr*& right, std::uint32_t offset) const {
  left = toValue(left);
  right = toValue(right);
  const Type a = left->type;
  const Type b = right->type;
  if (a.null || b.null) return;
  if (isBinary(a) || isBinary(b)) raiseMismatch(a, b, offset);
  if (isTextual(a) == isTextual(b)) {
    const auto tell = [](Expr* literal, const Expr* other) {
      if (literal->kind != ExprKind::kLiteral) return;
      literal->meets = other->type.column;
      literal->compared = true;
    };
    tell(left, right);
    tell(right, left);
    return;
  }
  // One side is a text: only a quoted literal reads as what it meets.
  Expr*& text = isTextual(a) ? left : right;
  const Expr* other = isTextual(a) ? right : left;
  if (!isLiteral(*text, LiteralKind::kText)) raiseMismatch(a, b, offset);
  constexpr std::uint32_t kQuotesAlone = 2;
  if (!isLifted(*text) && text->literal.end - text->literal.begin == kQuotesAlone) {
    // As the placeholder of an empty text is bound.
    text->kind = ExprKind::kNull;
    text->type = nullType();
    return;
  }
  text = isDate(other->type) ? toDate(text) : toNumber(text);
  if (text->kind != ExprKind::kLiteral) return;
  text->meets = other->type.column;
  text->compared = true;
}

Expr* Converter::toColumn(Expr* expr, const engine::Column& column) const {
  if (expr->type.null) return expr;
  if (isLifted(*expr)) return literalToColumn(expr, column);
  if (column.type == ColumnType::kBinary || isBinary(expr->type)) {
    if (column.type != ColumnType::kBinary || !isBinary(expr->type)) {
      raiseMismatch(typeOf(column.type), expr->type, expr->offset);
    }
    return expr;
  }
  if (engine::isText(column.type)) return toTextColumn(expr, column);
  if (column.type == ColumnType::kBoolean) return toFlagColumn(expr, column);
  if (column.type == ColumnType::kDate) return toDateColumn(expr);
  return toNumberColumn(expr, column);
}

Expr* Converter::literalToColumn(Expr* expr, const engine::Column& column) const {
  const bool quoted = isLiteral(*expr, LiteralKind::kText);
  const bool date = isLiteral(*expr, LiteralKind::kDate);
  switch (column.type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
      // A number or a date goes in as it prints.
      if (!quoted) return toTextColumn(expr, column);
      break;
    case ColumnType::kBinary:
      raiseMismatch(typeOf(column.type), expr->type, expr->offset);
    case ColumnType::kBoolean:
      if (date) return toFlagColumn(expr, column);
      expr->conversion = Conversion::kBoolean;
      break;
    case ColumnType::kDate:
      expr->conversion = quoted ? Conversion::kDateByLocale
                         : date ? Conversion::kDate
                                : Conversion::kNumber;
      break;
    default:
      if (date) return toNumberColumn(expr, column);
      expr->conversion = quoted                                 ? Conversion::kNumberByLocale
                         : column.type == ColumnType::kCurrency ? Conversion::kCurrency
                                                                : Conversion::kNumber;
      break;
  }
  expr->assignedTo = &column;
  expr->meets = column.type;
  return expr;
}

Expr* Converter::toTextColumn(Expr* expr, const engine::Column& column) const {
  const bool fits = isPlainColumn(*expr) && expr->type.column == ColumnType::kText &&
                    expr->column->size <= column.size;
  expr = toText(expr);
  if (column.type == ColumnType::kMemo || fits) return expr;
  Expr* result = cast(expr, Cast::kFit, typeOf(ColumnType::kText));
  result->size = column.size;
  return result;
}

Expr* Converter::toMoney(Expr* expr, const engine::Column* column) const {
  // A double has not all the digits of a large amount: a literal is read as money at once, a bare
  // one with its sign.
  const bool negated =
      expr->kind == ExprKind::kNegate && !isLiteral(*expr->left, LiteralKind::kText);
  Expr* literal = negated ? expr->left : expr;
  if (!isLifted(*literal) || isLiteral(*literal, LiteralKind::kDate)) {
    return cast(expr, Cast::kCurrency, typeOf(ColumnType::kCurrency));
  }
  literal->conversion = negated ? Conversion::kNegativeCurrency : Conversion::kCurrency;
  literal->meets = ColumnType::kCurrency;
  literal->assignedTo = column;
  return cast(literal, Cast::kCurrency, typeOf(ColumnType::kCurrency));
}

/// The clock's day, and one that was read or is stored, are days already.
Expr* Converter::toDateColumn(Expr* expr) const {
  expr = toDate(expr);
  const bool isDay = isPlainColumn(*expr) || expr->kind == ExprKind::kCast ||
                     (expr->kind == ExprKind::kCall && expr->arguments == nullptr);
  if (isDay && isDate(expr->type)) return expr;
  return cast(expr, Cast::kDay, typeOf(ColumnType::kDate));
}

Expr* Converter::toNumberColumn(Expr* expr, const engine::Column& column) const {
  expr = toNumber(expr);
  if (expr->kind == ExprKind::kBoolean) return expr;
  const bool fits = isPlainColumn(*expr) || expr->kind == ExprKind::kCast;
  const bool same = fits && expr->type.column == column.type;
  if (same || column.type == ColumnType::kDouble) return expr;
  switch (column.type) {
    case ColumnType::kCurrency:
      return toMoney(expr, &column);
    case ColumnType::kSingle:
      return cast(expr, Cast::kSingle, typeOf(column.type));
    default:
      return cast(expr, Cast::kWhole, typeOf(column.type));
  }
}

Expr* Converter::toFlagColumn(Expr* expr, const engine::Column& column) const {
  if (expr->type.predicate) return toValue(expr);
  if (expr->kind == ExprKind::kBoolean || expr->type.column == column.type) return expr;
  return cast(toNumber(expr), Cast::kFlag, typeOf(ColumnType::kBoolean));
}

void Converter::raiseMismatch(const Type& left, const Type& right, std::uint32_t offset) const {
  std::string description(defaultDescription(errors::kCriteriaTypeMismatch));
  description.append(" At ").append(placeText(statement_, offset)).append(" ");
  description.append(describe(left)).append(" meets ").append(describe(right)).append(".");
  Error error(errors::kCriteriaTypeMismatch, "Statement", std::move(description));
  error.inStatement(statement_, static_cast<std::int64_t>(offset));
  throw error;
}

}  // namespace tavelor::dialect
