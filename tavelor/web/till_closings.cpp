// SPDX-License-Identifier: MIT
// A till's day before its closing, closings, and the figures of days.
#include <cmath>

#include <fmt/format.h>

#include "tavelor/flows/closings.hpp"
#include "tavelor/flows/day_figures.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/events.hpp"
#include "tavelor/web/routes.hpp"
#include "tavelor/web/till_values.hpp"

namespace tavelor::web {

namespace {

constexpr double kHalfACent = 0.005;
constexpr std::size_t kByWidth = 20;  // characters of who counted; names of programs are longer
constexpr double kMostDays = 366;     // whose figures are added up at once

constexpr std::string_view kCloseSchema =
    R"({"type":"object","required":["till","counted"],"properties":{"till":{"type":"string"},)"
    R"("day":{"type":"string","format":"date"},"counted":{"type":"number"},)"
    R"("tickets":{"type":"integer"}}})";

Date today() {
  return Apartment::current().clock().today();
}

Json jsonOf(const std::vector<flows::Share>& shares) {
  Json all = Json::array();
  for (const flows::Share& each : shares) {
    all.push_back({{"code", each.code}, {"name", each.name}, {"total", money(each.amount)}});
  }
  return all;
}

Json jsonOf(const std::vector<flows::TaxFigures>& taxes) {
  Json all = Json::array();
  for (const flows::TaxFigures& each : taxes) {
    all.push_back(
        {{"rate", toJson(each.rate)}, {"base", money(each.base)}, {"tax", money(each.tax)}});
  }
  return all;
}

// ---------------------------------------------------------------------------------------------
// Before a closing

Answer tillDay(Context& context) {
  const flows::TillDay day =
      flows::tillDay(context.path("till"), context.queryDay("day").value_or(today()));
  Json payments = Json::array();
  for (const flows::TillPayment& each : day.payments) {
    payments.push_back({{"code", each.code},
                        {"name", each.name},
                        {"total", money(each.amount)},
                        {"isCash", each.isCash}});
  }
  return answer({{"tickets", day.tickets},
                 {"total", money(day.total)},
                 {"payments", std::move(payments)},
                 {"opening", money(day.opening)},
                 {"expected", money(day.expected)}});
}

// ---------------------------------------------------------------------------------------------
// Closings

void addCount(Json& json, const std::optional<flows::StoredCount>& count) {
  const auto told = [&](double amount) { return count ? money(amount) : Json(nullptr); };
  json["expected"] = told(count ? count->expected : 0);
  json["counted"] = told(count ? count->counted : 0);
  json["difference"] = told(count ? count->difference : 0);
  if (!count) return;
  json["countedBy"] = count->by;
  json["countedAt"] = dayText(count->moment) + "T" + timeText(count->moment);
}

Json jsonOf(const flows::ClosingRow& closing) {
  Json json = {{"closing", jsonOfNumber(closing.number)},
               {"number", jsonOfNumber(closing.number)},
               {"till", closing.till},
               {"day", dayText(closing.day)},
               {"total", money(closing.total)},
               {"start", money(closing.start)},
               {"end", money(closing.end)}};
  addCount(json, closing.count);
  return json;
}

Json jsonOf(const flows::ClosingDetails& closing) {
  Json json = jsonOf(static_cast<const flows::ClosingRow&>(closing));
  json["tickets"] = closing.tickets;
  json["families"] = jsonOf(closing.families);
  json["payments"] = jsonOf(closing.payments);
  json["taxes"] = jsonOf(closing.taxes);
  json["previous"] = closing.previous ? jsonOfNumber(*closing.previous) : Json(nullptr);
  json["isBroken"] = closing.isBroken;
  json["slip"] = flows::slipText(closing.number);
  return json;
}

/// Whoever has seen so many tickets has counted for them: those that came meanwhile are not his.
void mustBeAsMany(const Fields& body, const std::string& till, Date day) {
  constexpr std::int64_t kMostTickets = 1'000'000;
  if (!body.has("tickets")) return;
  const auto seen = static_cast<std::size_t>(body.whole("tickets", 0, kMostTickets));
  const std::size_t open = flows::tillDay(till, day).tickets;
  if (open == 0 || open == seen) return;
  throw Failure::conflict(
      fmt::format("Till {} has {} tickets to close, and {} were counted for.", till, open, seen));
}

/// Of a till that has nothing to close: the same closing again, unless it was counted otherwise.
Answer closedBefore(Context& context, const std::string& till, Date day, double counted) {
  const auto closing = flows::findClosing(till, day);
  if (!closing) {
    throw Failure::refused(
        fmt::format("Till {} has sold nothing on {} that is to be closed.", till, dayText(day)));
  }
  if (!closing->count || std::abs(closing->count->counted - counted) >= kHalfACent) {
    throw Failure::conflict(fmt::format(
        "Till {} is closed already, by closing {:.0f}, with {} counted.", till, closing->number,
        closing->count ? fmt::format("{:.2f}", closing->count->counted) : "nothing"));
  }
  Json json = jsonOf(*closing);
  json["wasThere"] = true;
  context.changedNothing();
  return answer(json);
}

Answer close(Context& context) {
  const Fields body(context.body());
  body.allowOnly({"till", "day", "counted", "tickets"});
  const std::string till = body.text("till", kTillWidth);
  const Date day = body.day("day", today());
  const double counted = body.number("counted");
  mustBeAsMany(body, till, day);
  const std::string by(text::left(context.caller().code, kByWidth));
  const auto made = context.shop().close(till, day, {.counted = counted, .by = by});
  if (!made) return closedBefore(context, till, day, counted);
  const auto closing = flows::findClosing(made->number);
  if (!closing) throw Failure(500, "failure", "The closing was stored, and is not found.");
  context.changed(fmt::format("closing {:.0f}", made->number));
  context.events().publish(
      "closing",
      {{"closing", jsonOfNumber(made->number)}, {"till", till}, {"total", money(made->total)}});
  return answer(jsonOf(*closing), 201);
}

Answer list(Context& context) {
  mayLook(context);
  constexpr std::int64_t kMostRows = 500;
  constexpr std::int64_t kFarthest = 10'000'000;
  const flows::ClosingList found = flows::listClosings(
      {.till = context.query("till", ""),
       .from = context.queryDay("from"),
       .to = context.queryDay("to"),
       .offset = static_cast<std::size_t>(context.queryWhole("offset", 0, kFarthest, 0)),
       .limit = static_cast<std::size_t>(context.queryWhole("limit", 1, kMostRows, 100))});
  Json closings = Json::array();
  for (const flows::ClosingRow& closing : found.rows) closings.push_back(jsonOf(closing));
  return answer({{"closings", std::move(closings)}, {"total", found.total}});
}

Answer one(Context& context) {
  mayLook(context);
  const auto closing = flows::findClosing(context.pathNumber("number"));
  if (!closing) throw Failure::missing("There is no such closing.");
  return answer(jsonOf(*closing));
}

std::string escaped(const std::string& text) {
  std::string html;
  for (const char each : text) {
    switch (each) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      default:
        html += each;
    }
  }
  return html;
}

/// The slip as a page of 80 mm.
Answer print(Context& context) {
  mayLook(context);
  const double number = context.pathNumber("number");
  std::string lines;
  for (const std::string& line : flows::slipText(number)) lines += escaped(line) + "\n";
  if (lines.empty()) throw Failure::missing("There is no such closing.");
  return page(
      fmt::format("<!DOCTYPE html>\n<html lang=\"es\"><head><meta charset=\"utf-8\">"
                  "<title>Cierre {:.0f}</title><style>@page{{size:80mm auto;margin:3mm}}"
                  "body{{margin:0}}pre{{font:12px monospace}}</style></head>"
                  "<body><pre>{}</pre></body></html>\n",
                  number, lines));
}

// ---------------------------------------------------------------------------------------------
// Figures

Json jsonOf(const flows::Takings& takings) {
  return {{"tickets", takings.tickets}, {"amount", money(takings.amount)}};
}

Json jsonOf(const std::vector<flows::ArticleFigures>& articles) {
  Json all = Json::array();
  for (const flows::ArticleFigures& each : articles) {
    all.push_back({{"code", each.code},
                   {"description", each.description},
                   {"units", toJson(each.units, 6)},
                   {"amount", money(each.amount)}});
  }
  return all;
}

Json jsonOf(const std::vector<flows::ClosingFigures>& closings) {
  Json all = Json::array();
  for (const flows::ClosingFigures& each : closings) {
    all.push_back({{"number", each.number},
                   {"till", each.till},
                   {"day", dayText(each.day)},
                   {"start", money(each.start)},
                   {"sales", money(each.sales)},
                   {"end", money(each.end)},
                   {"expected", money(each.expected)},
                   {"isBroken", each.isBroken}});
  }
  return all;
}

Answer figures(Context& context) {
  mayLook(context);
  const Date day = context.queryDay("day").value_or(today());
  const Date from = context.queryDay("from").value_or(day);
  const Date to = context.queryDay("to").value_or(context.query("from") ? today() : day);
  if (to < from) throw Failure::input("to must not lie before from.");
  if (to.days() - from.days() > kMostDays) {
    throw Failure::input("from and to must not lie more than 366 days apart.");
  }
  const flows::PageFigures figures = flows::gatherFigures(from, to);
  Json hours = Json::array();
  for (const flows::HourFigures& each : figures.hours) {
    Json hour = {{"hour", each.hour}};
    hour.update(jsonOf(static_cast<const flows::Takings&>(each)));
    hours.push_back(std::move(hour));
  }
  Json days = Json::array();
  for (const flows::DayFigures& each : figures.days) {
    Json one = {{"day", dayText(each.day)}};
    one.update(jsonOf(static_cast<const flows::Takings&>(each)));
    days.push_back(std::move(one));
  }
  return answer({{"first", dayText(figures.first)},
                 {"last", dayText(figures.last)},
                 {"shop", figures.shop},
                 {"all", jsonOf(figures.all)},
                 {"open", jsonOf(figures.open)},
                 {"lines", figures.lines},
                 {"units", toJson(figures.units, 6)},
                 {"tax", money(figures.tax())},
                 {"surcharge", money(figures.surcharge)},
                 {"hours", std::move(hours)},
                 {"days", std::move(days)},
                 {"families", jsonOf(figures.families)},
                 {"payments", jsonOf(figures.payments)},
                 {"taxes", jsonOf(figures.taxes)},
                 {"articles", jsonOf(figures.articles)},
                 {"returned", jsonOf(figures.returned)},
                 {"returns", figures.returns},
                 {"closings", jsonOf(figures.closings)}});
}

}  // namespace

