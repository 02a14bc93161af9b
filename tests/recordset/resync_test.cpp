// SPDX-License-Identifier: MIT
// What others have written: reading rows again, and the story of a conflict.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Resync : public ShopTest {
 protected:
  /// A set whose change of 001 has met another one.
  RecordsetPtr inConflict() {
    auto set = openBanks();
    set->Field("Descripcion").Value("mío");
    run("UPDATE Bancos SET Descripcion = 'suyo', Plazos = 9 WHERE Codigo = '001'");
    EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
    journal->lines.clear();
    return set;
  }
  std::string stored(std::string_view code) {
    return scalar("SELECT Descripcion FROM Bancos WHERE Codigo = '" + std::string(code) + "'");
  }
};

TEST_F(Resync, OfUnderlyingValuesTellsTheOthersAndKeepsMine) {
  const auto set = inConflict();
  EXPECT_EQ(set->Field("Descripcion").UnderlyingValue(), Variant("Uno")) << "not looked at yet";
  set->Filter(FilterGroup::kConflicting);
  set->Resync(Affect::kGroup, ResyncValues::kUnderlying);
  ASSERT_EQ(set->RecordCount(), 1) << "the filter shows the row still";
  const Field field = set->Field("Descripcion");
  EXPECT_EQ(field.Value(), Variant("mío"));
  EXPECT_EQ(field.OriginalValue(), Variant("Uno"));
  EXPECT_EQ(field.UnderlyingValue(), Variant("suyo"));
  EXPECT_EQ(set->Field("Plazos").UnderlyingValue(), Variant(std::int16_t{9}));
  EXPECT_EQ(set->Field("Plazos").Value(), Variant(std::int16_t{3}));
  EXPECT_EQ(set->Field("Saldo").UnderlyingValue(), Variant(Currency::fromScaled(105000)));
  EXPECT_TRUE(set->hasUnwrittenChanges());
}

TEST_F(Resync, ThenTheChangeIsWrittenOverWhatWasSeen) {
  const auto set = inConflict();
  set->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
  set->UpdateBatch();
  EXPECT_EQ(stored("001"), "mío");
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
  EXPECT_EQ(set->Field("Descripcion").OriginalValue(), Variant("mío"));
  EXPECT_EQ(set->Field("Descripcion").UnderlyingValue(), Variant("mío"));
  EXPECT_EQ(set->Field("Plazos").UnderlyingValue(), Variant(std::int16_t{9}));
}

TEST_F(Resync, WhatIsWrittenAfterItWasSeenIsAConflictAgain) {
  const auto set = inConflict();
  set->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
  run("UPDATE Bancos SET Descripcion = 'de otro más' WHERE Codigo = '001'");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
  EXPECT_EQ(stored("001"), "de otro más");
}

TEST_F(Resync, TheOthersValueMayBeTakenAsItIs) {
  const auto set = inConflict();
  set->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
  set->Field("Descripcion").Value(set->Field("Descripcion").UnderlyingValue());
  set->UpdateBatch();
  EXPECT_EQ(stored("001"), "suyo");
}

TEST_F(Resync, OfAllValuesTakesThemAndDropsMine) {
  const auto set = inConflict();
  set->Resync();
  EXPECT_EQ(set->Field("Descripcion").Value(), Variant("suyo"));
  EXPECT_EQ(set->Field("Descripcion").OriginalValue(), Variant("suyo"));
  EXPECT_EQ(set->Field("Plazos").Value(), Variant(std::int16_t{9}));
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
  EXPECT_FALSE(set->hasUnwrittenChanges());
  set->Field("Descripcion").Value("otra vez");
  set->UpdateBatch();
  EXPECT_EQ(stored("001"), "otra vez");
}

TEST_F(Resync, ReadsByTheKeyAndOnlyTheRowsAskedFor) {
  const auto set = open("SELECT Descripcion FROM Bancos ORDER BY Codigo");
  run("UPDATE Bancos SET Descripcion = Descripcion & '!'");
  journal->lines.clear();
  set->Resync(Affect::kCurrent);
  EXPECT_THAT(journal->texts(),
              ElementsAre("SELECT \"Descripcion\",\"Codigo\" FROM \"Bancos\" WHERE \"Codigo\"=?"));
  EXPECT_THAT(column(*set, "Descripcion"), ElementsAre("Uno!", "Dos", "Tres"));
}

