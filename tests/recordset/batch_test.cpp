// SPDX-License-Identifier: MIT
// Writing pending changes, and what is left when that fails.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::AllOf;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

class Batch : public ShopTest {
 protected:
  void edit(Recordset& set, std::string_view code, std::string_view text) {
    set.MoveFirst();
    set.Find("Codigo = '" + std::string(code) + "'");
    set.Field("Descripcion").Value(text);
    set.Update();
  }
  std::string description(std::string_view code) {
    return scalar("SELECT Descripcion FROM Bancos WHERE Codigo = '" + std::string(code) + "'");
  }
};

TEST_F(Batch, WritesOnlyTheChangedColumnsAndFindsTheRowByKeyAndOriginals) {
  const auto set = openBanks();
  set->Field("Descripcion").Value("Primero");
  journal->lines.clear();
  set->UpdateBatch(Affect::kCurrent);
  EXPECT_THAT(journal->texts(), ElementsAre("UPDATE \"Bancos\" SET \"Descripcion\"=? WHERE "
                                            "\"Codigo\"=? AND \"Descripcion\"=?"));
  EXPECT_EQ(description("001"), "Primero");
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
}

TEST_F(Batch, TheKeyNeedNotBeInTheSelect) {
  const auto set = open("SELECT Descripcion FROM Bancos WHERE Codigo = '002'");
  EXPECT_EQ(set->Fields().Count(), 1);
  set->Field(0).Value("Segundo");
  set->UpdateBatch();
  EXPECT_EQ(description("002"), "Segundo");
}

TEST_F(Batch, PostsTheRowInEditFirst) {
  const auto set = openBanks();
  set->Field("Descripcion").Value("x");
  set->UpdateBatch();
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
  EXPECT_EQ(description("001"), "x");
}

TEST_F(Batch, NullOriginalsAndNullValuesAreWritten) {
  const auto set = openBanks();
  set->MoveLast();
  set->Field("Saldo").Value(5);
  set->Field("Descripcion").Value(Null{});
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos WHERE Saldo = 5 AND Descripcion Is Null"), "1");
  set->Field("Saldo").Value(Null{});
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos WHERE Saldo Is Null AND Codigo = '003'"), "1");
}

TEST_F(Batch, EveryTypeIsFoundAgainByItsOriginalValue) {
  const auto set = openBanks();
  const Bytes logo = {std::byte{0}, std::byte{255}};
  const std::vector<Variant> fields = {"Saldo",    "Alta", "Activo", "Plazos",
                                       "Logotipo", "Peso", "Ratio",  "Nota"};
  set->Update(fields, {Currency::fromScaled(123457), Date(45000.123456789), false, 7, logo, 0.1F,
                       1.0 / 3.0, "línea\nnueva"});
  set->UpdateBatch();
  set->Update(fields,
              {Currency::fromScaled(-1), Date(1.5), true, -7, Bytes{}, 2.5F, 1e300, "otra"});
  set->UpdateBatch();
  set->Requery();
  set->Update(fields, {Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}, Null{}});
  set->UpdateBatch();
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
}

TEST_F(Batch, ASingleIsStoredAsTheNumberThatItPrintsAs) {
  const auto set = openBanks();
  set->Field("Peso").Value("0,1");
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos WHERE Peso = 0.1"), "1");
}

TEST_F(Batch, AnAmountOfMoreThanFourDecimalsInTheDatabaseIsNoConflict) {
  lease->session().execute("UPDATE Bancos SET Saldo = 10.50003 WHERE Codigo = '001'");
  const auto set = openBanks();
  set->Field("Saldo").Value(11);
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Saldo FROM Bancos WHERE Codigo = '001'"), "11");
}

TEST_F(Batch, AFlagThatAnotherProgramStoredAsOneIsNoConflict) {
  lease->session().execute("UPDATE Bancos SET Activo = 1 WHERE Codigo = '001'");
  const auto set = openBanks();
  EXPECT_EQ(set->Field("Activo").Value(), Variant(true));
  set->Field("Activo").Value(false);
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Activo FROM Bancos WHERE Codigo = '001'"), "False");
}

