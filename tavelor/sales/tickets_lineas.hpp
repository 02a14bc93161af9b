// SPDX-License-Identifier: MIT
// The lines of tickets.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/sales/life_cycle.hpp"

namespace tavelor {

class CollectionRegistros;
class CollectionTickets;
class Component;
class Control;
class GridColumns;

/// The lines of tickets, edited in memory as one batch: from IniciaRs to Update or CancelBatch.
///
/// The class has a frame of its own: no events, no remembered order (lines stay in that of the
/// database), no filters, no validation, no pages. AddNew gives no key and no ticket: UpdateId
/// does, just before Update.
///
/// Amounts are in the shop's currency, rates and discounts in percent. Values are joined into
/// statements as they are, but for the description of Insertar: a quote in one raises the
/// database's syntax error.
class TAVELOR_API ClsTicketsLineas final : public TicketTable<OpensOnConnection> {
 public:
  ClsTicketsLineas();
  std::string typeName() const override { return "ClsTicketsLineas"; }
  static const Component& component();

  void GetRptPath(InOut<std::string> sRptPath) const = delete;
  void GetConnectionStrToRpt(InOut<std::string>, InOut<std::string>, InOut<std::string>,
                             InOut<std::string>, InOut<std::string>) const = delete;
  std::string sClassName() const = delete;
  std::string GetConnectionStr() const = delete;
  bool CodigoLibre(const Variant& vId, ObjCn objCn = {}) const = delete;
  std::int32_t ValidaDefinedSize(const Control& Text) const = delete;
  bool ValidaKey(const Control& Text, std::int16_t KeyAscii) const = delete;
  bool ValidaValue(const Control& Text) const = delete;
  std::string GetFilter(std::string_view sLlave) const = delete;
  void AplyFilter(std::string_view Criteria) = delete;
  std::string CreateFilter(Control& ctl, std::string_view iType = {}) const = delete;
  void SetFilter(std::string_view Criteria, std::string_view sLlave) const = delete;
  void SetOrder(std::int16_t index, std::string_view Mode, std::string_view sLlave) = delete;
  void GetOrder(InOut<std::int16_t> index, InOut<std::string> Mode,
                std::string_view sLlave) const = delete;
  std::string GetHtmlFile() const = delete;
  void ToHtmlGrid(const GridColumns& clColfields, bool bDoclone, std::string_view sSelecSql,
                  bool bFilter) = delete;

  // ---- History. CerrarTicket, ConvertirSerie and Mover_A_Historicos are those of all tables of a
  // ticket; the key of a line does not pass to history.

