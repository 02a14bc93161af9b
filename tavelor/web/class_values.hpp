// SPDX-License-Identifier: MIT
// Values of columns on their way from and to JSON.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tavelor/platform/variant.hpp"
#include "tavelor/web/class_shape.hpp"
#include "tavelor/web/json.hpp"

namespace tavelor {
class RecordClass;
class Recordset;
}  // namespace tavelor

namespace tavelor::web {

/// A value as its column wants one: codes and texts as texts, days as "2026-11-20" with a time
/// behind "T" where they have one, bytes as base64. `fault` tells what is wrong with another one:
/// "must be a number".
Variant valueOf(const Json& json, const ClassColumn& column, std::string& fault);

/// Of the current row.
Json cellOf(const Recordset& rows, const ClassColumn& column);
/// The same for a list: of bytes their number, of a memo its beginning.
Json cellOfList(const Recordset& rows, const ClassColumn& column);
/// All of the current row, by their names; of equal names the first.
Json valuesOf(const Recordset& rows, const ClassColumns& columns);
/// What tells the current row from all others, by name.
Json keyOfRow(const Recordset& rows, const ClassColumns& columns);

/// Why a text does not fit a column, as the class's form finds it, or "".
std::string faultOf(const RecordClass& record, const ClassColumn& column, const Variant& value);

/// The first `limit` rows from the current one on, as a list shows them.
Json rowsOf(Recordset& rows, const ClassColumns& columns, std::int64_t limit);

}  // namespace tavelor::web
