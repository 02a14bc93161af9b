// SPDX-License-Identifier: MIT
// The road of a closing through all its classes, and back.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/closing/cierres.hpp"
#include "tavelor/sales/registros_tickets.hpp"
#include "tavelor/sales/tickets_cabecera.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tavelor/sales/tickets_lineas.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

class ClosingRoadTest : public testing::Test {
 protected:
  static constexpr int kDocuments = 3;

  ClosingRoadTest() {
    shop.apartment().clock().fix(Date::of(2026, 3, 5));
    sell(1, "BEB", 21, 121);
    sell(2, "PAN", 10, 11);
    tickets.Insertar({.vId = std::int32_t{3}, .sSerie = "A", .vDocE = 0, .sCaja = "02"});
  }

  void sell(std::int32_t number, const std::string& family, double rate, double amount) {
    tickets.Insertar({.vId = number,
                      .dtFecha = Date::of(2026, 3, 5),
                      .sSerie = "A",
                      .sFPago = "CON",
                      .dTotal = amount,
                      .iEstado = 2,
                      .vDocE = 0,
                      .sCaja = "01",
                      .bIncTax = true});
    lines.Insertar({.vDoc = number,
                    .vIdNewReg = number,
                    .sCodigo = "A1",
                    .sDescripcion = "Una línea",
                    .dCantidad = 1,
                    .dIva = rate,
                    .dImporte = amount,
                    .sFam = family});
    headers.Insertar({.vId = number, .vNum = number, .sNombre = "Ana"});
  }

  /// Marks the tickets of till 01 and writes the closing with its details.
  void close(const Variant& closing) {
    for (const std::int32_t number : {1, 2}) {
      tickets.CerrarTicket(number, closing);
      lines.CerrarTicket(number, closing);
      headers.CerrarTicket(number, closing);
      comments.CerrarTicket(number, closing);
      lines.Mover_Impuestos_A_Historicos(number, closing, true);
    }
    double balance = 100;
    closings.SaldoAnterior(Date::of(2026, 3, 5), "01", "", "A", balance);
    closings.Insertar({.vId = closing,
                       .dtFecha = Date::of(2026, 3, 5),
                       .sCaja = "01",
                       .SaldoIni = balance,
                       .SaldoFin = balance + 132});
    each(*lines.SumCollectionLinHFamilias(closing), [&](const ClsRegTickets& group) {
      closings.InsertarCierreFamilias(closing, text(group.Codigo), number(group.Importe));
    });
    each(*lines.SumCollectionLinHImpuestos(closing), [&](const ClsRegTickets& group) {
      closings.InsertarCierreImpuestos(closing, text(group.Codigo), number(group.Suma),
                                       number(group.Importe));
    });
    each(*tickets.SumColLinTotalFpagoTickets(closing), [&](const ClsRegTickets& group) {
      closings.InsertarCierreFormasPago(closing, text(group.Codigo), number(group.Importe));
    });
    tickets.Mover_A_Historicos(closing);
    lines.Mover_A_Historicos(closing);
    headers.Mover_A_Historicos(closing);
    comments.Mover_A_Historicos(closing);
  }

  template <typename Work>
  static void each(const CollectionTickets& groups, Work work) {
    for (std::int32_t i = 1; i <= groups.Count(); ++i) work(*groups.Item(i));
  }
  std::string text(const Variant& value) { return value.toText(shop.apartment().locale()); }
  double number(const Variant& value) { return value.toDouble(shop.apartment().locale()); }
  std::string documents(const std::string& statement) { return shop.text(statement, kDocuments); }
  std::vector<std::string> slip(const std::string& mode, const Variant& closing) {
    closings.IniciaRs(mode, closing);
    std::vector<std::string> texts;
    for (const Variant& line : mode == "familias"    ? closings.GetCollectionLinFamilias()
                               : mode == "impuestos" ? closings.GetCollectionLinImpuestos()
                                                     : closings.GetCollectionLinFormasPago()) {
      texts.push_back(text(line));
    }
    return texts;
  }

  test::Shop shop;
  ClsTickets tickets;
  ClsTicketsLineas lines;
  ClsTicketsCabecera headers;
  ClsTicketsComentarios comments;
  ClsCierres closings;
};

TEST_F(ClosingRoadTest, ADayGoesToHistoryAndItsSumsToTheClosing) {
  const Variant closing = closings.NuevoCodigo();
  close(closing);
  EXPECT_THAT(slip("familias", closing),
              testing::UnorderedElementsAre("BEB                        121",
                                            "PAN                         11"));
  EXPECT_THAT(slip("impuestos", closing),
              testing::UnorderedElementsAre("  21% IVA de     100,00    21,00",
                                            "  10% IVA de      10,00     1,00"));
  EXPECT_THAT(slip("formas_pago", closing), testing::ElementsAre("CON              132"));
  EXPECT_EQ(documents("SELECT Numero FROM Tickets"), "3") << "the other till stays open";
  EXPECT_EQ(documents("SELECT Count(*) FROM HTickets WHERE Cierre = 1"), "2");
  EXPECT_EQ(documents("SELECT Count(*) FROM HTickets_Lineas WHERE Cierre = 1"), "2");
  EXPECT_EQ(documents("SELECT Count(*) FROM HTickets_Cabecera WHERE Cierre = 1"), "2");
}

TEST_F(ClosingRoadTest, TheNextClosingBeginsWithTheBalanceOfTheLast) {
  close(closings.NuevoCodigo());
  double balance = 0;
  closings.SaldoAnterior(Date::of(2026, 3, 5), "01", "", "A", balance);
  EXPECT_EQ(balance, 232);
}

TEST_F(ClosingRoadTest, AClosingThatIsTakenBackCanBeMadeAgain) {
  const Variant closing = closings.NuevoCodigo();
  close(closing);
  lines.Mover_Impuestos_De_Historicos(closing);
  tickets.Mover_De_Historicos(closing);
  lines.Mover_De_Historicos(closing);
  headers.Mover_De_Historicos(closing);
  comments.Mover_De_Historicos(closing);
  closings.DeleteAll(closing);
  closings.IniciaRs("todos");
  closings.Delete();
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets WHERE Cierre = 0"), "3");
  EXPECT_EQ(documents("SELECT Count(*) FROM HTickets"), "0");
  EXPECT_EQ(documents("SELECT Count(*) FROM HTickets_Lineas_Impuestos"), "0");
  close(closings.NuevoCodigo());
  EXPECT_THAT(slip("formas_pago", closing), testing::ElementsAre("CON              132"));
}

}  // namespace
}  // namespace tavelor
