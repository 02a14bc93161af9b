// SPDX-License-Identifier: MIT
// What is recorded of sales and returns, for the law.
#include <functional>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/fiscal/hash.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/transaction.hpp"
#include "tavelor/frame/rows.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/engines.hpp"
#include "tests/support/records.hpp"

namespace tavelor::flows {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

class InvoicesTest : public ::testing::Test {
 protected:
  InvoicesTest() {
    openShop();
    fiscal::writeSettings(place_.installation(), test::recordSettings());
    shop_.emplace();
    place_.run(
        "INSERT INTO Clientes (Codigo, Activo, Razon_Social, NIF) VALUES ('C1', -1, 'Ñandú SA', "
        "'A-58818501')");
    place_.run(
        "INSERT INTO Clientes (Codigo, Activo, Razon_Social, NIF) VALUES ('C2', -1, 'Roe', "
        "'12345678A')");
  }

  std::string documents(const std::string& statement) { return place_.text(statement, 3); }
  fiscal::Record record(int position) {
    return fiscal::readRecord(documents("SELECT Registro FROM Fiscal_Registros WHERE Posicion = " +
                                        std::to_string(position)));
  }
  fiscal::Registration registration(int position) {
    return std::get<fiscal::Registration>(record(position));
  }
  static Sale ticketOf(std::string reference, double price, double tax = 21) {
    Sale sale = saleOf(std::move(reference));
    sale.lines = {{.code = "PAN", .description = "Barra", .quantity = 1, .price = price}};
    sale.lines.front().tax = tax;
    return sale;
  }
  std::vector<std::string> faultsOf(const std::function<void()>& work) {
    std::vector<std::string> reasons;
    try {
      work();
    } catch (const RefusedSale& refused) {
      for (const SaleFault& fault : refused.faults()) reasons.push_back(fault.reason);
    }
    EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), tickets_) << "nothing is left";
    return reasons;
  }
  void sold(const std::string& tickets) { tickets_ = tickets; }

  test::Shop place_;
  std::optional<Shop> shop_;
  std::string tickets_ = "0";
};

TEST_F(InvoicesTest, ATicketHasItsRecordWithItsRatesAndItsTotal) {
  Sale sale = ticketOf("V1", 12.1);
  sale.lines.push_back({.code = "LECHE", .description = "Leche", .quantity = 3, .price = 0.97});
  sale.lines.back().tax = 4;
  sale.lines.push_back({.code = "SELLO", .description = "Sello", .quantity = 2, .price = 1});
  sale.lines.back().tax = 0;
  EXPECT_EQ(shop_->sell(sale), 1);
  const fiscal::Registration made = registration(1);
  EXPECT_EQ(made.kind, fiscal::InvoiceKind::kSimplified);
  EXPECT_EQ(made.invoice, (fiscal::InvoiceId{"89890001K", "T/1", kDay}));
  EXPECT_THAT(made.recipients, IsEmpty());
  ASSERT_EQ(made.details.size(), 3U);
  EXPECT_EQ(made.details[0].operation, fiscal::Operation::kExempt1);
  EXPECT_EQ(made.details[1].quota->text(), "0.11");
  EXPECT_EQ(made.details[2].base.text(), "10.00");
  EXPECT_EQ(made.total.text(), "17.01");
  EXPECT_EQ(documents("SELECT Ticket FROM Fiscal_Registros"), "1");
  EXPECT_EQ(documents("SELECT Total FROM Tickets"), "17,01");
  EXPECT_EQ(documents("SELECT Importe_Impuestos FROM Tickets"), "2,21");
  EXPECT_EQ(made.quota.text(), "2.21") << "as the ticket has it";
}

TEST_F(InvoicesTest, TheSameSaleGivenAgainHasOneRecord) {
  shop_->sell(ticketOf("V1", 12.1));
  EXPECT_EQ(shop_->sell(ticketOf("V1", 12.1)), std::nullopt);
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Registros"), "1");
}

TEST_F(InvoicesTest, SalesOfDaysBeforeTheStartHaveNone) {
  Sale sale = ticketOf("V1", 12.1);
  sale.day = Date::of(2026, 10, 31);
  EXPECT_EQ(shop_->sell(sale), 1);
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Cadenas"), "0");
}

