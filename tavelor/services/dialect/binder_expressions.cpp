// SPDX-License-Identifier: MIT
// Types to expressions.
#include <string>

#include "tavelor/services/dialect/binder.hpp"
#include "tavelor/services/dialect/rules.hpp"

namespace tavelor::dialect {

Expr* Binder::value(Expr* expr, const Place& place) {
  switch (expr->kind) {
    case ExprKind::kLiteral:
      return literal(expr);
    case ExprKind::kNull:
      expr->type = nullType();
      return expr;
    case ExprKind::kBoolean:
      expr->type = typeOf(ColumnType::kBoolean);
      return expr;
    case ExprKind::kColumn:
      return column(expr, place);
    case ExprKind::kStar:
      failSyntax(expr->offset, "a * stands where a value is expected");
    case ExprKind::kNegate:
      return negation(expr, place);
    case ExprKind::kNot:
      return negatedTruth(expr, place);
    case ExprKind::kBinary:
      return binary(expr, place);
    case ExprKind::kCompare:
      return comparison(expr, place);
    case ExprKind::kLike:
      return like(expr, place);
    case ExprKind::kBetween:
      return between(expr, place);
    case ExprKind::kIn:
    case ExprKind::kInSelect:
      return membership(expr, place);
    case ExprKind::kIsNull:
      expr->left = convert_.toValue(value(expr->left, place));
      expr->type = predicateType();
      return expr;
    case ExprKind::kExists:
    case ExprKind::kSubselect:
      return subSelect(expr, place);
    case ExprKind::kCall:
      return call(expr, place);
    case ExprKind::kCast:
      break;
  }
  return expr;
}

Expr* Binder::condition(Expr* expr, const Place& place) {
  return convert_.toCondition(value(expr, place));
}

Expr* Binder::column(Expr* expr, const Place& place) {
  if (const OutputItem* item = names_.resolve(*expr, place.scope)) {
    Expr* copy = arena_.make<Expr>(*item->expr);
    copy->next = nullptr;
    return copy;
  }
  expr->type = typeOf(expr->column->type);
  return expr;
}

Expr* Binder::literal(Expr* expr) {
  switch (expr->literal.literalKind) {
    case LiteralKind::kText:
      expr->type = typeOf(ColumnType::kText);
      expr->conversion = Conversion::kText;
      break;
    case LiteralKind::kWhole:
      expr->type = typeOf(ColumnType::kInt32);
      expr->conversion = Conversion::kNumber;
      break;
    case LiteralKind::kDecimal:
      expr->type = typeOf(ColumnType::kDouble);
      expr->conversion = Conversion::kNumber;
      break;
    case LiteralKind::kDate:
      expr->type = typeOf(ColumnType::kDate);
      expr->conversion = Conversion::kDate;
      break;
  }
  expr->meets = expr->type.column;
  return expr;
}

Expr* Binder::negation(Expr* expr, const Place& place) {
  expr->left = convert_.toNumber(value(expr->left, place));
  expr->type = expr->left->type;
  if (expr->type.column == ColumnType::kBoolean) expr->type = typeOf(ColumnType::kInt32);
  return expr;
}

/// Of a number the contrary of its bits; of a condition or a flag its contrary.
Expr* Binder::negatedTruth(Expr* expr, const Place& place) {
  Expr* operand = value(expr->left, place);
  if (isTruth(operand->type)) {
    expr->left = convert_.toCondition(operand);
    expr->type = predicateType();
  } else {
    convert_.checkTruth(operand);
    expr->left = operand;
    expr->type = typeOf(ColumnType::kInt32);
  }
  return expr;
}

/// Numbers are joined bit by bit, conditions and flags as what is true. Both at once count as
/// numbers, which makes no difference to where a condition is wanted: see Converter::toCondition().
Expr* Binder::connection(Expr* expr, const Place& place) {
  Expr* left = value(expr->left, place);
  Expr* right = value(expr->right, place);
  if (isTruth(left->type) && isTruth(right->type)) {
    expr->left = convert_.toCondition(left);
    expr->right = convert_.toCondition(right);
    expr->type = predicateType();
    return expr;
  }
  convert_.checkTruth(left);
  convert_.checkTruth(right);
  expr->left = convert_.toValue(left);
  expr->right = convert_.toValue(right);
  expr->type = typeOf(ColumnType::kInt32);
  return expr;
}

Expr* Binder::binary(Expr* expr, const Place& place) {
  if (expr->op == Operator::kAnd || expr->op == Operator::kOr) return connection(expr, place);
  expr->left = convert_.toValue(value(expr->left, place));
  expr->right = convert_.toValue(value(expr->right, place));
  switch (expr->op) {
    case Operator::kJoin:
      expr->left = convert_.toText(expr->left);
      expr->right = convert_.toText(expr->right);
      expr->type = typeOf(ColumnType::kText);
      return expr;
    case Operator::kAdd:
      return addition(expr);
    default:
      break;
  }
  expr->left = convert_.toNumber(expr->left);
  expr->right = convert_.toNumber(expr->right);
  const Type& a = expr->left->type;
  const Type& b = expr->right->type;
  switch (expr->op) {
    case Operator::kSubtract:
      expr->type = isDate(a) && !isDate(b) ? a : typeOf(arithmeticType(a, b));
      break;
    case Operator::kMultiply:
      expr->type = typeOf(arithmeticType(a, b));
      break;
    case Operator::kWholeDivide:
    case Operator::kModulo:
      expr->type = typeOf(ColumnType::kInt32);
      break;
    default:
      expr->type = typeOf(ColumnType::kDouble);
      break;
  }
  return expr;
}

/// Two texts are joined; a text that meets anything else is a number.
Expr* Binder::addition(Expr* expr) {
  Expr*& left = expr->left;
  Expr*& right = expr->right;
  const bool textLeft = left->type.null || isTextual(left->type);
  const bool textRight = right->type.null || isTextual(right->type);
  if (textLeft && textRight) {
    expr->type = commonType(left->type, right->type);
    return expr;
  }
  left = convert_.toNumber(left);
  right = convert_.toNumber(right);
  if (left->type.null || right->type.null) {
    expr->type = commonType(left->type, right->type);
  } else if (isDate(left->type) != isDate(right->type)) {
    expr->type = typeOf(ColumnType::kDate);
  } else {
    expr->type = typeOf(arithmeticType(left->type, right->type));
  }
  return expr;
}

Expr* Binder::comparison(Expr* expr, const Place& place) {
  expr->left = value(expr->left, place);
  expr->right = value(expr->right, place);
  expr->type = predicateType();
  if (Expr* test = truthTest(expr)) return test;
  convert_.match(expr->left, expr->right, expr->offset);
  return expr;
}

/// `Exists(..) = True` and its like: the condition itself, or its contrary. Null for any other
/// comparison.
Expr* Binder::truthTest(Expr* expr) {
  if (expr->op != Operator::kEqual && expr->op != Operator::kNotEqual) return nullptr;
  Expr* tested = expr->left;
  const Expr* constant = expr->right;
  if (tested->kind == ExprKind::kBoolean) {
    tested = expr->right;
    constant = expr->left;
  }
  if (constant->kind != ExprKind::kBoolean || !tested->type.predicate) return nullptr;
  const bool wanted = constant->negated == (expr->op == Operator::kNotEqual);
  if (wanted) return tested;
  Expr* contrary = arena_.make<Expr>();
  contrary->kind = ExprKind::kNot;
  contrary->offset = expr->offset;
  contrary->depth = expr->depth;
  contrary->left = tested;
  contrary->type = predicateType();
  return contrary;
}

Expr* Binder::like(Expr* expr, const Place& place) {
  expr->left = convert_.toText(value(expr->left, place));
  expr->right = convert_.toText(value(expr->right, place));
  expr->type = predicateType();
  return expr;
}

Expr* Binder::between(Expr* expr, const Place& place) {
  expr->left = value(expr->left, place);
  expr->right = value(expr->right, place);
  expr->third = value(expr->third, place);
  convert_.match(expr->left, expr->right, expr->offset);
  convert_.match(expr->left, expr->third, expr->offset);
  expr->type = predicateType();
  return expr;
}

Expr* Binder::membership(Expr* expr, const Place& place) {
  expr->left = convert_.toValue(value(expr->left, place));
  expr->type = predicateType();
  if (expr->kind == ExprKind::kInSelect) {
    select(*expr->select, &place.scope);
    if (expr->select->items->next != nullptr) {
      failSyntax(expr->select->offset, "the SELECT of IN gives more than one column");
    }
    for (Select* part = expr->select; part != nullptr; part = part->unionNext) {
      convert_.match(expr->left, part->items->expr, expr->offset);
    }
    return expr;
  }
  for (Expr** item = &expr->arguments; *item != nullptr; item = &(*item)->next) {
    Expr* next = (*item)->next;
    Expr* bound = value(*item, place);
    convert_.match(expr->left, bound, expr->offset);
    bound->next = next;
    *item = bound;
  }
  return expr;
}

Expr* Binder::subSelect(Expr* expr, const Place& place) {
  select(*expr->select, &place.scope);
  if (expr->kind == ExprKind::kExists) {
    expr->type = predicateType();
    return expr;
  }
  if (expr->select->items->next != nullptr) {
    failSyntax(expr->offset, "a SELECT in the place of a value gives more than one column");
  }
  expr->type = expr->select->items->expr->type;
  return expr;
}

Expr* Binder::call(Expr* expr, const Place& place) {
  std::size_t arguments = 0;
  for (const Expr* item = expr->arguments; item != nullptr; item = item->next) ++arguments;
  expr->function = findFunction(expr->name, arguments);
  if (expr->function == nullptr) {
    const std::string near = nearestFunction(expr->name);
    refuse(Rule::kUnknownFunction, statement_, expr->offset,
           std::string(expr->name) + (near.empty() ? "" : "; did you mean " + near + "?"));
  }
  if (expr->function->aggregate) {
    if (place.aggregates == Aggregates::kRefused) {
      failSyntax(expr->offset, std::string(expr->name) + " can't stand here");
    }
    *place.sawAggregate = true;
    callArguments(expr, Place{place.scope});
  } else {
    callArguments(expr, place);
  }
  if (expr->function->kind == FunctionKind::kConversion) return conversionCall(expr);
  callType(expr);
  const bool divides = expr->function->name == "avg" && isMoney(expr->type);
  return divides ? convert_.cast(expr, Cast::kCurrency, expr->type) : expr;
}

void Binder::callArguments(Expr* expr, const Place& place) {
  const std::string_view letters = expr->function->arguments;
  std::size_t count = 0;
  for (Expr** item = &expr->arguments; *item != nullptr; item = &(*item)->next) {
    const bool star = (*item)->kind == ExprKind::kStar;
    if (star && expr->function->kind == FunctionKind::kCount) return;
    if (count == letters.size()) {
      failSyntax((*item)->offset, std::string(expr->name) + " has too many arguments");
    }
    Expr* next = (*item)->next;
    Expr* bound = argument(*item, letters[count++], place);
    bound->next = next;
    *item = bound;
  }
  if (count < expr->function->leastArguments) {
    failSyntax(expr->offset, std::string(expr->name) + " has too few arguments");
  }
}

Expr* Binder::argument(Expr* expr, char letter, const Place& place) {
  Expr* bound = value(expr, place);
  switch (letter) {
    case 't':
      bound = convert_.toText(bound);
      break;
    case 'n':
      bound = convert_.toNumber(bound);
      break;
    case 'd':
      bound = convert_.toDate(bound);
      break;
    case 'c':
      bound = convert_.toCondition(bound);
      break;
    default:
      bound = convert_.toValue(bound);
      break;
  }
  return bound;
}

void Binder::callType(Expr* expr) {
  const Function& function = *expr->function;
  switch (function.result) {
    case ResultType::kFixed:
      expr->type = function.kind == FunctionKind::kIsNull ? predicateType() : typeOf(function.type);
      return;
    case ResultType::kFirst:
      expr->type = expr->arguments->type;
      return;
    case ResultType::kSum:
      expr->type =
          typeOf(expr->arguments->type.column == ColumnType::kCurrency ? ColumnType::kCurrency
                                                                       : ColumnType::kDouble);
      return;
    case ResultType::kCommon: {
      Expr** first = &expr->arguments;
      while ((*first)->next->next != nullptr) first = &(*first)->next;
      Expr* second = (*first)->next;
      expr->type = commonType((*first)->type, second->type);
      second = convert_.toCommon(second, expr->type);
      *first = convert_.toCommon(*first, expr->type);
      (*first)->next = second;
      second->next = nullptr;
      return;
    }
  }
}

Expr* Binder::conversionCall(Expr* expr) {
  Expr* operand = expr->arguments;
  const ColumnType wanted = expr->function->type;
  switch (wanted) {
    case ColumnType::kCurrency:
      return convert_.toMoney(operand, nullptr);
    case ColumnType::kInt16:
    case ColumnType::kInt32:
      return convert_.cast(operand, Cast::kWhole, typeOf(wanted));
    default: {
      // The argument has been made a double, a date or a text already.
      operand->type = typeOf(wanted);
      return operand;
    }
  }
}

}  // namespace tavelor::dialect
