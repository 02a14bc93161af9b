// SPDX-License-Identifier: MIT
// Sales, closings, and what is left of them when a program dies.
#include "tavelor/flows/shop.hpp"

#include <filesystem>
#include <fstream>
#include <future>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/flows/papers.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/seed.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/reference/cajas.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::flows {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

constexpr int kMain = 1;
constexpr int kDocuments = 3;

Sale saleOf(std::string reference, std::vector<SaleLine> lines, std::string till = "01") {
  Sale sale;
  sale.reference = std::move(reference);
  sale.till = std::move(till);
  sale.day = Date::of(2026, 11, 20);
  sale.time = "10:32";
  sale.payment = "1";
  sale.lines = std::move(lines);
  return sale;
}

SaleLine bread(double quantity = 2) {
  return {.code = "PAN",
          .description = "Barra d'avui",
          .family = "PAN",
          .quantity = quantity,
          .price = 1.21,
          .tax = 21};
}
SaleLine milk() {
  return {.code = "LECHE",
          .description = "Leche",
          .family = "LAC",
          .quantity = 3,
          .price = 1.04,
          .tax = 4};
}

class ShopTest : public ::testing::Test {
 protected:
  ShopTest() {
    // A closing's balance begins with the last one until today.
    place_.apartment().clock().fix(Date::of(2026, 11, 21));
    seedCatalogues();
    Shop().openTills({"01", "02"});
  }

  std::string main(const std::string& statement) { return place_.text(statement, kMain); }
  std::string documents(const std::string& statement) { return place_.text(statement, kDocuments); }

  test::Shop place_;
};

TEST_F(ShopTest, ASaleIsATicketWithItsLinesStockAndMovements) {
  Shop shop;
  Sale sale = saleOf("V1", {bread(), milk()});
  sale.delivered = 10;
  sale.customer = "17850";
  sale.name = "Núria d'Or";

  EXPECT_EQ(shop.sell(sale), 1);

  EXPECT_EQ(documents("SELECT Referencia FROM Tickets WHERE Numero = 1"), "V1");
  EXPECT_EQ(documents("SELECT Total FROM Tickets"), "5,54");
  EXPECT_EQ(documents("SELECT Base FROM Tickets"), "5");
  EXPECT_EQ(documents("SELECT Importe_Impuestos FROM Tickets"), "0,54");
  EXPECT_EQ(documents("SELECT Entrega FROM Tickets"), "10");
  EXPECT_EQ(documents("SELECT Cambio FROM Tickets"), "4,46");
  EXPECT_EQ(documents("SELECT Estado FROM Tickets"), "2");
  EXPECT_EQ(documents("SELECT Impuesto_Incluido FROM Tickets"), "Verdadero");
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets_Lineas WHERE Numero = 1 AND ID In (1, 2)"),
            "2");
  EXPECT_EQ(documents("SELECT Nombre FROM Tickets_Cabecera WHERE Codigo = 1"), "Núria d'Or");
  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "-2");
  EXPECT_EQ(main("SELECT Descripcion FROM Articulos WHERE Codigo = 'PAN'"), "Barra d'avui");
  EXPECT_EQ(main("SELECT Impuesto FROM Articulos WHERE Codigo = 'LECHE'"), "3");
  EXPECT_EQ(main("SELECT Cantidad FROM Articulos_Almacenes WHERE Codigo = 'LECHE'"), "-3");
  EXPECT_EQ(main("SELECT Sum(Cantidad) FROM Articulos_Movimientos_Almacen WHERE Doc_E = 1 AND "
                 "Estado = 1 AND Movimiento = 1"),
            "5");
  EXPECT_EQ(main("SELECT Ticket_a FROM Numeradores"), "1");
}

TEST_F(ShopTest, NumbersFollowEachOtherWhateverTheTill) {
  Shop shop;
  EXPECT_EQ(shop.sell(saleOf("V1", {bread()}, "01")), 1);
  EXPECT_EQ(shop.sell(saleOf("V2", {bread()}, "02")), 2);
  EXPECT_EQ(shop.sell(saleOf("V3", {bread()}, "01")), 3);
  EXPECT_EQ(main("SELECT Ticket_a FROM Numeradores"), "3");
}

