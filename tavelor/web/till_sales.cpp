// SPDX-License-Identifier: MIT
// Quotes, sales and whether a sale was made.
#include <algorithm>
#include <cmath>
#include <map>
#include <string>
#include <vector>

#include <fmt/format.h>

#include "tavelor/flows/shop.hpp"
#include "tavelor/flows/tickets.hpp"
#include "tavelor/flows/transaction.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/events.hpp"
#include "tavelor/web/routes.hpp"
#include "tavelor/web/till_values.hpp"

namespace tavelor::web {

namespace {

using flows::SaleWidths;

constexpr std::string_view kLineSchema =
    R"({"type":"object","required":["code","quantity"],"properties":{)"
    R"("code":{"type":"string","maxLength":20},"description":{"type":"string","maxLength":255},)"
    R"("family":{"type":"string","maxLength":10},"quantity":{"type":"number"},)"
    R"("price":{"type":"number"},"discount":{"type":"number"},"tax":{"type":"number"},)"
    R"("surcharge":{"type":"number"},"lot":{"type":"string","maxLength":50}}})";

constexpr std::string_view kQuoteSchema =
    R"({"type":"object","required":["lines"],"properties":{"till":{"type":"string"},)"
    R"("customer":{"type":"string"},"tariff":{"type":"string"},)";
constexpr std::string_view kSaleSchema =
    R"({"type":"object","required":["key","till","lines"],"properties":{)"
    R"("key":{"type":"string","maxLength":50},"till":{"type":"string"},)"
    R"("customer":{"type":"string","maxLength":20},"name":{"type":"string","maxLength":100},)"
    R"("payment":{"type":"string"},"delivered":{"type":"number"},"comment":{"type":"string"},)"
    R"("creditGranted":{"type":"boolean"},"parts":{"type":"array","items":{"type":"object",)"
    R"("required":["payment","amount"],"properties":{"payment":{"type":"string"},)"
    R"("amount":{"type":"number"}}}},)";
constexpr std::string_view kSoldSchema =
    R"({"type":"object","properties":{"ticket":{"type":"integer"},"key":{"type":"string"},)"
    R"("total":{"type":"number"},"change":{"type":"number"},"receipt":{"type":"string"},)"
    R"("wasThere":{"type":"boolean"}}})";

/// With the schema of lines behind it.
std::string withLines(std::string_view before) {
  return fmt::format(R"({}"lines":{{"type":"array","maxItems":{},"items":{}}}}}}})", before,
                     kMostLines, kLineSchema);
}

// ---------------------------------------------------------------------------------------------
// What something costs

/// Each rate with what its lines come to.
Json ratesOf(const std::vector<flows::SaleLine>& lines) {
  std::map<double, flows::Sale> byRate;
  for (const flows::SaleLine& line : lines) byRate[line.tax].lines.push_back(line);
  Json rates = Json::array();
  for (const auto& [rate, part] : byRate) {
    const flows::SaleTaxes split = flows::taxesOf(part);
    rates.push_back(
        {{"rate", toJson(rate)}, {"base", money(split.base)}, {"tax", money(split.tax)}});
  }
  return rates;
}

Answer quote(Context& context) {
  const Fields body(context.body());
  body.text("till", kTillWidth, "");
  const Buyer buyer{.customer = body.text("customer", SaleWidths::kCustomer, ""),
                    .tariff = body.text("tariff", 10, "")};
  Json lines = Json::array();
  flows::Sale sale;
  for (SentLine& sent : linesOf(body)) {
    const std::string fault = complete(sent, buyer, context.shop());
    Json line = jsonOf(sent.line);
    if (fault.empty()) {
      sale.lines.push_back(sent.line);
    } else {
      line["amount"] = 0;
      line["reason"] = fault;
    }
    lines.push_back(std::move(line));
  }
  const flows::SaleTaxes split = flows::taxesOf(sale);
  context.changedNothing();
  return answer({{"lines", std::move(lines)},
                 {"total", money(sale.total())},
                 {"base", money(split.base)},
                 {"taxes", ratesOf(sale.lines)},
                 {"surcharge", money(split.surcharge)}});
}

// ---------------------------------------------------------------------------------------------
// A sale

/// Those of one method as one.
std::vector<flows::PaymentPart> partsOf(const Fields& body) {
  std::vector<flows::PaymentPart> parts;
  if (!body.has("parts")) return parts;
  const Json& sent = body.array("parts", kMostParts);
  for (std::size_t at = 0; at < sent.size(); ++at) {
    const Fields fields(sent[at], body.placeOf("parts", at));
    const std::string payment = fields.text("payment", kPayWidth);
    const double amount = fields.number("amount");
    const auto same = std::find_if(parts.begin(), parts.end(), [&](const flows::PaymentPart& each) {
      return each.payment == payment;
    });
    if (same == parts.end()) {
      parts.push_back({payment, amount});
    } else {
      same->amount += amount;
    }
  }
  return parts;
}

/// One of its parts, where the sale names none itself: the largest.
std::string paymentOf(const Fields& body, const std::vector<flows::PaymentPart>& parts) {
  if (parts.empty()) return body.text("payment", kPayWidth);
  const auto largest = std::max_element(
      parts.begin(), parts.end(),
      [](const auto& a, const auto& b) { return std::abs(a.amount) < std::abs(b.amount); });
  return body.text("payment", kPayWidth, largest->payment);
}

flows::Sale saleOf(const Fields& body) {
  flows::Sale sale;
  sale.reference = body.text("key", SaleWidths::kReference);
  if (sale.reference.empty()) throw Failure::input("key must not be empty.");
  // By these the returns of a ticket are found again.
  if (sale.reference.starts_with("Dev. "))
    throw Failure::input("key must not begin with \"Dev. \".");
  sale.till = body.text("till", kTillWidth);
  sale.customer = body.text("customer", SaleWidths::kCustomer, "");
  sale.name = body.text("name", SaleWidths::kName, "");
  sale.place = body.text("place", SaleWidths::kPlace, "");
  sale.parts = partsOf(body);
  sale.payment = paymentOf(body, sale.parts);
  sale.delivered = body.number("delivered", 0);
  sale.comment = body.text("comment", kCommentWidth, "");
  sale.isCreditGranted = body.flag("creditGranted");
  const Date now = Apartment::current().clock().now();
  sale.day = now.dayOnly();
  sale.time = timeText(now);
  return sale;
}

/// Adds the lines, each whole. Raises Failure 422 with those that have no price.
void addLines(flows::Sale& sale, const Fields& body, const Buyer& buyer, flows::Shop& shop) {
  std::vector<Fault> faults;
  for (SentLine& sent : linesOf(body)) {
    const std::string fault = complete(sent, buyer, shop);
    sale.lines.push_back(sent.line);
    if (!fault.empty()) {
      faults.push_back({.line = sale.lines.size(), .code = sent.line.code, .reason = fault});
    }
  }
  if (!faults.empty()) throw Failure::refused("The sale is refused.", std::move(faults));
}

/// What was sold before needs no right any more: its prices may have been the shop's then.
void mustBeAllowed(const flows::Sale& sale, const Buyer& buyer, Context& context) {
  std::optional<Right> needed = neededFor(sale.lines, buyer, context);
  if (!needed && sale.isCreditGranted && !context.caller().may(Right::kTillCredit)) {
    needed = Right::kTillCredit;
  }
  if (needed && !flows::findTicketRow(sale.reference)) context.must(*needed);
}

/// Whether it is new. Asked again on another day it is that of the day on which it was sold.
bool isNewlySold(flows::Sale sale, flows::Shop& shop) {
  try {
    return shop.sell(sale).has_value();
  } catch (const flows::RefusedSale& refused) {
    const auto there = refused.isConflict() ? flows::findTicketRow(sale.reference) : std::nullopt;
    if (!there || there->day == sale.day) throw;
    sale.day = there->day;
  }
  return shop.sell(sale).has_value();
}

Answer sell(Context& context) {
  const Fields body(context.body());
  body.allowOnly({"key", "till", "customer", "name", "place", "payment", "delivered", "parts",
                  "comment", "creditGranted", "lines"});
  flows::Sale sale = saleOf(body);
  const Buyer buyer{.customer = sale.customer};
  addLines(sale, body, buyer, context.shop());
  mustBeAllowed(sale, buyer, context);
  bool isNew = false;
  {
    // The line of the log is stored with the sale, or neither is.
    flows::Transaction transaction(context.shop());
    isNew = isNewlySold(sale, context.shop());
    if (isNew) {
      context.changed(fmt::format("sale {}", sale.reference));
      context.logChangeIn(transaction.main(), 201);
    }
    transaction.commit();
  }
  const auto ticket = flows::findTicketRow(sale.reference);
  if (!ticket) throw Failure(500, "failure", "The sale was stored, and is not found.");
  Json sold = {{"ticket", jsonOfNumber(ticket->number)},
               {"key", sale.reference},
               {"total", money(ticket->total)},
               {"change", money(ticket->change)},
               {"receipt", receiptOf(ticket->number)}};
  if (!isNew) {
    sold["wasThere"] = true;
    context.changedNothing();
    return answer(sold);
  }
  context.events().publish("sale", {{"ticket", jsonOfNumber(ticket->number)},
                                    {"till", ticket->till},
                                    {"total", money(ticket->total)},
                                    {"time", ticket->time}});
  return answer(sold, 201);
}

Answer soldBy(Context& context) {
  mayLook(context);
  const auto ticket = flows::findTicketRow(context.path("key"));
  if (!ticket) throw Failure::missing("No sale was made by this key.");
  return answer({{"ticket", jsonOfNumber(ticket->number)},
                 {"total", money(ticket->total)},
                 {"change", money(ticket->change)},
                 {"receipt", receiptOf(ticket->number)}});
}

}  // namespace

void addTillSales(Routes& routes) {
  static const std::string quoteSchema = withLines(kQuoteSchema);
  static const std::string saleSchema = withLines(kSaleSchema);
  routes.add(Method::kPost, "/api/v1/till/quote", Right::kTillSell, quote,
             {.summary = "What lines come to, at the shop's prices where they tell none",
              .body = quoteSchema});
  routes.add(Method::kPost, "/api/v1/sales", Right::kTillSell, sell,
             {.summary = "Sells, once by its key: 201, or 200 if that very sale was made before",
              .body = saleSchema,
              .answer = kSoldSchema});
  routes.add(Method::kGet, "/api/v1/sales/{key}", Right::kSignedIn, soldBy,
             {.summary = "Whether a sale was made, by its key", .answer = kSoldSchema});
}

}  // namespace tavelor::web
