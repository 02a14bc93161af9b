// SPDX-License-Identifier: MIT
// The operations of DataSession, one by one.
#include "tavelor/services/data_session.hpp"

#include <filesystem>

#include <gmock/gmock.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/services/faults.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;
using test::errorOf;
using test::fastSettings;
using test::Shop;
using ::testing::HasSubstr;

class DataSessionOperations : public ::testing::Test {
 protected:
  std::string path(const std::string& below) {
    return (std::filesystem::path(shop_.installation().folder()) / below).string();
  }

  Shop shop_;
  DataSession session_;
};

TEST_F(DataSessionOperations, ConnectionStringNamesEngineAndFile) {
  TAVELOR_ONLY_IN_FILES("it names the database file");
  EXPECT_EQ(session_.ConnectionString(1), "Provider=sqlite;Data Source=" + path("main.db"));
  EXPECT_EQ(session_.OpenConnection(3)->ConnectionString(), session_.ConnectionString(3));
}

TEST_F(DataSessionOperations, DatabaseLabelIsTheNameOfTheDatabase) {
  EXPECT_EQ(session_.DatabaseLabel(1), "main");
  EXPECT_EQ(session_.DatabaseLabel(3), "documents");
  EXPECT_EQ(session_.DatabaseLabel(4), "historic");
  EXPECT_EQ(session_.DatabaseLabel(5), "import");
  EXPECT_EQ(session_.DatabaseLabel(0), "further");
}

TEST_F(DataSessionOperations, ReportConnectionGivesFiveFields) {
  TAVELOR_ONLY_IN_FILES("it names the database file");
  std::string kind, source, catalogue = "old", user = "old", password = "old";
  session_.ReportConnection(4, kind, source, catalogue, user, password);
  EXPECT_EQ(kind, "sqlite");
  EXPECT_EQ(source, path("historic.db"));
  EXPECT_EQ(catalogue, "");
  EXPECT_EQ(user, "");
  EXPECT_EQ(password, "");
}

TEST_F(DataSessionOperations, FileDatabaseIsAFileWithItsPath) {
  TAVELOR_ONLY_IN_FILES("it names the database file");
  for (const int selector : {0, 1, 3, 4, 5}) {
    EXPECT_TRUE(session_.IsDbFile(selector));
    EXPECT_TRUE(fs::exists(session_.DbFilePath(selector)));
  }
  EXPECT_EQ(session_.DbFilePath(1), path("main.db"));
}

TEST(DataSessionServer, DatabaseThatServesAsServerHasNoFilePath) {
  TAVELOR_ONLY_IN_FILES("the database is a server's already");
  Settings settings = fastSettings();
  settings.databases[0].servesAsServer = true;
  Shop shop(settings);
  EXPECT_FALSE(DataSession().IsDbFile(1));
  EXPECT_EQ(DataSession().DbFilePath(1), "");
  EXPECT_TRUE(DataSession().IsDbFile(3));
}

TEST_F(DataSessionOperations, UnknownSelectorIsOutOfRangeEverywhere) {
  ConnectionPtr connection;
  RecordsetPtr rows;
  const Statement select("SELECT Codigo FROM Bancos");
  constexpr auto kOut = errors::kSubscriptOutOfRange;
  EXPECT_EQ(errorOf([&] { session_.ConnectionString(2); }), kOut);
  EXPECT_EQ(errorOf([&] { session_.DatabaseLabel(2); }), kOut);
  EXPECT_EQ(errorOf([&] { session_.IsDbFile(2); }), kOut);
  EXPECT_EQ(errorOf([&] { session_.DbFilePath(2); }), kOut);
  EXPECT_EQ(errorOf([&] { session_.OpenConnection(2); }), kOut);
  EXPECT_EQ(errorOf([&] { session_.Execute(2, select, connection); }), kOut);
  EXPECT_EQ(errorOf([&] { session_.OpenRecordset(2, select, rows, connection); }), kOut);
  EXPECT_EQ(errorOf([&] { session_.DateLiteral(2, Variant(1.0)); }), kOut);
  EXPECT_EQ(errorOf([&] { session_.TimeLiteral(2, Variant(1.0)); }), kOut);
  EXPECT_EQ(connection, nullptr);
  EXPECT_EQ(rows, nullptr);
}

