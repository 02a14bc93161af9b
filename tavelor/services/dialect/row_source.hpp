// SPDX-License-Identifier: MIT
// Which of the tables behind a SELECT a record set can write to.
#pragma once

#include "tavelor/services/dialect/tree.hpp"

namespace tavelor::dialect {

/// The table whose rows the result shows, each of them once at most: the only one of a SELECT, or
/// that of a join from whose rows all other tables are looked up by their keys. With several such
/// tables, the first in the text. Null for DISTINCT, grouping, a union, and where there is none.
Source* rowSource(const Select& select);

/// Marks the columns of `plan` that a record set can write: those of tables whose whole key is
/// among the columns. Of a table that is joined to itself they are those of one appearance only.
/// `select` is bound, its hidden keys are among its items.
void markUpdatable(const Select& select, const Source* rowSource, Plan& plan);

}  // namespace tavelor::dialect
