// SPDX-License-Identifier: MIT
// The text of a literal as the value of a placeholder.
#include "tavelor/services/dialect/literal_value.hpp"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

#include <fmt/format.h>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor::dialect {

namespace {

using engine::Value;

constexpr std::string_view kSource = "Statement";

/// " (Precio)" for messages, or nothing where no column is assigned to.
std::string inColumn(const Parameter& parameter) {
  return parameter.column.empty() ? "" : " (" + parameter.column + ")";
}

/// A number as it was written: a whole one stays whole.
struct Number {
  bool isWhole = true;
  std::int64_t whole = 0;
  double real = 0;

  double asReal() const { return isWhole ? static_cast<double>(whole) : real; }
};

constexpr std::array<double, 16> kPowersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/// The usual number: a sign, up to 15 digits, a decimal sign. The digits and the power of ten are
/// then exact doubles, so their quotient is the nearest double. Nothing for any other text.
std::optional<Number> readPlain(std::string_view text, char decimal) {
  constexpr std::size_t kMostDigits = 15;
  const bool hasSign = !text.empty() && (text[0] == '-' || text[0] == '+');
  const bool negative = hasSign && text[0] == '-';
  if (hasSign) text.remove_prefix(1);
  if (text.empty() || text.size() > kMostDigits + 1) return std::nullopt;
  std::int64_t digits = 0;
  std::size_t count = 0;
  std::size_t point = text.size();
  for (std::size_t i = 0; i < text.size(); ++i) {
    const auto digit = static_cast<unsigned>(text[i]) - static_cast<unsigned>('0');
    if (digit <= 9) {
      digits = digits * 10 + digit;
      ++count;
    } else if (text[i] == decimal && decimal != '\0' && point == text.size()) {
      point = i;
    } else {
      return std::nullopt;
    }
  }
  if (count == 0 || count > kMostDigits) return std::nullopt;
  if (negative) digits = -digits;
  Number number;
  number.isWhole = point == text.size();
  if (number.isWhole) {
    number.whole = digits;
  } else {
    number.real = static_cast<double>(digits) / kPowersOfTen[text.size() - point - 1];
  }
  return number;
}

std::optional<Number> wrap(std::optional<double> real) {
  if (!real) return std::nullopt;
  return Number{false, 0, *real};
}

std::optional<Number> readWritten(std::string_view text) {
  if (const auto plain = readPlain(text, '.')) return plain;
  if (text.starts_with('+')) text.remove_prefix(1);
  Number number;
  const char* const last = text.data() + text.size();
  const auto read = std::from_chars(text.data(), last, number.whole);
  if (read.ec == std::errc() && read.ptr == last) return number;
  return wrap(parseSqlNumber(text));
}

[[noreturn]] void refuseRange(const Lifted& literal, const Parameter& parameter) {
  raise(errors::kMultipleStep, kSource,
        fmt::format("{} is out of range{}", literal.text, inColumn(parameter)));
}

Value moneyOf(const Number& number, const Lifted& literal, const Parameter& parameter) {
  constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max() / Currency::kScale;
  if (number.isWhole) {
    if (number.whole > kMost || number.whole < -kMost) refuseRange(literal, parameter);
    return Value::ofCurrency(Currency::fromScaled(number.whole * Currency::kScale));
  }
  const double product = number.real * static_cast<double>(Currency::kScale);
  const double whole = std::nearbyint(product);
  // Four decimals or fewer: next to a whole count. Only others need their digits rounded.
  if (std::abs(product) < 1e15 && std::abs(product - whole) < 0.49) {
    return Value::ofCurrency(Currency::fromScaled(static_cast<std::int64_t>(whole)));
  }
  try {
    return Value::ofCurrency(Currency::fromDouble(number.real));
  } catch (const Error&) {
    refuseRange(literal, parameter);
  }
}

Value wholeOf(const Number& number, const Lifted& literal, const Parameter& parameter) {
  double least = std::numeric_limits<std::int32_t>::min();
  double most = std::numeric_limits<std::int32_t>::max();
  if (parameter.columnType == ColumnType::kByte) {
    least = 0;
    most = std::numeric_limits<std::uint8_t>::max();
  } else if (parameter.columnType == ColumnType::kInt16) {
    least = std::numeric_limits<std::int16_t>::min();
    most = std::numeric_limits<std::int16_t>::max();
  }
  const double rounded = number.isWhole ? number.asReal() : roundHalfEven(number.real);
  if (!(rounded >= least && rounded <= most)) refuseRange(literal, parameter);
  return Value::ofInteger(static_cast<std::int64_t>(rounded));
}

/// True for a day number that reads as a date again.
bool isDay(double days) {
  try {
    static_cast<void>(Date(days).civil());
    return true;
  } catch (const Error&) {
    return false;
  }
}

Value numberOf(const Number& number) {
  return number.isWhole ? Value::ofInteger(number.whole) : Value::ofReal(number.real);
}

/// A number that is assigned to a column takes the column's type.
Value assigned(const Number& number, const Lifted& literal, const Parameter& parameter) {
  switch (parameter.columnType) {
    case ColumnType::kByte:
    case ColumnType::kInt16:
    case ColumnType::kInt32:
      return wholeOf(number, literal, parameter);
    case ColumnType::kCurrency:
      return moneyOf(number, literal, parameter);
    case ColumnType::kSingle: {
      const auto single = static_cast<float>(number.asReal());
      if (!std::isfinite(single)) refuseRange(literal, parameter);
      return Value::ofReal(static_cast<double>(single));
    }
    case ColumnType::kBoolean:
      return Value::ofBoolean(number.asReal() != 0);
    case ColumnType::kDate:
      if (!isDay(number.asReal())) refuseRange(literal, parameter);
      return numberOf(number);
    default:
      return numberOf(number);
  }
}

std::optional<bool> truthOf(std::string_view text, const Locale& locale) {
  // Nearly all flags are written as -1 or 0, and no word begins so.
  if (!text.empty() && (text.front() == '-' || text.front() == '0')) return std::nullopt;
  if (text::equalsIgnoreCase(text, "True") || text::equalsIgnoreCase(text, locale.trueText)) {
    return true;
  }
  if (text::equalsIgnoreCase(text, "False") || text::equalsIgnoreCase(text, locale.falseText)) {
    return false;
  }
  return std::nullopt;
}

void checkLength(std::string_view text, const Parameter& parameter) {
  const auto room = static_cast<std::size_t>(parameter.maxLength);
  // No character is shorter than a byte.
  if (room == 0 || text.size() <= room) return;
  const std::size_t length = text::length(text);
  if (length <= room) return;
  raise(errors::kMultipleStep, kSource,
        fmt::format("a text of {} characters is too long for the {} of {}", length, room,
                    parameter.column.empty() ? "its column" : parameter.column));
}

}  // namespace

