// SPDX-License-Identifier: MIT
// Goods that come in: what a delivery moves, what refuses it, and that it comes in once.
#include "tavelor/flows/receiving.hpp"

#include <cmath>
#include <functional>
#include <future>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tavelor/articles/articulos_lotes.hpp"
#include "tavelor/articles/articulos_mov_almacen.hpp"
#include "tavelor/flows/account.hpp"
#include "tavelor/flows/suppliers.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/suppliers/proveedores.hpp"
#include "tavelor/suppliers/proveedores_apuntes_conta.hpp"
#include "tests/flows/lives.hpp"

namespace tavelor::flows {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using Outcome = Receipt::Outcome;

const Date kArrival = Date::of(2025, 3, 10);

Delivery deliveryOf(std::string note, std::vector<DeliveryLine> lines) {
  return {.supplier = "400", .note = std::move(note), .day = kArrival, .lines = std::move(lines)};
}
DeliveryLine lineOf(std::string code, double quantity, double price) {
  return {.code = std::move(code), .quantity = quantity, .price = price};
}
DeliveryLine lotOf(std::string code, std::string lot) {
  DeliveryLine line = lineOf(std::move(code), 1, 1);
  line.lot = std::move(lot);
  return line;
}

/// PAN has neither lots nor packs, QUESO comes by lots, AGUA in packs of six.
class ReceivingTest : public ::testing::Test {
 protected:
  ReceivingTest() {
    seedCatalogues();
    addArticle("PAN");
    addArticle("QUESO", "Lotes = True");
    addArticle("AGUA", "Medida_Compra = 6");
    ConnectionPtr connection = DataSession().OpenConnection(1);
    makeSupplier("400", "Forn L'Espiga", connection);
  }

  void addArticle(const std::string& code, const std::string& change = "Lotes = False") {
    clsArticulos().Insertar({.vId = code, .bStock = -1, .bActivo = true});
    place_.run(fmt::format("UPDATE Articulos SET {} WHERE Codigo = '{}'", change, code));
  }
  std::string main(const std::string& statement) { return place_.text(statement); }
  /// What is wrong with a delivery of one line.
  std::string faultOf(const DeliveryLine& line) {
    return faultOf(deliveryOf(fmt::format("X{}", ++tried_), {line}));
  }
  std::string faultOf(const Delivery& delivery) {
    const Receipt receipt = receiving_.receive(delivery);
    EXPECT_EQ(receipt.outcome, Outcome::kRefused);
    EXPECT_EQ(receipt.faults.size(), 1U);
    return receipt.faults.empty() ? "" : receipt.faults.front().reason;
  }
  /// Rows that a delivery writes, whichever.
  std::string traces() {
    std::string counts;
    for (const char* table :
         {"Articulos_Movimientos_Almacen", "Articulos_Almacenes", "Articulos_Lotes",
          "Articulos_Precios_Compras", "Proveedores_Apuntes_Contables"}) {
      counts += main(fmt::format("SELECT Count(*) FROM {}", table)) + " ";
    }
    return counts + main("SELECT Sum(Existencia) FROM Articulos");
  }
  static constexpr const char* kNothing = "0 0 0 0 0 0";

  test::Shop place_;
  Receiving receiving_;
  int tried_ = 0;
};

TEST_F(ReceivingTest, ADeliveryGoesToEveryPlaceThatHoldsStock) {
  DeliveryLine cheese = lotOf("QUESO", "L1");
  cheese.expires = Date::of(2025, 6, 30);
  const Receipt receipt = receiving_.receive(deliveryOf("A-1", {lineOf("AGUA", 10, 3), cheese}));
  EXPECT_EQ(receipt.outcome, Outcome::kReceived);
  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'AGUA'"), "60");
  EXPECT_EQ(main("SELECT Cantidad FROM Articulos_Almacenes WHERE Codigo = 'AGUA' AND Almacen = "
                 "'001'"),
            "60");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Lotes WHERE Codigo = 'QUESO' AND Lote = 'L1' AND "
                 "Existencia = 1 AND Activo = -1 AND Stock <> 0 AND Caduca = #06/30/2025#"),
            "1");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Movimientos_Almacen WHERE Codigo = 'AGUA' AND "
                 "Cantidad = 60 AND Precio = 0.5 AND Movimiento = 0 AND Estado = 2 AND Referencia "
                 "= 'A-1' AND Lote = '0' AND Cod_ID = '1' AND Fecha = #03/10/2025#"),
            "1");
}

