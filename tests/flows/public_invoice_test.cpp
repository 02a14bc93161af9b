// SPDX-License-Identifier: MIT
// Invoices to public bodies, as a shop issues them.
#include "tavelor/flows/public_invoice.hpp"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/fiscal/book.hpp"
#include "tavelor/fiscal/settings.hpp"
#include "tavelor/flows/issuer.hpp"
#include "tavelor/frame/class_info.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tests/flows/lives.hpp"
#include "tests/support/records.hpp"

namespace tavelor::flows {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;

fiscal::Settings publicSettings() {
  fiscal::Settings settings = test::recordSettings();
  settings.taxpayer = {.name = "Colmado Rius SL", .number = "B12345674"};
  return settings;
}

class PublicInvoiceTest : public ::testing::Test {
 protected:
  PublicInvoiceTest() {
    openShop();
    setIssuer({.name = "Colmado Rius",
               .address = "Calle Nueva, 2",
               .place = "Zaragoza",
               .postcode = "50001"});
    fiscal::writeSettings(place_.installation(), publicSettings());
    shop_.emplace();
    place_.run(
        "INSERT INTO Clientes (Codigo, Activo, Razon_Social, NIF, Direccion, Codigo_Postal, "
        "Poblacion, Provincia, Cod_Of_Contable, Nom_Of_Contable, Cod_Or_Gestor, Cod_Un_Tramit) "
        "VALUES ('401', -1, 'Ajuntament de Vic', 'P-0829900-J', 'Plaça Major, 1', '08500', 'Vic', "
        "'Barcelona', 'L01082982', 'Intervenció', 'L01082982', 'L01082983')");
  }

  /// Numbers its tickets from 1.
  Sale sale(std::string reference) {
    Sale sale = saleOf(std::move(reference));
    sale.customer = "401";
    sale.lines = {{.code = "PAN", .description = "Barra", .quantity = 3, .price = 1.1},
                  {.code = "VINO", .description = "Vino", .quantity = 2, .price = 7.35}};
    sale.lines[0].tax = 4;
    sale.lines[1].discount = 10;
    return sale;
  }
  void sellInvoice() {
    Sale invoice = sale("V1");
    invoice.invoice.form = fiscal::Form::kInvoice;
    shop_->sell(invoice);
  }
  static std::string complaint(const std::string& number, const std::string& customer = {}) {
    try {
      publicInvoice(number, customer);
    } catch (const Error& error) {
      return error.description();
    }
    return {};
  }

