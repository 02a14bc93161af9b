// SPDX-License-Identifier: MIT
// Article families.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Article families, in the main and in the import database.
class TAVELOR_API clsFamilias final : public OpensByWord {
 public:
  clsFamilias();
  std::string typeName() const override { return "clsFamilias"; }
  static const Component& component();

  /// The same, of the historic database when `bHistorico` is true.
  void GetConnectionStrToRpt(InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                             InOut<std::string> sCatalog, InOut<std::string> sUser,
                             InOut<std::string> sPasw, bool bHistorico = false) const;
  /// "Familia" for a code that is not there, "No" for a Null one.
  std::string GetDescripcion(const Variant& vId, ObjCn objCn = {}) const;
  /// The first code that the database gives, or Empty.
  Variant GetFirst(ObjCn objCn = {}) const;
  /// Description of a family, or Empty.
  Variant GetValor(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether there is a family with that code.
  bool ExisteFam(const Variant& vId, ObjCn objCn = {}) const;
  /// Gives a family another description. A code that is not there is passed over.
  void CambiarDescripcionaFamilia(const Variant& vId, std::string_view sDescrip,
                                  ObjCn cnnActive = {}) const;
  /// Adds a family. Raises the integrity error for a code that is there.
  void Insertar(const Variant& vId, std::string_view sDescripcion, ObjCn objCn = {}) const;
  /// Codes of the families of the import database.
  std::vector<Variant> ObtenerFamiliasImport(ObjCn objCn = {}) const;
  /// Description of a family of the import database; what is not there leaves it as it is.
  void GetDatosImport(const Variant& vId, InOut<std::string> sDescripcion, ObjCn objCn = {}) const;

 private:
  void setDefaults(bool bDefVal) override;
};

}  // namespace tavelor
