// SPDX-License-Identifier: MIT
// ClsTickets: a whole document, written and read.
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/sales/tickets.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

const Locale& locale() {
  return Apartment::current().locale();
}

}  // namespace

// What is not named here keeps the table's default: open, not invoiced, nothing delivered. The
// surcharge rate has no quotes round it, so that under a decimal comma a rate with decimals makes
// two values of itself and the database refuses the ticket; callers round it or use the record set.
void ClsTickets::Insertar(const Documento& documento) const {
  const Documento& d = documento;
  Statement statement(
      "INSERT INTO Tickets ("
      " Numero, Fecha, Codigo, Razon_Social, Tarifa, Serie, Almacen,"
      " Referencia, Transportista, Divisa, Valor_Divisa, Total_Divisa,"
      " Forma_Pago, Descuento, Descuento_PP, Base, Gastos, Impuesto,"
      " Importe_Impuestos, Recargo, Importe_recargo, IRPF, Importe_IRPF,"
      " Total, Doc_E, CTA_Contable, CTA_Contrapartida, Concepto,"
      " Documento_P, Estado, Caja, Empleado, Impuesto_Incluido )"
      " SELECT ");
  statement << spliced(joined(d.vId)) << " AS Expr1, '" << spliced(joined(d.dtFecha))
            << "' AS Expr2, '" << spliced(d.sCod) << "' AS Expr3, '" << spliced(d.sEmpresa)
            << "' AS Expr4, '" << spliced(d.sTarifa) << "' AS Expr5, '" << spliced(d.sSerie)
            << "' AS Expr6, '" << spliced(d.sAlmacen) << "' AS Expr8, '" << spliced(d.sRef)
            << "' AS Expr9, '" << spliced(d.sTransportista) << "' AS Expr10, '"
            << spliced(d.sDivisa) << "' AS Expr11, '" << spliced(joined(d.dCambio))
            << "' AS Expr12, '" << spliced(joined(d.dTotaldivisa)) << "' AS Expr13, '"
            << spliced(d.sFPago) << "' AS Expr14, '" << spliced(joined(d.dDto)) << "' AS Expr15, '"
            << spliced(joined(d.dDtoPp)) << "' AS Expr16, '" << spliced(joined(d.dBase))
            << "' AS Expr17, '" << spliced(joined(d.dPortes)) << "' AS Expr18, "
            << spliced(joined(d.iImpuesto)) << " AS Expr19, '" << spliced(joined(d.dImpImp))
            << "' AS Expr20, " << spliced(joined(d.bRecargo)) << " AS Expr21, '"
            << spliced(joined(d.dImpRec)) << "' AS Expr22, '" << spliced(joined(d.dIrpf))
            << "' AS Expr23, '" << spliced(joined(d.dImpIrpf)) << "' AS Expr24, '"
            << spliced(joined(d.dTotal)) << "' AS Expr25, " << spliced(joined(d.vDocE))
            << " AS Expr26, '" << spliced(d.sCtaContable) << "' AS Expr28, '"
            << spliced(d.sCtaContrapartida) << "' AS Expr29, '" << spliced(d.sConcepto)
            << "' AS Expr30, '" << spliced(d.sTipoFactura) << "' AS Expr31, "
            << spliced(joined(d.iEstado)) << " AS Expr32, '" << spliced(d.sCaja) << "' AS Expr33, '"
            << spliced(d.sEmpleado) << "' AS Expr34, " << spliced(d.bIncTax ? "-1" : "0")
            << " AS Expr35";
  write(statement, *d.objCn);
}

// Documento_P and Impreso are among the columns and stay unread: the caller knows the document type
// that he asks with, and keeps it.
void ClsTickets::Obtener(Lectura& lectura) const {
  const RecordsetPtr found = read(withId("SELECT"
                                         " Numero AS Ticket, Serie, Fecha, Codigo, Razon_Social AS "
                                         "Empresa"
                                         " , Tarifa, Almacen AS Almacén, Referencia, "
                                         "Transportista, Divisa"
                                         " , Valor_Divisa AS Cambio, Total_Divisa, Forma_Pago AS "
                                         "Pago"
                                         " , Descuento, Descuento_PP, Base, Gastos AS Portes, "
                                         "Impuesto"
                                         " , Importe_Impuestos, Recargo, Importe_recargo, IRPF"
                                         " , Importe_IRPF, Total, Estado, Doc_E, Facturado , Doc_F "
                                         "AS Factura,Impreso"
                                         " , CTA_Contable, CTA_Contrapartida, Concepto"
                                         " , Documento_P"
                                         " FROM "
                                         "Tickets"
                                         " WHERE Numero = {id}",
                                         lectura.vId),
                                  *lectura.objCn);
  if (found->RecordCount() == 0) return;
  Recordset& rows = *found;
  Lectura& l = lectura;
  const auto always = [&](std::string_view column) { return rows.Field(column).Value(); };

  l.vId = always("Ticket");
  if (const Variant date = always("Fecha"); !date.isNull()) l.dtFecha = date.toDate(locale());
  takeColumn(rows, "Serie", l.sSerie);
  takeColumn(rows, "Codigo", l.sCod);
  takeColumn(rows, "Empresa", l.sEmpresa);
  takeColumn(rows, "Tarifa", l.sTarifa);
  takeColumn(rows, "Almacén", l.sAlmacen);
  takeColumn(rows, "Referencia", l.sRef);
  takeColumn(rows, "Transportista", l.sTransportista);
  takeColumn(rows, "Divisa", l.sDivisa);
  takeColumn(rows, "Cambio", l.dCambio);
  takeColumn(rows, "Total_Divisa", l.dTotaldivisa);
  takeColumn(rows, "Pago", l.sFPago);
  takeColumn(rows, "Descuento", l.dDto);
  takeColumn(rows, "Descuento_PP", l.dDtoPp);
  takeColumn(rows, "Base", l.dBase);
  takeColumn(rows, "Portes", l.dPortes);
  l.iImpuesto = always("Impuesto").toInt16(locale());
  takeColumn(rows, "Total", l.dTotal);
  l.iEstado = always("Estado").toInt16(locale());
  l.iFacturado = always("Facturado").toInt16(locale());
  takeColumn(rows, "Factura", l.dFactura);
  takeColumn(rows, "Importe_Impuestos", l.dImpImp);
  l.bRecargo = always("Recargo").toDouble(locale());
  takeColumn(rows, "Importe_recargo", l.dImpRec);
  takeColumn(rows, "IRPF", l.dIrpf);
  takeColumn(rows, "Importe_IRPF", l.dImpIrpf);
  takeColumn(rows, "CTA_Contable", l.sCtaContable);
  takeColumn(rows, "CTA_Contrapartida", l.sCtaContrapartida);
  takeColumn(rows, "Concepto", l.sConcepto);
}

}  // namespace tavelor
