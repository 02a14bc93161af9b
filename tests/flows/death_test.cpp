// SPDX-License-Identifier: MIT
// A program that dies between the two commits of a flow, played with the databases themselves: one
// as the flow left it, the other as it was before.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/flows/lives.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::flows {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

using DeathTest = LivesTest;

TEST_F(DeathTest, OfASaleIsMendedByTheSameSaleGivenAgain) {
  TAVELOR_ONLY_IN_FILES("a program dies between the commits of two files, and a server has one");
  live([] { Shop().sell(saleOf("V1")); });
  loseIn("main.db", [](Shop& shop) { shop.sell(saleOf("V2")); });
  live([&] {
    Shop shop;
    EXPECT_EQ(shop.sell(saleOf("V2")), std::nullopt) << "the ticket is there";
    EXPECT_EQ(shop.sell(saleOf("V3")), 3);
    shop.close("01", kDay);
    EXPECT_THAT(differences({saleOf("V1"), saleOf("V2"), saleOf("V3")}), IsEmpty());
  });
}

// Of a period without numbers nobody could tell that a ticket is ahead of the counter. A sale
// stores the counters before it writes; so does one that is refused, which leaves nothing else.
TEST_F(DeathTest, OfTheFirstSaleOfAPeriodIsMended) {
  TAVELOR_ONLY_IN_FILES("a program dies between the commits of two files, and a server has one");
  live([] {
    Sale sale = saleOf("V0");
    sale.payment = "4";  // on credit, and for nobody
    EXPECT_NE(test::errorOf([&] { Shop().sell(sale); }), 0);
  });
  loseIn("main.db", [](Shop& shop) { shop.sell(saleOf("V1")); });
  live([&] {
    Shop shop;
    EXPECT_THAT(shop.recover().sales, ElementsAre(1));
    shop.close("01", kDay);
    EXPECT_THAT(differences({saleOf("V1")}), IsEmpty());
  });
}

TEST_F(DeathTest, OfAClosingIsMendedByTheNextOfAnotherTill) {
  TAVELOR_ONLY_IN_FILES("a program dies between the commits of two files, and a server has one");
  live([] {
    Shop shop;
    shop.sell(saleOf("V1", "01"));
    shop.sell(saleOf("V2", "02"));
  });
  loseIn("documents.db", [](Shop& shop) { shop.close("01", kDay); });
  live([&] {
    Shop shop;
    EXPECT_EQ(shop.close("02", kDay)->number, 1);
    EXPECT_EQ(shop.close("01", kDay)->number, 2);
    EXPECT_THAT(differences({saleOf("V1", "01"), saleOf("V2", "02")}), IsEmpty());
  });
}

TEST_F(DeathTest, OfAClosingThatFinishedASaleLeavesTheSaleFinishedOnce) {
  TAVELOR_ONLY_IN_FILES("a program dies between the commits of two files, and a server has one");
  live([] { Shop().recover(); });  // starts the counters
  loseIn("main.db", [](Shop& shop) { shop.sell(saleOf("V1")); });
  loseIn("documents.db", [](Shop& shop) { shop.close("01", kDay); });
  live([&] {
    Shop shop;
    const Recovered recovered = shop.recover();
    EXPECT_THAT(recovered.sales, IsEmpty());
    EXPECT_THAT(recovered.closings, ElementsAre(1));
    EXPECT_EQ(shop.close("01", kDay)->number, 1);
    EXPECT_THAT(differences({saleOf("V1")}), IsEmpty());
  });
}

}  // namespace
}  // namespace tavelor::flows
