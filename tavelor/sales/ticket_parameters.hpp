// SPDX-License-Identifier: MIT
// Parameters that classes of another folder share with ClsTickets.
#pragma once

#include <vector>

#include "tavelor/frame/component.hpp"
#include "tavelor/sales/tickets.hpp"

namespace tavelor {

/// Those of Obtener, in their order: the form that shows tickets shows closings too.
std::vector<AggregateParameter<ClsTickets::Lectura>> ticketReadParameters();

}  // namespace tavelor