TEST_F(ReceivingTest, TheSupplierIsOwedWhatTheLinesComeTo) {
  DeliveryLine third = lineOf("PAN", 3, 0.335);
  third.discount = 10;  // 0.3015 each
  const Receipt receipt = receiving_.receive(deliveryOf("A-1", {lineOf("AGUA", 2, 1.5), third}));
  EXPECT_EQ(ClsProveedoresApuntesConta().Saldo("400", kArrival), 3.9);
  EXPECT_EQ(main(fmt::format("SELECT Concepto FROM Proveedores_Apuntes_Contables WHERE Estado = 2 "
                             "AND Documento_E = {} AND Debe_Haber = 'H'",
                             receipt.number)),
            "Albarán A-1");
}

TEST_F(ReceivingTest, TheLastCostTheSuppliersPriceAndTheAverageAreOfOnePurchaseUnit) {
  receiving_.receive(deliveryOf("A-1", {lineOf("AGUA", 10, 6)}));
  receiving_.receive(deliveryOf("A-2", {lineOf("AGUA", 30, 12)}));
  EXPECT_EQ(main("SELECT Precio_Coste FROM Articulos WHERE Codigo = 'AGUA'"), "12");
  EXPECT_EQ(main("SELECT Precio_Medio FROM Articulos WHERE Codigo = 'AGUA'"), "10,5");
  EXPECT_EQ(main("SELECT Precio FROM Articulos_Precios_Compras WHERE Codigo = 'AGUA' AND "
                 "Proveedor = '400'"),
            "12");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Precios_Compras"), "1");
  EXPECT_EQ(ClsArticulosMovAlmacen().GetPrecioMedioCompra_Art_periodo("AGUA", kArrival), 1.5)
      << "the history is that of the movements, by stock unit";
}

TEST_F(ReceivingTest, TwoLinesOfOneArticleWeighOneAfterTheOther) {
  receiving_.receive(deliveryOf("A-1", {lineOf("PAN", 1, 1), lineOf("PAN", 3, 2)}));
  EXPECT_EQ(main("SELECT Precio_Medio FROM Articulos WHERE Codigo = 'PAN'"), "1,75");
}

TEST_F(ReceivingTest, AStockBelowNothingDoesNotWeigh) {
  place_.run("UPDATE Articulos SET Existencia = -5, Precio_Medio = 9 WHERE Codigo = 'PAN'");
  receiving_.receive(deliveryOf("A-1", {lineOf("PAN", 10, 2)}));
  EXPECT_EQ(main("SELECT Precio_Medio FROM Articulos WHERE Codigo = 'PAN'"), "2");
  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "5");
}

TEST_F(ReceivingTest, WhatWasOnOrderIsSoNoLongerAsFarAsItCame) {
  clsArticulos().ActualizarStock_Pedido("AGUA", 5.0, 0.0);
  ClsArticulosAlmacenes().ActualizarStock("AGUA", "001", 5.0, 0.0);
  receiving_.receive(deliveryOf("A-1", {lineOf("AGUA", 2, 3)}));
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos WHERE Codigo = 'AGUA'"), "18");
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos_Almacenes WHERE Codigo = 'AGUA'"), "18");
  receiving_.receive(deliveryOf("A-2", {lineOf("AGUA", 7, 3)}));
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos WHERE Codigo = 'AGUA'"), "0");
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos_Almacenes WHERE Codigo = 'AGUA'"), "0");
}

