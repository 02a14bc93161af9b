// SPDX-License-Identifier: MIT
// Arithmetic on numbers as people write them.
#include "tavelor/platform/decimal_arithmetic.hpp"

#include <cmath>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor {

namespace {

constexpr std::int64_t kScale = Currency::kScale;
constexpr double kRealScale = static_cast<double>(kScale);
constexpr double kMostExact = 9007199254740992.0;  // 2^53: doubles hold every whole number up to it

/// Less than half a unit of the fifteenth digit, more than what some roundings of doubles leave.
constexpr double kUnseen = 1e-15;

double finite(double result) {
  if (!std::isfinite(result)) raise(errors::kOverflow, "Number");
  return result;
}

double fromTenThousandths(std::int64_t count) {
  return static_cast<double>(count) / kRealScale;
}

/// A count of ten-thousandths in the largest unit of which it is a whole count.
struct Units {
  explicit Units(std::int64_t tenThousandths) : count(tenThousandths), scale(kRealScale) {
    if (count % kScale == 0) {
      count /= kScale;
      scale = 1;
    } else if (count % 100 == 0) {
      count /= 100;
      scale /= 100;
    }
  }

  std::int64_t count;
  double scale;  ///< of them in 1
};

/// A product of counts of ten-thousandths as a number, where it is exact.
std::optional<double> product(std::int64_t a, std::int64_t b) {
  const Units x(a);
  const Units y(b);
  const double count = static_cast<double>(x.count) * static_cast<double>(y.count);
  if (std::fabs(count) > kMostExact) return std::nullopt;
  return count / (x.scale * y.scale);
}

}  // namespace

std::optional<std::int64_t> tenThousandthsOf(double number) {
  const double scaled = number * kRealScale;
  if (!(std::fabs(scaled) <= kMostExact)) return std::nullopt;
  const double count = std::nearbyint(scaled);
  if (std::fabs(scaled - count) > std::fabs(scaled) * kUnseen) return std::nullopt;
  return static_cast<std::int64_t>(count);
}

double decimalSum(double a, double b) {
  const auto x = tenThousandthsOf(a);
  const auto y = tenThousandthsOf(b);
  return x && y ? fromTenThousandths(*x + *y) : finite(a + b);
}

double decimalDifference(double a, double b) {
  return decimalSum(a, -b);
}

double decimalProduct(double a, double b) {
  const auto x = tenThousandthsOf(a);
  const auto y = tenThousandthsOf(b);
  if (x && y) {
    if (const auto exact = product(*x, *y)) return *exact;
  }
  return finite(a * b);
}

double decimalQuotient(double a, double b) {
  const auto x = tenThousandthsOf(a);
  const auto y = tenThousandthsOf(b);
  return x && y ? static_cast<double>(*x) / static_cast<double>(*y) : finite(a / b);
}

double decimalFloor(double number) {
  if (const auto count = tenThousandthsOf(number)) {
    return std::floor(fromTenThousandths(*count));
  }
  return std::floor(number);
}

double decimalTruncate(double number) {
  return number < 0 ? -decimalFloor(-number) : decimalFloor(number);
}

void DecimalSum::add(double number) {
  const auto count = tenThousandthsOf(number);
  if (!count) return addRest(number);
  if (__builtin_add_overflow(tenThousandths_, *count, &tenThousandths_)) {
    // Wrapped, it lacks or has exactly 2^64 of them.
    constexpr double kWrapped = 18446744073709551616.0;
    addRest((*count < 0 ? -kWrapped : kWrapped) / kRealScale);
  }
}

/// Compensated: what the sum of a large and a small number loses is kept aside.
void DecimalSum::addRest(double number) {
  const double sum = finite(rest_ + number);
  lost_ += std::fabs(rest_) >= std::fabs(number) ? rest_ - sum + number : number - sum + rest_;
  rest_ = sum;
}

double DecimalSum::total() const {
  return finite(fromTenThousandths(tenThousandths_) + (rest_ + lost_));
}

}  // namespace tavelor
