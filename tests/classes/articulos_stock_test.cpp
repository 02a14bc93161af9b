// SPDX-License-Identifier: MIT
// The totals of stock in the article's row.
#include "tavelor/articles/articulos_almacenes.hpp"
#include "tests/classes/stock.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::StockShop;
using testing::ElementsAre;
using testing::IsEmpty;

constexpr const char* kEsdeAlmacen =
    "SELECT Codigo, Actualizar_Stock FROM Articulos where codigo ='A100'";
constexpr const char* kRestaStock =
    "SELECT Codigo, Restar_Stock FROM Articulos where codigo ='A100'";
constexpr const char* kMedida =
    "SELECT Medida_compra as Medida FROM Articulos WHERE Codigo = 'A100'";

class ArticleStockTest : public testing::Test, protected StockShop {
 protected:
  ArticleStockTest() { article("A100", {.existencia = 50, .pendiente = 5, .medida = 12}); }
  clsArticulos articles;
};

// ---- Absolute forms

TEST_F(ArticleStockTest, ActualizarStockSetsTheStock) {
  articles.ActualizarStock("A100", 12.5);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kEsdeAlmacen, "UPDATE  Articulos SET Existencia = 12.5 WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Existencia"), "12,5");
}

TEST_F(ArticleStockTest, ActualizarStockReadsATextByTheLocale) {
  articles.ActualizarStock("A100", "1.234,5");
  EXPECT_EQ(last(), "UPDATE  Articulos SET Existencia = 1234.5 WHERE(Codigo ='A100')");
}

TEST_F(ArticleStockTest, ActualizarStockIsNotRoundedByTheMask) {
  articles.ActualizarStock("A100", 0.1234567);
  EXPECT_EQ(last(), "UPDATE  Articulos SET Existencia = 0.123457 WHERE(Codigo ='A100')");
}

TEST_F(ArticleStockTest, ActualizarStockPendienteSetsWhatIsOnOrder) {
  articles.ActualizarStockPendiente("A100", 120);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kEsdeAlmacen, "UPDATE  Articulos SET Pendiente = 120 WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Pendiente"), "120");
  EXPECT_EQ(of("A100", "Existencia"), "50");
}

TEST_F(ArticleStockTest, ActualizarStockPendienteEntregaSetsWhatIsPendingDelivery) {
  articles.ActualizarStockPendiente_Entrega("A100", 6);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kEsdeAlmacen, "UPDATE  Articulos SET Pendiente_s = 6 WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Pendiente_s"), "6");
  EXPECT_EQ(of("A100", "Pendiente"), "5");
}

TEST_F(ArticleStockTest, DescargarStockSetsTheStockToZero) {
  articles.DescargarStock("A100");
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(kEsdeAlmacen, "UPDATE  Articulos SET Existencia = 0 WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Existencia"), "0");
}

// ---- The guard

TEST_F(ArticleStockTest, TheFreeTextAndArticlesWithoutStockAreLeftAloneSilently) {
  article("$$$", {.existencia = 1, .pendiente = 1});
  article("S1", {.existencia = 1, .pendiente = 1, .actualizar = false});
  for (const char* code : {"$$$", "S1", "not there"}) {
    articles.ActualizarStock(code, 9);
    articles.ActualizarStockPendiente(code, 9);
    articles.ActualizarStockPendiente_Entrega(code, 9);
    articles.DescargarStock(code);
    articles.ActualizarStock_Pedido(code, 9, 9);
    articles.ActualizarStock_C(code, 9, 9);
    articles.ActualizarStock_Recep_pedido(code, 9);
    articles.ActualizarStock_Recep_Entrega(code, 9);
    articles.ActualizarStock_Movimientos(code, 9, 9);
    articles.DescargarStock_V(code, 9, 9);
  }
  for (const std::string& statement : shop.statements()) {
    EXPECT_TRUE(statement.starts_with("SELECT")) << statement;
  }
  EXPECT_EQ(of("$$$", "Existencia"), "1");
  EXPECT_EQ(of("S1", "Existencia"), "1");
  EXPECT_EQ(of("S1", "Pendiente"), "1");
}

