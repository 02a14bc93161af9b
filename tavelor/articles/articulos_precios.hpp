// SPDX-License-Identifier: MIT
// What suppliers charge for articles.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Purchase prices, one row an article and supplier, with the supplier's own reference. No key
/// keeps a pair single; ActualizarPrecio does. Prices are in the shop's currency.
class TAVELOR_API ClsArticulosPrecios final : public OpensByWord {
 public:
  ClsArticulosPrecios();
  std::string typeName() const override { return "ClsArticulosPrecios"; }
  static const Component& component();

  /// Turns all prices from pesetas to euros, once; what is Null becomes 0.
  void ActualizarEuros(ObjCn cnnActive = {}) const;
  /// The article that a supplier calls `vId`, or Empty. Finds suppliers only whose code is stored
  /// with a blank behind it.
  Variant GetArticulo(const Variant& vId, const Variant& vIdPro, ObjCn objCn = {}) const;
  /// Writes the price of a pair, adding its row when there is none. Passes over "$$$".
  void ActualizarPrecio(const Variant& vId, const Variant& vIdPro, double dPrecio,
                        ObjCn cnnActive = {}) const;
  /// Whether there is a price of that article at that supplier.
  bool ExistePrecio(const Variant& vId, const Variant& vIdPro, ObjCn objCn = {}) const;
  /// Deletes the rows of an article or of a supplier: whatever bears that code.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Deletes the row with that key.
  void DeleteId(const Variant& vId, ObjCn cnnActive = {}) const;
  /// The price of a pair, or `dPrecio` where there is none.
  double GetPrecioCompra(const Variant& vId, const Variant& vIdProv, double dPrecio,
                         ObjCn objCn = {}) const;
  /// Whether no supplier has a price of the article `vIdSec`.
  bool CodigoLibreTotal(const Variant& vIdSec, ObjCn objCn = {}) const;
  /// Whether the supplier `vId` has no price of the article `vIdSec`.
  bool CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;
};

}  // namespace tavelor
