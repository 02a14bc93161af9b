// SPDX-License-Identifier: MIT
// A shop's day: sales, returns, closings, and whether all agrees.
#include <algorithm>
#include <array>
#include <optional>
#include <utility>
#include <vector>

#include "tavelor/c/calls.hpp"
#include "tavelor/fiscal/check.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/reconciliation.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/flows/transaction.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace fiscal = tavelor::fiscal;
namespace flows = tavelor::flows;
using namespace tavelor::c;

struct tavelor_shop final : Held {
  explicit tavelor_shop(std::shared_ptr<Room> of)
      : Held(Kind::kShop, std::move(of)), shop(std::make_shared<flows::Shop>()) {}

  std::shared_ptr<flows::Shop> shop;

 protected:
  void drop() noexcept override { shop.reset(); }
};

struct tavelor_transaction final : Held {
  explicit tavelor_transaction(const tavelor_shop& of)
      : Held(Kind::kTransaction, of.sharedRoom()),
        shop(of.shop),
        transaction(std::make_unique<flows::Transaction>(*shop)) {}

  std::shared_ptr<flows::Shop> shop;  ///< which the transaction leans on
  std::unique_ptr<flows::Transaction> transaction;

 protected:
  void drop() noexcept override {
    transaction.reset();
    shop.reset();
  }
};

struct tavelor_reconciliation final : Held {
  explicit tavelor_reconciliation(std::shared_ptr<Room> of)
      : Held(Kind::kReconciliation, std::move(of)) {}

  /// What an apartment that has ended leaves empty.
  std::optional<flows::Reconciliation> reconciliation{std::in_place};

 protected:
  void drop() noexcept override { reconciliation.reset(); }
};

struct tavelor_fiscal_check final : Held {
  tavelor_fiscal_check(std::shared_ptr<Room> of, fiscal::CheckReport found)
      : Held(Kind::kFiscalCheck, std::move(of)), report(std::move(found)) {}

  const fiscal::CheckReport report;

 protected:
  void drop() noexcept override {}
};

