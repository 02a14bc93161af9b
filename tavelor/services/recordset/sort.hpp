// SPDX-License-Identifier: MIT
// The order of a record set's view.
#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

struct SortKey {
  std::uint32_t column = 0;
  bool descending = false;
};

/// Reads "field [ASC|DESC], ...". Names may stand in brackets, those with blanks too without.
/// Of a field that is named again only the first place counts, so there are never more keys than
/// columns. Raises 3265 for an unknown field, 3001 for another word behind one.
std::vector<SortKey> parseOrder(std::string_view order, const RecordsetSchema& schema);

/// Sorts row numbers: Null before everything, texts by character code, equal rows by row number.
void sortRows(const RecordsetStore& store, const std::vector<SortKey>& order,
              std::vector<RecordsetStore::Row>& rows);

/// True if row `a` comes before row `b`. With no keys, by row number.
bool comesBefore(const RecordsetStore& store, const std::vector<SortKey>& order,
                 RecordsetStore::Row a, RecordsetStore::Row b);

}  // namespace tavelor