TEST_F(InvoicesTest, WithoutSettingsNothingIsRecorded) {
  std::filesystem::remove(fiscal::settingsFile(place_.installation()));
  shop_.emplace();
  EXPECT_EQ(shop_->sell(ticketOf("V1", 4000)), 1);
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Registros"), "0");
}

TEST_F(InvoicesTest, AnInvoiceThatIsWantedNamesTheCustomer) {
  Sale sale = ticketOf("V1", 12.1);
  sale.customer = "C1";
  sale.invoice.form = fiscal::Form::kInvoice;
  shop_->sell(sale);
  const fiscal::Registration made = registration(1);
  EXPECT_EQ(made.kind, fiscal::InvoiceKind::kFull);
  EXPECT_EQ(made.invoice.number, "F/1");
  EXPECT_THAT(made.recipients, ElementsAre(fiscal::Party{"Ñandú SA", "A58818501"}));
  EXPECT_FALSE(made.isQualifiedTicket);
}

TEST_F(InvoicesTest, ATicketWithTheCustomersNumberIsAQualifiedOne) {
  Sale sale = ticketOf("V1", 12.1);
  sale.invoice.form = fiscal::Form::kQualifiedTicket;
  sale.invoice.recipient = fiscal::partyOf("Kneipe GmbH", "DE 123456789");
  shop_->sell(sale);
  const fiscal::Registration made = registration(1);
  EXPECT_EQ(made.kind, fiscal::InvoiceKind::kFull);
  EXPECT_TRUE(made.isQualifiedTicket);
  EXPECT_EQ(made.recipients.at(0).foreign, (fiscal::ForeignId{"", "02", "DE123456789"}));
}

TEST_F(InvoicesTest, AboveItsLimitATicketIsAnInvoice) {
  Sale sale = ticketOf("V1", 3000);
  sale.customer = "C1";
  shop_->sell(sale);
  EXPECT_EQ(registration(1).kind, fiscal::InvoiceKind::kSimplified);
  sale = ticketOf("V2", 3000.01);
  sale.customer = "C1";
  shop_->sell(sale);
  EXPECT_EQ(registration(2).kind, fiscal::InvoiceKind::kFull);
  EXPECT_EQ(registration(2).invoice.number, "F/1");
}

TEST_F(InvoicesTest, ASaleThatCanHaveNoRecordIsRefusedAndSaysWhatIsMissing) {
  EXPECT_THAT(faultsOf([&] { shop_->sell(ticketOf("V1", 4000)); }),
              ElementsAre("above 3000.00 EUR an invoice must name who buys, with a fiscal number, "
                          "and nobody is named"));
  Sale sale = ticketOf("V1", 4000);
  sale.customer = "C2";
  EXPECT_THAT(faultsOf([&] { shop_->sell(sale); }),
              ElementsAre(HasSubstr("the fiscal number 12345678A of Roe")));
  sale.customer = "C9";
  sale.name = "Nadie";
  EXPECT_THAT(faultsOf([&] { shop_->sell(sale); }), ElementsAre("Nadie has no fiscal number"));
  sale = ticketOf("V1", 1);
  sale.invoice.form = fiscal::Form::kInvoice;
  EXPECT_THAT(faultsOf([&] { shop_->sell(sale); }),
              ElementsAre("an invoice is wanted, and nobody is named"));
  sale = ticketOf("V1", 1, 0);
  sale.invoice.zeroRate = fiscal::Operation::kReverseCharge;
  EXPECT_THAT(faultsOf([&] { shop_->sell(sale); }),
              ElementsAre("who buys owes the tax, and nobody is named"));
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Cadenas"), "0");
  EXPECT_EQ(place_.text("SELECT Count(*) FROM Articulos_Movimientos_Almacen"), "0");
  EXPECT_EQ(shop_->sell(ticketOf("V1", 1)), 1) << "and the shop goes on";
}

