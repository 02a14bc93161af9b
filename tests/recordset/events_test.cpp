// SPDX-License-Identifier: MIT
// What listeners are told, in which order, and what they may do.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// Writes the events down: "WillMove 13", "MoveComplete 13".
class Listener : public RecordsetEvents {
 public:
  void WillMove(EventReason reason, EventStatus& status, Recordset& set) override {
    note("WillMove", reason, status, set);
  }
  void MoveComplete(EventReason reason, const Error* error, EventStatus& status,
                    Recordset& set) override {
    noteEnd("MoveComplete", reason, error, status, set);
  }
  void EndOfRecordset(bool& moreData, EventStatus& status, Recordset& set) override {
    log.push_back("EndOfRecordset");
    if (atEnd) moreData = atEnd(set);
    status = EventStatus::kOk;
  }
  void WillChangeField(std::span<const Field> fields, EventStatus& status,
                       Recordset& set) override {
    note("WillChangeField " + fields[0].Name(), EventReason::kUpdate, status, set);
  }
  void FieldChangeComplete(std::span<const Field> fields, const Error* error, EventStatus& status,
                           Recordset& set) override {
    noteEnd("FieldChangeComplete " + fields[0].Name(), EventReason::kUpdate, error, status, set);
  }
  void WillChangeRecord(EventReason reason, std::int32_t records, EventStatus& status,
                        Recordset& set) override {
    lastRecords = records;
    note("WillChangeRecord", reason, status, set);
  }
  void RecordChangeComplete(EventReason reason, std::int32_t, const Error* error,
                            EventStatus& status, Recordset& set) override {
    noteEnd("RecordChangeComplete", reason, error, status, set);
  }
  void WillChangeRecordset(EventReason reason, EventStatus& status, Recordset& set) override {
    note("WillChangeRecordset", reason, status, set);
  }
  void RecordsetChangeComplete(EventReason reason, const Error* error, EventStatus& status,
                               Recordset& set) override {
    noteEnd("RecordsetChangeComplete", reason, error, status, set);
  }

  std::vector<std::string> log;
  std::string veto;    ///< name of the Will... to cancel
  std::string unwant;  ///< name of the event to hear no more
  std::int32_t lastRecords = 0;
  std::function<void(const std::string&, Recordset&)> also;
  std::function<bool(Recordset&)> atEnd;

 private:
  void note(const std::string& event, EventReason reason, EventStatus& status, Recordset& set) {
    log.push_back(event + " " + std::to_string(static_cast<int>(reason)));
    if (!veto.empty() && event.starts_with(veto)) status = EventStatus::kCancel;
    if (!unwant.empty() && event.starts_with(unwant)) status = EventStatus::kUnwantedEvent;
    if (also) also(event, set);
  }
  void noteEnd(const std::string& event, EventReason reason, const Error* error,
               EventStatus& status, Recordset& set) {
    std::string line = event + " " + std::to_string(static_cast<int>(reason));
    if (status == EventStatus::kErrorsOccurred)
      line += " failed " + std::to_string(error->number());
    log.push_back(line);
    if (!unwant.empty() && event.starts_with(unwant)) status = EventStatus::kUnwantedEvent;
    if (also) also(event, set);
  }
};

class Events : public ShopTest {
 protected:
  Events() : set(fabricate({{"a", 1}, {"b", 2}})) { set->addListener(&listener); }
  ~Events() override {
    if (set) set->removeListener(&listener);
  }
  Listener listener;
  RecordsetPtr set;
};

TEST_F(Events, AMoveIsToldBeforeAndAfter) {
  set->MoveNext();
  EXPECT_THAT(listener.log, ElementsAre("WillMove 13", "MoveComplete 13"));
  listener.log.clear();
  set->MovePrevious();
  set->MoveLast();
  set->MoveFirst();
  EXPECT_THAT(listener.log, ElementsAre("WillMove 14", "MoveComplete 14", "WillMove 15",
                                        "MoveComplete 15", "WillMove 12", "MoveComplete 12"));
}

