// SPDX-License-Identifier: MIT
// Tree to text, as all engines have it: UPDATE and DELETE of a table that is joined with others.
#include "tavelor/services/dialect/types.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/dialect/writer_parts.hpp"

namespace tavelor::dialect {

namespace {

bool hasOnlyInnerJoins(const Join& join) {
  switch (join.kind) {
    case JoinKind::kTable:
      return true;
    case JoinKind::kCross:
    case JoinKind::kInner:
      return hasOnlyInnerJoins(*join.left) && hasOnlyInnerJoins(*join.right);
    default:
      return false;
  }
}

}  // namespace

void StepText::joinedUpdate(const TreeStatement& tree) {
  *this << "UPDATE ";
  source(*tree.target);
  if (hasOnlyInnerJoins(*tree.from)) {
    updateFromTables(tree);
  } else {
    updateFromRows(tree);
  }
}

void StepText::updateFromTables(const TreeStatement& tree) {
  std::string_view lead = " SET ";
  for (const Assignment* a = tree.assignments; a != nullptr; a = a->next) {
    *this << lead;
    column(*a->target, false);
    *this << " = ";
    assigned(*a->value, *a->target->column);
    lead = ", ";
  }
  lead = " FROM ";
  for (const Source* other = tree.sources; other != nullptr; other = other->next) {
    if (other == tree.target) continue;
    *this << lead;
    source(*other);
    lead = ", ";
  }
  lead = " WHERE ";
  conditions(*tree.from, lead);
  if (tree.where == nullptr) return;
  *this << lead;
  conjunct(*tree.where);
}

/// With an outer join the rows of the join are computed first, those without a partner too.
void StepText::updateFromRows(const TreeStatement& tree) {
  std::int64_t number = 0;
  for (const Assignment* a = tree.assignments; a != nullptr; a = a->next) {
    *this << (a == tree.assignments ? " SET " : ", ");
    column(*a->target, false);
    *this << " = tv_rows.tv_" << ++number;
  }
  *this << " FROM (SELECT ";
  row(*tree.target, true);
  *this << " AS tv_row";
  number = 0;
  for (const Assignment* a = tree.assignments; a != nullptr; a = a->next) {
    *this << ", ";
    const engine::Column& target = *a->target->column;
    output(*a->value, {.column = &target, .type = typeOf(target.type)});
    *this << " AS tv_" << ++number;
  }
  *this << " FROM ";
  join(*tree.from);
  where(tree.where);
  *this << ") AS tv_rows WHERE ";
  row(*tree.target, true);
  *this << " = tv_rows.tv_row";
}

void StepText::joinedDelete(const TreeStatement& tree) {
  *this << "DELETE FROM ";
  source(*tree.target);
  *this << " WHERE ";
  row(*tree.target, false);
  *this << " IN (SELECT ";
  row(*tree.target, true);
  *this << " FROM ";
  join(*tree.from);
  where(tree.where);
  *this << ")";
}

/// The conditions of all joins, each behind WHERE or AND.
void StepText::conditions(const Join& join, std::string_view& lead) {
  if (join.kind == JoinKind::kTable) return;
  conditions(*join.left, lead);
  conditions(*join.right, lead);
  if (join.condition == nullptr) return;
  *this << lead;
  conjunct(*join.condition);
  lead = " AND ";
}

}  // namespace tavelor::dialect
