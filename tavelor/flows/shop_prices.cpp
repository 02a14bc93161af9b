// SPDX-License-Identifier: MIT
// What a sale that brings no prices is sold at.
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "tavelor/flows/shop_inner.hpp"

namespace tavelor::flows {

std::vector<Unpriced> Shop::Inner::price(Sale& sale) {
  const auto wantsPrice = [](const SaleLine& line) { return line.wantsPrice; };
  if (std::none_of(sale.lines.begin(), sale.lines.end(), wantsPrice)) return {};
  std::vector<SaleLine> sold;
  const std::optional<double> ticket = ticketOf(sale.reference);
  if (ticket) sold = storedSale(*ticket).lines;

  const Prices::Conditions conditions =
      ticket ? Prices::Conditions() : prices_.conditionsOf(sale.customer);
  std::vector<Unpriced> unpriced;
  auto next = sold.begin();
  std::erase_if(sale.lines, [&](SaleLine& line) {
    const auto was = std::find_if(next, sold.end(), [&](const SaleLine& each) {
      return each.code == line.code && each.quantity == line.quantity &&
             (line.wantsPrice || each.price == line.price);
    });
    if (was != sold.end()) next = std::next(was);
    if (!line.wantsPrice) return false;
    std::string fault;
    if (!ticket) {
      fault = prices_.fill(line, conditions);
    } else if (was == sold.end()) {
      fault = "there is no price, and the sale is there without this line";
    } else {
      line.price = was->price;
      line.isFree = was->isFree;
      line.discount = was->discount;
      line.tax = was->tax;
      line.surcharge = was->surcharge;
      line.description = was->description;
      line.family = was->family;
      line.wantsPrice = false;
    }
    if (fault.empty() && std::abs(line.amount()) > kMostMoney) fault = "the amount is too large";
    if (fault.empty()) return false;
    unpriced.push_back({line, std::move(fault)});
    return true;
  });
  return unpriced;
}

SaleLine Shop::Inner::price(const PriceQuestion& question) {
  SaleLine line{.code = question.article,
                .family = question.family,
                .quantity = question.quantity,
                .tax = kTaxOfArticle,
                .wantsPrice = true};
  std::string fault = faultOf(line);
  if (fault.empty()) {
    Prices::Conditions conditions = prices_.conditionsOf(question.customer);
    if (!question.tariff.empty()) conditions.tariff = question.tariff;
    conditions.family = question.family;
    conditions.day = question.day;
    fault = prices_.fill(line, conditions);
  }
  if (fault.empty()) fault = faultOf(line);
  if (!fault.empty()) {
    throw Error(errors::kInvalidCall, "Shop", fmt::format("{}: {}.", question.article, fault));
  }
  return line;
}

}  // namespace tavelor::flows
