// SPDX-License-Identifier: MIT
// A value assigned to a field becomes a value of the field's type.
#include <charconv>
#include <cmath>
#include <limits>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/recordset/recordset_store.hpp"

namespace tavelor {

namespace {

using dialect::OutputColumn;
using engine::ColumnType;

constexpr std::string_view kSource = "Field";

[[noreturn]] void refuseType(const Variant& value, const OutputColumn& column) {
  raise(errors::kWrongType, kSource,
        "Field '" + column.name + "' does not take a value of type " +
            std::string(typeName(value.type())) +
            (value.isText() ? " that reads '" + *value.getIf<std::string>() + "'" : std::string()));
}

[[noreturn]] void refuseRange(const OutputColumn& column) {
  raise(errors::kMultipleStep, kSource, "Field '" + column.name + "': the number is out of range");
}

/// Runs a conversion of the platform and tells its failure in the record set's numbers.
template <typename Convert>
auto converted(const Variant& value, const OutputColumn& column, Convert&& convert) {
  try {
    return convert();
  } catch (const Error& error) {
    if (error.number() == errors::kOverflow) refuseRange(column);
    refuseType(value, column);
  }
}

Variant toWhole(const Variant& value, const OutputColumn& column, const Locale& locale,
                std::int32_t low, std::int32_t high) {
  const std::int32_t number = converted(value, column, [&] { return value.toInt32(locale); });
  if (number < low || number > high) refuseRange(column);
  if (column.type == ColumnType::kInt32) return number;
  return static_cast<std::int16_t>(number);
}

Variant toSingle(const Variant& value, const OutputColumn& column, const Locale& locale) {
  const double number = converted(value, column, [&] { return value.toDouble(locale); });
  if (!(std::abs(number) <= static_cast<double>(std::numeric_limits<float>::max()))) {
    refuseRange(column);
  }
  return static_cast<float>(number);
}

Variant toDouble(const Variant& value, const OutputColumn& column, const Locale& locale) {
  const double number = converted(value, column, [&] { return value.toDouble(locale); });
  if (!std::isfinite(number)) refuseRange(column);
  return number;
}

Variant toText(const Variant& value, const OutputColumn& column, const Locale& locale) {
  std::string result = converted(value, column, [&] { return value.toText(locale); });
  if (!text::isValidUtf8(result)) {
    raise(errors::kWrongType, kSource, "Field '" + column.name + "': the text is no valid UTF-8");
  }
  // No statement can name such a text, and most programs would read its beginning only.
  if (result.find('\0') != std::string::npos) {
    raise(errors::kWrongType, kSource,
          "Field '" + column.name + "': the text has a character of code 0");
  }
  if (column.type == ColumnType::kText && column.definedSize > 0) {
    const auto size = static_cast<std::size_t>(column.definedSize);
    if (result.size() > size && text::length(result) > size) {
      raise(errors::kMultipleStep, kSource,
            "Field '" + column.name + "' takes " + std::to_string(size) +
                " characters; the text has " + std::to_string(text::length(result)));
    }
  }
  return result;
}

Variant toBytes(const Variant& value, const OutputColumn& column) {
  if (value.getIf<Bytes>() != nullptr) return value;
  const std::string* text = value.getIf<std::string>();
  if (text == nullptr) refuseType(value, column);
  const auto* first = reinterpret_cast<const std::byte*>(text->data());
  return Bytes(first, first + text->size());
}

}  // namespace

Variant coerce(const Variant& value, const OutputColumn& column, const Locale& locale) {
  if (value.isEmpty() || value.isNull()) return value;
  if (value.type() == VariantType::kObject) refuseType(value, column);
  switch (column.type) {
    case ColumnType::kBoolean:
      return converted(value, column, [&] { return value.toBoolean(locale); });
    case ColumnType::kByte:
      return toWhole(value, column, locale, 0, 255);
    case ColumnType::kInt16:
      return toWhole(value, column, locale, std::numeric_limits<std::int16_t>::min(),
                     std::numeric_limits<std::int16_t>::max());
    case ColumnType::kInt32:
      return toWhole(value, column, locale, std::numeric_limits<std::int32_t>::min(),
                     std::numeric_limits<std::int32_t>::max());
    case ColumnType::kSingle:
      return toSingle(value, column, locale);
    case ColumnType::kDouble:
      return toDouble(value, column, locale);
    case ColumnType::kCurrency:
      return converted(value, column, [&] { return value.toCurrency(locale); });
    case ColumnType::kDate:
      return converted(value, column, [&] { return value.toDate(locale); });
    case ColumnType::kText:
    case ColumnType::kMemo:
      return toText(value, column, locale);
    case ColumnType::kBinary:
      return toBytes(value, column);
  }
  return value;
}

double widen(float single) {
  char buffer[32];
  const auto written = std::to_chars(buffer, buffer + sizeof buffer, single);
  double result = static_cast<double>(single);
  std::from_chars(buffer, written.ptr, result);
  return result;
}

}  // namespace tavelor
