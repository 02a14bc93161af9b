// SPDX-License-Identifier: MIT
// ClsArticulosLotes, stock by lot.
#include "tavelor/articles/articulos_lotes.hpp"

#include <array>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/stock.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/numbering/numeradores.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

// Table Articulos_Lotes: Existencia of the article Codigo in the lot Lote. Activo is -1 for the
// active lot in a file database and 1 in a server's, 0 for the others, 2 for one set aside; Stock
// says that sales take from the lot; Caduca is its expiry.

namespace {

constexpr std::string_view kTodos =
    "SELECT Id, Lote, Codigo AS Artículo, Existencia, Activo, Caduca, Stock FROM Articulos_Lotes";

constexpr std::array kModes = {
    Mode{"todos_lista",
         "SELECT  Lote, Codigo AS Artículo,  Existencia, Activo, Caduca, Id FROM Articulos_Lotes"},
    Mode{"seleccion", kTodos, " WHERE Codigo =  '{id}'"},
    Mode{"seleccionlote",
         "SELECT Lote as Código , Codigo AS Artículo, Existencia FROM Articulos_Lotes",
         " WHERE Codigo =  '{id}'"},
    Mode{"seleccionlotestock", "SELECT Lote, Codigo AS Artículo, Existencia FROM Articulos_Lotes",
         " WHERE Codigo =  '{id}' And Existencia > 0"},
    Mode{"seleccionartlote",
         " SELECT Articulos_Lotes.Codigo as Código , Articulos.Descripcion AS Descripción,"
         " Articulos_Lotes.lote, Articulos_Lotes.Activo, Articulos_Lotes.id"
         " FROM Articulos INNER JOIN Articulos_Lotes ON Articulos.Codigo = Articulos_Lotes.Codigo",
         " WHERE (((Articulos_Lotes.Lote) like  '{id}'))"},
    Mode{"seleccionsololote",
         "SELECT Lote as Código , Codigo AS Artículo, Activo, Id FROM Articulos_Lotes",
         " WHERE Codigo like  '{id}'"},
    Mode{kAnyOtherWord, kTodos},
};

constexpr ClassInfo kInfo = {
    .word = "Articulos_Lotes",
    .table = "Articulos_Lotes",
    .codeColumn = "Id",
    .modes = kModes,
    .addNew = AddNewForm::kShort,
    .clearsDataMembers = true,
};

constexpr std::string_view kNameOfLot = "SELECT Codigo, lote, Activo FROM Articulos_Lotes";
constexpr std::string_view kSumOfLots = "SELECT sum(Existencia) AS Stock FROM Articulos_Lotes";
constexpr std::string_view kLot = "SELECT Id, Codigo AS Código, Lote FROM Articulos_Lotes";
constexpr std::string_view kSeveralArticles = "+1";

bool isNoLot(const std::string& lot) {
  return lot.empty() || lot == "0";
}

Statement withPair(Statement::Constant before, const std::string& first,
                   Statement::Constant between, const std::string& second,
                   Statement::Constant after) {
  Statement statement(before);
  statement << spliced(first) << between << spliced(second) << after;
  return statement;
}

Statement ofLot(const std::string& article, const std::string& lot) {
  return withPair(" WHERE(Codigo ='", article, "' and Lote ='", lot, "')");
}

Statement addition(double dCant) {
  Statement statement("UPDATE  Articulos_Lotes SET Existencia = Existencia + ");
  statement << spliced(stock::bare(dCant));
  return statement;
}

}  // namespace

ClsArticulosLotes::ClsArticulosLotes() : OpensByWord(kInfo) {}

// ---------------------------------------------------------------------------------------------
// Purchases

void ClsArticulosLotes::ActualizarStock(const Variant& vId, const Variant& vIdLote,
                                        const Variant& vCant, const Variant& vRec, bool bSumar,
                                        bool /*bExistencia*/, ObjCn cnnActive) const {
  if (clsArticulos::isFreeText(vId) || isNoLot(joined(vIdLote))) return;
  const double dMedida = stock::measure(clsArticulos(), vId, *cnnActive);
  stock::quantity(vCant);  // must be a number, and is not used
  purchase(vId, vIdLote, stock::units(vRec, bSumar, dMedida), *cnnActive);
}

void ClsArticulosLotes::ActualizarStock_sund(const Variant& vId, const Variant& vIdLote,
                                             const Variant& vCant, const Variant& vRec, bool bSumar,
                                             bool /*bExistencia*/, ObjCn cnnActive) const {
  if (clsArticulos::isFreeText(vId) || isNoLot(joined(vIdLote))) return;
  stock::quantity(vCant);  // must be a number, and is not used
  purchase(vId, vIdLote, stock::units(vRec, bSumar), *cnnActive);
}

void ClsArticulosLotes::purchase(const Variant& vId, const Variant& vIdLote, double dCant,
                                 ConnectionPtr& cnnActive) const {
  dCant = stock::rounded(dCant);
  if (ExisteLote(vId, vIdLote, cnnActive)) {
    Statement statement = addition(dCant);
    statement << ofLot(joined(vId), joined(vIdLote));
    write(statement, cnnActive);
  } else {
    const Statement statement = insertion(vId, vIdLote, dCant, "-1", cnnActive);
    NoActivos(vId, cnnActive);
    write(statement, cnnActive);
  }
}

