// SPDX-License-Identifier: MIT
// ClsTickets: documents written and read, and the marks that others leave on them.
#include "tests/classes/sales/tickets.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

constexpr std::string_view kColumns =
    "INSERT INTO Tickets ( Numero, Fecha, Codigo, Razon_Social, Tarifa, Serie, Almacen, "
    "Referencia, Transportista, Divisa, Valor_Divisa, Total_Divisa, Forma_Pago, Descuento, "
    "Descuento_PP, Base, Gastos, Impuesto, Importe_Impuestos, Recargo, Importe_recargo, IRPF, "
    "Importe_IRPF, Total, Doc_E, CTA_Contable, CTA_Contrapartida, Concepto, Documento_P, Estado, "
    "Caja, Empleado, Impuesto_Incluido ) SELECT ";

class TicketDocumentTest : public testing::Test, protected test::TicketShop {
 protected:
  explicit TicketDocumentTest(const Settings& settings = test::fastSettings())
      : TicketShop(settings) {}

  static ClsTickets::Documento document() {
    return {.vId = 1234,
            .dtFecha = Date::of(2026, 3, 5),
            .sSerie = "B",
            .sCod = "00012",
            .sEmpresa = "Bar El Olivo",
            .sTarifa = "A",
            .sAlmacen = "002",
            .sRef = "R1",
            .sTransportista = "T1",
            .sDivisa = "EUR",
            .dCambio = 1.5,
            .dTotaldivisa = 189.3,
            .sFPago = "CON",
            .dDto = 2.5,
            .dDtoPp = 1.25,
            .dBase = 100.1,
            .dPortes = 3.2,
            .iImpuesto = 4,
            .dTotal = 126.2,
            .iEstado = 1,
            .vDocE = 77,
            .dImpImp = 21.3,
            .bRecargo = 5,
            .dImpRec = 5.2,
            .dIrpf = 15.5,
            .dImpIrpf = 16.4,
            .sCtaContable = "430",
            .sCtaContrapartida = "700",
            .sConcepto = "Venta",
            .sTipoFactura = "TK",
            .sCaja = "01",
            .sEmpleado = "003",
            .bIncTax = true};
  }
};

// Amounts that a ticket has beside those that a test is about.
constexpr const char* kOtherAmounts =
    "Importe_Impuestos = 0, Importe_recargo = 0, Importe_IRPF = 0";

class TicketDocumentInAnyLocaleTest : public TicketDocumentTest {
 protected:
  TicketDocumentInAnyLocaleTest() : TicketDocumentTest(test::tillSettings("neutral")) {}
};

// ---- Insertar

TEST_F(TicketDocumentTest, InsertarIsOneStatementWithNumbersAsTheLocalePrintsThem) {
  tickets.Insertar(document());
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          std::string(kColumns) +
          "1234 AS Expr1, '05/03/2026' AS Expr2, '00012' AS Expr3, 'Bar El Olivo' AS Expr4, 'A' "
          "AS Expr5, 'B' AS Expr6, '002' AS Expr8, 'R1' AS Expr9, 'T1' AS Expr10, 'EUR' AS "
          "Expr11, '1,5' AS Expr12, '189,3' AS Expr13, 'CON' AS Expr14, '2,5' AS Expr15, '1,25' "
          "AS Expr16, '100,1' AS Expr17, '3,2' AS Expr18, 4 AS Expr19, '21,3' AS Expr20, 5 AS "
          "Expr21, '5,2' AS Expr22, '15,5' AS Expr23, '16,4' AS Expr24, '126,2' AS Expr25, 77 AS "
          "Expr26, '430' AS Expr28, '700' AS Expr29, 'Venta' AS Expr30, 'TK' AS Expr31, 1 AS "
          "Expr32, '01' AS Expr33, '003' AS Expr34, -1 AS Expr35"));
}