TEST_F(Events, OtherWaysToMoveHaveTheReasonMove) {
  set->Move(1);
  set->Bookmark(1.0);
  set->AbsolutePosition(2);
  set->Filter("Numero > 0");
  set->Find("Numero = 1");
  set->Sort("Numero");
  EXPECT_EQ(listener.log.size(), 12U);
  for (const std::string& line : listener.log) EXPECT_TRUE(line.ends_with(" 10")) << line;
}

TEST_F(Events, OpeningIsAMoveThatCannotBeDenied) {
  Recordset other;
  Listener first;
  first.veto = "WillMove";
  other.addListener(&first);
  other.Open(Statement("SELECT * FROM Bancos"), connection);
  EXPECT_THAT(first.log, ElementsAre("WillMove 10", "MoveComplete 10"));
  EXPECT_EQ(other.RecordCount(), 3);
}

TEST_F(Events, RequeryIsToldAsAChangeOfTheSetAndAMove) {
  const auto banks = openBanks();
  Listener other;
  banks->addListener(&other);
  banks->Requery();
  EXPECT_THAT(other.log, ElementsAre("WillChangeRecordset 7", "RecordsetChangeComplete 7",
                                     "WillMove 7", "MoveComplete 7"));
  banks->removeListener(&other);
}

TEST_F(Events, MovingPastTheEndIsAnnouncedBeforeTheMoveIsComplete) {
  set->MoveLast();
  listener.log.clear();
  set->MoveNext();
  EXPECT_THAT(listener.log, ElementsAre("WillMove 13", "EndOfRecordset", "MoveComplete 13"));
}

TEST_F(Events, RowsAppendedAtTheEndAreMovedTo) {
  set->MoveLast();
  listener.atEnd = [](Recordset& s) {
    s.AddNew({"Nombre"}, {"c"});
    return true;
  };
  set->MoveNext();
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
}

TEST_F(Events, TheFirstChangeOfARowIsToldOnceAndEachFieldEveryTime) {
  set->Field("Nombre").Value("x");
  EXPECT_THAT(listener.log, ElementsAre("WillChangeRecord 11", "WillChangeField Nombre 3",
                                        "FieldChangeComplete Nombre 3", "RecordChangeComplete 11"));
  listener.log.clear();
  set->Field("Numero").Value(5);
  EXPECT_THAT(listener.log,
              ElementsAre("WillChangeField Numero 3", "FieldChangeComplete Numero 3"));
  listener.log.clear();
  set->Update();
  EXPECT_THAT(listener.log, ElementsAre("WillChangeRecord 3", "RecordChangeComplete 3"));
}

TEST_F(Events, AMoveWithAPendingEditTellsTheUpdateFirst) {
  set->Field("Nombre").Value("x");
  listener.log.clear();
  set->MoveNext();
  EXPECT_THAT(listener.log, ElementsAre("WillChangeRecord 3", "RecordChangeComplete 3",
                                        "WillMove 13", "MoveComplete 13"));
}

TEST_F(Events, AddNewDeleteAndTakingBackHaveTheirReasons) {
  set->AddNew();
  EXPECT_THAT(listener.log, ElementsAre("WillMove 10", "WillChangeRecord 1",
                                        "RecordChangeComplete 1", "MoveComplete 10"));
  listener.log.clear();
  set->CancelUpdate();
  EXPECT_THAT(listener.log, ElementsAre("WillChangeRecord 5", "RecordChangeComplete 5"));
  listener.log.clear();
  set->Delete();
  set->CancelUpdate();
  EXPECT_THAT(listener.log, ElementsAre("WillChangeRecord 2", "RecordChangeComplete 2",
                                        "WillChangeRecord 6", "RecordChangeComplete 6"));
  listener.log.clear();
  set->Update({"Nombre"}, {"x"});
  listener.log.clear();
  set->CancelUpdate();
  EXPECT_THAT(listener.log, ElementsAre("WillChangeRecord 4", "RecordChangeComplete 4"));
}

