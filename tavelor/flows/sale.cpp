// SPDX-License-Identifier: MIT
// What a sale comes to, and what may not stand in it.
#include "tavelor/flows/sale.hpp"

#include <algorithm>
#include <cmath>
#include <map>
#include <set>
#include <utility>

#include <fmt/format.h>

#include "tavelor/flows/amounts.hpp"
#include "tavelor/platform/text.hpp"

namespace tavelor::flows {

namespace {

std::string faultOfText(std::string_view name, const std::string& text, std::size_t most) {
  if (text::length(text) > most)
    return fmt::format("the {} has more than {} characters", name, most);
  if (text.find('\0') != std::string::npos) return fmt::format("the {} holds a zero byte", name);
  return {};
}

std::string faultOfNumber(std::string_view name, double number) {
  if (!std::isfinite(number)) return fmt::format("the {} is no number", name);
  if (std::abs(number) > kMostMoney) return fmt::format("the {} is too large", name);
  return {};
}

std::string message(const std::string& reference, const std::vector<SaleFault>& faults) {
  std::string text = reference.empty() ? "The sale" : fmt::format("Sale {}", reference);
  text += " is refused: ";
  for (std::size_t at = 0; at < faults.size(); ++at) {
    const SaleFault& fault = faults[at];
    if (at > 0) text += "; ";
    if (fault.line > 0) {
      text += fmt::format("line {}{}{}: ", fault.line, fault.code.empty() ? "" : ", ", fault.code);
    }
    text += fault.reason;
  }
  return text + ".";
}

}  // namespace

std::string isoDay(Date day) {
  const CivilTime civil = day.civil();
  return fmt::format("{:04}-{:02}-{:02}", civil.year, civil.month, civil.day);
}

double SaleLine::netPrice() const {
  return discount == 0 ? price : discounted(price, discount);
}

double SaleLine::amount() const {
  return amountOf(quantity, netPrice());
}

std::string faultOf(const SaleLine& line) {
  if (line.code.empty()) return "the code is empty";
  const auto first = [](std::initializer_list<std::string> faults) {
    for (const std::string& fault : faults) {
      if (!fault.empty()) return fault;
    }
    return std::string();
  };
  std::string fault = first({faultOfText("code", line.code, SaleWidths::kCode),
                             faultOfText("description", line.description, SaleWidths::kDescription),
                             faultOfText("family", line.family, SaleWidths::kFamily),
                             faultOfText("lot", line.lot, SaleWidths::kLot),
                             faultOfNumber("quantity", line.quantity)});
  if (!fault.empty()) return fault;
  if (line.quantity == 0) return "the quantity is 0";
  const bool mayBeOfArticle = line.wantsPrice && line.tax == kTaxOfArticle;
  fault = first({faultOfNumber("price", line.price), faultOfNumber("tax", line.tax),
                 faultOfNumber("discount", line.discount)});
  if (!fault.empty()) return fault;
  if (line.price == 0 && !line.isFree && !line.wantsPrice) return "the price is 0";
  if (line.price < 0) return "the price is negative";
  if (line.tax < 0 && !mayBeOfArticle) return "the tax is negative";
  if (line.tax > 100) return "the tax is more than 100 %";
  if (!std::isfinite(line.surcharge) || line.surcharge < 0 || line.surcharge > 100) {
    return "the surcharge is no rate from 0 to 100 %";
  }
  if (line.discount < 0) return "the discount is negative";
  if (line.discount > 100) return "the discount is more than 100 %";
  if (std::abs(line.quantity * line.price) > kMostMoney) return "the amount is too large";
  return {};
}

double Sale::total() const {
  return roundHalfAway(totalOf(lines) + surcharge(), 2);
}

double Sale::surcharge() const {
  const bool hasSome = std::any_of(lines.begin(), lines.end(),
                                   [](const SaleLine& line) { return line.surcharge != 0; });
  return hasSome ? taxesOf(*this).surcharge : 0;
}

SaleTaxes taxesOf(const Sale& sale) {
  std::map<std::pair<double, double>, double> sums;
  for (const SaleLine& line : sale.lines) sums[{line.tax, line.surcharge}] += line.amount();
  SaleTaxes all;
  std::set<double> surcharges;
  for (const auto& [rates, sum] : sums) {
    const TaxSplit each = splitOf(sum, rates.first);
    all.base += each.base;
    all.tax += each.tax;
    all.surcharge += surchargeOn(each.base, rates.second);
    if (rates.first != 0) surcharges.insert(rates.second);
  }
  for (double* const sum : {&all.base, &all.tax, &all.surcharge}) *sum = roundHalfAway(*sum, 2);
  if (surcharges.size() == 1) all.surchargeRate = *surcharges.begin();
  return all;
}

RefusedSale::RefusedSale(const std::string& reference, std::vector<SaleFault> faults,
                         bool isConflict)
    : Error(errors::kInvalidCall, "Shop", message(reference, faults)),
      faults_(std::move(faults)),
      isConflict_(isConflict) {}

}  // namespace tavelor::flows
