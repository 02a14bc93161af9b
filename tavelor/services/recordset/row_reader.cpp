// SPDX-License-Identifier: MIT
// Reading a row where it lies.
#include "tavelor/services/recordset/row_reader.hpp"

#include "tavelor/services/recordset/recordset.hpp"
#include "tavelor/services/recordset/recordset_parts.hpp"

namespace tavelor {

RowReader::RowReader(const Recordset& set) : set_(set.parts()) {}

bool RowReader::toCurrentRow() {
  const RecordsetStore::Row row = set_.readableRow();
  rows_ = &set_.store->rows();
  row_ = rows_->row(row);
  return !set_.edit.isOf(row) && (set_.store->flags(row) & RecordsetStore::kEdited) == 0;
}

std::size_t RowReader::width() const {
  return set_.opened().width();
}

}  // namespace tavelor
