// SPDX-License-Identifier: MIT
// Sales as their tickets tell them, live or in history.
#include "tavelor/flows/stored_sale.hpp"

#include "tavelor/flows/parts.hpp"
#include "tavelor/flows/prices.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/number_text.hpp"

namespace tavelor::flows {

std::optional<double> ticketOf(const std::string& reference, const ConnectionPtr& documents) {
  for (const Statement::Constant table : kTicketTables) {
    Statement statement("SELECT Numero FROM ");
    statement << table << " WHERE Referencia = " << sqlText(reference);
    const Rows row(selector::kDocuments, statement, documents);
    if (row.hasRow()) return row.number("Numero");
  }
  return std::nullopt;
}

std::optional<Sale> findSale(double ticket, const ConnectionPtr& main,
                             const ConnectionPtr& documents) {
  const std::string number = sqlNumber(ticket, 0);
  for (const Statement::Constant table : kTicketTables) {
    Statement head(
        "SELECT Referencia, Fecha, Concepto, Codigo, Razon_Social, Forma_Pago, Caja, Recargo, "
        "Importe_Recargo FROM ");
    head << table << " WHERE Numero = " << spliced(number);
    const Rows row(selector::kDocuments, head, documents);
    if (!row.hasRow()) continue;
    Sale sale;
    sale.reference = row.text("Referencia");
    sale.till = row.text("Caja");
    sale.time = row.text("Concepto");
    sale.day = Date(row.number("Fecha"));
    sale.customer = row.text("Codigo");
    sale.name = row.text("Razon_Social");
    sale.payment = row.text("Forma_Pago");
    sale.parts = partsOf(ticket, documents);
    Statement header("SELECT Provincia FROM ");
    header << table << "_Cabecera WHERE Codigo = " << spliced(number);
    const Rows place(selector::kDocuments, header, documents);
    if (place.hasRow()) sale.place = place.text("Provincia");
    Statement lines("SELECT Codigo, Descripcion, Familia, Cantidad, Precio, IVA, DTO, Lote FROM ");
    lines << table << "_Lineas WHERE Numero = " << spliced(number) << " ORDER BY ID";
    for (Rows rows(selector::kDocuments, lines, documents); rows.hasRow(); rows.next()) {
      sale.lines.push_back({.code = rows.text("Codigo"),
                            .description = rows.text("Descripcion"),
                            .family = rows.text("Familia"),
                            .quantity = rows.number("Cantidad"),
                            .price = rows.number("Precio"),
                            .tax = rows.number("IVA"),
                            .surcharge = surchargeRateOf(row, rows, main),
                            .discount = rows.number("DTO"),
                            .isFree = rows.number("Precio") == 0,
                            .lot = rows.text("Lote")});
    }
    return sale;
  }
  return std::nullopt;
}

}  // namespace tavelor::flows
