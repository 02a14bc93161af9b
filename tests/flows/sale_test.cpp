// SPDX-License-Identifier: MIT
// Money of a sale.
#include "tavelor/flows/sale.hpp"

#include <gtest/gtest.h>

namespace tavelor::flows {
namespace {

SaleLine line(double quantity, double price) {
  SaleLine result;
  result.quantity = quantity;
  result.price = price;
  return result;
}

TEST(Sale, HalfACentGoesAwayFromZeroOnTheDecimalDigits) {
  EXPECT_EQ(line(1.005, 1).amount(), 1.01);
  EXPECT_EQ(line(-1.005, 1).amount(), -1.01);
  EXPECT_EQ(line(0.335, 7.9).amount(), 2.65);
}

TEST(Sale, TotalIsTheSumOfTheRoundedLinesToTheCent) {
  Sale sale;
  for (int i = 0; i < 30; ++i) sale.lines.push_back(line(1, 0.1));
  EXPECT_EQ(sale.total(), 3.0);
  sale.lines.push_back(line(-0.335, 7.9));
  EXPECT_EQ(sale.total(), 0.35);
}

TEST(Sale, ReturnOfTheWholeTicketIsNegative) {
  Sale sale;
  sale.lines.push_back(line(-2, 4.95));
  EXPECT_EQ(sale.total(), -9.9);
}

}  // namespace
}  // namespace tavelor::flows
