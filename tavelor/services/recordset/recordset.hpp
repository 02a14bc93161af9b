// SPDX-License-Identifier: MIT
// The record set: a static, client-side cursor whose changes are written in batches.
#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/constants.hpp"
#include "tavelor/services/recordset/events.hpp"
#include "tavelor/services/recordset/field.hpp"
#include "tavelor/services/recordset/row.hpp"

namespace tavelor {

class Recordset;
class RecordsetParts;
using RecordsetPtr = std::shared_ptr<Recordset>;

/// The rows of a statement, fetched whole, with a cursor on them. Changes stay here until
/// UpdateBatch writes them. A clone shares rows and changes and has its own cursor, filter and
/// order.
///
/// Errors of nearly all members: 3704 when closed; those that need a row raise 3021 without one.
/// Used by one thread.
class TAVELOR_API Recordset final : public Object, public std::enable_shared_from_this<Recordset> {
 public:
  /// Unopened.
  Recordset();
  ~Recordset() override;
  Recordset(const Recordset&) = delete;
  Recordset& operator=(const Recordset&) = delete;

  std::string typeName() const override { return "Recordset"; }

  // ---- Open and close

  /// Runs a SELECT and fetches all its rows; the cursor stands on the first one. Raises 3705 when
  /// open, 3709 for no or a closed connection, and what the dialect or the engine raises; the set
  /// is closed then.
  void Open(const Statement& statement, const ConnectionPtr& connection);
  /// Opens a set without a database from its appended fields. Raises 3705 when open, 3709 when it
  /// has no fields.
  void Open();
  /// Pending changes are lost. Raises 3704 when closed.
  void Close();
  /// Open or closed.
  ObjectState State() const;
  /// Runs the statement again; filter and order stay, the cursor goes to the first row, pending
  /// changes are lost, bookmarks lose their meaning, clones keep the old rows. Raises 3219 while a
  /// row is in edit, 3709 without a connection. After an error the old rows are still there.
  void Requery(std::int32_t options = -1);
  /// Another cursor on the same rows, on the first one, without filter and order. kReadOnly makes
  /// one that refuses changes. Raises 3001 for another lock type.
  RecordsetPtr Clone(tavelor::LockType lockType = tavelor::LockType::kUnspecified);

  /// Null for a set without one.
  ConnectionPtr ActiveConnection() const;
  /// Null disconnects: rows and pending changes stay. UpdateBatch wants a connection again.
  void ActiveConnection(const ConnectionPtr& connection);
  /// The text of the statement, "" for a set without one.
  std::string Source() const;
  /// Always that of the client.
  tavelor::CursorLocation CursorLocation() const { return tavelor::CursorLocation::kClient; }
  /// Always static.
  tavelor::CursorType CursorType() const { return tavelor::CursorType::kStatic; }
  /// When changes are written.
  tavelor::LockType LockType() const;
  /// kBatchOptimistic at first. With kOptimistic each Update and Delete is written at once, one row
  /// at a time. Raises 3705 when open, 3001 for another type.
  void LockType(tavelor::LockType lockType);

  /// The columns.
  tavelor::Fields Fields() { return tavelor::Fields(*this); }
  /// A column by its position, from 0. Raises 3265 out of range.
  tavelor::Field Field(std::int32_t position) { return Fields().Item(position); }
  /// A column by its name. Raises 3265, naming the nearest one.
  template <typename Text>
  requires std::convertible_to<const Text&, std::string_view> tavelor::Field Field(
      const Text& name) {
    return Fields().Item(name);
  }

  // ---- Position. Leaving a row that is in edit posts it first, as Update does.

