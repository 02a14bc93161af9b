// SPDX-License-Identifier: MIT
// Editing, adding, deleting and taking back of rows, up to the pending change.
#include <algorithm>

#include "tavelor/services/recordset/criteria.hpp"
#include "tavelor/services/recordset/recordset_internal.hpp"
#include "tavelor/services/recordset/row_notes.hpp"

namespace tavelor {

using Operation = RecordsetStore::Operation;

void Recordset::requireWritable() const {
  opened();
  if (lockType_ == tavelor::LockType::kReadOnly) {
    raise(errors::kNotSupported, kRecordsetSource, "The record set is read-only");
  }
}

/// After listeners were told: the row that they were told of is still the one to work on.
void Recordset::requireStill(Row row) const {
  if (!store_ || cursor_.place != Place::kRow || cursor_.row != row) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "A listener took the row away");
  }
}

// ---- Values

Variant Recordset::valueOf(std::size_t column) const {
  const Row row = readable();
  if (draft_ && draft_->row == row) {
    if (const WrittenCell* cell = findCell(draft_->cells, column)) return cell->value;
    if (draft_->adding) return Empty{};
  }
  return store_->value(row, column);
}

Variant Recordset::originalOf(std::size_t column) const {
  return store_->baseValue(current(), column);
}

void Recordset::assign(std::size_t column, const Variant& value) {
  requireWritable();
  const Row row = readable();
  Variant typed = coerce(value, store_->columns()[column], store_->locale());
  const auto change = [&] {
    announced({.told = Told::kField, .reason = EventReason::kUpdate, .column = column}, [&] {
      requireStill(row);
      readable();
      put(column, std::move(typed));
    });
  };
  if (draft_) return change();
  announced({.told = Told::kRecord, .reason = EventReason::kFirstChange}, change);
}

void Recordset::put(std::size_t column, Variant value) {
  if (!draft_) draft_ = std::make_unique<Draft>(Draft{cursor_.row, false, {}, {}});
  putCell(draft_->cells, column, std::move(value));
}

// ---- Posting

void Recordset::Update() {
  requireWritable();
  if (draft_) post();
}

/// Moves the draft into the pending changes.
void Recordset::post() {
  const Row row = draft_->row;
  announced({.told = Told::kRecord, .reason = EventReason::kUpdate}, [&] {
    opened();
    // A listener that posted the row itself left nothing to do.
    if (!draft_ || draft_->row != row) return;
    if (lockType_ == tavelor::LockType::kOptimistic && !store_->detached) {
      postAtOnce();
    } else {
      mergeDraft();
    }
  });
}

/// The row is in the database afterwards, or still in edit.
void Recordset::postAtOnce() {
  auto kept = std::make_unique<Draft>(*draft_);
  const Row row = draft_->row;
  mergeDraft();
  try {
    write({row});
  } catch (...) {
    takeBackDraft(std::move(kept));
    throw;
  }
}

/// Undoes mergeDraft(): what the draft became is in edit again.
void Recordset::takeBackDraft(std::unique_ptr<Draft> draft) {
  const Row row = draft->row;
  if (draft->adding) {
    store_->dropEdit(row);
    store_->setFlags(row, RecordsetStore::kDraft);
    changedByMe();
  } else {
    undo(row);
  }
  draft_ = std::move(draft);
}

void Recordset::mergeDraft() {
  follow();
  // A clone may have deleted the row meanwhile. CancelUpdate takes the edit back.
  constexpr auto kGone =
      static_cast<std::uint8_t>(RecordsetStore::kDead | RecordsetStore::kDeleted);
  if ((store_->flags(draft_->row) & kGone) != 0) raise(errors::kDeletedRow, kRecordsetSource);
  const std::unique_ptr<Draft> draft = std::move(draft_);
  const Row row = draft->row;
  RecordsetStore& store = *store_;
  if (draft->adding) {
    store.setFlags(row, 0);
    store.editOf(row).operation = Operation::kInsert;
  }
  RecordsetStore::Edit& edit = store.editOf(row);
  edit.failure = 0;
  const bool added = edit.operation == Operation::kInsert;
  std::vector<std::uint32_t> columns;
  for (WrittenCell& cell : draft->cells) {
    columns.push_back(cell.column);
    // Empty is "not written" in a new row, and Null in one that the database has.
    if (!added && cell.value.isEmpty()) cell.value = Null{};
    putCell(edit.cells, cell.column, std::move(cell.value));
  }
  std::erase_if(edit.cells, [&](const WrittenCell& cell) {
    return added ? cell.value.isEmpty() : cell.value == store.baseValue(row, cell.column);
  });
  if (!added && edit.cells.empty()) store.dropEdit(row);
  changedByMe();
  if (!draft->adding) replaceInView(row, columns);
}

