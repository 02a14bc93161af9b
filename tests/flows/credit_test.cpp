// SPDX-License-Identifier: MIT
// Customers at the till: who is made, what is owed, and at what price they buy.
#include <future>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/customers/clientes.hpp"
#include "tavelor/customers/clientes_apuntes_conta.hpp"
#include "tavelor/flows/account.hpp"
#include "tavelor/flows/customers.hpp"
#include "tavelor/flows/payments.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::flows {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

constexpr int kMain = 1;
constexpr int kDocuments = 3;

Sale creditSale(std::string reference, std::string customer, std::string till = "01") {
  Sale sale = saleOf(std::move(reference), std::move(till));
  sale.customer = std::move(customer);
  sale.payment = "4";
  return sale;
}

SaleLine open(std::string code, double quantity = 1) {
  return {.code = std::move(code),
          .description = {},
          .family = {},
          .quantity = quantity,
          .tax = kTaxOfArticle,
          .wantsPrice = true};
}

class CreditTest : public ::testing::Test {
 protected:
  CreditTest() { openShop(); }

  std::string main(const std::string& statement) { return place_.text(statement, kMain); }
  std::string documents(const std::string& statement) { return place_.text(statement, kDocuments); }
  double balance(const std::string& customer) {
    return ClsClientesApuntesConta().Saldo_actual(customer);
  }

  test::Shop place_;
};

TEST_F(CreditTest, ASaleMakesItsCustomerOnce) {
  Shop shop;
  Sale sale = saleOf("V1");
  sale.customer = "O'Hara";
  sale.place = "Lleida";
  shop.sell(sale);
  sale.reference = "V2";
  shop.sell(sale);
  EXPECT_EQ(main("SELECT Count(*) FROM Clientes WHERE Codigo = \"O'Hara\" AND Razon_Social = "
                 "\"O'Hara\" AND Provincia = 'Lleida' AND Activo = -1 AND Tarifa = 'A'"),
            "1");
  EXPECT_EQ(main("SELECT Count(*) FROM Clientes_Apuntes_Contables"), "0") << "nothing on credit";
}

TEST_F(CreditTest, WhatIsSoldOnCreditIsOwedAndTakesNoMoney) {
  Shop shop;
  Sale sale = creditSale("V1", "C1");
  sale.delivered = 50;
  shop.sell(sale);
  EXPECT_EQ(balance("C1"), -1.38);
  EXPECT_EQ(main("SELECT Concepto FROM Clientes_Apuntes_Contables WHERE Estado = 1 AND Documento_E "
                 "= 1 AND Debe_Haber = 'D' AND Codigo = 'C1'"),
            "Ticket A/1");
  EXPECT_EQ(documents("SELECT Entrega + Cambio + Estado FROM Tickets"), "0");
}

TEST_F(CreditTest, AReturnOnCreditGivesBackWhatIsOwed) {
  Shop shop;
  shop.sell(creditSale("V1", "C1"));
  Sale back = creditSale("V2", "C1");
  for (SaleLine& line : back.lines) line.quantity = -line.quantity;
  shop.sell(back);
  EXPECT_EQ(balance("C1"), 0);
  EXPECT_EQ(main("SELECT Debe_Haber FROM Clientes_Apuntes_Contables WHERE Documento_E = 2"), "H");
}

TEST_F(CreditTest, ASaleOfNothingOnCreditMakesNoEntry) {
  Shop shop;
  Sale sale = creditSale("V1", "C1");
  sale.lines = {sale.lines.front(), sale.lines.front()};
  sale.lines.back().quantity = -2;
  shop.sell(sale);
  EXPECT_EQ(main("SELECT Count(*) FROM Clientes_Apuntes_Contables"), "0");
}

TEST_F(CreditTest, NobodyAndTheWalkInCustomerGetNoCredit) {
  Shop shop;
  for (const std::string customer : {"", "00000"}) {
    EXPECT_EQ(test::errorOf([&] { shop.sell(creditSale("V1", customer)); }), 5);
  }
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "0");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos"), "0");
}

TEST_F(CreditTest, ASaleWhoseEntryCannotBeWrittenLeavesNothing) {
  place_.run("INSERT INTO Clientes_Apuntes_Contables (Id, Codigo) VALUES (2147483647, 'X')");
  Shop shop;
  EXPECT_NE(test::errorOf([&] { shop.sell(creditSale("V1", "C1")); }), 0);
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "0");
  EXPECT_EQ(main("SELECT Count(*) FROM Articulos_Movimientos_Almacen"), "0");
  EXPECT_EQ(main("SELECT Count(*) FROM Clientes WHERE Codigo = 'C1'"), "0");
  Sale cash = creditSale("V1", "C1");
  cash.payment = "1";
  EXPECT_EQ(shop.sell(cash), 1) << "the customer is made now";
  EXPECT_EQ(main("SELECT Count(*) FROM Clientes WHERE Codigo = 'C1'"), "1");
}

