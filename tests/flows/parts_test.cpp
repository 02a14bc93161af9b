// SPDX-License-Identifier: MIT
// Sales that are paid in several ways: what is stored of them, closed, told and given back.
#include <functional>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/flows/closings.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/tickets.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::flows {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int kMain = 1;
constexpr int kDocuments = 3;

/// Ten pieces at 5 euros: 20 in cash and 30 by card.
Sale mixedSale(std::string reference, std::string till = "01") {
  Sale sale = saleOf(std::move(reference), std::move(till));
  sale.lines = {
      {.code = "PAN", .description = "Barra", .family = "PAN", .quantity = 10, .price = 5}};
  sale.payment = "2";
  sale.parts = {{"1", 20}, {"2", 30}};
  return sale;
}

std::vector<std::string> texts(const std::vector<PaymentPart>& parts) {
  std::vector<std::string> all;
  for (const PaymentPart& part : parts) {
    all.push_back(part.payment + ":" + std::to_string(std::lround(part.amount * 100)));
  }
  return all;
}

class PartsTest : public ::testing::Test {
 protected:
  std::string main(const std::string& statement) { return place_.text(statement, kMain); }
  std::string documents(const std::string& statement) { return place_.text(statement, kDocuments); }
  std::string faultOf(const Sale& sale) {
    try {
      shop_.sell(sale);
    } catch (const RefusedSale& refused) {
      return refused.faults().front().reason;
    }
    return {};
  }
  std::string paid(const std::string& method) {
    return main("SELECT Sum(Importe) FROM Cierres_Formas_Pago WHERE Forma_Pago = '" + method + "'");
  }

  test::Shop place_;
  OpenedShop opened_;
  Shop shop_;
};

TEST_F(PartsTest, AreStoredBesideTheTicketAndSplitTheClosing) {
  shop_.sell(mixedSale("M1"));
  shop_.sell(saleOf("V1"));
  EXPECT_EQ(documents("SELECT Forma_Pago FROM Tickets WHERE Numero = 1"), "2");
  EXPECT_THAT(texts(findTicket(1)->parts), ElementsAre("1:2000", "2:3000"));
  const TillDay open = tillDay("01", kDay);
  EXPECT_EQ(open.tickets, 2U);
  EXPECT_DOUBLE_EQ(open.total, 51.38);
  EXPECT_DOUBLE_EQ(open.expected, 21.38);

  const auto closing = shop_.close("01", kDay);
  EXPECT_DOUBLE_EQ(closing->total, 51.38);
  EXPECT_EQ(paid("1"), "21,38");
  EXPECT_EQ(paid("2"), "30");
  EXPECT_EQ(main("SELECT Saldo_Final FROM Cierres"), "21,38") << "cash alone goes into the drawer";
  EXPECT_THAT(texts(findTicket(1)->parts), ElementsAre("1:2000", "2:3000")) << "in history too";
}

TEST_F(PartsTest, ChangeIsGivenOfTheCashThatWasHandedOver) {
  Sale sale = mixedSale("M1");
  sale.delivered = 25;
  shop_.sell(sale);
  EXPECT_EQ(findTicket(1)->delivered, 55);
  EXPECT_EQ(findTicket(1)->change, 5);
}

TEST_F(PartsTest, AClosingWithThemReconciles) {
  const std::vector<Sale> sales = {mixedSale("M1"), saleOf("V1"), mixedSale("M2")};
  for (const Sale& sale : sales) shop_.sell(sale);
  shop_.close("01", kDay);
  Reconciliation reconciliation;
  for (const Sale& sale : sales) reconciliation.expect(sale);
  reconciliation.compare();
  EXPECT_TRUE(reconciliation.differences().empty());
  EXPECT_FALSE(shop_.recoverAll().hasMended());
}

TEST_F(PartsTest, TheSameSaleAgainIsNotSoldAndOneOfOtherPartsIsAConflict) {
  shop_.sell(mixedSale("M1"));
  EXPECT_EQ(shop_.sell(mixedSale("M1")), std::nullopt);
  Sale other = mixedSale("M1");
  other.parts = {{"1", 25}, {"2", 25}};
  try {
    shop_.sell(other);
    FAIL();
  } catch (const RefusedSale& refused) {
    EXPECT_TRUE(refused.isConflict());
    EXPECT_THAT(refused.faults().front().reason, HasSubstr("paid otherwise"));
  }
  other.parts.clear();
  EXPECT_THAT(faultOf(other), HasSubstr("paid otherwise"));
}

