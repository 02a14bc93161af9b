// SPDX-License-Identifier: MIT
// The signatures of a shop that does not send: who gets one, and what a look at them finds.
#include "tavelor/signing/record_signatures.hpp"

#include <atomic>
#include <fstream>
#include <thread>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/fiscal/export.hpp"
#include "tavelor/signing/signature.hpp"
#include "tests/fiscal/samples.hpp"
#include "tests/fiscal/shops.hpp"
#include "tests/signing/certificates.hpp"

namespace tavelor::signing {
namespace {

using ::testing::AllOf;
using ::testing::ElementsAre;
using ::testing::Field;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::SizeIs;
using ::testing::StartsWith;

/// A shop that does not send, on 1 February 2027, with nothing recorded.
class RecordSignaturesTest : public fiscal::BookTest {
 protected:
  RecordSignaturesTest() {
    EXPECT_EQ(certificates_.made(), "");
    use(fiscal::Mode::kNotSending);
  }

  void use(fiscal::Mode mode) {
    fiscal::Settings settings = fiscal::settings();
    settings.mode = mode;
    book_ = std::make_unique<fiscal::Book>(settings, documents_);
  }
  Certificate certificate(const char* file = "shop.p12") const {
    return Certificate::read(certificates_.path(file), "TAVELOR_TEST_PASSWORD");
  }
  RecordSigner signer() const { return {*book_, certificate()}; }

  void sellMany(int count) {
    for (int at = 1; at <= count; ++at) sell(1.21);
  }
  SignedBatch signAll() const {
    SignedBatch all;
    RecordSigner signer = this->signer();
    while (const auto batch = signer.signNext()) {
      all.records += batch->records;
      all.events += batch->events;
      all.left.insert(all.left.end(), batch->left.begin(), batch->left.end());
    }
    return all;
  }
  std::string count(const std::string& table) { return documents("SELECT Count(*) FROM " + table); }
  /// A record, or an event, as it was signed.
  std::string signedText(const std::string& column, const std::string& table,
                         const std::string& signatures, int position) {
    const std::string where = " WHERE Posicion = " + std::to_string(position);
    return fiscal::withSignature(documents("SELECT " + column + " FROM " + table + where),
                                 documents("SELECT Firma FROM " + signatures + where));
  }
  std::string signedRecord(int position) {
    return signedText("Registro", "Fiscal_Registros", "Fiscal_Firmas", position);
  }
  std::string signedEvent(int position) {
    return signedText("Evento", "Fiscal_Eventos", "Fiscal_Firmas_Eventos", position);
  }
  std::vector<std::string> sentences() const {
    std::vector<std::string> all;
    for (const fiscal::Flaw& flaw : lookAtSignatures(*book_).flaws) all.push_back(flaw.sentence);
    return all;
  }