TEST_F(ShopTest, ANumberThatAnotherSeriesHasIsPassedOver) {
  place_.run("INSERT INTO Tickets (Numero, Serie) VALUES (1, 'B')", kDocuments);
  Shop shop;
  EXPECT_EQ(shop.sell(saleOf("V1", {bread()})), 2);
  EXPECT_EQ(shop.sell(saleOf("V2", {bread()})), 3);
}

TEST_F(ShopTest, ACounterThatWasSetAheadIsGoneOnFrom) {
  place_.run("UPDATE Numeradores SET Ticket_a = 4999, Ticket_b = 10000, Ticket_c = 25000");
  Shop shop;
  EXPECT_EQ(shop.sell(saleOf("V1", {bread()})), 5000);
  EXPECT_EQ(shop.sell(saleOf("V2", {bread()})), 5001);
}

TEST_F(ShopTest, ASaleThatIsThereIsNotSoldTwice) {
  Shop shop;
  shop.sell(saleOf("V'1", {bread()}));
  EXPECT_EQ(shop.sell(saleOf("V'1", {bread()})), std::nullopt);
  shop.close("01", Date::of(2026, 11, 20));
  EXPECT_EQ(shop.sell(saleOf("V'1", {bread()})), std::nullopt) << "in history";
  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "-2");
}

TEST_F(ShopTest, AReturnPutsStockBackAndTakesMoneyOut) {
  Shop shop;
  shop.sell(saleOf("V1", {bread(3)}));
  Sale back = saleOf("CV1", {bread(-1)});
  back.comment = "Devolución";
  shop.sell(back);

  EXPECT_EQ(documents("SELECT Total FROM Tickets WHERE Numero = 2"), "-1,21");
  EXPECT_EQ(documents("SELECT Cambio FROM Tickets WHERE Numero = 2"), "0");
  EXPECT_EQ(documents("SELECT Estado FROM Tickets WHERE Numero = 2"), "2");
  EXPECT_EQ(documents("SELECT Comentarios FROM Tickets_Comentarios WHERE Codigo = 2"),
            "Devolución");
  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "-2");
  EXPECT_EQ(main("SELECT Cantidad FROM Articulos_Movimientos_Almacen WHERE Doc_E = 2 AND "
                 "Movimiento = 0"),
            "1");
}

TEST_F(ShopTest, ASaleThatFailsLeavesNothing) {
  Shop shop;
  Sale sale = saleOf("V1", {bread(), bread()});
  sale.lines.back().code = std::string(60, 'X');  // the line has room for 50
  EXPECT_NE(test::errorOf([&] { shop.sell(sale); }), 0);

  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "0");
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets_Lineas"), "0");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos"), "0");
  EXPECT_EQ(shop.sell(saleOf("V2", {bread()})), 1) << "and the shop goes on";
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos"), "1");
}

TEST_F(ShopTest, ASaleWithoutLinesIsRefused) {
  EXPECT_EQ(test::errorOf([] { Shop().sell(saleOf("V1", {})); }), errors::kInvalidCall);
}

TEST_F(ShopTest, ASaleWithoutAReferenceIsRefused) {
  EXPECT_EQ(test::errorOf([] { Shop().sell(saleOf("", {bread()})); }), errors::kInvalidCall)
      << "the second of them would count as sold";
}

TEST_F(ShopTest, ASaleOfWhatIsNoNumberFailsAndLeavesNothing) {
  Shop shop;
  for (const double quantity :
       {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), 1e300}) {
    EXPECT_NE(test::errorOf([&] { shop.sell(saleOf("V1", {bread(quantity)})); }), 0) << quantity;
  }
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "0");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Movimientos_Almacen"), "0");
}