TEST_F(ArticleStockTest, AFailedGuardComesBeforeTheReadingOfTheQuantity) {
  article("S1", {.actualizar = false});
  articles.ActualizarStock("S1", "muchos");
  articles.ActualizarStock_Pedido("S1", "muchos", Null{});
  EXPECT_EQ(of("S1", "Existencia"), "0");
}

TEST_F(ArticleStockTest, AnEmptyConnectionIsFilledAlsoWhereTheGuardFails) {
  ConnectionPtr connection;
  articles.ActualizarStock("$$$", 1, connection);
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(connection->selector(), 1);
}

TEST_F(ArticleStockTest, AllRunsOnTheCallersConnectionAndInsideItsTransaction) {
  ConnectionPtr connection;
  articles.ActualizarStock("A100", 1, connection);
  connection->BeginTrans();
  articles.ActualizarStock("A100", 70, connection);
  articles.DescargarStock_V("A100", 0, 3, false, false, connection);
  EXPECT_EQ(articles.EsdeAlmacen("A100", connection), true);
  connection->RollbackTrans();
  EXPECT_EQ(of("A100", "Existencia"), "1");
}

TEST_F(ArticleStockTest, TheFlagsAreReadAnewInTheCallersTransaction) {
  ConnectionPtr connection;
  articles.ActualizarStock("A100", 1, connection);
  connection->BeginTrans();
  connection->Execute(Statement("UPDATE Articulos SET Actualizar_Stock = False"));
  articles.ActualizarStock("A100", 70, connection);
  connection->CommitTrans();
  EXPECT_EQ(of("A100", "Existencia"), "1");
}

// ---- Ordering and reception

TEST_F(ArticleStockTest, AnOrderOfTenDozensPutsAHundredAndTwentyOnOrder) {
  articles.ActualizarStock_Pedido("A100", 10, 0);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kEsdeAlmacen, kMedida,
                          "UPDATE  Articulos SET Existencia = Existencia + 0, Pendiente = "
                          "Pendiente + '120' WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Pendiente"), "125");
  EXPECT_EQ(of("A100", "Existencia"), "50");
}

TEST_F(ArticleStockTest, AnOrderIsUndoneWithTheOtherSign) {
  articles.ActualizarStock_Pedido("A100", 10, 2, false);
  EXPECT_EQ(last(),
            "UPDATE  Articulos SET Existencia = Existencia + -24, Pendiente = Pendiente + '-120' "
            "WHERE(Codigo ='A100')");
  EXPECT_EQ(of("A100", "Pendiente"), "-115");
  EXPECT_EQ(of("A100", "Existencia"), "26");
}

TEST_F(ArticleStockTest, ADeliveryAgainstAnOrderIsANegativeOrderWithAPositiveReception) {
  articles.ActualizarStock_Pedido("A100", -2, 2);
  EXPECT_EQ(of("A100", "Existencia"), "74");
  EXPECT_EQ(of("A100", "Pendiente"), "-19");
}

TEST_F(ArticleStockTest, OnlyTheReceivedQuantityIsRoundedInAnOrder) {
  articles.ActualizarStock_Pedido("A100", 0.0011, 0.0011);
  EXPECT_EQ(last(),
            "UPDATE  Articulos SET Existencia = Existencia + 0.01, Pendiente = Pendiente + "
            "'0,0132' WHERE(Codigo ='A100')");
}

TEST_F(ArticleStockTest, TheRoundingIsThatOfTheShopsQuantityFormat) {
  Settings settings = test::fastSettings();
  settings.quantityFormat = "#,##0";
  StockShop whole(settings);
  whole.article("A100", {.medida = 1});
  clsArticulos().ActualizarStock_Pedido("A100", 1234.5, 1234.5);
  EXPECT_EQ(whole.last(),
            "UPDATE  Articulos SET Existencia = Existencia + 1235, Pendiente = Pendiente + "
            "'1234,5' WHERE(Codigo ='A100')");
}

