// SPDX-License-Identifier: MIT
// Conversions of columns by the apartment's locale.
#include "tavelor/frame/reading.hpp"

#include <algorithm>
#include <cmath>
#include <limits>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

const Locale& locale() {
  return Apartment::current().locale();
}

template <typename Convert>
void takeUnlessNull(Recordset& rows, std::string_view column, Convert&& convert) {
  const Variant found = rows.Field(column).Value();
  if (!found.isNull()) convert(found);
}

}  // namespace

double asNumber(const Variant& value) {
  return value.isNull() ? 0 : value.toDouble(locale());
}

float asSingle(const Variant& value) {
  const double wide = asNumber(value);
  if (!(std::fabs(wide) <= std::numeric_limits<float>::max())) {
    raise(errors::kOverflow, "Variant", "The number is too large for single precision");
  }
  return static_cast<float>(wide);
}

bool asFlag(const Variant& value) {
  return !value.isNull() && value.toBoolean(locale());
}

void takeColumn(Recordset& rows, std::string_view column, std::string& to) {
  takeUnlessNull(rows, column, [&](const Variant& v) { to = v.toText(locale()); });
}

void takeColumn(Recordset& rows, std::string_view column, std::int16_t& to) {
  takeUnlessNull(rows, column, [&](const Variant& v) { to = v.toInt16(locale()); });
}

void takeColumn(Recordset& rows, std::string_view column, std::int32_t& to) {
  takeUnlessNull(rows, column, [&](const Variant& v) { to = v.toInt32(locale()); });
}

void takeColumn(Recordset& rows, std::string_view column, float& to) {
  takeUnlessNull(rows, column,
                 [&](const Variant& v) { to = static_cast<float>(v.toDouble(locale())); });
}

void takeColumn(Recordset& rows, std::string_view column, double& to) {
  takeUnlessNull(rows, column, [&](const Variant& v) { to = v.toDouble(locale()); });
}

void takeColumn(Recordset& rows, std::string_view column, bool& to) {
  takeUnlessNull(rows, column, [&](const Variant& v) { to = v.toBoolean(locale()); });
}

void takeColumn(Recordset& rows, std::string_view column, Variant& to) {
  takeUnlessNull(rows, column, [&](const Variant& v) { to = v; });
}

void takeColumnOr(Recordset& rows, std::string_view column, std::string_view missing,
                  std::string& to) {
  to = missing;
  takeColumn(rows, column, to);
}

std::vector<Variant> columnValues(Recordset& rows, std::string_view column) {
  std::vector<Variant> values;
  values.reserve(static_cast<std::size_t>(std::max(rows.RecordCount(), 0)));
  for (; !rows.Eof(); rows.MoveNext()) values.push_back(rows.Field(column).Value());
  return values;
}

}  // namespace tavelor
