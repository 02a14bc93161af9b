// SPDX-License-Identifier: MIT
// ClsClientesDirecciones, delivery addresses of customers.
#include "tavelor/customers/clientes_direcciones.hpp"

#include <array>
#include <utility>

#include "tavelor/companions/active_row.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Clientes_Direcciones: an address of the customer Codigo, and its carrier.

namespace {

constexpr std::string_view kTodos =
    "SELECT ID, Codigo as Código, Nombre, Razon_Social as Empresa, Direccion as Dirección,"
    " Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono,"
    " Telefono_2 as Teléfono_2, Fax, Movil as Móvil, E_Mail, Http, Predeterminada, Transportista"
    " FROM Clientes_Direcciones";
constexpr std::string_view kDeCliente = " WHERE Codigo =  '{id}'";

constexpr std::array kModes = {
    Mode{"cliente", kTodos, kDeCliente},
    Mode{"seleccion",
         "SELECT ID as Código, Nombre as Descripción, Razon_Social as Empresa,"
         " Direccion as Dirección, Codigo_Postal, Poblacion as Población, Provincia, Transportista"
         " FROM Clientes_Direcciones",
         kDeCliente},
    Mode{"clsclientesdirecciones",
         "SELECT Clientes.Codigo as Código, Clientes_Direcciones.Id as Descripción,"
         " Clientes.Razon_Social as Cliente, Clientes_Direcciones.Nombre,"
         " Clientes_Direcciones.Razon_Social as Empresa,"
         " Clientes_Direcciones.Direccion as Dirección, Clientes_Direcciones.Codigo_Postal,"
         " Clientes_Direcciones.Poblacion as Población, Clientes_Direcciones.Provincia"
         " FROM Clientes INNER JOIN Clientes_Direcciones"
         " ON Clientes.Codigo = Clientes_Direcciones.Codigo"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Clientes_Direcciones",
    .table = "Clientes_Direcciones",
    .codeColumn = "Id",
    .modes = kModes,
    .freeCode = "SELECT Codigo FROM Clientes_Direcciones where ID ='{id}'",
};

/// An answer for a carrier or a mail address that is not there.
constexpr std::string_view kNone = "no";

constexpr std::string_view kAddress =
    "Nombre, Razon_Social as Empresa, NIF,  Direccion, Codigo_Postal, Poblacion, Provincia,"
    " telefono";

Statement ofPair(Statement::Constant before, const std::string& first, Statement::Constant between,
                 const std::string& second, Statement::Constant after) {
  Statement statement(before);
  statement << spliced(first) << between << spliced(second) << after;
  return statement;
}

}  // namespace

ClsClientesDirecciones::ClsClientesDirecciones() : OpensByWordOnConnection(kInfo) {}

std::string ClsClientesDirecciones::GetTxtFile() const {
  return reportFile("Clientes_Direcciones.txt");
}

// ---------------------------------------------------------------------------------------------
// Addresses

RecordsetPtr ClsClientesDirecciones::readAddress(Statement::Constant before,
                                                 Statement::Constant after,
                                                 Statement::Constant condition,
                                                 Direccion& direccion) const {
  Statement statement("SELECT ");
  statement << before << kAddress << after << " FROM Clientes_Direcciones WHERE"
            << withId(condition, direccion.id);
  RecordsetPtr rows = read(statement, *direccion.objCn);
  if (rows->RecordCount() == 0) return nullptr;
  takeColumn(*rows, "telefono", direccion.idTel);
  takeColumn(*rows, "NIF", direccion.sNif);
  takeColumn(*rows, "Nombre", direccion.sNombre);
  takeColumn(*rows, "Empresa", direccion.sEmpresa);
  takeColumn(*rows, "Direccion", direccion.sDireccion);
  takeColumn(*rows, "Codigo_Postal", direccion.sCp);
  takeColumn(*rows, "Poblacion", direccion.sPoblacion);
  takeColumn(*rows, "Provincia", direccion.sProvincia);
  return rows;
}

void ClsClientesDirecciones::GetDatosCabecera(Direccion& direccion) const {
  readAddress("", "", " ( Codigo =  '{id}')", direccion);
}

void ClsClientesDirecciones::GetDatosPredeterminada(Direccion& direccion) const {
  const RecordsetPtr rows = readAddress("ID, ", ", Transportista",
                                        " ( Codigo =  '{id}' and Predeterminada <> 0)", direccion);
  if (!rows) return;
  direccion.vIdDir = rows->Field("ID").Value();
  direccion.sTransportista = kNone;
  takeColumn(*rows, "Transportista", direccion.sTransportista);
}

void ClsClientesDirecciones::GetDatosCabeceraSeleccion(Direccion& direccion) const {
  const RecordsetPtr rows = readAddress("", ", Transportista", " ( ID =  '{id}')", direccion);
  if (!rows) return;
  direccion.sTransportista = kNone;
  takeColumn(*rows, "Transportista", direccion.sTransportista);
}

std::string ClsClientesDirecciones::GetTransportista(const Variant& id, const Variant& vIdDir,
                                                     ObjCn objCn) const {
  const Variant carrier =
      lookUp(ofPair("SELECT Transportista FROM Clientes_Direcciones WHERE ( Codigo =  '",
                    joined(id), "' and ID =  '", joined(vIdDir), "')"),
             "Transportista", *objCn);
  return carrier.isEmpty() ? std::string(kNone) : joined(carrier);
}

bool ClsClientesDirecciones::ExistePredeterminada(const Variant& id, ObjCn objCn) const {
  return anyRow(withId("SELECT Codigo  FROM Clientes_Direcciones"
                       " where((Codigo ='{id}') and ( predeterminada <> 0))",
                       id),
                *objCn);
}

bool ClsClientesDirecciones::ExistenDirecciones(const Variant& id, ObjCn objCn) const {
  return anyRow(withId("SELECT Codigo  FROM Clientes_Direcciones where((Codigo ='{id}'))", id),
                *objCn);
}

bool ClsClientesDirecciones::EsValida(const Variant& id, const Variant& vIdDir, ObjCn objCn) const {
  return anyRow(ofPair("SELECT Codigo  FROM Clientes_Direcciones where((Codigo ='", joined(id),
                       "') and ( ID ='", joined(vIdDir), "'))"),
                *objCn);
}

// ---------------------------------------------------------------------------------------------
// Rows

void ClsClientesDirecciones::ObtenerRegistroActivo(
    InOut<Variant> vId, InOut<std::string> sNombre, InOut<std::string> sEmpresa,
    InOut<std::string> sDireccion, InOut<std::string> sCp, InOut<std::string> sPoblacion,
    InOut<std::string> sProvincia, InOut<std::string> sTelefono) const {
  takeActiveRow(primary(), {*vId, *sNombre, *sEmpresa, *sDireccion, *sCp, *sPoblacion, *sProvincia,
                            *sTelefono});
}

std::vector<Variant> ClsClientesDirecciones::ObtenerColActivos(const Variant& id,
                                                               ObjCn objCn) const {
  return columnValues(
      *read(withId("SELECT Id FROM Clientes_Direcciones WHERE ( Codigo = '{id}')", id), *objCn),
      "Id");
}

std::string ClsClientesDirecciones::ObtenerMailDoc(const Variant& id, const Variant& vIdDir,
                                                   ObjCn objCn) const {
  const Variant mail = lookUp(ofPair("SELECT E_Mail FROM Clientes_Direcciones WHERE codigo = '",
                                     joined(id), "' and ID = '", joined(vIdDir), "'"),
                              "E_Mail", *objCn);
  return mail.isEmpty() ? std::string(kNone) : joined(mail);
}

void ClsClientesDirecciones::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Clientes_Direcciones WHERE (Codigo = '{id}')", vId), *cnnActive);
}

