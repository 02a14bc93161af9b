// SPDX-License-Identifier: MIT
// clsArticulos: the totals of stock in the article's row.
//
// Articulos.Existencia is one of four places that hold stock, beside warehouses, lots and the
// ledger of movements. No member touches more than one of them: whoever composes a sale or a
// purchase calls each in turn, on one connection, inside a transaction.
#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/stock.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor {

namespace {

/// " WHERE(Codigo ='A100')": `end` closes the condition.
Statement ofArticle(const std::string& code, Statement::Constant end = "')") {
  Statement condition(" WHERE(Codigo ='");
  condition << spliced(code) << end;
  return condition;
}

constexpr std::string_view kIfStocked = "' and Actualizar_Stock <> 0)";

/// Stock is printed bare and what is on order between quotes, by the locale. Both reach the column
/// as numbers; the difference stays, since the quoted one keeps all its decimals.
Statement additions(double dExist, double dPend, const std::string& code) {
  Statement statement("UPDATE  Articulos SET Existencia = Existencia + ");
  statement << spliced(stock::bare(dExist)) << ", Pendiente = Pendiente + '"
            << spliced(stock::plain(dPend)) << "'" << ofArticle(code);
  return statement;
}

}  // namespace

// ---------------------------------------------------------------------------------------------
// Absolute forms: what others did meanwhile is overwritten

void clsArticulos::setTotal(Statement::Constant column, const Variant& vId, const Variant& vCant,
                            ConnectionPtr& cnnActive) const {
  if (!stock::isKept(*this, vId, cnnActive)) return;
  Statement statement("UPDATE  Articulos SET ");
  statement << column << " = " << spliced(stock::bare(vCant)) << ofArticle(joined(vId));
  write(statement, cnnActive);
}

void clsArticulos::ActualizarStock(const Variant& vId, const Variant& vCant,
                                   ObjCn cnnActive) const {
  setTotal("Existencia", vId, vCant, *cnnActive);
}

void clsArticulos::ActualizarStockPendiente(const Variant& vId, const Variant& vCant,
                                            ObjCn cnnActive) const {
  setTotal("Pendiente", vId, vCant, *cnnActive);
}

void clsArticulos::ActualizarStockPendiente_Entrega(const Variant& vId, const Variant& vCant,
                                                    ObjCn cnnActive) const {
  setTotal("Pendiente_s", vId, vCant, *cnnActive);
}

void clsArticulos::DescargarStock(const Variant& vId, ObjCn cnnActive) const {
  if (!stock::isKept(*this, vId, *cnnActive)) return;
  Statement statement("UPDATE  Articulos SET Existencia = 0");
  statement << ofArticle(joined(vId));
  write(statement, *cnnActive);
}

