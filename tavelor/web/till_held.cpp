// SPDX-License-Identifier: MIT
// Sales that wait.
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "tavelor/flows/held.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/events.hpp"
#include "tavelor/web/routes.hpp"
#include "tavelor/web/till_values.hpp"

namespace tavelor::web {

namespace {

using flows::HeldLimits;

constexpr std::string_view kHoldSchema =
    R"({"type":"object","required":["key","till","lines"],"properties":{)"
    R"("key":{"type":"string","maxLength":50},"till":{"type":"string"},)"
    R"("label":{"type":"string","maxLength":100},"customer":{},)"
    R"("lines":{"type":"array","maxItems":500}}})";

/// Of what was sent by the till; null where it was damaged.
Json contentOf(const flows::HeldSale& sale) {
  return Json::parse(sale.content, nullptr, false);
}

Answer hold(Context& context) {
  const Fields body(context.body());
  flows::HeldSale sale;
  sale.key = body.text("key", HeldLimits::kKey);
  sale.till = body.text("till", HeldLimits::kTill);
  sale.label = body.text("label", HeldLimits::kLabel, "");
  body.array("lines", kMostLines);
  sale.employee = text::left(context.caller().code, HeldLimits::kEmployee);
  sale.content = dumped(context.body());
  const double id = flows::holdSale(sale);
  context.changed(fmt::format("held {:.0f}", id));
  context.events().publish("held", {{"id", jsonOfNumber(id)}, {"till", sale.till}});
  return answer({{"id", jsonOfNumber(id)}}, 201);
}

/// As much as a list shows: the rest is what taking it gives.
Answer list(Context& /*context*/) {
  Json all = Json::array();
  for (const flows::HeldSale& sale : flows::heldSales()) {
    const Json content = contentOf(sale);
    const bool hasLines = content.is_object() && content.contains("lines");
    Json each = {{"id", jsonOfNumber(sale.id)},
                 {"key", sale.key},
                 {"till", sale.till},
                 {"label", sale.label},
                 {"employee", sale.employee},
                 {"day", dayText(sale.moment)},
                 {"time", timeText(sale.moment)},
                 {"lines", hasLines ? content["lines"].size() : 0}};
    for (const char* const name : {"customer", "name", "total"}) {
      if (content.is_object() && content.contains(name)) each[name] = content[name];
    }
    all.push_back(std::move(each));
  }
  return answer({{"held", std::move(all)}});
}

/// The session takes it, so that the same one may ask again.
std::string takerOf(Context& context) {
  if (!context.request().body.empty()) {
    const Fields body(context.body());
    if (body.has("key")) return body.text("key", HeldLimits::kKey);
  }
  const Caller& caller = context.caller();
  const std::string& word = caller.session.empty() ? caller.code : caller.session;
  return word.empty() ? "-" : word.substr(0, HeldLimits::kKey);
}

Answer take(Context& context) {
  const double id = context.pathNumber("id");
  std::optional<flows::HeldSale> sale;
  try {
    sale = flows::takeHeldSale(id, takerOf(context));
  } catch (const flows::HeldElsewhere& error) {
    throw Failure::conflict(error.description());
  }
  if (!sale) throw Failure::missing("No sale waits by this number.");
  context.changed(fmt::format("taken {:.0f}", id));
  context.events().publish("taken", {{"id", jsonOfNumber(id)}});
  return answer(contentOf(*sale));
}

}  // namespace

void addTillHeld(Routes& routes) {
  routes.add(Method::kPost, "/api/v1/held", Right::kTillSell, hold,
             {.summary = "Puts a sale aside, once by its key", .body = kHoldSchema});
  routes.add(Method::kGet, "/api/v1/held", Right::kTillSell, list,
             {.summary = "Sales that wait, the oldest first"});
  routes.add(
      Method::kPost, "/api/v1/held/{id}/take", Right::kTillSell, take,
      {.summary = "Takes one back: one till gets it, all others 409",
       .body = R"({"type":"object","properties":{"key":{"type":"string","maxLength":50}}})"});
}

}  // namespace tavelor::web
