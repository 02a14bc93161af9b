// SPDX-License-Identifier: MIT
// What a ticket has sold and somebody brings back.
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "tavelor/flows/returned.hpp"
#include "tavelor/flows/shop_inner.hpp"

namespace tavelor::flows {

namespace {

/// Of equal lines it does not matter which one comes back: where one has too little left, others
/// give theirs.
void evenOut(std::vector<double>& wanted, const std::vector<double>& left,
             const std::vector<SaleLine>& lines) {
  for (std::size_t at = 0; at < wanted.size(); ++at) {
    for (std::size_t other = 0; other < wanted.size() && wanted[at] > left[at]; ++other) {
      if (other == at || !isOf(lines[other], lines[at])) continue;
      const double moved = std::clamp(left[other] - wanted[other], 0.0, wanted[at] - left[at]);
      wanted[at] -= moved;
      wanted[other] += moved;
    }
  }
}

/// The units of a line and of those that are equal to it.
std::string ofEqual(const std::vector<double>& units, const std::vector<SaleLine>& lines,
                    std::size_t line) {
  double sum = 0;
  for (std::size_t at = 0; at < lines.size(); ++at) {
    if (isOf(lines[at], lines[line])) sum += units[at];
  }
  return sqlNumber(roundHalfAway(sum, 6));
}

}  // namespace

Returned Shop::Inner::takeBack(const Return& what, bool isCancellation) {
  std::string last;  // of the run whose commit may have had no answer
  return untilThrough(
      [&](Before before) { return takeBackOnce(what, isCancellation, before, last); });
}

Returned Shop::Inner::takeBackOnce(const Return& what, bool isCancellation, Before before,
                                   std::string& reference) {
  // What is left is looked at under the locks of the sale, so that two tills do not take the same
  // back.
  BothDatabases transaction(main_, documents_);
  const std::string name = fmt::format("{}/{:.0f}", kSeries, what.ticket);
  const auto refuse = [&](std::vector<SaleFault> faults) {
    throw RefusedSale("Dev. " + name, std::move(faults));
  };
  if (before == Before::kUnknown && !reference.empty()) {
    const std::optional<double> there = ticketOf(reference);
    const Sale other = there ? storedSale(*there) : Sale();
    // Another till may have taken some of it back meanwhile, by the same count.
    if (there && other.till == what.till && other.day == what.day && other.time == what.time) {
      return {*there};
    }
  }
  const std::optional<Sale> sold = findSale(what.ticket);
  if (!sold) refuse({{.reason = fmt::format("there is no ticket {}", name)}});

  std::vector<double> left;
  for (const SaleLine& line : sold->lines) left.push_back(std::max(line.quantity, 0.0));
  std::vector<Sale> earlier;
  const auto isKnown = [&] {
    return !what.earlier || earlier.size() < static_cast<std::size_t>(std::max(*what.earlier, 0));
  };
  while (isKnown()) {
    const auto other = ticketOf(returnReference(what.ticket, static_cast<int>(earlier.size())));
    if (!other) break;
    earlier.push_back(storedSale(*other));
    takeOff(left, sold->lines, earlier.back());
  }
  const int returns = static_cast<int>(earlier.size());

  std::vector<double> wanted = what.lines.empty() ? left : std::vector<double>(left.size());
  std::vector<SaleFault> faults;
  if (what.earlier && *what.earlier != returns) {
    faults.push_back({.reason = fmt::format("it has come back {} times so far, and not {}", returns,
                                            *what.earlier)});
  }
  for (const ReturnedLine& line : what.lines) {
    if (line.line == 0 || line.line > left.size()) {
      faults.push_back({.line = line.line, .reason = "the ticket has no such line"});
    } else if (!(line.quantity > 0) || !std::isfinite(line.quantity)) {
      faults.push_back({line.line, 0, sold->lines[line.line - 1].code,
                        "the quantity that comes back is not above 0"});
    } else {
      wanted[line.line - 1] += line.quantity;
    }
  }
  evenOut(wanted, left, sold->lines);
  Sale back = *sold;
  back.reference = reference = returnReference(what.ticket, returns);
  back.till = what.till;
  back.day = what.day;
  back.time = what.time;
  back.comment = what.comment;
  back.delivered = 0;
  back.invoice.cause = what.cause;
  back.returned = what.ticket;
  back.isCancellation = isCancellation;
  back.parts.clear();
  back.lines.clear();
  for (std::size_t at = 0; at < wanted.size(); ++at) {
    if (wanted[at] > left[at] + kNoUnits) {
      faults.push_back(
          {at + 1, 0, sold->lines[at].code,
           fmt::format("{} come back, and {} are left", ofEqual(wanted, sold->lines, at),
                       ofEqual(left, sold->lines, at))});
    }
    if (wanted[at] <= kNoUnits) continue;
    SaleLine& line = back.lines.emplace_back(sold->lines[at]);
    line.quantity = -roundHalfAway(wanted[at], 6);
  }
  if (isCancellation && (returns > 0 || !what.lines.empty())) {
    faults.push_back(
        {.reason = "only a whole ticket is cancelled, of which nothing has come back"});
  }
  if (faults.empty() && back.lines.empty()) faults.push_back({.reason = "nothing is left of it"});
  if (!faults.empty()) refuse(std::move(faults));
  if (!what.payment.empty()) {
    back.payment = what.payment;
  } else if (!sold->parts.empty()) {
    payBack(back, *sold, earlier);
  }

  if (const auto there = what.earlier ? ticketOf(reference) : std::nullopt) {
    back.day = storedSale(*there).day;  // asked for again on another one
    isThere(back);                      // or raises: somebody has taken something else back
    return {*there, true};
  }
  const std::optional<double> number = sell(back);
  if (!number) {
    // Between the look above and the lock of the number; whether it was this very return, the next
    // look finds out.
    raise(errors::kTryAgain, "Shop", fmt::format("Somebody has just brought back ticket {}", name));
  }
  transaction.commit(BothDatabases::First::kDocuments);
  return {*number};
}

/// In the ways in which the sale was paid in parts.
void Shop::Inner::payBack(Sale& back, const Sale& sold, const std::vector<Sale>& earlier) {
  std::vector<PaymentPart> parts = givenBack(back, sold, earlier);
  if (parts.empty()) return;
  back.payment = parts.front().payment;
  if (parts.size() > 1) back.parts = std::move(parts);
}

}  // namespace tavelor::flows
