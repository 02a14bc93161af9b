// SPDX-License-Identifier: MIT
// Writing pending changes to the database.
#include "tavelor/services/recordset/batch_writer.hpp"

#include <algorithm>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/recordset/connection_trace.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
#include "tavelor/services/recordset/row_notes.hpp"
#include "tavelor/services/recordset/table_rows.hpp"

namespace tavelor {

using Operation = RecordsetStore::Operation;

namespace {

constexpr std::int64_t kNothingToWrite = -2;

/// Columns that an INSERT gives back: all that the table has.
std::vector<std::size_t> columnsOfTable(const dialect::Plan& plan) {
  std::vector<std::size_t> columns;
  for (std::size_t i = 0; i < plan.columns.size(); ++i) {
    if (isOf(plan.columns[i], plan.updateTable)) columns.push_back(i);
  }
  return columns;
}

std::vector<engine::ColumnType> typesOf(const dialect::Plan& plan,
                                        const std::vector<std::size_t>& columns) {
  std::vector<engine::ColumnType> types;
  types.reserve(columns.size());
  for (const std::size_t column : columns) types.push_back(plan.columns[column].type);
  return types;
}

void copyCell(const engine::RowStore& from, std::size_t fromRow, std::size_t fromColumn,
              engine::RowStore& to, std::size_t toRow, std::size_t toColumn) {
  if (from.isNull(fromRow, fromColumn)) return to.setNull(toRow, toColumn);
  switch (from.type(fromColumn)) {
    case engine::ColumnType::kSingle:
    case engine::ColumnType::kDouble:
    case engine::ColumnType::kDate:
      return to.setReal(toRow, toColumn, from.real(fromRow, fromColumn));
    case engine::ColumnType::kText:
    case engine::ColumnType::kMemo:
    case engine::ColumnType::kBinary:
      return to.setText(toRow, toColumn, from.text(fromRow, fromColumn));
    default:
      return to.setInteger(toRow, toColumn, from.integer(fromRow, fromColumn));
  }
}

std::int32_t failureOf(const Error& error) {
  return error.number() == errors::kIntegrityViolation ? record_status::kIntegrityViolation
                                                       : record_status::kInvalid;
}

}  // namespace

BatchWriter::BatchWriter(RecordsetStore& store, Connection& connection)
    : store_(store),
      connection_(connection),
      plan_(*store.schema().plan),
      returnedColumns_(columnsOfTable(plan_)),
      returned_(typesOf(plan_, returnedColumns_)) {
  const bool canWrite =
      std::any_of(plan_.columns.begin(), plan_.columns.end(),
                  [](const dialect::OutputColumn& column) { return column.updatable; });
  if (!canWrite) {
    raise(
        errors::kUnspecified, kRecordsetSource,
        "The rows are those of no table whose key is among the columns, so they cannot be written "
        "back");
  }
}

void BatchWriter::run(const std::vector<Row>& rows) {
  if (rows.size() == 1) return writeAll(rows);
  engine::Transaction transaction(connection_.lease().session());
  writeAll(rows);
  transaction.commit();
}

void BatchWriter::writeAll(const std::vector<Row>& rows) {
  counts_.assign(rows.size(), kNothingToWrite);
  std::size_t at = 0;
  try {
    for (; at < rows.size(); ++at) {
      RecordsetStore::Edit* edit = store_.edit(rows[at]);
      if (edit == nullptr) continue;
      edit->failure = 0;
      // One statement is asked at once; of several, each is on its way while the next is composed.
      count_ = rows.size() > 1 ? &counts_[at] : nullptr;
      counts_[at] = write(rows[at], *edit);
    }
    connection_.lease().session().wait();
  } catch (Error& error) {
    // What was sent is done in its order: the first one without an answer is at fault, unless the
    // error came before a statement was there to be sent.
    if (at == rows.size() || counts_[at] == engine::Prepared::kSent) {
      const auto stuck = std::find(counts_.begin(), counts_.end(), engine::Prepared::kSent);
      if (stuck == counts_.end()) throw;
      at = static_cast<std::size_t>(stuck - counts_.begin());
    }
    error.noting(rowNote(store_, rows[at]));
    store_.edit(rows[at])->failure = failureOf(error);
    conflicts_.assign(1, rows[at]);
    throw;
  }
  for (at = 0; at < rows.size(); ++at) {
    if (counts_[at] == kNothingToWrite) continue;
    if (counts_[at] > 0) {
      written_.push_back(rows[at]);
    } else {
      store_.edit(rows[at])->failure = record_status::kConcurrencyViolation;
      conflicts_.push_back(rows[at]);
    }
  }
}

std::int64_t BatchWriter::write(Row row, const RecordsetStore::Edit& edit) {
  switch (edit.operation) {
    case Operation::kInsert:
      return insert(edit);
    case Operation::kDelete:
      return remove(row);
    case Operation::kUpdate:
      break;
  }
  return update(row, edit);
}

/// In each table that a changed column belongs to, or in none.
std::int64_t BatchWriter::update(Row row, const RecordsetStore::Edit& edit) {
  std::vector<std::string_view> tables;
  for (const WrittenCell& cell : edit.cells) {
    const std::string& table = writable(cell.column).baseTable;
    if (std::find(tables.begin(), tables.end(), table) == tables.end()) tables.push_back(table);
  }
  if (tables.size() == 1 && !isLookedUp(tables.front())) return update(tables.front(), row, edit);
  // What comes behind builds on whether these were found.
  count_ = nullptr;
  if (tables.size() == 1) {
    const std::int64_t found = update(tables.front(), row, edit);
    if (found > 0) keepLookedUp(row, edit);
    return found;
  }
  engine::Transaction all(connection_.lease().session());
  const bool found = std::all_of(tables.begin(), tables.end(), [&](std::string_view table) {
    return update(table, row, edit) > 0;
  });
  if (!found) return 0;
  all.commit();
  keepLookedUp(row, edit);
  return 1;
}

std::int64_t BatchWriter::update(std::string_view table, Row row,
                                 const RecordsetStore::Edit& edit) {
  begin("UPDATE ", table);
  const char* separator = " SET ";
  for (const WrittenCell& cell : edit.cells) {
    if (plan_.columns[cell.column].baseTable != table) continue;
    sql_ += separator;
    appendName(sql_, plan_.columns[cell.column].baseColumn);
    sql_ += "=?";
    values_.push_back(forEngine(cell.value));
    separator = ",";
  }
  appendKey(sql_, values_, store_, table, row);
  for (const WrittenCell& cell : edit.cells) {
    const dialect::OutputColumn& column = plan_.columns[cell.column];
    if (column.baseTable == table && !column.key) appendOriginal(row, cell.column);
  }
  return execute(nullptr);
}

std::int64_t BatchWriter::insert(const RecordsetStore::Edit& edit) {
  requireRowTable();
  if (edit.cells.empty()) {
    raise(errors::kUnspecified, kRecordsetSource,
          "Cannot insert an empty row - must have at least one column value set.");
  }
  begin("INSERT INTO ", plan_.updateTable);
  const char* separator = " (";
  for (const WrittenCell& cell : edit.cells) {
    const dialect::OutputColumn& column = writable(cell.column);
    if (column.baseTable != plan_.updateTable) {
      raise(errors::kMultipleStep, kRecordsetSource,
            "Field '" + column.name + "' is one of " + column.baseTable +
                ", and a new row is added to " + plan_.updateTable + " only");
    }
    sql_ += separator;
    appendName(sql_, column.baseColumn);
    values_.push_back(forEngine(cell.value));
    separator = ",";
  }
  sql_ += ") VALUES (?";
  for (std::size_t i = 1; i < edit.cells.size(); ++i) sql_ += ",?";
  separator = ") RETURNING ";
  for (const std::size_t column : returnedColumns_) {
    sql_ += separator;
    appendName(sql_, plan_.columns[column].baseColumn);
    separator = ",";
  }
  return execute(&returned_);
}

std::int64_t BatchWriter::remove(Row row) {
  requireRowTable();
  begin("DELETE FROM ", plan_.updateTable);
  appendKey(sql_, values_, store_, plan_.updateTable, row);
  return execute(nullptr);
}

void BatchWriter::begin(std::string_view verb, std::string_view table) {
  sql_ = verb;
  values_.clear();
  appendName(sql_, table);
}

void BatchWriter::keepLookedUp(Row row, const RecordsetStore::Edit& edit) {
  for (const WrittenCell& cell : edit.cells) {
    if (!isLookedUp(plan_.columns[cell.column].baseTable)) continue;
    lookedUpWrites_.insert_or_assign(placeOf(store_, row, cell.column), cell.value);
  }
}

/// What the column held when it was last read, or what this set has written to it since.
engine::Value BatchWriter::expected(Row row, std::size_t column) const {
  const bool mayBeOurs = isLookedUp(plan_.columns[column].baseTable) &&
                         !(lookedUpWrites_.empty() && store_.lookedUpWrites.empty());
  if (mayBeOurs) {
    const std::string place = placeOf(store_, row, column);
    const auto ours = lookedUpWrites_.find(place);
    if (ours != lookedUpWrites_.end()) return forEngine(ours->second);
    const auto earlier = store_.lookedUpWrites.find(place);
    if (earlier != store_.lookedUpWrites.end()) return forEngine(earlier->second);
  }
  if (const Variant* newer = store_.newerUnderlying(row, column)) return forEngine(*newer);
  return store_.baseForEngine(row, column);
}

/// The row is found only if the column still holds what is expected.
void BatchWriter::appendOriginal(Row row, std::size_t column) {
  sql_ += " AND ";
  appendName(sql_, plan_.columns[column].baseColumn);
  const engine::Value original = expected(row, column);
  switch (original.kind) {
    case engine::Value::Kind::kNull:
      sql_ += " IS NULL";
      return;
    case engine::Value::Kind::kBoolean:
      // True is -1 here; another program may have stored any number but 0.
      sql_ += original.integer != 0 ? "<>0" : "=0";
      return;
    case engine::Value::Kind::kCurrency: {
      // Another program may have stored the amount with more decimals than were read.
      constexpr double kHalfUnit = 0.00005;
      const double amount = Currency::fromScaled(original.integer).toDouble();
      sql_ += " BETWEEN ? AND ?";
      values_.push_back(engine::Value::ofReal(amount - kHalfUnit));
      values_.push_back(engine::Value::ofReal(amount + kHalfUnit));
      return;
    }
    default:
      sql_ += "=?";
      values_.push_back(original);
  }
}

const dialect::OutputColumn& BatchWriter::writable(std::size_t column) const {
  const dialect::OutputColumn& output = plan_.columns[column];
  if (output.baseColumn.empty()) {
    raise(errors::kMultipleStep, kRecordsetSource,
          "Field '" + output.name + "' is computed by the statement and cannot be written");
  }
  if (!output.updatable) {
    const bool isWrittenElsewhere = std::any_of(
        plan_.columns.begin(), plan_.columns.end(),
        [&](const dialect::OutputColumn& each) { return isOf(each, output.baseTable); });
    raise(errors::kMultipleStep, kRecordsetSource,
          "Field '" + output.name + "' is one of " + output.baseTable +
              (isWrittenElsewhere ? ", which the statement names more than once and which is "
                                    "written through another of its places, and cannot be written"
                                  : ", whose key is not among the columns, and cannot be written"));
  }
  return output;
}

void BatchWriter::requireRowTable() const {
  if (!plan_.updateTable.empty()) return;
  raise(errors::kUnspecified, kRecordsetSource,
        "No table of the statement has each of the rows once, so none can be added or deleted");
}

std::int64_t BatchWriter::execute(engine::RowStore* returned) {
  return connection_.traced([&] { return std::string_view(sql_); },
                            [&] {
                              dialect::PlanCache& plans = connection_.lease().plans();
                              if (count_ == nullptr) return plans.run(sql_, values_, returned);
                              plans.send(sql_, values_, *count_, returned);
                              return *count_;
                            });
}

void BatchWriter::accept() {
  for (auto& [place, value] : lookedUpWrites_) {
    store_.lookedUpWrites.insert_or_assign(place, std::move(value));
  }
  std::size_t inserted = 0;
  for (const Row row : written_) {
    const RecordsetStore::Edit& edit = *store_.edit(row);
    if (edit.operation == Operation::kInsert) {
      for (std::size_t i = 0; i < returnedColumns_.size(); ++i) {
        copyCell(returned_, inserted, i, store_.rows(), row, returnedColumns_[i]);
      }
      ++inserted;
    } else {
      for (const WrittenCell& cell : edit.cells) {
        store_.setBase(row, cell.column, cell.value);
        store_.dropUnderlying(row, cell.column);
      }
    }
  }
}

}  // namespace tavelor
