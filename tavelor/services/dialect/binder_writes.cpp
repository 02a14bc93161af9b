// SPDX-License-Identifier: MIT
// Names and types of INSERT, UPDATE and DELETE.
#include <string>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/binder.hpp"
#include "tavelor/services/dialect/rules.hpp"

namespace tavelor::dialect {

void Binder::insert(TreeStatement& tree) {
  Source* target = tree.target;
  names_.resolve(*target);
  const Scope scope{target, nullptr};
  for (Expr* named = tree.columns; named != nullptr; named = named->next) {
    names_.resolve(*named, scope);
    for (const Expr* other = tree.columns; other != named; other = other->next) {
      if (other->column == named->column) {
        failSyntax(named->offset, "the column " + named->column->name + " is given twice");
      }
    }
  }
  if (tree.select != nullptr) {
    insertSelected(tree, scope);
  } else {
    insertValues(tree, scope);
  }
}

void Binder::insertValues(TreeStatement& tree, const Scope& target) {
  if (tree.columns == nullptr) {
    tree.columns = insertedColumns(*target.sources->base, nullptr, target.sources);
  }
  const Scope nothing;
  const Expr* column = tree.columns;
  int columns = 0;
  int values = 0;
  for (const Expr* named = tree.columns; named != nullptr; named = named->next) ++columns;
  for (const Expr* given = tree.values; given != nullptr; given = given->next) ++values;
  if (columns != values) {
    failSyntax(tree.values->offset,
               std::to_string(values) + " values for " + std::to_string(columns) + " columns");
  }
  for (Expr** given = &tree.values; *given != nullptr; given = &(*given)->next) {
    Expr* next = (*given)->next;
    Expr* bound = convert_.toColumn(value(*given, Place{nothing}), *column->column);
    bound->next = next;
    *given = bound;
    column = column->next;
  }
}

/// Without a list of columns those of the SELECT go to the columns of their names.
void Binder::insertSelected(TreeStatement& tree, const Scope& target) {
  select(*tree.select, nullptr);
  if (tree.columns == nullptr) {
    tree.columns = insertedColumns(*target.sources->base, tree.select->items, target.sources);
  }
  for (Select* part = tree.select; part != nullptr; part = part->unionNext) {
    const Expr* column = tree.columns;
    OutputItem* item = part->items;
    for (; column != nullptr && item != nullptr; column = column->next, item = item->next) {
      item->expr = convert_.toColumn(item->expr, *column->column);
    }
    if (column != nullptr || item != nullptr) {
      failSyntax(part->offset, "the SELECT has not as many columns as the INSERT");
    }
  }
}

/// All columns of the table, or those that bear the names of a SELECT's items.
Expr* Binder::insertedColumns(const engine::Table& table, const OutputItem* named, Source* target) {
  Expr* first = nullptr;
  Expr** link = &first;
  const auto add = [&](std::string_view name, std::uint32_t offset) {
    Expr* expr = arena_.make<Expr>();
    expr->kind = ExprKind::kColumn;
    expr->name = name;
    expr->offset = offset;
    names_.resolve(*expr, Scope{target, nullptr});
    *link = expr;
    link = &expr->next;
  };
  if (named == nullptr) {
    for (const engine::Column& column : table.columns) add(column.name, target->offset);
  }
  for (; named != nullptr; named = named->next) add(named->name, named->expr->offset);
  return first;
}

void Binder::update(TreeStatement& tree) {
  names_.resolveAll(tree.sources);
  const Scope scope{tree.sources, nullptr};
  conditions(tree.from, Place{scope});
  for (Assignment* assignment = tree.assignments; assignment != nullptr;
       assignment = assignment->next) {
    Expr* target = assignment->target;
    names_.resolve(*target, scope);
    if (tree.target != nullptr && tree.target != target->source) {
      refuse(Rule::kUpdateOfTwoTables, statement_, target->offset);
    }
    tree.target = target->source;
    for (const Assignment* other = tree.assignments; other != assignment; other = other->next) {
      if (other->target->column == target->column) {
        failSyntax(target->offset, "the column " + target->column->name + " is set twice");
      }
    }
    assignment->value = convert_.toColumn(value(assignment->value, Place{scope}), *target->column);
  }
  if (tree.where != nullptr) tree.where = condition(tree.where, Place{scope});
}

void Binder::remove(TreeStatement& tree) {
  names_.resolveAll(tree.sources);
  const Scope scope{tree.sources, nullptr};
  conditions(tree.from, Place{scope});
  if (tree.sources->next == nullptr) tree.target = tree.sources;
  for (const Expr* item = tree.columns; item != nullptr; item = item->next) {
    Source* named = deletedSource(*item, tree.sources);
    if (tree.target != nullptr && tree.target != named) {
      refuse(Rule::kDeleteFromTwoTables, statement_, item->offset);
    }
    tree.target = named;
  }
  if (tree.target == nullptr) refuse(Rule::kDeleteFromTwoTables, statement_, tree.sources->offset);
  if (tree.where != nullptr) tree.where = condition(tree.where, Place{scope});
}

/// What an item between DELETE and FROM names: t.*, t.column, the table t, or a column.
Source* Binder::deletedSource(const Expr& item, Source* sources) const {
  if (item.kind == ExprKind::kStar && item.qualifier.empty()) {
    if (sources->next != nullptr) refuse(Rule::kDeleteFromTwoTables, statement_, item.offset);
    return sources;
  }
  if (item.kind == ExprKind::kStar || item.qualifier.empty()) {
    const std::string_view name = item.kind == ExprKind::kStar ? item.qualifier : item.name;
    if (Source* source = NameResolver::findSource(sources, name)) return source;
  }
  if (item.kind == ExprKind::kStar) {
    failSyntax(item.offset, "the table of " + std::string(item.qualifier) + ".* is not in FROM");
  }
  Expr column = item;
  names_.resolve(column, Scope{sources, nullptr});
  return column.source;
}

}  // namespace tavelor::dialect