TEST_F(ReceivingTest, WhatCameForAnotherWarehouseIsTakenOffItsOrderToo) {
  place_.run("INSERT INTO Almacenes (Codigo) VALUES ('002')");
  place_.run("INSERT INTO Almacenes (Codigo) VALUES ('003')");
  clsArticulos().ActualizarStock_Pedido("PAN", 11.0, 0.0);
  ClsArticulosAlmacenes().ActualizarStock("PAN", "003", 1.0, 0.0);
  ClsArticulosAlmacenes().ActualizarStock("PAN", "002", 6.0, 0.0);
  ClsArticulosAlmacenes().ActualizarStock("PAN", "001", 4.0, 0.0);
  const auto onOrder = [&](const std::string& warehouse) {
    return main("SELECT Pendiente FROM Articulos_Almacenes WHERE Codigo = 'PAN' AND Almacen = '" +
                warehouse + "'");
  };
  receiving_.receive(deliveryOf("A-1", {lineOf("PAN", 6, 1)}));
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos WHERE Codigo = 'PAN'"), "5");
  EXPECT_EQ(onOrder("001") + " " + onOrder("002") + " " + onOrder("003"), "0 4 1");
  receiving_.receive(deliveryOf("A-2", {lineOf("PAN", 9, 1)}));
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos WHERE Codigo = 'PAN'"), "0");
  EXPECT_EQ(main("SELECT Sum(Pendiente) FROM Articulos_Almacenes WHERE Codigo = 'PAN'"), "0");
  EXPECT_EQ(main("SELECT Cantidad FROM Articulos_Almacenes WHERE Codigo = 'PAN' AND Almacen = "
                 "'002'"),
            "0");
}

TEST_F(ReceivingTest, WarehousesWithLessOnOrderThanTheArticleLackNoMoreAfterADelivery) {
  clsArticulos().ActualizarStock_Pedido("PAN", 10.0, 0.0);
  ClsArticulosAlmacenes().ActualizarStock("PAN", "001", 6.0, 0.0);
  receiving_.receive(deliveryOf("A-1", {lineOf("PAN", 5, 1)}));
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos WHERE Codigo = 'PAN'"), "5");
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos_Almacenes WHERE Codigo = 'PAN'"), "1");
  receiving_.receive(deliveryOf("A-2", {lineOf("PAN", 3, 1)}));
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos WHERE Codigo = 'PAN'"), "2");
  EXPECT_EQ(main("SELECT Pendiente FROM Articulos_Almacenes WHERE Codigo = 'PAN'"), "0");
}

TEST_F(ReceivingTest, ADeliveryGivenAgainIsKnownByItsSupplierAndNumber) {
  const Delivery delivery = deliveryOf("A-1", {lineOf("PAN", 2, 1), lotOf("QUESO", "L1")});
  const double number = receiving_.receive(delivery).number;
  const std::string before = traces();
  const Receipt again = receiving_.receive(delivery);
  EXPECT_EQ(again.outcome, Outcome::kKnown);
  EXPECT_EQ(again.number, number);
  EXPECT_EQ(traces(), before);
}

TEST_F(ReceivingTest, TheSameNumberOfAnotherSupplierIsAnotherDelivery) {
  ConnectionPtr connection = DataSession().OpenConnection(1);
  makeSupplier("401", "Other", connection);
  Delivery delivery = deliveryOf("A-1", {lineOf("PAN", 2, 1)});
  receiving_.receive(delivery);
  delivery.supplier = "401";
  EXPECT_EQ(receiving_.receive(delivery).outcome, Outcome::kReceived);
}

