// SPDX-License-Identifier: MIT
// ClsProveedoresComentarios, the comments on suppliers.
#include "tavelor/suppliers/proveedores_comentarios.hpp"

#include <array>

#include "tavelor/frame/component.hpp"

namespace tavelor {

// Table Proveedores_Comentarios: Comentarios on the supplier Codigo.

namespace {

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Comentarios FROM Proveedores_Comentarios";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE  Codigo =  '{id}'"},
    Mode{"ninguno", kTodos, " Where Id = 0"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Proveedores_Comentarios",
    .table = "Proveedores_Comentarios",
    .codeColumn = "Id",
    .modes = kModes,
    .clearsDataMembers = true,
};

}  // namespace

ClsProveedoresComentarios::ClsProveedoresComentarios()
    : Comments(kInfo, CommentKeys::kManyAnOwner) {}

const Component& ClsProveedoresComentarios::component() {
  using C = ClsProveedoresComentarios;
  static const Component table(
      "ClsProveedoresComentarios", "{3E8F1B64-97C2-4D0A-B5E3-0C6A29D481F2}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withoutSlot("GetRptPath", slots({})));
  return table;
}

}  // namespace tavelor