LiteralReader::LiteralReader(const Locale& locale)
    : locale_(locale), decimal_(locale.decimal.size() == 1 ? locale.decimal[0] : '\0') {}

Value LiteralReader::read(const Lifted& literal, const Parameter& parameter) const {
  if (parameter.compared && literal.text.empty() && parameter.conversion != Conversion::kText) {
    return Value::null();
  }
  switch (parameter.conversion) {
    case Conversion::kText:
      checkLength(literal.text, parameter);
      return Value::ofText(literal.text);
    case Conversion::kNumber:
    case Conversion::kNumberByLocale:
    case Conversion::kCurrency:
      return number(literal, parameter);
    case Conversion::kDate:
    case Conversion::kDateByLocale:
      return date(literal, parameter);
    case Conversion::kBoolean:
      return boolean(literal, parameter);
  }
  return Value::null();
}

Value LiteralReader::number(const Lifted& literal, const Parameter& parameter) const {
  std::optional<Number> number;
  if (literal.quoted) {
    if (parameter.compared && parameter.columnType == ColumnType::kBoolean) {
      if (const auto truth = truthOf(literal.text, locale_)) return Value::ofBoolean(*truth);
    }
    number = readPlain(literal.text, decimal_);
    if (!number) number = wrap(parseNumber(literal.text, locale_));
  } else {
    number = readWritten(literal.text);
  }
  if (!number) {
    raise(errors::kTypeMismatch, kSource,
          fmt::format("'{}' is no number{}", literal.text, inColumn(parameter)));
  }
  if (parameter.conversion == Conversion::kCurrency) return moneyOf(*number, literal, parameter);
  if (!parameter.column.empty()) return assigned(*number, literal, parameter);
  return numberOf(*number);
}

Value LiteralReader::date(const Lifted& literal, const Parameter& parameter) const {
  if (!literal.quoted) return Value::ofDate(Date(literal.day));
  const auto date = parseDate(literal.text, locale_);
  if (!date) {
    raise(errors::kTypeMismatch, kSource,
          fmt::format("'{}' is no date{}", literal.text, inColumn(parameter)));
  }
  return Value::ofDate(*date);
}

Value LiteralReader::boolean(const Lifted& literal, const Parameter& parameter) const {
  if (literal.quoted) {
    if (const auto truth = truthOf(literal.text, locale_)) return Value::ofBoolean(*truth);
  }
  const Value read = number(literal, parameter);
  return Value::ofBoolean(read.integer != 0 || read.real != 0);
}

}  // namespace tavelor::dialect
