// SPDX-License-Identifier: MIT
// Puts receipts and slips together. The classes print the same in their own forms, to the letter;
// these are for customers and owners: amounts with two decimals, and sums that add up.
#include "tavelor/flows/receipt.hpp"

#include <array>
#include <map>

#include <fmt/format.h>

#include "tavelor/flows/amounts.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/rows.hpp"
#include "tavelor/frame/class_info.hpp"
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
constexpr std::size_t kDescriptionWidth = kWidth - kQuantityWidth - kAmountWidth - 2;

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

std::string dayText(Date day) {
  return format(day, "Short Date", locale());
}

/// A label at the left end of a line, a value at its right end.
std::string spread(const std::string& label, const std::string& content) {
  const std::size_t used = text::length(label) + text::length(content);
  return label + std::string(used < kWidth ? kWidth - used : 1, ' ') + content;
}

std::string rule(const std::string& title = {}) {
  if (title.empty()) return std::string(kWidth, '-');
  return "-- " + title + " " + std::string(kWidth - 4 - text::length(title), '-');
}

std::string taxLine(double rate, const TaxSplit& split) {
  return text::alignRight(plain(rate), kRateWidth) + "% IVA de " +
         text::alignRight(money(split.base), kAmountWidth) +
         text::alignRight(money(split.tax), kAmountWidth);
}

void addIssuer(Lines& lines) {
  const Issuer shop = issuer();
  lines.push_back(shop.name);
  if (!shop.company.empty() && shop.company != shop.name) lines.push_back(shop.company);
  if (!shop.fiscalNumber.empty()) lines.push_back("NIF " + shop.fiscalNumber);
  if (!shop.address.empty()) lines.push_back(shop.address);
  if (!shop.place.empty()) lines.push_back(shop.place);
}

/// Reads a ticket and what belongs to it from the live tables or from history.
class Receipt {
 public:
  Receipt(double number, Statement::Constant history)
      : number_(sqlNumber(number, 0)),
        history_(history),
        connection_(DataSession().OpenConnection(selector::kDocuments)) {}

  Lines text() {
    Lines receipt;
    const Rows ticket = read(
        "SELECT Serie, Fecha, Caja, Referencia, Concepto, Total, Entrega, Cambio, "
        "Impuesto_Incluido",
        "Tickets", "Numero");
    if (!ticket.hasRow()) return receipt;
    addIssuer(receipt);
    receipt.push_back(
        spread("Ticket " + ticket.text("Serie") + "/" + number_, dayText(ticket.day("Fecha"))));
    receipt.push_back(spread("Caja " + ticket.text("Caja"), ticket.text("Concepto")));
    if (!ticket.text("Referencia").empty()) receipt.push_back("Ref. " + ticket.text("Referencia"));
    addHeader(receipt);
    receipt.push_back(rule());
    const std::map<double, double> sums = addLines(receipt);
    receipt.push_back(rule());
    receipt.push_back(spread("TOTAL", money(ticket.number("Total"))));
    receipt.push_back(spread("Entregado", money(ticket.number("Entrega"))));
    receipt.push_back(spread("Cambio", money(ticket.number("Cambio"))));
    for (const auto& [rate, sum] : sums) {
      receipt.push_back(taxLine(rate, splitOf(sum, rate, ticket.flag("Impuesto_Incluido"))));
    }
    addComments(receipt);
    return receipt;
  }

 private:
  Rows read(Statement::Constant select, Statement::Constant table, Statement::Constant key,
            Statement::Constant tail = {}) {
    Statement statement(select);
    statement << " FROM " << history_ << table << " WHERE " << key << " = " << spliced(number_)
              << tail;
    return {selector::kDocuments, statement, connection_};
  }

  void addHeader(Lines& receipt) {
    constexpr std::array<std::string_view, 6> kColumns{"Nombre",    "Razon_Social", "NIF",
                                                       "Direccion", "Poblacion",    "Provincia"};
    const Rows header = read("SELECT Nombre, Razon_Social, NIF, Direccion, Poblacion, Provincia",
                             "Tickets_Cabecera", "Codigo");
    if (!header.hasRow()) return;
    for (const std::string_view column : kColumns) {
      if (std::string line = header.text(column); !line.empty()) receipt.push_back(std::move(line));
    }
  }

  /// A line each, and its discount below. Gives the sums by rate.
  std::map<double, double> addLines(Lines& receipt) {
    std::map<double, double> sums;
    Rows rows = read("SELECT Cantidad, Descripcion, Precio, DTO, IVA, Importe", "Tickets_Lineas",
                     "Numero", " ORDER BY ID");
    for (; rows.hasRow(); rows.next()) {
      const double amount = rows.number("Importe");
      sums[rows.number("IVA")] += amount;
      receipt.push_back(text::alignRight(plain(rows.number("Cantidad")), kQuantityWidth) + ' ' +
                        text::padRight(rows.text("Descripcion"), kDescriptionWidth) + ' ' +
                        text::alignRight(money(amount), kAmountWidth));
      if (const double discount = rows.number("DTO"); discount != 0) {
        receipt.push_back(fmt::format("{:{}} {} - {}%", "", kQuantityWidth,
                                      money(rows.number("Precio")), plain(discount)));
      }
    }
    return sums;
  }

  void addComments(Lines& receipt) {
    Rows comments = read("SELECT Comentarios", "Tickets_Comentarios", "Codigo");
    for (; comments.hasRow(); comments.next()) receipt.push_back(comments.text("Comentarios"));
  }

  std::string number_;
  Statement::Constant history_;
  ConnectionPtr connection_;
};

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

std::vector<std::string> ticketText(double number) {
  Lines receipt = Receipt(number, "").text();
  return receipt.empty() ? Receipt(number, "H").text() : receipt;
}

std::vector<std::string> slipText(double closing) {
  Lines slip;
  Statement statement(
      "SELECT Fecha, Caja, Efectivo, Credito, Entrega, Saldo_Inicio, Saldo_Final FROM Cierres "
      "WHERE Codigo = ");
  statement << spliced(sqlNumber(closing, 0));
  const Rows row(selector::kMain, statement);
  if (!row.hasRow()) return slip;
  addIssuer(slip);
  slip.push_back(fmt::format("Cierre de Caja {:.0f}", closing));
  slip.push_back(spread("Fecha", dayText(row.day("Fecha"))));
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
    slip.push_back(taxLine(taxes.number("Iva"), {taxes.number("Base"), taxes.number("Importe")}));
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
