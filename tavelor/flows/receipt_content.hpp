// SPDX-License-Identifier: MIT
// What a receipt says, whatever it is printed on.
#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/fiscal/record.hpp"
#include "tavelor/flows/amounts.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

/// A line that was sold.
struct ContentLine {
  double quantity = 0;
  std::string description;
  double price = 0;     ///< of one unit, tax included
  double discount = 0;  ///< percent
  double rate = 0;      ///< of tax, percent
  double amount = 0;    ///< tax included
};

/// A rate of it.
struct ContentTax {
  double rate = 0;  ///< percent
  TaxSplit split;
  double surchargeRate = 0;  ///< percent
  double surcharge = 0;
};

/// What the law wants on an invoice, of its record.
struct ContentInvoice {
  fiscal::InvoiceId id;
  std::string title;                     ///< "Factura simplificada"
  bool wantsUnitPrices = false;          ///< without tax, and the rate of each line
  std::vector<std::string> recipient{};  ///< name, number, where he lives
  std::vector<std::string> notes{};      ///< what it rectifies or replaces, why there is no tax
  std::string address;                   ///< that the code holds
  bool isSending = false;
};

/// A receipt. Amounts in euros.
struct ReceiptContent {
  Issuer shop;
  /// At the ends of a line each: "Ticket A/12" and its day, "Caja 01" and the time.
  std::vector<std::pair<std::string, std::string>> heads;
  std::vector<std::string> customer;  ///< as the ticket's header has it
  std::vector<ContentLine> lines;
  bool isTaxIncluded = true;  ///< in the amounts of the lines
  std::vector<ContentTax> taxes;
  double total = 0;
  /// What was handed over and given back; an invoice in the place of tickets does not tell it.
  std::optional<std::pair<double, double>> money;
  /// Names and amounts of what it was paid by, where it was paid in several ways.
  std::vector<std::pair<std::string, double>> parts;
  std::vector<std::string> comments;
  std::optional<ContentInvoice> invoice{};  ///< of a shop that keeps records
};

/// Of a ticket, wherever it lies; nothing where it is not there. Its invoice is its own, also where
/// another one is in its place: then a note tells it. Raises 53 where the shop has records and no
/// settings for them.
std::optional<ReceiptContent> readTicket(double number);

/// Of an invoice by its number, "T/12" or "F/1": of the ticket that goes with it, or of all the
/// tickets in whose place it is. Nothing where the shop has no such invoice.
std::optional<ReceiptContent> readInvoice(const std::string& number);

}  // namespace tavelor::flows
