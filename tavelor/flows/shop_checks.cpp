// SPDX-License-Identifier: MIT
// What a sale must be before it is sold, and which lots it takes from.
#include <algorithm>
#include <cmath>

#include <fmt/format.h>

#include "tavelor/flows/customers.hpp"
#include "tavelor/flows/shop_inner.hpp"
#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/clock.hpp"

namespace tavelor::flows {

namespace {

/// Before it there were no tills of this kind; nearer to today, files of old sales are welcome.
const Date kFirstDay = Date::of(1980, 1, 1);

/// As much of a text as a message has room for.
std::string shown(std::string_view text) {
  return std::string(tavelor::text::left(text, 40));
}

/// Collects what is wrong with a sale.
class Faults {
 public:
  explicit Faults(const Sale& sale) : sale_(sale) {}

  void add(const std::string& reason) {
    if (reason.empty()) return;
    const std::uint64_t origin = sale_.lines.empty() ? 0 : sale_.lines.front().origin;
    faults_.push_back({.origin = origin, .reason = reason});
  }
  void add(const SaleLine& line, std::string reason) {
    if (reason.empty()) return;
    const auto place = static_cast<std::size_t>(&line - sale_.lines.data()) + 1;
    faults_.push_back({place, line.origin, shown(line.code), std::move(reason)});
  }
  void refuse(bool isConflict = false) {
    if (faults_.empty()) return;
    throw RefusedSale(shown(sale_.reference), std::move(faults_), isConflict);
  }

