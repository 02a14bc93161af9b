// SPDX-License-Identifier: MIT
// Reading a row where it lies.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "tavelor/services/engine/row_store.hpp"

namespace tavelor {

class Recordset;
class RecordsetParts;

/// Reads the cells of a record set's current row without a call and a copy each, for whoever writes
/// out many rows. What it gives is good until the row is written to or the set is closed.
class RowReader {
 public:
  explicit RowReader(const Recordset& set);

  /// Goes to the current row. False when the row is in edit or has pending changes: its values are
  /// those of the fields then, and the members below must not be used. Raises what reading a field
  /// does.
  bool toCurrentRow();

  /// Columns that are not hidden, of an open set.
  std::size_t width() const;
  /// Of a visible column, by its position.
  engine::ColumnType type(std::size_t column) const { return rows_->type(column); }
  bool isNull(std::size_t column) const { return row_.isNull(column); }
  /// Of whole numbers and booleans (-1, 0).
  std::int64_t integer(std::size_t column) const { return row_.integer(column); }
  /// Of doubles and dates.
  double real(std::size_t column) const { return row_.real(column); }
  /// Of texts and memos.
  std::string_view text(std::size_t column) const { return row_.text(column); }

 private:
  const RecordsetParts& set_;
  const engine::RowStore* rows_ = nullptr;
  engine::RowStore::Row row_;
};

}  // namespace tavelor