namespace {

/// Runs `work` inside an apartment.
template <typename Work>
tavelor_status inApartment(tavelor_apartment* given, tavelor_error** error, Work&& work) {
  return answered(error, [&] {
    const std::shared_ptr<Room>& room = asApartment(given).room;
    const Inside inside(*room);
    work(room);
  });
}

/// Runs `work` with a handle of an apartment.
template <typename Of, typename Work>
tavelor_status onHeld(Of* given, Kind kind, std::string_view what, tavelor_error** error,
                      Work&& work) {
  return answered(error, [&] {
    Of& held = handle(given, kind, what);
    const Inside inside(held.room());
    work(held);
  });
}
template <typename Work>
tavelor_status onShop(tavelor_shop* given, tavelor_error** error, Work&& work) {
  return onHeld(given, Kind::kShop, "shop", error, std::forward<Work>(work));
}
template <typename Work>
tavelor_status onReconciliation(tavelor_reconciliation* given, tavelor_error** error, Work&& work) {
  return onHeld(given, Kind::kReconciliation, "reconciliation", error, std::forward<Work>(work));
}

std::string copied(const char* given, std::string_view name) {
  return std::string(optionalText(given, name));
}

flows::SaleLine lineOf(const tavelor_sale_line& given) {
  flows::SaleLine line;
  line.code = copied(given.code, "code");
  line.description = copied(given.description, "description");
  line.family = copied(given.family, "family");
  line.lot = copied(given.lot, "lot");
  line.quantity = given.quantity;
  line.price = given.price;
  line.tax = given.wants_price != 0 ? flows::kTaxOfArticle : given.tax;
  line.surcharge = given.surcharge;
  line.discount = given.discount;
  line.wantsPrice = given.wants_price != 0;
  line.isFree = given.is_free != 0;
  return line;
}

flows::Sale saleOf(const tavelor_sale* given) {
  const tavelor_sale& from = sized(given, "sale");
  flows::Sale sale;
  sale.reference = copied(from.reference, "reference");
  sale.till = copied(from.till, "till");
  sale.day = tavelor::Date(from.day);
  sale.time = copied(from.time, "time");
  sale.customer = copied(from.customer, "customer");
  sale.name = copied(from.name, "name");
  sale.place = copied(from.place, "place");
  sale.payment = copied(from.payment, "payment");
  sale.comment = copied(from.comment, "comment");
  sale.delivered = from.delivered;
  sale.isCreditGranted = from.is_credit_granted != 0;
  requireList(from.lines, from.line_count, "lines");
  sale.lines.reserve(from.line_count);
  for (size_t i = 0; i < from.line_count; ++i) {
    sale.lines.push_back(lineOf(sized(&from.lines[i], "lines")));
  }
  return sale;
}

flows::Return returnOf(const tavelor_return* what) {
  const tavelor_return& given = sized(what, "what");
  flows::Return back;
  back.ticket = given.ticket;
  back.till = copied(given.till, "till");
  back.day = tavelor::Date(given.day);
  back.time = copied(given.time, "time");
  back.payment = copied(given.payment, "payment");
  if (given.comment != nullptr) back.comment = copied(given.comment, "comment");
  requireList(given.lines, given.line_count, "lines");
  for (size_t i = 0; i < given.line_count; ++i) {
    back.lines.push_back({given.lines[i].line, given.lines[i].quantity});
  }
  return back;
}

std::optional<tavelor::Date> optionalDay(const double* given) {
  return given == nullptr ? std::nullopt : std::optional(tavelor::Date(*given));
}

bool wantsPrices(const flows::Sale& sale) {
  return std::any_of(sale.lines.begin(), sale.lines.end(),
                     [](const flows::SaleLine& line) { return line.wantsPrice; });
}

/// Gives lines the shop's prices. Raises RefusedSale where it has none for one of them.
void price(flows::Shop& shop, flows::Sale& sale) {
  if (!wantsPrices(sale)) return;
  // To be told by their lines: what has no price leaves the sale.
  for (size_t i = 0; i < sale.lines.size(); ++i) sale.lines[i].origin = i + 1;
  const std::vector<flows::Unpriced> unpriced = shop.price(sale);
  if (unpriced.empty()) return;
  std::vector<flows::SaleFault> faults;
  for (const flows::Unpriced& each : unpriced) {
    faults.push_back({each.line.origin, each.line.origin, each.line.code, each.reason});
  }
  throw flows::RefusedSale(sale.reference, std::move(faults));
}

/// A paper as one text; Empty for none.
void putPaper(tavelor_value* text, const std::vector<std::string>& lines) {
  tavelor_value& to = output(text, "text");
  if (lines.empty()) {
    to = tavelor_of_empty();
    return;
  }
  std::string joined;
  for (const std::string& line : lines) joined.append(line).append("\n");
  putText(to, joined);
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Setting up

tavelor_status tavelor_seed(tavelor_apartment* apartment, tavelor_error** error) {
  return inApartment(apartment, error,
                     [](const std::shared_ptr<Room>&) { flows::seedCatalogues(); });
}

tavelor_status tavelor_set_issuer(tavelor_apartment* apartment, const tavelor_issuer* issuer,
                                  tavelor_error** error) {
  return inApartment(apartment, error, [&](const std::shared_ptr<Room>&) {
    const tavelor_issuer& given = sized(issuer, "issuer");
    flows::setIssuer({.name = copied(given.name, "name"),
                      .company = copied(given.company, "company"),
                      .fiscalNumber = copied(given.fiscal_number, "fiscal_number"),
                      .address = copied(given.address, "address"),
                      .place = copied(given.place, "place"),
                      .postcode = copied(given.postcode, "postcode"),
                      .province = copied(given.province, "province")});
  });
}

tavelor_status tavelor_shop_open(tavelor_apartment* apartment, tavelor_shop** shop,
                                 tavelor_error** error) {
  return inApartment(apartment, error, [&](const std::shared_ptr<Room>& room) {
    output(shop, "shop");
    *shop = std::make_unique<tavelor_shop>(room).release();
  });
}

void tavelor_shop_release(tavelor_shop* shop) {
  if (shop != nullptr) shop->room().giveBack(shop);
}

tavelor_status tavelor_shop_open_tills(tavelor_shop* shop, const char* const* tills, size_t count,
                                       tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    requireList(tills, count, "tills");
    std::vector<std::string> names;
    for (size_t i = 0; i < count; ++i) names.emplace_back(text(tills[i], "tills"));
    of.shop->openTills(names);
  });
}