TEST_F(TicketDocumentTest, EachParameterGoesToItsColumn) {
  tickets.Insertar(document());
  struct Case {
    const char *column, *stored;
  };
  for (const Case& each : {Case{"Numero", "1234"},
                           Case{"Fecha", "05/03/2026"},
                           Case{"Serie", "B"},
                           Case{"Codigo", "00012"},
                           Case{"Razon_Social", "Bar El Olivo"},
                           Case{"Tarifa", "A"},
                           Case{"Almacen", "002"},
                           Case{"Referencia", "R1"},
                           Case{"Transportista", "T1"},
                           Case{"Divisa", "EUR"},
                           Case{"Valor_Divisa", "1,5"},
                           Case{"Total_Divisa", "189,3"},
                           Case{"Forma_Pago", "CON"},
                           Case{"Descuento", "2,5"},
                           Case{"Descuento_PP", "1,25"},
                           Case{"Base", "100,1"},
                           Case{"Gastos", "3,2"},
                           Case{"Impuesto", "4"},
                           Case{"Importe_Impuestos", "21,3"},
                           Case{"Recargo", "5"},
                           Case{"Importe_recargo", "5,2"},
                           Case{"IRPF", "15,5"},
                           Case{"Importe_IRPF", "16,4"},
                           Case{"Total", "126,2"},
                           Case{"Doc_E", "77"},
                           Case{"CTA_Contable", "430"},
                           Case{"CTA_Contrapartida", "700"},
                           Case{"Concepto", "Venta"},
                           Case{"Documento_P", "TK"},
                           Case{"Estado", "1"},
                           Case{"Caja", "01"},
                           Case{"Empleado", "003"},
                           Case{"Impuesto_Incluido", "Verdadero"}}) {
    EXPECT_EQ(column(each.column, 1234), each.stored) << each.column;
  }
}

TEST_F(TicketDocumentTest, WhatInsertarDoesNotNameKeepsTheTablesDefaults) {
  tickets.Insertar(document());
  for (const char* zero : {"Entrega", "Cambio", "Facturado", "Doc_F", "Contabilizado", "Cierre"}) {
    EXPECT_EQ(column(zero, 1234), "0") << zero;
  }
  for (const char* flag : {"Pagado", "Impreso"}) EXPECT_EQ(column(flag, 1234), "Falso") << flag;
}

TEST_F(TicketDocumentInAnyLocaleTest, NumbersAreThoseOfThisLocaleAndDatesToo) {
  ClsTickets::Documento sale = document();
  sale.bRecargo = 5.2;
  tickets.Insertar(sale);
  const std::string statement = shop.statements().at(0);
  EXPECT_THAT(statement, testing::HasSubstr("'1.5' AS Expr12, '189.3' AS Expr13"));
  EXPECT_THAT(statement, testing::HasSubstr(" 5.2 AS Expr21,"));
  EXPECT_EQ(text("SELECT Fecha FROM Tickets WHERE Fecha = #03/05/2026#"), column("Fecha", 1234));
  EXPECT_EQ(column("Recargo", 1234), "5.2");
}

// Without quotes round it the comma makes two values of the rate.
TEST_F(TicketDocumentTest, ASurchargeRateWithDecimalsIsRefusedUnderADecimalComma) {
  ClsTickets::Documento sale = document();
  sale.bRecargo = 5.2;
  EXPECT_EQ(errorOf([&] { tickets.Insertar(sale); }), errors::kSyntax);
  EXPECT_EQ(count("Tickets"), "0");
}

TEST_F(TicketDocumentTest, AQuoteInATextIsRefusedAndADoubledOneIsNot) {
  ClsTickets::Documento sale = document();
  sale.sEmpresa = "L'Olivera";
  EXPECT_EQ(errorOf([&] { tickets.Insertar(sale); }), errors::kSyntax);
  sale.sEmpresa = "x', 'y";
  EXPECT_EQ(errorOf([&] { tickets.Insertar(sale); }), errors::kSyntax);
  EXPECT_EQ(count("Tickets"), "0");
  sale.sEmpresa = "L''Olivera";
  tickets.Insertar(sale);
  EXPECT_EQ(column("Razon_Social", 1234), "L'Olivera");
}

