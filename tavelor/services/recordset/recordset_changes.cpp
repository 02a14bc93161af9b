// SPDX-License-Identifier: MIT
// The record set's changes of rows.
#include <algorithm>
#include <iterator>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

namespace {

/// The columns of fields given by name or position. A value that will not do is refused before
/// anything is changed.
std::vector<std::size_t> columnsOf(Recordset& set, const std::vector<Variant>& fields,
                                   const std::vector<Variant>& values) {
  const RecordsetStore& store = set.parts().opened();
  if (fields.size() != values.size()) {
    raise(errors::kInvalidArgument, kRecordsetSource, "There must be as many values as fields");
  }
  std::vector<std::size_t> columns;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    columns.push_back(set.Fields().Item(fields[i]).column());
    coerce(values[i], store.columns()[columns.back()], store.locale());
  }
  return columns;
}

std::int32_t countOf(const std::vector<RowNumber>& rows) {
  return static_cast<std::int32_t>(rows.size());
}

}  // namespace

// ---- Adding and posting

void Recordset::AddNew() {
  parts_->requireWritable();
  parts_->leaveRow();
  parts_->moving(EventReason::kMove, [&] {
    parts_->listeners.around({.kind = EventKind::kRecord, .reason = EventReason::kAddNew}, [&] {
      parts_->requireWritable();
      parts_->leaveRow();
      parts_->edit.add();
    });
  });
}

void Recordset::AddNew(const std::vector<Variant>& fields, const std::vector<Variant>& values) {
  parts_->requireWritable();
  const std::vector<std::size_t> columns = columnsOf(*this, fields, values);
  AddNew();
  try {
    for (std::size_t i = 0; i < columns.size(); ++i) parts_->assign(columns[i], values[i]);
    Update();
  } catch (...) {
    if (parts_->edit.isAdding()) parts_->edit.drop();
    throw;
  }
}

void Recordset::Update() {
  parts_->requireWritable();
  if (parts_->edit.isActive()) parts_->post();
}

void Recordset::Update(const std::vector<Variant>& fields, const std::vector<Variant>& values) {
  parts_->requireWritable();
  parts_->readableRow();
  const std::vector<std::size_t> columns = columnsOf(*this, fields, values);
  for (std::size_t i = 0; i < columns.size(); ++i) parts_->assign(columns[i], values[i]);
  Update();
}

// ---- Deleting

void Recordset::Delete(Affect affect) {
  parts_->requireWritable();
  if (affect != Affect::kCurrent && affect != Affect::kGroup) {
    raise(errors::kInvalidArgument, kRecordsetSource, "Delete takes the current row or a group");
  }
  std::vector<RowNumber> rows;
  if (affect == Affect::kCurrent) {
    rows.push_back(parts_->readableRow());
  } else {
    parts_->leaveRow();
    if (!parts_->view.filter().isGroup()) {
      raise(errors::kNotAllowedInContext, kRecordsetSource, "The filter is no group of rows");
    }
    parts_->cursor.removeHoles();
    for (std::int64_t i = 0; i < parts_->view.extent(); ++i) {
      const RowNumber row = parts_->view.rowAt(i);
      if ((parts_->store->flags(row) & RecordsetStore::kDeleted) == 0) rows.push_back(row);
    }
  }
  const std::shared_ptr<RecordsetStore> store = parts_->store;
  parts_->listeners.around(
      {.kind = EventKind::kRecord, .reason = EventReason::kDelete, .records = countOf(rows)}, [&] {
        if (affect == Affect::kCurrent) parts_->requireStillOn(rows.front());
        parts_->requireSame(store);
        parts_->view.follow();
        for (const RowNumber row : rows) parts_->edit.remove(row);
        parts_->view.changed();
        parts_->view.affected(rows);
        if (parts_->writesAtOnce()) parts_->write(rows);
      });
}

// ---- Writing and taking back

