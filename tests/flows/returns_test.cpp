// SPDX-License-Identifier: MIT
// What comes back of a ticket, and lots that are sold from and come back.
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/flows/receiving.hpp"
#include "tavelor/flows/suppliers.hpp"
#include "tavelor/services/data_session.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::flows {
namespace {

using ::testing::HasSubstr;

constexpr int kMain = 1;
constexpr int kDocuments = 3;

class ReturnsTest : public ::testing::Test {
 protected:
  std::string main(const std::string& statement) { return place_.text(statement, kMain); }
  std::string documents(const std::string& statement) { return place_.text(statement, kDocuments); }
  std::string stock(const std::string& article) {
    return main("SELECT Existencia FROM Articulos WHERE Codigo = '" + article + "'");
  }
  static Return returnOf(double ticket, std::vector<ReturnedLine> lines = {}) {
    Return what;
    what.ticket = ticket;
    what.till = "02";
    what.day = kDay;
    what.lines = std::move(lines);
    return what;
  }
  std::string faultOf(const std::function<void()>& work) {
    try {
      work();
    } catch (const RefusedSale& refused) {
      return refused.faults().front().reason;
    }
    return {};
  }

  test::Shop place_;
  OpenedShop opened_;  // before there is a till to sell at
  Shop shop_;
};

TEST_F(ReturnsTest, AWholeTicketComesBackAtItsPricesOnce) {
  Sale sale = saleOf("V1");
  sale.lines[0].discount = 10;
  sale.lines.pop_back();
  shop_.sell(sale);
  const double back = shop_.takeBack(returnOf(1));
  EXPECT_EQ(back, 2);
  EXPECT_EQ(documents("SELECT Total FROM Tickets WHERE Numero = 2"), "-2,18");
  EXPECT_EQ(documents("SELECT Referencia FROM Tickets WHERE Numero = 2"), "Dev. A/1 (1)");
  EXPECT_EQ(documents("SELECT Caja FROM Tickets WHERE Numero = 2"), "02");
  EXPECT_EQ(documents("SELECT Comentarios FROM Tickets_Comentarios WHERE Codigo = 2"),
            "Devolución");
  EXPECT_EQ(stock("PAN"), "0");
  EXPECT_EQ(faultOf([&] { shop_.takeBack(returnOf(1)); }), "nothing is left of it");
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "2");
}

TEST_F(ReturnsTest, LinesComeBackBitByBitAndNoMoreThanWereSold) {
  Sale sale = saleOf("V1");
  sale.lines.push_back(sale.lines.front());
  sale.lines[0].quantity = 3;
  sale.lines[2].price = 1;
  shop_.sell(sale);
  shop_.close("01", kDay);  // from history too
  shop_.takeBack(returnOf(1, {{1, 2}}));
  EXPECT_EQ(faultOf([&] { shop_.takeBack(returnOf(1, {{1, 2}})); }), "2 come back, and 1 are left");
  EXPECT_EQ(faultOf([&] {
              shop_.takeBack(returnOf(1, {{2, 1}}));
            }),
            "1 come back, and 0 are left")
      << "what had come back itself";
  shop_.takeBack(returnOf(1, {{1, 1}}));
  EXPECT_EQ(documents("SELECT Referencia FROM Tickets WHERE Numero = 3"), "Dev. A/1 (2)");
  shop_.takeBack(returnOf(1));
  EXPECT_EQ(documents("SELECT Sum(Cantidad) FROM Tickets_Lineas WHERE Codigo = 'PAN'"), "-5");
}

TEST_F(ReturnsTest, OfEqualLinesItDoesNotMatterWhichOneComesBack) {
  Sale sale = saleOf("V1");
  sale.lines = {sale.lines.front(), sale.lines.front()};
  shop_.sell(sale);
  shop_.takeBack(returnOf(1, {{2, 2}}));
  shop_.takeBack(returnOf(1, {{2, 1}}));
  EXPECT_EQ(faultOf([&] { shop_.takeBack(returnOf(1, {{1, 2}})); }), "2 come back, and 1 are left");
  shop_.takeBack(returnOf(1));
  EXPECT_EQ(stock("PAN"), "0");
}

TEST_F(ReturnsTest, WhatCannotComeBackIsToldAndLeavesNothing) {
  shop_.sell(saleOf("V1"));
  EXPECT_EQ(faultOf([&] { shop_.takeBack(returnOf(7)); }), "there is no ticket A/7");
  EXPECT_EQ(faultOf([&] { shop_.takeBack(returnOf(1, {{9, 1}})); }), "the ticket has no such line");
  EXPECT_EQ(faultOf([&] {
              shop_.takeBack(returnOf(1, {{1, 0}}));
            }),
            "the quantity that comes back is not above 0");
  Return elsewhere = returnOf(1);
  elsewhere.till = "77";
  EXPECT_THAT(faultOf([&] { shop_.takeBack(elsewhere); }), HasSubstr("no till 77"));
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "1");
  EXPECT_EQ(shop_.sell(saleOf("V2")), 2) << "and the shop goes on";
}

TEST_F(ReturnsTest, ATicketOnCreditComesBackToTheAccount) {
  Sale sale = saleOf("V1");
  sale.customer = "C1";
  sale.payment = "4";
  sale.lines.resize(1);
  shop_.sell(sale);
  shop_.takeBack(returnOf(1));
  EXPECT_EQ(main("SELECT Sum(Debe) - Sum(Haber) FROM Clientes_Apuntes_Contables"), "0");
}

