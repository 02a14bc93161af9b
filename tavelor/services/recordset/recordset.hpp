// SPDX-License-Identifier: MIT
// The record set: a static, client-side cursor whose changes are written in batches.
#pragma once

#include <cstddef>
#include <cstdint>
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

namespace tavelor {

class Recordset;
class RecordsetStore;
struct RecordsetSchema;
struct SortKey;
using RecordsetPtr = std::shared_ptr<Recordset>;

namespace criteria {
class Program;
}

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
  tavelor::LockType LockType() const { return lockType_; }
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
  /// Goes to the next row that fits `field operator value`, beginning at the current row itself
  /// (or at `start`), `skipRows` away from it. Without one the set stands at EOF, or at BOF when
  /// searching backward. Raises 3021 without a current row, 3001 for a text that is no single
  /// comparison, 3265 for an unknown field.
  void Find(std::string_view criteria, std::int32_t skipRows = 0,
            SearchDirection direction = SearchDirection::kForward, const Variant& start = {});

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

 private:
  friend class Connection;
  friend class tavelor::Field;
  friend class tavelor::Fields;
  friend class BatchWriter;
  friend class RowReader;
  friend class XmlWriter;

  using Row = std::uint32_t;
  enum class Place : std::uint8_t { kRow, kBof, kEof, kNowhere };
  enum class Told : std::uint8_t { kMove, kField, kRecord, kRecordset };
  /// What is told to the listeners around a piece of work.
  struct Notice {
    Told told;
    EventReason reason;
    bool deniable = true;
    std::int32_t records = 1;
    std::size_t column = 0;
  };
  struct Listener {
    RecordsetEvents* events;
    std::uint16_t unwanted;  // bits of the events that it wants no more
  };
  struct Draft;   // the row in edit, seen by this set only until it is posted
  struct Fabric;  // fields appended before Open()
  struct Cursor {
    std::int64_t at = 0;  // index in the view
    Row row = 0;
    Place place = Place::kNowhere;
    bool left = false;  // the row is not in the view any more; `at` is the row behind it
  };

  // recordset.cpp
  RecordsetStore& opened() const;
  const RecordsetSchema& schema() const;
  void requireSame(const std::shared_ptr<RecordsetStore>& store) const;
  void attach(std::shared_ptr<RecordsetStore> store);
  void leaveStore() noexcept;
  void join(const ConnectionPtr& connection);
  void leaveConnection() noexcept;
  void detach() noexcept;
  static std::shared_ptr<RecordsetStore> fetch(const Statement& statement, const Connection& over,
                                               std::size_t most);
  void refetch();

  // recordset_view.cpp
  void resetView() noexcept;
  bool selects() const;
  bool showsDeleted() const;
  std::int64_t extent() const;
  Row rowAt(std::int64_t index) const;
  bool visible(Row row) const;
  std::int64_t nextVisible(std::int64_t index, int step) const;
  void recount() const;
  void follow() const;
  void changedByMe();
  void list() const;
  void compact() const;
  void rebuildView();
  void listRows();
  std::int64_t indexOf(Row row) const;
  void insertRow(Row row);
  void removeAt(std::int64_t index);
  void replaceInView(Row row, const std::vector<std::uint32_t>& columns);
  void view(std::string_view criteria, FilterGroup group, const std::vector<Variant>* bookmarks);

  // recordset_moves.cpp
  Row current() const;
  Row readable() const;
  void standAt(std::int64_t index);
  void standOnFirst();
  void requireMovable(int direction) const;
  void step(int direction);
  void stepPastEnd();
  std::int64_t ordinal() const;
  Row rowOfBookmark(const Variant& bookmark) const;
  std::int64_t startingIndex(const Variant& start, int direction) const;
  void leaveRow();
  template <typename Work>
  void moving(EventReason reason, Work&& work, bool deniable = true);

  // recordset_edit.cpp
  void requireWritable() const;
  void requireStill(Row row) const;
  Variant valueOf(std::size_t column) const;
  Variant originalOf(std::size_t column) const;
  void assign(std::size_t column, const Variant& value);
  void put(std::size_t column, Variant value);
  void post();
  void postAtOnce();
  void mergeDraft();
  void takeBackDraft(std::unique_ptr<Draft> draft);
  void addDraft();
  void dropDraft();
  std::vector<std::size_t> columnsOf(const std::vector<Variant>& fields,
                                     const std::vector<Variant>& values);
  void deleteRow(Row row);
  bool inScope(Row row, Affect affect) const;
  std::vector<Row> pendingRows(Affect affect) const;
  EventReason undoReason(Row row) const;
  void undo(Row row);
  void undoAll(const std::vector<Row>& rows);
  const Variant* heldInDraft(std::size_t column) const;
  void appendChunk(std::size_t column, const Variant& data);
  Variant getChunk(std::size_t column, std::int32_t length);
  void touchField(std::size_t column);

  // recordset_batch.cpp
  void write(const std::vector<Row>& rows);
  void acceptWritten(const std::vector<Row>& rows);

  // recordset_events.cpp
  static bool toldToClones(Told told);
  bool listens(const RecordsetEvents* listener) const;
  bool heard(Told told) const;
  template <typename Work>
  void announced(const Notice& notice, Work&& work);
  void tellWill(const Notice& notice);
  void tellComplete(const Notice& notice, const Error* error);
  void deliver(const Notice& notice, bool complete, const Error* error, EventStatus& status);
  static void call(const Notice& notice, bool complete, const Error* error, EventStatus& status,
                   RecordsetEvents& events, Recordset& set);
  bool tellEnd();

  static constexpr std::size_t kNoColumn = static_cast<std::size_t>(-1);

  std::shared_ptr<RecordsetStore> store_;  // null when closed
  ConnectionPtr connection_;
  Recordset* nextOnStore_ = nullptr;       // the sets that share the store, linked
  Recordset* nextOnConnection_ = nullptr;  // the sets that are open over the connection, linked
  std::unique_ptr<Fabric> fabric_;

  // The view. Without a filter and an order it is the rows as stored, and nothing is listed.
  mutable std::vector<Row> view_;
  mutable std::vector<std::int32_t> places_;  // row -> index in view_, made when asked for
  mutable bool listed_ = false;
  mutable std::uint64_t stamp_ = 0;  // of the store, as far as the view has followed it
  mutable std::size_t seen_ = 0;     // rows of the store that the view has taken in
  mutable std::int64_t live_ = 0;    // rows of the view that are visible
  mutable Cursor cursor_;
  std::unique_ptr<criteria::Program> criteria_;
  std::string filter_;
  std::vector<Row> bookmarks_;
  FilterGroup group_ = FilterGroup::kNone;
  bool byBookmarks_ = false;
  std::string sort_;
  std::vector<SortKey> order_;
  std::vector<Row> affected_;
  std::vector<Row> conflicting_;

  std::unique_ptr<Draft> draft_;
  std::size_t appendColumn_ = kNoColumn;  // that AppendChunk goes on with
  std::size_t readColumn_ = kNoColumn;    // that GetChunk goes on with
  std::size_t readAt_ = 0;
  tavelor::LockType lockType_ = tavelor::LockType::kBatchOptimistic;

  std::vector<Listener> listeners_;
  int changing_ = 0;  // depth of WillChangeRecord
};

}  // namespace tavelor
