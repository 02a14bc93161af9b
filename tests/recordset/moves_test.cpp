// SPDX-License-Identifier: MIT
// Where the cursor may go and what it stops on.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

TEST(Moves, OpeningStandsOnTheFirstRow) {
  const auto set = three();
  EXPECT_FALSE(set->Bof());
  EXPECT_FALSE(set->Eof());
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
  EXPECT_EQ(set->AbsolutePosition(), 1);
}

TEST(Moves, AnEmptySetStandsNowhereAndRefusesEveryMove) {
  const auto set = fabricate({});
  EXPECT_TRUE(set->Bof());
  EXPECT_TRUE(set->Eof());
  EXPECT_EQ(set->RecordCount(), 0);
  EXPECT_EQ(set->AbsolutePosition(), position::kUnknown);
  EXPECT_EQ(errorOf([&] { set->MoveFirst(); }), 3021);
  EXPECT_EQ(errorOf([&] { set->MoveLast(); }), 3021);
  EXPECT_EQ(errorOf([&] { set->MoveNext(); }), 3021);
  EXPECT_EQ(errorOf([&] { set->MovePrevious(); }), 3021);
  EXPECT_EQ(errorOf([&] { set->Move(0); }), 3021);
  EXPECT_EQ(errorOf([&] { set->Move(1); }), 3021);
}

TEST(Moves, MoveNextPastTheEndStopsOnEofThenFails) {
  const auto set = three();
  set->MoveLast();
  set->MoveNext();
  EXPECT_TRUE(set->Eof());
  EXPECT_FALSE(set->Bof());
  EXPECT_EQ(set->AbsolutePosition(), position::kEof);
  EXPECT_EQ(errorOf([&] { set->MoveNext(); }), 3021);
  EXPECT_EQ(errorOf([&] { set->Move(1); }), 3021);
  EXPECT_EQ(errorOf([&] { set->Move(0); }), 3021);
  set->MovePrevious();
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
}

TEST(Moves, MovePreviousBeforeTheBeginningStopsOnBofThenFails) {
  const auto set = three();
  set->MovePrevious();
  EXPECT_TRUE(set->Bof());
  EXPECT_EQ(set->AbsolutePosition(), position::kBof);
  EXPECT_EQ(errorOf([&] { set->MovePrevious(); }), 3021);
  EXPECT_EQ(errorOf([&] { set->Move(-1); }), 3021);
  EXPECT_EQ(errorOf([&] { set->Move(0); }), 3021);
  set->MoveNext();
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
}

TEST(Moves, MoveFirstAndMoveLastWorkFromBothEnds) {
  const auto set = three();
  set->MovePrevious();
  set->MoveLast();
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
  set->MoveNext();
  set->MoveFirst();
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
}

TEST(Moves, MoveTooFarStopsAtTheEnds) {
  const auto set = three();
  set->Move(10);
  EXPECT_TRUE(set->Eof());
  set->Move(-10);
  EXPECT_TRUE(set->Bof());
  set->Move(2);
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
}

TEST(Moves, MoveStartsAtABookmarkOrAtOneOfTheNumbers) {
  const auto set = three();
  const Variant first = set->Bookmark();
  set->MoveLast();
  set->Move(1, first);
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
  set->Move(0, bookmark::kLast);
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
  set->Move(2, bookmark::kFirst);
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
  set->Move(-1, bookmark::kCurrent);
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
  EXPECT_EQ(errorOf([&] { set->Move(1, 99.0); }), 3001);
}

TEST(Moves, AFieldAtBofOrEofRaisesNoCurrentRecord) {
  const auto set = three();
  set->MoveLast();
  set->MoveNext();
  EXPECT_EQ(errorOf([&] { set->Field("Nombre").Value(); }), 3021);
  EXPECT_EQ(errorOf([&] { set->Field("Nombre").Value("x"); }), 3021);
  EXPECT_EQ(errorOf([&] { set->Bookmark(); }), 3021);
  EXPECT_EQ(errorOf([&] { set->EditMode(); }), 3021);
}

