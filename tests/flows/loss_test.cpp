// SPDX-License-Identifier: MIT
// One of the two databases has lost its latest commits: what the tickets can tell is mended, and on
// top of the rest nothing is sold or closed until a person has decided.
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/flows/audit.hpp"
#include "tavelor/flows/decisions.hpp"
#include "tavelor/services/trace.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::flows {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

using Kind = Finding::Kind;

class LossTest : public LivesTest {
 protected:
  /// First value of a statement, as text.
  std::string value(const std::string& statement, int selector) {
    RecordsetPtr rows;
    ConnectionPtr connection;
    DataSession().OpenRecordset(selector, Statement::trusted(statement), rows, connection);
    return rows->Field(0).Value().toText(Apartment::current().locale());
  }
  std::string main(const std::string& statement) { return value(statement, 1); }
  std::string documents(const std::string& statement) { return value(statement, 3); }

  void run(const std::string& statement, int selector) {
    ConnectionPtr connection;
    DataSession().Execute(selector, Statement::trusted(statement), connection);
  }

  std::string refusalOf(const std::function<void()>& flow) {
    try {
      flow();
    } catch (const Disagreement& loss) {
      return loss.description();
    }
    return "nothing was refused";
  }

  std::vector<Kind> kindsOf(const std::vector<Finding>& findings) {
    std::vector<Kind> kinds;
    for (const Finding& each : findings) kinds.push_back(each.kind);
    return kinds;
  }

  /// Two tickets, then two that the documents lose.
  void loseTickets() {
    live([] { Shop().sell(saleOf("V1")); });
    loseIn("documents.db", [](Shop& shop) {
      shop.sell(saleOf("V2"));
      shop.sell(saleOf("V3", "02"));
    });
  }

  /// Everything since the catalogues, with closings, that the main database loses.
  const std::vector<Sale> sales_ = {saleOf("V1", "01"), saleOf("V2", "02"), saleOf("V3", "01")};
  void sellAndClose(Shop& shop) {
    for (const Sale& sale : sales_) shop.sell(sale);
    shop.close("01", kDay);
    shop.close("02", kDay);
  }
};

// ---------------------------------------------------------------------------------------------
// The documents are older

TEST_F(LossTest, NothingIsSoldOnTopOfLostTickets) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseTickets();
  live([&] {
    Shop shop;
    EXPECT_THAT(
        refusalOf([&] { shop.sell(saleOf("V4")); }),
        AllOf(HasSubstr("tickets 2 to 3, 2026-11-20: 4 movements of stock without a ticket"),
              HasSubstr("recover")));
    EXPECT_THAT(refusalOf([&] { shop.sell(saleOf("V4")); }), HasSubstr("tickets 2 to 3"))
        << "and again: nothing of the first try counts as a decision";
    EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "1");
  });
}

TEST_F(LossTest, NothingIsClosedOnTopOfLostTickets) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseTickets();
  live([&] {
    Shop shop;
    EXPECT_THAT(refusalOf([&] { shop.close("01", kDay); }), HasSubstr("tickets 2 to 3"));
    EXPECT_EQ(main("SELECT Count(*) FROM Cierres"), "0");
  });
}

TEST_F(LossTest, LostTicketsAreToldWithNumbersAndDays) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseTickets();
  live([&] {
    const Recovered recovered = Shop().recoverAll();
    EXPECT_THAT(told(recovered.undecided),
                ElementsAre("tickets 2 to 3, 2026-11-20: 4 movements of stock without a ticket"));
    EXPECT_FALSE(recovered.hasMended());
  });
}

TEST_F(LossTest, ReconciliationFindsLostTicketsBehindThoseOfTheDay) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseTickets();
  live([&] { EXPECT_THAT(differences({saleOf("V1")}), Contains(HasSubstr("tickets 2 to 3"))); });
}

TEST_F(LossTest, ReconciliationFindsLostTicketsAmongThoseOfTheDay) {
  live([&] {
    Shop shop;
    for (const Sale& sale : sales_) shop.sell(sale);
    run("DELETE FROM Tickets WHERE Numero = 2", 3);
    run("DELETE FROM Tickets_Lineas WHERE Numero = 2", 3);
    EXPECT_THAT(differences({sales_[0], sales_[2]}), Contains(HasSubstr("ticket 2, 2026-11-20: 2 "
                                                                        "movements of stock")));
  });
}

