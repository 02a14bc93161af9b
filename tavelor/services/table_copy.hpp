// SPDX-License-Identifier: MIT
// A table's rows from one engine to another: reading, summing up, writing.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/row_store.hpp"

namespace tavelor::engine {
class Destination;
class Prepared;
class Session;
struct Index;
}  // namespace tavelor::engine
namespace tavelor::dialect {
class Writer;
}

namespace tavelor {

/// Reads the rows of a table as they were stored, a page at a time. Each row begins with its
/// number; the cells of the table's columns come behind that.
class TableSource {
 public:
  static constexpr std::size_t kFirstColumn = 1;

  /// All must live as long. `label` is the database's, for messages.
  TableSource(engine::Session& session, const dialect::Writer& writer, const engine::Table& table,
              std::string_view label);

  const engine::Table& table() const { return table_; }
  std::string_view label() const { return label_; }

  /// Calls `take` with each page, a RowStore. An error of the engine says behind which row.
  template <typename Take>
  void eachPage(Take take) const {
    Reading reading = begin();
    while (const engine::RowStore* const page = next(reading)) take(*page);
  }
  /// The same with each row.
  template <typename Take>
  void each(Take take) const {
    eachPage([&](const engine::RowStore& page) {
      for (std::size_t i = 0; i < page.rows(); ++i) take(page.row(i));
    });
  }

  /// The largest number of a counter's column, or 0.
  std::int64_t largest(const engine::Column& counter) const;
  /// "code 001, line 3": the key of a row, or its place where the table has none.
  std::string keyOf(const engine::RowStore::Row& row) const;

 private:
  struct Reading {
    std::unique_ptr<engine::Prepared> statement;
    std::unique_ptr<engine::RowStore> page;
    bool isLast = false;
  };
  Reading begin() const;
  /// Null behind the last.
  const engine::RowStore* next(Reading& reading) const;

  engine::Session& session_;
  const dialect::Writer& writer_;
  const engine::Table& table_;
  std::string_view label_;
};

/// Counts rows, and makes a number of their values and of their order that is the same on every
/// engine. A counter's rows may come in another order: some engines keep them in that of their
/// numbers.
class TableSum {
 public:
  explicit TableSum(const engine::Table& table);
  void add(const engine::RowStore::Row& row);

  std::int64_t rows() const { return rows_; }
  std::uint64_t sum() const { return sum_; }

 private:
  std::vector<engine::ColumnType> types_;
  bool isOrdered_;
  std::int64_t rows_ = 0;
  std::uint64_t sum_ = 0;
};

/// Adds rows to a table that nobody else writes to, without waiting for each.
class TableTarget {
 public:
  /// All must live as long; inside a transaction.
  TableTarget(engine::Session& session, const dialect::Writer& writer, const engine::Table& table);
  ~TableTarget();
  TableTarget(const TableTarget&) = delete;
  TableTarget& operator=(const TableTarget&) = delete;

  /// Rows as a TableSource gives them.
  void add(const engine::RowStore& page);

 private:
  std::unique_ptr<engine::Prepared> prepare(std::size_t rows) const;
  void write(engine::Prepared& statement, const engine::RowStore& page, std::size_t first,
             std::size_t rows) const;

  engine::Session& session_;
  const dialect::Writer& writer_;
  const engine::Table& table_;
  std::size_t batch_;  // rows of a statement
  std::unique_ptr<engine::Prepared> many_;
  std::unique_ptr<engine::Prepared> one_;
};

/// What an engine cannot hold.
class Unfit {
 public:
  void lookAt(const TableSource& source, const engine::RowStore::Row& row,
              const engine::Destination& destination);
  /// Indexes of expressions, which nothing here makes.
  void lookAt(std::string_view label, const std::vector<engine::Index>& indexes);
  /// Raises kTypeMismatch and tells of each, of many the first ones.
  void mustBeNone() const;

 private:
  void add(std::string what);

  std::vector<std::string> first_;
  std::size_t count_ = 0;
};

/// Whether two tables have the same columns and key.
bool isAlike(const engine::Table& a, const engine::Table& b);

}  // namespace tavelor
