// SPDX-License-Identifier: MIT
// ClsDivisas, the currencies.
#include "tavelor/reference/divisas.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Divisas. Amounts in pesetas are turned to euros by the statements themselves, not by it.

namespace {

constexpr std::array kModes = {
    Mode{"seleccion", "SELECT codigo as Código, Descripcion as Descripción FROM Divisas"},
    Mode{kAnyOtherWord,
         "SELECT codigo as Código, Descripcion as Descripción, Fecha,"
         " Valor, Predeterminada, Valor_Euro as Euros"
         " FROM Divisas"},
};

constexpr ClassInfo kInfo = {
    .word = "Divisas", .table = "Divisas", .codeColumn = "codigo", .modes = kModes};

}  // namespace

ClsDivisas::ClsDivisas() : OpensOnConnection(kInfo) {}

Variant ClsDivisas::ValorEuro(ObjCn objCn) const {
  const Variant euros = lookUp(
      Statement("SELECT Valor_Euro FROM Divisas where (predeterminada <> 0)"), "Valor_Euro", objCn);
  return euros.isEmpty() ? Variant(std::int32_t{1}) : euros;
}

bool ClsDivisas::ExistePredeterminada(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM Divisas where predeterminada <> 0"), objCn);
}

Variant ClsDivisas::GetPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT Codigo as ds FROM  Divisas  where predeterminada <> 0"), "ds",
                objCn);
}

Variant ClsDivisas::GetValor(const Variant& vId, ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT Valor as v, codigo FROM  Divisas  where codigo = '{id}'", vId), objCn);
  const Variant found = rows->Field("v").Value();
  return found.isNull() ? Variant(std::int32_t{0}) : found;
}

// The numbers start at 0 whether defaults are wanted or not; the date stays empty.
void ClsDivisas::setDefaults(bool /*bDefVal*/) {
  for (const std::int32_t field : {3, 4, 5}) primary().Field(field).Value(std::int32_t{0});
}

const Component& ClsDivisas::component() {
  using C = ClsDivisas;
  static const Component table(
      "ClsDivisas", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B003}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("sClassName"),
          frameMember("SeguridadPermiso"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("GetConnectionStr"),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          member("ValorEuro", &C::ValorEuro, "[objCn]"),
          frameMember("CodigoLibre"),
          member("ExistePredeterminada", &C::ExistePredeterminada, "[objCn]"),
          member("GetPredeterminada", &C::GetPredeterminada, "[objCn]"),
          member("GetValor", &C::GetValor, "vId, [objCn]"),
      }));
  return table;
}

}  // namespace tavelor
