// SPDX-License-Identifier: MIT
// Hashes, XML and the schemas that it keeps to.
#include <gmock/gmock.h>

#include "tavelor/fiscal/qr.hpp"
#include "tests/fiscal/samples.hpp"

namespace tavelor::fiscal {
namespace {

using ::testing::HasSubstr;
using ::testing::StartsWith;

// The tax office's own examples.
Registration official(std::string number, std::string moment, std::optional<Link> previous) {
  Registration record;
  record.invoice = {"89890001K", std::move(number), Date::of(2024, 1, 1)};
  record.kind = InvoiceKind::kFull;
  record.quota = *Amount::read("12.35");
  record.total = *Amount::read("123.45");
  record.chaining.previous = std::move(previous);
  record.chaining.moment = std::move(moment);
  return record;
}

const std::string kFirstHash = "3C464DAF61ACB827C65FDA19F352A4E3BDC2C640E9E9FC4CC058073F38F12F60";
const std::string kSecondHash = "F7B94CFD8924EDFF273501B01EE5153E4CE8F259766F88CF6ACB8935802A2B97";

TEST(RecordHash, OfTheFirstRecordIsTheOfficialOne) {
  const Registration record = official("12345678/G33", "2024-01-01T19:20:30+01:00", {});
  EXPECT_EQ(hashedText(record),
            "IDEmisorFactura=89890001K&NumSerieFactura=12345678/G33&FechaExpedicionFactura=01-01-"
            "2024&TipoFactura=F1&CuotaTotal=12.35&ImporteTotal=123.45&Huella=&"
            "FechaHoraHusoGenRegistro=2024-01-01T19:20:30+01:00");
  EXPECT_EQ(hashOf(record), kFirstHash);
}

TEST(RecordHash, OfTheSecondRecordIsTheOfficialOne) {
  const Registration first = official("12345678/G33", "2024-01-01T19:20:30+01:00", {});
  const Registration record =
      official("12345679/G34", "2024-01-01T19:20:35+01:00", Link{first.invoice, hashOf(first)});
  EXPECT_EQ(hashOf(record), kSecondHash);
}

TEST(RecordHash, OfACancellationIsTheOfficialOne) {
  Cancellation record;
  record.invoice = {"89890001K", "12345679/G34", Date::of(2024, 1, 1)};
  record.chaining.previous = Link{record.invoice, kSecondHash};
  record.chaining.moment = "2024-01-01T19:20:40+01:00";
  EXPECT_EQ(hashOf(record), "177547C0D57AC74748561D054A9CEC14B4C4EA23D1BEFD6F2E69E3A388F90C68");
}

TEST(RecordHash, TakesAmountsAsTheyAreWrittenAndNoBlanksAround) {
  Registration record = official(" 12345678/G33 ", "2024-01-01T19:20:30+01:00", {});
  EXPECT_EQ(hashOf(record), kFirstHash);
  record.total = *Amount::read("123.4");
  record.quota = *Amount::read("12");
  EXPECT_THAT(hashedText(record), HasSubstr("&CuotaTotal=12&ImporteTotal=123.4&"));
}

TEST(RecordHash, OfAnEventNamesTheNumbersOfProducerAndTaxpayer) {
  Event event;
  event.system = system();
  event.taxpayer = {.name = "Colmado Rius", .number = "89890001K"};
  event.kind = EventKind::kCheck;
  event.moment = "2027-02-01T10:32:05+01:00";
  EXPECT_EQ(hashedText(event),
            "NIF=B12345674&ID=&IdSistemaInformatico=TV&Version=1.0.0&NumeroInstalacion=1&NIF="
            "89890001K&TipoEvento=03&HuellaEvento=&FechaHoraHusoGenEvento=2027-02-01T10:32:05+01:"
            "00");
  event.previous = EventLink{EventKind::kBegin, event.moment, kFirstHash};
  event.system.producer = {"Workshop Ltd", "", ForeignId{"IE", "04", "X1"}};
  EXPECT_THAT(hashedText(event), StartsWith("NIF=&ID=X1&"));
  EXPECT_THAT(hashedText(event), HasSubstr("&HuellaEvento=" + kFirstHash + "&"));
}

// ---------------------------------------------------------------------------------------------
// XML

/// A record of each kind, with every element that there is.
std::vector<Record> everyKind() {
  std::vector<Record> records = {ticket()};
  Registration full = ticket();
  full.invoice.number = "F/1";
  full.issuerName = "Rius & Fills <SL>";
  full.kind = InvoiceKind::kFull;
  full.isQualifiedTicket = true;
  full.isCorrection = true;
  full.priorRefusal = "X";
  full.operationDay = Date::of(2027, 1, 31);
  full.recipients = {{"Ñandú SA", "A58818501"},
                     {"Pub Ltd", "", ForeignId{"IE", "04", "IE-1"}},
                     {"Kneipe GmbH", "", ForeignId{"", "02", "DE123456789"}}};
  full.details.push_back({.operation = Operation::kExempt1, .base = *Amount::read("5.00")});
  full.details.push_back({.operation = Operation::kReverseCharge,
                          .rate = Amount(),
                          .base = *Amount::read("7.00"),
                          .quota = Amount()});
  full.details.push_back({.rate = Amount::read("21.00"),
                          .base = *Amount::read("100.00"),
                          .quota = Amount::read("21.00"),
                          .surchargeRate = Amount::read("5.20"),
                          .surchargeQuota = Amount::read("5.20")});
  full.isLarge = true;
  chain(full, ticket());
  records.emplace_back(full);

  Registration back = ticket();
  back.invoice.number = "R/1";
  back.kind = InvoiceKind::kRectifying5;
  back.rectified = {ticket().invoice};
  chain(back, full);
  records.emplace_back(back);

  Registration substitution = back;
  substitution.kind = InvoiceKind::kRectifying1;
  substitution.isSubstitution = true;
  substitution.substituted = Substituted{Amount(), Amount(), Amount()};
  substitution.recipients = {{"Ñandú SA", "A58818501"}};
  records.emplace_back(substitution);

  Registration replacing = full;
  replacing.kind = InvoiceKind::kReplacing;
  replacing.isQualifiedTicket = false;
  replacing.replaced = {ticket().invoice, back.invoice};
  records.emplace_back(replacing);

  Registration nobody = ticket();
  nobody.hasNoRecipientByLaw = true;
  records.emplace_back(nobody);

  Cancellation cancellation;
  cancellation.invoice = ticket().invoice;
  cancellation.hasNoRecord = true;
  cancellation.wasRefused = true;
  chain(cancellation, full);
  records.emplace_back(cancellation);
  return records;
}

std::vector<Event> everyEvent() {
  const EventLink before{EventKind::kBegin, "2027-02-01T10:32:05+01:00", kFirstHash};
  const Link record{ticket().invoice, kSecondHash};
  const auto eventOf = [&](EventKind kind, decltype(Event::data) data) {
    Event event;
    event.system = system();
    event.taxpayer = {.name = "Colmado Rius", .number = "89890001K"};
    event.moment = "2027-02-01T10:33:00+01:00";
    event.kind = kind;
    event.data = std::move(data);
    event.previous = before;
    event.hash = hashOf(event);
    return event;
  };
  Event first = eventOf(EventKind::kBegin, {});
  first.previous.reset();
  first.text = "Alta & baja";
  const std::string moment = first.moment;
  return {
      first,
      eventOf(EventKind::kEnd, {}),
      eventOf(EventKind::kCheck, Checked{3, 2, 1}),
      eventOf(EventKind::kAnomaly, Anomaly{"07", "La huella no es la suya", ticket().invoice, {}}),
      eventOf(EventKind::kEventCheck, Checked{3, 2, 1}),
      eventOf(EventKind::kEventAnomaly, Anomaly{"01", "", {}, before}),
      eventOf(EventKind::kBackupRestored, {}),
      eventOf(EventKind::kExport, Exported{moment, moment, record, record, {}, {}, 12, 1}),
      eventOf(EventKind::kEventExport, Exported{moment, moment, {}, {}, before, before, 12}),
      eventOf(EventKind::kSummary, Summary{{{EventKind::kCheck, 2}}, record, record, 12, 1}),
      eventOf(EventKind::kOther, {}),
  };
}

TEST(RecordXml, IsReadBackAsItWasWritten) {
  for (const Record& record : everyKind()) {
    const std::string xml = xmlOf(record);
    EXPECT_EQ(readRecord(xml), record) << xml;
    EXPECT_EQ(xmlOf(readRecord(xml)), xml);
  }
}

TEST(RecordXml, OfAnEventIsReadBackButForItsOwnData) {
  for (Event event : everyEvent()) {
    const std::string xml = xmlOf(event);
    event.data = {};
    EXPECT_EQ(readEvent(xml), event) << xml;
    EXPECT_EQ(readEvent(withSignature(xml)), event) << "whatever signs it";
  }
}

TEST(RecordXml, OfEveryKindKeepsToTheSchema) {
  TAVELOR_NEEDS_SCHEMAS();
  std::string records;
  for (const Record& record : everyKind()) records += inMessage(xmlOf(record));
  EXPECT_EQ(complaintsOf(message(records), "SuministroLR.xsd"), "");
}

TEST(RecordXml, OfEveryEventKeepsToTheSchema) {
  TAVELOR_NEEDS_SCHEMAS();
  for (const Event& event : everyEvent()) {
    EXPECT_EQ(complaintsOf(withSignature(xmlOf(event)), "EventosSIF.xsd"), "") << xmlOf(event);
  }
}

std::string complaintOf(std::string xml, std::string_view from, std::string_view to) {
  xml.replace(xml.find(from), from.size(), to);
  try {
    readRecord(xml);
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errors::kInvalidCall);
    return error.description();
  }
  return {};
}

TEST(RecordXml, ThatIsNotUnderstoodIsRefusedWithItsPlace) {
  const std::string xml = xmlOf(ticket());
  EXPECT_THAT(complaintOf(xml, "<IDVersion>1.0", "<IDVersion>2.0"),
              HasSubstr("<IDVersion> does not take \"2.0\""));
  EXPECT_THAT(complaintOf(xml, "01-02-2027", "31-02-2027"),
              HasSubstr("<FechaExpedicionFactura> does not take \"31-02-2027\""));
  EXPECT_THAT(complaintOf(xml, "+01:00", ""), HasSubstr("<FechaHoraHusoGenRegistro>"));
  EXPECT_THAT(complaintOf(xml, ">F2<", ">F9<"), HasSubstr("<TipoFactura> does not take \"F9\""));
  EXPECT_THAT(complaintOf(xml, ">21.40<", ">21,40<"), HasSubstr("<CuotaTotal>"));
  EXPECT_THAT(complaintOf(xml, "<TipoHuella>01</TipoHuella>", ""),
              HasSubstr("<Huella> stands where <TipoHuella> must"));
  EXPECT_THAT(complaintOf(xml, "<CuotaTotal>", "<Coste>1</Coste><CuotaTotal>"),
              HasSubstr("line 1, column"));
  EXPECT_THAT(complaintOf(xml, "</RegistroAlta>", "<Otro/></RegistroAlta>"),
              HasSubstr("<Otro> stands where nothing may"));
  EXPECT_THAT(complaintOf(xml, "<NombreRazonEmisor>Colmado Rius", "<NombreRazonEmisor><b>C</b>"),
              HasSubstr("must hold a text"));
  EXPECT_NE(complaintOf(xml, "</RegistroAlta>", ""), "");
}

TEST(RecordXml, IsOneLineWithTheRecordsNamespace) {
  EXPECT_THAT(xmlOf(ticket()), StartsWith("<RegistroAlta xmlns=\"" + std::string(kRecordNamespace) +
                                          "\"><IDVersion>1.0</IDVersion>"));
  EXPECT_EQ(escaped("a < b & c > d"), "a &lt; b &amp; c &gt; d");
}

// ---------------------------------------------------------------------------------------------
// The code's address

TEST(QrAddress, IsTheOfficialOne) {
  EXPECT_EQ(qrAddress({"89890001K", "12345678&G33", Date::of(2024, 1, 1)}, *Amount::read("241.4")),
            "https://www2.agenciatributaria.gob.es/wlpl/TIKE-CONT/ValidarQR?nif=89890001K&numserie="
            "12345678%26G33&fecha=01-01-2024&importe=241.4");
}

TEST(QrAddress, OfASystemThatDoesNotSendAndOfTheTestHostIsAnother) {
  const InvoiceId invoice{"89890001K", "T/1 +", Date::of(2027, 2, 1)};
  EXPECT_EQ(qrAddress(invoice, *Amount::read("-1.00"), {.isSending = false, .isTest = true}),
            "https://prewww2.aeat.es/wlpl/TIKE-CONT/ValidarQRNoVerifactu?nif=89890001K&numserie=T%"
            "2F1%20%2B&fecha=01-02-2027&importe=-1.00");
}

}  // namespace
}  // namespace tavelor::fiscal
