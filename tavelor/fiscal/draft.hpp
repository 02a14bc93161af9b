// SPDX-License-Identifier: MIT
// What record a sale is to have, before it has one.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/breakdown.hpp"
#include "tavelor/fiscal/terms.hpp"

namespace tavelor::fiscal {

/// The ticket that comes back with a sale.
struct Returned {
  double ticket = 0;   ///< its number among tickets
  std::string number;  ///< as it bears it: of one that was sold before there were records
  Date day;            ///< of its sale
};

/// A sale as its record needs it.
struct SoldGoods {
  Date day;                            ///< of issue
  std::vector<TaxedAmount> amounts;    ///< a line each
  Party customer{};                    ///< of the shop; without a name there is none
  std::optional<Returned> returned{};  ///< the ticket that comes back
  Terms terms{};
};

/// The registration of a sale, to be given to Book::add(), or in `faults` why there can be none, a
/// sentence each, and what is missing. Writes nothing.
Registration draftOf(const Book& book, const SoldGoods& sold, std::vector<std::string>& faults);

/// The registration of an invoice in the place of tickets (F3), by the numbers of the tickets. The
/// same.
Registration replacementOf(const Book& book, const std::vector<double>& tickets, Party recipient,
                           Date day, std::vector<std::string>& faults);

}  // namespace tavelor::fiscal
