// SPDX-License-Identifier: MIT
// Payment methods.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Payment methods: instalments and their days, what a sale paid so leaves behind, and accounts.
class TAVELOR_API ClsFormasPago final : public OpensOnConnection {
 public:
  ClsFormasPago();
  std::string typeName() const override { return "ClsFormasPago"; }
  static const Component& component();

  /// Whether any row is the default one.
  bool ExistePredeterminada(ObjCn objCn = {}) const;
  /// Whether any method is cash.
  bool ExisteContado(ObjCn objCn = {}) const;
  /// Description of the default method, or Empty.
  Variant GetPredeterminada(ObjCn objCn = {}) const;
  /// Code of the default method, or Empty.
  Variant GetCodPredeterminada(ObjCn objCn = {}) const;
  /// The day of payment; this and the next two are Empty without a row or a value.
  Variant GetDiaPago(const Variant& vId, ObjCn objCn = {}) const;
  /// Surcharge in percent.
  Variant GetRecargo(const Variant& vId, ObjCn objCn = {}) const;
  /// Number of instalments.
  Variant GetVencimientos(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether the method leaves withheld tax alone; false without a row.
  bool NoActualizarIrpf(const Variant& vId, ObjCn objCn = {}) const;

  /// Parameters of GetPropiedades, in their order.
  struct Propiedades {
    Variant vId = {};
    std::int16_t iPlazos = 0;  ///< instalments; 0 unless a receipt is created
    std::int16_t iVtoA = 0;    ///< days of an instalment
    bool bCrearRecibo = false;
    std::string sCtaConta = {};
    std::string sCtaTesor = {};
    bool bCrearApunte = false;
    ObjCn objCn = {};
    bool bNoIrpf = false;
  };
  /// What a sale paid so has to do. A method without receipt leaves days and accounts as they came;
  /// a code that is not there leaves all but the instalments.
  void GetPropiedades(Propiedades& datos) const;
  /// Type code; "04" without a row or a value.
  std::string GetTipo(const Variant& vId, ObjCn objCn = {}) const;

 private:
  void setDefaults(bool bDefVal) override;
};

}  // namespace tavelor
