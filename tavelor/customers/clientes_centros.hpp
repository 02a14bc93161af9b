// SPDX-License-Identifier: MIT
// Administrative centres of customers.
#pragma once

#include <string>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The administrative centres of public customers: who keeps the accounts, who manages, who handles
/// the papers. A customer and a role find one centre; nothing keeps the pair single.
class TAVELOR_API ClsClientesCentros final : public OpensByWordOnConnection {
 public:
  ClsClientesCentros();
  std::string typeName() const override { return "ClsClientesCentros"; }
  static const Component& component();

  /// The text file of the class, in the report folder.
  std::string GetTxtFile() const;

  /// Parameters of GetDatosCentro, in their order.
  struct Centro {
    Variant id = {};           ///< the customer
    std::string sRole = {};    ///< code of the role
    std::string sCentro = {};  ///< code of the centre
    std::string sNombre = {};
    std::string sTipo = {};  ///< the role, as stored
    std::string sDireccion = {};
    std::string sCp = {};
    std::string sPoblacion = {};
    std::string sProvincia = {};
    std::string sTelefono = {};
    std::string sMail = {};
    ObjCn objCn = {};
  };
  /// The centre of a customer in a role. A column that is Null leaves its field as it came, and
  /// where there is no row all are left.
  void GetDatosCentro(Centro& centro) const;
  /// Whether the customer has a centre in any role.
  bool ExistenCentros(const Variant& id, ObjCn objCn = {}) const;
  /// Keys of a customer's centres.
  std::vector<Variant> ObtenerColActivos(const Variant& id, ObjCn objCn = {}) const;
  /// Deletes the centres of a customer.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
};

}  // namespace tavelor
