// SPDX-License-Identifier: MIT
// Numbers as text and text as numbers.
#include "tavelor/platform/number_text.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>
#include <optional>

#include "tavelor/platform/decimal_digits.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_reader.hpp"

namespace tavelor {

namespace {

constexpr double kWholeLimit = 1e15;
constexpr int kMostDecimals = 15;

bool isDigit(char c) {
  return c >= '0' && c <= '9';
}
bool isBlank(char c) {
  return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whole numbers of up to 15 digits, by far the most, need no digit work.
bool isShortWhole(double value) {
  return std::fabs(value) < kWholeLimit && value == std::trunc(value);
}

std::string wholeText(double value) {
  std::array<char, 24> buffer;
  const auto whole = static_cast<std::int64_t>(value);
  const char* end = std::to_chars(buffer.data(), buffer.data() + buffer.size(), whole).ptr;
  return {buffer.data(), static_cast<std::size_t>(end - buffer.data())};
}

std::string exponentText(const DecimalDigits& number, const std::string& decimalSign) {
  std::string out;
  if (number.negative) out += '-';
  out += number.digits[0];
  if (number.count > 1) {
    out += decimalSign;
    out.append(number.digits.data() + 1, static_cast<std::size_t>(number.count - 1));
  }
  const int exponent = number.point - 1;
  out += exponent < 0 ? "E-" : "E+";
  const std::string digits = std::to_string(std::abs(exponent));
  if (digits.size() < 2) out += '0';
  return out + digits;
}

/// One pass over a text by the grammar of numbers; every function leaves `at_` behind what it took.
class NumberReader {
 public:
  NumberReader(std::string_view text, const Locale& locale, std::string& plain)
      : text_(text), locale_(locale), plain_(plain) {}

  bool read() {
    plain_.clear();
    if (!readPrefix()) return false;
    if (at_ < text_.size() && text_[at_] == '&') {
      if (hasSymbol_ || hasParenthesis_ || !readAmpersand()) return false;
    } else if (!readDigits() || !readExponent()) {
      return false;
    }
    return readSuffix() && at_ == text_.size();
  }

 private:
  void skipBlanks() {
    while (at_ < text_.size() && isBlank(text_[at_])) ++at_;
  }

  bool take(std::string_view part) {
    if (part.empty() || text_.substr(at_, part.size()) != part) return false;
    at_ += part.size();
    return true;
  }

  bool takeSymbol() {
    if (hasSymbol_ || !take(locale_.currencySymbol)) return false;
    hasSymbol_ = true;
    return true;
  }

  bool readPrefix() {
    bool hasSign = false;
    bool negative = false;
    for (skipBlanks(); at_ < text_.size(); skipBlanks()) {
      const char c = text_[at_];
      if (c == '-' || c == '+') {
        if (hasSign || hasParenthesis_) return false;
        hasSign = true;
        negative = c == '-';
        ++at_;
      } else if (c == '(') {
        if (hasSign || hasParenthesis_) return false;
        hasParenthesis_ = negative = true;
        ++at_;
      } else if (!takeSymbol()) {
        break;
      }
    }
    if (negative) plain_ += '-';
    return true;
  }

  bool readDigits() {
    bool any = false;
    bool afterDecimal = false;
    while (at_ < text_.size()) {
      const char c = text_[at_];
      if (isDigit(c)) {
        plain_ += c;
        any = true;
        ++at_;
      } else if (!afterDecimal && take(locale_.decimal)) {
        plain_ += '.';
        afterDecimal = true;
      } else if (afterDecimal || !take(locale_.thousands)) {
        break;
      }
    }
    return any;
  }

  bool readExponent() {
    if (at_ == text_.size()) return true;
    const char letter = text_[at_];
    if (letter != 'e' && letter != 'E' && letter != 'd' && letter != 'D') return true;
    ++at_;
    plain_ += 'e';
    if (at_ < text_.size() && (text_[at_] == '-' || text_[at_] == '+')) {
      if (text_[at_] == '-') plain_ += '-';
      ++at_;
    }
    const std::size_t begin = at_;
    while (at_ < text_.size() && isDigit(text_[at_])) plain_ += text_[at_++];
    return at_ > begin;
  }

  bool readAmpersand() {
    const auto radix = readRadix(text_.substr(at_));
    if (!radix) return false;
    at_ += radix->length;
    std::int64_t value = radix->number;
    if (!plain_.empty()) value = -value;
    plain_ = std::to_string(value);
    return true;
  }

  bool readSuffix() {
    for (skipBlanks(); at_ < text_.size(); skipBlanks()) {
      if (hasParenthesis_ && text_[at_] == ')') {
        hasParenthesis_ = false;
        ++at_;
      } else if (!takeSymbol()) {
        return false;
      }
    }
    return !hasParenthesis_;
  }

  std::string_view text_;
  const Locale& locale_;
  std::string& plain_;
  std::size_t at_ = 0;
  bool hasSymbol_ = false;
  bool hasParenthesis_ = false;
};

constexpr std::array<double, 10> kPowersOfTen = {1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9};

/// Rounds without its digits a number that is not near a half, where both kinds of rounding and the
/// number as a person sees it agree; nothing for the others. The margin covers what 15 significant
/// digits and the multiplication leave open.
std::optional<double> roundedClearly(double value, int decimals) {
  if (decimals < 0 || decimals >= static_cast<int>(kPowersOfTen.size())) return std::nullopt;
  const double power = kPowersOfTen[static_cast<std::size_t>(decimals)];
  const double scaled = std::fabs(value) * power;
  if (!(scaled < kWholeLimit)) return std::nullopt;
  const double below = std::floor(scaled);
  const double rest = scaled - below;
  if (std::fabs(rest - 0.5) <= scaled * 1e-14) return std::nullopt;
  const double whole = rest > 0.5 ? below + 1 : below;
  if (whole == 0) return 0.0;
  return std::copysign(whole / power, value);
}

double rounded(double value, int decimals, Halves halves) {
  if (!std::isfinite(value) || (decimals >= 0 && value == std::trunc(value))) return value;
  if (const auto clear = roundedClearly(value, decimals)) return *clear;
  DecimalDigits number = digitsOf(value);
  roundDigits(number, decimals, halves);
  return toDouble(number);
}

}  // namespace

std::string plainNumber(double value, const Locale& locale) {
  if (isShortWhole(value)) return wholeText(value);
  if (std::isnan(value)) return "NaN";
  if (std::isinf(value)) return value < 0 ? "-Infinity" : "Infinity";
  const DecimalDigits number = digitsOf(value);
  if (number.point > kMostDecimals || number.decimals() > kMostDecimals) {
    return exponentText(number, locale.decimal);
  }
  std::string out;
  appendPlain(out, number, locale.decimal);
  return out;
}

std::string sqlNumber(double value, int decimals) {
  if (!std::isfinite(value)) raise(errors::kOverflow, "sqlNumber", "The number is not finite.");
  if (isShortWhole(value)) return wholeText(value);
  DecimalDigits number = digitsOf(value);
  roundDigits(number, decimals, Halves::kAwayFromZero);
  std::string out;
  appendPlain(out, number, ".");
  return out;
}

bool readPlainForm(std::string_view text, const Locale& locale, std::string& plain) {
  return NumberReader(text, locale, plain).read();
}

double plainFormToDouble(std::string_view plain) {
  double value = 0;
  const auto result = std::from_chars(plain.data(), plain.data() + plain.size(), value);
  return result.ec == std::errc{} ? value : toDouble(digitsOf(plain));
}

std::optional<RadixNumber> readRadix(std::string_view text) {
  if (text.size() < 3 || text[0] != '&') return std::nullopt;
  const bool hexadecimal = text[1] == 'H' || text[1] == 'h';
  if (!hexadecimal && text[1] != 'O' && text[1] != 'o') return std::nullopt;
  const char* const end = text.data() + text.size();
  std::uint32_t bits = 0;
  const auto read = std::from_chars(text.data() + 2, end, bits, hexadecimal ? 16 : 8);
  if (read.ec != std::errc{}) return std::nullopt;
  RadixNumber radix;
  radix.length = static_cast<std::size_t>(read.ptr - text.data());
  if (read.ptr != end && *read.ptr == '&') {
    ++radix.length;
    radix.number = static_cast<std::int32_t>(bits);
  } else {
    radix.number =
        bits > 0xFFFF ? static_cast<std::int32_t>(bits) : static_cast<std::int16_t>(bits);
  }
  return radix;
}

std::optional<double> parseNumber(std::string_view text, const Locale& locale) {
  std::string plain;
  if (!readPlainForm(text, locale, plain)) return std::nullopt;
  const double value = plainFormToDouble(plain);
  if (std::isinf(value)) return std::nullopt;
  return value;
}

std::optional<double> parseSqlNumber(std::string_view text) {
  const char* begin = text.data();
  const char* const end = begin + text.size();
  const bool signedText = !text.empty() && (*begin == '+' || *begin == '-');
  const bool negative = signedText && *begin == '-';
  if (signedText) ++begin;
  // std::from_chars also reads a second sign and the words inf and nan.
  if (begin == end || !(isDigit(*begin) || *begin == '.')) return std::nullopt;
  double value = 0;
  const auto result = std::from_chars(begin, end, value);
  if (result.ptr != end) return std::nullopt;
  if (result.ec == std::errc::result_out_of_range) {
    std::string plain(begin, end);
    std::replace(plain.begin(), plain.end(), 'E', 'e');
    value = toDouble(digitsOf(std::string_view(plain)));
    if (std::isinf(value)) return std::nullopt;
  } else if (result.ec != std::errc{}) {
    return std::nullopt;
  }
  return negative ? -value : value;
}

double roundHalfEven(double value, int decimals) {
  return rounded(value, decimals, Halves::kToEven);
}

double roundHalfAway(double value, int decimals) {
  return rounded(value, decimals, Halves::kAwayFromZero);
}

}  // namespace tavelor
