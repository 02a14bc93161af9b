// SPDX-License-Identifier: MIT
// What the parts of the writer share.
#pragma once

#include <cstddef>

#include "tavelor/services/dialect/functions.hpp"
#include "tavelor/services/dialect/tree.hpp"

namespace tavelor::dialect {

/// How tightly operators bind in the engines' texts; what binds less than its place asks for goes
/// into parentheses.
enum Level : int {
  kOrLevel = 1,
  kAndLevel,
  kNotLevel,
  kCompareLevel,
  kAddLevel,
  kMultiplyLevel,
  kConcatLevel,
  kSignLevel,
  kAtomLevel
};

/// What an engine's parser keeps on its stack before it reads an operand; the embedded one has room
/// for a hundred symbols, some of which the statement around takes.
enum Open : int {
  kParenthesisOpen = 1,
  kOperatorOpen = 2,
  kFirstArgumentOpen = 3,
  kArgumentOpen = 5,
  kBetweenOpen = 4,
  kCaseOpen = 5,
  kSelectOpen = 8,
  kMostOpen = 84
};

/// Whether two expressions of one statement give the same in each row, as far as can be seen.
bool areSame(const Expr& a, const Expr& b);

/// The column of the result that an item of ORDER BY names, from 1, or 0.
inline std::size_t placeOf(const OrderItem& item, const Select& select) {
  if (item.output == nullptr) return static_cast<std::size_t>(item.position);
  std::size_t place = 1;
  for (const OutputItem* o = select.items; o != item.output; o = o->next) ++place;
  return place;
}

/// The same, or the column that shows just what the item sorts by.
inline std::size_t shownAt(const OrderItem& item, const Select& select) {
  std::size_t place = placeOf(item, select);
  for (const OutputItem* o = select.items; o != nullptr && place == 0; o = o->next) {
    if (!areSame(*o->expr, *item.expr)) continue;
    for (const OutputItem* before = select.items; before != o; before = before->next) ++place;
    return place + 1;
  }
  return place;
}

}  // namespace tavelor::dialect