TEST_F(ArticleStockTest, ActualizarStockCIsActualizarStockPedido) {
  for (const bool add : {true, false}) {
    articles.ActualizarStock_Pedido("A100", 1.5, 0.25, add);
    const auto ordered = shop.statements();
    articles.ActualizarStock_C("A100", 1.5, 0.25, add);
    EXPECT_EQ(shop.statements(), ordered);
  }
}

TEST_F(ArticleStockTest, BExistenciaIsNotLookedAt) {
  articles.ActualizarStock_Pedido("A100", 1, 1, true, false);
  const auto without = shop.statements();
  articles.ActualizarStock_Pedido("A100", 1, 1, true, true);
  EXPECT_EQ(shop.statements(), without);
}

TEST_F(ArticleStockTest, AReceptionRaisesTheStockAndLowersWhatIsOnOrderByTheSame) {
  articles.ActualizarStock_Recep_pedido("A100", 2);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kEsdeAlmacen, kMedida,
                          "UPDATE  Articulos SET Existencia = Existencia + 24, Pendiente = "
                          "Pendiente + '-24' WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Existencia"), "74");
  EXPECT_EQ(of("A100", "Pendiente"), "-19");
}

// The other way round than in an order.
TEST_F(ArticleStockTest, OnlyWhatIsOnOrderIsRoundedInAReception) {
  articles.ActualizarStock_Recep_pedido("A100", 0.0011);
  EXPECT_EQ(last(),
            "UPDATE  Articulos SET Existencia = Existencia + 0.0132, Pendiente = Pendiente + "
            "'-0,01' WHERE(Codigo ='A100')");
}

TEST_F(ArticleStockTest, ADeliveryTakesOffInStockUnits) {
  articles.ActualizarStock_Recep_Entrega("A100", 3);
  EXPECT_THAT(shop.statements(), ElementsAre(kEsdeAlmacen,
                                             "UPDATE  Articulos SET Existencia = Existencia - 3 "
                                             "WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Existencia"), "47");
  articles.ActualizarStock_Recep_Entrega("A100", -3);
  EXPECT_EQ(last(), "UPDATE  Articulos SET Existencia = Existencia - -3 WHERE(Codigo ='A100')");
  EXPECT_EQ(of("A100", "Existencia"), "50");
}

TEST_F(ArticleStockTest, AMovementIsInStockUnitsThoughTheMeasureIsRead) {
  articles.ActualizarStock_Movimientos("A100", 2, 1.5);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kEsdeAlmacen, kMedida,
                          "UPDATE  Articulos SET Existencia = Existencia + 1.5, Pendiente = "
                          "Pendiente + '2' WHERE(Codigo ='A100')"));
  articles.ActualizarStock_Movimientos("A100", 2, 1.5, false);
  EXPECT_EQ(of("A100", "Existencia"), "50");
  EXPECT_EQ(of("A100", "Pendiente"), "5");
}

TEST_F(ArticleStockTest, ANullMeasureStopsAnOrderAndNotAMovement) {
  shop.run("UPDATE Articulos SET Medida_Compra = Null");
  EXPECT_EQ(errorOf([&] { articles.ActualizarStock_Pedido("A100", 1, 1); }),
            errors::kInvalidUseOfNull);
  articles.ActualizarStock_Movimientos("A100", 1, 1);
  EXPECT_EQ(of("A100", "Existencia"), "51");
}

// ---- The two printings

TEST_F(ArticleStockTest, ASpanishShopQuotesADecimalCommaBesideABareDecimalPoint) {
  articles.ActualizarStock_Movimientos("A100", 1.5, 1.5);
  EXPECT_EQ(last(),
            "UPDATE  Articulos SET Existencia = Existencia + 1.5, Pendiente = Pendiente + '1,5' "
            "WHERE(Codigo ='A100')");
  EXPECT_EQ(of("A100", "Existencia"), "51,5");
  EXPECT_EQ(of("A100", "Pendiente"), "6,5");
}

