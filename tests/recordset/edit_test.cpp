// SPDX-License-Identifier: MIT
// Editing, adding, deleting and taking back, before anything reaches a database.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;

class Edit : public ShopTest {};

TEST_F(Edit, ModeIsNoneThenInProgressThenNoneAfterUpdate) {
  const auto set = openBanks();
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
  set->Field("Descripcion").Value("x");
  EXPECT_EQ(set->EditMode(), EditMode::kInProgress);
  set->Update();
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
  EXPECT_EQ(set->Status(), record_status::kModified);
}

TEST_F(Edit, AddNewIsInAddModeUntilUpdate) {
  const auto set = openBanks();
  set->AddNew();
  EXPECT_EQ(set->EditMode(), EditMode::kAdd);
  set->Field("Codigo").Value("9");
  EXPECT_EQ(set->EditMode(), EditMode::kAdd);
  set->Update();
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
  EXPECT_EQ(set->Status(), record_status::kNew);
}

TEST_F(Edit, AddNewWithValuesIsPostedAtOnce) {
  const auto set = openBanks();
  set->AddNew({"Codigo", 1}, {"9", "Nueve"});
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
  EXPECT_EQ(textAt(*set, "Descripcion"), "Nueve");
  EXPECT_EQ(set->RecordCount(), 4);
}

TEST(EditFabricated, ARowStaysInAddModeAfterUpdateWithoutADatabase) {
  const auto set = fabricate({});
  set->AddNew();
  set->Field("Nombre").Value("x");
  set->Update();
  EXPECT_EQ(set->EditMode(), EditMode::kAdd);
}

TEST(EditFabricated, AddNewOnAnEmptySetCountsOneAtOnce) {
  const auto set = fabricate({});
  set->AddNew();
  EXPECT_EQ(set->RecordCount(), 1);
  EXPECT_FALSE(set->Bof());
  EXPECT_FALSE(set->Eof());
}

TEST(EditFabricated, ANewRowIsEmptyUntilWritten) {
  const auto set = three();
  set->AddNew();
  EXPECT_TRUE(set->Field("Nombre").Value().isEmpty());
  set->Update();
  EXPECT_TRUE(set->Field("Nombre").Value().isEmpty());
}

TEST(EditFabricated, ANewRowIsTheLastAndStaysCurrentAfterUpdate) {
  const auto set = three();
  set->AddNew();
  set->Field("Nombre").Value("d");
  set->Update();
  EXPECT_EQ(textAt(*set, "Nombre"), "d");
  EXPECT_EQ(set->AbsolutePosition(), 4);
  set->MoveNext();
  EXPECT_TRUE(set->Eof());
}

TEST(EditFabricated, AddNewWhileAddingPostsTheRowBefore) {
  const auto set = three();
  set->AddNew();
  set->Field("Nombre").Value("d");
  set->AddNew();
  set->Field("Nombre").Value("e");
  set->Update();
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("a", "b", "c", "d", "e"));
}

TEST(EditFabricated, ArraysOfDifferentLengthAreRefused) {
  const auto set = three();
  EXPECT_EQ(errorOf([&] { set->AddNew({"Nombre"}, {"x", 1}); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Update({"Nombre", "Numero"}, {"x"}); }), 3001);
  EXPECT_EQ(set->RecordCount(), 3);
}

TEST(EditFabricated, AddNewWithABadValueAddsNoRow) {
  const auto set = three();
  EXPECT_EQ(errorOf([&] { set->AddNew({"Nombre", "Numero"}, {"x", "uno"}); }), 3421);
  EXPECT_EQ(errorOf([&] { set->AddNew({"Nadie"}, {"x"}); }), 3265);
  EXPECT_EQ(set->RecordCount(), 3);
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
}

TEST(EditFabricated, UpdateWithValuesWritesThemAndPosts) {
  const auto set = three();
  set->Update({"Nombre", "Numero"}, {"A", 10});
  EXPECT_EQ(textAt(*set, "Nombre"), "A");
  EXPECT_EQ(textAt(*set, "Numero"), "10");
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
}

