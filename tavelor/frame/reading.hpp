// SPDX-License-Identifier: MIT
// From a column to a variable, for the members of the classes.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace tavelor {

class Recordset;
class Variant;

/// 0 for Empty and Null. A text is read by the locale; raises 13 for one that is no number.
double asNumber(const Variant& value);
/// The same in single precision. Raises 6 for a number that is too large.
float asSingle(const Variant& value);
/// False for Empty and Null.
bool asFlag(const Variant& value);

/// Output variables take a column of the current row and keep what they hold where it is null.
void takeColumn(Recordset& rows, std::string_view column, std::string& to);
/// A text is read by the locale; raises 6 for a number that does not fit.
void takeColumn(Recordset& rows, std::string_view column, std::int16_t& to);
/// The same.
void takeColumn(Recordset& rows, std::string_view column, std::int32_t& to);
/// The same.
void takeColumn(Recordset& rows, std::string_view column, float& to);
/// The same.
void takeColumn(Recordset& rows, std::string_view column, double& to);
/// Any number but 0 is true.
void takeColumn(Recordset& rows, std::string_view column, bool& to);
/// As it is, whatever its type.
void takeColumn(Recordset& rows, std::string_view column, Variant& to);

/// The same, with `missing` for null.
void takeColumnOr(Recordset& rows, std::string_view column, std::string_view missing,
                  std::string& to);

/// A column of all rows from the current one on; the set is left at EOF.
std::vector<Variant> columnValues(Recordset& rows, std::string_view column);

}  // namespace tavelor
