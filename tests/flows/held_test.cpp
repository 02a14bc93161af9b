// SPDX-License-Identifier: MIT
// Sales that wait: held once, taken once.
#include "tavelor/flows/held.hpp"

#include <future>

#include <gtest/gtest.h>

#include "tests/flows/lives.hpp"

namespace tavelor::flows {
namespace {

class HeldTest : public ::testing::Test {
 protected:
  static HeldSale saleBy(std::string key) {
    HeldSale sale;
    sale.key = std::move(key);
    sale.till = "01";
    sale.employee = "7";
    sale.label = "Señora del perro";
    sale.content = R"({"lines":[{"code":"O'Hara's \"PAN\"","quantity":2}]})";
    return sale;
  }

  test::Shop place_;
  OpenedShop opened_;
};

TEST_F(HeldTest, WaitsAsItWasSentAndIsHeldOnceByItsKey) {
  const double id = holdSale(saleBy("K1"));
  EXPECT_EQ(holdSale(saleBy("K1")), id);
  const auto all = heldSales();
  ASSERT_EQ(all.size(), 1U);
  EXPECT_EQ(all[0].id, id);
  EXPECT_EQ(all[0].label, "Señora del perro");
  EXPECT_EQ(all[0].content, saleBy("").content);
  HeldSale other = saleBy("K1");
  other.content = "{}";
  EXPECT_NE(holdSale(other), id);
  ASSERT_EQ(heldSales().size(), 1U);
  EXPECT_EQ(heldSales()[0].content, "{}");
  EXPECT_FALSE(takeHeldSale(id, "till 1"));
}

TEST_F(HeldTest, WaitsAgainWhereItIsPutAsideOnceMore) {
  const double id = holdSale(saleBy("K1"));
  takeHeldSale(id, "till 1");
  const double again = holdSale(saleBy("K1"));
  EXPECT_NE(again, id);
  EXPECT_TRUE(takeHeldSale(again, "till 2"));
}

TEST_F(HeldTest, IsTakenByOneAndByItAgain) {
  const double id = holdSale(saleBy("K1"));
  EXPECT_EQ(takeHeldSale(id, "till 1")->content, saleBy("").content);
  EXPECT_TRUE(heldSales().empty());
  EXPECT_TRUE(takeHeldSale(id, "till 1")) << "whose answer was lost";
  EXPECT_THROW(takeHeldSale(id, "till 2"), HeldElsewhere);
  EXPECT_FALSE(takeHeldSale(id + 1, "till 1"));
}

TEST_F(HeldTest, OfTwoTillsAtOnceOneGetsIt) {
  const double id = holdSale(saleBy("K1"));
  for (int round = 0; round < 5; ++round) {
    const double next = round == 0 ? id : holdSale(saleBy("R" + std::to_string(round)));
    const auto race = [&](const char* taker) {
      Apartment apartment(place_.installationPtr());
      try {
        return takeHeldSale(next, taker).has_value();
      } catch (const HeldElsewhere&) {
        return false;
      }
    };
    auto one = std::async(std::launch::async, race, "1");
    auto other = std::async(std::launch::async, race, "2");
    EXPECT_EQ(int{one.get()} + int{other.get()}, 1);
  }
  EXPECT_THROW(takeHeldSale(id, "3"), HeldElsewhere);
}

TEST_F(HeldTest, WhatIsTooMuchIsRefused) {
  const auto refuses = [](const HeldSale& sale) {
    return test::errorOf([&] { holdSale(sale); }) == 5;
  };
  HeldSale sale = saleBy("");
  EXPECT_TRUE(refuses(sale)) << "no key";
  sale = saleBy(std::string(51, 'k'));
  EXPECT_TRUE(refuses(sale));
  sale = saleBy("K1");
  sale.label = std::string(101, 'l');
  EXPECT_TRUE(refuses(sale));
  sale = saleBy("K1");
  sale.content = std::string(HeldLimits::kContent + 1, ' ');
  EXPECT_TRUE(refuses(sale));
  EXPECT_EQ(test::errorOf([] { takeHeldSale(1, ""); }), 5);
  EXPECT_TRUE(heldSales().empty());
}

TEST_F(HeldTest, WhatWasTakenLongAgoIsSwept) {
  const double id = holdSale(saleBy("K1"));
  takeHeldSale(id, "till 1");
  Apartment::current().clock().fix(Date(kDay.days() + 10));
  holdSale(saleBy("K2"));
  EXPECT_FALSE(takeHeldSale(id, "till 1"));
  EXPECT_EQ(heldSales().size(), 1U);
}

}  // namespace
}  // namespace tavelor::flows