  const Certificates& certificates_ = Certificates::all();
};

TEST_F(RecordSignaturesTest, StandBesideRecordsAndEventsAndChangeNeither) {
  sellMany(2);
  const std::string record = documents("SELECT Registro FROM Fiscal_Registros WHERE Posicion = 2");
  const std::string event = documents("SELECT Evento FROM Fiscal_Eventos");
  const SignedBatch all = signAll();
  EXPECT_EQ(all.records, 2U);
  EXPECT_EQ(all.events, 1U);
  EXPECT_THAT(all.left, IsEmpty());
  EXPECT_EQ(documents("SELECT Registro FROM Fiscal_Registros WHERE Posicion = 2"), record);
  EXPECT_EQ(documents("SELECT Evento FROM Fiscal_Eventos"), event);
  for (const std::string& each : {signedRecord(1), signedRecord(2), signedEvent(1)}) {
    EXPECT_EQ(certificates_.complaintsOf(each), "");
    EXPECT_THAT(each, HasSubstr("<xades:Identifier>urn:oid:2.16.724.1.3.1.1.2.1.9<"));
    EXPECT_THAT(each, HasSubstr("<xades:SigningTime>2027-02-01T10:32:05"));
  }
  EXPECT_TRUE(fiscal::check(*book_).isWhole());
}

TEST_F(RecordSignaturesTest, OfRecordsAndEventsAreWhatTheirSchemasWant) {
  TAVELOR_NEEDS_SCHEMAS();
  sellMany(1);
  documents_->BeginTrans();
  book_->cancel("T/1", {});
  documents_->CommitTrans();
  signAll();
  EXPECT_EQ(fiscal::complaintsOf(signedRecord(1), "SuministroInformacion.xsd"), "");
  EXPECT_EQ(fiscal::complaintsOf(signedRecord(2), "SuministroInformacion.xsd"), "");
  EXPECT_EQ(fiscal::complaintsOf(signedEvent(1), "EventosSIF.xsd"), "");
}

TEST_F(RecordSignaturesTest, AreMadeAHundredAtATimeAndGoOnWhereASweepHasEnded) {
  sellMany(105);
  EXPECT_EQ(signer().signNext()->records, 100U);
  EXPECT_EQ(count("Fiscal_Firmas"), "100");
  EXPECT_EQ(documents("SELECT Max(Posicion) FROM Fiscal_Firmas"), "100");
  const SignedBatch rest = signAll();
  EXPECT_EQ(rest.records, 5U);
  EXPECT_EQ(rest.events, 1U);
  EXPECT_EQ(signer().signNext(), std::nullopt) << "nothing is left";
  sell(1.21);
  EXPECT_EQ(signAll().records, 1U);
}

// As a program that is killed between two signatures of a step.
TEST_F(RecordSignaturesTest, OfAStepThatFailsAreNotStored) {
  sellMany(3);
  shop_.apartment().trace().listen([&](const TraceEntry& entry) {
    if (!entry.text.starts_with("INSERT INTO Fiscal_Firmas")) return;
    if (entry.text.find("(1, 2, ") != std::string::npos) raise(errors::kTimeout, "Test", "Gone.");
  });
  RecordSigner fails = signer();
  EXPECT_EQ(test::errorOf([&] { fails.signNext(); }), errors::kTimeout);
  shop_.apartment().trace().listen({});
  EXPECT_EQ(count("Fiscal_Firmas"), "0");
  EXPECT_EQ(documents_->transactionLevel(), 0);
  EXPECT_EQ(signAll().records, 3U);
}

// The other sweep signs the same records between this one's reading and its storing.
TEST_F(RecordSignaturesTest, OfTwoSweepsAtOnceAreStoredOnce) {
  sellMany(3);
  RecordSigner first = signer();
  RecordSigner second = signer();
  bool isDone = false;
  std::uint64_t ofSecond = 0;
  shop_.apartment().trace().listen([&](const TraceEntry& entry) {
    if (isDone || !entry.text.starts_with("SELECT R.Posicion, R.Sello, ")) return;
    isDone = true;
    ofSecond = second.signNext()->records;
  });
  const auto batch = first.signNext();
  shop_.apartment().trace().listen({});
  EXPECT_TRUE(isDone);
  EXPECT_EQ(batch->records + ofSecond, 3U);
  EXPECT_EQ(count("Fiscal_Firmas"), "3");
  EXPECT_THAT(sentences(), IsEmpty());
}

TEST_F(RecordSignaturesTest, OfTwoSweepsInThreadsAreStoredOnce) {
  sellMany(250);
  std::atomic<std::uint64_t> records = 0;
  std::atomic<std::uint64_t> events = 0;
  const auto sweep = [&] {
    const Apartment apartment(shop_.installationPtr());
    const fiscal::Book book(book_->settings(), DataSession().OpenConnection(3));
    RecordSigner signer(book, certificate());
    while (const auto batch = signer.signNext()) {
      records += batch->records;
      events += batch->events;
    }
  };
  std::thread other(sweep);
  sweep();
  other.join();
  EXPECT_EQ(records, 250U);
  EXPECT_EQ(events, 1U);
  EXPECT_EQ(count("Fiscal_Firmas"), "250");
  EXPECT_THAT(sentences(), IsEmpty());
}

TEST_F(RecordSignaturesTest, AreNotGivenToWhatIsNotAsItWasSealed) {
  sellMany(3);
  exchange(2, ">Venta<", ">Regalo<");
  const SignedBatch all = signAll();
  EXPECT_EQ(all.records, 2U);
  EXPECT_THAT(all.left,
              ElementsAre("record 2 is left without a signature: it is not as it was sealed"));
  EXPECT_EQ(lookAtSignatures(*book_).unsignedRecords, 1U);
}

TEST_F(RecordSignaturesTest, AreOfWhatWasRecordedWithoutSendingOnly) {
  use(fiscal::Mode::kSending);
  sell(1.21);
  use(fiscal::Mode::kNotSending);
  sell(1.21);
  sell(1.21);
  use(fiscal::Mode::kSending);
  sell(1.21);
  EXPECT_EQ(lookAtSignatures(*book_).unsignedRecords, 2U);
  EXPECT_EQ(signAll().records, 2U);
  EXPECT_EQ(documents("SELECT Min(Posicion) FROM Fiscal_Firmas"), "2");
  EXPECT_EQ(documents("SELECT Max(Posicion) FROM Fiscal_Firmas"), "3");
  EXPECT_EQ(lookAtSignatures(*book_).unsignedRecords, 0U);
}

TEST_F(RecordSignaturesTest, AreNotMadeWithACertificateThatHasExpired) {
  sellMany(1);
  RecordSigner late(*book_, certificate("old.p12"));
  EXPECT_THAT(test::sentenceOf([&] { late.signNext(); }), HasSubstr("has expired on 01-01-2020"));
  EXPECT_EQ(count("Fiscal_Firmas"), "0");
}

TEST_F(RecordSignaturesTest, WantACertificateAndSayHowToNameIt) {
  EXPECT_THAT(test::sentenceOf([&] { certificateOf(book_->settings(), shop_.installation()); }),
              HasSubstr("there is no certificate to sign with: `tavelor fiscal setup --certificate "
                        "FILE --password-variable NAME` names it"));
  fiscal::Settings settings = book_->settings();
  settings.certificate = certificates_.path("shop.p12");
  settings.passwordName = "TAVELOR_TEST_WRONG_PASSWORD";
  EXPECT_THAT(test::sentenceOf([&] { certificateOf(settings, shop_.installation()); }),
              HasSubstr("has another password than the variable TAVELOR_TEST_WRONG_PASSWORD"));
}

// ---------------------------------------------------------------------------------------------
// Looking at them

TEST_F(RecordSignaturesTest, TellWhoHasSignedAndHowManyAreMissing) {
  sellMany(2);
  signAll();
  sell(1.21);
  const SignaturesReport report = lookAtSignatures(*book_);
  EXPECT_EQ(report.looked, 3U);
  EXPECT_EQ(report.unsignedRecords, 1U);
  EXPECT_EQ(report.unsignedEvents, 0U);
  EXPECT_THAT(report.flaws, IsEmpty());
  EXPECT_THAT(report.signers,
              ElementsAre(AllOf(Field(&Signer::subject, HasSubstr("CN=Colmado Rius")),
                                Field(&Signer::signatures, 3U))));
}

TEST_F(RecordSignaturesTest, ThatDoNotHoldAreNamedTheFirstOneFirst) {
  sellMany(4);
  signAll();
  exchange(3, ">Venta<", ">Regalo<");
  exchange(4, ">Venta<", ">Regalo<");
  const SignaturesReport report = lookAtSignatures(*book_);
  ASSERT_THAT(report.flaws, SizeIs(2));
  EXPECT_EQ(report.flaws[0].sentence,
            "record 3, the invoice T/3 of 01-02-2027, has a signature that does not hold: it is "
            "not as it was signed");
  EXPECT_EQ(report.flaws[0].position, 3);
  EXPECT_EQ(report.flaws[0].invoice->number, "T/3");
  EXPECT_EQ(report.flaws[1].position, 4);
}

TEST_F(RecordSignaturesTest, OfOtherBytesAreNamed) {
  sellMany(3);
  signAll();
  const std::string first = documents("SELECT Firma FROM Fiscal_Firmas WHERE Posicion = 1");
  change("UPDATE Fiscal_Firmas SET Firma = '" + first + "' WHERE Posicion = 2");
  EXPECT_THAT(sentences(), ElementsAre(StartsWith("record 2, the invoice T/2 of 01-02-2027, has")));
}

TEST_F(RecordSignaturesTest, OfAnEventThatWasChangedAreNamed) {
  sellMany(1);
  signAll();
  std::string event = documents("SELECT Evento FROM Fiscal_Eventos");
  event.replace(event.find("Colmado"), 7, "Mercado");
  change("UPDATE Fiscal_Eventos SET Evento = '" + event + "'");
  const SignaturesReport report = lookAtSignatures(*book_);
  ASSERT_THAT(report.flaws, SizeIs(1));
  EXPECT_TRUE(report.flaws[0].isOfEvent);
  EXPECT_THAT(report.flaws[0].sentence, StartsWith("event 1, 01 of 2027-02-01T10:32:05"));
}

TEST_F(RecordSignaturesTest, OfRecordsThatAreGoneAreNamed) {
  sellMany(2);
  signAll();
  change("DELETE FROM Fiscal_Registros WHERE Posicion = 2");
  EXPECT_THAT(sentences(), ElementsAre("record 2 is not there, but its signature is"));
}

TEST_F(RecordSignaturesTest, ThatDoNotHoldAreAnAnomalyInTheLog) {
  sellMany(1);
  signAll();
  change("UPDATE Fiscal_Firmas SET Firma = '<x/>'");
  fiscal::CheckReport report = fiscal::check(*book_);
  EXPECT_TRUE(report.isWhole());
  for (fiscal::Flaw& flaw : lookAtSignatures(*book_).flaws) report.flaws.push_back(flaw);
  documents_->BeginTrans();
  fiscal::logCheck(*book_, report);
  documents_->CommitTrans();
  const std::string logged = documents("SELECT Evento FROM Fiscal_Eventos WHERE Tipo = '04'");
  EXPECT_THAT(logged, HasSubstr("<TipoAnomalia>02</TipoAnomalia>"));
  EXPECT_THAT(logged, HasSubstr("T/1"));
}

TEST_F(RecordSignaturesTest, OfASpanAreThoseOfItsInvoices) {
  sellMany(2);
  signAll();
  wait(86'400);
  sell(1.21);
  change("UPDATE Fiscal_Registros SET Fecha_Expedicion = #02/02/2027# WHERE Posicion = 3");
  const fiscal::DaySpan second = {Date::of(2027, 2, 2), {}};
  EXPECT_EQ(lookAtSignatures(*book_, second).looked, 0U);
  EXPECT_EQ(lookAtSignatures(*book_, second).unsignedRecords, 1U);
  EXPECT_EQ(lookAtSignatures(*book_, {{}, Date::of(2027, 2, 1)}).looked, 2U);
}

// ---------------------------------------------------------------------------------------------
// Giving them away

TEST_F(RecordSignaturesTest, StandInTheFilesOfAnExportAndHoldThere) {
  sellMany(2);
  signAll();
  sell(1.21);
  const test::TemporaryFolder folder;
  const fiscal::ExportReport report =
      fiscal::exportRecords(*book_, {}, (folder.path() / "out").string());
  EXPECT_EQ(report.unsignedRecords, 1U);
  EXPECT_EQ(report.unsignedEvents, 0U);
  const auto textOf = [](const std::string& file) {
    std::ifstream in(file, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  const std::string message = textOf(report.files.at(0));
  EXPECT_EQ(message.find("</ds:Signature>", message.find(signedRecord(2)) + 1),
            message.rfind("</ds:Signature>"));
  const std::size_t begin = message.find("<RegistroAlta");
  const std::size_t end = message.find("</RegistroFactura>");
  ASSERT_NE(begin, std::string::npos);
  EXPECT_EQ(certificates_.complaintsOf(message.substr(begin, end - begin)), "")
      << "taken out byte for byte";
  EXPECT_EQ(certificates_.complaintsOf(textOf(report.files.at(1))), "") << "the event";
  EXPECT_THAT(textOf(report.files.at(2)), HasSubstr("# not signed: records 1, events 0\n"));
  TAVELOR_NEEDS_SCHEMAS();
  EXPECT_EQ(fiscal::complaintsOf(message, "SuministroLR.xsd"), "");
  EXPECT_EQ(fiscal::complaintsOf(textOf(report.files.at(1)), "EventosSIF.xsd"), "");
}

}  // namespace
}  // namespace tavelor::signing
