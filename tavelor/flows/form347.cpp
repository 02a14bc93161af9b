// SPDX-License-Identifier: MIT
// Gathers a year's sales and purchases by third parties.
#include "tavelor/flows/form347.hpp"

#include <algorithm>
#include <array>
#include <map>
#include <optional>
#include <tuple>
#include <utility>

#include <fmt/format.h>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/provinces.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/fiscal/terms.hpp"
#include "tavelor/flows/customers.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/flows/parts.hpp"
#include "tavelor/flows/payments.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/fiscal_number.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

namespace {

constexpr int kDeliveryEntry = 2;  // of an entry in a supplier's ledger
constexpr std::array<Statement::Constant, 2> kTicketHistories = {"", "H"};

/// One of the master's.
struct Partner {
  std::string code;
  fiscal::Party party;
  std::optional<int> province;
};

/// What makes two partners one person: the number, else the code alone.
std::string idOf(const fiscal::Party& party, const std::string& code) {
  if (party.foreign) return party.foreign->id;
  return party.number.empty() ? " " + code : party.number;
}

std::int64_t centsOf(double euros) {
  return fiscal::Amount::of(euros).cents();
}

class Year {
 public:
  explicit Year(int year)
      : year_(year),
        from_(Date::of(year, 1, 1)),
        to_(Date::of(year + 1, 1, 1)),
        main_(DataSession().OpenConnection(selector::kMain)),
        documents_(DataSession().OpenConnection(selector::kDocuments)),
        payments_(main_) {}

  YearOfTrade look() {
    const auto book = fiscal::Book::open(documents_);
    customers_ = partners("Clientes");
    suppliers_ = partners("Proveedores");
    const Date start = book ? std::clamp(book->settings().start, from_, to_) : to_;
    addTickets(start);
    if (book) addRecords(*book, start);
    addPurchases();
    YearOfTrade found;
    found.form.year = year_;
    found.form.declarant = declarant(book.get());
    for (auto& [key, declared] : declared_) {
      if (declared.isDue()) {
        found.form.declared.push_back(std::move(declared));
      } else {
        ++found.below;
      }
    }
    found.remarks = remarks(found.form);
    return found;
  }

 private:
  using Partners = std::map<std::string, Partner>;  // by code

  static fiscal::Party declarant(const fiscal::Book* book) {
    if (book != nullptr) return book->settings().taxpayer;
    const Issuer shop = issuer();
    return {shop.company.empty() ? shop.name : shop.company,
            compactFiscalNumber(shop.fiscalNumber)};
  }

  Partners partners(Statement::Constant table) const {
    Partners all;
    Statement statement("SELECT Codigo, Nombre, Razon_Social, NIF, Codigo_Postal, Provincia FROM ");
    statement << table;
    for (Rows rows(selector::kMain, statement, main_); rows.hasRow(); rows.next()) {
      std::string name = rows.text("Razon_Social");
      if (name.empty()) name = rows.text("Nombre");
      const std::string code = rows.text("Codigo");
      all[code] = {code, fiscal::partyOf(name.empty() ? code : name, rows.text("NIF")),
                   fiscal::provinceOf(rows.text("Codigo_Postal"), rows.text("Provincia"))};
    }
    return all;
  }

  /// Who has this number in the master; the one who tells a province, where several have it.
  const Partner* customerOf(const fiscal::Party& party) {
    if (customersById_.empty()) {
      for (const auto& [code, partner] : customers_) {
        const Partner*& known = customersById_[idOf(partner.party, code)];
        if (known == nullptr || (!known->province && partner.province)) known = &partner;
      }
    }
    const auto found = customersById_.find(idOf(party, {}));
    return found == customersById_.end() ? nullptr : found->second;
  }

