// SPDX-License-Identifier: MIT
// ClsArticulosComponentes, what packages are made of.
#include "tavelor/articles/articulos_componentes.hpp"

#include <array>

#include "tavelor/articles/registros.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Articulos_Componentes: Cantidad of the article Articulo in one package Codigo.

namespace {

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Articulo as Artículo, Cantidad FROM Articulos_Componentes";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE Codigo =  '{id}'"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Articulos_Componentes",
    .table = "Articulos_Componentes",
    .codeColumn = "Id",
    .modes = kModes,
    .addNew = AddNewForm::kShort,
    .clearsDataMembers = true,
};

}  // namespace

ClsArticulosComponentes::ClsArticulosComponentes() : OpensByWord(kInfo) {}

CollectionRegistrosPtr ClsArticulosComponentes::GetCollectionRegs(const Variant& vIdAlm,
                                                                  double dCant) {
  auto requests = std::make_shared<CollectionRegistros>();
  Recordset& rows = primary();
  if (rows.Bof() || rows.Eof()) return requests;
  const std::int32_t none = 0;
  for (rows.MoveFirst(); !rows.Eof(); rows.MoveNext()) {
    const float quantity = asSingle(asNumber(rows.Field("Cantidad").Value()) * dCant);
    requests->Add({}, rows.Field("Artículo").Value(), quantity, none, none, vIdAlm, none);
  }
  rows.MoveFirst();
  return requests;
}

void ClsArticulosComponentes::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Componentes WHERE (Codigo = '{id}')", vId), *cnnActive);
}

bool ClsArticulosComponentes::CodigoLibre(const Variant& vId, const Variant& vIdSec,
                                          ObjCn objCn) const {
  Statement statement = withId(
      "SELECT Articulo, Codigo FROM Articulos_Componentes "
      " where (Articulo ='{id}'",
      vId);
  statement << withId(" and Codigo='{id}')", vIdSec);
  return !anyRow(statement, *objCn);
}

const Component& ClsArticulosComponentes::component() {
  using C = ClsArticulosComponentes;
  static const Component table(
      "ClsArticulosComponentes", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B609}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("GetCollectionRegs", &C::GetCollectionRegs, "vIdAlm, dCant"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          member("CodigoLibre", &C::CodigoLibre, "vId, vIdSec, [objCn]"),
      }));
  return table;
}

}  // namespace tavelor
