// SPDX-License-Identifier: MIT
// ClsTiposFactura, the layouts of invoices.
#include "tavelor/reference/tipos_factura.hpp"

#include <array>

#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/reference/logotipo.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Tipos_Factura: for each part of an invoice a flag and the text printed with it.

namespace {

constexpr std::string_view kTodos =
    "SELECT Codigo AS Código, Descripcion AS Descripción, Predeterminada"
    " , Totalizada,Texto_Totalizada, Desglosada, Texto, Renumerada"
    " , Referencia, Texto_Referencia, Pedido, Texto_pedido, Albaran as Albarán, Texto_Albaran, "
    "Fecha, Texto_Fecha"
    " , Total_Albaran, Texto_Total_Albaran"
    " FROM Tipos_Factura";

constexpr std::array kModes = {
    Mode{"seleccion", "SELECT Codigo AS Código, Descripcion AS Descripción FROM Tipos_Factura"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {.word = "Tipos_Factura", .table = "Tipos_Factura", .modes = kModes};

}  // namespace

ClsTiposFactura::ClsTiposFactura() : OpensByWord(kInfo) {}

Variant ClsTiposFactura::GetPredeterminada(ObjCn objCn) const {
  return lookUp(Statement("SELECT Descripcion as ds FROM Tipos_Factura where predeterminada <> 0"),
                "ds", objCn);
}

bool ClsTiposFactura::ExistePredeterminada(ObjCn objCn) const {
  return anyRow(Statement("SELECT Codigo FROM Tipos_Factura where predeterminada <> 0"), objCn);
}

void ClsTiposFactura::GetDatos(Datos& datos) const {
  Statement statement(kTodos);
  statement << " WHERE Codigo = '" << spliced(datos.vId) << "'";
  const RecordsetPtr rows = read(statement, *datos.objCn);
  takeColumn(*rows, "Totalizada", datos.bTotalizada);
  takeColumn(*rows, "Texto_Totalizada", datos.sTxtTotal);
  takeColumn(*rows, "Desglosada", datos.bDesglose);
  takeColumn(*rows, "Texto", datos.stexto);
  takeColumn(*rows, "Renumerada", datos.bRenumerada);
  takeColumn(*rows, "Referencia", datos.bReferencia);
  takeColumn(*rows, "Texto_Referencia", datos.sTxtRef);
  takeColumn(*rows, "Pedido", datos.bPedido);
  takeColumn(*rows, "Texto_pedido", datos.sTxtPed);
  takeColumn(*rows, "Albarán", datos.bAlbaran);
  takeColumn(*rows, "Texto_Albaran", datos.sTxtAlb);
  takeColumn(*rows, "Fecha", datos.bFecha);
  takeColumn(*rows, "Texto_Fecha", datos.sTxtfch);
  takeColumn(*rows, "Total_Albaran", datos.bTotal);
  takeColumn(*rows, "Texto_Total_Albaran", datos.sTextoTotal);
}

void ClsTiposFactura::ReadBLOB(InOut<std::string> Source) {
  readLogotipo(primary(), *Source);
}

void ClsTiposFactura::setDefaults(bool bDefVal) {
  if (!bDefVal) return;
  Recordset& rows = primary();
  for (const char* flagColumn :
       {"Predeterminada", "Totalizada", "Renumerada", "Referencia", "Pedido", "Albarán", "Fecha"}) {
    rows.Field(flagColumn).Value(false);
  }
  rows.Field("Desglosada").Value(true);
  rows.Field("Texto").Value("-.-");
}

const Component& ClsTiposFactura::component() {
  using C = ClsTiposFactura;
  static const Component table(
      "ClsTiposFactura", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B006}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("GetPredeterminada", &C::GetPredeterminada, "[objCn]"),
              member("ExistePredeterminada", &C::ExistePredeterminada, "[objCn]"),
              member(
                  "GetDatos", &C::GetDatos,
                  {parameter("vId", &Datos::vId), parameter("out bTotalizada", &Datos::bTotalizada),
                   parameter("out sTxtTotal", &Datos::sTxtTotal),
                   parameter("out bDesglose", &Datos::bDesglose),
                   parameter("out stexto", &Datos::stexto),
                   parameter("out bRenumerada", &Datos::bRenumerada),
                   parameter("out bReferencia", &Datos::bReferencia),
                   parameter("out sTxtRef", &Datos::sTxtRef),
                   parameter("out bPedido", &Datos::bPedido),
                   parameter("out sTxtPed", &Datos::sTxtPed),
                   parameter("out bAlbaran", &Datos::bAlbaran),
                   parameter("out sTxtAlb", &Datos::sTxtAlb),
                   parameter("out bFecha", &Datos::bFecha),
                   parameter("out sTxtfch", &Datos::sTxtfch),
                   parameter("out bTotal", &Datos::bTotal),
                   parameter("out sTextoTotal", &Datos::sTextoTotal),
                   parameter("[objCn]", &Datos::objCn)}),
              member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              frameMember("SeguridadPermiso"),
              frameMember("CodigoLibre"),
          },
          {member("ReadBLOB", &C::ReadBLOB, "inout Source")}));
  return table;
}

}  // namespace tavelor