TEST_F(ArticleStockTest, ANeutralShopQuotesADecimalPoint) {
  StockShop neutral(test::localeSettings("neutral"));
  neutral.article("A100");
  clsArticulos().ActualizarStock_Movimientos("A100", 1.5, 1234.5);
  EXPECT_EQ(neutral.last(),
            "UPDATE  Articulos SET Existencia = Existencia + 1234.5, Pendiente = Pendiente + "
            "'1.5' WHERE(Codigo ='A100')");
  EXPECT_EQ(neutral.of("A100", "Existencia"), "1234.5");
  EXPECT_EQ(neutral.of("A100", "Pendiente"), "1.5");
  clsArticulos().ActualizarPrecioMedio("A100", 12.5);
  EXPECT_EQ(neutral.last(), "UPDATE  Articulos SET Precio_Medio = '12.5' WHERE(Codigo ='A100')");
  EXPECT_EQ(neutral.of("A100", "Precio_Medio"), "12.5");
}

// Without quotes six decimals are kept, between them all that a double prints.
TEST_F(ArticleStockTest, WhatIsOnOrderKeepsMoreDecimalsThanStock) {
  articles.ActualizarStock_Movimientos("A100", 0.123456789, 0.123456789);
  EXPECT_EQ(last(),
            "UPDATE  Articulos SET Existencia = Existencia + 0.12, Pendiente = Pendiente + "
            "'0,123456789' WHERE(Codigo ='A100')");
}

// ---- Sales

TEST_F(ArticleStockTest, ASaleTakesOffTheDeliveredQuantityAlone) {
  articles.DescargarStock_V("A100", 5, 3, false);
  EXPECT_THAT(shop.statements(),
              ElementsAre(kEsdeAlmacen, kRestaStock,
                          "UPDATE  Articulos SET Existencia = Existencia + -3 WHERE(Codigo "
                          "='A100' and Actualizar_Stock <> 0)"));
  EXPECT_EQ(of("A100", "Existencia"), "47");
  EXPECT_EQ(of("A100", "Pendiente"), "5");
}

TEST_F(ArticleStockTest, AReturnedSaleAddsAndSoDoesTheDefaultSign) {
  articles.DescargarStock_V("A100", 5, 3);
  EXPECT_EQ(last(),
            "UPDATE  Articulos SET Existencia = Existencia + 3 WHERE(Codigo ='A100' and "
            "Actualizar_Stock <> 0)");
  EXPECT_EQ(of("A100", "Existencia"), "53");
}

TEST_F(ArticleStockTest, ASaleIsRounded) {
  articles.DescargarStock_V("A100", 0, 1.005, false);
  EXPECT_EQ(last(),
            "UPDATE  Articulos SET Existencia = Existencia + -1.01 WHERE(Codigo ='A100' and "
            "Actualizar_Stock <> 0)");
}

TEST_F(ArticleStockTest, ASaleOfAnArticleThatSalesDoNotTakeOffDoesNothingButPurchasesCount) {
  article("B200", {.existencia = 10, .restar = false});
  articles.DescargarStock_V("B200", 5, 3, false);
  EXPECT_EQ(of("B200", "Existencia"), "10");
  articles.ActualizarStock_Pedido("B200", 0, 1);
  EXPECT_EQ(of("B200", "Existencia"), "11");
}

// ---- Packages: the second sign of equality compares. It must not be mended.

TEST_F(ArticleStockTest, APackageIsEmptiedByAnyQuantity) {
  articles.DescargarStockPaquete("A100", 0, 3, false);
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE  Articulos SET Existencia = Existencia = Existencia + -3 "
                          "WHERE(Codigo ='A100' and Actualizar_Stock <> 0)"));
  EXPECT_EQ(of("A100", "Existencia"), "0");
  for (const char* before : {"7", "-4", "0"}) {
    shop.run(std::string("UPDATE Articulos SET Existencia = ") + before);
    articles.DescargarStockPaquete("A100", 0, 3);
    EXPECT_EQ(of("A100", "Existencia"), "0") << before;
  }
}

