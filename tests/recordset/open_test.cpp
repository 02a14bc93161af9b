// SPDX-License-Identifier: MIT
// Opening, closing, cloning and asking again; connections and their transactions.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;

class Open : public ShopTest {};

TEST_F(Open, FetchesEverythingAndCountsAtOnce) {
  const auto set = openBanks();
  EXPECT_EQ(set->State(), ObjectState::kOpen);
  EXPECT_EQ(set->RecordCount(), 3);
  EXPECT_EQ(set->Source(), "SELECT * FROM Bancos ORDER BY Codigo");
  EXPECT_EQ(set->ActiveConnection(), connection);
  EXPECT_EQ(set->CursorType(), CursorType::kStatic);
  EXPECT_EQ(set->CursorLocation(), CursorLocation::kClient);
  EXPECT_EQ(set->LockType(), LockType::kBatchOptimistic);
}

TEST_F(Open, OfAnOpenSetIsRefused) {
  const auto set = openBanks();
  EXPECT_EQ(errorOf([&] { set->Open(Statement("SELECT 1"), connection); }), 3705);
  EXPECT_EQ(errorOf([&] { set->Open(); }), 3705);
  EXPECT_EQ(set->RecordCount(), 3);
}

TEST_F(Open, WithoutAConnectionOrFieldsIsRefused) {
  Recordset set;
  EXPECT_EQ(errorOf([&] { set.Open(); }), 3709);
  EXPECT_EQ(errorOf([&] { set.Open(Statement("SELECT * FROM Bancos"), nullptr); }), 3709);
  const auto closed = std::make_shared<Connection>();
  EXPECT_EQ(errorOf([&] { set.Open(Statement("SELECT * FROM Bancos"), closed); }), 3709);
  EXPECT_EQ(set.State(), ObjectState::kClosed);
}

TEST_F(Open, AfterARefusedStatementTheSetIsClosedAndMayBeOpenedAgain) {
  Recordset set;
  EXPECT_EQ(errorOf([&] { set.Open(Statement("SELECT * FROM Nadie"), connection); }),
            errors::kTableNotFound);
  EXPECT_EQ(set.State(), ObjectState::kClosed);
  set.Open(Statement("SELECT * FROM Bancos"), connection);
  EXPECT_EQ(set.RecordCount(), 3);
}

TEST_F(Open, CloseForgetsFilterOrderAndPendingChanges) {
  const auto set = openBanks();
  set->Sort("Codigo DESC");
  set->Filter("Codigo > '001'");
  set->Field("Descripcion").Value("x");
  set->Close();
  EXPECT_EQ(set->State(), ObjectState::kClosed);
  set->Open(Statement("SELECT * FROM Bancos ORDER BY Codigo"), connection);
  EXPECT_EQ(set->RecordCount(), 3);
  EXPECT_THAT(column(*set, "Descripcion"), ElementsAre("Uno", "Dos", "Tres"));
}

// ---- Requery

TEST_F(Open, RequerySeesNewRowsAndStandsOnTheFirst) {
  const auto set = openBanks();
  set->MoveLast();
  run("INSERT INTO Bancos (Codigo) VALUES ('000')");
  set->Requery();
  EXPECT_EQ(set->RecordCount(), 4);
  EXPECT_EQ(textAt(*set, "Codigo"), "000");
}

TEST_F(Open, RequeryKeepsFilterAndOrderAndLosesPendingChanges) {
  const auto set = openBanks();
  set->Filter("Codigo > '001'");
  set->Sort("Codigo DESC");
  set->Update({"Descripcion"}, {"x"});
  set->Requery(-1);
  EXPECT_EQ(set->Filter(), "Codigo > '001'");
  EXPECT_EQ(set->Sort(), "Codigo DESC");
  EXPECT_THAT(column(*set, "Descripcion"), ElementsAre("Tres", "Dos"));
}

TEST_F(Open, RequeryWhileEditingIsRefused) {
  const auto set = openBanks();
  set->Field("Descripcion").Value("x");
  EXPECT_EQ(errorOf([&] { set->Requery(); }), 3219);
  set->CancelUpdate();
  set->AddNew();
  EXPECT_EQ(errorOf([&] { set->Requery(); }), 3219);
}

TEST_F(Open, RequeryOfASetWithoutAStatementIsRefused) {
  EXPECT_EQ(errorOf([] { fabricate({{"a", 1}})->Requery(); }), 3219);
  const auto set = openBanks();
  set->ActiveConnection(nullptr);
  EXPECT_EQ(errorOf([&] { set->Requery(); }), 3709);
  EXPECT_EQ(set->RecordCount(), 3);
}

TEST_F(Open, AFailedRequeryLeavesTheOldRows) {
  const auto set = openBanks();
  set->Filter("Codigo > '001'");
  lease->session().execute("DROP TABLE Bancos");
  EXPECT_NE(errorOf([&] { set->Requery(); }), 0);
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("002", "003"));
}

