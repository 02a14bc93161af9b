// SPDX-License-Identifier: MIT
// The rooms behind shop.hpp: what the flows are made of, and what they share.
#pragma once

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/closing/cierres.hpp"
#include "tavelor/customers/clientes.hpp"
#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tavelor/fiscal/book.hpp"
#include "tavelor/flows/again.hpp"
#include "tavelor/flows/amounts.hpp"
#include "tavelor/flows/audit.hpp"
#include "tavelor/flows/both_databases.hpp"
#include "tavelor/flows/known.hpp"
#include "tavelor/flows/parts.hpp"
#include "tavelor/flows/prices.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/flows/stored_sale.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/sales/tickets_cabecera.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/recordset/read_ahead.hpp"

namespace tavelor::flows {

inline constexpr std::string_view kWarehouse = "001";
inline constexpr std::string_view kNoLot = "0";
inline constexpr std::string_view kNobody = "";  // tickets without an employee

/// A whole number as a statement writes it.
inline std::string numberText(double value) {
  return sqlNumber(value, 0);
}

/// "" for Null.
inline std::string text(const Variant& value) {
  return value.isNull() ? std::string() : value.toText(Apartment::current().locale());
}

/// A column of all rows that have it, as numbers.
inline std::vector<double> numbersOf(int selector, const Statement& statement,
                                     std::string_view column, const ConnectionPtr& connection) {
  std::vector<double> numbers;
  for (Rows rows(selector, statement, connection); rows.hasRow(); rows.next()) {
    if (!rows.isNull(column)) numbers.push_back(rows.number(column));
  }
  return numbers;
}

/// A new lot is one that sales pass over, and no member says otherwise. Quotes are doubled, as
/// members take them.
inline void keepStock(const std::string& code, const std::string& lot, ConnectionPtr& connection) {
  Statement statement("UPDATE Articulos_Lotes SET Stock = True WHERE Codigo = '");
  statement << spliced(code) << "' AND Lote = '" << spliced(lot) << "'";
  DataSession().Execute(selector::kMain, statement, connection);
}

/// Nothing is sold or closed on top of a loss.
inline void refuseLosses(const Recovered& recovered) {
  if (!recovered.undecided.empty()) throw Disagreement(recovered.undecided);
}

/// The flows, each from top to bottom in the file of its name. What its members do for callers is
/// told in shop.hpp.
class Shop::Inner {
 public:
  Inner();

  void openTills(const std::vector<std::string>& tills);
  std::vector<Unpriced> price(Sale& sale);
  SaleLine price(const PriceQuestion& question);
  std::optional<double> sell(const Sale& given);
  Returned takeBack(const Return& what, bool isCancellation);
  std::string invoiceTickets(const InvoiceWish& wish);
  std::optional<Closing> close(const std::string& till, Date day, const CashCount* count);
  Recovered recover();
  Recovered recoverAll(Decision decision);

  const ConnectionPtr& main() const { return main_; }
  const ConnectionPtr& documents() const { return documents_; }
  /// What was read of the shop, or made in it, may not be so any more.
  void forget();
  /// As the free one.
  template <typename Flow>
  auto untilThrough(Flow&& flow) {
    return flows::untilThrough(*main_, flow, [this] { forget(); });
  }

 private:
  /// The next number of each series.
  struct Counters {
    double a = 0;
    double b = 0;
    double c = 0;
  };
  /// What is recorded of a sale: the registration, or the number of the invoice that it cancels;
  /// neither in a shop that keeps no records.
  struct Invoice {
    std::optional<fiscal::Registration> registration{};
    std::string cancelled{};
  };
  /// How far to look for closings: behind the last one that both databases have, or at all.
  enum class Extent : std::uint8_t { kTail, kWhole };

  std::optional<double> sellOnce(const Sale& given, Before before);
  Returned takeBackOnce(const Return& what, bool isCancellation, Before before,
                        std::string& reference);
  void payBack(Sale& back, const Sale& sold, const std::vector<Sale>& earlier);
  std::string invoiceTicketsOnce(const InvoiceWish& wish, Before before, std::string& number);
  std::optional<Closing> closeOnce(const std::string& till, Date day, const CashCount* count,
                                   Before before, Closing& closing);

