// SPDX-License-Identifier: MIT
// Puts receipts and slips together from what the classes print.
#include "tools/shop/receipt.hpp"

#include <array>

#include <fmt/format.h>

#include "tavelor/closing/cierres.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/sales/receipt.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/format_global.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tavelor/services/settings_file.hpp"
#include "tools/shop/rows.hpp"

namespace tavelor::shop {

namespace {

constexpr std::size_t kWidth = 30;

const Locale& locale() {
  return Apartment::current().locale();
}

std::string money(double amount) {
  return format(amount, Apartment::current().formatGlobal().AmountFormat(), locale());
}

/// A label at the left end of a line, a value at its right end.
std::string spread(const std::string& label, const std::string& content) {
  const std::size_t used = text::length(label) + text::length(content);
  return label + std::string(used < kWidth ? kWidth - used : 1, ' ') + content;
}

void add(std::vector<std::string>& lines, const std::vector<Variant>& texts) {
  for (const Variant& text : texts) lines.push_back(text.toText(locale()));
}

/// Reads a ticket and what belongs to it from the live tables or from history.
class Receipt {
 public:
  Receipt(double number, Statement::Constant history)
      : number_(sqlNumber(number, 0)),
        history_(history),
        connection_(DataSession().OpenConnection(selector::kDocuments)) {}

  std::vector<std::string> text() {
    std::vector<std::string> receipt;
    const Rows ticket = read(
        "SELECT Serie, Fecha, Caja, Referencia, Concepto, Total, Entrega, Cambio, "
        "Impuesto_Incluido",
        "Tickets", "Numero");
    if (!ticket.hasRow()) return receipt;
    const std::string day = format(ticket.day("Fecha"), "Short Date", locale());
    receipt.push_back(spread("Ticket " + ticket.text("Serie") + "/" + number_, day));
    receipt.push_back(spread("Caja " + ticket.text("Caja"), ticket.text("Concepto")));
    if (!ticket.text("Referencia").empty()) receipt.push_back("Ref. " + ticket.text("Referencia"));
    addHeader(receipt);
    receipt.emplace_back(kWidth, '-');
    add(receipt, receipt::lines(read("SELECT Cantidad, Descripcion AS Descripción, DTO, Importe",
                                     "Tickets_Lineas", "Numero", " ORDER BY ID")
                                    .set()));
    receipt.emplace_back(kWidth, '-');
    receipt.push_back(spread("TOTAL", money(ticket.number("Total"))));
    receipt.push_back(spread("Entregado", money(ticket.number("Entrega"))));
    receipt.push_back(spread("Cambio", money(ticket.number("Cambio"))));
    add(receipt, receipt::taxes(read("SELECT IVA, Sum(Importe) AS SumaDeImporte", "Tickets_Lineas",
                                     "Numero", " GROUP BY IVA")
                                    .set(),
                                ticket.flag("Impuesto_Incluido")));
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

  void addHeader(std::vector<std::string>& receipt) {
    constexpr std::array<std::string_view, 6> kColumns{"Nombre",    "Razon_Social", "NIF",
                                                       "Direccion", "Poblacion",    "Provincia"};
    const Rows header = read("SELECT Nombre, Razon_Social, NIF, Direccion, Poblacion, Provincia",
                             "Tickets_Cabecera", "Codigo");
    if (!header.hasRow()) return;
    for (const std::string_view column : kColumns) {
      if (std::string line = header.text(column); !line.empty()) receipt.push_back(std::move(line));
    }
  }

  void addComments(std::vector<std::string>& receipt) {
    Rows comments = read("SELECT Comentarios", "Tickets_Comentarios", "Codigo");
    for (; comments.hasRow(); comments.next()) receipt.push_back(comments.text("Comentarios"));
  }

  std::string number_;
  Statement::Constant history_;
  ConnectionPtr connection_;
};

}  // namespace

std::vector<std::string> ticketText(double number) {
  std::vector<std::string> receipt = Receipt(number, "").text();
  return receipt.empty() ? Receipt(number, "H").text() : receipt;
}

std::vector<std::string> slipText(double closing) {
  ClsCierres closings;
  std::vector<std::string> slip;
  add(slip, closings.GetCierreToCol(closing));
  if (slip.empty()) return slip;
  const auto addPart = [&](const std::string& title, std::string_view mode, auto collection) {
    closings.IniciaRs(std::string(mode), closing);
    slip.push_back("-- " + title + " " + std::string(kWidth - 4 - text::length(title), '-'));
    add(slip, collection());
  };
  addPart("Familias", "familias", [&] { return closings.GetCollectionLinFamilias(closing); });
  addPart("Formas de pago", "formas_pago", [&] { return closings.GetCollectionLinFormasPago(); });
  addPart("Impuestos", "impuestos", [&] { return closings.GetCollectionLinImpuestos(closing); });
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

}  // namespace tavelor::shop