void Recordset::UpdateBatch(Affect affect) {
  parts_->requireWritable();
  parts_->leaveRow();
  const std::vector<RowNumber> rows = parts_->edit.pendingRows(affect);
  if (rows.empty()) return;
  const std::shared_ptr<RecordsetStore> store = parts_->store;
  parts_->listeners.around(
      {.kind = EventKind::kRecord, .reason = EventReason::kUpdate, .records = countOf(rows)}, [&] {
        parts_->requireSame(store);
        parts_->write(rows);
      });
}

void Recordset::CancelUpdate() {
  const RecordsetStore& store = parts_->opened();
  if (!parts_->cursor.isOnRow()) return;
  const RowNumber row = parts_->cursor.row();
  if (!parts_->edit.isActive() && store.edit(row) == nullptr) return;
  parts_->listeners.around({.kind = EventKind::kRecord, .reason = parts_->edit.undoReason(row)},
                           [&] {
                             parts_->requireStillOn(row);
                             if (parts_->edit.isActive()) return parts_->edit.drop();
                             parts_->view.follow();
                             parts_->edit.undo(row);
                           });
}

void Recordset::CancelBatch(Affect affect) {
  parts_->opened();
  if (parts_->lockType == tavelor::LockType::kOptimistic && affect != Affect::kCurrent) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "The set does not write in batches");
  }
  if (parts_->edit.isActive()) {
    CancelUpdate();
    parts_->opened();
  }
  if (affect == Affect::kCurrent && !parts_->cursor.isOnRow()) return;
  const std::vector<RowNumber> rows = parts_->edit.pendingRows(affect);
  if (rows.empty()) return;
  const std::shared_ptr<RecordsetStore> store = parts_->store;
  parts_->listeners.around(
      {.kind = EventKind::kRecord, .reason = EventReason::kUndoUpdate, .records = countOf(rows)},
      [&] {
        parts_->requireSame(store);
        parts_->view.follow();
        parts_->edit.undo(rows);
        parts_->view.affected(rows);
      });
}

void Recordset::Resync(Affect affect, ResyncValues values) {
  parts_->requireWritable();
  if (values != ResyncValues::kUnderlying && values != ResyncValues::kAll) {
    raise(errors::kInvalidArgument, kRecordsetSource, "There are no such values to read again");
  }
  parts_->openConnection();
  const std::vector<RowNumber> rows = parts_->edit.storedRows(affect);
  if (rows.empty()) return;
  const std::shared_ptr<RecordsetStore> store = parts_->store;
  parts_->listeners.around({.kind = EventKind::kRecordset, .reason = EventReason::kResynch}, [&] {
    parts_->requireSame(store);
    parts_->resync(rows, values);
  });
}

// ---- What the set can do

bool Recordset::Supports(std::int32_t options) const {
  const RecordsetStore& store = parts_->opened();
  constexpr std::int32_t kAlways = cursor_option::kHoldRecords | cursor_option::kMovePrevious |
                                   cursor_option::kBookmark | cursor_option::kApproxPosition |
                                   cursor_option::kNotify | cursor_option::kFind;
  std::int32_t able = kAlways;
  if (parts_->lockType != tavelor::LockType::kReadOnly) {
    const bool hasFields = std::any_of(store.columns().begin(), store.columns().end(),
                                       [](const auto& column) { return column.updatable; });
    const bool hasRows = store.detached || !store.schema().plan->updateTable.empty();
    if (hasRows) able |= cursor_option::kAddNew | cursor_option::kDelete;
    if (store.detached || hasFields) able |= cursor_option::kUpdate;
    if (parts_->lockType == tavelor::LockType::kBatchOptimistic)
      able |= cursor_option::kUpdateBatch;
    if (hasFields && !store.detached) able |= cursor_option::kResync;
  }
  return (able & options) == options;
}

// ---- State of the current row

tavelor::EditMode Recordset::EditMode() const {
  parts_->opened();
  return parts_->edit.mode();
}

std::int32_t Recordset::Status() const {
  parts_->opened();
  return parts_->edit.status(parts_->cursor.row());
}

bool Recordset::hasUnwrittenChanges() const {
  return parts_->edit.isActive() || !parts_->opened().edits().empty();
}

}  // namespace tavelor
