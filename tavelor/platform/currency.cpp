// SPDX-License-Identifier: MIT
// Money with four decimals.
#include "tavelor/platform/currency.hpp"

#include <cmath>
#include <limits>

#include "tavelor/platform/decimal_arithmetic.hpp"
#include "tavelor/platform/decimal_digits.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor {

namespace {

__extension__ using Wide = __int128;

[[noreturn]] void raiseOverflow() {
  raise(errors::kOverflow, "Currency");
}

constexpr int kDecimals = 4;

/// Below this, 15 significant digits hold a fifth decimal, so halves are seen as people see them.
constexpr double kFifthDecimalSeen = 1e10;

}  // namespace

Currency Currency::fromDouble(double amount) {
  if (!std::isfinite(amount)) raiseOverflow();
  const bool isSmall = std::fabs(amount) < kFifthDecimalSeen;
  if (isSmall) {
    // What has four decimals needs no look at its digits.
    if (const auto count = tenThousandthsOf(amount)) return fromScaled(*count);
  }
  const auto scaled = scaledBy(isSmall ? digitsOf(amount) : allDigitsOf(amount), kDecimals);
  if (scaled) return fromScaled(*scaled);
  // The doubles nearest to the first and the last amount lie beyond them.
  for (const std::int64_t end :
       {std::numeric_limits<std::int64_t>::min(), std::numeric_limits<std::int64_t>::max()}) {
    if (amount == fromScaled(end).toDouble()) return fromScaled(end);
  }
  raiseOverflow();
}

Currency Currency::operator-() const {
  if (scaled_ == std::numeric_limits<std::int64_t>::min()) raiseOverflow();
  return fromScaled(-scaled_);
}

Currency operator+(Currency a, Currency b) {
  std::int64_t sum = 0;
  if (__builtin_add_overflow(a.scaled_, b.scaled_, &sum)) raiseOverflow();
  return Currency::fromScaled(sum);
}

Currency operator-(Currency a, Currency b) {
  std::int64_t difference = 0;
  if (__builtin_sub_overflow(a.scaled_, b.scaled_, &difference)) raiseOverflow();
  return Currency::fromScaled(difference);
}

Currency operator*(Currency a, Currency b) {
  const Wide product = static_cast<Wide>(a.scaled_) * b.scaled_;
  Wide quotient = product / Currency::kScale;
  const Wide rest = product % Currency::kScale;
  const Wide twice = (rest < 0 ? -rest : rest) * 2;
  if (twice > Currency::kScale || (twice == Currency::kScale && quotient % 2 != 0)) {
    quotient += product < 0 ? -1 : 1;
  }
  if (quotient > std::numeric_limits<std::int64_t>::max() ||
      quotient < std::numeric_limits<std::int64_t>::min()) {
    raiseOverflow();
  }
  return Currency::fromScaled(static_cast<std::int64_t>(quotient));
}

Currency absolute(Currency amount) {
  return amount < Currency() ? -amount : amount;
}

Currency rounded(Currency amount, int decimals) {
  if (decimals >= kDecimals) return amount;
  DecimalDigits digits = digitsOf(amount.scaled(), kDecimals);
  roundDigits(digits, decimals, Halves::kToEven);
  const auto scaled = scaledBy(digits, kDecimals);
  if (!scaled) raiseOverflow();
  return Currency::fromScaled(*scaled);
}

void CurrencySum::add(Currency amount) {
  // Wrapped, the count lacks or has exactly 2^64 too many, whatever the order.
  if (__builtin_add_overflow(scaled_, amount.scaled(), &scaled_)) {
    wraps_ += amount < Currency() ? -1 : 1;
  }
}

Currency CurrencySum::total() const {
  if (wraps_ != 0) raiseOverflow();
  return Currency::fromScaled(scaled_);
}

}  // namespace tavelor
