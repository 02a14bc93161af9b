// SPDX-License-Identifier: MIT
// ClsFormasPago, the payment methods.
#include "tavelor/reference/formas_pago.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Formas_Pago. The class word has a blank, which goes into registry keys and the export file.

namespace {

constexpr std::string_view kBreve = "SELECT codigo as Código, Descripcion as Descripción";

// "seleccombo" is this class's word; the "seleccioncombo" of others falls to "todos" here.
constexpr std::array kModes = {
    Mode{"seleccombo", kBreve, " FROM Formas_Pago order by Descripcion"},
    Mode{"contado", kBreve,
         " FROM Formas_Pago"
         " Where (Contado <> 0)"
         " order by Codigo;"},
    Mode{"tipos", kBreve, " FROM Formas_Pago"},
    Mode{"seleccion", kBreve, " FROM Formas_Pago"},
    Mode{"vto", kBreve,
         " FROM Formas_Pago"
         " Where (Numero_plazos = {id})"},
    Mode{kAnyOtherWord,
         "SELECT codigo as Código, Descripcion as Descripción, Numero_Plazos as Plazos,"
         " Dias_Plazos as Vencimiento, Dias1 as Dia, Apunte, Recibo, Contado, Predeterminada, "
         "Cta_Contable, Cta_Tesoreria,"
         " No_IRPF, Porcent5 as Recargo, Tipo"
         " FROM Formas_Pago"},
};

constexpr ClassInfo kInfo = {
    .word = "Formas Pago", .table = "Formas_Pago", .codeColumn = "codigo", .modes = kModes};

// What GetTipo answers where the table says nothing.
constexpr std::string_view kTipoUsual = "04";

}  // namespace

ClsFormasPago::ClsFormasPago() : OpensOnConnection(kInfo) {}

bool ClsFormasPago::ExistePredeterminada(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM Formas_Pago where predeterminada <> 0"), objCn);
}

bool ClsFormasPago::ExisteContado(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM Formas_Pago where Contado <> 0"), objCn);
}

Variant ClsFormasPago::GetPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT Descripcion as ds FROM Formas_Pago where predeterminada <> 0"),
                "ds", objCn);
}

Variant ClsFormasPago::GetCodPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT Codigo as ds FROM Formas_Pago where predeterminada <> 0"), "ds",
                objCn);
}

Variant ClsFormasPago::GetDiaPago(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT dias1 as dia "
                       " FROM Formas_Pago where codigo ='{id}'",
                       vId),
                "dia", objCn);
}

Variant ClsFormasPago::GetRecargo(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Porcent5 as Recargo "
                       " FROM Formas_Pago where codigo ='{id}'",
                       vId),
                "Recargo", objCn);
}

Variant ClsFormasPago::GetVencimientos(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Numero_Plazos as Vencimientos "
                       " FROM Formas_Pago where codigo ='{id}'",
                       vId),
                "Vencimientos", objCn);
}

bool ClsFormasPago::NoActualizarIrpf(const Variant& vId, ObjCn objCn) const {
  return asFlag(lookUp(withId("SELECT No_Irpf"
                              " FROM Formas_Pago where codigo ='{id}'",
                              vId),
                       "No_Irpf", objCn));
}

std::string ClsFormasPago::GetTipo(const Variant& vId, ObjCn objCn) const {
  const Variant found = lookUp(withId("SELECT Tipo "
                                      " FROM Formas_Pago where codigo ='{id}'",
                                      vId),
                               "Tipo", objCn);
  return found.isEmpty() ? std::string(kTipoUsual) : joined(found);
}

void ClsFormasPago::GetPropiedades(Propiedades& datos) const {
  datos.iPlazos = 0;
  const RecordsetPtr rows =
      read(withId("SELECT codigo as Código, Descripcion as Descripción, Numero_Plazos as Plazos,"
                  " Dias_Plazos as Vencimiento, Apunte, Recibo, Contado, Predeterminada "
                  ",Cta_Tesoreria, Cta_Contable, No_Irpf"
                  " FROM Formas_Pago where codigo ='{id}'",
                  datos.vId),
           *datos.objCn);
  if (rows->RecordCount() == 0) return;
  datos.bCrearApunte = asFlag(rows->Field("Apunte").Value());
  datos.bNoIrpf = asFlag(rows->Field("No_Irpf").Value());
  datos.bCrearRecibo = asFlag(rows->Field("Recibo").Value());
  if (!datos.bCrearRecibo) return;
  takeColumn(*rows, "Plazos", datos.iPlazos);
  takeColumn(*rows, "Vencimiento", datos.iVtoA);
  takeColumn(*rows, "Cta_Contable", datos.sCtaConta);
  takeColumn(*rows, "Cta_Tesoreria", datos.sCtaTesor);
}

// Day, entry and receipt are set whether defaults are wanted or not.
void ClsFormasPago::setDefaults(bool bDefVal) {
  Recordset& rows = primary();
  if (bDefVal) {
    rows.Field(2).Value(std::int32_t{1});
    rows.Field(3).Value(std::int32_t{0});
  }
  rows.Field(4).Value(std::int32_t{0});
  rows.Field(5).Value(true);
  rows.Field(6).Value(true);
}

const Component& ClsFormasPago::component() {
  using C = ClsFormasPago;
  static const Component table(
      "ClsFormasPago", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B004}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("sClassName"),
          frameMember("GetRptPath"),
          frameMember("SeguridadPermiso"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("GetConnectionStr"),
          member("ExistePredeterminada", &C::ExistePredeterminada, "[objCn]"),
          member("ExisteContado", &C::ExisteContado, "[objCn]"),
          member("GetPredeterminada", &C::GetPredeterminada, "[objCn]"),
          member("GetCodPredeterminada", &C::GetCodPredeterminada, "[objCn]"),
          member("GetDiaPago", &C::GetDiaPago, "vId, [objCn]"),
          member("GetRecargo", &C::GetRecargo, "vId, [objCn]"),
          member("GetVencimientos", &C::GetVencimientos, "vId, [objCn]"),
          member("NoActualizarIrpf", &C::NoActualizarIrpf, "vId, [objCn]"),
          member(
              "GetPropiedades", &C::GetPropiedades,
              {parameter("vId", &Propiedades::vId), parameter("out iPlazos", &Propiedades::iPlazos),
               parameter("out iVtoA", &Propiedades::iVtoA),
               parameter("out bCrearRecibo", &Propiedades::bCrearRecibo),
               parameter("out sCtaConta", &Propiedades::sCtaConta),
               parameter("out sCtaTesor", &Propiedades::sCtaTesor),
               parameter("out bCrearApunte", &Propiedades::bCrearApunte),
               parameter("[objCn]", &Propiedades::objCn),
               parameter("[out bNoIrpf]", &Propiedades::bNoIrpf)}),
          member("GetTipo", &C::GetTipo, "vId, [objCn]"),
          member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
          frameMember("NuevoCodigo"),
          frameMember("CodigoLibre"),
      }));
  return table;
}

}  // namespace tavelor
