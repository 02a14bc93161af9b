// SPDX-License-Identifier: MIT
// One row of a record set, read by columns and types.
#include "tavelor/services/recordset/row.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kSource = "Row";

std::string_view wordOf(engine::ColumnType type) {
  switch (type) {
    case engine::ColumnType::kBoolean:
      return "a flag";
    case engine::ColumnType::kByte:
    case engine::ColumnType::kInt16:
    case engine::ColumnType::kInt32:
      return "a whole number";
    case engine::ColumnType::kSingle:
    case engine::ColumnType::kDouble:
      return "a number";
    case engine::ColumnType::kCurrency:
      return "money";
    case engine::ColumnType::kDate:
      return "a date";
    case engine::ColumnType::kText:
      return "a text";
    case engine::ColumnType::kMemo:
      return "a memo";
    case engine::ColumnType::kBinary:
      return "bytes";
  }
  return "";
}

std::string described(const dialect::OutputColumn& field) {
  return "Field '" + field.name + "' is " + std::string(wordOf(field.type));
}

std::int32_t wholeOf(const Variant& value) {
  if (const auto* small = value.getIf<std::int16_t>()) return *small;
  return *value.getIf<std::int32_t>();
}

bool isWholeNumber(engine::ColumnType type) {
  return type == engine::ColumnType::kByte || type == engine::ColumnType::kInt16 ||
         type == engine::ColumnType::kInt32;
}

/// The rows of an opening, unless the set is closed or has other ones.
const RecordsetStore& openedStill(const RecordsetParts& set, std::uint32_t opening) {
  const RecordsetStore& store = set.opened();
  if (set.openings() != opening) {
    raise(errors::kObjectInvalid, kSource, "The rows of the set have been fetched anew");
  }
  return store;
}

// What a getter gives: the column types that it reads, and how.

struct Text {
  using Value = std::string;
  static constexpr std::string_view kName = "a text";
  static bool reads(engine::ColumnType type) {
    return type == engine::ColumnType::kText || type == engine::ColumnType::kMemo;
  }
  static Value of(const Variant& value) { return *value.getIf<std::string>(); }
};

struct Whole {
  using Value = std::int32_t;
  static constexpr std::string_view kName = "a whole number";
  static bool reads(engine::ColumnType type) { return isWholeNumber(type); }
  static Value of(const Variant& value) { return wholeOf(value); }
};

struct Number {
  using Value = double;
  static constexpr std::string_view kName = "a number";
  static bool reads(engine::ColumnType type) {
    return isWholeNumber(type) || type == engine::ColumnType::kSingle ||
           type == engine::ColumnType::kDouble || type == engine::ColumnType::kCurrency;
  }
  static Value of(const Variant& value) {
    if (const auto* real = value.getIf<double>()) return *real;
    if (const auto* single = value.getIf<float>()) return widen(*single);
    if (const auto* money = value.getIf<Currency>()) return money->toDouble();
    return wholeOf(value);
  }
};

struct Money {
  using Value = Currency;
  static constexpr std::string_view kName = "money";
  static bool reads(engine::ColumnType type) {
    return isWholeNumber(type) || type == engine::ColumnType::kCurrency;
  }
  static Value of(const Variant& value) {
    if (const auto* money = value.getIf<Currency>()) return *money;
    constexpr std::int64_t kUnits = 10'000;
    return Currency::fromScaled(wholeOf(value) * kUnits);
  }
};

struct Day {
  using Value = Date;
  static constexpr std::string_view kName = "a date";
  static bool reads(engine::ColumnType type) { return type == engine::ColumnType::kDate; }
  static Value of(const Variant& value) { return *value.getIf<Date>(); }
};

struct Flag {
  using Value = bool;
  static constexpr std::string_view kName = "a flag";
  static bool reads(engine::ColumnType type) { return type == engine::ColumnType::kBoolean; }
  static Value of(const Variant& value) { return *value.getIf<bool>(); }
};

}  // namespace

void Row::requireReadable() const {
  if (openedStill(*set_, opening_).isGone(row_)) raise(errors::kDeletedRow, kSource);
}

std::size_t Row::positionOf(const ColumnKey& column) const {
  requireReadable();
  return columnOf(column);
}

