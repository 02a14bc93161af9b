// SPDX-License-Identifier: MIT
// ClsAlmacenes, warehouses.
#include "tavelor/reference/almacenes.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

// Table Almacenes.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Descripcion AS Descripción FROM Almacenes";

// Both modes open the same rows; they differ in the key of their order.
constexpr std::array kModes = {
    Mode{"seleccion", kTodos},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Almacenes", .table = "Almacenes", .modes = kModes, .addNew = AddNewForm::kShort};

}  // namespace

ClsAlmacenes::ClsAlmacenes() : OpensOnConnection(kInfo) {}

const Component& ClsAlmacenes::component() {
  using C = ClsAlmacenes;
  static const Component table(
      "ClsAlmacenes", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B008}", kInfo.word,
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
