// SPDX-License-Identifier: MIT
// Contacts.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// People and companies that are neither customer nor supplier.
class TAVELOR_API ClsContactos final : public OpensOnConnection {
 public:
  ClsContactos();
  std::string typeName() const override { return "ClsContactos"; }
  static const Component& component();

  /// Whether any row is the default one.
  bool ExistePredeterminada(ObjCn objCn = {}) const;
  /// Name of the default contact, or Empty.
  Variant GetPredeterminada(ObjCn objCn = {}) const;
  /// The text file of the class, in the report folder.
  std::string GetTxtFile() const;

  /// The current row, as ObtenerRegistroActivo gives it.
  struct Registro {
    std::string sCod = {};
    std::string sNom = {};
    std::string sEmpr = {};
    std::string sdir = {};
    std::string sCp = {};
    std::string sPob = {};
    std::string sProv = {};
    std::string stel = {};
    std::string stel2 = {};
    std::string sMovil = {};
    std::string sFax = {};
    std::string sMail = {};
    std::string sHttp = {};
    std::string sContacto = {};
    std::string sNif = {};
    std::string sTipo = {};
    std::string sExternalID = {};
  };
  /// Reads the current row; what is null leaves its field as it came. Raises 3021 without a row.
  void ObtenerRegistroActivo(Registro& registro) const;
};

}  // namespace tavelor
