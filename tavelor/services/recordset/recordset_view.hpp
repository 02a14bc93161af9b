// SPDX-License-Identifier: MIT
// Which rows a record set shows, in which order.
#pragma once

#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <vector>

#include "tavelor/services/recordset/constants.hpp"
#include "tavelor/services/recordset/criteria.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"
#include "tavelor/services/recordset/sort.hpp"

namespace tavelor {

/// A filter of one of three kinds, or none: a text, a state of rows, a list of rows.
struct RowFilter {
  using Row = RecordsetStore::Row;

  std::string text;
  std::unique_ptr<criteria::Program> program;  ///< of the text
  FilterGroup group = FilterGroup::kNone;
  bool byBookmarks = false;
  std::vector<Row> bookmarked;  ///< ascending, each once

  bool isGroup() const { return byBookmarks || group != FilterGroup::kNone; }
  bool selects() const { return program || isGroup(); }
  /// Whether rows that are marked as deleted show.
  bool showsDeleted() const {
    return group == FilterGroup::kPending || group == FilterGroup::kAffected ||
           group == FilterGroup::kConflicting;
  }
};

/// An order and its text; no keys for the rows as stored.
struct RowOrder {
  std::string text;
  std::vector<SortKey> keys;
};

/// The rows of a store that one set shows, by an index from 0. Knows nothing of a cursor.
///
/// Without a filter and an order the rows are those of the store, and nothing is listed. Rows that
/// are deleted keep their index as holes and are stepped over; they are taken out when somebody
/// counts positions. So deleting in a loop costs no pass over the view a row.
class RecordsetView {
 public:
  using Row = RecordsetStore::Row;

  /// Shows the rows of `store`, which must live until close(). The view must be closed.
  void open(RecordsetStore& store) {
    store_ = &store;
    count();
  }
  void open(RecordsetStore& store, RowFilter filter, RowOrder order);
  /// No rows, no filter, no order.
  void close() noexcept;
  /// Of an open view.
  RecordsetStore& store() const { return *store_; }

  // ---- The rows

  /// One more than the last index, holes included.
  std::int64_t extent() const {
    return static_cast<std::int64_t>(listed_ ? rows_.size() : store_->rows().rows());
  }
  Row rowAt(std::int64_t index) const {
    return listed_ ? rows_[static_cast<std::size_t>(index)] : static_cast<Row>(index);
  }
  /// -1 for a row that is not in the view.
  std::int64_t indexOf(Row row);
  bool isVisible(Row row) const;
  /// The first index from `index` on, by steps of 1 or -1, that is no hole; -1 or extent() without
  /// one.
  std::int64_t nextVisible(std::int64_t index, int step) const;
  /// Rows that are no holes.
  std::int64_t visibleRows() const { return visibleRows_; }
  /// The row that a bookmark names, in the view or not. Raises 3001 for what names none.
  Row rowOfBookmark(const Variant& bookmark) const;

  /// Another number whenever the rows that show, or their order, may be others: in another opening
  /// too.
  std::uint64_t changes() const { return changes_; }

  bool hasHoles() const { return visibleRows_ != extent(); }
  /// Rows that are no holes before an index.
  std::int64_t visibleBefore(std::int64_t index) const;
  /// From here an index is a position.
  void removeHoles();

  // ---- Filter and order

  const RowFilter& filter() const { return filter_; }
  const RowOrder& order() const { return order_; }
  void filter(RowFilter filter);
  void order(RowOrder order);
  /// Applies filter and order to all rows anew.
  void rebuild();
  bool filtersBy(const std::vector<std::uint32_t>& columns) const;
  bool ordersBy(const std::vector<std::uint32_t>& columns) const;
  /// By the filter's text, with pending changes.
  bool fits(Row row) const { return !filter_.program || filter_.program->matches(*store_, row); }

  /// What FilterGroup::kAffected and kConflicting show.
  void affected(const std::vector<Row>& rows) { affected_ = rows; }
  void conflicting(const std::vector<Row>& rows) { conflicting_ = rows; }
  const std::vector<Row>& conflicting() const { return conflicting_; }

  // ---- Changes

  /// Takes in what other sets did to the shared rows. Rows that they added come at the end; under a
  /// filter they come when the filter is set again.
  void follow() {
    if (stamp_ != store_->stamp()) takeInChanges();
  }
  /// Tells the other sets of a change that this view has taken in.
  void changed();

  /// A row at the end that only this set sees, until keepAddedRow().
  void showAddedRow(Row row);
  /// The row is one like all others from here on.
  void keepAddedRow() { addedRow_ = kNoRow; }
  /// The row is seen by this set only again.
  void reopenAddedRow(Row row) { addedRow_ = row; }
  /// Takes it away. It is gone in the store.
  void hideAddedRow();

  /// Does `work`, which may mark or unmark the row in the store, and keeps the count true.
  template <typename Work>
  void changingRow(Row row, Work&& work) {
    const bool wasVisible = isVisible(row);
    work();
    const bool visible = isVisible(row);
    if (visible == wasVisible || indexOf(row) < 0) return;
    visibleRows_ += visible ? 1 : -1;
    ++changes_;
  }

  /// Puts a row where the order wants it; gives its index.
  std::int64_t insert(Row row);
  void erase(std::int64_t index);

  std::size_t memory() const;

 private:
  static constexpr Row kNoRow = std::numeric_limits<Row>::max();

  void listAll();
  void listRows();
  void count();
  void takeInChanges();

  RecordsetStore* store_ = nullptr;
  std::vector<Row> rows_;
  std::vector<std::int32_t> indexes_;  // row -> index in rows_, made when asked for
  bool listed_ = false;                // rows_ is filled
  std::uint64_t stamp_ = 0;            // of the store, as far as the view has followed it
  std::size_t stored_ = 0;             // rows of the store that the view has taken in
  std::int64_t visibleRows_ = 0;
  std::uint64_t changes_ = 0;
  Row addedRow_ = kNoRow;
  RowFilter filter_;
  RowOrder order_;
  std::vector<Row> affected_;
  std::vector<Row> conflicting_;
};

}  // namespace tavelor
