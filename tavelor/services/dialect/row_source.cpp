// SPDX-License-Identifier: MIT
// Which of the tables behind a SELECT a record set can write to.
#include "tavelor/services/dialect/row_source.hpp"

#include <algorithm>
#include <vector>

namespace tavelor::dialect {

namespace {

using Sources = std::vector<const Source*>;

bool contains(const Sources& sources, const Source* source) {
  return std::find(sources.begin(), sources.end(), source) != sources.end();
}

/// A column that equals another one in every row in which its table has one. A column that equals a
/// constant says nothing: it may pick one row of the table whose rows are shown, and make that look
/// like one that is looked up.
struct Equality {
  const Expr* column;
  const Expr* other;
};

/// What the conditions of a SELECT say about its tables.
class Conditions {
 public:
  explicit Conditions(const Select& select) {
    for (const Source* source = select.sources; source != nullptr; source = source->next) {
      all_.push_back(source);
    }
    add(select.where, all_);
    add(*select.from);
  }

  /// Whether at most one row of every other table belongs to a row of `source`, and every row of
  /// the result has one of `source`.
  bool determinesAll(const Source& source) const {
    if (contains(optional_, &source)) return false;
    Sources known{&source};
    for (bool grows = true; grows;) {
      grows = false;
      for (const Source* other : all_) {
        if (contains(known, other) || !isLookedUp(*other, known)) continue;
        known.push_back(other);
        grows = true;
      }
    }
    return known.size() == all_.size();
  }

 private:
  /// The tables below `join`.
  Sources add(const Join& join) {
    if (join.kind == JoinKind::kTable) return {join.source};
    const Sources left = add(*join.left);
    const Sources right = add(*join.right);
    Sources both = left;
    both.insert(both.end(), right.begin(), right.end());
    // An outer join's condition looks up the optional side only: on the other one, rows for which
    // it does not hold stay.
    const Sources* lookedUp = &both;
    if (join.kind == JoinKind::kLeft) lookedUp = &right;
    if (join.kind == JoinKind::kRight) lookedUp = &left;
    if (lookedUp != &both) {
      optional_.insert(optional_.end(), lookedUp->begin(), lookedUp->end());
    }
    add(join.condition, *lookedUp);
    return both;
  }

  void add(const Expr* condition, const Sources& lookedUp) {
    if (condition == nullptr) return;
    if (condition->kind == ExprKind::kBinary && condition->op == Operator::kAnd) {
      add(condition->left, lookedUp);
      add(condition->right, lookedUp);
    } else if (condition->kind == ExprKind::kCompare && condition->op == Operator::kEqual) {
      add({condition->left, condition->right}, lookedUp);
      add({condition->right, condition->left}, lookedUp);
    }
  }

  void add(const Equality& equality, const Sources& lookedUp) {
    if (equality.column->kind == ExprKind::kColumn && equality.other->kind == ExprKind::kColumn &&
        contains(lookedUp, equality.column->source)) {
      equalities_.push_back(equality);
    }
  }

  /// By its whole key, from rows of the tables that are known.
  bool isLookedUp(const Source& source, const Sources& known) const {
    const engine::Table& table = *source.base;
    return !table.key.empty() &&
           std::all_of(table.key.begin(), table.key.end(), [&](std::size_t position) {
             return isGiven(source, &table.columns[position], known);
           });
  }

  bool isGiven(const Source& source, const engine::Column* column, const Sources& known) const {
    return std::any_of(equalities_.begin(), equalities_.end(), [&](const Equality& equality) {
      return equality.column->source == &source && equality.column->column == column &&
             contains(known, equality.other->source);
    });
  }

  Sources all_;
  Sources optional_;  // of outer joins: rows of the result may have none of theirs
  std::vector<Equality> equalities_;
};

bool showsRows(const Select& select) {
  return select.sources != nullptr && !select.distinct && !select.grouped &&
         select.unionNext == nullptr;
}

bool hasColumn(const Select& select, const Source& source, const engine::Column* column) {
  for (const OutputItem* item = select.items; item != nullptr; item = item->next) {
    const Expr& expr = *item->expr;
    if (expr.kind == ExprKind::kColumn && expr.source == &source && expr.column == column) {
      return true;
    }
  }
  return false;
}

bool hasKey(const Select& select, const Source& source) {
  const engine::Table& table = *source.base;
  return !table.key.empty() &&
         std::all_of(table.key.begin(), table.key.end(), [&](std::size_t position) {
           return hasColumn(select, source, &table.columns[position]);
         });
}

}  // namespace

Source* rowSource(const Select& select) {
  if (!showsRows(select)) return nullptr;
  if (select.sources->next == nullptr) return select.sources;
  const Conditions conditions(select);
  for (Source* source = select.sources; source != nullptr; source = source->next) {
    if (conditions.determinesAll(*source)) return source;
  }
  return nullptr;
}

void markUpdatable(const Select& select, const Source* rowSource, Plan& plan) {
  if (!showsRows(select)) return;
  Sources written;
  if (rowSource != nullptr) written.push_back(rowSource);
  for (const Source* source = select.sources; source != nullptr; source = source->next) {
    const bool taken = std::any_of(written.begin(), written.end(), [&](const Source* other) {
      return other->base == source->base;
    });
    if (!taken && hasKey(select, *source)) written.push_back(source);
  }
  const OutputItem* item = select.items;
  for (OutputColumn& column : plan.columns) {
    const Expr& expr = *item->expr;
    column.updatable = expr.kind == ExprKind::kColumn && contains(written, expr.source);
    item = item->next;
  }
}

}  // namespace tavelor::dialect