TEST_F(ShopTest, AClosingTakesATillsDayToHistory) {
  Shop shop;
  shop.sell(saleOf("V1", {bread(), milk()}));
  Sale card = saleOf("V2", {bread()});
  card.payment = "2";
  shop.sell(card);
  shop.sell(saleOf("V3", {bread()}, "02"));

  const std::optional<Closing> closing = shop.close("01", Date::of(2026, 11, 20));

  ASSERT_TRUE(closing);
  EXPECT_EQ(closing->number, 1);
  EXPECT_EQ(closing->tickets, 2U);
  EXPECT_DOUBLE_EQ(closing->total, 7.96);
  EXPECT_EQ(documents("SELECT Count(*) FROM HTickets WHERE Cierre = 1"), "2");
  EXPECT_EQ(documents("SELECT Count(*) FROM HTickets_Lineas WHERE Cierre = 1"), "3");
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "1") << "the other till stays open";
  EXPECT_EQ(documents("SELECT Sum(Base) FROM HTickets_Lineas_Impuestos WHERE IVA = 21"), "4");
  EXPECT_EQ(main("SELECT Total FROM Cierres"), "7,96");
  EXPECT_EQ(main("SELECT Efectivo FROM Cierres"), "7,96");
  EXPECT_EQ(main("SELECT Saldo_Inicio FROM Cierres"), "0");
  EXPECT_EQ(main("SELECT Saldo_Final FROM Cierres"), "5,54") << "a card puts nothing into the till";
  EXPECT_EQ(main("SELECT Importe FROM Cierres_Familias WHERE Familia = 'LAC'"), "3,12");
  EXPECT_EQ(main("SELECT Importe FROM Cierres_Formas_Pago WHERE Forma_Pago = '2'"), "2,42");
  EXPECT_EQ(main("SELECT Importe FROM Cierres_Lineas_Impuestos WHERE Iva = 4"), "0,12");
}

TEST_F(ShopTest, TheNextClosingOfATillBeginsWithItsBalance) {
  Shop shop;
  shop.sell(saleOf("V1", {bread()}, "01"));
  shop.sell(saleOf("V2", {milk()}, "02"));
  shop.close("01", Date::of(2026, 11, 20));
  shop.close("02", Date::of(2026, 11, 20));
  shop.sell(saleOf("V3", {bread()}, "01"));
  shop.close("01", Date::of(2026, 11, 20));

  EXPECT_EQ(main("SELECT Saldo_Inicio FROM Cierres WHERE Codigo = 3"), "2,42");
  EXPECT_EQ(main("SELECT Saldo_Final FROM Cierres WHERE Codigo = 3"), "4,84");
}

TEST_F(ShopTest, ATillWithoutTicketsIsNotClosed) {
  Shop shop;
  EXPECT_FALSE(shop.close("01", Date::of(2026, 11, 20)));
  EXPECT_EQ(main("SELECT Count(*) FROM Cierres"), "0");
}

TEST_F(ShopTest, TheSlipIsWrittenWithTheClosingAndAgainWhereItIsMissing) {
  Shop shop;
  shop.sell(saleOf("V1", {bread()}));
  shop.close("01", Date::of(2026, 11, 20));
  const std::filesystem::path slip = slipPath(1);
  ASSERT_TRUE(std::filesystem::exists(slip));
  std::filesystem::remove(slip);

  EXPECT_THAT(writeMissingPapers(PapersOf::kAll).written, Contains(slip.string()));
  EXPECT_THAT(writeMissingPapers(PapersOf::kAll).written, IsEmpty());
  std::ifstream file(slip);
  std::string first;
  std::getline(file, first);
  EXPECT_EQ(first, slipText(1).front());
}

/// What the main database is when a program died after the ticket was stored and before the rest.
void forgetStockOf(test::Shop& place, const std::string& ticket) {
  place.run("DELETE FROM Articulos_Movimientos_Almacen WHERE Doc_E = " + ticket);
  place.run("UPDATE Numeradores SET Ticket_a = " + ticket + " - 1");
}

TEST_F(ShopTest, ATicketWhoseStockDidNotMoveIsFinishedByTheNextSale) {
  Shop shop;
  shop.sell(saleOf("V1", {bread(), milk()}));
  shop.sell(saleOf("V2", {bread()}));
  forgetStockOf(place_, "2");
  place_.run("UPDATE Articulos SET Existencia = Existencia + 2 WHERE Codigo = 'PAN'");
  place_.run("UPDATE Articulos_Almacenes SET Cantidad = Cantidad + 2 WHERE Codigo = 'PAN'");

  EXPECT_EQ(shop.sell(saleOf("V3", {milk()}, "02")), 3);

  EXPECT_EQ(main("SELECT Cantidad FROM Articulos_Movimientos_Almacen WHERE Doc_E = 2"), "2");
  EXPECT_EQ(main("SELECT Referencia FROM Articulos_Movimientos_Almacen WHERE Doc_E = 2"), "V2");
  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "-4");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Movimientos_Almacen WHERE Doc_E = 1"), "2");
  EXPECT_EQ(main("SELECT Ticket_a FROM Numeradores"), "3");
}