TEST_F(Resync, BringsBackWhatWasMarkedAsDeletedAndNoNewRows) {
  const auto set = openBanks();
  set->Delete();
  run("INSERT INTO Bancos (Codigo) VALUES ('004')");
  set->Resync();
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("001", "002", "003"));
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Count(*) FROM Bancos"), "4");
}

TEST_F(Resync, PassesOverRowsThatAreAddedAndNotWritten) {
  const auto set = openBanks();
  set->AddNew({"Codigo"}, {"005"});
  EXPECT_EQ(set->Field("Codigo").UnderlyingValue(), Variant(Null{}));
  set->Resync();
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("001", "002", "003", "005"));
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Count(*) FROM Bancos"), "4");
}

TEST_F(Resync, OfAllValuesTakesBackTheRowInEditAndOfUnderlyingOnesKeepsIt) {
  const auto set = openBanks();
  set->Field("Descripcion").Value("en edición");
  set->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
  EXPECT_EQ(set->EditMode(), EditMode::kInProgress);
  set->Resync(Affect::kCurrent);
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
  EXPECT_EQ(textAt(*set, "Descripcion"), "Uno");
}

TEST_F(Resync, RowsComeToWhereFilterAndOrderWantThem) {
  const auto set = openBanks();
  set->Filter("Descripcion <> 'Fuera'");
  set->Sort("Descripcion");
  run("UPDATE Bancos SET Descripcion = 'Zeta' WHERE Codigo = '002'");
  run("UPDATE Bancos SET Descripcion = 'Fuera' WHERE Codigo = '003'");
  set->Resync();
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("001", "002"));
}

TEST_F(Resync, ARowThatIsNotThereAnyMoreIsAConflictAndTheOthersAreRead) {
  const auto set = openBanks();
  set->Field("Descripcion").Value("mío");
  set->Update();
  run("DELETE FROM Bancos WHERE Codigo = '001'");
  run("UPDATE Bancos SET Descripcion = 'suyo' WHERE Codigo = '002'");
  EXPECT_EQ(errorOf([&] { set->Resync(); }), errors::kRowNotLocated);
  EXPECT_THAT(sentenceOf([&] { set->Resync(); }), HasSubstr("1 of 3"));
  EXPECT_NE(set->Status() & record_status::kConcurrencyViolation, 0);
  EXPECT_THAT(column(*set, "Descripcion"), ElementsAre("mío", "suyo", "Tres"));
  set->Filter(FilterGroup::kConflicting);
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("001"));
}

TEST_F(Resync, ConflictsStayListedBesideThoseThatItMeets) {
  const auto set = inConflict();
  run("DELETE FROM Bancos WHERE Codigo = '003'");
  EXPECT_EQ(errorOf([&] { set->Resync(Affect::kAll, ResyncValues::kUnderlying); }),
            errors::kRowNotLocated);
  set->Filter(FilterGroup::kConflicting);
  EXPECT_THAT(column(*set, "Codigo"), ElementsAre("001", "003"));
}

TEST_F(Resync, IsAnnouncedAndCanBeRefused) {
  struct Guard : RecordsetEvents {
    void WillChangeRecordset(EventReason reason, EventStatus& status, Recordset&) override {
      reasons.push_back(reason);
      if (refuses) status = EventStatus::kCancel;
    }
    void RecordsetChangeComplete(EventReason reason, const Error*, EventStatus&,
                                 Recordset&) override {
      reasons.push_back(reason);
    }
    std::vector<EventReason> reasons;
    bool refuses = false;
  } guard;
  const auto set = inConflict();
  set->addListener(&guard);
  guard.refuses = true;
  EXPECT_EQ(errorOf([&] { set->Resync(); }), errors::kOperationCanceled);
  EXPECT_EQ(textAt(*set, "Descripcion"), "mío");
  guard.refuses = false;
  set->Resync();
  EXPECT_EQ(textAt(*set, "Descripcion"), "suyo");
  EXPECT_THAT(guard.reasons, testing::Each(EventReason::kResynch));
  EXPECT_EQ(guard.reasons.size(), 4U);
  set->removeListener(&guard);
}