  /// Turns prices and amounts of all live lines from pesetas to euros, once.
  void ActualizarEuros(ObjCn cnnActive = {}) const;
  /// Writes the tax summary of the ticket `vId` to the history of the closing `vIdCierre`, a row a
  /// rate, before its lines leave. With `bIncTax` the amounts include tax, and the base is rounded
  /// by the mask of amounts; without, the base is their sum, not rounded. The tax is rounded by the
  /// mask of quantities in both cases. Then the live summary of that closing is emptied.
  void Mover_Impuestos_A_Historicos(const Variant& vId, const Variant& vIdCierre, bool bIncTax,
                                    ObjCn cnnActive = {}) const;
  /// Drops the tax summary of a closing: nothing is carried back.
  void Mover_Impuestos_De_Historicos(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Brings the lines of a closing back, with the keys that history gave them, and opens these
  /// lines only.
  void Mover_De_Historicos(const Variant& vId, ObjCn cnnActive = {}) const;

  // ---- Collections. A Null quantity, price, amount or rate counts as 0.

  /// The lines of the primary record set as requests to the stock of the warehouse `vIdAlm`. What
  /// is wanted is Recibido; Cantidad is always 0, as a ticket sets nothing against it. Lines
  /// without an article are left out. The set stands on its first row afterwards.
  std::shared_ptr<CollectionRegistros> GetCollectionRegs(const Variant& vIdAlm);
  /// Sales of a closing by family: Codigo and Importe. It reads live lines, so it must run before
  /// they move to history.
  std::shared_ptr<CollectionTickets> SumCollectionLinHFamilias(const Variant& vId,
                                                               ObjCn objCn = {}) const;
  /// Taxes of a closing by rate, from history: Codigo is the rate, Suma the base, Importe the tax.
  std::shared_ptr<CollectionTickets> SumCollectionLinHImpuestos(const Variant& vId,
                                                                ObjCn objCn = {}) const;
  /// The tax summary of a ticket as lines of a receipt: rate, base, tax. `bIncTax`: the amounts
  /// include tax. Both are rounded by the mask of amounts, a base that had to be computed first by
  /// that of quantities.
  std::vector<Variant> GetCollectionLinImpuestos(const Variant& vId, bool bIncTax,
                                                 ObjCn objCn = {}) const;
  /// The lines of the primary record set as lines of a receipt: quantity, 15 characters of the
  /// description, discount and amount. The set stays where it is.
  std::vector<Variant> GetCollectionLin() const;

  // ---- Single lines

  /// Keys of the lines of a ticket.
  std::vector<Variant> ObtenerCol(const Variant& vId, ObjCn objCn = {}) const;

  /// Parameters of Obtener, in their order.
  struct Lectura {
    Variant vId = {};  ///< key of the line
    Variant sCodigo = {};
    Variant sDescripcion = {};
    Variant dCantidad = {};
    Variant dPrecio = {};
    Variant dDtoLin = {};
    Variant dIva = {};
    Variant dImporte = {};
    Variant sLote = {};  ///< "0" for none
    ObjCn objCn = {};
  };
  /// Reads a line. What is null, but for the lot, and all of a line that is not there, stays as it
  /// came.
  void Obtener(Lectura& lectura) const;

  /// Parameters of Insertar, in their order.
  struct Linea {
    Variant vDoc = {};       ///< number of the ticket
    Variant vIdNewReg = {};  ///< key of the line, from NuevoCodigo
    std::string sCodigo = {};
    InOut<std::string> sDescripcion = {};  ///< becomes what was written: quotes doubled
    double dCantidad = 0;
    double dPrecio = 0;
    double dDtoLin = 0;
    double dIva = 0;
    double dImporte = 0;
    std::string sLote = {};
    std::string sFam = {};
    ObjCn cnnActive = {};
  };
  /// Writes a line at once, beside the batch.
  void Insertar(const Linea& linea) const;

  /// Deletes the lines of a ticket, and with them all lines that have no ticket.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;

  // ---- The batch

  /// Adds a row; with `bDefVal` its quantity, price, discount and tax rate are 0. `bIsInvoiced` is
  /// not looked at.
  void AddNew(bool bDefVal = false, bool bIsInvoiced = false);
  /// Gives the current row to the ticket `vId`, without a key.
  void UpdateadAffectCurrent(const Variant& vId);
  /// Gives all rows to the ticket `vId`, with keys from the table's greatest plus 1 on. It is read
  /// once: two tills that save at the same time give the same keys. The set stands at EOF.
  void UpdateId(const Variant& vId);
  /// Writes the family of the current row.
  void SetFamilia(std::string_view sFam);
  /// Whether the current row is being added. False on any error.
  bool EditAddRecord() const;
  /// Sends the whole batch. An error is told to the user, "Ln · " and its text, and rises as it is;
  /// see Recordset::UpdateBatch for what is left then.
  void Update() override;
  /// Drops all pending changes.
  void CancelBatch();

  /// Adds base, tax and surcharge of all lines to the sums, which the caller has set to 0.
  ///
  /// With `bIncTax` the amounts include tax: the tax of a line is then rounded by the mask of
  /// quantities, else it is not. The base of a line is rounded always, its surcharge never. With
  /// `bRecargos` the surcharge is that of each line's article; an error in reading it rises, and
  /// the lines before it are in the sums. The set stays where it is.
  void SumaCol(bool bIncTax, InOut<double> dBase, InOut<double> dImpIva, InOut<double> dImpRecargo,
               bool bRecargos) const;

 private:
  void addRow(bool bDefVal) override { AddNew(bDefVal); }
};

}  // namespace tavelor
