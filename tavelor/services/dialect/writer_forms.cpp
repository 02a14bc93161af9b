// SPDX-License-Identifier: MIT
// Tree to text: the forms of values that an engine with types of its own asks for.
//
// A stored value is one as a column holds it: a column, what was bound for one, the least or the
// first of a column. It is written as it stands wherever it is shown, sorted by, grouped by or
// beside its like, so that indexes serve, and is made what the dialect calculates with elsewhere.
// All that is calculated is of a few wide types already, and a calculated date is a day number.
#include <algorithm>
#include <optional>

#include "tavelor/services/dialect/functions.hpp"
#include "tavelor/services/dialect/types.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/dialect/writer_parts.hpp"

namespace tavelor::dialect {

namespace {

bool isLifted(const Expr& expr) {
  return expr.kind == ExprKind::kLiteral && expr.literal.literal >= 0;
}

bool isNumberLiteral(const Expr& expr) {
  return isLifted(expr) &&
         (expr.conversion == Conversion::kNumber || expr.conversion == Conversion::kNumberByLocale);
}

std::optional<ColumnType> storedTypeOf(const Expr& expr);

/// What the only column of all parts is stored as.
std::optional<ColumnType> storedTypeOf(const Select& select) {
  const std::optional<ColumnType> type = storedTypeOf(*select.items->expr);
  for (const Select* part = select.unionNext; part != nullptr; part = part->unionNext) {
    if (storedTypeOf(*part->items->expr) != type) return std::nullopt;
  }
  return type;
}

std::optional<ColumnType> storedTypeOfLiteral(const Expr& expr) {
  if (isLifted(expr)) {
    const bool isDay = expr.conversion == Conversion::kDate ||
                       expr.conversion == Conversion::kDateByLocale ||
                       (expr.assignedTo != nullptr && expr.assignedTo->type == ColumnType::kDate);
    return isDay ? std::optional(ColumnType::kDate) : std::nullopt;
  }
  switch (expr.literal.literalKind) {
    case LiteralKind::kDate:
      return ColumnType::kDate;
    case LiteralKind::kWhole:
      return ColumnType::kInt32;
    case LiteralKind::kDecimal:
      return ColumnType::kSingle;
    case LiteralKind::kText:
      break;
  }
  return std::nullopt;
}

/// Nothing for a calculated value.
std::optional<ColumnType> storedTypeOf(const Expr& expr) {
  switch (expr.kind) {
    case ExprKind::kColumn:
      return expr.column->type;
    case ExprKind::kBoolean:
      return ColumnType::kBoolean;
    case ExprKind::kLiteral:
      return storedTypeOfLiteral(expr);
    case ExprKind::kSubselect:
      return storedTypeOf(*expr.select);
    case ExprKind::kCall:
      if (expr.function->kind == FunctionKind::kClock) return ColumnType::kDate;
      if (takesOneValue(*expr.function)) return storedTypeOf(*expr.arguments);
      return std::nullopt;
    default:
      return std::nullopt;
  }
}

/// Not so a date that a conversion of the dialect has made a number of.
bool isStoredDate(const Expr& expr) {
  const bool isBound = expr.kind == ExprKind::kLiteral && expr.assignedTo != nullptr;
  return (isDate(expr.type) || isBound) && storedTypeOf(expr) == ColumnType::kDate;
}

bool hasDate(const Expr& expr) {
  return isDate(expr.type) || storedTypeOf(expr) == ColumnType::kDate;
}

/// Known by a conversion of the dialect as something else than it is stored as.
bool isRecast(const Expr& expr, std::optional<ColumnType> stored) {
  if (expr.kind == ExprKind::kLiteral && isLifted(expr)) {
    return expr.assignedTo == nullptr && isDate(expr.type) != stored.has_value();
  }
  return stored && engine::isText(*stored) == engine::isText(expr.type.column) &&
         !engine::isText(*stored) && *stored != expr.type.column;
}

}  // namespace

namespace {

bool areAlike(const Expr* a, const Expr* b);

}  // namespace

bool areSame(const Expr& a, const Expr& b) {
  if (a.kind != b.kind || a.op != b.op || a.cast != b.cast || a.negated != b.negated ||
      a.size != b.size || a.type.column != b.type.column || a.select != b.select) {
    return false;
  }
  if (a.kind == ExprKind::kColumn) return a.source == b.source && a.column == b.column;
  // Of a literal that is part of the text alone no other one is known to be the same.
  if (a.kind == ExprKind::kLiteral) {
    return isLifted(a) && a.literal.literal == b.literal.literal && a.conversion == b.conversion;
  }
  return a.function == b.function && areAlike(a.left, b.left) && areAlike(a.right, b.right) &&
         areAlike(a.third, b.third) && areAlike(a.arguments, b.arguments);
}

namespace {

/// With all that is linked behind them.
bool areAlike(const Expr* a, const Expr* b) {
  for (; a != nullptr && b != nullptr; a = a->next, b = b->next) {
    if (!areSame(*a, *b)) return false;
  }
  return a == b;
}

}  // namespace

Around StepText::aroundOf(const Expr& expr, Form form) const {
  if (!words_.isTyped || expr.type.null) return {};
  const std::optional<ColumnType> stored = storedTypeOf(expr);
  const bool recast = isRecast(expr, stored) && form != Form::kCompared;
  if (form != Form::kCalculated && !recast) return {};
  if (stored == ColumnType::kDate) return words_.days;
  if (recast || stored == ColumnType::kSingle) return words_.number;
  if (stored == ColumnType::kBoolean || (stored && engine::isWhole(*stored))) return words_.whole;
  return {};
}

/// How values that are compared with each other are written. Dates stay dates where all are stored
/// ones or may be read as such.
StepText::Form StepText::formOf(std::span<const Expr* const> compared) const {
  if (!words_.isTyped) return Form::kStored;
  const auto isAny = [](const Expr* expr) { return hasDate(*expr); };
  if (std::none_of(compared.begin(), compared.end(), isAny)) return Form::kCompared;
  const auto isDay = [](const Expr* expr) {
    return expr->type.null || isStoredDate(*expr) || isNumberLiteral(*expr);
  };
  return std::all_of(compared.begin(), compared.end(), isDay) ? Form::kCompared : Form::kCalculated;
}

/// The same of a value that is looked for in a list or a SELECT.
StepText::Form StepText::formOfMembers(const Expr& membership) const {
  std::vector<const Expr*> compared{membership.left};
  for (const Expr* item = membership.arguments; item != nullptr; item = item->next) {
    compared.push_back(item);
  }
  for (const Select* part = membership.select; part != nullptr; part = part->unionNext) {
    compared.push_back(part->items->expr);
  }
  return formOf(compared);
}

/// How a number is bound that stands beside a stored value.
Conversion StepText::comparedAs(const Expr& expr) const {
  if (!words_.isTyped || !expr.compared || !isNumberLiteral(expr)) return expr.conversion;
  if (expr.meets == ColumnType::kDate) return Conversion::kDay;
  return expr.meets == ColumnType::kCurrency ? Conversion::kAmount : expr.conversion;
}

/// Whether texts are compared for their order of which none is a column, that knows it.
bool StepText::needsOrder(std::span<const Expr* const> compared) const {
  return !words_.byCharacter.empty() &&
         std::all_of(compared.begin(), compared.end(), [](const Expr* expr) {
           return isTextual(expr->type) && expr->kind != ExprKind::kColumn;
         });
}

/// What makes the dialect's type of what a function of the engine's own gives.
Around StepText::resultOf(const Function& function, std::string_view name) const {
  if (!words_.isTyped || name.starts_with("tv_")) return {};
  if (function.kind == FunctionKind::kTotal) return words_.number;
  const bool isWhole = function.kind == FunctionKind::kPlain &&
                       function.result == ResultType::kFixed && engine::isWhole(function.type);
  return isWhole ? words_.whole : Around{};
}

/// What the columns of a SELECT must be so that those of its parts, and its Nulls, are of one type;
/// `form` is how its dates are wanted. Nothing for an engine that does not care.
std::vector<StepText::Output> StepText::outputsOf(const Select& select, Form form) const {
  std::vector<Output> outputs;
  if (!words_.isTyped) return outputs;
  for (const OutputItem* item = select.items; item != nullptr; item = item->next) {
    outputs.push_back({.column = nullptr, .form = Form::kStored, .type = nullType()});
  }
  for (const OrderItem* item = select.orderBy; item != nullptr; item = item->next) {
    const std::size_t place = placeOf(*item, select);
    if (place > 0) outputs[place - 1].isSorted = true;
  }
  if (form != Form::kCalculated && select.unionNext == nullptr) return outputs;
  std::vector<std::vector<const Expr*>> columns(outputs.size());
  for (const Select* part = &select; part != nullptr; part = part->unionNext) {
    auto column = columns.begin();
    for (const OutputItem* item = part->items; item != nullptr; item = item->next) {
      (column++)->push_back(item->expr);
    }
  }
  for (std::size_t i = 0; i < columns.size(); ++i) {
    Type& type = outputs[i].type;
    for (const Expr* expr : columns[i]) type = commonType(type, expr->type);
    const bool areAlike = std::all_of(columns[i].begin(), columns[i].end(), [&](const Expr* expr) {
      return expr->type.null ||
             (expr->type.column == type.column && (!isDate(type) || isStoredDate(*expr)));
    });
    if (form != Form::kCalculated && areAlike) continue;
    outputs[i].form = Form::kCalculated;
    if (isDate(type)) type = typeOf(ColumnType::kDouble);
  }
  return outputs;
}

void StepText::output(const Expr& expr, const Output& output) {
  const bool isCounted =
      output.added != nullptr && output.column->autoNumber && !words_.counted.empty();
  if (words_.isTyped && expr.kind == ExprKind::kNull && !output.type.null && !isCounted) {
    *this << writer_.nullOf(output.type.column);
  } else if (output.added != nullptr) {
    added(expr, *output.added, *output.column);
  } else if (output.column != nullptr) {
    assigned(expr, *output.column);
  } else if (output.isSorted) {
    sorted(expr, 0);
  } else {
    expression(expr, 0, output.form);
  }
}

/// A value on its way into a column: a date is stored as one, and calculated with on its way into
/// any other.
void StepText::assigned(const Expr& expr, const engine::Column& column, int open) {
  const bool isDay = column.type == ColumnType::kDate;
  if (!words_.isTyped || !(isDay || hasDate(expr)) || expr.type.null ||
      (isDay && isStoredDate(expr))) {
    return nested(expr, 0, open);
  }
  if (isDay) *this << words_.date.before;
  nested(expr, 0, open, Form::kCalculated);
  if (isDay) *this << words_.date.behind;
}

/// A value of a new row.
void StepText::added(const Expr& expr, const engine::Table& table, const engine::Column& column,
                     int open) {
  if (!column.autoNumber || words_.counted.empty()) return assigned(expr, column, open);
  std::string counter;
  writer_.table(counter, table.name);
  *this << words_.counted << "(";
  Writer::quote(step_.sql, counter, '\'');
  *this << ", ";
  Writer::quote(step_.sql, column.name, '\'');
  *this << ", ";
  nested(expr, 0, open + kArgumentOpen, Form::kCalculated);
  *this << ")";
}

/// A value whose order counts.
void StepText::sorted(const Expr& expr, int level) {
  if (words_.byCharacter.empty() || !isTextual(expr.type) || expr.kind == ExprKind::kColumn) {
    return expression(expr, level);
  }
  expression(expr, kAtomLevel);
  *this << words_.byCharacter;
}

/// Whether a group has one value of it.
bool StepText::standsInGroup(const Expr& expr) const {
  for (const Expr* group = group_->groupBy; group != nullptr; group = group->next) {
    if (areSame(expr, *group)) return true;
  }
  return false;
}

/// Whether it is a column of the tables whose groups are written.
bool StepText::isOfGroup(const Expr& column) const {
  if (group_ == nullptr) return false;
  const Source* source = group_->sources;
  while (source != nullptr && source != column.source) source = source->next;
  return source != nullptr;
}

/// A column of which a group may have many values: that of the row that was stored first.
void StepText::ofGroup(const Expr& column) {
  *this << "tv_first(";
  this->column(column, column.qualified);
  *this << " ORDER BY ";
  rowOrder(group_->sources);
  *this << ")";
}

/// As the rows of the tables were stored.
void StepText::rowOrder(const Source* sources) {
  for (const Source* source = sources; source != nullptr; source = source->next) {
    if (source != sources) *this << ", ";
    row(*source, sources->next != nullptr);
  }
}

}  // namespace tavelor::dialect