std::vector<std::size_t> Recordset::columnsOf(const std::vector<Variant>& fields,
                                              const std::vector<Variant>& values) {
  opened();
  if (fields.size() != values.size()) {
    raise(errors::kInvalidArgument, kRecordsetSource, "There must be as many values as fields");
  }
  std::vector<std::size_t> columns;
  for (std::size_t i = 0; i < fields.size(); ++i) {
    columns.push_back(Fields().Item(fields[i]).column());
    // A value that will not do is refused before anything is changed.
    coerce(values[i], store_->columns()[columns.back()], store_->locale());
  }
  return columns;
}

void Recordset::Update(const std::vector<Variant>& fields, const std::vector<Variant>& values) {
  requireWritable();
  readable();
  const std::vector<std::size_t> columns = columnsOf(fields, values);
  for (std::size_t i = 0; i < columns.size(); ++i) assign(columns[i], values[i]);
  Update();
}

// ---- Adding

void Recordset::AddNew() {
  requireWritable();
  leaveRow();
  moving(EventReason::kMove, [&] {
    announced({.told = Told::kRecord, .reason = EventReason::kAddNew}, [&] {
      requireWritable();
      leaveRow();
      addDraft();
    });
  });
}

void Recordset::AddNew(const std::vector<Variant>& fields, const std::vector<Variant>& values) {
  requireWritable();
  const std::vector<std::size_t> columns = columnsOf(fields, values);
  AddNew();
  try {
    for (std::size_t i = 0; i < columns.size(); ++i) assign(columns[i], values[i]);
    Update();
  } catch (...) {
    if (draft_ && draft_->adding) dropDraft();
    throw;
  }
}

void Recordset::addDraft() {
  follow();
  const Row row = store_->append();
  store_->setFlags(row, RecordsetStore::kDraft);
  draft_ = std::make_unique<Draft>(Draft{row, true, {}, cursor_});
  if (listed_) view_.push_back(row);
  places_.clear();
  ++live_;
  changedByMe();
  standAt(extent() - 1);
}

/// Forgets the row in edit. A row that was being added goes away, and the one before is current.
void Recordset::dropDraft() {
  follow();
  const std::unique_ptr<Draft> draft = std::move(draft_);
  if (!draft->adding) return;
  store_->setFlags(draft->row, RecordsetStore::kDead);
  --live_;
  changedByMe();
  cursor_ = draft->before;
  if (cursor_.place == Place::kRow) {
    // Counting may have moved the rows of the view meanwhile.
    const std::int64_t index = indexOf(cursor_.row);
    if (index >= 0) cursor_.at = index;
    cursor_.left = index < 0;
    cursor_.at = std::min(cursor_.at, extent());
  } else if (live_ == 0) {
    cursor_.place = Place::kNowhere;
  }
}

// ---- Deleting

void Recordset::Delete(Affect affect) {
  requireWritable();
  if (affect != Affect::kCurrent && affect != Affect::kGroup) {
    raise(errors::kInvalidArgument, kRecordsetSource, "Delete takes the current row or a group");
  }
  std::vector<Row> rows;
  if (affect == Affect::kCurrent) {
    rows.push_back(readable());
  } else {
    leaveRow();
    if (group_ == FilterGroup::kNone && !byBookmarks_) {
      raise(errors::kNotAllowedInContext, kRecordsetSource, "The filter is no group of rows");
    }
    compact();
    std::copy_if(view_.begin(), view_.end(), std::back_inserter(rows),
                 [&](Row row) { return (store_->flags(row) & RecordsetStore::kDeleted) == 0; });
  }
  const auto count = static_cast<std::int32_t>(rows.size());
  const std::shared_ptr<RecordsetStore> store = store_;
  announced({.told = Told::kRecord, .reason = EventReason::kDelete, .records = count}, [&] {
    if (affect == Affect::kCurrent) requireStill(rows.front());
    requireSame(store);
    follow();
    for (const Row row : rows) deleteRow(row);
    changedByMe();
    affected_ = rows;
    if (lockType_ == tavelor::LockType::kOptimistic && !store_->detached) write(rows);
  });
}