// ---------------------------------------------------------------------------------------------
// The day

tavelor_status tavelor_shop_sell(tavelor_shop* shop, const tavelor_sale* sale, double* ticket,
                                 tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    flows::Sale sold = saleOf(sale);
    price(*of.shop, sold);
    const double number = of.shop->sell(sold).value_or(0);
    if (ticket != nullptr) *ticket = number;
  });
}

tavelor_status tavelor_shop_price(tavelor_shop* shop, const tavelor_price_question* question,
                                  tavelor_price* price, tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    const tavelor_price_question& given = sized(question, "question");
    tavelor_price& out = sized(price, "price");
    flows::PriceQuestion asked;
    asked.article = copied(given.article, "article");
    asked.customer = copied(given.customer, "customer");
    asked.quantity = given.quantity;
    asked.tariff = copied(given.tariff, "tariff");
    asked.family = copied(given.family, "family");
    asked.day = optionalDay(given.day);
    const flows::SaleLine line = of.shop->price(asked);
    out = {sizeof out, line.price, line.discount, line.tax, line.surcharge};
  });
}

tavelor_status tavelor_shop_take_back(tavelor_shop* shop, const tavelor_return* what,
                                      double* ticket, tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    const double number = of.shop->takeBack(returnOf(what));
    if (ticket != nullptr) *ticket = number;
  });
}

tavelor_status tavelor_shop_cancel(tavelor_shop* shop, const tavelor_return* what, double* ticket,
                                   tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    const double number = of.shop->cancel(returnOf(what));
    if (ticket != nullptr) *ticket = number;
  });
}

tavelor_status tavelor_shop_invoice_tickets(tavelor_shop* shop, const tavelor_invoice_wish* wish,
                                            tavelor_value* number, tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    const tavelor_invoice_wish& given = sized(wish, "wish");
    tavelor_value& to = output(number, "number");
    requireList(given.tickets, given.ticket_count, "tickets");
    flows::InvoiceWish wanted;
    wanted.tickets.assign(given.tickets, given.tickets + given.ticket_count);
    wanted.day = tavelor::Date(given.day);
    wanted.customer = copied(given.customer, "customer");
    const std::string name = copied(given.name, "name");
    const std::string typed = copied(given.fiscal_number, "fiscal_number");
    if (!name.empty() || !typed.empty()) wanted.recipient = fiscal::partyOf(name, typed);
    putText(to, of.shop->invoiceTickets(wanted));
  });
}

tavelor_status tavelor_shop_close_till(tavelor_shop* shop, const char* till, double day,
                                       tavelor_closing* closing, tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    tavelor_closing& out = sized(closing, "closing");
    const std::optional<flows::Closing> made =
        of.shop->close(std::string(text(till, "till")), tavelor::Date(day));
    out = made ? tavelor_closing{sizeof out, made->number, made->total, made->tickets}
               : tavelor_closing{sizeof out, 0, 0, 0};
  });
}

