// SPDX-License-Identifier: MIT
// The text of a literal as the value of a placeholder.
#include "tavelor/services/dialect/literal_value.hpp"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/decimal_digits.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_reader.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/words.hpp"

namespace tavelor::dialect {

namespace {

using engine::Value;

constexpr std::string_view kSource = "Statement";

/// " (Precio)" for messages, or nothing where no column is assigned to.
std::string inColumn(const Parameter& parameter) {
  return parameter.column.empty() ? "" : " (" + parameter.column + ")";
}

constexpr double kInfinity = std::numeric_limits<double>::infinity();

constexpr std::array<double, 16> kPowersOfTen{1e0, 1e1, 1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                              1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};

/// The digits of a number as one whole number, and how many stood behind its point.
struct Digits {
  bool areAll = false;  ///< false where there is something else, or more than 15
  int decimals = -1;    ///< -1: no point
  std::int64_t number = 0;
};

/// Of up to 8 characters, all at once: eight digits become four pairs, two fours, one number.
Digits readShort(std::string_view text, char decimal) {
  const auto place = [](Word64 marks) { return std::countr_zero(marks) / 8; };
  auto count = static_cast<int>(text.size());
  Digits read;
  Word64 digits = loadWord(text.data(), text.size()) ^ eachByte('0') >> (64 - 8 * count);
  const Word64 points = zeroBytes(digits ^ eachByte(static_cast<unsigned char>(decimal ^ '0')));
  if (points != 0) {
    const Word64 before = (Word64{1} << (8 * place(points))) - 1;
    digits = (digits & before) | (digits >> 8 & ~before);
    --count;
    read.decimals = count - place(points);
  }
  read.areAll = count > 0 && areDigits(digits);
  digits <<= 64 - 8 * std::max(count, 1);
  digits = (digits * 10 + (digits >> 8)) & 0x00FF00FF00FF00FFU;
  digits = (digits * 100 + (digits >> 16)) & 0x0000FFFF0000FFFFU;
  read.number = static_cast<std::int64_t>((digits * 10'000 + (digits >> 32)) & 0xFFFFFFFFU);
  return read;
}

/// Of any number of characters.
Digits readLong(std::string_view text, char decimal) {
  constexpr int kMost = 15;
  Digits read;
  int count = 0;
  for (const char c : text) {
    const auto digit = static_cast<unsigned>(c) - static_cast<unsigned>('0');
    if (digit <= 9 && count < kMost) {
      read.number = read.number * 10 + digit;
      ++count;
      if (read.decimals >= 0) ++read.decimals;
    } else if (c == decimal && read.decimals < 0) {
      read.decimals = 0;
    } else {
      return read;
    }
  }
  read.areAll = count > 0;
  return read;
}

void setReal(double real, LiteralValue& number) {
  number.kind = LiteralKind::kDecimal;
  number.decimals = -1;
  number.real = real;
}

/// A bare number of a statement.
void readWritten(LiteralValue& number) {
  if (readPlain(number.text, '.', number)) return;
  if (const auto radix = readRadix(number.text)) {
    number.kind = LiteralKind::kWhole;
    number.whole = radix->number;
    return;
  }
  setReal(parseSqlNumber(number.text).value_or(kInfinity), number);
}

[[noreturn, gnu::cold]] void refuseRange(const LiteralValue& number, const Parameter& parameter) {
  raise(parameter.column.empty() ? errors::kOverflow : errors::kMultipleStep, kSource,
        fmt::format("{} is out of range{}", number.text, inColumn(parameter)));
}

/// `plain` is the number in plain form, "" where it is the text of a bare number: a double has not
/// all the digits of the largest amounts.
Value moneyOf(const LiteralValue& number, std::string_view plain, const Parameter& parameter) {
  // Of 0 to 4 decimals.
  constexpr std::array<std::int64_t, 5> kToScale{10'000, 1'000, 100, 10, 1};
  if (number.kind == LiteralKind::kWhole) {
    return Value::ofCurrency(Currency::fromScaled(number.whole * Currency::kScale));
  }
  std::optional<std::int64_t> scaled;
  if (number.decimals >= 0 && number.decimals <= 4) {
    // Its digits are 15 at most.
    std::int64_t product = 0;
    const std::int64_t toScale = kToScale[static_cast<std::size_t>(number.decimals)];
    if (!__builtin_mul_overflow(number.whole, toScale, &product)) scaled = product;
  } else {
    std::string written(plain.empty() ? number.text : plain);
    written.erase(std::remove(written.begin(), written.end(), '+'), written.end());
    std::replace(written.begin(), written.end(), 'E', 'e');
    constexpr int kDecimals = 4;
    scaled = scaledBy(digitsOf(std::string_view(written)), kDecimals);
  }
  if (!scaled) refuseRange(number, parameter);
  return Value::ofCurrency(Currency::fromScaled(*scaled));
}

Value wholeOf(const LiteralValue& number, const Parameter& parameter) {
  const auto [least, most] = engine::wholeRange(parameter.columnType);
  const double rounded =
      number.kind == LiteralKind::kWhole ? number.asReal() : roundHalfEven(number.real);
  if (!(rounded >= static_cast<double>(least) && rounded <= static_cast<double>(most))) {
    refuseRange(number, parameter);
  }
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

/// A day number beside dates. Those lie in the years 100 to 9999, so one beyond them may as well be
/// the day before or behind them all.
Value dayBeside(double days) {
  constexpr double kBeforeAll = -657'435;
  constexpr double kBehindAll = 2'958'466;
  return Value::ofDate(Date(std::clamp(days, kBeforeAll, kBehindAll)));
}

/// A number beside amounts: one itself where it has no more than four decimals.
std::optional<Value> amountBeside(const LiteralValue& number) {
  constexpr int kDecimals = 4;
  if (number.kind == LiteralKind::kWhole || number.decimals < 0 || number.decimals > kDecimals) {
    return std::nullopt;
  }
  std::int64_t scaled = number.whole;
  for (int i = number.decimals; i < kDecimals; ++i) {
    if (__builtin_mul_overflow(scaled, 10, &scaled)) return std::nullopt;
  }
  return Value::ofCurrency(Currency::fromScaled(scaled));
}

Value numberOf(const LiteralValue& number) {
  return number.kind == LiteralKind::kWhole ? Value::ofInteger(number.whole)
                                            : Value::ofReal(number.real);
}

/// A number that is assigned to a column takes the column's type.
Value assigned(const LiteralValue& number, std::string_view plain, const Parameter& parameter) {
  switch (parameter.columnType) {
    case ColumnType::kByte:
    case ColumnType::kInt16:
    case ColumnType::kInt32:
      return wholeOf(number, parameter);
    case ColumnType::kCurrency:
      return moneyOf(number, plain, parameter);
    case ColumnType::kSingle: {
      const auto single = static_cast<float>(number.asReal());
      if (!std::isfinite(single)) refuseRange(number, parameter);
      return Value::ofReal(static_cast<double>(single));
    }
    case ColumnType::kBoolean:
      return Value::ofBoolean(number.asReal() != 0);
    case ColumnType::kDate:
      if (!isDay(number.asReal())) refuseRange(number, parameter);
      return Value::ofDate(Date(number.asReal()));
    default:
      return numberOf(number);
  }
}

[[noreturn, gnu::cold]] void refuseNumber(std::string_view text, const Parameter& parameter) {
  raise(errors::kTypeMismatch, kSource,
        fmt::format("'{}' is no number{}", text, inColumn(parameter)));
}

/// As the parameter wants it; `plain` as of moneyOf().
Value fitted(const LiteralValue& number, std::string_view plain, const Parameter& parameter) {
  if (number.kind == LiteralKind::kDecimal && !std::isfinite(number.real)) {
    if (!parameter.column.empty()) refuseRange(number, parameter);
    raise(errors::kOverflow, kSource, fmt::format("no number holds {}", number.text));
  }
  if (parameter.conversion == Conversion::kCurrency ||
      parameter.conversion == Conversion::kNegativeCurrency) {
    return moneyOf(number, plain, parameter);
  }
  if (!parameter.column.empty()) return assigned(number, plain, parameter);
  if (parameter.conversion == Conversion::kDay) return dayBeside(number.asReal());
  if (parameter.conversion == Conversion::kAmount) {
    if (const std::optional<Value> amount = amountBeside(number)) return *amount;
  }
  return numberOf(number);
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

/// An empty text that is compared with something else than a text.
bool isNothing(const LiteralValue& literal, const Parameter& parameter) {
  return literal.text.empty() && parameter.compared;
}

}  // namespace

bool readPlain(std::string_view text, char decimal, LiteralValue& number) {
  const bool negative = !text.empty() && text[0] == '-';
  if (negative || (!text.empty() && text[0] == '+')) text.remove_prefix(1);
  if (text.empty()) return false;
  const Digits digits =
      text.size() <= kWordSize ? readShort(text, decimal) : readLong(text, decimal);
  if (!digits.areAll) return false;
  number.whole = negative ? -digits.number : digits.number;
  if (digits.decimals < 0 && std::in_range<std::int32_t>(number.whole)) {
    number.kind = LiteralKind::kWhole;
    return true;
  }
  const int decimals = std::max(digits.decimals, 0);
  number.kind = LiteralKind::kDecimal;
  number.decimals = static_cast<std::int16_t>(decimals);
  // Both are exact doubles, so their quotient is the nearest double.
  number.real =
      static_cast<double>(number.whole) / kPowersOfTen[static_cast<std::size_t>(decimals)];
  return true;
}

LiteralValue readLiteral(std::string_view text, LiteralKind kind) {
  LiteralValue literal{.text = text, .kind = kind};
  if (kind == LiteralKind::kDate) {
    literal.real = parseSqlDate(text).value_or(Date()).days();
  } else if (kind != LiteralKind::kText) {
    readWritten(literal);
  }
  return literal;
}

LiteralReader::LiteralReader(const Locale& locale)
    : locale_(locale), decimal_(locale.decimal.size() == 1 ? locale.decimal[0] : '\0') {}

void LiteralReader::checkLength(std::string_view text, const Parameter& parameter) {
  const std::size_t length = text::length(text);
  if (length <= static_cast<std::size_t>(parameter.maxLength)) return;
  raise(
      errors::kMultipleStep, kSource,
      fmt::format("a text of {} characters is too long for the {} of {}", length,
                  parameter.maxLength, parameter.column.empty() ? "its column" : parameter.column));
}

Value LiteralReader::number(const LiteralValue& literal, const Parameter& parameter) const {
  if (literal.kind == LiteralKind::kText) return quotedNumber(literal, parameter);
  return fitted(literal, {}, parameter);
}

/// Read with its sign, for there is one amount more below zero than above.
Value LiteralReader::negativeMoney(const LiteralValue& literal, const Parameter& parameter) const {
  if (literal.text.starts_with('&') || literal.text.starts_with('-')) {
    const Value positive = number(literal, parameter);
    return Value::ofCurrency(-Currency::fromScaled(positive.integer));
  }
  const bool isSigned = literal.text.starts_with('+');
  const std::string negative = "-" + std::string(literal.text.substr(isSigned ? 1 : 0));
  return number(readLiteral(negative, literal.kind), parameter);
}

Value LiteralReader::quotedNumber(const LiteralValue& literal, const Parameter& parameter) const {
  if (isNothing(literal, parameter)) return Value::null();
  if (parameter.compared && parameter.columnType == ColumnType::kBoolean) {
    if (const auto truth = truthOf(literal.text, locale_)) return Value::ofBoolean(*truth);
  }
  LiteralValue number{.text = literal.text};
  std::string plain;
  if (!readPlain(literal.text, decimal_, number)) {
    if (!readPlainForm(literal.text, locale_, plain)) refuseNumber(literal.text, parameter);
    setReal(plainFormToDouble(plain), number);
  } else if (number.decimals > 4) {
    plain = fmt::format("{}e-{}", number.whole, number.decimals);
  }
  return fitted(number, plain, parameter);
}

Value LiteralReader::date(const LiteralValue& literal, const Parameter& parameter) const {
  if (literal.kind == LiteralKind::kDate) return Value::ofDate(Date(literal.real));
  if (isNothing(literal, parameter)) return Value::null();
  const auto date = parseDate(literal.text, locale_);
  if (!date) {
    raise(errors::kTypeMismatch, kSource,
          fmt::format("'{}' is no date{}", literal.text, inColumn(parameter)));
  }
  return Value::ofDate(*date);
}

Value LiteralReader::boolean(const LiteralValue& literal, const Parameter& parameter) const {
  if (literal.kind == LiteralKind::kText) {
    if (isNothing(literal, parameter)) return Value::null();
    if (const auto truth = truthOf(literal.text, locale_)) return Value::ofBoolean(*truth);
  }
  const Value read = number(literal, parameter);
  return Value::ofBoolean(read.integer != 0 || read.real != 0);
}

Value readClock(Date now, Conversion conversion) {
  const double day = std::floor(now.days());
  if (conversion == Conversion::kToday) return Value::ofDate(Date(day));
  return Value::ofDate(conversion == Conversion::kNow ? now : Date(now.days() - day));
}

}  // namespace tavelor::dialect