TEST_F(PartsTest, WhatDoesNotAddUpIsRefused) {
  const auto with = [&](std::vector<PaymentPart> parts) {
    Sale sale = mixedSale("M1");
    sale.parts = std::move(parts);
    return faultOf(sale);
  };
  EXPECT_EQ(with({{"1", 20}, {"2", 29.99}}), "its parts are 49.99, and it comes to 50.00");
  EXPECT_EQ(with({{"1", 60}, {"2", -10}}), "the part paid by 2 has not the sign of the sale");
  EXPECT_EQ(with({{"1", 50}, {"2", 0}}), "the part paid by 2 is 0");
  EXPECT_EQ(with({{"1", 20.001}, {"2", 29.999}}), "the part paid by 1 is no whole cents");
  EXPECT_EQ(with({{"2", 20}, {"2", 30}}), "the part paid by 2 comes twice");
  EXPECT_EQ(with({{"9", 20}, {"2", 30}}), "the shop has no payment method 9");
  EXPECT_EQ(with({{"4", 20}, {"2", 30}}),
            "the part paid by 4 is on credit, which only a whole sale can be");
  EXPECT_EQ(with({{"1", 50}}), "no part is paid by 2, the sale's own payment method");
  EXPECT_EQ(with({{"1", std::numeric_limits<double>::quiet_NaN()}, {"2", 30}}),
            "the part paid by 1 is no amount");
  EXPECT_EQ(with({{"1", std::numeric_limits<double>::infinity()}, {"2", 30}}),
            "the part paid by 1 is no amount");
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "0");
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets_Pagos"), "0");
}

TEST_F(PartsTest, ComeBackInTheWaysInWhichTheyWerePaid) {
  shop_.sell(mixedSale("M1"));
  Return some = returnOf(1);
  some.lines = {{1, 2}};
  const double first = shop_.takeBack(some);  // 10 euros, by the ticket's own
  EXPECT_EQ(findTicket(first)->payment, "2");
  EXPECT_THAT(findTicket(first)->parts, IsEmpty());
  some.payment = "1";
  shop_.takeBack(some);                             // 10 euros, in cash
  const double rest = shop_.takeBack(returnOf(1));  // 30 euros: 20 of the card are left, 10 of cash
  EXPECT_THAT(texts(findTicket(rest)->parts), ElementsAre("2:-2000", "1:-1000"));
  shop_.close("01", kDay);
  EXPECT_EQ(paid("1"), "0");
  EXPECT_EQ(paid("2"), "0");
}

TEST_F(PartsTest, AreToldByTheReceiptAndItsPage) {
  shop_.sell(mixedSale("M1"));
  EXPECT_THAT(ticketText(1), Contains(HasSubstr("20,00")));
  EXPECT_THAT(ticketText(1), Contains(HasSubstr("30,00")));
  EXPECT_THAT(ticketPage(1, Paper::k80), HasSubstr("30,00"));
}

using PartsLivesTest = LivesTest;

TEST_F(PartsLivesTest, ADeathInASaleLosesNone) {
  TAVELOR_ONLY_IN_FILES("a program dies between the commits of two files, and a server has one");
  live([] { Shop().sell(mixedSale("M1")); });
  loseIn("main.db", [](Shop& shop) { shop.sell(mixedSale("M2")); });
  live([&] {
    Shop shop;
    EXPECT_EQ(shop.sell(mixedSale("M2")), std::nullopt);
    shop.close("01", kDay);
    EXPECT_EQ(findClosing(1)->end, 40);
    EXPECT_THAT(differences({mixedSale("M1"), mixedSale("M2")}), IsEmpty());
  });
}

TEST_F(PartsLivesTest, AClosingIsWrittenAgainWithThem) {
  TAVELOR_ONLY_IN_FILES("a file is put back, and a server has none");
  live([] { Shop().sell(mixedSale("M1")); });
  loseIn("main.db", [](Shop& shop) { shop.close("01", kDay, CashCount{20, "7"}); });
  live([&] {
    Shop shop;
    EXPECT_THAT(shop.recover().rewritten, ElementsAre(1));
    const auto closing = findClosing(1);
    ASSERT_EQ(closing->payments.size(), 2U);
    EXPECT_EQ(closing->payments[0].amount, 20);
    EXPECT_EQ(closing->payments[1].amount, 30);
    EXPECT_EQ(closing->end, 20);
    EXPECT_FALSE(closing->count) << "the count is lost with the closing";
  });
}

}  // namespace
}  // namespace tavelor::flows
