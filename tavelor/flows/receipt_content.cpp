// SPDX-License-Identifier: MIT
// Reads a ticket and what belongs to it, from the live tables or from history, and its record.
#include "tavelor/flows/receipt_content.hpp"

#include <array>
#include <map>
#include <string_view>

#include <fmt/format.h>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/qr.hpp"
#include "tavelor/flows/parts.hpp"
#include "tavelor/flows/prices.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

namespace {

std::string dayInShort(Date day) {
  return format(day, "Short Date", Apartment::current().locale());
}

double euros(const fiscal::Amount& amount) {
  return static_cast<double>(amount.cents()) / 100;
}

double euros(const std::optional<fiscal::Amount>& amount) {
  return amount ? euros(*amount) : 0;
}

// ---------------------------------------------------------------------------------------------
// What the law wants told

std::string titleOf(const fiscal::Registration& record) {
  using Kind = fiscal::InvoiceKind;
  if (record.kind == Kind::kRectifying5) return "Factura simplificada rectificativa";
  if (fiscal::isRectifying(record.kind)) return "Factura rectificativa";
  const bool isSimplified = record.kind == Kind::kSimplified || record.isQualifiedTicket;
  return isSimplified ? "Factura simplificada" : "Factura";
}

std::string causeOf(fiscal::InvoiceKind kind) {
  using Kind = fiscal::InvoiceKind;
  switch (kind) {
    case Kind::kRectifying1:
      return "Causa: devolución, descuento o error de derecho";
    case Kind::kRectifying2:
      return "Causa: concurso del cliente";
    case Kind::kRectifying3:
      return "Causa: crédito incobrable";
    case Kind::kRectifying5:
      return "Causa: devolución";
    default:
      return "Causa: otras";
  }
}

/// Why something is sold without tax; "" where it is not.
std::string_view whyUntaxed(fiscal::Operation operation) {
  using Operation = fiscal::Operation;
  switch (operation) {
    case Operation::kTaxed:
      return {};
    case Operation::kReverseCharge:
      return "Inversión del sujeto pasivo";
    case Operation::kNotSubject:
      return "Operación no sujeta a IVA";
    case Operation::kNotSubjectHere:
      return "Operación no sujeta a IVA por su localización";
    case Operation::kExempt1:
      return "Operación exenta, art. 20 de la Ley del IVA";
    case Operation::kExempt2:
      return "Operación exenta, art. 21 de la Ley del IVA";
    case Operation::kExempt3:
      return "Operación exenta, art. 22 de la Ley del IVA";
    case Operation::kExempt4:
      return "Operación exenta, art. 23 y 24 de la Ley del IVA";
    case Operation::kExempt5:
      return "Operación exenta, art. 25 de la Ley del IVA";
    case Operation::kExempt6:
      return "Operación exenta de IVA";
  }
  return {};
}

std::string named(const fiscal::InvoiceId& invoice) {
  return invoice.number + " de " + dayInShort(invoice.day);
}

/// Where a customer of the shop lives, by his fiscal number.
std::vector<std::string> homeOf(const std::string& number) {
  std::vector<std::string> home;
  if (number.empty()) return home;
  Statement statement(
      "SELECT NIF, Direccion, Codigo_Postal, Poblacion, Provincia FROM Clientes WHERE NIF LIKE ");
  // As typed it may have a prefix, blanks and hyphens.
  statement << sqlText(std::string("*") + number.back()) << " ORDER BY Codigo";
  for (Rows rows(selector::kMain, statement); rows.hasRow(); rows.next()) {
    if (compactFiscalNumber(rows.text("NIF")) != number) continue;
    const std::string town = rows.text("Poblacion");
    const std::string province = rows.text("Provincia");
    std::string place = rows.text("Codigo_Postal");
    for (const std::string& part : {town, province == town ? std::string() : province}) {
      if (!part.empty()) place += (place.empty() ? "" : " ") + part;
    }
    for (std::string line : {rows.text("Direccion"), place}) {
      if (!line.empty()) home.push_back(std::move(line));
    }
    break;
  }
  return home;
}

std::vector<std::string> partyLines(const fiscal::Party& party) {
  const std::string number = party.foreign ? party.foreign->id : party.number;
  std::vector<std::string> lines = {party.name, "NIF " + number};
  for (std::string& line : homeOf(number)) lines.push_back(std::move(line));
  return lines;
}

ContentInvoice invoiceOf(const fiscal::Registration& record, const fiscal::Book& book) {
  ContentInvoice invoice;
  invoice.id = record.invoice;
  invoice.title = titleOf(record);
  invoice.wantsUnitPrices = fiscal::hasRecipient(record.kind) && !record.isQualifiedTicket;
  for (const fiscal::Party& recipient : record.recipients) {
    for (std::string& line : partyLines(recipient)) invoice.recipient.push_back(std::move(line));
  }
  const auto note = [&](std::string_view text) {
    if (!text.empty()) invoice.notes.emplace_back(text);
  };
  for (const fiscal::InvoiceId& each : record.rectified) note("Rectifica " + named(each));
  if (fiscal::isRectifying(record.kind)) note(causeOf(record.kind));
  for (const fiscal::InvoiceId& each : record.replaced) note("Sustituye a " + named(each));
  if (record.operationDay) note("Fecha de la operación " + dayInShort(*record.operationDay));
  for (const fiscal::Detail& detail : record.details) note(whyUntaxed(detail.operation));
  if (book.isRelated(record.invoice, "A")) note("ANULADA");
  if (const std::string other = book.numberInPlaceOf(record.invoice); !other.empty()) {
    note("Sustituida por la factura " + other);
  }
  const fiscal::Settings& settings = book.settings();
  invoice.isSending = settings.mode == fiscal::Mode::kSending;
  invoice.address = fiscal::qrAddress(record.invoice, record.total,
                                      {.isSending = invoice.isSending, .isTest = settings.isTest});
  return invoice;
}

// ---------------------------------------------------------------------------------------------
// A ticket

/// Adds what lies in the live tables or, with "H", in history.
class TicketReader {
 public:
  TicketReader(double number, Statement::Constant history, ConnectionPtr documents)
      : ticket_(number), number_(sqlNumber(number, 0)), history_(history), documents_(std::move(documents)) {}

