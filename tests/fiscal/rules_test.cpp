// SPDX-License-Identifier: MIT
// What the tax office refuses.
#include "tavelor/fiscal/rules.hpp"

#include <gmock/gmock.h>

#include "tests/fiscal/samples.hpp"

namespace tavelor::fiscal {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

std::vector<std::string> faultsOf(const Registration& record) {
  return fiscal::faultsOf(record, kIssued);
}

Registration invoice() {
  Registration record = ticket();
  record.kind = InvoiceKind::kFull;
  record.recipients = {{"Ñandú SA", "A58818501"}};
  return record;
}

TEST(RecordRules, HaveNothingAgainstATicketAndAnInvoice) {
  EXPECT_THAT(faultsOf(ticket()), IsEmpty());
  EXPECT_THAT(faultsOf(invoice()), IsEmpty());
}

TEST(RecordRules, TakeNoDayInTheFutureAndNoneBeforeThereWereRecords) {
  EXPECT_EQ(kFirstDay, Date::of(2024, 10, 28));
  Registration record = ticket();
  record.invoice.day = Date::of(2027, 2, 2);
  EXPECT_THAT(faultsOf(record), ElementsAre("the day of issue lies in the future: 02-02-2027"));
  record.invoice.day = Date::of(2024, 10, 27);
  EXPECT_THAT(faultsOf(record), ElementsAre("the day of issue lies before 28-10-2024"));
  record.invoice.day = kFirstDay;
  EXPECT_THAT(faultsOf(record), IsEmpty());
}

TEST(RecordRules, WantARecipientOfInvoicesAndNoneOfTickets) {
  Registration record = invoice();
  record.recipients.clear();
  EXPECT_THAT(faultsOf(record), ElementsAre("an invoice F1 names who buys"));
  record = invoice();
  record.kind = InvoiceKind::kSimplified;
  EXPECT_THAT(faultsOf(record), ElementsAre("an invoice F2 names nobody who buys"));
  record.kind = InvoiceKind::kRectifying5;
  EXPECT_THAT(faultsOf(record), ElementsAre("an invoice R5 names nobody who buys"));
}

TEST(RecordRules, ReadNumbersStrictly) {
  const auto faultOfNumber = [](const char* number) {
    Registration record = invoice();
    record.recipients.front().number = number;
    const auto faults = faultsOf(record);
    return faults.empty() ? std::string() : faults.front();
  };
  EXPECT_THAT(faultOfNumber("A5881850A"), HasSubstr("the fiscal number A5881850A of Ñandú SA"));
  EXPECT_EQ(faultOfNumber(""), "Ñandú SA has no fiscal number");
  EXPECT_EQ(faultOfNumber("A-58818501"),
            "the fiscal number A-58818501 is not written as A58818501");
  EXPECT_NE(faultOfNumber("00000000T"), "");
}

TEST(RecordRules, WantForeignersIdentified) {
  Registration record = invoice();
  record.recipients = {{"Pub Ltd", "", ForeignId{"IE", "04", "1"}}};
  EXPECT_THAT(faultsOf(record), IsEmpty());
  record.recipients.front().foreign = ForeignId{"", "04", "1"};
  EXPECT_THAT(faultsOf(record), ElementsAre("Pub Ltd has no country"));
  record.recipients.front().foreign = ForeignId{"", "02", ""};
  EXPECT_THAT(faultsOf(record), ElementsAre("the identification of Pub Ltd is missing"));
  record.recipients.front().foreign = ForeignId{"IE", "01", "1"};
  EXPECT_THAT(faultsOf(record), ElementsAre(HasSubstr("type 01, which there is not")));
}

TEST(RecordRules, LetATicketGoUpToItsLimitAndATenner) {
  const auto ticketOf = [](std::int64_t total) {
    Registration record = ticket();
    record.details = {{.operation = Operation::kExempt1, .base = Amount::ofCents(total)}};
    record.quota = Amount();
    record.total = Amount::ofCents(total);
    return record;
  };
  EXPECT_THAT(faultsOf(ticketOf(3'010'00)), IsEmpty());
  EXPECT_THAT(faultsOf(ticketOf(3'010'01)),
              ElementsAre("above 3000.00 EUR an invoice must name who buys"));
  Registration byLaw = ticketOf(4'000'00);
  byLaw.hasNoRecipientByLaw = true;
  EXPECT_THAT(faultsOf(byLaw), IsEmpty());
}

TEST(RecordRules, KnowRatesInTheirMonths) {
  const Date today = Date::of(2027, 2, 1);
  for (const std::int64_t rate : {0, 400, 1000, 2100}) EXPECT_TRUE(isLegalRate(rate, 0, today));
  EXPECT_FALSE(isLegalRate(1600, 0, today));
  EXPECT_TRUE(isLegalRate(2100, 520, today));
  EXPECT_TRUE(isLegalRate(2100, 175, today));
  EXPECT_TRUE(isLegalRate(1000, 140, today));
  EXPECT_TRUE(isLegalRate(400, 50, today));
  EXPECT_FALSE(isLegalRate(1000, 520, today));
  EXPECT_TRUE(isLegalRate(200, 26, Date::of(2024, 12, 31)));
  EXPECT_FALSE(isLegalRate(200, 26, Date::of(2025, 1, 1)));
  EXPECT_TRUE(isLegalRate(750, 100, Date::of(2024, 10, 1)));
  EXPECT_FALSE(isLegalRate(750, 0, Date::of(2024, 9, 30)));
  EXPECT_TRUE(isLegalRate(500, 50, Date::of(2022, 12, 31)));
  EXPECT_TRUE(isLegalRate(500, 62, Date::of(2023, 1, 1)));
  EXPECT_FALSE(isLegalRate(500, 0, Date::of(2024, 10, 1)));
}

TEST(RecordRules, ARectifyingInvoiceKeepsTheRateOfItsOperation) {
  Registration record = ticket();
  record.kind = InvoiceKind::kRectifying5;
  record.details = {detail("2.00", "-100.00", "-2.00")};
  record.quota = *Amount::read("-2.00");
  record.total = *Amount::read("-102.00");
  EXPECT_THAT(faultsOf(record), ElementsAre("on 01-02-2027 the law knows no tax of 2.00 %"));
  record.operationDay = Date::of(2024, 12, 1);
  EXPECT_THAT(faultsOf(record), IsEmpty());
}

TEST(RecordRules, WantQuotasToFitTheirBases) {
  Registration record = ticket();
  record.details.back().quota = Amount::read("31.00");
  record.quota = *Amount::read("31.40");
  record.total = *Amount::read("141.40");
  EXPECT_THAT(faultsOf(record), IsEmpty()) << "ten euros are let go";
  record.details.back().quota = Amount::read("31.01");
  EXPECT_THAT(faultsOf(record), ElementsAre("21.00 % of 100.00 is not 31.01"));
  record = ticket();
  record.details.back().quota = Amount::read("-0.01");
  record.quota = *Amount::read("0.39");
  record.total = *Amount::read("110.39");
  EXPECT_THAT(faultsOf(record), ElementsAre("21.00 % of 100.00 is not -0.01",
                                            "base 100.00 and quota -0.01 have other signs"));
}

TEST(RecordRules, WantSumsToFitTheirParts) {
  Registration record = ticket();
  record.quota = *Amount::read("31.41");
  EXPECT_THAT(faultsOf(record), ElementsAre("its quotas come to 21.40, and not to 31.41"));
  record = ticket();
  record.total = *Amount::read("141.41");
  EXPECT_THAT(faultsOf(record),
              ElementsAre("its bases and quotas come to 131.40, and not to 141.41"));
  for (Detail& each : record.details) each.regime = "03";
  EXPECT_THAT(faultsOf(record), IsEmpty()) << "where the total is not compared";
}

TEST(RecordRules, LetNoTicketTellWhoOwesTheTax) {
  Registration record = invoice();
  record.details = {{.operation = Operation::kReverseCharge,
                     .rate = Amount(),
                     .base = *Amount::read("100.00"),
                     .quota = Amount()}};
  record.quota = Amount();
  record.total = *Amount::read("100.00");
  EXPECT_THAT(faultsOf(record), IsEmpty());
  record.kind = InvoiceKind::kSimplified;
  record.recipients.clear();
  EXPECT_THAT(faultsOf(record),
              ElementsAre("where who buys owes the tax, an invoice F2 cannot tell it"));
}

TEST(RecordRules, TellWhatIsReplacedWithASubstitutionOnly) {
  Registration record = ticket();
  record.kind = InvoiceKind::kRectifying5;
  EXPECT_THAT(faultsOf(record), IsEmpty());
  record.isSubstitution = true;
  EXPECT_THAT(faultsOf(record),
              ElementsAre("what is replaced is told with a substitution, and only then"));
  record.substituted = Substituted{};
  EXPECT_THAT(faultsOf(record), IsEmpty());
  record = ticket();
  record.replaced = {ticket().invoice};
  record.rectified = {ticket().invoice};
  EXPECT_THAT(faultsOf(record),
              ElementsAre("an invoice F2 rectifies none", "an invoice F2 replaces no tickets"));
}

TEST(RecordRules, WantACorrectionWhereNothingWasSent) {
  Registration record = ticket();
  record.priorRefusal = "X";
  EXPECT_THAT(faultsOf(record), ElementsAre("what was never sent is sent as a correction"));
  record.isCorrection = true;
  EXPECT_THAT(faultsOf(record), IsEmpty());
}

TEST(RecordRules, MarkLargeInvoices) {
  Registration record = invoice();
  record.details = {{.operation = Operation::kExempt1, .base = Amount::ofCents(-kLargeInvoice)}};
  record.quota = Amount();
  record.total = Amount::ofCents(-kLargeInvoice);
  EXPECT_THAT(faultsOf(record), ElementsAre(HasSubstr("marked as large")));
  record.isLarge = true;
  EXPECT_THAT(faultsOf(record), IsEmpty());
}

TEST(RecordRules, TakeNumbersOfPlainCharactersOnly) {
  EXPECT_EQ(faultOfNumber("T/1"), "");
  for (const char* const wrong : {"", "T\"1", "T'1", "T<1", "T>1", "T=1", "Té1", "T\n1", " T/1"}) {
    EXPECT_NE(faultOfNumber(wrong), "") << wrong;
  }
  EXPECT_EQ(faultOfNumber(std::string(60, '1')), "");
  EXPECT_NE(faultOfNumber(std::string(61, '1')), "");
}

TEST(RecordRules, WantTextsThatARecordTakes) {
  Registration record = ticket();
  record.description.clear();
  record.issuerName = std::string(121, 'x');
  EXPECT_THAT(faultsOf(record),
              ElementsAre("the name of who issues it has more than 120 characters",
                          "the description is missing"));
  EXPECT_EQ(recordText("  Ñandú\tSA\n", 120), "Ñandú SA");
  EXPECT_EQ(recordText("Ñandú SA", 6), "Ñandú");
  EXPECT_EQ(recordText(" \x01 ", 6), "");
  EXPECT_EQ(recordText("A\x7f"
                       "B \xc3\x91 \xf0\x9f\x98\x80",
                       120),
            "A B \xc3\x91 \xf0\x9f\x98\x80");
}

TEST(RecordRules, TakeNoCharacterThatNoXmlMayHold) {
  for (const char* const none : {"\xef\xbf\xbe", "\xef\xbf\xbf"}) {
    EXPECT_EQ(recordText(std::string("Bar") + none + "Rius", 120), "Bar Rius");
    Registration record = ticket();
    record.description = std::string("Venta") + none;
    EXPECT_THAT(faultsOf(record), ElementsAre("the description holds control characters"));
  }
  Registration record = ticket();
  record.description = "Venta \xef\xbf\xbd";
  EXPECT_THAT(faultsOf(record), IsEmpty());
}

TEST(RecordRules, CountRates) {
  Registration record = ticket();
  record.details.assign(13, detail("21.00", "1.00", "0.21"));
  record.quota = *Amount::read("2.73");
  record.total = *Amount::read("15.73");
  EXPECT_THAT(faultsOf(record), ElementsAre("it has more than 12 rates"));
  record.details.clear();
  EXPECT_THAT(faultsOf(record), ::testing::Contains("it has no lines"));
}

}  // namespace
}  // namespace tavelor::fiscal
