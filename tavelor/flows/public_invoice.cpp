// SPDX-License-Identifier: MIT
// Finds what a Facturae document tells of an invoice.
#include "tavelor/flows/public_invoice.hpp"

#include <algorithm>
#include <array>
#include <vector>

#include <fmt/format.h>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/terms.hpp"
#include "tavelor/flows/customers.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

namespace {

/// A role of a centre, and where the master tells of it.
struct CentreColumns {
  std::string_view role;
  std::string_view code;
  std::string_view name;
};
constexpr std::array<CentreColumns, 4> kCentres = {{
    {"01", "Cod_Of_Contable", "Nom_Of_Contable"},
    {"02", "Cod_Or_Gestor", "Nom_Or_Gestor"},
    {"03", "Cod_Un_Tramit", "Nom_Un_Tramit"},
    {"04", "Cod_Or_Propon", "Nom_Or_Propon"},
}};

fiscal::PostalAddress addressIn(const Rows& row) {
  return {row.text("Direccion"), row.text("Codigo_Postal"), row.text("Poblacion"),
          row.text("Provincia")};
}

class PublicInvoiceFinder {
 public:
  explicit PublicInvoiceFinder(const std::string& number)
      : number_(number), documents_(DataSession().OpenConnection(selector::kDocuments)) {}

  fiscal::Facturae find(const std::string& customer) {
    const auto book = fiscal::Book::open(documents_);
    if (!book) refuse("the shop keeps no records");
    const auto stored = book->find(number_);
    if (!stored) refuse("there is none");
    fiscal::Facturae found;
    found.invoice = stored->record;
    if (book->isRelated(found.invoice.invoice, "A")) refuse("it is cancelled");
    found.seller = seller(book->settings().taxpayer);
    for (const double ticket : ticketsOf(*book, *stored)) addLines(ticket, found.lines);
    if (!found.invoice.recipients.empty()) {
      found.buyer = buyer(found.invoice.recipients.front(), customer);
    }
    return found;
  }

 private:
  [[noreturn]] void refuse(std::string_view why) const {
    raise(errors::kInvalidCall, "Shop", fmt::format("The invoice {}: {}.", number_, why));
  }
  Rows documents(const Statement& statement) const {
    return {selector::kDocuments, statement, documents_};
  }

  static fiscal::FacturaeParty seller(const fiscal::Party& taxpayer) {
    fiscal::FacturaeParty seller{.party = taxpayer, .called = "the shop", .address = {}};
    const Rows row(selector::kMain,
                   Statement("SELECT Direccion, Codigo_Postal, Poblacion, Provincia FROM "
                             "Tipos_Documento WHERE Predeterminada = True ORDER BY Codigo"));
    if (row.hasRow()) seller.address = addressIn(row);
    return seller;
  }

  /// Of the invoice, or of those that it stands in the place of.
  std::vector<double> ticketsOf(const fiscal::Book& book,
                                const fiscal::StoredRegistration& stored) {
    std::vector<fiscal::InvoiceId> invoices = stored.record.replaced;
    if (invoices.empty()) invoices = {stored.record.invoice};
    std::vector<double> tickets;
    for (const fiscal::InvoiceId& invoice : invoices) {
      if (const auto ticket = book.ticketOf(invoice)) tickets.push_back(*ticket);
    }
    return tickets;
  }

  void addLines(double ticket, std::vector<fiscal::FacturaeLine>& to) {
    constexpr std::array<Statement::Constant, 2> kHistories = {"", "H"};
    for (const Statement::Constant history : kHistories) {
      Statement head("SELECT Codigo FROM ");
      head << history << "Tickets WHERE Numero = " << sqlLiteral(ticket);
      const Rows sold = documents(head);
      if (!sold.hasRow()) continue;
      if (customer_.empty()) customer_ = sold.text("Codigo");
      Statement statement("SELECT Codigo, Descripcion, Cantidad, Precio, DTO, IVA, Importe FROM ");
      statement << history << "Tickets_Lineas WHERE Numero = " << sqlLiteral(ticket)
                << " ORDER BY ID";
      for (Rows rows = documents(statement); rows.hasRow(); rows.next()) {
        to.push_back({.article = rows.text("Codigo"),
                      .description = rows.text("Descripcion"),
                      .quantity = rows.number("Cantidad"),
                      .price = rows.number("Precio"),
                      .discount = rows.number("DTO"),
                      .amount = rows.number("Importe"),
                      .rate = rows.number("IVA")});
      }
      return;
    }
  }

