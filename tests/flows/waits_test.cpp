// SPDX-License-Identifier: MIT
// How often a sale, a return and a closing wait for a server.
#include <map>
#include <optional>
#include <set>

#include <fmt/format.h>
#include <gtest/gtest.h>

#include "tavelor/flows/seed.hpp"
#include "tavelor/flows/shop.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/services/clock.hpp"
#include "tavelor/services/recordset/read_ahead.hpp"
#include "tests/support/sales.hpp"
#include "tests/support/shop.hpp"

namespace tavelor::flows {
namespace {

const Date kDay = Date::of(2026, 11, 20);

/// Sells different articles, as many as it has lines.
Sale saleOf(const std::string& reference, int lines) {
  return test::saleOfArticles(reference, lines, kDay, 2);
}

class WaitsTest : public testing::Test {
 protected:
  void SetUp() override {
    place_.apartment().clock().fix(Date::of(2026, 11, 21));
    seedCatalogues();
    shop_.emplace();
    shop_->openTills({"01", "02"});
    main_ = DataSession().OpenConnection(selector::kMain);
    shop_->sell(saleOf("Makes the articles", 30));
    shop_->sell(saleOf("Compiles the statements", 2));
    place_.statements();
  }

  template <typename Action>
  std::int64_t waitsOf(Action&& action) {
    const std::int64_t before = main_->waits();
    action();
    return main_->waits() - before;
  }
  std::int64_t waitsOfSale(const Sale& sale) {
    place_.statements();
    const std::int64_t waits = waitsOf([&] { EXPECT_TRUE(shop_->sell(sale)); });
    // Besides those that the trace tells of there are the commit, the registry, which knows the
    // period, and the rows of a batch, which are waited for together.
    std::int64_t told = 0;
    for (const TraceEntry& entry : place_.apartment().trace().entries()) told += entry.waits;
    EXPECT_LT(told, waits);
    EXPECT_GE(told, waits - 3);
    return waits;
  }
  /// What the last actions waited for, for whoever finds a figure too high.
  std::string story() const {
    std::string story;
    for (const TraceEntry& entry : place_.apartment().trace().entries()) {
      if (entry.waits > 0) story += fmt::format("{} x {}\n", entry.waits, entry.text);
    }
    return story;
  }

