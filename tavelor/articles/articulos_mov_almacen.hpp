// SPDX-License-Identifier: MIT
// The ledger of warehouse movements.
#pragma once

#include <cstdint>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// One row a movement of an article in a warehouse. Quantities stand as they were given; the sign
/// is the kind of movement, 0 an entry and 1 an exit. The document that a movement belongs to is
/// the pair of its number and its state. The ledger moves no stock: whoever does writes a movement
/// beside it, and the sums here serve to check and to value stock.
///
/// A date is a Date or a text that is read by the locale.
class TAVELOR_API ClsArticulosMovAlmacen final : public OpensByWord {
 public:
  ClsArticulosMovAlmacen();
  std::string typeName() const override { return "ClsArticulosMovAlmacen"; }
  static const Component& component();

  // ---- Deleting

  /// The movements of one document.
  void DeleteAll(const Variant& vId, std::int16_t iEstado, ObjCn cnnActive = {}) const;
  /// The same, but those of internal articles and of articles that are not there.
  void DeleteAll_no_Interno(const Variant& vId, std::int16_t iEstado, ObjCn cnnActive = {}) const;
  /// The movements up to a date.
  void DeleteFecha(const Variant& dtInicio, ObjCn cnnActive = {}) const;

  // ---- Sums, in stock units; 0 without a movement

  /// Entries of an article.
  double GetEntradas_Art(const Variant& vId, ObjCn objCn = {}) const;
  /// Exits of an article.
  double GetSalidas_Art(const Variant& vId, ObjCn objCn = {}) const;
  /// Entries minus exits of an article.
  double GetTotalMaovArt(const Variant& vId, ObjCn objCn = {}) const;
  /// From a date on, in one warehouse, or in all for "*".
  double GetEntradas_Art_Fecha(const Variant& vId, const Variant& dtInicio,
                               std::string_view sAlmacen = "*", ObjCn objCn = {}) const;
  /// The same of exits.
  double GetSalidas_Art_Fecha(const Variant& vId, const Variant& dtInicio,
                              std::string_view sAlmacen = "*", ObjCn objCn = {}) const;

  // ---- Prices

  /// Mean price of the entries from a date on, each counting once whatever its quantity.
  double GetPrecioMedioCompra_Art_periodo(const Variant& vId, const Variant& dtInicio,
                                          ObjCn objCn = {}) const;
  /// Takes the price off all movements from a date on, entries and exits.
  void Devaluar_Art_periodo(const Variant& vId, const Variant& dtInicio, ObjCn objCn = {}) const;

  // ---- Rows

  /// State of a movement; 0 without a row.
  std::int16_t GetState(const Variant& vId, ObjCn objCn = {}) const;
  /// Writes the state of the current row.
  void UpdateState(const Variant& vId);
  /// Warehouses that have movements in the import database.
  std::vector<Variant> ObtenerColAlmaActivos(ObjCn objCn = {}) const;
  /// The frame's; `serie` is not looked at.
  Variant NuevoCodigo(std::string_view serie = "A", ObjCn objCn = {}) const;
  /// Adds a row; `bDefVal` gives it the next key and today's date. `bIsInvoiced` is not looked at.
  void AddNew(bool bDefVal = true, bool bIsInvoiced = true);

  /// Parameters of Insertar, in their order.
  struct Movimiento {
    Variant vId = {};      ///< key, from NuevoCodigo
    Variant dtFecha = {};  ///< day
    Variant hHora = {};    ///< time of the day
    std::string sAlmacen = {};
    std::string sCodigo = {};  ///< article
    std::string sLote = {};
    double dCantidad = 0;
    double dPrecio = 0;
    std::string sReferencia = {};
    std::int16_t iMovimiento = 0;  ///< 0 entry, 1 exit
    std::string sSeccion = {};
    std::string sEmpleado = {};
    std::int16_t iEstado = 0;  ///< of the owning document
    double dDoc_E = 0;         ///< the owning document, a whole number
    std::string sCod_ID = {};  ///< line within the document
    ObjCn objCn = {};
  };
  /// Writes a movement. A document number with decimals raises a syntax error under a decimal
  /// comma, a key that is there the integrity error.
  void Insertar(const Movimiento& movimiento) const;

 private:
  void addRow(bool bDefVal) override { AddNew(bDefVal); }
  bool fillsNewRow() const override { return true; }
  double sumOfKind(const Variant& vId, Statement::Constant kind, ObjCn objCn) const;
  double sumSince(const Variant& vId, const Variant& dtInicio, std::string_view sAlmacen,
                  Statement::Constant kind, ObjCn objCn) const;
};

}  // namespace tavelor
