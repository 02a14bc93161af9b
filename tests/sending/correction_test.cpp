// SPDX-License-Identifier: MIT
// Records that are made again, as the tax office did not want them as they were.
#include "tavelor/sending/correction.hpp"

#include <gmock/gmock.h>

#include "tests/sending/offices.hpp"

namespace tavelor::sending {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;

class CorrectionTest : public OfficeTest {
 protected:
  std::string complaintOf(const Correction& correction) {
    try {
      correct(*book_, correction);
    } catch (const Error& error) {
      EXPECT_EQ(error.number(), errors::kInvalidCall);
      return error.description();
    }
    return {};
  }
  void invoice() {
    fiscal::Registration record = fiscal::ticket();
    record.kind = fiscal::InvoiceKind::kFull;
    record.recipients = {{"Ñandú SA", "A58818501"}};
    add(record);
  }
};

TEST_F(CorrectionTest, OfARefusedRecordSaysThatTheOfficeHasNone) {
  invoice();
  office_.refuse("F/1", 1105, "Destinatario no censado");
  send();
  const fiscal::Party other{"Ñandú SL", "B12345674"};
  const fiscal::Record corrected = correct(*book_, {.number = "F/1", .recipient = other});
  const auto& record = std::get<fiscal::Registration>(corrected);
  EXPECT_TRUE(record.isCorrection);
  EXPECT_EQ(record.priorRefusal, "X");
  EXPECT_EQ(record.invoice.number, "F/1");
  EXPECT_EQ(book_->find("F/1")->record, record) << "what stands for the invoice from now on";
  EXPECT_EQ(documents("SELECT Serie FROM Fiscal_Registros WHERE Posicion = 2"), "Null");
  EXPECT_THAT(status().open, IsEmpty());
  EXPECT_EQ(sendLater().accepted, 1);
  EXPECT_EQ(states(), "IC");
  EXPECT_THAT(office_.taken(), ElementsAre("Subsanacion F/1 01-02-2027"));
}

TEST_F(CorrectionTest, OfARecordThatWasAcceptedWithErrorsSaysOnlyThatItIsOne) {
  sellMany(1);
  office_.acceptWithErrors("T/1", 2000, "Descripción");
  send();
  correct(*book_, {.number = "T/1", .description = "Pan y dulces"});
  EXPECT_EQ(sendLater().accepted, 1);
  EXPECT_EQ(states(), "AC");
  EXPECT_THAT(record(2), HasSubstr("<Subsanacion>S</Subsanacion><TipoFactura>"));
  EXPECT_THAT(record(2), HasSubstr("<DescripcionOperacion>Pan y dulces<"));
  EXPECT_THAT(status().open, IsEmpty());
  EXPECT_EQ(column("Corregido", 1), "2");
}

TEST_F(CorrectionTest, ThatWasRefusedItselfSaysSo) {
  sellMany(1);
  office_.acceptWithErrors("T/1", 2000, "Descripción");
  send();
  correct(*book_, {.number = "T/1"});
  office_.refuse("T/1", 2001, "Otra vez");
  sendLater();
  EXPECT_EQ(states(), "AI");
  correct(*book_, {.number = "T/1"});
  EXPECT_THAT(record(3), HasSubstr("<Subsanacion>S</Subsanacion><RechazoPrevio>S<"));
  EXPECT_EQ(sendLater().accepted, 1);
}

TEST_F(CorrectionTest, TakesThePlaceOfWhatTheOfficeHasFromElsewhere) {
  sellMany(1);
  office_.know("T/1", "01-02-2027", "Correcta");
  send();
  correct(*book_, {.number = "T/1"});
  EXPECT_THAT(record(2), HasSubstr("<RechazoPrevio>S<"));
  EXPECT_EQ(sendLater().accepted, 1);
  EXPECT_EQ(states(), "DC");
}

TEST_F(CorrectionTest, OfARefusedCancellationIsACancellationAgain) {
  sellMany(1);
  office_.refuse("T/1", 1, "Uno");
  documents_->BeginTrans();
  book_->cancel("T/1", {});
  documents_->CommitTrans();
  office_.refuse("T/1", 1, "Uno");
  send();
  EXPECT_EQ(states(), "II") << "what is not there cannot be cancelled";
  correct(*book_, {.number = "T/1"});
  EXPECT_THAT(record(3), HasSubstr("<SinRegistroPrevio>S</SinRegistroPrevio><RechazoPrevio>S<"));
  EXPECT_EQ(sendLater().accepted, 1);
  EXPECT_THAT(office_.taken(), ElementsAre("Anulacion T/1 01-02-2027"));
  EXPECT_THAT(complaintOf({.number = "T/1"}), HasSubstr("it is cancelled"));
  EXPECT_EQ(fiscal::check(*book_, {}).total.cents(), 0) << "cancelled once";
}

TEST_F(CorrectionTest, OfARecordForWhichMessagesAreRefusedWholeTakesItOut) {
  sellMany(1);
  office_.cannotRead("T/1");
  send();
  EXPECT_EQ(states(), "S");
  correct(*book_, {.number = "T/1"});
  EXPECT_EQ(states(), "I-");
}

TEST_F(CorrectionTest, IsRefusedWhereNobodyKnowsWhatIsWrong) {
  EXPECT_THAT(complaintOf({.number = "T/1"}), HasSubstr("there is none"));
  sellMany(1);
  EXPECT_THAT(complaintOf({.number = "T/1"}), HasSubstr("waits to be sent"));
  send(Way::kBroken);
  EXPECT_THAT(complaintOf({.number = "T/1"}), HasSubstr("waits to be sent"));
}

TEST_F(CorrectionTest, ThatTheOfficeWouldRefuseIsNotWritten) {
  sellMany(1);
  office_.refuse("T/1", 1, "Uno");
  send();
  const std::string complaint =
      complaintOf({.number = "T/1", .recipient = fiscal::Party{"Ñandú SA", "A58818502"}});
  EXPECT_THAT(complaint, HasSubstr("A58818502"));
  EXPECT_EQ(states(), "I");
  EXPECT_EQ(column("Corregido", 1), "Null");
}

TEST_F(CorrectionTest, CannotMakeAnotherInvoiceOfIt) {
  fiscal::Registration record = sell(1.21);
  record.total = fiscal::Amount::ofCents(122);
  documents_->BeginTrans();
  EXPECT_EQ(test::errorOf([&] { book_->correct(record); }), errors::kInvalidCall);
  EXPECT_EQ(test::errorOf([&] { book_->cancelAgain("T/1", false); }), errors::kInvalidCall);
  documents_->RollbackTrans();
}

TEST_F(CorrectionTest, IsNoMatterOfAShopThatDoesNotSend) {
  fiscal::Settings other = fiscal::settings();
  other.mode = fiscal::Mode::kNotSending;
  book_ = std::make_unique<fiscal::Book>(other, documents_);
  EXPECT_THAT(complaintOf({.number = "T/1"}), HasSubstr("does not send"));
}

}  // namespace
}  // namespace tavelor::sending
