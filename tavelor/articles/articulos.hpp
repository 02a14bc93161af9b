// SPDX-License-Identifier: MIT
// The article master.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Everything that can be sold or bought: stocked goods, services, packages and internal items,
/// with three of their tariffs, their costs and the totals of their stock.
///
/// The code "$$$" is the article of free text, which updates of stock and price pass over. The list
/// word "TDS" puts an article into every list; "PRC" is the default list, which an empty list word
/// stands for when articles are looked up or written. Values are joined into statements without
/// escaping: a quote in a code or a description raises the database's syntax error.
///
/// Members that read one value give Empty, "", 0 or false for an article that is not there.
class TAVELOR_API clsArticulos final : public OpensByWordOnConnection {
 public:
  clsArticulos();
  std::string typeName() const override { return "clsArticulos"; }
  static const Component& component();

  // ---- Settings of the class's views

  /// A named value under the key `sLlave`, or `sDef`.
  std::string GetValorClsReg(std::string_view sLlave, std::string_view sValue,
                             std::string_view sDef) const;
  /// Stores a value where GetValorClsReg finds it. It outlives the program.
  void SetValorClsReg(std::string_view sLlave, std::string_view sKey,
                      std::string_view sValue) const;

  // ---- Exchange (articulos_intercambio.cpp)

  /// Sets the planning flag of all articles.
  void Aceptar_todos(ObjCn cnnActive = {}) const;
  /// Takes the planning flag off all articles.
  void Denegar_todos(ObjCn cnnActive = {}) const;
  /// Makes the articles saved in an XML file the primary record set, and gives it. Raises 53 for a
  /// file that is not there; then the record set is as it was.
  RecordsetPtr IniciaXML(std::string_view sPath);
  /// Brings what report engines read up to date; nothing on a database server.
  void UpdateTablesGeneralesToRpt() const;
  /// Saves all articles, with all columns, as XML; a table without articles writes no file. A file
  /// that is there is replaced, whole or not at all.
  void Create_xml_Articulos(std::string_view sPath, ObjCn objCn = {}) const;
  /// Puts the full path of the export file of that name in its place.
  void GetExportPath(InOut<std::string> sExportPath) const;
  /// Codes of the articles that a list sells.
  std::vector<Variant> ObtenerArticulosVentaActivos(std::string_view sLista,
                                                    ObjCn objCn = {}) const;
  /// Codes of all articles of the import database.
  std::vector<Variant> ObtenerArticulosImport(ObjCn objCn = {}) const;
  /// Tariff B or C of an article of the import database; A for any other word.
  double ObtenerTarifaArticuloImport(const Variant& vId, std::string_view sTarifa,
                                     ObjCn objCn = {}) const;
  /// Codes of the stocked articles that are in use and no packages.
  std::vector<Variant> ObtenerCol_Materiales(ObjCn objCn = {}) const;
  /// Fills the row that is being added from the last one before it. What tells an article apart
  /// stays the new row's own: code, reference, stock, what is on order and date. The new row stays
  /// in edit. Raises 3219 for a row that is not being added, and 3021 when there is no row before;
  /// either leaves the row as it was.
  void CopyPrevious();
  /// One condition of a report's selection formula from one control; "" for an empty one. `iType`
  /// is the operator: ">=", "<=", "Like"; anything else is "=".
  std::string CreateRptFilter(Control& ctl, std::string_view iType = {}) const;

  // ---- Small updates

  /// Puts an article into another list. A code that is not there is passed over.
  void CambiarListarticulo(const Variant& vId, std::string_view sLista, ObjCn cnnActive = {}) const;
  /// `bModo` is the flag as a number: any but 0 makes the article usable.
  void CambiarEstadoarticulo(const Variant& vId, double bModo, ObjCn cnnActive = {}) const;
  /// Gives an article another description, family and section. A code that is not there is passed
  /// over.
  void CambiarDescripcionarticulo(const Variant& vId, std::string_view sDescrip,
                                  std::string_view sFamilia, std::string_view sSeccion,
                                  ObjCn cnnActive = {}) const;

  // ---- Codes. NuevoCodigo keeps to the length of article codes that the counters tell, where it
  // is one, not to the width of the column.