// ---------------------------------------------------------------------------------------------
// Lots

class LotsTest : public ReturnsTest {
 protected:
  LotsTest() {
    clsArticulos().Insertar({.vId = "QUESO", .bStock = -1, .bActivo = true});
    place_.run("UPDATE Articulos SET Lotes = True, Restar_Stock = True WHERE Codigo = 'QUESO'");
    ConnectionPtr connection = DataSession().OpenConnection(kMain);
    makeSupplier("400", "Quesos", connection);
  }
  void receive(const std::string& note, const std::string& lot, double quantity) {
    Delivery delivery{.supplier = "400", .note = note, .day = kDay, .lines = {}};
    delivery.lines.push_back({.code = "QUESO", .quantity = quantity, .price = 5, .lot = lot});
    EXPECT_EQ(Receiving().receive(delivery).outcome, Receipt::Outcome::kReceived);
  }
  static Sale cheese(std::string reference, double quantity, std::string lot = {}) {
    Sale sale = saleOf(std::move(reference));
    sale.lines = {{.code = "QUESO",
                   .description = "Queso",
                   .quantity = quantity,
                   .price = 9,
                   .lot = std::move(lot)}};
    return sale;
  }
  std::string inLot(const std::string& lot) {
    return main("SELECT Existencia FROM Articulos_Lotes WHERE Lote = '" + lot + "'");
  }
  /// Article, warehouses, lots and movements: all of them say the same.
  void expectStock(const std::string& units) {
    EXPECT_EQ(stock("QUESO"), units);
    EXPECT_EQ(main("SELECT Sum(Cantidad) FROM Articulos_Almacenes WHERE Codigo = 'QUESO'"), units);
    EXPECT_EQ(main("SELECT Sum(Existencia) FROM Articulos_Lotes WHERE Codigo = 'QUESO'"), units);
    EXPECT_EQ(main("SELECT Sum(IIf(Movimiento = 0, Cantidad, 0 - Cantidad)) FROM "
                   "Articulos_Movimientos_Almacen WHERE Codigo = 'QUESO'"),
              units);
  }
};

TEST_F(LotsTest, AnArticleByLotsIsSoldFromItsActiveLot) {
  receive("1", "L1", 10);
  receive("2", "L2", 5);
  shop_.sell(cheese("V1", 2));
  EXPECT_EQ(inLot("L1"), "10");
  EXPECT_EQ(inLot("L2"), "3");
  EXPECT_EQ(documents("SELECT Lote FROM Tickets_Lineas"), "L2");
  EXPECT_EQ(main("SELECT Lote FROM Articulos_Movimientos_Almacen WHERE Doc_E = 1 AND Estado = 1"),
            "L2");
  expectStock("13");
}

TEST_F(LotsTest, ALineMaySayItsLotAndOnlyOneThatIsThere) {
  receive("1", "L1", 10);
  receive("2", "L2", 5);
  shop_.sell(cheese("V1", 2, "L1"));
  EXPECT_EQ(inLot("L1"), "8");
  EXPECT_EQ(faultOf([&] { shop_.sell(cheese("V2", 1, "L9")); }), "there is no lot L9");
  Sale bread = saleOf("V3");
  bread.lines[0].lot = "L1";
  EXPECT_EQ(faultOf([&] { shop_.sell(bread); }), "it names lot L1, and is not kept by lots");
  expectStock("13");
}

TEST_F(LotsTest, AReturnGoesBackIntoTheLotItWasSoldFrom) {
  TAVELOR_ONLY_IN_FILES("a server always works with lots of use");
  receive("1", "L1", 10);
  shop_.sell(cheese("V1", 2));
  receive("2", "L2", 5);
  shop_.close("01", kDay);
  shop_.takeBack(returnOf(1));
  EXPECT_EQ(inLot("L1"), "10");
  expectStock("15");
  shop_.sell(cheese("V2", -1));
  EXPECT_EQ(inLot("L2"), "6") << "without a ticket, into the active one";
  expectStock("16");
}

TEST_F(LotsTest, WithoutAnActiveLotTheLatestOneIsSoldFrom) {
  receive("1", "L1", 10);
  receive("2", "L2", 5);
  place_.run("UPDATE Articulos_Lotes SET Activo = 0");
  shop_.sell(cheese("V1", 2));
  EXPECT_EQ(inLot("L2"), "3");
  expectStock("13");
}

TEST_F(LotsTest, ALotThatWasDeletedIsMadeAgainByItsReturn) {
  receive("1", "L1", 10);
  shop_.sell(cheese("V1", 10));
  place_.run("DELETE FROM Articulos_Lotes");
  shop_.takeBack(returnOf(1));
  expectStock("10");
  shop_.sell(cheese("V2", 1));
  expectStock("9");
}

TEST_F(LotsTest, AnArticlePutUnderLotsIsKnownAfterTheNextClosing) {
  shop_.sell(saleOf("V1"));
  place_.run("UPDATE Articulos SET Lotes = True WHERE Codigo = 'PAN'");
  place_.run(
      "INSERT INTO Articulos_Lotes (Id, Codigo, Lote, Existencia, Activo, Stock) VALUES (7, "
      "'PAN', 'P1', 4, -1, True)");
  shop_.close("01", kDay);
  shop_.sell(saleOf("V2"));
  EXPECT_EQ(inLot("P1"), "2");
}

}  // namespace
}  // namespace tavelor::flows
