// SPDX-License-Identifier: MIT
// Sales to customers under equivalence surcharge, who pay it on top of the price.
#include <filesystem>
#include <optional>
#include <random>

#include <fmt/format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/check.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/day_figures.hpp"
#include "tavelor/flows/day_page.hpp"
#include "tavelor/flows/receipt.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/records.hpp"

namespace tavelor::flows {
namespace {

using ::testing::Contains;
using ::testing::HasSubstr;
using ::testing::Not;

class SurchargeTest : public ::testing::Test {
 protected:
  SurchargeTest() {
    openShop();
    fiscal::writeSettings(place_.installation(), test::recordSettings());
    shop_.emplace();
    place_.run(
        "INSERT INTO Tipos_Impuesto (Codigo, Descripcion, Impuesto, Recargo) VALUES ('5', "
        "'IVA del tabaco', 21, 1.75)");
    const auto article = [&](const char* code, const char* tax, const char* price) {
      place_.run(
          fmt::format("INSERT INTO Articulos (Codigo, Descripcion, Familia, Tarifa_A, "
                      "Descuento, Impuesto) VALUES ('{0}', '{0}', '001', {2}, True, '{1}')",
                      code, tax, price));
    };
    article("ACEITE", "1", "12.10");
    article("PAN", "3", "1.04");
    article("PURO", "5", "6.05");
    article("SELLO", "4", "1");
    place_.run(
        "INSERT INTO Clientes (Codigo, Activo, Tarifa, Recargo) VALUES ('T1', -1, 'A', "
        "True)");
    place_.run(
        "INSERT INTO Clientes (Codigo, Activo, Tarifa, Recargo) VALUES ('T2', -1, 'A', "
        "False)");
  }

  std::string documents(const std::string& statement) { return place_.text(statement, 3); }
  fiscal::Registration record(int position) {
    return std::get<fiscal::Registration>(fiscal::readRecord(documents(
        fmt::format("SELECT Registro FROM Fiscal_Registros WHERE Posicion = {}", position))));
  }
  SaleLine ask(const std::string& article, const std::string& customer, double quantity = 1) {
    return shop_->price({.article = article, .customer = customer, .quantity = quantity});
  }
  Sale saleTo(const std::string& customer, std::string reference,
              const std::vector<std::string>& articles) {
    Sale sale = saleOf(std::move(reference));
    sale.customer = customer;
    sale.lines.clear();
    for (const std::string& article : articles) sale.lines.push_back(ask(article, customer));
    return sale;
  }
  void expectCleanRecords() {
    const auto book = fiscal::Book::open(DataSession().OpenConnection(3));
    const fiscal::CheckReport report = fiscal::check(*book);
    for (const fiscal::Flaw& flaw : report.flaws) ADD_FAILURE() << flaw.sentence;
  }

