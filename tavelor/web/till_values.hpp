// SPDX-License-Identifier: MIT
// What the addresses of the till have in common: who may ask, lines as JSON, what a line costs.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/flows/sale.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/json.hpp"

namespace tavelor::web {

inline constexpr std::size_t kMostLines = 500;  // of a sale
inline constexpr std::size_t kMostParts = 20;   // as sent; those of one method are one
inline constexpr std::size_t kTillWidth = 20;   // characters of a till's code
inline constexpr std::size_t kPayWidth = 50;    // of a payment method's
inline constexpr std::size_t kCommentWidth = 2000;

/// For what both the till and the office show. Raises Failure 403.
void mayLook(const Context& context);

/// A line as it was sent, and what of it was told.
struct SentLine {
  flows::SaleLine line;
  bool hasPrice = false;
  bool hasDiscount = false;
  bool hasTax = false;
  bool hasSurcharge = false;
};

/// Who buys, and by which tariff where it is not his own.
struct Buyer {
  std::string customer;
  std::string tariff = {};
};

/// The member "lines". Raises Failure 400 for what does not read.
std::vector<SentLine> linesOf(const Fields& body);
/// Gives a line what it has not told, as the shop has it. What is wrong, or "": then there is no
/// price, and the line stays as it was.
std::string complete(SentLine& sent, const Buyer& buyer, flows::Shop& shop);

/// What the caller would need to sell these lines, beside till.sell: none where all is the shop's.
std::optional<Right> neededFor(const std::vector<flows::SaleLine>& lines, const Buyer& buyer,
                               Context& context);

/// As the contract tells a line.
Json jsonOf(const flows::SaleLine& line);

/// What every address says of a money amount.
inline Json money(double amount) {
  return toJson(amount, 2);
}
inline Json jsonOfNumber(double number) {
  return toJson(number, 0);
}
/// "/print/ticket/17".
std::string receiptOf(double ticket);

}  // namespace tavelor::web