  /// Whose number is that of the record.
  static bool isMeant(const fiscal::Party& recipient, const std::string& number) {
    const fiscal::Party party = fiscal::partyOf("", number);
    return recipient.foreign ? party.foreign && party.foreign->id == recipient.foreign->id
                             : !party.number.empty() && party.number == recipient.number;
  }

  std::string meant(const fiscal::Party& recipient, const std::string& told) const {
    if (!told.empty()) return told;
    Statement one("SELECT NIF FROM Clientes WHERE Codigo = ");
    one << sqlText(customer_);
    const Rows ticketsOwn(selector::kMain, one);
    if (ticketsOwn.hasRow() && isMeant(recipient, ticketsOwn.text("NIF"))) return customer_;
    std::vector<std::string> codes;
    const Statement all("SELECT Codigo, NIF FROM Clientes WHERE NIF <> '' ORDER BY Codigo");
    for (Rows rows(selector::kMain, all); rows.hasRow(); rows.next()) {
      if (isMeant(recipient, rows.text("NIF"))) codes.push_back(rows.text("Codigo"));
    }
    if (codes.size() == 1) return codes.front();
    refuse(codes.empty() ? fmt::format("no customer has the fiscal number of {}", recipient.name)
                         : fmt::format("the customers {} and {} have the fiscal number of {}: say "
                                       "which one is meant",
                                       codes[0], codes[1], recipient.name));
  }

  fiscal::FacturaeParty buyer(const fiscal::Party& recipient, const std::string& told) const {
    const std::string code = meant(recipient, told);
    fiscal::FacturaeParty buyer{
        .party = recipient, .called = fmt::format("the customer {}", code), .address = {}};
    Statement statement("SELECT * FROM Clientes WHERE Codigo = ");
    statement << sqlText(code);
    const Rows row(selector::kMain, statement);
    if (!row.hasRow()) refuse(fmt::format("there is no customer {}", code));
    if (!isMeant(recipient, row.text("NIF"))) {
      refuse(
          fmt::format("the customer {} has another fiscal number than {}", code, recipient.name));
    }
    buyer.address = addressIn(row);
    for (const CentreColumns& each : kCentres) {
      const fiscal::AdministrativeCentre centre = centreOf(code, each, row, buyer.address);
      if (!centre.code.empty() || !centre.name.empty()) buyer.centres.push_back(centre);
    }
    return buyer;
  }

  static fiscal::AdministrativeCentre centreOf(const std::string& code,
                                               const CentreColumns& columns, const Rows& master,
                                               const fiscal::PostalAddress& address) {
    Statement statement(
        "SELECT CentreCode, Name, Direccion, Codigo_Postal, Poblacion, Provincia FROM "
        "Clientes_Centros WHERE Codigo = ");
    statement << sqlText(code) << " AND RoleTypeCode = " << sqlText(columns.role) << " ORDER BY ID";
    const Rows own(selector::kMain, statement);
    fiscal::AdministrativeCentre centre;
    centre.role = columns.role;
    if (!own.hasRow()) {
      centre.code = master.text(columns.code);
      centre.name = master.text(columns.name);
      centre.address = address;
      return centre;
    }
    centre.code = own.text("CentreCode");
    centre.name = own.text("Name");
    centre.address = addressIn(own);
    if (centre.address.street.empty()) centre.address = address;
    return centre;
  }

  const std::string& number_;
  ConnectionPtr documents_;
  std::string customer_;  // of the first ticket
};

}  // namespace

fiscal::Facturae publicInvoice(const std::string& number, const std::string& customer) {
  return PublicInvoiceFinder(number).find(customer);
}

}  // namespace tavelor::flows
