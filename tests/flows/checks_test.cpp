// SPDX-License-Identifier: MIT
// What is not sold, and what it is told.
#include <cmath>
#include <functional>
#include <limits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/flows/lives.hpp"

namespace tavelor::flows {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

constexpr int kMain = 1;
constexpr int kDocuments = 3;

class SaleChecksTest : public ::testing::Test {
 protected:
  /// "line 2: why" for each fault; nothing for a sale that is taken.
  std::vector<std::string> faultsOf(const Sale& sale) {
    try {
      shop_.sell(sale);
    } catch (const RefusedSale& refused) {
      EXPECT_EQ(refused.number(), errors::kInvalidCall);
      std::vector<std::string> told;
      for (const SaleFault& fault : refused.faults()) {
        told.push_back(fault.line == 0
                           ? fault.reason
                           : "line " + std::to_string(fault.line) + ": " + fault.reason);
      }
      return told;
    }
    return {};
  }
  /// Of a sale whose one line was changed.
  std::vector<std::string> faultsOfLine(const std::function<void(SaleLine&)>& change) {
    Sale sale = saleOf("L");
    sale.lines.resize(1);
    change(sale.lines.front());
    return faultsOf(sale);
  }
  std::vector<std::string> faultsOfSale(const std::function<void(Sale&)>& change) {
    Sale sale = saleOf("S");
    change(sale);
    return faultsOf(sale);
  }
  std::string main(const std::string& statement) { return place_.text(statement, kMain); }
  std::string documents(const std::string& statement) { return place_.text(statement, kDocuments); }

  test::Shop place_;
  OpenedShop opened_;  // before there is a till to sell at
  Shop shop_;
};

TEST_F(SaleChecksTest, EverythingThatIsWrongIsToldAtOnceAndNothingIsLeft) {
  Sale sale = saleOf("V1", "99");
  sale.day = Date();
  sale.payment = "77";
  sale.lines[0].quantity = 0;
  sale.lines[1].tax = 7;
  EXPECT_THAT(faultsOf(sale),
              ElementsAre("the day is missing", "the shop has no till 99, only 001, 01, 02",
                          "the shop has no payment method 77", "line 1: the quantity is 0",
                          "line 2: the shop has no tax of 7 %, only 21, 10, 4, 0"));
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "0");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos"), "0");
}

TEST_F(SaleChecksTest, TheErrorNamesTheSaleAndEachLine) {
  Sale sale = saleOf("V1");
  sale.lines[1].price = -1;
  try {
    shop_.sell(sale);
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.description(), "Sale V1 is refused: line 2, LECHE: the price is negative.");
  }
}

TEST_F(SaleChecksTest, ADayIsThereAndPlausibleAndNotInTheFuture) {
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.day = Date::of(1979, 12, 31); }),
              ElementsAre("the day lies before 1980"));
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.day = Date::of(2026, 11, 22); }),
              ElementsAre("the day lies in the future: 2026-11-22"));
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.day = Date(kDay.days() + 0.5); }),
              ElementsAre("the day has a time in it"));
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.time = "soon"; }),
              ElementsAre("the time is none: soon"));
}

TEST_F(SaleChecksTest, ATillAPaymentOrATaxThatAnotherProgramAddsIsSeen) {
  EXPECT_THAT(faultsOf(saleOf("V1", "07")), ElementsAre(HasSubstr("no till 07")));
  place_.run("INSERT INTO Cajas (Codigo) VALUES ('07')");
  place_.run("INSERT INTO Formas_Pago (codigo, Descripcion) VALUES ('7', 'Vale')");
  place_.run("INSERT INTO Tipos_Impuesto (Codigo, Impuesto) VALUES ('7', 7.5)");
  Sale sale = saleOf("V1", "07");
  sale.payment = "7";
  sale.lines[0].tax = 7.5;
  EXPECT_THAT(faultsOf(sale), IsEmpty());
}

TEST_F(SaleChecksTest, WhatIsMissingIsTold) {
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.reference.clear(); }),
              ElementsAre("it has no reference of its own"));
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.till.clear(); }),
              ElementsAre("the till is missing"));
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.payment.clear(); }),
              ElementsAre("the payment method is missing"));
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.lines.clear(); }), ElementsAre("it has no lines"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.code.clear(); }),
              ElementsAre("line 1: the code is empty"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.wantsPrice = true; }),
              ElementsAre("line 1: there is no price"));
}

TEST_F(SaleChecksTest, NumbersAreNumbersOfASizeAndASign) {
  const double inf = std::numeric_limits<double>::infinity();
  EXPECT_THAT(faultsOfLine([&](SaleLine& line) { line.quantity = inf; }),
              ElementsAre("line 1: the quantity is no number"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.quantity = 2e9; }),
              ElementsAre("line 1: the quantity is too large"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.price = std::nan(""); }),
              ElementsAre("line 1: the price is no number"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.price = 0; }),
              ElementsAre("line 1: the price is 0"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.quantity = line.price = 1e6; }),
              ElementsAre("line 1: the amount is too large"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.tax = -4; }),
              ElementsAre("line 1: the tax is negative"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.discount = -1; }),
              ElementsAre("line 1: the discount is negative"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.discount = 101; }),
              ElementsAre("line 1: the discount is more than 100 %"));
  EXPECT_THAT(faultsOfSale([&](Sale& sale) { sale.delivered = inf; }),
              ElementsAre("what was handed over is no amount"));
}

