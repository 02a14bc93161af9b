// SPDX-License-Identifier: MIT
// What is done to rows: the one in edit, and the pending changes.
#include "tavelor/services/recordset/recordset_edit.hpp"

#include <algorithm>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/utf8.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
#include "tavelor/services/recordset/row_notes.hpp"

namespace tavelor {

using Operation = RecordsetStore::Operation;
// ---- The row in edit

Variant RecordsetEdit::value(Row row, std::size_t column) const {
  if (isOf(row)) {
    if (const WrittenCell* cell = findCell(draft_->cells, column)) return cell->value;
    if (draft_->adding) return Empty{};
  }
  return store().value(row, column);
}

void RecordsetEdit::put(std::size_t column, Variant value) {
  if (!draft_) draft_.emplace(Draft{cursor_.row(), false, {}, {}});
  putCell(draft_->cells, column, std::move(value));
}

void RecordsetEdit::add() {
  view_.follow();
  const RowNumber row = store().append();
  store().setFlags(row, RecordsetStore::kDraft);
  draft_.emplace(Draft{row, true, {}, cursor_.position()});
  view_.showAddedRow(row);
  cursor_.standAt(view_.extent() - 1);
}

void RecordsetEdit::post() {
  view_.follow();
  RecordsetStore& rows = store();
  if (rows.isGone(draft_->row)) raise(errors::kDeletedRow, kRecordsetSource);
  Draft draft = std::move(*draft_);
  draft_.reset();
  if (draft.adding) {
    rows.setFlags(draft.row, 0);
    rows.editOf(draft.row).operation = Operation::kInsert;
    view_.keepAddedRow();
  }
  RecordsetStore::Edit& edit = rows.editOf(draft.row);
  edit.failure = 0;
  const bool added = edit.operation == Operation::kInsert;
  std::vector<std::uint32_t> columns;
  columns.reserve(draft.cells.size());
  for (WrittenCell& cell : draft.cells) {
    columns.push_back(cell.column);
    // Empty is "not written" in a new row, and Null in one that the database has.
    if (!added && cell.value.isEmpty()) cell.value = Null{};
    putCell(edit.cells, cell.column, std::move(cell.value));
  }
  std::erase_if(edit.cells, [&](const WrittenCell& cell) {
    return added ? cell.value.isEmpty() : cell.value == rows.baseValue(draft.row, cell.column);
  });
  if (!added && edit.cells.empty()) rows.dropEdit(draft.row);
  view_.changed();
  if (!draft.adding) cursor_.rowChanged(draft.row, columns);
}

void RecordsetEdit::reopen(Draft draft) {
  if (draft.adding) {
    store().dropEdit(draft.row);
    store().setFlags(draft.row, RecordsetStore::kDraft);
    view_.reopenAddedRow(draft.row);
    view_.changed();
  } else {
    undo(draft.row);
  }
  draft_ = std::move(draft);
}

void RecordsetEdit::drop() {
  view_.follow();
  const Draft draft = std::move(*draft_);
  draft_.reset();
  if (!draft.adding) return;
  store().setFlags(draft.row, RecordsetStore::kDead);
  view_.hideAddedRow();
  cursor_.restore(draft.before);
}

void RecordsetEdit::abandon() noexcept {
  if (isAdding()) store().setFlags(draft_->row, RecordsetStore::kDead);
  draft_.reset();
  inPieces_ = false;
  appendColumn_ = kNoColumn;
  readColumn_ = kNoColumn;
}

// ---- Pending changes

void RecordsetEdit::remove(Row row) {
  RecordsetStore& rows = store();
  if (rows.isGone(row)) return;
  const std::uint8_t flags = rows.flags(row);
  view_.changingRow(row, [&] {
    if (isOf(row)) {
      draft_.reset();
      view_.keepAddedRow();
    }
    const RecordsetStore::Edit* edit = rows.edit(row);
    if ((flags & RecordsetStore::kDraft) != 0 || (edit && edit->operation == Operation::kInsert)) {
      rows.dropEdit(row);
      rows.setFlags(row, RecordsetStore::kDead);
    } else {
      rows.editOf(row) = {Operation::kDelete, 0, {}};
      rows.setFlags(row, RecordsetStore::kEdited | RecordsetStore::kDeleted);
    }
  });
}

void RecordsetEdit::undo(Row row) {
  RecordsetStore& rows = store();
  const RecordsetStore::Edit* edit = rows.edit(row);
  if (edit == nullptr) return;
  const Operation operation = edit->operation;
  std::vector<std::uint32_t> columns;
  columns.reserve(edit->cells.size());
  for (const WrittenCell& cell : edit->cells) columns.push_back(cell.column);
  view_.changingRow(row, [&] {
    rows.dropEdit(row);
    if (operation == Operation::kInsert) rows.setFlags(row, RecordsetStore::kDead);
  });
  view_.changed();
  if (operation == Operation::kUpdate) cursor_.rowChanged(row, columns);
  if (operation == Operation::kDelete) cursor_.rowRevived(row);
}

void RecordsetEdit::undo(const std::vector<RowNumber>& rows) {
  if (rows.size() == 1) return undo(rows.front());
  undoAndRebuild(rows);
}

void RecordsetEdit::undoAndRebuild(const std::vector<RowNumber>& rows) {
  for (const RowNumber row : rows) {
    const RecordsetStore::Edit* edit = store().edit(row);
    if (edit == nullptr) continue;
    const bool added = edit->operation == Operation::kInsert;
    store().dropEdit(row);
    if (added) store().setFlags(row, RecordsetStore::kDead);
  }
  store().touch();
  view_.rebuild();
  cursor_.followRow();
}

void RecordsetEdit::accept(const std::vector<RowNumber>& rows) {
  for (const RowNumber row : rows) {
    const RecordsetStore::Edit* edit = store().edit(row);
    if (edit == nullptr) continue;
    if (edit->operation == Operation::kDelete) {
      view_.changingRow(row, [&] {
        store().dropEdit(row);
        store().setFlags(row, RecordsetStore::kDead);
      });
    } else {
      store().dropEdit(row);
    }
  }
  view_.changed();
}

/// Which rows an operation on many looks at: all, or those that a filter text shows.
bool RecordsetEdit::isInScope(Row row, Affect affect) const {
  const RowFilter& filter = view_.filter();
  switch (affect) {
    case Affect::kCurrent:
      return cursor_.isOn(row);
    case Affect::kGroup:
      return view_.indexOf(row) >= 0;
    case Affect::kAll:
      if (!filter.program || cursor_.isOn(row)) return true;
      // A deleted row shows no more, but it did when it was deleted.
      if ((store().flags(row) & RecordsetStore::kDeleted) != 0) {
        return filter.program->matchesBase(store(), row);
      }
      return view_.indexOf(row) >= 0;
    case Affect::kAllChapters:
      return true;
  }
  raise(errors::kInvalidArgument, kRecordsetSource, "There is no such group of rows");
}

/// Without the rows that it names there is nothing to do but to say so.
void RecordsetEdit::requireScope(Affect affect) const {
  view_.follow();
  if (affect == Affect::kCurrent) {
    cursor_.row();
  } else if (affect == Affect::kGroup) {
    if (!view_.filter().isGroup()) {
      raise(errors::kNotAllowedInContext, kRecordsetSource, "The filter is no group of rows");
    }
    if (view_.visibleRows() == 0) raiseNoCurrentRow(store());
  }
}

std::vector<RowNumber> RecordsetEdit::pendingRows(Affect affect) const {
  requireScope(affect);
  std::vector<RowNumber> rows;
  if (affect == Affect::kCurrent) {
    if (store().edit(cursor_.row()) != nullptr) rows.push_back(cursor_.row());
    return rows;
  }
  for (const auto& [row, edit] : store().edits()) {
    if (isInScope(row, affect)) rows.push_back(row);
  }
  std::sort(rows.begin(), rows.end());
  return rows;
}

std::vector<RowNumber> RecordsetEdit::storedRows(Affect affect) const {
  requireScope(affect);
  constexpr std::uint8_t kNotStored = RecordsetStore::kDead | RecordsetStore::kDraft;
  std::vector<RowNumber> rows;
  for (RowNumber row = 0; row < store().rows().rows(); ++row) {
    if (!isInScope(row, affect) || (store().flags(row) & kNotStored) != 0) continue;
    const RecordsetStore::Edit* edit = store().edit(row);
    if (edit == nullptr || edit->operation != Operation::kInsert) rows.push_back(row);
  }
  return rows;
}

EditMode RecordsetEdit::mode() const {
  const RowNumber row = cursor_.row();
  if (isOf(row)) return draft_->adding ? EditMode::kAdd : EditMode::kInProgress;
  const std::uint8_t flags = store().flags(row);
  if ((flags & RecordsetStore::kDead) != 0) raise(errors::kDeletedRow, kRecordsetSource);
  if ((flags & RecordsetStore::kDeleted) != 0) return EditMode::kDelete;
  const RecordsetStore::Edit* edit = store().edit(row);
  // There is no database that a row of a fabricated set could ever have reached.
  const bool added = store().detached && edit && edit->operation == Operation::kInsert;
  return added ? EditMode::kAdd : EditMode::kNone;
}

std::int32_t RecordsetEdit::status(RowNumber row) const {
  if (isOf(row)) return draft_->adding ? record_status::kNew : record_status::kModified;
  if ((store().flags(row) & RecordsetStore::kDead) != 0) return record_status::kDbDeleted;
  const RecordsetStore::Edit* edit = store().edit(row);
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

EventReason RecordsetEdit::undoReason(Row row) const {
  if (isOf(row)) return draft_->adding ? EventReason::kUndoAddNew : EventReason::kUndoUpdate;
  switch (store().edit(row)->operation) {
    case Operation::kInsert:
      return EventReason::kUndoAddNew;
    case Operation::kDelete:
      return EventReason::kUndoDelete;
    case Operation::kUpdate:
      break;
  }
  return EventReason::kUndoUpdate;
}

// ---- Values in pieces

void RecordsetEdit::endOtherPieces(std::size_t column) {
  const bool hasMoved = pieceMoves_ != cursor_.moves();
  if (hasMoved || appendColumn_ != column) appendColumn_ = kNoColumn;
  if (hasMoved || readColumn_ != column) readColumn_ = kNoColumn;
  inPieces_ = appendColumn_ != kNoColumn || readColumn_ != kNoColumn;
}

/// What the draft holds for a field that takes pieces; null when that is nothing to append to.
const Variant* RecordsetEdit::heldInDraft(std::size_t column) const {
  const WrittenCell* cell = draft_ ? findCell(draft_->cells, column) : nullptr;
  const bool holds = cell != nullptr && !cell->value.isNull() && !cell->value.isEmpty();
  return holds ? &cell->value : nullptr;
}

bool RecordsetEdit::isAppendingTo(std::size_t column) const {
  return appendColumn_ == column && heldInDraft(column) != nullptr;
}

void RecordsetEdit::beginAppending(std::size_t column) {
  inPieces_ = true;
  appendColumn_ = column;
  pieceMoves_ = cursor_.moves();
}

void RecordsetEdit::append(std::size_t column, const Variant& piece) {
  const Variant* held = heldInDraft(column);
  if (held == nullptr) raise(errors::kNotAllowedInContext, "Field");
  // Appended where it lies: copying the value for each piece would cost the square of its length.
  if (const auto* more = piece.getIf<Bytes>()) {
    auto& bytes = const_cast<Bytes&>(*held->getIf<Bytes>());
    bytes.insert(bytes.end(), more->begin(), more->end());
  } else if (const auto* text = piece.getIf<std::string>()) {
    const_cast<std::string&>(*held->getIf<std::string>()) += *text;
  }
}

Variant RecordsetEdit::nextPiece(std::size_t column, const Variant& value, std::size_t length) {
  if (readColumn_ != column) readAt_ = 0;
  inPieces_ = true;
  readColumn_ = column;
  pieceMoves_ = cursor_.moves();
  // The value may have become a shorter one since the last piece: there are no more then.
  if (const auto* bytes = value.getIf<Bytes>()) {
    if (readAt_ >= bytes->size()) return Null{};
    const auto first = bytes->begin() + static_cast<std::ptrdiff_t>(readAt_);
    const std::size_t count = std::min(length, bytes->size() - readAt_);
    readAt_ += count;
    return Bytes(first, first + static_cast<std::ptrdiff_t>(count));
  }
  if (const auto* whole = value.getIf<std::string>()) {
    // The place may lie within a character of another text.
    while (readAt_ < whole->size() &&
           utf8::isContinuation(static_cast<unsigned char>((*whole)[readAt_])))
      ++readAt_;
    if (readAt_ >= whole->size()) return Null{};
    const std::string_view piece = text::left(std::string_view(*whole).substr(readAt_), length);
    readAt_ += piece.size();
    return piece;
  }
  return Null{};
}

}  // namespace tavelor
