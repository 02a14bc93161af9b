// SPDX-License-Identifier: MIT
// The barcodes of articles.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Barcodes, each of an article; an article may have many. Nothing keeps a barcode single: callers
/// ask CodigoLibreTotal first.
class TAVELOR_API ClsArticulosCbarras final : public OpensByWord {
 public:
  ClsArticulosCbarras();
  std::string typeName() const override { return "ClsArticulosCbarras"; }
  static const Component& component();

  /// Turns all prices from pesetas to euros, once; what is Null becomes 0.
  void ActualizarEuros(ObjCn cnnActive = {}) const;
  /// The article of a barcode, or Empty.
  Variant GetArticulo(const Variant& vId, ObjCn objCn = {}) const;
  /// Deletes the barcodes of an article.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Whether the article `vIdSec` does not have the barcode `vId`.
  bool CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;
  /// Whether no article has that barcode.
  bool CodigoLibreTotal(const Variant& vId, ObjCn objCn = {}) const;
};

}  // namespace tavelor
