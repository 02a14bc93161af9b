// SPDX-License-Identifier: MIT
// The platform's format function: which kind of mask, and the named formats.
#include "tavelor/platform/format.hpp"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format_parts.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/variant.hpp"

namespace tavelor {

namespace {

enum class MaskKind { kNumber, kDate, kText, kLiteral };

/// The first character with a meaning decides.
MaskKind kindOf(std::string_view mask) {
  for (std::size_t i = 0; i < mask.size(); ++i) {
    switch (mask[i]) {
      case '\\':
        ++i;
        break;
      case '"':
        i = mask.find('"', i + 1);
        if (i == std::string_view::npos) return MaskKind::kLiteral;
        break;
      case '0':
      case '#':
      case '%':
      case '.':
        return MaskKind::kNumber;
      case '@':
      case '&':
      case '<':
      case '>':
      case '!':
        return MaskKind::kText;
      case 'd':
      case 'D':
      case 'm':
      case 'M':
      case 'y':
      case 'Y':
      case 'h':
      case 'H':
      case 'n':
      case 'N':
      case 's':
      case 'S':
      case 'w':
      case 'W':
      case 'q':
      case 'Q':
      case 'c':
      case 'C':
        return MaskKind::kDate;
      case 'a':
      case 'A':
        if (startsHalfDay(mask.substr(i))) return MaskKind::kDate;
        break;
      case 't':
      case 'T':
        if (text::equalsIgnoreCase(mask.substr(i, 5), "ttttt")) return MaskKind::kDate;
        break;
      default:
        break;
    }
  }
  return MaskKind::kLiteral;
}

/// A value that a number mask can show; nothing when it must pass unchanged.
std::optional<DecimalDigits> digitsOfValue(const Variant& value, const Locale& locale) {
  switch (value.type()) {
    case VariantType::kCurrency:
      return digitsOf(value.getIf<Currency>()->scaled(), 4);
    case VariantType::kSingle: {
      const float number = *value.getIf<float>();
      if (!std::isfinite(number)) return std::nullopt;
      return digitsOf(number);
    }
    case VariantType::kInt32:
      return digitsOf(*value.getIf<std::int32_t>(), 0);
    case VariantType::kText: {
      const auto number = parseNumber(*value.getIf<std::string>(), locale);
      if (!number) return std::nullopt;
      return digitsOf(*number);
    }
    default: {
      const double number = value.toDouble(locale);
      if (!std::isfinite(number)) return std::nullopt;
      return digitsOf(number);
    }
  }
}

std::optional<Date> dateOfValue(const Variant& value, const Locale& locale) {
  if (const auto* text = value.getIf<std::string>()) {
    if (const auto date = parseDate(*text, locale)) return date;
    if (!parseNumber(*text, locale)) return std::nullopt;
  }
  return value.toDate(locale);
}

std::string byNumberMask(const Variant& value, std::string_view mask, const Locale& locale) {
  const auto number = digitsOfValue(value, locale);
  return number ? formatNumber(*number, mask, locale) : value.toText(locale);
}

std::string byDateMask(const Variant& value, std::string_view mask, const Locale& locale) {
  const auto date = dateOfValue(value, locale);
  return date ? formatDate(*date, mask, locale) : value.toText(locale);
}

std::string asGeneralNumber(const Variant& value, const Locale& locale) {
  if (value.type() == VariantType::kSingle || value.type() == VariantType::kCurrency) {
    return value.toText(locale);
  }
  if (value.isText() && !parseNumber(*value.getIf<std::string>(), locale)) {
    return value.toText(locale);
  }
  return plainNumber(value.toDouble(locale), locale);
}

std::string asCurrency(const Variant& value, const Locale& locale) {
  const auto number = digitsOfValue(value, locale);
  if (!number) return value.toText(locale);
  std::string amount = formatNumber(*number, "#,##0.00", locale);
  if (locale.currencySymbolBehind) return amount + ' ' + locale.currencySymbol;
  return amount.insert(amount.front() == '-' ? 1 : 0, locale.currencySymbol);
}

/// Yes/No and its kin: any number but 0 is the first word; a text may be a boolean's word.
std::string asWord(const Variant& value, const std::string& yes, const std::string& no,
                   const Locale& locale) {
  if (value.isText()) {
    try {
      return value.toBoolean(locale) ? yes : no;
    } catch (const Error&) {
      return value.toText(locale);
    }
  }
  return value.toBoolean(locale) ? yes : no;
}

std::string asGeneralDate(const Variant& value, const Locale& locale) {
  const auto date = dateOfValue(value, locale);
  return date ? generalDate(*date, locale) : value.toText(locale);
}

using NamedFormat = std::string (*)(const Variant&, const Locale&);

struct Name {
  std::string_view name;
  NamedFormat write;
};

constexpr std::array<Name, 16> kNames{{
    {"General Number", asGeneralNumber},
    {"Currency", asCurrency},
    {"Fixed", [](const Variant& v, const Locale& l) { return byNumberMask(v, "0.00", l); }},
    {"Standard", [](const Variant& v, const Locale& l) { return byNumberMask(v, "#,##0.00", l); }},
    {"Percent", [](const Variant& v, const Locale& l) { return byNumberMask(v, "0.00%", l); }},
    {"Scientific",
     [](const Variant& v, const Locale& l) { return byNumberMask(v, "0.00E+00", l); }},
    {"Yes/No", [](const Variant& v, const Locale& l) { return asWord(v, l.yes, l.no, l); }},
    {"True/False",
     [](const Variant& v, const Locale& l) { return asWord(v, l.trueText, l.falseText, l); }},
    {"On/Off", [](const Variant& v, const Locale& l) { return asWord(v, l.on, l.off, l); }},
    {"General Date", asGeneralDate},
    {"Long Date", [](const Variant& v, const Locale& l) { return byDateMask(v, l.longDate, l); }},
    {"Medium Date",
     [](const Variant& v, const Locale& l) { return byDateMask(v, "dd-mmm-yy", l); }},
    {"Short Date", [](const Variant& v, const Locale& l) { return byDateMask(v, l.shortDate, l); }},
    {"Long Time", [](const Variant& v, const Locale& l) { return byDateMask(v, l.longTime, l); }},
    {"Medium Time",
     [](const Variant& v, const Locale& l) { return byDateMask(v, "hh:nn AM/PM", l); }},
    {"Short Time", [](const Variant& v, const Locale& l) { return byDateMask(v, l.shortTime, l); }},
}};

NamedFormat named(std::string_view mask) {
  for (const Name& entry : kNames) {
    if (entry.name.size() == mask.size() && text::equalsIgnoreCase(entry.name, mask)) {
      return entry.write;
    }
  }
  return nullptr;
}

/// The masks behind the names that only round and group.
std::string_view maskBehind(std::string_view mask) {
  if (text::equalsIgnoreCase(mask, "Standard")) return "#,##0.00";
  return text::equalsIgnoreCase(mask, "Fixed") ? "0.00" : mask;
}

}  // namespace

std::string format(const Variant& value, std::string_view mask, const Locale& locale) {
  const NamedFormat byName = named(mask);
  if (value.isNull()) return byName == nullptr ? formatNullSection(mask, locale) : std::string();
  if (mask.empty()) return value.toText(locale);
  if (byName != nullptr) return byName(value, locale);
  switch (kindOf(mask)) {
    case MaskKind::kDate:
      return byDateMask(value, mask, locale);
    case MaskKind::kText:
      return formatText(value.toText(locale), mask);
    case MaskKind::kNumber:
    case MaskKind::kLiteral:
      break;
  }
  return byNumberMask(value, mask, locale);
}

RoundingMask::RoundingMask(std::string_view mask, const Locale& locale)
    : mask_(mask), locale_(locale), decimals_(roundedDecimals(maskBehind(mask))) {}

bool readsBack(std::string_view mask, const Locale& locale) {
  // Nothing, whole and broken numbers, both signs, with and without groups.
  constexpr std::array kTried{0.0, 0.25, 1.0, 1.5, -1.5, 1234.5, -9876543.25};
  constexpr double kRounding = 0.5;
  return std::all_of(kTried.begin(), kTried.end(), [&](double number) {
    const auto read = parseNumber(format(number, mask, locale), locale);
    return read && std::fabs(*read - number) <= kRounding;
  });
}

double RoundingMask::operator()(double value) const {
  constexpr double kMostWhole = 1e15;  // from here on digits are lost before the point
  if (decimals_ >= 0 && std::fabs(value) < kMostWhole) return roundHalfAway(value, decimals_);
  return Variant(format(value, mask_, locale_)).toDouble(locale_);
}

}  // namespace tavelor
