// SPDX-License-Identifier: MIT
// Tree to text, as all engines have it: statements.
#include "tavelor/services/dialect/writer.hpp"

namespace tavelor::dialect {

namespace {

bool isPlainName(std::string_view name) {
  const auto isLetter = [](char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' ||
           static_cast<unsigned char>(c) >= 0x80;
  };
  if (name.empty() || !isLetter(name.front())) return false;
  for (const char c : name) {
    if (!isLetter(c) && !(c >= '0' && c <= '9')) return false;
  }
  return true;
}

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

/// A constant that an engine would read as a whole number.
bool isConstantNumber(const Expr& expr) {
  if (expr.kind == ExprKind::kNegate) return isConstantNumber(*expr.left);
  if (expr.kind == ExprKind::kLiteral) return expr.literal.literalKind != LiteralKind::kText;
  return expr.kind == ExprKind::kBoolean;
}

}  // namespace

void Writer::name(std::string& out, std::string_view name) const {
  if (isPlainName(name) && !isReserved(name)) {
    out.append(name);
    return;
  }
  out.push_back('"');
  for (const char c : name) {
    if (c == '"') out.push_back('"');
    out.push_back(c);
  }
  out.push_back('"');
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
      delivered(*tree.select);
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

void StepText::source(const Source& source) {
  name(source.base->name);
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
void StepText::delivered(const Select& select) {
  parts(select);
  if (select.orderBy != nullptr) {
    order(select.orderBy, select);
  } else if (comesAsStored(select)) {
    *this << " ORDER BY " << writer_.storedOrder();
  }
  limit(select);
}

/// A SELECT whose rows are only looked up.
void StepText::select(const Select& select) {
  parts(select);
  order(select.orderBy, select);
  limit(select);
}

void StepText::parts(const Select& select) {
  for (const Select* part = &select; part != nullptr; part = part->unionNext) {
    selectPart(*part);
    if (part->unionNext != nullptr) *this << (part->unionAll ? " UNION ALL " : " UNION ");
  }
}

void StepText::limit(const Select& select) {
  if (select.top >= 0) *this << " LIMIT " << select.top;
}

void StepText::selectPart(const Select& part) {
  *this << (part.distinct ? "SELECT DISTINCT " : "SELECT ");
  for (const OutputItem* item = part.items; item != nullptr; item = item->next) {
    if (item != part.items) *this << ", ";
    expression(*item->expr);
  }
  if (part.from != nullptr) {
    *this << " FROM ";
    join(*part.from);
  }
  if (part.where != nullptr) {
    *this << " WHERE ";
    expression(*part.where);
  }
  if (part.groupBy != nullptr) {
    *this << " GROUP BY ";
    for (const Expr* group = part.groupBy; group != nullptr; group = group->next) {
      if (group != part.groupBy) *this << ", ";
      key(*group);
    }
  }
  if (part.having != nullptr) {
    *this << " HAVING ";
    expression(*part.having);
  }
}

void StepText::order(const OrderItem* items, const Select& select) {
  for (const OrderItem* item = items; item != nullptr; item = item->next) {
    *this << (item == items ? " ORDER BY " : ", ");
    if (item->output != nullptr) {
      std::int64_t position = 1;
      for (const OutputItem* o = select.items; o != item->output; o = o->next) ++position;
      *this << position;
    } else if (item->position > 0) {
      *this << std::int64_t{item->position};
    } else {
      key(*item->expr);
    }
    if (item->descending) *this << " DESC";
  }
}

/// An expression to group or to sort by. An engine takes a bare whole number there for the place of
/// a column.
void StepText::key(const Expr& expr) {
  if (!isConstantNumber(expr)) return expression(expr);
  *this << "CAST(";
  expression(expr);
  *this << " AS NUMERIC)";
}

void StepText::insert(const TreeStatement& tree) {
  *this << "INSERT INTO ";
  name(tree.target->base->name);
  for (const Expr* named = tree.columns; named != nullptr; named = named->next) {
    *this << (named == tree.columns ? " (" : ", ");
    column(*named, false);
  }
  *this << ") ";
  if (tree.select != nullptr && !isOneRow(*tree.select)) return delivered(*tree.select);
  *this << "VALUES (";
  if (tree.select == nullptr) {
    list(tree.values);
  } else {
    for (const OutputItem* item = tree.select->items; item != nullptr; item = item->next) {
      if (item != tree.select->items) *this << ", ";
      expression(*item->expr);
    }
  }
  *this << ")";
}

void StepText::update(const TreeStatement& tree) {
  if (tree.sources->next != nullptr) return writer_.joinedUpdate(*this, tree);
  *this << "UPDATE ";
  source(*tree.target);
  for (const Assignment* a = tree.assignments; a != nullptr; a = a->next) {
    *this << (a == tree.assignments ? " SET " : ", ");
    column(*a->target, false);
    *this << " = ";
    expression(*a->value);
  }
  if (tree.where == nullptr) return;
  *this << " WHERE ";
  expression(*tree.where);
}

void StepText::remove(const TreeStatement& tree) {
  if (tree.sources->next != nullptr) return writer_.joinedDelete(*this, tree);
  *this << "DELETE FROM ";
  source(*tree.target);
  if (tree.where == nullptr) return;
  *this << " WHERE ";
  expression(*tree.where);
}

}  // namespace tavelor::dialect