  /// False where the ticket is not there.
  bool read(ReceiptContent& content) {
    const Rows ticket = rowsOf(
        "SELECT Serie, Fecha, Caja, Referencia, Concepto, Total, Entrega, Cambio, Recargo, "
        "Importe_Recargo, Impuesto_Incluido",
        "Tickets", "Numero");
    if (!ticket.hasRow()) return false;
    content.isTaxIncluded = ticket.flag("Impuesto_Incluido");
    content.heads.emplace_back("Ticket " + ticket.text("Serie") + "/" + number_,
                               dayInShort(ticket.day("Fecha")));
    content.heads.emplace_back("Caja " + ticket.text("Caja"), ticket.text("Concepto"));
    if (const std::string reference = ticket.text("Referencia"); !reference.empty()) {
      content.heads.emplace_back("Ref. " + reference, "");
    }
    readHeader(content);
    readLines(ticket, content);
    content.total = ticket.number("Total");
    content.money = {ticket.number("Entrega"), ticket.number("Cambio")};
    readParts(content);
    Rows comments = rowsOf("SELECT Comentarios", "Tickets_Comentarios", "Codigo");
    for (; comments.hasRow(); comments.next()) {
      content.comments.push_back(comments.text("Comentarios"));
    }
    return true;
  }

 private:
  Rows rowsOf(Statement::Constant select, Statement::Constant table, Statement::Constant key,
              Statement::Constant tail = {}) {
    Statement statement(select);
    statement << " FROM " << history_ << table << " WHERE " << key << " = " << spliced(number_)
              << tail;
    return {selector::kDocuments, statement, documents_};
  }

  void readParts(ReceiptContent& content) {
    for (const PaymentPart& part : partsOf(ticket_, documents_)) {
      Statement statement("SELECT Descripcion FROM Formas_Pago WHERE Codigo = ");
      statement << sqlText(part.payment);
      const Rows row(selector::kMain, statement);
      const std::string name = row.hasRow() ? row.text("Descripcion") : std::string();
      content.parts.emplace_back(name.empty() ? part.payment : name, part.amount);
    }
  }

  void readHeader(ReceiptContent& content) {
    constexpr std::array<std::string_view, 6> kColumns{"Nombre",    "Razon_Social", "NIF",
                                                       "Direccion", "Poblacion",    "Provincia"};
    const Rows header = rowsOf("SELECT Nombre, Razon_Social, NIF, Direccion, Poblacion, Provincia",
                               "Tickets_Cabecera", "Codigo");
    if (!header.hasRow()) return;
    for (const std::string_view column : kColumns) {
      if (std::string line = header.text(column); !line.empty()) {
        content.customer.push_back(std::move(line));
      }
    }
  }

