// SPDX-License-Identifier: MIT
// Transactions that the engine ends by itself, and commits that fail.
#include "tests/recordset/support.hpp"
#include "tests/support/file_limit.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::FileLimit;
using test::sentenceOf;
using testing::HasSubstr;

class LostTransaction : public test::ShopTest {
 protected:
  LostTransaction() {
    lease = std::make_shared<test::Lease>(path());
    lease->create(test::kSchema);
    connection = connect(lease);
    run("INSERT INTO Bancos (Codigo, Descripcion) VALUES ('001', 'Uno')");
  }

  std::string path() const { return folder_.file("a.db"); }
  std::uintmax_t logSize() const { return std::filesystem::file_size(path() + "-wal"); }

  /// Inserts rows until one fails; its error, or 0.
  std::int32_t fill() {
    const std::string text(3000, 'x');
    return errorOf([&] {
      for (int i = 0; i < 1000; ++i) {
        run("INSERT INTO Bancos (Codigo, Nota) VALUES ('" + std::to_string(1000 + i) + "', '" +
            text + "')");
      }
    });
  }
  /// Loses the open transaction to an input or output error.
  void lose() {
    lease->session().execute("PRAGMA cache_size = 10");  // changes reach the file at once
    const FileLimit limit(logSize() + 100'000);
    ASSERT_EQ(fill(), errors::kUnspecified);
  }
  void expectOnlyTheRollbackIsTaken() {
    EXPECT_EQ(errorOf([&] { run("DELETE FROM Bancos"); }), errors::kTransactionLost);
    EXPECT_EQ(errorOf([&] { open("SELECT * FROM Bancos"); }), errors::kTransactionLost);
    EXPECT_EQ(errorOf([&] { connection->BeginTrans(); }), errors::kTransactionLost);
    EXPECT_EQ(errorOf([&] { connection->CommitTrans(); }), errors::kTransactionLost);
    EXPECT_EQ(errorOf([&] { connection->Close(); }), errors::kTransactionLost);
    EXPECT_EQ(connection->State(), ObjectState::kOpen);
  }

 private:
  test::Folder folder_;
};

TEST_F(LostTransaction, FullDiskInsideLeavesOnlyTheRollbackAndNothingStored) {
  EXPECT_EQ(connection->BeginTrans(), 1);
  run("INSERT INTO Bancos (Codigo) VALUES ('002')");
  lease->session().execute("PRAGMA max_page_count = 60");
  ASSERT_EQ(fill(), errors::kUnspecified);
  EXPECT_EQ(connection->transactionLevel(), 1);
  expectOnlyTheRollbackIsTaken();
  connection->RollbackTrans();
  EXPECT_EQ(connection->transactionLevel(), 0);
  EXPECT_EQ(scalar("SELECT Count(*) AS n FROM Bancos"), "1");
  EXPECT_EQ(errorOf([&] { connection->RollbackTrans(); }), errors::kNotAllowedInContext);
}

TEST_F(LostTransaction, InputOutputErrorInsideLeavesOnlyTheRollbackAndNothingStored) {
  connection->BeginTrans();
  run("INSERT INTO Bancos (Codigo) VALUES ('002')");
  lose();
  expectOnlyTheRollbackIsTaken();
  connection->RollbackTrans();
  EXPECT_EQ(scalar("SELECT Count(*) AS n FROM Bancos"), "1");
  EXPECT_EQ(connection->BeginTrans(), 1);
}

TEST_F(LostTransaction, ErrorSaysWhatToDo) {
  connection->BeginTrans();
  lose();
  const std::string sentence = sentenceOf([&] { run("DELETE FROM Bancos"); });
  EXPECT_THAT(sentence, HasSubstr("The transaction was lost"));
  EXPECT_THAT(sentence, HasSubstr("Roll it back"));
}

TEST_F(LostTransaction, UpdateBatchOfOneRowAndOfSeveralWritesNothingAndKeepsThemPending) {
  for (const std::size_t rows : {1U, 2U}) {
    const RecordsetPtr set = openBanks();
    connection->BeginTrans();
    lose();
    for (std::size_t i = 0; i < rows; ++i) set->AddNew({"Codigo"}, {"9" + std::to_string(i)});
    EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kTransactionLost);
    connection->RollbackTrans();
    EXPECT_EQ(scalar("SELECT Count(*) AS n FROM Bancos"), "1");
    set->UpdateBatch();
    EXPECT_EQ(scalar("SELECT Count(*) AS n FROM Bancos"), std::to_string(1 + rows));
    run("DELETE FROM Bancos WHERE Codigo > '8'");
  }
}

