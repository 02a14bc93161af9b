// SPDX-License-Identifier: MIT
// The sale document of the till.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/export.hpp"
#include "tavelor/sales/life_cycle.hpp"

namespace tavelor {

class CollectionTickets;
class Component;
class LogFiles;

/// Tickets: one row a sale, found by its number alone whatever its series.
///
/// No total is computed here: whoever prices the lines passes the amounts, and they are stored as
/// given, in the shop's currency. Nothing moves stock or writes a ledger either.
///
/// Values are joined into statements without escaping: a quote in a text raises the database's
/// syntax error. A number without quotes is printed by the locale, so its decimals raise that error
/// under a decimal comma. Between reading a number and writing the ticket another till may take it:
/// the database then refuses the second one.
class TAVELOR_API ClsTickets final : public TicketTable<OpensByWord> {
 public:
  ClsTickets();
  ~ClsTickets() override;
  std::string typeName() const override { return "ClsTickets"; }
  static const Component& component();

  /// The same, of the historic database when `bHistorico` is true.
  void GetConnectionStrToRpt(InOut<std::string> sDbtype, InOut<std::string> sDataSource,
                             InOut<std::string> sCatalog, InOut<std::string> sUser,
                             InOut<std::string> sPasw, bool bHistorico = false) const;

  // ---- Columns of the current row. Reading never raises: without a row, in a mode without the
  // column, or where it is null, they answer false, 0 or "".

  /// Whether the ticket has an order document.
  bool bEsPedido() const;
  /// Warehouse.
  std::string sQAlmacen() const;
  /// Whether a delivery note or an invoice took the ticket.
  bool bEstaFacturado() const;
  /// Number of the ticket.
  double iQNumero() const;
  /// Number of the order document, 0 for none.
  double iQDocumento() const;
  /// Number of the delivery note or invoice that took the ticket, 0 for none.
  double iQDocumentoF() const;
  /// Total, in the shop's currency.
  double dQTotal() const;
  /// Change given.
  double dQCambio() const;
  /// Amount delivered.
  double dQEntrega() const;
  /// Writes the amount delivered; Update stores it. Errors of the record set rise.
  void dQEntrega(double dEntrega);
  /// Payment method.
  std::string sQFpago() const;
  /// Reference.
  std::string sQReferencia() const;
  /// Whether prices include tax.
  bool bEsIvaIncluido() const;

  // ---- Sums and lists (tickets_ventas.cpp)
  //
  // Of the live tickets only: what has moved to history does not count. A span is two dates, both
  // of them inside, in whole days; a time rounds to the nearer day. Series, till and employee are
  // compared as they are, so that an empty employee means tickets without one. `bCerrados` counts
  // settled tickets only. Cash is what is not invoiced, credit what is, whatever was paid.

  /// Date of the oldest ticket of a till; today without one.
  Date GetMinFecha(std::string_view sCaja = {}, ObjCn objCn = {}) const;
  /// Totals of the tickets of a closing that are not invoiced, by payment method: Codigo and
  /// Importe. They must be marked by CerrarTicket and not yet be in history.
  std::shared_ptr<CollectionTickets> SumColLinTotalFpagoTickets(const Variant& vId,
                                                                ObjCn objCn = {}) const;
  /// Numbers of the cash tickets of a span.
  std::vector<Variant> ObtenerCol(Date dtFechaIni, Date dtFechaFin, std::string_view sCaja,
                                  std::string_view sEmpleado, std::string_view sSerie,
                                  bool bCerrados, ObjCn objCn = {}) const;
  /// Numbers of the credit tickets of a span; `bCerrados` is not looked at.
  std::vector<Variant> ObtenerColCredito(Date dtFechaIni, Date dtFechaFin, std::string_view sCaja,
                                         std::string_view sEmpleado, std::string_view sSerie,
                                         bool bCerrados, ObjCn objCn = {}) const;
  /// Whether a customer has a ticket that is not settled.
  bool TicketsPendientes(const Variant& vId, ObjCn objCn = {}) const;
  /// Numbers of the cash tickets of a span, or of the credit ones when `bContado` is false.
  std::vector<Variant> ObtenerColVentaContado(Date dtFechaIni, Date dtFechaFin,
                                              std::string_view sCaja, std::string_view sEmpleado,
                                              std::string_view sSerie, bool bCerrados,
                                              bool bContado, ObjCn objCn = {}) const;

  /// Parameters of VentasTotal, in their order.
  struct VentasDia {
    Date dtFecha = {};
    std::string sCaja = {};
    std::string sEmpleado = {};
    std::string sSerie = {};
    double dVentasBase = 0;
    double dVentasImpuestos = 0;
    double dVentasRecargos = 0;
    double dVentasTotal = 0;
    ObjCn objCn = {};
  };
  /// Sums of all tickets of a day. A sum over no tickets stays as it came.
  void VentasTotal(VentasDia& ventas) const;