TEST_F(ShopTest, ATicketOfAnotherPeriodDoesNotMoveItsStockAgain) {
  Shop shop;
  shop.sell(saleOf("V1", {bread()}));
  shop.sell(saleOf("V2", {bread()}));
  place_.run("UPDATE Numeradores SET Ticket_a = 0");  // as in a period that was left long ago

  EXPECT_EQ(shop.sell(saleOf("V3", {bread()})), 3);

  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "-6");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Movimientos_Almacen"), "3");
  EXPECT_THAT(shop.recover().sales, IsEmpty());
}

TEST_F(ShopTest, ATicketWhoseArticlesWereNeverStoredIsFinishedWithThem) {
  {
    Shop shop;
    shop.sell(saleOf("V1", {bread()}));
    shop.sell(saleOf("V2", {milk()}));
  }
  forgetStockOf(place_, "2");
  place_.run("DELETE FROM Articulos WHERE Codigo = 'LECHE'");
  place_.run("DELETE FROM Articulos_Almacenes WHERE Codigo = 'LECHE'");

  EXPECT_THAT(Shop().recover().sales, ElementsAre(2));

  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'LECHE'"), "-3");
  EXPECT_EQ(main("SELECT Familia FROM Articulos WHERE Codigo = 'LECHE'"), "LAC");
  EXPECT_THAT(Shop().recover().sales, IsEmpty());
}

TEST_F(ShopTest, AClosingWithoutItsTicketsIsTakenBackByTheNextOne) {
  Shop shop;
  shop.sell(saleOf("V1", {bread()}, "01"));
  shop.sell(saleOf("V2", {milk()}, "02"));
  place_.run(
      "INSERT INTO Cierres (Codigo, Caja, Fecha, Saldo_Final, Facturado) VALUES (1, '01', "
      "#11/20/2026#, 99, 0)");
  place_.run("INSERT INTO Cierres_Familias (Cierre, Familia, Importe) VALUES (1, 'PAN', 99)");

  EXPECT_EQ(shop.close("02", Date::of(2026, 11, 20))->number, 1);
  EXPECT_EQ(shop.close("01", Date::of(2026, 11, 20))->number, 2);

  EXPECT_EQ(main("SELECT Caja FROM Cierres WHERE Codigo = 1"), "02");
  EXPECT_EQ(main("SELECT Saldo_Inicio FROM Cierres WHERE Codigo = 2"), "0");
  EXPECT_EQ(main("SELECT Count(*) FROM Cierres_Familias WHERE Importe = 99"), "0");
}

TEST_F(ShopTest, RecoverTakesBackAnyClosingWhoseTicketsAreOpen) {
  Shop shop;
  shop.sell(saleOf("V1", {bread()}, "01"));
  shop.close("01", Date::of(2026, 11, 20));
  shop.sell(saleOf("V2", {bread()}, "01"));
  const auto closing = [&](const std::string& number, const std::string& invoiced) {
    place_.run("INSERT INTO Cierres (Codigo, Caja, Fecha, Facturado) VALUES (" + number +
               ", '01', #11/20/2026#, " + invoiced + ")");
  };
  const auto family = [&](const std::string& number) {
    place_.run("INSERT INTO Cierres_Familias (Cierre, Familia, Importe) VALUES (" + number +
               ", 'PAN', 99)");
  };
  closing("2", "0");
  family("2");
  closing("3", "5");
  family("3");
  closing("4", "0");
  place_.run("INSERT INTO Cierres (Codigo, Facturado) VALUES (5, 0)");  // of no till and day
  family("5");

  EXPECT_THAT(shop.recover().closings, ElementsAre(2));
  EXPECT_THAT(shop.recover().closings, IsEmpty())
      << "an invoiced one stays, one that never had any lines, and one of no day";
}