TEST_F(SaleChecksTest, TextsFitTheirColumns) {
  EXPECT_THAT(faultsOfSale([](Sale& sale) { sale.customer = std::string(21, 'C'); }),
              ElementsAre("the customer has more than 20 characters"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.code = std::string(21, 'C'); }),
              ElementsAre("line 1: the code has more than 20 characters"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.family = std::string(11, 'C'); }),
              ElementsAre("line 1: the family has more than 10 characters"));
  EXPECT_THAT(faultsOfLine([](SaleLine& line) { line.family = "Panadería"; }), IsEmpty());
}

TEST_F(SaleChecksTest, WhatIsFreeOnPurposeMayCostNothing) {
  EXPECT_THAT(faultsOfLine([](SaleLine& line) {
                line.price = 0;
                line.isFree = true;
              }),
              IsEmpty());
}

TEST_F(SaleChecksTest, AReferenceOfAnotherSaleIsRefusedAndItsOwnerTold) {
  shop_.sell(saleOf("V1"));
  EXPECT_THAT(faultsOf(saleOf("V1")), IsEmpty()) << "the very same sale again";
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "1");
  constexpr const char* kOwner =
      "its reference is that of ticket A/1, sold at till 01 on 2026-11-20, ";
  const auto faultOfOther = [&](const std::function<void(Sale&)>& change) {
    Sale other = saleOf("V1");
    change(other);
    return faultsOf(other);
  };
  for (int round = 0; round < 2; ++round) {
    EXPECT_THAT(faultOfOther([](Sale& sale) { sale.till = "02"; }),
                ElementsAre(std::string(kOwner) + "another till"));
    EXPECT_THAT(faultOfOther([](Sale& sale) { sale.day = Date::of(2026, 11, 19); }),
                ElementsAre(std::string(kOwner) + "another day"));
    EXPECT_THAT(faultOfOther([](Sale& sale) { sale.customer = "17"; }),
                ElementsAre(std::string(kOwner) + "to another customer"));
    EXPECT_THAT(faultOfOther([](Sale& sale) { sale.payment = "2"; }),
                ElementsAre(std::string(kOwner) + "paid otherwise"));
    EXPECT_THAT(faultOfOther([](Sale& sale) { sale.lines.front().quantity = 3; }),
                ElementsAre(std::string(kOwner) + "with other lines"));
    EXPECT_THAT(faultOfOther([](Sale& sale) { sale.lines.pop_back(); }),
                ElementsAre(std::string(kOwner) + "with other lines"));
    shop_.close("01", kDay);  // and in history
  }
}

// ---------------------------------------------------------------------------------------------
// Credit

class CreditChecksTest : public SaleChecksTest {
 protected:
  CreditChecksTest() {
    Sale first = credit("FIRST");
    shop_.sell(first);  // makes the customer, who owes 1.38 and may owe 9000
  }
  static Sale credit(std::string reference) {
    Sale sale = saleOf(std::move(reference));
    sale.customer = "C1";
    sale.payment = "4";
    return sale;
  }
};

TEST_F(CreditChecksTest, CreditBeyondTheLimitIsRefusedUnlessItIsGranted) {
  place_.run("UPDATE Clientes SET Riesgo = 2.76 WHERE Codigo = 'C1'");
  EXPECT_THAT(faultsOf(credit("V1")), IsEmpty()) << "to the cent";
  EXPECT_THAT(faultsOf(credit("V2")),
              ElementsAre("customer C1 owes 2.76, and with 1.38 more goes beyond 2.76"));
  Sale cash = credit("V3");
  cash.payment = "1";
  EXPECT_THAT(faultsOf(cash), IsEmpty());
  Sale granted = credit("V4");
  granted.isCreditGranted = true;
  EXPECT_THAT(faultsOf(granted), IsEmpty());
}

TEST_F(CreditChecksTest, WhoIsBlockedOrNotInUsePaysOrIsGranted) {
  place_.run("UPDATE Clientes SET Bloqueo = True WHERE Codigo = 'C1'");
  EXPECT_THAT(faultsOf(credit("V1")), ElementsAre("customer C1 is blocked, and gets no credit"));
  place_.run("UPDATE Clientes SET Bloqueo = False, Activo = 2 WHERE Codigo = 'C1'");
  EXPECT_THAT(faultsOf(credit("V1")), ElementsAre("customer C1 is not in use, and gets no credit"));
  Sale granted = credit("V1");
  granted.isCreditGranted = true;
  EXPECT_THAT(faultsOf(granted), IsEmpty());
}

TEST_F(CreditChecksTest, ReturnsAndACustomerWithoutALimitAreAlwaysTaken) {
  place_.run("UPDATE Clientes SET Riesgo = 0 WHERE Codigo = 'C1'");
  Sale back = credit("V1");
  for (SaleLine& line : back.lines) line.quantity = -line.quantity;
  EXPECT_THAT(faultsOf(back), IsEmpty());
  EXPECT_THAT(faultsOf(credit("V2")), ElementsAre(HasSubstr("goes beyond 0.00")));
  place_.run("UPDATE Clientes SET Riesgo = Null WHERE Codigo = 'C1'");
  EXPECT_THAT(faultsOf(credit("V2")), IsEmpty());
}

}  // namespace
}  // namespace tavelor::flows
