// SPDX-License-Identifier: MIT
// Sales and a program's own rows in one transaction.
#include "tavelor/flows/transaction.hpp"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/flows/papers.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/receiving.hpp"
#include "tavelor/flows/suppliers.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::flows {
namespace {

constexpr int kMain = 1;
constexpr int kDocuments = 3;

class TransactionTest : public ::testing::Test {
 protected:
  std::string main(const std::string& statement) { return place_.text(statement, kMain); }
  std::string documents(const std::string& statement) { return place_.text(statement, kDocuments); }
  /// A row of the program's own in either database.
  static void note(const Transaction& transaction, const std::string& code) {
    Statement route("INSERT INTO Bancos (Codigo) VALUES (");
    route << sqlText(code) << ")";
    transaction.main()->Execute(route);
    Statement comment("INSERT INTO Tickets_Comentarios (Id, Codigo, Comentarios) VALUES (99, 1, ");
    comment << sqlText(code) << ")";
    transaction.documents()->Execute(comment);
  }
  std::string counts() {
    return main("SELECT Count(*) FROM Bancos") + " " +
           main("SELECT Count(*) FROM Articulos_Movimientos_Almacen") + " " +
           documents("SELECT Count(*) FROM Tickets") + " " +
           documents("SELECT Count(*) FROM Tickets_Comentarios");
  }

  test::Shop place_;
  OpenedShop opened_;
  Shop shop_;
};

TEST_F(TransactionTest, SalesAndRowsOfTheProgramAreStoredTogether) {
  {
    Transaction transaction(shop_);
    shop_.sell(saleOf("V1"));
    note(transaction, "A");
    shop_.sell(saleOf("V2"));
    transaction.commit();
  }
  EXPECT_EQ(counts(), "1 4 2 1");
  EXPECT_EQ(shop_.sell(saleOf("V3")), 3);
}

TEST_F(TransactionTest, WhatIsNotCommittedLeavesNothingInEitherDatabase) {
  {
    Transaction transaction(shop_);
    shop_.sell(saleOf("V1"));
    note(transaction, "A");
  }
  EXPECT_EQ(counts(), "0 0 0 0");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos"), "0");
  EXPECT_EQ(shop_.sell(saleOf("V1")), 1) << "and its articles are made again";
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos"), "2");
}

TEST_F(TransactionTest, ACallThatRaisesUndoesItsOwnPartAndTheRestMayBeCommitted) {
  Transaction transaction(shop_);
  shop_.sell(saleOf("V1"));
  note(transaction, "A");
  Sale other = saleOf("V1");
  other.till = "02";
  EXPECT_EQ(test::errorOf([&] { shop_.sell(other); }), errors::kInvalidCall);
  Sale credit = saleOf("V2");
  credit.payment = "4";  // for nobody
  EXPECT_EQ(test::errorOf([&] { shop_.sell(credit); }), errors::kInvalidCall);
  transaction.commit();
  EXPECT_EQ(counts(), "1 2 1 1");
}

TEST_F(TransactionTest, InsideAnotherOneItIsAPartOfThat) {
  {
    Transaction outer(shop_);
    shop_.sell(saleOf("V1"));
    {
      Transaction inner(shop_);
      note(inner, "A");
      inner.commit();
    }
    {
      Transaction undone(shop_);
      shop_.sell(saleOf("V2"));
    }
    outer.commit();
  }
  EXPECT_EQ(counts(), "1 2 1 1");
  {
    Transaction outer(shop_);
    Transaction inner(shop_);
    shop_.sell(saleOf("V3"));
    inner.commit();
  }
  EXPECT_EQ(counts(), "1 2 1 1") << "only the outermost commit stores";
}

TEST_F(TransactionTest, AReturnAClosingAndADeliveryJoin) {
  clsArticulos().Insertar({.vId = "AGUA", .bStock = -1, .bActivo = true});
  ConnectionPtr connection = DataSession().OpenConnection(kMain);
  makeSupplier("400", "Forn", connection);
  connection.reset();
  Receiving receiving(shop_);
  Delivery delivery{.supplier = "400", .note = "1", .day = kDay, .lines = {}};
  delivery.lines.push_back({.code = "AGUA", .quantity = 6, .price = 1});
  const auto work = [&](bool isMeant) {
    Transaction transaction(shop_);
    EXPECT_EQ(receiving.receive(delivery).outcome, Receipt::Outcome::kReceived);
    Sale sale = saleOf("V1");
    sale.lines.resize(1);
    const double ticket = shop_.sell(sale).value();
    Return back;
    back.ticket = ticket;
    back.till = "01";
    back.day = kDay;
    shop_.takeBack(back);
    EXPECT_EQ(shop_.close("01", kDay)->tickets, 2U);
    if (isMeant) transaction.commit();
  };
  work(false);
  EXPECT_EQ(counts(), "0 0 0 0");
  EXPECT_EQ(main("SELECT Count(*) FROM Cierres"), "0");
  EXPECT_FALSE(std::filesystem::exists(slipPath(1)));
  work(true);
  EXPECT_EQ(main("SELECT Existencia FROM Articulos WHERE Codigo = 'AGUA'"), "6");
  EXPECT_EQ(documents("SELECT Count(*) FROM HTickets"), "2");
  EXPECT_FALSE(std::filesystem::exists(slipPath(1))) << "it was not stored yet";
  writeMissingPapers(PapersOf::kLatest);
  EXPECT_TRUE(std::filesystem::exists(slipPath(1)));
}

TEST_F(TransactionTest, AMemberWithoutItsConnectionReadsWithItAndWritesAtOnceRefused) {
  TAVELOR_ONLY_IN_FILES("connections of an apartment share one transaction there");
  Transaction transaction(shop_);
  shop_.sell(saleOf("V1"));
  EXPECT_TRUE(clsArticulos().ExisteArt("PAN"));
  EXPECT_EQ(test::errorOf([] {
              ConnectionPtr own;
              DataSession().Execute(kMain, Statement("DELETE FROM Articulos"), own);
            }),
            errors::kBusy);
  transaction.commit();
}

}  // namespace
}  // namespace tavelor::flows