  /// Whether the cursor is before the first row.
  bool Bof() const;
  /// Whether the cursor is behind the last row.
  bool Eof() const;
  /// Rows of the view (filter applied, deleted rows left out).
  std::int32_t RecordCount() const;
  /// Raises 3021 without rows.
  void MoveFirst();
  /// Raises 3021 without rows.
  void MoveLast();
  /// Past the last row it stops on EOF; once more raises 3021.
  void MoveNext();
  /// Before the first row it stops on BOF; once more raises 3021.
  void MovePrevious();
  /// `start` is a bookmark or one of the numbers of bookmark::; too far stops on BOF or EOF.
  void Move(std::int32_t rows, const Variant& start = {});
  /// From 1 in the view, or one of position::.
  std::int32_t AbsolutePosition() const;
  /// Raises 3001 out of range.
  void AbsolutePosition(std::int32_t value);
  /// A number that names the row whatever the filter and order, in clones too.
  Variant Bookmark() const;
  /// Raises 3001 for what is no bookmark of a row of the view.
  void Bookmark(const Variant& value);
  /// By the order of the rows as fetched. Raises 3001 for what is no bookmark.
  CompareResult CompareBookmarks(const Variant& first, const Variant& second) const;
  /// Rows of a page, 10 at first.
  std::int32_t PageSize() const;
  /// Raises 3001 for less than 1.
  void PageSize(std::int32_t rows);
  /// Pages of the view; the last one may be short.
  std::int32_t PageCount() const;
  /// The page of the current row, from 1, or one of position::.
  std::int32_t AbsolutePage() const;
  /// To the first row of a page. Raises 3001 out of range.
  void AbsolutePage(std::int32_t page);
  /// Goes to the next row that fits `field operator value`, beginning at the current row itself
  /// (or at `start`), `skipRows` away from it. Without one the set stands at EOF, or at BOF when
  /// searching backward. Raises 3021 without a current row, 3001 for a text that is no single
  /// comparison, 3265 for an unknown field.
  void Find(std::string_view criteria, std::int32_t skipRows = 0,
            SearchDirection direction = SearchDirection::kForward, const Variant& start = {});

  // ---- Rows

  /// For `for (const Row row : set)`: the rows that the set shows, in its order. Leaves the cursor
  /// where it is; RowIterator tells what may be done meanwhile.
  RowIterator begin() const { return RowIterator(*this); }
  /// Behind the last row.
  static std::default_sentinel_t end() { return {}; }
  /// The current row, to be read by columns and types. Raises 3021 without one.
  Row CurrentRow() const;
  /// The values of `rows` rows, -1 for all that are left, from the current one or `start` on, a
  /// list of rows for each field, and for all fields or those given by name or position. Then the
  /// row behind them is current, or EOF. At EOF there are no rows, which is no error.
  std::vector<std::vector<Variant>> GetRows(std::int32_t rows = -1, const Variant& start = {},
                                            const std::vector<Variant>& fields = {});

  // ---- For grids, which read rows by where they stand. The cursor stays, nobody is told.

  /// The row that a bookmark names, whether it shows or not. Raises 3001 for what is no bookmark.
  Row rowOf(const Variant& bookmark) const;
  /// The rows that the set shows, in its order, each by the number that is its bookmark.
  std::vector<std::uint32_t> shownRows() const;
  /// Another number whenever shownRows() may have become another list.
  std::uint64_t shownRowsStamp() const;

  // ---- View

  /// The criteria text, or "".
  const std::string& Filter() const;
  /// `field operator value` joined by AND, OR and parentheses; "" clears. The cursor goes to the
  /// first row. Raises 3001 with the place for a text that does not read, 3265 for an unknown
  /// field, -2147217913 when value and field can't be compared; the old filter stays.
  void Filter(std::string_view criteria);
  /// Shows the rows of a state. Raises 3001 for another number.
  void Filter(FilterGroup group);
  /// Shows these rows.
  void Filter(const std::vector<Variant>& bookmarks);
  /// kNone too when the filter is a text or a list of bookmarks.
  FilterGroup CurrentFilterGroup() const;
  /// The order, "" for that of the statement.
  const std::string& Sort() const;
  /// "field [ASC|DESC], ...": by number, date, or character code of text; Null first, last in DESC;
  /// equal rows keep their order; "" is the order of the statement. The cursor goes to the first
  /// row. A field named again decides nothing. Raises 3265 for an unknown field, 3001 for other
  /// words; the old order stays.
  void Sort(std::string_view order);

  // ---- Edit

