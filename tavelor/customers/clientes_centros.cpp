// SPDX-License-Identifier: MIT
// ClsClientesCentros, administrative centres of customers.
#include "tavelor/customers/clientes_centros.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Clientes_Centros: the centre CentreCode of the customer Codigo in the role RoleTypeCode.

namespace {

constexpr std::string_view kTodos =
    "SELECT ID, Codigo as Código, CentreCode as Centro,  Name as Nombre, RoleTypeCode as Tipo,"
    " Direccion as Dirección, Codigo_Postal, Poblacion as Población, Provincia,"
    " Telefono as Teléfono, E_Mail FROM Clientes_Centros";

constexpr std::array kModes = {
    Mode{"cliente", kTodos, " WHERE Codigo =  '{id}'"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Clientes_Centros",
    .table = "Clientes_Centros",
    .codeColumn = "Id",
    .modes = kModes,
    .freeCode = "SELECT Codigo FROM Clientes_Centros where ID ='{id}'",
    .addNew = AddNewForm::kShort,
    .find = FindForm::kPrefix,
};

}  // namespace

ClsClientesCentros::ClsClientesCentros() : OpensByWordOnConnection(kInfo) {}

std::string ClsClientesCentros::GetTxtFile() const {
  return reportFile("Clientes_Centros.txt");
}

void ClsClientesCentros::GetDatosCentro(Centro& centro) const {
  Statement statement = withId(
      "SELECT CentreCode as Centro, Name as Nombre, RoleTypeCode as Tipo,  Direccion,"
      " Codigo_Postal, Poblacion, Provincia, telefono, e_mail FROM Clientes_Centros"
      " WHERE ( Codigo =  '{id}' and RoleTypeCode ='",
      centro.id);
  statement << spliced(centro.sRole) << "')";
  const RecordsetPtr rows = read(statement, *centro.objCn);
  if (rows->RecordCount() == 0) return;
  takeColumn(*rows, "Centro", centro.sCentro);
  takeColumn(*rows, "Nombre", centro.sNombre);
  takeColumn(*rows, "Tipo", centro.sTipo);
  takeColumn(*rows, "Direccion", centro.sDireccion);
  takeColumn(*rows, "Codigo_Postal", centro.sCp);
  takeColumn(*rows, "Poblacion", centro.sPoblacion);
  takeColumn(*rows, "Provincia", centro.sProvincia);
  takeColumn(*rows, "telefono", centro.sTelefono);
  takeColumn(*rows, "e_mail", centro.sMail);
}

bool ClsClientesCentros::ExistenCentros(const Variant& id, ObjCn objCn) const {
  return anyRow(withId("SELECT Codigo  FROM Clientes_Centros where((Codigo ='{id}'))", id), *objCn);
}

std::vector<Variant> ClsClientesCentros::ObtenerColActivos(const Variant& id, ObjCn objCn) const {
  return columnValues(
      *read(withId("SELECT Id FROM Clientes_Centros WHERE ( Codigo = '{id}')", id), *objCn), "Id");
}

void ClsClientesCentros::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Clientes_Centros WHERE (Codigo = '{id}')", vId), *cnnActive);
}

const Component& ClsClientesCentros::component() {
  using C = ClsClientesCentros;
  static const Component table(
      "ClsClientesCentros", "{A4D2E7C1-5B38-4F06-8C9D-7E1F60B3D503}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("GetTxtFile", &C::GetTxtFile),
          member(
              "GetDatosCentro", &C::GetDatosCentro,
              {parameter("id", &Centro::id), parameter("sRole", &Centro::sRole),
               parameter("out sCentro", &Centro::sCentro),
               parameter("out sNombre", &Centro::sNombre), parameter("out sTipo", &Centro::sTipo),
               parameter("out sDireccion", &Centro::sDireccion), parameter("out sCp", &Centro::sCp),
               parameter("out sPoblacion", &Centro::sPoblacion),
               parameter("out sProvincia", &Centro::sProvincia),
               parameter("out sTelefono", &Centro::sTelefono),
               parameter("out sMail", &Centro::sMail), parameter("[objCn]", &Centro::objCn)}),
          member("ExistenCentros", &C::ExistenCentros, "id, [objCn]"),
          member("ObtenerColActivos", &C::ObtenerColActivos, "id, [objCn]"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id], [inout cnnActive]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
