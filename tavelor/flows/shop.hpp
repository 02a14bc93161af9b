// SPDX-License-Identifier: MIT
// The flows of a shop, composed of the classes: a sale, the closing of a till, and what mends them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "tavelor/flows/findings.hpp"
#include "tavelor/flows/sale.hpp"

namespace tavelor::flows {

/// The kind of document that a ticket is to the ledgers of movements and of customers (their column
/// Estado). Entries that a person writes have another.
inline constexpr std::int16_t kTicketKind = 1;

/// A closing that was made.
struct Closing {
  double number = 0;        ///< of the closing, whatever the till
  std::size_t tickets = 0;  ///< that it took
  double total = 0;         ///< euros
};

/// What somebody has counted in the drawer of a till.
struct CashCount {
  double counted = 0;   ///< euros
  std::string by = {};  ///< code of the employee; "" for nobody
};

/// A line that the shop has no price for.
struct Unpriced {
  SaleLine line;       ///< as it came
  std::string reason;  ///< why there is none
};

/// What the shop asks for an article.
struct PriceQuestion {
  std::string article;           ///< code
  std::string customer = {};     ///< code; "" for nobody
  double quantity = 1;           ///< pieces, kilos
  std::string tariff = {};       ///< "" for the customer's
  std::string family = {};       ///< "" for the article's
  std::optional<Date> day = {};  ///< on which offers must run; today, where none is given
};

/// What comes back of a ticket.
struct ReturnedLine {
  std::size_t line = 0;  ///< of the ticket, from 1
  double quantity = 0;   ///< above 0
};

/// A return of what a ticket has sold.
struct Return {
  double ticket = 0;                     ///< number of the ticket that is brought back
  std::string till;                      ///< where
  Date day;                              ///< without a time
  std::string time = {};                 ///< "10:32"; "" for none
  std::string payment = {};              ///< code; "" for the way in which the ticket was paid
  std::string comment = "Devolución";    ///< of the new ticket
  std::vector<ReturnedLine> lines = {};  ///< none: all that has not come back yet
  /// Why an invoice comes back, of R1 to R4, in a shop that keeps records. A ticket's is R5.
  fiscal::InvoiceKind cause = fiscal::InvoiceKind::kRectifying1;
  /// How many returns of that ticket the caller knows of: then the same return may be asked for
  /// again, and another one that came meanwhile is a conflict. None: it is another one each time.
  std::optional<int> earlier = {};
};

/// A return that was made.
struct Returned {
  double ticket = 0;      ///< number of the new ticket
  bool wasThere = false;  ///< this very return had been made before
};

/// An invoice that somebody wants in the place of tickets.
struct InvoiceWish {
  std::vector<double> tickets;   ///< numbers
  Date day;                      ///< of issue
  std::string customer = {};     ///< code of the one who is named on it
  fiscal::Party recipient = {};  ///< or who it is
};

/// What a person wants done with what is lost.
enum class Decision : std::uint8_t {
  kNone,  ///< nothing yet
  /// Stock, accounts and closings become what the tickets tell: movements without their ticket are
  /// taken back and so is what it put on an account, lines without movements are moved, closings
  /// without tickets are deleted, unless they were invoiced. The numbers of lost tickets are not
  /// given again.
  kFollowTickets,
  kKeep,  ///< all stays, and counts as right from now on
};

/// What Shop::recover found and mended.
struct Recovered {
  std::vector<double> sales;       ///< tickets whose stock had not been moved, and now is
  std::vector<double> closings;    ///< closings without their tickets, now gone
  std::vector<double> rewritten;   ///< closings of tickets in history, made again from them
  std::vector<double> takenBack;   ///< lost tickets whose movements are undone
  std::vector<Finding> kept;       ///< stay as they are, by a decision of this call
  std::vector<Finding> undecided;  ///< what nothing mends
  /// Numbers that no ticket has, where the counter is ahead of the tickets and nothing is lost. Not
  /// given again: somebody set the counter, or the tickets were printed before they were lost.
  std::optional<std::pair<double, double>> unused;

