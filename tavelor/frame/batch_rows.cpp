// SPDX-License-Identifier: MIT
// Keys of rows that a grid holds back.
#include "tavelor/frame/batch_rows.hpp"

#include <vector>

#include "tavelor/frame/reading.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

// A key that is written may move its row in the order of the view, so they are all found first.
std::vector<Variant> unstoredRows(Recordset& rows) {
  std::vector<Variant> bookmarks;
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    const Variant key = rows.Field("ID").Value();
    if (!key.isEmpty() && number(key) == kUnstoredId) bookmarks.push_back(rows.Bookmark());
  }
  return bookmarks;
}

}  // namespace

void numberNewRows(Recordset& rows, const Variant& next, const Variant& vId,
                   std::string_view codeColumn) {
  double id = number(next);
  for (const Variant& place : unstoredRows(rows)) {
    rows.Bookmark(place);
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
