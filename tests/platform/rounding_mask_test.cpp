// SPDX-License-Identifier: MIT
// Rounding by a mask gives what writing by the mask and reading the text gives.
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/variant.hpp"
#include "tests/platform/expect_error.hpp"

namespace tavelor {
namespace {

double writtenAndRead(double value, const std::string& mask, const Locale& locale) {
  return Variant(format(value, mask, locale)).toDouble(locale);
}

void expectSame(double value, const std::string& mask) {
  for (const auto& locale : {Locale::spanish(), Locale::neutral()}) {
    const double rounded = RoundingMask(mask, *locale)(value);
    EXPECT_EQ(rounded, writtenAndRead(value, mask, *locale)) << value << " by " << mask;
    EXPECT_FALSE(rounded == 0 && std::signbit(rounded)) << value << " by " << mask;
  }
}

const std::vector<std::string> kMasks = {"#,##0.00", "0.00",     "#,##0.###", "0",
                                         "Standard", "standard", "Fixed",     "#,##0.000000"};

TEST(RoundingMask, HalvesGoAwayFromZeroOnTheDigitsThatAPersonSees) {
  const RoundingMask mask("#,##0.00", *Locale::spanish());
  EXPECT_EQ(mask(1.005), 1.01);
  EXPECT_EQ(mask(-1.005), -1.01);
  EXPECT_EQ(mask(1.0049999), 1.0);
  EXPECT_EQ(mask(21.000000000000014), 21.0);
  EXPECT_EQ(mask(1234567.895), 1234567.9);
}

TEST(RoundingMask, NumbersNearAHalfAreThoseOfTheWrittenText) {
  for (const std::string& mask : kMasks) {
    for (int whole = 0; whole < 200; ++whole) {
      for (const double unit : {1.0, 10.0, 100.0, 1000.0, 1e6}) {
        const double half = (whole + 0.5) / unit;
        expectSame(half, mask);
        expectSame(-half, mask);
        expectSame(std::nextafter(half, 0), mask);
        expectSame(half * (1 + 5e-15), mask);
        expectSame(half * (1 - 5e-15), mask);
      }
    }
  }
}

TEST(RoundingMask, AnyNumberIsThatOfTheWrittenText) {
  std::mt19937_64 dice(20261121);
  std::uniform_real_distribution<double> digits(-1, 1);
  std::uniform_int_distribution<int> scale(-9, 18);
  for (int turn = 0; turn < 20'000; ++turn) {
    const double value = digits(dice) * std::pow(10, scale(dice));
    expectSame(value, kMasks[static_cast<std::size_t>(turn) % kMasks.size()]);
  }
}

TEST(RoundingMask, AMaskThatDoesMoreThanRoundIsWrittenAndRead) {
  expectSame(12.345, "#,##0.00;(#,##0.00)");
  expectSame(-12.345, "#,##0.00;(#,##0.00)");
  expectSame(1234567.0, "#,##0.00,");
  expectSame(1.5, "0.0E+00");
  expectSame(0.3, ".00");
  expectSame(1e300, "0.00");
}

TEST(RoundingMask, ATextThatIsNoNumberIsRefused) {
  const auto errorOf = [](std::string_view mask, double value) {
    return raisedBy([&] { RoundingMask(mask, *Locale::spanish())(value); });
  };
  EXPECT_EQ(errorOf("#", 0.3), errors::kTypeMismatch);
  EXPECT_EQ(errorOf("0.00 \"pts\"", 1), errors::kTypeMismatch);
  EXPECT_EQ(errorOf("0.00", std::numeric_limits<double>::infinity()), errors::kTypeMismatch);
}

TEST(MaskThatReadsBack, IsOneThatRoundsOrGroups) {
  for (const char* mask :
       {"#,##0.00", "0", "0.###", "#,##0.0000", "0.00;(0.00)", "Standard", "Fixed", "Currency",
        "#,##0.00 €", "0.0000000E+00", "General Number", "@"}) {
    EXPECT_TRUE(readsBack(mask, *Locale::spanish())) << mask;
    EXPECT_TRUE(readsBack(mask, *Locale::neutral())) << mask;
  }
}

TEST(MaskThatReadsBack, IsNoneThatScalesOrLeavesOutOrAddsWords) {
  for (const char* mask : {"#,###.##", "#", "0,", "0%", "Percent", "0.00;0.00", "0.00 \"kg\"",
                           "0;-0;\"nada\"", "dd/mm/yyyy", "Yes/No"}) {
    EXPECT_FALSE(readsBack(mask, *Locale::spanish())) << mask;
  }
}

}  // namespace
}  // namespace tavelor
