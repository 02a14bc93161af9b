// SPDX-License-Identifier: MIT
// Tree to text, as all engines have it: statements.
#include "tavelor/services/dialect/writer.hpp"

#include <algorithm>
#include <utility>

#include "tavelor/services/dialect/rules.hpp"
#include "tavelor/services/dialect/types.hpp"
#include "tavelor/services/dialect/writer_parts.hpp"

namespace tavelor::dialect {

namespace {

/// One row without a table. As VALUES it runs at twice the speed.
bool isOneRow(const Select& select) {
  return select.sources == nullptr && select.where == nullptr && select.having == nullptr &&
         select.unionNext == nullptr && select.orderBy == nullptr && select.top < 0 &&
         !select.grouped;
}

/// What a comparison says of a column: it lies above or below something. No column for another
/// expression.
struct Bound {
  const engine::Column* column = nullptr;
  bool isLower = false;
  friend bool operator==(const Bound&, const Bound&) = default;
};

Bound boundOf(const Expr& expr) {
  if (expr.kind != ExprKind::kCompare) return {};
  const bool isLess = expr.op == Operator::kLess || expr.op == Operator::kLessEqual;
  const bool isGreater = expr.op == Operator::kGreater || expr.op == Operator::kGreaterEqual;
  if (!isLess && !isGreater) return {};
  if (expr.left->kind == ExprKind::kColumn) return {expr.left->column, isGreater};
  if (expr.right->kind == ExprKind::kColumn) return {expr.right->column, isLess};
  return {};
}

bool isLogical(const Expr& expr) {
  return expr.kind == ExprKind::kBinary && (expr.op == Operator::kAnd || expr.op == Operator::kOr);
}

bool hasBound(const Expr& expr, const Bound& wanted) {
  if (isLogical(expr)) return hasBound(*expr.left, wanted) || hasBound(*expr.right, wanted);
  return boundOf(expr) == wanted;
}

/// Whether a part of the condition bounds a column on one side alone.
bool hasOpenRange(const Expr& part, const Expr& condition) {
  if (isLogical(part)) {
    return hasOpenRange(*part.left, condition) || hasOpenRange(*part.right, condition);
  }
  Bound other = boundOf(part);
  if (other.column == nullptr) return false;
  other.isLower = !other.isLower;
  return !hasBound(condition, other);
}

/// Rows of one table, each as it stands there. Not those of an open range: engines take it for a
/// quarter of the table and would rather read all of it in order than a day's rows and sort them.
bool comesAsStored(const Select& select) {
  return select.sources != nullptr && select.sources->next == nullptr && !select.distinct &&
         !select.grouped && select.unionNext == nullptr &&
         (select.where == nullptr || !hasOpenRange(*select.where, *select.where));
}

bool isOuter(const Join& join) {
  if (join.kind == JoinKind::kTable) return false;
  return join.kind == JoinKind::kLeft || join.kind == JoinKind::kRight || isOuter(*join.left) ||
         isOuter(*join.right);
}

/// A column of a key, of rows that are all there.
bool isNeverNull(const Expr& expr, const Select& select) {
  if (expr.kind != ExprKind::kColumn || isOuter(*select.from)) return false;
  const engine::Table& table = *expr.source->base;
  return std::any_of(table.key.begin(), table.key.end(),
                     [&](std::size_t position) { return &table.columns[position] == expr.column; });
}

/// The item of a list at a place from 1 on.
const Expr& itemAt(const Select& select, std::size_t place) {
  const OutputItem* item = select.items;
  while (--place > 0) item = item->next;
  return *item->expr;
}

/// A constant that an engine would read as a whole number.
bool isConstantNumber(const Expr& expr) {
  if (expr.kind == ExprKind::kNegate) return isConstantNumber(*expr.left);
  if (expr.kind == ExprKind::kLiteral) return expr.literal.literalKind != LiteralKind::kText;
  return expr.kind == ExprKind::kBoolean;
}

}  // namespace

void Writer::quote(std::string& out, std::string_view text, char mark) {
  out.push_back(mark);
  for (const char c : text) {
    if (c == mark) out.push_back(mark);
    out.push_back(c);
  }
  out.push_back(mark);
}

Step StepText::write(const TreeStatement& tree) {
  step_.sql.reserve(statement_.size() + 64);
  switch (tree.kind) {
    case StatementKind::kInsert:
      insert(tree);
      break;
    case StatementKind::kUpdate:
      update(tree);
      break;
    case StatementKind::kDelete:
      remove(tree);
      break;
    default:
      delivered(*tree.select, outputsOf(*tree.select, Form::kStored));
      break;
  }
  return std::move(step_);
}

void StepText::column(const Expr& column, bool qualified) {
  if (qualified) {
    name(column.source->name());
    *this << ".";
  }
  name(column.column->name);
}

void StepText::row(const Source& source, bool qualified) {
  if (qualified) {
    name(source.name());
    *this << ".";
  }
  name(words_.row);
}

void StepText::source(const Source& source) {
  table(source.base->name);
  if (source.alias.empty()) return;
  *this << " AS ";
  name(source.alias);
}

void StepText::join(const Join& tree) {
  if (tree.kind == JoinKind::kTable) return source(*tree.source);
  join(*tree.left);
  switch (tree.kind) {
    case JoinKind::kLeft:
      *this << " LEFT JOIN ";
      break;
    case JoinKind::kRight:
      *this << " RIGHT JOIN ";
      break;
    case JoinKind::kInner:
      *this << " INNER JOIN ";
      break;
    default:
      *this << ", ";
      break;
  }
  const bool nested = tree.right->kind != JoinKind::kTable;
  if (nested) *this << "(";
  join(*tree.right);
  if (nested) *this << ")";
  if (tree.condition == nullptr) return;
  *this << " ON ";
  expression(*tree.condition);
}

/// A SELECT whose rows somebody sees. Where it names no order, the rows of a table come as they
/// were stored: callers take the first one of several, and an index that an engine happens to read
/// by would give them another. An engine that reads so anyhow, or by equality, sorts nothing for
/// it.
void StepText::delivered(const Select& select, const std::vector<Output>& outputs) {
  parts(select, outputs);
  if (select.orderBy != nullptr) {
    order(select);
  } else if (comesAsStored(select)) {
    *this << " ORDER BY ";
    rowOrder(select.sources);
  }
  limit(select);
}

/// A SELECT whose rows are only looked up.
void StepText::select(const Select& select, Form form) {
  parts(select, outputsOf(select, form));
  order(select);
  limit(select);
}

void StepText::parts(const Select& select, const std::vector<Output>& outputs) {
  for (const Select* part = &select; part != nullptr; part = part->unionNext) {
    selectPart(*part, outputs);
    if (part->unionNext != nullptr) *this << (part->unionAll ? " UNION ALL " : " UNION ");
  }
}

void StepText::limit(const Select& select) {
  if (select.top >= 0) *this << " LIMIT " << select.top;
}

void StepText::selectPart(const Select& part, const std::vector<Output>& outputs) {
  const bool groups = words_.isTyped && part.grouped;
  const Select* const around = std::exchange(group_, groups ? &part : nullptr);
  *this << (part.distinct && !isGroupedToSort(part) ? "SELECT DISTINCT " : "SELECT ");
  std::size_t place = 0;
  for (const OutputItem* item = part.items; item != nullptr; item = item->next) {
    if (item != part.items) *this << ", ";
    output(*item->expr, outputs.empty() ? Output{} : outputs[place++]);
  }
  group_ = nullptr;
  if (part.from != nullptr) {
    *this << " FROM ";
    join(*part.from);
  }
  where(part.where);
  groupBy(part);
  group_ = groups ? &part : nullptr;
  if (part.having != nullptr) {
    *this << " HAVING ";
    expression(*part.having);
  }
  group_ = around;
}

void StepText::where(const Expr* condition) {
  if (condition == nullptr) return;
  *this << " WHERE ";
  expression(*condition);
}

void StepText::groupBy(const Select& part) {
  std::string_view lead = " GROUP BY ";
  if (isGroupedToSort(part)) {
    std::int64_t place = 0;
    for (const OutputItem* item = part.items; item != nullptr; item = item->next) {
      *this << lead << ++place;
      lead = ", ";
    }
  }
  for (const Expr* group = part.groupBy; group != nullptr; group = group->next) {
    *this << lead;
    key(*group, false);
    lead = ", ";
  }
}

/// Whether a SELECT DISTINCT sorts by what it does not show, which not every engine takes: rows
/// that show the same are a group then.
bool StepText::isGroupedToSort(const Select& select) const {
  if (!words_.isTyped || !select.distinct || select.grouped || select.unionNext != nullptr) {
    return false;
  }
  for (const OrderItem* item = select.orderBy; item != nullptr; item = item->next) {
    if (shownAt(*item, select) == 0) return true;
  }
  return false;
}

void StepText::order(const Select& select) {
  const bool groups = isGroupedToSort(select);
  const Select* const around =
      std::exchange(group_, words_.isTyped && select.grouped ? &select : nullptr);
  for (const OrderItem* item = select.orderBy; item != nullptr; item = item->next) {
    *this << (item == select.orderBy ? " ORDER BY " : ", ");
    // An alias or a number stands for the place anyhow; what is written out need not, but must
    // where only what is shown may be sorted by.
    const std::size_t place =
        words_.isTyped && select.distinct ? shownAt(*item, select) : placeOf(*item, select);
    if (place > 0) {
      *this << static_cast<std::int64_t>(place);
    } else if (words_.isTyped && select.distinct && select.grouped && select.unionNext == nullptr) {
      refuse(Rule::kOrderOfDistinctGroups, statement_, item->expr->offset);
    } else if (groups) {
      // The one of the group that comes first.
      *this << (item->descending ? "max(" : "min(");
      sorted(*item->expr, 0);
      *this << ")";
    } else {
      key(*item->expr, true);
    }
    const Expr& expr = place > 0 ? itemAt(select, place) : *item->expr;
    direction(*item, select.unionNext == nullptr && isNeverNull(expr, select));
  }
  group_ = around;
}

void StepText::direction(const OrderItem& item, bool isNeverNull) {
  if (isNeverNull) {
    *this << (item.descending ? " DESC" : "");
  } else {
    *this << (item.descending ? words_.descending : words_.ascending);
  }
}

/// An expression to group or to sort by. An engine takes a bare whole number there for the place of
/// a column, and a typed one no other constant.
void StepText::key(const Expr& expr, bool hasOrder) {
  const bool isDay = words_.isTyped && isDate(expr.type);
  const bool isNumber = isConstantNumber(expr) && !isDay;
  const bool isOther = words_.isTyped && !isNumber && !isDay &&
                       (expr.kind == ExprKind::kLiteral || expr.kind == ExprKind::kNull);
  if (!isNumber && !isOther) return hasOrder ? sorted(expr, 0) : expression(expr);
  *this << "CAST(";
  expression(expr);
  *this << (isNumber ? " AS NUMERIC)" : " AS TEXT)");
}

void StepText::insert(const TreeStatement& tree) {
  *this << "INSERT INTO ";
  table(tree.target->base->name);
  for (const Expr* named = tree.columns; named != nullptr; named = named->next) {
    *this << (named == tree.columns ? " (" : ", ");
    column(*named, false);
  }
  *this << ") ";
  const Expr* named = tree.columns;
  if (tree.select != nullptr && !isOneRow(*tree.select)) {
    std::vector<Output> outputs;
    for (; named != nullptr; named = named->next) {
      outputs.push_back({.column = named->column,
                         .added = tree.target->base,
                         .type = typeOf(named->column->type)});
    }
    return delivered(*tree.select, outputs);
  }
  std::string_view lead = "VALUES (";
  const auto value = [&](const Expr& expr, int open) {
    *this << lead;
    added(expr, *tree.target->base, *named->column, open);
    named = named->next;
    lead = ", ";
  };
  if (tree.select == nullptr) {
    for (const Expr* expr = tree.values; expr != nullptr; expr = expr->next) {
      value(*expr, expr == tree.values ? kFirstArgumentOpen : kArgumentOpen);
    }
  } else {
    for (const OutputItem* i = tree.select->items; i != nullptr; i = i->next) value(*i->expr, 0);
  }
  *this << ")";
}

void StepText::update(const TreeStatement& tree) {
  if (tree.sources->next != nullptr) return joinedUpdate(tree);
  *this << "UPDATE ";
  source(*tree.target);
  for (const Assignment* a = tree.assignments; a != nullptr; a = a->next) {
    *this << (a == tree.assignments ? " SET " : ", ");
    column(*a->target, false);
    *this << " = ";
    assigned(*a->value, *a->target->column);
  }
  where(tree.where);
}

void StepText::remove(const TreeStatement& tree) {
  if (tree.sources->next != nullptr) return joinedDelete(tree);
  *this << "DELETE FROM ";
  source(*tree.target);
  where(tree.where);
}

}  // namespace tavelor::dialect
