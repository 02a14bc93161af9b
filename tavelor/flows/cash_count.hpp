// SPDX-License-Identifier: MIT
// Counting the drawer of a till that is closed.
#pragma once

#include <string>

#include "tavelor/flows/shop.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

/// Raises 5 for what is no amount of a drawer, and for an employee wider than his column.
void requireAmount(const CashCount& count);
/// Beside a closing that was just written, in its transaction.
void writeCount(double closing, const std::string& till, const CashCount& count,
                const ConnectionPtr& main);
/// What all counts of a till together had over; negative where they missed some. The balance of its
/// closings knows nothing of it, the drawer does.
double countedOver(const std::string& till, const ConnectionPtr& main);

}  // namespace tavelor::flows