TEST_F(ReceivingTest, TheSameNumberWithAnyOtherContentIsRefused) {
  const Delivery delivery = deliveryOf("A-1", {lineOf("PAN", 2, 1), lotOf("QUESO", "L1")});
  receiving_.receive(delivery);
  place_.run("INSERT INTO Almacenes (Codigo) VALUES ('002')");
  const std::string before = traces();
  const std::string day = ", not on 2025-03-11";
  const std::string amount = " with another amount";
  const std::string lines = " with other lines, or in another order";
  const std::string expiry = " with another Caduca of lot L1";
  const std::vector<std::pair<std::string, std::function<void(Delivery&)>>> changes = {
      {day, [](Delivery& d) { d.day = Date(kArrival.days() + 1); }},
      {amount, [](Delivery& d) { d.lines.pop_back(); }},
      {amount, [](Delivery& d) { d.lines.push_back(lineOf("PAN", 1, 1)); }},
      {lines, [](Delivery& d) { d.lines[0].code = "AGUA"; }},
      {amount, [](Delivery& d) { d.lines[0].quantity = 3; }},
      {amount, [](Delivery& d) { d.lines[0].price = 1.1; }},
      {lines, [](Delivery& d) { d.lines[0].quantity = 1, d.lines[0].price = 2; }},
      {lines, [](Delivery& d) { d.lines[0].warehouse = "002"; }},
      {lines, [](Delivery& d) { d.lines[1].lot = "L2"; }},
      {expiry, [](Delivery& d) { d.lines[1].expires = kArrival; }},
      {lines, [](Delivery& d) { std::swap(d.lines[0], d.lines[1]); }}};
  for (const auto& [differs, change] : changes) {
    Delivery other = delivery;
    change(other);
    EXPECT_EQ(faultOf(other), "Albaran A-1 was received on 2025-03-10" + differs);
  }
  EXPECT_EQ(traces(), before);
}

TEST_F(ReceivingTest, AnUnknownSupplierAnEmptyNumberAndADayToComeAreRefused) {
  Delivery delivery = deliveryOf("A-1", {lineOf("PAN", 1, 1)});
  delivery.supplier = "nobody";
  EXPECT_EQ(faultOf(delivery), "Proveedor is no supplier of the shop: nobody");
  delivery = deliveryOf("", {lineOf("PAN", 1, 1)});
  EXPECT_EQ(faultOf(delivery), "Albaran is empty");
  delivery = deliveryOf(std::string(51, '1'), {lineOf("PAN", 1, 1)});
  EXPECT_EQ(faultOf(delivery), "Albaran has more than 50 characters");
  delivery = deliveryOf("A-1", {lineOf("PAN", 1, 1)});
  delivery.day = Date(place_.apartment().clock().today().days() + 1);
  EXPECT_THAT(faultOf(delivery), ::testing::StartsWith("Fecha lies in the future: "));
  EXPECT_EQ(faultOf(deliveryOf("A-1", {})), "Albaran A-1 has no lines");
  EXPECT_EQ(traces(), kNothing);
}

TEST_F(ReceivingTest, AnArticleThatCannotBeBoughtIsRefused) {
  EXPECT_EQ(faultOf(lineOf("NADA", 1, 1)), "Codigo is no article of the shop: NADA");
  EXPECT_EQ(faultOf(lineOf("$$$", 1, 1)), "Codigo is no article of the shop: $$$");
  EXPECT_EQ(faultOf(lineOf("X' OR '1'='1", 1, 1)),
            "Codigo is no article of the shop: X' OR '1'='1");
  addArticle("SERVICIO", "Actualizar_Stock = False");
  addArticle("CESTA", "Articulo_Compuesto = True");
  addArticle("VIEJO", "Activo = False");
  addArticle("NULO", "Medida_Compra = Null");
  addArticle("CERO", "Medida_Compra = 0");
  EXPECT_THAT(faultOf(lineOf("SERVICIO", 1, 1)), ::testing::HasSubstr("no stock is kept"));
  EXPECT_THAT(faultOf(lineOf("CESTA", 1, 1)), ::testing::HasSubstr("a package"));
  EXPECT_THAT(faultOf(lineOf("VIEJO", 1, 1)), ::testing::HasSubstr("not in use"));
  EXPECT_THAT(faultOf(lineOf("NULO", 1, 1)), ::testing::HasSubstr("Medida_Compra"));
  EXPECT_THAT(faultOf(lineOf("CERO", 1, 1)), ::testing::HasSubstr("Medida_Compra"));
  EXPECT_EQ(traces(), kNothing);
}

