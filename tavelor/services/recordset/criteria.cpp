// SPDX-License-Identifier: MIT
// Testing rows against criteria.
#include "tavelor/services/recordset/criteria.hpp"

#include <algorithm>
#include <array>

namespace tavelor::criteria {

namespace {

using Row = RecordsetStore::Row;

template <typename T>
bool compare(const T& a, Operator op, const T& b) {
  switch (op) {
    case Operator::kEqual:
      return a == b;
    case Operator::kNotEqual:
      return a != b;
    case Operator::kLess:
      return a < b;
    case Operator::kLessEqual:
      return a <= b;
    case Operator::kGreater:
      return a > b;
    case Operator::kGreaterEqual:
      return a >= b;
  }
  return false;
}

template <typename Cells>
bool holds(const Clause& clause, const RecordsetStore& store, const Cells& cells, Row row) {
  const std::size_t column = clause.column;
  if (clause.test == Test::kIsNull) return cells.isNull(row, column);
  if (cells.isNull(row, column)) return false;
  switch (clause.test) {
    case Test::kInteger:
      return compare(cells.integer(row, column), clause.op, clause.integer);
    case Test::kIntegerAsReal:
      return compare(static_cast<double>(cells.integer(row, column)), clause.op, clause.real);
    case Test::kCurrencyAsReal:
      return compare(Currency::fromScaled(cells.integer(row, column)).toDouble(), clause.op,
                     clause.real);
    case Test::kReal:
      return compare(cells.real(row, column), clause.op, clause.real);
    case Test::kText:
      return compare(cells.text(row, column), clause.op, std::string_view(clause.text));
    case Test::kLikeText:
      return clause.pattern->matches(cells.text(row, column));
    case Test::kLikePrinted:
      return clause.pattern->matches(store.value(row, column).toText(store.locale()));
    case Test::kNothing:
      return false;
    case Test::kIsNull:
    case Test::kIsNotNull:
      break;
  }
  return true;
}

template <typename Cells>
bool run(const std::vector<Clause>& clauses, const RecordsetStore& store, const Cells& cells,
         Row row) {
  std::int32_t next = 0;
  do {
    const Clause& clause = clauses[static_cast<std::size_t>(next)];
    // Looked up, not branched to: nobody can guess which rows fit.
    const std::array ways{clause.onFalse, clause.onTrue};
    next = ways[static_cast<std::size_t>(holds(clause, store, cells, row))];
  } while (next >= 0);
  return next == Clause::kAccept;
}

}  // namespace

bool Program::matches(const RecordsetStore& store, Row row) const {
  return withCells(store, row, [&](const auto& cells) { return run(clauses_, store, cells, row); });
}

bool Program::matchesBase(const RecordsetStore& store, Row row) const {
  return run(clauses_, store, store.rows(), row);
}

void Program::select(const RecordsetStore& store, std::uint8_t without,
                     std::vector<Row>& rows) const {
  const auto count = static_cast<Row>(store.rows().rows());
  // Each row is written down and kept or not by the count alone: whether it fits can't be guessed,
  // and a wrong guess of the processor costs more than the write.
  std::size_t kept = rows.size();
  rows.resize(kept + count);
  const auto keepIf = [&](Row row, bool fits) {
    rows[kept] = row;
    kept += fits ? 1U : 0U;
  };
  if (store.anyFlags()) {
    for (Row row = 0; row < count; ++row) {
      keepIf(row, (store.flags(row) & without) == 0 && matches(store, row));
    }
  } else {
    for (Row row = 0; row < count; ++row) keepIf(row, run(clauses_, store, store.rows(), row));
  }
  rows.resize(kept);
}

bool Program::uses(std::size_t column) const {
  return std::any_of(clauses_.begin(), clauses_.end(),
                     [&](const Clause& clause) { return clause.column == column; });
}

}  // namespace tavelor::criteria
