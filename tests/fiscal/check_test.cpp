// SPDX-License-Identifier: MIT
// A chain that somebody has laid hands on, in each way.
#include "tavelor/fiscal/check.hpp"

#include <memory>
#include <string>

#include <gmock/gmock.h>
#include <sqlite3.h>

#include "tavelor/fiscal/hash.hpp"
#include "tavelor/fiscal/record_xml.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/installation.hpp"
#include "tests/fiscal/shops.hpp"
#include "tests/support/engines.hpp"

namespace tavelor::fiscal {
namespace {

using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::SizeIs;
using Kind = Flaw::Kind;

/// Five tickets of 1.21 to 6.05 with their records, a second apart.
class CheckTest : public BookTest {
 protected:
  CheckTest() {
    for (int ticket = 1; ticket <= 5; ++ticket) sellTicket(ticket);
  }

  Registration sellTicket(int ticket) {
    change("INSERT INTO Tickets (Numero, Serie, Fecha, Total) VALUES (" + std::to_string(ticket) +
           ", 'A', #02/01/2027#, " + std::to_string(ticket * 121) + " / 100)");
    wait(1);
    return sell(ticket * 1.21, ticket);
  }
  CheckReport check(const DaySpan& span = {}) { return fiscal::check(*book_, span); }
  Flaw first() {
    const CheckReport report = check();
    EXPECT_FALSE(report.isWhole());
    return report.isWhole() ? Flaw() : report.flaws.front();
  }
  void expectFirst(Kind kind, int position, const char* sentence) {
    const Flaw flaw = first();
    EXPECT_EQ(flaw.kind, kind) << flaw.sentence;
    EXPECT_EQ(flaw.position, position) << flaw.sentence;
    EXPECT_THAT(flaw.sentence, HasSubstr(sentence));
  }