  /// Whether there is an article with that code.
  bool ExisteArt(const Variant& vId, ObjCn objCn = {}) const;
  /// True for whatever code as soon as any article is in every list.
  bool ExisteArtEnLista(const Variant& vId, std::string_view sLista, ObjCn objCn = {}) const;
  /// Fills a code with zeros on the left to the length of article codes, in place; longer ones
  /// stay.
  std::string ObtenerCodigo(InOut<std::string> sMidato) const;
  /// The next code of a family: its code and three digits, more where they are used up. "MAT" gives
  /// MAT001, after MAT099 MAT100. A family code is taken to have three characters.
  std::string NuevoCodigo_Fam(std::string_view sFam, ObjCn objCn = {}) const;
  /// NuevoCodigo of the second code.
  Variant NuevaRef(ObjCn objCn = {}) const;
  /// Whether no article but `vIdCodigo` has that reference.
  bool CodigoRefLibre(const Variant& vId, const Variant& vIdCodigo, ObjCn objCn = {}) const;
  /// Adds a row; with `bDefVal`, filled with what a new article begins with. The record set must
  /// show the whole article.
  void AddNew(bool bDefVal = true);

  // ---- Names

  /// Full path of the class's text file.
  std::string GetTxtFile() const;
  /// Name of the column of codes in the lists.
  std::string sQCodigo() const { return "Código"; }
  /// Name of the column of families in the lists.
  std::string sQFamilia() const { return "Familia"; }
  /// Name of the column of sections in the lists.
  std::string sQseccion() const { return "Sección"; }

  // ---- Single values. Null raises 94 in those that give a number, but in GetValorInterno.

