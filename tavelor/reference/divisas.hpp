// SPDX-License-Identifier: MIT
// Currencies.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Currencies with their value, one of them the default.
class TAVELOR_API ClsDivisas final : public OpensOnConnection {
 public:
  ClsDivisas();
  std::string typeName() const override { return "ClsDivisas"; }
  static const Component& component();

  /// Value in euros of the default currency; 1 without one, so that a shop counts in euros.
  Variant ValorEuro(ObjCn objCn = {}) const;
  /// Whether any row is the default one.
  bool ExistePredeterminada(ObjCn objCn = {}) const;
  /// Code of the default currency, or Empty.
  Variant GetPredeterminada(ObjCn objCn = {}) const;
  /// Value of a currency; 0 where it is null. A code that is not there raises 3021.
  Variant GetValor(const Variant& vId, ObjCn objCn = {}) const;

 private:
  void setDefaults(bool bDefVal) override;
};

}  // namespace tavelor
