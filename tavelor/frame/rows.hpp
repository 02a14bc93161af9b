// SPDX-License-Identifier: MIT
// The rows of a statement, read one after the other.
#pragma once

#include <cstdint>
#include <string>

#include "tavelor/platform/date.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/row.hpp"

namespace tavelor {

struct Locale;

/// Null is read as nothing: "", 0, false. Columns are told by name, or by position where many rows
/// are read. Raises 3265 for a column that is not there.
class Rows {
 public:
  /// Over `connection`, or one of its own.
  Rows(int selector, const Statement& statement, ConnectionPtr connection = {});

  bool hasRow() const { return !rows_->Eof(); }
  void next() { rows_->MoveNext(); }

  bool isNull(const ColumnKey& column) const { return rows_->CurrentRow().isNull(column); }
  std::string text(const ColumnKey& column) const;
  double number(const ColumnKey& column) const;
  bool flag(const ColumnKey& column) const { return number(column) != 0; }
  std::int32_t whole(const ColumnKey& column) const {
    return static_cast<std::int32_t>(number(column));
  }
  Date day(const ColumnKey& column) const { return Date(number(column)).dayOnly(); }

  Recordset& set() const { return *rows_; }

 private:
  const Locale& locale_;
  RecordsetPtr rows_;
};

}  // namespace tavelor
