// SPDX-License-Identifier: MIT
// The year of a shop by its customers and suppliers.
#include "tavelor/flows/form347.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tests/fiscal/form347_reader.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/records.hpp"

namespace tavelor::flows {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class Form347Test : public ::testing::Test {
 protected:
  Form347Test() {
    openShop();
    setIssuer({.name = "Colmado Rius", .fiscalNumber = "89890001-K"});
    customer("C1", "Ñandú SA", "A-58818501", "08500");
    customer("C2", "Ñandú Sur", "A58818501", "");
    customer("C3", "Kneipe GmbH", "DE123456789", "");
  }

  void customer(const std::string& code, const std::string& name, const std::string& number,
                const std::string& postcode) {
    place_.run("INSERT INTO Clientes (Codigo, Activo, Razon_Social, NIF, Codigo_Postal) VALUES ('" +
               code + "', -1, '" + name + "', '" + number + "', '" + postcode + "')");
  }
  void keepRecords() {
    fiscal::Settings settings = test::recordSettings();
    settings.taxpayer.name = "Rius Puig, Joan";
    fiscal::writeSettings(place_.installation(), settings);
    shop_.emplace();
  }
  void sell(const std::string& customer, Date day, double price, const std::string& payment = "1",
            fiscal::Form form = fiscal::Form::kInvoice, std::vector<PaymentPart> parts = {}) {
    if (!shop_) shop_.emplace();
    Sale sale = saleOf("V" + std::to_string(++sales_));
    sale.day = day;
    sale.customer = customer;
    sale.payment = payment;
    sale.invoice.form = form;
    sale.parts = std::move(parts);
    sale.lines = {{.code = "PAN", .description = "Barra", .quantity = 1, .price = price}};
    shop_->sell(sale);
  }
  void owe(const std::string& supplier, const std::string& day, double amount, int kind) {
    place_.run(
        "INSERT INTO Proveedores_Apuntes_Contables (Id, Codigo, Fecha, Haber, Estado) VALUES "
        "(" +
        std::to_string(++entries_) + ", '" + supplier + "', #" + day + "#, " +
        std::to_string(amount) + ", " + std::to_string(kind) + ")");
  }

