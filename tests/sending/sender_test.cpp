// SPDX-License-Identifier: MIT
// What becomes of records that are sent, whatever the tax office answers.
#include "tavelor/sending/sender.hpp"

#include <array>
#include <chrono>
#include <future>

#include <gmock/gmock.h>
#include <unistd.h>

#include "tests/sending/offices.hpp"

namespace tavelor::sending {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::SizeIs;

class SenderTest : public OfficeTest {
 protected:
  /// After a message with three records that had no good answer: they wait, with a reason, and are
  /// accepted by the next message, once.
  void expectNothingIsLost(const Round& round, const std::string& reason) {
    EXPECT_EQ(round.what, What::kFailed);
    EXPECT_EQ(round.unanswered, 3);
    EXPECT_THAT(round.reason, HasSubstr(reason));
    EXPECT_EQ(states(), "EEE");
    EXPECT_THAT(column("Texto", 2), HasSubstr(reason));
    EXPECT_EQ(status().waiting, 3);
    EXPECT_EQ(status().unanswered, 3);
    EXPECT_EQ(status().failures, 1);
    EXPECT_THAT(status().reason, HasSubstr(reason));
    expectTheNextTakesThem();
  }
  void expectTheNextTakesThem() {
    const Round next = sendLater();
    EXPECT_EQ(next.what, What::kAnswered) << next.reason;
    EXPECT_EQ(next.accepted, 3);
    EXPECT_EQ(states(), "CCC");
    EXPECT_EQ(column("Texto", 2), "Null");
    EXPECT_EQ(status().waiting, 0);
    EXPECT_EQ(status().reason, "");
    EXPECT_THAT(office_.taken(),
                ElementsAre("Alta T/1 01-02-2027", "Alta T/2 01-02-2027", "Alta T/3 01-02-2027"));
    EXPECT_EQ(sendLater().what, What::kNothing);
  }
};

TEST_F(SenderTest, SendsWhatWaitsInTheChainsOrderAndOnce) {
  EXPECT_EQ(send().what, What::kNothing);
  sellMany(3);
  const Round round = send();
  EXPECT_EQ(round.what, What::kAnswered);
  EXPECT_EQ(round.records, 3);
  EXPECT_EQ(round.accepted, 3);
  EXPECT_EQ(states(), "CCC");
  EXPECT_EQ(column("CSV", 3), "A-0001");
  EXPECT_EQ(column("Momento", 3).substr(0, 19), "2027-02-01T10:32:05");
  EXPECT_THAT(office_.taken(),
              ElementsAre("Alta T/1 01-02-2027", "Alta T/2 01-02-2027", "Alta T/3 01-02-2027"));
  EXPECT_EQ(sendLater().what, What::kNothing);
  EXPECT_THAT(office_.messages(), SizeIs(1));
  EXPECT_THAT(office_.messages()[0], HasSubstr(record(2)));
}

TEST_F(SenderTest, TellsWhatWasAcceptedWithErrors) {
  sellMany(3);
  office_.acceptWithErrors("T/2", 2004, "La fecha &amp; la hora");
  const Round round = send();
  EXPECT_EQ(round.accepted, 2);
  EXPECT_EQ(round.withErrors, 1);
  EXPECT_EQ(states(), "CAC");
  EXPECT_EQ(column("Codigo", 2), "2004");
  const ChainStatus now = status();
  EXPECT_EQ(now.accepted, 3);
  EXPECT_EQ(now.withErrors, 1);
  ASSERT_THAT(now.open, SizeIs(1));
  EXPECT_EQ(now.open[0].invoice.number, "T/2");
  EXPECT_EQ(now.open[0].standing, Standing::kWithErrors);
  EXPECT_EQ(now.open[0].text, "La fecha & la hora");
}

TEST_F(SenderTest, SetsARefusedRecordApartAndGoesOn) {
  sellMany(3);
  office_.refuse("T/2", 1105, "Destinatario no censado");
  EXPECT_EQ(send().refused, 1);
  EXPECT_EQ(states(), "CIC");
  EXPECT_EQ(status().waiting, 0);
  sell(1.21);
  EXPECT_EQ(sendLater().accepted, 1);
  EXPECT_EQ(states(), "CICC");
  EXPECT_THAT(office_.messages()[1], Not(HasSubstr(">T/2</NumSerieFactura><FechaExpedicionFactura>"
                                                   "01-02-2027</FechaExpedicionFactura></IDFac")));
  ASSERT_THAT(status().open, SizeIs(1));
  EXPECT_EQ(status().open[0].code, 1105);
  EXPECT_EQ(status().open[0].text, "Destinatario no censado");
}

TEST_F(SenderTest, StoresThatAllWereRefused) {
  sellMany(2);
  office_.refuse("T/1", 1, "Uno");
  office_.refuse("T/2", 2, "Dos");
  EXPECT_EQ(send().refused, 2);
  EXPECT_EQ(states(), "II");
  EXPECT_EQ(column("CSV", 1), "Null");
  EXPECT_EQ(column("Texto", 2), "Dos");
}

TEST_F(SenderTest, FindsTheRecordsOfLinesInAnyOrder) {
  sellMany(3);
  office_.refuse("T/3", 7, "Tres");
  EXPECT_EQ(send(Way::kBackward).accepted, 2);
  EXPECT_EQ(states(), "CCI");
}

TEST_F(SenderTest, WaitsForASlowAnswer) {
  sellMany(3);
  EXPECT_EQ(send(Way::kSlowly).accepted, 3);
}

TEST_F(SenderTest, LosesNothingWhereNoAnswerComesInTime) {
  sellMany(3);
  office_.next(Way::kNever);
  Endpoint impatient = endpoint();
  impatient.totalSeconds = 3;
  const Round round = Sender(*book_, impatient).sendNext();
  office_.release();
  expectNothingIsLost(round, "timed out");
}

TEST_F(SenderTest, LosesNothingWhereTheAnswerBreaksOff) {
  sellMany(3);
  expectNothingIsLost(send(Way::kHalf), "transfer closed with");
}

TEST_F(SenderTest, LosesNothingWhereTheAnswerIsNoXml) {
  sellMany(3);
  expectNothingIsLost(send(Way::kBroken), "its answer does not read, line 1, column ");
}

TEST_F(SenderTest, LosesNothingWhereAPageForPeopleComes) {
  sellMany(3);
  expectNothingIsLost(send(Way::kLogin), "its answer is no SOAP message");
}

TEST_F(SenderTest, LosesNothingWhereTheOfficeIsUnavailable) {
  sellMany(3);
  expectNothingIsLost(send(Way::kUnavailable), "it answers with status 503");
}

TEST_F(SenderTest, FollowsNobodyToAnotherAddress) {
  sellMany(3);
  expectNothingIsLost(send(Way::kRedirect), "it sends to another address (status 302)");
  EXPECT_THAT(office_.messages(), SizeIs(2));
}

TEST_F(SenderTest, ReadsNoAnswerWithoutEnd) {
  sellMany(3);
  office_.next(Way::kHuge);
  Endpoint narrow = endpoint();
  narrow.mostBytes = 100'000;
  expectNothingIsLost(Sender(*book_, narrow).sendNext(), "has more than 100000 bytes");
}

TEST_F(SenderTest, LosesNothingToAFaultOfTheServer) {
  sellMany(3);
  expectNothingIsLost(send(Way::kServerFault),
                      "it refuses the message (env:Server): Codigo[103].Servicio no disponible");
}

TEST_F(SenderTest, WhereNobodyListensHasSentNothing) {
  sellMany(3);
  Endpoint nobody{.url = "http://127.0.0.1:1/"};
  const Round round = Sender(*book_, nobody).sendNext();
  EXPECT_EQ(round.what, What::kFailed);
  EXPECT_THAT(round.reason, HasSubstr("Failed to connect"));
  EXPECT_EQ(states(), "---") << "nothing has left this computer";
  EXPECT_EQ(status().failures, 1);
  EXPECT_EQ(status().unanswered, 0);
  expectTheNextTakesThem();
}

TEST_F(SenderTest, ARecordWithoutALineWaits) {
  sellMany(3);
  const Round round = send(Way::kWithoutFirst);
  EXPECT_EQ(round.accepted, 2);
  EXPECT_EQ(round.unanswered, 1);
  EXPECT_EQ(round.reason, "the answer does not tell of 1 record");
  EXPECT_EQ(states(), "ECC");
  EXPECT_EQ(column("Texto", 1), "the answer has no line for it");
  EXPECT_EQ(sendLater().accepted, 1);
  EXPECT_EQ(states(), "CCC");
}

TEST_F(SenderTest, ARecordWithTwoLinesWaits) {
  sellMany(3);
  const Round round = send(Way::kTwice);
  EXPECT_EQ(round.unanswered, 1);
  EXPECT_EQ(states(), "ECC");
  EXPECT_THAT(column("Texto", 1), HasSubstr("which of its lines"));
}

TEST_F(SenderTest, ARecordWithAVerdictThatNobodyKnowsWaits) {
  sellMany(3);
  EXPECT_EQ(send(Way::kOddWord).unanswered, 1);
  EXPECT_EQ(states(), "ECC");
}

TEST_F(SenderTest, ALineOfARecordThatWasNotSentIsTold) {
  sellMany(3);
  const Round round = send(Way::kWithStranger);
  EXPECT_EQ(round.accepted, 3);
  EXPECT_EQ(round.reason, "the answer has 1 line of records that were not sent");
  EXPECT_EQ(states(), "CCC");
}

TEST_F(SenderTest, TakesADuplicateOfALostAnswerAsItIsThere) {
  sellMany(3);
  office_.acceptWithErrors("T/2", 2004, "La hora");
  documents_->BeginTrans();
  book_->cancel("T/3", {});
  documents_->CommitTrans();
  send(Way::kBroken);
  const Round round = sendLater();
  EXPECT_EQ(round.accepted, 3) << "of the cancelled one, and its cancellation";
  EXPECT_EQ(round.withErrors, 1);
  EXPECT_EQ(states(), "CACC");
}

TEST_F(SenderTest, ADuplicateOfWhatWasNeverSentFromHereIsRefused) {
  sellMany(2);
  office_.know("T/1", "01-02-2027", "Correcta");
  EXPECT_EQ(send().refused, 1);
  EXPECT_EQ(states(), "DC");
  ASSERT_THAT(status().open, SizeIs(1));
  EXPECT_EQ(status().open[0].standing, Standing::kOtherIsThere);
  EXPECT_EQ(status().open[0].code, 3000);
}

TEST_F(SenderTest, FindsTheRecordForWhichAMessageIsRefusedWhole) {
  sellMany(4);
  office_.cannotRead("T/3");
  EXPECT_EQ(send().what, What::kFailed);
  EXPECT_EQ(sendLater().records, 2) << "half of them";
  EXPECT_EQ(states(), "CCEE");
  EXPECT_EQ(sendLater().records, 2) << "up to twice as many after an answer";
  EXPECT_EQ(sendLater().records, 1);
  EXPECT_EQ(states(), "CCSE") << "alone it is refused too, and comes behind others";
  EXPECT_EQ(sendLater().accepted, 1);
  EXPECT_EQ(states(), "CCSC");
  sell(1.21);
  EXPECT_EQ(sendLater().accepted, 1);
  EXPECT_EQ(states(), "CCSCC");
  EXPECT_EQ(status().waiting, 1);
  ASSERT_THAT(status().open, SizeIs(1));
  EXPECT_THAT(status().open[0].text, HasSubstr("El XML no cumple el esquema"));
  EXPECT_EQ(sendLater().what, What::kFailed) << "it is tried where no other one waits";
}

TEST_F(SenderTest, AFaultThatBlamesEveryMessageSetsNothingApartForGood) {
  sellMany(2);
  for (int at = 0; at < 4; ++at) EXPECT_EQ(sendLater(Way::kClientFault).what, What::kFailed);
  EXPECT_EQ(states(), "SS");
  while (sendLater().what == What::kAnswered) {
  }
  EXPECT_EQ(states(), "CC");
}

TEST_F(SenderTest, WaitsAMinuteAtFirst) {
  sellMany(1);
  EXPECT_EQ(send().next, time() + 60);
  sellMany(1);
  wait(59);
  const Round early = send();
  EXPECT_EQ(early.what, What::kNotYet);
  EXPECT_EQ(early.next, time() + 1);
  EXPECT_EQ(early.records, 1);
  EXPECT_EQ(states(), "C-");
  wait(1);
  EXPECT_EQ(send().what, What::kAnswered);
}

TEST_F(SenderTest, WaitsAsLongAsTheLastAnswerTold) {
  office_.setWait("300");
  sellMany(1);
  send();
  sellMany(1);
  EXPECT_EQ(status().wait, 300);
  wait(299);
  EXPECT_EQ(send().what, What::kNotYet);
  wait(1);
  office_.setWait("");
  EXPECT_EQ(send().next, time() + 300) << "an answer that tells none changes none";
}

TEST_F(SenderTest, WaitsAfterAMessageWithoutAnAnswerToo) {
  sellMany(1);
  send(Way::kUnavailable);
  wait(30);
  EXPECT_EQ(send().what, What::kNotYet);
}

TEST_F(SenderTest, DoesNotWaitWhereAThousandDo) {
  sellMany(2001);
  EXPECT_EQ(send().records, 1000);
  EXPECT_EQ(send().records, 1000);
  EXPECT_EQ(send().what, What::kNotYet);
  EXPECT_EQ(sendLater().records, 1);
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Envios WHERE Estado = 'C'"), "2001");
  EXPECT_THAT(office_.taken()[1000], "Alta T/1001 01-02-2027");
}

TEST_F(SenderTest, DoesNotTrustATimeThatOnlyAWrongClockCanHaveTold) {
  sellMany(2);
  send();
  sellMany(1);
  change("UPDATE Fiscal_Remisiones SET Siguiente = Siguiente + 100000000");
  EXPECT_EQ(send().what, What::kAnswered);
}

TEST_F(SenderTest, IsOneAtATime) {
  sellMany(1);
  send();
  sellMany(1);
  wait(61);
  const std::string lease = " , Plazo = " + std::to_string(time() + 240);
  change("UPDATE Fiscal_Remisiones SET Remitente = 'till02 1 00'" + lease);
  const Round busy = send();
  EXPECT_EQ(busy.what, What::kBusy);
  EXPECT_EQ(busy.next, time() + 240);
  EXPECT_EQ(status().sender, "till02 1 00");
  EXPECT_EQ(states(), "C-");
  wait(240);
  EXPECT_EQ(send().accepted, 1) << "the other one is dead";
  EXPECT_EQ(status().sender, "");
}

TEST_F(SenderTest, GoesOnAtOnceForADeadOneOfThisComputer) {
  sellMany(1);
  send();
  sellMany(1);
  wait(61);
  std::array<char, 64> host{};
  ASSERT_EQ(gethostname(host.data(), host.size() - 1), 0);
  // No process has so high a number.
  change("UPDATE Fiscal_Remisiones SET Remitente = '" + std::string(host.data()) +
         " 2000000000 00', Plazo = " + std::to_string(time() + 240));
  EXPECT_EQ(send().what, What::kAnswered);
}

TEST_F(SenderTest, WhoseMessageAnotherOneHasTakenOverLeavesItsAnswerAlone) {
  sellMany(1);
  // While the answer of this one is under way, another sender begins a message with the record.
  office_.onTaken([&](const std::string&) {
    const Apartment other(shop_.installationPtr());
    const ConnectionPtr documents = DataSession().OpenConnection(3);
    documents->Execute(Statement("UPDATE Fiscal_Remisiones SET Mensajes = 2, Remitente = 'x'"));
    documents->Execute(Statement("UPDATE Fiscal_Envios SET Mensaje = 2, Veces = 2"));
  });
  EXPECT_EQ(send().what, What::kAnswered);
  office_.onTaken({});
  EXPECT_EQ(states(), "E") << "the other one's answer tells";
  EXPECT_EQ(status().sender, "x");
}

TEST_F(SenderTest, TellsOfAnOutageWhereRecordsAreOldOrAMessageHadNoAnswer) {
  const std::string told = "<Incidencia>S</Incidencia>";
  sellMany(1);
  wait(240);
  send(Way::kUnavailable);
  EXPECT_THAT(office_.messages()[0], Not(HasSubstr(told)));
  sendLater();
  EXPECT_THAT(office_.messages()[1], HasSubstr(told)) << "the one before had no answer";
  sellMany(1);
  sendLater();
  EXPECT_THAT(office_.messages()[2], Not(HasSubstr(told)));
  sellMany(1);
  wait(241);
  send();
  EXPECT_THAT(office_.messages()[3], HasSubstr(told)) << "it could have gone a minute ago";
}

TEST_F(SenderTest, KeepsWhatWasMadeWhileTheShopDidNotSend) {
  sellMany(1);
  fiscal::Settings other = fiscal::settings();
  other.mode = fiscal::Mode::kNotSending;
  book_ = std::make_unique<fiscal::Book>(other, documents_);
  sellMany(2);
  book_ = std::make_unique<fiscal::Book>(fiscal::settings(), documents_);
  sellMany(1);
  EXPECT_EQ(status().waiting, 2);
  EXPECT_EQ(send().records, 2);
  EXPECT_EQ(states(), "C--C");
  EXPECT_EQ(status().waiting, 0);
  sellMany(1);
  EXPECT_EQ(sendLater().records, 1);
}

TEST_F(SenderTest, SendsTheChainOfAnInstallationNumberBeforeToo) {
  sellMany(1);
  fiscal::Settings other = fiscal::settings();
  other.system.installation = "2";
  book_ = std::make_unique<fiscal::Book>(other, documents_);
  sellMany(1);
  EXPECT_EQ(send().chain, 1);
  EXPECT_EQ(send().chain, 2);
  EXPECT_THAT(office_.taken(), ElementsAre("Alta T/1 01-02-2027", "Alta T/2 01-02-2027"));
}

TEST_F(SenderTest, StoresTextThatIsNoUtf8) {
  sellMany(1);
  office_.refuse("T/1", 9, "mal\xF3 \x01 fin");
  // Slowly, as what is no XML by the letter is not held against the schema.
  EXPECT_EQ(send(Way::kSlowly).refused, 1);
  EXPECT_EQ(column("Texto", 1), "mal? ? fin");
}

// The message hangs in another thread while sales are stored, each in its own transaction.
TEST_F(SenderTest, NoSaleWaitsWhileAnAnswerHangsInAThread) {
  sellMany(3);
  office_.next(Way::kNever);
  const Date now = shop_.apartment().clock().now();
  auto sending = std::async(std::launch::async, [&] {
    Apartment apartment(shop_.installationPtr());
    apartment.clock().fix(now);
    const fiscal::Book book(fiscal::settings(), DataSession().OpenConnection(3));
    return Sender(book, endpoint()).sendNext();
  });
  office_.awaitCaller();
  for (int at = 0; at < 20; ++at) sell(1.21);
  EXPECT_EQ(states().substr(0, 4), "EEE-") << "the answer still hangs";
  EXPECT_EQ(sending.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
  office_.release();
  EXPECT_EQ(sending.get().accepted, 3);
  EXPECT_EQ(states().substr(0, 4), "CCC-");
  EXPECT_EQ(status().waiting, 20);
}

}  // namespace
}  // namespace tavelor::sending
