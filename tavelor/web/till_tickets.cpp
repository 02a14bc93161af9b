// SPDX-License-Identifier: MIT
// Tickets, returns of them, and their receipts.
#include "tavelor/web/till_tickets.hpp"

#include <fmt/format.h>

#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/flows/tickets.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/events.hpp"
#include "tavelor/web/routes.hpp"
#include "tavelor/web/till_values.hpp"

namespace tavelor::web {

namespace {

constexpr std::int64_t kMostRows = 500;
constexpr std::int64_t kFarthest = 10'000'000;
constexpr double kUsualDays = 31;  // of a list that nobody has bounded

constexpr std::string_view kReturnSchema =
    R"({"type":"object","required":["ticket","till","earlier"],"properties":{)"
    R"("ticket":{"type":"integer"},"till":{"type":"string"},"earlier":{"type":"integer"},)"
    R"("payment":{"type":"string"},"comment":{"type":"string"},)"
    R"("lines":{"type":"array","items":{"type":"object","required":["line","quantity"],)"
    R"("properties":{"line":{"type":"integer"},"quantity":{"type":"number"}}}}}})";

Json jsonOf(const flows::TicketRow& ticket) {
  return {{"number", jsonOfNumber(ticket.number)},
          {"key", ticket.reference},
          {"day", dayText(ticket.day)},
          {"time", ticket.time},
          {"till", ticket.till},
          {"customer", ticket.customer},
          {"name", ticket.name},
          {"payment", ticket.payment},
          {"total", money(ticket.total)},
          {"closing", ticket.closing == 0 ? Json(nullptr) : jsonOfNumber(ticket.closing)}};
}

Answer list(Context& context) {
  mayLook(context);
  flows::TicketQuestion question;
  question.from = context.queryDay("from");
  question.to = context.queryDay("to");
  if (const auto day = context.queryDay("day")) question.from = question.to = day;
  question.till = context.query("till", "");
  question.customer = context.query("customer", "");
  question.words = context.query("q", "");
  return answer(ticketsOf(context, std::move(question)));
}

Answer one(Context& context) {
  mayLook(context);
  const auto ticket = flows::findTicket(context.pathNumber("number"));
  if (!ticket) throw Failure::missing("There is no such ticket.");
  Json json = jsonOf(static_cast<const flows::TicketRow&>(*ticket));
  json["delivered"] = money(ticket->delivered);
  json["change"] = money(ticket->change);
  json["lines"] = Json::array();
  for (const flows::TicketLine& line : ticket->lines) {
    Json each = {{"line", json["lines"].size() + 1}};
    each.update(web::jsonOf(line.sold));
    each["returned"] = toJson(line.returned, 6);
    json["lines"].push_back(std::move(each));
  }
  json["parts"] = Json::array();
  for (const flows::PaymentPart& part : ticket->parts) {
    json["parts"].push_back({{"payment", part.payment}, {"amount", money(part.amount)}});
  }
  json["comments"] = ticket->comments;
  json["returns"] = Json::array();
  for (const double number : ticket->returns) {
    json["returns"].push_back({{"number", jsonOfNumber(number)}});
  }
  json["returnOf"] = ticket->returnOf ? jsonOfNumber(*ticket->returnOf) : Json(nullptr);
  json["receipt"] = receiptOf(ticket->number);
  return answer(json);
}

// ---------------------------------------------------------------------------------------------
// Returns

flows::Return returnOf(const Fields& body) {
  constexpr std::int64_t kMostTicket = 999'999'999'999;
  constexpr std::int64_t kMostReturns = 100'000;
  body.allowOnly({"ticket", "till", "earlier", "payment", "comment", "lines"});
  flows::Return what;
  what.ticket = static_cast<double>(body.whole("ticket", 1, kMostTicket));
  what.till = body.text("till", kTillWidth);
  what.earlier = static_cast<int>(body.whole("earlier", 0, kMostReturns));
  what.payment = body.text("payment", kPayWidth, "");
  what.comment = body.text("comment", kCommentWidth, what.comment);
  const Date now = Apartment::current().clock().now();
  what.day = now.dayOnly();
  what.time = timeText(now);
  if (!body.has("lines")) return what;
  const Json& lines = body.array("lines", kMostLines);
  for (std::size_t at = 0; at < lines.size(); ++at) {
    const Fields line(lines[at], body.placeOf("lines", at));
    what.lines.push_back(
        {static_cast<std::size_t>(line.whole("line", 1, 1'000'000)), line.number("quantity")});
  }
  if (what.lines.empty())
    throw Failure::input("lines must not be empty; without them all comes back.");
  return what;
}

Answer takeBack(Context& context) {
  const flows::Return what = returnOf(Fields(context.body()));
  const flows::Returned made = context.shop().takeBackSafely(what);
  const auto ticket = flows::findTicket(made.ticket);
  if (!ticket) throw Failure(500, "failure", "The return was stored, and is not found.");
  Json json = {{"ticket", jsonOfNumber(made.ticket)},
               {"total", money(ticket->total)},
               {"receipt", receiptOf(made.ticket)}};
  if (made.wasThere) {
    json["wasThere"] = true;
    context.changedNothing();
    return answer(json);
  }
  context.changed(fmt::format("ticket {:.0f} brings back {:.0f}", made.ticket, what.ticket));
  context.events().publish("return", {{"ticket", jsonOfNumber(made.ticket)},
                                      {"of", jsonOfNumber(what.ticket)},
                                      {"till", ticket->till},
                                      {"total", money(ticket->total)},
                                      {"time", ticket->time}});
  return answer(json, 201);
}

// ---------------------------------------------------------------------------------------------
// Paper

Answer print(Context& context) {
  mayLook(context);
  const std::string paper = context.query("paper", "80");
  const bool isRoll = paper == "80" || paper == "58";
  if (!isRoll && paper != "a4") throw Failure::input("paper must be 80, 58 or a4.");
  const flows::Paper size = paper == "80"   ? flows::Paper::k80
                            : paper == "58" ? flows::Paper::k58
                                            : flows::Paper::kA4;
  std::string html = flows::ticketPage(context.pathNumber("number"), size);
  if (html.empty()) throw Failure::missing("There is no such ticket.");
  return page(std::move(html));
}

}  // namespace

Json ticketsOf(Context& context, flows::TicketQuestion question) {
  question.offset = static_cast<std::size_t>(context.queryWhole("offset", 0, kFarthest, 0));
  question.limit = static_cast<std::size_t>(context.queryWhole("limit", 1, kMostRows, 50));
  const bool isBounded =
      question.from || question.to || !question.customer.empty() || !question.words.empty();
  if (!isBounded) question.from = Date(Apartment::current().clock().today().days() - kUsualDays);
  const flows::TicketList found = flows::listTickets(question);
  Json tickets = Json::array();
  for (const flows::TicketRow& ticket : found.rows) tickets.push_back(jsonOf(ticket));
  return {{"tickets", std::move(tickets)}, {"total", found.total}};
}

void addTillTickets(Routes& routes) {
  routes.add(
      Method::kGet, "/api/v1/tickets", Right::kSignedIn, list,
      {.summary = "Tickets, the latest first; without days, customer and words those of 31 days",
       .parameters = {{"day", "one day, in place of from and to", "date"},
                      {"from", "first day", "date"},
                      {"to", "last day", "date"},
                      {"till", "code of the till"},
                      {"customer", "code of the customer"},
                      {"q", "a number, a key, a part of the customer's name"},
                      {"offset", "how many to pass over", "integer"},
                      {"limit", "how many to give, 500 at most", "integer"}}});
  routes.add(Method::kGet, "/api/v1/tickets/{number}", Right::kSignedIn, one,
             {.summary = "A ticket with its lines and what has come back of each"});
  routes.add(Method::kPost, "/api/v1/returns", Right::kTillReturn, takeBack,
             {.summary = "Takes back what a ticket has sold; asked for again it is made once",
              .body = kReturnSchema});
  routes.add(
      Method::kGet, "/print/ticket/{number}", Right::kSignedIn, print,
      {.summary = "A receipt to be printed", .parameters = {{"paper", "80 or 58 mm, or a4"}}});
}

}  // namespace tavelor::web
