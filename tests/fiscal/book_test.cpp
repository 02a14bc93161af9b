// SPDX-License-Identifier: MIT
// How records and events are added to their chains.
#include "tavelor/fiscal/book.hpp"

#include <gmock/gmock.h>

#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/fiscal/samples.hpp"
#include "tests/fiscal/shops.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::fiscal {
namespace {

using ::testing::HasSubstr;

TEST_F(BookTest, ChainsRecordsAndCountsEachSeriesByItself) {
  const Registration first = sell(1.21, 1.0);
  wait(5);
  const Registration second = sell(2.42, 2.0);
  EXPECT_EQ(first.invoice.number, "T/1");
  EXPECT_EQ(first.chaining.previous, std::nullopt);
  EXPECT_EQ(first.chaining.hash, hashOf(first));
  EXPECT_EQ(first.issuerName, "Colmado Rius");
  EXPECT_EQ(second.invoice.number, "T/2");
  EXPECT_EQ(second.chaining.previous, (Link{first.invoice, first.chaining.hash}));
  Registration back = second;
  back.kind = InvoiceKind::kRectifying5;
  back.rectified = {second.invoice};
  const Registration third = add(back, 3.0);
  EXPECT_EQ(third.invoice.number, "R/1");
  EXPECT_EQ(third.chaining.previous->hash, second.chaining.hash);
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Registros"), "3");
  EXPECT_EQ(documents("SELECT Total FROM Fiscal_Registros WHERE Posicion = 2"), "2,42");
  EXPECT_EQ(documents("SELECT Serie_Numero FROM Fiscal_Relaciones WHERE Tipo = 'R'"), "T/2");
  EXPECT_EQ(book_->end().records, 3);
  EXPECT_EQ(book_->end().last->hash, third.chaining.hash);
}

TEST_F(BookTest, StoresTheRecordAsItIsHashed) {
  const Registration added = sell(1.21, 1.0);
  const std::string xml = documents("SELECT Registro FROM Fiscal_Registros");
  EXPECT_EQ(std::get<Registration>(readRecord(xml)), added);
  EXPECT_EQ(documents("SELECT Huella FROM Fiscal_Registros"), added.chaining.hash);
  EXPECT_EQ(documents("SELECT Sello FROM Fiscal_Registros"), Hasher()("", xml));
}

TEST_F(BookTest, GoesOnWithTheChainAfterItWasClosed) {
  const Registration first = sell(1.21);
  book_ = std::make_unique<Book>(settings(), documents_);
  EXPECT_EQ(sell(2.42).chaining.previous->hash, first.chaining.hash);
}

TEST_F(BookTest, OfAnotherInstallationIsAnotherChainWithTheSameSeries) {
  sell(1.21);
  Settings other = settings();
  other.system.installation = "2";
  book_ = std::make_unique<Book>(other, documents_);
  const Registration first = sell(2.42);
  EXPECT_EQ(first.chaining.previous, std::nullopt);
  EXPECT_EQ(first.invoice.number, "T/2") << "no number is given twice by one taxpayer";
}

TEST_F(BookTest, WithATransactionThatIsUndoneLeavesNothing) {
  sell(1.21);
  documents_->BeginTrans();
  book_->add(std::get<Registration>(readRecord(documents("SELECT Registro FROM Fiscal_Registros"))),
             {});
  documents_->RollbackTrans();
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Registros"), "1");
  EXPECT_EQ(sell(2.42).invoice.number, "T/2");
}

// As on an engine that lets two programs read the same end: the other one's record is there before
// this one has written its own.
TEST_F(BookTest, WhoseEndSomebodyElseHasWrittenMeanwhileIsTriedAgain) {
  const Registration sold = sell(1.21);
  bool isWritten = false;
  shop_.apartment().trace().listen([&](const TraceEntry& entry) {
    if (isWritten || !entry.text.starts_with("INSERT INTO Fiscal_Registros")) return;
    isWritten = true;
    documents_->Execute(Statement("UPDATE Fiscal_Cadenas SET Registros = Registros + 1"));
  });
  documents_->BeginTrans();
  EXPECT_EQ(test::errorOf([&] { book_->add(sold, {}); }), errors::kTryAgain);
  documents_->RollbackTrans();
  shop_.apartment().trace().listen({});
  EXPECT_EQ(sell(1.21).invoice.number, "T/2");
}

TEST_F(BookTest, LetsTimeStandStillForAMinuteOnly) {
  EXPECT_EQ(sell(1.21).chaining.moment.substr(0, 19), "2027-02-01T10:32:05");
  wait(-60);
  EXPECT_EQ(sell(1.21).chaining.moment.substr(0, 19), "2027-02-01T10:32:05");
  wait(-1);
  EXPECT_EQ(sell(1.21).chaining.moment.substr(0, 19), "2027-02-01T10:31:04");
}

TEST_F(BookTest, CancelsAnInvoiceOnce) {
  const Registration sold = sell(1.21, 1.0);
  documents_->BeginTrans();
  const Cancellation cancelled = book_->cancel("T/1", {});
  documents_->CommitTrans();
  EXPECT_EQ(cancelled.invoice, sold.invoice);
  EXPECT_EQ(cancelled.chaining.previous->hash, sold.chaining.hash);
  EXPECT_TRUE(book_->isRelated(sold.invoice, "A"));
  EXPECT_EQ(documents("SELECT Tipo FROM Fiscal_Registros WHERE Posicion = 2"), "AN");
  EXPECT_EQ(test::errorOf([&] { book_->cancel("T/1", {}); }), errors::kInvalidCall);
  EXPECT_EQ(test::errorOf([&] { book_->cancel("T/9", {}); }), errors::kInvalidCall);
  EXPECT_EQ(sell(1.21).chaining.previous, (Link{sold.invoice, cancelled.chaining.hash}));
}

TEST_F(BookTest, TakesNoOtherTaxpayersInvoiceForThatOfATicket) {
  const Registration sold = sell(1.21, 7.0);
  Settings other = settings();
  other.taxpayer.number = "B12345674";
  book_ = std::make_unique<Book>(other, documents_);
  EXPECT_EQ(sell(2.42, 8.0).invoice.number, sold.invoice.number);
  EXPECT_EQ(book_->invoiceOf(7), std::nullopt);
  EXPECT_EQ(book_->invoiceOf(8)->record.total.text(), "2.42");
}

TEST_F(BookTest, FindsTheInvoiceThatStandsForATicket) {
  const Registration sold = sell(1.21, 7.0);
  EXPECT_EQ(book_->invoiceOf(7)->record, sold);
  EXPECT_EQ(book_->invoiceOf(8), std::nullopt);
  EXPECT_EQ(book_->find("T/1")->record, sold);
  Registration replacing = sold;
  replacing.kind = InvoiceKind::kReplacing;
  replacing.replaced = {sold.invoice};
  replacing.recipients = {{"Ñandú SA", "A58818501"}};
  add(replacing);
  EXPECT_EQ(book_->invoiceOf(7)->record.invoice.number, "F/1");
}

TEST_F(BookTest, CorrectsARecordByAnotherOneOfTheSameInvoice) {
  const Registration sold = sell(1.21, 7.0);
  Registration right = sold;
  right.description = "Pan";
  documents_->BeginTrans();
  const Registration corrected = book_->correct(right);
  documents_->CommitTrans();
  EXPECT_TRUE(corrected.isCorrection);
  EXPECT_EQ(corrected.invoice, sold.invoice);
  EXPECT_EQ(corrected.chaining.previous->hash, sold.chaining.hash);
  EXPECT_EQ(book_->invoiceOf(7)->record, corrected);
  EXPECT_EQ(book_->ticketOf(corrected.invoice), 7);
  EXPECT_EQ(documents("SELECT Ticket FROM Fiscal_Registros WHERE Posicion = 2"), "Null");
  EXPECT_EQ(sell(1.21).invoice.number, "T/2") << "it takes no number of the series";
  EXPECT_EQ(documents("SELECT Registro FROM Fiscal_Registros WHERE Posicion = 1"), xmlOf(sold));
}

TEST_F(BookTest, CorrectsNoInvoiceThatIsCancelled) {
  const Registration sold = sell(1.21);
  documents_->BeginTrans();
  book_->cancel("T/1", {});
  EXPECT_EQ(test::errorOf([&] { book_->correct(sold); }), errors::kInvalidCall);
  EXPECT_TRUE(book_->cancelAgain("T/1", true).hasNoRecord);
  documents_->RollbackTrans();
}

TEST_F(BookTest, OfASystemThatSendsKeepsNoLog) {
  sell(1.21);
  documents_->BeginTrans();
  book_->log(EventKind::kOther);
  documents_->CommitTrans();
  EXPECT_EQ(documents("SELECT Count(*) FROM Fiscal_Eventos"), "0");
}

class LogTest : public BookTest {
 protected:
  LogTest() { use(Mode::kNotSending); }
  void use(Mode mode) {
    Settings other = settings();
    other.mode = mode;
    book_ = std::make_unique<Book>(other, documents_);
  }
  std::string kinds() {
    std::string all;
    for (int at = 1; at <= book_->end().events; ++at) {
      all +=
          documents("SELECT Tipo FROM Fiscal_Eventos WHERE Posicion = " + std::to_string(at)) + " ";
    }
    return all;
  }
  Event event(int position) {
    return readEvent(documents("SELECT Evento FROM Fiscal_Eventos WHERE Posicion = " +
                               std::to_string(position)));
  }
};

TEST_F(LogTest, BeginsWithTheFirstRecordAndIsChainedByItself) {
  sell(1.21);
  documents_->BeginTrans();
  book_->log(EventKind::kBackupRestored, {}, "Copia del lunes");
  documents_->CommitTrans();
  EXPECT_EQ(kinds(), "01 07 ");
  EXPECT_EQ(event(1).previous, std::nullopt);
  EXPECT_EQ(event(2).previous->hash, event(1).hash);
  EXPECT_EQ(event(2).hash, hashOf(event(2)));
  EXPECT_EQ(event(2).text, "Copia del lunes");
}

TEST_F(LogTest, WritesTextsThatXmlMayHold) {
  documents_->BeginTrans();
  book_->log(EventKind::kOther, {},
             " a\x01"
             "b\tc\xef\xbf\xbf"
             "d <&> \n");
  book_->log(EventKind::kOther, {}, std::string(101, 'x'));
  documents_->CommitTrans();
  EXPECT_EQ(event(2).text, "a b c d <&>");
  EXPECT_EQ(event(3).text, std::string(100, 'x'));
}

TEST_F(LogTest, EndsWhereTheSystemBeginsToSend) {
  sell(1.21);
  use(Mode::kSending);
  sell(1.21);
  sell(1.21);
  EXPECT_EQ(kinds(), "01 02 ");
  use(Mode::kNotSending);
  sell(1.21);
  EXPECT_EQ(kinds(), "01 02 01 ");
}

TEST_F(LogTest, TellsEverySixHoursWhatWasDone) {
  sell(1.21);
  wait(6 * 3600 - 1);
  sell(2.42);
  EXPECT_EQ(kinds(), "01 ");
  wait(1);
  sell(3.63);
  EXPECT_EQ(kinds(), "01 10 ");
  const std::string summary = documents("SELECT Evento FROM Fiscal_Eventos WHERE Posicion = 2");
  EXPECT_THAT(summary, HasSubstr("<NumeroDeRegistrosFacturacionAltaGenerados>3<"));
  EXPECT_THAT(summary, HasSubstr("<SumaImporteTotalAlta>7.26<"));
  EXPECT_THAT(summary, HasSubstr("<TipoEvento>01</TipoEvento><NumeroDeEventos>1<"));
  wait(6 * 3600);
  sell(1.21);
  EXPECT_THAT(documents("SELECT Evento FROM Fiscal_Eventos WHERE Posicion = 3"),
              HasSubstr("<NumeroDeRegistrosFacturacionAltaGenerados>1<"));
}

TEST_F(LogTest, KeepsToTheSchema) {
  TAVELOR_NEEDS_SCHEMAS();
  sell(1.21);
  wait(6 * 3600);
  sell(2.42);
  for (int at = 1; at <= 2; ++at) {
    const std::string xml =
        documents("SELECT Evento FROM Fiscal_Eventos WHERE Posicion = " + std::to_string(at));
    EXPECT_EQ(complaintsOf(withSignature(xml), "EventosSIF.xsd"), "") << xml;
  }
}

class OpenedBookTest : public ::testing::Test {
 protected:
  test::Shop shop_;
  ConnectionPtr documents_ = DataSession().OpenConnection(3);
};

TEST_F(OpenedBookTest, IsNoneWithoutSettings) {
  EXPECT_EQ(Book::open(documents_), nullptr);
}

TEST_F(OpenedBookTest, IsThereWithSettings) {
  writeSettings(shop_.installation(), settings());
  const auto book = Book::open(documents_);
  ASSERT_NE(book, nullptr);
  EXPECT_FALSE(book->covers(Date::of(2026, 12, 31)));
  EXPECT_TRUE(book->covers(Date::of(2027, 1, 1)));
}

TEST_F(OpenedBookTest, WithRecordsAndWithoutTheirSettingsIsRefused) {
  shop_.run("INSERT INTO Fiscal_Cadenas (Codigo, NIF, Instalacion) VALUES (1, '89890001K', '1')",
            3);
  EXPECT_EQ(test::errorOf([&] { Book::open(documents_); }), errors::kFileNotFound);
}

// An installation of a version without these tables gets them when it is opened, and loses nothing.
TEST(OldInstallation, GetsTheTablesOfRecords) {
  TAVELOR_ONLY_IN_FILES("it opens the database file");
  const test::TemporaryFolder folder;
  const std::string path = (folder.path() / "shop").string();
  const std::string file = Installation::create(path, test::fastSettings())->databaseFile(3);
  {
    engine::OpenOptions options;
    options.path = file;
    const auto session = engine::sqliteEngine().open(options);
    for (const char* const table :
         {"Fiscal_Cadenas", "Fiscal_Series", "Fiscal_Registros", "Fiscal_Relaciones",
          "Fiscal_Eventos", "Fiscal_Firmas", "Fiscal_Firmas_Eventos", "Fiscal_Remisiones",
          "Fiscal_Envios"}) {
      session->execute(std::string("DROP TABLE ") + table);
    }
    session->execute("INSERT INTO Tickets (Numero, Total) VALUES (7, 1)");
    session->execute("UPDATE Tavelor_Schema SET Version = 4");
  }
  const Apartment apartment(Installation::open(path));
  const ConnectionPtr documents = DataSession().OpenConnection(3);
  EXPECT_EQ(Book(settings(), documents).end().records, 0);
  EXPECT_TRUE(documents->anyRow(Statement("SELECT Numero FROM Tickets WHERE Numero = 7")));
}

}  // namespace
}  // namespace tavelor::fiscal
