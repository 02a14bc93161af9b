// SPDX-License-Identifier: MIT
// The rows of a set as rows of the tables that they were read from.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

/// Whether the column can be read and written in a row of that table.
bool isOf(const dialect::OutputColumn& column, std::string_view table);
/// A name between quotes, behind `sql`.
void appendName(std::string& sql, std::string_view name);
/// " WHERE key=? AND ..." of the table's row that is shown in `row`, and the values.
void appendKey(std::string& sql, std::vector<engine::Value>& values, const RecordsetStore& store,
               std::string_view table, RecordsetStore::Row row);
/// Names a column of the row of its table that is shown in `row`: the same in all rows that show
/// it.
std::string placeOf(const RecordsetStore& store, RecordsetStore::Row row, std::size_t column);

}  // namespace tavelor
