// SPDX-License-Identifier: MIT
// Tax rates.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Tax rates with their surcharges, one of them the default.
class TAVELOR_API ClsImpuestos final : public OpensByWord {
 public:
  ClsImpuestos();
  std::string typeName() const override { return "ClsImpuestos"; }
  static const Component& component();

  /// Rate in percent; 0 for a code that is not there.
  double GetImpuesto(InOut<Variant> vId, ObjCn objCn = {}) const;
  /// Surcharge in percent; 0 where it is null or the code is not there.
  double GetRecargo(const Variant& vId, ObjCn objCn = {}) const;
  /// Description of the default rate, or Empty.
  Variant GetPredeterminada(ObjCn objCn = {}) const;
  /// Code of the default rate, or Empty.
  Variant GetImpuestoPredeterminada(ObjCn objCn = {}) const;
  /// "Impuesto" for a code that is not there, "No" for a Null one.
  std::string GetDescripcion(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether any row is the default one.
  bool ExistePredeterminada(ObjCn objCn = {}) const;

 private:
  void setDefaults(bool bDefVal) override;
};

}  // namespace tavelor