TEST_F(Events, WritingABatchTellsTheNumberOfRows) {
  const auto banks = openBanks();
  Listener other;
  for (; !banks->Eof(); banks->MoveNext()) banks->Field("Descripcion").Value("x");
  banks->addListener(&other);
  banks->UpdateBatch();
  EXPECT_THAT(other.log, ElementsAre("WillChangeRecord 3", "RecordChangeComplete 3"));
  EXPECT_EQ(other.lastRecords, 3);
  banks->removeListener(&other);
}

TEST_F(Events, CloseIsTold) {
  set->Close();
  EXPECT_THAT(listener.log, ElementsAre("WillChangeRecordset 9", "RecordsetChangeComplete 9"));
}

// ---- Vetoes and failures

TEST_F(Events, AVetoStopsTheMoveAndTheCompleteSaysSo) {
  listener.veto = "WillMove";
  EXPECT_EQ(errorOf([&] { set->MoveNext(); }), errors::kOperationCanceled);
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
  EXPECT_THAT(listener.log, ElementsAre("WillMove 13", "MoveComplete 13 failed -2147217842"));
}

TEST_F(Events, AVetoStopsEditsAdditionsAndDeletions) {
  listener.veto = "WillChangeRecord";
  EXPECT_EQ(errorOf([&] { set->Field("Nombre").Value("x"); }), errors::kOperationCanceled);
  EXPECT_EQ(errorOf([&] { set->AddNew(); }), errors::kOperationCanceled);
  EXPECT_EQ(errorOf([&] { set->Delete(); }), errors::kOperationCanceled);
  listener.veto = "WillChangeField";
  EXPECT_EQ(errorOf([&] { set->Field("Nombre").Value("x"); }), errors::kOperationCanceled);
  EXPECT_EQ(set->RecordCount(), 2);
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
}

TEST_F(Events, AVetoOfTheUpdateKeepsTheRowInEdit) {
  set->Field("Nombre").Value("x");
  listener.veto = "WillChangeRecord";
  EXPECT_EQ(errorOf([&] { set->MoveNext(); }), errors::kOperationCanceled);
  EXPECT_EQ(set->EditMode(), EditMode::kInProgress);
  listener.veto.clear();
  set->CancelUpdate();
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
}

TEST_F(Events, AFailureIsToldInTheComplete) {
  EXPECT_EQ(errorOf([&] { set->Filter("Nadie = 1"); }), 3265);
  EXPECT_THAT(listener.log, ElementsAre("WillMove 10", "MoveComplete 10 failed 3265"));
}

TEST_F(Events, AnUnwantedEventIsNotToldAgain) {
  listener.unwant = "WillMove";
  set->MoveNext();
  set->MovePrevious();
  EXPECT_THAT(listener.log, ElementsAre("WillMove 13", "MoveComplete 13", "MoveComplete 14"));
}

TEST_F(Events, TheFilterMayNotBeSetWhileAChangeIsBeingAsked) {
  std::int32_t number = 0;
  listener.also = [&](const std::string& event, Recordset& s) {
    if (event == "WillChangeRecord") number = errorOf([&] { s.Filter("Numero = 1"); });
  };
  set->Delete();
  EXPECT_EQ(number, 3219);
}

// ---- Clones

TEST_F(Events, ChangesAreToldToTheListenersOfClonesAndMovesAreNot) {
  const auto clone = set->Clone();
  clone->MoveNext();
  EXPECT_THAT(listener.log, IsEmpty());
  clone->Field("Nombre").Value("x");
  EXPECT_THAT(listener.log, ElementsAre("WillChangeRecord 11", "WillChangeField Nombre 3",
                                        "FieldChangeComplete Nombre 3", "RecordChangeComplete 11"));
}

// ---- Listeners that turn things upside down

