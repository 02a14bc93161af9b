// SPDX-License-Identifier: MIT
// The flows of a shop, composed of the classes: a sale, the closing of a till, and what mends them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/closing/cierres.hpp"
#include "tavelor/customers/clientes.hpp"
#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tavelor/flows/findings.hpp"
#include "tavelor/flows/prices.hpp"
#include "tavelor/flows/sale.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/sales/tickets_cabecera.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tavelor/sales/tickets_lineas.hpp"

namespace tavelor::flows {

class BothDatabases;

/// The kind of document that a ticket is to the ledgers of movements and of customers (their column
/// Estado). Entries that a person writes have another.
inline constexpr std::int16_t kTicketKind = 1;

/// A closing that was made.
struct Closing {
  double number = 0;
  std::size_t tickets = 0;
  double total = 0;  ///< euros
};

/// A line that the shop has no price for.
struct Unpriced {
  SaleLine line;
  std::string reason;
};

/// What a person wants done with what is lost.
enum class Decision : std::uint8_t {
  kNone,
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

  /// Sells, unless a sale with that reference is there, live or in history: gives the number of the
  /// new ticket, or nothing. Articles, families and customers that the shop does not know are made
  /// on the way, articles with the price of the line. What is paid later is owed: an entry in the
  /// customer's ledger, in the same transaction as the stock. Raises 5 for a sale without lines or
  /// reference, with a line that wants a price, or on credit for nobody or the walk-in customer.
  std::optional<double> sell(const Sale& sale);

  /// Closes a till's tickets of a day and moves them to history; nothing where there are none. The
  /// balance grows by what was paid in cash. The slip is written when all is stored.
  std::optional<Closing> close(const std::string& till, Date day);

  /// Mends what a program that died has left, and finds what it cannot mend: as the next sale and
  /// the next closing would. While tickets are lost no closing is touched: whoever puts the lost
  /// file back finds it as it was.
  Recovered recover();
  /// The same over all tickets and closings, which reads everything, and with what a person has
  /// decided about what cannot be mended.
  Recovered recoverAll(Decision decision = Decision::kNone);

 private:
  /// The next number of each series.
  struct Counters {
    double a = 0;
    double b = 0;
    double c = 0;
  };
  /// How far to look for closings: behind the last one that both databases have, or at all.
  enum class Extent : std::uint8_t { kTail, kWhole };

  void openTickets();

  std::optional<double> ticketOf(const std::string& reference);
  bool isOnCredit(const Sale& sale);
  void requireWhole(const Sale& sale);
  void writeTicket(const Sale& sale, double ticket, bool onCredit);
  void addLine(const SaleLine& line, double ticket);
  void writeHeader(const Sale& sale, double ticket);
  void book(const Sale& sale, double ticket, bool onCredit);
  void moveStock(const Sale& sale, double ticket);
  void makeCustomer(const Sale& sale);
  void charge(const Sale& sale, double ticket);
  void makeArticle(const SaleLine& line);
  void makeFamily(const std::string& family);
  void useNumber(const Counters& next);

  std::vector<Variant> openTicketsOf(const std::string& till, Date day);
  void mark(const Variant& ticket, double closing);
  double writeClosing(double closing, const std::string& till, Date day);
  void writeDetails(double closing, const CollectionTickets& payments);
  void moveToHistory(double closing);

  Recovered mend(Extent extent);
  Counters startedCounters(BothDatabases& transaction, Recovered& recovered);
  Counters settle(Counters next, Recovered& recovered);
  Counters storedCounters();
  void settleClosings(Extent extent, Recovered& recovered);
  void finishSales(double first, Recovered& recovered);
  void bookStored(double ticket);
  bool hasMovedStock(double ticket);
  Sale storedSale(double ticket);
  void takeBack(double ticket);
  void takeBackEntries(double ticket);
  void takeBackClosings(const Statement& candidates, Recovered& recovered);
  bool isUnfinished(double closing);
  bool isInvoiced(double closing);
  void deleteClosing(double closing);
  void rewriteClosings(double after, Recovered& recovered);
  bool rewriteClosing(double closing);
  void followTickets(Recovered& recovered);

  ConnectionPtr main_;
  ConnectionPtr documents_;

  ClsTickets tickets_;
  ClsTicketsLineas lines_;
  ClsTicketsCabecera headers_;
  ClsTicketsComentarios comments_;
  ClsCierres closings_;
  clsArticulos articles_;
  ClsArticulosAlmacenes warehouses_;
  ClsArticulosLotes lots_;
  ClsArticulosMovAlmacen movements_;
  ClsClientes customers_;
  ClsClientesApuntesConta ledger_;
  Prices prices_;

  // What is there, as far as committed.
  std::unordered_set<std::string> knownArticles_;
  std::unordered_set<std::string> knownCustomers_;
};

}  // namespace tavelor::flows
