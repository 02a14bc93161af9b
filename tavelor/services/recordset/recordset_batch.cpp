// SPDX-License-Identifier: MIT
// Writing pending changes to the database.
#include <algorithm>
#include <unordered_map>

#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/recordset/connection_trace.hpp"
#include "tavelor/services/recordset/recordset_internal.hpp"
#include "tavelor/services/recordset/row_notes.hpp"
#include "tavelor/services/recordset/xml_format.hpp"

namespace tavelor {

using Operation = RecordsetStore::Operation;

/// Composes and runs the statement of each row, or of each table of it. Nothing of the store
/// changes before all have run.
class BatchWriter {
 public:
  using Row = RecordsetStore::Row;

  BatchWriter(RecordsetStore& store, Connection& connection);

  /// Writes the rows, several of them in one transaction. After an error none is written, and
  /// failed() is the row at fault, if it was one.
  void run(const std::vector<Row>& rows);
  /// Takes what was written into the base rows.
  void accept();

  const std::vector<Row>& written() const { return written_; }
  const std::vector<Row>& conflicts() const { return conflicts_; }

 private:
  void writeAll(const std::vector<Row>& rows);
  bool write(Row row, const RecordsetStore::Edit& edit);
  bool update(Row row, const RecordsetStore::Edit& edit);
  bool update(std::string_view table, Row row, const RecordsetStore::Edit& edit);
  bool insert(const RecordsetStore::Edit& edit);
  bool remove(Row row);
  void begin(std::string_view verb, std::string_view table);
  void appendKey(std::string_view table, Row row);
  void appendOriginal(Row row, std::size_t column);
  bool isLookedUp(std::string_view table) const { return table != plan_.updateTable; }
  std::string placeOf(Row row, std::size_t column) const;
  void keepLookedUp(Row row, const RecordsetStore::Edit& edit);
  engine::Value expected(Row row, std::size_t column) const;
  void appendName(std::string_view name);
  const dialect::OutputColumn& writable(std::size_t column) const;
  void requireRowTable() const;
  std::int64_t execute(engine::RowStore* returned);

  RecordsetStore& store_;
  Connection& connection_;
  const dialect::Plan& plan_;
  std::vector<std::size_t> returnedColumns_;
  engine::RowStore returned_;  // a row for each inserted one
  std::vector<Row> written_;
  std::vector<Row> conflicts_;
  std::unordered_map<std::string, Variant> lookedUpWrites_;  // as the store's, of this batch
  std::string sql_;
  std::vector<engine::Value> values_;
};

namespace {

bool isOf(const dialect::OutputColumn& column, std::string_view table) {
  return column.updatable && column.baseTable == table;
}

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
  for (const Row row : rows) {
    RecordsetStore::Edit* edit = store_.edit(row);
    if (edit == nullptr) continue;
    edit->failure = 0;
    try {
      if (write(row, *edit)) {
        written_.push_back(row);
      } else {
        edit->failure = record_status::kConcurrencyViolation;
        conflicts_.push_back(row);
      }
    } catch (Error& error) {
      error.noting(rowNote(store_, row));
      edit->failure = failureOf(error);
      conflicts_.assign(1, row);
      throw;
    }
  }
}

bool BatchWriter::write(Row row, const RecordsetStore::Edit& edit) {
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
bool BatchWriter::update(Row row, const RecordsetStore::Edit& edit) {
  std::vector<std::string_view> tables;
  for (const WrittenCell& cell : edit.cells) {
    const std::string& table = writable(cell.column).baseTable;
    if (std::find(tables.begin(), tables.end(), table) == tables.end()) tables.push_back(table);
  }
  bool found = false;
  if (tables.size() == 1) {
    found = update(tables.front(), row, edit);
  } else {
    engine::Transaction all(connection_.lease().session());
    found = std::all_of(tables.begin(), tables.end(),
                        [&](std::string_view table) { return update(table, row, edit); });
    if (found) all.commit();
  }
  if (found) keepLookedUp(row, edit);
  return found;
}

bool BatchWriter::update(std::string_view table, Row row, const RecordsetStore::Edit& edit) {
  begin("UPDATE ", table);
  const char* separator = " SET ";
  for (const WrittenCell& cell : edit.cells) {
    if (plan_.columns[cell.column].baseTable != table) continue;
    sql_ += separator;
    appendName(plan_.columns[cell.column].baseColumn);
    sql_ += "=?";
    values_.push_back(forEngine(cell.value));
    separator = ",";
  }
  appendKey(table, row);
  for (const WrittenCell& cell : edit.cells) {
    const dialect::OutputColumn& column = plan_.columns[cell.column];
    if (column.baseTable == table && !column.key) appendOriginal(row, cell.column);
  }
  return execute(nullptr) > 0;
}

bool BatchWriter::insert(const RecordsetStore::Edit& edit) {
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
    appendName(column.baseColumn);
    values_.push_back(forEngine(cell.value));
    separator = ",";
  }
  sql_ += ") VALUES (?";
  for (std::size_t i = 1; i < edit.cells.size(); ++i) sql_ += ",?";
  separator = ") RETURNING ";
  for (const std::size_t column : returnedColumns_) {
    sql_ += separator;
    appendName(plan_.columns[column].baseColumn);
    separator = ",";
  }
  const std::size_t before = returned_.rows();
  execute(&returned_);
  return returned_.rows() > before;
}

bool BatchWriter::remove(Row row) {
  requireRowTable();
  begin("DELETE FROM ", plan_.updateTable);
  appendKey(plan_.updateTable, row);
  return execute(nullptr) > 0;
}

void BatchWriter::begin(std::string_view verb, std::string_view table) {
  sql_ = verb;
  values_.clear();
  appendName(table);
}

void BatchWriter::appendKey(std::string_view table, Row row) {
  const char* separator = " WHERE ";
  for (std::size_t i = 0; i < plan_.columns.size(); ++i) {
    if (!plan_.columns[i].key || !isOf(plan_.columns[i], table)) continue;
    sql_ += separator;
    appendName(plan_.columns[i].baseColumn);
    sql_ += "=?";
    values_.push_back(store_.baseForEngine(row, i));
    separator = " AND ";
  }
}

/// Names a column of the row of its table that is shown in `row`.
std::string BatchWriter::placeOf(Row row, std::size_t column) const {
  const dialect::OutputColumn& named = plan_.columns[column];
  std::string place = named.baseTable + '\0' + named.baseColumn;
  for (std::size_t i = 0; i < plan_.columns.size(); ++i) {
    if (!plan_.columns[i].key || !isOf(plan_.columns[i], named.baseTable)) continue;
    const Variant key = store_.baseValue(row, i);
    place += '\0';
    if (!key.isNull()) place += xml::textOf(key);
  }
  return place;
}

void BatchWriter::keepLookedUp(Row row, const RecordsetStore::Edit& edit) {
  for (const WrittenCell& cell : edit.cells) {
    if (!isLookedUp(plan_.columns[cell.column].baseTable)) continue;
    lookedUpWrites_.insert_or_assign(placeOf(row, cell.column), cell.value);
  }
}

/// What the column held when it was read, or what this set has written to it since.
engine::Value BatchWriter::expected(Row row, std::size_t column) const {
  const bool mayBeOurs = isLookedUp(plan_.columns[column].baseTable) &&
                         !(lookedUpWrites_.empty() && store_.lookedUpWrites.empty());
  if (mayBeOurs) {
    const std::string place = placeOf(row, column);
    const auto ours = lookedUpWrites_.find(place);
    if (ours != lookedUpWrites_.end()) return forEngine(ours->second);
    const auto earlier = store_.lookedUpWrites.find(place);
    if (earlier != store_.lookedUpWrites.end()) return forEngine(earlier->second);
  }
  return store_.baseForEngine(row, column);
}

/// The row is found only if the column still holds what is expected.
void BatchWriter::appendOriginal(Row row, std::size_t column) {
  sql_ += " AND ";
  appendName(plan_.columns[column].baseColumn);
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

void BatchWriter::appendName(std::string_view name) {
  sql_ += '"';
  for (const char c : name) {
    if (c == '"') sql_ += '"';
    sql_ += c;
  }
  sql_ += '"';
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
  return connection_.traced(
      [&] { return std::string_view(sql_); },
      [&] { return connection_.lease().plans().run(sql_, values_, returned); });
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
      for (const WrittenCell& cell : edit.cells) store_.setBase(row, cell.column, cell.value);
    }
  }
}

