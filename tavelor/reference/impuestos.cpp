// SPDX-License-Identifier: MIT
// ClsImpuestos, the tax rates.
#include "tavelor/reference/impuestos.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table TIPOS_IMPUESTO, which statements write in either case; the class word is "Impuestos".

namespace {

constexpr std::array kModes = {
    Mode{"seleccion", "SELECT Codigo AS Código, Descripcion AS Descripción FROM TIPOS_IMPUESTO"},
    Mode{kAnyOtherWord,
         "SELECT Codigo AS Código, Descripcion AS Descripción,  Impuesto, Recargo, Predeterminada "
         "FROM TIPOS_IMPUESTO"},
};

constexpr ClassInfo kInfo = {.word = "Impuestos", .table = "TIPOS_IMPUESTO", .modes = kModes};

}  // namespace

ClsImpuestos::ClsImpuestos() : OpensByWord(kInfo) {}

double ClsImpuestos::GetImpuesto(InOut<Variant> vId, ObjCn objCn) const {
  return asNumber(lookUp(withId("SELECT Codigo,"
                                " Impuesto"
                                " FROM Tipos_Impuesto"
                                " WHERE Codigo = '{id}'",
                                *vId),
                         "Impuesto", objCn));
}

double ClsImpuestos::GetRecargo(const Variant& vId, ObjCn objCn) const {
  return asNumber(lookUp(withId("SELECT Codigo,"
                                " Impuesto, Recargo"
                                " FROM Tipos_Impuesto"
                                " WHERE Codigo = '{id}'",
                                vId),
                         "Recargo", objCn));
}

// The two names read alike: the first answers the description, the second the code.
Variant ClsImpuestos::GetPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT Descripcion as ds FROM TIPOS_IMPUESTO where predeterminada <> 0"),
                "ds", objCn);
}

Variant ClsImpuestos::GetImpuestoPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT codigo as ds FROM TIPOS_IMPUESTO where predeterminada <> 0"),
                "ds", objCn);
}

std::string ClsImpuestos::GetDescripcion(const Variant& vId, ObjCn objCn) const {
  return describe(withId("SELECT"
                         " Descripcion"
                         " FROM TIPOS_IMPUESTO "
                         " WHERE Codigo = '{id}'",
                         vId),
                  vId, "Impuesto", objCn);
}

bool ClsImpuestos::ExistePredeterminada(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM TIPOS_IMPUESTO where predeterminada <> 0"), objCn);
}

void ClsImpuestos::setDefaults(bool bDefVal) {
  if (!bDefVal) return;
  for (const std::int32_t field : {2, 3, 4}) primary().Field(field).Value(std::int32_t{0});
}

const Component& ClsImpuestos::component() {
  using C = ClsImpuestos;
  static const Component table(
      "ClsImpuestos", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B002}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("GetConnectionStr"),
          member("GetImpuesto", &C::GetImpuesto, "inout vId, [objCn]"),
          member("GetRecargo", &C::GetRecargo, "vId, [objCn]"),
          member("GetPredeterminada", &C::GetPredeterminada, "[objCn]"),
          member("GetImpuestoPredeterminada", &C::GetImpuestoPredeterminada, "[objCn]"),
          member("GetDescripcion", &C::GetDescripcion, "vId, [objCn]"),
          member("ExistePredeterminada", &C::ExistePredeterminada, "[objCn]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("SeguridadPermiso"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