  mutable test::Shop place_;
  std::optional<Shop> shop_;
  ConnectionPtr main_;
};

/// Those that say nothing where nobody waits.
class ServerWaitsTest : public WaitsTest {
 protected:
  void SetUp() override {
    if (!test::runsOnServer()) GTEST_SKIP() << "nobody waits for a file";
    WaitsTest::SetUp();
  }
};

TEST_F(ServerWaitsTest, ASaleWaitsAsOftenWhateverItsLines) {
  for (const int lines : {1, 3, 10, 30}) {
    EXPECT_EQ(waitsOfSale(saleOf(fmt::format("V{}", lines), lines)), 8) << lines << " lines\n"
                                                                        << story();
  }
}

TEST_F(ServerWaitsTest, ASaleOnCreditWaitsOnceMoreForItsComment) {
  Sale sale = saleOf("V1", 10);
  sale.customer = "17850";
  sale.name = "Núria d'Or";
  sale.payment = "4";
  sale.comment = "Without a bag";
  shop_->sell(sale);  // makes the customer
  sale.reference = "V2";
  EXPECT_EQ(waitsOfSale(sale), 9) << story();
}

TEST_F(ServerWaitsTest, AnArticleThatIsSoldOnManyLinesCostsNoMoreWaits) {
  Sale sale = saleOf("V1", 1);
  sale.lines.resize(20, sale.lines.front());
  EXPECT_LE(waitsOfSale(sale), 8) << story();
  EXPECT_EQ(place_.text("SELECT Existencia FROM Articulos WHERE Codigo = 'A00'"), "-44");
  EXPECT_EQ(place_.text("SELECT Cantidad FROM Articulos_Almacenes WHERE Codigo = 'A00'"), "-44");
}

TEST_F(ServerWaitsTest, AnotherTillsFirstSaleOfKnownArticlesWaitsAsOftenWhateverItsLines) {
  std::set<std::int64_t> waits;
  for (const int lines : {1, 10, 29}) {
    shop_.emplace();
    shop_->sell(saleOf(fmt::format("First of {}", lines), 1));
    Sale sale = saleOf(fmt::format("V{}", lines), lines + 1);
    sale.lines.erase(sale.lines.begin());
    waits.insert(waitsOfSale(sale));
  }
  EXPECT_EQ(waits, std::set<std::int64_t>{8}) << story();
}

TEST_F(ServerWaitsTest, AClosingWaitsAsOftenWhateverItsTickets) {
  const auto close = [&] { EXPECT_TRUE(shop_->close("01", kDay)); };
  std::set<std::int64_t> waits;
  int sold = 0;
  for (const int tickets : {1, 1, 1, 3, 12}) {
    for (int i = 0; i < tickets; ++i) shop_->sell(saleOf(fmt::format("V{}", ++sold), 3));
    place_.statements();
    const std::int64_t each = waitsOf(close);
    if (sold > 2) waits.insert(each);  // the first two compile what they send
  }
  EXPECT_EQ(waits.size(), 1U) << testing::PrintToString(waits) << "\n" << story();
}

TEST_F(WaitsTest, TheFirstOfAnArticleOnTwoLinesIsPutIntoItsWarehouseOnce) {
  Sale sale = saleOf("V1", 1);
  sale.lines.front().code = "NEW";
  sale.lines.resize(3, sale.lines.front());
  shop_->sell(sale);
  EXPECT_EQ(place_.text("SELECT Count(*) FROM Articulos_Almacenes WHERE Codigo = 'NEW'"), "1");
  EXPECT_EQ(place_.text("SELECT Cantidad FROM Articulos_Almacenes WHERE Codigo = 'NEW'"), "-6");
  EXPECT_EQ(place_.text("SELECT Existencia FROM Articulos WHERE Codigo = 'NEW'"), "-6");
}

/// Neither what a till read ahead nor what it remembers hides what somebody has changed since.
TEST_F(WaitsTest, AFlagThatSomebodyChangesHoldsForTheNextSale) {
  shop_->sell(saleOf("V1", 2));
  place_.run("UPDATE Articulos SET Restar_Stock = False WHERE Codigo = 'A00'");
  shop_->sell(saleOf("V2", 2));
  EXPECT_EQ(place_.text("SELECT Existencia FROM Articulos WHERE Codigo = 'A00'"), "-6");
  EXPECT_EQ(place_.text("SELECT Existencia FROM Articulos WHERE Codigo = 'A01'"), "-8");
}

TEST_F(WaitsTest, ALineSendsTheSameStatementsOverAFileAndAServer) {
  const auto statementsOf = [&](int lines) {
    place_.statements();
    shop_->sell(saleOf(fmt::format("V{}", lines), lines));
    std::map<std::string, int> kinds;
    for (const std::string& text : place_.statements()) ++kinds[text.substr(0, text.find(' '))];
    return kinds;
  };
  const std::map<std::string, int> three = statementsOf(3);
  std::map<std::string, int> four = statementsOf(4);
  for (const auto& [kind, count] : three) four[kind] -= count;
  EXPECT_EQ(four, (std::map<std::string, int>{{"INSERT", 2}, {"SELECT", 5}, {"UPDATE", 2}}));
}

TEST_F(WaitsTest, WhatIsAskedAheadIsToldByTheTraceWhenItIsRead) {
  main_->BeginTrans();
  const Statement statement("SELECT Codigo FROM Cajas");
  bool wasAsked = false;
  {
    ReadAhead ahead(main_);
    ahead.ask([&] {
      wasAsked = true;
      EXPECT_FALSE(main_->anyRow(statement));
    });
    EXPECT_EQ(wasAsked, test::runsOnServer()) << "nothing is read ahead of a file";
    EXPECT_TRUE(place_.statements().empty());
    EXPECT_TRUE(main_->anyRow(statement));
  }
  EXPECT_EQ(place_.statements().size(), 1U);
  main_->CommitTrans();
}

TEST_F(ServerWaitsTest, AskingEndsWhereItWouldWrite) {
  const Statement insert("INSERT INTO Cajas (Codigo) VALUES ('99')");
  main_->BeginTrans();
  {
    ReadAhead ahead(main_);
    bool wentOn = false;
    ahead.ask([&] {
      main_->Execute(insert);
      wentOn = true;
    });
    ahead.ask([&] {
      main_->Send(insert);
      wentOn = true;
    });
    EXPECT_FALSE(wentOn);
  }
  main_->CommitTrans();
  EXPECT_EQ(place_.text("SELECT Count(*) FROM Cajas WHERE Codigo = '99'"), "0");
}

TEST_F(ServerWaitsTest, ALargestNumberIsAskedAheadWithItsLock) {
  main_->BeginTrans();
  ReadAhead ahead(main_);
  const Statement newest("SELECT MAX(Codigo) AS Ultimo FROM Cierres");
  ahead.ask([&] { EXPECT_TRUE(main_->firstValue(newest, "Ultimo")->isNull()); });
  EXPECT_EQ(waitsOf([&] { main_->firstValue(newest, "Ultimo"); }), 1);
  EXPECT_EQ(waitsOf([&] { main_->firstValue(newest, "Ultimo"); }), 0);
  main_->CommitTrans();
}

TEST_F(ServerWaitsTest, ASecondReadAheadLeavesTheAnswersOfTheFirst) {
  main_->BeginTrans();
  ReadAhead ahead(main_);
  const Statement statement("SELECT Codigo FROM Cajas");
  ahead.ask([&] { main_->anyRow(statement); });
  {
    ReadAhead second(main_);
    second.ask([&] { FAIL() << "the first one has answers"; });
  }
  main_->anyRow(Statement("SELECT Codigo FROM Tipos_Impuesto"));
  EXPECT_EQ(waitsOf([&] { EXPECT_TRUE(main_->anyRow(statement)); }), 0);
  main_->CommitTrans();
}

}  // namespace
}  // namespace tavelor::flows
