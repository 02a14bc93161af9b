// SPDX-License-Identifier: MIT
// Rutas, routes, which are also the phases of work.
#include "tavelor/reference/rutas.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

// Table Rutas.

namespace {

constexpr std::string_view kTodos =
    "SELECT Rutas.Codigo AS Código, Rutas.Descripcion as Descripción From Rutas";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos},
    Mode{kAnyOtherWord, kTodos, " ORDER BY Rutas.Descripcion"},
};

constexpr ClassInfo kInfo = {
    .word = "Rutas", .table = "Rutas", .codeColumn = "Id", .modes = kModes};

}  // namespace

Rutas::Rutas() : OpensOnConnection(kInfo) {}

std::string Rutas::GetDescripcion(const Variant& vId, ObjCn objCn) const {
  return describe(withId("SELECT Descripcion FROM Rutas WHERE Codigo = '{id}'", vId), vId, "Fase",
                  objCn);
}

Variant Rutas::GetPath(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Path FROM Rutas WHERE Codigo = {id}", vId), "Path", objCn);
}

const Component& Rutas::component() {
  using C = Rutas;
  static const Component table(
      "Rutas", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B013}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("GetDescripcion", &C::GetDescripcion, "vId, [objCn]"),
          member("GetPath", &C::GetPath, "vId, [objCn]"),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