TEST(EditFabricated, CancelUpdateOfANewRowGoesBackToTheRowBefore) {
  const auto set = three();
  set->MoveNext();
  set->AddNew();
  set->Field("Nombre").Value("x");
  set->CancelUpdate();
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
  EXPECT_EQ(set->RecordCount(), 3);
  EXPECT_EQ(set->AbsolutePosition(), 2);
}

TEST(EditFabricated, CancelUpdateOfANewRowInAnEmptySetLeavesItEmpty) {
  const auto set = fabricate({});
  set->AddNew();
  set->CancelUpdate();
  EXPECT_TRUE(set->Bof());
  EXPECT_TRUE(set->Eof());
  EXPECT_EQ(set->RecordCount(), 0);
}

TEST(EditFabricated, CancelUpdateFindsTheRowBeforeThoughPositionsWereCountedMeanwhile) {
  const auto set = three();
  set->Delete();
  set->MoveNext();
  set->AddNew();
  EXPECT_EQ(set->AbsolutePosition(), 3);  // takes the deleted row out of the count
  set->CancelUpdate();
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
  EXPECT_EQ(set->AbsolutePosition(), 1);
}

TEST(EditFabricated, CancelUpdateRestoresTheValues) {
  const auto set = three();
  set->Field("Nombre").Value("x");
  set->CancelUpdate();
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
}

TEST(EditFabricated, CancelUpdateTakesBackOnlyWhatIsInEditFirst) {
  const auto set = three();
  set->Field("Nombre").Value("x");
  set->Update();
  set->Field("Nombre").Value("y");
  set->CancelUpdate();
  EXPECT_EQ(textAt(*set, "Nombre"), "x");
  set->CancelUpdate();
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
}

TEST(EditFabricated, CancelUpdateWithNothingToCancelDoesNothing) {
  const auto set = three();
  set->CancelUpdate();
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
  set->MoveLast();
  set->MoveNext();
  set->CancelUpdate();
  EXPECT_TRUE(set->Eof());
}

TEST_F(Edit, UpdateWithoutAnEditDoesNothing) {
  const auto set = openBanks();
  set->Update();
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
}

TEST_F(Edit, WritingTheSameValueLeavesTheRowUnmodified) {
  const auto set = openBanks();
  set->Field("Descripcion").Value("otro");
  set->Update();
  set->Field("Descripcion").Value("Uno");
  set->Update();
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
}

TEST_F(Edit, OriginalValueStaysWhatWasReadUntilTheBatchIsWritten) {
  const auto set = openBanks();
  set->Field("Descripcion").Value("x");
  set->Update();
  EXPECT_EQ(set->Field("Descripcion").OriginalValue(), Variant("Uno"));
  set->UpdateBatch();
  EXPECT_EQ(set->Field("Descripcion").OriginalValue(), Variant("x"));
}

// ---- Deleting

TEST_F(Edit, ADeletedRowStaysCurrentAndItsFieldsCannotBeRead) {
  const auto set = openBanks();
  set->Delete();
  EXPECT_FALSE(set->Eof());
  EXPECT_EQ(set->EditMode(), EditMode::kDelete);
  EXPECT_EQ(set->Status(), record_status::kDeleted);
  EXPECT_EQ(errorOf([&] { set->Field("Codigo").Value(); }), errors::kDeletedRow);
  EXPECT_EQ(errorOf([&] { set->Field("Codigo").Value("x"); }), errors::kDeletedRow);
  EXPECT_EQ(errorOf([&] { set->Delete(); }), errors::kDeletedRow);
  EXPECT_EQ(set->Field("Codigo").OriginalValue(), Variant("001"));
}

TEST_F(Edit, RecordCountLeavesADeletedRowOutAtOnce) {
  const auto set = openBanks();
  set->Delete();
  EXPECT_EQ(set->RecordCount(), 2);
  EXPECT_EQ(set->AbsolutePosition(), position::kUnknown);
  set->MoveNext();
  EXPECT_EQ(textAt(*set, "Codigo"), "002");
  EXPECT_EQ(set->AbsolutePosition(), 1);
  set->MovePrevious();
  EXPECT_TRUE(set->Bof());
}

