// SPDX-License-Identifier: MIT
// The cursor of a record set.
#include <algorithm>
#include <cmath>

#include "tavelor/services/recordset/criteria.hpp"
#include "tavelor/services/recordset/recordset_internal.hpp"
#include "tavelor/services/recordset/row_notes.hpp"

namespace tavelor {

namespace {

bool isConstant(const Variant& start) {
  return start.type() == VariantType::kInt16 || start.type() == VariantType::kInt32;
}

}  // namespace

// ---- Where the cursor is

bool Recordset::Bof() const {
  opened();
  return cursor_.place == Place::kBof || cursor_.place == Place::kNowhere;
}

bool Recordset::Eof() const {
  opened();
  return cursor_.place == Place::kEof || cursor_.place == Place::kNowhere;
}

Recordset::Row Recordset::current() const {
  opened();
  if (cursor_.place != Place::kRow) raiseNoCurrentRow(*store_);
  return cursor_.row;
}

/// The current row, if it is there to be read and written.
Recordset::Row Recordset::readable() const {
  const Row row = current();
  if ((store_->flags(row) & (RecordsetStore::kDead | RecordsetStore::kDeleted)) != 0) {
    raise(errors::kDeletedRow, kRecordsetSource);
  }
  return row;
}

std::int32_t Recordset::AbsolutePosition() const {
  opened();
  switch (cursor_.place) {
    case Place::kBof:
      return position::kBof;
    case Place::kEof:
      return position::kEof;
    case Place::kNowhere:
      return position::kUnknown;
    case Place::kRow:
      break;
  }
  compact();
  return cursor_.left ? position::kUnknown : static_cast<std::int32_t>(cursor_.at + 1);
}

Variant Recordset::Bookmark() const {
  return static_cast<double>(current()) + 1.0;
}

Recordset::Row Recordset::rowOfBookmark(const Variant& bookmark) const {
  const RecordsetStore& store = opened();
  double number = 0;
  if (bookmark.isNumber()) number = bookmark.toDouble(store.locale());
  const auto rows = static_cast<double>(store.rows().rows());
  if (!(number >= 1.0 && number <= rows) || std::floor(number) != number) {
    raise(errors::kInvalidArgument, kRecordsetSource, "The value is no bookmark of a row");
  }
  return static_cast<Row>(number - 1.0);
}

CompareResult Recordset::CompareBookmarks(const Variant& first, const Variant& second) const {
  const Row a = rowOfBookmark(first);
  const Row b = rowOfBookmark(second);
  if (a == b) return CompareResult::kEqual;
  return a < b ? CompareResult::kLessThan : CompareResult::kGreaterThan;
}

// ---- Going to an index of the view

/// Stands on an index of the view, or before or behind all rows.
void Recordset::standAt(std::int64_t index) {
  touchField(kNoColumn);
  cursor_.at = index;
  cursor_.left = false;
  if (live_ == 0) {
    cursor_.place = Place::kNowhere;
  } else if (index < 0) {
    cursor_.place = Place::kBof;
  } else if (index >= extent()) {
    cursor_.place = Place::kEof;
  } else {
    cursor_.place = Place::kRow;
    cursor_.row = rowAt(index);
  }
}

void Recordset::standOnFirst() {
  opened();
  follow();
  standAt(nextVisible(0, 1));
}

void Recordset::requireMovable(int direction) const {
  opened();
  follow();
  const bool deletedLast = cursor_.place == Place::kRow;
  const bool blocked = (direction > 0 && cursor_.place == Place::kEof) ||
                       (direction < 0 && cursor_.place == Place::kBof) ||
                       (direction != 0 && cursor_.place == Place::kNowhere) ||
                       (live_ == 0 && !deletedLast);
  if (blocked) raiseNoCurrentRow(*store_);
}

/// Posts the row in edit. The listeners of that may have closed the set.
void Recordset::leaveRow() {
  if (!draft_) return;
  post();
  opened();
}

void Recordset::MoveFirst() {
  leaveRow();
  requireMovable(0);
  moving(EventReason::kMoveFirst, [&] {
    requireMovable(0);
    standAt(nextVisible(0, 1));
  });
}

void Recordset::MoveLast() {
  leaveRow();
  requireMovable(0);
  moving(EventReason::kMoveLast, [&] {
    requireMovable(0);
    standAt(nextVisible(extent() - 1, -1));
  });
}

void Recordset::step(int direction) {
  requireMovable(direction);
  std::int64_t from = direction > 0 ? -1 : extent();
  if (cursor_.place == Place::kRow) from = cursor_.at;
  // A row that left the view has its follower at its index.
  if (cursor_.left && direction > 0) --from;
  const std::int64_t to = nextVisible(from + direction, direction);
  if (to == extent()) {
    stepPastEnd();
  } else {
    standAt(to);
  }
}

/// Listeners may append rows at the last moment; the move goes to the first of them then.
void Recordset::stepPastEnd() {
  const std::int64_t end = extent();
  const bool moreData = !listeners_.empty() && tellEnd();
  opened();
  follow();
  leaveRow();
  standAt(moreData ? nextVisible(end, 1) : extent());
}

void Recordset::MoveNext() {
  leaveRow();
  requireMovable(1);
  moving(EventReason::kMoveNext, [&] { step(1); });
}

void Recordset::MovePrevious() {
  leaveRow();
  requireMovable(-1);
  moving(EventReason::kMovePrevious, [&] { step(-1); });
}

/// The index from which `start` counts: that of a row, or of the current place.
std::int64_t Recordset::startingIndex(const Variant& start, int direction) const {
  compact();
  if (start.isEmpty() || (isConstant(start) && start == Variant(bookmark::kCurrent))) {
    if (cursor_.place == Place::kBof) return -1;
    if (cursor_.place == Place::kEof) return extent();
    if (cursor_.place == Place::kNowhere) raiseNoCurrentRow(*store_);
    return cursor_.left && direction > 0 ? cursor_.at - 1 : cursor_.at;
  }
  if (isConstant(start)) {
    if (live_ == 0) raiseNoCurrentRow(*store_);
    if (start == Variant(bookmark::kFirst)) return 0;
    if (start == Variant(bookmark::kLast)) return extent() - 1;
  }
  const std::int64_t index = indexOf(rowOfBookmark(start));
  if (index < 0) {
    raise(errors::kInvalidArgument, kRecordsetSource, "The bookmark's row is not in the view");
  }
  return index;
}

void Recordset::Move(std::int32_t rows, const Variant& start) {
  leaveRow();
  const int direction = rows > 0 ? 1 : (rows < 0 ? -1 : 0);
  if (start.isEmpty()) {
    requireMovable(direction);
    if (direction == 0) current();
  }
  moving(EventReason::kMove, [&] {
    opened();
    const std::int64_t from = startingIndex(start, direction);
    if (rows == 0 && start.isEmpty()) return;
    standAt(std::clamp<std::int64_t>(from + rows, -1, extent()));
  });
}

void Recordset::AbsolutePosition(std::int32_t value) {
  opened();
  leaveRow();
  const auto require = [&] {
    opened();
    compact();
    if (value < 1 || value > live_) {
      raise(errors::kInvalidArgument, kRecordsetSource, "There is no row at that position");
    }
  };
  require();
  moving(EventReason::kMove, [&] {
    require();
    standAt(value - 1);
  });
}

void Recordset::Bookmark(const Variant& value) {
  opened();
  leaveRow();
  const auto find = [&] {
    const Row row = rowOfBookmark(value);
    follow();
    const std::int64_t index = indexOf(row);
    if (index < 0 || !visible(row)) {
      raise(errors::kInvalidArgument, kRecordsetSource, "The bookmark's row is not in the view");
    }
    return index;
  };
  find();
  moving(EventReason::kMove, [&] { standAt(find()); });
}

void Recordset::Find(std::string_view criteria, std::int32_t skipRows, SearchDirection direction,
                     const Variant& start) {
  opened();
  leaveRow();
  if (start.isEmpty()) current();
  const int step = direction == SearchDirection::kBackward ? -1 : 1;
  moving(EventReason::kMove, [&] {
    const RecordsetStore& store = opened();
    const auto program = criteria::parseSingle(criteria, store.schema(), store.locale());
    std::int64_t index = startingIndex(start, step);
    // A row that left the view cannot be found: the search begins at its neighbour.
    const bool onLeftRow = start.isEmpty() && cursor_.left;
    index += onLeftRow && skipRows == 0 ? step : std::int64_t{skipRows} * step;
    const std::int64_t end = extent();
    while (index >= 0 && index < end && !program->matches(store, rowAt(index))) index += step;
    standAt(std::clamp<std::int64_t>(index, -1, end));
  });
}

}  // namespace tavelor