TEST_F(Events, AListenerMayRemoveItselfAndOthersInsideAnEvent) {
  Listener second;
  set->addListener(&second);
  listener.also = [&](const std::string&, Recordset& s) {
    s.removeListener(&listener);
    s.removeListener(&second);
  };
  set->MoveNext();
  EXPECT_THAT(listener.log, ElementsAre("WillMove 13"));
  EXPECT_THAT(second.log, IsEmpty());
}

TEST_F(Events, AListenerMayCloseTheSetInsideAnyEvent) {
  const std::vector<std::function<void(Recordset&)>> works = {
      [](Recordset& s) { s.MoveNext(); },
      [](Recordset& s) { s.MoveLast(); },
      [](Recordset& s) { s.Move(1); },
      [](Recordset& s) { s.AbsolutePosition(2); },
      [](Recordset& s) { s.Bookmark(2.0); },
      [](Recordset& s) { s.Find("Numero = 2"); },
      [](Recordset& s) { s.Filter("Numero = 2"); },
      [](Recordset& s) { s.Sort("Numero"); },
      [](Recordset& s) { s.Field("Nombre").Value("x"); },
      [](Recordset& s) { s.AddNew(); },
      [](Recordset& s) { s.AddNew({"Nombre"}, {"x"}); },
      [](Recordset& s) { s.Delete(); },
      [](Recordset& s) { s.Field("Nombre").Value("x"), s.Update(); },
      [](Recordset& s) {
        s.Update({"Nombre", "Numero"}, {"x", 1});
      },
      [](Recordset& s) { s.Field("Nombre").Value("x"), s.CancelUpdate(); },
      [](Recordset& s) { s.Field("Nombre").Value("x"), s.UpdateBatch(); },
      [](Recordset& s) { s.Field("Nombre").Value("x"), s.CancelBatch(); },
      [](Recordset& s) { s.MoveLast(), s.MoveNext(); },
      [](Recordset& s) { s.SaveXml(); },
      [](Recordset& s) { s.Close(); }};
  for (std::size_t work = 0; work < works.size(); ++work) {
    for (int at = 1; at <= 8; ++at) {
      const auto victim = fabricate({{"a", 1}, {"b", 2}, {"c", 3}});
      Listener closer;
      int events = 0;
      closer.also = [&](const std::string&, Recordset& s) {
        if (++events == at && s.State() == ObjectState::kOpen) s.Close();
      };
      victim->addListener(&closer);
      errorOf([&] { works[work](*victim); });
      victim->removeListener(&closer);
      if (victim->State() == ObjectState::kOpen) {
        EXPECT_GE(victim->RecordCount(), 1);
      }
    }
  }
}

TEST_F(Events, AListenerMayMoveTheSetInsideAnyEvent) {
  for (int at = 1; at <= 6; ++at) {
    const auto victim = fabricate({{"a", 1}, {"b", 2}, {"c", 3}});
    Listener mover;
    int events = 0;
    mover.also = [&](const std::string&, Recordset& s) {
      if (++events == at) errorOf([&] { s.MoveLast(); });
    };
    victim->addListener(&mover);
    errorOf([&] { victim->Field("Nombre").Value("x"); });
    errorOf([&] { victim->MoveNext(); });
    errorOf([&] { victim->Delete(); });
    victim->removeListener(&mover);
    EXPECT_GE(victim->RecordCount(), 2);
  }
}

TEST_F(Events, ARowTakenAwayByAListenerFailsTheChange) {
  listener.also = [](const std::string& event, Recordset& s) {
    if (event == "WillChangeRecord") s.MoveNext();
  };
  EXPECT_EQ(errorOf([&] { set->Delete(); }), 3219);
  EXPECT_EQ(set->RecordCount(), 2);
}

TEST_F(Events, ASetDroppedInsideAnEventLivesToTheEndOfTheOperation) {
  listener.also = [&](const std::string&, Recordset&) {
    if (set) set->removeListener(&listener);
    set.reset();
  };
  Recordset* raw = set.get();
  raw->MoveNext();
  EXPECT_EQ(set, nullptr);
}

}  // namespace
}  // namespace tavelor::test