TEST_F(ReceivingTest, APriceOfNothingOrLessIsRefused) {
  EXPECT_EQ(faultOf(lineOf("PAN", 1, 0)), "Precio is 0");
  EXPECT_EQ(faultOf(lineOf("PAN", 1, -1)), "Precio is negative");
  EXPECT_EQ(faultOf(lineOf("PAN", 1, 0.00004)), "Precio is 0 to four decimals, less Descuento");
  DeliveryLine gift = lineOf("PAN", 1, 1);
  gift.discount = 100;
  EXPECT_EQ(faultOf(gift), "Precio is 0 to four decimals, less Descuento");
  EXPECT_EQ(traces(), kNothing);
}

TEST_F(ReceivingTest, AQuantityOfNothingOrLessIsRefused) {
  EXPECT_EQ(faultOf(lineOf("PAN", 0, 1)), "Cantidad is 0");
  EXPECT_EQ(faultOf(lineOf("PAN", -2, 1)), "Cantidad is negative");
  EXPECT_EQ(faultOf(lineOf("PAN", 1e-9, 1)), "Cantidad is 0 to the decimals that the shop keeps");
  EXPECT_EQ(faultOf(lineOf("PAN", std::nan(""), 1)), "Cantidad is too large");
  EXPECT_EQ(faultOf(lineOf("PAN", HUGE_VAL, 1)), "Cantidad is too large");
  EXPECT_EQ(faultOf(lineOf("PAN", 9e8, 9e8)), "Cantidad by Precio is too large");
  EXPECT_EQ(traces(), kNothing);
}

TEST_F(ReceivingTest, AnUnknownWarehouseIsRefused) {
  DeliveryLine line = lineOf("PAN", 1, 1);
  line.warehouse = "9";
  EXPECT_EQ(faultOf(line), "Almacen is no warehouse of the shop: 9");
  place_.run("DELETE FROM Almacenes");
  EXPECT_EQ(faultOf(lineOf("PAN", 1, 1)), "Almacen is no warehouse of the shop: 001");
}

TEST_F(ReceivingTest, AnArticleUnderLotsWantsOneAndNoOtherTakesAny) {
  EXPECT_EQ(faultOf(lineOf("QUESO", 1, 1)), "Lote is empty, and QUESO is kept by lots");
  EXPECT_EQ(faultOf(lotOf("QUESO", "0")), "Lote is empty, and QUESO is kept by lots");
  EXPECT_EQ(faultOf(lotOf("PAN", "L1")), "Lote L1, and PAN is not kept by lots");
  EXPECT_EQ(faultOf(lotOf("QUESO", std::string(51, 'L'))), "Lote has more than 50 characters");
  DeliveryLine line = lineOf("PAN", 1, 1);
  line.expires = kArrival;
  EXPECT_EQ(faultOf(line), "Caduca stands without a Lote");
}

TEST_F(ReceivingTest, AnExpiredLotIsRefusedAndTheLastDayIsNot) {
  DeliveryLine line = lotOf("QUESO", "L1");
  line.expires = Date(kArrival.days() - 1);
  EXPECT_EQ(faultOf(line), "Caduca 2025-03-09 lies before the delivery");
  line.expires = kArrival;
  EXPECT_EQ(receiving_.receive(deliveryOf("A-1", {line})).outcome, Outcome::kReceived);
  Delivery later = deliveryOf("A-2", {lotOf("QUESO", "L1")});
  later.day = Date(kArrival.days() + 1);
  EXPECT_EQ(faultOf(later), "Lote L1 expired on 2025-03-10");
  line.expires = Date(kArrival.days() + 9);
  EXPECT_EQ(faultOf(line), "Caduca is 2025-03-19, and lot L1 expires on 2025-03-10");
}

