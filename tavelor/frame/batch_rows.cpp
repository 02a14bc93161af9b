// SPDX-License-Identifier: MIT
// Keys of rows that a grid holds back.
#include "tavelor/frame/batch_rows.hpp"

#include <vector>

#include "tavelor/frame/reading.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

// The rows in the order of the set, those that its filter hides too: a batch is numbered whole, and
// a row that leaves the view by its new key is found all the same. Changes are shared.
RecordsetPtr allRows(Recordset& rows) {
  rows.Update();
  RecordsetPtr all = rows.Clone();
  all->Sort(rows.Sort());
  return all;
}

// A key that is written may move its row in the order of the view, so they are all found first.
template <typename Wanted>
std::vector<Variant> placesOf(Recordset& rows, Wanted wanted) {
  std::vector<Variant> bookmarks;
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    if (wanted(rows)) bookmarks.push_back(rows.Bookmark());
  }
  return bookmarks;
}

constexpr auto kEveryRow = [](Recordset&) { return true; };

bool isUnstored(Recordset& rows) {
  const Variant key = rows.Field("ID").Value();
  return !key.isEmpty() && asNumber(key) == kUnstoredId;
}

// The key comes first: where the list shows none, nothing has changed.
template <typename Wanted, typename Write>
void numberRows(Recordset& rows, Wanted wanted, const Variant& next, Write alsoWrite) {
  const RecordsetPtr all = allRows(rows);
  double id = asNumber(next);
  for (const Variant& place : placesOf(*all, wanted)) {
    all->Bookmark(place);
    all->Field("ID").Value(id);
    alsoWrite(*all);
    all->Update();
    ++id;
  }
}

auto codeOf(const Variant& vId, std::string_view codeColumn) {
  return [&vId, codeColumn](Recordset& rows) { rows.Field(codeColumn).Value(vId); };
}

// None may be left to stand on: the filter lets the last row go when its new key is posted.
void standOnFirst(Recordset& rows) {
  if (rows.RecordCount() > 0) rows.MoveFirst();
}

}  // namespace

void numberNewRows(Recordset& rows, const Variant& next, const Variant& vId,
                   std::string_view codeColumn) {
  numberRows(rows, isUnstored, next, codeOf(vId, codeColumn));
  standOnFirst(rows);
}

void numberAllRows(Recordset& rows, const Variant& next, const Variant& vId,
                   std::string_view codeColumn) {
  numberRows(rows, kEveryRow, next, codeOf(vId, codeColumn));
  if (rows.RecordCount() == 0) return;
  rows.MoveLast();
  rows.MoveNext();
}

void keyAllRows(Recordset& rows, const Variant& next) {
  numberRows(rows, kEveryRow, next, [](Recordset&) {});
  standOnFirst(rows);
}

void keyCurrentRow(Recordset& rows, const Variant& vId, std::string_view codeColumn) {
  rows.Field(codeColumn).Value(vId);
  rows.Update();
}

}  // namespace tavelor
