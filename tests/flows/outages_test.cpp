// SPDX-License-Identifier: MIT
// Flows whose line to the server breaks, just where nobody can know what became of their commit.
#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <libpq-fe.h>

#include "tavelor/articles/articulos.hpp"
#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/day_page.hpp"
#include "tavelor/flows/outage.hpp"
#include "tavelor/flows/receiving.hpp"
#include "tavelor/flows/suppliers.hpp"
#include "tavelor/flows/transaction.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/line_proxy.hpp"
#include "tests/support/records.hpp"

namespace tavelor::flows {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;

class OutagesTest : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!test::runsOnServer()) GTEST_SKIP() << "files have no line that could break";
    Settings settings = test::fastSettings();
    database_ = settings.server.database;
    line_.emplace(settings.server.hosts);
    settings.server.hosts = "127.0.0.1:" + std::to_string(line_->port());
    place_.emplace(settings);
    openShop();
    fiscal::writeSettings(place_->installation(), test::recordSettings());
    shop_.emplace();
    shop_->sell(saleOf("V0"));  // counters and articles are there
    taken_ = line_->taken();
  }
  void TearDown() override {
    if (!line_) return;
    EXPECT_GT(line_->taken(), taken_) << "the line did not break";
  }

  std::string main(const std::string& statement) { return place_->text(statement, 1); }
  std::string documents(const std::string& statement) { return place_->text(statement, 3); }
  /// Tickets, their records, and the movements of their stock.
  std::string counts() {
    return documents("SELECT Count(*) FROM Tickets") + " " +
           documents("SELECT Count(*) FROM Fiscal_Registros") + " " +
           main("SELECT Count(*) FROM Articulos_Movimientos_Almacen");
  }
  /// Makes the commit of what adds such a row to a table wait until somebody else waits for it.
  void commitWhenWaitedFor(const std::string& table, const std::string& row) {
    run("CREATE FUNCTION documents.wait() RETURNS trigger LANGUAGE plpgsql AS $$ BEGIN "
        "FOR i IN 1..1000 LOOP "
        "EXIT WHEN EXISTS (SELECT FROM pg_locks WHERE NOT granted AND pid <> pg_backend_pid() AND "
        "pg_backend_pid() = ANY(pg_blocking_pids(pid))); "
        "PERFORM pg_sleep(0.01); END LOOP; RETURN NULL; END $$");
    run("CREATE CONSTRAINT TRIGGER wait AFTER INSERT ON " + table +
        " DEFERRABLE INITIALLY DEFERRED FOR EACH ROW WHEN (" + row +
        ") EXECUTE FUNCTION documents.wait()");
  }

  std::optional<test::LineProxy> line_;
  std::optional<test::Shop> place_;
  std::optional<Shop> shop_;
  std::size_t taken_ = 0;

 private:
  /// By the server itself.
  void run(const std::string& statement) const {
    const std::unique_ptr<PGconn, decltype(&PQfinish)> connection(
        PQconnectdb(
            (std::string(std::getenv("TAVELOR_TEST_SERVER")) + " dbname=" + database_).c_str()),
        &PQfinish);
    const std::unique_ptr<PGresult, decltype(&PQclear)> result(
        PQexec(connection.get(), statement.c_str()), &PQclear);
    ASSERT_EQ(PQresultStatus(result.get()), PGRES_COMMAND_OK) << PQerrorMessage(connection.get());
  }

  std::string database_;
};

TEST_F(OutagesTest, ASaleWhoseCommitHasNoAnswerIsThereOnceAndGivesItsNumber) {
  line_->loseAnswerTo("COMMIT");
  EXPECT_EQ(shop_->sell(saleOf("V1")), 2);
  EXPECT_EQ(counts(), "2 2 4");
  EXPECT_EQ(shop_->sell(saleOf("V1")), std::nullopt);
  EXPECT_EQ(shop_->sell(saleOf("V2")), 3) << "and no number is missing";
}

TEST_F(OutagesTest, ASaleWhoseLineBreaksBeforeItsCommitIsSoldByTheNextLine) {
  line_->breakBehind("Barra");
  EXPECT_EQ(shop_->sell(saleOf("V1")), 2);
  EXPECT_EQ(counts(), "2 2 4");
}

TEST_F(OutagesTest, ASaleWhoseCommitIsStillOnItsWayIsFoundBehindTheLockOfTheNumber) {
  commitWhenWaitedFor("documents.\"Tickets\"", "NEW.\"Referencia\" = 'V1'");
  line_->breakBehind("COMMIT");
  EXPECT_EQ(shop_->sell(saleOf("V1")), 2);
  EXPECT_EQ(counts(), "2 2 4");
}

TEST_F(OutagesTest, AReturnWhoseCommitHasNoAnswerIsThereOnceAndGivesItsNumber) {
  line_->loseAnswerTo("COMMIT");
  EXPECT_EQ(shop_->takeBack(returnOf(1)), 2);
  EXPECT_EQ(counts(), "2 2 3") << "of its one line that was sold";
}

