// SPDX-License-Identifier: MIT
// Where the main database and the documents do not bear each other out.
#include "tavelor/flows/findings.hpp"

#include <algorithm>
#include <string_view>

#include <fmt/format.h>

#include "tavelor/flows/counted.hpp"
#include "tavelor/flows/sale.hpp"

namespace tavelor::flows {

namespace {

using Kind = Finding::Kind;

/// Findings of one kind whose numbers follow each other.
struct Run {
  Finding first;
  double last = 0;
  Date from;
  Date to;
};

std::vector<Run> runsOf(const std::vector<Finding>& findings) {
  std::vector<Run> runs;
  for (const Finding& each : findings) {
    const bool goesOn = !runs.empty() && each.isOfTicket() && runs.back().first.kind == each.kind &&
                        runs.back().last + 1 == each.number;
    if (!goesOn) {
      runs.push_back({each, each.number, each.day, each.day});
      continue;
    }
    Run& run = runs.back();
    run.last = each.number;
    run.from = std::min(run.from, each.day);
    run.to = std::max(run.to, each.day);
    run.first.lines += each.lines;
    run.first.movements += each.movements;
  }
  return runs;
}

std::string placeOf(const Run& run) {
  std::string place = run.first.isOfTicket() ? "ticket" : "closing";
  if (run.last != run.first.number) {
    place += fmt::format("s {:.0f} to {:.0f}", run.first.number, run.last);
  } else {
    place += fmt::format(" {:.0f}", run.first.number);
  }
  if (!run.first.till.empty()) place += ", till " + run.first.till;
  if (run.from.days() != 0) place += ", " + isoDay(run.from);
  if (run.to != run.from) place += " to " + isoDay(run.to);
  return place;
}

std::string faultOf(const Finding& finding) {
  const std::string lines = counted(finding.lines, "line", "lines");
  const std::string movements = counted(finding.movements, "movement", "movements");
  switch (finding.kind) {
    case Kind::kTicketLost:
      return movements + " of stock without a ticket";
    case Kind::kStockNotMoved:
      return lines + " without a movement of stock";
    case Kind::kLinesDiffer:
      return lines + " that " + movements + " of stock do not match";
    case Kind::kTicketsOfClosing:
      return "none of its tickets is there";
    case Kind::kClosingLost:
      return counted(finding.lines, "ticket", "tickets") + " in history and no closing";
  }
  return {};
}

std::string descriptionOf(const std::vector<Finding>& findings) {
  constexpr std::size_t kShown = 3;
  const std::vector<std::string> sentences = told(findings);
  std::string text = "The databases of tickets and of stock do not belong together: ";
  for (std::size_t i = 0; i < std::min(kShown, sentences.size()); ++i) text += sentences[i] + "; ";
  if (sentences.size() > kShown) text += fmt::format("{} more; ", sentences.size() - kShown);
  return text + "nothing is sold or closed until a person decides, see `tavelor recover`.";
}

}  // namespace

std::vector<std::string> told(const std::vector<Finding>& findings) {
  std::vector<std::string> sentences;
  for (const Run& run : runsOf(findings)) {
    sentences.push_back(placeOf(run) + ": " + faultOf(run.first));
  }
  return sentences;
}

Disagreement::Disagreement(std::vector<Finding> findings)
    : Error(errors::kIntegrityViolation, "Shop", descriptionOf(findings)),
      findings_(std::move(findings)) {}

}  // namespace tavelor::flows
