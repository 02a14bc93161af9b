// SPDX-License-Identifier: MIT
// What the flows of a shop share behind shop.hpp.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tools/shop/both_databases.hpp"
#include "tools/shop/rows.hpp"
#include "tools/shop/shop.hpp"

namespace tavelor::shop {

inline constexpr std::string_view kSeries = "A";
inline constexpr std::string_view kWarehouse = "001";
inline constexpr std::string_view kNoLot = "0";
inline constexpr std::string_view kNobody = "";  // tickets without an employee
/// Where tickets lie: until their closing, and behind it.
inline constexpr std::array<Statement::Constant, 2> kTicketTables{"Tickets", "HTickets"};

/// A whole number as a statement writes it.
inline std::string numberText(double value) {
  return sqlNumber(value, 0);
}

/// "" for Null.
inline std::string text(const Variant& value) {
  return value.isNull() ? std::string() : value.toText(Apartment::current().locale());
}

/// A column of all rows that have it, as numbers.
inline std::vector<double> numbersOf(int selector, const Statement& statement,
                                     std::string_view column, const ConnectionPtr& connection) {
  std::vector<double> numbers;
  for (Rows rows(selector, statement, connection); rows.hasRow(); rows.next()) {
    if (!rows.isNull(column)) numbers.push_back(rows.number(column));
  }
  return numbers;
}

/// Nothing is sold or closed on top of a loss.
inline void refuseLosses(const Recovered& recovered) {
  if (!recovered.undecided.empty()) throw Disagreement(recovered.undecided);
}

}  // namespace tavelor::shop