TEST_F(LossTest, LostTicketsThatAreFollowedCanBeSoldAgain) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseTickets();
  live([&] {
    Shop shop;
    const Recovered recovered = shop.recoverAll(Decision::kFollowTickets);
    EXPECT_THAT(recovered.takenBack, ElementsAre(2, 3));
    EXPECT_THAT(recovered.undecided, IsEmpty());
    EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "-2");
    EXPECT_EQ(main("SELECT Cantidad FROM Articulos_Almacenes WHERE Codigo = 'PAN'"), "-2");
    EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'LECHE'"), "1");

    EXPECT_EQ(shop.sell(saleOf("V2")), 4) << "the receipts of 2 and 3 are in people's hands";
    EXPECT_EQ(shop.sell(saleOf("V3", "02")), 5);
    shop.close("01", kDay);
    shop.close("02", kDay);
    EXPECT_THAT(differences({saleOf("V1"), saleOf("V2"), saleOf("V3", "02")}), IsEmpty());
    EXPECT_THAT(shop.recoverAll().undecided, IsEmpty());
  });
}

TEST_F(LossTest, LostTicketsThatAreKeptAreNotAskedForAgain) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseTickets();
  live([&] {
    Shop shop;
    EXPECT_THAT(kindsOf(shop.recoverAll(Decision::kKeep).kept),
                ElementsAre(Kind::kTicketLost, Kind::kTicketLost));
    EXPECT_EQ(shop.sell(saleOf("V4")), 4);
    EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "-8");
    EXPECT_THAT(shop.recoverAll().undecided, IsEmpty());
  });
}

TEST_F(LossTest, LostTicketsThatComeBackLeaveNothingToDecide) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  live([] { Shop().sell(saleOf("V1")); });
  keep("documents.db");
  live([&] {
    Shop shop;
    shop.sell(saleOf("V2"));
    shop.close("01", kDay);
  });
  live([&] { EXPECT_THAT(differences({saleOf("V1"), saleOf("V2")}), IsEmpty()); });
  swap("documents.db");
  live([&] {
    const Recovered recovered = Shop().recoverAll();
    EXPECT_FALSE(recovered.undecided.empty());
    EXPECT_FALSE(recovered.hasMended()) << "a closing whose tickets may come back is not touched";
  });
  swap("documents.db");
  live([&] {
    EXPECT_THAT(Shop().recoverAll().undecided, IsEmpty());
    EXPECT_THAT(differences({saleOf("V1"), saleOf("V2")}), IsEmpty());
  });
}

TEST_F(LossTest, AllClosingsWhoseMovesAreLostAreTakenBackByTheNextOne) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  live([&] {
    Shop shop;
    for (const Sale& sale : sales_) shop.sell(sale);
  });
  loseIn("documents.db", [](Shop& shop) {
    shop.close("01", kDay);
    shop.close("02", kDay);
  });
  live([&] {
    Shop shop;
    EXPECT_EQ(shop.close("01", kDay)->number, 1) << "both are gone, not the last alone";
    EXPECT_EQ(shop.close("02", kDay)->number, 2);
    EXPECT_THAT(differences(sales_), IsEmpty());
  });
}

TEST_F(LossTest, ClosingsWhoseTicketsAreLostGoWithThem) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseIn("documents.db", [&](Shop& shop) { sellAndClose(shop); });
  live([&] {
    Shop shop;
    EXPECT_THAT(kindsOf(shop.recoverAll().undecided),
                ElementsAre(Kind::kTicketLost, Kind::kTicketLost, Kind::kTicketLost,
                            Kind::kTicketsOfClosing, Kind::kTicketsOfClosing));
    EXPECT_THAT(shop.recoverAll(Decision::kFollowTickets).closings, ElementsAre(1, 2));
    sellAndClose(shop);
    EXPECT_THAT(differences(sales_), IsEmpty());
  });
}

TEST_F(LossTest, ALostClosingThatWasInvoicedIsNeverDeleted) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseIn("documents.db", [&](Shop& shop) { sellAndClose(shop); });
  live([&] {
    run("UPDATE Cierres SET Facturado = 1 WHERE Codigo = 1", 1);
    const Recovered recovered = Shop().recoverAll(Decision::kFollowTickets);
    EXPECT_THAT(recovered.closings, ElementsAre(2));
    EXPECT_THAT(told(recovered.undecided),
                ElementsAre("closing 1, till 01, 2026-11-20: none of its tickets is there"));
  });
}

TEST_F(LossTest, ACounterThatSomebodySetAheadIsToldAndStopsNobody) {
  live([&] {
    Shop shop;
    shop.sell(saleOf("V1"));
    run("UPDATE Numeradores SET Ticket_a = 4999", 1);
    const Recovered recovered = shop.recoverAll();
    ASSERT_TRUE(recovered.unused);
    EXPECT_EQ(*recovered.unused, std::pair(2.0, 4999.0));
    EXPECT_FALSE(recovered.hasMended());
    EXPECT_EQ(shop.sell(saleOf("V2")), 5000);
    EXPECT_FALSE(shop.recoverAll().unused);
  });
}

