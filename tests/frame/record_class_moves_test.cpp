// SPDX-License-Identifier: MIT
// The frame's rules: requery, moves, events, connections and paths.
#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/services/prompt_global.hpp"
#include "tavelor/services/recordset/connection.hpp"
#include "tests/frame/any_class.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::AnyClass;
using test::errorOf;
using test::kBase;
using testing::ElementsAre;

struct MoveCounter final : RecordClassEvents {
  void MoveComplete() override { ++moves; }
  void DataMemberChanged(std::string_view member) override { changed.emplace_back(member); }
  int moves = 0;
  std::vector<std::string> changed;
};

class RecordClassMovesTest : public test::AnyClassTest {};

// ---- Requery

TEST_F(RecordClassMovesTest, RequeryWithAnEmptyWordLeavesTodosWithACapital) {
  banks.IniciaRs();
  std::string word;
  banks.Requery(word);
  EXPECT_EQ(word, "Todos");
}

TEST_F(RecordClassMovesTest, RequeryFindsTheOrderOfTodosBecauseRegistryKeysIgnoreCase) {
  add("1", "b");
  add("2", "a");
  banks.IniciaRs();
  banks.SetOrder(1, "", "todos");
  banks.Requery();
  EXPECT_EQ(rows(banks).Sort(), "Banco");
}

TEST_F(RecordClassMovesTest, RequeryKeepsFilterAndStatementAndTellsBoundConsumers) {
  add("1");
  add("2");
  banks.IniciaRs("seleccion");
  rows(banks).Filter("Código = '2'");
  MoveCounter listener;
  banks.addListener(listener);
  banks.Requery("otra");
  EXPECT_EQ(rows(banks).RecordCount(), 1);
  EXPECT_EQ(rows(banks).Fields().Count(), 2) << "the word is only the key of the order";
  EXPECT_THAT(listener.changed, ElementsAre("Primary"));
  banks.removeListener(listener);
}

// Without a word the order is that of the full list, whichever list is open: a short one may not
// have its column. The rows are there all the same, and a caller who names the word of his list
// never meets this, so it stays.
TEST_F(RecordClassMovesTest, RequeryWithoutAWordWantsTheOrderOfTheFullListInAShortOneToo) {
  add("1");
  banks.IniciaRs();
  banks.SetOrder(2, "", "todos");
  banks.IniciaRs("seleccion");
  add("2");
  std::string word;
  EXPECT_EQ(errorOf([&] { banks.Requery(word); }), errors::kItemNotFound);
  EXPECT_EQ(word, "Todos");
  EXPECT_EQ(rows(banks).RecordCount(), 2);
  banks.Requery("seleccion");
  EXPECT_EQ(rows(banks).Sort(), "Código");
}

// ---- Moves

TEST_F(RecordClassMovesTest, MoveNextOnTheLastRowBeepsAndStays) {
  add("1");
  add("2");
  banks.IniciaRs();
  banks.MoveNext();
  EXPECT_EQ(shop.apartment().promptGlobal().beeps(), 0);
  banks.MoveNext();
  EXPECT_EQ(code(banks), "2");
  EXPECT_EQ(shop.apartment().promptGlobal().beeps(), 1);
}

TEST_F(RecordClassMovesTest, MovePreviousOnTheFirstRowBeepsAndStays) {
  add("1");
  banks.IniciaRs();
  banks.MovePrevious();
  EXPECT_EQ(code(banks), "1");
  EXPECT_EQ(shop.apartment().promptGlobal().beeps(), 1);
}

TEST_F(RecordClassMovesTest, MovesOnAnEmptyRecordSetDoNothingAndDoNotBeep) {
  banks.IniciaRs();
  banks.MoveFirst();
  banks.MoveLast();
  banks.MoveNext();
  banks.MovePrevious();
  EXPECT_EQ(shop.apartment().promptGlobal().beeps(), 0);
  EXPECT_FALSE(banks.ExistenRegistros());
}

TEST_F(RecordClassMovesTest, MoveFirstAndMoveLast) {
  add("1");
  add("2");
  add("3");
  banks.IniciaRs();
  banks.MoveLast();
  EXPECT_EQ(code(banks), "3");
  EXPECT_EQ(banks.AbsolutePosition(), 3);
  banks.MoveFirst();
  EXPECT_EQ(code(banks), "1");
}

TEST_F(RecordClassMovesTest, MoveToBookmarkTakesTheTextOfABookmark) {
  add("1");
  add("2");
  banks.IniciaRs();
  banks.MoveLast();
  const std::string bookmark = rows(banks).Bookmark().toText(shop.apartment().locale());
  banks.MoveFirst();
  banks.MoveToBookmark(bookmark);
  EXPECT_EQ(code(banks), "2");
}

TEST_F(RecordClassMovesTest, ABookmarkThatIsNoNumberCountsAsZeroWhichIsNoRow) {
  add("1");
  banks.IniciaRs();
  EXPECT_EQ(errorOf([&] { banks.MoveToBookmark("abc"); }),
            errorOf([&] { banks.MoveToBookmark(std::int32_t{0}); }));
  EXPECT_EQ(errorOf([&] { banks.MoveToBookmark("abc"); }), errors::kInvalidArgument);
}

