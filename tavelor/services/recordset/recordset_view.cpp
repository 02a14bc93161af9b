// SPDX-License-Identifier: MIT
// Which rows a record set shows, in which order.
#include "tavelor/services/recordset/recordset_view.hpp"

#include <algorithm>
#include <cmath>
#include <numeric>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

void RecordsetView::open(RecordsetStore& store, RowFilter filter, RowOrder order) {
  store_ = &store;
  filter_ = std::move(filter);
  order_ = std::move(order);
  rebuild();
}

void RecordsetView::close() noexcept {
  const std::uint64_t changes = changes_;
  *this = {};
  changes_ = changes + 1;
}

// ---- The rows

std::int64_t RecordsetView::indexOf(Row row) {
  if (!listed_) return row < store_->rows().rows() ? std::int64_t{row} : std::int64_t{-1};
  if (indexes_.empty()) {
    indexes_.assign(store_->rows().rows(), -1);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      indexes_[rows_[i]] = static_cast<std::int32_t>(i);
    }
  }
  return row < indexes_.size() ? indexes_[row] : -1;
}

bool RecordsetView::isVisible(Row row) const {
  const std::uint8_t flags = store_->flags(row);
  if (flags == 0) return true;
  if ((flags & RecordsetStore::kDead) != 0) return false;
  if ((flags & RecordsetStore::kDraft) != 0) return row == addedRow_;
  return (flags & RecordsetStore::kDeleted) == 0 || filter_.showsDeleted();
}

std::int64_t RecordsetView::nextVisible(std::int64_t index, int step) const {
  const std::int64_t end = extent();
  if (store_->anyFlags()) {
    while (index >= 0 && index < end && !isVisible(rowAt(index))) index += step;
  }
  return std::clamp<std::int64_t>(index, -1, end);
}

RecordsetView::Row RecordsetView::rowOfBookmark(const Variant& bookmark) const {
  double number = 0;
  if (bookmark.isNumber()) number = bookmark.toDouble(store_->locale());
  const auto rows = static_cast<double>(store_->rows().rows());
  if (!(number >= 1.0 && number <= rows) || std::floor(number) != number) {
    raise(errors::kInvalidArgument, kRecordsetSource, "The value is no bookmark of a row");
  }
  return static_cast<Row>(number - 1.0);
}

std::int64_t RecordsetView::visibleBefore(std::int64_t index) const {
  const std::int64_t end = std::clamp<std::int64_t>(index, 0, extent());
  std::int64_t visible = 0;
  for (std::int64_t i = 0; i < end; ++i) visible += isVisible(rowAt(i)) ? 1 : 0;
  return visible;
}

void RecordsetView::listAll() {
  rows_.resize(store_->rows().rows());
  std::iota(rows_.begin(), rows_.end(), Row{0});
}

void RecordsetView::removeHoles() {
  if (!listed_) listAll();
  listed_ = true;
  std::erase_if(rows_, [&](Row row) { return !isVisible(row); });
  indexes_.clear();
  visibleRows_ = extent();
}

// ---- Filter and order

void RecordsetView::filter(RowFilter filter) {
  filter_ = std::move(filter);
  rebuild();
}

void RecordsetView::order(RowOrder order) {
  order_ = std::move(order);
  rebuild();
}

void RecordsetView::rebuild() {
  rows_.clear();
  indexes_.clear();
  listed_ = filter_.selects() || !order_.keys.empty();
  if (listed_) {
    listRows();
  } else {
    rows_.shrink_to_fit();
  }
  count();
}

void RecordsetView::listRows() {
  constexpr auto kHidden = static_cast<std::uint8_t>(
      RecordsetStore::kDead | RecordsetStore::kDeleted | RecordsetStore::kDraft);
  if (filter_.program) {
    filter_.program->select(*store_, kHidden, rows_);
  } else if (filter_.byBookmarks) {
    rows_ = filter_.bookmarked;
  } else if (filter_.group == FilterGroup::kAffected) {
    rows_ = affected_;
  } else if (filter_.group == FilterGroup::kConflicting) {
    rows_ = conflicting_;
  } else if (filter_.group == FilterGroup::kPending) {
    rows_.reserve(store_->edits().size());
    for (const auto& [row, edit] : store_->edits()) rows_.push_back(row);
    std::sort(rows_.begin(), rows_.end());
  } else {
    listAll();
  }
  std::erase_if(rows_, [&](Row row) { return !isVisible(row); });
  sortRows(*store_, order_.keys, rows_);
}

void RecordsetView::count() {
  ++changes_;
  stored_ = store_->rows().rows();
  stamp_ = store_->stamp();
  visibleRows_ = extent();
  if (!store_->anyFlags()) return;
  for (std::int64_t i = extent() - 1; i >= 0; --i) {
    if (!isVisible(rowAt(i))) --visibleRows_;
  }
}

bool RecordsetView::filtersBy(const std::vector<std::uint32_t>& columns) const {
  return filter_.program && std::any_of(columns.begin(), columns.end(),
                                        [&](auto c) { return filter_.program->uses(c); });
}

bool RecordsetView::ordersBy(const std::vector<std::uint32_t>& columns) const {
  return std::any_of(order_.keys.begin(), order_.keys.end(), [&](const SortKey& key) {
    return std::find(columns.begin(), columns.end(), key.column) != columns.end();
  });
}

// ---- Changes

void RecordsetView::takeInChanges() {
  if (listed_ && !filter_.selects()) {
    for (std::size_t row = stored_; row < store_->rows().rows(); ++row) {
      rows_.push_back(static_cast<Row>(row));
    }
    indexes_.clear();
  }
  count();
}

void RecordsetView::changed() {
  store_->touch();
  stamp_ = store_->stamp();
  stored_ = store_->rows().rows();
}

void RecordsetView::showAddedRow(Row row) {
  addedRow_ = row;
  if (listed_) rows_.push_back(row);
  indexes_.clear();
  ++visibleRows_;
  ++changes_;
  changed();
}

void RecordsetView::hideAddedRow() {
  addedRow_ = kNoRow;
  --visibleRows_;
  ++changes_;
  changed();
}

std::int64_t RecordsetView::insert(Row row) {
  const auto place = std::upper_bound(rows_.begin(), rows_.end(), row, [&](Row a, Row b) {
    return comesBefore(*store_, order_.keys, a, b);
  });
  const std::int64_t index = place - rows_.begin();
  rows_.insert(place, row);
  indexes_.clear();
  ++visibleRows_;
  ++changes_;
  return index;
}

void RecordsetView::erase(std::int64_t index) {
  rows_.erase(rows_.begin() + index);
  indexes_.clear();
  --visibleRows_;
  ++changes_;
}

std::size_t RecordsetView::memory() const {
  return rows_.capacity() * sizeof(Row) + indexes_.capacity() * sizeof(std::int32_t);
}

}  // namespace tavelor