  test::Shop place_;
  std::optional<Shop> shop_;
  int sales_ = 0;
  int entries_ = 0;
};

TEST_F(Form347Test, SumsTicketsOfCustomersWhoShareANumberBeforeThereWereRecords) {
  sell("C1", Date::of(2026, 2, 1), 2000);
  sell("C2", Date::of(2026, 5, 1), 1005.06);
  sell("C1", Date::of(2025, 12, 31), 5000);
  sell("", Date::of(2026, 5, 1), 9000);
  EXPECT_THAT(yearOfTrade(2026).form.declared, IsEmpty()) << "3,005.06 are not above the limit";
  sell("C2", Date::of(2026, 10, 1), 0.01);
  shop_->close("01", Date::of(2026, 2, 1));
  const YearOfTrade year = yearOfTrade(2026);
  ASSERT_EQ(year.form.declared.size(), 1U);
  const fiscal::Declared& declared = year.form.declared.front();
  EXPECT_THAT(declared.cents, ElementsAre(200'000, 100'506, 0, 1));
  EXPECT_EQ(declared.cash, 300'507);
  EXPECT_EQ(declared.province, 8) << "of the one who has it";
  EXPECT_EQ(year.form.declarant.number, "89890001K");
}

TEST_F(Form347Test, CountsTheCashOfWhatWasPaidInParts) {
  sell("C1", Date::of(2026, 2, 1), 2000, "2", fiscal::Form::kInvoice, {{"1", 500}, {"2", 1500}});
  sell("C1", Date::of(2026, 2, 1), 2000, "1", fiscal::Form::kInvoice, {{"1", 1999}, {"2", 1}});
  shop_->close("01", Date::of(2026, 2, 1));
  sell("C1", Date::of(2026, 5, 1), 100, "1");
  EXPECT_EQ(yearOfTrade(2026).form.declared.front().cash, 259'900);
  keepRecords();
  sell("C1", kDay, 1000, "2", fiscal::Form::kInvoice, {{"1", 300}, {"2", 700}});
  EXPECT_EQ(yearOfTrade(2026).form.declared.front().cash, 289'900);
}

TEST_F(Form347Test, TakesRecordsThatNameWhoBuysFromTheirFirstDayOn) {
  sell("C1", Date::of(2026, 10, 31), 100);
  keepRecords();
  sell("C1", kDay, 4000);
  sell("C1", kDay, 2500, "1", fiscal::Form::kTicket);  // names nobody
  sell("C1", kDay, 3500, "2");
  Return what;
  what.ticket = 2;
  what.till = "01";
  what.day = kDay;
  what.lines = {};
  shop_->takeBack(what);
  what.ticket = 4;
  shop_->cancel(what);
  sell("C1", kDay, 7000);
  const YearOfTrade year = yearOfTrade(2026);
  ASSERT_EQ(year.form.declared.size(), 1U);
  EXPECT_THAT(year.form.declared[0].cents,
              ElementsAre(0, 0, 0, 10'000 + 400'000 - 400'000 + 700'000));
  EXPECT_EQ(year.form.declared[0].cash, 10'000 + 700'000);
}

TEST_F(Form347Test, TakesInvoicesInThePlaceOfTicketsWithTheirCash) {
  keepRecords();
  sell("C1", kDay, 2500, "1", fiscal::Form::kTicket);
  sell("C1", kDay, 2900, "1", fiscal::Form::kTicket);
  sell("C1", kDay, 2950, "2", fiscal::Form::kTicket);
  InvoiceWish wish;
  wish.tickets = {1, 2, 3};
  wish.day = kDay;
  wish.customer = "C1";
  shop_->invoiceTickets(wish);
  const YearOfTrade year = yearOfTrade(2026);
  ASSERT_EQ(year.form.declared.size(), 1U);
  EXPECT_EQ(year.form.declared[0].total(), 835'000);
  EXPECT_EQ(year.form.declared[0].cash, 540'000);
}

TEST_F(Form347Test, TakesAnInvoiceThatWasCorrectedOnceAndOfWhoBoughtByThen) {
  keepRecords();
  sell("C2", kDay, 4000);
  const ConnectionPtr documents = DataSession().OpenConnection(selector::kDocuments);
  const auto book = fiscal::Book::open(documents);
  for (const char* const number : {"B12345674", "A58818501", "B12345674"}) {
    fiscal::Registration right = book->find("F/1")->record;
    right.recipients = {{"Ñandú Sur SL", number}};
    documents->BeginTrans();
    book->correct(right);
    documents->CommitTrans();
  }
  const YearOfTrade year = yearOfTrade(2026);
  ASSERT_EQ(year.form.declared.size(), 1U);
  EXPECT_EQ(year.form.declared[0].party.number, "B12345674");
  EXPECT_EQ(year.form.declared[0].total(), 400'000);
  EXPECT_EQ(year.form.declared[0].cash, 400'000);
}

TEST_F(Form347Test, LeavesOutWhatGoesAbroadUntaxed) {
  keepRecords();
  Sale sale = saleOf("V1");
  sale.customer = "C3";
  sale.invoice.form = fiscal::Form::kInvoice;
  sale.invoice.zeroRate = fiscal::Operation::kExempt5;
  sale.lines = {{.code = "PAN", .description = "Barra", .quantity = 1, .price = 9000},
                {.code = "PAN", .description = "Barra", .quantity = 1, .price = 3010}};
  sale.lines[0].tax = 0;
  shop_->sell(sale);
  const YearOfTrade year = yearOfTrade(2026);
  ASSERT_EQ(year.form.declared.size(), 1U);
  EXPECT_EQ(year.form.declared[0].total(), 301'000);
  EXPECT_EQ(year.form.declared[0].party.foreign->id, "DE123456789");
}

TEST_F(Form347Test, TakesWhatSuppliersWereCreditedAndRemarksOnMissingTax) {
  place_.run(
      "INSERT INTO Proveedores (Codigo, Razon_Social, NIF, Codigo_Postal) VALUES ('P1', "
      "'Conserves SL', 'B12345674', '25001')");
  place_.run(
      "INSERT INTO Proveedores (Codigo, Razon_Social, NIF, Codigo_Postal) VALUES ('P2', "
      "'Celler SA', 'A58818501', '43001')");
  sell("C1", kDay, 5000);
  owe("P1", "2026-03-31", 3000, 2);
  owe("P1", "2026-04-01", 630, 0);
  owe("P1", "2025-04-01", 630, 0);
  owe("P2", "2026-12-31", 4000, 2);
  const YearOfTrade year = yearOfTrade(2026);
  ASSERT_EQ(year.form.declared.size(), 3U);
  EXPECT_TRUE(year.form.declared[0].isSupplier);
  EXPECT_THAT(year.form.declared[0].cents, ElementsAre(0, 0, 0, 400'000))
      << "a customer with the same number is another record";
  EXPECT_THAT(year.form.declared[1].cents, ElementsAre(300'000, 63'000, 0, 0));
  EXPECT_EQ(year.form.declared[1].cash, 0);
  EXPECT_FALSE(year.form.declared[2].isSupplier);
  EXPECT_THAT(year.remarks, ElementsAre(HasSubstr("the supplier P2 has deliveries only")));
  const auto lines = fiscal::formLines(fiscal::textOf(year.form));
  ASSERT_EQ(lines.size(), 4U);
  EXPECT_EQ(lines[0].cents(145), 400'000 + 363'000 + 500'000);
  EXPECT_EQ(lines[2].at(18, 26), "B12345674");
  EXPECT_EQ(lines[2].at(77, 78), "25");
}

TEST_F(Form347Test, ListsWhatIsMissingByCode) {
  customer("C4", "Sin número", "", "08500");
  customer("C5", "Sin provincia", "12345678Z", "");
  customer("C6", "Mal número", "12345678A", "08500");
  for (const char* const code : {"C4", "C5", "C6"}) sell(code, kDay, 4000);
  EXPECT_THAT(fiscal::faultsOf(yearOfTrade(2026).form),
              ElementsAre("the customer C4 has no fiscal number",
                          HasSubstr("the customer C6 has the fiscal number 12345678A, which"),
                          "the customer C5 has neither a postcode nor a province"));
}

}  // namespace
}  // namespace tavelor::flows