// ---- Clone

TEST_F(Open, ACloneHasItsOwnCursorFilterAndOrder) {
  const auto set = openBanks();
  set->Sort("Codigo DESC");
  set->Filter("Codigo > '001'");
  const auto clone = set->Clone();
  EXPECT_EQ(clone->RecordCount(), 3);
  EXPECT_EQ(textAt(*clone, "Codigo"), "001");
  clone->MoveLast();
  EXPECT_EQ(textAt(*set, "Codigo"), "003");
  EXPECT_EQ(set->AbsolutePosition(), 1);
}

TEST_F(Open, ACloneSharesEditsAdditionsAndDeletionsBothWays) {
  const auto set = openBanks();
  const auto clone = set->Clone(LockType::kUnspecified);
  set->Update({"Descripcion"}, {"x"});
  EXPECT_EQ(textAt(*clone, "Descripcion"), "x");
  clone->MoveLast();
  clone->Delete();
  EXPECT_EQ(set->RecordCount(), 2);
  clone->AddNew({"Codigo"}, {"009"});
  EXPECT_EQ(set->RecordCount(), 3);
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("001", "002", "009"));
  set->UpdateBatch();
  EXPECT_EQ(clone->Status(), record_status::kUnmodified);
}

TEST_F(Open, AnEditOfARowThatACloneDeletedCannotBePosted) {
  const auto set = openBanks();
  const auto clone = set->Clone();
  clone->Field("Descripcion").Value("x");
  set->Delete();
  set->UpdateBatch();
  EXPECT_EQ(errorOf([&] { clone->Update(); }), errors::kDeletedRow);
  clone->CancelUpdate();
  clone->MoveNext();
  EXPECT_EQ(textAt(*clone, "Codigo"), "002");
  EXPECT_EQ(errorOf([&] { clone->UpdateBatch(); }), 0);
}

TEST_F(Open, ACloneDoesNotSeeARowThatIsBeingAdded) {
  const auto set = openBanks();
  const auto clone = set->Clone();
  clone->Sort("Codigo");
  set->AddNew();
  set->Field("Codigo").Value("000");
  EXPECT_EQ(clone->RecordCount(), 3);
  EXPECT_THAT(column(*clone, "Codigo"), ElementsAre("001", "002", "003"));
  set->Update();
  EXPECT_THAT(column(*clone, "Codigo"), ElementsAre("001", "002", "003", "000"));
}

TEST_F(Open, BookmarksHoldInClones) {
  const auto set = openBanks();
  const auto clone = set->Clone();
  set->MoveLast();
  clone->Bookmark(set->Bookmark());
  EXPECT_EQ(textAt(*clone, "Codigo"), "003");
}

TEST_F(Open, ClosingOneLeavesTheOtherOpen) {
  const auto set = openBanks();
  const auto clone = set->Clone();
  set->Close();
  EXPECT_EQ(clone->RecordCount(), 3);
}

TEST_F(Open, ClosingASetThatWasAddingTakesTheRowFromItsClones) {
  auto set = openBanks();
  const auto clone = set->Clone();
  set->AddNew();
  set->Field("Codigo").Value("009");
  set.reset();
  EXPECT_EQ(clone->RecordCount(), 3);
  EXPECT_THAT(column(*clone, "Codigo"), ElementsAre("001", "002", "003"));
}

TEST_F(Open, AfterRequeryOfOneTheyAreSeparate) {
  const auto set = openBanks();
  const auto clone = set->Clone();
  set->Requery();
  set->Update({"Descripcion"}, {"x"});
  EXPECT_EQ(textAt(*clone, "Descripcion"), "Uno");
}

TEST_F(Open, AnotherLockTypeOfACloneIsRefused) {
  const auto set = openBanks();
  EXPECT_EQ(errorOf([&] { set->Clone(LockType::kPessimistic); }), 3001);
}

// ---- Connection

TEST_F(Open, TransactionsNestAndTellTheirLevel) {
  EXPECT_EQ(connection->BeginTrans(), 1);
  EXPECT_EQ(connection->BeginTrans(), 2);
  run("DELETE FROM Bancos");
  connection->RollbackTrans();
  run("DELETE FROM Bancos WHERE Codigo = '003'");
  connection->CommitTrans();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "2");
  EXPECT_EQ(errorOf([&] { connection->CommitTrans(); }), 3219);
  EXPECT_EQ(errorOf([&] { connection->RollbackTrans(); }), 3219);
}

TEST_F(Open, ExecuteTellsTheRowsWritten) {
  EXPECT_EQ(connection->Execute(Statement("UPDATE Bancos SET Saldo = 0")), 3);
}

