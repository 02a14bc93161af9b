// SPDX-License-Identifier: MIT
// What may be typed into a control, by the type of the field behind it.
#include "tavelor/frame/controls.hpp"
#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

// Length of an entry where the type gives none.
constexpr std::int32_t kUsualLength = 10;
// A whole number's precision counts more digits than a form has room for.
constexpr std::int32_t kWholeNumberMargin = 5;
// Control keys and the blank.
constexpr std::int16_t kLastControlKey = 32;
// Below it lie the digits, the signs and the separators.
constexpr std::int16_t kFirstLetter = 65;

DataType typeOf(const Field& field) {
  return static_cast<DataType>(field.Type());
}

}  // namespace

std::int32_t RecordClass::ValidaDefinedSize(const Control& Text) const {
  const Field field = primary().Field(Text.DataField());
  switch (typeOf(field)) {
    case DataType::kInt32:
      return field.Precision() - kWholeNumberMargin;
    case DataType::kDouble:
      return field.Precision();
    case DataType::kVarChar:
    case DataType::kVarWChar:
    case DataType::kLongVarWChar:
      return field.DefinedSize();
    default:
      return kUsualLength;
  }
}

bool RecordClass::ValidaKey(const Control& Text, std::int16_t KeyAscii) const {
  if (KeyAscii <= kLastControlKey) return true;
  const Field field = primary().Field(Text.DataField());
  const auto length = static_cast<std::int32_t>(text::length(Text.defaultText()));
  switch (typeOf(field)) {
    case DataType::kInt32:
      return KeyAscii < kFirstLetter && length < field.Precision() - kWholeNumberMargin;
    case DataType::kVarChar:
    case DataType::kVarWChar:
      return length < field.DefinedSize();
    case DataType::kLongVarWChar:
      return true;
    default:
      return KeyAscii < kFirstLetter && length < field.Precision();
  }
}

bool RecordClass::ValidaValue(const Control& Text) const {
  const Locale& locale = Apartment::current().locale();
  switch (typeOf(primary().Field(Text.DataField()))) {
    case DataType::kInt32:
    case DataType::kDouble:
      return isNumeric(Text.defaultText(), locale);
    case DataType::kDate:
    case DataType::kTimestamp:
      return isDate(Text.defaultText(), locale);
    default:
      return true;
  }
}

}  // namespace tavelor
