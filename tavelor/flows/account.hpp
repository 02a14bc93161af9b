// SPDX-License-Identifier: MIT
// The statement of account of a customer or a supplier, and whether stored balances are right.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"
#include "tavelor/services/recordset/connection.hpp"

namespace tavelor::flows {

/// Whose ledger.
enum class LedgerOf : std::uint8_t { kCustomers, kSuppliers };

/// An entry of an account, with the balance that is stored and the one that its ledger makes.
struct AccountEntry {
  std::int32_t id = 0;
  std::optional<Date> date;
  std::string series;
  std::string text;
  double document = 0;  ///< 0 for none
  double debit = 0;
  double credit = 0;
  double stored = 0;
  double right = 0;

  /// By half a cent or more: amounts below a cent stay in balances behind them and are no fault.
  bool isWrong() const;
};

/// What a customer or a supplier owes and has paid, from one day to another, both included. A
/// balance above 0 is what the shop owes.
struct Account {
  LedgerOf of = LedgerOf::kCustomers;
  std::string owner;   ///< code
  std::string name;    ///< "" for one who is not there
  double opening = 0;  ///< balance before the first entry shown
  std::vector<AccountEntry> entries;
  double debit = 0;  ///< sums of the entries shown
  double credit = 0;
  double closing = 0;
};

/// Of a code as it stands, quotes included. Nothing for one that neither has an owner nor is in the
/// ledger. Without a day the account is told from its beginning, or to its end. The opening balance
/// is computed.
std::optional<Account> readAccount(LedgerOf of, const std::string& owner, std::optional<Date> from,
                                   std::optional<Date> to);

/// An entry whose stored balance is not what its ledger makes.
struct WrongBalance {
  std::string owner;
  AccountEntry entry;
};

/// What checkLedger found.
struct LedgerCheck {
  LedgerOf of = LedgerOf::kCustomers;
  std::size_t owners = 0;
  std::size_t entries = 0;
  std::vector<WrongBalance> wrong;
};

/// Computes the balances of every owner anew, as UpdateTotal does, and compares.
LedgerCheck checkLedger(LedgerOf of);

/// Writes the balances of one account anew, as UpdateTotal tells them.
void addUpAccount(LedgerOf of, const std::string& owner, const ConnectionPtr& connection);
/// Writes right balances for the owners of what is wrong, a transaction each. Raises what the
/// database does; the owners before the failing one are mended. Entries whose code is null belong
/// to no account and stay as they are.
void mendLedger(const LedgerCheck& check);

/// The statement as a page of its own, for the export folder.
std::string accountPage(const Account& account, std::optional<Date> from, std::optional<Date> to);
/// Writes it there, replacing an earlier one; gives the file. Raises 75 where it cannot.
std::string writeAccountPage(const Account& account, std::optional<Date> from,
                             std::optional<Date> to);

}  // namespace tavelor::flows
