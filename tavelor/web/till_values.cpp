// SPDX-License-Identifier: MIT
// Lines of sales as they are sent and answered, and what the shop would ask for them.
#include "tavelor/web/till_values.hpp"

#include <cmath>

#include <fmt/format.h>

#include "tavelor/flows/shop.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/web/answer.hpp"

namespace tavelor::web {

namespace {

using flows::SaleWidths;

constexpr double kHalfOfFourDecimals = 0.00005;

bool differ(double a, double b) {
  return std::abs(a - b) >= kHalfOfFourDecimals;
}

SentLine lineOf(const Fields& fields) {
  SentLine sent;
  flows::SaleLine& line = sent.line;
  line.code = fields.text("code", SaleWidths::kCode);
  line.description = fields.text("description", SaleWidths::kDescription, "");
  line.family = fields.text("family", SaleWidths::kFamily, "");
  line.quantity = fields.number("quantity");
  line.lot = fields.text("lot", SaleWidths::kLot, "");
  sent.hasPrice = fields.has("price");
  sent.hasDiscount = fields.has("discount");
  sent.hasTax = fields.has("tax");
  sent.hasSurcharge = fields.has("surcharge");
  line.price = fields.number("price", 0);
  line.isFree = sent.hasPrice && line.price == 0;
  line.discount = fields.number("discount", 0);
  line.tax = fields.number("tax", flows::kTaxOfArticle);
  line.surcharge = fields.number("surcharge", 0);
  return sent;
}

/// As the shop sells it: by the article's own family, whatever the line says.
flows::SaleLine askShop(const flows::SaleLine& line, const Buyer& buyer, flows::Shop& shop) {
  return shop.price(flows::PriceQuestion{.article = line.code,
                                         .customer = buyer.customer,
                                         .quantity = line.quantity,
                                         .tariff = buyer.tariff});
}

}  // namespace

void mayLook(const Context& context) {
  if (!context.caller().may(Right::kOfficeRead)) context.must(Right::kTillSell);
}

std::vector<SentLine> linesOf(const Fields& body) {
  std::vector<SentLine> lines;
  const Json& sent = body.array("lines", kMostLines);
  for (std::size_t at = 0; at < sent.size(); ++at) {
    lines.push_back(lineOf(Fields(sent[at], body.placeOf("lines", at))));
  }
  return lines;
}

std::string complete(SentLine& sent, const Buyer& buyer, flows::Shop& shop) {
  flows::SaleLine& line = sent.line;
  const bool isWhole = sent.hasPrice && sent.hasTax && sent.hasSurcharge && !line.family.empty() &&
                       !line.description.empty();
  if (isWhole) return flows::faultOf(line);
  flows::SaleLine own;
  try {
    own = askShop(line, buyer, shop);
  } catch (const Error& error) {
    if (error.number() != errors::kInvalidCall) throw;
    if (!sent.hasPrice) return error.description();
    // An article that the shop does not have, at the price that somebody has typed.
    own = line;
    if (!sent.hasTax) own.tax = flows::kGeneralTax;
  }
  if (!sent.hasPrice) {
    line.price = own.price;
    line.isFree = own.isFree;
  }
  if (!sent.hasDiscount) line.discount = sent.hasPrice ? 0 : own.discount;
  if (!sent.hasTax) line.tax = own.tax;
  if (!sent.hasSurcharge) line.surcharge = own.surcharge;
  if (line.description.empty()) line.description = own.description;
  if (line.family.empty()) line.family = own.family;
  return flows::faultOf(line);
}

std::optional<Right> neededFor(const std::vector<flows::SaleLine>& lines, const Buyer& buyer,
                               Context& context) {
  const Caller& caller = context.caller();
  const bool mayPrice = caller.may(Right::kTillPrice);
  const bool mayDiscount = caller.may(Right::kTillDiscount);
  for (const flows::SaleLine& line : lines) {
    if (line.quantity < 0 && !caller.may(Right::kTillReturn)) return Right::kTillReturn;
    if (mayPrice && mayDiscount) continue;
    if (!flows::faultOf(line).empty()) continue;  // refused anyway, with its reason
    flows::SaleLine own;
    try {
      own = askShop(line, buyer, context.shop());
    } catch (const Error& error) {
      if (error.number() != errors::kInvalidCall) throw;
      if (!mayPrice) return Right::kTillPrice;  // the shop has no price
      continue;
    }
    const bool isOwnPrice = !differ(line.price, own.price) && !differ(line.tax, own.tax) &&
                            !differ(line.surcharge, own.surcharge);
    if (!mayPrice && !isOwnPrice) return Right::kTillPrice;
    if (!mayDiscount && differ(line.discount, own.discount)) return Right::kTillDiscount;
  }
  return std::nullopt;
}

Json jsonOf(const flows::SaleLine& line) {
  return {{"code", line.code},
          {"description", line.description},
          {"family", line.family},
          {"quantity", toJson(line.quantity, 6)},
          {"price", toJson(line.price)},
          {"tax", toJson(line.tax)},
          {"surcharge", toJson(line.surcharge)},
          {"discount", toJson(line.discount)},
          {"lot", line.lot == "0" ? "" : line.lot},
          {"amount", money(line.amount())}};
}

std::string receiptOf(double ticket) {
  return fmt::format("/print/ticket/{:.0f}", ticket);
}

}  // namespace tavelor::web
