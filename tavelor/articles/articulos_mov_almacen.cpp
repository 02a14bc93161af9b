// SPDX-License-Identifier: MIT
// ClsArticulosMovAlmacen, the ledger of warehouse movements.
#include "tavelor/articles/articulos_mov_almacen.hpp"

#include <array>

#include "tavelor/articles/stock.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/format.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Articulos_Movimientos_Almacen: Cantidad of the article Codigo came into the warehouse
// Almacen (Movimiento 0) or left it (1), for the document Doc_E in the state Estado.

namespace {

constexpr std::string_view kTodos =
    "SELECT"
    " Id, Fecha, Hora, Almacen, Codigo, Lote, Cantidad,"
    " Referencia, Movimiento, Seccion,"
    " Empleado, Estado, Doc_E"
    " FROM Articulos_Movimientos_Almacen";
constexpr std::string_view kVista =
    "SELECT"
    " Articulos_Movimientos_Almacen.id as Mov,"
    " Articulos_Movimientos_Almacen.Fecha,"
    " Articulos_Movimientos_Almacen.Hora,"
    " Almacenes.Descripcion as Almacén,"
    " Articulos_Movimientos_Almacen.Codigo as  Código,"
    " Articulos.Descripcion as Artículo,"
    " Articulos_Movimientos_Almacen.Lote,"
    " Articulos_Movimientos_Almacen.Cantidad,"
    " Articulos_Movimientos_Almacen.Precio,"
    " Articulos_Movimientos_Almacen.Movimiento,"
    " Articulos_Movimientos_Almacen.Referencia,"
    " Articulos_Movimientos_Almacen.Seccion,"
    " Articulos_Movimientos_Almacen.Empleado,"
    " Articulos_Movimientos_Almacen.Estado,"
    " Articulos_Movimientos_Almacen.Doc_E as Documento"
    " FROM (Articulos INNER JOIN Articulos_Movimientos_Almacen ON"
    " Articulos.Codigo = Articulos_Movimientos_Almacen.Codigo)"
    " INNER JOIN Almacenes ON Articulos_Movimientos_Almacen.Almacen = Almacenes.Codigo";

constexpr std::array kModes = {
    Mode{"vista rapida", kVista},
    Mode{"seleccion", kVista, " WHERE Articulos_Movimientos_Almacen.Codigo = '{id}'"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Articulos_Movimientos_Almacen",
    .table = "Articulos_Movimientos_Almacen",
    .codeColumn = "ID",
    .modes = kModes,
    .freeCode = "SELECT Numero FROM Articulos_Movimientos_Almacen WHERE Id = {id}",
    .clearsDataMembers = true,
};

constexpr std::string_view kSum =
    "SELECT Sum(Articulos_Movimientos_Almacen.Cantidad) AS SumaDeCantidad"
    " From Articulos_Movimientos_Almacen";
constexpr std::string_view kEntry = "0";
constexpr std::string_view kExit = "1";
constexpr std::string_view kAllWarehouses = "*";

std::string dateText(const Variant& date) {
  return DataSession().DateLiteral(kInfo.selector, date);
}

}  // namespace

ClsArticulosMovAlmacen::ClsArticulosMovAlmacen() : OpensByWord(kInfo) {}

// ---------------------------------------------------------------------------------------------
// Deleting

namespace {

/// `document`, a number from outside, and its state.
Statement ofDocument(const std::string& document, std::int16_t state, Statement::Constant end) {
  Statement condition(" WHERE(Doc_E = ");
  condition << spliced(document) << " and Estado = " << spliced(std::to_string(state)) << end;
  return condition;
}

}  // namespace

void ClsArticulosMovAlmacen::DeleteAll(const Variant& vId, std::int16_t iEstado,
                                       ObjCn cnnActive) const {
  Statement statement("DELETE  FROM Articulos_Movimientos_Almacen");
  statement << ofDocument(joined(vId), iEstado, ")");
  write(statement, *cnnActive);
}

void ClsArticulosMovAlmacen::DeleteAll_no_Interno(const Variant& vId, std::int16_t iEstado,
                                                  ObjCn cnnActive) const {
  Statement statement(DataSession().IsDbFile(info().selector)
                          ? Statement::Constant("DELETE Articulos_Movimientos_Almacen.*")
                          : "DELETE Articulos_Movimientos_Almacen");
  statement << " FROM Articulos_Movimientos_Almacen INNER JOIN Articulos ON"
               " Articulos_Movimientos_Almacen.Codigo = Articulos.Codigo"
            << ofDocument(joined(vId), iEstado, " and Interno <> -1 )");
  write(statement, *cnnActive);
}

void ClsArticulosMovAlmacen::DeleteFecha(const Variant& dtInicio, ObjCn cnnActive) const {
  Statement statement(
      "DELETE  FROM Articulos_Movimientos_Almacen"
      " WHERE (((Articulos_Movimientos_Almacen.Fecha)<=");
  statement << spliced(dateText(dtInicio)) << "));";
  write(statement, *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Sums

double ClsArticulosMovAlmacen::sumOfKind(const Variant& vId, Statement::Constant kind,
                                         ObjCn objCn) const {
  Statement statement(kSum);
  statement << " GROUP BY Articulos_Movimientos_Almacen.Codigo,"
               " Articulos_Movimientos_Almacen.Movimiento"
               " HAVING (((Articulos_Movimientos_Almacen.Codigo)='"
            << spliced(joined(vId)) << "') AND ((Articulos_Movimientos_Almacen.Movimiento)=" << kind
            << "));";
  return asNumber(lookUp(statement, "SumaDeCantidad", *objCn));
}

double ClsArticulosMovAlmacen::GetEntradas_Art(const Variant& vId, ObjCn objCn) const {
  return sumOfKind(vId, kEntry, *objCn);
}

double ClsArticulosMovAlmacen::GetSalidas_Art(const Variant& vId, ObjCn objCn) const {
  return sumOfKind(vId, kExit, *objCn);
}

double ClsArticulosMovAlmacen::GetTotalMaovArt(const Variant& vId, ObjCn objCn) const {
  const double entries = sumOfKind(vId, kEntry, *objCn);
  return entries - sumOfKind(vId, kExit, *objCn);
}

double ClsArticulosMovAlmacen::sumSince(const Variant& vId, const Variant& dtInicio,
                                        std::string_view sAlmacen, Statement::Constant kind,
                                        ObjCn objCn) const {
  Statement statement(kSum);
  statement << " WHERE ("
               " ((Articulos_Movimientos_Almacen.Codigo)='"
            << spliced(joined(vId)) << "') ";
  if (sAlmacen != kAllWarehouses) {
    statement << " AND ((Articulos_Movimientos_Almacen.Almacen)= '" << spliced(sAlmacen) << "') ";
  }
  statement << " AND ((Articulos_Movimientos_Almacen.Movimiento)=" << kind
            << ") "
               " AND ((Articulos_Movimientos_Almacen.Fecha) >= "
            << spliced(dateText(dtInicio)) << "));";
  return asNumber(lookUp(statement, "SumaDeCantidad", *objCn));
}

double ClsArticulosMovAlmacen::GetEntradas_Art_Fecha(const Variant& vId, const Variant& dtInicio,
                                                     std::string_view sAlmacen, ObjCn objCn) const {
  return sumSince(vId, dtInicio, sAlmacen, kEntry, *objCn);
}

double ClsArticulosMovAlmacen::GetSalidas_Art_Fecha(const Variant& vId, const Variant& dtInicio,
                                                    std::string_view sAlmacen, ObjCn objCn) const {
  return sumSince(vId, dtInicio, sAlmacen, kExit, *objCn);
}

// ---------------------------------------------------------------------------------------------
// Prices

double ClsArticulosMovAlmacen::GetPrecioMedioCompra_Art_periodo(const Variant& vId,
                                                                const Variant& dtInicio,
                                                                ObjCn objCn) const {
  Statement statement(
      "SELECT DISTINCT Avg(Articulos_Movimientos_Almacen.Precio) AS PromedioDePrecio"
      " From Articulos_Movimientos_Almacen"
      " Where (((Articulos_Movimientos_Almacen.Codigo)='");
  statement << spliced(joined(vId))
            << "') And ((Articulos_Movimientos_Almacen.Fecha) >= " << spliced(dateText(dtInicio))
            << "))"
               " GROUP BY Articulos_Movimientos_Almacen.Movimiento"
               " HAVING (((Articulos_Movimientos_Almacen.Movimiento)=0));";
  return asNumber(lookUp(statement, "PromedioDePrecio", *objCn));
}

void ClsArticulosMovAlmacen::Devaluar_Art_periodo(const Variant& vId, const Variant& dtInicio,
                                                  ObjCn objCn) const {
  Statement statement(
      "UPDATE Articulos_Movimientos_Almacen SET Articulos_Movimientos_Almacen.Precio = 0"
      " Where (((Articulos_Movimientos_Almacen.Fecha) >= ");
  statement << spliced(dateText(dtInicio)) << ") AND ((Articulos_Movimientos_Almacen.Codigo)='"
            << spliced(joined(vId)) << "'));";
  write(statement, *objCn);
}

// ---------------------------------------------------------------------------------------------
// Rows

std::int16_t ClsArticulosMovAlmacen::GetState(const Variant& vId, ObjCn objCn) const {
  const RecordsetPtr rows = read(
      withId("SELECT  Estado FROM Articulos_Movimientos_Almacen WHERE Id = {id}", vId), *objCn);
  std::int16_t state = 0;
  if (rows->RecordCount() > 0) takeColumn(*rows, "Estado", state);
  return state;
}

void ClsArticulosMovAlmacen::UpdateState(const Variant& vId) {
  primary().Field("Estado").Value(vId);
  Update();
}

std::vector<Variant> ClsArticulosMovAlmacen::ObtenerColAlmaActivos(ObjCn objCn) const {
  return columnValues(*readOn(selector::kImport,
                              Statement("SELECT DISTINCT Articulos_Movimientos_Almacen.Almacen"
                                        " FROM Articulos_Movimientos_Almacen"),
                              *objCn),
                      "Almacen");
}

Variant ClsArticulosMovAlmacen::NuevoCodigo(std::string_view /*serie*/, ObjCn objCn) const {
  return RecordClass::NuevoCodigo(*objCn);
}

void ClsArticulosMovAlmacen::AddNew(bool bDefVal, bool /*bIsInvoiced*/) {
  Recordset& rows = primary();
  rows.AddNew();
  if (!bDefVal) return;
  rows.Field(0).Value(NuevoCodigo());
  rows.Field("Fecha").Value(
      format(Apartment::current().clock().today(), "Short Date", Apartment::current().locale()));
}

void ClsArticulosMovAlmacen::Insertar(const Movimiento& movimiento) const {
  const Movimiento& m = movimiento;
  Statement statement(
      "INSERT INTO Articulos_Movimientos_Almacen ("
      " Id, Fecha, Hora, Almacen, Codigo, Lote, Cantidad, Precio,"
      " Referencia, Movimiento, Seccion,"
      " Empleado, Estado, Doc_E, Cod_ID)"
      " Values ( ");
  statement << spliced(joined(m.vId)) << " , " << spliced(dateText(m.dtFecha)) << " , "
            << spliced(dateText(m.hHora)) << " , '" << spliced(m.sAlmacen) << "' , '"
            << spliced(m.sCodigo) << "' , '" << spliced(m.sLote) << "' , "
            << spliced(stock::bare(m.dCantidad)) << " , " << spliced(stock::bare(m.dPrecio))
            << " ,'" << spliced(m.sReferencia) << "' , " << spliced(std::to_string(m.iMovimiento))
            << " , '" << spliced(m.sSeccion) << "' , '" << spliced(m.sEmpleado) << "' , "
            << spliced(std::to_string(m.iEstado)) << " , " << spliced(stock::plain(m.dDoc_E))
            << " ,'" << spliced(m.sCod_ID) << "' )";
  write(statement, *m.objCn);
}

const Component& ClsArticulosMovAlmacen::component() {
  using C = ClsArticulosMovAlmacen;
  static const Component table(
      "ClsArticulosMovAlmacen", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B605}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("DeleteAll", &C::DeleteAll, "vId, iEstado, [cnnActive]"),
              member("DeleteAll_no_Interno", &C::DeleteAll_no_Interno, "vId, iEstado, [cnnActive]"),
              member("DeleteFecha", &C::DeleteFecha, "dtInicio, [cnnActive]"),
              frameMember("CodigoLibre"),
              member("GetState", &C::GetState, "vId, [objCn]"),
              member("GetEntradas_Art", &C::GetEntradas_Art, "vId, [objCn]"),
              member("GetSalidas_Art", &C::GetSalidas_Art, "vId, [objCn]"),
              member("GetPrecioMedioCompra_Art_periodo", &C::GetPrecioMedioCompra_Art_periodo,
                     "vId, dtInicio, [objCn]"),
              member("Devaluar_Art_periodo", &C::Devaluar_Art_periodo, "vId, dtInicio, [objCn]"),
              member("GetEntradas_Art_Fecha", &C::GetEntradas_Art_Fecha,
                     "vId, dtInicio, [sAlmacen = '*'], [objCn]"),
              member("GetSalidas_Art_Fecha", &C::GetSalidas_Art_Fecha,
                     "vId, dtInicio, [sAlmacen = '*'], [objCn]"),
              member("ObtenerColAlmaActivos", &C::ObtenerColAlmaActivos, "[objCn]"),
              member("GetTotalMaovArt", &C::GetTotalMaovArt, "vId, [objCn]"),
              member(
                  "Insertar", &C::Insertar,
                  {parameter("vId", &Movimiento::vId), parameter("dtFecha", &Movimiento::dtFecha),
                   parameter("hHora", &Movimiento::hHora),
                   parameter("sAlmacen", &Movimiento::sAlmacen),
                   parameter("sCodigo", &Movimiento::sCodigo),
                   parameter("sLote", &Movimiento::sLote),
                   parameter("dCantidad", &Movimiento::dCantidad),
                   parameter("dPrecio", &Movimiento::dPrecio),
                   parameter("sReferencia", &Movimiento::sReferencia),
                   parameter("iMovimiento", &Movimiento::iMovimiento),
                   parameter("sSeccion", &Movimiento::sSeccion),
                   parameter("sEmpleado", &Movimiento::sEmpleado),
                   parameter("iEstado", &Movimiento::iEstado),
                   parameter("dDoc_E", &Movimiento::dDoc_E),
                   parameter("sCod_ID", &Movimiento::sCod_ID),
                   parameter("[objCn]", &Movimiento::objCn)}),
              member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
              member("NuevoCodigo", &C::NuevoCodigo, "[serie = 'A'], [objCn]"),
              frameMember("SeguridadPermiso"),
          },
          {
              member("AddNew", &C::AddNew, "[bDefVal = True], [bIsInvoiced = True]"),
              member("UpdateState", &C::UpdateState, "vId"),
          }));
  return table;
}

}  // namespace tavelor
