// SPDX-License-Identifier: MIT
// Sales as their tickets tell them, live or in history.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include "tavelor/flows/sale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

inline constexpr std::string_view kSeries = "A";
/// Where tickets lie: until their closing, and behind it.
inline constexpr std::array<Statement::Constant, 2> kTicketTables{"Tickets", "HTickets"};

/// Number of the ticket with that reference.
std::optional<double> ticketOf(const std::string& reference, const ConnectionPtr& documents);

/// Nothing where there is no such ticket.
std::optional<Sale> findSale(double ticket, const ConnectionPtr& main,
                             const ConnectionPtr& documents);

}  // namespace tavelor::flows
