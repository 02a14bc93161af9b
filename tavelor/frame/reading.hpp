// SPDX-License-Identifier: MIT
// From a column to a variable, for the members of the classes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Recordset;
class Variant;

/// 0 for Empty and Null. A text is read by the locale; raises 13 for one that is no number.
TAVELOR_API double asNumber(const Variant& value);
/// The same in single precision. Raises 6 for a number that is too large.
TAVELOR_API float asSingle(const Variant& value);
/// False for Empty and Null.
TAVELOR_API bool asFlag(const Variant& value);

/// Output variables take a column of the current row and keep what they hold where it is null.
TAVELOR_API void takeColumn(Recordset& rows, std::string_view column, std::string& to);
/// A text is read by the locale; raises 6 for a number that does not fit.
TAVELOR_API void takeColumn(Recordset& rows, std::string_view column, std::int16_t& to);
/// The same.
TAVELOR_API void takeColumn(Recordset& rows, std::string_view column, std::int32_t& to);
/// The same.
TAVELOR_API void takeColumn(Recordset& rows, std::string_view column, float& to);
/// The same.
TAVELOR_API void takeColumn(Recordset& rows, std::string_view column, double& to);
/// Any number but 0 is true.
TAVELOR_API void takeColumn(Recordset& rows, std::string_view column, bool& to);
/// As it is, whatever its type.
TAVELOR_API void takeColumn(Recordset& rows, std::string_view column, Variant& to);

/// The same, with `missing` for null.
TAVELOR_API void takeColumnOr(Recordset& rows, std::string_view column, std::string_view missing,
                              std::string& to);

/// A column of all rows from the current one on; the set is left at EOF.
TAVELOR_API std::vector<Variant> columnValues(Recordset& rows, std::string_view column);

}  // namespace tavelor
