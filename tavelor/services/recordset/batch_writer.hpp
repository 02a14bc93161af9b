// SPDX-License-Identifier: MIT
// Writing pending changes to the database.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

/// Composes and runs the statement of each row, or of each table of it. Nothing of the store
/// changes before all have run.
class BatchWriter {
 public:
  using Row = RecordsetStore::Row;

  BatchWriter(RecordsetStore& store, Connection& connection);

  /// Writes the rows, several of them in one transaction. After an error none is written, and
  /// failed() is the row at fault, if it was one.
  void run(const std::vector<Row>& rows);
  /// Takes what was written into the base rows.
  void accept();

  const std::vector<Row>& written() const { return written_; }
  const std::vector<Row>& conflicts() const { return conflicts_; }

 private:
  void writeAll(const std::vector<Row>& rows);
  // Each gives how many rows its statements found, or that nobody knows yet.
  std::int64_t write(Row row, const RecordsetStore::Edit& edit);
  std::int64_t update(Row row, const RecordsetStore::Edit& edit);
  std::int64_t update(std::string_view table, Row row, const RecordsetStore::Edit& edit);
  std::int64_t insert(const RecordsetStore::Edit& edit);
  std::int64_t remove(Row row);
  void begin(std::string_view verb, std::string_view table);
  void appendOriginal(Row row, std::size_t column);
  bool isLookedUp(std::string_view table) const { return table != plan_.updateTable; }
  void keepLookedUp(Row row, const RecordsetStore::Edit& edit);
  engine::Value expected(Row row, std::size_t column) const;
  const dialect::OutputColumn& writable(std::size_t column) const;
  void requireRowTable() const;
  std::int64_t execute(engine::RowStore* returned);

  RecordsetStore& store_;
  Connection& connection_;
  const dialect::Plan& plan_;
  std::vector<std::size_t> returnedColumns_;
  engine::RowStore returned_;  // a row for each inserted one
  std::vector<Row> written_;
  std::vector<Row> conflicts_;
  std::unordered_map<std::string, Variant> lookedUpWrites_;  // as the store's, of this batch
  std::vector<std::int64_t> counts_;  // by row: found, sent, or nothing to write
  std::int64_t* count_ = nullptr;     // of the statement that is composed; null: it is waited for
  std::string sql_;
  std::vector<engine::Value> values_;
};

}  // namespace tavelor
