// SPDX-License-Identifier: MIT
// What an error of a record set was about.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

/// "row of Bancos with Codigo '001'", the key as it is known to the database, or as it is to be
/// written where the row is new. Without the key where the set does not show it.
std::string rowNote(const RecordsetStore& store, RecordsetStore::Row row);

/// Raises 3021, noting whose rows they are.
[[noreturn]] void raiseNoCurrentRow(const RecordsetStore& store);
/// Raises the conflict error for some of `count` rows, noting the first of them.
[[noreturn]] void raiseNotLocated(const RecordsetStore& store,
                                  const std::vector<RecordsetStore::Row>& conflicts,
                                  std::size_t count);

}  // namespace tavelor
