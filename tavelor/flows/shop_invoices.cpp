// SPDX-License-Identifier: MIT
// What the law wants recorded of sales, in a shop that keeps records.
#include <fmt/format.h>

#include "tavelor/fiscal/draft.hpp"
#include "tavelor/fiscal/rules.hpp"
#include "tavelor/flows/customers.hpp"
#include "tavelor/flows/shop_inner.hpp"

namespace tavelor::flows {

namespace {

static_assert(kSeries == fiscal::kSeriesBefore);

[[noreturn]] void refuse(const std::string& reference, const std::vector<std::string>& sentences) {
  std::vector<SaleFault> faults;
  for (const std::string& sentence : sentences) faults.push_back({.reason = sentence});
  throw RefusedSale(reference, std::move(faults));
}

/// Whether the record may have to name who buys.
bool mayNameCustomer(const Sale& sale) {
  return sale.invoice.form != fiscal::Form::kTicket ||
         sale.invoice.zeroRate == fiscal::Operation::kReverseCharge ||
         fiscal::Amount::of(sale.total()).cents() > fiscal::kTicketLimit;
}

}  // namespace

/// Nothing is written: a sale that can have no record is refused before anything is.
Shop::Inner::Invoice Shop::Inner::draftInvoice(const Sale& sale) {
  Invoice invoice;
  std::vector<std::string> faults;
  if (sale.isCancellation) {
    invoice.cancelled = cancelledBy(sale, faults);
  } else if (invoices_ && invoices_->covers(sale.day)) {
    fiscal::SoldGoods sold{.day = sale.day, .amounts = {}, .terms = sale.invoice};
    for (const SaleLine& line : sale.lines) {
      sold.amounts.push_back({line.amount(), line.tax, line.surcharge});
    }
    if (sale.returned != 0) {
      sold.returned =
          fiscal::Returned{sale.returned, fmt::format("{}/{:.0f}", kSeries, sale.returned),
                           storedSale(sale.returned).day.dayOnly()};
    }
    if (mayNameCustomer(sale)) sold.customer = partyOf(sale.customer, sale.name);
    invoice.registration = fiscal::draftOf(*invoices_, sold, faults);
  }
  if (!faults.empty()) refuse(sale.reference, faults);
  return invoice;
}

/// The number of the invoice that a sale cancels.
std::string Shop::Inner::cancelledBy(const Sale& sale, std::vector<std::string>& faults) {
  const auto stored =
      invoices_ ? invoices_->invoiceOf(sale.returned) : std::optional<fiscal::StoredRegistration>();
  if (!stored) {
    faults.emplace_back("it has no record");
    return {};
  }
  const fiscal::Registration& record = stored->record;
  if (record.kind == fiscal::InvoiceKind::kReplacing) {
    faults.push_back(fmt::format("the invoice {} is in its place", record.invoice.number));
  }
  if (invoices_->isRelated(record.invoice, "A")) faults.emplace_back("it is cancelled");
  return record.invoice.number;
}

/// A customer as the shop knows him; without a name for nobody and for the walk-in customer. One
/// that is made with the sale has a name, and no number yet.
fiscal::Party Shop::Inner::partyOf(const std::string& customer, const std::string& name) {
  if (customer.empty() || customer == kWalkIn) return {};
  Statement statement("SELECT Nombre, Razon_Social, NIF FROM Clientes WHERE Codigo = ");
  statement << sqlText(customer);
  const Rows row(selector::kMain, statement, main_);
  if (!row.hasRow()) return fiscal::partyOf(name.empty() ? customer : name, "");
  std::string legal = row.text("Razon_Social");
  if (legal.empty()) legal = row.text("Nombre");
  return fiscal::partyOf(legal.empty() ? customer : legal, row.text("NIF"));
}

void Shop::Inner::writeInvoice(const Invoice& invoice, double ticket) {
  if (invoice.registration) invoices_->add(*invoice.registration, ticket);
  if (!invoice.cancelled.empty()) invoices_->cancel(invoice.cancelled, ticket);
}

std::string Shop::Inner::invoiceTickets(const InvoiceWish& wish) {
  std::string last;  // of the run whose commit may have had no answer
  return untilThrough([&](Before before) { return invoiceTicketsOnce(wish, before, last); });
}

std::string Shop::Inner::invoiceTicketsOnce(const InvoiceWish& wish, Before before,
                                            std::string& number) {
  BothDatabases transaction(main_, documents_);
  if (!invoices_) refuse("", {"the shop keeps no records"});
  // Two that want an invoice for the same tickets follow each other.
  documents_->HoldNumbersOf("Fiscal_Registros");
  if (before == Before::kUnknown && !number.empty()) {
    const auto stored = invoices_->invoiceOf(wish.tickets.front());
    if (stored && stored->record.invoice.number == number) return number;
  }
  fiscal::Party recipient = wish.recipient;
  if (recipient.name.empty()) recipient = partyOf(wish.customer, {});
  std::vector<std::string> faults;
  if (!invoices_->covers(wish.day)) {
    faults.push_back(fmt::format("records begin on {}", isoDay(invoices_->settings().start)));
  }
  const fiscal::Registration draft =
      fiscal::replacementOf(*invoices_, wish.tickets, std::move(recipient), wish.day, faults);
  if (!faults.empty()) refuse("", faults);
  number = invoices_->add(draft, {}).invoice.number;
  transaction.commit(BothDatabases::First::kDocuments);
  return number;
}

}  // namespace tavelor::flows