  /// Surcharge, in percent, of the article's tax.
  double GetRecargo(const Variant& vId, ObjCn objCn = {}) const;
  /// Rate in percent. `vId` is the code of a tax, not of an article.
  double GetPorcentIva(const Variant& vId, ObjCn objCn = {}) const;
  /// The selling price, in euros; 0 for an article that is not there.
  double GetPrecioVenta(const Variant& vId, ObjCn objCn = {}) const;
  /// Average cost per stock unit: Precio_Medio over Medida_Compra. Raises 11 for a measure of 0.
  double GetMediaUnitaria(const Variant& vId, ObjCn objCn = {}) const;
  /// Points.
  double GetValorInterno(const Variant& vId, ObjCn objCn = {}) const;
  /// Code of the tax; Empty for an article that is not there.
  Variant GetImpuesto(const Variant& vId, ObjCn objCn = {}) const;
  /// The description; Empty for an article that is not there.
  Variant GetDescripcion(const Variant& vId, ObjCn objCn = {}) const;
  /// Code of the family; Empty for an article that is not there.
  Variant GetFamilia(const Variant& vId, ObjCn objCn = {}) const;
  /// Code of the section; Empty for Null and for an article that is not there.
  Variant GetSeccion(const Variant& vId, ObjCn objCn = {}) const;
  /// Code of the employee; Empty for Null and for an article that is not there.
  Variant GetEmpleado(const Variant& vId, ObjCn objCn = {}) const;
  /// Stock units in one purchase unit.
  Variant GetMedidaCompra(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether the article is there; its description in `sDescrip`.
  bool ObtenerDescripcion(const Variant& vId, InOut<std::string> sDescrip, ObjCn objCn = {}) const;

  // ---- Flags

  /// Whether the article is made of components.
  bool EsPaquete(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether the article is hidden from sale lists.
  bool EsInterno(const Variant& vId, ObjCn objCn = {}) const;
  /// Raises 3265 for every article that is there.
  bool EsDescontable(const Variant& vId, ObjCn objCn = {}) const;
  /// The flag `No_sumar`; false for an article that is not there.
  bool EsNoSumable(const Variant& vId, ObjCn objCn = {}) const;
  /// The flag `Repetir`; false for an article that is not there.
  bool EsRepetible(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether stock is kept of it.
  bool EsdeAlmacen(const Variant& vId, ObjCn objCn = {}) const;
  /// Whether a sale takes stock off. The two are the same.
  bool RestaStock_V(const Variant& vId, ObjCn objCn = {}) const;
  /// The same as RestaStock_V.
  bool EsdeAlmacenVenta(const Variant& vId, ObjCn objCn = {}) const;

  // ---- Filling a document line (articulos_datos.cpp)

  /// Of the current row of the primary record set. A null description is ""; what else is null
  /// leaves its variable as it is.
  void ObtenerRegistroActivo(InOut<Variant> vId, InOut<std::string> sDescripcion,
                             InOut<double> dPrecio, InOut<std::string> sImpuesto) const;

  /// Parameters of the members below, in their order.
  struct Datos {
    Variant vId = {};               ///< as typed; becomes the code
    std::string sDescripcion = {};  ///< as typed, where `index` is not 0
    std::string sSeccion = {};
    std::string sFamilia = {};
    std::string sTarifa = {};  ///< "A", "B" or "C" for the price; any other is A
    std::string sQIdioma =
        {};  ///< "Idioma 1" to "Idioma 6"; any other is the article's own language
    double dPrecio = 0;
    bool bDto = false;  ///< admits a discount
    std::string sImpuesto = {};
    double dExistencia = 0;
    bool bLotes = false;
    bool bInterno = false;
    bool mbIsProvider = false;  ///< a purchase: stocked articles at their average cost
    std::int16_t index = 0;     ///< 0 looks for the code, any other for the description
    ObjCn objCn = {};
    std::string sEmpleado = {};
    double dPuntos = 0;
    double dMerma = 0;            ///< percent
    std::string sLista = {};      ///< "" is "PRC"
    bool mbIsAlbAlmacen = false;  ///< of GetDatos: at the last cost instead
  };
  /// A usable article of the list, for which any stocked one will do too. One that is not found is
  /// looked for by its reference; then `sEmpleado`, `dPuntos` and `dMerma` stay as they came.
  void GetDatos(Datos& datos) const;
  /// Whatever the list; `vId` stays as typed.
  void GetDatoslote(Datos& datos) const;
  /// By the second code, in the list itself. Without a row the outputs are cleared, the flag of the
  /// discount is set and the points stay: an empty `vId` tells that nothing was found.
  void GetDatosReferencia(Datos& datos) const;

  /// Parameters of GetDatosImport, in their order. What is null stays as it came.
  struct DatosImport {
    Variant vId = {};
    std::string sDescripcion = {};
    std::string sSeccion = {};
    std::string sFamilia = {};
    double dPrecio_A = 0;
    double dPrecio_B = 0;
    double dPrecio_C = 0;
    bool bDto = false;
    std::string sImpuesto = {};
    double dExistencia = 0;
    double bLotes = 0;  ///< -1 or 0
    bool bInterno = false;
    double bStock = 0;  ///< -1 or 0
    bool bActivo = false;
    std::string sLista = {};
    double dDto_D = 0;
    ObjCn objCn = {};
  };
  /// Of an article of the import database.
  void GetDatosImport(DatosImport& datos) const;

  // ---- Writing articles

  /// Parameters of Actualizar, in their order.
  struct Cambio {
    Variant vId = {};
    std::string sDescripcion = {};
    std::string sSeccion = {};
    std::string sFamilia = {};
    double dPrecio = 0;
    double dPrecio_B = 0;
    double dPrecio_C = 0;
    bool bDto = false;  ///< admits a discount
    double bDto_D = 0;  ///< fixed discount, percent; only whole ones under a decimal comma
    bool bActivo = false;
    std::string sLista = {};  ///< "" is "PRC"
    ObjCn objCn = {};
  };
  /// Rewrites an article; its reference becomes its code. A code that is not there is passed over.
  void Actualizar(const Cambio& cambio) const;

  /// Parameters of Insertar, in their order.
  struct Alta {
    Variant vId = {};
    std::string sDescripcion = {};  ///< in all languages
    std::string sSeccion = {};
    std::string sFamilia = {};
    double dPrecio = 0;
    double dPrecio_B = 0;
    double dPrecio_C = 0;
    bool bDto = false;  ///< not looked at: a new article always admits a discount
    std::string sImpuesto = {};
    double dExistencia = 0;
    double bLotes = 0;  ///< a flag as a number, rounded to a whole one
    double bStock = 0;  ///< likewise
    bool bActivo = false;
    std::string sLista = {};  ///< "" is "PRC"
    double dDto_D = 0;        ///< fixed discount, percent
    ObjCn objCn = {};
  };
  /// Writes a new article; its reference is its code. Raises the integrity error for a code that is
  /// there.
  void Insertar(const Alta& alta) const;

  // ---- Stock totals (articulos_stock.cpp)
  //
  // One statement each, on one article. They do nothing, silently, for "$$$" and for articles of
  // which no stock is kept, but for the three that say so. `vCant` is a quantity on order, `vRec`
  // one received or delivered; a text is read by the locale, 13 for what is no number. `bSumar`
  // false takes off. `bExistencia` is not looked at.

  /// Sets the stock.
  void ActualizarStock(const Variant& vId, const Variant& vCant, ObjCn cnnActive = {}) const;
  /// Sets what is on order.
  void ActualizarStockPendiente(const Variant& vId, const Variant& vCant,
                                ObjCn cnnActive = {}) const;
  /// Sets what is pending delivery.
  void ActualizarStockPendiente_Entrega(const Variant& vId, const Variant& vCant,
                                        ObjCn cnnActive = {}) const;
  /// Sets the stock to 0.
  void DescargarStock(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Ordering and reception, in purchase units: `vRec` to the stock, `vCant` to what is on order.
  void ActualizarStock_Pedido(const Variant& vId, const Variant& vCant, const Variant& vRec,
                              bool bSumar = true, bool bExistencia = false,
                              ObjCn cnnActive = {}) const;
  /// The same in every point.
  void ActualizarStock_C(const Variant& vId, const Variant& vCant, const Variant& vRec,
                         bool bSumar = true, bool bExistencia = false, ObjCn cnnActive = {}) const;
  /// Reception of what was on order, in purchase units.
  void ActualizarStock_Recep_pedido(const Variant& vId, const Variant& vCant,
                                    ObjCn cnnActive = {}) const;
  /// Delivery, in stock units.
  void ActualizarStock_Recep_Entrega(const Variant& vId, const Variant& vCant,
                                     ObjCn cnnActive = {}) const;
  /// ActualizarStock_Pedido in stock units.
  void ActualizarStock_Movimientos(const Variant& vId, const Variant& vCant, const Variant& vRec,
                                   bool bSumar = true, bool bExistencia = false,
                                   ObjCn cnnActive = {}) const;
  /// A sale, with `bSumar` false, or its return: `vRec` in stock units, of an article that sales
  /// take off.
  void DescargarStock_V(const Variant& vId, const Variant& vCant, const Variant& vRec,
                        bool bSumar = true, bool bExistencia = false, ObjCn cnnActive = {}) const;
  /// Empties the row of a stocked package: 0 for any quantity, -1 for a quantity of 0. Flags are
  /// not asked first.
  void DescargarStockPaquete(const Variant& vId, const Variant& vCant, const Variant& vRec,
                             bool bSumar = true, bool bExistencia = false,
                             ObjCn cnnActive = {}) const;
  /// Sets the stock to the sum over all warehouses, 0 without one. Nothing is asked first.
  void RegularizarStock(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Sets the average cost to `dPrecioMedio` over `dCant`, of any article but "$$$". Raises 11 for
  /// a `dCant` of 0.
  void ActualizarPrecioMedio(const Variant& vId, double dPrecioMedio, ObjCn cnnActive = {},
                             double dCant = 1) const;

  // ---- Tariffs (articulos_tarifas.cpp)
  //
  // A, B and C are columns of the article; the others are rows, one an article and tariff. Money
  // in the shop's currency, percentages as 10 for 10 %.

  /// Price of a row tariff; 0 without a row.
  double GetPrecioTarifa(const Variant& vId, std::string_view sTarifa, ObjCn objCn = {}) const;
  /// Writes the price of a row tariff.
  void ActualizaPrecioTarifa(const Variant& vId, std::string_view sTarifa, double dPrecio,
                             ObjCn cnnActive = {}) const;
  /// Adds a row tariff at 0, whatever `dPrecio` says.
  void InsertarPrecioTarifa(const Variant& vId, std::string_view sTarifa, double dPrecio,
                            ObjCn cnnActive = {}) const;
  /// Letters of the row tariffs that are in use.
  std::vector<Variant> ObtenerCol_Tarifas(ObjCn objCn = {}) const;
  /// "D: 12,5", one text a row tariff of an article, by letter.
  std::vector<Variant> ObtenerCol_TarifasArticulo(std::string_view sId, ObjCn objCn = {}) const;
  /// Fixed discount of an article; `sLista` is not looked at.
  double ObtenerDto_D(const Variant& vId, std::string_view sLista = {}, ObjCn objCn = {}) const;
  /// Turns all prices and costs of the articles from pesetas to euros, once. Row tariffs stay.
  void ActualizarEuros(ObjCn cnnActive = {}) const;
  /// Raises one tariff of the articles of a family and list by a percentage, rounded to the
  /// currency's decimals. `sTarifa` is "a", "b", "c" or "tf3" to "tf20" for D to T with Ñ, in
  /// either case; `sFamilia` "Todas" is every family, and then `sLista` may be "PRC + TDS". An
  /// unknown key raises a syntax error.
  void ActualizarTarifas(std::string_view sTarifa, double dPorcent, std::string_view sFamilia,
                         std::string_view sLista, ObjCn cnnActive = {}) const;
  /// Deletes a row tariff of all articles.
  void EliminarTarifaPrecios(std::string_view sTarifa, ObjCn cnnActive = {}) const;
  /// Copies a column tariff, "A", "B" or "C", onto another; other words raise a syntax error.
  void CopiatTarifaPrecios(std::string_view sTarifa, std::string_view SNewTarifa,
                           ObjCn cnnActive = {}) const;
  /// Makes a row tariff named `sNombre` from another tariff.
  void CrearTarifaPrecios(std::string_view sTarifa, std::string_view SNewTarifa,
                          std::string_view sNombre, ObjCn cnnActive = {}) const;
  /// Writes the last cost, after a discount of `dDto` percent. Passes over "$$$".
  void ActualizarPrecio(const Variant& vId, double dPrecio, double dDto,
                        ObjCn cnnActive = {}) const;
  /// Writes a column tariff, "A", "B" or "C"; others raise a syntax error. Passes over "$$$".
  void ActualizarTarifa(const Variant& vId, double dPrecio, std::string_view sTarifa,
                        ObjCn cnnActive = {}) const;
  /// Writes the fixed discount, percent. Passes over "$$$".
  void ActualizarDto_D(const Variant& vId, double dDto_D, ObjCn cnnActive = {}) const;
  /// Deletes all row tariffs of an article.
  void DeleteAllTarifas(const Variant& vId, ObjCn cnnActive = {}) const;

  /// The article of free text, which updates of stock and price pass over.
  static bool isFreeText(const Variant& vId);

 private:
  Statement modeStatement(std::string& word, const Variant& id) const override;
  Variant newCode(ConnectionPtr& objCn) const override;
  bool fillsNewRow() const override { return true; }
  void setDefaults(bool bDefVal) override;

  /// `column` of an article: Empty without a row, Null where it is.
  Variant columnOf(Statement::Constant columnText, std::string_view field, const Variant& vId,
                   ObjCn objCn) const;
  /// The same as a number: 0 without a row, 94 for Null.
  double numberOf(Statement::Constant columnText, std::string_view field, const Variant& vId,
                  ObjCn objCn) const;
  /// `field` of the first row as a flag; false without a row.
  bool flagOf(Statement::Constant select, std::string_view field, const Variant& vId,
              ObjCn objCn) const;
  /// Sets one of the totals of a stocked article.
  void setTotal(Statement::Constant column, const Variant& vId, const Variant& vCant,
                ConnectionPtr& cnnActive) const;
  /// Digits of an article's code, as the counters tell them.
  static std::int32_t codeDigits(ConnectionPtr& objCn);
};

}  // namespace tavelor