TEST(Moves, AbsolutePositionGoesToARowFromOne) {
  const auto set = three();
  set->AbsolutePosition(3);
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
  EXPECT_EQ(errorOf([&] { set->AbsolutePosition(0); }), 3001);
  EXPECT_EQ(errorOf([&] { set->AbsolutePosition(4); }), 3001);
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
}

TEST(Moves, ABookmarkIsANumberThatSurvivesSortAndFilter) {
  const auto set = three();
  set->MoveNext();
  const Variant here = set->Bookmark();
  EXPECT_EQ(here.type(), VariantType::kDouble);
  set->Sort("Nombre DESC");
  set->Filter("Numero < 3");
  set->Bookmark(here);
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
}

TEST(Moves, ABookmarkThatIsNoRowOfTheViewIsRefused) {
  const auto set = three();
  set->MoveLast();
  const Variant last = set->Bookmark();
  EXPECT_EQ(errorOf([&] { set->Bookmark(0.0); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Bookmark(4.0); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Bookmark(1.5); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Bookmark("1"); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Bookmark(Null{}); }), 3001);
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
  set->Filter("Numero < 3");
  EXPECT_EQ(errorOf([&] { set->Bookmark(last); }), 3001);
}

TEST(Moves, BookmarksCompareByTheOrderOfTheRowsAsFetched) {
  const auto set = three();
  const Variant a = set->Bookmark();
  set->MoveNext();
  const Variant b = set->Bookmark();
  set->Sort("Nombre DESC");
  EXPECT_EQ(set->CompareBookmarks(a, b), CompareResult::kLessThan);
  EXPECT_EQ(set->CompareBookmarks(b, a), CompareResult::kGreaterThan);
  EXPECT_EQ(set->CompareBookmarks(b, b), CompareResult::kEqual);
  EXPECT_EQ(errorOf([&] { set->CompareBookmarks(a, 17.0); }), 3001);
}

TEST(Moves, LeavingARowInEditPostsIt) {
  const auto set = three();
  set->Field("Nombre").Value("A");
  EXPECT_EQ(set->EditMode(), EditMode::kInProgress);
  set->MoveNext();
  set->MovePrevious();
  EXPECT_EQ(textAt(*set, "Nombre"), "A");
  EXPECT_EQ(set->EditMode(), EditMode::kNone);
}

// Not documented for the other ways off a row; they are moves all the same.
TEST(Moves, BookmarkPositionFindFilterAndSortPostTheRowToo) {
  const std::vector<std::function<void(Recordset&)>> ways = {
      [](Recordset& s) { s.Bookmark(2.0); },
      [](Recordset& s) { s.AbsolutePosition(2); },
      [](Recordset& s) { s.Find("Numero = 2"); },
      [](Recordset& s) { s.Filter("Numero > 0"); },
      [](Recordset& s) { s.Sort("Numero"); },
      [](Recordset& s) { s.Move(1); },
      [](Recordset& s) { s.Filter(FilterGroup::kNone); }};
  for (const auto& leave : ways) {
    const auto set = three();
    set->Field("Nombre").Value("A");
    leave(*set);
    set->Bookmark(1.0);
    EXPECT_EQ(set->EditMode(), EditMode::kNone);
    EXPECT_EQ(set->Status(), record_status::kModified);
  }
}

TEST(Moves, EverythingOnAClosedSetRaisesObjectClosed) {
  Recordset set;
  EXPECT_EQ(set.State(), ObjectState::kClosed);
  EXPECT_EQ(errorOf([&] { set.MoveFirst(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Bof(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Eof(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.RecordCount(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.AbsolutePosition(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Bookmark(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.EditMode(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.AddNew(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Update(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.UpdateBatch(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.CancelBatch(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Filter("a = 1"); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Sort("a"); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Find("a = 1"); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Clone(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Requery(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Close(); }), 3704);
  EXPECT_EQ(errorOf([&] { set.Fields().Item(0); }), 3704);
}

}  // namespace
}  // namespace tavelor::test
