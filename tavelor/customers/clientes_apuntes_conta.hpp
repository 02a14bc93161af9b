// SPDX-License-Identifier: MIT
// The running accounts of customers.
#pragma once

#include "tavelor/companions/running_account.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The ledger of customers. Insertar, Eliminar and DeleteAll leave right balances behind them;
/// Modificarnovale and DeleteToDate do not, and UpdateTotal mends theirs.
class TAVELOR_API ClsClientesApuntesConta final : public RunningAccount {
 public:
  ClsClientesApuntesConta();
  std::string typeName() const override { return "ClsClientesApuntesConta"; }
  static const Component& component();

  /// Deletes a customer's entries up to a date and including it. The others keep their stored
  /// balances, in which the deleted past still counts; Saldo and Saldo_actual no longer see it.
  void DeleteToDate(const Variant& vId, const Variant& dtFecha, ObjCn cnnActive = {}) const;

  /// Parameters of Modificarnovale, in their order. The series, the text and the side are not
  /// written, and the state is not changed.
  using Correccion = EntryOf<InOut<std::int16_t>>;
  /// Writes new amounts into the entries of a document, and moves the balances of the customer's
  /// entries of a higher Id, from the day on, by the whole new movement. The entry's own balance
  /// counts its old amounts a second time where it is not dated later than `dtFecha`. So balances
  /// are right only after UpdateTotal. The time of `dtFecha` counts for the one and not for the
  /// other.
  ///
  /// Raises 3021, with nothing changed, for a document without entries.
  void Modificarnovale(const Correccion& correccion) const;

  /// Balance of a customer over all his entries, in the shop's format of amounts.
  double Saldo_actual(std::string_view sCod, ObjCn objCn = {}) const;
  /// Id of the first entry of a document. Raises 3021 where it has none.
  double GetId(std::int16_t iEst, const Variant& vDoc, ObjCn objCn = {}) const;
};

}  // namespace tavelor