tavelor_status tavelor_shop_recover(tavelor_shop* shop, int32_t decision,
                                    tavelor_recovered* recovered, tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    requireOneOf(decision, "decision", TAVELOR_DECIDE_NOTHING, TAVELOR_DECIDE_LATER,
                 TAVELOR_FOLLOW_TICKETS, TAVELOR_KEEP);
    if (recovered != nullptr) sized(recovered, "recovered");
    const flows::Decision decided = decision == TAVELOR_FOLLOW_TICKETS
                                        ? flows::Decision::kFollowTickets
                                    : decision == TAVELOR_KEEP ? flows::Decision::kKeep
                                                               : flows::Decision::kNone;
    const flows::Recovered found =
        decision == TAVELOR_DECIDE_NOTHING ? of.shop->recover() : of.shop->recoverAll(decided);
    if (recovered == nullptr) return;
    *recovered = {sizeof *recovered,      found.sales.size(),     found.closings.size(),
                  found.rewritten.size(), found.takenBack.size(), found.kept.size(),
                  found.undecided.size()};
  });
}

tavelor_status tavelor_ticket_text(tavelor_apartment* apartment, double ticket, tavelor_value* text,
                                   tavelor_error** error) {
  return inApartment(apartment, error, [&](const std::shared_ptr<Room>&) {
    output(text, "text");
    putPaper(text, flows::ticketText(ticket));
  });
}

tavelor_status tavelor_slip_text(tavelor_apartment* apartment, double closing, tavelor_value* text,
                                 tavelor_error** error) {
  return inApartment(apartment, error, [&](const std::shared_ptr<Room>&) {
    output(text, "text");
    putPaper(text, flows::slipText(closing));
  });
}

// ---------------------------------------------------------------------------------------------
// Transactions

tavelor_status tavelor_transaction_begin(tavelor_shop* shop, tavelor_transaction** transaction,
                                         tavelor_error** error) {
  return onShop(shop, error, [&](tavelor_shop& of) {
    output(transaction, "transaction");
    *transaction = std::make_unique<tavelor_transaction>(of).release();
  });
}

tavelor_status tavelor_transaction_connections(tavelor_transaction* transaction,
                                               tavelor_object** main, tavelor_object** documents,
                                               tavelor_error** error) {
  return onHeld(
      transaction, Kind::kTransaction, "transaction", error, [&](tavelor_transaction& of) {
        const auto given = [&](const tavelor::ConnectionPtr& connection) {
          return newObject(of.sharedRoom(), connection);
        };
        tavelor_object* const first = main == nullptr ? nullptr : given(of.transaction->main());
        if (documents != nullptr) *documents = given(of.transaction->documents());
        if (main != nullptr) *main = first;
      });
}

tavelor_status tavelor_transaction_commit(tavelor_transaction* transaction, tavelor_error** error) {
  return onHeld(transaction, Kind::kTransaction, "transaction", error,
                [](tavelor_transaction& of) { of.transaction->commit(); });
}

void tavelor_transaction_release(tavelor_transaction* transaction) {
  if (transaction != nullptr) transaction->room().giveBack(transaction);
}

// ---------------------------------------------------------------------------------------------
// Whether all agrees

tavelor_status tavelor_reconciliation_new(tavelor_apartment* apartment,
                                          tavelor_reconciliation** reconciliation,
                                          tavelor_error** error) {
  return inApartment(apartment, error, [&](const std::shared_ptr<Room>& room) {
    output(reconciliation, "reconciliation");
    *reconciliation = std::make_unique<tavelor_reconciliation>(room).release();
  });
}

void tavelor_reconciliation_release(tavelor_reconciliation* reconciliation) {
  if (reconciliation != nullptr) reconciliation->room().giveBack(reconciliation);
}

tavelor_status tavelor_reconciliation_expect(tavelor_reconciliation* reconciliation,
                                             const tavelor_sale* sale, tavelor_error** error) {
  return onReconciliation(reconciliation, error, [&](tavelor_reconciliation& of) {
    of.reconciliation->expect(saleOf(sale));
  });
}

