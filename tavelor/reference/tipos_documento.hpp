// SPDX-License-Identifier: MIT
// Document types and the company behind them.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The company data and the logo that a document type prints; one type is the default.
class TAVELOR_API ClsTiposDocumento final : public OpensOnConnection {
 public:
  ClsTiposDocumento();
  std::string typeName() const override { return "ClsTiposDocumento"; }
  static const Component& component();

  /// Whether the current row is the default one. False on any error.
  bool bEsPredeterminada() const;
  /// Whether an identifier is that of a natural person: its first letter, blanks left out, is an N.
  bool VerificaeEsPersonaFisica(std::string_view sId) const;
  /// Description of the default row, or Empty.
  Variant GetPredeterminada(ObjCn objCn = {}) const;
  /// Code of the default row, or Empty.
  Variant GetCodPredeterminada(ObjCn objCn = {}) const;

  /// Issuer data. Parameters of the members below, each taking those that it names; what is null,
  /// or has no row, leaves its field as it came.
  struct Datos {
    std::string sCod = {};  ///< of GetDatosCabecera and GetDatosEmpresa
    std::string sNom = {};
    std::string sEmpr = {};
    std::string sNif = {};
    std::string sdir = {};
    std::string sCp = {};
    std::string sPob = {};
    std::string sProv = {};  ///< of GetDatosEmpresa
    std::string stel = {};
    std::string sMail = {};  ///< of GetDatosEmpresa
    std::string sPie = {};   ///< of GetDatosPredeterminada
    std::string sCom = {};   ///< of GetDatosPredeterminada
    ObjCn objCn = {};
    bool bPredeterminada = false;  ///< of GetDatosEmpresa: the default row instead of `sCod`
  };
  /// Of the default row.
  void GetDatosPredeterminada(Datos& datos) const;
  /// Licence text of the default row, "Pendiente" where it is null; without a row it stays as it
  /// is.
  void GetLicencia_predeterminada(InOut<std::string> sLicencia, ObjCn objCn = {}) const;
  /// Of the type `sCod`.
  void GetDatosCabecera(Datos& datos) const;
  /// Of the type `sCod`, or of the default row.
  void GetDatosEmpresa(Datos& datos) const;
  /// Whether any row is the default one.
  bool ExistePredeterminada(ObjCn objCn = {}) const;
  /// Whether the default row's issuer is a natural person; false without a row.
  bool esPersonaFisica(ObjCn objCn = {}) const;
  /// Loads a picture into the current row; see readLogotipo().
  void ReadBLOB(InOut<std::string> Source);
};

}  // namespace tavelor