// ---------------------------------------------------------------------------------------------
// The main database is older

TEST_F(LossTest, StockAndClosingsThatTheMainDatabaseLostComeFromTheTickets) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  live([] { Shop().recover(); });  // starts the counters
  loseIn("main.db", [&](Shop& shop) { sellAndClose(shop); });
  live([&] {
    Shop shop;
    const Recovered recovered = shop.recover();
    EXPECT_THAT(recovered.sales, ElementsAre(1, 2, 3)) << "in history";
    EXPECT_THAT(recovered.rewritten, ElementsAre(1, 2));
    EXPECT_THAT(differences(sales_), IsEmpty());
    EXPECT_FALSE(shop.recoverAll().hasMended());
  });
}

TEST_F(LossTest, AClosingIsWrittenAgainAsItWas) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  const std::string closings =
      "SELECT Caja & Fecha & Entrega & ' ' & Efectivo & ' ' & Base & ' ' & Importe_Impuestos & ' ' "
      "& Total & ' ' & Saldo_Inicio & ' ' & Saldo_Final AS c FROM Cierres WHERE Codigo = ";
  const std::string families = "SELECT Sum(Importe) FROM Cierres_Familias WHERE Cierre = ";
  std::vector<std::string> before;
  const auto figures = [&] {
    std::vector<std::string> found;
    for (const char* const closing : {"1", "2", "3"}) {
      found.push_back(main(closings + closing));
      found.push_back(main(families + closing));
      found.push_back(
          main(std::string("SELECT Sum(Base + Importe) FROM Cierres_Lineas_Impuestos WHERE "
                           "Cierre = ") +
               closing));
      found.push_back(main(std::string("SELECT Sum(Importe) FROM Cierres_Formas_Pago WHERE "
                                       "Cierre = ") +
                           closing));
    }
    return found;
  };
  live([] { Shop().recover(); });
  loseIn("main.db", [&](Shop& shop) {
    sellAndClose(shop);
    shop.sell(saleOf("V4", "01"));
    shop.close("01", kDay);
    shop.sell(saleOf("V5", "01"));  // open, and no part of a closing that is written again
    before = figures();
  });
  live([&] {
    Shop shop;
    EXPECT_THAT(shop.recover().rewritten, ElementsAre(1, 2, 3));
    EXPECT_EQ(figures(), before);
    EXPECT_EQ(documents("SELECT Count(*) FROM HTickets"), "4") << "the documents stay";
    EXPECT_EQ(documents("SELECT Count(*) FROM HTickets_Lineas_Impuestos"), "4");
    EXPECT_EQ(documents("SELECT Count(*) FROM Tickets WHERE Serie = 'A' AND Cierre = 0"), "1");
  });
}

TEST_F(LossTest, TheNextClosingWritesLostOnesFirst) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  live([] { Shop().recover(); });
  loseIn("main.db", [&](Shop& shop) { sellAndClose(shop); });
  live([&] {
    Shop shop;
    shop.sell(saleOf("V4", "01"));
    EXPECT_EQ(shop.close("01", kDay)->number, 3);
    EXPECT_EQ(main("SELECT Saldo_Inicio FROM Cierres WHERE Codigo = 3"),
              main("SELECT Saldo_Final FROM Cierres WHERE Codigo = 1"));
  });
}

// Counters that the tickets have just given would hide that no stock was moved for any of them.
TEST_F(LossTest, AMainDatabaseOfATimeBeforeTheCountersIsNotGoneOnWith) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  loseIn("main.db", [&](Shop& shop) { sellAndClose(shop); });
  live([&] {
    Shop shop;
    EXPECT_THAT(refusalOf([&] { shop.sell(saleOf("V4")); }),
                HasSubstr("ticket 3, 2026-11-20: 2 lines without a movement"));
    EXPECT_THAT(refusalOf([&] { shop.sell(saleOf("V4")); }), HasSubstr("ticket 3"));
    const Recovered recovered = shop.recoverAll(Decision::kFollowTickets);
    EXPECT_THAT(recovered.sales, ElementsAre(1, 2, 3));
    EXPECT_THAT(recovered.rewritten, ElementsAre(1, 2));
    EXPECT_THAT(differences(sales_), IsEmpty());
    EXPECT_EQ(shop.sell(saleOf("V4")), 4);
  });
}