TEST_F(Resync, AClonesUnderlyingValuesAreTheSame) {
  const auto set = inConflict();
  const auto clone = set->Clone();
  set->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
  EXPECT_EQ(clone->Field("Descripcion").UnderlyingValue(), Variant("suyo"));
}

TEST_F(Resync, RefusalsChangeNothing) {
  const auto set = inConflict();
  EXPECT_EQ(errorOf([&] { set->Resync(Affect::kGroup); }), errors::kNotAllowedInContext);
  EXPECT_EQ(errorOf([&] { set->Resync(static_cast<Affect>(9)); }), errors::kInvalidArgument);
  EXPECT_EQ(errorOf([&] { set->Resync(Affect::kAll, static_cast<ResyncValues>(3)); }),
            errors::kInvalidArgument);
  EXPECT_EQ(errorOf([&] { set->Clone(LockType::kReadOnly)->Resync(); }), errors::kNotSupported);
  const auto sums = open("SELECT Count(*) AS n FROM Bancos");
  EXPECT_EQ(errorOf([&] { sums->Resync(); }), errors::kNotSupported);
  set->ActiveConnection(nullptr);
  EXPECT_EQ(errorOf([&] { set->Resync(); }), errors::kInvalidConnection);
  EXPECT_EQ(textAt(*set, "Descripcion"), "mío");
  set->Close();
  EXPECT_EQ(errorOf([&] { set->Resync(); }), errors::kObjectClosed);
}

// ---- Over a join

class JoinedResync : public Resync {
 protected:
  JoinedResync() {
    run("INSERT INTO Lineas (Ticket, Texto) VALUES (1, '001')");
    run("INSERT INTO Lineas (Ticket, Texto) VALUES (2, '001')");
    run("INSERT INTO Lineas (Ticket, Texto) VALUES (3, 'nadie')");
  }
  RecordsetPtr lines() {
    return open(
        "SELECT Lineas.Id, Lineas.Cantidad, Bancos.Codigo, Bancos.Descripcion FROM Lineas LEFT "
        "JOIN Bancos ON Lineas.Texto = Bancos.Codigo ORDER BY Lineas.Id");
  }
};

TEST_F(JoinedResync, ReadsEachTableByItsOwnKey) {
  const auto set = lines();
  run("UPDATE Bancos SET Descripcion = 'nuevo' WHERE Codigo = '001'");
  run("UPDATE Lineas SET Cantidad = 8");
  set->Resync();
  EXPECT_THAT(column(*set, "Descripcion"), ElementsAre("nuevo", "nuevo", "Null"));
  EXPECT_THAT(column(*set, "Cantidad"), ElementsAre("8", "8", "8"));
}

TEST_F(JoinedResync, AConflictInALookedUpTableIsToldAndWrittenOver) {
  const auto set = lines();
  set->Field("Descripcion").Value("mío");
  run("UPDATE Bancos SET Descripcion = 'suyo' WHERE Codigo = '001'");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
  set->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
  EXPECT_EQ(set->Field("Descripcion").UnderlyingValue(), Variant("suyo"));
  set->UpdateBatch();
  EXPECT_EQ(stored("001"), "mío");
}

// The second row was never looked at again, but what was written last to its bank is known.
TEST_F(JoinedResync, WhatTheSetWroteAndThenReadAgainIsWhatItExpects) {
  const auto set = lines();
  set->Field("Descripcion").Value("primero");
  set->UpdateBatch();
  run("UPDATE Bancos SET Descripcion = 'suyo' WHERE Codigo = '001'");
  set->Resync(Affect::kCurrent, ResyncValues::kUnderlying);
  set->MoveNext();
  set->Field("Descripcion").Value("segundo");
  set->UpdateBatch();
  EXPECT_EQ(stored("001"), "segundo");
}

TEST_F(JoinedResync, ALookedUpRowThatIsGoneIsAConflict) {
  const auto set = lines();
  run("DELETE FROM Bancos WHERE Codigo = '001'");
  EXPECT_THAT(sentenceOf([&] { set->Resync(); }), HasSubstr("2 of 3"));
}

}  // namespace
}  // namespace tavelor::test