  void readLines(const Rows& ticket, ReceiptContent& content) {
    std::map<std::pair<double, double>, double> sums;
    Rows rows = rowsOf("SELECT Codigo, Cantidad, Descripcion, Precio, DTO, IVA, Importe",
                       "Tickets_Lineas", "Numero", " ORDER BY ID");
    for (; rows.hasRow(); rows.next()) {
      content.lines.push_back({rows.number("Cantidad"), rows.text("Descripcion"),
                               rows.number("Precio"), rows.number("DTO"), rows.number("IVA"),
                               rows.number("Importe")});
      const ContentLine& line = content.lines.back();
      sums[{line.rate, surchargeRateOf(ticket, rows, {})}] += line.amount;
    }
    for (const auto& [rates, sum] : sums) {
      const TaxSplit split = splitOf(sum, rates.first, content.isTaxIncluded);
      content.taxes.push_back(
          {rates.first, split, rates.second, surchargeOn(split.base, rates.second)});
    }
  }

  double ticket_;
  std::string number_;
  Statement::Constant history_;
  ConnectionPtr documents_;
};

std::optional<ReceiptContent> ticketOf(double number, const ConnectionPtr& documents) {
  ReceiptContent content;
  if (TicketReader(number, "", documents).read(content)) return content;
  if (TicketReader(number, "H", documents).read(content)) return content;
  return std::nullopt;
}

/// An invoice tells taxes as its record does; they are the ticket's, and tell more of surcharges.
void addInvoice(ReceiptContent& content, const fiscal::Registration& record,
                const fiscal::Book& book) {
  content.invoice = invoiceOf(record, book);
  content.shop.fiscalNumber = record.invoice.issuer;
  content.shop.company = record.issuerName;
  content.taxes.clear();
  for (const fiscal::Detail& detail : record.details) {
    content.taxes.push_back({euros(detail.rate),
                             {euros(detail.base), euros(detail.quota)},
                             euros(detail.surchargeRate),
                             euros(detail.surchargeQuota)});
  }
}

/// "Número T/12" above the ticket's own number, which then tells no day.
void putNumber(ReceiptContent& content, const fiscal::InvoiceId& invoice) {
  content.heads.front().second.clear();
  content.heads.insert(content.heads.begin(),
                       {"Número " + invoice.number, dayInShort(invoice.day)});
}

/// The invoice that a ticket cancels; "" for any other ticket.
std::string cancelledBy(double ticket, const fiscal::Book& book) {
  Statement statement("SELECT Serie_Numero FROM Fiscal_Registros WHERE Ticket = ");
  statement << sqlLiteral(ticket) << " AND Tipo = " << sqlText(fiscal::kCancellationWord);
  const Rows row(selector::kDocuments, statement, book.documents());
  return row.hasRow() ? row.text("Serie_Numero") : std::string();
}

/// An invoice in the place of tickets has the lines of all of them.
std::optional<ReceiptContent> joinedOf(const fiscal::Registration& record,
                                       const fiscal::Book& book) {
  ReceiptContent content;
  content.heads.emplace_back("Número " + record.invoice.number, dayInShort(record.invoice.day));
  for (const fiscal::InvoiceId& each : record.replaced) {
    const std::optional<double> number = book.ticketOf(each);
    const auto ticket = number ? ticketOf(*number, book.documents()) : std::nullopt;
    if (!ticket) return std::nullopt;
    content.heads.push_back(ticket->heads.front());
    content.lines.insert(content.lines.end(), ticket->lines.begin(), ticket->lines.end());
  }
  content.total = euros(record.total);
  return content;
}

}  // namespace

std::optional<ReceiptContent> readTicket(double number) {
  const ConnectionPtr documents = DataSession().OpenConnection(selector::kDocuments);
  std::optional<ReceiptContent> content = ticketOf(number, documents);
  if (!content) return content;
  content->shop = issuer();
  const std::unique_ptr<fiscal::Book> book = fiscal::Book::open(documents);
  if (!book) return content;
  if (const auto stored = book->issuedWith(number)) {
    addInvoice(*content, stored->record, *book);
    putNumber(*content, stored->record.invoice);
  } else if (const std::string cancelled = cancelledBy(number, *book); !cancelled.empty()) {
    content->comments.push_back("Anula la factura " + cancelled);
  }
  return content;
}

std::optional<ReceiptContent> readInvoice(const std::string& number) {
  const ConnectionPtr documents = DataSession().OpenConnection(selector::kDocuments);
  const std::unique_ptr<fiscal::Book> book = fiscal::Book::open(documents);
  const auto stored = book ? book->find(number) : std::nullopt;
  if (!stored) return std::nullopt;
  if (const std::optional<double> ticket = book->ticketOf(stored->record.invoice)) {
    return readTicket(*ticket);
  }
  std::optional<ReceiptContent> content = joinedOf(stored->record, *book);
  if (!content) return content;
  content->shop = issuer();
  addInvoice(*content, stored->record, *book);
  return content;
}

}  // namespace tavelor::flows
