// SPDX-License-Identifier: MIT
// Money: exact to four decimals, never wrapping.
#include "tavelor/platform/currency.hpp"

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include "tests/platform/expect_error.hpp"

namespace tavelor {
namespace {

constexpr std::int64_t kMost = std::numeric_limits<std::int64_t>::max();
constexpr std::int64_t kLeast = std::numeric_limits<std::int64_t>::min();

std::int64_t scaledOf(double amount) {
  return Currency::fromDouble(amount).scaled();
}

TEST(Currency, HoldsFourDecimalsExactly) {
  EXPECT_EQ(scaledOf(1234.5678), 12345678);
  EXPECT_EQ(scaledOf(0.1 + 0.2), 3000);
  EXPECT_EQ(scaledOf(-0.0001), -1);
  EXPECT_EQ(scaledOf(-0.0), 0);
  EXPECT_DOUBLE_EQ(Currency::fromScaled(12345678).toDouble(), 1234.5678);
}

TEST(Currency, RoundsHalvesToEvenOnTheDecimalDigits) {
  EXPECT_EQ(scaledOf(0.00005), 0);
  EXPECT_EQ(scaledOf(0.00015), 2);
  EXPECT_EQ(scaledOf(0.00025), 2);
  EXPECT_EQ(scaledOf(1.00005), 10000);
  EXPECT_EQ(scaledOf(1.00015), 10002);
  EXPECT_EQ(scaledOf(-1.00015), -10002);
  EXPECT_EQ(scaledOf(0.000051), 1);
  EXPECT_EQ(scaledOf(99999.99995), 1000000000);
}

TEST(Currency, LargeAmountsKeepAllTheirDigits) {
  EXPECT_EQ(scaledOf(123456789012.3456), 1234567890123456);
  EXPECT_EQ(scaledOf(900000000000000.0), 9000000000000000000);
}

TEST(Currency, RaisesOverflowOutOfRange) {
  EXPECT_EQ(raisedBy([] { Currency::fromDouble(922337203685478.0); }), 6);
  EXPECT_EQ(raisedBy([] { Currency::fromDouble(-922337203685478.0); }), 6);
  EXPECT_EQ(raisedBy([] { Currency::fromDouble(1e300); }), 6);
  EXPECT_EQ(raisedBy([] { Currency::fromDouble(HUGE_VAL); }), 6);
  EXPECT_EQ(raisedBy([] { Currency::fromDouble(std::nan("")); }), 6);
  EXPECT_EQ(scaledOf(922337203685477.0), 9223372036854770000);
}

TEST(Currency, TheFirstAndTheLastAmountComeBackFromTheirDoubles) {
  for (const std::int64_t end : {INT64_MIN, INT64_MAX}) {
    EXPECT_EQ(Currency::fromDouble(Currency::fromScaled(end).toDouble()).scaled(), end);
  }
}

TEST(Currency, AddsAndSubtractsExactly) {
  const Currency tenth = Currency::fromScaled(1000);
  const Currency fifth = Currency::fromScaled(2000);
  EXPECT_EQ((tenth + fifth).scaled(), 3000);
  EXPECT_EQ((tenth - fifth).scaled(), -1000);
  EXPECT_EQ((-fifth).scaled(), -2000);
}

TEST(Currency, SumsThatDoNotFitRaiseOverflow) {
  const Currency one = Currency::fromScaled(1);
  EXPECT_EQ(raisedBy([&] { (void)(Currency::fromScaled(kMost) + one); }), 6);
  EXPECT_EQ(raisedBy([&] { (void)(Currency::fromScaled(kLeast) - one); }), 6);
  EXPECT_EQ(raisedBy([&] { (void)-Currency::fromScaled(kLeast); }), 6);
  EXPECT_EQ((Currency::fromScaled(kMost - 1) + one).scaled(), kMost);
}

TEST(Currency, ProductsRoundHalvesToEven) {
  const auto product = [](std::int64_t a, std::int64_t b) {
    return (Currency::fromScaled(a) * Currency::fromScaled(b)).scaled();
  };
  EXPECT_EQ(product(20000, 15000), 30000);  // 2 * 1.5
  EXPECT_EQ(product(1, 5000), 0);           // 0.0001 * 0.5
  EXPECT_EQ(product(3, 5000), 2);           // 0.00015
  EXPECT_EQ(product(-3, 5000), -2);
  EXPECT_EQ(product(1, 5001), 1);
  EXPECT_EQ(product(-1, 5000), 0);
}

TEST(Currency, ProductsThatDoNotFitRaiseOverflow) {
  EXPECT_EQ(raisedBy([] { (void)(Currency::fromScaled(kMost) * Currency::fromScaled(20000)); }), 6);
  EXPECT_EQ(raisedBy([] { (void)(Currency::fromScaled(kMost) * Currency::fromScaled(-20000)); }),
            6);
  EXPECT_EQ((Currency::fromScaled(kMost) * Currency::fromScaled(10000)).scaled(), kMost);
}

TEST(Currency, IsOrderedByAmount) {
  EXPECT_LT(Currency::fromScaled(-1), Currency());
  EXPECT_GT(Currency::fromScaled(2), Currency::fromScaled(1));
  EXPECT_EQ(Currency::fromDouble(1.5), Currency::fromScaled(15000));
}

TEST(Currency, HasNoSizeOfTheLeastAmount) {
  EXPECT_EQ(absolute(Currency::fromScaled(-5)).scaled(), 5);
  EXPECT_EQ(absolute(Currency::fromScaled(kMost)).scaled(), kMost);
  EXPECT_EQ(absolute(Currency::fromScaled(kLeast + 1)).scaled(), kMost);
  EXPECT_EQ(raisedBy([] { absolute(Currency::fromScaled(kLeast)); }), 6);
}

TEST(Currency, RoundsToFewerDecimalsWithinItsLimits) {
  EXPECT_EQ(rounded(Currency::fromScaled(12'345), 2).scaled(), 12'300);
  EXPECT_EQ(rounded(Currency::fromScaled(12'350), 2).scaled(), 12'400);
  EXPECT_EQ(rounded(Currency::fromScaled(12'450), 2).scaled(), 12'400) << "halves to even";
  EXPECT_EQ(rounded(Currency::fromScaled(kMost), 4).scaled(), kMost);
  EXPECT_EQ(rounded(Currency::fromScaled(kLeast), 9).scaled(), kLeast);
  EXPECT_EQ(rounded(Currency::fromScaled(kMost - 7), 3).scaled(), kMost - 7);
  EXPECT_EQ(raisedBy([] { rounded(Currency::fromScaled(kMost), 3); }), 6);
  EXPECT_EQ(raisedBy([] { rounded(Currency::fromScaled(kLeast), 0); }), 6);
}

TEST(Currency, ASumRaisesOverflowForItsTotalOnly) {
  CurrencySum sum;
  EXPECT_EQ(sum.total().scaled(), 0);
  for (const std::int64_t amount : {kMost, kMost, std::int64_t{2}}) {
    sum.add(Currency::fromScaled(amount));
  }
  EXPECT_EQ(raisedBy([&] { static_cast<void>(sum.total()); }), 6)
      << "2^64 of them, which would wrap to 0";
  sum.add(Currency::fromScaled(kLeast));
  sum.add(Currency::fromScaled(-1));
  EXPECT_EQ(sum.total().scaled(), kMost);
  sum.add(Currency::fromScaled(kLeast));
  sum.add(Currency::fromScaled(kLeast));
  sum.add(Currency::fromScaled(1));
  EXPECT_EQ(sum.total().scaled(), kLeast);
  sum.add(Currency::fromScaled(-1));
  EXPECT_EQ(raisedBy([&] { static_cast<void>(sum.total()); }), 6);
}

}  // namespace
}  // namespace tavelor
