// SPDX-License-Identifier: MIT
// The work of a record set that takes several of its parts.
#include "tavelor/services/recordset/recordset_parts.hpp"

#include <algorithm>
#include <iterator>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/batch_writer.hpp"
#include "tavelor/services/recordset/row_notes.hpp"
#include "tavelor/services/recordset/row_refresher.hpp"

namespace tavelor {

// ---- Open and close

RecordsetParts::~RecordsetParts() {
  if (store) edit.abandon();
  leaveConnection();
}

void RecordsetParts::raiseClosed() {
  raise(errors::kObjectClosed, kRecordsetSource);
}

const RecordsetSchema& RecordsetParts::schema() const {
  if (store) return store->schema();
  if (appended) return appended->schema;
  raiseClosed();
}

void RecordsetParts::open(const Statement& statement, const ConnectionPtr& over) {
  if (!over) raise(errors::kInvalidConnection, kRecordsetSource);
  open(over->fetch(statement, engine::Prepared::kAllRows));
  appended.reset();
  connect(over);
}

void RecordsetParts::open(std::shared_ptr<RecordsetStore> rows) {
  joinStore(std::move(rows));
  view.open(*store);
}

void RecordsetParts::joinStore(std::shared_ptr<RecordsetStore> rows) {
  store = std::move(rows);
  ++openings_;
  listeners.join();
}

void RecordsetParts::leaveStore() noexcept {
  if (!store) return;
  // A row being added was seen by this set only and goes with it.
  edit.abandon();
  listeners.leave();
  cursor.reset();
  view.close();
  store.reset();
}

void RecordsetParts::close() noexcept {
  leaveStore();
  leaveConnection();
  appended.reset();
}

void RecordsetParts::connect(const ConnectionPtr& to) {
  leaveConnection();
  if (!to) return;
  connection = to;
  nextOnConnection = to->firstRecordset_;
  to->firstRecordset_ = this;
}

void RecordsetParts::leaveConnection() noexcept {
  if (!connection) return;
  RecordsetParts** link = &connection->firstRecordset_;
  while (*link != this) link = &(*link)->nextOnConnection;
  *link = nextOnConnection;
  nextOnConnection = nullptr;
  connection.reset();
}

engine::Session& RecordsetParts::sessionOf(const Connection& connection) {
  return connection.lease().session();
}

Connection& RecordsetParts::openConnection() const {
  if (!connection || connection->State() == ObjectState::kClosed) {
    raise(errors::kInvalidConnection, kRecordsetSource);
  }
  return *connection;
}

void RecordsetParts::refetch() {
  if (!store || !connection) raise(errors::kNotAllowedInContext, kRecordsetSource);
  std::shared_ptr<RecordsetStore> fresh =
      connection->fetch(store->statement, engine::Prepared::kAllRows);
  // The schema may have changed meanwhile: filter and order are read again before the old rows go.
  RowFilter filter;
  if (view.filter().program) {
    filter.text = view.filter().text;
    filter.program = criteria::parse(filter.text, fresh->schema(), fresh->locale());
  }
  RowOrder order{view.order().text, parseOrder(view.order().text, fresh->schema())};
  leaveStore();
  joinStore(std::move(fresh));
  view.open(*store, std::move(filter), std::move(order));
  standOnFirst();
}

// ---- After listeners were told

void RecordsetParts::requireSame(const std::shared_ptr<RecordsetStore>& before) const {
  if (store != before) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "A listener closed the set");
  }
}

void RecordsetParts::requireStillOn(Row row) const {
  if (!store || !cursor.isOn(row)) {
    raise(errors::kNotAllowedInContext, kRecordsetSource, "A listener took the row away");
  }
}

// ---- Moving

void RecordsetParts::requireMovable(int direction) {
  opened();
  view.follow();
  cursor.requireMovable(direction);
}

void RecordsetParts::leaveRow() {
  if (!edit.isActive()) return;
  post();
  opened();
}

void RecordsetParts::standOnFirst() {
  opened();
  view.follow();
  cursor.standOnFirst();
}

void RecordsetParts::step(int direction) {
  requireMovable(direction);
  const std::int64_t to = cursor.next(direction);
  const std::int64_t end = view.extent();
  if (to != end) return cursor.standAt(to);
  // Listeners may append rows at the last moment; the move goes to the first of them then.
  const bool moreRows = listeners.haveMoreRows();
  opened();
  view.follow();
  leaveRow();
  cursor.standAt(moreRows ? view.nextVisible(end, 1) : view.extent());
}