  test::Shop place_;
  std::optional<Shop> shop_;
};

TEST_F(SurchargeTest, ThePriceOfACustomerUnderItComesWithThatOfTheArticlesTax) {
  EXPECT_EQ(ask("ACEITE", "T1").surcharge, 5.2);
  EXPECT_EQ(ask("PAN", "T1").surcharge, 0.5);
  EXPECT_EQ(ask("PURO", "T1").surcharge, 1.75) << "of two taxes of 21 % the article's own";
  EXPECT_EQ(ask("SELLO", "T1").surcharge, 0);
  EXPECT_EQ(ask("ACEITE", "T2").surcharge, 0);
  EXPECT_EQ(ask("ACEITE", "").surcharge, 0);
  EXPECT_EQ(ask("ACEITE", "T1").amount(), 12.1) << "the price is what it was";
}

TEST_F(SurchargeTest, TicketReceiptAndRecordTellItOnTopToTheCent) {
  const Sale sale = saleTo("T1", "V1", {"ACEITE", "PAN"});
  EXPECT_EQ(sale.surcharge(), 0.53);
  EXPECT_EQ(sale.total(), 13.67);
  shop_->sell(sale);
  EXPECT_EQ(documents("SELECT Total FROM Tickets"), "13,67");
  EXPECT_EQ(documents("SELECT Base FROM Tickets"), "11");
  EXPECT_EQ(documents("SELECT Importe_Impuestos FROM Tickets"), "2,14");
  EXPECT_EQ(documents("SELECT Importe_Recargo FROM Tickets"), "0,53");
  EXPECT_EQ(documents("SELECT Recargo FROM Tickets"), "0") << "it is of two rates";
  EXPECT_EQ(documents("SELECT Sum(Importe) FROM Tickets_Lineas"), "13,14");

  const fiscal::Registration made = record(1);
  ASSERT_EQ(made.details.size(), 2U);
  EXPECT_EQ(made.details[0].surchargeRate->text(), "0.50");
  EXPECT_EQ(made.details[0].surchargeQuota->text(), "0.01");
  EXPECT_EQ(made.details[1].base.text(), "10.00");
  EXPECT_EQ(made.details[1].quota->text(), "2.10");
  EXPECT_EQ(made.details[1].surchargeRate->text(), "5.20");
  EXPECT_EQ(made.details[1].surchargeQuota->text(), "0.52");
  EXPECT_EQ(made.details[1].regime, "01");
  EXPECT_EQ(made.quota.text(), "2.67");
  EXPECT_EQ(made.total.text(), "13.67");

  const std::vector<std::string> text = ticketText(1);
  EXPECT_THAT(text, Contains("  21% IVA de     10,00     2,10"));
  EXPECT_THAT(text, Contains(" 5,2% R.E. de    10,00     0,52"));
  EXPECT_THAT(text, Contains(" 0,5% R.E. de     1,00     0,01"));
  EXPECT_THAT(text, Contains("TOTAL                    13,67"));
  EXPECT_THAT(ticketPage(1, Paper::k80), HasSubstr("Recargo 5,2 %"));
  expectCleanRecords();
}

TEST_F(SurchargeTest, WithoutRecordsTheReceiptTellsItToo) {
  std::filesystem::remove(fiscal::settingsFile(place_.installation()));
  shop_.emplace();
  shop_->sell(saleTo("T1", "V1", {"ACEITE"}));
  shop_->sell(saleTo("T1", "V2", {"ACEITE", "PAN", "PURO"}));
  EXPECT_THAT(ticketText(1), Contains(" 5,2% R.E. de    10,00     0,52"));
  EXPECT_THAT(ticketText(2), Contains("1,75% R.E. de     5,00     0,09"));
  EXPECT_EQ(documents("SELECT Recargo FROM Tickets WHERE Numero = 1"), "5,2");
}

TEST_F(SurchargeTest, WhatComesBackComesBackWithIt) {
  shop_->sell(saleTo("T1", "V1", {"ACEITE", "PAN", "SELLO"}));
  EXPECT_EQ(shop_->takeBack(returnOf(1)), 2);
  EXPECT_EQ(documents("SELECT Total FROM Tickets WHERE Numero = 2"), "-14,67");
  EXPECT_EQ(documents("SELECT Importe_Recargo FROM Tickets WHERE Numero = 2"), "-0,53");
  EXPECT_EQ(record(2).total.text(), "-14.67");
  expectCleanRecords();
}

TEST_F(SurchargeTest, WhatComesBackKeepsTheRateThatItWasSoldAt) {
  shop_->sell(saleTo("T1", "V1", {"ACEITE"}));
  place_.run("UPDATE Tipos_Impuesto SET Recargo = 6 WHERE Codigo = '1'");
  EXPECT_EQ(shop_->takeBack(returnOf(1)), 2);
  EXPECT_EQ(documents("SELECT Importe_Recargo FROM Tickets WHERE Numero = 2"), "-0,52");
  expectCleanRecords();
}

TEST_F(SurchargeTest, ClosingAndSlipHaveIt) {
  shop_->sell(saleTo("T1", "V1", {"ACEITE", "PAN"}));
  shop_->sell(saleTo("T2", "V2", {"PAN"}));
  const Closing closing = shop_->close("01", kDay).value();
  EXPECT_EQ(closing.total, 14.71);
  EXPECT_EQ(place_.text("SELECT Importe_Recargo FROM Cierres"), "0,53");
  EXPECT_EQ(place_.text("SELECT Base + Importe_Impuestos + Importe_Recargo - Total FROM Cierres"),
            "0");
  EXPECT_THAT(slipText(1), Contains("Recargo de equivalencia   0,53"));
  EXPECT_THAT(ticketText(1), Contains("TOTAL                    13,67")) << "from history too";
  const std::string page = dayPage(gatherFigures(kDay, kDay));
  EXPECT_THAT(page, HasSubstr("<tr id=\"surcharge\"><td>Recargo de equivalencia</td><td></td><td "
                              "class=\"n\">0,53"));
  EXPECT_THAT(page, Not(HasSubstr("id=\"rounding\"")));
}

TEST_F(SurchargeTest, OnCreditItIsOwedAndTheDayAgrees) {
  Sale sale = saleTo("T1", "V1", {"ACEITE"});
  sale.payment = "4";
  shop_->sell(sale);
  EXPECT_EQ(place_.text("SELECT Debe FROM Clientes_Apuntes_Contables"), "12,62");
  const Sale second = saleTo("T1", "V2", {"PAN", "PURO"});
  shop_->sell(second);
  shop_->close("01", kDay);
  Reconciliation reconciliation;
  reconciliation.expect(sale);
  reconciliation.expect(second);
  reconciliation.compare();
  for (const auto& difference : reconciliation.differences()) ADD_FAILURE() << difference.what;
}

TEST_F(SurchargeTest, TheSameSaleGivenAgainIsThereAndOneWithoutItIsAnother) {
  const Sale sale = saleTo("T1", "V1", {"ACEITE", "PAN"});
  shop_->sell(sale);
  EXPECT_EQ(shop_->sell(sale), std::nullopt);
  Sale other = sale;
  for (SaleLine& line : other.lines) line.surcharge = 0;
  EXPECT_EQ(test::errorOf([&] { shop_->sell(other); }), errors::kInvalidCall);
}

TEST_F(SurchargeTest, SomeLinesWithItAndOthersWithoutAreRefused) {
  Sale sale = saleTo("T1", "V1", {"ACEITE", "PAN", "SELLO"});
  sale.lines[1].surcharge = 0;
  try {
    shop_->sell(sale);
    FAIL() << "it was sold";
  } catch (const RefusedSale& refused) {
    ASSERT_EQ(refused.faults().size(), 1U) << "what has no tax has no surcharge either";
    EXPECT_EQ(refused.faults()[0].line, 2U);
    EXPECT_EQ(refused.faults()[0].reason, "it has no surcharge, and others have one");
  }
}

TEST_F(SurchargeTest, ARateThatTheLawDoesNotHaveHasNoRecordAndIsRefused) {
  Sale sale = saleTo("T1", "V1", {"ACEITE"});
  sale.lines[0].surcharge = 5;
  EXPECT_EQ(test::errorOf([&] { shop_->sell(sale); }), errors::kInvalidCall);
  sale.lines[0].surcharge = -1;
  EXPECT_EQ(test::errorOf([&] { shop_->sell(sale); }), errors::kInvalidCall);
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "0");
}

TEST_F(SurchargeTest, TheRecordIsTheTicketToTheCentWhateverTheLines) {
  std::mt19937 dice(20270101);  // NOLINT: the same tickets each time
  const std::vector<std::string> articles = {"ACEITE", "PAN", "PURO", "SELLO"};
  for (int at = 1; at <= 60; ++at) {
    Sale sale = saleTo("T1", fmt::format("V{}", at), {});
    for (unsigned line = 0; line <= dice() % 5; ++line) {
      SaleLine sold = ask(articles[dice() % articles.size()], "T1");
      sold.quantity = static_cast<double>(1 + dice() % 4000) / 1000;
      sold.discount = dice() % 3 == 0 ? static_cast<double>(dice() % 40) : 0;
      sale.lines.push_back(std::move(sold));
    }
    shop_->sell(sale);
    const fiscal::Registration made = record(at);
    EXPECT_EQ(fiscal::Amount::of(sale.total()).cents(), made.total.cents());
    std::int64_t sum = 0;
    for (const fiscal::Detail& detail : made.details) {
      sum += detail.base.cents() + (detail.quota ? detail.quota->cents() : 0) +
             (detail.surchargeQuota ? detail.surchargeQuota->cents() : 0);
    }
    EXPECT_EQ(sum, made.total.cents());
  }
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets WHERE Base + Importe_Impuestos + "
                      "Importe_Recargo <> Total"),
            "0");
  expectCleanRecords();
}

}  // namespace
}  // namespace tavelor::flows
