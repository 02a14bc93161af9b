// SPDX-License-Identifier: MIT
// Puts receipts and slips together. The classes print the same in their own forms, to the letter;
// these are for customers and owners: amounts with two decimals, and sums that add up.
#include "tavelor/flows/receipt.hpp"

#include <fmt/format.h>

#include "tavelor/flows/closings.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/receipt_lines.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/settings_file.hpp"

namespace tavelor::flows {

namespace {

using Lines = std::vector<std::string>;

constexpr std::size_t kWidth = 30;
constexpr std::size_t kQuantityWidth = 5;
constexpr std::size_t kAmountWidth = 9;
constexpr std::size_t kRateWidth = 4;

const Locale& locale() {
  return Apartment::current().locale();
}

std::string money(double amount) {
  return format(amount, "0.00", locale());
}

/// As many decimals as it has, six at most.
std::string plain(double number) {
  return Variant(roundHalfAway(number, 6)).toText(locale());
}

std::string shortDay(Date day) {
  return format(day, "Short Date", locale());
}

/// A label at the left end of a line, a value at its right end.
std::string spread(const std::string& label, const std::string& content,
                   std::size_t width = kWidth) {
  const std::size_t used = text::length(label) + text::length(content);
  return label + std::string(used < width ? width - used : 1, ' ') + content;
}

std::string rule(const std::string& title) {
  return "-- " + title + " " + std::string(kWidth - 4 - text::length(title), '-');
}

/// Behind a blank, also where it is wider than its column.
std::string amountColumn(double amount) {
  return text::alignRight(" " + money(amount), kAmountWidth);
}

/// `tax` as in "IVA de ".
std::string taxLine(double rate, std::string_view tax, double base, double amount) {
  return fmt::format("{}% {}{}{}", text::alignRight(plain(rate), kRateWidth), tax,
                     amountColumn(base), amountColumn(amount));
}

Lines issuerLines(const Issuer& shop) {
  Lines lines = {shop.name};
  if (!shop.company.empty() && shop.company != shop.name) lines.push_back(shop.company);
  if (!shop.fiscalNumber.empty()) lines.push_back("NIF " + shop.fiscalNumber);
  if (!shop.address.empty()) lines.push_back(shop.address);
  if (!shop.place.empty()) lines.push_back(shop.place);
  return lines;
}

/// Puts a receipt's lines together for a width in characters.
class ReceiptLines {
 public:
  ReceiptLines(const ReceiptContent& content, std::size_t width)
      : content_(content), width_(width) {}

  std::vector<ReceiptLine> make() {
    addHead();
    add(std::string(width_, '-'));
    for (const ContentLine& line : content_.lines) addSold(line);
    add(std::string(width_, '-'));
    add(spread("TOTAL", money(content_.total), width_), Look::kTotal);
    for (const auto& [name, amount] : content_.parts) add(spread(name, money(amount), width_));
    if (content_.money) {
      add(spread("Entregado", money(content_.money->first), width_));
      add(spread("Cambio", money(content_.money->second), width_));
    }
    for (const ContentTax& tax : content_.taxes) addTax(tax);
    for (const std::string& comment : content_.comments) add(comment);
    return std::move(lines_);
  }

 private:
  void add(std::string text, Look look = Look::kPlain) {
    lines_.push_back({std::move(text), look});
  }

  void addHead() {
    Look look = Look::kName;
    for (std::string& line : issuerLines(content_.shop)) {
      add(std::move(line), look);
      look = Look::kCentred;
    }
    const std::optional<ContentInvoice>& invoice = content_.invoice;
    if (invoice) add(invoice->title, Look::kStrong);
    for (const auto& [label, value] : content_.heads) {
      add(value.empty() ? label : spread(label, value, width_));
    }
    if (invoice) {
      for (const std::string& note : invoice->notes) add(note);
    }
    const bool isNamed = invoice && !invoice->recipient.empty();
    for (const std::string& line : isNamed ? invoice->recipient : content_.customer) add(line);
  }

  /// A line, and its discount and what it is without tax below.
  void addSold(const ContentLine& line) {
    const std::size_t descriptionWidth = width_ - kQuantityWidth - kAmountWidth - 2;
    add(text::alignRight(plain(line.quantity), kQuantityWidth) + ' ' +
        text::padRight(line.description, descriptionWidth) + ' ' +
        text::alignRight(money(line.amount), kAmountWidth));
    if (line.discount != 0) {
      add(fmt::format("{:{}} {} - {}%", "", kQuantityWidth, money(line.price),
                      plain(line.discount)));
    }
    if (content_.invoice && content_.invoice->wantsUnitPrices) {
      add(fmt::format("{:{}} {} sin IVA, {}%", "", kQuantityWidth,
                      format(priceWithoutTax(line, content_.isTaxIncluded), "0.00##", locale()),
                      plain(line.rate)));
    }
  }

  void addTax(const ContentTax& tax) {
    add(text::alignRight(taxLine(tax.rate, "IVA de ", tax.split.base, tax.split.tax), width_));
    if (tax.surcharge == 0) return;
    add(text::alignRight(taxLine(tax.surchargeRate, "R.E. de", tax.split.base, tax.surcharge),
                         width_));
  }

