// SPDX-License-Identifier: MIT
// Values of the library as Qt's, and back.
#include "tavelor/qt/values.hpp"

#include <QtCore/QByteArray>
#include <array>
#include <charconv>
#include <cstddef>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"

namespace tavelor::qt {

namespace {

/// The double that prints as the single does: 0.1 stays 0.1.
double widened(float single) {
  std::array<char, 32> text{};
  const auto written = std::to_chars(text.begin(), text.end(), single);
  auto result = static_cast<double>(single);
  std::from_chars(text.begin(), written.ptr, result);
  return result;
}

Variant wholeOf(const QVariant& value) {
  bool isWhole = false;
  const qlonglong number = value.toLongLong(&isWhole);
  if (!isWhole) return toText(value.toString());
  return static_cast<std::int64_t>(number);
}

}  // namespace

QDateTime toQDateTime(Date date) {
  const CivilTime civil = date.civil();
  return {QDate(civil.year, civil.month, civil.day), QTime(civil.hour, civil.minute, civil.second)};
}

Date toDate(const QDateTime& moment) {
  const QDate day = moment.date();
  const QTime time = moment.time();
  return Date::of({day.year(), day.month(), day.day(), time.hour(), time.minute(), time.second()});
}

QVariant toQVariant(const Variant& value) {
  switch (value.type()) {
    case VariantType::kBoolean:
      return *value.getIf<bool>();
    case VariantType::kInt16:
      return static_cast<int>(*value.getIf<std::int16_t>());
    case VariantType::kInt32:
      return static_cast<int>(*value.getIf<std::int32_t>());
    case VariantType::kSingle:
      return widened(*value.getIf<float>());
    case VariantType::kDouble:
      return *value.getIf<double>();
    case VariantType::kCurrency:
      return value.getIf<Currency>()->toDouble();
    case VariantType::kDate:
      return toQDateTime(*value.getIf<Date>());
    case VariantType::kText:
      return toQString(*value.getIf<std::string>());
    case VariantType::kBytes: {
      const Bytes& bytes = *value.getIf<Bytes>();
      return QByteArray(reinterpret_cast<const char*>(bytes.data()),
                        static_cast<qsizetype>(bytes.size()));
    }
    case VariantType::kEmpty:
    case VariantType::kNull:
    case VariantType::kObject:
      break;
  }
  return {};
}

Variant toVariant(const QVariant& value) {
  if (!value.isValid()) return Null{};
  switch (value.typeId()) {
    case QMetaType::Bool:
      return value.toBool();
    case QMetaType::Int:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::Long:
      return wholeOf(value);
    case QMetaType::Double:
    case QMetaType::Float:
      return value.toDouble();
    case QMetaType::QString:
      return toText(value.toString());
    case QMetaType::QDate: {
      const QDate day = value.toDate();
      if (!day.isValid()) return Null{};
      return Date::of(day.year(), day.month(), day.day());
    }
    case QMetaType::QDateTime:
      if (!value.toDateTime().isValid()) return Null{};
      return toDate(value.toDateTime());
    case QMetaType::QTime: {
      if (!value.toTime().isValid()) return Null{};
      constexpr double kMillisecondsOfADay = 86'400'000.0;
      return Date(value.toTime().msecsSinceStartOfDay() / kMillisecondsOfADay);
    }
    case QMetaType::QByteArray: {
      const QByteArray bytes = value.toByteArray();
      const auto* first = reinterpret_cast<const std::byte*>(bytes.constData());
      return Bytes(first, first + bytes.size());
    }
    default:
      break;
  }
  if (value.canConvert<QString>()) return toText(value.toString());
  raise(
      errors::kWrongType, "Qt",
      "A field takes no " + std::string(value.typeName() != nullptr ? value.typeName() : "value"));
}

std::shared_ptr<const Locale> currentLocale() {
  const Apartment* apartment = Apartment::find();
  return apartment != nullptr ? apartment->installation().locale() : Locale::spanish();
}

}  // namespace tavelor::qt
