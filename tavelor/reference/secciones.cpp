// SPDX-License-Identifier: MIT
// ClsSecciones, sections of the shop.
#include "tavelor/reference/secciones.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

// Table Secciones.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Descripcion AS Descripción FROM Secciones";

// "seleccombo" and "selec" are this class's words, as callers pass them.
constexpr std::array kModes = {
    Mode{"seleccombo", kTodos, " Order by Descripcion"},
    Mode{"selec", kTodos},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {.word = "Secciones",
                             .table = "Secciones",
                             .modes = kModes,
                             .find = FindForm::kPrefix,
                             .clearsDataMembers = true};

}  // namespace

ClsSecciones::ClsSecciones() : OpensByWord(kInfo) {}

std::string ClsSecciones::GetDescripcion(const Variant& vId, ObjCn objCn) const {
  return describe(withId("SELECT Descripcion FROM Secciones WHERE Codigo = '{id}'", vId), vId,
                  "Sección", objCn);
}

Variant ClsSecciones::GetFirst(ObjCn objCn) const {
  return lookUp(Statement("SELECT Codigo as v  FROM "
                          "Secciones"),
                "V", objCn);
}

const Component& ClsSecciones::component() {
  using C = ClsSecciones;
  static const Component table(
      "ClsSecciones", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B011}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("GetDescripcion", &C::GetDescripcion, "vId, [objCn]"),
          member("GetFirst", &C::GetFirst, "[objCn]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