TEST_F(CreditTest, TwentyTillsOnOneAccountLeaveEveryBalanceRight) {
  constexpr int kTills = 20, kSales = 5;
  std::vector<std::future<void>> tills;
  for (int till = 0; till < kTills; ++till) {
    tills.push_back(std::async(std::launch::async, [this, till] {
      Apartment apartment(place_.installationPtr());
      apartment.clock().fix(kDay);
      Shop shop;
      shop.openTills({std::to_string(till)});
      for (int i = 0; i < kSales; ++i) {
        const std::string name = std::to_string(till);
        Sale sale = creditSale(name + "-" + std::to_string(i), "C1", name);
        sale.day = Date(kDay.days() - (till + i) % 3);
        shop.sell(sale);
      }
    }));
  }
  for (std::future<void>& till : tills) EXPECT_NO_THROW(till.get());
  const LedgerCheck check = checkLedger(LedgerOf::kCustomers);
  EXPECT_EQ(check.entries, kTills * kSales);
  EXPECT_THAT(check.wrong, IsEmpty());
  EXPECT_DOUBLE_EQ(balance("C1"), -1.38 * kTills * kSales);
  EXPECT_EQ(main("SELECT Count(*) FROM Clientes WHERE Codigo = 'C1'"), "1");
}

TEST_F(CreditTest, APaymentMethodIsFoundByCodeNameAndTheWordCredit) {
  const PaymentMethods methods;
  EXPECT_EQ(methods.find("2")->code, "2");
  EXPECT_EQ(methods.find("TARJETA")->code, "2");
  EXPECT_EQ(methods.find("credit")->code, "4");
  EXPECT_EQ(methods.find("crédito")->code, "4");
  EXPECT_EQ(methods.find("cheque"), nullptr);
  EXPECT_EQ(methods.find(""), nullptr);
  EXPECT_TRUE(methods.find("4")->isOnCredit);
  place_.run("UPDATE Formas_Pago SET Dias_Plazos = 0");
  EXPECT_FALSE(PaymentMethods().find("4")->isOnCredit) << "due at once";
  EXPECT_EQ(PaymentMethods().find("credit"), nullptr);
}

// ---------------------------------------------------------------------------------------------
// Prices

TEST_F(CreditTest, ALineThatWantsAPriceIsSoldOnlyOncePriced) {
  place_.run(
      "INSERT INTO Articulos (Codigo, Descripcion, Familia, Tarifa_A, Tarifa_B, Impuesto, "
      "Descuento) VALUES ('PAN', 'Barra', 'HOR', 2, 1.5, '3', True)");
  place_.run("INSERT INTO Clientes (Codigo, Tarifa, Descuento) VALUES ('C1', 'B', 12.5)");
  Shop shop;
  Sale sale = saleOf("V1");
  sale.customer = "C1";
  sale.lines = {open("PAN", 3), open("NADA")};
  EXPECT_EQ(test::errorOf([&] { shop.sell(sale); }), 5);

  const std::vector<Unpriced> unpriced = shop.price(sale);

  ASSERT_THAT(unpriced, SizeIs(1));
  EXPECT_EQ(unpriced[0].line.code, "NADA");
  ASSERT_THAT(sale.lines, SizeIs(1));
  EXPECT_EQ(sale.lines[0].price, 1.5);
  EXPECT_EQ(sale.lines[0].discount, 12.5);
  EXPECT_EQ(sale.lines[0].netPrice(), 1.3125);
  EXPECT_EQ(sale.lines[0].amount(), 3.94);
  EXPECT_EQ(sale.lines[0].tax, 4);
  EXPECT_EQ(sale.lines[0].family, "HOR");
  EXPECT_EQ(shop.sell(sale), 1);
  EXPECT_EQ(main("SELECT Precio FROM Articulos_Movimientos_Almacen"), "1,3125");
}

TEST_F(CreditTest, WhoGivesNoNameBuysAsTheWalkInCustomer) {
  place_.run(
      "INSERT INTO Articulos (Codigo, Tarifa_A, Tarifa_B, Descuento) VALUES ('PAN', 2, 1, True)");
  Shop shop;
  Sale sale = saleOf("V1");
  sale.lines = {open("PAN")};
  place_.run("UPDATE Clientes SET Tarifa = 'B' WHERE Codigo = '00000'");
  shop.price(sale);
  EXPECT_EQ(sale.lines[0].price, 1);
  place_.run("DELETE FROM Clientes");
  sale.lines = {open("PAN")};
  shop.price(sale);
  EXPECT_EQ(sale.lines[0].price, 2) << "tariff A where there is none";
  EXPECT_EQ(sale.lines[0].tax, kGeneralTax) << "an article without a tax";
}

// ---------------------------------------------------------------------------------------------
// A half of it lost

using CreditLossTest = LivesTest;