TEST_F(ReceivingTest, ALotThatHadNoExpiryGetsIt) {
  receiving_.receive(deliveryOf("A-1", {lotOf("QUESO", "L1")}));
  EXPECT_EQ(main("SELECT Caduca FROM Articulos_Lotes"), "Null");
  DeliveryLine line = lotOf("QUESO", "L1");
  line.expires = Date::of(2025, 12, 5);
  receiving_.receive(deliveryOf("A-2", {line}));
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Lotes WHERE Caduca = #12/05/2025#"), "1");
  EXPECT_EQ(main("SELECT Existencia FROM Articulos_Lotes"), "2");
}

TEST_F(ReceivingTest, ALotOfAnotherArticleIsRefusedEvenOneOfTheSameDelivery) {
  addArticle("LECHE", "Lotes = True");
  EXPECT_EQ(faultOf(deliveryOf("A-1", {lotOf("QUESO", "L1"), lotOf("LECHE", "L1")})),
            "Lote L1 is one of article QUESO");
  EXPECT_EQ(traces(), kNothing);
  receiving_.receive(deliveryOf("A-2", {lotOf("QUESO", "L1")}));
  EXPECT_EQ(faultOf(lotOf("LECHE", "L1")), "Lote L1 is one of article QUESO");
}

TEST_F(ReceivingTest, ALotThatBothArticlesHaveAlreadyIsRightForEither) {
  addArticle("LECHE", "Lotes = True");
  ClsArticulosLotes().ActualizarStock_sund("LECHE", "L1", 0.0, 1.0);
  ClsArticulosLotes().ActualizarStock_sund("QUESO", "L1", 0.0, 1.0);
  const Receipt receipt =
      receiving_.receive(deliveryOf("A-1", {lotOf("QUESO", "L1"), lotOf("LECHE", "L1")}));
  EXPECT_EQ(receipt.outcome, Outcome::kReceived);
}

TEST_F(ReceivingTest, EveryFaultOfADeliveryIsToldByItsLineAndNothingIsPosted) {
  std::vector<DeliveryLine> lines = {lineOf("PAN", 1, 1), lineOf("NADA", 1, 1), lineOf("PAN", 0, 1),
                                     lotOf("QUESO", "L1")};
  for (std::size_t i = 0; i < lines.size(); ++i) lines[i].origin = 10 + i;
  const Receipt receipt = receiving_.receive(deliveryOf("A-1", lines));
  ASSERT_EQ(receipt.faults.size(), 2U);
  EXPECT_EQ(receipt.faults[0].origin, 11U);
  EXPECT_EQ(receipt.faults[1].origin, 12U);
  EXPECT_EQ(traces(), kNothing);
}

TEST_F(ReceivingTest, ARehearsalTellsTheSameAndLeavesNothing) {
  const Delivery delivery = deliveryOf("A-1", {lineOf("PAN", 1, 1)});
  EXPECT_EQ(receiving_.rehearse(delivery).outcome, Outcome::kReceived);
  EXPECT_EQ(traces(), kNothing);
  receiving_.receive(delivery);
  EXPECT_EQ(receiving_.rehearse(delivery).outcome, Outcome::kKnown);
}

// A file of a hundred thousand lines takes a hundred times what one of a thousand does.
TEST_F(ReceivingTest, ALineTakesTheSameStatementsHoweverManyThereAre) {
  const auto statementsFor = [&](int note, std::size_t lines) {
    place_.statements();
    receiving_.receive(
        deliveryOf(std::to_string(note), std::vector<DeliveryLine>(lines, lineOf("PAN", 1, 1))));
    return place_.statements().size();
  };
  statementsFor(0, 1);  // makes the rows that later ones find
  const std::size_t one = statementsFor(1, 1);
  const std::size_t aLine = statementsFor(2, 2) - one;
  EXPECT_EQ(statementsFor(3, 200), one + 199 * aLine);
  EXPECT_EQ(statementsFor(4, 1), one);
}