TEST_F(Batch, RowsOfATableWithoutAKeyAreFoundByTheirPlace) {
  run("INSERT INTO Notas (Texto) VALUES ('igual')");
  run("INSERT INTO Notas (Texto) VALUES ('igual')");
  const auto set = open("SELECT Texto, Numero FROM Notas");
  EXPECT_EQ(set->Fields().Count(), 2);
  set->MoveLast();
  set->Field("Texto").Value("otro");
  set->AddNew({"Texto"}, {"nuevo"});
  set->UpdateBatch();
  EXPECT_EQ(textAt(*set, "Numero"), "5");
  set->Field("Texto").Value("nuevo 2");
  set->MoveFirst();
  set->Delete();
  set->UpdateBatch();
  EXPECT_THAT(column(*open("SELECT Texto FROM Notas"), "Texto"), ElementsAre("otro", "nuevo 2"));
}

// ---- Adding

TEST_F(Batch, InsertSendsOnlyAssignedFieldsAndBringsStoredValuesBack) {
  const auto set = open("SELECT Id, Ticket, Texto, Cantidad FROM Lineas");
  set->AddNew();
  set->Field("Ticket").Value(7);
  journal->lines.clear();
  set->UpdateBatch();
  EXPECT_THAT(journal->texts(),
              ElementsAre("INSERT INTO \"Lineas\" (\"Ticket\") VALUES (?) RETURNING "
                          "\"Id\",\"Ticket\",\"Texto\",\"Cantidad\""));
  EXPECT_EQ(textAt(*set, "Id"), "1");
  EXPECT_EQ(textAt(*set, "Cantidad"), "1");
  EXPECT_TRUE(set->Field("Texto").Value().isNull());
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
}

TEST_F(Batch, AnAddedRowCanBeEditedAndWrittenAgainByItsHiddenKey) {
  const auto set = open("SELECT Texto, Ticket FROM Lineas");
  set->AddNew({"Texto", "Ticket"}, {"uno", 1});
  set->AddNew({"Texto", "Ticket"}, {"dos", 1});
  set->UpdateBatch();
  set->Field("Texto").Value("segundo");
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Texto FROM Lineas WHERE Id = 2"), "segundo");
  EXPECT_EQ(scalar("SELECT Texto FROM Lineas WHERE Id = 1"), "uno");
}

TEST_F(Batch, AnAutomaticNumberMayBeAssigned) {
  const auto set = open("SELECT Id, Ticket FROM Lineas");
  set->AddNew({"Id", "Ticket"}, {41, 1});
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Id FROM Lineas"), "41");
}

TEST_F(Batch, AnEmptyNewRowIsRefusedAndStaysPending) {
  const auto set = openBanks();
  set->AddNew();
  EXPECT_THAT(sentenceOf([&] { set->UpdateBatch(); }), HasSubstr("Cannot insert an empty row"));
  EXPECT_EQ(set->Status(), record_status::kNew | record_status::kInvalid);
  set->Field("Codigo").Value("004");
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "4");
}

TEST_F(Batch, AFieldPutBackToEmptyIsNotSent) {
  const auto set = open("SELECT Id, Ticket, Cantidad FROM Lineas");
  set->AddNew();
  set->Field("Ticket").Value(1);
  set->Field("Cantidad").Value(5);
  set->Field("Cantidad").Value(Empty{});
  set->UpdateBatch();
  EXPECT_EQ(textAt(*set, "Cantidad"), "1");
}

// ---- Deleting

TEST_F(Batch, ADeletedRowGoesWhenTheBatchIsWritten) {
  const auto set = openBanks();
  set->Delete();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "3");
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "2");
  EXPECT_EQ(set->Status(), record_status::kDbDeleted);
  set->MoveNext();
  EXPECT_EQ(textAt(*set, "Codigo"), "002");
}

TEST_F(Batch, DeletedRowsShowAmongThePendingOnesOnly) {
  const auto set = openBanks();
  set->Delete();
  set->Filter(FilterGroup::kPending);
  EXPECT_EQ(set->RecordCount(), 1);
  EXPECT_EQ(set->Status(), record_status::kDeleted);
  set->UpdateBatch();
  set->Filter(FilterGroup::kNone);
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("002", "003"));
}

// The frame deletes the current row and then writes all, with the user's filter still on.
TEST_F(Batch, ADeletedRowIsWrittenUnderAFilterText) {
  const auto set = openBanks();
  set->Filter("Codigo = '002'");
  set->Delete();
  set->MoveNext();
  set->UpdateBatch(Affect::kAll);
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "2");
}

// ---- Which rows

TEST_F(Batch, CurrentWritesTheCurrentRowOnly) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  edit(*set, "002", "y");
  set->UpdateBatch(Affect::kCurrent);
  EXPECT_EQ(description("001"), "Uno");
  EXPECT_EQ(description("002"), "y");
  set->UpdateBatch(Affect::kAll);
  EXPECT_EQ(description("001"), "x");
}

