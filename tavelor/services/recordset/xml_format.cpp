// SPDX-License-Identifier: MIT
// The shape of a record set as XML: types, names and values.
#include "tavelor/services/recordset/xml_format.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <unordered_set>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor::xml {

namespace {

using engine::ColumnType;

constexpr long double kSecondsPerDay = 86'400;

// In reading, the first row with the same names decides.
constexpr TypeName kTypes[] = {
    {DataType::kInt16, "i2", ""},
    {DataType::kInt32, "int", ""},
    {DataType::kSingle, "r4", ""},
    {DataType::kDouble, "float", ""},
    {DataType::kCurrency, "number", "currency"},
    {DataType::kNumeric, "number", "numeric"},
    {DataType::kDecimal, "number", "decimal"},
    {DataType::kDecimal, "number", ""},
    {DataType::kDate, "dateTime", "variantdate"},
    {DataType::kTimestamp, "dateTime", "timestamp"},
    {DataType::kDate, "dateTime", ""},
    {DataType::kDbDate, "date", ""},
    {DataType::kDbTime, "time", ""},
    {DataType::kBoolean, "boolean", ""},
    {DataType::kByte, "ui1", ""},
    {DataType::kGuid, "uuid", ""},
    {DataType::kVarWChar, "string", ""},
    {DataType::kVarChar, "string", "str"},
    {DataType::kWChar, "string", "wstr"},
    {DataType::kChar, "string", "char"},
    {DataType::kBstr, "string", "bstr"},
    {DataType::kVarBinary, "bin.hex", ""},
    {DataType::kBinary, "bin.hex", "binary"},
};

DataType withoutLength(DataType type) {
  switch (type) {
    case DataType::kLongVarChar:
      return DataType::kVarChar;
    case DataType::kLongVarWChar:
      return DataType::kVarWChar;
    case DataType::kLongVarBinary:
      return DataType::kVarBinary;
    default:
      return type;
  }
}

DataType withoutLimit(DataType type) {
  switch (type) {
    case DataType::kVarChar:
      return DataType::kLongVarChar;
    case DataType::kVarWChar:
      return DataType::kLongVarWChar;
    case DataType::kVarBinary:
      return DataType::kLongVarBinary;
    default:
      return type;
  }
}

// ---- Names

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}

