// SPDX-License-Identifier: MIT
// Amounts, days and moments, and how a total is split.
#include <cstdlib>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/fiscal/breakdown.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::fiscal {
namespace {

TEST(Amount, KeepsItsTextAndKnowsItsCents) {
  const auto centsOf = [](std::string_view text) { return Amount::read(text)->cents(); };
  EXPECT_EQ(centsOf("12"), 1200);
  EXPECT_EQ(centsOf("12."), 1200);
  EXPECT_EQ(centsOf("12.3"), 1230);
  EXPECT_EQ(centsOf("-0.05"), -5);
  EXPECT_EQ(centsOf("+1.00"), 100);
  EXPECT_EQ(centsOf("999999999999.99"), 99'999'999'999'999);
  EXPECT_EQ(Amount::read("12.3")->text(), "12.3");
  for (const char* const none : {"", "-", ".5", "1.234", "1,2", "1e3", "1234567890123", " 1"}) {
    EXPECT_FALSE(Amount::read(none)) << none;
  }
}

TEST(Amount, IsWrittenWithTwoDecimals) {
  EXPECT_EQ(Amount().text(), "0.00");
  EXPECT_EQ(Amount::ofCents(-5).text(), "-0.05");
  EXPECT_EQ(Amount::of(1.005).text(), "1.01");
  EXPECT_EQ(Amount::of(-0.001).text(), "0.00") << "zero has no sign";
  EXPECT_EQ(test::errorOf([] { Amount::of(1e12); }), errors::kOverflow);
  EXPECT_EQ(test::errorOf([] { Amount::of(std::nan("")); }), errors::kOverflow);
}

TEST(RecordDay, ReadsNoDayThatThereIsNot) {
  EXPECT_EQ(dayText(Date::of(2027, 2, 1)), "01-02-2027");
  EXPECT_EQ(readDay("01-02-2027"), Date::of(2027, 2, 1));
  for (const char* const none : {"", "1-2-2027", "99-99-9999", "29-02-2027", "01-02-2027 "}) {
    EXPECT_FALSE(readDay(none)) << none;
  }
}

/// For as long as it lives this computer lies in another zone.
class Zone {
 public:
  explicit Zone(const char* name) {
    if (const char* const zone = std::getenv("TZ")) before_ = zone;
    setenv("TZ", name, 1);
    tzset();
  }
  ~Zone() {
    before_.empty() ? unsetenv("TZ") : setenv("TZ", before_.c_str(), 1);
    tzset();
  }
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;

