// SPDX-License-Identifier: MIT
// Checks each line, and puts lines together that belong to one sale.
#include "tools/sales_file.hpp"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <utility>

#include <fmt/format.h>

#include "tavelor/flows/customers.hpp"
#include "tavelor/platform/date_text.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tools/output.hpp"

namespace tavelor::tools {

namespace {

constexpr double kPatience = 15.0 / (24 * 60);  // days between two lines of a sale
constexpr std::size_t kPaymentWidth = 50;

constexpr std::string_view kCash = "1";
constexpr std::string_view kCard = "2";

/// A code that a program of numbers has taken for one: "17850.0".
std::string_view withoutDecimals(std::string_view code) {
  constexpr std::string_view kTail = ".0";
  const std::string_view digits = code.substr(0, code.size() - std::min(code.size(), kTail.size()));
  const bool isNumber = !digits.empty() && digits.find_first_not_of("0123456789") == digits.npos;
  return isNumber && code.ends_with(kTail) ? digits : code;
}

/// Articles of a kind have codes that begin with the same two digits.
std::string familyOf(std::string_view code) {
  const auto digit = [&](std::size_t at) { return code[at] >= '0' && code[at] <= '9'; };
  return code.size() > 2 && digit(0) && digit(1) ? std::string(code.substr(0, 2)) : "OTROS";
}

std::string clockTime(Date moment) {
  const CivilTime civil = moment.civil();
  return fmt::format("{:02}:{:02}", civil.hour, civil.minute);
}

}  // namespace

struct SalesFile::Line {
  std::string_view reference;
  Date moment;
  double delivered = 0;
  flows::SaleLine sold;
};

SalesFile::SalesFile(const std::string& path, SalesSelection selection)
    : file_(path),
      selection_(std::move(selection)),
      today_(Apartment::current().clock().today().days()) {
  const std::vector<std::string>& columns = file_.columns();
  for (std::size_t name = 0; name < kNames.size(); ++name) {
    const auto isNamed = [&](const std::string& column) {
      return tavelor::text::equalsIgnoreCase(column, kNames[name]);
    };
    const auto found = std::find_if(columns.begin(), columns.end(), isNamed);
    if (found != columns.end()) {
      if (std::find_if(found + 1, columns.end(), isNamed) != columns.end()) {
        throw FileError(fmt::format("{}: two columns are named {}", printable(path), kNames[name]));
      }
      places_[name] = static_cast<std::size_t>(found - columns.begin());
    } else if (name < kWanted) {
      throw FileError(fmt::format("{}: there is no column {}", printable(path), kNames[name]));
    }
  }
}

bool SalesFile::next(flows::Sale& sale) {
  while (complete_.empty() && !ended_) {
    if (file_.next(row_)) {
      ++lines_;
      takeRow();
    } else {
      ended_ = true;
      completeBefore(HUGE_VAL);
    }
  }
  if (complete_.empty()) return false;
  sale = std::move(complete_.front());
  complete_.pop_front();
  return true;
}

std::vector<Refusal> SalesFile::takeRefused() {
  return std::exchange(refused_, {});
}

// ---------------------------------------------------------------------------------------------
// A line

std::string_view SalesFile::text(Column column) const {
  if (!places_[column]) return {};
  return tavelor::text::trim(row_.fields[*places_[column]]);
}

bool SalesFile::refuse(std::string reason) {
  const std::optional<std::size_t> place = places_[kReference];
  const bool there = *place < row_.fields.size();
  refused_.push_back({row_.line, there ? row_.fields[*place] : std::string(), std::move(reason)});
  return false;
}

void SalesFile::takeRow() {
  Line line;
  if (!readLine(line)) return;
  completeBefore(line.moment.days());
  if (OpenSale* sale = openSale(line)) {
    sale->last = std::max(sale->last, line.moment.days());
    sale->sale.delivered = std::max(sale->sale.delivered, line.delivered);
    sale->sale.lines.push_back(std::move(line.sold));
  }
}

bool SalesFile::readLine(Line& line) {
  if (row_.fields.size() != file_.columns().size()) {
    return refuse(fmt::format("{} fields where the first row has {}", row_.fields.size(),
                              file_.columns().size()));
  }
  const std::string_view moment = text(kMoment);
  const std::optional<Date> date = parseSqlDate(moment);
  const bool isDate = date && moment.size() >= 10 && moment[4] == '-' && date->days() >= 1;
  if (isDate && !wanted(date->dayOnly())) return false;  // whatever else is wrong with it

  using Widths = flows::SaleWidths;
  struct Width {
    Column column;
    std::size_t most;
    bool needed;
  };
  static constexpr Width kWidths[] = {{kReference, Widths::kReference, true},
                                      {kCode, Widths::kCode, true},
                                      {kDescription, Widths::kDescription, false},
                                      {kFamily, Widths::kFamily, false},
                                      {kCustomer, Widths::kCustomer, false},
                                      {kPlace, Widths::kPlace, false},
                                      {kPayment, kPaymentWidth, false}};
  for (const Width& width : kWidths) {
    const std::string_view given = text(width.column);
    if (width.needed && given.empty())
      return refuse(fmt::format("{} is empty", kNames[width.column]));
    if (tavelor::text::length(given) > width.most) {
      return refuse(
          fmt::format("{} has more than {} characters", kNames[width.column], width.most));
    }
    if (given.find('\0') != given.npos) {
      return refuse(fmt::format("{} holds a zero byte", kNames[width.column]));
    }
  }
  line.reference = text(kReference);
  const std::string_view till = text(kTill);
  const auto& tills = selection_.tills;
  if (!till.empty() && std::find(tills.begin(), tills.end(), till) == tills.end()) {
    return refuse(fmt::format("the shop has no till {}", printable(till)));
  }

  if (!isDate) return refuse(fmt::format("InvoiceDate is no date: {}", printable(moment)));
  if (date->dayOnly().days() > today_) {
    return refuse(fmt::format("InvoiceDate lies in the future: {}", printable(moment)));
  }
  line.moment = *date;

  flows::SaleLine& sold = line.sold;
  sold.origin = row_.line;
  sold.wantsPrice = text(kPrice).empty();
  if (!readNumber(kQuantity, flows::kMostMoney, sold.quantity, 0) ||
      !readNumber(kPrice, flows::kMostMoney, sold.price, 0) ||
      !readNumber(kTax, 100, sold.tax,
                  sold.wantsPrice ? flows::kTaxOfArticle : flows::kGeneralTax) ||
      !readNumber(kDelivered, flows::kMostMoney, line.delivered, 0)) {
    return false;
  }
  sold.code = text(kCode);
  sold.description = text(kDescription);
  sold.family = text(kFamily);
  if (sold.tax < 0 && !text(kTax).empty()) return refuse("the tax is negative");
  if (std::string fault = flows::faultOf(sold); !fault.empty()) return refuse(std::move(fault));
  if (sold.family.empty() && !sold.wantsPrice) sold.family = familyOf(sold.code);
  return true;
}

bool SalesFile::readNumber(Column column, double most, double& to, double otherwise) {
  const std::string_view given = text(column);
  to = otherwise;
  if (given.empty() && column >= kWanted) return true;
  const std::optional<double> number = parseSqlNumber(given);
  if (!number) return refuse(fmt::format("{} is no number: {}", kNames[column], printable(given)));
  if (std::abs(*number) > most) {
    return refuse(fmt::format("{} is too large: {}", kNames[column], printable(given)));
  }
  to = *number;
  return true;
}

bool SalesFile::wanted(Date day) const {
  return (!selection_.from || day >= *selection_.from) && (!selection_.to || day <= *selection_.to);
}

// ---------------------------------------------------------------------------------------------
// A sale

SalesFile::OpenSale* SalesFile::openSale(const Line& line) {
  for (OpenSale& open : open_) {
    if (open.sale.reference == line.reference) return belongs(open.sale) ? &open : nullptr;
  }
  const std::string customer(withoutDecimals(text(kCustomer)));
  const std::optional<std::string> payment = paymentOf(customer);
  if (!payment) return nullptr;
  const auto [begun, isNew] = begun_.try_emplace(std::string(line.reference), row_.line);
  if (!isNew) {
    refuse(fmt::format("the invoice began at line {} and was complete", begun->second));
    return nullptr;
  }
  OpenSale& open = open_.emplace_back();
  flows::Sale& sale = open.sale;
  sale.reference = line.reference;
  sale.till = text(kTill).empty() ? tillOf(line.reference) : std::string(text(kTill));
  sale.day = line.moment.dayOnly();
  sale.time = clockTime(line.moment);
  sale.customer = customer;
  sale.place = text(kPlace);
  sale.payment = *payment;
  if (line.reference.starts_with('C')) sale.comment = "Devolución";
  return &open;
}

/// Code of the method by which the sale of a line is paid; nothing, and the line is refused, for
/// one that the shop does not have, and for credit to nobody.
std::optional<std::string> SalesFile::paymentOf(const std::string& customer) {
  const std::string_view given = text(kPayment);
  // A file that does not tell: who is known has a card.
  if (given.empty()) return std::string(customer.empty() ? kCash : kCard);
  const flows::PaymentMethod* const method = selection_.payments.find(given);
  if (method == nullptr) {
    refuse(fmt::format("the shop has no payment method {}", printable(given)));
    return std::nullopt;
  }
  if (method->isOnCredit && (customer.empty() || customer == flows::kWalkIn)) {
    refuse("a sale on credit needs a CustomerID of somebody");
    return std::nullopt;
  }
  return method->code;
}

// A sale has one till, is paid in one way and has one customer or none.
bool SalesFile::belongs(const flows::Sale& sale) {
  const auto agrees = [&](Column column, std::string_view code, const std::string& first) {
    const std::string_view given = text(column);
    return given.empty() || code == first ||
           refuse(fmt::format("{} is {} where the invoice began with {}", kNames[column],
                              printable(given), first.empty() ? "none" : printable(first)));
  };
  const std::string_view payment = text(kPayment);
  const flows::PaymentMethod* const method = selection_.payments.find(payment);
  return agrees(kTill, text(kTill), sale.till) &&
         agrees(kPayment, method == nullptr ? payment : method->code, sale.payment) &&
         agrees(kCustomer, withoutDecimals(text(kCustomer)), sale.customer);
}

// The same sale is of the same till in each run, whatever part of the file is read.
std::string SalesFile::tillOf(std::string_view reference) const {
  std::uint64_t number = 0;
  for (const char c : reference) {
    if (c >= '0' && c <= '9') number = number * 10 + static_cast<std::uint64_t>(c - '0');
  }
  return selection_.tills[number % selection_.tills.size()];
}

// The lines of another day lie hours away.
void SalesFile::completeBefore(double moment) {
  const auto isComplete = [moment](const OpenSale& open) {
    return open.last + kPatience < moment || std::floor(open.last) != std::floor(moment);
  };
  for (auto open = open_.begin(); open != open_.end();) {
    if (isComplete(*open)) {
      complete_.push_back(std::move(open->sale));
      open = open_.erase(open);
    } else {
      ++open;
    }
  }
}

}  // namespace tavelor::tools
