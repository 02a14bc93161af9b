// SPDX-License-Identifier: MIT
// A value of any of the platform's types, and its conversions.
#include "tavelor/platform/variant.hpp"

#include <array>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/decimal_digits.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/format_parts.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_reader.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kSource = "Variant";
constexpr int kCurrencyDecimals = 4;

constexpr std::array<std::string_view, 12> kTypeNames{"Empty", "Null",   "Boolean", "Integer",
                                                      "Long",  "Single", "Double",  "Currency",
                                                      "Date",  "String", "Byte()",  "Object"};

/// A type that has no conversion to what was asked.
[[noreturn]] void raiseMismatch(const Variant& value) {
  if (value.isNull()) raise(errors::kInvalidUseOfNull, kSource);
  std::string detail;
  if (const auto* text = value.getIf<std::string>()) {
    constexpr std::size_t kShown = 60;
    detail.append("\"").append(text::left(*text, kShown)).append("\" does not read as that type.");
  } else {
    detail.append(typeName(value.type())).append(" has no such value.");
  }
  raise(errors::kTypeMismatch, kSource, detail);
}

[[noreturn]] void raiseOverflow() {
  raise(errors::kOverflow, kSource);
}

/// Raises 13 for a text that is no number, 6 for one that no double holds.
double numberOf(const Variant& value, const std::string& text, const Locale& locale) {
  std::string plain;
  if (!readPlainForm(text, locale, plain)) raiseMismatch(value);
  const double number = plainFormToDouble(plain);
  if (std::isinf(number)) raiseOverflow();
  return number;
}

/// Halves to even, whatever the rounding mode of the thread.
double wholeHalfEven(double number) {
  const double below = std::floor(number);
  const double rest = number - below;
  if (rest < 0.5) return below;
  if (rest > 0.5) return below + 1;
  return std::fmod(below, 2) == 0 ? below : below + 1;
}

template <typename Int>
Int checkedWhole(double number) {
  const double whole = wholeHalfEven(number);
  if (!(whole >= static_cast<double>(std::numeric_limits<Int>::min()) &&
        whole <= static_cast<double>(std::numeric_limits<Int>::max()))) {
    raiseOverflow();
  }
  return static_cast<Int>(whole);
}

template <typename Int>
Int wholeOf(const Variant& value, const Locale& locale) {
  if (const auto* small = value.getIf<std::int16_t>()) return *small;
  if (const auto* number = value.getIf<std::int32_t>()) {
    if (std::in_range<Int>(*number)) return static_cast<Int>(*number);
    raiseOverflow();
  }
  if (const auto* amount = value.getIf<Currency>()) {
    // Dividing the count itself keeps the half exact: any double is close, not equal.
    const std::int64_t scaled = amount->scaled();
    const std::int64_t rest = scaled % Currency::kScale;
    std::int64_t whole = scaled / Currency::kScale;
    const std::int64_t twice = (rest < 0 ? -rest : rest) * 2;
    if (twice > Currency::kScale || (twice == Currency::kScale && whole % 2 != 0)) {
      whole += scaled < 0 ? -1 : 1;
    }
    if (!std::in_range<Int>(whole)) raiseOverflow();
    return static_cast<Int>(whole);
  }
  return checkedWhole<Int>(value.toDouble(locale));
}

bool readsAs(std::string_view text, std::string_view word, const std::string& localWord) {
  return text::equalsIgnoreCase(text, word) || text::equalsIgnoreCase(text, localWord);
}

Date checkedDate(double days) {
  const Date date(days);
  date.civil();  // raises 6 outside the years that there are
  return date;
}

std::string currencyText(Currency amount, const Locale& locale) {
  std::string out;
  appendPlain(out, digitsOf(amount.scaled(), kCurrencyDecimals), locale.decimal);
  return out;
}

/// A single prints its own seven digits, not those of the double next to it.
std::string singleText(float number, const Locale& locale) {
  if (!std::isfinite(number)) return plainNumber(number, locale);
  return plainNumber(toDouble(digitsOf(number)), locale);
}

}  // namespace

Object::~Object() = default;

std::string_view typeName(VariantType type) {
  return kTypeNames[static_cast<std::size_t>(type)];
}

