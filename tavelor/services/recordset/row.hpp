// SPDX-License-Identifier: MIT
// One row of a record set, read by columns and types.
#pragma once

#include <concepts>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <string>
#include <string_view>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

class Recordset;
class RecordsetParts;

/// A column by its name, without regard to case, or by its position, from 0.
class TAVELOR_API ColumnKey {
 public:
  /// By name. The text must live as long as the key.
  template <typename Text>
  requires std::convertible_to<const Text&, std::string_view> ColumnKey(const Text& name)
      : name_(name) {}
  /// By position.
  ColumnKey(std::int32_t position) : position_(position) {}

  /// Whether it is a name.
  bool isName() const { return position_ < 0 && name_.data() != nullptr; }
  /// "" for a position.
  std::string_view name() const { return name_; }
  /// -1 for a name.
  std::int32_t position() const { return position_; }

 private:
  std::string_view name_;
  std::int32_t position_ = -1;
};

/// One row of a record set, to be read. A light handle, good as long as the set is open with the
/// rows that it had, wherever the set's cursor stands; it shows what is in edit and pending.
///
/// Errors of all members: 3704 when the set is closed, 3420 when its rows have been fetched anew,
/// -2147217885 when the row is deleted, and of those that take a column 3265 for one that there is
/// not. A getter of a type raises 3421 for a column that is of another one, and 94 for Null, which
/// a field of a new row is too that nobody has written; both name the column and its type. Given a
/// second argument, it gives that for Null. The set must not be gone.
class TAVELOR_API Row final {
 public:
  /// Whatever the column's type: Null, and Empty for a field of a new row that nobody has written.
  Variant value(const ColumnKey& column) const;
  /// Whether it is Null, or nobody has written it.
  bool isNull(const ColumnKey& column) const;

  /// Of a text or memo.
  std::string text(const ColumnKey& column) const;
  /// The same, or `ifNull`.
  std::string text(const ColumnKey& column, std::string_view ifNull) const;
  /// Of a column of whole numbers.
  std::int32_t integer(const ColumnKey& column) const;
  /// The same, or `ifNull`.
  std::int32_t integer(const ColumnKey& column, std::int32_t ifNull) const;
  /// Of a column of numbers of any kind, money among them.
  double number(const ColumnKey& column) const;
  /// The same, or `ifNull`.
  double number(const ColumnKey& column, double ifNull) const;
  /// Of a column of money, or of whole numbers.
  Currency money(const ColumnKey& column) const;
  /// The same, or `ifNull`.
  Currency money(const ColumnKey& column, Currency ifNull) const;
  /// Of a date, with its time.
  Date date(const ColumnKey& column) const;
  /// The same, or `ifNull`.
  Date date(const ColumnKey& column, Date ifNull) const;
  /// Of a flag.
  bool flag(const ColumnKey& column) const;
  /// The same, or `ifNull`.
  bool flag(const ColumnKey& column, bool ifNull) const;

  /// For Recordset::Bookmark, to go to the row.
  Variant bookmark() const;

  // ---- What is done to it. These are told of a deleted row too.

  /// Bits of record_status.
  std::int32_t status() const;
  /// As it was read from the database, before any edit; Null in a new row.
  Variant originalValue(const ColumnKey& column) const;
  /// What the database held when it was last looked at, as Field::UnderlyingValue; Null in a new
  /// row.
  Variant underlyingValue(const ColumnKey& column) const;

 private:
  friend class RowIterator;
  friend class Recordset;
  Row(RecordsetParts& set, std::uint32_t row, std::uint32_t opening)
      : set_(&set), row_(row), opening_(opening) {}

  void requireReadable() const;
  /// Whether the row is deleted or not.
  std::size_t columnOf(const ColumnKey& column) const;
  std::size_t positionOf(const ColumnKey& column) const;
  Variant valueAt(std::size_t position) const;
  template <typename As>
  typename As::Value read(const ColumnKey& column, const typename As::Value* ifNull) const;

  RecordsetParts* set_;
  std::uint32_t row_;
  std::uint32_t opening_;
};

/// Goes over the rows that a set shows, in its order, and leaves its cursor where it is: nothing is
/// posted and no listener is told.
///
/// The set may be edited meanwhile, and moved. A row that is deleted or leaves the view is not met
/// again, one that is added is met at the end. Closing the set or fetching its rows anew ends it
/// with the errors of Row.
class TAVELOR_API RowIterator {
 public:
  /// What it gives.
  using value_type = Row;
  /// As of all iterators.
  using difference_type = std::ptrdiff_t;

  /// At the first row of `set`. Raises 3704 when it is closed.
  explicit RowIterator(const Recordset& set);

  /// The row.
  Row operator*() const;
  /// To the next one.
  RowIterator& operator++();
  /// To the next one.
  void operator++(int) { ++*this; }
  /// Whether there is no row.
  bool operator==(std::default_sentinel_t) const { return isAtEnd_; }

 private:
  void stand(std::int64_t index);

  RecordsetParts* set_;
  std::int64_t index_ = 0;
  std::uint32_t row_ = 0;
  std::uint32_t opening_;
  bool isAtEnd_ = true;
};

}  // namespace tavelor
