// SPDX-License-Identifier: MIT
// ClsContactos, contacts.
#include "tavelor/reference/contactos.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Contactos.

namespace {

// Contacto stands twice in the list, the second time under the name Tipo.
constexpr std::array kModes = {
    Mode{"seleccion",
         "SELECT Codigo AS Código, Razon_social AS Descripción FROM "
         "Contactos"
         " WHERE ( activo <> 0 )"},
    Mode{kAnyOtherWord,
         "SELECT Codigo AS Código, Nombre, Razon_Social as Empresa, Contacto, NIF, Direccion as "
         "Dirección, Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono, "
         "Telefono_2 as Teléfono_2, Movil as Móvil, Fax, E_Mail, Http, Contacto as Tipo, "
         "ExternalID FROM "
         "Contactos"},
};

constexpr ClassInfo kInfo = {
    .word = "Contactos", .table = "Contactos", .modes = kModes, .find = FindForm::kPrefix};

}  // namespace

ClsContactos::ClsContactos() : OpensOnConnection(kInfo) {}

bool ClsContactos::ExistePredeterminada(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM "
                          "Contactos"
                          " where predeterminada <> 0"),
                objCn);
}

Variant ClsContactos::GetPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT Razon_social as ds FROM "
                          "Contactos"
                          " where predeterminada <> 0"),
                "ds", objCn);
}

std::string ClsContactos::GetTxtFile() const {
  return reportFile("Contactos.txt");
}

void ClsContactos::ObtenerRegistroActivo(Registro& registro) const {
  Recordset& rows = primary();
  takeColumn(rows, "Código", registro.sCod);
  takeColumn(rows, "Nombre", registro.sNom);
  takeColumn(rows, "Empresa", registro.sEmpr);
  takeColumn(rows, "Dirección", registro.sdir);
  takeColumn(rows, "Codigo_Postal", registro.sCp);
  takeColumn(rows, "Población", registro.sPob);
  takeColumn(rows, "Provincia", registro.sProv);
  takeColumn(rows, "Teléfono", registro.stel);
  takeColumn(rows, "Teléfono_2", registro.stel2);
  takeColumn(rows, "Móvil", registro.sMovil);
  takeColumn(rows, "Fax", registro.sFax);
  takeColumn(rows, "E_Mail", registro.sMail);
  takeColumn(rows, "Http", registro.sHttp);
  takeColumn(rows, "Contacto", registro.sContacto);
  takeColumn(rows, "NIF", registro.sNif);
  takeColumn(rows, "Tipo", registro.sTipo);
  takeColumn(rows, "ExternalID", registro.sExternalID);
}

const Component& ClsContactos::component() {
  using C = ClsContactos;
  static const Component table(
      "ClsContactos", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B016}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("ExistePredeterminada", &C::ExistePredeterminada, "[objCn]"),
          member("GetPredeterminada", &C::GetPredeterminada, "[objCn]"),
          member("GetTxtFile", &C::GetTxtFile),
          member(
              "ObtenerRegistroActivo", &C::ObtenerRegistroActivo,
              {parameter("out sCod", &Registro::sCod), parameter("out sNom", &Registro::sNom),
               parameter("out sEmpr", &Registro::sEmpr), parameter("out sdir", &Registro::sdir),
               parameter("out sCp", &Registro::sCp), parameter("out sPob", &Registro::sPob),
               parameter("out sProv", &Registro::sProv), parameter("out stel", &Registro::stel),
               parameter("out stel2", &Registro::stel2), parameter("out sMovil", &Registro::sMovil),
               parameter("out sFax", &Registro::sFax), parameter("out sMail", &Registro::sMail),
               parameter("out sHttp", &Registro::sHttp),
               parameter("out sContacto", &Registro::sContacto),
               parameter("out sNif", &Registro::sNif), parameter("out sTipo", &Registro::sTipo),
               parameter("out sExternalID", &Registro::sExternalID)}),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
