// SPDX-License-Identifier: MIT
// ClsClientesComentarios, the comments of customers.
#include "tavelor/customers/clientes_comentarios.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Clientes_Comentarios: Comentarios on the customer Codigo, in the row of Id 1.

namespace {

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Comentarios FROM Clientes_Comentarios";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE  Codigo =  '{id}' And Id = 1"},
    Mode{"ninguno", kTodos, " Where Id = 0"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Clientes_Comentarios",
    .table = "Clientes_Comentarios",
    .codeColumn = "Id",
    .modes = kModes,
    .clearsDataMembers = true,
};

/// What stands for a comment without text, so that its seam is seen to have had a row.
constexpr std::string_view kNoText = ".";

}  // namespace

ClsClientesComentarios::ClsClientesComentarios() : Comments(kInfo, CommentKeys::kOneAnOwner) {}

void ClsClientesComentarios::ReparaComentarios(ObjCn objCn) const {
  const RecordsetPtr surplus =
      read(Statement("SELECT Clientes_Comentarios.Codigo, Clientes_Comentarios.Comentarios"
                     " From Clientes_Comentarios WHERE (((Clientes_Comentarios.Id)>1));"),
           *objCn);
  for (; !surplus->Eof(); surplus->MoveNext()) {
    const std::string text = joined(surplus->Field("Comentarios").Value());
    const std::string customer = joined(surplus->Field("Codigo").Value());
    Statement fold(
        "UPDATE Clientes_Comentarios SET Clientes_Comentarios.Comentarios ="
        " [Clientes_Comentarios].[Comentarios] &'  #.---\\\\\\Restaurado///-----.# ' &  '");
    fold << spliced(text.empty() ? kNoText : std::string_view(text))
         << "' WHERE (((Clientes_Comentarios.Id)=1) AND ((Clientes_Comentarios.Codigo)= '"
         << spliced(customer) << "'));";
    write(fold, *objCn);
  }
  write(Statement("DELETE Clientes_Comentarios.Id, Clientes_Comentarios.*"
                  " From Clientes_Comentarios WHERE (((Clientes_Comentarios.Id)>1));"),
        *objCn);
}

const Component& ClsClientesComentarios::component() {
  using C = ClsClientesComentarios;
  static const Component table(
      "ClsClientesComentarios", "{A4D2E7C1-5B38-4F06-8C9D-7E1F60B3D505}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      slots({member("ReparaComentarios", &C::ReparaComentarios, "[objCn]")}));
  return table;
}

}  // namespace tavelor