TEST_F(InvoicesTest, ARateThatTheLawDoesNotHaveIsRefused) {
  place_.run("INSERT INTO Tipos_Impuesto (Codigo, Descripcion, Impuesto) VALUES (9, 'Viejo', 16)");
  EXPECT_THAT(faultsOf([&] { shop_->sell(ticketOf("V1", 10, 16)); }),
              ElementsAre("on 20-11-2026 the law knows no tax of 16.00 %"));
}

TEST_F(InvoicesTest, WhoOwesTheTaxIsToldInAnInvoice) {
  Sale sale = ticketOf("V1", 100, 0);
  sale.customer = "C1";
  sale.invoice.zeroRate = fiscal::Operation::kReverseCharge;
  shop_->sell(sale);
  EXPECT_EQ(registration(1).kind, fiscal::InvoiceKind::kFull);
  EXPECT_EQ(registration(1).details.at(0).operation, fiscal::Operation::kReverseCharge);
  shop_->takeBack(returnOf(1));
  EXPECT_EQ(registration(2).details.at(0).operation, fiscal::Operation::kReverseCharge);
}

// ---------------------------------------------------------------------------------------------
// Returns

TEST_F(InvoicesTest, WhatComesBackOfATicketRectifiesItInASeriesOfItsOwn) {
  Sale sale = ticketOf("V1", 1.21);
  sale.lines.front().quantity = 3;
  shop_->sell(sale);
  Return what = returnOf(1);
  what.lines = {{1, 1}};
  shop_->takeBack(what);
  shop_->takeBack(returnOf(1));
  shop_->sell(ticketOf("V2", 1.21));
  const fiscal::Registration back = registration(2);
  EXPECT_EQ(back.kind, fiscal::InvoiceKind::kRectifying5);
  EXPECT_EQ(back.invoice.number, "R/1");
  EXPECT_FALSE(back.isSubstitution);
  EXPECT_THAT(back.rectified, ElementsAre(registration(1).invoice));
  EXPECT_EQ(back.total.text(), "-1.21");
  EXPECT_EQ(back.details.at(0).quota->text(), "-0.21");
  EXPECT_EQ(registration(3).invoice.number, "R/2");
  EXPECT_EQ(registration(3).total.text(), "-2.42");
  EXPECT_EQ(registration(4).invoice.number, "T/2") << "without a gap";
}

TEST_F(InvoicesTest, WhatComesBackOfAnInvoiceNamesItsRecipient) {
  Sale sale = ticketOf("V1", 12.1);
  sale.customer = "C1";
  sale.invoice.form = fiscal::Form::kInvoice;
  shop_->sell(sale);
  place_.run("UPDATE Clientes SET NIF = '' WHERE Codigo = 'C1'");
  shop_->takeBack(returnOf(1));
  EXPECT_EQ(registration(2).kind, fiscal::InvoiceKind::kRectifying1);
  EXPECT_EQ(registration(2).recipients, registration(1).recipients) << "as it was";
  EXPECT_THAT(registration(2).rectified, ElementsAre(registration(1).invoice));
}

TEST_F(InvoicesTest, AnInvoiceComesBackByTheCauseThatIsTold) {
  Sale sale = ticketOf("V1", 12.1);
  sale.customer = "C1";
  sale.invoice.form = fiscal::Form::kInvoice;
  shop_->sell(sale);
  sold("1");
  Return what = returnOf(1);
  what.cause = fiscal::InvoiceKind::kFull;
  EXPECT_THAT(faultsOf([&] { shop_->takeBack(what); }),
              ElementsAre("an invoice comes back by R1 to R4, and not by F1"));
  what.cause = fiscal::InvoiceKind::kRectifying3;
  shop_->takeBack(what);
  EXPECT_EQ(registration(2).kind, fiscal::InvoiceKind::kRectifying3);
}

TEST_F(InvoicesTest, WhatComesBackOfATicketBeforeTheRecordsNamesItsOldNumber) {
  Sale sale = ticketOf("V1", 12.1);
  sale.day = Date::of(2026, 10, 31);
  shop_->sell(sale);
  shop_->takeBack(returnOf(1));
  EXPECT_THAT(registration(1).rectified,
              ElementsAre(fiscal::InvoiceId{"89890001K", "A/1", Date::of(2026, 10, 31)}));
}

