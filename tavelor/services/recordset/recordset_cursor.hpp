// SPDX-License-Identifier: MIT
// Where a record set stands.
#pragma once

#include <cstdint>
#include <vector>

#include "tavelor/platform/variant.hpp"
#include "tavelor/services/recordset/recordset_view.hpp"

namespace tavelor {

/// A place in a view: a row, before or behind all rows, or nowhere. It stays on its row while the
/// view changes under it, so whatever moves rows in the view goes through here.
///
/// Members that need a row raise 3021 without one, those of the view must be open.
class RecordsetCursor {
 public:
  using Row = RecordsetStore::Row;
  enum class Place : std::uint8_t { kRow, kBof, kEof, kNowhere };
  struct Position {
    std::int64_t index = 0;  ///< in the view
    Row row = 0;
    Place place = Place::kNowhere;
    bool hasLeftView = false;  ///< the row is not in the view any more; `index` is its follower's
  };

  explicit RecordsetCursor(RecordsetView& view) : view_(view) {}

  const Position& position() const { return position_; }
  bool isOnRow() const { return position_.place == Place::kRow; }
  bool isOn(Row row) const { return isOnRow() && position_.row == row; }
  Row row() const {
    if (!isOnRow()) raiseNoRow();
    return position_.row;
  }
  /// The row, if it is there to be read and written: -2147217885 for a deleted one.
  Row readableRow() const {
    const Row current = row();
    if (view_.store().isGone(current)) raiseDeleted();
    return current;
  }
  /// From 1, or one of position::.
  std::int32_t absolutePosition();

  /// Grows with each move.
  std::uint64_t moves() const { return moves_; }

  // ---- Moving

  /// Stands nowhere.
  void reset() noexcept {
    position_ = {};
    ++moves_;
  }
  /// On an index of the view, or before or behind all rows.
  void standAt(std::int64_t index);
  void standOnFirst();
  void standOnLast();
  /// Raises 3021 where a move in the direction (1, -1, or 0 for one to a given row) has nowhere to
  /// begin.
  void requireMovable(int direction) const {
    const Place place = position_.place;
    // A deleted last row is current still.
    const bool blocked = (direction > 0 && place == Place::kEof) ||
                         (direction < 0 && place == Place::kBof) ||
                         (direction != 0 && place == Place::kNowhere) ||
                         (view_.visibleRows() == 0 && place != Place::kRow);
    if (blocked) raiseNoRow();
  }
  /// The index one step on, -1 or the view's extent at its ends.
  std::int64_t next(int direction) const;
  /// The index from which `start` counts: that of a bookmark's row, of one of bookmark::, or of the
  /// current place when it is Empty. Raises 3001 for a bookmark whose row is not in the view.
  std::int64_t startingIndex(const Variant& start, int direction);

  // ---- Staying while the view changes

  /// Makes indexes positions: takes the view's holes out.
  void removeHoles();
  /// After `columns` of a row have changed: it leaves the view if the filter looked at one of them
  /// and does not fit now, and moves to its new place if the order looks at one.
  void rowChanged(Row row, const std::vector<std::uint32_t>& columns);
  /// Puts a row into the view.
  void insert(Row row);
  /// After a row came back that was marked as deleted.
  void rowRevived(Row row);
  /// After the view was built anew: the row stays, by its new index.
  void followRow();
  /// Goes back to where it was, by the row's index of now.
  void restore(const Position& position);

 private:
  [[noreturn]] void raiseNoRow() const;
  [[noreturn]] static void raiseDeleted();
  void erase(std::int64_t index);

  RecordsetView& view_;
  Position position_;
  std::uint64_t moves_ = 0;
};

}  // namespace tavelor
