// SPDX-License-Identifier: MIT
// ClsCajas, tills.
#include "tavelor/reference/cajas.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

// Table Cajas.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Descripcion AS Descripción FROM Cajas";

// Both modes open the same rows; they differ in the key of their order.
constexpr std::array kModes = {
    Mode{"seleccion", kTodos},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Cajas", .table = "Cajas", .modes = kModes, .clearsDataMembers = true};

}  // namespace

ClsCajas::ClsCajas() : OpensByWord(kInfo) {}

const Component& ClsCajas::component() {
  using C = ClsCajas;
  static const Component table(
      "ClsCajas", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B009}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
