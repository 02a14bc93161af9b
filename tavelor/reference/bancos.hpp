// SPDX-License-Identifier: MIT
// The owner's bank accounts.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The catalogue of the owner's bank accounts: a text code, a description, one default row and a
/// few look-ups. Every look-up is a read of its own; a value that is not escaped by the caller
/// breaks its statement and raises the database's syntax error.
class TAVELOR_API ClsBancos final : public OpensByWord {
 public:
  ClsBancos();
  std::string typeName() const override { return "ClsBancos"; }
  static const Component& component();

  /// Code of the default bank, or Empty. With several default rows the first one that the database
  /// gives wins: nothing keeps the flag unique.
  Variant GetPredeterminada(ObjCn objCn = {}) const;
  /// Whether any row is the default one.
  bool ExistePredeterminada(ObjCn objCn = {}) const;

  /// IBAN and BIC of an account, "0" for what is null. The code "0" answers "00" and "ND" without
  /// touching the database. A code that does not exist raises 3021.
  void GetIbanBic(const Variant& vId, InOut<std::string> sIban, InOut<std::string> sBic,
                  ObjCn objCn = {}) const;

  /// The account as a document prints it. Raises 3021 for a code that does not exist.
  Variant GetValor(const Variant& vId, ObjCn objCn = {}) const;

  /// Web address of the bank, or a placeholder where it is null. Raises 3021 for a code that does
  /// not exist.
  Variant GetWeb(const Variant& vId, ObjCn objCn = {}) const;

  /// Quick creation from another form. `vId` is overwritten by the new code, padded with zeros to
  /// five characters; that is also the result. The row's code carries a blank behind it.
  std::string CrearBanco(InOut<Variant> vId, std::string_view sBanco, ObjCn objCn = {}) const;
};

}  // namespace tavelor