// -1 whatever the database: a new lot of a server is active for GetPredeterminada and for
// ExisteActivo, one that a sale has made active there (1) only for the former.
Statement ClsArticulosLotes::insertion(const Variant& vId, const Variant& vIdLote, double dCant,
                                       Statement::Constant active, ConnectionPtr& cnnActive) const {
  const std::string id = joined(NuevoCodigo(cnnActive));
  Statement statement(
      "INSERT INTO Articulos_Lotes ( Id, Codigo, Lote, Existencia, Activo )"
      " SELECT ");
  statement << spliced(id) << " AS Expr1, '" << spliced(joined(vId)) << "' AS Expr2, '"
            << spliced(joined(vIdLote)) << "' AS Expr3, " << spliced(stock::bare(dCant))
            << " AS Expr4, " << active << " AS Expr5";
  return statement;
}

// ---------------------------------------------------------------------------------------------
// Sales

void ClsArticulosLotes::DescargarStock_V(const Variant& vId, const Variant& vIdLote,
                                         const Variant& /*vCant*/, const Variant& vRec, bool bSumar,
                                         ObjCn cnnActive) const {
  if (clsArticulos::isFreeText(vId)) return;
  stock::connect(*cnnActive);
  if (isNoLot(joined(vIdLote))) return;
  const double dCant = stock::rounded(stock::units(vRec, bSumar));
  if (ExisteLote(vId, vIdLote, *cnnActive)) {
    sellKnown(vId, vIdLote, dCant, *cnnActive);
  } else {
    NoActivos(vId, *cnnActive);
    write(insertion(vId, vIdLote, dCant, "-1 ", *cnnActive), *cnnActive);
  }
}

