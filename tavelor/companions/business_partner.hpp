// SPDX-License-Identifier: MIT
// What the masters of customers and suppliers share.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "tavelor/frame/reading.hpp"
#include "tavelor/frame/single_read.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

/// Who stands on the other side of a document: a customer or a supplier. One row each, found by its
/// code, a text of digits by custom, whose greatest length the counters tell. `Activo` is 0 for
/// those no longer in use; members that ask for a usable one take all others.
///
/// NuevoCodigo keeps to the length that the counters tell under the class word, where it is one,
/// not to the width of the column.
class TAVELOR_API BusinessPartner : public OpensByWord {
 public:
  /// Members that read one value of one of them: `GetSerie(id)`, `GetSerie(id, objCn)`.
  using Text = SingleReadOf<std::string>;
  /// The same for members that answer yes or no.
  using Flag = SingleReadOf<bool>;
  /// The same for members that give a number.
  using Number = SingleReadOf<double>;

  /// Fills a code with zeros on the left to the length that the counters tell, in place; longer
  /// ones stay. Never raises: after a failure the code stays too.
  std::string ObtenerCodigo(InOut<std::string> sMidato) const;
  /// Whether nobody but `vIdCodigo` has the ledger account `vId`.
  bool CtaLibre(const Variant& vId, const Variant& vIdCodigo, ObjCn objCn = {}) const;

  /// Puts the full path of the document of that name in its place.
  void GetDocPath(InOut<std::string> sDocPath) const;
  /// Of the current row of the primary record set. What cannot be read leaves its variable as it
  /// is. Never raises.
  void ObtenerRegistroActivo(InOut<Variant> vId, InOut<std::string> sNombre,
                             InOut<std::string> sEmpresa, InOut<std::string> sDireccion,
                             InOut<std::string> sCp, InOut<std::string> sPoblacion,
                             InOut<std::string> sProvincia, InOut<std::string> sTelefono) const;

  /// The treasury account of a usable one: "no" for Null; without one it stays as it came. Always
  /// true.
  bool GetCtaTesoreria(const Variant& id, InOut<std::string> sCtaTes, ObjCn objCn = {}) const;

  /// Parameters of GetDatosFacturacion, in their order: what a usable one brings to a document.
  /// Outputs whose column is Null, and all of them where there is nobody, stay as they came, but
  /// where it says more. Percentages as 10 for 10 %.
  struct Facturacion {
    Variant id = {};            ///< where `index` is 0; becomes the code, "" for nobody
    std::string sEmpresa = {};  ///< legal name, where `index` is 1; becomes it, "" for nobody
    std::string sTransportista = {};
    std::string sPago = {};
    std::string sDivisa = {};
    bool bImpuesto = false;
    double dIrpf = 0;
    std::string sSerie = {};   ///< "A" for Null
    std::string sTarifa = {};  ///< "A" for Null
    double dDtoLinea = 0;      ///< 0 for Null
    double dDto = 0;           ///< prompt payment; 0 for Null
    std::string sCta = {};
    std::string sCtaC = {};
    std::string sBanco = {};
    bool bRecargo = false;
    std::string sConcepto = {};
    double dBonificacion = 0;
    double dImpBonif = 0;  ///< from which amount the bonus is due
    std::string sFactura_A = {};
    std::string sFactura_B = {};
    std::string sFactura_C = {};
    std::string sDocumento_P = {};
    std::string sDocumento_A = {};
    std::string sDocumento_F = {};
    std::int16_t index = 0;  ///< what is looked for; any other raises the database's syntax error
    ObjCn objCn = {};
    std::string sNom = {};  ///< trade name, of customers
  };

 protected:
  using OpensByWord::OpensByWord;

  /// Runs `select`, a list of columns as far as WHERE, for whom `datos` ask for, and fills them:
  /// all but the trade name. Gives the row, or nothing where there is nobody.
  RecordsetPtr profile(Statement::Constant select, Facturacion& datos) const;

  /// Bank, bonus, kinds of invoice and layouts of the current row: what documents take of it.
  template <typename Datos>
  static void takeOfDocuments(Recordset& rows, Datos& datos) {
    takeColumn(rows, "Banco", datos.sBanco);
    takeColumn(rows, "Bonificación", datos.dBonificacion);
    takeColumn(rows, "ImpBonif", datos.dImpBonif);
    takeColumn(rows, "Factura_A", datos.sFactura_A);
    takeColumn(rows, "Factura_B", datos.sFactura_B);
    takeColumn(rows, "Factura_C", datos.sFactura_C);
    takeColumn(rows, "Documento_P", datos.sDocumento_P);
    takeColumn(rows, "Documento_A", datos.sDocumento_A);
    takeColumn(rows, "Documento_F", datos.sDocumento_F);
  }

 private:
  Variant newCode(ConnectionPtr& objCn) const override;
  std::int32_t codeDigits(ObjCn objCn) const;
};

}  // namespace tavelor