TEST_F(Batch, AllUnderAFilterTextWritesTheRowsThatItShows) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  edit(*set, "002", "y");
  set->Filter("Codigo = '001'");
  set->UpdateBatch(Affect::kAll);
  EXPECT_EQ(description("001"), "x");
  EXPECT_EQ(description("002"), "Dos");
  set->UpdateBatch(Affect::kAllChapters);
  EXPECT_EQ(description("002"), "y");
}

TEST_F(Batch, AllUnderAGroupOrBookmarksWritesEveryRow) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  edit(*set, "002", "y");
  set->Filter({3.0});
  set->UpdateBatch(Affect::kAll);
  EXPECT_EQ(description("001"), "x");
  EXPECT_EQ(description("002"), "y");
}

TEST_F(Batch, GroupWritesTheRowsOfTheGroup) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  edit(*set, "002", "y");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(Affect::kGroup); }), 3219);
  set->Filter({2.0});
  set->UpdateBatch(Affect::kGroup);
  EXPECT_EQ(description("001"), "Uno");
  EXPECT_EQ(description("002"), "y");
  set->Filter(FilterGroup::kConflicting);
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(Affect::kGroup); }), 3021);
}

TEST_F(Batch, CurrentWithoutARowRaisesNoCurrentRecord) {
  const auto set = openBanks();
  set->MoveLast();
  set->MoveNext();
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(Affect::kCurrent); }), 3021);
}

TEST_F(Batch, WithNothingPendingDoesNothing) {
  const auto set = openBanks();
  journal->lines.clear();
  set->UpdateBatch();
  EXPECT_TRUE(journal->lines.empty());
}

// ---- Conflicts

TEST_F(Batch, AChangeOfTheSameColumnByAnotherIsAConflictAndOtherRowsAreWritten) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  edit(*set, "002", "y");
  run("UPDATE Bancos SET Descripcion = 'ajeno' WHERE Codigo = '001'");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
  EXPECT_EQ(description("001"), "ajeno");
  EXPECT_EQ(description("002"), "y");
  set->Filter(FilterGroup::kConflicting);
  EXPECT_EQ(set->RecordCount(), 1);
  EXPECT_EQ(textAt(*set, "Codigo"), "001");
  EXPECT_EQ(set->Status(), record_status::kModified | record_status::kConcurrencyViolation);
  set->Filter(FilterGroup::kAffected);
  EXPECT_EQ(set->RecordCount(), 2);
  set->Filter(FilterGroup::kPending);
  EXPECT_EQ(set->RecordCount(), 1);
}

TEST_F(Batch, AChangeOfAnotherColumnByAnotherIsNoConflict) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  run("UPDATE Bancos SET Saldo = 99 WHERE Codigo = '001'");
  set->UpdateBatch();
  EXPECT_EQ(description("001"), "x");
  EXPECT_EQ(scalar("SELECT Saldo FROM Bancos WHERE Codigo = '001'"), "99");
}

TEST_F(Batch, ARowThatAnotherDeletedIsAConflict) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  set->MoveNext();
  set->Delete();
  run("DELETE FROM Bancos");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
  set->Filter(FilterGroup::kConflicting);
  EXPECT_EQ(set->RecordCount(), 2);
}

TEST_F(Batch, CancelBatchGivesUpAConflictAndRequeryShowsTheOthersValue) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  run("UPDATE Bancos SET Descripcion = 'ajeno' WHERE Codigo = '001'");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
  set->CancelBatch();
  set->Requery();
  EXPECT_EQ(textAt(*set, "Descripcion"), "ajeno");
}

// ---- Refusals of the engine

TEST_F(Batch, ADuplicateKeyWritesNothingAndAllRowsStayPending) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  set->AddNew({"Codigo", "Descripcion"}, {"004", "Cuatro"});
  set->AddNew({"Codigo", "Descripcion"}, {"002", "doble"});
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kIntegrityViolation);
  EXPECT_EQ(description("001"), "Uno");
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "3");
  EXPECT_EQ(connection->transactionLevel(), 0);
  EXPECT_EQ(lease->session().depth(), 0);
  set->Filter(FilterGroup::kConflicting);
  EXPECT_EQ(set->RecordCount(), 1);
  EXPECT_EQ(textAt(*set, "Descripcion"), "doble");
  EXPECT_EQ(set->Status(), record_status::kNew | record_status::kIntegrityViolation);
  set->Filter(FilterGroup::kPending);
  EXPECT_EQ(set->RecordCount(), 3);
  // Put right, all of it goes.
  set->Filter("Descripcion = 'doble'");
  set->Field("Codigo").Value("005");
  set->Filter("");
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "5");
  EXPECT_EQ(description("001"), "x");
}

