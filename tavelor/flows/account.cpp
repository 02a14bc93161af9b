// SPDX-License-Identifier: MIT
// The statement of account of a customer or a supplier, and whether stored balances are right.
#include "tavelor/flows/account.hpp"

#include <algorithm>
#include <cmath>
#include <set>

#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/rows.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/quotes.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/suppliers/proveedores_apuntes_conta.hpp"

namespace tavelor::flows {

namespace {

constexpr double kHalfACent = 0.005;
constexpr std::string_view kEntries =
    "SELECT Codigo, Id, Fecha, Serie, Concepto, Documento_E, Debe, Haber, Saldo FROM ";

struct Tables {
  Statement::Constant owners;
  Statement::Constant entries;
};
constexpr Tables tablesOf(LedgerOf of) {
  return of == LedgerOf::kCustomers ? Tables{"Clientes", "Clientes_Apuntes_Contables"}
                                    : Tables{"Proveedores", "Proveedores_Apuntes_Contables"};
}

/// Balances of one owner after another, computed as UpdateTotal does.
class Walk {
 public:
  explicit Walk(const Locale& locale) : round_("Standard", locale) {}

  /// The entry of the current row, with its right balance. Rows come by owner, date and Id.
  AccountEntry take(const Rows& rows) {
    const std::string owner = rows.text("Codigo");
    if (isFirst_ || owner != owner_) {
      owner_ = owner;
      total_ = 0;
      ++owners_;
    }
    isFirst_ = false;
    AccountEntry entry;
    entry.id = rows.whole("Id");
    if (!rows.isNull("Fecha")) entry.date = Date(rows.number("Fecha"));
    entry.series = rows.text("Serie");
    entry.text = rows.text("Concepto");
    entry.document = rows.number("Documento_E");
    entry.debit = rows.number("Debe");
    entry.credit = rows.number("Haber");
    entry.stored = rows.number("Saldo");
    total_ = round_(total_ + round_(entry.credit - entry.debit));
    entry.right = total_;
    return entry;
  }
  const std::string& owner() const { return owner_; }
  std::size_t owners() const { return owners_; }

 private:
  RoundingMask round_;
  std::string owner_;
  double total_ = 0;
  std::size_t owners_ = 0;
  bool isFirst_ = true;
};

bool isBefore(const AccountEntry& entry, const std::optional<Date>& from) {
  return from && (!entry.date || entry.date->days() < from->days());
}

/// A day ends with its last moment.
bool isBehind(const AccountEntry& entry, const std::optional<Date>& to) {
  return to && entry.date && entry.date->days() >= to->days() + 1;
}

}  // namespace

bool AccountEntry::isWrong() const {
  return std::fabs(stored - right) >= kHalfACent;
}

std::optional<Account> readAccount(LedgerOf of, const std::string& owner, std::optional<Date> from,
                                   std::optional<Date> to) {
  Account account;
  account.of = of;
  account.owner = owner;
  Statement named("SELECT Razon_Social FROM ");
  named << tablesOf(of).owners << " WHERE Codigo = " << sqlText(owner);
  const Rows master(selector::kMain, named);
  if (master.hasRow()) account.name = master.text("Razon_Social");

  Statement entries(kEntries);
  entries << tablesOf(of).entries << " WHERE Codigo = " << sqlText(owner) << " ORDER BY Fecha, Id";
  Rows rows(selector::kMain, entries);
  if (!master.hasRow() && !rows.hasRow()) return std::nullopt;

  Walk walk(Apartment::current().locale());
  for (; rows.hasRow(); rows.next()) {
    AccountEntry entry = walk.take(rows);
    if (isBefore(entry, from)) {
      account.opening = entry.right;
      account.closing = entry.right;
    } else if (!isBehind(entry, to)) {
      account.debit += entry.debit;
      account.credit += entry.credit;
      account.closing = entry.right;
      account.entries.push_back(std::move(entry));
    }
  }
  return account;
}

LedgerCheck checkLedger(LedgerOf of) {
  LedgerCheck check;
  check.of = of;
  Statement entries(kEntries);
  entries << tablesOf(of).entries << " ORDER BY Codigo, Fecha, Id";
  Walk walk(Apartment::current().locale());
  for (Rows rows(selector::kMain, entries); rows.hasRow(); rows.next()) {
    AccountEntry entry = walk.take(rows);
    ++check.entries;
    if (entry.isWrong()) check.wrong.push_back({walk.owner(), std::move(entry)});
  }
  check.owners = walk.owners();
  return check;
}

namespace {

template <typename Ledger>
void addUp(const std::string& owner, ConnectionPtr connection) {
  Ledger ledger;
  ledger.IniciaRs(connection, "seleccion", doubledQuotes(owner));
  if (ledger.DataMember("Primary")->RecordCount() == 0) return;
  ledger.UpdateTotal();
  ledger.MoveFirst();
  ledger.Update();
}

}  // namespace

void addUpAccount(LedgerOf of, const std::string& owner, const ConnectionPtr& connection) {
  of == LedgerOf::kCustomers ? addUp<ClsClientesApuntesConta>(owner, connection)
                             : addUp<ClsProveedoresApuntesConta>(owner, connection);
}

void mendLedger(const LedgerCheck& check) {
  std::set<std::string> owners;
  for (const WrongBalance& each : check.wrong) owners.insert(each.owner);
  for (const std::string& owner : owners) {
    // Tills that write to the same account wait: what is read is what is mended.
    const ConnectionPtr connection = DataSession().OpenConnection(selector::kMain);
    connection->BeginTrans();
    addUpAccount(check.of, owner, connection);
    connection->CommitTrans();
  }
}

}  // namespace tavelor::flows