// The active lot is put out before the flag of the lot is asked, so that a sale from a lot that
// keeps no stock leaves the article without an active lot. Callers see that and choose one: the
// order of the two stays.
void ClsArticulosLotes::sellKnown(const Variant& vId, const Variant& vIdLote, double dCant,
                                  ConnectionPtr& cnnActive) const {
  const bool becomesActive = clsNumeradores().ActivarLoteUso(vId, cnnActive);
  if (becomesActive) NoActivos(vId, cnnActive);
  if (!DescargaStockLote(vId, vIdLote, cnnActive)) return;
  Statement statement = addition(dCant);
  if (becomesActive) {
    statement << (DataSession().IsDbFile(info().selector)
                      ? Statement::Constant(" , Articulos_Lotes.Activo = -1")
                      : " , Articulos_Lotes.Activo = 1");
  }
  statement << ofLot(joined(vId), joined(vIdLote));
  write(statement, cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Small updates

void ClsArticulosLotes::ActualizarFecha(const Variant& vId, const Variant& vIdLote,
                                        const Variant& dtFecha, ObjCn cnnActive) const {
  Statement statement("UPDATE  Articulos_Lotes SET   Caduca = '");
  statement << spliced(joined(dtFecha)) << "'" << ofLot(joined(vId), joined(vIdLote));
  write(statement, *cnnActive);
}

void ClsArticulosLotes::NoActivos(const Variant& vId, ObjCn cnnActive) const {
  write(withId("UPDATE  Articulos_Lotes SET Activo = 0 WHERE(Codigo ='{id}' )", vId), *cnnActive);
}

void ClsArticulosLotes::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  write(withId("DELETE  FROM Articulos_Lotes WHERE (Codigo = '{id}')", vId), *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Reads

bool ClsArticulosLotes::ExisteLote(const Variant& vId, const Variant& vIdLote, ObjCn objCn) const {
  Statement statement(kLot);
  statement << withPair("  Where ( Codigo =  '", joined(vId), "' and Lote =  '", joined(vIdLote),
                        "')");
  return anyRow(statement, *objCn);
}

bool ClsArticulosLotes::EsValidoLote(const Variant& vIdLote, ObjCn objCn) const {
  Statement statement(kLot);
  statement << withId("  Where ( Lote =  '{id}')", vIdLote);
  return anyRow(statement, *objCn);
}

bool ClsArticulosLotes::DescargaStockLote(const Variant& vId, const Variant& vIdLote,
                                          ObjCn objCn) const {
  Statement statement(kLot);
  statement << withPair("  Where ( Codigo =  '", joined(vId), "' and Lote =  '", joined(vIdLote),
                        "' And Stock <> 0)");
  return anyRow(statement, *objCn);
}

Variant ClsArticulosLotes::GetPredeterminada(const Variant& vId, ObjCn objCn) const {
  Statement statement(kNameOfLot);
  statement << withId(" WHERE (Activo <>  0 and Codigo =  '{id}')", vId);
  return lookUp(statement, "lote", *objCn);
}

Variant ClsArticulosLotes::GetUltimoLote(const Variant& vId, ObjCn objCn) const {
  Statement statement(kNameOfLot);
  statement << withId(" WHERE (Id =  {id})", vId);
  return lookUp(statement, "lote", *objCn);
}

Variant ClsArticulosLotes::GetUltimoIDLote(const Variant& vId, ObjCn objCn) const {
  return lookUp(withId("SELECT Max(Articulos_Lotes.Id) AS MáxDeId FROM Articulos_Lotes"
                       " WHERE (Activo <>  2 and Codigo =  '{id}')",
                       vId),
                "MáxDeId", *objCn);
}

bool ClsArticulosLotes::ExisteActivo(const Variant& vId, ObjCn objCn) const {
  return anyRow(withId("SELECT Codigo, Activo FROM Articulos_Lotes"
                       " WHERE (Activo =  -1 and Codigo =  '{id}')",
                       vId),
                *objCn);
}

Variant ClsArticulosLotes::GetStockActualLotesDif(const Variant& vIdLote, const Variant& vId,
                                                  ObjCn objCn) const {
  Statement statement(kSumOfLots);
  statement << withPair(" WHERE (Lote <>  '", joined(vIdLote), "' and Codigo =  '", joined(vId),
                        "')");
  return lookUp(statement, "Stock", *objCn);
}

Variant ClsArticulosLotes::GetStockActualLote(const Variant& vIdLote, const Variant& vId,
                                              ObjCn objCn) const {
  Statement statement(kSumOfLots);
  statement << withPair(" WHERE (Lote =  '", joined(vIdLote), "' and Codigo =  '", joined(vId),
                        "')");
  return lookUp(statement, "Stock", *objCn);
}

Variant ClsArticulosLotes::GetStockActualLotes(const Variant& vId, ObjCn objCn) const {
  Statement statement(kSumOfLots);
  statement << withId(" WHERE Codigo =  '{id}'", vId);
  return lookUp(statement, "Stock", *objCn);
}

std::string ClsArticulosLotes::GetArticulo(const Variant& vIdLote, ObjCn objCn) const {
  const RecordsetPtr rows =
      read(withId("SELECT Codigo FROM Articulos_Lotes WHERE (Lote =  '{id}' )", vIdLote), *objCn);
  if (rows->RecordCount() > 1) return std::string(kSeveralArticles);
  return rows->RecordCount() == 0 ? std::string() : joined(rows->Field("codigo").Value());
}

bool ClsArticulosLotes::CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn) const {
  return !anyRow(withPair("SELECT lote , Codigo FROM Articulos_Lotes "
                          " where (lote ='",
                          joined(vId), "' and codigo='", joined(vIdSec), "')"),
                 *objCn);
}

const Component& ClsArticulosLotes::component() {
  using C = ClsArticulosLotes;
  constexpr std::string_view kMovement =
      "vId, vIdLote, vCant, vRec, [bSumar = True], [bExistencia], [cnnActive]";
  static const Component table(
      "ClsArticulosLotes", "{6B1F0A52-3C4D-4E8B-9A57-21D0C7E4B604}", kInfo.word,
      []() -> std::unique_ptr<Object> { return std::make_unique<C>(); },
      withFrameTail({
          frameMember("GetRptPath"),
          frameMember("GetConnectionStrToRpt"),
          frameMember("sClassName"),
          frameMember("GetConnection"),
          frameMember("GetConnectionStr"),
          member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
          member("IniciaRs", &C::IniciaRs, "[inout sSelecSql], [id]"),
          member("ExisteLote", &C::ExisteLote, "vId, vIdLote, [objCn]"),
          member("EsValidoLote", &C::EsValidoLote, "vIdLote, [objCn]"),
          member("DescargaStockLote", &C::DescargaStockLote, "vId, vIdLote, [objCn]"),
          member("ActualizarStock", &C::ActualizarStock, kMovement),
          member("ActualizarStock_sund", &C::ActualizarStock_sund, kMovement),
          member("ActualizarFecha", &C::ActualizarFecha, "vId, vIdLote, dtFecha, [cnnActive]"),
          member("DescargarStock_V", &C::DescargarStock_V,
                 "vId, vIdLote, vCant, vRec, [bSumar = True], [cnnActive]"),
          member("NoActivos", &C::NoActivos, "vId, [cnnActive]"),
          member("GetPredeterminada", &C::GetPredeterminada, "vId, [objCn]"),
          member("GetUltimoLote", &C::GetUltimoLote, "vId, [objCn]"),
          member("GetUltimoIDLote", &C::GetUltimoIDLote, "vId, [objCn]"),
          member("ExisteActivo", &C::ExisteActivo, "vId, [objCn]"),
          member("GetStockActualLotesDif", &C::GetStockActualLotesDif, "vIdLote, vId, [objCn]"),
          member("GetStockActualLote", &C::GetStockActualLote, "vIdLote, vId, [objCn]"),
          member("GetArticulo", &C::GetArticulo, "vIdLote, [objCn]"),
          frameMember("NuevoCodigo"),
          member("GetStockActualLotes", &C::GetStockActualLotes, "vId, [objCn]"),
          frameMember("SeguridadPermiso"),
          member("CodigoLibre", &C::CodigoLibre, "vId, vIdSec, [objCn]"),
      }));
  return table;
}

}  // namespace tavelor
