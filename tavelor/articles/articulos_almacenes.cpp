// SPDX-License-Identifier: MIT
// ClsArticulosAlmacenes, stock by warehouse.
#include "tavelor/articles/articulos_almacenes.hpp"

#include <array>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/stock.hpp"
#include "tavelor/frame/batch_rows.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Articulos_Almacenes: Cantidad in stock and Pendiente on order, of the article Codigo in the
// warehouse Almacen.

namespace {

constexpr std::string_view kTodos =
    "SELECT   Almacen as Almacén, Cantidad, Codigo AS Código, ID FROM Articulos_Almacenes";

constexpr std::array kModes = {
    Mode{"seleccion", kTodos, " WHERE Codigo =  '{id}'"},
    Mode{"deeliminaralmacen", kTodos, "  Where ( Almacen =  '{id}')"},
    Mode{"ninguno", kTodos, " Where (Codigo = '0')"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Articulos_Almacenes",
    .table = "Articulos_Almacenes",
    .codeColumn = "Id",
    .modes = kModes,
    .update = UpdateForm::kAllRows,
    .remove = DeleteForm::kMarks,
    .clearsDataMembers = true,
};

Statement ofPair(const std::string& article, const std::string& warehouse) {
  Statement condition(" WHERE(Codigo ='");
  condition << spliced(article) << "' and Almacen ='" << spliced(warehouse) << "' )";
  return condition;
}

Statement additions(double dCant, double dPend, const std::string& article,
                    const std::string& warehouse) {
  Statement statement("UPDATE  Articulos_Almacenes SET Cantidad = Cantidad + ");
  statement << spliced(stock::bare(dCant)) << ", Pendiente = Pendiente + "
            << spliced(stock::bare(dPend)) << ofPair(article, warehouse);
  return statement;
}

}  // namespace

ClsArticulosAlmacenes::ClsArticulosAlmacenes() : OpensOnConnection(kInfo) {}

// ---------------------------------------------------------------------------------------------
// The grid of one article

void ClsArticulosAlmacenes::AddNew(bool bDefVal) {
  Recordset& rows = primary();
  rows.AddNew();
  if (bDefVal) rows.Field("ID").Value(kUnstoredId);
}

bool ClsArticulosAlmacenes::ComprobarAlmcen(const Variant& vIdReg) const {
  const RecordsetPtr rows = primary().Clone();
  const std::string wanted = joined(vIdReg);
  for (std::int32_t left = rows->RecordCount(); left > 0; --left) {
    const Variant warehouse = rows->Field("Almacén").Value();
    if (!warehouse.isNull() && joined(warehouse) == wanted) return false;
    rows->MoveNext();
  }
  return true;
}

double ClsArticulosAlmacenes::SumaEstock() const {
  double sum = 0;
  for (const RecordsetPtr rows = primary().Clone(); !rows->Eof(); rows->MoveNext()) {
    sum += asNumber(rows->Field("Cantidad").Value());
  }
  return sum;
}

void ClsArticulosAlmacenes::UpdateId(const Variant& vId) {
  Recordset& rows = primary();
  if (rows.RecordCount() == 0) return;
  numberNewRows(rows, NuevoCodigo(GetConnection()), vId);
}

void ClsArticulosAlmacenes::UpdateadAffectCurrent(const Variant& vId) {
  keyCurrentRow(primary(), vId);
}

void ClsArticulosAlmacenes::CancelBatch() {
  primary().CancelBatch();
}

// ---------------------------------------------------------------------------------------------
// Movements

void ClsArticulosAlmacenes::ActualizarStock_Alm(const Variant& vId, const Variant& vIdAlm,
                                                const Variant& vCant, ObjCn cnnActive) const {
  if (!stock::isKept(clsArticulos(), vId, *cnnActive)) return;
  Statement statement("UPDATE  Articulos_Almacenes SET Cantidad =  ");
  statement << spliced(stock::bare(vCant)) << ofPair(joined(vId), joined(vIdAlm));
  write(statement, *cnnActive);
}

void ClsArticulosAlmacenes::ActualizarStock_Recep(const Variant& vId, const Variant& vIdAlm,
                                                  const Variant& vCant, ObjCn cnnActive) const {
  const clsArticulos articles;
  if (!stock::isKept(articles, vId, *cnnActive)) return;
  const double dMedida = stock::measure(articles, vId, *cnnActive);
  const double dIn = stock::units(vCant, true, dMedida);
  const double dOut = stock::rounded(stock::units(vCant, false, dMedida));
  write(additions(dIn, dOut, joined(vId), joined(vIdAlm)), *cnnActive);
}

void ClsArticulosAlmacenes::ActualizarStock(const Variant& vId, const Variant& vIdAlm,
                                            const Variant& vCant, const Variant& vRec, bool bSumar,
                                            bool /*bExistencia*/, ObjCn cnnActive) const {
  const clsArticulos articles;
  if (!stock::isKept(articles, vId, *cnnActive)) return;
  const double dMedida = stock::measure(articles, vId, *cnnActive);
  add(vId, vIdAlm, stock::units(vRec, bSumar, dMedida), stock::units(vCant, bSumar, dMedida),
      *cnnActive);
}

void ClsArticulosAlmacenes::ActualizarStock_sund(const Variant& vId, const Variant& vIdAlm,
                                                 const Variant& vCant, const Variant& vRec,
                                                 bool bSumar, bool /*bExistencia*/,
                                                 ObjCn cnnActive) const {
  if (!stock::isKept(clsArticulos(), vId, *cnnActive)) return;
  add(vId, vIdAlm, stock::units(vRec, bSumar), stock::units(vCant, bSumar), *cnnActive);
}

void ClsArticulosAlmacenes::add(const Variant& vId, const Variant& vIdAlm, double dCant,
                                double dPend, ConnectionPtr& cnnActive) const {
  dCant = stock::rounded(dCant);
  if (EstaEnElAlmacen(vId, vIdAlm, cnnActive)) {
    write(additions(dCant, dPend, joined(vId), joined(vIdAlm)), cnnActive);
  } else {
    insert(vId, vIdAlm, dCant, dPend, cnnActive);
  }
}

void ClsArticulosAlmacenes::insert(const Variant& vId, const Variant& vIdAlm, double dCant,
                                   double dPend, ConnectionPtr& cnnActive) const {
  Statement statement(
      "INSERT INTO Articulos_Almacenes ( Id, Codigo, Almacen, Cantidad, Pendiente )"
      " SELECT ");
  statement << spliced(joined(NuevoCodigo(cnnActive))) << " AS Expr1, '" << spliced(joined(vId))
            << "' AS Expr2, '" << spliced(joined(vIdAlm)) << "' AS Expr3, "
            << spliced(stock::bare(dCant)) << " AS Expr4, " << spliced(stock::bare(dPend))
            << " AS Expr5";
  write(statement, cnnActive);
}

void ClsArticulosAlmacenes::DescargarStock_V(const Variant& vId, const Variant& vIdAlm,
                                             const Variant& vCant, const Variant& vRec, bool bSumar,
                                             bool /*bExistencia*/, ObjCn cnnActive) const {
  if (!stock::isSold(clsArticulos(), vId, *cnnActive)) return;
  const double dPend = stock::units(vCant, bSumar);
  const double dCant = stock::rounded(stock::units(vRec, bSumar));
  if (!EstaEnElAlmacen(vId, vIdAlm, *cnnActive)) {
    insert(vId, vIdAlm, dCant, dPend, *cnnActive);
    return;
  }
  Statement statement("UPDATE  Articulos_Almacenes SET Cantidad = Cantidad + ");
  statement << spliced(stock::bare(dCant)) << ofPair(joined(vId), joined(vIdAlm));
  write(statement, *cnnActive);
}

void ClsArticulosAlmacenes::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Almacenes WHERE (Codigo = '{id}')", vId), *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Reads

bool ClsArticulosAlmacenes::EstaEnElAlmacen(const Variant& vId, const Variant& vIdAlm,
                                            ObjCn objCn) const {
  Statement statement(
      "SELECT Id, Codigo AS Código, Almacen as Almacén, Cantidad FROM Articulos_Almacenes"
      "  Where ( Codigo =  '");
  statement << spliced(joined(vId)) << "' and Almacen =  '" << spliced(joined(vIdAlm)) << "')";
  return anyRow(statement, *objCn);
}

std::vector<Variant> ClsArticulosAlmacenes::ObtenerColAlmaActivos(const Variant& id,
                                                                  ObjCn objCn) const {
  return columnValues(
      *readOn(selector::kImport,
              withId("SELECT Almacen FROM Articulos_Almacenes WHERE Codigo =  '{id}'", id), *objCn),
      "Almacen");
}

Variant ClsArticulosAlmacenes::GetStockActualDif(const Variant& vIdAlmacen, const Variant& vId,
                                                 ObjCn objCn) const {
  Statement statement("SELECT sum(Cantidad) AS Stock FROM Articulos_Almacenes WHERE(Almacen <>  '");
  statement << spliced(joined(vIdAlmacen)) << "' and Codigo =  '" << spliced(joined(vId)) << "')";
  return lookUp(statement, "Stock", *objCn);
}

Variant ClsArticulosAlmacenes::GetStockActual(const Variant& vId, ObjCn objCn) const {
  return lookUp(
      withId("SELECT sum(Cantidad) AS Stock FROM Articulos_Almacenes WHERE Codigo =  '{id}'", vId),
      "Stock", *objCn);
}

bool ClsArticulosAlmacenes::CodigoLibre(const Variant& vId, const Variant& vIdSec,
                                        ObjCn objCn) const {
  Statement statement(
      "SELECT Almacen, Codigo FROM Articulos_Almacenes "
      " where (Almacen ='");
  statement << spliced(joined(vId)) << "' and Codigo='" << spliced(joined(vIdSec)) << "')";
  return !anyRow(statement, *objCn);
}

const Component& ClsArticulosAlmacenes::component() {
  using C = ClsArticulosAlmacenes;
  constexpr std::string_view kMovement =
      "vId, vIdAlm, vCant, vRec, [bSumar = True], [bExistencia], [cnnActive]";
  static const Component table(
      "ClsArticulosAlmacenes", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B603}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail(
          {
              frameMember("GetRptPath"),
              frameMember("GetConnectionStrToRpt"),
              frameMember("sClassName"),
              frameMember("GetConnection"),
              frameMember("GetConnectionStr"),
              member("ComprobarAlmcen", &C::ComprobarAlmcen, "vIdReg"),
              member("SumaEstock", &C::SumaEstock),
              member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
              member("ActualizarStock_Alm", &C::ActualizarStock_Alm,
                     "vId, vIdAlm, vCant, [cnnActive]"),
              member("ActualizarStock_Recep", &C::ActualizarStock_Recep,
                     "vId, vIdAlm, vCant, [cnnActive]"),
              member("ActualizarStock", &C::ActualizarStock, kMovement),
              member("ActualizarStock_sund", &C::ActualizarStock_sund, kMovement),
              member("DescargarStock_V", &C::DescargarStock_V, kMovement),
              member("EstaEnElAlmacen", &C::EstaEnElAlmacen, "vId, vIdAlm, [objCn]"),
              member("ObtenerColAlmaActivos", &C::ObtenerColAlmaActivos, "id, [objCn]"),
              member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
              frameMember("NuevoCodigo"),
              member("GetStockActualDif", &C::GetStockActualDif, "vIdAlmacen, vId, [objCn]"),
              member("GetStockActual", &C::GetStockActual, "vId, [objCn]"),
              frameMember("SeguridadPermiso"),
              member("CodigoLibre", &C::CodigoLibre, "vId, vIdSec, [objCn]"),
          },
          {
              member("AddNew", &C::AddNew, "[bDefVal]"),
              member("UpdateId", &C::UpdateId, "vId"),
              member("UpdateadAffectCurrent", &C::UpdateadAffectCurrent, "vId"),
              member("CancelBatch", &C::CancelBatch),
          }));
  return table;
}

}  // namespace tavelor
