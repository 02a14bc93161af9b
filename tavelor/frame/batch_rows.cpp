// SPDX-License-Identifier: MIT
// Keys of rows that a grid holds back.
#include "tavelor/frame/batch_rows.hpp"

#include "tavelor/frame/reading.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

void numberNewRows(Recordset& rows, const Variant& next, const Variant& vId,
                   std::string_view codeColumn) {
  double id = number(next);
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    const Variant key = rows.Field("ID").Value();
    if (key.isEmpty() || number(key) != kUnstoredId) continue;
    rows.Field(codeColumn).Value(vId);
    rows.Field("ID").Value(id);
    rows.Update();
    ++id;
  }
  rows.MoveFirst();
}

void keyCurrentRow(Recordset& rows, const Variant& vId, std::string_view codeColumn) {
  rows.Field(codeColumn).Value(vId);
  rows.Update();
}

}  // namespace tavelor
