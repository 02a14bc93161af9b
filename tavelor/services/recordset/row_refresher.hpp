// SPDX-License-Identifier: MIT
// Reading what the database holds now for rows that were read before.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

/// Reads rows again by their keys, a statement for each table of a row. Nothing of the store
/// changes before all are read.
class RowRefresher {
 public:
  using Row = RecordsetStore::Row;

  /// Raises 3251 for a set of which no table's key is among the columns.
  RowRefresher(RecordsetStore& store, Connection& connection);

  /// Reads the rows, which the database had when they were read.
  void read(const std::vector<Row>& rows);
  /// Rows that were found whole.
  const std::vector<Row>& found() const { return found_; }
  /// Rows that are not there any more, or of which a looked up one is not.
  const std::vector<Row>& missing() const { return missing_; }

  /// What was read is what the fields' UnderlyingValue tells, and what the next write expects.
  void acceptAsUnderlying();
  /// What was read takes the place of the rows as they were.
  void acceptAsBase();

 private:
  struct Table {
    std::string_view name;
    std::vector<std::size_t> columns;
    std::string select;  // without its WHERE
    engine::RowStore rows;
  };

  bool readRow(Row row);
  bool isLookedUpNowhere(const Table& table, Row row) const;
  template <typename Take>
  void forEachValue(Take&& take);

  RecordsetStore& store_;
  Connection& connection_;
  std::vector<Table> tables_;
  std::vector<Row> found_;
  std::vector<Row> missing_;
  std::vector<std::vector<std::int64_t>>
      places_;  // by found row and table: a row of its rows, or -1
};

}  // namespace tavelor