TEST_F(ShopTest, AClosingWhoseHistoryWasPutAwayStays) {
  Shop shop;
  shop.sell(saleOf("V1", {bread()}, "01"));
  shop.close("01", Date::of(2026, 11, 20));
  shop.sell(saleOf("V2", {bread()}, "01"));
  shop.close("01", Date::of(2026, 11, 20));
  place_.run("DELETE FROM HTickets WHERE Numero = 1", kDocuments);
  shop.sell(saleOf("V3", {bread()}, "02"));

  EXPECT_THAT(shop.recover().closings, IsEmpty());
  EXPECT_EQ(shop.close("02", Date::of(2026, 11, 20))->number, 3);
  EXPECT_EQ(main("SELECT Saldo_Final FROM Cierres WHERE Codigo = 1"), "2,42");
}

// Put away or lost: the databases cannot tell, so a person says it once.
TEST_F(ShopTest, AHistoryOfWhichNothingIsLeftIsAskedFor) {
  Shop shop;
  shop.sell(saleOf("V1", {bread()}, "01"));
  shop.close("01", Date::of(2026, 11, 20));
  place_.run("DELETE FROM HTickets", kDocuments);

  EXPECT_EQ(test::errorOf([&] { shop.close("02", Date::of(2026, 11, 20)); }),
            errors::kIntegrityViolation);
  EXPECT_EQ(shop.recoverAll(Decision::kKeep).kept.size(), 2U);
  EXPECT_EQ(shop.sell(saleOf("V2", {bread()}, "02")), 2);
  EXPECT_EQ(shop.close("02", Date::of(2026, 11, 20))->number, 2);
  EXPECT_EQ(main("SELECT Saldo_Final FROM Cierres WHERE Codigo = 1"), "2,42");
}

TEST_F(ShopTest, CountersOfOtherSeriesStayWhereTheyWereSetWhenASaleIsFinished) {
  place_.run("UPDATE Numeradores SET Ticket_a = 0, Ticket_b = 70000, Ticket_c = 80000");
  Shop shop;
  shop.sell(saleOf("V1", {bread()}));
  forgetStockOf(place_, "1");

  EXPECT_THAT(shop.recover().sales, ElementsAre(1));

  EXPECT_EQ(main("SELECT Ticket_a FROM Numeradores"), "1");
  EXPECT_EQ(main("SELECT Ticket_b FROM Numeradores"), "70000");
  EXPECT_EQ(main("SELECT Ticket_c FROM Numeradores"), "80000");
}

TEST_F(ShopTest, ATillWithAQuoteInItsNameIsClosedLikeAnyOther) {
  Shop shop;
  shop.openTills({"n'1"});
  shop.sell(saleOf("V1", {bread()}, "n'1"));
  shop.close("n'1", Date::of(2026, 11, 20));
  shop.sell(saleOf("V2", {bread()}, "n'1"));

  EXPECT_EQ(shop.close("n'1", Date::of(2026, 11, 20))->tickets, 1U);

  EXPECT_EQ(main("SELECT Saldo_Inicio FROM Cierres WHERE Codigo = 2"), "2,42");
  EXPECT_EQ(main("SELECT Caja FROM Cierres WHERE Codigo = 2"), "n'1");
}

TEST_F(ShopTest, TillsThatTheCatalogueDoesNotHaveAreAdded) {
  Shop shop;
  shop.openTills({"01", "02"});
  shop.openTills({"02", "03"});
  EXPECT_EQ(main("SELECT Count(*) FROM Cajas WHERE Codigo In ('01', '02', '03')"), "3");
}

TEST_F(ShopTest, ProgramsThatBeginAtOnceMayHaveTheSameTills) {
  const std::vector<std::string> tills = {"01", "02", "03", "04", "05", "06", "07", "08"};
  std::vector<std::future<void>> programs;
  for (int i = 0; i < 6; ++i) {
    programs.push_back(std::async(std::launch::async, [&] {
      Apartment apartment(place_.installationPtr());
      Shop().openTills(tills);
    }));
  }
  for (std::future<void>& program : programs) EXPECT_NO_THROW(program.get());
  EXPECT_EQ(main("SELECT Count(*) FROM Cajas WHERE Codigo Like '0_'"), "8");
}

}  // namespace
}  // namespace tavelor::flows