  void openTickets();

  void refuseFaults(const Sale& sale);
  bool isThere(const Sale& sale);
  std::string difference(const Sale& sale, double ticket);
  Rows creditOf(const std::string& customer) const;
  void requireCredit(const Sale& sale);
  Sale withLots(const Sale& sale);
  std::string lotOf(const SaleLine& line, std::string& fault);
  bool isThere(const std::string& article);
  bool isByLots(const std::string& article);
  void moveLot(const std::string& code, const std::string& lot, double units, bool isReturn);
  std::optional<double> ticketOf(const std::string& reference) const {
    return flows::ticketOf(reference, documents_);
  }
  bool isOnCredit(const Sale& sale);
  Invoice draftInvoice(const Sale& sale);
  std::string cancelledBy(const Sale& sale, std::vector<std::string>& faults);
  fiscal::Party partyOf(const std::string& customer, const std::string& name);
  void writeInvoice(const Invoice& invoice, double ticket);
  void writeTicket(const Sale& sale, double ticket, bool onCredit);
  void addLine(const SaleLine& line, double ticket);
  void writeHeader(const Sale& sale, double ticket);
  void book(const Sale& sale, double ticket, bool onCredit);
  void takeStock(const Sale& sale, ReadAhead& ahead);
  void askForSale(const Sale& sale, bool onCredit, ReadAhead& ahead);
  void askForStock(const std::string& article, ReadAhead& ahead);
  void askForNumbers(const Sale& sale, ReadAhead& ahead);
  void askForTicket(const Sale& sale, const Counters& next, bool onCredit, const Invoice& invoice,
                    ReadAhead& ahead);
  void writeMovements(const Sale& sale, double ticket);
  bool isKnownCustomer(const std::string& customer) const;
  void makeCustomer(const Sale& sale);
  void charge(const Sale& sale, double ticket);
  void makeArticle(const SaleLine& line);
  void makeFamily(const std::string& family);
  void useNumber(const Counters& next);

  bool isClosed(const Closing& closing, const std::string& till, Date day);
  std::vector<Variant> openTicketsOf(const std::string& till, Date day);
  void markAll(const std::vector<Variant>& tickets, double closing);
  void mark(const Variant& ticket, double closing);
  double writeClosing(double closing, const std::string& till, Date day);
  PaymentSums paymentsOf(double closing);
  void writeDetails(double closing, const PaymentSums& payments);
  std::map<double, TaxSplit> taxesOf(double closing);
  void moveToHistory(double closing);

  Recovered mend(Extent extent);
  static bool isStarted(const Counters& counters);
  void startCounters();
  Counters startedCounters();
  Counters startedCounters(BothDatabases& transaction, Recovered& recovered);
  Counters settle(Counters next, Recovered& recovered);
  Counters firstFree(Counters next);
  Counters storedCounters();
  void settleClosings(Extent extent, Recovered& recovered);
  void finishSales(double first, Recovered& recovered);
  void bookStored(double ticket);
  bool hasMovedStock(double ticket);
  std::optional<Sale> findSale(double ticket) const {
    return flows::findSale(ticket, main_, documents_);
  }
  Sale storedSale(double ticket) const { return findSale(ticket).value_or(Sale()); }
  void undo(double ticket);
  void undoEntries(double ticket);
  void takeBackClosings(const Statement& candidates, Recovered& recovered);
  bool isUnfinished(double closing);
  bool isInvoiced(double closing);
  void deleteClosing(double closing);
  void rewriteClosings(double after, Recovered& recovered);
  bool rewriteClosing(double closing);
  void followTickets(Recovered& recovered);

  ConnectionPtr main_;
  ConnectionPtr documents_;
  /// Where the engine does not let one transaction write at a time.
  bool tillsOverlap_;
  std::unique_ptr<fiscal::Book> invoices_;  // none: the shop keeps no records

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
  Known known_;
  std::string startedPeriod_;  // the one whose counters have a number each
  std::unordered_map<std::string, bool> knownArticles_;  // by code: whether kept by lots
  std::unordered_set<std::string> knownCustomers_;
};

}  // namespace tavelor::flows
