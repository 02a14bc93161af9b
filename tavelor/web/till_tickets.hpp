// SPDX-License-Identifier: MIT
// Lists of tickets, for all who show some.
#pragma once

#include "tavelor/flows/tickets.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/json.hpp"

namespace tavelor::web {

/// The page of a list that the query's offset and limit ask for.
Json ticketsOf(Context& context, flows::TicketQuestion question);

}  // namespace tavelor::web
