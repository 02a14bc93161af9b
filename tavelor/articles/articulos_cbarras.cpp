// SPDX-License-Identifier: MIT
// ClsArticulosCbarras, the barcodes of articles.
#include "tavelor/articles/articulos_cbarras.hpp"

#include <array>

#include "tavelor/articles/euros.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

// Table Articulos_Codigos_barras: Codigo_barras of the article Codigo. Precio is for callers:
// nothing here reads it.

namespace {

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Codigo_Barras as CódigoB FROM Articulos_Codigos_barras";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE Codigo =  '{id}'"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Articulos_Codigos_barras",
    .table = "Articulos_Codigos_barras",
    .codeColumn = "Id",
    .modes = kModes,
    .addNew = AddNewForm::kShort,
    .clearsDataMembers = true,
};

constexpr std::string_view kOfBarcode =
    "SELECT Codigo_barras , Codigo FROM Articulos_Codigos_barras "
    " where (Codigo_barras ='{id}'";

}  // namespace

ClsArticulosCbarras::ClsArticulosCbarras() : OpensByWord(kInfo) {}

void ClsArticulosCbarras::ActualizarEuros(ObjCn cnnActive) const {
  write(euros::nullToZero(kInfo.table), *cnnActive);
  write(euros::pricesInEuros(kInfo.table), *cnnActive);
}

Variant ClsArticulosCbarras::GetArticulo(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Codigo FROM Articulos_Codigos_barras"
                       " WHERE (Codigo_barras  =  '{id}')",
                       vId),
                "Codigo", *objCn);
}

void ClsArticulosCbarras::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Codigos_barras WHERE (Codigo = '{id}')", vId), *cnnActive);
}

bool ClsArticulosCbarras::CodigoLibre(const Variant& vId, const Variant& vIdSec,
                                      ObjCn objCn) const {
  Statement statement = withId(kOfBarcode, vId);
  statement << withId(" and Codigo='{id}')", vIdSec);
  return !anyRow(statement, *objCn);
}

bool ClsArticulosCbarras::CodigoLibreTotal(const Variant& vId, ObjCn objCn) const {
  Statement statement = withId(kOfBarcode, vId);
  statement << ")";
  return !anyRow(statement, *objCn);
}

const Component& ClsArticulosCbarras::component() {
  using C = ClsArticulosCbarras;
  static const Component table(
      "ClsArticulosCbarras", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B608}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("ActualizarEuros", &C::ActualizarEuros, "[cnnActive]"),
          member("GetArticulo", &C::GetArticulo, "vId, [objCn]"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          member("CodigoLibre", &C::CodigoLibre, "vId, vIdSec, [objCn]"),
          member("CodigoLibreTotal", &C::CodigoLibreTotal, "vId, [objCn]"),
      }));
  return table;
}

}  // namespace tavelor