  Registration stored(int position) {
    return std::get<Registration>(readRecord(
        documents("SELECT Registro FROM Fiscal_Registros WHERE Posicion = " + at(position))));
  }
  std::string sealOf(int position) {
    return position == 0
               ? std::string()
               : documents("SELECT Sello FROM Fiscal_Registros WHERE Posicion = " + at(position));
  }
  /// Puts a record in the place of another one, with whatever makes it look right.
  void putBack(int position, Registration record, bool withHash = true) {
    if (withHash) record.chaining.hash = hashOf(record);
    Statement statement("UPDATE Fiscal_Registros SET Registro = ");
    statement << sqlText(xmlOf(record)) << ", Huella = " << sqlText(record.chaining.hash)
              << ", Sello = " << sqlText(Hasher()(sealOf(position - 1), xmlOf(record)))
              << ", Cuota = " << sqlLiteral(static_cast<double>(record.quota.cents()) / 100)
              << ", Total = " << sqlLiteral(static_cast<double>(record.total.cents()) / 100)
              << " WHERE Posicion = " << sqlLiteral(position);
    documents_->Execute(statement);
  }
  /// Records from one on stand so many places further.
  void shift(int from, int by) {
    change("UPDATE Fiscal_Registros SET Posicion = Posicion + 1000 WHERE Posicion >= " + at(from));
    change("UPDATE Fiscal_Registros SET Posicion = Posicion - 1000 + " + at(by) +
           " WHERE Posicion > 1000");
  }
  void swap(int a, int b) {
    change("UPDATE Fiscal_Registros SET Posicion = 999 WHERE Posicion = " + at(a));
    change("UPDATE Fiscal_Registros SET Posicion = " + at(a) + " WHERE Posicion = " + at(b));
    change("UPDATE Fiscal_Registros SET Posicion = " + at(b) + " WHERE Posicion = 999");
  }
  void remove(int position) {
    change("DELETE FROM Fiscal_Registros WHERE Posicion = " + at(position));
  }
  static std::string at(int position) { return std::to_string(position); }
};

TEST_F(CheckTest, OfWhatNobodyTouchedFindsNothing) {
  const CheckReport report = check();
  EXPECT_THAT(report.flaws, IsEmpty());
  EXPECT_EQ(report.records, 5U);
  EXPECT_EQ(report.tickets, 5U);
  EXPECT_EQ(report.total.text(), "18.15");
}

TEST_F(CheckTest, OfNothingFindsNothing) {
  change("DELETE FROM Fiscal_Registros");
  change("DELETE FROM Fiscal_Cadenas");
  change("DELETE FROM Fiscal_Series");
  change("DELETE FROM Tickets");
  EXPECT_TRUE(check().isWhole());
}

// ---------------------------------------------------------------------------------------------
// Changed

TEST_F(CheckTest, NamesARecordWhoseHashedFieldsWereChanged) {
  Registration record = stored(3);
  record.total = *Amount::read("1.00");
  putBack(3, record, false);
  expectFirst(Kind::kChanged, 3,
              "record 3, the invoice T/3 of 01-02-2027, was changed: its hash is not that of what "
              "stands in it");
}

TEST_F(CheckTest, NamesARecordThatWasChangedWithItsHash) {
  Registration record = stored(3);
  record.details.front() = {.operation = Operation::kExempt1, .base = *Amount::read("3.00")};
  record.quota = Amount();
  record.total = *Amount::read("3.00");
  putBack(3, record);
  expectFirst(Kind::kChanged, 3, "its hash is not the one that the next one tells");
}

TEST_F(CheckTest, NamesARecordWhoseOtherFieldsWereChanged) {
  exchange(3, ">Venta<", ">Nada<");
  expectFirst(Kind::kChanged, 3, "its seal is not that of what stands in it");
}

TEST_F(CheckTest, NamesARecordWhoseOtherFieldsWereChangedWithTheSeal) {
  Registration record = stored(3);
  record.description = "Nada";
  putBack(3, record);
  const Flaw flaw = first();
  EXPECT_EQ(flaw.kind, Kind::kChanged);
  EXPECT_EQ(flaw.position, 4) << "where the seals do not go on";
}

TEST_F(CheckTest, NamesTheLastRecordWhereItWasChangedWithItsHash) {
  Registration record = stored(5);
  record.description = "Nada";
  putBack(5, record);
  expectFirst(Kind::kChanged, 5, "record 5 was changed, or the chain's end was");
}

TEST_F(CheckTest, NamesARecordWhoseColumnsWereChanged) {
  for (const char* const column :
       {"Total = 9", "Cuota = 9", "Serie_Numero = 'T/9'", "Fecha_Expedicion = #02/02/2027#",
        "Huella = 'A'", "Momento = 'A'", "Tipo = 'F1'", "Numero = 9"}) {
    documents_->BeginTrans();
    documents_->Execute(Statement(Statement::trusted("UPDATE Fiscal_Registros SET " +
                                                     std::string(column) + " WHERE Posicion = 2")));
    expectFirst(Kind::kChanged, 2, "is not what stands in it");
    documents_->RollbackTrans();
  }
}

TEST_F(CheckTest, NamesARecordThatDoesNotReadAnyMore) {
  change("UPDATE Fiscal_Registros SET Registro = '<RegistroAlta>' WHERE Posicion = 2");
  expectFirst(Kind::kChanged, 2, "record 2, the invoice T/2, was changed: ");
}

// ---------------------------------------------------------------------------------------------
// Removed

TEST_F(CheckTest, NamesARecordThatWasRemoved) {
  remove(3);
  expectFirst(Kind::kRemoved, 3,
              "what stood at 3 is missing; the last of it was the invoice T/3 of 01-02-2027");
}

TEST_F(CheckTest, NamesSeveralRecordsThatWereRemoved) {
  remove(2);
  remove(3);
  expectFirst(Kind::kRemoved, 2, "what stood at 2 to 3 are missing");
}

TEST_F(CheckTest, NamesTheFirstRecordWhereItWasRemoved) {
  remove(1);
  expectFirst(Kind::kRemoved, 1, "the invoice T/1");
}

TEST_F(CheckTest, NamesTheLastRecordWhereItWasRemoved) {
  remove(5);
  expectFirst(Kind::kRemoved, 5, "the last records were removed: there are 4 of 5");
}

TEST_F(CheckTest, NamesARecordThatWasRemovedAndTheOthersMovedUp) {
  remove(3);
  shift(4, -1);
  change("UPDATE Fiscal_Cadenas SET Registros = 4");
  expectFirst(Kind::kRemoved, 3, "the invoice T/3 of 01-02-2027, which record 3, the invoice T/4");
}

TEST_F(CheckTest, NamesTheTicketWhereAllThatFollowsWasRemovedEverywhere) {
  remove(5);
  change("UPDATE Fiscal_Cadenas SET Registros = 4, Huella = '" +
         documents("SELECT Huella FROM Fiscal_Registros WHERE Posicion = 4") + "', Sello = '" +
         sealOf(4) + "'");
  change("UPDATE Fiscal_Series SET Ultimo = 4");
  const Flaw flaw = first();
  EXPECT_EQ(flaw.kind, Kind::kTicket);
  EXPECT_EQ(flaw.sentence, "ticket 5 has no record");
}

// ---------------------------------------------------------------------------------------------
// Inserted

TEST_F(CheckTest, NamesARecordThatWasInserted) {
  Registration record = stored(3);
  record.invoice.number = "T/33";
  record.chaining.hash = hashOf(record);
  shift(3, 1);
  change(
      "INSERT INTO Fiscal_Registros (Cadena, Posicion, Tipo, Serie, Numero, Serie_Numero, "
      "Fecha_Expedicion, Cuota, Total, Momento, Huella, Sello, Registro) SELECT Cadena, 3, Tipo, "
      "Serie, 33, 'T/33', Fecha_Expedicion, Cuota, Total, Momento, Huella, Sello, Registro FROM "
      "Fiscal_Registros WHERE Posicion = 4");
  putBack(3, record);
  change("UPDATE Fiscal_Cadenas SET Registros = 6");
  expectFirst(Kind::kInserted, 3, "record 3, the invoice T/33 of 01-02-2027, was inserted");
}

TEST_F(CheckTest, NamesARecordThatWasInsertedBeforeAll) {
  shift(1, 1);
  change(
      "INSERT INTO Fiscal_Registros SELECT Cadena, 1 AS Posicion, Tipo, Serie, Numero, "
      "Serie_Numero, Fecha_Expedicion, Cuota, Total, Momento, Huella, Sello, Ticket, Registro FROM "
      "Fiscal_Registros WHERE Posicion = 2");
  const Flaw flaw = first();
  EXPECT_TRUE(flaw.kind == Kind::kInserted || flaw.kind == Kind::kTicket) << flaw.sentence;
}

TEST_F(CheckTest, NamesARecordThatWasInsertedBehindTheEnd) {
  const Registration last = sellTicket(6);
  change("UPDATE Fiscal_Cadenas SET Registros = 5");
  expectFirst(Kind::kInserted, 6, "record 6 was inserted: the chain ends at 5");
}

// ---------------------------------------------------------------------------------------------
// Reordered

TEST_F(CheckTest, NamesNeighboursThatWereReordered) {
  swap(2, 3);
  expectFirst(Kind::kReordered, 2,
              "record 2, the invoice T/3 of 01-02-2027, was reordered: it stands before the "
              "invoice T/2 of 01-02-2027, which it follows");
}

TEST_F(CheckTest, NamesRecordsFarApartThatWereReordered) {
  swap(1, 5);
  expectFirst(Kind::kReordered, 1, "the invoice T/5");
}

TEST_F(CheckTest, NamesARecordThatWasMovedToTheEnd) {
  change("UPDATE Fiscal_Registros SET Posicion = 999 WHERE Posicion = 2");
  shift(3, -1);
  change("UPDATE Fiscal_Registros SET Posicion = 5 WHERE Posicion > 5");
  const Flaw flaw = first();
  EXPECT_EQ(flaw.kind, Kind::kReordered) << flaw.sentence;
  EXPECT_EQ(flaw.position, 2);
}

// ---------------------------------------------------------------------------------------------
// Dates, sums, series, tickets

TEST_F(CheckTest, NamesARecordThatIsOlderThanTheOneBefore) {
  wait(-3600);
  sellTicket(6);
  wait(3600);
  expectFirst(Kind::kDate, 6, "is 3599 s older than the one before it");
}

TEST_F(CheckTest, NamesARecordOfTheFuture) {
  wait(3600);
  sellTicket(6);
  wait(-3600);
  expectFirst(Kind::kDate, 6, "was made in the future");
}

TEST_F(CheckTest, NamesARecordThatDoesNotAddUp) {
  Registration record = stored(5);
  record.details.front().base = *Amount::read("1.00");
  change("DELETE FROM Tickets WHERE Numero = 6");
  record.chaining.previous = Link{stored(5).invoice, stored(5).chaining.hash};
  change("INSERT INTO Tickets (Numero, Serie, Fecha, Total) VALUES (6, 'A', #02/01/2027#, 6.05)");
  add(record, 6.0);
  expectFirst(Kind::kSum, 6, "does not add up: bases 1.00, quotas 1.05, total 6.05");
}

TEST_F(CheckTest, NamesASeriesWithoutAllOfItsNumbers) {
  change("UPDATE Fiscal_Series SET Ultimo = 7");
  expectFirst(Kind::kSeries, 0, "of the series T 7 numbers were given, and 5 are there");
  sellTicket(6);
  expectFirst(Kind::kSeries, 6, "comes behind T/5 in its series");
}

TEST_F(CheckTest, NamesTicketsThatDoNotAgreeWithTheirRecords) {
  change("UPDATE Tickets SET Total = 9 WHERE Numero = 2");
  expectFirst(Kind::kTicket, 2, "ticket 2 comes to 9.00, and its record, the invoice T/2");
  change("UPDATE Tickets SET Total = 2.42, Fecha = #01/31/2027# WHERE Numero = 2");
  expectFirst(Kind::kTicket, 2, "ticket 2 is of 31-01-2027");
  change("DELETE FROM Tickets WHERE Numero = 2");
  expectFirst(Kind::kTicket, 2, "ticket 2 is not there, but its record is: the invoice T/2");
}

TEST_F(CheckTest, TakesTicketsOfHistoryAndNoneOfBeforeTheStart) {
  change("INSERT INTO HTickets SELECT * FROM Tickets WHERE Numero <= 2");
  change("DELETE FROM Tickets WHERE Numero <= 2");
  change("INSERT INTO HTickets (Numero, Serie, Fecha, Total) VALUES (99, 'A', #12/31/2026#, 1)");
  EXPECT_TRUE(check().isWhole());
}

TEST_F(CheckTest, NamesWhatARecordDoesToOthersWhereThatWasChanged) {
  Registration back = stored(5);
  back.kind = InvoiceKind::kRectifying5;
  back.rectified = {stored(5).invoice};
  add(back);
  EXPECT_TRUE(check().isWhole());
  change("DELETE FROM Fiscal_Relaciones");
  expectFirst(Kind::kChanged, 6, "what it does to others is not what is stored of that");
}

/// A till of the same shop by other settings.
Settings settingsOf(const std::string& taxpayer, const std::string& installation) {
  Settings other = settings();
  if (!taxpayer.empty()) other.taxpayer.number = taxpayer;
  if (!installation.empty()) other.system.installation = installation;
  return other;
}

TEST_F(CheckTest, FindsNothingWhereTwoInstallationsTakeTurnsInASeries) {
  book_ = std::make_unique<Book>(settingsOf("", "another"), documents_);
  sellTicket(6);
  book_ = std::make_unique<Book>(settings(), documents_);
  sellTicket(7);
  const CheckReport report = check();
  EXPECT_THAT(report.flaws, IsEmpty());
  EXPECT_EQ(report.records, 7U);
  EXPECT_EQ(report.total.text(), "33.88");
}

TEST_F(CheckTest, TakesACancellationByAnotherInstallationOffTheTotal) {
  book_ = std::make_unique<Book>(settingsOf("", "another"), documents_);
  sellTicket(6);
  book_ = std::make_unique<Book>(settings(), documents_);
  change("INSERT INTO Tickets (Numero, Serie, Fecha, Total) VALUES (7, 'A', #02/01/2027#, -7.26)");
  documents_->BeginTrans();
  book_->cancel("T/6", 7);
  documents_->CommitTrans();
  const CheckReport report = check();
  EXPECT_THAT(report.flaws, IsEmpty());
  EXPECT_EQ(report.total.text(), "18.15");
}

TEST_F(CheckTest, NamesARecordThatIsRemovedWhereTwoInstallationsTakeTurns) {
  book_ = std::make_unique<Book>(settingsOf("", "another"), documents_);
  sellTicket(6);
  book_ = std::make_unique<Book>(settings(), documents_);
  sellTicket(7);
  remove(3);
  expectFirst(Kind::kRemoved, 3, "is missing");
}

TEST_F(CheckTest, CountsInvoicesOfOneNumberByTheirTaxpayers) {
  book_ = std::make_unique<Book>(settingsOf("B12345674", ""), documents_);
  const Registration theirs = sellTicket(6);
  EXPECT_EQ(theirs.invoice.number, "T/1");
  EXPECT_EQ(check().total.text(), "25.41");
  change("INSERT INTO Tickets (Numero, Serie, Fecha, Total) VALUES (7, 'A', #02/01/2027#, -7.26)");
  wait(1);
  documents_->BeginTrans();
  book_->cancel("T/1", 7);
  documents_->CommitTrans();
  const CheckReport report = check();
  EXPECT_THAT(report.flaws, IsEmpty());
  EXPECT_EQ(report.total.text(), "18.15");
}

TEST_F(CheckTest, TakesACancellationOffTheTotal) {
  change("INSERT INTO Tickets (Numero, Serie, Fecha, Total) VALUES (6, 'A', #02/01/2027#, -2.42)");
  documents_->BeginTrans();
  book_->cancel("T/2", 6.0);
  documents_->CommitTrans();
  const CheckReport report = check();
  EXPECT_THAT(report.flaws, IsEmpty());
  EXPECT_EQ(report.total.text(), "15.73");
  change("UPDATE Tickets SET Total = -1 WHERE Numero = 6");
  expectFirst(Kind::kTicket, 6, "ticket 6 comes to -1.00, and cancels 2.42");
}

/// What an editor of database files writes, past all that this system asks of a value.
void editFile(const Installation& installation, const std::string& statement) {
  const std::string file = installation.folder() + "/documents.db";
  sqlite3* database = nullptr;
  ASSERT_EQ(sqlite3_open(file.c_str(), &database), SQLITE_OK);
  EXPECT_EQ(sqlite3_exec(database, statement.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
      << sqlite3_errmsg(database);
  sqlite3_close(database);
}

TEST_F(CheckTest, NamesARecordWithAValueThatIsNotOfItsColumnsType) {
  TAVELOR_ONLY_IN_FILES("its columns take nothing else");
  for (const char* const wrong :
       {"Numero = 'x'", "Numero = 99999999999", "Ticket = 'x'", "Fecha_Expedicion = 'x'"}) {
    editFile(shop_.apartment().installation(),
             std::string("UPDATE Fiscal_Registros SET ") + wrong + " WHERE Posicion = 3");
    expectFirst(Kind::kChanged, 3, "record 3 was changed: Column ");
    editFile(shop_.apartment().installation(),
             "UPDATE Fiscal_Registros SET Numero = 3, Ticket = 3, Fecha_Expedicion = (SELECT "
             "Fecha_Expedicion FROM Fiscal_Registros WHERE Posicion = 2) WHERE Posicion = 3");
  }
  EXPECT_TRUE(check().isWhole());
}

TEST_F(CheckTest, NamesTheGapOfARecordWhosePlaceIsNone) {
  TAVELOR_ONLY_IN_FILES("its columns take nothing else");
  for (const char* const place : {"'x'", "99999999999"}) {
    editFile(shop_.apartment().installation(),
             std::string("UPDATE Fiscal_Registros SET Posicion = ") + place + " WHERE Numero = 3");
    expectFirst(Kind::kRemoved, 3, "what stood at 3 is missing");
  }
}

// ---------------------------------------------------------------------------------------------
// Spans

TEST_F(CheckTest, OfASpanLooksAtItsRecordsAndWhatTheyFollow) {
  const Date day = Date::of(2027, 2, 1);
  shop_.apartment().clock().fix(Date::of({2027, 2, 3, 9, 0, 0}));
  change("INSERT INTO Tickets (Numero, Serie, Fecha, Total) VALUES (6, 'A', #02/03/2027#, 6.05)");
  Registration record = stored(5);
  record.invoice.day = Date::of(2027, 2, 3);
  add(record, 6.0);
  const CheckReport later = check({Date::of(2027, 2, 2), {}});
  EXPECT_THAT(later.flaws, IsEmpty());
  EXPECT_EQ(later.records, 1U);
  EXPECT_EQ(later.total.text(), "6.05");
  EXPECT_EQ(check({day, day}).records, 5U);
  EXPECT_EQ(check({Date::of(2027, 3, 1), {}}).records, 0U);
  exchange(5, ">6.05<", ">6.06<");
  EXPECT_THAT(check({Date::of(2027, 2, 2), {}}).flaws, SizeIs(1)) << "what it follows is another";
  EXPECT_THAT(check({{}, Date::of(2027, 1, 31)}).flaws, IsEmpty());
}

// ---------------------------------------------------------------------------------------------
// The log

class LogCheckTest : public BookTest {
 protected:
  LogCheckTest() {
    Settings other = settings();
    other.mode = Mode::kNotSending;
    book_ = std::make_unique<Book>(other, documents_);
    sell(1.21);
    for (int at = 0; at < 3; ++at) {
      wait(1);
      log(EventKind::kOther);
    }
  }
  void log(EventKind kind) {
    documents_->BeginTrans();
    book_->log(kind);
    documents_->CommitTrans();
  }
  Flaw first() {
    for (const Flaw& flaw : check(*book_).flaws) {
      if (flaw.isOfEvent) return flaw;
    }
    ADD_FAILURE() << "nothing is found";
    return {};
  }
};

TEST_F(LogCheckTest, FindsNothingWrongWithWhatNobodyTouched) {
  EXPECT_THAT(check(*book_).flaws, IsEmpty());
  EXPECT_EQ(check(*book_).events, 4U);
}

TEST_F(LogCheckTest, NamesAnEventThatWasChanged) {
  change("UPDATE Fiscal_Eventos SET Momento = 'A' WHERE Posicion = 2");
  EXPECT_EQ(first().kind, Kind::kChanged);
  EXPECT_EQ(first().position, 2);
}

TEST_F(LogCheckTest, NamesAnEventThatWasRemoved) {
  change("DELETE FROM Fiscal_Eventos WHERE Posicion = 3");
  EXPECT_EQ(first().kind, Kind::kRemoved);
  EXPECT_EQ(first().position, 3);
}

TEST_F(LogCheckTest, NamesTheLastEventWhereItWasRemoved) {
  change("DELETE FROM Fiscal_Eventos WHERE Posicion = 4");
  EXPECT_THAT(first().sentence, HasSubstr("the last events were removed: there are 3 of 4"));
}

TEST_F(LogCheckTest, NamesEventsThatWereReordered) {
  change("UPDATE Fiscal_Eventos SET Posicion = 9 WHERE Posicion = 2");
  change("UPDATE Fiscal_Eventos SET Posicion = 2 WHERE Posicion = 3");
  change("UPDATE Fiscal_Eventos SET Posicion = 3 WHERE Posicion = 9");
  EXPECT_EQ(first().kind, Kind::kReordered);
}

TEST_F(LogCheckTest, IsToldOfChecksAndOfWhatTheyFind) {
  exchange(1, ">Venta<", ">Nada<");
  documents_->BeginTrans();
  logCheck(*book_, check(*book_));
  documents_->CommitTrans();
  EXPECT_EQ(documents("SELECT Tipo FROM Fiscal_Eventos WHERE Posicion = 5"), "03");
  EXPECT_EQ(documents("SELECT Tipo FROM Fiscal_Eventos WHERE Posicion = 6"), "04");
  EXPECT_THAT(documents("SELECT Evento FROM Fiscal_Eventos WHERE Posicion = 6"),
              HasSubstr("<NumSerieFactura>T/1</NumSerieFactura>"));
  EXPECT_EQ(documents("SELECT Tipo FROM Fiscal_Eventos WHERE Posicion = 7"), "05");
  EXPECT_EQ(book_->end().events, 7);
}

TEST_F(LogCheckTest, TellsOfARecordWhoseNumberIsNoneByTheSentenceAlone) {
  exchange(1, "<NumSerieFactura>T/1<", "<NumSerieFactura>T&lt;\xef\xbf\xbf<");
  documents_->BeginTrans();
  logCheck(*book_, check(*book_));
  documents_->CommitTrans();
  const std::string anomaly = documents("SELECT Evento FROM Fiscal_Eventos WHERE Posicion = 6");
  EXPECT_THAT(anomaly, HasSubstr("record 1, "));
  EXPECT_THAT(anomaly, Not(HasSubstr("<NumSerieFactura>")));
  EXPECT_THAT(anomaly, Not(HasSubstr("\xef\xbf\xbf")));
}

}  // namespace
}  // namespace tavelor::fiscal
