// SPDX-License-Identifier: MIT
// What record a sale is to have, before it has one.
#include "tavelor/fiscal/draft.hpp"

#include <algorithm>
#include <array>
#include <cstdlib>

#include <fmt/format.h>

#include "tavelor/fiscal/rules.hpp"
#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"

namespace tavelor::fiscal {

namespace {

// The number comes with the record; until then one stands in for it that nothing is wrong with.
constexpr std::string_view kNumberToCome = "0";

void fill(Registration& record, const Breakdown& breakdown) {
  record.details = breakdown.details;
  record.quota = breakdown.quota;
  record.total = breakdown.total;
  record.isLarge = std::abs(record.total.cents()) >= kLargeInvoice;
}

Registration begun(const Settings& settings, Date day) {
  Registration record;
  record.invoice = {settings.taxpayer.number, std::string(kNumberToCome), day};
  record.issuerName = settings.taxpayer.name;
  record.description = settings.description;
  return record;
}

/// Who buys: as the sale says, else the shop's customer.
Party recipientOf(const SoldGoods& sold) {
  return sold.terms.recipient.name.empty() ? sold.customer : sold.terms.recipient;
}

/// What was sold at 0 percent in an invoice that comes back.
std::optional<Operation> zeroRateOf(const Registration& record) {
  const auto found =
      std::find_if(record.details.begin(), record.details.end(),
                   [](const Detail& detail) { return !detail.rate || detail.rate->cents() == 0; });
  return found == record.details.end() ? std::nullopt : std::optional(found->operation);
}

bool hasLegalRates(const Registration& record, Date day) {
  return std::all_of(record.details.begin(), record.details.end(), [&](const Detail& detail) {
    return !detail.rate ||
           isLegalRate(detail.rate->cents(),
                       detail.surchargeRate ? detail.surchargeRate->cents() : 0, day);
  });
}

/// What a sale is that brings nothing back.
void makeInvoice(const SoldGoods& sold, Registration& record, std::vector<std::string>& faults) {
  const bool isReverse = std::any_of(
      record.details.begin(), record.details.end(),
      [](const Detail& detail) { return detail.operation == Operation::kReverseCharge; });
  if (sold.terms.form == Form::kTicket && record.total.cents() <= kTicketLimit && !isReverse) {
    return;  // a ticket
  }
  record.kind = InvoiceKind::kFull;
  record.isQualifiedTicket = sold.terms.form == Form::kQualifiedTicket;
  const Party recipient = recipientOf(sold);
  if (!recipient.name.empty()) {
    record.recipients = {recipient};
    return;
  }
  faults.push_back(sold.terms.form != Form::kTicket ? "an invoice is wanted, and nobody is named"
                   : isReverse                      ? "who buys owes the tax, and nobody is named"
                               : fmt::format("above {} EUR an invoice must name who buys, with a "
                                             "fiscal number, and nobody is named",
                                             Amount::ofCents(kTicketLimit).text()));
}

/// What comes back of an invoice or a ticket.
void makeReturn(const Book& book, const SoldGoods& sold, const Returned& returned,
                const std::optional<StoredRegistration>& earlier, Registration& record,
                std::vector<std::string>& faults) {
  record.kind = InvoiceKind::kRectifying5;
  if (!earlier) {
    record.rectified = {{book.settings().taxpayer.number, returned.number, returned.day}};
    return;
  }
  const Registration& original = earlier->record;
  record.rectified = {original.invoice};
  if (hasRecipient(original.kind)) {
    record.kind = sold.terms.cause;
    record.recipients = original.recipients;
    if (!isRectifying(record.kind) || record.kind == InvoiceKind::kRectifying5) {
      faults.push_back(
          fmt::format("an invoice comes back by R1 to R4, and not by {}", word(record.kind)));
    }
  }
  if (!hasLegalRates(original, record.invoice.day)) {
    record.operationDay = original.operationDay.value_or(original.invoice.day);
  }
  if (book.isRelated(original.invoice, "A")) {
    faults.push_back(fmt::format("the invoice {} is cancelled", original.invoice.number));
  }
}

bool isReturn(const SoldGoods& sold) {
  const auto [least, most] = std::minmax_element(
      sold.amounts.begin(), sold.amounts.end(),
      [](const TaxedAmount& a, const TaxedAmount& b) { return a.amount < b.amount; });
  return least != sold.amounts.end() && least->amount < 0 && most->amount <= 0;
}

void lookAt(const Registration& record, std::vector<std::string>& faults) {
  if (!faults.empty()) return;
  faults = faultsOf(record, Apartment::current().clock().today());
}

}  // namespace

Party partyOf(std::string_view name, std::string_view typedNumber) {
  constexpr std::array<std::string_view, 27> kUnion = {
      "AT", "BE", "BG", "CY", "CZ", "DE", "DK", "EE", "EL", "FI", "FR", "HR", "HU", "IE",
      "IT", "LT", "LU", "LV", "MT", "NL", "PL", "PT", "RO", "SE", "SI", "SK", "XI"};
  constexpr std::size_t kShortest = 8;  // with its prefix
  Party party;
  party.name = recordText(name, kLongestName);
  party.number = compactFiscalNumber(typedNumber);
  const std::string_view prefix = std::string_view(party.number).substr(0, 2);
  const bool isOfUnion = std::find(kUnion.begin(), kUnion.end(), prefix) != kUnion.end();
  if (isOfUnion && party.number.size() >= kShortest) {
    party.foreign = ForeignId{"", "02", party.number};
    party.number.clear();
  }
  return party;
}

Registration draftOf(const Book& book, const SoldGoods& sold, std::vector<std::string>& faults) {
  const Settings& settings = book.settings();
  Registration record = begun(settings, sold.day);
  std::optional<StoredRegistration> earlier;
  if (sold.returned) earlier = book.invoiceOf(sold.returned->ticket);
  Operation zeroRate = sold.terms.zeroRate.value_or(settings.zeroRate);
  if (earlier) zeroRate = zeroRateOf(earlier->record).value_or(zeroRate);
  fill(record, breakdownOf(sold.amounts, zeroRate));
  if (sold.returned) {
    makeReturn(book, sold, *sold.returned, earlier, record, faults);
  } else if (isReturn(sold)) {
    record.kind = InvoiceKind::kRectifying5;  // of a ticket that nobody has any more
  } else {
    makeInvoice(sold, record, faults);
  }
  lookAt(record, faults);
  return record;
}

Registration replacementOf(const Book& book, const std::vector<double>& tickets, Party recipient,
                           Date day, std::vector<std::string>& faults) {
  Registration record = begun(book.settings(), day);
  record.kind = InvoiceKind::kReplacing;
  if (!recipient.name.empty()) record.recipients = {std::move(recipient)};
  std::vector<Breakdown> parts;
  for (const double ticket : tickets) {
    const auto refuse = [&](std::string_view why) {
      faults.push_back(fmt::format("ticket {:.0f} {}", ticket, why));
    };
    const std::optional<StoredRegistration> stored = book.invoiceOf(ticket);
    if (!stored) {
      refuse("has no record");
      continue;
    }
    const Registration& sold = stored->record;
    if (sold.kind == InvoiceKind::kReplacing) {
      refuse(fmt::format("has the invoice {} already", sold.invoice.number));
    } else if (sold.kind != InvoiceKind::kSimplified) {
      refuse(fmt::format("is {} and no ticket", word(sold.kind)));
    } else if (book.isRelated(sold.invoice, "A")) {
      refuse("is cancelled");
    } else if (book.isRelated(sold.invoice, "R")) {
      refuse("has come back, or some of it");
    } else if (std::find(record.replaced.begin(), record.replaced.end(), sold.invoice) !=
               record.replaced.end()) {
      refuse("is named twice");
    } else {
      record.replaced.push_back(sold.invoice);
      parts.push_back({sold.details, sold.quota, sold.total});
    }
  }
  if (tickets.empty()) faults.emplace_back("no ticket is named");
  fill(record, joined(parts));
  if (!parts.empty() && !hasLegalRates(record, day)) record.operationDay = record.replaced[0].day;
  lookAt(record, faults);
  return record;
}

}  // namespace tavelor::fiscal