  /// Parameters of VentasTotalContado, in their order.
  struct VentasTramo {
    Date dtFechaIni = {};
    Date dtFechaFin = {};
    std::string sCaja = {};
    std::string sEmpleado = {};
    std::string sSerie = {};
    double dVentasBase = 0;
    double dVentasImpuestos = 0;
    double dVentasRecargos = 0;
    double dVentasTotal = 0;
    bool bCerrados = false;
    ObjCn objCn = {};
  };
  /// Sums of the cash tickets of a span. A sum over no tickets stays as it came.
  void VentasTotalContado(VentasTramo& ventas) const;

  /// Total of the credit tickets of a span; `bCerrados` is not looked at. A sum over no tickets
  /// stays as it came.
  void VentasCredito(Date dtFechaIni, Date dtFechaFin, std::string_view sCaja,
                     std::string_view sEmpleado, std::string_view sSerie,
                     InOut<double> dVentasCredito, bool bCerrados, ObjCn objCn = {}) const;
  /// Total of the cash tickets of a span. A sum over no tickets stays as it came.
  void VentasContado(Date dtFechaIni, Date dtFechaFin, std::string_view sCaja,
                     std::string_view sEmpleado, std::string_view sSerie,
                     InOut<double> dVentasContado, bool bCerrados, ObjCn objCn = {}) const;

  /// Parameters of VentasEntregas, in their order.
  struct Entregas {
    Date dtFechaIni = {};
    Date dtFechaFin = {};
    std::string sCaja = {};
    std::string sEmpleado = {};
    std::string sSerie = {};
    double dVentasEntregasContado = 0;
    double dVentasEntregasCambio = 0;
    bool bCerrados = false;
    ObjCn objCn = {};
  };
  /// What was delivered and what was given back. Cash tickets set the two sums, or leave them as
  /// they came where there are none; credit tickets, in whatever state, are then added.
  void VentasEntregas(Entregas& entregas) const;

  // ---- Life cycle: CerrarTicket and the two moves are those of all tables of a ticket.

  /// Gives a ticket a new number and series. The counters stay as they are. Raises the integrity
  /// error for a number that is there.
  void ConvertirSerie(const Variant& vId, const Variant& vNewId, std::string_view sSerie,
                      ObjCn cnnActive = {}) const;
  /// Marks a ticket as invoiced by the document `vIdFac` of the kind `iFacturado`.
  void FacturarDocumento(const Variant& vId, std::int16_t iFacturado, const Variant& vIdFac,
                         ObjCn cnnActive = {}) const;
  /// Takes that mark off, if it is of the kind `iFacturado`.
  void CancelarFacturacion(const Variant& vId, std::int16_t iFacturado, ObjCn cnnActive = {}) const;
  /// Turns the amounts of all live tickets from pesetas to euros, once.
  void ActualizarEuros(ObjCn cnnActive = {}) const;

  // ---- Reading and writing documents

  /// Whether no ticket has that number, live or in history, in whatever series.
  bool CodigoLibre(const Variant& vId, ObjCn objCn = {}) const;
  /// Warehouse of a ticket; "001" where it has none or is not there.
  std::string GetAlmacen(const Variant& vId, ObjCn objCn = {}) const;
  /// 0 unpaid, 1 partly paid, 2 settled; 0 for a ticket that is not there.
  std::int16_t GetState(const Variant& vId, ObjCn objCn = {}) const;
  /// -1 where prices include tax; 0 where not, or for a ticket that is not there.
  std::int16_t GetIncTax(const Variant& vId, ObjCn objCn = {}) const;

  /// Parameters of Insertar, in their order.
  struct Documento {
    Variant vId = {};  ///< number
    Date dtFecha = {};
    std::string sSerie = {};
    std::string sCod = {};      ///< customer
    std::string sEmpresa = {};  ///< his name as sold
    std::string sTarifa = {};
    std::string sAlmacen = {};
    std::string sRef = {};
    std::string sTransportista = {};
    std::string sDivisa = {};
    double dCambio = 0;  ///< rate of the currency
    double dTotaldivisa = 0;
    std::string sFPago = {};
    double dDto = 0;    ///< percent
    double dDtoPp = 0;  ///< percent, prompt payment
    double dBase = 0;
    double dPortes = 0;
    std::int16_t iImpuesto = 0;  ///< code of the tax
    double dTotal = 0;
    std::int16_t iEstado = 0;
    Variant vDocE = 0;    ///< order document, 0 for none; Empty raises a syntax error
    double dImpImp = 0;   ///< tax
    double bRecargo = 0;  ///< surcharge rate, percent; only whole ones under a decimal comma
    double dImpRec = 0;
    double dIrpf = 0;  ///< withholding, percent
    double dImpIrpf = 0;
    std::string sCtaContable = {};
    std::string sCtaContrapartida = {};
    std::string sConcepto = {};
    std::string sTipoFactura = {};  ///< document type
    std::string sCaja = {};
    std::string sEmpleado = {};
    bool bIncTax = false;
    ObjCn objCn = {};
  };
  /// Writes a new ticket: open, not invoiced, nothing delivered. Whether the number is free is for
  /// CodigoLibre to say; raises the integrity error for one that is there.
  void Insertar(const Documento& documento) const;

