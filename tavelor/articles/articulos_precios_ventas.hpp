// SPDX-License-Identifier: MIT
// What customers pay for articles and families, and offers with a last day.
#pragma once

#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// A customer's prices: rows of one article, whose family is "0", and rows of a whole family, whose
/// article is "0". A row may grant a percentage instead of a price, or beside it. Prices are in the
/// shop's currency, percentages as 10 for 10 %.
///
/// A price of one cent means a free article. A row without a date never ends; one with a date still
/// counts on that day. Which look-up comes first, and what counts when none applies, is for the
/// caller that fills a document line.
class TAVELOR_API ClsArticulosPreciosVentas final : public OpensByWord {
 public:
  ClsArticulosPreciosVentas();
  std::string typeName() const override { return "ClsArticulosPreciosVentas"; }
  static const Component& component();

  // ---- Look-ups

  /// Ids of a customer's rows of a list, by article.
  std::vector<Variant> ObtenerPreciosCliente(std::string_view sId, std::string_view sLista,
                                             ObjCn objCn = {}) const;

  /// Parameters of GetDatosImport, in their order.
  struct Datos {
    Variant vId;  ///< of the row
    std::string sCodigo;
    std::string sDescripcion;
    double dPrecio = 0;
    std::string sFamilia;
    bool bDto = false;
    double dPorcentaje = 0;
    std::string sLista;
    ObjCn objCn = {};
  };
  /// One row. What is Null, or has no row, stays as it came.
  void GetDatosImport(Datos& datos) const;

  /// Whether the customer has a price of the article that applies today. `dPrecio` and `dDto` take
  /// what the row grants, and stay as they came where it grants nothing; a row that has expired
  /// writes them too, so go by the result. The price of an offer that still runs is net: it sets
  /// `dDto` to 0, unless the row grants a percentage. Of several rows any one is taken.
  bool GetPrecioVenta(const Variant& vId, const Variant& vIdCli, InOut<double> dPrecio,
                      InOut<float> dDto, ObjCn objCn = {}) const;
  /// The same of a family, `vId`; every row applies, whatever its date and price.
  bool GetPrecioVentaFamilia(const Variant& vId, const Variant& vIdCli, InOut<double> dPrecio,
                             InOut<float> dDto, ObjCn objCn = {}) const;

  // ---- Writing

  /// Turns all prices from pesetas to euros, once; what is Null becomes 0.
  void ActualizarEuros(ObjCn cnnActive = {}) const;
  /// Deletes the rows of an article or of a customer: whatever bears that code.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Raises all prices of a customer by a percentage, rounded to the currency's decimals. The code
  /// may hold wildcards: "*" is every customer.
  void ActualizarTarifas(std::string_view sCliente, double dPorcent, ObjCn cnnActive = {}) const;
  /// Adds a price of an article, without a percentage and a date.
  void Insertar(const Variant& vCod, std::string_view sDescripcion, std::string_view sCliente,
                double dPrecio, std::string_view sLista, ObjCn objCn = {}) const;

  /// Parameters of the two members below, in their order.
  struct Oferta {
    std::string sCod;
    std::string sCliente;
    std::string sDescripcion;
    double dPrecio = 0;
    std::string sFamilia;  ///< "0" for a row of an article
    bool bDto = false;
    double dPorcentaje = 0;
    std::string sLista;
    Variant dtFecha;  ///< of InsertarOferta: the last day; blank for none
    ObjCn objCn = {};
  };
  /// Adds a row with a last day. Raises 13 for what is no date.
  void InsertarOferta(const Oferta& oferta) const;
  /// Adds a row without a last day.
  void InsertarTodo(const Oferta& oferta) const;

  // ---- The grid

  /// Name of the column of families in the lists.
  std::string sQFamilia() const { return "Familia"; }
  /// Writes the description of the current row; Update stores it.
  void SetDesripcion(std::string_view sDes);
  /// Adds a row; with `bDefVal` one of that customer with a code of its own, else empty.
  void AddNew(bool bDefVal = false, std::string_view sIdCli = {});
  /// Posts the current row; a row of an article without a date gets the date 01/01/2040.
  void Update() override;
  /// Posts the current row as it is, if it is being edited.
  void Update_Familia();

  /// Whether the customer `vId` has no row of the article `vIdSec`.
  bool CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;
  /// Whether the customer `vId` has no row of the family `vIdSec`.
  bool FamiliaLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;

 private:
  void addRow(bool bDefVal) override { AddNew(bDefVal); }
  void insert(const Oferta& oferta, Statement::Constant dateColumn, const std::string& date) const;
};

}  // namespace tavelor
