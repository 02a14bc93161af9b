// SPDX-License-Identifier: MIT
// Reading a row where it lies.
#include "tavelor/services/recordset/row_reader.hpp"

#include "tavelor/services/recordset/recordset_internal.hpp"

namespace tavelor {

bool RowReader::take() {
  const Recordset::Row row = set_.readable();
  const RecordsetStore& store = *set_.store_;
  rows_ = &store.rows();
  row_ = rows_->row(row);
  const bool inEdit = set_.draft_ && set_.draft_->row == row;
  return !inEdit && (store.flags(row) & RecordsetStore::kEdited) == 0;
}

}  // namespace tavelor
