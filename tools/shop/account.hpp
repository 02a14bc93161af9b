// SPDX-License-Identifier: MIT
// A customer's statement of account, and whether stored balances are right.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "tavelor/platform/date.hpp"

namespace tavelor::shop {

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

/// What a customer owes and has paid, from one day to another, both included.
struct Account {
  std::string customer;
  std::string name;    ///< "" for a customer who is not there
  double opening = 0;  ///< balance before the first entry shown
  std::vector<AccountEntry> entries;
  double debit = 0;  ///< sums of the entries shown
  double credit = 0;
  double closing = 0;
};

/// Of a code as it stands, quotes included. Nothing for one that is neither a customer's nor in the
/// ledger. Without a day the account is
/// told from its beginning, or to its end. The opening balance is computed.
std::optional<Account> readAccount(const std::string& customer, std::optional<Date> from,
                                   std::optional<Date> to);

/// An entry whose stored balance is not what its ledger makes.
struct WrongBalance {
  std::string customer;
  AccountEntry entry;
};

struct LedgerCheck {
  std::size_t customers = 0;
  std::size_t entries = 0;
  std::vector<WrongBalance> wrong;
};

/// Computes the balances of every customer anew, as UpdateTotal does, and compares.
LedgerCheck checkLedger();

/// Writes right balances for the customers of what is wrong, a transaction each. Raises what the
/// database does; the customers before the failing one are mended.
void mendLedger(const LedgerCheck& check);

/// The statement as a page of its own, for the export folder.
std::string accountPage(const Account& account, std::optional<Date> from, std::optional<Date> to);
/// Writes it there, replacing an earlier one; gives the file. Raises 75 where it cannot.
std::string writeAccountPage(const Account& account, std::optional<Date> from,
                             std::optional<Date> to);

}  // namespace tavelor::shop
