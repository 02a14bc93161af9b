// SPDX-License-Identifier: MIT
// Stock of articles by warehouse.
#pragma once

#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// How much of an article lies in each warehouse, and how much is on order for it. At most one row
/// a pair, made by its first movement and kept single by these members alone.
///
/// The record set is a batch: rows that a grid adds have the ID -1 and no article until UpdateId,
/// Delete only marks, and Update writes all that is pending.
class TAVELOR_API ClsArticulosAlmacenes final : public OpensOnConnection {
 public:
  ClsArticulosAlmacenes();
  std::string typeName() const override { return "ClsArticulosAlmacenes"; }
  static const Component& component();

  // ---- The grid of one article

  /// Adds a row; `bDefVal` marks it as not stored yet.
  void AddNew(bool bDefVal = false);
  /// Whether no row of the grid is of that warehouse.
  bool ComprobarAlmcen(const Variant& vIdReg) const;
  /// Sum of the grid's rows, in stock units.
  double SumaEstock() const;
  /// Gives rows that were added the article `vId` and keys of their own; Update writes them.
  void UpdateId(const Variant& vId);
  /// Gives the current row the article `vId`; Update writes it.
  void UpdateadAffectCurrent(const Variant& vId);
  /// Drops all that is pending.
  void CancelBatch();

  // ---- Movements
  //
  // They do nothing, silently, for "$$$" and for articles of which no stock is kept. `vCant` is a
  // quantity on order, `vRec` one received or delivered; a text is read by the locale, 13 for what
  // is no number. `bSumar` false takes off. `bExistencia` is not looked at. Stock may get negative.

  /// Sets the stock of a pair; without a row nothing happens.
  void ActualizarStock_Alm(const Variant& vId, const Variant& vIdAlm, const Variant& vCant,
                           ObjCn cnnActive = {}) const;
  /// Reception of what was on order, in purchase units; without a row nothing happens.
  void ActualizarStock_Recep(const Variant& vId, const Variant& vIdAlm, const Variant& vCant,
                             ObjCn cnnActive = {}) const;
  /// Ordering and reception, in purchase units: `vRec` to the stock, `vCant` to what is on order.
  void ActualizarStock(const Variant& vId, const Variant& vIdAlm, const Variant& vCant,
                       const Variant& vRec, bool bSumar = true, bool bExistencia = false,
                       ObjCn cnnActive = {}) const;
  /// The same in stock units.
  void ActualizarStock_sund(const Variant& vId, const Variant& vIdAlm, const Variant& vCant,
                            const Variant& vRec, bool bSumar = true, bool bExistencia = false,
                            ObjCn cnnActive = {}) const;
  /// A sale, with `bSumar` false, or its return: `vRec` in stock units, of an article that sales
  /// take off. `vCant` is looked at only for a pair without a row, as what is on order in the new
  /// one.
  void DescargarStock_V(const Variant& vId, const Variant& vIdAlm, const Variant& vCant,
                        const Variant& vRec, bool bSumar = true, bool bExistencia = false,
                        ObjCn cnnActive = {}) const;
  /// Deletes the rows of an article.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;

  // ---- Reads

  /// Whether the article has a row in that warehouse, whatever its stock.
  bool EstaEnElAlmacen(const Variant& vId, const Variant& vIdAlm, ObjCn objCn = {}) const;
  /// Warehouses that an article has in the import database.
  std::vector<Variant> ObtenerColAlmaActivos(const Variant& id, ObjCn objCn = {}) const;
  /// Stock in all warehouses but one; Empty without a row.
  Variant GetStockActualDif(const Variant& vIdAlmacen, const Variant& vId, ObjCn objCn = {}) const;
  /// Stock in all warehouses; Empty without a row.
  Variant GetStockActual(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether the warehouse `vId` has no row of the article `vIdSec`.
  bool CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;

 private:
  void addRow(bool bDefVal) override { AddNew(bDefVal); }
  /// Adds to the row of a pair, or makes it.
  void add(const Variant& vId, const Variant& vIdAlm, double dCant, double dPend,
           ConnectionPtr& cnnActive) const;
  void insert(const Variant& vId, const Variant& vIdAlm, double dCant, double dPend,
              ConnectionPtr& cnnActive) const;
};

}  // namespace tavelor