TEST_F(TicketDocumentTest, ADocumentThatNamesNoOrderIsNone) {
  tickets.Insertar({.vId = 1});
  EXPECT_EQ(column("Doc_E", 1), "0");
}

TEST_F(TicketDocumentTest, AnEmptyOrderNumberIsRefused) {
  ClsTickets::Documento sale = document();
  sale.vDocE = {};
  EXPECT_EQ(errorOf([&] { tickets.Insertar(sale); }), errors::kSyntax);
}

TEST_F(TicketDocumentTest, ANumberThatIsThereIsRefusedWhateverItsSeries) {
  add(1234);
  EXPECT_EQ(errorOf([&] { tickets.Insertar(document()); }), errors::kIntegrityViolation);
  EXPECT_EQ(column("Serie", 1234), "A");
}

TEST_F(TicketDocumentTest, ATimeInTheDateIsStored) {
  ClsTickets::Documento sale = document();
  sale.dtFecha = Date::of({2026, 3, 5, 14, 5, 9});
  tickets.Insertar(sale);
  EXPECT_THAT(shop.statements().at(0), testing::HasSubstr("'05/03/2026 14:05:09' AS Expr2"));
  EXPECT_EQ(column("Fecha", 1234), "05/03/2026 14:05:09");
}

TEST_F(TicketDocumentTest, AnEmptyConnectionIsFilledAndAFailureLeavesItsTransactionOpen) {
  TAVELOR_ONLY_IN_FILES("the error of a write that is sent comes with the next wait");
  ConnectionPtr connection;
  ClsTickets::Documento sale = document();
  const ClsTickets::Documento first = {.vId = 1, .vDocE = 0, .objCn = connection};
  tickets.Insertar(first);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  tickets.Insertar({.vId = 2, .vDocE = 0, .objCn = connection});
  EXPECT_NE(errorOf([&] { tickets.Insertar({.vId = 1, .vDocE = 0, .objCn = connection}); }), 0);
  connection->RollbackTrans();
  EXPECT_EQ(count("Tickets"), "1") << "both of the transaction are gone";
}

// ---- Obtener

TEST_F(TicketDocumentTest, ObtenerReadsAWholeTicket) {
  tickets.Insertar(document());
  run("UPDATE Tickets SET Facturado = 3, Doc_F = 20015 WHERE Numero = 1234");
  shop.statements();
  ClsTickets::Lectura read;
  read.vId = "1234";
  read.sTipoFactura = "propio";
  tickets.Obtener(read);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Numero AS Ticket, Serie, Fecha, Codigo, Razon_Social AS Empresa , "
                  "Tarifa, Almacen AS Almacén, Referencia, Transportista, Divisa , Valor_Divisa AS "
                  "Cambio, Total_Divisa, Forma_Pago AS Pago , Descuento, Descuento_PP, Base, "
                  "Gastos AS Portes, Impuesto , Importe_Impuestos, Recargo, Importe_recargo, IRPF "
                  ", Importe_IRPF, Total, Estado, Doc_E, Facturado , Doc_F AS Factura,Impreso , "
                  "CTA_Contable, CTA_Contrapartida, Concepto , Documento_P FROM Tickets WHERE "
                  "Numero = 1234"));
  EXPECT_EQ(shown(read.vId), "1234");
  EXPECT_EQ(read.dtFecha, Date::of(2026, 3, 5));
  EXPECT_EQ(read.sSerie, "B");
  EXPECT_EQ(read.sCod, "00012");
  EXPECT_EQ(read.sEmpresa, "Bar El Olivo");
  EXPECT_EQ(read.sTarifa, "A");
  EXPECT_EQ(read.sAlmacen, "002");
  EXPECT_EQ(read.sRef, "R1");
  EXPECT_EQ(read.sTransportista, "T1");
  EXPECT_EQ(read.sDivisa, "EUR");
  EXPECT_EQ(read.dCambio, 1.5);
  EXPECT_EQ(read.dTotaldivisa, 189.3);
  EXPECT_EQ(read.sFPago, "CON");
  EXPECT_EQ(read.dDto, 2.5);
  EXPECT_EQ(read.dDtoPp, 1.25);
  EXPECT_EQ(read.dBase, 100.1);
  EXPECT_EQ(read.dPortes, 3.2);
  EXPECT_EQ(read.iImpuesto, 4);
  EXPECT_EQ(read.dTotal, 126.2);
  EXPECT_EQ(read.iEstado, 1);
  EXPECT_EQ(read.iFacturado, 3);
  EXPECT_EQ(read.dFactura, 20015);
  EXPECT_EQ(read.dImpImp, 21.3);
  EXPECT_EQ(read.bRecargo, 5);
  EXPECT_EQ(read.dImpRec, 5.2);
  EXPECT_EQ(read.dIrpf, 15.5);
  EXPECT_EQ(read.dImpIrpf, 16.4);
  EXPECT_EQ(read.sCtaContable, "430");
  EXPECT_EQ(read.sCtaContrapartida, "700");
  EXPECT_EQ(read.sConcepto, "Venta");
  EXPECT_EQ(read.sTipoFactura, "propio") << "the document type is left alone";
}

