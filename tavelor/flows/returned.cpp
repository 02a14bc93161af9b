// SPDX-License-Identifier: MIT
// Which tickets are returns of another one, and what they have brought back of it.
#include "tavelor/flows/returned.hpp"

#include <algorithm>
#include <charconv>
#include <string_view>

#include <fmt/format.h>

#include "tavelor/flows/stored_sale.hpp"

namespace tavelor::flows {

std::string returnReference(double ticket, int before) {
  return fmt::format("Dev. {}/{:.0f} ({})", kSeries, ticket, before + 1);
}

std::optional<double> returnedBy(const std::string& reference) {
  const std::string prefix = fmt::format("Dev. {}/", kSeries);
  if (!reference.starts_with(prefix)) return std::nullopt;
  double ticket = 0;
  const char* const end = reference.data() + reference.size();
  const auto read =
      std::from_chars(reference.data() + prefix.size(), end, ticket, std::chars_format::fixed);
  const bool isNumber = read.ec == std::errc() && std::string_view(read.ptr, end).starts_with(" (");
  return isNumber ? std::optional(ticket) : std::nullopt;
}

bool isOf(const SaleLine& returned, const SaleLine& line) {
  return returned.code == line.code && returned.price == line.price &&
         returned.discount == line.discount && returned.tax == line.tax &&
         returned.surcharge == line.surcharge && returned.lot == line.lot;
}

void takeOff(std::vector<double>& left, const std::vector<SaleLine>& lines, const Sale& returned) {
  for (const SaleLine& back : returned.lines) {
    double units = -back.quantity;
    for (std::size_t at = 0; at < lines.size() && units > kNoUnits; ++at) {
      if (!isOf(back, lines[at])) continue;
      const double taken = std::min(units, left[at]);
      left[at] -= taken;
      units -= taken;
    }
  }
}

}  // namespace tavelor::flows