TEST_F(ArticleStockTest, APackageBecomesMinusOneByAQuantityOfZero) {
  for (const char* before : {"7", "0"}) {
    shop.run(std::string("UPDATE Articulos SET Existencia = ") + before);
    articles.DescargarStockPaquete("A100", 9, 0);
    EXPECT_EQ(of("A100", "Existencia"), "-1") << before;
  }
}

TEST_F(ArticleStockTest, APackageAsksNoFlagButThatOfItsStatement) {
  article("P1", {.existencia = 9, .actualizar = false});
  article("P2", {.existencia = 9, .restar = false});
  articles.DescargarStockPaquete("P1", 0, 3);
  articles.DescargarStockPaquete("P2", 0, 3);
  EXPECT_EQ(of("P1", "Existencia"), "9");
  EXPECT_EQ(of("P2", "Existencia"), "0");
}

TEST_F(ArticleStockTest, TheFreeTextIsNoPackage) {
  articles.DescargarStockPaquete("$$$", 0, 3);
  EXPECT_THAT(shop.statements(), IsEmpty());
}

// ---- Regularising

TEST_F(ArticleStockTest, RegularizarStockTakesTheSumOfTheWarehouses) {
  shop.run(
      "INSERT INTO Articulos_Almacenes (Id, Codigo, Almacen, Cantidad) VALUES (1, 'A100', "
      "'01', 4.5)");
  shop.run(
      "INSERT INTO Articulos_Almacenes (Id, Codigo, Almacen, Cantidad) VALUES (2, 'A100', "
      "'02', 2.5)");
  articles.RegularizarStock("A100");
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT sum(Cantidad) AS Stock FROM Articulos_Almacenes WHERE Codigo =  'A100'",
                  "UPDATE  Articulos SET Existencia = 7 WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Existencia"), "7");
}

TEST_F(ArticleStockTest, RegularizarStockWithoutWarehouseRowsIsZero) {
  articles.RegularizarStock("A100");
  EXPECT_EQ(of("A100", "Existencia"), "0");
}

TEST_F(ArticleStockTest, RegularizarStockAsksNoFlagAndRunsForTheFreeTextOnNoRow) {
  article("S1", {.existencia = 3, .actualizar = false});
  articles.RegularizarStock("S1");
  EXPECT_EQ(of("S1", "Existencia"), "0");
  articles.RegularizarStock("$$$");
  EXPECT_EQ(last(), "UPDATE  Articulos SET Existencia = 0 WHERE(Codigo ='$$$')");
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos"), "2");
}

// ---- Average cost

TEST_F(ArticleStockTest, ActualizarPrecioMedioStoresAPriceAsItIsGiven) {
  articles.ActualizarPrecioMedio("A100", 12.5);
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE  Articulos SET Precio_Medio = '12,5' WHERE(Codigo ='A100')"));
  EXPECT_EQ(of("A100", "Precio_Medio"), "12,5");
}

TEST_F(ArticleStockTest, ActualizarPrecioMedioStoresTheQuotientOfATotalAndAQuantity) {
  articles.ActualizarPrecioMedio("A100", 10, {}, 3);
  EXPECT_EQ(last(),
            "UPDATE  Articulos SET Precio_Medio = '3,33333333333333' WHERE(Codigo ='A100')");
  EXPECT_EQ(of("A100", "Precio_Medio"), "3,3333");
}

TEST_F(ArticleStockTest, ActualizarPrecioMedioOverAQuantityOfZeroRaisesDivisionByZero) {
  shop.run("UPDATE Articulos SET Precio_Medio = 5");
  EXPECT_EQ(errorOf([&] { articles.ActualizarPrecioMedio("A100", 10, {}, 0); }),
            errors::kDivisionByZero);
  EXPECT_EQ(of("A100", "Precio_Medio"), "5");
}

