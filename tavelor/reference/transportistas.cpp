// SPDX-License-Identifier: MIT
// ClsTransportistas, carriers.
#include "tavelor/reference/transportistas.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Transportistas.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Nombre, Razon_Social as Empresa, Contacto, NIF, Direccion as "
    "Dirección, Codigo_Postal, Poblacion as Población, Provincia, Telefono as Teléfono, "
    "Telefono_2 as Teléfono_2, Movil as Móvil, Fax, E_Mail, Http, Activo, Forma_Pago as Pago, "
    "Divisa, Impuesto, IRPF, Descuento as Dto, Descuento_pp as Dto_PP, Predeterminada FROM "
    "Transportistas";

constexpr std::array kModes = {
    Mode{"seleccion",
         "SELECT Codigo AS Código, Razon_social AS Descripción FROM "
         "Transportistas"
         " WHERE ( activo <> 0 )"},
    Mode{"deeliminardivisa", kTodos, "  Where ( Divisa =  '{id}')"},
    Mode{"deeliminarformapago", kTodos, "  Where ( Forma_Pago =  '{id}')"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {.word = "Transportistas", .table = "Transportistas", .modes = kModes};

}  // namespace

ClsTransportistas::ClsTransportistas() : OpensOnConnection(kInfo) {}

bool ClsTransportistas::ExistePredeterminada(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM "
                          "Transportistas"
                          " where predeterminada <> 0"),
                objCn);
}

Variant ClsTransportistas::GetPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT Razon_social as ds FROM "
                          "Transportistas"
                          " where predeterminada <> 0"),
                "ds", objCn);
}

std::string ClsTransportistas::GetDescripcion(const Variant& vId, ObjCn objCn) const {
  return describe(withId("SELECT Razon_social as Descripcion"
                         " FROM Transportistas"
                         " WHERE Codigo = '{id}'",
                         vId),
                  vId, "ND", objCn);
}

// A new carrier is active, is not the default one and has no discounts. The short list shows none
// of these columns.
void ClsTransportistas::setDefaults(bool bDefVal) {
  Recordset& rows = primary();
  if (!bDefVal || rows.Fields().Count() == 2) return;
  rows.Field("Activo").Value(true);
  for (const char* flagColumn : {"Impuesto", "Predeterminada"}) rows.Field(flagColumn).Value(false);
  for (const char* percent : {"IRPF", "Dto", "Dto_PP"}) {
    rows.Field(percent).Value(std::int32_t{0});
  }
}

const Component& ClsTransportistas::component() {
  using C = ClsTransportistas;
  static const Component table(
      "ClsTransportistas", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B015}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("ExistePredeterminada", &C::ExistePredeterminada, "[objCn]"),
          member("GetPredeterminada", &C::GetPredeterminada, "[objCn]"),
          member("GetDescripcion", &C::GetDescripcion, "vId, [objCn]"),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