TEST_F(LostTransaction, UpdateBatchThatLosesItLeavesTheCallersLevelsToRollBack) {
  const RecordsetPtr set = openBanks();
  connection->BeginTrans();
  for (int i = 0; i < 200; ++i) {
    set->AddNew({"Codigo", "Nota"}, {std::to_string(1000 + i), std::string(3000, 'x')});
  }
  lease->session().execute("PRAGMA cache_size = 10");
  {
    const FileLimit limit(logSize() + 100'000);
    EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kUnspecified);
  }
  EXPECT_EQ(connection->transactionLevel(), 1);
  expectOnlyTheRollbackIsTaken();
  connection->RollbackTrans();
  EXPECT_EQ(scalar("SELECT Count(*) AS n FROM Bancos"), "1");
}

TEST_F(LostTransaction, EachNestedLevelIsRolledBackBeforeWorkGoesOn) {
  connection->BeginTrans();
  EXPECT_EQ(connection->BeginTrans(), 2);
  lose();
  connection->RollbackTrans();
  EXPECT_EQ(connection->transactionLevel(), 1);
  expectOnlyTheRollbackIsTaken();
  connection->RollbackTrans();
  EXPECT_EQ(connection->BeginTrans(), 1);
  run("INSERT INTO Bancos (Codigo) VALUES ('002')");
  connection->CommitTrans();
  EXPECT_EQ(scalar("SELECT Count(*) AS n FROM Bancos"), "2");
}

TEST_F(LostTransaction, ConnectionClosesAfterTheRollback) {
  connection->BeginTrans();
  lose();
  connection->RollbackTrans();
  connection->Close();
  EXPECT_EQ(connection->State(), ObjectState::kClosed);
}

TEST_F(LostTransaction, DroppedConnectionLeavesAFitSession) {
  connection->BeginTrans();
  connection->BeginTrans();
  lose();
  connection.reset();
  connection = connect(lease);
  EXPECT_EQ(connection->transactionLevel(), 0);
  EXPECT_EQ(connection->BeginTrans(), 1);
  connection->CommitTrans();
}

TEST_F(LostTransaction, OtherConnectionsGoOn) {
  const auto second = std::make_shared<test::Lease>(path());
  const ConnectionPtr other = connect(second);
  connection->BeginTrans();
  lose();
  // The engine holds nothing any more, so nobody waits for a transaction that is gone.
  other->Execute(Statement("INSERT INTO Bancos (Codigo) VALUES ('002')"));
  EXPECT_EQ(other->BeginTrans(), 1);
  other->CommitTrans();
  expectOnlyTheRollbackIsTaken();
}

class FailedCommit : public LostTransaction {
 protected:
  /// A transaction whose commit finds no room.
  void failToCommit() {
    connection->BeginTrans();
    run("INSERT INTO Bancos (Codigo) VALUES ('002')");
    const FileLimit limit(logSize() + 100);
    ASSERT_EQ(errorOf([&] { connection->CommitTrans(); }), errors::kUnspecified);
  }
};

TEST_F(FailedCommit, LeavesNoLevelAndNothingStored) {
  failToCommit();
  EXPECT_EQ(connection->transactionLevel(), 0);
  EXPECT_EQ(scalar("SELECT Count(*) AS n FROM Bancos"), "1");
  EXPECT_EQ(connection->BeginTrans(), 1);
  connection->CommitTrans();
}

TEST_F(FailedCommit, MayBeRolledBackOnceByWhoeverCatchesTheError) {
  failToCommit();
  connection->RollbackTrans();
  EXPECT_EQ(connection->transactionLevel(), 0);
  EXPECT_EQ(errorOf([&] { connection->RollbackTrans(); }), errors::kNotAllowedInContext);
  failToCommit();
  connection->BeginTrans();
  connection->RollbackTrans();
  EXPECT_EQ(errorOf([&] { connection->RollbackTrans(); }), errors::kNotAllowedInContext);
}

TEST_F(FailedCommit, ConnectionCloses) {
  failToCommit();
  connection->Close();
  EXPECT_EQ(connection->State(), ObjectState::kClosed);
}

TEST_F(FailedCommit, OfOneStatementWithoutATransactionStoresNothing) {
  {
    const FileLimit limit(logSize() + 100);
    EXPECT_EQ(errorOf([&] { run("INSERT INTO Bancos (Codigo) VALUES ('002')"); }),
              errors::kUnspecified);
  }
  EXPECT_EQ(connection->transactionLevel(), 0);
  EXPECT_EQ(scalar("SELECT Count(*) AS n FROM Bancos"), "1");
  EXPECT_EQ(errorOf([&] { connection->RollbackTrans(); }), errors::kNotAllowedInContext);
}

}  // namespace
}  // namespace tavelor