  /// Whether anything was changed.
  bool hasMended() const {
    return !sales.empty() || !closings.empty() || !rewritten.empty() || !takenBack.empty() ||
           !kept.empty();
  }
};

/// Sells, closes and recovers in the installation of the thread's apartment.
///
/// Tickets lie in the documents database; stock, movements, customers and their accounts, counters
/// and closings in the main one, and no transaction spans both. Each flow begins one in the main
/// database first, which only one process has at a time, then one in the documents, and ends them
/// one after the other. Whatever raises before the first commit undoes both.
///
/// A process that dies between the two commits, or a main database that has lost its latest ones,
/// leaves what the tickets can mend: stock that was not moved, closings whose tickets are open,
/// closed tickets without their closing. Every sale looks for the first at no cost, every closing
/// for all, and mends it. Documents that have lost their latest commits cannot be mended: then
/// sales and closings raise Disagreement, until the lost file is put back or recover() is told what
/// to do.
///
/// The shop's tills, payment methods and taxes, and which articles are kept by lots, are read once
/// between two closings, and again where a sale names one that is not among them.
class Shop {
 public:
  /// Raises 3021 where the session's period has no counters, and what opening the databases raises.
  Shop();
  ~Shop();
  Shop(const Shop&) = delete;
  Shop& operator=(const Shop&) = delete;

  /// Makes sure that the catalogue of tills has them all.
  void openTills(const std::vector<std::string>& tills);

  /// Gives the lines that want one their price for the sale's customer; those for which there is
  /// none leave the sale, and are given. A sale that is there already gets the prices at which it
  /// was sold.
  std::vector<Unpriced> price(Sale& sale);
  /// One line at the shop's own price, discount and tax, ready to be sold. Raises 5 where the shop
  /// has no price for it.
  SaleLine price(const PriceQuestion& question);

  /// Sells, unless that very sale is there, live or in history: gives the number of the new ticket,
  /// or nothing. Articles, families and customers that the shop does not know are made on the way,
  /// articles with the price of the line. What is paid later is owed: an entry in the customer's
  /// ledger, in the same transaction as the stock.
  ///
  /// An article that is kept by lots is sold from the lot that the line names, which must be there,
  /// else from its active lot, else from its latest one. A return goes into the lot that it names,
  /// else into the active one.
  ///
  /// Raises RefusedSale, with all that is wrong: values that are missing, no numbers or wider than
  /// their columns; a day before 1980 or in the future; a till, a payment method or a tax that the
  /// shop does not have; a reference that another sale has; credit for nobody, for the walk-in
  /// customer, for one who is blocked or not in use, and beyond the limit of what he may owe, the
  /// last three unless the sale says that it is granted. In a shop that keeps records, a sale that
  /// can have no legal one too: its record is stored with the ticket, or neither is.
  std::optional<double> sell(const Sale& sale);

  /// Sells back what a ticket has sold, live or in history: at its prices, to its customer, into
  /// the lots that it was sold from. Gives the number of the new ticket, whose reference tells the
  /// old one and how many came back before it. Raises RefusedSale where the ticket is not there, or
  /// more comes back than is left of one of its lines, and whatever sell() raises.
  ///
  /// What comes back of a ticket that was paid in parts is given back in the same ways, unless one
  /// is told: the ticket's own first, of each what is left of its part.
  double takeBack(const Return& what);
  /// The same, and whether it had been made before. With Return::earlier, raises RefusedSale with
  /// isConflict() where somebody has made another return meanwhile.
  Returned takeBackSafely(const Return& what);

  /// Takes back all of a ticket that should not have been sold, and cancels its invoice in place of
  /// rectifying it. Gives the number of the new ticket. Raises as takeBack(), and RefusedSale where
  /// the ticket has no record, is cancelled, was replaced, or has come back, be it in part.
  double cancel(const Return& what);

  /// Issues an invoice (F3) in the place of tickets, with who buys named on it; the tickets stay as
  /// they are. Gives its number. Raises RefusedSale, with all that is wrong, for tickets that have
  /// no record, are cancelled, replaced, invoices already, or have come back, and for a recipient
  /// without a name or a right number.
  std::string invoiceTickets(const InvoiceWish& wish);

  /// Closes a till's tickets of a day and moves them to history; nothing where there are none. The
  /// balance grows by what was paid in cash. The slip is written when all is stored.
  std::optional<Closing> close(const std::string& till, Date day);
  /// And stores with it what was counted, beside what should be there: the till's balance and what
  /// earlier counts had over or missed. Raises 5 for what is no amount, or an employee wider than
  /// his column.
  std::optional<Closing> close(const std::string& till, Date day, const CashCount& count);

  /// Mends what a program that died has left, and finds what it cannot mend: as the next sale and
  /// the next closing would. While tickets are lost no closing is touched: whoever puts the lost
  /// file back finds it as it was.
  Recovered recover();
  /// The same over all tickets and closings, which reads everything, and with what a person has
  /// decided about what cannot be mended.
  Recovered recoverAll(Decision decision = Decision::kNone);

 private:
  friend class Transaction;
  friend class Receiving;
  class Inner;
  std::unique_ptr<Inner> inner_;
};

}  // namespace tavelor::flows
