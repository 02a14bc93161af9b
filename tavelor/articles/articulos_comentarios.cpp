// SPDX-License-Identifier: MIT
// ClsArticulosComentarios, free comments on articles.
#include "tavelor/articles/articulos_comentarios.hpp"

#include <array>

#include "tavelor/frame/component.hpp"

namespace tavelor {

// Table Articulos_Comentarios: Comentarios on the article Codigo.

namespace {

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Comentarios FROM Articulos_Comentarios";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE  Codigo =  '{id}'"},
    Mode{"ninguno", kTodos, " Where Id = 0"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Articulos_Comentarios",
    .table = "Articulos_Comentarios",
    .codeColumn = "Id",
    .modes = kModes,
    .clearsDataMembers = true,
};

}  // namespace

ClsArticulosComentarios::ClsArticulosComentarios() : Comments(kInfo, CommentKeys::kOfTable) {}

const Component& ClsArticulosComentarios::component() {
  static const Component table(
      "ClsArticulosComentarios", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B60A}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<ClsArticulosComentarios>(); },
      slots({}));
  return table;
}

}  // namespace tavelor
