// SPDX-License-Identifier: MIT
// The closing of a till.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"
#include "tavelor/sales/tickets.hpp"

namespace tavelor {

class Component;

/// Closings of tills with their sums by family, tax rate and payment method, in the main database.
///
/// Nothing is computed here: the caller sums the tickets, which lie in another database, and passes
/// the amounts, in the shop's currency, which are stored as given. No transaction spans both
/// databases: after a failure between the closing and the marks of its tickets the caller is left
/// with a closing of open tickets.
///
/// Values are joined into statements without escaping: a quote in a text raises the database's
/// syntax error.
class TAVELOR_API ClsCierres final : public OpensByWord {
 public:
  ClsCierres();
  std::string typeName() const override { return "ClsCierres"; }
  static const Component& component();

  /// Whether the current closing is invoiced.
  bool bEstaFacturado() const;
  /// Number of the current closing.
  double iQNumero() const;

  /// Deletes what the closing `vId` has by family, payment method and rate; its own row is left.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;

  // ---- The primary record set as lines of the printed slip. Each wants its own mode; the set
  // stays where it is, and without rows there are no lines. A Null number counts as 0.

  /// Mode "familias": family and amount. The arguments are not looked at, here and below.
  std::vector<Variant> GetCollectionLinFamilias(const Variant& vId = {}, ObjCn objCn = {}) const;
  /// Mode "formas_pago": payment method and amount. A method whose code is a number is printed as
  /// an amount.
  std::vector<Variant> GetCollectionLinFormasPago() const;
  /// Mode "impuestos": rate, base and tax.
  std::vector<Variant> GetCollectionLinImpuestos(const Variant& vId = {}, ObjCn objCn = {}) const;

  /// Marks a closing as invoiced by the document `vIdFac` of the kind `iFacturado`.
  void FacturarDocumento(const Variant& vId, std::int16_t iFacturado, const Variant& vIdFac,
                         ObjCn cnnActive = {}) const;
  /// Takes that mark off, if it is of the kind `iFacturado`.
  void CancelarFacturacion(const Variant& vId, std::int16_t iFacturado, ObjCn cnnActive = {}) const;

  /// Reads a closing through the parameters of a ticket, as one form shows both: date, description
  /// (into `sEmpresa`), base, tax, surcharge, total and the mark of invoicing. What is null, and
  /// all the rest, stays as it came; a null mark raises 94, with the variables before it read.
  void Obtener(ClsTickets::Lectura& lectura) const;

  /// Where the text of a closing lies.
  std::string GetTxtFile() const;
  /// A closing as the lines of its slip, each with its label; what is null is left out.
  std::vector<Variant> GetCierreToCol(const Variant& id, ObjCn objCn = {}) const;
  /// The final balance of the till's closing with the greatest number up to today; without one, or
  /// where it is null, the variable stays as it came. `dtFecha`, `sEmpleado` and `sSerie` are not
  /// looked at.
  void SaldoAnterior(const Variant& dtFecha, std::string_view sCaja, std::string_view sEmpleado,
                     std::string_view sSerie, InOut<double> dSumaDeSaldo_Final,
                     ObjCn objCn = {}) const;

  /// Adds what the closing `vCierre` sold of a family.
  void InsertarCierreFamilias(const Variant& vCierre, std::string_view sFamilia, double dImporte,
                              ObjCn objCn = {}) const;
  /// Adds the base and the tax of a rate to the closing `vCierre`. `sIva` is the rate in percent,
  /// as text.
  void InsertarCierreImpuestos(const Variant& vCierre, std::string_view sIva, double dBase,
                               double dImporte, ObjCn objCn = {}) const;
  /// Adds what was paid by a method to the closing `vCierre`.
  void InsertarCierreFormasPago(const Variant& vCierre, std::string_view sFormaPago,
                                double dImporte, ObjCn objCn = {}) const;

  /// Parameters of Insertar, in their order.
  struct Cierre {
    Variant vId = {};  ///< number, from NuevoCodigo
    std::string sSerie = {};
    Date dtFecha = {};  ///< its day is stored, without the time
    std::string sDescripcion = {};
    std::string sCaja = {};
    std::string sEmpleado = {};
    double dEntrega = 0;   ///< money that came in
    double dCambio = 0;    ///< change given
    double dEfectivo = 0;  ///< sales paid at the till
    double dCredito = 0;   ///< sales on invoice or delivery note
    double dBase = 0;
    double dImpImp = 0;
    double dImpRec = 0;
    double dTotal = 0;
    double SaldoIni = 0;
    double SaldoFin = 0;  ///< not derived from SaldoIni
    ObjCn objCn = {};
  };
  /// Writes a closing. Raises the integrity error for a number that another till took meanwhile.
  void Insertar(const Cierre& cierre) const;
};

}  // namespace tavelor
