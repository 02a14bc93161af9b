// SPDX-License-Identifier: MIT
// Values in the server's binary formats: numbers in network order, money and other exact numbers in
// digits of base 10,000, moments in microseconds.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include <libpq-fe.h>

#include "tavelor/services/engine/cell_converter.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor::engine::postgres {

/// The numbers by which the server knows its own types, the same in all versions and databases.
namespace types {
inline constexpr Oid kNone = 0;  ///< to be found out by the server
inline constexpr Oid kBool = 16;
inline constexpr Oid kBytea = 17;
inline constexpr Oid kInt8 = 20;
inline constexpr Oid kInt2 = 21;
inline constexpr Oid kInt4 = 23;
inline constexpr Oid kText = 25;
inline constexpr Oid kOid = 26;
inline constexpr Oid kFloat4 = 700;
inline constexpr Oid kFloat8 = 701;
inline constexpr Oid kBpchar = 1042;
inline constexpr Oid kVarchar = 1043;
inline constexpr Oid kDate = 1082;
inline constexpr Oid kTime = 1083;
inline constexpr Oid kTimestamp = 1114;
inline constexpr Oid kTimestamptz = 1184;
inline constexpr Oid kNumeric = 1700;
inline constexpr Oid kUuid = 2950;
inline constexpr Oid kJsonb = 3802;
inline constexpr Oid kFirstOfUsers = 16384;  ///< from here on types are made by users
}  // namespace types

/// Microseconds since 2000-01-01 of a day number, by the rule of the server's tv_timestamp():
/// whatever lies within |days| * 4e-11 + 1e-9 seconds of a whole second is that second, all else
/// goes to the nearest microsecond. Raises 6 for what the server's timestamp does not hold.
std::int64_t microsecondsOf(double days);
/// The day number of microseconds since 2000-01-01. Raises 6 for an infinite one.
double daysOf(std::int64_t microseconds);

/// The ten-thousandths of a numeric in its binary format, halves to even. Raises 6 for what does
/// not fit, what is infinite, and what is no number.
std::int64_t scaledOf(std::string_view numericBytes);
/// The nearest double of a numeric; infinite and no number too.
double realOf(std::string_view numericBytes);

/// The most bytes that a placeholder takes: the server takes a message of 1 GiB at most, all values
/// of a statement together.
inline constexpr std::size_t kMostBytes = (std::size_t{1} << 30U) - (std::size_t{1} << 16U);

/// The values of a statement's placeholders, as libpq takes them. They view the texts that they
/// were given.
class Arguments {
 public:
  explicit Arguments(int count);

  /// From 0. Raises 13 for a text with a NUL character, which the server does not take,
  /// kMultipleStep for one too long, and 6 for a date out of range.
  void set(std::size_t index, const Value& value);

  int count() const { return static_cast<int>(values_.size()); }
  const char* const* values() const { return values_.data(); }
  const int* lengths() const { return lengths_.data(); }
  const int* formats() const { return formats_.data(); }
  /// The server's types of the values; none for a Null.
  const std::vector<Oid>& valueTypes() const { return types_; }
  /// Bytes of all values.
  std::size_t bytes() const;

 private:
  using Slot = std::array<char, 24>;

  std::vector<const char*> values_;
  std::vector<int> lengths_;
  std::vector<int> formats_;
  std::vector<Oid> types_;
  std::vector<Slot> slots_;
};

/// How many rows a statement has written.
std::int64_t writtenRows(const PGresult& result);

/// Reads the rows of one statement into those of a store. What comes as its column is declared
/// takes the short way; anything else is converted.
class RowReader {
 public:
  /// The result shows the columns, as many as the store's; `locale` must live as long.
  RowReader(const PGresult& result, const RowStore& store, const Locale& locale);
  RowReader(const RowReader&) = delete;
  RowReader& operator=(const RowReader&) = delete;

  /// Appends a row of a result with those columns. Raises 13 and 6 as Prepared::fetch() tells, with
  /// the column's name; the row is not there then.
  void append(const PGresult& result, int row, RowStore& store) const;

 private:
  struct Column;
  using Read = void (*)(const Column& column, std::string_view bytes, RowStore::Cells& cells,
                        std::size_t place);
  struct Column {
    Read read = nullptr;
    Oid type = types::kNone;
    ColumnType stored = ColumnType::kMemo;
    const CellConverter* converter = nullptr;
  };
  struct Ways;

  CellConverter converter_;
  std::vector<Column> columns_;
};

}  // namespace tavelor::engine::postgres
