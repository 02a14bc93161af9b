// SPDX-License-Identifier: MIT
// ClsTiposCliente, customer types.
#include "tavelor/reference/tipos_cliente.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Tipos_Cliente.

namespace {

constexpr std::string_view kBreve =
    "SELECT codigo as Código, Descripcion as Descripción FROM Tipos_Cliente";

constexpr std::array kModes = {
    Mode{"seleccombo", kBreve, " order by Descripcion"},
    Mode{"seleccion", kBreve},
    Mode{kAnyOtherWord,
         "SELECT codigo as Código, Descripcion as Descripción, Importe FROM Tipos_Cliente"},
};

constexpr ClassInfo kInfo = {
    .word = "Tipos_Cliente", .table = "Tipos_Cliente", .codeColumn = "codigo", .modes = kModes};

}  // namespace

ClsTiposCliente::ClsTiposCliente() : OpensOnConnection(kInfo) {}

// A new type starts with no amount, which the short lists do not show.
void ClsTiposCliente::setDefaults(bool bDefVal) {
  Recordset& rows = primary();
  if (bDefVal && rows.Fields().Count() > 2) rows.Field(2).Value(std::int32_t{0});
}

const Component& ClsTiposCliente::component() {
  using C = ClsTiposCliente;
  static const Component table(
      "ClsTiposCliente", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B010}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
