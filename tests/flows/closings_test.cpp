// SPDX-License-Identifier: MIT
// What a till has to close, what is counted then, and lists of tickets and closings.
#include "tavelor/flows/closings.hpp"

#include <cmath>
#include <future>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/flows/receipt.hpp"
#include "tavelor/flows/tickets.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::flows {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

class ClosingsTest : public ::testing::Test {
 protected:
  test::Shop place_;
  OpenedShop opened_;
  Shop shop_;
};

TEST_F(ClosingsTest, ACountIsKeptWithWhatWasMissing) {
  shop_.sell(saleOf("V1"));  // 1.38 in cash
  EXPECT_DOUBLE_EQ(tillDay("01", kDay).expected, 1.38);
  const auto closing = shop_.close("01", kDay, {.counted = 1.30, .by = "7"});
  ASSERT_TRUE(closing);
  const auto stored = findClosing(closing->number);
  ASSERT_TRUE(stored && stored->count);
  EXPECT_DOUBLE_EQ(stored->count->expected, 1.38);
  EXPECT_DOUBLE_EQ(stored->count->counted, 1.30);
  EXPECT_DOUBLE_EQ(stored->count->difference, -0.08);
  EXPECT_EQ(stored->count->by, "7");
  EXPECT_EQ(stored->count->moment.dayOnly(), Date(kDay.days() + 1));
  EXPECT_DOUBLE_EQ(stored->end, 1.38) << "the balance is that of the book";
  EXPECT_EQ(stored->tickets, 1U);
  EXPECT_THAT(slipText(1), Contains("Diferencia               -0,08"));
}

TEST_F(ClosingsTest, WhatWasMissingOnceIsNotMissingAgain) {
  shop_.sell(saleOf("V1"));
  shop_.close("01", kDay, {.counted = 1.30});
  shop_.sell(saleOf("V2"));
  const TillDay day = tillDay("01", kDay);
  EXPECT_DOUBLE_EQ(day.opening, 1.30);
  EXPECT_DOUBLE_EQ(day.expected, 2.68);
  const auto second = shop_.close("01", kDay, {.counted = 2.68});
  EXPECT_DOUBLE_EQ(findClosing(second->number)->count->difference, 0);
  EXPECT_EQ(findClosing(second->number)->previous, 1);
  EXPECT_FALSE(findClosing(second->number)->isBroken);
  EXPECT_EQ(tillDay("02", kDay).opening, 0) << "another till has its own";
}

TEST_F(ClosingsTest, AClosingThatNobodyCountedTellsNothingOfIt) {
  shop_.sell(saleOf("V1"));
  shop_.close("01", kDay);
  EXPECT_FALSE(findClosing(1)->count);
  EXPECT_THAT(slipText(1), ::testing::Not(Contains(HasSubstr("Arqueo"))));
  EXPECT_FALSE(shop_.close("01", kDay, {.counted = 5})) << "nothing is open";
  EXPECT_FALSE(findClosing(1)->count);
}

TEST_F(ClosingsTest, WhatIsNoAmountIsRefusedAndNothingClosed) {
  shop_.sell(saleOf("V1"));
  for (const double counted :
       {std::nan(""), std::numeric_limits<double>::infinity(), 1e300, 0.001, -1.0}) {
    EXPECT_EQ(test::errorOf([&] { shop_.close("01", kDay, {.counted = counted}); }), 5) << counted;
  }
  EXPECT_EQ(test::errorOf([&] { shop_.close("01", kDay, {1, std::string(21, 'x')}); }), 5);
  EXPECT_FALSE(findClosing(1));
  EXPECT_EQ(tillDay("01", kDay).tickets, 1U);
}

TEST_F(ClosingsTest, OfTwoAtOnceOneClosesAndOneFindsNothing) {
  shop_.sell(saleOf("V1"));
  const auto closes = [&] {
    Apartment apartment(place_.installationPtr());
    apartment.clock().fix(Date(kDay.days() + 1));
    return Shop().close("01", kDay, {.counted = 1.38}).has_value();
  };
  auto one = std::async(std::launch::async, closes);
  auto other = std::async(std::launch::async, closes);
  EXPECT_EQ(int{one.get()} + int{other.get()}, 1);
  EXPECT_EQ(listClosings({}).total, 1U);
  EXPECT_TRUE(findClosing(1)->count);
}

