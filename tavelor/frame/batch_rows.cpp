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

template <typename Write>
void numberRows(Recordset& rows, const std::vector<Variant>& places, const Variant& next,
                Write alsoWrite) {
  double id = number(next);
  for (const Variant& place : places) {
    rows.Bookmark(place);
    alsoWrite(rows);
    rows.Field("ID").Value(id);
    rows.Update();
    ++id;
  }
}

constexpr auto kEveryRow = [](Recordset&) { return true; };

auto codeOf(const Variant& vId, std::string_view codeColumn) {
  return [&vId, codeColumn](Recordset& rows) { rows.Field(codeColumn).Value(vId); };
}

}  // namespace

void numberNewRows(Recordset& rows, const Variant& next, const Variant& vId,
                   std::string_view codeColumn) {
  numberRows(rows, placesOf(rows, isUnstored), next, codeOf(vId, codeColumn));
  rows.MoveFirst();
}

void numberAllRows(Recordset& rows, const Variant& next, const Variant& vId,
                   std::string_view codeColumn) {
  numberRows(rows, placesOf(rows, kEveryRow), next, codeOf(vId, codeColumn));
  rows.MoveLast();
  rows.MoveNext();
}

void keyAllRows(Recordset& rows, const Variant& next) {
  numberRows(rows, placesOf(rows, kEveryRow), next, [](Recordset&) {});
  rows.MoveFirst();
}

void keyCurrentRow(Recordset& rows, const Variant& vId, std::string_view codeColumn) {
  rows.Field(codeColumn).Value(vId);
  rows.Update();
}

}  // namespace tavelor
