// SPDX-License-Identifier: MIT
// The record set's positions, filter and order.
#include <algorithm>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/criteria.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
#include "tavelor/services/recordset/row_notes.hpp"

namespace tavelor {

using Place = RecordsetCursor::Place;
// ---- Where the cursor is

bool Recordset::Bof() const {
  parts_->opened();
  const Place place = parts_->cursor.position().place;
  return place == Place::kBof || place == Place::kNowhere;
}

bool Recordset::Eof() const {
  parts_->opened();
  const Place place = parts_->cursor.position().place;
  return place == Place::kEof || place == Place::kNowhere;
}

std::int32_t Recordset::AbsolutePosition() const {
  parts_->opened();
  return parts_->cursor.absolutePosition();
}

std::int32_t Recordset::RecordCount() const {
  parts_->opened();
  parts_->view.follow();
  return static_cast<std::int32_t>(parts_->view.visibleRows());
}

Variant Recordset::Bookmark() const {
  return static_cast<double>(parts_->currentRow()) + 1.0;
}

CompareResult Recordset::CompareBookmarks(const Variant& first, const Variant& second) const {
  parts_->opened();
  const RowNumber a = parts_->view.rowOfBookmark(first);
  const RowNumber b = parts_->view.rowOfBookmark(second);
  if (a == b) return CompareResult::kEqual;
  return a < b ? CompareResult::kLessThan : CompareResult::kGreaterThan;
}

// ---- Moves

void Recordset::MoveFirst() {
  parts_->leaveRow();
  parts_->requireMovable(0);
  parts_->moving(EventReason::kMoveFirst, [&] {
    parts_->requireMovable(0);
    parts_->cursor.standOnFirst();
  });
}

void Recordset::MoveLast() {
  parts_->leaveRow();
  parts_->requireMovable(0);
  parts_->moving(EventReason::kMoveLast, [&] {
    parts_->requireMovable(0);
    parts_->cursor.standOnLast();
  });
}

void Recordset::MoveNext() {
  parts_->leaveRow();
  parts_->requireMovable(1);
  parts_->moving(EventReason::kMoveNext, [&] { parts_->step(1); });
}

void Recordset::MovePrevious() {
  parts_->leaveRow();
  parts_->requireMovable(-1);
  parts_->moving(EventReason::kMovePrevious, [&] { parts_->step(-1); });
}

void Recordset::Move(std::int32_t rows, const Variant& start) {
  parts_->leaveRow();
  const int direction = rows > 0 ? 1 : (rows < 0 ? -1 : 0);
  if (start.isEmpty()) {
    parts_->requireMovable(direction);
    if (direction == 0) parts_->currentRow();
  }
  parts_->moving(EventReason::kMove, [&] {
    parts_->opened();
    const std::int64_t from = parts_->cursor.startingIndex(start, direction);
    if (rows == 0 && start.isEmpty()) return;
    parts_->cursor.standAt(std::clamp<std::int64_t>(from + rows, -1, parts_->view.extent()));
  });
}

void Recordset::AbsolutePosition(std::int32_t value) {
  parts_->opened();
  parts_->leaveRow();
  const auto require = [&] {
    parts_->opened();
    parts_->cursor.removeHoles();
    if (value < 1 || value > parts_->view.visibleRows()) {
      raise(errors::kInvalidArgument, kRecordsetSource, "There is no row at that position");
    }
  };
  require();
  parts_->moving(EventReason::kMove, [&] {
    require();
    parts_->cursor.standAt(value - 1);
  });
}

void Recordset::Bookmark(const Variant& value) {
  parts_->opened();
  parts_->leaveRow();
  const auto find = [&] {
    parts_->opened();
    const RowNumber row = parts_->view.rowOfBookmark(value);
    parts_->view.follow();
    const std::int64_t index = parts_->view.indexOf(row);
    if (index < 0 || !parts_->view.isVisible(row)) {
      raise(errors::kInvalidArgument, kRecordsetSource, "The bookmark's row is not in the view");
    }
    return index;
  };
  find();
  parts_->moving(EventReason::kMove, [&] { parts_->cursor.standAt(find()); });
}

// ---- Pages

std::int32_t Recordset::PageSize() const {
  return parts_->pageSize;
}

void Recordset::PageSize(std::int32_t rows) {
  if (rows < 1) raise(errors::kInvalidArgument, kRecordsetSource, "A page has a row at least");
  parts_->pageSize = rows;
}

std::int32_t Recordset::PageCount() const {
  const std::int32_t rows = RecordCount();
  return rows / parts_->pageSize + (rows % parts_->pageSize != 0 ? 1 : 0);
}

std::int32_t Recordset::AbsolutePage() const {
  const std::int32_t position = AbsolutePosition();
  return position < 1 ? position : (position - 1) / parts_->pageSize + 1;
}

void Recordset::AbsolutePage(std::int32_t page) {
  if (page < 1 || page > PageCount()) {
    raise(errors::kInvalidArgument, kRecordsetSource, "There is no such page");
  }
  AbsolutePosition((page - 1) * parts_->pageSize + 1);
}

// ---- Rows

Row Recordset::CurrentRow() const {
  return {*parts_, parts_->currentRow(), parts_->openings()};
}

Row Recordset::rowOf(const Variant& bookmark) const {
  parts_->opened();
  return {*parts_, parts_->view.rowOfBookmark(bookmark), parts_->openings()};
}

std::vector<std::uint32_t> Recordset::shownRows() const {
  parts_->opened();
  RecordsetView& view = parts_->view;
  view.follow();
  std::vector<std::uint32_t> shown;
  shown.reserve(static_cast<std::size_t>(view.visibleRows()));
  const std::int64_t end = view.extent();
  for (std::int64_t i = view.nextVisible(0, 1); i < end; i = view.nextVisible(i + 1, 1)) {
    shown.push_back(view.rowAt(i) + 1);
  }
  return shown;
}

std::uint64_t Recordset::shownRowsStamp() const {
  parts_->opened();
  parts_->view.follow();
  return parts_->view.changes();
}

std::vector<std::vector<Variant>> Recordset::GetRows(std::int32_t rows, const Variant& start,
                                                     const std::vector<Variant>& fields) {
  parts_->opened();
  if (rows < -1) raise(errors::kInvalidArgument, kRecordsetSource, "There are no such rows");
  std::vector<tavelor::Field> columns;
  for (const Variant& field : fields) columns.push_back(Fields().Item(field));
  if (fields.empty()) {
    for (std::int32_t i = 0; i < Fields().Count(); ++i) columns.push_back(Field(i));
  }
  std::vector<std::vector<Variant>> values(columns.size());
  if (!start.isEmpty()) Move(0, start);
  for (std::int32_t read = 0; read != rows && !Eof(); ++read) {
    for (std::size_t i = 0; i < columns.size(); ++i) values[i].push_back(columns[i].Value());
    MoveNext();
  }
  return values;
}

void Recordset::Find(std::string_view criteria, std::int32_t skipRows, SearchDirection direction,
                     const Variant& start) {
  parts_->opened();
  parts_->leaveRow();
  if (start.isEmpty()) parts_->currentRow();
  const int step = direction == SearchDirection::kBackward ? -1 : 1;
  parts_->moving(EventReason::kMove, [&] {
    const RecordsetStore& store = parts_->opened();
    const RecordsetView& view = parts_->view;
    RecordsetCursor& cursor = parts_->cursor;
    const auto program = criteria::parseSingle(criteria, store.schema(), store.locale());
    std::int64_t index = cursor.startingIndex(start, step);
    // A row that left the view cannot be found: the search begins at its neighbour.
    const bool isOnLeftRow = start.isEmpty() && cursor.position().hasLeftView;
    index += isOnLeftRow && skipRows == 0 ? step : std::int64_t{skipRows} * step;
    const std::int64_t end = view.extent();
    while (index >= 0 && index < end && !program->matches(store, view.rowAt(index))) index += step;
    cursor.standAt(std::clamp<std::int64_t>(index, -1, end));
  });
}

// ---- Filter and order

const std::string& Recordset::Filter() const {
  parts_->opened();
  return parts_->view.filter().text;
}

FilterGroup Recordset::CurrentFilterGroup() const {
  parts_->opened();
  return parts_->view.filter().group;
}

void Recordset::Filter(std::string_view criteria) {
  // The text may be the set's own.
  const bool isBlank = criteria.find_first_not_of(" \t\r\n") == std::string_view::npos;
  const std::string text(isBlank ? std::string_view() : criteria);
  parts_->filter([&] {
    RowFilter filter;
    filter.text = text;
    const RecordsetStore& store = *parts_->store;
    if (!text.empty()) filter.program = criteria::parse(text, store.schema(), store.locale());
    return filter;
  });
}

void Recordset::Filter(FilterGroup group) {
  switch (group) {
    case FilterGroup::kNone:
    case FilterGroup::kPending:
    case FilterGroup::kAffected:
    case FilterGroup::kFetched:
    case FilterGroup::kConflicting:
      return parts_->filter([&] {
        RowFilter filter;
        filter.group = group;
        return filter;
      });
  }
  raise(errors::kInvalidArgument, kRecordsetSource, "There is no such filter group");
}

void Recordset::Filter(const std::vector<Variant>& bookmarks) {
  parts_->filter([&] {
    RowFilter filter;
    filter.byBookmarks = true;
    std::vector<RowNumber>& rows = filter.bookmarked;
    for (const Variant& bookmark : bookmarks) rows.push_back(parts_->view.rowOfBookmark(bookmark));
    std::sort(rows.begin(), rows.end());
    rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    return filter;
  });
}

const std::string& Recordset::Sort() const {
  parts_->opened();
  return parts_->view.order().text;
}

void Recordset::Sort(std::string_view order) {
  parts_->opened();
  parts_->leaveRow();
  const std::string text(order);
  parts_->moving(EventReason::kMove, [&] {
    parts_->opened();
    parts_->leaveRow();
    parts_->view.order({text, parseOrder(text, parts_->store->schema())});
    parts_->standOnFirst();
  });
}

}  // namespace tavelor