TEST_F(OutagesTest, AReturnWhoseCommitIsStillOnItsWayIsFoundByTheNextLook) {
  commitWhenWaitedFor("documents.\"Tickets\"", "NEW.\"Total\" < 0");
  line_->breakBehind("COMMIT");
  EXPECT_EQ(shop_->takeBack(returnOf(1)), 2);
  EXPECT_EQ(counts(), "2 2 3");
}

TEST_F(OutagesTest, AClosingWhoseCommitHasNoAnswerIsMadeOnceAndGiven) {
  line_->loseAnswerTo("COMMIT");
  const std::optional<Closing> closing = shop_->close("01", kDay);
  ASSERT_TRUE(closing);
  EXPECT_EQ(closing->number, 1);
  EXPECT_EQ(closing->tickets, 1U);
  EXPECT_EQ(main("SELECT Count(*) FROM Cierres"), "1");
  EXPECT_EQ(shop_->close("01", kDay), std::nullopt);
}

TEST_F(OutagesTest, AClosingWhoseCommitIsStillOnItsWayIsGiven) {
  commitWhenWaitedFor("main.\"Cierres\"", "true");
  line_->breakBehind("COMMIT");
  const std::optional<Closing> closing = shop_->close("01", kDay);
  ASSERT_TRUE(closing);
  EXPECT_EQ(closing->number, 1);
  EXPECT_EQ(closing->total, saleOf("V0").total());
  EXPECT_EQ(main("SELECT Count(*) FROM Cierres"), "1");
}

TEST_F(OutagesTest, AnInvoiceForTicketsWhoseCommitHasNoAnswerIsIssuedOnce) {
  const InvoiceWish wish{.tickets = {1}, .day = kDay, .recipient = {"Ñandú SA", "A58818501"}};
  line_->loseAnswerTo("COMMIT");
  const std::string number = shop_->invoiceTickets(wish);
  EXPECT_EQ(number, "F/1");
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Registros"), "2");
  EXPECT_THROW(shop_->invoiceTickets(wish), RefusedSale);
}

TEST_F(OutagesTest, ADeliveryWhoseCommitHasNoAnswerIsReceivedOnce) {
  ConnectionPtr connection = DataSession().OpenConnection(1);
  makeSupplier("400", "Forn L'Espiga", connection);
  const std::string before = main("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'");
  line_->loseAnswerTo("COMMIT");
  const Receipt receipt =
      Receiving().receive({.supplier = "400",
                           .note = "A-1",
                           .day = kDay,
                           .lines = {{.code = "PAN", .quantity = 5, .price = 1}}});
  EXPECT_EQ(receipt.outcome, Receipt::Outcome::kKnown);
  EXPECT_EQ(main("SELECT Count(*) FROM Proveedores_Apuntes_Contables"), "1");
  EXPECT_EQ(main("SELECT Existencia - (" + before + ") FROM Articulos WHERE Codigo = 'PAN'"), "5");
}

TEST_F(OutagesTest, PricesAndPagesGoOnToo) {
  Sale sale = saleOf("V1");
  sale.lines = {{.code = "PAN", .wantsPrice = true}};
  line_->down();
  std::vector<Outage> told;
  const OutageListener listener([&](const Outage& outage) {
    told.push_back(outage);
    line_->up();
  });
  EXPECT_THAT(shop_->price(sale), IsEmpty());
  ASSERT_EQ(sale.lines.size(), 1U);
  EXPECT_EQ(sale.lines[0].price, 1.21);
  line_->down();
  EXPECT_THAT(writeDayPage(kDay, kDay), HasSubstr("day-"));
  ASSERT_EQ(told.size(), 4U);
  EXPECT_THAT(told[0].reason, HasSubstr("can't be opened"));
  EXPECT_FALSE(told[0].isOver);
  EXPECT_TRUE(told[1].isOver);
  EXPECT_GT(told[1].lasted.count(), 0);
  EXPECT_EQ(told[1].reason, told[0].reason);
}

TEST_F(OutagesTest, InsideATransactionOfTheCallersNothingIsTriedAgain) {
  {
    Transaction transaction(*shop_);
    shop_->sell(saleOf("V1"));
    line_->breakBehind("Barra");
    EXPECT_EQ(test::errorOf([&] { shop_->sell(saleOf("V2")); }), errors::kConnectionLost);
    EXPECT_EQ(test::errorOf([&] { transaction.commit(); }), errors::kTransactionLost);
  }
  EXPECT_EQ(counts(), "1 1 2");
  EXPECT_EQ(shop_->sell(saleOf("V1")), 2);
}

TEST_F(OutagesTest, OnlyTheInnermostListenerIsTold) {
  int outer = 0, inner = 0;
  const OutageListener first([&](const Outage& /*outage*/) { ++outer; });
  {
    const OutageListener second([&](const Outage& /*outage*/) { ++inner; });
    line_->loseAnswerTo("COMMIT");
    shop_->sell(saleOf("V1"));
  }
  line_->loseAnswerTo("COMMIT");
  shop_->sell(saleOf("V2"));
  EXPECT_EQ(inner, 2);
  EXPECT_EQ(outer, 2);
}

}  // namespace
}  // namespace tavelor::flows