// A new address is not the default one. The list for choosing does not show the flag, and the
// table's default applies there.
void ClsClientesDirecciones::setDefaults(bool bDefVal) {
  constexpr std::int32_t kFieldsOfChoice = 8;
  Recordset& rows = primary();
  if (bDefVal && rows.Fields().Count() > kFieldsOfChoice) {
    rows.Field("Predeterminada").Value(std::int32_t{0});
  }
}

namespace {

using Direccion = ClsClientesDirecciones::Direccion;

/// Those of the three members that read an address, then `more`, then the connection.
std::vector<AggregateParameter<Direccion>> addressParameters(
    const std::vector<AggregateParameter<Direccion>>& more = {}) {
  std::vector<AggregateParameter<Direccion>> all = {
      parameter("id", &Direccion::id),
      parameter("out idTel", &Direccion::idTel),
      parameter("out sNif", &Direccion::sNif),
      parameter("out sNombre", &Direccion::sNombre),
      parameter("out sEmpresa", &Direccion::sEmpresa),
      parameter("out sDireccion", &Direccion::sDireccion),
      parameter("out sCp", &Direccion::sCp),
      parameter("out sPoblacion", &Direccion::sPoblacion),
      parameter("out sProvincia", &Direccion::sProvincia),
      parameter("[objCn]", &Direccion::objCn),
  };
  return withParameters(std::move(all), more);
}

}  // namespace

const Component& ClsClientesDirecciones::component() {
  using C = ClsClientesDirecciones;
  static const Component table(
      "ClsClientesDirecciones", "{A4D2E7C1-5B38-4F06-8C9D-7E1F60B3D502}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("GetTxtFile", &C::GetTxtFile),
          member("GetDatosCabecera", &C::GetDatosCabecera, addressParameters()),
          member("GetDatosPredeterminada", &C::GetDatosPredeterminada,
                 addressParameters({parameter("out vIdDir", &Direccion::vIdDir),
                                    parameter("out sTransportista", &Direccion::sTransportista)})),
          member("GetTransportista", &C::GetTransportista, "id, vIdDir, [objCn]"),
          member("GetDatosCabeceraSeleccion", &C::GetDatosCabeceraSeleccion,
                 addressParameters({parameter("out sTransportista", &Direccion::sTransportista)})),
          member("ExistePredeterminada", &C::ExistePredeterminada, "id, [objCn]"),
          member("ExistenDirecciones", &C::ExistenDirecciones, "id, [objCn]"),
          member("EsValida", &C::EsValida, "id, vIdDir, [objCn]"),
          member("ObtenerRegistroActivo", &C::ObtenerRegistroActivo, kActiveRowParameters),
          member("ObtenerColActivos", &C::ObtenerColActivos, "id, [objCn]"),
          member("ObtenerMailDoc", &C::ObtenerMailDoc, "id, vIdDir, [objCn]"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id], [inout cnnActive]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