// ---- The set's side

void Recordset::UpdateBatch(Affect affect) {
  requireWritable();
  leaveRow();
  const std::vector<Row> rows = pendingRows(affect);
  if (rows.empty()) return;
  const auto count = static_cast<std::int32_t>(rows.size());
  const std::shared_ptr<RecordsetStore> store = store_;
  announced({.told = Told::kRecord, .reason = EventReason::kUpdate, .records = count}, [&] {
    requireSame(store);
    write(rows);
  });
}

void Recordset::write(const std::vector<Row>& rows) {
  follow();
  affected_ = rows;
  conflicting_.clear();
  RecordsetStore& store = *store_;
  if (store.detached && !connection_) {
    for (const Row row : rows) {
      const RecordsetStore::Edit* edit = store.edit(row);
      if (edit == nullptr) continue;
      for (const WrittenCell& cell : edit->cells) store.setBase(row, cell.column, cell.value);
    }
    return acceptWritten(rows);
  }
  if (!connection_ || connection_->State() == ObjectState::kClosed) {
    raise(errors::kInvalidConnection, kRecordsetSource);
  }
  BatchWriter writer(store, *connection_);
  try {
    writer.run(rows);
  } catch (...) {
    conflicting_ = writer.conflicts();
    throw;
  }
  writer.accept();
  acceptWritten(writer.written());
  conflicting_ = writer.conflicts();
  if (!conflicting_.empty()) {
    raiseNotLocated(store, conflicting_, rows.size());
  }
}

/// The base rows hold the changes now: nothing is pending any more.
void Recordset::acceptWritten(const std::vector<Row>& rows) {
  RecordsetStore& store = *store_;
  for (const Row row : rows) {
    const RecordsetStore::Edit* edit = store.edit(row);
    if (edit == nullptr) continue;
    const bool deleted = edit->operation == Operation::kDelete;
    if (deleted && visible(row) && indexOf(row) >= 0) --live_;
    store.dropEdit(row);
    if (deleted) store.setFlags(row, RecordsetStore::kDead);
  }
  changedByMe();
}

}  // namespace tavelor