/// Marks a row. One that the database never had goes away at once.
void Recordset::deleteRow(Row row) {
  RecordsetStore& store = *store_;
  const std::uint8_t flags = store.flags(row);
  if ((flags & (RecordsetStore::kDead | RecordsetStore::kDeleted)) != 0) return;
  const bool shown = visible(row);
  if (draft_ && draft_->row == row) draft_.reset();
  const RecordsetStore::Edit* edit = store.edit(row);
  if ((flags & RecordsetStore::kDraft) != 0 || (edit && edit->operation == Operation::kInsert)) {
    store.dropEdit(row);
    store.setFlags(row, RecordsetStore::kDead);
  } else {
    store.editOf(row) = {Operation::kDelete, 0, {}};
    store.setFlags(row, RecordsetStore::kEdited | RecordsetStore::kDeleted);
  }
  // A row that was edited out of the filter is current still, but counts no more.
  if (shown && !visible(row) && indexOf(row) >= 0) --live_;
}

// ---- Taking back

EventReason Recordset::undoReason(Row row) const {
  if (draft_ && draft_->row == row) {
    return draft_->adding ? EventReason::kUndoAddNew : EventReason::kUndoUpdate;
  }
  switch (store_->edit(row)->operation) {
    case Operation::kInsert:
      return EventReason::kUndoAddNew;
    case Operation::kDelete:
      return EventReason::kUndoDelete;
    case Operation::kUpdate:
      break;
  }
  return EventReason::kUndoUpdate;
}

void Recordset::CancelUpdate() {
  opened();
  if (cursor_.place != Place::kRow) return;
  const Row row = cursor_.row;
  if (!draft_ && store_->edit(row) == nullptr) return;
  announced({.told = Told::kRecord, .reason = undoReason(row)}, [&] {
    requireStill(row);
    if (draft_) return dropDraft();
    follow();
    undo(row);
  });
}

/// Drops the pending change of a row.
void Recordset::undo(Row row) {
  RecordsetStore& store = *store_;
  const RecordsetStore::Edit* edit = store.edit(row);
  if (edit == nullptr) return;
  const Operation operation = edit->operation;
  const bool shown = visible(row);
  std::vector<std::uint32_t> columns;
  for (const WrittenCell& cell : edit->cells) columns.push_back(cell.column);
  store.dropEdit(row);
  if (operation == Operation::kInsert) store.setFlags(row, RecordsetStore::kDead);
  changedByMe();
  if (operation == Operation::kInsert) {
    if (shown && indexOf(row) >= 0) --live_;
  } else if (operation == Operation::kUpdate) {
    replaceInView(row, columns);
  } else if (indexOf(row) >= 0) {
    if (!shown) ++live_;
    if (cursor_.row == row && cursor_.left) cursor_.left = false;
  } else if (!criteria_ || criteria_->matches(store, row)) {
    if (!byBookmarks_ && group_ == FilterGroup::kNone) insertRow(row);
  }
}

/// Which rows an operation on many looks at: all, or those that a filter text shows.
bool Recordset::inScope(Row row, Affect affect) const {
  const bool current = cursor_.place == Place::kRow && cursor_.row == row;
  switch (affect) {
    case Affect::kCurrent:
      return current;
    case Affect::kGroup:
      return indexOf(row) >= 0;
    case Affect::kAll:
      if (!criteria_ || current) return true;
      // A deleted row shows no more, but it did when it was deleted.
      if ((store_->flags(row) & RecordsetStore::kDeleted) != 0) {
        return criteria_->matchesBase(*store_, row);
      }
      return indexOf(row) >= 0;
    case Affect::kAllChapters:
      return true;
  }
  raise(errors::kInvalidArgument, kRecordsetSource, "There is no such group of rows");
}