TEST_F(TicketDocumentTest, ObtenerOfAnAbsentNumberLeavesEveryParameterAsItWas) {
  addToHistory(5);
  ClsTickets::Lectura read;
  read.vId = 5;
  read.sSerie = "Z";
  read.dTotal = -1;
  read.iEstado = 9;
  read.sConcepto = "queda";
  tickets.Obtener(read);
  EXPECT_EQ(read.vId, Variant(5));
  EXPECT_EQ(read.sSerie, "Z");
  EXPECT_EQ(read.dTotal, -1);
  EXPECT_EQ(read.iEstado, 9);
  EXPECT_EQ(read.sConcepto, "queda");
}

TEST_F(TicketDocumentTest, ObtenerLeavesWhatIsNullAsPassed) {
  add(1, "Referencia = Null, Impuesto = 1, Recargo = 0, Fecha = Null, Total = Null");
  ClsTickets::Lectura read;
  read.vId = 1;
  read.sRef = "queda";
  read.dtFecha = Date::of(2020, 1, 1);
  read.dTotal = 3.5;
  tickets.Obtener(read);
  EXPECT_EQ(read.sRef, "queda");
  EXPECT_EQ(read.dtFecha, Date::of(2020, 1, 1));
  EXPECT_EQ(read.dTotal, 3.5);
}

TEST_F(TicketDocumentTest, ObtenerRaisesForANullTaxSurchargeStateOrMark) {
  add(1);
  for (const char* column : {"Impuesto", "Recargo", "Estado", "Facturado"}) {
    run("UPDATE Tickets SET Impuesto = 1, Recargo = 0, Estado = 0, Facturado = 0, Serie = 'B'");
    run("UPDATE Tickets SET " + std::string(column) + " = Null");
    ClsTickets::Lectura read;
    read.vId = 1;
    EXPECT_EQ(errorOf([&] { tickets.Obtener(read); }), errors::kInvalidUseOfNull) << column;
    EXPECT_EQ(read.sSerie, "B") << "what stands before it was read";
  }
}

// ---- Marks

TEST_F(TicketDocumentTest, FacturarDocumentoMarksATicket) {
  add(1);
  add(2);
  tickets.FacturarDocumento(1, 3, 20015);
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE  Tickets  SET Facturado = 3 , Doc_F = 20015 WHERE(Numero = 1)"));
  EXPECT_EQ(column("Facturado") + ", " + column("Doc_F"), "3, 20015");
  EXPECT_EQ(column("Facturado", 2), "0");
}