std::size_t Row::columnOf(const ColumnKey& column) const {
  const RecordsetSchema& schema = set_->schema();
  if (column.isName()) return schema.require(column.name(), kSource);
  const std::int32_t position = column.position();
  if (position < 0 || static_cast<std::size_t>(position) >= schema.width()) {
    raise(errors::kItemNotFound, kSource, "There is no field " + std::to_string(position));
  }
  return static_cast<std::size_t>(position);
}

Variant Row::valueAt(std::size_t position) const {
  return set_->edit.value(row_, position);
}

Variant Row::value(const ColumnKey& column) const {
  return valueAt(positionOf(column));
}

bool Row::isNull(const ColumnKey& column) const {
  const Variant held = value(column);
  return held.isNull() || held.isEmpty();
}

Variant Row::bookmark() const {
  requireReadable();
  return static_cast<double>(row_) + 1.0;
}

std::int32_t Row::status() const {
  openedStill(*set_, opening_);
  return set_->edit.status(row_);
}

Variant Row::originalValue(const ColumnKey& column) const {
  return openedStill(*set_, opening_).baseValue(row_, columnOf(column));
}

Variant Row::underlyingValue(const ColumnKey& column) const {
  return openedStill(*set_, opening_).underlyingValue(row_, columnOf(column));
}

template <typename As>
typename As::Value Row::read(const ColumnKey& column, const typename As::Value* ifNull) const {
  const std::size_t position = positionOf(column);
  const dialect::OutputColumn& field = set_->store->columns()[position];
  if (!As::reads(field.type)) {
    raise(errors::kWrongType, kSource, described(field) + ", not " + std::string(As::kName));
  }
  const Variant held = valueAt(position);
  if (!held.isNull() && !held.isEmpty()) return As::of(held);
  if (ifNull != nullptr) return *ifNull;
  raise(errors::kInvalidUseOfNull, kSource, described(field) + ", and Null in this row");
}

std::string Row::text(const ColumnKey& column) const {
  return read<Text>(column, nullptr);
}

std::string Row::text(const ColumnKey& column, std::string_view ifNull) const {
  const std::string otherwise(ifNull);
  return read<Text>(column, &otherwise);
}

std::int32_t Row::integer(const ColumnKey& column) const {
  return read<Whole>(column, nullptr);
}

std::int32_t Row::integer(const ColumnKey& column, std::int32_t ifNull) const {
  return read<Whole>(column, &ifNull);
}

double Row::number(const ColumnKey& column) const {
  return read<Number>(column, nullptr);
}

double Row::number(const ColumnKey& column, double ifNull) const {
  return read<Number>(column, &ifNull);
}

Currency Row::money(const ColumnKey& column) const {
  return read<Money>(column, nullptr);
}

Currency Row::money(const ColumnKey& column, Currency ifNull) const {
  return read<Money>(column, &ifNull);
}

Date Row::date(const ColumnKey& column) const {
  return read<Day>(column, nullptr);
}

Date Row::date(const ColumnKey& column, Date ifNull) const {
  return read<Day>(column, &ifNull);
}

bool Row::flag(const ColumnKey& column) const {
  return read<Flag>(column, nullptr);
}

bool Row::flag(const ColumnKey& column, bool ifNull) const {
  return read<Flag>(column, &ifNull);
}

// ---- All rows

RowIterator::RowIterator(const Recordset& set) : set_(&set.parts()) {
  set_->opened();
  set_->view.follow();
  opening_ = set_->openings();
  stand(0);
}

void RowIterator::stand(std::int64_t index) {
  index_ = set_->view.nextVisible(index, 1);
  isAtEnd_ = index_ >= set_->view.extent();
  if (!isAtEnd_) row_ = set_->view.rowAt(index_);
}

Row RowIterator::operator*() const {
  return {*set_, row_, opening_};
}

RowIterator& RowIterator::operator++() {
  openedStill(*set_, opening_);
  RecordsetView& view = set_->view;
  view.follow();
  // The row may have moved in the view, or left it: its follower is at its index then.
  const bool isThere = index_ < view.extent() && view.rowAt(index_) == row_;
  if (isThere) {
    stand(index_ + 1);
  } else {
    const std::int64_t index = view.indexOf(row_);
    stand(index >= 0 ? index + 1 : index_);
  }
  return *this;
}

}  // namespace tavelor