TEST_F(ClosingsTest, AreListedByTillAndDayLatestFirst) {
  shop_.sell(saleOf("V1", "01"));
  shop_.sell(saleOf("V2", "02"));
  shop_.close("01", kDay);
  shop_.close("02", kDay, {.counted = 2});
  const ClosingList all = listClosings({});
  ASSERT_EQ(all.rows.size(), 2U);
  EXPECT_EQ(all.rows[0].number, 2);
  EXPECT_TRUE(all.rows[0].count);
  EXPECT_FALSE(all.rows[1].count);
  EXPECT_EQ(listClosings({.till = "01"}).rows[0].number, 1);
  EXPECT_EQ(listClosings({.from = Date(kDay.days() + 1)}).total, 0U);
  EXPECT_EQ(listClosings({.to = kDay}).total, 2U);
  EXPECT_EQ(listClosings({.offset = 1}).rows.size(), 1U);
  EXPECT_EQ(findClosing("02", kDay)->number, 2);
  EXPECT_FALSE(findClosing("03", kDay));
}

TEST_F(ClosingsTest, TicketsAreFoundLiveAndInHistory) {
  Sale named = saleOf("V1");
  named.name = "Ferretería 50% [Sol]";
  shop_.sell(named);
  shop_.sell(saleOf("V2", "02"));
  shop_.close("01", kDay);
  EXPECT_EQ(listTickets({}).total, 2U);
  EXPECT_EQ(listTickets({}).rows[0].number, 2);
  EXPECT_EQ(listTickets({.limit = 1}).rows.size(), 1U);
  EXPECT_EQ(listTickets({.offset = 5}).rows.size(), 0U);
  EXPECT_EQ(listTickets({.till = "01"}).rows[0].closing, 1);
  EXPECT_EQ(listTickets({.words = "2"}).rows[0].reference, "V2");
  EXPECT_EQ(listTickets({.words = "50% [Sol"}).rows[0].reference, "V1");
  EXPECT_EQ(listTickets({.words = "V2"}).total, 1U);
  EXPECT_EQ(listTickets({.words = "' OR 1=1 --"}).total, 0U);
  EXPECT_EQ(listTickets({.from = Date(kDay.days() + 1)}).total, 0U);
  EXPECT_EQ(findTicket("V1")->number, 1);
  EXPECT_EQ(findTicketRow("V2")->till, "02");
  EXPECT_FALSE(findTicketRow("V3"));
  EXPECT_FALSE(findTicket(7));
}

TEST_F(ClosingsTest, ATicketTellsItsReturnsAndWhatIsLeftOfEachLine) {
  Sale sale = saleOf("V1");
  sale.lines.pop_back();
  shop_.sell(sale);
  Return some = returnOf(1);
  some.lines = {{1, 0.5}};
  shop_.takeBack(some);
  const auto ticket = findTicket(1);
  ASSERT_EQ(ticket->lines.size(), 1U);
  EXPECT_EQ(ticket->lines[0].returned, 0.5);
  EXPECT_THAT(ticket->returns, ElementsAre(2));
  EXPECT_FALSE(ticket->returnOf);
  EXPECT_EQ(findTicket(2)->returnOf, 1);
}

TEST_F(ClosingsTest, AReturnAskedForAgainIsMadeOnce) {
  Sale sale = saleOf("V1");
  sale.lines[0].quantity = 5;
  sale.lines.pop_back();
  shop_.sell(sale);
  Return some = returnOf(1);
  some.lines = {{1, 2}};
  some.earlier = 0;
  const Returned first = shop_.takeBackSafely(some);
  EXPECT_FALSE(first.wasThere);
  some.day = Date(kDay.days() + 1);  // the answer was lost over midnight
  const Returned again = shop_.takeBackSafely(some);
  EXPECT_TRUE(again.wasThere);
  EXPECT_EQ(again.ticket, first.ticket);
  some.lines = {{1, 1}};
  try {
    shop_.takeBackSafely(some);
    FAIL() << "another one has come back meanwhile";
  } catch (const RefusedSale& refused) {
    EXPECT_TRUE(refused.isConflict());
  }
  some.earlier = 1;
  EXPECT_FALSE(shop_.takeBackSafely(some).wasThere);
  some.earlier = 7;
  EXPECT_EQ(test::errorOf([&] { shop_.takeBackSafely(some); }), 5);
  EXPECT_EQ(findTicket(1)->lines[0].returned, 3);
}

TEST_F(ClosingsTest, OfTwoReturnsAtOnceTheSameIsMadeOnce) {
  Sale sale = saleOf("V1");
  sale.lines.pop_back();
  shop_.sell(sale);
  const auto takesBack = [&] {
    Apartment apartment(place_.installationPtr());
    apartment.clock().fix(Date(kDay.days() + 1));
    Return all = returnOf(1);
    all.earlier = 0;
    return Shop().takeBackSafely(all);
  };
  auto one = std::async(std::launch::async, takesBack);
  auto other = std::async(std::launch::async, takesBack);
  const Returned a = one.get(), b = other.get();
  EXPECT_EQ(a.ticket, b.ticket);
  EXPECT_NE(a.wasThere, b.wasThere);
  EXPECT_EQ(listTickets({}).total, 2U);
}

}  // namespace
}  // namespace tavelor::flows