TEST_F(Edit, MovesStepOverDeletedRowsBothWays) {
  const auto set = openBanks();
  set->MoveNext();
  set->Delete();
  set->MovePrevious();
  EXPECT_EQ(textAt(*set, "Codigo"), "001");
  set->MoveNext();
  EXPECT_EQ(textAt(*set, "Codigo"), "003");
  EXPECT_EQ(set->AbsolutePosition(), 2);
}

TEST_F(Edit, MoveFromADeletedRowCountsItsNeighbours) {
  const auto set = openBanks();
  set->MoveNext();
  set->Delete();
  set->Move(1);
  EXPECT_EQ(textAt(*set, "Codigo"), "003");
  set->Move(-1);
  EXPECT_EQ(textAt(*set, "Codigo"), "001");
}

TEST(EditFabricated, DeletingTheLastRemainingRowLeavesBofAndEofFalseUntilAMove) {
  const auto set = fabricate({{"a", 1}});
  set->Delete();
  EXPECT_FALSE(set->Bof());
  EXPECT_FALSE(set->Eof());
  set->MoveNext();
  EXPECT_TRUE(set->Bof());
  EXPECT_TRUE(set->Eof());
}

TEST_F(Edit, DeleteOfARowBeingAddedForgetsIt) {
  const auto set = openBanks();
  set->AddNew();
  set->Delete();
  EXPECT_EQ(set->RecordCount(), 3);
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "3");
}

TEST_F(Edit, CancelUpdateBringsADeletedRowBack) {
  const auto set = openBanks();
  set->Delete();
  set->CancelUpdate();
  EXPECT_EQ(textAt(*set, "Codigo"), "001");
  EXPECT_EQ(set->RecordCount(), 3);
  EXPECT_EQ(set->AbsolutePosition(), 1);
}

TEST_F(Edit, CancelUpdateBringsADeletedRowBackAfterPositionsWereCounted) {
  const auto set = openBanks();
  set->MoveNext();
  set->Delete();
  EXPECT_EQ(set->AbsolutePosition(), position::kUnknown);
  set->CancelUpdate();
  EXPECT_EQ(set->AbsolutePosition(), 2);
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("001", "002", "003"));
}

TEST_F(Edit, DeleteTakesTheCurrentRowOrAGroupOnly) {
  const auto set = openBanks();
  EXPECT_EQ(errorOf([&] { set->Delete(Affect::kAll); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Delete(Affect::kAllChapters); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Delete(Affect::kGroup); }), 3219);
  EXPECT_EQ(set->RecordCount(), 3);
}

TEST_F(Edit, DeleteOfAGroupMarksTheRowsOfABookmarkFilter) {
  const auto set = openBanks();
  set->Filter({1.0, 3.0});
  set->Delete(Affect::kGroup);
  EXPECT_EQ(set->RecordCount(), 0);
  set->Filter("");
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("002"));
}

TEST_F(Edit, DeletingEveryRowInALoopLeavesNone) {
  const auto set = openBanks();
  for (; !set->Eof(); set->MoveNext()) set->Delete();
  EXPECT_EQ(set->RecordCount(), 0);
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT COUNT(*) FROM Bancos"), "0");
}

TEST_F(Edit, AReadOnlyCloneRefusesChanges) {
  const auto set = openBanks();
  const auto clone = set->Clone(LockType::kReadOnly);
  EXPECT_EQ(errorOf([&] { clone->AddNew(); }), 3251);
  EXPECT_EQ(errorOf([&] { clone->Delete(); }), 3251);
  EXPECT_EQ(errorOf([&] { clone->Field(0).Value("x"); }), 3251);
  EXPECT_EQ(errorOf([&] { clone->UpdateBatch(); }), 3251);
}

}  // namespace
}  // namespace tavelor::test