TEST_F(CreditLossTest, AMainDatabaseOfThePastGetsItsEntriesFromTheTickets) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  live([] { Shop().sell(creditSale("V1", "C1")); });
  loseIn("main.db", [](Shop& shop) {
    shop.sell(creditSale("V2", "C1"));
    shop.sell(creditSale("V3", "C2"));
    shop.close("01", kDay);
  });
  live([&] {
    Shop shop;
    EXPECT_THAT(shop.recover().sales, ElementsAre(2, 3));
    EXPECT_THAT(
        differences({creditSale("V1", "C1"), creditSale("V2", "C1"), creditSale("V3", "C2")}),
        IsEmpty());
    EXPECT_EQ(ClsClientesApuntesConta().Saldo_actual("C1"), -2.76);
    EXPECT_EQ(ClsClientesApuntesConta().Saldo_actual("C2"), -1.38);
    EXPECT_THAT(checkLedger(LedgerOf::kCustomers).wrong, IsEmpty());
    EXPECT_TRUE(ClsClientes().ExisteCli("C2"));
    EXPECT_FALSE(shop.recover().hasMended()) << "nobody is charged twice";
  });
}

TEST_F(CreditLossTest, WhatLostTicketsPutOnAnAccountIsTakenBackWithTheirStock) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  live([] { Shop().sell(creditSale("V1", "C1")); });
  loseIn("documents.db", [](Shop& shop) { shop.sell(creditSale("V2", "C1")); });
  live([&] {
    Shop shop;
    EXPECT_THAT(shop.recoverAll().undecided, SizeIs(1));
    EXPECT_EQ(ClsClientesApuntesConta().Saldo_actual("C1"), -2.76) << "until somebody decides";
    EXPECT_THAT(shop.recoverAll(Decision::kFollowTickets).takenBack, ElementsAre(2));
    EXPECT_EQ(ClsClientesApuntesConta().Saldo_actual("C1"), -1.38);
    EXPECT_EQ(shop.sell(creditSale("V2", "C1")), 3);
    shop.close("01", kDay);
    EXPECT_THAT(differences({creditSale("V1", "C1"), creditSale("V2", "C1")}), IsEmpty());
  });
}

TEST_F(CreditLossTest, WhatIsTakenBackMayBeOfSomebodyWithAnApostrophe) {
  TAVELOR_ONLY_IN_FILES(
      "one file of two is put back in time, and a server has both in one database");
  live([] { Shop().sell(creditSale("V1", "O'Hara")); });
  loseIn("documents.db", [](Shop& shop) { shop.sell(creditSale("V2", "O'Hara")); });
  live([&] {
    Shop shop;
    EXPECT_THAT(shop.recoverAll(Decision::kFollowTickets).takenBack, ElementsAre(2));
    EXPECT_EQ(ClsClientesApuntesConta().Saldo_actual("O''Hara"), -1.38);
    EXPECT_THAT(checkLedger(LedgerOf::kCustomers).wrong, IsEmpty());
  });
}

TEST_F(CreditLossTest, TheComparisonTellsAnEntryThatIsGone) {
  live([&] {
    Shop shop;
    shop.sell(creditSale("V1", "C1"));
    shop.close("01", kDay);
    ClsClientesApuntesConta().Eliminar(kTicketKind, 1);
    EXPECT_THAT(differences({creditSale("V1", "C1")}),
                ElementsAre("accounts: 0.00 euros where 1.38 were sold"));
  });
}

// ---------------------------------------------------------------------------------------------
// Fiscal numbers as they are typed

struct Typed {
  const char* typed;
  const char* text;
  const char* word;
};

TEST(FiscalEntryTest, IsCleanedAndClassed) {
  test::Shop place;
  for (const Typed& each :
       std::initializer_list<Typed>{{"nif: 12.345.678-z", "12345678Z", "NIF"},
                                    {"NIF12345678Z", "12345678Z", "NIF"},
                                    {" es 12345678/z", "12345678Z", "NIF"},
                                    {"12345678\u00A0Z\t", "12345678Z", "NIF"},
                                    {"k0867756n", "K0867756N", "NIF"},
                                    {"Nie.X-1234567-L", "X1234567L", "NIE"},
                                    {"CIF B12345674", "B12345674", "CIF"},
                                    {"B12345679", "B12345679", "VERIFICAR"},
                                    {"A123456", "A123456", "AND"},
                                    {"fr 40303265045", "FR40303265045", "INT"},
                                    {"12345678Ñ", "12345678Ñ", "VERIFICAR"},
                                    {"１２３４５６７８Z", "１２３４５６７８Z", "VERIFICAR"},
                                    {"XABCDEFGT", "XABCDEFGT", "VERIFICAR"},
                                    {"-.- ", "", ""},
                                    {"NIF:", "", ""},
                                    {"", "", ""}}) {
    const FiscalEntry entry = fiscalEntry(each.typed);
    EXPECT_EQ(entry.text, each.text) << each.typed;
    EXPECT_EQ(entry.word, each.word) << each.typed;
    EXPECT_EQ(entry.doubt.empty(), entry.word != "VERIFICAR") << each.typed;
    EXPECT_EQ(fiscalEntry(entry.text).text, entry.text) << "clean already";
  }
  EXPECT_EQ(fiscalEntry(std::string(300, '1')).word, "VERIFICAR");
  EXPECT_EQ(fiscalEntry(std::string("12\0Z", 4)).word, "VERIFICAR");
}

}  // namespace
}  // namespace tavelor::flows