void addTillClosings(Routes& routes) {
  routes.add(Method::kGet, "/api/v1/tills/{till}/day", Right::kTillClose, tillDay,
             {.summary = "What a till has to close, and the cash that must be there",
              .parameters = {{"day", "today, where it is not told", "date"}}});
  routes.add(Method::kPost, "/api/v1/closings", Right::kTillClose, close,
             {.summary = "Closes a till; of one that is closed the same closing again",
              .body = kCloseSchema});
  routes.add(Method::kGet, "/api/v1/closings", Right::kSignedIn, list,
             {.summary = "Closings, the latest first",
              .parameters = {{"till", "code of the till"},
                             {"from", "first day", "date"},
                             {"to", "last day", "date"},
                             {"offset", "how many to pass over", "integer"},
                             {"limit", "how many to give, 500 at most", "integer"}}});
  routes.add(Method::kGet, "/api/v1/closings/{number}", Right::kSignedIn, one,
             {.summary = "A closing with its sums, its count, its slip and the one before it"});
  routes.add(Method::kGet, "/print/closing/{number}", Right::kSignedIn, print,
             {.summary = "The slip of a closing to be printed"});
  routes.add(Method::kGet, "/api/v1/day", Right::kSignedIn, figures,
             {.summary = "The figures of a day or of some",
              .parameters = {{"day", "today, where it is not told", "date"},
                             {"from", "first day, in place of day", "date"},
                             {"to", "last day", "date"}}});
}

}  // namespace tavelor::web