tavelor_status tavelor_reconciliation_compare(tavelor_reconciliation* reconciliation,
                                              size_t* differences, tavelor_error** error) {
  return onReconciliation(reconciliation, error, [&](tavelor_reconciliation& of) {
    of.reconciliation->compare();
    if (differences != nullptr) *differences = of.reconciliation->differences().size();
  });
}

tavelor_status tavelor_reconciliation_difference(tavelor_reconciliation* reconciliation,
                                                 size_t index, tavelor_difference* difference,
                                                 tavelor_error** error) {
  return onReconciliation(reconciliation, error, [&](tavelor_reconciliation& of) {
    tavelor_difference& out = sized(difference, "difference");
    const auto& all = of.reconciliation->differences();
    if (index >= all.size()) {
      tavelor::raise(tavelor::errors::kSubscriptOutOfRange, kSource,
                     "There are " + std::to_string(all.size()) + " differences");
    }
    const flows::Reconciliation::Difference& each = all[index];
    out = {sizeof out, each.till.c_str(), each.day.days(),
           flows::Reconciliation::kNames[each.place].data(), each.what.c_str()};
  });
}

tavelor_status tavelor_reconciliation_tally(tavelor_reconciliation* reconciliation, int32_t place,
                                            tavelor_tally* tally, tavelor_error** error) {
  return onReconciliation(reconciliation, error, [&](tavelor_reconciliation& of) {
    tavelor_tally& out = sized(tally, "tally");
    if (place < 0 || place >= flows::Reconciliation::kPlaces) {
      tavelor::raise(tavelor::errors::kSubscriptOutOfRange, kSource,
                     "There is no place " + std::to_string(place));
    }
    const flows::Tally& counted =
        of.reconciliation->total(static_cast<flows::Reconciliation::Place>(place));
    out = {sizeof out, counted.tickets, counted.lines, counted.units, counted.cents, counted.owed};
  });
}

// ---------------------------------------------------------------------------------------------
// Records of invoices

tavelor_status tavelor_fiscal_check_new(tavelor_apartment* apartment, const double* from,
                                        const double* to, tavelor_fiscal_check** check,
                                        tavelor_fiscal_report* report, tavelor_error** error) {
  return inApartment(apartment, error, [&](const std::shared_ptr<Room>& room) {
    output(check, "check");
    if (report != nullptr) sized(report, "report");
    const auto book =
        fiscal::Book::open(tavelor::DataSession().OpenConnection(tavelor::selector::kDocuments));
    if (book == nullptr) {
      tavelor::raise(tavelor::errors::kNoCurrentRecord, kSource,
                     "This shop keeps no records of invoices");
    }
    auto made = std::make_unique<tavelor_fiscal_check>(
        room, fiscal::check(*book, {optionalDay(from), optionalDay(to)}));
    if (report != nullptr) {
      const fiscal::CheckReport& found = made->report;
      *report = {sizeof *report, found.records,       found.events,
                 found.tickets,  found.total.cents(), found.flaws.size()};
    }
    *check = made.release();
  });
}

void tavelor_fiscal_check_release(tavelor_fiscal_check* check) {
  if (check != nullptr) check->room().giveBack(check);
}

tavelor_status tavelor_fiscal_check_flaw(tavelor_fiscal_check* check, size_t index,
                                         tavelor_flaw* flaw, tavelor_error** error) {
  return onHeld(check, Kind::kFiscalCheck, "check", error, [&](tavelor_fiscal_check& of) {
    tavelor_flaw& out = sized(flaw, "flaw");
    const std::vector<fiscal::Flaw>& all = of.report.flaws;
    if (index >= all.size()) {
      tavelor::raise(tavelor::errors::kSubscriptOutOfRange, kSource,
                     "There are " + std::to_string(all.size()) + " flaws");
    }
    const fiscal::Flaw& each = all[index];
    out = {sizeof out,
           static_cast<int32_t>(each.kind),
           each.isOfEvent ? 1 : 0,
           each.chain,
           each.position,
           each.invoice ? each.invoice->number.c_str() : "",
           each.sentence.c_str()};
  });
}
