// SPDX-License-Identifier: MIT
// Keys of rows that a grid holds back.
#include "tavelor/frame/batch_rows.hpp"

#include <vector>

#include "tavelor/frame/reading.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

// A key that is written may move its row in the order of the view, so they are all found first.
template <typename Wanted>
std::vector<Variant> placesOf(Recordset& rows, Wanted wanted) {
  std::vector<Variant> bookmarks;
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    if (wanted(rows)) bookmarks.push_back(rows.Bookmark());
  }
  return bookmarks;
}

bool isUnstored(Recordset& rows) {
  const Variant key = rows.Field("ID").Value();
  return !key.isEmpty() && number(key) == kUnstoredId;
}

void numberRows(Recordset& rows, const std::vector<Variant>& places, const Variant& next,
                const Variant& vId, std::string_view codeColumn) {
  double id = number(next);
  for (const Variant& place : places) {
    rows.Bookmark(place);
    rows.Field(codeColumn).Value(vId);
    rows.Field("ID").Value(id);
    rows.Update();
    ++id;
  }
}

}  // namespace

void numberNewRows(Recordset& rows, const Variant& next, const Variant& vId,
                   std::string_view codeColumn) {
  numberRows(rows, placesOf(rows, isUnstored), next, vId, codeColumn);
  rows.MoveFirst();
}

void numberAllRows(Recordset& rows, const Variant& next, const Variant& vId,
                   std::string_view codeColumn) {
  numberRows(rows, placesOf(rows, [](Recordset&) { return true; }), next, vId, codeColumn);
  rows.MoveLast();
  rows.MoveNext();
}

void keyCurrentRow(Recordset& rows, const Variant& vId, std::string_view codeColumn) {
  rows.Field(codeColumn).Value(vId);
  rows.Update();
}

}  // namespace tavelor