// ---- Changes

void RecordsetParts::requireWritable() const {
  opened();
  if (lockType == LockType::kReadOnly) {
    raise(errors::kNotSupported, kRecordsetSource, "The record set is read-only");
  }
}

void RecordsetParts::assign(std::size_t column, const Variant& value) {
  requireWritable();
  const Row row = cursor.readableRow();
  Variant typed = coerce(value, store->columns()[column], store->locale());
  const auto change = [&] {
    listeners.around({.kind = EventKind::kField, .reason = EventReason::kUpdate, .column = column},
                     [&] {
                       requireStillOn(row);
                       cursor.readableRow();
                       edit.put(column, std::move(typed));
                     });
  };
  if (edit.isActive()) return change();
  listeners.around({.kind = EventKind::kRecord, .reason = EventReason::kFirstChange}, change);
}

void RecordsetParts::appendChunk(std::size_t column, const Variant& data) {
  edit.touch(column);
  if (!edit.isAppendingTo(column)) {
    assign(column, data);
    edit.beginAppending(column);
    return;
  }
  const Variant piece = coerce(data, store->columns()[column], store->locale());
  const Row row = readableRow();
  listeners.around({.kind = EventKind::kField, .reason = EventReason::kUpdate, .column = column},
                   [&] {
                     requireStillOn(row);
                     // A listener may have written something else into the field.
                     edit.append(column, piece);
                   });
}

Variant RecordsetParts::getChunk(std::size_t column, std::size_t length) {
  edit.touch(column);
  return edit.nextPiece(column, edit.value(readableRow(), column), length);
}

void RecordsetParts::post() {
  const Row row = edit.draft().row;
  listeners.around({.kind = EventKind::kRecord, .reason = EventReason::kUpdate}, [&] {
    opened();
    // A listener that posted the row itself left nothing to do.
    if (!edit.isOf(row)) return;
    if (writesAtOnce()) {
      postAndWrite();
    } else {
      edit.post();
    }
  });
}

void RecordsetParts::postAndWrite() {
  RecordsetEdit::Draft kept = edit.draft();
  const Row row = kept.row;
  edit.post();
  try {
    write({row});
  } catch (...) {
    edit.reopen(std::move(kept));
    throw;
  }
}

void RecordsetParts::write(const std::vector<Row>& rows) {
  view.follow();
  view.affected(rows);
  view.conflicting({});
  if (store->detached && !connection) {
    for (const Row row : rows) {
      const RecordsetStore::Edit* change = store->edit(row);
      if (change == nullptr) continue;
      for (const WrittenCell& cell : change->cells) store->setBase(row, cell.column, cell.value);
    }
    return edit.accept(rows);
  }
  BatchWriter writer(*store, openConnection());
  try {
    writer.run(rows);
  } catch (...) {
    view.conflicting(writer.conflicts());
    throw;
  }
  writer.accept();
  edit.accept(writer.written());
  view.conflicting(writer.conflicts());
  if (!writer.conflicts().empty()) {
    raiseNotLocated(*store, writer.conflicts(), "Rows not written", rows.size());
  }
}

void RecordsetParts::resync(const std::vector<Row>& rows, ResyncValues values) {
  RowRefresher refresher(*store, openConnection());
  refresher.read(rows);
  view.follow();
  const std::vector<Row>& missing = refresher.missing();
  if (values == ResyncValues::kUnderlying) {
    refresher.acceptAsUnderlying();
    std::vector<Row> both;
    const std::vector<Row>& before = view.conflicting();
    std::set_union(before.begin(), before.end(), missing.begin(), missing.end(),
                   std::back_inserter(both));
    view.conflicting(both);
  } else {
    const std::vector<Row>& found = refresher.found();
    if (edit.isActive() && !edit.isAdding() &&
        std::binary_search(found.begin(), found.end(), edit.draft().row)) {
      edit.drop();
    }
    refresher.acceptAsBase();
    view.conflicting(missing);
    edit.undoAndRebuild(found);
  }
  for (const Row row : missing) {
    if (RecordsetStore::Edit* change = store->edit(row)) {
      change->failure = record_status::kConcurrencyViolation;
    }
  }
  if (!missing.empty()) {
    raiseNotLocated(*store, missing, "Rows not there any more", rows.size());
  }
}

}  // namespace tavelor
