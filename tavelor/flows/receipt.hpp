// SPDX-License-Identifier: MIT
// What the till prints: receipts of tickets and slips of closings.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tavelor::flows {

/// What a receipt is printed on.
enum class Paper : std::uint8_t {
  k58,  ///< a roll of 58 mm
  k80,  ///< a roll of 80 mm
  kA4,
};

/// A ticket as its receipt, line by line, wherever it lies: who the shop is, number, day and till,
/// the customer, the lines, total, what was delivered and given back, base and tax by rate, which
/// add up to the total to the cent, comments. Made of the stored lines. Thirty characters wide but
/// for texts that are wider. Nothing for a ticket that is not there.
///
/// In a shop that keeps records it bears those of its invoice: first the address behind its code,
/// then what it is, its number, whom it names, what it rectifies or replaces, and why there is no
/// tax. A ticket from before them reads as ever. Raises 53 where the settings of the records are
/// gone; so do all of these.
std::vector<std::string> ticketText(double number);
/// The same of an invoice by the number that it bears, "T/12": of its ticket, or, of one in the
/// place of tickets, of all of them.
std::vector<std::string> invoiceText(const std::string& number);

/// A receipt as a page to be printed: one HTML text in UTF-8 that needs neither network nor script.
/// The code stands at the top, 30 to 40 mm a side, its modules whole dots of a printer of 203 dpi.
/// "" for a ticket that is not there.
std::string ticketPage(double number, Paper paper);
/// The same of an invoice.
std::string invoicePage(const std::string& number, Paper paper);

/// A receipt as bytes for a ticket printer (ESC/POS, 203 dpi, page 19 of characters, which has the
/// euro): the code as an image, the lines, a cut. What that page does not have is written without
/// its accents, or as a question mark. "" for a ticket that is not there. Raises 5 for A4.
std::string ticketBytes(double number, Paper paper);
/// The same of an invoice.
std::string invoiceBytes(const std::string& number, Paper paper);

/// A closing as its slip: who the shop is, the closing, then its families, payments and taxes, and
/// what was counted where somebody did.
/// Nothing for a closing that is not there.
std::vector<std::string> slipText(double closing);

/// Where the slip of a closing lies.
std::string slipPath(double closing);
/// Writes it there, in the place of an earlier one, and gives the path. Raises 75 when it cannot be
/// written; the earlier one is untouched then.
std::string writeSlip(double closing);

}  // namespace tavelor::flows
