// SPDX-License-Identifier: MIT
// Names and types of a SELECT, and what its result looks like.
#include <string>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/binder.hpp"
#include "tavelor/services/dialect/literal_value.hpp"
#include "tavelor/services/dialect/row_source.hpp"
#include "tavelor/services/dialect/rules.hpp"

namespace tavelor::dialect {

namespace {

// Capacities that a record set tells of its columns: characters of text, bytes of all others.
// Of a text that no column limits.
constexpr std::int32_t kTextSize = 255;

bool isKeyColumn(const engine::Table& table, const engine::Column* column) {
  for (const std::size_t position : table.key) {
    if (&table.columns[position] == column) return true;
  }
  return false;
}

/// Characters that a value of `expr` may have: those of the column that it is, or is taken from.
std::int32_t sizeOf(const Expr& expr) {
  if (expr.kind == ExprKind::kColumn) return expr.column->size;
  const bool isOneOfMany = expr.kind == ExprKind::kCall && expr.function != nullptr &&
                           takesOneValue(*expr.function) && expr.arguments != nullptr;
  return isOneOfMany ? sizeOf(*expr.arguments) : 0;
}

/// The table of a SELECT of nothing but rows of one table, or null.
const engine::Table* onlyTable(const Select& select) {
  const bool isOne =
      select.sources != nullptr && select.sources->next == nullptr && select.unionNext == nullptr;
  return isOne ? select.sources->base : nullptr;
}

/// SELECT Max(column) and no group.
bool takesLargest(const Select& select) {
  const Expr& expr = *select.items->expr;
  return select.items->next == nullptr && select.groupBy == nullptr &&
         expr.kind == ExprKind::kCall && expr.function->name == "max" &&
         expr.arguments->kind == ExprKind::kColumn;
}

}  // namespace

void Binder::select(Select& select, const Scope* outer) {
  for (Select* part = &select; part != nullptr; part = part->unionNext) selectPart(*part, outer);
  if (select.unionNext != nullptr) {
    unionTypes(select);
    orderOfUnion(select);
  }
}

void Binder::selectPart(Select& part, const Scope* outer) {
  const bool whole = part.orderBy == nullptr && !part.distinct && part.unionNext == nullptr;
  if (part.top >= 0 && !whole) refuse(Rule::kTopWithTies, statement_, part.offset);
  names_.resolveAll(part.sources);
  Scope scope{part.sources, outer};
  bool sawAggregate = false;
  if (part.from != nullptr) conditions(part.from, Place{scope});
  items(part, scope, &sawAggregate);
  if (part.where != nullptr) {
    const Scope withoutAliases{part.sources, outer};
    part.where = condition(part.where, Place{withoutAliases});
  }
  for (Expr** group = &part.groupBy; *group != nullptr; group = &(*group)->next) {
    Expr* next = (*group)->next;
    Expr* bound = convert_.toValue(value(*group, Place{scope}));
    bound->next = next;
    *group = bound;
  }
  const Place afterGrouping{scope, Aggregates::kAllowed, &sawAggregate};
  if (part.having != nullptr) {
    const std::uint32_t offset = part.having->offset;
    part.having = condition(part.having, afterGrouping);
    if (part.groupBy == nullptr && !sawAggregate) {
      failSyntax(offset, "HAVING needs a GROUP BY or an aggregate");
    }
  }
  part.grouped = sawAggregate || part.groupBy != nullptr || part.having != nullptr;
  if (part.unionNext == nullptr) order(part, scope);
  part.grouped = part.grouped || sawAggregate;
  if (part.distinctRow) checkDistinctRow(part);
}

void Binder::conditions(Join* join, const Place& place) {
  if (join->kind == JoinKind::kTable) return;
  conditions(join->left, place);
  conditions(join->right, place);
  if (join->condition != nullptr) join->condition = condition(join->condition, place);
}

void Binder::items(Select& part, Scope& scope, bool* sawAggregate) {
  scope.itemsBegin = part.items;
  for (OutputItem** link = &part.items; *link != nullptr; link = &(*link)->next) {
    OutputItem* item = *link;
    scope.itemsEnd = item;
    if (item->expr->kind == ExprKind::kStar) {
      OutputItem* next = item->next;
      *link = expandStar(item, scope);
      if (item == scope.itemsBegin) scope.itemsBegin = *link;
      while ((*link)->next != nullptr) link = &(*link)->next;
      (*link)->next = next;
      continue;
    }
    const Place place{scope, Aggregates::kAllowed, sawAggregate};
    item->expr = convert_.toValue(value(item->expr, place));
  }
  scope.itemsEnd = nullptr;
  nameItems(part, scope);
}

OutputItem* Binder::expandStar(OutputItem* star, const Scope& scope) {
  const Expr& expr = *star->expr;
  const bool all = expr.qualifier.empty();
  if (!all && NameResolver::findSource(scope.sources, expr.qualifier) == nullptr) {
    failSyntax(expr.offset, "the table of " + std::string(expr.qualifier) + ".* is not in FROM");
  }
  OutputItem* first = nullptr;
  OutputItem** link = &first;
  for (Source* source = scope.sources; source != nullptr; source = source->next) {
    if (!all && !text::equalsIgnoreCase(source->name(), expr.qualifier)) continue;
    for (const engine::Column& found : source->base->columns) {
      OutputItem* item = arena_.make<OutputItem>();
      Expr* named = arena_.make<Expr>();
      named->kind = ExprKind::kColumn;
      named->offset = expr.offset;
      named->name = found.name;
      named->source = source;
      named->column = &found;
      named->qualified = scope.manySources() || scope.outer != nullptr;
      named->type = typeOf(found.type);
      item->expr = named;
      *link = item;
      link = &item->next;
    }
  }
  if (first == nullptr) failSyntax(expr.offset, "a * without a table");
  return first;
}

/// The alias, or the column's name, or Expr1000 and on. Two tables' columns of one name bear their
/// table's name in front.
void Binder::nameItems(Select& part, const Scope& scope) {
  int unnamed = 1000;
  for (OutputItem* item = part.items; item != nullptr; item = item->next) {
    if (!item->alias.empty()) {
      item->name = item->alias;
    } else if (item->expr->kind == ExprKind::kColumn) {
      item->name = item->expr->column->name;
    } else {
      item->name = arena_.keep("Expr" + std::to_string(unnamed++));
    }
  }
  if (!scope.manySources()) return;
  const auto isBare = [](const OutputItem& item) {
    return item.alias.empty() && item.expr->kind == ExprKind::kColumn;
  };
  for (OutputItem* item = part.items; item != nullptr; item = item->next) {
    if (!isBare(*item)) continue;
    for (const OutputItem* other = part.items; other != nullptr; other = other->next) {
      if (other != item && isBare(*other) && other->expr->source != item->expr->source &&
          text::equalsIgnoreCase(other->expr->column->name, item->expr->column->name)) {
        item->name =
            arena_.keep(std::string(item->expr->source->name()) + "." + item->expr->column->name);
        break;
      }
    }
  }
}

/// A whole number is the place of a column of the result; a name is a table's column first, an
/// alias after that.
void Binder::order(Select& first, const Scope& scope) {
  int columns = 0;
  for (const OutputItem* item = first.items; item != nullptr; item = item->next) ++columns;
  for (OrderItem* item = first.orderBy; item != nullptr; item = item->next) {
    const Token& token = item->expr->literal;
    if (item->expr->kind == ExprKind::kLiteral && token.literalKind == LiteralKind::kWhole) {
      const std::string_view digits = statement_.substr(token.begin, token.end - token.begin);
      const std::int64_t position = readLiteral(digits, token.literalKind).whole;
      if (position < 1 || position > columns) {
        failSyntax(token.begin, "there is no column " + std::string(digits) + " to sort by");
      }
      item->position = static_cast<int>(position);
      continue;
    }
    bool sawAggregate = false;
    const Place place{scope, first.grouped ? Aggregates::kAllowed : Aggregates::kRefused,
                      &sawAggregate};
    if (item->expr->kind == ExprKind::kColumn) {
      item->output = names_.resolve(*item->expr, scope);
      if (item->output != nullptr) continue;
      item->expr->type = typeOf(item->expr->column->type);
      continue;
    }
    item->expr = convert_.toValue(value(item->expr, place));
  }
}

void Binder::orderOfUnion(Select& first) {
  for (OrderItem* item = first.orderBy; item != nullptr; item = item->next) {
    const Expr& expr = *item->expr;
    const Token& token = expr.literal;
    int position = 1;
    for (const OutputItem* output = first.items; output != nullptr; output = output->next) {
      const bool meant = expr.kind == ExprKind::kColumn
                             ? text::equalsIgnoreCase(output->name, expr.name)
                             : expr.kind == ExprKind::kLiteral &&
                                   statement_.substr(token.begin, token.end - token.begin) ==
                                       std::to_string(position);
      if (meant) {
        item->position = position;
        break;
      }
      ++position;
    }
    if (item->position == 0) {
      failSyntax(expr.offset, "a UNION sorts by columns of its result only");
    }
  }
}

void Binder::unionTypes(Select& first) {
  for (Select* part = first.unionNext; part != nullptr; part = part->unionNext) {
    OutputItem* column = first.items;
    OutputItem* item = part->items;
    for (; column != nullptr && item != nullptr; column = column->next, item = item->next) {
      const Type common = commonType(column->expr->type, item->expr->type);
      if (isTextual(common)) item->expr = convert_.toText(item->expr);
      if (isTextual(common) && !isTextual(column->expr->type)) {
        column->expr = convert_.toText(column->expr);
      }
      if (!column->expr->type.null && column->expr->kind != ExprKind::kColumn) {
        column->expr->type = common;
      }
    }
    if (column != nullptr || item != nullptr) {
      failSyntax(part->offset, "the parts of a UNION have different numbers of columns");
    }
  }
}

/// DISTINCTROW means nothing for one table, for all tables and under grouping.
void Binder::checkDistinctRow(Select& part) {
  if (part.grouped) return;
  for (const Source* source = part.sources; source != nullptr; source = source->next) {
    bool used = part.sources->next == nullptr;
    for (const OutputItem* item = part.items; item != nullptr && !used; item = item->next) {
      used = item->expr->kind == ExprKind::kColumn && item->expr->source == source;
    }
    if (!used) refuse(Rule::kDistinctRowOfJoin, statement_, part.offset);
  }
}

/// A record set finds its rows again by their key, or by their place where the table has none.
void Binder::hideKeys(Select& select, Source& source) {
  OutputItem** link = &select.items;
  while (*link != nullptr) link = &(*link)->next;
  const auto hide = [&](const engine::Column& key) {
    for (const OutputItem* item = select.items; item != nullptr; item = item->next) {
      const Expr& shown = *item->expr;
      if (shown.kind == ExprKind::kColumn && shown.source == &source && shown.column == &key)
        return;
    }
    OutputItem* item = arena_.make<OutputItem>();
    Expr* expr = arena_.make<Expr>();
    expr->kind = ExprKind::kColumn;
    expr->source = &source;
    expr->column = &key;
    expr->type = typeOf(key.type);
    expr->qualified = select.sources->next != nullptr;
    item->expr = expr;
    item->name = key.name;
    item->hidden = true;
    *link = item;
    link = &item->next;
  };
  for (const std::size_t position : source.base->key) hide(source.base->columns[position]);
  if (source.base->key.empty()) hide(rowLocator_);
}

OutputColumn Binder::describeItem(const OutputItem& item) const {
  OutputColumn column;
  const Expr& expr = *item.expr;
  column.name = item.name;
  column.type = expr.type.column;
  column.hidden = item.hidden;
  column.definedSize = engine::fixedSize(column.type);
  if (column.type == ColumnType::kText) {
    const std::int32_t size = sizeOf(expr);
    column.definedSize = size > 0 ? size : kTextSize;
  }
  if (expr.kind == ExprKind::kColumn) {
    const engine::Table& table = *expr.source->base;
    column.nullable = expr.column->nullable;
    column.autoNumber = expr.column->autoNumber;
    column.key = isKeyColumn(table, expr.column) || expr.column == &rowLocator_;
    column.baseTable = table.name;
    column.baseColumn = expr.column->name;
  }
  return column;
}

void Binder::describeResult(const Select& select, Plan& plan) {
  std::size_t count = 0;
  for (const OutputItem* item = select.items; item != nullptr; item = item->next) ++count;
  plan.columns.reserve(count);
  for (const OutputItem* item = select.items; item != nullptr; item = item->next) {
    plan.columns.push_back(describeItem(*item));
  }
}

void Binder::selectRows(Select& select, Plan& plan) {
  Source* const source = rowSource(select);
  if (source != nullptr) {
    hideKeys(select, *source);
    plan.updateTable = source->base->name;
  }
  describeResult(select, plan);
  markUpdatable(select, source, plan);
  const engine::Table* const table = onlyTable(select);
  if (table == nullptr) return;
  plan.locks = table->counter && !select.grouped && !select.distinct;
  if (takesLargest(select)) plan.numbersOf = table->name;
}

void Binder::bind(TreeStatement& tree, Plan& plan) {
  plan.kind = tree.kind;
  switch (tree.kind) {
    case StatementKind::kSelect:
      select(*tree.select, nullptr);
      selectRows(*tree.select, plan);
      break;
    case StatementKind::kInsert:
      insert(tree);
      break;
    case StatementKind::kUpdate:
      update(tree);
      break;
    case StatementKind::kDelete:
      remove(tree);
      break;
    case StatementKind::kDdl:
      break;
  }
}

}  // namespace tavelor::dialect