TEST_F(InvoicesTest, ASaleOfReturnsAloneRectifiesATicketThatNobodyHas) {
  Sale sale = ticketOf("V1", 12.1);
  sale.lines.front().quantity = -1;
  shop_->sell(sale);
  EXPECT_EQ(registration(1).kind, fiscal::InvoiceKind::kRectifying5);
  EXPECT_THAT(registration(1).rectified, IsEmpty());
  sale.reference = "V2";
  sale.lines.push_back({.code = "LECHE", .description = "Leche", .quantity = 1, .price = 1});
  shop_->sell(sale);
  EXPECT_EQ(registration(2).kind, fiscal::InvoiceKind::kSimplified)
      << "what comes back with a purchase is taken off it";
  EXPECT_EQ(registration(2).total.text(), "-11.10");
}

// ---------------------------------------------------------------------------------------------
// Cancelling and replacing

TEST_F(InvoicesTest, ACancelledTicketComesBackWhole) {
  shop_->sell(ticketOf("V1", 12.1));
  EXPECT_EQ(shop_->cancel(returnOf(1)), 2);
  const auto cancelled = std::get<fiscal::Cancellation>(record(2));
  EXPECT_EQ(cancelled.invoice, registration(1).invoice);
  EXPECT_EQ(cancelled.chaining.previous->hash, registration(1).chaining.hash);
  EXPECT_EQ(documents("SELECT Ticket FROM Fiscal_Registros WHERE Tipo = 'AN'"), "2");
  EXPECT_EQ(documents("SELECT Sum(Total) FROM Tickets"), "0");
  EXPECT_EQ(place_.text("SELECT Existencia FROM Articulos WHERE Codigo = 'PAN'"), "0");
  sold("2");
  EXPECT_THAT(faultsOf([&] { shop_->cancel(returnOf(1)); }),
              ElementsAre("only a whole ticket is cancelled, of which nothing has come back"));
  EXPECT_THAT(faultsOf([&] { shop_->takeBack(returnOf(1)); }),
              ElementsAre("nothing is left of it"));
}

TEST_F(InvoicesTest, WhatHasNoRecordIsNotCancelled) {
  Sale sale = ticketOf("V1", 12.1);
  sale.day = Date::of(2026, 10, 31);
  shop_->sell(sale);
  sold("1");
  EXPECT_THAT(faultsOf([&] { shop_->cancel(returnOf(1)); }), ElementsAre("it has no record"));
}

TEST_F(InvoicesTest, AnInvoiceTakesThePlaceOfTickets) {
  shop_->sell(ticketOf("V1", 12.1));
  shop_->sell(ticketOf("V2", 24.2));
  EXPECT_EQ(shop_->invoiceTickets({.tickets = {1, 2}, .day = kDay, .customer = "C1"}), "F/1");
  const fiscal::Registration made = registration(3);
  EXPECT_EQ(made.kind, fiscal::InvoiceKind::kReplacing);
  EXPECT_THAT(made.replaced, ElementsAre(registration(1).invoice, registration(2).invoice));
  EXPECT_EQ(made.total.text(), "36.30");
  EXPECT_EQ(made.recipients.at(0).number, "A58818501");
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "2") << "the tickets stay";
  shop_->takeBack(returnOf(1));
  EXPECT_EQ(registration(4).kind, fiscal::InvoiceKind::kRectifying1);
  EXPECT_THAT(registration(4).rectified, ElementsAre(made.invoice))
      << "what stands for the ticket now";
  sold("3");
  EXPECT_THAT(faultsOf([&] { shop_->cancel(returnOf(2)); }),
              ElementsAre("the invoice F/1 is in its place"));
}