std::vector<Recordset::Row> Recordset::pendingRows(Affect affect) const {
  follow();
  if (affect == Affect::kCurrent) {
    const Row row = current();
    return store_->edit(row) != nullptr ? std::vector<Row>{row} : std::vector<Row>{};
  }
  if (affect == Affect::kGroup) {
    if (group_ == FilterGroup::kNone && !byBookmarks_) {
      raise(errors::kNotAllowedInContext, kRecordsetSource, "The filter is no group of rows");
    }
    if (live_ == 0) raiseNoCurrentRow(*store_);
  }
  std::vector<Row> rows;
  for (const auto& [row, edit] : store_->edits()) {
    if (inScope(row, affect)) rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

void Recordset::CancelBatch(Affect affect) {
  opened();
  if (lockType_ == tavelor::LockType::kOptimistic && affect != Affect::kCurrent) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "The set does not write in batches");
  }
  if (draft_) {
    CancelUpdate();
    opened();
  }
  if (affect == Affect::kCurrent && cursor_.place != Place::kRow) return;
  const std::vector<Row> rows = pendingRows(affect);
  if (rows.empty()) return;
  const auto count = static_cast<std::int32_t>(rows.size());
  const std::shared_ptr<RecordsetStore> store = store_;
  announced({.told = Told::kRecord, .reason = EventReason::kUndoUpdate, .records = count}, [&] {
    requireSame(store);
    follow();
    if (rows.size() == 1) {
      undo(rows.front());
    } else {
      undoAll(rows);
    }
    affected_ = rows;
  });
}

/// The same for many rows, with one pass over the view.
void Recordset::undoAll(const std::vector<Row>& rows) {
  RecordsetStore& store = *store_;
  for (const Row row : rows) {
    const RecordsetStore::Edit* edit = store.edit(row);
    if (edit == nullptr) continue;
    const bool added = edit->operation == Operation::kInsert;
    store.dropEdit(row);
    if (added) store.setFlags(row, RecordsetStore::kDead);
  }
  store.touch();
  rebuildView();
  if (cursor_.place != Place::kRow) return;
  const std::int64_t index = indexOf(cursor_.row);
  cursor_.left = index < 0;
  cursor_.at = index >= 0 ? index : std::min(cursor_.at, extent());
}

// ---- State of the current row

tavelor::EditMode Recordset::EditMode() const {
  const Row row = current();
  if (draft_ && draft_->row == row) {
    return draft_->adding ? tavelor::EditMode::kAdd : tavelor::EditMode::kInProgress;
  }
  const std::uint8_t flags = store_->flags(row);
  if ((flags & RecordsetStore::kDead) != 0) raise(errors::kDeletedRow, kRecordsetSource);
  if ((flags & RecordsetStore::kDeleted) != 0) return tavelor::EditMode::kDelete;
  const RecordsetStore::Edit* edit = store_->edit(row);
  // There is no database that a row of a fabricated set could ever have reached.
  const bool added = store_->detached && edit && edit->operation == Operation::kInsert;
  return added ? tavelor::EditMode::kAdd : tavelor::EditMode::kNone;
}

bool Recordset::hasUnwrittenChanges() const {
  return draft_ != nullptr || !opened().edits().empty();
}

std::int32_t Recordset::Status() const {
  const Row row = current();
  if (draft_ && draft_->row == row) {
    return draft_->adding ? record_status::kNew : record_status::kModified;
  }
  if ((store_->flags(row) & RecordsetStore::kDead) != 0) return record_status::kDbDeleted;
  const RecordsetStore::Edit* edit = store_->edit(row);
  if (edit == nullptr) return record_status::kUnmodified;
  switch (edit->operation) {
    case Operation::kInsert:
      return record_status::kNew | edit->failure;
    case Operation::kDelete:
      return record_status::kDeleted | edit->failure;
    case Operation::kUpdate:
      break;
  }
  return record_status::kModified | edit->failure;
}

}  // namespace tavelor
