// SPDX-License-Identifier: MIT
// Where a record set stands.
#include "tavelor/services/recordset/recordset_cursor.hpp"

#include <algorithm>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"
#include "tavelor/services/recordset/row_notes.hpp"

namespace tavelor {

namespace {

bool isConstant(const Variant& start) {
  return start.type() == VariantType::kInt16 || start.type() == VariantType::kInt32;
}

}  // namespace

void RecordsetCursor::raiseNoRow() const {
  raiseNoCurrentRow(view_.store());
}

void RecordsetCursor::raiseDeleted() {
  raise(errors::kDeletedRow, kRecordsetSource);
}

std::int32_t RecordsetCursor::absolutePosition() {
  switch (position_.place) {
    case Place::kBof:
      return position::kBof;
    case Place::kEof:
      return position::kEof;
    case Place::kNowhere:
      return position::kUnknown;
    case Place::kRow:
      break;
  }
  removeHoles();
  return position_.hasLeftView ? position::kUnknown
                               : static_cast<std::int32_t>(position_.index + 1);
}

// ---- Moving

void RecordsetCursor::standAt(std::int64_t index) {
  ++moves_;
  position_.index = index;
  position_.hasLeftView = false;
  if (view_.visibleRows() == 0) {
    position_.place = Place::kNowhere;
  } else if (index < 0) {
    position_.place = Place::kBof;
  } else if (index >= view_.extent()) {
    position_.place = Place::kEof;
  } else {
    position_.place = Place::kRow;
    position_.row = view_.rowAt(index);
  }
}

void RecordsetCursor::standOnFirst() {
  standAt(view_.nextVisible(0, 1));
}

void RecordsetCursor::standOnLast() {
  standAt(view_.nextVisible(view_.extent() - 1, -1));
}

std::int64_t RecordsetCursor::next(int direction) const {
  std::int64_t from = direction > 0 ? -1 : view_.extent();
  if (isOnRow()) from = position_.index;
  // A row that left the view has its follower at its index.
  if (position_.hasLeftView && direction > 0) --from;
  return view_.nextVisible(from + direction, direction);
}

std::int64_t RecordsetCursor::startingIndex(const Variant& start, int direction) {
  removeHoles();
  if (start.isEmpty() || (isConstant(start) && start == Variant(bookmark::kCurrent))) {
    if (position_.place == Place::kBof) return -1;
    if (position_.place == Place::kEof) return view_.extent();
    if (position_.place == Place::kNowhere) raiseNoRow();
    return position_.hasLeftView && direction > 0 ? position_.index - 1 : position_.index;
  }
  if (isConstant(start)) {
    if (view_.visibleRows() == 0) raiseNoRow();
    if (start == Variant(bookmark::kFirst)) return 0;
    if (start == Variant(bookmark::kLast)) return view_.extent() - 1;
  }
  const std::int64_t index = view_.indexOf(view_.rowOfBookmark(start));
  if (index < 0) {
    raise(errors::kInvalidArgument, kRecordsetSource, "The bookmark's row is not in the view");
  }
  return index;
}

// ---- Staying while the view changes

void RecordsetCursor::removeHoles() {
  view_.follow();
  if (!view_.hasHoles()) return;
  const std::int64_t before = view_.visibleBefore(position_.index);
  if (isOnRow()) {
    position_.hasLeftView = position_.hasLeftView || !view_.isVisible(position_.row);
    position_.index = before;
  }
  view_.removeHoles();
  if (position_.place == Place::kEof) position_.index = view_.extent();
}

void RecordsetCursor::rowChanged(Row row, const std::vector<std::uint32_t>& columns) {
  const bool filtered = view_.filtersBy(columns);
  const bool ordered = view_.ordersBy(columns);
  if (!filtered && !ordered) return;
  removeHoles();
  const std::int64_t index = view_.indexOf(row);
  const bool fits = !filtered || view_.fits(row);
  if (index >= 0 && (!fits || ordered)) erase(index);
  if (fits && (index < 0 || ordered)) insert(row);
}

void RecordsetCursor::insert(Row row) {
  const std::int64_t index = view_.insert(row);
  if (!isOnRow()) return;
  if (position_.row == row) {
    position_.index = index;
    position_.hasLeftView = false;
  } else if (index <= position_.index) {
    ++position_.index;
  }
}

void RecordsetCursor::erase(std::int64_t index) {
  const Row row = view_.rowAt(index);
  view_.erase(index);
  if (!isOnRow()) return;
  if (position_.row == row) {
    position_.index = index;
    position_.hasLeftView = true;
  } else if (index < position_.index) {
    --position_.index;
  }
}

void RecordsetCursor::rowRevived(Row row) {
  if (view_.indexOf(row) >= 0) {
    if (position_.row == row) position_.hasLeftView = false;
  } else if (view_.fits(row) && !view_.filter().isGroup()) {
    insert(row);
  }
}

void RecordsetCursor::followRow() {
  if (!isOnRow()) return;
  const std::int64_t index = view_.indexOf(position_.row);
  position_.hasLeftView = index < 0;
  position_.index = index >= 0 ? index : std::min(position_.index, view_.extent());
}

void RecordsetCursor::restore(const Position& position) {
  position_ = position;
  if (isOnRow()) {
    followRow();
  } else if (view_.visibleRows() == 0) {
    position_.place = Place::kNowhere;
  }
}

}  // namespace tavelor
