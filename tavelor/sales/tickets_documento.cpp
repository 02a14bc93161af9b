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
  statement << value(joined(d.vId)) << " AS Expr1, '" << value(joined(d.dtFecha)) << "' AS Expr2, '"
            << value(d.sCod) << "' AS Expr3, '" << value(d.sEmpresa) << "' AS Expr4, '"
            << value(d.sTarifa) << "' AS Expr5, '" << value(d.sSerie) << "' AS Expr6, '"
            << value(d.sAlmacen) << "' AS Expr8, '" << value(d.sRef) << "' AS Expr9, '"
            << value(d.sTransportista) << "' AS Expr10, '" << value(d.sDivisa) << "' AS Expr11, '"
            << value(joined(d.dCambio)) << "' AS Expr12, '" << value(joined(d.dTotaldivisa))
            << "' AS Expr13, '" << value(d.sFPago) << "' AS Expr14, '" << value(joined(d.dDto))
            << "' AS Expr15, '" << value(joined(d.dDtoPp)) << "' AS Expr16, '"
            << value(joined(d.dBase)) << "' AS Expr17, '" << value(joined(d.dPortes))
            << "' AS Expr18, " << value(joined(d.iImpuesto)) << " AS Expr19, '"
            << value(joined(d.dImpImp)) << "' AS Expr20, " << value(joined(d.bRecargo))
            << " AS Expr21, '" << value(joined(d.dImpRec)) << "' AS Expr22, '"
            << value(joined(d.dIrpf)) << "' AS Expr23, '" << value(joined(d.dImpIrpf))
            << "' AS Expr24, '" << value(joined(d.dTotal)) << "' AS Expr25, "
            << value(joined(d.vDocE)) << " AS Expr26, '" << value(d.sCtaContable)
            << "' AS Expr28, '" << value(d.sCtaContrapartida) << "' AS Expr29, '"
            << value(d.sConcepto) << "' AS Expr30, '" << value(d.sTipoFactura) << "' AS Expr31, "
            << value(joined(d.iEstado)) << " AS Expr32, '" << value(d.sCaja) << "' AS Expr33, '"
            << value(d.sEmpleado) << "' AS Expr34, " << value(d.bIncTax ? "-1" : "0")
            << " AS Expr35";
  write(statement, *d.objCn);
}

// Documento_P and Impreso are among the columns and stay unread: the caller knows the document type
// that he asks with, and keeps it.
void ClsTickets::Obtener(Lectura& lectura) const {
  const RecordsetPtr found = read(withId("SELECT Numero AS Ticket, Serie, Fecha, Codigo,"
                                         " Razon_Social AS Empresa , Tarifa,"
                                         " Almacen AS Almacén, Referencia, Transportista,"
                                         " Divisa , Valor_Divisa AS Cambio, Total_Divisa,"
                                         " Forma_Pago AS Pago , Descuento, Descuento_PP,"
                                         " Base, Gastos AS Portes, Impuesto ,"
                                         " Importe_Impuestos, Recargo, Importe_recargo,"
                                         " IRPF , Importe_IRPF, Total, Estado, Doc_E,"
                                         " Facturado , Doc_F AS Factura,Impreso ,"
                                         " CTA_Contable, CTA_Contrapartida, Concepto ,"
                                         " Documento_P"
                                         " FROM Tickets"
                                         " WHERE Numero = {id}",
                                         lectura.vId),
                                  *lectura.objCn);
  if (found->RecordCount() == 0) return;
  Recordset& rows = *found;
  Lectura& l = lectura;
  const auto always = [&](std::string_view column) { return rows.Field(column).Value(); };

  l.vId = always("Ticket");
  if (const Variant date = always("Fecha"); !date.isNull()) l.dtFecha = date.toDate(locale());
  take(rows, "Serie", l.sSerie);
  take(rows, "Codigo", l.sCod);
  take(rows, "Empresa", l.sEmpresa);
  take(rows, "Tarifa", l.sTarifa);
  take(rows, "Almacén", l.sAlmacen);
  take(rows, "Referencia", l.sRef);
  take(rows, "Transportista", l.sTransportista);
  take(rows, "Divisa", l.sDivisa);
  take(rows, "Cambio", l.dCambio);
  take(rows, "Total_Divisa", l.dTotaldivisa);
  take(rows, "Pago", l.sFPago);
  take(rows, "Descuento", l.dDto);
  take(rows, "Descuento_PP", l.dDtoPp);
  take(rows, "Base", l.dBase);
  take(rows, "Portes", l.dPortes);
  l.iImpuesto = always("Impuesto").toInt16(locale());
  take(rows, "Total", l.dTotal);
  l.iEstado = always("Estado").toInt16(locale());
  l.iFacturado = always("Facturado").toInt16(locale());
  take(rows, "Factura", l.dFactura);
  take(rows, "Importe_Impuestos", l.dImpImp);
  l.bRecargo = always("Recargo").toDouble(locale());
  take(rows, "Importe_recargo", l.dImpRec);
  take(rows, "IRPF", l.dIrpf);
  take(rows, "Importe_IRPF", l.dImpIrpf);
  take(rows, "CTA_Contable", l.sCtaContable);
  take(rows, "CTA_Contrapartida", l.sCtaContrapartida);
  take(rows, "Concepto", l.sConcepto);
}

}  // namespace tavelor