TEST_F(ArticleStockTest, AnAverageThatNoDoubleHoldsOverflows) {
  shop.run("UPDATE Articulos SET Precio_Medio = 5");
  EXPECT_EQ(errorOf([&] { articles.ActualizarPrecioMedio("A100", 1e308, {}, 1e-10); }),
            errors::kOverflow);
  EXPECT_EQ(of("A100", "Precio_Medio"), "5");
}

TEST_F(ArticleStockTest, ActualizarPrecioMedioAsksNoFlagAndPassesOverTheFreeText) {
  article("S1", {.actualizar = false});
  articles.ActualizarPrecioMedio("S1", 3);
  EXPECT_EQ(of("S1", "Precio_Medio"), "3");
  shop.statements();
  articles.ActualizarPrecioMedio("$$$", 3, {}, 0);
  EXPECT_THAT(shop.statements(), IsEmpty());
}

// ---- Bad input

TEST_F(ArticleStockTest, AQuantityThatIsNoNumberRaisesATypeMismatchAndWritesNothing) {
  for (const Variant& bad : {Variant("muchos"), Variant(""), Variant("1,5x")}) {
    EXPECT_EQ(errorOf([&] { articles.ActualizarStock("A100", bad); }), errors::kTypeMismatch);
    EXPECT_EQ(errorOf([&] { articles.ActualizarStock_Pedido("A100", bad, 1); }),
              errors::kTypeMismatch);
    EXPECT_EQ(errorOf([&] { articles.ActualizarStock_Pedido("A100", 1, bad); }),
              errors::kTypeMismatch);
    EXPECT_EQ(errorOf([&] { articles.ActualizarStock_Recep_pedido("A100", bad); }),
              errors::kTypeMismatch);
    EXPECT_EQ(errorOf([&] { articles.DescargarStock_V("A100", 1, bad); }), errors::kTypeMismatch);
    EXPECT_EQ(errorOf([&] { articles.DescargarStock_V("A100", bad, 1); }), errors::kTypeMismatch)
        << "converted though it is dropped";
    EXPECT_EQ(errorOf([&] { articles.DescargarStockPaquete("A100", bad, 1); }),
              errors::kTypeMismatch);
  }
  EXPECT_EQ(errorOf([&] { articles.ActualizarStock("A100", Null{}); }), errors::kInvalidUseOfNull);
  EXPECT_EQ(of("A100", "Existencia"), "50");
  EXPECT_EQ(of("A100", "Pendiente"), "5");
}

TEST_F(ArticleStockTest, AnEmptyQuantityIsZero) {
  articles.ActualizarStock("A100", Variant());
  EXPECT_EQ(of("A100", "Existencia"), "0");
}

TEST_F(ArticleStockTest, AProductThatNoDoubleHoldsOverflowsAndWritesNothing) {
  EXPECT_EQ(errorOf([&] { articles.ActualizarStock_Recep_pedido("A100", 1e308); }),
            errors::kOverflow);
  EXPECT_EQ(of("A100", "Existencia"), "50");
}

TEST_F(ArticleStockTest, AHostileCodeChangesNothing) {
  article("B", {.existencia = 1});
  for (const char* code : {"'", "' or '1'='1", "A100') --", "x'; DELETE FROM Articulos"}) {
    EXPECT_NE(errorOf([&] { articles.ActualizarStock(code, 9); }), 0) << code;
    EXPECT_NE(errorOf([&] { articles.ActualizarStock_Pedido(code, 9, 9); }), 0) << code;
    EXPECT_NE(errorOf([&] { articles.DescargarStock_V(code, 9, 9); }), 0) << code;
    EXPECT_NE(errorOf([&] { articles.DescargarStockPaquete(code, 9, 9); }), 0) << code;
    EXPECT_NE(errorOf([&] { articles.RegularizarStock(code); }), 0) << code;
    EXPECT_NE(errorOf([&] { articles.ActualizarPrecioMedio(code, 9); }), 0) << code;
  }
  EXPECT_EQ(shop.text("SELECT Sum(Existencia) FROM Articulos"), "51");
}

}  // namespace
}  // namespace tavelor
