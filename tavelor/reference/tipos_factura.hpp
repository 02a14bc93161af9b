// SPDX-License-Identifier: MIT
// Invoice types.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Layout flags and texts of an invoice type; one type is the default.
class TAVELOR_API ClsTiposFactura final : public OpensByWord {
 public:
  ClsTiposFactura();
  std::string typeName() const override { return "ClsTiposFactura"; }
  static const Component& component();

  /// Description of the default row, or Empty.
  Variant GetPredeterminada(ObjCn objCn = {}) const;
  /// Whether any row is the default one.
  bool ExistePredeterminada(ObjCn objCn = {}) const;

  /// Parameters of GetDatos, in their order.
  struct Datos {
    std::string vId = {};
    bool bTotalizada = false;
    std::string sTxtTotal = {};
    bool bDesglose = false;
    std::string stexto = {};
    bool bRenumerada = false;
    bool bReferencia = false;
    std::string sTxtRef = {};
    bool bPedido = false;
    std::string sTxtPed = {};
    bool bAlbaran = false;
    std::string sTxtAlb = {};
    bool bFecha = false;
    std::string sTxtfch = {};
    bool bTotal = false;
    std::string sTextoTotal = {};
    ObjCn objCn = {};
  };
  /// Layout of one type. What is null leaves its field as it came; raises 3021 for a type that is
  /// not there.
  void GetDatos(Datos& datos) const;
  /// Loads a picture into the current row. The table has no column for it, so that a file that is
  /// there raises 3265.
  void ReadBLOB(InOut<std::string> Source);

 private:
  void setDefaults(bool bDefVal) override;
};

}  // namespace tavelor