TEST_F(LossTest, AClosingOfSeveralTillsIsToldAndNotWrittenAgain) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  live([] { Shop().recover(); });
  loseIn("main.db", [&](Shop& shop) { sellAndClose(shop); });
  live([&] {
    run("UPDATE HTickets SET Caja = '03' WHERE Numero = 3", 3);
    Shop shop;
    const Recovered recovered = shop.recoverAll();
    EXPECT_THAT(recovered.rewritten, IsEmpty());
    EXPECT_THAT(told(recovered.undecided),
                Contains("closing 1, till 01, 2026-11-20: 2 tickets in history and no closing"));
    EXPECT_THAT(refusalOf([&] { shop.close("01", kDay); }), HasSubstr("closing 1"));
  });
}

// ---------------------------------------------------------------------------------------------
// Holes

TEST_F(LossTest, LinesThatAreNotWhatWasMovedAreFoundAndCanBeFollowed) {
  live([&] {
    Shop shop;
    shop.sell(saleOf("V1"));
    shop.sell(saleOf("V2"));
    run("DELETE FROM Tickets_Lineas WHERE Numero = 1 AND Codigo = 'LECHE'", 3);
    EXPECT_THAT(told(shop.recoverAll().undecided),
                ElementsAre("ticket 1, 2026-11-20: 1 line that 2 movements of stock do not match"));
    EXPECT_THAT(shop.recoverAll(Decision::kFollowTickets).sales, ElementsAre(1));
    EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'LECHE'"), "1");
    EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "-4");
  });
}

TEST_F(LossTest, ATicketBehindTheCounterThatNeverMovedItsStockIsFound) {
  live([&] {
    Shop shop;
    shop.sell(saleOf("V1"));
    shop.sell(saleOf("V2"));
    run("DELETE FROM Articulos_Movimientos_Almacen WHERE Doc_E = 1", 1);
    EXPECT_THAT(told(shop.recoverAll().undecided),
                ElementsAre("ticket 1, 2026-11-20: 2 lines without a movement of stock"));
    EXPECT_EQ(shop.sell(saleOf("V3")), 3) << "it lies behind what the counters tell";
  });
}

TEST_F(LossTest, TicketsOfAnotherSeriesNeedNoMovements) {
  live([&] {
    run("INSERT INTO Tickets (Numero, Serie) VALUES (10001, 'B')", 3);
    run("INSERT INTO Tickets_Lineas (Numero, Codigo, Cantidad) VALUES (10001, 'PAN', 1)", 3);
    Shop shop;
    shop.sell(saleOf("V1"));
    EXPECT_THAT(shop.recoverAll().undecided, IsEmpty());
  });
}

// ---------------------------------------------------------------------------------------------
// What it costs

TEST_F(LossTest, WhereTheNumbersAgreeNoOtherTicketIsLookedAt) {
  live([&] {
    Shop shop;
    shop.sell(saleOf("V1"));
    shop.close("01", kDay);
    StatementTrace& trace = Apartment::current().trace();
    trace.turn(true);
    shop.sell(saleOf("V2"));
    shop.close("01", kDay);
    for (const TraceEntry& entry : trace.entries()) {
      EXPECT_THAT(entry.text, Not(HasSubstr("Doc_E >="))) << "movements of a span of tickets";
      EXPECT_THAT(entry.text, Not(HasSubstr("Numero >="))) << "a span of tickets";
      if (entry.text.find("Cierre >=") == std::string::npos) continue;
      EXPECT_THAT(entry.text, HasSubstr(">= 2 ")) << "closings behind the last one of history";
    }
  });
}

// ---------------------------------------------------------------------------------------------
// What has been decided

TEST(NumberRangesTest, NumbersThatTouchAreOneRange) {
  NumberRanges ranges;
  for (const double number : {5, 3, 4, 9, 3, 10, 7}) ranges.add(number);
  EXPECT_EQ(ranges.text(), "3-5,7,9-10");
  ranges.add(8);
  EXPECT_EQ(ranges.text(), "3-5,7-10");
}

TEST(NumberRangesTest, AreReadAsTheyAreWritten) {
  const NumberRanges ranges("3-5,7,260001-260012");
  EXPECT_EQ(ranges.text(), "3-5,7,260001-260012");
  EXPECT_TRUE(ranges.contains(3));
  EXPECT_TRUE(ranges.contains(5));
  EXPECT_FALSE(ranges.contains(6));
  EXPECT_TRUE(ranges.contains(260012));
  EXPECT_FALSE(ranges.contains(260013));
  EXPECT_FALSE(NumberRanges("").contains(0));
}

TEST(NumberRangesTest, AnotherTextIsRefused) {
  for (const char* const text : {"x", "1-", "1,,2", "1;2", "-"}) {
    EXPECT_EQ(test::errorOf([&] { const NumberRanges ranges(text); }), errors::kTypeMismatch)
        << text;
  }
}

}  // namespace
}  // namespace tavelor::flows