Variant::Variant(std::int64_t v) {
  if (std::in_range<std::int32_t>(v)) {
    value_ = static_cast<std::int32_t>(v);
  } else {
    value_ = static_cast<double>(v);
  }
}

bool Variant::isNumber() const {
  return type() >= VariantType::kBoolean && type() <= VariantType::kCurrency;
}

bool Variant::toBoolean(const Locale& locale) const {
  if (const auto* flag = getIf<bool>()) return *flag;
  if (const auto* text = getIf<std::string>()) {
    const std::string_view word = text::trim(*text);
    if (readsAs(word, "True", locale.trueText)) return true;
    if (readsAs(word, "False", locale.falseText)) return false;
  }
  return toDouble(locale) != 0;
}

std::int16_t Variant::toInt16(const Locale& locale) const {
  return wholeOf<std::int16_t>(*this, locale);
}

std::int32_t Variant::toInt32(const Locale& locale) const {
  return wholeOf<std::int32_t>(*this, locale);
}

double Variant::toDouble(const Locale& locale) const {
  switch (type()) {
    case VariantType::kEmpty:
      return 0;
    case VariantType::kBoolean:
      return *getIf<bool>() ? -1 : 0;
    case VariantType::kInt16:
      return *getIf<std::int16_t>();
    case VariantType::kInt32:
      return *getIf<std::int32_t>();
    case VariantType::kSingle:
      return *getIf<float>();
    case VariantType::kDouble:
      return *getIf<double>();
    case VariantType::kCurrency:
      return getIf<Currency>()->toDouble();
    case VariantType::kDate:
      return getIf<Date>()->days();
    case VariantType::kText:
      return numberOf(*this, *getIf<std::string>(), locale);
    case VariantType::kNull:
    case VariantType::kBytes:
    case VariantType::kObject:
      break;
  }
  raiseMismatch(*this);
}

Currency Variant::toCurrency(const Locale& locale) const {
  if (const auto* amount = getIf<Currency>()) return *amount;
  std::optional<std::int64_t> scaled;
  if (const auto* text = getIf<std::string>()) {
    // Straight from the digits: a double would lose the last ones of a large amount.
    std::string plain;
    if (!readPlainForm(*text, locale, plain)) raiseMismatch(*this);
    scaled = scaledBy(digitsOf(std::string_view(plain)), kCurrencyDecimals);
  } else if (const auto* single = getIf<float>()) {
    if (std::isfinite(*single)) scaled = scaledBy(digitsOf(*single), kCurrencyDecimals);
  } else {
    return Currency::fromDouble(toDouble(locale));
  }
  if (!scaled) raiseOverflow();
  return Currency::fromScaled(*scaled);
}

Date Variant::toDate(const Locale& locale) const {
  if (const auto* date = getIf<Date>()) return *date;
  if (const auto* text = getIf<std::string>()) {
    if (const auto date = parseDate(*text, locale)) return *date;
  }
  return checkedDate(toDouble(locale));
}

std::string Variant::toText(const Locale& locale) const {
  switch (type()) {
    case VariantType::kEmpty:
      return {};
    case VariantType::kBoolean:
      return *getIf<bool>() ? locale.trueText : locale.falseText;
    case VariantType::kInt16:
      return std::to_string(*getIf<std::int16_t>());
    case VariantType::kInt32:
      return std::to_string(*getIf<std::int32_t>());
    case VariantType::kSingle:
      return singleText(*getIf<float>(), locale);
    case VariantType::kDouble:
      return plainNumber(*getIf<double>(), locale);
    case VariantType::kCurrency:
      return currencyText(*getIf<Currency>(), locale);
    case VariantType::kDate:
      return generalDate(*getIf<Date>(), locale);
    case VariantType::kText:
      return *getIf<std::string>();
    case VariantType::kNull:
    case VariantType::kBytes:
    case VariantType::kObject:
      break;
  }
  raiseMismatch(*this);
}

bool isNumeric(const Variant& value, const Locale& locale) {
  if (const auto* text = value.getIf<std::string>()) return parseNumber(*text, locale).has_value();
  return value.isEmpty() || value.isNumber();
}

bool isDate(const Variant& value, const Locale& locale) {
  if (const auto* text = value.getIf<std::string>()) return parseDate(*text, locale).has_value();
  return value.type() == VariantType::kDate;
}

}  // namespace tavelor