  fiscal::Declared& declaredOf(bool isSupplier, const fiscal::Party& party,
                               const Partner* partner) {
    const std::string code = partner != nullptr ? partner->code : std::string();
    fiscal::Declared& declared = declared_[{!isSupplier, idOf(party, code)}];
    if (declared.called.empty()) {
      declared.isSupplier = isSupplier;
      declared.party = party;
      declared.called = partner == nullptr
                            ? fmt::format("{}, whom no customer of the shop's is,", party.name)
                            : fmt::format("the {} {}", isSupplier ? "supplier" : "customer", code);
    }
    if (!declared.province && partner != nullptr) declared.province = partner->province;
    return declared;
  }

  void add(fiscal::Declared& declared, Date day, std::int64_t cents, bool isCash) {
    const auto quarter = static_cast<std::size_t>((day.civil().month - 1) / 3);
    declared.cents.at(quarter) += cents;
    if (isCash) declared.cash += cents;
  }
  bool isCash(const std::string& payment) const {
    const PaymentMethod* const method = payments_.byCode(payment);
    return method != nullptr && method->isCash;
  }

  /// Of known customers, before there were records.
  void addTickets(Date end) {
    for (const Statement::Constant history : kTicketHistories) {
      Statement statement("SELECT Codigo, Fecha, Forma_Pago, Sum(Total) AS Suma FROM ");
      statement << history << "Tickets WHERE Fecha >= " << sqlLiteral(from_) << " AND Fecha < "
                << sqlLiteral(end) << " AND Codigo <> '' AND Codigo <> " << sqlText(kWalkIn)
                << " GROUP BY Codigo, Fecha, Forma_Pago";
      for (Rows rows(selector::kDocuments, statement, documents_); rows.hasRow(); rows.next()) {
        const auto customer = customers_.find(rows.text("Codigo"));
        if (customer == customers_.end()) continue;
        add(declaredOf(false, customer->second.party, &customer->second), rows.day("Fecha"),
            centsOf(rows.number("Suma")), isCash(rows.text("Forma_Pago")));
      }
      addParts(history, end);
    }
  }

  /// Of those tickets what was paid in cash, or was not, otherwise than the ticket says.
  void addParts(Statement::Constant history, Date end) {
    Statement statement(
        "SELECT T.Codigo, T.Forma_Pago AS Pago, P.Forma_Pago AS Parte, Sum(P.Importe) AS Suma "
        "FROM ");
    statement << history << "Tickets AS T INNER JOIN Tickets_Pagos AS P ON T.Numero = P.Numero "
              << "WHERE T.Fecha >= " << sqlLiteral(from_) << " AND T.Fecha < " << sqlLiteral(end)
              << " AND T.Codigo <> '' AND T.Codigo <> " << sqlText(kWalkIn)
              << " GROUP BY T.Codigo, T.Forma_Pago, P.Forma_Pago";
    for (Rows rows(selector::kDocuments, statement, documents_); rows.hasRow(); rows.next()) {
      const auto customer = customers_.find(rows.text("Codigo"));
      if (customer == customers_.end()) continue;
      const int isMore = int{isCash(rows.text("Parte"))} - int{isCash(rows.text("Pago"))};
      declaredOf(false, customer->second.party, &customer->second).cash +=
          isMore * centsOf(rows.number("Suma"));
    }
  }

