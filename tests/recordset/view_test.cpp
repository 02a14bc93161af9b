// SPDX-License-Identifier: MIT
// Filter, Sort and Find, and how they live together with edits.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

RecordsetPtr four() {
  return fabricate({{"b", 2}, {"d", 4}, {"a", 1}, {"c", 3}});
}

// ---- Filter

TEST(Filter, ShowsTheRowsThatFitAndStandsOnTheFirst) {
  const auto set = four();
  set->MoveLast();
  set->Filter("Numero > 2");
  EXPECT_EQ(set->Filter(), "Numero > 2");
  EXPECT_EQ(set->RecordCount(), 2);
  EXPECT_EQ(textAt(*set, "Nombre"), "d");
  EXPECT_EQ(set->AbsolutePosition(), 1);
}

TEST(Filter, TheEmptyTextClearsItAndStandsOnTheFirstRow) {
  const auto set = four();
  set->Filter("Numero = 3");
  set->Filter("");
  EXPECT_EQ(set->Filter(), "");
  EXPECT_EQ(set->RecordCount(), 4);
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
}

TEST(Filter, AnEmptyViewStandsNowhere) {
  const auto set = four();
  set->Filter("Numero = 99");
  EXPECT_TRUE(set->Bof());
  EXPECT_TRUE(set->Eof());
  EXPECT_EQ(errorOf([&] { set->MoveFirst(); }), 3021);
}

TEST(Filter, AFaultLeavesTheOldFilterAndTheRow) {
  const auto set = four();
  set->Filter("Numero > 1");
  set->MoveLast();
  EXPECT_EQ(errorOf([&] { set->Filter("Numero >"); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Filter("Nadie = 1"); }), 3265);
  EXPECT_EQ(set->Filter(), "Numero > 1");
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
}

TEST(Filter, AnUnknownFieldNamesTheNearest) {
  const auto set = four();
  EXPECT_THAT(sentenceOf([&] { set->Filter("Nombr = 'a'"); }), HasSubstr("'Nombre'"));
}

TEST(Filter, AnUnknownGroupIsRefused) {
  const auto set = four();
  EXPECT_EQ(errorOf([&] { set->Filter(static_cast<FilterGroup>(4)); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Filter(static_cast<FilterGroup>(17)); }), 3001);
}

TEST(Filter, GroupZeroIsNoFilter) {
  const auto set = four();
  set->Filter("Numero = 1");
  set->Filter(FilterGroup::kNone);
  EXPECT_EQ(set->RecordCount(), 4);
  EXPECT_EQ(set->Filter(), "");
}

TEST(Filter, PendingShowsChangedRows) {
  const auto set = four();
  set->Field("Numero").Value(20);
  set->Filter(FilterGroup::kPending);
  EXPECT_EQ(set->CurrentFilterGroup(), FilterGroup::kPending);
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("b"));
}

TEST(Filter, BookmarksShowTheirRowsInTheOrderOfTheSet) {
  const auto set = four();
  set->Filter({4.0, 1.0, 4.0});
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("b", "c"));
  EXPECT_EQ(errorOf([&] { set->Filter({9.0}); }), 3001);
}

TEST(Filter, GoesByPendingValues) {
  const auto set = four();
  set->Field("Numero").Value(40);
  set->Filter("Numero > 3");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("b", "d"));
}

// A row that is being typed in must not vanish under the user's hands.
TEST(Filter, ARowAddedUnderAFilterStaysVisibleUntilTheFilterIsSetAgain) {
  const auto set = four();
  set->Filter("Numero > 2");
  set->AddNew({"Nombre", "Numero"}, {"z", 0});
  EXPECT_EQ(set->RecordCount(), 3);
  set->MoveFirst();
  set->MoveLast();
  EXPECT_EQ(textAt(*set, "Nombre"), "z");
  set->Filter(std::string(set->Filter()));
  EXPECT_EQ(set->RecordCount(), 2);
}

TEST(Filter, ARowEditedOutOfTheFilterLeavesAndMoveNextGoesToItsFollower) {
  const auto set = four();
  set->Filter("Numero > 1");
  set->MoveNext();
  set->Field("Numero").Value(0);
  set->Update();
  EXPECT_EQ(set->RecordCount(), 2);
  EXPECT_EQ(textAt(*set, "Nombre"), "d");  // current until the move
  set->MoveNext();
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
}

TEST(Filter, ARowEditedOutOfTheFilterHasItsPredecessorBehindIt) {
  const auto set = four();
  set->Filter("Numero > 1");
  set->MoveNext();
  set->Update({"Numero"}, {0});
  set->MovePrevious();
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
}