TEST_F(Batch, ANullThatTheTableRefusesIsAnIntegrityViolation) {
  const auto set = open("SELECT Id, Ticket, Texto FROM Lineas");
  set->AddNew({"Texto"}, {"sin ticket"});
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kIntegrityViolation);
  EXPECT_EQ(set->RecordCount(), 1);
}

TEST_F(Batch, SeveralRowsAreOneTransaction) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  set->MoveNext();
  set->Field("Codigo").Value("003");  // the key of another row
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kIntegrityViolation);
  EXPECT_EQ(description("001"), "Uno");
}

TEST_F(Batch, InsideATransactionOfTheCallerARollbackUndoesTheWriting) {
  const auto set = openBanks();
  connection->BeginTrans();
  edit(*set, "001", "x");
  edit(*set, "002", "y");
  set->UpdateBatch();
  EXPECT_EQ(connection->transactionLevel(), 1);
  EXPECT_EQ(description("002"), "y");
  connection->RollbackTrans();
  EXPECT_EQ(description("001"), "Uno");
  EXPECT_EQ(description("002"), "Dos");
}

TEST_F(Batch, AFailedBatchLeavesTheCallersTransactionAsItWas) {
  const auto set = openBanks();
  connection->BeginTrans();
  run("UPDATE Bancos SET Descripcion = 'antes' WHERE Codigo = '003'");
  edit(*set, "001", "x");
  set->AddNew({"Codigo"}, {"002"});
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kIntegrityViolation);
  connection->CommitTrans();
  EXPECT_EQ(description("003"), "antes");
  EXPECT_EQ(description("001"), "Uno");
}

TEST_F(Batch, AComputedFieldCannotBeWritten) {
  const auto set = open("SELECT Codigo, Saldo * 2 AS Doble FROM Bancos");
  set->Field("Doble").Value(1);
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kMultipleStep);
  EXPECT_EQ(set->Status(), record_status::kModified | record_status::kInvalid);
}

TEST_F(Batch, HostileTextIsStoredAsItStands) {
  const std::string hostile = "'; DELETE FROM Bancos; --\"";
  const auto set = openBanks();
  set->Field("Descripcion").Value(hostile);
  set->UpdateBatch();
  set->Requery();
  EXPECT_EQ(textAt(*set, "Descripcion"), hostile);
  EXPECT_EQ(set->RecordCount(), 3);
}

TEST_F(Batch, TenThousandChangedRowsAreWrittenInOneTransaction) {
  connection->BeginTrans();
  for (int i = 0; i < 10'000; ++i) run("INSERT INTO Lineas (Ticket, Texto) VALUES (1, 'a')");
  connection->CommitTrans();
  const auto set = open("SELECT * FROM Lineas");
  for (; !set->Eof(); set->MoveNext()) set->Field("Texto").Value("b");
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Lineas WHERE Texto = 'b'"), "10000");
}

// ---- Giving up

TEST_F(Batch, CancelBatchDropsEditsAdditionsAndDeletions) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  set->MoveNext();
  set->Delete();
  set->AddNew({"Codigo"}, {"009"});
  set->CancelBatch();
  EXPECT_EQ(set->RecordCount(), 3);
  EXPECT_THAT(column(*set, "Descripcion"), ElementsAre("Uno", "Dos", "Tres"));
  journal->lines.clear();
  set->UpdateBatch();
  EXPECT_TRUE(journal->lines.empty());
}

TEST_F(Batch, CancelBatchOfTheCurrentRowLeavesTheOthersPending) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  edit(*set, "002", "y");
  set->CancelBatch(Affect::kCurrent);
  set->UpdateBatch();
  EXPECT_EQ(description("001"), "x");
  EXPECT_EQ(description("002"), "Dos");
}

TEST_F(Batch, CancelBatchDropsTheRowBeingAdded) {
  const auto set = openBanks();
  set->AddNew();
  set->Field("Codigo").Value("009");
  set->CancelBatch();
  EXPECT_EQ(set->RecordCount(), 3);
  EXPECT_EQ(textAt(*set, "Codigo"), "001");
}

// ---- Without a connection