TEST_F(ReceivingTest, TextsWithApostrophesAreStoredAsTheyAre) {
  clsArticulos().Insertar({.vId = "L''OLI", .bLotes = -1, .bStock = -1, .bActivo = true});
  place_.run("INSERT INTO Almacenes (Codigo) VALUES (\"D'aquí\")");
  ConnectionPtr connection = DataSession().OpenConnection(1);
  makeSupplier("O'H", "O'Hara", connection);
  DeliveryLine line = lotOf("L'OLI", "L'1");
  line.warehouse = "D'aquí";
  line.expires = Date::of(2025, 5, 6);
  Delivery delivery = deliveryOf("3 d'abril", {line});
  delivery.supplier = "O'H";
  EXPECT_EQ(receiving_.receive(delivery).outcome, Outcome::kReceived);
  EXPECT_EQ(receiving_.receive(delivery).outcome, Outcome::kKnown);
  EXPECT_EQ(main("SELECT Referencia & Codigo & Lote & Almacen FROM Articulos_Movimientos_Almacen"),
            "3 d'abrilL'OLIL'1D'aquí");
  EXPECT_EQ(main("SELECT Codigo & Concepto FROM Proveedores_Apuntes_Contables"),
            "O'HAlbarán 3 d'abril");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Lotes WHERE Caduca = #05/06/2025# AND Stock <> 0"),
            "1");
}

TEST_F(ReceivingTest, ADatabaseThatFailsInTheMiddleLeavesNothing) {
  // The last statement of a delivery is that of the ledger, whose keys are used up.
  place_.run("INSERT INTO Proveedores_Apuntes_Contables (Id, Codigo) VALUES (2147483647, 'X')");
  EXPECT_NE(test::errorOf([&] { receiving_.receive(deliveryOf("A-1", {lineOf("PAN", 1, 1)})); }),
            0);
  place_.run("DELETE FROM Proveedores_Apuntes_Contables");
  EXPECT_EQ(traces(), kNothing);
  EXPECT_EQ(receiving_.receive(deliveryOf("A-1", {lineOf("PAN", 1, 1)})).outcome,
            Outcome::kReceived);
}

TEST_F(ReceivingTest, ADeliveryWhoseMovementsWerePurgedIsKnownByItsEntry) {
  const Delivery delivery = deliveryOf("A-1", {lineOf("PAN", 2, 1)});
  receiving_.receive(delivery);
  ClsArticulosMovAlmacen().DeleteFecha(kArrival);
  EXPECT_EQ(receiving_.receive(delivery).outcome, Outcome::kKnown);
  Delivery other = delivery;
  other.lines[0].quantity = 3;
  EXPECT_THAT(faultOf(other), ::testing::HasSubstr("with another amount"));
}

TEST_F(ReceivingTest, AKnownEntryWithoutMovementsIsTold) {
  const Delivery delivery = deliveryOf("A-1", {lineOf("PAN", 2, 1)});
  receiving_.receive(delivery);
  EXPECT_THAT(receiving_.receive(delivery).faults, IsEmpty());
  ClsArticulosMovAlmacen().DeleteFecha(kArrival);
  const Receipt receipt = receiving_.receive(delivery);
  ASSERT_EQ(receipt.faults.size(), 1U);
  EXPECT_EQ(receipt.faults[0].reason, "no movements of it are left; day and amount agree");
}

TEST_F(ReceivingTest, AnotherExpiryOfALotMakesAnotherDelivery) {
  Delivery delivery = deliveryOf("A-1", {lotOf("QUESO", "L1")});
  delivery.lines[0].expires = Date::of(2025, 6, 30);
  receiving_.receive(delivery);
  EXPECT_EQ(receiving_.receive(delivery).outcome, Outcome::kKnown);
  delivery.lines[0].expires = Date::of(2025, 7, 1);
  EXPECT_EQ(faultOf(delivery),
            "Albaran A-1 was received on 2025-03-10 with another Caduca of lot L1");
  delivery.lines[0].expires.reset();
  EXPECT_EQ(receiving_.receive(delivery).outcome, Outcome::kKnown) << "the lot is known";
}

