// SPDX-License-Identifier: MIT
// What of an invoice's total is base, tax and surcharge, rate by rate.
#include "tavelor/fiscal/breakdown.hpp"

#include <cstdlib>
#include <map>
#include <tuple>
#include <utility>

#include "tavelor/platform/number_text.hpp"

namespace tavelor::fiscal {

namespace {

constexpr std::int64_t kWhole = 100'00;  // hundredths of a percent in the whole

/// a * b / c to the nearest whole number, halves away from zero. `b` and `c` are not negative.
std::int64_t share(std::int64_t a, std::int64_t b, std::int64_t c) {
  const std::int64_t product = std::abs(a) * b;
  const std::int64_t rounded = (2 * product + c) / (2 * c);
  return a < 0 ? -rounded : rounded;
}

Detail taxed(std::int64_t sum, const Amount& rate, const Amount& surcharge) {
  Detail detail;
  const std::int64_t tax = share(sum, rate.cents(), kWhole + rate.cents());
  detail.rate = rate;
  detail.base = Amount::ofCents(sum - tax);
  detail.quota = Amount::ofCents(tax);
  if (surcharge.cents() != 0) {
    detail.surchargeRate = surcharge;
    detail.surchargeQuota = Amount::ofCents(share(sum - tax, surcharge.cents(), kWhole));
  }
  return detail;
}

Detail untaxed(std::int64_t sum, Operation operation) {
  Detail detail;
  detail.operation = operation;
  detail.base = Amount::ofCents(sum);
  if (operation == Operation::kTaxed || operation == Operation::kReverseCharge) {
    detail.rate = Amount();
    detail.quota = Amount();
  }
  return detail;
}

std::int64_t cents(const std::optional<Amount>& amount) {
  return amount ? amount->cents() : 0;
}

void addUp(Breakdown& breakdown) {
  std::int64_t base = 0;
  std::int64_t quota = 0;
  for (const Detail& detail : breakdown.details) {
    base += detail.base.cents();
    quota += cents(detail.quota) + cents(detail.surchargeQuota);
  }
  breakdown.quota = Amount::ofCents(quota);
  breakdown.total = Amount::ofCents(base + quota);
}

void negate(std::optional<Amount>& amount) {
  if (amount) amount = Amount::ofCents(-amount->cents());
}

std::optional<Amount> sum(const std::optional<Amount>& a, const std::optional<Amount>& b) {
  if (!a && !b) return std::nullopt;
  return Amount::ofCents(cents(a) + cents(b));
}

}  // namespace

Breakdown breakdownOf(std::span<const TaxedAmount> amounts, Operation zeroRate) {
  std::map<std::pair<double, double>, double> sums;
  for (const TaxedAmount& each : amounts) sums[{each.rate, each.surcharge}] += each.amount;
  Breakdown breakdown;
  for (const auto& [rates, amount] : sums) {
    const Amount rate = Amount::of(rates.first);
    const std::int64_t sum = Amount::of(amount).cents();
    breakdown.details.push_back(rate.cents() == 0 ? untaxed(sum, zeroRate)
                                                  : taxed(sum, rate, Amount::of(rates.second)));
  }
  addUp(breakdown);
  return breakdown;
}

Breakdown negated(Breakdown breakdown) {
  for (Detail& detail : breakdown.details) {
    detail.base = Amount::ofCents(-detail.base.cents());
    negate(detail.quota);
    negate(detail.surchargeQuota);
  }
  addUp(breakdown);
  return breakdown;
}

Breakdown joined(std::span<const Breakdown> parts) {
  const auto keyOf = [](const Detail& detail) {
    return std::tuple(detail.operation, detail.regime, cents(detail.rate),
                      cents(detail.surchargeRate));
  };
  std::map<decltype(keyOf(Detail())), Detail> all;
  for (const Breakdown& part : parts) {
    for (const Detail& detail : part.details) {
      const auto [place, isNew] = all.try_emplace(keyOf(detail), detail);
      if (isNew) continue;
      Detail& joined = place->second;
      joined.base = Amount::ofCents(joined.base.cents() + detail.base.cents());
      joined.quota = sum(joined.quota, detail.quota);
      joined.surchargeQuota = sum(joined.surchargeQuota, detail.surchargeQuota);
    }
  }
  Breakdown breakdown;
  for (auto& [key, detail] : all) breakdown.details.push_back(std::move(detail));
  addUp(breakdown);
  return breakdown;
}

}  // namespace tavelor::fiscal
