// SPDX-License-Identifier: MIT
// The supplier master.
#pragma once

#include "tavelor/companions/business_partner.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Who sells to the shop or works for it: names, address, accounts, conditions and what invoices
/// need, one row a supplier. One with `Sub` set is a subcontractor, whom the usual list leaves out.
///
/// Values are joined into statements without escaping: a quote in a code or a name raises the
/// database's syntax error. Members that read suppliers beside the primary record set keep no
/// state.
class TAVELOR_API ClsProveedores final : public BusinessPartner {
 public:
  ClsProveedores();
  std::string typeName() const override { return "ClsProveedores"; }
  static const Component& component();

  /// Full path of the class's text file.
  std::string GetTxtFile() const;

  /// Adds a row; with `bDefVal`, filled with what a new supplier begins with: no subcontractor. The
  /// record set must show the whole supplier.
  void AddNew(bool bDefVal = false);
  /// Makes the supplier of the current row a subcontractor, or none; Update writes it. Raises 3265
  /// in modes that do not show it.
  void Update_Sub(bool bsub = false);
  const Flag esSubcontratado;  ///< in use or not; false for no supplier

  /// Whether there is a usable supplier; gives its legal name, "No válido" for Null. Without one
  /// `sRazon` stays as it came.
  bool GetRazon_Social(const Variant& id, InOut<std::string> sRazon, ObjCn objCn = {}) const;
  const Text GetRazonSocial;  ///< the same name; "" for no usable supplier

  /// Whether the supplier is there.
  bool GetDatosFacturacion(Facturacion& datos) const;

  /// Parameters of GetDatosFacturar, in their order.
  struct Facturar {
    Variant id = {};  ///< goes in, and comes back as it is stored
    std::string sBanco = {};
    double dBonificacion = 0;
    double dImpBonif = 0;  ///< from which amount the bonus is due
    std::string sFactura_A = {};
    std::string sFactura_B = {};
    std::string sFactura_C = {};
    std::string sDocumento_P = {};
    std::string sDocumento_A = {};
    std::string sDocumento_F = {};
    ObjCn objCn = {};
  };
  /// What a usable supplier brings to an invoice. Outputs whose column is Null, and all of them
  /// where there is no such supplier, stay as they came.
  void GetDatosFacturar(Facturar& datos) const;

 private:
  void setDefaults(bool bDefVal) override;
};

}  // namespace tavelor