TEST(Filter, DeletingARowThatWasEditedOutOfItCountsTheOthersStill) {
  const auto set = four();
  set->Filter("Numero > 1");
  set->Update({"Numero"}, {0});
  ASSERT_EQ(set->RecordCount(), 2);
  set->Delete();
  EXPECT_EQ(set->RecordCount(), 2);
  set->MoveLast();
  EXPECT_FALSE(set->Eof());
}

TEST(Filter, AnEditOfAnotherFieldKeepsTheRowWhereItIs) {
  const auto set = four();
  set->Filter("Numero > 2");
  set->Sort("Numero DESC");
  set->Update({"Nombre"}, {"zz"});
  EXPECT_EQ(set->AbsolutePosition(), 1);
  EXPECT_EQ(set->RecordCount(), 2);
}

// ---- Sort

TEST(Sort, OrdersAndStandsOnTheFirstRow) {
  const auto set = four();
  set->MoveLast();
  set->Sort("Nombre");
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("a", "b", "c", "d"));
  set->Sort("Nombre DESC");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("d", "c", "b", "a"));
  EXPECT_EQ(set->Sort(), "Nombre DESC");
}

TEST(Sort, TheEmptyTextIsTheOrderOfTheStatement) {
  const auto set = four();
  set->Sort("Nombre");
  set->Sort("");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("b", "d", "a", "c"));
}

TEST(Sort, SeveralFieldsEachWithItsDirection) {
  const auto set = fabricate({{"a", 1}, {"b", 1}, {"a", 2}, {"b", 2}});
  set->Sort("Numero DESC, Nombre ASC");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("a", "b", "a", "b"));
  EXPECT_THAT(column(*set, "Numero"), ElementsAre("2", "2", "1", "1"));
}

TEST(Sort, EqualRowsKeepTheirOrderBothWays) {
  const auto set = fabricate({{"x", 1}, {"y", 1}, {"z", 1}});
  set->Sort("Numero");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("x", "y", "z"));
  set->Sort("Numero DESC");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("x", "y", "z"));
}

TEST(Sort, TextsGoByCharacterCode) {
  const auto set = fabricate({{"b", 0}, {"B", 0}, {"á", 0}, {"a", 0}, {"Z", 0}, {"", 0}});
  set->Sort("Nombre");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("", "B", "Z", "a", "b", "á"));
}

TEST(Sort, LongTextsAreTakenToTheirEnd) {
  const auto set = fabricate({{"igual hasta 2", 0}, {"igual hasta 1", 0}, {"igual ha", 0}});
  set->Sort("Nombre");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("igual ha", "igual hasta 1", "igual hasta 2"));
}

TEST(Sort, NullIsFirstAscendingAndLastDescending) {
  const auto set = fabricate({{"a", 5}, {"b", -2147483647 - 1}, {"c", 0}});
  set->MoveLast();
  set->Update({"Numero"}, {Null{}});
  set->Sort("Numero");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("c", "b", "a"));
  set->Sort("Numero DESC");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("a", "b", "c"));
}

TEST(Sort, RealNumbersGoByValue) {
  Recordset set;
  set.Fields().Append("n", DataType::kDouble);
  set.Open();
  for (const double n : {1.5, -0.0, -2.0, 1e300, 0.0, -1e300}) set.AddNew({"n"}, {n});
  set.Sort("n");
  EXPECT_THAT(column(set, "n"), ElementsAre("-1E+300", "-2", "0", "0", "1,5", "1E+300"));
}

TEST(Sort, NamesMayStandInBracketsAndMayHaveBlanks) {
  Recordset set;
  set.Fields().Append("Forma Pago", DataType::kVarWChar, 10);
  set.Open();
  set.AddNew({0}, {"a"});
  set.AddNew({0}, {"b"});
  set.Sort("[Forma Pago] DESC");
  EXPECT_THAT(column(set, "Forma Pago"), ElementsAre("b", "a"));
  set.Sort("Forma Pago");
  EXPECT_THAT(column(set, "Forma Pago"), ElementsAre("a", "b"));
  set.Sort("forma pago desc");
  EXPECT_THAT(column(set, "Forma Pago"), ElementsAre("b", "a"));
}

TEST(Sort, AFaultLeavesTheOldOrder) {
  const auto set = four();
  set->Sort("Nombre");
  EXPECT_EQ(errorOf([&] { set->Sort("Nadie"); }), 3265);
  EXPECT_EQ(errorOf([&] { set->Sort("Nadie DESC"); }), 3265);
  EXPECT_EQ(errorOf([&] { set->Sort("Nombre ARRIBA"); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Sort("Nombre,"); }), 3001);
  EXPECT_EQ(set->Sort(), "Nombre");
  EXPECT_THAT(column(*set, "Nombre"), ElementsAre("a", "b", "c", "d"));
}

