// SPDX-License-Identifier: MIT
// Invoices as Facturae documents.
#include "tavelor/fiscal/facturae.hpp"

#include <array>

#include <gmock/gmock.h>

#include "tavelor/fiscal/breakdown.hpp"
#include "tavelor/fiscal/provinces.hpp"
#include "tests/fiscal/samples.hpp"

namespace tavelor::fiscal {
namespace {

using ::testing::AllOf;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

const PostalAddress kTownHall = {"Plaça Major, 1", "08500", "Vic", "Barcelona"};

/// The texts of all elements of a name.
std::vector<std::string> textsOf(const std::string& xml, const std::string& name) {
  std::vector<std::string> texts;
  const std::string open = "<" + name + ">";
  for (std::size_t at = xml.find(open); at != std::string::npos; at = xml.find(open, at + 1)) {
    const std::size_t begin = at + open.size();
    texts.push_back(xml.substr(begin, xml.find('<', begin) - begin));
  }
  return texts;
}
std::int64_t sumOf(const std::string& xml, const std::string& name) {
  std::int64_t sum = 0;
  for (const std::string& text : textsOf(xml, name)) sum += Amount::read(text)->cents();
  return sum;
}

/// An invoice to a town hall of lines that come to 35.24.
Facturae facturae(InvoiceKind kind = InvoiceKind::kFull, Operation zeroRate = Operation::kTaxed) {
  Facturae made;
  made.lines = {
      {.article = "PAN", .description = "Barra & más", .quantity = 3, .price = 1.1, .rate = 4},
      {.article = "VINO",
       .description = "Vino",
       .quantity = 2,
       .price = 7.35,
       .discount = 10,
       .rate = 21},
      {.article = "AGUA", .description = "Agua", .quantity = 7, .price = 0.33, .rate = 21},
      {.article = "CAVA", .description = "Cava", .quantity = 1.255, .price = 13, .rate = 21}};
  made.lines[0].amount = 3.3;
  made.lines[1].amount = 13.23;
  made.lines[2].amount = 2.31;
  made.lines[3].amount = 16.4;
  std::vector<TaxedAmount> amounts;
  for (const FacturaeLine& line : made.lines) amounts.push_back({line.amount, line.rate, 0});
  const Breakdown split = breakdownOf(amounts, zeroRate);
  made.invoice = ticket();
  made.invoice.kind = kind;
  made.invoice.invoice.number = "F/12";
  made.invoice.recipients = {{"Ajuntament de Vic", "P0829900J"}};
  made.invoice.details = split.details;
  made.invoice.quota = split.quota;
  made.invoice.total = split.total;
  made.seller = {
      {"Colmado Rius SL", "B12345674"}, "the shop", {"Calle Nueva, 2", "50001", "Zaragoza", ""}};
  made.buyer = {made.invoice.recipients[0], "the customer 401", kTownHall};
  made.buyer.centres = {{"L01082982", "01", "Intervenció", kTownHall},
                        {"L01082982", "02", "Alcaldia", kTownHall},
                        {"L01082982", "03", "", kTownHall}};
  return made;
}

std::string schemaComplaints(const std::string& xml) {
  return complaintsBy(xml, "facturae/Facturaev3_2_2.xsd");
}

TEST(Facturae, HasTheAmountsOfItsRecordToTheCent) {
  const Facturae made = facturae();
  const std::string xml = xmlOf(made);
  EXPECT_EQ(made.invoice.total.text(), "35.24");
  EXPECT_THAT(textsOf(xml, "InvoiceTotal"), ElementsAre("35.24"));
  EXPECT_THAT(textsOf(xml, "TotalTaxOutputs"), ElementsAre(made.invoice.quota.text()));
  EXPECT_THAT(xml, HasSubstr("<TotalExecutableAmount>35.24</TotalExecutableAmount>"));
  EXPECT_EQ(sumOf(xml, "GrossAmount"), sumOf(xml, "TotalGrossAmount")) << "lines are the bases";
}

TEST(Facturae, SharesBasesAndTaxesOutToTheCentWhateverTheLines) {
  for (int lines = 1; lines <= 40; ++lines) {
    Facturae made = facturae();
    made.lines.clear();
    std::vector<TaxedAmount> amounts;
    for (int at = 0; at < lines; ++at) {
      const double amount = at % 7 == 3 ? -0.03 : 0.03 + at % 5 / 100.0;
      made.lines.push_back({.article = "A", .quantity = 1, .price = amount, .amount = amount});
      made.lines.back().rate = at % 3 == 0 ? 10 : 21;
      amounts.push_back({amount, made.lines.back().rate, 0});
    }
    const Breakdown split = breakdownOf(amounts, Operation::kTaxed);
    made.invoice.details = split.details;
    Detail& ten = made.invoice.details.front();
    ten.surchargeRate = Amount::read("1.40");
    ten.surchargeQuota = Amount::ofCents((ten.base.cents() * 14 + 500) / 1000);
    const std::int64_t surcharge = ten.surchargeQuota->cents();
    made.invoice.quota = Amount::ofCents(split.quota.cents() + surcharge);
    made.invoice.total = Amount::ofCents(split.total.cents() + surcharge);
    const std::string xml = xmlOf(made);
    EXPECT_EQ(sumOf(xml, "GrossAmount"), sumOf(xml, "TotalGrossAmount")) << lines;
    const std::string items = xml.substr(xml.find("<Items>"));
    EXPECT_EQ(sumOf(items, "TotalAmount"), made.invoice.total.cents())
        << lines << " lines: bases, taxes and surcharges";
  }
}

TEST(Facturae, TellsDiscountsByLineFromThePriceBefore) {
  const std::string xml = xmlOf(facturae());
  // 14.70 less tax is 12.15, and what is left of it 10.93.
  EXPECT_THAT(xml,
              HasSubstr("<Quantity>2</Quantity><UnitPriceWithoutTax>6.075</UnitPriceWithoutTax>"
                        "<TotalCost>12.15</TotalCost><DiscountsAndRebates><Discount>"
                        "<DiscountReason>Descuento</DiscountReason><DiscountRate>10"
                        "</DiscountRate><DiscountAmount>1.22</DiscountAmount></Discount>"
                        "</DiscountsAndRebates><GrossAmount>10.93</GrossAmount>"));
  EXPECT_THAT(xml, HasSubstr("<ItemDescription>Barra &amp; más</ItemDescription>"));
}

TEST(Facturae, NamesItsCentresWithTheirRoles) {
  Facturae made = facturae();
  made.buyer.centres.push_back({"L01082983", "04", "Cultura", kTownHall});
  const std::string xml = xmlOf(made);
  EXPECT_THAT(textsOf(xml, "RoleTypeCode"), ElementsAre("01", "02", "03", "04"));
  EXPECT_THAT(textsOf(xml, "CentreCode"), Contains("L01082983"));
  EXPECT_THAT(xml, HasSubstr("<InvoiceNumber>12</InvoiceNumber><InvoiceSeriesCode>F<"));
  EXPECT_THAT(textsOf(xml, "Province"), Contains("Zaragoza")) << "the postcode tells it";
}

TEST(Facturae, OfARectifyingInvoiceTellsWhatItRectifies) {
  Facturae made = facturae(InvoiceKind::kRectifying1);
  made.invoice.rectified = {{"B12345674", "F/7", Date::of(2027, 1, 9)}};
  const std::string xml = xmlOf(made);
  EXPECT_THAT(xml, HasSubstr("<InvoiceClass>OR</InvoiceClass><Corrective><InvoiceNumber>7"
                             "</InvoiceNumber><InvoiceSeriesCode>F</InvoiceSeriesCode><ReasonCode>"
                             "16</ReasonCode><ReasonDescription>Base imponible"));
  EXPECT_THAT(xml, HasSubstr("<CorrectionMethod>02</CorrectionMethod>"));
  EXPECT_THAT(xml, HasSubstr("<InvoiceIssueDate>2027-01-09</InvoiceIssueDate>"));
}

TEST(Facturae, WritesSurchargesWithExactlyTwoDecimals) {
  Facturae made = facturae();
  made.lines = {{.article = "VINO", .quantity = 1, .price = 121, .amount = 121, .rate = 21}};
  made.invoice.details = {detail("21.00", "100.00", "21.00")};
  made.invoice.details[0].surchargeRate = Amount::read("5.2");
  made.invoice.details[0].surchargeQuota = Amount::read("5.20");
  made.invoice.quota = *Amount::read("26.20");
  made.invoice.total = *Amount::read("126.20");
  const std::string xml = xmlOf(made);
  EXPECT_THAT(textsOf(xml, "EquivalenceSurcharge"), ElementsAre("5.20", "5.20"));
  EXPECT_THAT(textsOf(xml, "InvoiceTotal"), ElementsAre("126.20"));
}

/// All of it at 0 percent.
Facturae untaxed(Operation operation) {
  Facturae made = facturae();
  for (FacturaeLine& line : made.lines) line.rate = 0;
  const TaxedAmount whole{35.24, 0, 0};
  const Breakdown split = breakdownOf(std::span(&whole, 1), operation);
  made.invoice.details = split.details;
  made.invoice.quota = split.quota;
  made.invoice.total = split.total;
  return made;
}

TEST(Facturae, SaysWhyNothingIsTaxed) {
  EXPECT_THAT(xmlOf(untaxed(Operation::kExempt1)),
              HasSubstr("<SpecialTaxableEventCode>01</SpecialTaxableEventCode>"
                        "<SpecialTaxableEventReason>Exenta por el artículo 20"));
  EXPECT_THAT(xmlOf(untaxed(Operation::kNotSubject)),
              HasSubstr("<SpecialTaxableEventCode>02</SpecialTaxableEventCode>"));
  EXPECT_THAT(xmlOf(untaxed(Operation::kReverseCharge)),
              AllOf(HasSubstr("<LegalReference>Inversión del sujeto pasivo"),
                    Not(HasSubstr("SpecialTaxableEvent"))));
}

TEST(Facturae, OfEveryKindKeepsToTheSchema) {
  TAVELOR_NEEDS_SCHEMAS();
  Facturae person = facturae(InvoiceKind::kReplacing);
  person.invoice.replaced = {ticket().invoice};
  person.buyer.party = {"García López, Ana María", "12345678Z"};
  person.buyer.centres.clear();
  Facturae back = facturae(InvoiceKind::kRectifying2);
  back.invoice.rectified = {ticket().invoice, ticket().invoice};
  back.invoice.operationDay = Date::of(2027, 1, 31);
  for (FacturaeLine& line : back.lines) {
    line.quantity = -line.quantity;
    line.amount = -line.amount;
  }
  const Breakdown negative =
      negated({back.invoice.details, back.invoice.quota, back.invoice.total});
  back.invoice.details = negative.details;
  back.invoice.quota = negative.quota;
  back.invoice.total = negative.total;
  for (const Facturae& each :
       {facturae(), person, back, untaxed(Operation::kExempt6), untaxed(Operation::kReverseCharge),
        untaxed(Operation::kNotSubjectHere)}) {
    EXPECT_EQ(schemaComplaints(xmlOf(each)), "");
  }
}

TEST(Facturae, IsNotWrittenWhileSomethingIsMissingAndAllOfItIsNamed) {
  Facturae made = facturae();
  made.seller.address.postcode = "5000";
  made.seller.party = {"Rius", "12345678Z"};
  made.buyer.address.street.clear();
  made.buyer.centres.pop_back();
  made.buyer.centres[0].code.clear();
  made.buyer.centres[1].code = "L0108298200";
  EXPECT_THAT(
      faultsOf(made),
      ElementsAre("the shop is a person, whose name must be written \"surnames, name\", and is "
                  "\"Rius\"",
                  "the shop has no postcode of five digits", "the customer 401 has no street",
                  "the customer 401 has no centre of the role 03 (processing unit)",
                  "the customer 401 has no code of the centre 01",
                  "the code of the centre 02 of the customer 401 has more than 10 characters"));
  EXPECT_EQ(test::errorOf([&] { xmlOf(made); }), errors::kInvalidCall);
}

TEST(Facturae, OfAPublicBodyNeedsCentresAndOfOthersNone) {
  Facturae made = facturae();
  made.buyer.centres.clear();
  EXPECT_EQ(faultsOf(made).size(), 3U);
  made.buyer.party = {"Ñandú SA", "A58818501"};
  EXPECT_THAT(faultsOf(made), IsEmpty());
}

TEST(Facturae, IsRefusedForTicketsForeignersAndLinesThatDoNotAddUp) {
  Facturae made = facturae(InvoiceKind::kSimplified);
  EXPECT_THAT(faultsOf(made), ElementsAre(HasSubstr("it is a ticket")));
  made = facturae();
  made.buyer.party = {"Kneipe GmbH", "", ForeignId{"", "02", "DE123456789"}};
  EXPECT_THAT(faultsOf(made), Contains("the customer 401 has no Spanish fiscal number"));
  made = facturae();
  made.lines[0].amount = 3.31;
  made.lines[1].rate = 10;
  EXPECT_THAT(faultsOf(made),
              ElementsAre("a line has 10.00 percent of tax, and its record has not",
                          "the lines at 4.00 percent come to 3.31, and its record tells 3.30",
                          HasSubstr("the lines at 21.00 percent come to 18.71")));
}

TEST(Provinces, AreToldByThePostcodeOrByTheirNames) {
  EXPECT_EQ(provinceOf("08001", "Madrid"), 8);
  EXPECT_EQ(provinceOf("", "lérida"), 25);
  EXPECT_EQ(provinceOf("x", " A CORUÑA "), 15);
  EXPECT_EQ(provinceOf("53001", ""), std::nullopt);
  EXPECT_EQ(provinceOf("", "Andorra"), std::nullopt);
  EXPECT_EQ(provinceName(52), "Melilla");
  EXPECT_EQ(provinceName(53), "");
  for (int province = 1; province <= 52; ++province) {
    EXPECT_EQ(provinceOf("", provinceName(province)), province);
  }
}

}  // namespace
}  // namespace tavelor::fiscal
