// SPDX-License-Identifier: MIT
// A number as the decimal digits that a person sees.
#include "tavelor/platform/decimal_digits.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <limits>

namespace tavelor {

namespace {

constexpr int kDoubleDigits = 15;
constexpr int kSingleDigits = 7;

void strip(DecimalDigits& number) {
  while (number.count > 0 && number.digits[static_cast<std::size_t>(number.count - 1)] == '0') {
    --number.count;
  }
  if (number.count == 0) {
    number.point = 0;
    number.negative = false;
  }
}

/// Reads "d.ddde+xx" as std::to_chars writes it.
DecimalDigits readScientific(const char* begin, const char* end) {
  DecimalDigits number;
  if (*begin == '-') {
    number.negative = true;
    ++begin;
  }
  for (; begin != end && *begin != 'e'; ++begin) {
    if (*begin != '.') number.digits[static_cast<std::size_t>(number.count++)] = *begin;
  }
  ++begin;                     // e
  if (*begin == '+') ++begin;  // which std::from_chars refuses
  int exponent = 0;
  std::from_chars(begin, end, exponent);
  number.point = exponent + 1;
  strip(number);
  return number;
}

/// Most numbers of a shop have few decimals, and the noise of a calculation at most. A whole count
/// of millionths that lies nearer to the number than half a unit of its fifteenth digit has the
/// digits that are seen, at a fraction of the cost of printing the number.
std::optional<DecimalDigits> digitsByMillionths(double value) {
  constexpr double kMillion = 1e6;
  constexpr double kLimit = 1e9;
  // Half a unit is 0.5e-15 of the power of ten above; the division's own error takes 0.12e-15.
  constexpr double kNear = 0.38e-15;
  constexpr std::array kPowers{1e-5, 1e-4, 1e-3, 1e-2, 1e-1, 1e0, 1e1, 1e2,
                               1e3,  1e4,  1e5,  1e6,  1e7,  1e8, 1e9};
  if (!(std::fabs(value) < kLimit)) return std::nullopt;
  const auto millionths = static_cast<std::int64_t>(value * kMillion + (value < 0 ? -0.5 : 0.5));
  if (millionths == 0) return std::nullopt;
  const DecimalDigits number = digitsOf(millionths, 6);
  if (number.point > 9) return std::nullopt;  // rounded up to the limit
  const double distance = std::fabs(value - static_cast<double>(millionths) / kMillion);
  const double power = kPowers[static_cast<std::size_t>(number.point + 5)];
  if (distance >= kNear * power) return std::nullopt;
  return number;
}

template <typename Float>
DecimalDigits seenDigits(Float value, int significant) {
  if (value == 0) return {};
  std::array<char, 64> buffer;
  char* const begin = buffer.data();
  char* const limit = begin + buffer.size();
  // The shortest text is quick and, when short enough, has the same digits as the rounded one,
  // subnormal numbers apart.
  if (std::isnormal(value)) {
    const char* end = std::to_chars(begin, limit, value, std::chars_format::scientific).ptr;
    const DecimalDigits number = readScientific(begin, end);
    if (number.count <= significant) return number;
  }
  const char* end =
      std::to_chars(begin, limit, value, std::chars_format::scientific, significant - 1).ptr;
  return readScientific(begin, end);
}

}  // namespace

DecimalDigits digitsOf(double value) {
  if (const auto number = digitsByMillionths(value)) return *number;
  return seenDigits(value, kDoubleDigits);
}
DecimalDigits digitsOf(float value) {
  return seenDigits(value, kSingleDigits);
}

DecimalDigits allDigitsOf(double value) {
  return seenDigits(value, std::numeric_limits<double>::max_digits10);
}

DecimalDigits digitsOf(std::int64_t scaled, int decimals) {
  DecimalDigits number;
  if (scaled == 0) return number;
  number.negative = scaled < 0;
  const std::uint64_t magnitude =
      number.negative ? 0 - static_cast<std::uint64_t>(scaled) : static_cast<std::uint64_t>(scaled);
  char* const begin = number.digits.data();
  const char* end = std::to_chars(begin, begin + number.digits.size(), magnitude).ptr;
  number.count = static_cast<int>(end - begin);
  number.point = number.count - decimals;
  strip(number);
  return number;
}

DecimalDigits digitsOf(std::string_view plain) {
  DecimalDigits number;
  std::size_t i = 0;
  if (i < plain.size() && (plain[i] == '-' || plain[i] == '+')) number.negative = plain[i++] == '-';
  bool afterPoint = false;
  bool lostDigits = false;
  for (; i < plain.size() && plain[i] != 'e'; ++i) {
    const char c = plain[i];
    if (c == '.') {
      afterPoint = true;
      continue;
    }
    if (number.count == 0 && c == '0') {
      if (afterPoint) --number.point;
      continue;
    }
    if (!afterPoint) ++number.point;
    if (number.count < DecimalDigits::kCapacity) {
      number.digits[static_cast<std::size_t>(number.count++)] = c;
    } else {
      lostDigits = lostDigits || c != '0';
    }
  }
  if (lostDigits) number.digits.back() = '1';
  if (i < plain.size() && number.count > 0) {
    ++i;  // e
    const bool down = i < plain.size() && plain[i] == '-';
    if (i < plain.size() && (plain[i] == '-' || plain[i] == '+')) ++i;
    // No number of this house comes near; the limit keeps the sum of exponents in range.
    constexpr int kLimit = 1'000'000;
    int exponent = 0;
    for (; i < plain.size(); ++i) exponent = std::min(kLimit, exponent * 10 + (plain[i] - '0'));
    number.point += down ? -exponent : exponent;
  }
  strip(number);
  return number;
}

void roundDigits(DecimalDigits& number, int decimals, Halves halves) {
  const int keep = number.point + decimals;
  if (keep >= number.count) return;
  if (keep < 0) {
    number = {};
    return;
  }
  const auto kept = static_cast<std::size_t>(keep);
  const char next = number.digits[kept];
  bool up = next >= '5';
  if (halves == Halves::kToEven && next == '5' && keep + 1 == number.count) {
    up = keep > 0 && (number.digits[kept - 1] - '0') % 2 != 0;
  }
  number.count = keep;
  if (up) {
    std::size_t i = kept;
    while (i > 0 && number.digits[i - 1] == '9') --i;
    if (i == 0) {
      number.digits[0] = '1';
      number.count = 1;
      ++number.point;
      return;
    }
    ++number.digits[i - 1];
    number.count = static_cast<int>(i);
  }
  strip(number);
}

std::optional<std::int64_t> scaledBy(DecimalDigits number, int decimals) {
  roundDigits(number, decimals, Halves::kToEven);
  std::int64_t result = 0;
  // Downward for negative numbers: they reach one further than the positive ones.
  for (int place = number.point - 1; place >= -decimals; --place) {
    const int digit = number.at(place) - '0';
    if (__builtin_mul_overflow(result, 10, &result) ||
        __builtin_add_overflow(result, number.negative ? -digit : digit, &result)) {
      return std::nullopt;
    }
  }
  return result;
}

double toDouble(const DecimalDigits& number) {
  if (number.isZero()) return 0;
  std::array<char, DecimalDigits::kCapacity + 16> buffer;
  char* out = buffer.data();
  if (number.negative) *out++ = '-';
  out = std::copy_n(number.digits.data(), number.count, out);
  *out++ = 'e';
  out = std::to_chars(out, buffer.data() + buffer.size(), number.point - number.count).ptr;
  double value = 0;
  if (std::from_chars(buffer.data(), out, value).ec == std::errc::result_out_of_range) {
    value = number.point > 0 ? std::numeric_limits<double>::infinity() : 0.0;
    if (number.negative) value = -value;
  }
  return value;
}

void appendPlain(std::string& out, const DecimalDigits& number, std::string_view decimalSign) {
  if (number.negative) out += '-';
  if (number.point <= 0) out += '0';
  for (int place = number.point - 1; place >= 0; --place) out += number.at(place);
  const int decimals = number.decimals();
  if (decimals == 0) return;
  out += decimalSign;
  for (int place = 1; place <= decimals; ++place) out += number.at(-place);
}

}  // namespace tavelor
