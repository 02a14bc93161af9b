// SPDX-License-Identifier: MIT
// Which rows a record set shows, in which order.
//
// Rows that are deleted stay listed as holes and are stepped over; they are taken out when
// somebody counts positions. So deleting in a loop costs no pass over the view a row.
#include <algorithm>
#include <numeric>

#include "tavelor/services/recordset/criteria.hpp"
#include "tavelor/services/recordset/recordset_internal.hpp"
#include "tavelor/services/recordset/sort.hpp"

namespace tavelor {

void Recordset::resetView() noexcept {
  view_ = {};
  places_ = {};
  listed_ = false;
  stamp_ = 0;
  seen_ = 0;
  live_ = 0;
  cursor_ = {};
  criteria_.reset();
  filter_.clear();
  bookmarks_.clear();
  group_ = FilterGroup::kNone;
  byBookmarks_ = false;
  sort_.clear();
  order_.clear();
  touchField(kNoColumn);
}

bool Recordset::selects() const {
  return criteria_ || byBookmarks_ || group_ != FilterGroup::kNone;
}

bool Recordset::showsDeleted() const {
  return group_ == FilterGroup::kPending || group_ == FilterGroup::kAffected ||
         group_ == FilterGroup::kConflicting;
}

std::int64_t Recordset::extent() const {
  return static_cast<std::int64_t>(listed_ ? view_.size() : store_->rows().rows());
}

Recordset::Row Recordset::rowAt(std::int64_t index) const {
  return listed_ ? view_[static_cast<std::size_t>(index)] : static_cast<Row>(index);
}

bool Recordset::visible(Row row) const {
  const std::uint8_t flags = store_->flags(row);
  if (flags == 0) return true;
  if ((flags & RecordsetStore::kDead) != 0) return false;
  if ((flags & RecordsetStore::kDraft) != 0) return draft_ && draft_->row == row;
  return (flags & RecordsetStore::kDeleted) == 0 || showsDeleted();
}

std::int64_t Recordset::nextVisible(std::int64_t index, int step) const {
  const std::int64_t end = extent();
  if (store_->anyFlags()) {
    while (index >= 0 && index < end && !visible(rowAt(index))) index += step;
  }
  return std::clamp<std::int64_t>(index, -1, end);
}

void Recordset::recount() const {
  seen_ = store_->rows().rows();
  stamp_ = store_->stamp();
  live_ = extent();
  if (!store_->anyFlags()) return;
  for (std::int64_t i = extent() - 1; i >= 0; --i) {
    if (!visible(rowAt(i))) --live_;
  }
}

/// Takes in what other sets did to the shared rows. Rows that they added come at the end; under a
/// filter they come when the filter is set again.
void Recordset::follow() const {
  if (stamp_ == store_->stamp()) return;
  if (listed_ && !selects()) {
    for (std::size_t row = seen_; row < store_->rows().rows(); ++row) {
      view_.push_back(static_cast<Row>(row));
    }
    places_.clear();
  }
  recount();
}

/// After a change that the view has taken in already.
void Recordset::changedByMe() {
  store_->touch();
  stamp_ = store_->stamp();
  seen_ = store_->rows().rows();
}

void Recordset::list() const {
  if (listed_) return;
  view_.resize(store_->rows().rows());
  std::iota(view_.begin(), view_.end(), Row{0});
  listed_ = true;
  places_.clear();
}

/// Takes the holes out, so that an index is a position.
void Recordset::compact() const {
  follow();
  if (live_ == extent()) return;
  list();
  const auto at =
      view_.begin() + std::min<std::int64_t>(std::max<std::int64_t>(cursor_.at, 0), extent());
  const auto before = std::count_if(view_.begin(), at, [&](Row row) { return visible(row); });
  if (cursor_.place == Place::kRow) {
    cursor_.left = cursor_.left || !visible(cursor_.row);
    cursor_.at = before;
  }
  std::erase_if(view_, [&](Row row) { return !visible(row); });
  places_.clear();
  live_ = extent();
  if (cursor_.place == Place::kEof) cursor_.at = extent();
}

void Recordset::listRows() {
  const RecordsetStore& store = *store_;
  constexpr auto kHidden = static_cast<std::uint8_t>(
      RecordsetStore::kDead | RecordsetStore::kDeleted | RecordsetStore::kDraft);
  if (criteria_) {
    criteria_->select(store, kHidden, view_);
  } else if (byBookmarks_) {
    view_ = bookmarks_;
  } else if (group_ == FilterGroup::kAffected) {
    view_ = affected_;
  } else if (group_ == FilterGroup::kConflicting) {
    view_ = conflicting_;
  } else if (group_ == FilterGroup::kPending) {
    view_.reserve(store.edits().size());
    for (const auto& [row, edit] : store.edits()) view_.push_back(row);
    std::sort(view_.begin(), view_.end());
  } else {
    view_.resize(store.rows().rows());
    std::iota(view_.begin(), view_.end(), Row{0});
  }
  std::erase_if(view_, [&](Row row) { return !visible(row); });
  sortRows(store, order_, view_);
}

void Recordset::rebuildView() {
  view_.clear();
  places_.clear();
  listed_ = selects() || !order_.empty();
  if (listed_) {
    listRows();
  } else {
    view_.shrink_to_fit();
  }
  recount();
}

std::int64_t Recordset::indexOf(Row row) const {
  if (!listed_) return row < store_->rows().rows() ? std::int64_t{row} : std::int64_t{-1};
  if (places_.empty()) {
    places_.assign(store_->rows().rows(), -1);
    for (std::size_t i = 0; i < view_.size(); ++i) {
      places_[view_[i]] = static_cast<std::int32_t>(i);
    }
  }
  return row < places_.size() ? places_[row] : -1;
}

/// Puts a row where the order wants it.
void Recordset::insertRow(Row row) {
  const auto place = std::upper_bound(view_.begin(), view_.end(), row, [&](Row a, Row b) {
    return comesBefore(*store_, order_, a, b);
  });
  const auto index = place - view_.begin();
  view_.insert(place, row);
  places_.clear();
  ++live_;
  if (cursor_.place == Place::kRow && cursor_.row != row && index <= cursor_.at) ++cursor_.at;
  if (cursor_.place == Place::kRow && cursor_.row == row) {
    cursor_.at = index;
    cursor_.left = false;
  }
}

void Recordset::removeAt(std::int64_t index) {
  const Row row = rowAt(index);
  view_.erase(view_.begin() + index);
  places_.clear();
  --live_;
  if (cursor_.place != Place::kRow) return;
  if (cursor_.row == row) {
    cursor_.at = index;
    cursor_.left = true;
  } else if (index < cursor_.at) {
    --cursor_.at;
  }
}

/// After a change of `columns` in a row: it leaves the view if the filter looked at one of them and
/// does not fit now, and moves to its new place if the order looks at one.
void Recordset::replaceInView(Row row, const std::vector<std::uint32_t>& columns) {
  const bool filtered = criteria_ && std::any_of(columns.begin(), columns.end(),
                                                 [&](auto c) { return criteria_->uses(c); });
  const bool ordered = std::any_of(order_.begin(), order_.end(), [&](const SortKey& key) {
    return std::find(columns.begin(), columns.end(), key.column) != columns.end();
  });
  if (!filtered && !ordered) return;
  compact();
  const std::int64_t index = indexOf(row);
  const bool fits = !filtered || criteria_->matches(*store_, row);
  if (index >= 0 && (!fits || ordered)) removeAt(index);
  if (fits && (index < 0 || ordered)) insertRow(row);
}

// ---- Filter and order

std::int32_t Recordset::RecordCount() const {
  opened();
  follow();
  return static_cast<std::int32_t>(live_);
}

const std::string& Recordset::Filter() const {
  opened();
  return filter_;
}

FilterGroup Recordset::CurrentFilterGroup() const {
  opened();
  return group_;
}

/// Sets one of the three kinds of filter, clearing the others, and goes to the first row.
void Recordset::view(std::string_view criteria, FilterGroup group,
                     const std::vector<Variant>* bookmarks) {
  opened();
  if (changing_ > 0) raise(errors::kNotAllowedInContext, kRecordsetSource);
  leaveRow();
  // The text may be the set's own.
  const std::string text(criteria);
  moving(EventReason::kMove, [&] {
    const RecordsetStore& store = opened();
    leaveRow();
    std::unique_ptr<criteria::Program> program;
    if (!text.empty()) program = criteria::parse(text, store.schema(), store.locale());
    std::vector<Row> rows;
    if (bookmarks != nullptr) {
      for (const Variant& bookmark : *bookmarks) rows.push_back(rowOfBookmark(bookmark));
      std::sort(rows.begin(), rows.end());
      rows.erase(std::unique(rows.begin(), rows.end()), rows.end());
    }
    criteria_ = std::move(program);
    filter_ = text;
    group_ = group;
    bookmarks_ = std::move(rows);
    byBookmarks_ = bookmarks != nullptr;
    rebuildView();
    standOnFirst();
  });
}

void Recordset::Filter(std::string_view criteria) {
  const bool blank = criteria.find_first_not_of(" \t\r\n") == std::string_view::npos;
  view(blank ? std::string_view() : criteria, FilterGroup::kNone, nullptr);
}

void Recordset::Filter(FilterGroup group) {
  switch (group) {
    case FilterGroup::kNone:
    case FilterGroup::kPending:
    case FilterGroup::kAffected:
    case FilterGroup::kFetched:
    case FilterGroup::kConflicting:
      return view({}, group, nullptr);
  }
  raise(errors::kInvalidArgument, kRecordsetSource, "There is no such filter group");
}

void Recordset::Filter(const std::vector<Variant>& bookmarks) {
  view({}, FilterGroup::kNone, &bookmarks);
}

const std::string& Recordset::Sort() const {
  opened();
  return sort_;
}

void Recordset::Sort(std::string_view order) {
  opened();
  leaveRow();
  std::string text(order);
  moving(EventReason::kMove, [&] {
    const RecordsetStore& store = opened();
    leaveRow();
    order_ = parseOrder(text, store.schema());
    sort_ = std::move(text);
    rebuildView();
    standOnFirst();
  });
}

}  // namespace tavelor
