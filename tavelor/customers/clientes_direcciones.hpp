// SPDX-License-Identifier: MIT
// Delivery addresses of customers.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The delivery addresses of customers. Nothing keeps one default address a customer: of several
/// the first that the database gives is taken.
class TAVELOR_API ClsClientesDirecciones final : public OpensByWordOnConnection {
 public:
  ClsClientesDirecciones();
  std::string typeName() const override { return "ClsClientesDirecciones"; }
  static const Component& component();

  /// The text file of the class, in the report folder.
  std::string GetTxtFile() const;

  /// An address, as the three members below give it; each gives the fields of its parameters.
  struct Direccion {
    Variant id = {};  ///< the customer; of GetDatosCabeceraSeleccion the address
    std::string idTel = {};
    std::string sNif = {};
    std::string sNombre = {};
    std::string sEmpresa = {};
    std::string sDireccion = {};
    std::string sCp = {};
    std::string sPoblacion = {};
    std::string sProvincia = {};
    Variant vIdDir = {};              ///< key of the address
    std::string sTransportista = {};  ///< "no" where it is Null
    ObjCn objCn = {};
  };
  /// The first address of a customer. A column that is Null leaves its field as it came, and where
  /// there is no row all are left.
  void GetDatosCabecera(Direccion& direccion) const;
  /// The same of his default address, with its key and its carrier.
  void GetDatosPredeterminada(Direccion& direccion) const;
  /// The same of the address of that key, with its carrier.
  void GetDatosCabeceraSeleccion(Direccion& direccion) const;

  /// The carrier of a customer's address; "no" where there is no such address or it has none.
  std::string GetTransportista(const Variant& id, const Variant& vIdDir, ObjCn objCn = {}) const;
  /// Whether the customer has a default address.
  bool ExistePredeterminada(const Variant& id, ObjCn objCn = {}) const;
  /// Whether the customer has any address.
  bool ExistenDirecciones(const Variant& id, ObjCn objCn = {}) const;
  /// Whether that address is the customer's.
  bool EsValida(const Variant& id, const Variant& vIdDir, ObjCn objCn = {}) const;

  /// The current row. Fields that the list does not show, and Null ones, are left as they came;
  /// errors are passed over.
  void ObtenerRegistroActivo(InOut<Variant> vId, InOut<std::string> sNombre,
                             InOut<std::string> sEmpresa, InOut<std::string> sDireccion,
                             InOut<std::string> sCp, InOut<std::string> sPoblacion,
                             InOut<std::string> sProvincia, InOut<std::string> sTelefono) const;
  /// Keys of a customer's addresses.
  std::vector<Variant> ObtenerColActivos(const Variant& id, ObjCn objCn = {}) const;
  /// The mail address of a customer's address; "no" where there is none.
  std::string ObtenerMailDoc(const Variant& id, const Variant& vIdDir, ObjCn objCn = {}) const;
  /// Deletes the addresses of a customer.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;

 protected:
  void setDefaults(bool bDefVal) override;

 private:
  RecordsetPtr readAddress(Statement::Constant before, Statement::Constant after,
                           Statement::Constant condition, Direccion& direccion) const;
};

}  // namespace tavelor
