// SPDX-License-Identifier: MIT
// What is done to rows: the one in edit, and the pending changes.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "tavelor/services/recordset/constants.hpp"
#include "tavelor/services/recordset/recordset_cursor.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"
#include "tavelor/services/recordset/recordset_view.hpp"

namespace tavelor {

/// The row in edit, which this set alone sees until it is posted, and the pending changes of the
/// store, which all sets on it see. Keeps view and cursor true to both. Tells no listener, writes
/// to no database, and does not ask whether the set is open.
class RecordsetEdit {
 public:
  using Row = RecordsetStore::Row;
  /// A row in edit.
  struct Draft {
    Row row = 0;
    bool adding = false;
    std::vector<WrittenCell> cells;
    RecordsetCursor::Position before;  ///< where the cursor was when the row was added
  };

  RecordsetEdit(RecordsetView& view, RecordsetCursor& cursor) : view_(view), cursor_(cursor) {}

  // ---- The row in edit

  bool isActive() const { return draft_.has_value(); }
  bool isAdding() const { return draft_ && draft_->adding; }
  bool isOf(Row row) const { return draft_ && draft_->row == row; }
  const Draft& draft() const { return *draft_; }

  /// With what is in edit and what is pending.
  Variant value(Row row, std::size_t column) const;
  /// Writes a field of the current row, which is in edit then.
  void put(std::size_t column, Variant value);
  /// A new row, current and in edit.
  void add();
  /// Makes what is in edit a pending change. Raises -2147217885 when a clone has deleted the row,
  /// which stays in edit.
  void post();
  /// Undoes post(): what the draft became is in edit again.
  void reopen(Draft draft);
  /// Forgets what is in edit. A row that was being added goes away, and the one before is current.
  void drop();
  /// The same where nobody looks at the view any more.
  void abandon() noexcept;

  // ---- Pending changes

  /// Marks a row as deleted. One that the database never had goes away at once.
  void remove(Row row);
  /// Drops the pending change of a row.
  void undo(Row row);
  void undo(const std::vector<Row>& rows);
  /// The same, and builds the view anew: for many rows, or for rows whose base values have changed.
  void undoAndRebuild(const std::vector<Row>& rows);
  /// The base rows hold the changes of these rows now.
  void accept(const std::vector<Row>& rows);

  /// Rows with a pending change, ascending, of the current row, of a filter that is no text, or of
  /// all that a filter text shows. Raises 3219 and 3021 for a group that there is not, 3001 for
  /// another number.
  std::vector<Row> pendingRows(Affect affect) const;
  /// The same of all rows that the database had when they were read, changed or not.
  std::vector<Row> storedRows(Affect affect) const;

  /// Of the current row.
  EditMode mode() const;
  /// Bits of record_status.
  std::int32_t status(Row row) const;
  /// Why an undo of a row that is in edit or has a change comes about.
  EventReason undoReason(Row row) const;

  // ---- Values in pieces

  /// Using another field, or another row, ends a run of pieces.
  void touch(std::size_t column) {
    if (inPieces_) endOtherPieces(column);
  }
  /// Whether the field was written by the last piece and has not become something else.
  bool isAppendingTo(std::size_t column) const;
  void beginAppending(std::size_t column);
  /// `piece` is of the column's type. Raises 3219 when a listener has written the field meanwhile.
  void append(std::size_t column, const Variant& piece);
  /// The next characters or bytes of `value`, the field's; Null behind the last.
  Variant nextPiece(std::size_t column, const Variant& value, std::size_t length);

 private:
  static constexpr std::size_t kNoColumn = static_cast<std::size_t>(-1);

  RecordsetStore& store() const { return view_.store(); }
  bool isInScope(Row row, Affect affect) const;
  void requireScope(Affect affect) const;
  const Variant* heldInDraft(std::size_t column) const;
  void endOtherPieces(std::size_t column);

  RecordsetView& view_;
  RecordsetCursor& cursor_;
  std::optional<Draft> draft_;
  bool inPieces_ = false;
  std::size_t appendColumn_ = kNoColumn;  // that the next piece is appended to
  std::size_t readColumn_ = kNoColumn;    // that the next piece is read from
  std::size_t readAt_ = 0;
  std::uint64_t pieceMoves_ = 0;  // of the cursor, when the last piece was written or read
};

}  // namespace tavelor