TEST_F(Batch, ADisconnectedSetKeepsItsChangesAndWritesThemOverAnotherConnection) {
  const auto set = openBanks();
  edit(*set, "001", "x");
  set->ActiveConnection(nullptr);
  EXPECT_EQ(set->ActiveConnection(), nullptr);
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), 3709);
  EXPECT_EQ(set->RecordCount(), 3);
  set->ActiveConnection(connect(lease));
  set->UpdateBatch();
  EXPECT_EQ(description("001"), "x");
}

TEST(BatchFabricated, ASetThatNeverHadADatabaseTakesItsChangesAsWritten) {
  const auto set = fabricate({{"a", 1}});
  set->Field("Nombre").Value("b");
  set->AddNew({"Nombre"}, {"c"});
  set->UpdateBatch();
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
  EXPECT_TRUE(set->Field("Numero").Value().isNull());
  set->CancelBatch();
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("b", "c"));
}

// ---- One row at a time

TEST_F(Batch, AnOptimisticSetWritesEachUpdateAndDeleteAtOnce) {
  Recordset set;
  set.LockType(LockType::kOptimistic);
  set.Open(Statement("SELECT * FROM Bancos ORDER BY Codigo"), connection);
  set.Field("Descripcion").Value("x");
  EXPECT_EQ(description("001"), "Uno");
  set.Update();
  EXPECT_EQ(description("001"), "x");
  set.AddNew({"Codigo"}, {"009"});
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "4");
  set.Delete();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "3");
  EXPECT_EQ(errorOf([&] { set.CancelBatch(Affect::kAll); }), 3219);
  EXPECT_EQ(errorOf([&] { set.LockType(LockType::kBatchOptimistic); }), 3705);
}

TEST_F(Batch, AnImmediateUpdateThatFailsStaysInEditUntilItIsMendedOrCancelled) {
  Recordset set;
  set.LockType(LockType::kOptimistic);
  set.Open(Statement("SELECT * FROM Bancos ORDER BY Codigo"), connection);
  set.Sort("Codigo");
  for (const char* attempt : {"first", "again"}) {
    set.Field("Codigo").Value("002");
    EXPECT_EQ(errorOf([&] { set.Update(); }), errors::kIntegrityViolation) << attempt;
    EXPECT_EQ(set.EditMode(), EditMode::kInProgress) << attempt;
    EXPECT_EQ(textAt(set, "Codigo"), "002") << attempt;
  }
  EXPECT_EQ(errorOf([&] { set.MoveNext(); }), errors::kIntegrityViolation);
  EXPECT_EQ(set.AbsolutePosition(), 1);
  set.Field("Codigo").Value("009");
  set.Update();
  EXPECT_EQ(set.EditMode(), EditMode::kNone);
  EXPECT_EQ(description("009"), "Uno");

  set.Field("Codigo").Value("003");
  EXPECT_EQ(errorOf([&] { set.Update(); }), errors::kIntegrityViolation);
  set.CancelUpdate();
  EXPECT_EQ(textAt(set, "Codigo"), "009");
  EXPECT_FALSE(set.hasUnwrittenChanges());
}

TEST_F(Batch, AnImmediateNewRowThatFailsStaysInAddMode) {
  Recordset set;
  set.LockType(LockType::kOptimistic);
  set.Open(Statement("SELECT * FROM Bancos ORDER BY Codigo"), connection);
  set.AddNew();
  set.Field("Codigo").Value("002");
  EXPECT_EQ(errorOf([&] { set.Update(); }), errors::kIntegrityViolation);
  EXPECT_EQ(set.EditMode(), EditMode::kAdd);
  EXPECT_EQ(set.Clone()->RecordCount(), 3) << "seen by this set only";
  set.Field("Codigo").Value("004");
  set.Update();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "4");
  EXPECT_EQ(set.RecordCount(), 4);
  EXPECT_EQ(set.Clone()->RecordCount(), 4);
}

TEST_F(Batch, AnImmediateNewRowWithValuesThatIsRefusedIsNotThere) {
  Recordset set;
  set.LockType(LockType::kOptimistic);
  set.Open(Statement("SELECT * FROM Bancos ORDER BY Codigo"), connection);
  EXPECT_EQ(errorOf([&] { set.AddNew({"Codigo"}, {"002"}); }), errors::kIntegrityViolation);
  EXPECT_EQ(set.RecordCount(), 3);
  EXPECT_EQ(set.EditMode(), EditMode::kNone);
  EXPECT_EQ(textAt(set, "Codigo"), "001");
  EXPECT_FALSE(set.hasUnwrittenChanges());
}

}  // namespace
}  // namespace tavelor::test
