// SPDX-License-Identifier: MIT
// Arithmetic on numbers as people write them.
#include "tavelor/platform/decimal_arithmetic.hpp"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <vector>

#include <gtest/gtest.h>

#include "tests/platform/expect_error.hpp"

namespace tavelor {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

TEST(TenThousandths, AreCountedForWhatPrintsWithFourDecimals) {
  EXPECT_EQ(tenThousandthsOf(0), 0);
  EXPECT_EQ(tenThousandthsOf(4.35), 43'500);
  EXPECT_EQ(tenThousandthsOf(-0.0001), -1);
  EXPECT_EQ(tenThousandthsOf(900'719'925'474.0), 9'007'199'254'740'000);
  EXPECT_EQ(tenThousandthsOf(0.1 + 0.2), 3'000) << "the same fifteen digits as 0.3";
}

TEST(TenThousandths, AreNotCountedForOthers) {
  for (const double number : {0.00005, 1.23456, 1e-300, 1.0 / 3, 0.1 + 0.2 - 0.3, 1e12, 1e300,
                              kInfinity, -kInfinity, std::nan("")}) {
    EXPECT_FALSE(tenThousandthsOf(number)) << number;
  }
}

TEST(DecimalArithmetic, GivesTheDoubleOfTheDecimalResult) {
  EXPECT_EQ(decimalSum(0.1, 0.2), 0.3);
  EXPECT_EQ(decimalDifference(100.3, 100.1), 0.2);
  EXPECT_EQ(decimalProduct(4.35, 100), 435);
  EXPECT_EQ(decimalProduct(0.1, 3), 0.3);
  EXPECT_EQ(decimalProduct(1.1, 1.1), 1.21);
  EXPECT_EQ(decimalProduct(123'456'789'012.34, 3), 370'370'367'037.02);
  EXPECT_EQ(decimalQuotient(0.3, 0.1), 3);
  EXPECT_EQ(decimalQuotient(1, 3), 1.0 / 3);
}

TEST(DecimalArithmetic, OfOtherNumbersIsThatOfDoubles) {
  EXPECT_EQ(decimalSum(1e-7, 1), 1e-7 + 1);
  EXPECT_EQ(decimalProduct(1e-7, 1e-7), 1e-7 * 1e-7);
  EXPECT_EQ(decimalSum(1e300, 1), 1e300);
  EXPECT_EQ(decimalSum(9007199254740990, 1), 9007199254740991) << "document numbers are whole";
}

TEST(DecimalArithmetic, AgreesWithWholeNumbersOfCents) {
  std::mt19937_64 random(7);
  std::uniform_int_distribution<std::int64_t> cents(-10'000'000, 10'000'000);
  for (int i = 0; i < 100'000; ++i) {
    const std::int64_t a = cents(random);
    const std::int64_t b = cents(random);
    const double x = static_cast<double>(a) / 100;
    const double y = static_cast<double>(b) / 100;
    ASSERT_EQ(decimalSum(x, y), static_cast<double>(a + b) / 100) << a << " " << b;
    ASSERT_EQ(decimalDifference(x, y), static_cast<double>(a - b) / 100) << a << " " << b;
    ASSERT_EQ(decimalProduct(x, y), static_cast<double>(a * b) / 10'000) << a << " " << b;
    if (b != 0) {
      ASSERT_EQ(decimalQuotient(x, y), static_cast<double>(a) / static_cast<double>(b));
    }
  }
}

TEST(DecimalArithmetic, FloorsAndTruncatesWhatIsSeen) {
  EXPECT_EQ(decimalFloor(4.35 * 100), 435);
  EXPECT_EQ(decimalFloor(434.99), 434);
  EXPECT_EQ(decimalFloor(-0.5), -1);
  EXPECT_EQ(decimalFloor(1.99999), 1);
  EXPECT_EQ(decimalTruncate(-4.35 * 100), -435);
  EXPECT_EQ(decimalTruncate(-1.99999), -1);
  EXPECT_EQ(decimalFloor(1e300), 1e300);
}

TEST(DecimalArithmetic, RaisesOverflowForWhatNoDoubleHolds) {
  EXPECT_EQ(raisedBy([] { decimalSum(1e308, 1e308); }), 6);
  EXPECT_EQ(raisedBy([] { decimalDifference(-1e308, 1e308); }), 6);
  EXPECT_EQ(raisedBy([] { decimalProduct(1e308, 10); }), 6);
  EXPECT_EQ(raisedBy([] { decimalQuotient(1e308, 0.1); }), 6);
}

double totalOf(const std::vector<double>& numbers) {
  DecimalSum sum;
  for (const double number : numbers) sum.add(number);
  return sum.total();
}

TEST(DecimalSum, DoesNotDependOnTheOrder) {
  std::vector<double> numbers{0.1, 0.2, 0.3, -0.6, 1e10, 4.35, -1e10, 1e-7, 99.99, 123'456.7891};
  std::sort(numbers.begin(), numbers.end());
  const double total = totalOf(numbers);
  EXPECT_EQ(total, 123'561.1291001);
  while (std::next_permutation(numbers.begin(), numbers.begin() + 7)) {
    ASSERT_EQ(totalOf(numbers), total);
  }
}

TEST(DecimalSum, OfAMillionTenthsIsExact) {
  EXPECT_EQ(totalOf(std::vector<double>(1'000'000, 0.1)), 100'000);
}

TEST(DecimalSum, GoesOnBeyondItsWholeNumber) {
  EXPECT_EQ(totalOf(std::vector<double>(3'000, 900'000'000'000.0)), 2.7e15);
  EXPECT_EQ(totalOf(std::vector<double>(3'000, -900'000'000'000.0)), -2.7e15);
  EXPECT_EQ(raisedBy([] { totalOf({1e308, 1e308}); }), 6);
}

TEST(DecimalSum, KeepsWhatASmallNumberLosesBesideALargeOne) {
  EXPECT_EQ(totalOf({1e17, 3.00001, -1e17}), 3.00001);
  EXPECT_EQ(totalOf({3.00001, 1e17, -1e17}), 3.00001);
}

TEST(DecimalSum, OfNothingIsZero) {
  EXPECT_EQ(DecimalSum().total(), 0);
}

}  // namespace
}  // namespace tavelor