 private:
  std::string before_;
};

TEST(Moment, HasTheDifferenceOfItsSeason) {
  const Zone madrid("CET-1CEST,M3.5.0,M10.5.0/3");
  Clock clock;
  clock.fix(Date::of({2027, 1, 2, 10, 32, 5}));
  EXPECT_EQ(momentOf(clock), "2027-01-02T10:32:05+01:00");
  clock.fix(Date::of({2027, 7, 2, 10, 32, 5}));
  EXPECT_EQ(momentOf(clock), "2027-07-02T10:32:05+02:00");
  clock.release();
  const std::int64_t written = secondsOf(momentOf(clock)).value();
  EXPECT_LE(std::abs(written - static_cast<std::int64_t>(std::time(nullptr))), 5);
}

TEST(Moment, WestOfGreenwichLiesBehind) {
  const Zone canaries("XXX3:30");
  Clock clock;
  clock.fix(Date::of({2027, 1, 2, 10, 32, 5}));
  EXPECT_EQ(momentOf(clock), "2027-01-02T10:32:05-03:30");
  EXPECT_EQ(secondsOf("2027-01-02T10:32:05-03:30"), secondsOf("2027-01-02T14:02:05Z"));
}

TEST(Moment, WithoutItsDifferenceIsNone) {
  EXPECT_EQ(secondsOf("1970-01-02T01:00:01+01:00"), 86'401);
  for (const char* const none :
       {"", "2027-01-02T10:32:05", "2027-01-02 10:32:05+01:00", "2027-02-30T10:32:05+01:00",
        "2027-01-02T25:32:05+01:00", "2027-01-02T10:32:05+01:00 ", "2027-01-02T10:32:05+25:00"}) {
    EXPECT_FALSE(secondsOf(none)) << none;
  }
}

// ---------------------------------------------------------------------------------------------
// A total, split

/// As a receipt tells it: tax by decimals, half a cent away from zero, and the base is the rest.
std::int64_t receiptTax(std::int64_t cents, double rate) {
  const double amount = static_cast<double>(cents) / 100;
  return std::llround(roundHalfAway(amount * rate / (100 + rate), 2) * 100);
}

TEST(Breakdown, SplitsEveryTotalAsTheReceiptDoes) {
  for (const double rate : {2.0, 4.0, 5.0, 7.5, 10.0, 21.0}) {
    for (std::int64_t cents = -5'000; cents <= 5'000; ++cents) {
      const TaxedAmount amount{static_cast<double>(cents) / 100, rate, 0};
      const Breakdown split = breakdownOf(std::span(&amount, 1), Operation::kTaxed);
      ASSERT_EQ(split.quota.cents(), receiptTax(cents, rate)) << cents << " at " << rate;
      ASSERT_EQ(split.total.cents(), cents);
    }
  }
}

TEST(Breakdown, TheSurchargeComesOnTopOfEveryAmountAndKeepsItsSign) {
  constexpr std::array<std::pair<double, double>, 4> kRates = {
      {{21, 5.2}, {21, 1.75}, {10, 1.4}, {4, 0.5}}};
  for (const auto& [rate, surcharge] : kRates) {
    for (std::int64_t cents = -5'000; cents <= 5'000; ++cents) {
      const TaxedAmount amount{static_cast<double>(cents) / 100, rate, surcharge};
      const Breakdown split = breakdownOf(std::span(&amount, 1), Operation::kTaxed);
      const Detail& detail = split.details.at(0);
      ASSERT_EQ(detail.base.cents() + detail.quota->cents(), cents) << "as without surcharge";
      ASSERT_EQ(detail.quota->cents(), receiptTax(cents, rate));
      ASSERT_EQ(split.total.cents(), cents + detail.surchargeQuota->cents());
      ASSERT_EQ(split.quota.cents(), detail.quota->cents() + detail.surchargeQuota->cents());
      ASSERT_NEAR(static_cast<double>(detail.surchargeQuota->cents()),
                  static_cast<double>(detail.base.cents()) * surcharge / 100, 0.501);
      for (const auto& quota : {detail.quota, detail.surchargeQuota}) {
        ASSERT_GE(quota->cents() * (cents < 0 ? -1 : 1), 0) << cents << " at " << rate;
      }
    }
  }
}

TEST(Breakdown, SumsARateBeforeItIsSplitAndTellsRatesInTheirOrder) {
  const std::vector<TaxedAmount> amounts = {{0.1, 21, 0}, {0.1, 4, 0}, {0.1, 21, 0}, {0.1, 21, 0}};
  const Breakdown split = breakdownOf(amounts, Operation::kTaxed);
  ASSERT_EQ(split.details.size(), 2U);
  EXPECT_EQ(split.details[0].rate->text(), "4.00");
  EXPECT_EQ(split.details[1].base.text(), "0.25");
  EXPECT_EQ(split.details[1].quota->text(), "0.05");
  EXPECT_EQ(split.total.text(), "0.40");
}

TEST(Breakdown, OfWhatHasNoTaxTellsWhy) {
  const std::vector<TaxedAmount> amounts = {{12, 0, 0}};
  const auto detailOf = [&](Operation operation) {
    return breakdownOf(amounts, operation).details.at(0);
  };
  EXPECT_EQ(detailOf(Operation::kExempt1).base.text(), "12.00");
  EXPECT_FALSE(detailOf(Operation::kExempt1).rate);
  EXPECT_FALSE(detailOf(Operation::kNotSubject).quota);
  EXPECT_EQ(detailOf(Operation::kTaxed).rate->text(), "0.00");
  EXPECT_EQ(detailOf(Operation::kReverseCharge).quota->text(), "0.00");
}

TEST(Breakdown, OfSeveralInvoicesAddsRateByRate) {
  const std::vector<TaxedAmount> first = {{12.1, 21, 0}, {5, 0, 0}};
  const std::vector<TaxedAmount> second = {{24.2, 21, 0}, {1.04, 4, 0}};
  const std::vector<Breakdown> parts = {breakdownOf(first, Operation::kExempt1),
                                        breakdownOf(second, Operation::kExempt1)};
  const Breakdown sum = joined(parts);
  EXPECT_EQ(sum.details.size(), 3U);
  EXPECT_EQ(sum.total.text(), "42.34");
  EXPECT_EQ(sum.quota.text(), "6.34");
  EXPECT_EQ(negated(sum).total.text(), "-42.34");
}

}  // namespace
}  // namespace tavelor::fiscal
