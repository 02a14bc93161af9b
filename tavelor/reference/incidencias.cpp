// SPDX-License-Identifier: MIT
// clsIncidencias, incident types.
#include "tavelor/reference/incidencias.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

// Table Incidencias.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Descripcion AS Descripción FROM Incidencias";

// Both modes open the same rows; they differ in the key of their order.
constexpr std::array kModes = {
    Mode{"seleccion", kTodos},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {.word = "Incidencias", .table = "Incidencias", .modes = kModes};

}  // namespace

clsIncidencias::clsIncidencias() : OpensByWord(kInfo) {}

Variant clsIncidencias::GetValor(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Descripcion as v  FROM Incidencias  where codigo = '{id}'", vId),
                "v", objCn);
}

const Component& clsIncidencias::component() {
  using C = clsIncidencias;
  static const Component table(
      "clsIncidencias", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B012}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("GetValor", &C::GetValor, "vId, [objCn]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
