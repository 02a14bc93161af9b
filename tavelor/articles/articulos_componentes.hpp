// SPDX-License-Identifier: MIT
// What packages are made of.
#pragma once

#include <memory>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class CollectionRegistros;
class Component;

/// The components of packages, one level deep: a component may be a package itself, and comes back
/// as one entry.
class TAVELOR_API ClsArticulosComponentes final : public OpensByWord {
 public:
  ClsArticulosComponentes();
  std::string typeName() const override { return "ClsArticulosComponentes"; }
  static const Component& component();

  /// What `dCant` packages take from the warehouse `vIdAlm`, an entry a row of the primary record
  /// set, which must show one package (mode "seleccion"). Quantities are in stock units, as single
  /// precision; a Null one is 0, and one that single precision does not hold raises 6. Without a
  /// current row it is empty; else the set stands on the first row afterwards.
  std::shared_ptr<CollectionRegistros> GetCollectionRegs(const Variant& vIdAlm, double dCant);
  /// Deletes the components of a package.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Whether the package `vIdSec` does not have the component `vId`.
  bool CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;
};

}  // namespace tavelor