TEST_F(Open, TheFirstValueIsReadWithoutALookAtLaterRows) {
  run("UPDATE Bancos SET Plazos = 0 WHERE Codigo = '002'");
  const Statement quotients("SELECT 6 / Plazos AS Cociente, Nota FROM Bancos ORDER BY Codigo");
  EXPECT_EQ(errorOf([&] { open(quotients.text()); }), errors::kDivisionByZero);
  journal->lines.clear();
  EXPECT_EQ(connection->firstValue(quotients, "cociente"), Variant(2.0));
  EXPECT_TRUE(connection->firstValue(quotients, "Nota")->isNull());
  EXPECT_TRUE(connection->anyRow(quotients));
  EXPECT_THAT(journal->texts(), ElementsAre(quotients.text(), quotients.text(), quotients.text()));
  EXPECT_EQ(journal->lines[0].rows, 1);
  EXPECT_EQ(errorOf([&] { connection->firstValue(quotients, "Nadie"); }), errors::kItemNotFound);
}

TEST_F(Open, WithoutARowThereIsNoFirstValue) {
  const Statement none("SELECT Codigo FROM Bancos WHERE Codigo = 'x'");
  EXPECT_EQ(connection->firstValue(none, "Codigo"), std::nullopt);
  EXPECT_FALSE(connection->anyRow(none));
}

TEST_F(Open, AClosedConnectionRefusesEverything) {
  const Connection none;
  EXPECT_EQ(none.State(), ObjectState::kClosed);
  EXPECT_EQ(none.ConnectionString(), "");
  Connection closed;
  EXPECT_EQ(errorOf([&] { closed.BeginTrans(); }), 3704);
  EXPECT_EQ(errorOf([&] { closed.CommitTrans(); }), 3704);
  EXPECT_EQ(errorOf([&] { closed.RollbackTrans(); }), 3704);
  EXPECT_EQ(errorOf([&] { closed.Close(); }), 3704);
  EXPECT_EQ(errorOf([&] { closed.Execute(Statement("DELETE FROM Bancos")); }), 3704);
  const Statement banks("SELECT Codigo FROM Bancos");
  EXPECT_EQ(errorOf([&] { closed.firstValue(banks, "Codigo"); }), 3709);
  EXPECT_EQ(errorOf([&] { closed.anyRow(banks); }), 3709);
}

TEST_F(Open, ClosingAConnectionClosesItsSetsButNotInsideATransaction) {
  const auto first = openBanks();
  const auto second = openBanks();
  connection->BeginTrans();
  EXPECT_EQ(errorOf([&] { connection->Close(); }), 3246);
  EXPECT_EQ(first->State(), ObjectState::kOpen);
  connection->RollbackTrans();
  connection->Close();
  EXPECT_EQ(connection->State(), ObjectState::kClosed);
  EXPECT_EQ(first->State(), ObjectState::kClosed);
  EXPECT_EQ(second->State(), ObjectState::kClosed);
}

TEST_F(Open, ADroppedConnectionRollsBackWhatIsNotCommitted) {
  auto other = connect(lease);
  other->BeginTrans();
  other->Execute(Statement("DELETE FROM Bancos"));
  other.reset();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "3");
  EXPECT_EQ(lease->session().depth(), 0);
}

TEST_F(Open, ASetKeepsItsConnectionAndTheLeaseGoesBackWithTheLastHolder) {
  const std::weak_ptr<Lease> lent = lease;
  auto set = openBanks();
  connection.reset();
  lease.reset();
  EXPECT_FALSE(lent.expired());
  set->Requery();
  EXPECT_EQ(set->RecordCount(), 3);
  set.reset();
  EXPECT_TRUE(lent.expired());
}

// ---- Trace

TEST_F(Open, TheTraceIsToldOfEveryStatementAndOfItsFailure) {
  journal->lines.clear();
  const auto set = openBanks();
  run("UPDATE Bancos SET Saldo = 1");
  errorOf([&] { open("SELECT * FROM Nadie"); });
  set->Requery();
  ASSERT_EQ(journal->lines.size(), 4U);
  EXPECT_EQ(journal->lines[0].text, "SELECT * FROM Bancos ORDER BY Codigo");
  EXPECT_EQ(journal->lines[0].rows, 3);
  EXPECT_EQ(journal->lines[1].rows, 3);
  EXPECT_EQ(journal->lines[2].error, errors::kTableNotFound);
  EXPECT_EQ(journal->lines[3].text, "SELECT * FROM Bancos ORDER BY Codigo");
}

TEST_F(Open, MemoryGrowsWithTheRows) {
  const auto small = openBanks();
  for (int i = 0; i < 500; ++i) run("INSERT INTO Lineas (Ticket) VALUES (1)");
  const auto large = open("SELECT * FROM Lineas");
  EXPECT_GT(large->memory(), small->memory());
}

}  // namespace
}  // namespace tavelor::test
