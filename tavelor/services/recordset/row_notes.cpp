// SPDX-License-Identifier: MIT
// What an error of a record set was about.
#include "tavelor/services/recordset/row_notes.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/literal.hpp"
#include "tavelor/services/recordset/recordset_internal.hpp"

namespace tavelor {

namespace {

/// Whose rows they are: the table that is written, else that of the first column.
std::string tableOf(const RecordsetStore& store) {
  const dialect::Plan& plan = *store.schema().plan;
  if (!plan.updateTable.empty()) return plan.updateTable;
  for (const dialect::OutputColumn& column : plan.columns) {
    if (!column.baseTable.empty()) return column.baseTable;
  }
  return "no table";
}

std::string shownValue(const Variant& value) {
  const VariantType type = value.type();
  const bool isPlain = type != VariantType::kBytes && type != VariantType::kObject;
  return isPlain ? sqlLiteral(value).text() : std::string(typeName(type));
}

}  // namespace

std::string rowNote(const RecordsetStore& store, RecordsetStore::Row row) {
  const std::string table = tableOf(store);
  const RecordsetStore::Edit* edit = store.edit(row);
  const bool isNew = edit != nullptr && edit->operation == RecordsetStore::Operation::kInsert;
  std::string note = "row of " + table;
  const char* separator = " with ";
  const std::vector<dialect::OutputColumn>& columns = store.columns();
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (!columns[i].key || columns[i].baseTable != table) continue;
    const Variant key = isNew ? store.value(row, i) : store.baseValue(row, i);
    note.append(separator).append(columns[i].baseColumn).append(" ").append(shownValue(key));
    separator = ", ";
  }
  return note;
}

void raiseNoCurrentRow(const RecordsetStore& store) {
  Error error(errors::kNoCurrentRecord, std::string(kRecordsetSource),
              std::string(defaultDescription(errors::kNoCurrentRecord)));
  throw error.noting("rows of " + tableOf(store));
}

void raiseNotLocated(const RecordsetStore& store, const std::vector<RecordsetStore::Row>& conflicts,
                     std::size_t count) {
  Error error(errors::kRowNotLocated, std::string(kRecordsetSource),
              std::string(defaultDescription(errors::kRowNotLocated)) + " Rows not written: " +
                  std::to_string(conflicts.size()) + " of " + std::to_string(count));
  throw error.noting(rowNote(store, conflicts.front()));
}

}  // namespace tavelor
