// SPDX-License-Identifier: MIT
// What the till prints: receipts of tickets and slips of closings.
#pragma once

#include <string>
#include <vector>

namespace tavelor::flows {

/// A ticket as its receipt, line by line, wherever it lies: who the shop is, number, day and till,
/// the customer, the lines, total, what was delivered and given back, base and tax by rate, which
/// add up to the total to the cent, comments. Made of the stored lines. Thirty characters wide but
/// for texts that are wider. Nothing for a ticket that is not there.
std::vector<std::string> ticketText(double number);

/// A closing as its slip: who the shop is, the closing, then its families, payments and taxes.
/// Nothing for a closing that is not there.
std::vector<std::string> slipText(double closing);

/// Where the slip of a closing lies.
std::string slipPath(double closing);
/// Writes it there, in the place of an earlier one, and gives the path. Raises 75 when it cannot be
/// written; the earlier one is untouched then.
std::string writeSlip(double closing);

}  // namespace tavelor::flows