TEST_F(TicketDocumentTest, CancelarFacturacionUndoesAMarkOfItsKindOnly) {
  add(10, "Facturado = 2, Doc_F = 5");
  tickets.CancelarFacturacion(10, 3);
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE  Tickets SET Facturado = 0 , Doc_F = 0 WHERE(Numero = 10 and "
                          "Facturado = 3)"));
  EXPECT_EQ(column("Facturado", 10) + ", " + column("Doc_F", 10), "2, 5");
  tickets.CancelarFacturacion(10, 2);
  EXPECT_EQ(column("Facturado", 10) + ", " + column("Doc_F", 10), "0, 0");
}

TEST_F(TicketDocumentTest, ConvertirSerieGivesANewNumberAndSeries) {
  add(1);
  add(2);
  tickets.ConvertirSerie(1, 10001, "B");
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE Tickets SET Numero = 10001 , Serie = 'B' WHERE(Numero = 1)"));
  EXPECT_EQ(column("Serie", 10001), "B");
  EXPECT_EQ(errorOf([&] { tickets.ConvertirSerie(2, 10001, "B"); }), errors::kIntegrityViolation);
  EXPECT_EQ(column("Serie", 2), "A");
}

TEST_F(TicketDocumentTest, ActualizarEurosDividesTheAmountsOnce) {
  add(1,
      "Base = Null, Gastos = Null, Total = 16638.6, Entrega = 33277.2, Cambio = 1663.86, "
      "Importe_Impuestos = 166.386, Importe_recargo = 332.772, Importe_IRPF = 499.158");
  tickets.ActualizarEuros();
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("UPDATE Tickets SET Base = 0 Where (((Base) Is Null))",
                  "UPDATE Tickets SET Gastos = 0 Where (((Gastos) Is Null))",
                  "UPDATE  Tickets SET Base = Format([Base]/'166,386','Currency'), Gastos = "
                  "Format([Gastos]/'166,386','Currency'), Importe_Impuestos = "
                  "Format([Importe_Impuestos]/'166,386','Currency'), Importe_Recargo = "
                  "Format([Importe_Recargo]/'166,386','Currency'), Importe_Irpf = "
                  "Format([Importe_Irpf]/'166,386','Currency'), Total = "
                  "Format([Total]/'166,386','Currency'), Entrega = "
                  "Format([Entrega]/'166,386','Currency'), Cambio = "
                  "Format([Cambio]/'166,386','Currency');"));
  EXPECT_EQ(column("Base") + ", " + column("Gastos"), "0, 0");
  EXPECT_EQ(column("Total") + ", " + column("Entrega") + ", " + column("Cambio"), "100, 200, 10");
  EXPECT_EQ(column("Importe_Impuestos") + ", " + column("Importe_recargo") + ", " +
                column("Importe_IRPF"),
            "1, 2, 3");
  tickets.ActualizarEuros();
  EXPECT_EQ(column("Total"), "0,6") << "a second run divides again";
}

// There the divisor reads as a whole number. Amounts that were divided so are in databases: the
// text must not become a number.
TEST_F(TicketDocumentInAnyLocaleTest, ActualizarEurosDividesByWhatTheTextReadsAs) {
  add(1, "Total = 16638600, Entrega = 332772, " + std::string(kOtherAmounts));
  tickets.ActualizarEuros();
  EXPECT_EQ(column("Total") + ", " + column("Entrega"), "100, 2");
}

// Only base and carriage are emptied of nulls first: the mask makes an empty text of any other one,
// which no column of money takes. The caller rolls back and mends the row.
TEST_F(TicketDocumentTest, ActualizarEurosRefusesANullAmountThatIsNeitherBaseNorCarriage) {
  add(1, "Base = Null, Total = 16638.6, " + std::string(kOtherAmounts));
  add(2, "Total = 16638.6, Importe_IRPF = Null");
  EXPECT_EQ(errorOf([&] { tickets.ActualizarEuros(); }), errors::kTypeMismatch);
  EXPECT_EQ(column("Base") + ", " + column("Total"), "0, 16638,6") << "no ticket is divided";
}

}  // namespace
}  // namespace tavelor
