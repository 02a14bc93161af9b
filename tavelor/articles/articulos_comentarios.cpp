// SPDX-License-Identifier: MIT
// ClsArticulosComentarios, free comments on articles.
#include "tavelor/articles/articulos_comentarios.hpp"

#include <array>

#include "tavelor/frame/batch_rows.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

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

ClsArticulosComentarios::ClsArticulosComentarios() : OpensOnConnection(kInfo) {}

void ClsArticulosComentarios::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Comentarios WHERE (Codigo = '{id}')", vId), *cnnActive);
}

// Comments have no suppliers: the statement is refused whatever is asked, and callers see that.
bool ClsArticulosComentarios::CodigoLibre(const Variant& vId, const Variant& vIdSec,
                                          ObjCn objCn) const {
  Statement statement =
      withId("SELECT proveedor, Codigo FROM Articulos_Comentarios where ( proveedor ='{id}'", vId);
  statement << withId(" and Codigo='{id}')", vIdSec);
  return !anyRow(statement, *objCn);
}

void ClsArticulosComentarios::UpdateId(const Variant& vId) {
  Recordset& rows = primary();
  if (rows.RecordCount() == 0) return;
  numberNewRows(rows, NuevoCodigo(GetConnection()), vId);
}

void ClsArticulosComentarios::ToHtml(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  writeRecordPage(bDoclone, sSelecSql, bFilter);
}

void ClsArticulosComentarios::ToTxt(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  writeRecordText(bDoclone, sSelecSql, bFilter);
}

const Component& ClsArticulosComentarios::component() {
  using C = ClsArticulosComentarios;
  constexpr std::string_view kExport = "[bDoclone = True], [sSelecSql = 'todos'], [bFilter]";
  static const Component table(
      "ClsArticulosComentarios", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B60A}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
              member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
              member("CodigoLibre", &C::CodigoLibre, "vId, vIdSec, [objCn]"),
          },
          {
              member("UpdateId", &C::UpdateId, "vId"),
              member("ToHtml", &C::ToHtml, kExport),
              member("ToTxt", &C::ToTxt, kExport),
          }));
  return table;
}

}  // namespace tavelor