TEST_F(DataSessionOperations, FilesHaveFullPathsInTheirFolders) {
  EXPECT_EQ(session_.ReportPath("Bancos.rpt"), path("rpt/Bancos.rpt"));
  EXPECT_EQ(session_.ExportPath("Clientes.xml"), path("export/Clientes.xml"));
  EXPECT_EQ(session_.DocPath("foto 1.jpg"), path("doc/foto 1.jpg"));
}

TEST_F(DataSessionOperations, EmptyFileNameGivesTheFolderWithItsSeparator) {
  EXPECT_EQ(session_.ExportPath(""), path("export/"));
}

TEST_F(DataSessionOperations, MissingFolderIsMadeWhenItIsAskedFor) {
  fs::remove_all(path("doc"));
  session_.DocPath("a\\b.txt");
  EXPECT_TRUE(fs::is_directory(path("doc/a")));
}

TEST_F(DataSessionOperations, FolderThatCannotBeMadeIsNamed) {
  fs::remove_all(path("doc"));
  test::writeFile(path("doc"), "a file");
  const Error error = test::raisedBy([&] { session_.DocPath("a/b.txt"); });
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr(path("doc/a")));
}

TEST_F(DataSessionOperations, NameThatIsTooLongForTheSystemIsRefusedAndCutInTheError) {
  for (const std::size_t length : {300U, 100'000U}) {
    const std::string name(length, 'n');
    for (const std::string& file : {name, name + "/x.txt"}) {
      const Error error = test::raisedBy([&] { session_.ExportPath(file); });
      EXPECT_EQ(error.number(), errors::kPathAccess);
      EXPECT_LT(error.description().size(), 400U);
    }
  }
}

TEST_F(DataSessionOperations, BackslashesInFileNamesAreSeparators) {
  EXPECT_EQ(session_.ReportPath("ventas\\dia.rpt"), path("rpt/ventas/dia.rpt"));
}

TEST_F(DataSessionOperations, FullPathInsideTheFolderIsGivenBack) {
  const std::string once = session_.ReportPath("Bancos.rpt");
  EXPECT_EQ(session_.ReportPath(once), once);
}

TEST_F(DataSessionOperations, NamesThatLeaveTheFolderAreRefused) {
  for (const char* name : {"../main.db", "..\\..\\x", "/etc/passwd", "a/../../b", "..", "."}) {
    EXPECT_EQ(errorOf([&] { session_.ReportPath(name); }), errors::kInvalidCall) << name;
  }
  EXPECT_EQ(errorOf([&] { session_.DocPath(std::string_view("a\0b", 3)); }), errors::kInvalidCall);
}

TEST_F(DataSessionOperations, OpenConnectionIsOpenAndItsOwn) {
  TAVELOR_ONLY_IN_FILES("connections of an apartment share one transaction there");
  std::int32_t options = 0;
  const ConnectionPtr first = session_.OpenConnection(1, options, 0);
  const ConnectionPtr second = session_.OpenConnection(1);
  EXPECT_EQ(first->State(), ObjectState::kOpen);
  EXPECT_EQ(options, 0);
  first->BeginTrans();
  first->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('1')"));
  RecordsetPtr rows;
  ConnectionPtr over = second;
  session_.OpenRecordset(1, Statement("SELECT Codigo FROM Bancos"), rows, over);
  EXPECT_EQ(rows->RecordCount(), 0) << "not committed yet";
  first->CommitTrans();
  EXPECT_EQ(second->transactionLevel(), 0);
}

TEST_F(DataSessionOperations, ExecuteFillsAnEmptyConnection) {
  ConnectionPtr connection;
  session_.Execute(1, Statement("INSERT INTO Bancos (Codigo) VALUES ('1')"), connection);
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(connection->State(), ObjectState::kOpen);
}

TEST_F(DataSessionOperations, ExecuteRunsOnTheCallersConnectionInItsTransaction) {
  ConnectionPtr connection = session_.OpenConnection(1);
  const ConnectionPtr same = connection;
  connection->BeginTrans();
  session_.Execute(1, Statement("INSERT INTO Bancos (Codigo) VALUES ('1')"), connection);
  EXPECT_EQ(connection, same);
  connection->RollbackTrans();
  EXPECT_EQ(shop_.text("SELECT Count(*) AS n FROM Bancos"), "0");
}

TEST_F(DataSessionOperations, ExecuteFailsAsTheDatabaseDoes) {
  ConnectionPtr connection;
  EXPECT_EQ(
      errorOf([&] { session_.Execute(1, Statement("INSERT INTO Bancos VALUE"), connection); }),
      errors::kSyntax);
  EXPECT_EQ(errorOf([&] { session_.Execute(1, Statement("DELETE FROM Nada"), connection); }),
            errors::kTableNotFound);
  EXPECT_NO_THROW(session_.Execute(1, Statement("DELETE FROM Bancos"), connection));
}

TEST_F(DataSessionOperations, QuoteInAValueBreaksTheStatementAndChangesNothing) {
  shop_.run("INSERT INTO Bancos (Codigo) VALUES ('1')");
  ConnectionPtr connection;
  for (const char* hostile : {"'", "x' or '1'='1", "'; DELETE FROM Bancos; --"}) {
    const std::int32_t number = errorOf([&] {
      session_.Execute(1,
                       Statement("DELETE FROM Bancos WHERE Codigo = '") << spliced(hostile) << "'",
                       connection);
    });
    EXPECT_EQ(number, errors::kSyntax) << hostile;
  }
  EXPECT_EQ(shop_.text("SELECT Count(*) AS n FROM Bancos"), "1");
}

TEST_F(DataSessionOperations, OpenRecordsetFillsWhatIsEmpty) {
  shop_.run("INSERT INTO Bancos (Codigo, Banco) VALUES ('1', 'Uno')");
  RecordsetPtr rows;
  ConnectionPtr connection;
  session_.OpenRecordset(1, Statement("SELECT Codigo, Banco FROM Bancos"), rows, connection);
  ASSERT_NE(rows, nullptr);
  ASSERT_NE(connection, nullptr);
  EXPECT_EQ(rows->RecordCount(), 1);
  EXPECT_EQ(rows->Field("banco").Value(), Variant("Uno"));
  EXPECT_EQ(rows->ActiveConnection(), connection);
}

TEST_F(DataSessionOperations, SecondOpenRecordsetUsesTheConnectionOfTheFirst) {
  ConnectionPtr connection;
  RecordsetPtr first;
  RecordsetPtr second;
  session_.OpenRecordset(1, Statement("SELECT Codigo FROM Bancos"), first, connection);
  const ConnectionPtr filled = connection;
  session_.OpenRecordset(1, Statement("SELECT Codigo FROM Bancos"), second, connection);
  EXPECT_EQ(connection, filled);
  EXPECT_EQ(second->ActiveConnection(), first->ActiveConnection());
}

TEST_F(DataSessionOperations, OpenRecordsetOpensTheGivenOneAndRefusesAnOpenOne) {
  ConnectionPtr connection;
  RecordsetPtr rows = std::make_shared<Recordset>();
  const RecordsetPtr same = rows;
  const Statement select("SELECT Codigo FROM Bancos");
  session_.OpenRecordset(1, select, rows, connection, 0);
  EXPECT_EQ(rows, same);
  EXPECT_EQ(errorOf([&] { session_.OpenRecordset(1, select, rows, connection); }),
            errors::kObjectOpen);
}

TEST_F(DataSessionOperations, OpenedRecordsetHasEverythingAndWritesBack) {
  for (const char* code : {"1", "2", "3"}) {
    shop_.run(std::string("INSERT INTO Bancos (Codigo) VALUES ('") + code + "')");
  }
  RecordsetPtr rows;
  ConnectionPtr connection;
  session_.OpenRecordset(1, Statement("SELECT Codigo, Banco FROM Bancos"), rows, connection);
  EXPECT_EQ(rows->RecordCount(), 3);
  rows->Sort("Codigo DESC");
  EXPECT_EQ(rows->Field(0).Value(), Variant("3"));
  rows->Filter("Codigo = '2'");
  EXPECT_EQ(rows->RecordCount(), 1);
  rows->Field("Banco").Value("Dos");
  rows->UpdateBatch();
  EXPECT_EQ(shop_.text("SELECT Banco FROM Bancos WHERE Codigo = '2'"), "Dos");
}

TEST_F(DataSessionOperations, FailedOpenRecordsetLeavesThatOneClosed) {
  RecordsetPtr rows;
  ConnectionPtr connection;
  EXPECT_NE(errorOf([&] {
              session_.OpenRecordset(1, Statement("SELECT x FROM Nada"), rows, connection);
            }),
            0);
  ASSERT_NE(rows, nullptr);
  EXPECT_EQ(rows->State(), ObjectState::kClosed);
}

TEST_F(DataSessionOperations, RecordsetSavedInAFileOpensFromIt) {
  shop_.run("INSERT INTO Bancos (Codigo, Banco) VALUES ('1', 'Ñandú & Cía')");
  RecordsetPtr rows;
  ConnectionPtr connection;
  session_.OpenRecordset(1, Statement("SELECT Codigo, Banco FROM Bancos"), rows, connection);
  const std::string file = session_.ExportPath("Bancos.xml");
  rows->Save(file);
  const RecordsetPtr loaded = session_.OpenRecordsetFromFile(file);
  EXPECT_EQ(loaded->RecordCount(), 1);
  EXPECT_EQ(loaded->Field("Banco").Value(), Variant("Ñandú & Cía"));
  EXPECT_EQ(errorOf([&] { session_.OpenRecordsetFromFile(file + "x"); }), errors::kFileNotFound);
}

TEST_F(DataSessionOperations, DateLiteralIsMonthFirstWhateverTheLocale) {
  EXPECT_EQ(session_.DateLiteral(1, Date::of(2024, 3, 5)), "#03/05/2024#");
  EXPECT_EQ(session_.DateLiteral(1, "05/03/2024"), "#03/05/2024#");
  EXPECT_EQ(session_.DateLiteral(4, Date::of({2024, 3, 5, 14, 5, 9})), "#03/05/2024 14:05:09#");
  EXPECT_EQ(session_.DateLiteral(1, Date::of(100, 1, 2)), "#01/02/0100#");
  EXPECT_EQ(session_.DateLiteral(1, Variant(Date(0.0))), "#12/30/1899#");
  EXPECT_EQ(session_.DateLiteral(1, Date::of({1899, 12, 30, 14, 5, 9})), "#12/30/1899 14:05:09#");
  EXPECT_EQ(session_.DateLiteral(1, Variant(45356.0)), "#03/05/2024#");
}

TEST_F(DataSessionOperations, TimeLiteralIsTheTimeOnly) {
  EXPECT_EQ(session_.TimeLiteral(1, Date::of({2024, 3, 5, 14, 5, 9})), "#14:05:09#");
  EXPECT_EQ(session_.TimeLiteral(1, "9:30"), "#09:30:00#");
  EXPECT_EQ(session_.TimeLiteral(1, Date::of(2024, 3, 5)), "#00:00:00#");
}

TEST_F(DataSessionOperations, WhatIsNoDateHasNoLiteral) {
  EXPECT_EQ(errorOf([&] { session_.DateLiteral(1, Null()); }), errors::kInvalidUseOfNull);
  EXPECT_EQ(errorOf([&] { session_.DateLiteral(1, "ayer"); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { session_.TimeLiteral(1, Null()); }), errors::kInvalidUseOfNull);
  EXPECT_EQ(errorOf([&] { session_.TimeLiteral(1, "x"); }), errors::kTypeMismatch);
}

TEST_F(DataSessionOperations, LiteralsAreReadBackAsTheSameMoment) {
  const Date moment = Date::of({2024, 12, 3, 23, 59, 59});
  shop_.run("INSERT INTO Citas (Id, Fecha, Hora) VALUES (1, " + session_.DateLiteral(1, moment) +
            ", " + session_.TimeLiteral(1, moment) + ")");
  EXPECT_EQ(shop_.value("SELECT Fecha FROM Citas").toDate(*Locale::spanish()).civil(),
            moment.civil());
  EXPECT_EQ(shop_.value("SELECT Hora FROM Citas").toDate(*Locale::spanish()).civil(),
            (CivilTime{1899, 12, 30, 23, 59, 59}));
}

TEST_F(DataSessionOperations, ReportTablesInTheFileAloneAreUpToDateAfterTheirUpdate) {
  TAVELOR_ONLY_IN_FILES("it names the database file");
  shop_.run("INSERT INTO Bancos (Codigo) VALUES ('1')");
  session_.UpdateReportTables(Variant());
  // A reader of the one file, without the log beside it.
  const fs::path copy = path("copy.db");
  fs::copy_file(path("main.db"), copy);
  engine::OpenOptions options;
  options.path = copy.string();
  engine::RowStore rows({engine::ColumnType::kInt32});
  engine::sqliteEngine().open(options)->prepare("SELECT count(*) FROM Bancos")->fetch(rows);
  EXPECT_EQ(rows.integer(0, 0), 1);
}

}  // namespace
}  // namespace tavelor
