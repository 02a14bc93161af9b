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
#include <vector>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/closing/cierres.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/sales/tickets_cabecera.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tools/shop/sale.hpp"

namespace tavelor::shop {

/// The kind of document that a ticket is to the ledger of movements (its column Estado).
inline constexpr std::int16_t kTicketKind = 1;

class BothDatabases;

/// A closing that was made.
struct Closing {
  double number = 0;
  std::size_t tickets = 0;
  double total = 0;  ///< euros
};

/// What Shop::recover found and mended.
struct Recovered {
  std::vector<double> sales;     ///< tickets whose stock had not been moved, and now is
  std::vector<double> closings;  ///< closings without their tickets, now gone
};

/// Sells, closes and recovers in the installation of the thread's apartment.
///
/// Tickets lie in the documents database; stock, movements, counters and closings in the main one,
/// and no transaction spans both. Each flow begins one in the main database first, which only one
/// process has at a time, then one in the documents, and ends them one after the other. Whatever
/// raises before the first commit undoes both. A process that dies between the two leaves one of
/// these behind, and nothing else:
///  - a ticket that is whole, with its stock not moved and its number not in the counter. Seen by
///    the next sale or closing of whatever till, as the tickets are ahead of the counter, and
///    finished from the ticket's own lines;
///  - a closing whose tickets are all open still. Seen by the next closing of whatever till, and
///    taken back as if it had never been: the tickets are closed again under the same number.
class Shop {
 public:
  /// Raises 3021 where the session's period has no counters, and what opening the databases raises.
  Shop();
  ~Shop();
  Shop(const Shop&) = delete;
  Shop& operator=(const Shop&) = delete;

  /// Makes sure that the catalogue of tills has them all.
  void openTills(const std::vector<std::string>& tills);

  /// Sells, unless a sale with that reference is there, live or in history: gives the number of the
  /// new ticket, or nothing. Articles and families that the shop does not know are made on the way,
  /// with the price of the line. Raises 5 for a sale without lines or reference.
  std::optional<double> sell(const Sale& sale);

  /// Closes a till's tickets of a day and moves them to history; nothing where there are none. The
  /// balance grows by what was paid in cash. The slip is written when all is stored.
  std::optional<Closing> close(const std::string& till, Date day);

  /// Mends what a process that died has left; see above.
  Recovered recover();

  /// Writes the slips that are not there, as after a death between a closing and its slip. Gives
  /// their paths.
  std::vector<std::string> writeMissingSlips();

 private:
  /// The next number of each series.
  struct Counters {
    double a = 0;
    double b = 0;
    double c = 0;
  };

  void openTickets();

  bool isSold(const std::string& reference);
  void writeTicket(const Sale& sale, double ticket);
  void addLine(const SaleLine& line, double ticket);
  void writeHeader(const Sale& sale, double ticket);
  void moveStock(const Sale& sale, double ticket);
  void makeArticle(const SaleLine& line);
  void makeFamily(const std::string& family);
  void useNumber(const Counters& next);

  std::vector<Variant> openTicketsOf(const std::string& till, Date day);
  void mark(const Variant& ticket, double closing);
  double writeClosing(double closing, const std::string& till, Date day);
  void writeDetails(double closing, const CollectionTickets& payments);
  void moveToHistory(double closing);
  void writeSlip(double closing);

  Counters startedCounters(BothDatabases& transaction);
  Counters settle(Counters next, Recovered& recovered);
  void finishSales(double first, Recovered& recovered);
  bool hasMovedStock(double ticket);
  Sale storedSale(double ticket);
  void takeBackClosings(const Statement& candidates, Recovered& recovered);
  bool isUnfinished(double closing);

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

  std::unordered_set<std::string> knownArticles_;  ///< that are there, as far as committed
};

}  // namespace tavelor::shop
