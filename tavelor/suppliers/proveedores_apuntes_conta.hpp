// SPDX-License-Identifier: MIT
// The running accounts of suppliers.
#pragma once

#include "tavelor/companions/running_account.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The ledger of suppliers. Insertar and DeleteAll leave right balances behind them.
///
/// Eliminar does not: it takes the later balances up and down again by the same movement and passes
/// over those of the same date, so that every stored balance stays as it was, with the deleted
/// entry in it, until UpdateTotal. Saldo, and so the balance of the next entry, no longer counts
/// it. An error between its statements may leave the later balances off by the movement;
/// UpdateTotal mends that too.
class TAVELOR_API ClsProveedoresApuntesConta final : public RunningAccount {
 public:
  ClsProveedoresApuntesConta();
  std::string typeName() const override { return "ClsProveedoresApuntesConta"; }
  static const Component& component();

  void GetRptPath(InOut<std::string> sRptPath) const = delete;
};

}  // namespace tavelor