  const ReceiptContent& content_;
  std::size_t width_;
  std::vector<ReceiptLine> lines_;
};

Lines textOf(const std::optional<ReceiptContent>& content) {
  Lines text;
  if (!content) return text;
  if (content->invoice) {
    text = {std::string(kAboveCode), content->invoice->address};
    if (content->invoice->isSending) text.emplace_back(kBelowCode);
  }
  for (ReceiptLine& line : linesOf(*content, kWidth)) text.push_back(std::move(line.text));
  return text;
}

/// The details of a closing in one of its tables.
Rows detailsOf(Statement::Constant select, Statement::Constant table, double closing,
               Statement::Constant order) {
  Statement statement(select);
  statement << " FROM " << table << " WHERE Cierre = " << spliced(sqlNumber(closing, 0))
            << " ORDER BY " << order;
  return {selector::kMain, statement};
}

/// Of a catalogue; the code where that knows none.
std::string nameOf(const std::string& code, Statement::Constant catalogue) {
  Statement statement("SELECT Descripcion FROM ");
  statement << catalogue << " WHERE Codigo = " << sqlText(code);
  const Rows row(selector::kMain, statement);
  const std::string name = row.hasRow() ? row.text("Descripcion") : std::string();
  return name.empty() ? code : name;
}

/// Of all tickets that a closing took, as far as history has them.
double surchargeOf(double closing) {
  Statement statement("SELECT Sum(Importe_Recargo) AS Suma FROM HTickets WHERE Cierre = ");
  statement << spliced(sqlNumber(closing, 0));
  return Rows(selector::kDocuments, statement).number("Suma");
}

void addShares(Lines& slip, const std::string& title, Statement::Constant column,
               Statement::Constant table, Statement::Constant catalogue, double closing) {
  constexpr std::size_t kNameWidth = 19;
  slip.push_back(rule(title));
  Rows rows = detailsOf("SELECT *", table, closing, column);
  for (; rows.hasRow(); rows.next()) {
    std::string name = nameOf(rows.text(column.text()), catalogue);
    if (name.empty()) name = "Sin código";
    slip.push_back(
        spread(std::string(text::left(name, kNameWidth)), money(rows.number("Importe"))));
  }
}

}  // namespace

double priceWithoutTax(const ContentLine& line, bool isTaxIncluded) {
  constexpr int kDecimals = 4;
  return isTaxIncluded ? roundHalfAway(line.price * 100 / (100 + line.rate), kDecimals)
                       : line.price;
}

std::vector<ReceiptLine> linesOf(const ReceiptContent& content, std::size_t width) {
  return ReceiptLines(content, width).make();
}

std::vector<std::string> ticketText(double number) {
  return textOf(readTicket(number));
}

std::vector<std::string> invoiceText(const std::string& number) {
  return textOf(readInvoice(number));
}

std::vector<std::string> slipText(double closing) {
  Lines slip;
  Statement statement(
      "SELECT Fecha, Caja, Efectivo, Credito, Entrega, Saldo_Inicio, Saldo_Final FROM Cierres "
      "WHERE Codigo = ");
  statement << spliced(sqlNumber(closing, 0));
  const Rows row(selector::kMain, statement);
  if (!row.hasRow()) return slip;
  slip = issuerLines(issuer());
  slip.push_back(fmt::format("Cierre de Caja {:.0f}", closing));
  slip.push_back(spread("Fecha", shortDay(row.day("Fecha"))));
  slip.push_back(spread("Caja", row.text("Caja")));
  slip.push_back(spread("Tickets", money(row.number("Efectivo"))));
  slip.push_back(spread("Alb./Fact.", money(row.number("Credito"))));
  slip.push_back(spread("Total Cierre", money(row.number("Entrega"))));
  slip.push_back(spread("S. Inicio", money(row.number("Saldo_Inicio"))));
  slip.push_back(spread("S. Fin", money(row.number("Saldo_Final"))));
  addShares(slip, "Familias", "Familia", "Cierres_Familias", "Familias", closing);
  addShares(slip, "Formas de pago", "Forma_Pago", "Cierres_Formas_Pago", "Formas_Pago", closing);
  slip.push_back(rule("Impuestos"));
  Rows taxes = detailsOf("SELECT Iva, Base, Importe", "Cierres_Lineas_Impuestos", closing, "Iva");
  for (; taxes.hasRow(); taxes.next()) {
    slip.push_back(
        taxLine(taxes.number("Iva"), "IVA de ", taxes.number("Base"), taxes.number("Importe")));
  }
  if (const double surcharge = surchargeOf(closing); surcharge != 0) {
    slip.push_back(spread("Recargo de equivalencia", money(surcharge)));
  }
  if (const std::optional<StoredCount> count = countOf(closing)) {
    slip.push_back(rule("Arqueo"));
    slip.push_back(spread("Esperado", money(count->expected)));
    slip.push_back(spread("Contado", money(count->counted)));
    slip.push_back(spread("Diferencia", money(count->difference)));
    if (!count->by.empty()) slip.push_back(spread("Empleado", count->by));
  }
  return slip;
}

std::string slipPath(double closing) {
  return DataSession().ReportPath(fmt::format("Cierre_{:06.0f}.txt", closing));
}

std::string writeSlip(double closing) {
  std::string slip;
  for (const std::string& line : slipText(closing)) slip += line + "\n";
  std::string path = slipPath(closing);
  replaceFile(path, slip);
  return path;
}

}  // namespace tavelor::flows