/// ASCII letters, digits and _ and the letters from À on, which XML takes in names; the two signs
/// among those (× and ÷) it does not.
bool isXmlName(std::string_view name) {
  if (name.empty() || isDigit(name.front())) return false;
  for (std::size_t i = 0; i < name.size(); ++i) {
    const auto c = static_cast<unsigned char>(name[i]);
    if ((c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || isDigit(name[i]) || c == '_') continue;
    const auto next = i + 1 < name.size() ? static_cast<unsigned char>(name[i + 1]) : 0U;
    if (c != 0xC3 || next < 0x80 || next > 0xBF || next == 0x97 || next == 0xB7) return false;
    ++i;
  }
  return true;
}

bool isSynthetic(std::string_view name) {
  return name.size() > 1 && name.front() == 'c' &&
         std::all_of(name.begin() + 1, name.end(), isDigit);
}

bool startsWithXml(std::string_view name) {
  return name.size() >= 3 && text::equalsIgnoreCase(name.substr(0, 3), "xml");
}

// ---- Values

std::string currencyText(Currency amount) {
  const std::int64_t scaled = amount.scaled();
  const std::uint64_t size = scaled < 0 ? std::uint64_t{0} - static_cast<std::uint64_t>(scaled)
                                        : static_cast<std::uint64_t>(scaled);
  return fmt::format("{}{}.{:04}", scaled < 0 ? "-" : "", size / 10'000, size % 10'000);
}

std::string hexText(const Bytes& bytes) {
  constexpr std::string_view kDigits = "0123456789abcdef";
  std::string text;
  text.reserve(bytes.size() * 2);
  for (const std::byte b : bytes) {
    text += kDigits[std::to_integer<std::size_t>(b >> 4)];
    text += kDigits[std::to_integer<std::size_t>(b & std::byte{15})];
  }
  return text;
}

template <typename T>
std::optional<T> numberOf(std::string_view text) {
  if (!text.empty() && text.front() == '+') text.remove_prefix(1);
  T value{};
  const auto read = std::from_chars(text.data(), text.data() + text.size(), value);
  if (text.empty() || read.ec != std::errc() || read.ptr != text.data() + text.size()) {
    return std::nullopt;
  }
  return value;
}

std::optional<Variant> wholeOf(std::string_view text, ColumnType type) {
  const auto value = numberOf<std::int32_t>(text);
  if (!value) return std::nullopt;
  if (type == ColumnType::kInt32) return Variant(*value);
  const std::int32_t low = type == ColumnType::kByte ? 0 : std::numeric_limits<std::int16_t>::min();
  const std::int32_t high =
      type == ColumnType::kByte ? 255 : std::numeric_limits<std::int16_t>::max();
  if (*value < low || *value > high) return std::nullopt;
  return Variant(static_cast<std::int16_t>(*value));
}

std::optional<Variant> currencyOf(std::string_view text) {
  // Up to four decimals are read digit by digit, for a double does not hold all amounts.
  std::string digits(text);
  const std::size_t point = digits.find('.');
  const std::size_t decimals = point == std::string::npos ? 0 : digits.size() - point - 1;
  if (decimals <= 4) {
    if (point != std::string::npos) digits.erase(point, 1);
    digits.append(4 - decimals, '0');
    if (const auto scaled = numberOf<std::int64_t>(digits)) {
      return Variant(Currency::fromScaled(*scaled));
    }
  }
  const auto value = numberOf<double>(text);
  if (!value || !(std::abs(*value) < 9.2e14)) return std::nullopt;
  return Variant(Currency::fromDouble(*value));
}

std::optional<Variant> booleanOf(std::string_view text) {
  if (text == "1" || text == "-1" || text::equalsIgnoreCase(text, "true")) return Variant(true);
  if (text == "0" || text::equalsIgnoreCase(text, "false")) return Variant(false);
  return std::nullopt;
}

/// Digits at a place of a fixed width.
std::optional<int> digitsAt(std::string_view text, std::size_t at, std::size_t count) {
  if (text.size() < at + count) return std::nullopt;
  const std::string_view digits = text.substr(at, count);
  if (!std::all_of(digits.begin(), digits.end(), isDigit)) return std::nullopt;
  return numberOf<int>(digits);
}

/// "hh:mm:ss[.f]" as a part of a day. Computed in more bits than a day number has, so that there is
/// a text for each day number.
std::optional<double> timeOf(std::string_view text) {
  const auto hour = digitsAt(text, 0, 2);
  const auto minute = digitsAt(text, 3, 2);
  const auto second = digitsAt(text, 6, 2);
  if (!hour || !minute || !second || text[2] != ':' || text[5] != ':') return std::nullopt;
  if (*hour > 23 || *minute > 59 || *second > 59) return std::nullopt;
  long double seconds = *hour * 3600 + *minute * 60 + *second;
  if (text.size() > 8) {
    if (text[8] != '.' || text.size() == 9) return std::nullopt;
    const std::string_view decimals = text.substr(9);
    if (!std::all_of(decimals.begin(), decimals.end(), isDigit)) return std::nullopt;
    seconds += numberOf<long double>("0." + std::string(decimals)).value_or(0);
  }
  return static_cast<double>(seconds / kSecondsPerDay);
}

/// The shortest text, by threes of decimals, that reads as the same part of a day. Nearly all times
/// are whole seconds; a time close to day zero may need more than nanoseconds.
std::string timeText(double fraction) {
  constexpr int kMostDecimals = 345;  // those of the smallest double
  const long double seconds = static_cast<long double>(fraction) * kSecondsPerDay;
  std::string text;
  for (int decimals = 0; decimals <= kMostDecimals; decimals += 3) {
    const std::string digits = fmt::format("{:.{}f}", seconds, decimals);
    const std::size_t point = std::min(digits.find('.'), digits.size());
    const int whole = numberOf<int>(std::string_view(digits).substr(0, point)).value_or(0);
    if (whole == static_cast<int>(kSecondsPerDay)) continue;  // rounded up to the next day
    text = fmt::format("{:02}:{:02}:{:02}{}", whole / 3600, whole / 60 % 60, whole % 60,
                       std::string_view(digits).substr(point));
    if (timeOf(text) == fraction) break;
  }
  if (text.find('.') != std::string::npos) text.erase(text.find_last_not_of('0') + 1);
  return text;
}

std::string dateText(Date date) {
  const double day = std::trunc(date.days());
  const CivilTime civil = Date(day).civil();
  // A part of day zero counted backward is the same time as forward, but another number.
  const bool backward = day == 0 && date.days() < 0;
  return fmt::format("{}{:04}-{:02}-{:02}T{}", backward ? "-" : "", civil.year, civil.month,
                     civil.day, timeText(std::abs(date.days() - day)));
}

std::optional<Variant> dateOf(std::string_view text) {
  if (text.starts_with("-1899-12-30T")) {
    const auto time = timeOf(text.substr(12));
    return time ? std::optional<Variant>(Date(-*time)) : std::nullopt;
  }
  if (text.size() >= 3 && text[2] == ':') {
    const auto time = timeOf(text);
    return time ? std::optional<Variant>(Date(*time)) : std::nullopt;
  }
  const auto year = digitsAt(text, 0, 4);
  const auto month = digitsAt(text, 5, 2);
  const auto day = digitsAt(text, 8, 2);
  if (!year || !month || !day || text[4] != '-' || text[7] != '-') return std::nullopt;
  const auto date = Date::tryOf({*year, *month, *day, 0, 0, 0});
  if (!date) return std::nullopt;
  if (text.size() == 10) return Variant(*date);
  const auto time = text[10] == 'T' ? timeOf(text.substr(11)) : std::nullopt;
  if (!time) return std::nullopt;
  return Variant(Date(date->days() < 0 ? date->days() - *time : date->days() + *time));
}

std::optional<Variant> bytesOf(std::string_view text) {
  if (text.size() % 2 != 0) return std::nullopt;
  Bytes bytes;
  bytes.reserve(text.size() / 2);
  for (std::size_t i = 0; i < text.size(); i += 2) {
    unsigned value = 0;
    const char* first = text.data() + i;
    const auto read = std::from_chars(first, first + 2, value, 16);
    if (read.ec != std::errc() || read.ptr != first + 2) return std::nullopt;
    bytes.push_back(static_cast<std::byte>(value));
  }
  return Variant(std::move(bytes));
}

template <typename T>
std::optional<Variant> finiteOf(std::string_view text) {
  const auto value = numberOf<T>(text);
  if (!value || !std::isfinite(*value)) return std::nullopt;
  return Variant(*value);
}

// ---- Characters that XML has not

bool isForbidden(char c) {
  return static_cast<unsigned char>(c) < 0x20 && c != '\t' && c != '\n' && c != '\r';
}

/// The character that an escape at `at` stands for, or -1.
int escapedAt(std::string_view text, std::size_t at) {
  constexpr std::size_t kLength = 7;  // _x0001_
  if (text.size() < at + kLength || text[at] != '_' || text[at + 1] != 'x' || text[at + 6] != '_') {
    return -1;
  }
  int code = -1;
  const char* first = text.data() + at + 2;
  const auto read = std::from_chars(first, first + 4, code, 16);
  return read.ec == std::errc() && read.ptr == first + 4 && code >= 0 && code < 0x80 ? code : -1;
}

}  // namespace

