// SPDX-License-Identifier: MIT
// A day of sales for a shop that has none of its own to show.
#pragma once

#include <string>
#include <vector>

#include "tavelor/flows/sale.hpp"

namespace tavelor::tools {

/// Some three hundred tickets of a neighbourhood shop on 20 November 2026, from 9:30 to 14:00 and
/// from 17:00 to 20:30, in the order of their times and spread over `tills`. The same tills give
/// the same day on every machine. Payment "1" is cash, handed over in coins and notes, "2" is a
/// card. A return has a reference with "C", negative quantities and a comment, and its money counts
/// as handed over. Raises 5 without tills.
std::vector<flows::Sale> builtInDay(const std::vector<std::string>& tills);

}  // namespace tavelor::tools