TEST(Sort, AnEditOfTheFieldMovesTheRowAndMoveNextGoesOnFromThere) {
  const auto set = four();
  set->Sort("Numero");
  set->Field("Numero").Value(35);
  set->Update();
  EXPECT_EQ(textAt(*set, "Nombre"), "a");
  EXPECT_EQ(set->AbsolutePosition(), 4);
  set->MovePrevious();
  EXPECT_EQ(textAt(*set, "Nombre"), "d");
}

TEST(Sort, GoesTogetherWithAFilter) {
  const auto set = four();
  set->Sort("Numero DESC");
  set->Filter("Numero < 4");
  EXPECT_THAT(column(*set, "Numero"), ElementsAre("3", "2", "1"));
  set->Sort("Numero");
  EXPECT_THAT(column(*set, "Numero"), ElementsAre("1", "2", "3"));
}

TEST(Sort, HundredThousandRowsComeOutInOrder) {
  Recordset set;
  set.Fields().Append("n", DataType::kInt32);
  set.Open();
  std::uint32_t random = 1;
  for (int i = 0; i < 100'000; ++i) {
    random = random * 1664525U + 1013904223U;
    set.AddNew({0}, {static_cast<std::int32_t>(random >> 8)});
  }
  set.UpdateBatch();
  set.Sort("n");
  std::int32_t last = -1;
  std::int32_t rows = 0;
  for (; !set.Eof(); set.MoveNext(), ++rows) {
    const std::int32_t n = *set.Field(0).Value().getIf<std::int32_t>();
    ASSERT_LE(last, n);
    last = n;
  }
  EXPECT_EQ(rows, 100'000);
}

// ---- Find

TEST(Find, BeginsAtTheCurrentRowItself) {
  const auto set = fabricate({{"a", 1}, {"b", 2}, {"a", 3}});
  set->Find("Nombre = 'a'");
  EXPECT_EQ(textAt(*set, "Numero"), "1");
  set->Find("Nombre = 'a'", 1);
  EXPECT_EQ(textAt(*set, "Numero"), "3");
}

TEST(Find, WithoutAMatchStandsAtEof) {
  const auto set = four();
  set->Find("Nombre = 'z'");
  EXPECT_TRUE(set->Eof());
  EXPECT_FALSE(set->Bof());
}

TEST(Find, BackwardWithoutAMatchStandsAtBof) {
  const auto set = four();
  set->MoveLast();
  set->Find("Numero = 4", 0, SearchDirection::kBackward);
  EXPECT_EQ(textAt(*set, "Nombre"), "d");
  set->Find("Nombre = 'z'", 0, SearchDirection::kBackward);
  EXPECT_TRUE(set->Bof());
}

TEST(Find, MayStartAtABookmark) {
  const auto set = four();
  const Variant first = set->Bookmark();
  set->MoveLast();
  set->MoveNext();
  set->Find("Numero > 3", 0, SearchDirection::kForward, first);
  EXPECT_EQ(textAt(*set, "Nombre"), "d");
  set->Find("Numero > 0", 0, SearchDirection::kForward, bookmark::kFirst);
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
}

TEST(Find, WithoutACurrentRowRaisesNoCurrentRecord) {
  const auto set = four();
  set->MoveLast();
  set->MoveNext();
  EXPECT_EQ(errorOf([&] { set->Find("Numero = 1"); }), 3021);
  EXPECT_EQ(errorOf([&] { fabricate({})->Find("Numero = 1"); }), 3021);
}

TEST(Find, TakesASingleComparisonOnly) {
  const auto set = four();
  EXPECT_EQ(errorOf([&] { set->Find("Numero = 1 AND Nombre = 'a'"); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Find("Numero = 1 OR Numero = 2"); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Find("(Numero = 1)"); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Find(""); }), 3001);
  EXPECT_EQ(errorOf([&] { set->Find("Nadie = 1"); }), 3265);
  EXPECT_EQ(textAt(*set, "Nombre"), "b");
}

TEST(Find, APrefixIsSoughtWithLike) {
  const auto set = fabricate({{"Alicante", 1}, {"Barcelona", 2}, {"Badajoz", 3}});
  set->Find("Nombre Like 'bad*'");
  EXPECT_EQ(textAt(*set, "Numero"), "3");
}

TEST(Find, AQuoteInTheTextBreaksTheCriteria) {
  const auto set = four();
  EXPECT_EQ(errorOf([&] { set->Find("Nombre = 'O'Hara'"); }), 3001);
}

TEST(Find, LooksInTheViewOnly) {
  const auto set = four();
  set->Filter("Numero < 3");
  set->Sort("Numero");
  set->Find("Numero > 2");
  EXPECT_TRUE(set->Eof());
}

TEST(Find, StepsOverDeletedRows) {
  const auto set = four();
  set->MoveNext();
  set->Delete();
  set->Find("Numero > 2");
  EXPECT_EQ(textAt(*set, "Nombre"), "c");
}

}  // namespace
}  // namespace tavelor::test