TEST_F(ReceivingTest, ASupplierOutOfUseIsRefused) {
  place_.run("UPDATE Proveedores SET Activo = False WHERE Codigo = '400'");
  EXPECT_EQ(faultOf(lineOf("PAN", 1, 1)), "Proveedor is a supplier that is not in use: 400");
  EXPECT_EQ(traces(), kNothing);
}

TEST_F(ReceivingTest, ALineThatComesToNothingIsRefused) {
  EXPECT_EQ(faultOf(lineOf("PAN", 3, 0.0001)), "Cantidad by Precio is 0 to the cent");
  addArticle("GRANO", "Medida_Compra = 1000000");
  EXPECT_EQ(faultOf(lineOf("GRANO", 1, 1)), "Precio by Medida_Compra is 0 to four decimals");
  EXPECT_EQ(traces(), kNothing);
}

TEST_F(ReceivingTest, ANumberWhoseMovementsAreLeftIsNotGivenAgain) {
  const Delivery delivery = deliveryOf("A-1", {lineOf("PAN", 2, 1)});
  const double number = receiving_.receive(delivery).number;
  ClsProveedoresApuntesConta().Eliminar(kDeliveryKind, number);
  EXPECT_EQ(receiving_.receive(delivery).number, number + 1);
}

TEST_F(ReceivingTest, TicketsOfTheSameNumberAreNoneOfADelivery) {
  Shop till;
  till.openTills({"01"});
  till.sell(saleOf("V1"));
  receiving_.receive(deliveryOf("A-1", {lineOf("PAN", 5, 1)}));
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Movimientos_Almacen WHERE Doc_E = 1"), "3");
  EXPECT_FALSE(till.recoverAll().hasMended());
  Reconciliation reconciliation;
  reconciliation.expect(saleOf("V1"));
  till.close("01", kDay);
  reconciliation.compare();
  EXPECT_THAT(reconciliation.differences(), IsEmpty());
}

TEST_F(ReceivingTest, TwentyProgramsThatReceiveTheSameFileReceiveItOnce) {
  constexpr int kPrograms = 20, kDeliveries = 5;
  std::vector<std::future<int>> programs;
  for (int program = 0; program < kPrograms; ++program) {
    programs.push_back(std::async(std::launch::async, [this] {
      Apartment apartment(place_.installationPtr());
      Receiving receiving;
      int received = 0;
      for (int i = 0; i < kDeliveries; ++i) {
        const Delivery delivery = deliveryOf(std::to_string(i), {lineOf("PAN", 1, 1)});
        if (receiving.receive(delivery).outcome == Outcome::kReceived) ++received;
      }
      return received;
    }));
  }
  int received = 0;
  for (std::future<int>& program : programs) received += program.get();
  EXPECT_EQ(received, kDeliveries);
  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "5");
  EXPECT_THAT(checkLedger(LedgerOf::kSuppliers).wrong, IsEmpty());
}

TEST_F(ReceivingTest, ANewSupplierBeginsAsThatOfAForm) {
  ClsProveedores form;
  form.IniciaRs("todos");
  form.AddNew(true);
  const RecordsetPtr row = form.DataMember("Primary");
  row->Field("Código").Value("F1");
  row->Field("Empresa").Value("The same");
  form.Update();
  ConnectionPtr connection = DataSession().OpenConnection(1);
  makeSupplier("F2", "The same", connection);
  RecordsetPtr rows;
  DataSession().OpenRecordset(
      1, Statement("SELECT * FROM Proveedores WHERE Codigo In ('F1', 'F2') ORDER BY Codigo"), rows,
      connection);
  ASSERT_EQ(rows->RecordCount(), 2);
  const auto cells = [&] {
    std::vector<std::string> texts;
    for (int field = 1; field < rows->Fields().Count(); ++field) {
      const Variant value = rows->Field(field).Value();
      texts.push_back(value.isNull() ? "Null" : value.toText(place_.apartment().locale()));
    }
    return texts;
  };
  const std::vector<std::string> ofForm = cells();
  rows->MoveNext();
  EXPECT_EQ(cells(), ofForm);
}

}  // namespace
}  // namespace tavelor::flows
