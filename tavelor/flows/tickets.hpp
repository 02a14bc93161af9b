// SPDX-License-Identifier: MIT
// Tickets as they are stored, live or in history: one with all that belongs to it, and lists.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/flows/sale.hpp"
#include "tavelor/platform/date.hpp"

namespace tavelor::flows {

/// A ticket in a list.
struct TicketRow {
  double number = 0;
  std::string reference;  ///< of its sale
  Date day;
  std::string time;  ///< "10:32"
  std::string till;
  std::string customer;
  std::string name;
  std::string payment;  ///< code; see Sale::parts
  double total = 0;     ///< euros
  double closing = 0;   ///< that took it; 0 for none yet
  double delivered = 0;  ///< euros handed over
  double change = 0;     ///< euros
};

/// A line of a ticket.
struct TicketLine {
  SaleLine sold;
  double returned = 0;  ///< units that have come back; of equal lines, the first ones first
};

/// A ticket with all that belongs to it. Euros.
struct Ticket : TicketRow {
  std::vector<TicketLine> lines;
  std::vector<PaymentPart> parts;  ///< none unless it was paid in several ways
  std::vector<std::string> comments;
  std::vector<double> returns;       ///< numbers of the tickets by which it came back, in order
  std::optional<double> returnOf{};  ///< the ticket that it brings back
};

/// By number; nothing where it is not there.
std::optional<Ticket> findTicket(double number);
/// By the reference of its sale.
std::optional<Ticket> findTicket(const std::string& reference);

/// What a sale's reference tells, without reading the ticket's lines.
std::optional<TicketRow> findTicketRow(const std::string& reference);

/// Which tickets.
struct TicketQuestion {
  std::optional<Date> from{};
  std::optional<Date> to{};   ///< included
  std::string till = {};      ///< "" for all
  std::string customer = {};  ///< "" for all
  std::string words = {};     ///< a number, a reference, a part of the customer's name
  std::size_t offset = 0;
  std::size_t limit = 50;  ///< 500 at most are given
};

/// A page of a list.
struct TicketList {
  std::vector<TicketRow> rows;  ///< the latest number first
  std::size_t total = 0;        ///< that there are
};

/// A question without days, customer and words reads every number there is.
TicketList listTickets(const TicketQuestion& question);

}  // namespace tavelor::flows