  /// Adds a row and makes it current. A row in edit is posted first.
  void AddNew();
  /// Adds and posts a row. Names or positions and as many values. After an error no row is added,
  /// whether a value is refused or, where rows are written at once, the row.
  void AddNew(const std::vector<Variant>& fields, const std::vector<Variant>& values);
  /// Posts the row in edit to the pending changes; nothing without one. Where rows are written at
  /// once, an error leaves the row in edit: mend it and post again, or CancelUpdate.
  void Update();
  /// Writes the fields first, by name or position.
  void Update(const std::vector<Variant>& fields, const std::vector<Variant>& values);
  /// Takes the current row back: what is in edit; without that, the row's pending changes, an added
  /// row going away. Nothing to take back is no error.
  void CancelUpdate();
  /// Marks rows deleted: the current one, or with kGroup those of a filter that is no text. The
  /// current one stays current until a move. Raises 3001 for another number.
  void Delete(Affect affect = Affect::kCurrent);
  /// Writes pending changes: an UPDATE of the changed columns only that finds the row by its key
  /// and by the original values of these columns, a DELETE by key, an INSERT of the assigned
  /// columns, whose stored values (defaults, automatic numbers) come back into the row. Several
  /// rows are one transaction unless the connection is in one already.
  ///
  /// Over a join, rows are added to and deleted from one table: the one of whose rows each stands
  /// once in the result, every other table being looked up by its key. An UPDATE goes to the table
  /// of each changed column, if that table's key is among the columns; a row is written to all of
  /// them or to none. What was looked up is read anew by Requery only.
  ///
  /// Errors: -2147217864 when a row was changed or deleted by somebody else: the other rows are
  /// written, that one stays pending and shows under FilterGroup::kConflicting. -2147467259 for a
  /// set that has no table to write to or a new row without a value, -2147217887 for a changed
  /// column that is computed, or of a table that cannot be written to, and whatever the engine
  /// raises: then no row of this call is written,
  /// all stay pending, the row shows under kConflicting and its Status() says why. 3709 without a
  /// connection; a set that never had one takes its changes as written. Rows written inside a
  /// transaction of the caller count as written even if the caller rolls back later.
  void UpdateBatch(Affect affect = Affect::kAll);
  /// Drops pending changes. The cursor may stand nowhere afterwards: move.
  void CancelBatch(Affect affect = Affect::kAll);
  /// Reads rows again by their keys, each table's for itself: no new rows come, and no other ones
  /// are looked up. kAll takes what is read as the rows' values and drops pending changes and what
  /// is in edit; kUnderlying keeps all that, and lets Field::UnderlyingValue tell what others have
  /// written, which the next UpdateBatch then writes over. Rows added and not written are passed
  /// over, computed columns and those of tables whose key is not among the columns stay as they
  /// were.
  ///
  /// Errors: -2147217864 when rows are not there any more: the others are read, those show under
  /// FilterGroup::kConflicting with their changes pending. 3251 for a set whose rows cannot be
  /// found by a key, or a read-only one, 3709 without a connection, 3219 and 3021 for a group that
  /// there is not, and what the engine raises: nothing has changed then.
  void Resync(Affect affect = Affect::kAll, ResyncValues values = ResyncValues::kAll);
  /// Whether the set can do all of these bits of cursor_option.
  bool Supports(std::int32_t options) const;
  /// What is being done to the current row.
  tavelor::EditMode EditMode() const;
  /// Bits of record_status for the current row.
  std::int32_t Status() const;
  /// Whether a row is in edit here, or any row, also of a clone, has changes that are not written.
  bool hasUnwrittenChanges() const;

  // ---- Persistence

  /// Writes rows (those of a filter text), fields and pending changes as XML, first to a temporary
  /// file beside it: after an error the old file is as it was. The cursor goes to the first row.
  void Save(const std::string& path);
  /// What Save writes, as text.
  std::string SaveXml();
  /// Opens a set from what Save wrote. Raises 53 for a missing file, 75 for one that cannot be
  /// read, 3001 with the place for a text that is no record set. `locale`: by which later
  /// assignments read texts; null is Spanish.
  static RecordsetPtr OpenFile(const std::string& path,
                               const std::shared_ptr<const Locale>& locale = {});
  /// Opens a set from what SaveXml gave; errors as OpenFile.
  static RecordsetPtr LoadXml(std::string_view xml,
                              const std::shared_ptr<const Locale>& locale = {});

  // ---- Listeners

  /// The listener must outlive the set or be removed.
  void addListener(RecordsetEvents* listener);
  /// One that was never added is passed over.
  void removeListener(RecordsetEvents* listener);

  /// Bytes held by rows and changes.
  std::size_t memory() const;

  /// What the set is made of, for the record set's own files: no public header tells the type.
  RecordsetParts& parts() const { return *parts_; }

 private:
  std::unique_ptr<RecordsetParts> parts_;
};

/// The rows of a set, as those of *rows. There must be a set.
inline RowIterator begin(const RecordsetPtr& rows) {
  return rows->begin();
}
/// Behind the last row.
inline std::default_sentinel_t end(const RecordsetPtr& /*rows*/) {
  return {};
}

}  // namespace tavelor