  /// Parameters of Obtener, in their order.
  struct Lectura {
    Variant vId = {};
    Date dtFecha = {};
    std::string sSerie = {};
    std::string sCod = {};
    std::string sEmpresa = {};
    std::string sTarifa = {};
    std::string sAlmacen = {};
    std::string sRef = {};
    std::string sTransportista = {};
    std::string sDivisa = {};
    double dCambio = 0;
    double dTotaldivisa = 0;
    std::string sFPago = {};
    double dDto = 0;
    double dDtoPp = 0;
    double dBase = 0;
    double dPortes = 0;
    std::int16_t iImpuesto = 0;
    double dTotal = 0;
    std::int16_t iEstado = 0;
    std::int16_t iFacturado = 0;
    double dFactura = 0;
    double dImpImp = 0;
    double bRecargo = 0;
    double dImpRec = 0;
    double dIrpf = 0;
    double dImpIrpf = 0;
    std::string sCtaContable = {};
    std::string sCtaContrapartida = {};
    std::string sConcepto = {};
    std::string sTipoFactura = {};  ///< never written
    ObjCn objCn = {};
  };
  /// Reads a live ticket. A ticket that is not there, and what is null, leave the variables as they
  /// came; but a null tax code, surcharge rate, state or invoice mark raises 94, with the variables
  /// before it read.
  void Obtener(Lectura& lectura) const;

  // ---- Numbers

  /// The next number of a series, over live tickets and history: the greatest one plus 1, 1 where
  /// there is none. A greatest number in history of more than seven digits is given as it is where
  /// the next would not fit. Nothing reserves it.
  Variant NuevoCodigo(std::string_view serie = {}, ObjCn objCn = {}) const;
  /// The next numbers of the three series, from the counters. `objCn` is a connection of the main
  /// database, here and below.
  void GetNumerador(InOut<double> dSerieA, InOut<double> dSerieB, InOut<double> dSerieC,
                    ObjCn objCn = {}) const;
  /// Stores the last numbers used.
  void SetNumerador(InOut<double> dSerieA, InOut<double> dSerieB, InOut<double> dSerieC,
                    ObjCn objCn = {}) const;
  /// Sets the counters to the greatest numbers that there are, live or in history; 0, 10000 and
  /// 25000 for series A, B and C without tickets.
  void UpdateNumerador(ObjCn objCn = {}) const;

  // ---- The connection of a sale

  /// A connection to the documents; the class keeps its own.
  ConnectionPtr IniciaConnection() const;
  /// Makes such a connection the class's, for the transaction members, until IniciaRs.
  void SetConnection();
  /// Closes the class's connection; raises 3704 where there is none open.
  void CnnClose();

  // ---- The current row

  /// Adds a row; with `bDefVal`, with the next number of series A and what a new ticket begins
  /// with. `bIsInvoiced` plays no part.
  void AddNew(bool bDefVal = false, bool bIsInvoiced = false);
  /// Says whether prices of the current ticket include tax; Update stores it.
  void UpdateIncTax(bool vIdIncTax);
  /// Says whether the ticket is paid: settled when the amount delivered covers the total, or when
  /// the total is 0; unpaid when nothing was delivered; else partly paid. Update stores it.
  void UpdateState(double dEntrega, double dTotal);

  // ---- Logs and text files, in the report folder

  /// Opens the log of an action, empty, and gives its number: the lowest that is free in this
  /// object. Raises 75 for a file that cannot be written, 5 for an action that is a path.
  std::int16_t OpenLog(std::string_view sAction);
  /// Closes a log, one that is not open as well. The object closes its logs when it ends.
  void CloseLog(std::int16_t iNum);
  /// Writes the time and a text as one line, which is in the file at once. Raises 52 for a number
  /// that is not open, 75 when the disk refuses it.
  void SaveLog(std::int16_t iNum, std::string_view sText);
  /// Full paths of the class's text file, of the one for the display and of the one for the drawer.
  std::string GetTxtFile() const;
  /// Full path of the text file for the display.
  std::string GetTxtFileDisp() const;
  /// Full path of the text file for the drawer.
  std::string GetTxtFileDraw() const;

 private:
  Statement modeStatement(std::string& word, const Variant& id) const override;
  void addRow(bool bDefVal) override { AddNew(bDefVal); }
  Variant newCode(ConnectionPtr& objCn) const override { return NuevoCodigo({}, objCn); }
  bool isCodeFree(const Variant& vId, ConnectionPtr& objCn) const override {
    return CodigoLibre(vId, objCn);
  }

  /// A column of the current row; the type's zero on any error.
  template <typename Result>
  Result quietly(std::string_view column) const;
  /// One row with the greatest number of a series in a table, Null where there is none.
  RecordsetPtr greatest(Statement::Constant table, std::string_view serie,
                        ConnectionPtr& objCn) const;

  std::unique_ptr<LogFiles> logs_;
};

}  // namespace tavelor
