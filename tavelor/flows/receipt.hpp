// SPDX-License-Identifier: MIT
// What the till prints: receipts of tickets and slips of closings.
#pragma once

#include <string>
#include <vector>

namespace tavelor::flows {

/// A ticket as its receipt, line by line, wherever it lies: shop, number, day and till, the
/// customer, the lines, taxes, total, what was delivered and given back, comments. Nothing for a
/// ticket that is not there.
std::vector<std::string> ticketText(double number);

/// A closing as its slip: the closing, then its families, payments and taxes. Nothing for a closing
/// that is not there.
std::vector<std::string> slipText(double closing);

/// Where the slip of a closing lies.
std::string slipPath(double closing);
/// Writes it there, in the place of an earlier one, and gives the path. Raises 75 when it cannot be
/// written; the earlier one is untouched then.
std::string writeSlip(double closing);

}  // namespace tavelor::flows