TEST_F(RecordClassMovesTest, FindRecordSearchesFromTheCurrentRowOn) {
  add("1");
  add("2");
  add("3");
  banks.IniciaRs();
  banks.FindRecord("2");
  EXPECT_EQ(code(banks), "2");
  banks.FindRecord("1");
  EXPECT_TRUE(rows(banks).Eof()) << "the row lies behind";
}

TEST_F(RecordClassMovesTest, FindRecordByWholeValueOrByPrefix) {
  add("12");
  banks.IniciaRs();
  banks.FindRecord("1");
  EXPECT_TRUE(rows(banks).Eof());
  ClassInfo prefix = kBase;
  prefix.find = FindForm::kPrefix;
  AnyClass<OpensByWord> sample(prefix);
  sample.IniciaRs();
  sample.FindRecord("1");
  EXPECT_EQ(code(sample), "12");
}

TEST_F(RecordClassMovesTest, FindRecordDoesNotEscapeItsCriterion) {
  add("1");
  banks.IniciaRs();
  EXPECT_EQ(errorOf([&] { banks.FindRecord("1' or Banco = 'X"); }), errors::kInvalidArgument);
}

TEST_F(RecordClassMovesTest, EachMoveRaisesMoveComplete) {
  add("1");
  add("2");
  banks.IniciaRs();
  MoveCounter listener;
  banks.addListener(listener);
  banks.MoveNext();
  EXPECT_EQ(listener.moves, 1);
  rows(banks).MoveFirst();  // a bound grid moves the record set itself
  EXPECT_EQ(listener.moves, 2);
  banks.removeListener(listener);
  banks.MoveNext();
  EXPECT_EQ(listener.moves, 2);
}

TEST_F(RecordClassMovesTest, AClassWithoutEventsRaisesNothing) {
  add("1");
  add("2");
  ClassInfo silent = kBase;
  silent.raisesMoveComplete = false;
  AnyClass<OpensByWord> sample(silent);
  MoveCounter listener;
  sample.addListener(listener);
  sample.IniciaRs();
  sample.MoveNext();
  EXPECT_EQ(listener.moves, 0);
}

TEST_F(RecordClassMovesTest, AGridMayHoldTheRecordSetLongerThanTheClassLives) {
  add("1");
  add("2");
  RecordsetPtr held;
  {
    AnyClass<OpensByWord> shortLived(kBase);
    shortLived.IniciaRs();
    held = shortLived.DataMember("Primary");
  }
  held->MoveNext();
  EXPECT_EQ(held->Field(0).Value(), Variant("2"));
}

// ---- Connections and paths

// The service is asked and its answer dropped: callers take the empty text as "use GetConnection".
TEST_F(RecordClassMovesTest, GetConnectionStrIsEmptyThoughTheServiceHasAString) {
  EXPECT_NE(DataSession().ConnectionString(selector::kMain), "");
  EXPECT_EQ(banks.GetConnectionStr(), "");
  ClassInfo answering = kBase;
  answering.givesConnectionString = true;
  EXPECT_EQ(AnyClass<OpensByWord>(answering).GetConnectionStr(),
            DataSession().ConnectionString(selector::kMain));
}

TEST_F(RecordClassMovesTest, GetConnectionStrToRptGivesTheReportFieldsOfTheDatabase) {
  std::string kind, source, catalogue, user, password;
  banks.GetConnectionStrToRpt(kind, source, catalogue, user, password);
  std::string kind2, source2, catalogue2, user2, password2;
  DataSession().ReportConnection(selector::kMain, kind2, source2, catalogue2, user2, password2);
  EXPECT_NE(source, "");
  EXPECT_EQ(std::tie(kind, source, catalogue, user, password),
            std::tie(kind2, source2, catalogue2, user2, password2));
}

TEST_F(RecordClassMovesTest, GetRptPathWritesTheFullPathIntoTheCallersText) {
  std::string path = "bancos.rpt";
  banks.GetRptPath(path);
  EXPECT_EQ(path, DataSession().ReportPath("bancos.rpt"));
}

TEST_F(RecordClassMovesTest, SClassNameIsTheClassWord) {
  EXPECT_EQ(banks.sClassName(), "Bancos");
}

TEST_F(RecordClassMovesTest, AnErrorOfTheDatabaseComesThroughUnchanged) {
  constexpr std::array modes = {Mode{kAnyOtherWord, "SELECT Nada FROM Bancos"}};
  ClassInfo broken = kBase;
  broken.modes = modes;
  AnyClass<OpensByWord> sample(broken);
  try {
    sample.IniciaRs();
    FAIL() << "an unknown column was accepted";
  } catch (const Error& error) {
    EXPECT_EQ(error.statement(), "SELECT Nada FROM Bancos");
    EXPECT_THAT(error.description(), testing::HasSubstr("Nada"));
  }
  EXPECT_FALSE(sample.EditingRecord());
}

}  // namespace
}  // namespace tavelor
