// SPDX-License-Identifier: MIT
// What a person has decided to leave as it is.
#include "tavelor/flows/decisions.hpp"

#include <charconv>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/registry_tree.hpp"

namespace tavelor::flows {

namespace {

constexpr std::string_view kTickets = "Tickets";
constexpr std::string_view kClosings = "Cierres";

std::string key() {
  return Apartment::current().version().registryRoot() + "\\Tienda\\Diferencias\\";
}

NumberRanges stored(std::string_view name) {
  return NumberRanges(Apartment::current().registry().get(key(), name).value_or(""));
}

double takeNumber(std::string_view& text) {
  double number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc()) raise(errors::kTypeMismatch, "Shop", "No list of numbers is kept.");
  text.remove_prefix(static_cast<std::size_t>(end - text.data()));
  return number;
}

bool takeMark(std::string_view& text, char mark) {
  const bool isThere = text.starts_with(mark);
  if (isThere) text.remove_prefix(1);
  return isThere;
}

}  // namespace

NumberRanges::NumberRanges(std::string_view text) {
  while (!text.empty()) {
    const double first = takeNumber(text);
    lastOf_[first] = takeMark(text, '-') ? takeNumber(text) : first;
    if (!text.empty() && !takeMark(text, ',')) takeNumber(text = " ");
  }
}

void NumberRanges::add(double number) {
  if (contains(number)) return;
  auto range = lastOf_.emplace(number, number).first;
  if (const auto next = std::next(range); next != lastOf_.end() && next->first == number + 1) {
    range->second = next->second;
    lastOf_.erase(next);
  }
  if (range == lastOf_.begin()) return;
  if (const auto before = std::prev(range); before->second + 1 == number) {
    before->second = range->second;
    lastOf_.erase(range);
  }
}

bool NumberRanges::contains(double number) const {
  const auto next = lastOf_.upper_bound(number);
  return next != lastOf_.begin() && std::prev(next)->second >= number;
}

std::string NumberRanges::text() const {
  std::string text;
  for (const auto& [first, last] : lastOf_) {
    if (!text.empty()) text += ',';
    text += sqlNumber(first, 0);
    if (last != first) text += '-' + sqlNumber(last, 0);
  }
  return text;
}

std::vector<Finding> Decisions::open(std::vector<Finding> findings) {
  if (findings.empty()) return findings;
  const NumberRanges tickets = stored(kTickets), closings = stored(kClosings);
  std::erase_if(findings, [&](const Finding& each) {
    return (each.isOfTicket() ? tickets : closings).contains(each.number);
  });
  return findings;
}

void Decisions::keep(const std::vector<Finding>& findings) {
  NumberRanges tickets = stored(kTickets), closings = stored(kClosings);
  for (const Finding& each : findings) (each.isOfTicket() ? tickets : closings).add(each.number);
  Apartment::current().registry().set(key(), kTickets, tickets.text());
  Apartment::current().registry().set(key(), kClosings, closings.text());
}

}  // namespace tavelor::flows
