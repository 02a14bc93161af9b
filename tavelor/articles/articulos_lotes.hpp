// SPDX-License-Identifier: MIT
// Stock of articles by lot.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Stock of an article by lot, for articles that are kept by lots. One lot of an article is meant
/// to be active, the one that a sale takes from unless it names another: a new lot becomes it, and,
/// where the current period works with lots of use, the lot last sold. Expiry dates are for people:
/// nothing here looks at them. A lot is not tied to a warehouse.
///
/// The lot words "0" and "" mean no lot.
class TAVELOR_API ClsArticulosLotes final : public OpensByWord {
 public:
  ClsArticulosLotes();
  std::string typeName() const override { return "ClsArticulosLotes"; }
  static const Component& component();

  // ---- Movements
  //
  // They do nothing, silently, for "$$$" and without a lot; no flag of the article is asked.
  // `vRec` is the quantity received or delivered, `vCant` is not used; a text is read by the
  // locale, 13 for what is no number. `bSumar` false takes off. `bExistencia` is not looked at.

  /// A purchase, in purchase units. A new lot becomes the only active one; in a lot that is there
  /// the active one stays.
  void ActualizarStock(const Variant& vId, const Variant& vIdLote, const Variant& vCant,
                       const Variant& vRec, bool bSumar = true, bool bExistencia = false,
                       ObjCn cnnActive = {}) const;
  /// The same in stock units.
  void ActualizarStock_sund(const Variant& vId, const Variant& vIdLote, const Variant& vCant,
                            const Variant& vRec, bool bSumar = true, bool bExistencia = false,
                            ObjCn cnnActive = {}) const;
  /// A sale, with `bSumar` false, or its return, in stock units. A lot that is not there is made,
  /// active, with negative stock. Where lots of use are on, the lot becomes the only active one;
  /// but a lot that keeps no stock is then left inactive like all others.
  void DescargarStock_V(const Variant& vId, const Variant& vIdLote, const Variant& vCant,
                        const Variant& vRec, bool bSumar = true, ObjCn cnnActive = {}) const;
  /// Sets the expiry of a lot; a text is read by the locale.
  void ActualizarFecha(const Variant& vId, const Variant& vIdLote, const Variant& dtFecha,
                       ObjCn cnnActive = {}) const;
  /// Leaves an article without an active lot.
  void NoActivos(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Deletes the lots of an article.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;

  // ---- Reads

  /// Whether the article has that lot, whatever its stock.
  bool ExisteLote(const Variant& vId, const Variant& vIdLote, ObjCn objCn = {}) const;
  /// Whether any article has that lot.
  bool EsValidoLote(const Variant& vIdLote, ObjCn objCn = {}) const;
  /// Whether a sale takes from that lot.
  bool DescargaStockLote(const Variant& vId, const Variant& vIdLote, ObjCn objCn = {}) const;
  /// The active lot of an article, or Empty; of several the first one that the database gives.
  Variant GetPredeterminada(const Variant& vId, ObjCn objCn = {}) const;
  /// The lot word of the key `vId`, or Empty.
  Variant GetUltimoLote(const Variant& vId, ObjCn objCn = {}) const;
  /// Greatest key of an article's lots that are not set aside (Activo 2), or Empty.
  Variant GetUltimoIDLote(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether a lot is active with -1, as a file database has it; the 1 of a server does not count.
  bool ExisteActivo(const Variant& vId, ObjCn objCn = {}) const;
  /// Stock in all lots but one; Empty without a row.
  Variant GetStockActualLotesDif(const Variant& vIdLote, const Variant& vId,
                                 ObjCn objCn = {}) const;
  /// Stock in one lot; Empty without a row.
  Variant GetStockActualLote(const Variant& vIdLote, const Variant& vId, ObjCn objCn = {}) const;
  /// Stock in all lots; Empty without a row.
  Variant GetStockActualLotes(const Variant& vId, ObjCn objCn = {}) const;
  /// The article that has a lot of that word: "" for none, "+1" for several.
  std::string GetArticulo(const Variant& vIdLote, ObjCn objCn = {}) const;
  /// Whether the article `vIdSec` has no lot `vId`.
  bool CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;

 private:
  void purchase(const Variant& vId, const Variant& vIdLote, double dCant,
                ConnectionPtr& cnnActive) const;
  void sellKnown(const Variant& vId, const Variant& vIdLote, double dCant,
                 ConnectionPtr& cnnActive) const;
  /// The statement of a new active lot, with the next key. `active` is how it says so.
  Statement insertion(const Variant& vId, const Variant& vIdLote, double dCant,
                      Statement::Constant active, ConnectionPtr& cnnActive) const;
};

}  // namespace tavelor
