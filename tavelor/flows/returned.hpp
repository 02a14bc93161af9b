// SPDX-License-Identifier: MIT
// Which tickets are returns of another one, and what they have brought back of it.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "tavelor/flows/sale.hpp"

namespace tavelor::flows {

inline constexpr double kNoUnits = 1e-9;  // units; what binary fractions leave of a whole number

/// Of all returns of a ticket, by which they are found again: "Dev. A/12 (1)".
std::string returnReference(double ticket, int before);
/// The ticket whose return has that reference.
std::optional<double> returnedBy(const std::string& reference);

/// Whether a return of `line` looks like that: a return tells no lines.
bool isOf(const SaleLine& returned, const SaleLine& line);
/// What is left of each line after a return: off equal ones it is taken in their order.
void takeOff(std::vector<double>& left, const std::vector<SaleLine>& lines, const Sale& returned);

}  // namespace tavelor::flows
