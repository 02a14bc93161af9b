// SPDX-License-Identifier: MIT
// Connections of an apartment: lent and taken back, what they wait for, what they see.
#include <atomic>
#include <filesystem>
#include <thread>

#include <gmock/gmock.h>

#include "tests/services/faults.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::fastSettings;
using test::Shop;

TEST(ConnectionsOfAnApartment, OutliveIt) {
  ConnectionPtr connection;
  RecordsetPtr rows;
  test::TemporaryFolder folder;
  {
    Apartment apartment(Installation::create(folder.path() / "shop", fastSettings()));
    DataSession().OpenRecordset(1, Statement("SELECT Codigo FROM Bancos"), rows, connection);
  }
  EXPECT_EQ(rows->RecordCount(), 0);
  EXPECT_NO_THROW(connection->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('1')")));
  rows->Requery();
  EXPECT_EQ(rows->RecordCount(), 1);
}

TEST(ConnectionsOfAnApartment, DroppedOneUndoesWhatWasNotCommitted) {
  Shop shop;
  ConnectionPtr connection = DataSession().OpenConnection(1);
  connection->BeginTrans();
  connection->BeginTrans();
  connection->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('1')"));
  connection.reset();
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Bancos"), "0");
  EXPECT_NO_THROW(shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')"));
}

/// Descriptors of this process on a file.
std::ptrdiff_t openDescriptors(const std::filesystem::path& file) {
  std::ptrdiff_t count = 0;
  for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd")) {
    std::error_code gone;
    if (std::filesystem::read_symlink(entry.path(), gone) == file) ++count;
  }
  return count;
}

TEST(ConnectionsOfAnApartment, DroppedOneIsUsedAgain) {
  TAVELOR_ONLY_IN_FILES("sessions share one line there");
  Shop shop;
  const auto file = std::filesystem::canonical(shop.installation().databaseFile(1));
  EXPECT_EQ(openDescriptors(file), 0);
  for (int i = 0; i < 10; ++i) shop.run("DELETE FROM Bancos");
  EXPECT_EQ(openDescriptors(file), 1);
  const ConnectionPtr first = DataSession().OpenConnection(1);
  const ConnectionPtr second = DataSession().OpenConnection(1);
  EXPECT_EQ(openDescriptors(file), 2);
}

TEST(ConnectionsOfAnApartment, RecordSetKeepsItsConnectionFromBeingUsedAgain) {
  TAVELOR_ONLY_IN_FILES("sessions share one line there");
  Shop shop;
  RecordsetPtr rows;
  {
    ConnectionPtr connection;
    DataSession().OpenRecordset(1, Statement("SELECT Codigo, Banco FROM Bancos"), rows, connection);
    connection->BeginTrans();
  }
  // The record set's transaction is still open, so it can't be the idle session that this one gets.
  EXPECT_EQ(DataSession().OpenConnection(1)->transactionLevel(), 0);
  EXPECT_EQ(errorOf([&] { shop.run("DELETE FROM Bancos"); }), errors::kBusy);
  rows.reset();
  EXPECT_EQ(errorOf([&] { shop.run("DELETE FROM Bancos"); }), 0);
}

TEST(ConnectionsOfAnApartment, WriteThatWouldWaitForItsOwnThreadFailsAtOnce) {
  TAVELOR_ONLY_IN_FILES("two transactions write at a time there");
  Settings settings = fastSettings();
  settings.busyTimeoutMs = 3'600'000;  // whoever waits here hangs
  Shop shop(settings);
  DataSession session;
  const ConnectionPtr holder = session.OpenConnection(1);
  holder->BeginTrans();
  holder->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('1')"));

  ConnectionPtr other = session.OpenConnection(1);
  const Statement insert("INSERT INTO Bancos (Codigo) VALUES ('2')");
  EXPECT_EQ(errorOf([&] { other->Execute(insert); }), errors::kBusy);
  EXPECT_EQ(errorOf([&] { other->BeginTrans(); }), errors::kBusy);
  holder->CommitTrans();
  EXPECT_NO_THROW(other->Execute(insert));
}

TEST(ReadWithoutAConnection, SeesTheOpenTransactionOfItsApartment) {
  Shop shop;
  const ConnectionPtr writer = DataSession().OpenConnection(1);
  writer->BeginTrans();
  writer->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('7')"));
  EXPECT_EQ(shop.text("SELECT Max(Codigo) AS m FROM Bancos"), "7");
  writer->BeginTrans();
  writer->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('8')"));
  EXPECT_EQ(shop.text("SELECT Max(Codigo) AS m FROM Bancos"), "8");
  writer->RollbackTrans();
  EXPECT_EQ(shop.text("SELECT Max(Codigo) AS m FROM Bancos"), "7");
  writer->RollbackTrans();
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Bancos"), "0");
}

TEST(ReadWithoutAConnection, SeesNoTransactionOfAnotherDatabaseApartmentOrGivenConnection) {
  TAVELOR_ONLY_IN_FILES("connections of an apartment share one transaction there");
  Shop shop;
  const ConnectionPtr writer = DataSession().OpenConnection(1);
  const ConnectionPtr given = DataSession().OpenConnection(1);
  writer->BeginTrans();
  writer->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('7')"));
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Tickets", 3), "0");
  const auto countOn = [](ConnectionPtr connection) {
    RecordsetPtr rows;
    DataSession().OpenRecordset(1, Statement("SELECT Codigo FROM Bancos"), rows, connection);
    return rows->RecordCount();
  };
  EXPECT_EQ(countOn(given), 0);
  EXPECT_EQ(countOn(writer), 1);
  EXPECT_EQ(countOn(nullptr), 1);
  {
    Apartment other(shop.installationPtr());
    EXPECT_EQ(countOn(nullptr), 0);
  }
}

TEST(ReadWithoutAConnection, KeepsAConnectionOfItsOwn) {
  TAVELOR_ONLY_IN_FILES("connections of an apartment share one transaction there");
  Shop shop;
  ConnectionPtr writer = DataSession().OpenConnection(1);
  writer->BeginTrans();
  writer->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('7')"));
  RecordsetPtr rows;
  ConnectionPtr own;
  DataSession().OpenRecordset(1, Statement("SELECT Codigo FROM Bancos"), rows, own);
  ASSERT_EQ(rows->RecordCount(), 1);
  EXPECT_NE(own, writer);
  EXPECT_EQ(own->transactionLevel(), 0);
  // What is written over it would wait for the transaction of its own thread.
  rows->Field("Codigo").Value("9");
  EXPECT_EQ(errorOf([&] { rows->UpdateBatch(); }), errors::kBusy);
  rows->CancelBatch();
  // The rows stay, and the transaction ends, when its connection goes.
  writer.reset();
  EXPECT_EQ(rows->RecordCount(), 1);
  rows->Requery();
  EXPECT_EQ(rows->RecordCount(), 0);
  EXPECT_NO_THROW(shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')"));
}

TEST(ReadWithoutAConnection, IsRefusedWhileThatTransactionIsLost) {
  TAVELOR_ONLY_IN_FILES("the embedded engine is made to lose it");
  Shop shop;
  const ConnectionPtr writer = DataSession().OpenConnection(1);
  writer->BeginTrans();
  test::loseTransaction(*writer);
  EXPECT_EQ(errorOf([&] { shop.text("SELECT Count(*) AS n FROM Bancos"); }),
            errors::kTransactionLost);
  const ConnectionPtr other = DataSession().OpenConnection(1);
  EXPECT_NO_THROW(other->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('1')")));
  writer->RollbackTrans();
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Bancos"), "1");
}

TEST(ConnectionsOfAnApartment, TwoApartmentsOfOneThreadDoNotWaitForEachOther) {
  TAVELOR_ONLY_IN_FILES("two transactions write at a time there");
  Settings settings = fastSettings();
  settings.busyTimeoutMs = 3'600'000;  // whoever waits here hangs
  Shop shop(settings);
  const ConnectionPtr holder = DataSession().OpenConnection(1);
  holder->BeginTrans();
  // Neither one over the same installation nor one over the folder opened anew.
  for (const auto& installation :
       {shop.installationPtr(), Installation::open(shop.installation().folder())}) {
    Apartment second(installation);
    EXPECT_EQ(errorOf([&] { shop.run("DELETE FROM Bancos"); }), errors::kBusy);
    EXPECT_EQ(errorOf([&] { DataSession().OpenConnection(1)->BeginTrans(); }), errors::kBusy);
  }
  holder->CommitTrans();
  Apartment second(shop.installationPtr());
  EXPECT_NO_THROW(shop.run("DELETE FROM Bancos"));
}

TEST(ConnectionsOfAnApartment, WriteWaitsForAnotherThread) {
  Shop shop;
  const ConnectionPtr holder = DataSession().OpenConnection(1);
  holder->BeginTrans();
  holder->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('1')"));
  std::atomic<bool> started = false;
  std::int32_t error = -1;
  std::thread writer([&] {
    Apartment apartment(shop.installationPtr());
    ConnectionPtr connection = DataSession().OpenConnection(1);
    started = true;
    error = errorOf(
        [&] { connection->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('2')")); });
  });
  ASSERT_TRUE(test::eventually([&] { return started.load(); }));
  holder->CommitTrans();
  writer.join();
  EXPECT_EQ(error, 0);
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Bancos"), "2");
}

TEST(ConnectionsOfAnApartment, TablesAddedLaterAreSeen) {
  Shop shop;
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')");  // leaves an idle session
  EXPECT_NE(errorOf([&] { shop.run("INSERT INTO Propia (Id) VALUES (1)"); }), 0);
  shop.installation().addToSchema(
      1, "CREATE TABLE Propia (Id LONG NOT NULL, CONSTRAINT PK PRIMARY KEY (Id));");
  EXPECT_EQ(errorOf([&] { shop.run("INSERT INTO Propia (Id) VALUES (1)"); }), 0);
  EXPECT_EQ(shop.text("SELECT Id FROM Propia"), "1");
  EXPECT_NE(errorOf([&] { shop.installation().addToSchema(1, "DROP TABLE Bancos"); }), 0);
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Bancos"), "1");
}

TEST(ConnectionsOfAnApartment, ColumnsThatAnotherInstallationAddedAreSeen) {
  Shop shop;
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')");  // leaves an idle session
  EXPECT_EQ(errorOf([&] { shop.text("SELECT Apodo FROM Bancos"); }), errors::kMissingParameter);
  Installation::open(shop.installation().folder())
      ->addToSchema(1, "ALTER TABLE Bancos ADD COLUMN Apodo TEXT(20);");
  shop.run("UPDATE Bancos SET Apodo = 'uno'");
  EXPECT_EQ(shop.text("SELECT Apodo FROM Bancos"), "uno");
  RecordsetPtr rows;
  ConnectionPtr connection;
  DataSession().OpenRecordset(1, Statement("SELECT * FROM Bancos"), rows, connection);
  EXPECT_EQ(rows->Field("Apodo").Value(), Variant("uno"));
}

TEST(ConnectionsOfAnApartment, ColumnsThatAnotherProcessAddedAreSeen) {
  Shop shop;
  shop.run("INSERT INTO Bancos (Codigo) VALUES ('1')");
  test::Child child([&] {
    Installation::open(shop.installation().folder())
        ->addToSchema(1, "ALTER TABLE Bancos ADD COLUMN Apodo TEXT(20);");
  });
  ASSERT_TRUE(child.wait());
  shop.run("UPDATE Bancos SET Apodo = 'uno'");
  EXPECT_EQ(shop.text("SELECT Apodo FROM Bancos"), "uno");
}

TEST(ConnectionsOfAnApartment, AListThatWasOpenedBeforeShowsColumnsThatAnotherProcessAdded) {
  Shop shop;
  const auto list = [] {
    RecordsetPtr rows;
    ConnectionPtr connection;
    DataSession().OpenRecordset(1, Statement("SELECT * FROM Bancos"), rows, connection);
    return rows;
  };
  const RecordsetPtr open = list();
  const std::int32_t before = open->Fields().Count();
  test::Child child([&] {
    Installation::open(shop.installation().folder())
        ->addToSchema(1, "ALTER TABLE Bancos ADD COLUMN Apodo TEXT(20);");
  });
  ASSERT_TRUE(child.wait());
  EXPECT_EQ(list()->Fields().Count(), before + 1);
  EXPECT_EQ(open->Fields().Count(), before);
  open->Requery();
  EXPECT_EQ(open->Fields().Count(), before + 1);
}

}  // namespace
}  // namespace tavelor