  /// Of the records from a day on, those that name who buys.
  void addRecords(const fiscal::Book& book, Date start) {
    Statement statement(
        "SELECT R.Registro FROM Fiscal_Registros AS R INNER JOIN Fiscal_Cadenas AS C ON "
        "R.Cadena = C.Codigo WHERE C.NIF = ");
    statement << sqlText(book.settings().taxpayer.number)
              << " AND R.Tipo IN ('F1', 'F3', 'R1', 'R2', 'R3', 'R4') AND R.Fecha_Expedicion >= "
              << sqlLiteral(start) << " AND R.Fecha_Expedicion < " << sqlLiteral(to_)
              << " ORDER BY R.Cadena, R.Posicion";
    // A correction is a later record of the same invoice, and counts in its place.
    std::map<std::string, fiscal::Registration> invoices;
    for (Rows rows(selector::kDocuments, statement, documents_); rows.hasRow(); rows.next()) {
      auto record = std::get<fiscal::Registration>(fiscal::readRecord(rows.text("Registro")));
      invoices.insert_or_assign(record.invoice.number, std::move(record));
    }
    for (const auto& [number, record] : invoices) {
      if (record.recipients.empty() || book.isRelated(record.invoice, "A")) continue;
      const fiscal::Party& party = record.recipients.front();
      fiscal::Declared& declared = declaredOf(false, party, customerOf(party));
      add(declared, record.invoice.day, declaredIn(record), false);
      if (record.replaced.empty()) {
        addCash(declared, book.ticketOf(record.invoice));
      } else {
        for (const fiscal::InvoiceId& each : record.replaced) {
          addCash(declared, book.ticketOf(each));
        }
      }
    }
  }
  /// Without what is declared elsewhere.
  static std::int64_t declaredIn(const fiscal::Registration& record) {
    std::int64_t cents = record.total.cents();
    for (const fiscal::Detail& detail : record.details) {
      const bool isElsewhere = detail.operation == fiscal::Operation::kExempt2 ||
                               detail.operation == fiscal::Operation::kExempt5;
      if (isElsewhere) cents -= detail.base.cents();
    }
    return cents;
  }
  void addCash(fiscal::Declared& declared, std::optional<double> ticket) const {
    if (!ticket) return;
    const std::vector<PaymentPart> parts = partsOf(*ticket, documents_);
    for (const PaymentPart& part : parts) {
      if (isCash(part.payment)) declared.cash += centsOf(part.amount);
    }
    if (!parts.empty()) return;
    for (const Statement::Constant history : kTicketHistories) {
      Statement statement("SELECT Total, Forma_Pago FROM ");
      statement << history << "Tickets WHERE Numero = " << sqlLiteral(*ticket);
      const Rows row(selector::kDocuments, statement, documents_);
      if (!row.hasRow()) continue;
      if (isCash(row.text("Forma_Pago"))) declared.cash += centsOf(row.number("Total"));
      return;
    }
  }

  void addPurchases() {
    Statement statement(
        "SELECT Codigo, Fecha, Estado, Sum(Haber) AS Suma FROM Proveedores_Apuntes_Contables WHERE "
        "Fecha >= ");
    statement << sqlLiteral(from_) << " AND Fecha < " << sqlLiteral(to_)
              << " AND Haber <> 0 GROUP BY Codigo, Fecha, Estado";
    for (Rows rows(selector::kMain, statement, main_); rows.hasRow(); rows.next()) {
      const auto supplier = suppliers_.find(rows.text("Codigo"));
      if (supplier == suppliers_.end()) continue;
      fiscal::Declared& declared = declaredOf(true, supplier->second.party, &supplier->second);
      add(declared, rows.day("Fecha"), centsOf(rows.number("Suma")), false);
      if (rows.whole("Estado") != kDeliveryEntry) hasMore_[declared.called] = true;
    }
  }

  std::vector<std::string> remarks(const fiscal::Form347& form) const {
    std::vector<std::string> all;
    for (const fiscal::Declared& each : form.declared) {
      if (!each.isSupplier || hasMore_.contains(each.called)) continue;
      all.push_back(fmt::format(
          "{} has deliveries only in its account, which are without tax: enter that of its "
          "invoices, as the form is of amounts with tax",
          each.called));
    }
    return all;
  }

  int year_;
  Date from_;
  Date to_;
  ConnectionPtr main_;
  ConnectionPtr documents_;
  PaymentMethods payments_;
  Partners customers_;
  Partners suppliers_;
  std::map<std::string, const Partner*> customersById_;
  std::map<std::pair<bool, std::string>, fiscal::Declared> declared_;  // suppliers first
  std::map<std::string, bool> hasMore_;  // suppliers who are credited for more than deliveries
};

}  // namespace

YearOfTrade yearOfTrade(int year) {
  return Year(year).look();
}

}  // namespace tavelor::flows