  test::Shop place_;
  std::optional<Shop> shop_;
};

TEST_F(PublicInvoiceTest, HasLinesPartiesAndCentresAndItsTotal) {
  sellInvoice();
  const fiscal::Facturae found = publicInvoice("F/1");
  EXPECT_THAT(fiscal::faultsOf(found), IsEmpty());
  ASSERT_EQ(found.lines.size(), 2U);
  EXPECT_EQ(found.lines[1].discount, 10);
  EXPECT_EQ(found.lines[1].amount, 13.23);
  EXPECT_EQ(found.seller.address.postcode, "50001");
  ASSERT_EQ(found.buyer.centres.size(), 3U);
  EXPECT_EQ(found.buyer.centres[0].name, "Intervenció");
  EXPECT_EQ(found.buyer.centres[2].code, "L01082983");
  EXPECT_EQ(found.buyer.centres[2].address.town, "Vic") << "the customer's";
  EXPECT_THAT(fiscal::xmlOf(found), HasSubstr("<InvoiceTotal>16.53</InvoiceTotal>"));
}

TEST_F(PublicInvoiceTest, ThatWasCorrectedHasTheLinesOfItsTicketStill) {
  sellInvoice();
  const ConnectionPtr documents = DataSession().OpenConnection(selector::kDocuments);
  const auto book = fiscal::Book::open(documents);
  fiscal::Registration right = book->find("F/1")->record;
  right.description = "Pan y vino";
  documents->BeginTrans();
  book->correct(right);
  documents->CommitTrans();
  const fiscal::Facturae found = publicInvoice("F/1");
  EXPECT_THAT(found.lines, SizeIs(2));
  EXPECT_THAT(fiscal::xmlOf(found), HasSubstr("<InvoiceTotal>16.53</InvoiceTotal>"));
}

TEST_F(PublicInvoiceTest, TakesCentresOfTheirOwnBeforeThoseOfTheMaster) {
  place_.run(
      "INSERT INTO Clientes_Centros (ID, Codigo, CentreCode, Name, RoleTypeCode, Direccion, "
      "Codigo_Postal, Poblacion, Provincia) VALUES (1, '401', 'L01000001', 'Compres', '02', "
      "'Carrer "
      "Nou, 3', '08510', 'Roda', 'Barcelona')");
  place_.run(
      "INSERT INTO Clientes_Centros (ID, Codigo, CentreCode, Name, RoleTypeCode) VALUES (2, '401', "
      "'L01000004', 'Cultura', '04')");
  sellInvoice();
  const fiscal::Facturae found = publicInvoice("F/1");
  ASSERT_EQ(found.buyer.centres.size(), 4U);
  EXPECT_EQ(found.buyer.centres[1].code, "L01000001");
  EXPECT_EQ(found.buyer.centres[1].address.town, "Roda");
  EXPECT_EQ(found.buyer.centres[3].address.town, "Vic") << "it has none";
  EXPECT_THAT(fiscal::faultsOf(found), IsEmpty());
}

TEST_F(PublicInvoiceTest, OfClosedTicketsAndOfTheOneInTheirPlaceHasTheirLines) {
  shop_->sell(sale("V1"));
  shop_->sell(sale("V2"));
  shop_->close("01", kDay);
  InvoiceWish wish;
  wish.tickets = {1, 2};
  wish.day = kDay;
  wish.customer = "401";
  const std::string number = shop_->invoiceTickets(wish);
  const fiscal::Facturae found = publicInvoice(number);
  EXPECT_EQ(found.lines.size(), 4U);
  EXPECT_THAT(fiscal::faultsOf(found), IsEmpty());
  EXPECT_THAT(fiscal::xmlOf(found), HasSubstr("Sustituye a las facturas simplificadas T/1, T/2"));
}

TEST_F(PublicInvoiceTest, OfWhatComesBackRectifies) {
  sellInvoice();
  Return what;
  what.ticket = 1;
  what.till = "01";
  what.day = kDay;
  shop_->takeBack(what);
  const fiscal::Facturae found = publicInvoice("R/1");
  EXPECT_THAT(fiscal::faultsOf(found), IsEmpty());
  const std::string xml = fiscal::xmlOf(found);
  EXPECT_THAT(xml, HasSubstr("<InvoiceTotal>-16.53</InvoiceTotal>"));
  EXPECT_THAT(xml, HasSubstr("<Corrective><InvoiceNumber>1</InvoiceNumber>"));
}

TEST_F(PublicInvoiceTest, NamesWhatTheCustomerLacks) {
  place_.run("UPDATE Clientes SET Codigo_Postal = '', Cod_Un_Tramit = Null WHERE Codigo = '401'");
  sellInvoice();
  EXPECT_THAT(fiscal::faultsOf(publicInvoice("F/1")),
              Contains("the customer 401 has no centre of the role 03 (processing unit)"));
  EXPECT_THAT(fiscal::faultsOf(publicInvoice("F/1")),
              Contains("the customer 401 has no postcode of five digits"));
}

TEST_F(PublicInvoiceTest, FindsTheCustomerByTheNumberOfTheRecord) {
  Sale invoice = sale("V1");
  invoice.customer.clear();
  invoice.invoice.form = fiscal::Form::kInvoice;
  invoice.invoice.recipient = fiscal::partyOf("Ajuntament", "P0829900J");
  shop_->sell(invoice);
  EXPECT_EQ(publicInvoice("F/1").buyer.address.town, "Vic");
  place_.run(
      "INSERT INTO Clientes (Codigo, Activo, Razon_Social, NIF, Poblacion) VALUES ('402', -1, "
      "'Biblioteca', 'P0829900J', 'Manlleu')");
  EXPECT_THAT(complaint("F/1"), HasSubstr("the customers 401 and 402 have the fiscal number of"));
  EXPECT_EQ(publicInvoice("F/1", "402").buyer.address.town, "Manlleu");
  place_.run("UPDATE Clientes SET NIF = 'B12345674'");
  EXPECT_THAT(complaint("F/1"), HasSubstr("no customer has the fiscal number of Ajuntament"));
  EXPECT_THAT(complaint("F/1", "402"), HasSubstr("the customer 402 has another fiscal number"));
  EXPECT_THAT(complaint("F/1", "403"), HasSubstr("there is no customer 403"));
}

TEST_F(PublicInvoiceTest, IsRefusedForOnesThatThereAreNotOrThatAreCancelled) {
  EXPECT_THAT(complaint("F/1"), HasSubstr("The invoice F/1: there is none."));
  sellInvoice();
  Return what;
  what.ticket = 1;
  what.till = "01";
  what.day = kDay;
  shop_->cancel(what);
  EXPECT_THAT(complaint("F/1"), HasSubstr("it is cancelled"));
  shop_->sell(sale("V2"));
  EXPECT_THAT(fiscal::faultsOf(publicInvoice("T/1")), ElementsAre(HasSubstr("it is a ticket")));
}

}  // namespace
}  // namespace tavelor::flows
