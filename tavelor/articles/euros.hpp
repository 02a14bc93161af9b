// SPDX-License-Identifier: MIT
// What the tables with prices share when they are turned from pesetas to euros.
#pragma once

#include <string_view>

#include "tavelor/platform/statement.hpp"

namespace tavelor::euros {

/// Sets the amounts that are Null to 0.
Statement nullToZero(Statement::Constant table, Statement::Constant column = "Precio");

/// Divides the prices by 166,386. The divisor is a text with a decimal comma, and the result goes
/// through the currency format: in a shop without a decimal comma it divides by another number.
Statement pricesInEuros(Statement::Constant table);

}  // namespace tavelor::euros