TEST_F(InvoicesTest, TicketsThatCannotBeReplacedAreToldAllAtOnce) {
  shop_->sell(ticketOf("V1", 12.1));
  shop_->sell(ticketOf("V2", 12.1));
  shop_->sell(ticketOf("V3", 12.1));
  shop_->sell(ticketOf("V4", 12.1));
  Sale full = ticketOf("V5", 1);
  full.customer = "C1";
  full.invoice.form = fiscal::Form::kInvoice;
  shop_->sell(full);
  shop_->takeBack(returnOf(1));  // ticket 6
  shop_->cancel(returnOf(2));    // ticket 7
  shop_->invoiceTickets({.tickets = {3}, .day = kDay, .customer = "C1"});
  sold("7");
  EXPECT_THAT(
      faultsOf([&] {
        shop_->invoiceTickets({.tickets = {1, 2, 3, 4, 4, 5, 9}, .day = kDay, .customer = "C1"});
      }),
      ElementsAre("ticket 1 has come back, or some of it", "ticket 2 is cancelled",
                  "ticket 3 has the invoice F/2 already", "ticket 4 is named twice",
                  "ticket 5 is F1 and no ticket", "ticket 9 has no record"));
  EXPECT_THAT(faultsOf([&] { shop_->invoiceTickets({.tickets = {4}, .day = kDay}); }),
              ElementsAre("an invoice F3 names who buys"));
  EXPECT_THAT(
      faultsOf([&] { shop_->invoiceTickets({.tickets = {}, .day = kDay, .customer = "C1"}); }),
      ElementsAre("no ticket is named"));
}

// ---------------------------------------------------------------------------------------------
// One transaction

TEST_F(InvoicesTest, ASaleThatIsUndoneLeavesNoRecord) {
  shop_->sell(ticketOf("V1", 12.1));
  {
    const Transaction transaction(*shop_);
    shop_->sell(ticketOf("V2", 12.1));
  }
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Registros"), "1");
  shop_->sell(ticketOf("V3", 12.1));
  EXPECT_EQ(registration(2).invoice.number, "T/2");
  EXPECT_EQ(registration(2).chaining.previous->hash, registration(1).chaining.hash);
}

TEST_F(InvoicesTest, SeveralTillsAddToOneChain) {
  Shop other;
  for (int at = 0; at < 6; ++at) {
    (at % 2 == 0 ? *shop_ : other).sell(ticketOf("V" + std::to_string(at), 12.1));
  }
  for (int at = 2; at <= 6; ++at) {
    EXPECT_EQ(registration(at).chaining.previous->hash, registration(at - 1).chaining.hash);
    EXPECT_EQ(registration(at).invoice.number, "T/" + std::to_string(at));
  }
}

TEST_F(InvoicesTest, ARecordThatCannotBeStoredLeavesNoTicket) {
  shop_->sell(ticketOf("V1", 12.1));
  // Where the next record belongs, there is one.
  place_.run(
      "INSERT INTO Fiscal_Registros (Cadena, Posicion, Tipo, Serie_Numero, Fecha_Expedicion, "
      "Momento, Huella, Sello, Registro) VALUES (1, 2, 'F2', 'T/2', #11/20/2026#, '-', '-', '-', "
      "'-')",
      3);
  EXPECT_EQ(test::errorOf([&] { shop_->sell(ticketOf("V2", 12.1)); }), errors::kIntegrityViolation);
  EXPECT_EQ(documents("SELECT Count(*) FROM Tickets"), "1");
  EXPECT_EQ(place_.text("SELECT Count(*) FROM Articulos_Movimientos_Almacen"), "1");
  EXPECT_EQ(documents("SELECT Ultimo FROM Fiscal_Series"), "1");
}

class InvoicesOfTheDeadTest : public LivesTest {
 protected:
  InvoicesOfTheDeadTest() {
    live(
        [] { fiscal::writeSettings(Apartment::current().installation(), test::recordSettings()); });
  }
};

TEST_F(InvoicesOfTheDeadTest, AreThereOnceWhenTheSaleIsGivenAgain) {
  TAVELOR_ONLY_IN_FILES("a program dies between the commits of two files, and a server has one");
  live([] { Shop().sell(saleOf("V1")); });
  loseIn("main.db", [](Shop& shop) { shop.sell(saleOf("V2")); });
  live([] {
    Shop shop;
    EXPECT_EQ(shop.sell(saleOf("V2")), std::nullopt);
    EXPECT_EQ(shop.sell(saleOf("V3")), 3);
    const Rows rows(3, Statement("SELECT Count(*) AS n FROM Fiscal_Registros"));
    EXPECT_EQ(rows.number("n"), 3);
  });
}

}  // namespace
}  // namespace tavelor::flows