 private:
  const Sale& sale_;
  std::vector<SaleFault> faults_;
};

std::string faultOfDay(Date day) {
  if (day == Date()) return "the day is missing";
  if (!std::isfinite(day.days()) || day < kFirstDay) return "the day lies before 1980";
  if (day != day.dayOnly()) return "the day has a time in it";
  if (day > Apartment::current().clock().today()) {
    return fmt::format("the day lies in the future: {}", isoDay(day));
  }
  return {};
}

/// Statements carry six decimals, doubles fifteen digits.
bool isSame(double a, double b) {
  return std::abs(a - b) <= 1e-6 + 1e-12 * std::abs(b);
}

bool isSame(const SaleLine& a, const SaleLine& b) {
  return a.code == b.code && isSame(a.quantity, b.quantity) && isSame(a.price, b.price) &&
         isSame(a.discount, b.discount) && isSame(a.tax, b.tax) && isSame(a.surcharge, b.surcharge);
}

}  // namespace

/// By the values alone and what the shop has; who pays later is asked under the locks.
void Shop::Inner::refuseFaults(const Sale& sale) {
  Faults faults(sale);
  const auto tooLong = [&](std::string_view what, const std::string& text, std::size_t most) {
    if (tavelor::text::length(text) > most) {
      faults.add(fmt::format("the {} has more than {} characters", what, most));
    }
  };
  if (sale.reference.empty()) faults.add("it has no reference of its own");
  tooLong("reference", sale.reference, SaleWidths::kReference);
  tooLong("customer", sale.customer, SaleWidths::kCustomer);
  tooLong("name", sale.name, SaleWidths::kName);
  tooLong("place", sale.place, SaleWidths::kPlace);
  faults.add(faultOfDay(sale.day));
  if (!sale.time.empty() && !parseSqlDate(sale.time)) {
    faults.add(fmt::format("the time is none: {}", shown(sale.time)));
  }
  if (sale.till.empty()) {
    faults.add("the till is missing");
  } else if (!known_.hasTill(sale.till)) {
    faults.add(fmt::format("the shop has no till {}, only {}", shown(sale.till), known_.tills()));
  }
  if (sale.payment.empty()) {
    faults.add("the payment method is missing");
  } else if (known_.payment(sale.payment) == nullptr) {
    faults.add(fmt::format("the shop has no payment method {}", shown(sale.payment)));
  }
  for (const std::string& fault : faultsOfParts(sale, known_)) faults.add(fault);
  if (!std::isfinite(sale.delivered) || std::abs(sale.delivered) > kMostMoney) {
    faults.add("what was handed over is no amount");
  }
  if (sale.lines.empty()) faults.add("it has no lines");
  for (const SaleLine& line : sale.lines) {
    std::string fault = line.wantsPrice ? "there is no price" : faultOf(line);
    if (fault.empty() && !known_.hasTax(line.tax)) {
      fault = fmt::format("the shop has no tax of {} %, only {}", line.tax, known_.taxes());
    }
    faults.add(line, std::move(fault));
  }
  const auto isBare = [](const SaleLine& line) { return line.tax != 0 && line.surcharge == 0; };
  if (sale.surcharge() != 0) {
    for (const SaleLine& line : sale.lines) {
      if (isBare(line)) faults.add(line, "it has no surcharge, and others have one");
    }
  }
  faults.refuse();
}

/// Whether it was sold before. Raises RefusedSale where its reference is that of another one.
bool Shop::Inner::isThere(const Sale& sale) {
  const std::optional<double> ticket = ticketOf(sale.reference);
  if (!ticket) return false;
  Faults faults(sale);
  faults.add(difference(sale, *ticket));
  faults.refuse(true);
  return true;
}

/// From the sale that has its reference; "" for none.
std::string Shop::Inner::difference(const Sale& sale, double ticket) {
  const Sale other = storedSale(ticket);
  const auto differs = [&](std::string_view what) {
    return fmt::format("its reference is that of ticket {}/{:.0f}, sold at till {} on {}, {}",
                       kSeries, ticket, other.till, isoDay(other.day), what);
  };
  if (other.till != sale.till) return differs("another till");
  if (other.day.dayOnly() != sale.day) return differs("another day");
  if (other.customer != sale.customer) return differs("to another customer");
  if (other.payment != sale.payment || !areSame(other.parts, sale.parts)) {
    return differs("paid otherwise");
  }
  // History numbers the lines anew, in whatever order they lie.
  std::vector<SaleLine> left = other.lines;
  for (const SaleLine& line : sale.lines) {
    const auto same = std::find_if(left.begin(), left.end(),
                                   [&](const SaleLine& each) { return isSame(each, line); });
    if (same == left.end()) return differs("with other lines");
    left.erase(same);
  }
  return left.empty() ? std::string() : differs("with other lines");
}

Rows Shop::Inner::creditOf(const std::string& customer) const {
  Statement statement("SELECT Activo, Bloqueo, Riesgo FROM Clientes WHERE Codigo = ");
  statement << sqlText(customer);
  return {selector::kMain, statement, main_};
}

/// A limit that is Null was never set, and is none; 0 lets nobody owe anything.
void Shop::Inner::requireCredit(const Sale& sale) {
  Faults faults(sale);
  if (sale.customer.empty() || sale.customer == kWalkIn) {
    faults.add("it is on credit, and for nobody");
    faults.refuse();
  }
  const double total = sale.total();
  if (sale.isCreditGranted || total <= 0) return;
  const std::string code = doubledQuotes(sale.customer);
  const Rows row = creditOf(sale.customer);
  if (!row.hasRow()) return;  // made with this sale
  constexpr double kSetAside = 2;
  const double active = row.number("Activo");
  const std::string who = shown(sale.customer);
  if (active == 0 || active == kSetAside) {
    faults.add(fmt::format("customer {} is not in use, and gets no credit", who));
  }
  if (row.flag("Bloqueo"))
    faults.add(fmt::format("customer {} is blocked, and gets no credit", who));
  if (!row.isNull("Riesgo")) {
    const double limit = row.number("Riesgo");
    const double owed = roundHalfAway(0 - ledger_.Saldo_actual(code, main_), 2);
    if (roundHalfAway(owed + total, 2) > limit) {
      faults.add(fmt::format("customer {} owes {:.2f}, and with {:.2f} more goes beyond {:.2f}",
                             who, owed, total, limit));
    }
  }
  faults.refuse();
}

// ---------------------------------------------------------------------------------------------
// Lots

/// Each line of an article that is kept by lots with the lot that it takes from.
Sale Shop::Inner::withLots(const Sale& sale) {
  Sale sold = sale;
  Faults faults(sale);
  for (std::size_t at = 0; at < sale.lines.size(); ++at) {
    std::string fault;
    sold.lines[at].lot = lotOf(sale.lines[at], fault);
    faults.add(sale.lines[at], std::move(fault));
  }
  faults.refuse();
  return sold;
}

std::string Shop::Inner::lotOf(const SaleLine& line, std::string& fault) {
  const bool namesOne = !line.lot.empty() && line.lot != kNoLot;
  if (!isByLots(line.code)) {
    if (namesOne) fault = fmt::format("it names lot {}, and is not kept by lots", shown(line.lot));
    return std::string(kNoLot);
  }
  const std::string code = doubledQuotes(line.code);
  if (namesOne) {
    if (line.quantity > 0 && !lots_.ExisteLote(code, doubledQuotes(line.lot), main_)) {
      fault = fmt::format("there is no lot {}", shown(line.lot));
    }
    return line.lot;
  }
  std::string active = text(lots_.GetPredeterminada(code, main_));
  if (!active.empty()) return active;
  // None is active, as after a sale from a lot that keeps no stock.
  const Variant latest = lots_.GetUltimoIDLote(code, main_);
  const bool isNone = latest.isNull() || latest.isEmpty();
  const std::string lot = isNone ? std::string() : text(lots_.GetUltimoLote(latest, main_));
  return lot.empty() ? std::string(kNoLot) : lot;
}

/// Whether the shop has the article; how it is kept is known from then on.
bool Shop::Inner::isThere(const std::string& article) {
  if (knownArticles_.contains(article)) return true;
  Statement statement("SELECT Lotes FROM Articulos WHERE Codigo = ");
  statement << sqlText(article);
  const Rows row(selector::kMain, statement, main_);
  if (!row.hasRow()) return false;
  knownArticles_.emplace(article, row.flag("Lotes"));
  return true;
}

bool Shop::Inner::isByLots(const std::string& article) {
  return isThere(article) && knownArticles_.at(article);
}

/// A lot that a return brings back after it was deleted is made again, and keeps its stock.
void Shop::Inner::moveLot(const std::string& code, const std::string& lot, double units,
                          bool isReturn) {
  const bool isNew = isReturn && lot != kNoLot && !lots_.ExisteLote(code, lot, main_);
  lots_.DescargarStock_V(code, lot, 0.0, units, isReturn, main_);
  if (isNew) keepStock(code, lot, main_);
}

}  // namespace tavelor::flows