TypeName nameOf(DataType type) {
  const DataType sized = withoutLength(type);
  for (const TypeName& entry : kTypes) {
    if (entry.type == sized) return {type, entry.name, entry.dbType};
  }
  return {type, "string", ""};
}

std::optional<DataType> typeOf(std::string_view name, std::string_view dbType, bool isLong) {
  const auto search = [&](std::string_view db) -> std::optional<DataType> {
    for (const TypeName& entry : kTypes) {
      if (entry.name == name && entry.dbType == db) {
        return isLong ? withoutLimit(entry.type) : entry.type;
      }
    }
    return std::nullopt;
  };
  const std::optional<DataType> exact = search(dbType);
  return exact ? exact : search("");
}

std::vector<std::string> attributeNames(const RecordsetSchema& schema) {
  std::vector<std::string> names;
  std::unordered_set<std::string_view> used;
  for (std::size_t i = 0; i < schema.columns().size(); ++i) {
    const std::string& name = schema.columns()[i].name;
    const bool usable = isXmlName(name) && !isSynthetic(name) && !startsWithXml(name);
    names.push_back(usable && used.insert(name).second ? name : "c" + std::to_string(i));
  }
  return names;
}

std::string textOf(const Variant& value) {
  if (const auto* s = value.getIf<std::string>()) return escapeControls(*s);
  if (const auto* b = value.getIf<bool>()) return *b ? "True" : "False";
  if (const auto* i = value.getIf<std::int16_t>()) return fmt::format("{}", *i);
  if (const auto* l = value.getIf<std::int32_t>()) return fmt::format("{}", *l);
  if (const auto* f = value.getIf<float>()) return fmt::format("{}", *f);
  if (const auto* d = value.getIf<double>()) return fmt::format("{}", *d);
  if (const auto* c = value.getIf<Currency>()) return currencyText(*c);
  if (const auto* t = value.getIf<Date>()) return dateText(*t);
  return hexText(*value.getIf<Bytes>());
}

std::optional<Variant> valueOf(std::string_view text, ColumnType type) {
  switch (type) {
    case ColumnType::kByte:
    case ColumnType::kInt16:
    case ColumnType::kInt32:
      return wholeOf(text, type);
    case ColumnType::kSingle:
      return finiteOf<float>(text);
    case ColumnType::kDouble:
      return finiteOf<double>(text);
    case ColumnType::kCurrency:
      return currencyOf(text);
    case ColumnType::kDate:
      return dateOf(text);
    case ColumnType::kBoolean:
      return booleanOf(text);
    case ColumnType::kText:
    case ColumnType::kMemo:
      return Variant(text);
    case ColumnType::kBinary:
      return bytesOf(text);
  }
  return std::nullopt;
}

std::string escapeControls(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    if (isForbidden(text[i]) || escapedAt(text, i) >= 0) {
      result += fmt::format("_x{:04X}_", static_cast<unsigned>(text[i]));
    } else {
      result += text[i];
    }
  }
  return result;
}

std::string unescapeControls(std::string_view text) {
  std::string result;
  result.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    const int code = escapedAt(text, i);
    result += code >= 0 ? static_cast<char>(code) : text[i];
    if (code >= 0) i += 6;
  }
  return result;
}

}  // namespace tavelor::xml