void clsArticulos::RegularizarStock(const Variant& vId, ObjCn cnnActive) const {
  stock::connect(*cnnActive);
  const Variant inWarehouses = ClsArticulosAlmacenes().GetStockActual(vId, *cnnActive);
  Statement statement("UPDATE  Articulos SET Existencia = ");
  statement << spliced(stock::bare(inWarehouses)) << ofArticle(joined(vId));
  write(statement, *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Purchases

void clsArticulos::ActualizarStock_Pedido(const Variant& vId, const Variant& vCant,
                                          const Variant& vRec, bool bSumar, bool /*bExistencia*/,
                                          ObjCn cnnActive) const {
  if (!stock::isKept(*this, vId, *cnnActive)) return;
  const double dMedida = stock::measure(*this, vId, *cnnActive);
  const double dPend = stock::units(vCant, bSumar, dMedida);
  const double dExist = stock::rounded(stock::units(vRec, bSumar, dMedida));
  write(additions(dExist, dPend, joined(vId)), *cnnActive);
}

void clsArticulos::ActualizarStock_C(const Variant& vId, const Variant& vCant, const Variant& vRec,
                                     bool bSumar, bool bExistencia, ObjCn cnnActive) const {
  ActualizarStock_Pedido(vId, vCant, vRec, bSumar, bExistencia, *cnnActive);
}

// Only what is on order is rounded here, unlike in an order.
void clsArticulos::ActualizarStock_Recep_pedido(const Variant& vId, const Variant& vCant,
                                                ObjCn cnnActive) const {
  if (!stock::isKept(*this, vId, *cnnActive)) return;
  const double dMedida = stock::measure(*this, vId, *cnnActive);
  const double dIn = stock::units(vCant, true, dMedida);
  const double dOut = stock::rounded(stock::units(vCant, false, dMedida));
  write(additions(dIn, dOut, joined(vId)), *cnnActive);
}

void clsArticulos::ActualizarStock_Recep_Entrega(const Variant& vId, const Variant& vCant,
                                                 ObjCn cnnActive) const {
  if (!stock::isKept(*this, vId, *cnnActive)) return;
  Statement statement("UPDATE  Articulos SET Existencia = Existencia - ");
  statement << spliced(stock::bare(vCant)) << ofArticle(joined(vId));
  write(statement, *cnnActive);
}

void clsArticulos::ActualizarStock_Movimientos(const Variant& vId, const Variant& vCant,
                                               const Variant& vRec, bool bSumar,
                                               bool /*bExistencia*/, ObjCn cnnActive) const {
  if (!stock::isKept(*this, vId, *cnnActive)) return;
  // Read as in an order and not used: the quantities are in stock units.
  GetMedidaCompra(vId, *cnnActive);
  const double dPend = stock::units(vCant, bSumar);
  const double dExist = stock::rounded(stock::units(vRec, bSumar));
  write(additions(dExist, dPend, joined(vId)), *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Sales

void clsArticulos::DescargarStock_V(const Variant& vId, const Variant& vCant, const Variant& vRec,
                                    bool bSumar, bool /*bExistencia*/, ObjCn cnnActive) const {
  if (!stock::isSold(*this, vId, *cnnActive)) return;
  stock::quantity(vCant);  // must be a number, and is not used
  const double dExist = stock::rounded(stock::units(vRec, bSumar));
  Statement statement("UPDATE  Articulos SET Existencia = Existencia + ");
  statement << spliced(stock::bare(dExist)) << ofArticle(joined(vId), kIfStocked);
  write(statement, *cnnActive);
}

// The second sign of equality compares, so that the stock becomes 0 or -1: a package is emptied,
// not reduced, since its components carry the stock. It looks like a slip and must not be mended.
void clsArticulos::DescargarStockPaquete(const Variant& vId, const Variant& vCant,
                                         const Variant& vRec, bool bSumar, bool /*bExistencia*/,
                                         ObjCn cnnActive) const {
  if (isFreeText(vId)) return;
  stock::quantity(vCant);  // must be a number, and is not used
  const double dExist = stock::rounded(stock::units(vRec, bSumar));
  Statement statement("UPDATE  Articulos SET Existencia = Existencia = Existencia + ");
  statement << spliced(stock::bare(dExist)) << ofArticle(joined(vId), kIfStocked);
  write(statement, *cnnActive);
}

// ---------------------------------------------------------------------------------------------
// Average cost

// What the average is, is the caller's rule: nothing is weighed here.
void clsArticulos::ActualizarPrecioMedio(const Variant& vId, double dPrecioMedio, ObjCn cnnActive,
                                         double dCant) const {
  stock::connect(*cnnActive);
  if (isFreeText(vId)) return;
  if (dCant == 0) raise(errors::kDivisionByZero, info().word, "An average over a quantity of 0");
  Statement statement("UPDATE  Articulos SET Precio_Medio = '");
  statement << spliced(stock::plain(dPrecioMedio / dCant)) << "'" << ofArticle(joined(vId));
  write(statement, *cnnActive);
}

}  // namespace tavelor
