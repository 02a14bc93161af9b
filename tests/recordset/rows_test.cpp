// SPDX-License-Identifier: MIT
// Reading rows by columns and types, one after the other.
#include <utility>

#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

class Rows : public ShopTest {
 protected:
  static std::vector<std::string> codes(const RecordsetPtr& rows) {
    std::vector<std::string> found;
    for (const Row row : rows) found.push_back(row.text("Codigo"));
    return found;
  }
};

TEST_F(Rows, ComeInTheOrderOfTheViewAndLeaveTheCursorWhereItIs) {
  const auto rows = openBanks();
  rows->MoveNext();
  EXPECT_THAT(codes(rows), ElementsAre("001", "002", "003"));
  EXPECT_EQ(textAt(*rows, "Codigo"), "002");
  rows->Sort("Codigo DESC");
  EXPECT_THAT(codes(rows), ElementsAre("003", "002", "001"));
  rows->Filter("Saldo <> 0");
  EXPECT_THAT(codes(rows), ElementsAre("002", "001"));
  rows->Filter("Codigo = 'x'");
  EXPECT_THAT(codes(rows), ElementsAre());
}

TEST_F(Rows, OfASetAndOfItsPointerAreTheSame) {
  const auto rows = openBanks();
  int count = 0;
  for (const Row row : *rows) count += row.text(0).empty() ? 0 : 1;
  EXPECT_EQ(count, 3);
}

TEST_F(Rows, PostNothingAndTellNoListener) {
  struct Count : RecordsetEvents {
    void WillMove(EventReason /*reason*/, EventStatus& /*status*/, Recordset& /*set*/) override {
      ++told;
    }
    void WillChangeRecord(EventReason /*reason*/, std::int32_t /*records*/, EventStatus& /*status*/,
                          Recordset& /*set*/) override {
      ++told;
    }
    int told = 0;
  } listener;
  const auto rows = openBanks();
  rows->Field("Descripcion").Value("en edición");
  rows->addListener(&listener);
  EXPECT_THAT(codes(rows), ElementsAre("001", "002", "003"));
  EXPECT_EQ(listener.told, 0);
  EXPECT_EQ(rows->EditMode(), EditMode::kInProgress);
  rows->removeListener(&listener);
}

TEST_F(Rows, ShowWhatIsInEditAndPending) {
  const auto rows = openBanks();
  rows->Field("Descripcion").Value("pendiente");
  rows->MoveNext();
  rows->Field("Descripcion").Value("en edición");
  std::vector<std::string> texts;
  for (const Row row : rows) texts.push_back(row.text("Descripcion"));
  EXPECT_THAT(texts, ElementsAre("pendiente", "en edición", "Tres"));
}

TEST_F(Rows, GiveEachTypeByItsGetter) {
  const auto rows = openBanks();
  const Row first = rows->CurrentRow();
  EXPECT_EQ(first.text("descripcion"), "Uno") << "without regard to case";
  EXPECT_EQ(first.money("Saldo"), Currency::fromScaled(105000));
  EXPECT_EQ(first.number("Saldo"), 10.5);
  EXPECT_EQ(first.date("Alta"), Date(45293));
  EXPECT_TRUE(first.flag("Activo"));
  EXPECT_EQ(first.integer("Plazos"), 3);
  EXPECT_EQ(first.number("Plazos"), 3.0);
  EXPECT_EQ(first.money("Plazos"), Currency::fromScaled(30000));
  EXPECT_EQ(first.text(1), "Uno") << "by position";
  EXPECT_EQ(first.value("Plazos"), Variant(std::int16_t{3}));
}

TEST_F(Rows, NullIsAskedForOrGivenAValue) {
  const auto rows = openBanks();
  rows->MoveLast();
  const Row last = rows->CurrentRow();
  EXPECT_TRUE(last.isNull("Saldo"));
  EXPECT_FALSE(last.isNull("Codigo"));
  EXPECT_EQ(last.money("Saldo", Currency{}), Currency{});
  EXPECT_EQ(last.text("Nota", "sin nota"), "sin nota");
  EXPECT_EQ(last.integer("Plazos", 7), 7);
  EXPECT_EQ(last.number("Ratio", 1.5), 1.5);
  EXPECT_EQ(last.date("Alta", Date(1)), Date(1));
  EXPECT_EQ(last.flag("Activo", true), last.isNull("Activo") || last.flag("Activo"));
  EXPECT_EQ(last.text("Codigo", "otro"), "003") << "what is not Null comes as it is";
  EXPECT_EQ(errorOf([&] { last.money("Saldo"); }), errors::kInvalidUseOfNull);
  EXPECT_THAT(sentenceOf([&] { last.money("Saldo"); }), HasSubstr("Field 'Saldo' is money"));
}

TEST_F(Rows, AFieldOfANewRowThatNobodyHasWrittenIsNull) {
  const auto rows = openBanks();
  rows->AddNew();
  EXPECT_TRUE(rows->CurrentRow().isNull("Descripcion"));
  EXPECT_EQ(rows->CurrentRow().text("Descripcion", "-"), "-");
}

TEST_F(Rows, AGetterOfAnotherTypeNamesTheColumnAndItsType) {
  const auto rows = openBanks();
  const Row row = rows->CurrentRow();
  EXPECT_EQ(errorOf([&] { row.date("Saldo"); }), errors::kWrongType);
  EXPECT_THAT(sentenceOf([&] { row.date("Saldo"); }),
              HasSubstr("Field 'Saldo' is money, not a date"));
  EXPECT_THAT(sentenceOf([&] { row.integer("Ratio"); }),
              HasSubstr("Field 'Ratio' is a number, not a whole number"));
  EXPECT_EQ(errorOf([&] { row.text("Plazos"); }), errors::kWrongType);
  EXPECT_EQ(errorOf([&] { row.flag("Plazos"); }), errors::kWrongType);
  rows->MoveLast();
  EXPECT_EQ(errorOf([&] { rows->CurrentRow().date("Saldo", Date{}); }), errors::kWrongType)
      << "also where the value is Null";
}

TEST_F(Rows, AnUnknownColumnNamesTheNearest) {
  const auto rows = openBanks();
  const Row row = rows->CurrentRow();
  EXPECT_EQ(errorOf([&] { row.text("Descripcio"); }), errors::kItemNotFound);
  EXPECT_THAT(sentenceOf([&] { row.text("Descripcio"); }),
              HasSubstr("did you mean 'Descripcion'?"));
  EXPECT_EQ(errorOf([&] { row.text(99); }), errors::kItemNotFound);
  EXPECT_EQ(errorOf([&] { row.text(-1); }), errors::kItemNotFound);
}

TEST_F(Rows, ABookmarkLeadsToTheRow) {
  const auto rows = openBanks();
  for (const Row row : rows) {
    if (row.text("Codigo") == "003") rows->Bookmark(row.bookmark());
  }
  EXPECT_EQ(textAt(*rows, "Codigo"), "003");
}

TEST_F(Rows, MayBeDeletedAndAddedOnTheWay) {
  const auto rows = openBanks();
  std::vector<std::string> met;
  for (const Row row : rows) {
    met.push_back(row.text("Codigo"));
    if (met.size() > 1) continue;
    rows->Bookmark(row.bookmark());
    rows->Delete();
    rows->AddNew({"Codigo"}, {"004"});
    rows->AbsolutePosition();
  }
  EXPECT_THAT(met, ElementsAre("001", "002", "003", "004"));
  EXPECT_THAT(codes(rows), ElementsAre("002", "003", "004"));
}

TEST_F(Rows, ThatLeaveTheirPlaceOnTheWayAreNotLost) {
  const auto rows = openBanks();
  rows->Sort("Descripcion");
  std::vector<std::string> met;
  for (const Row row : rows) {
    met.push_back(row.text("Codigo"));
    if (met.size() > 1) continue;
    rows->Bookmark(row.bookmark());
    rows->Delete();
    rows->AbsolutePosition();
  }
  EXPECT_THAT(met, ElementsAre("002", "003", "001"));
}

TEST_F(Rows, OfAClosedOrRefetchedSetSaySo) {
  const auto rows = openBanks();
  const Row row = rows->CurrentRow();
  rows->Requery();
  EXPECT_EQ(errorOf([&] { row.text("Codigo"); }), errors::kObjectInvalid);
  rows->Close();
  EXPECT_EQ(errorOf([&] { row.text("Codigo"); }), errors::kObjectClosed);
  EXPECT_EQ(errorOf([&] { codes(rows); }), errors::kObjectClosed);
}

TEST_F(Rows, WhoseSetIsFetchedAnewOnTheWayEnd) {
  const auto rows = openBanks();
  EXPECT_EQ(errorOf([&] {
              for (const Row row : rows) {
                row.text("Codigo");
                rows->Requery();
              }
            }),
            errors::kObjectInvalid);
}

TEST_F(Rows, ThatAreDeletedCannotBeRead) {
  const auto rows = openBanks();
  const Row row = rows->CurrentRow();
  rows->Delete();
  EXPECT_EQ(errorOf([&] { row.text("Codigo"); }), errors::kDeletedRow);
}

TEST_F(Rows, WithoutACurrentOneThereIsNone) {
  const auto rows = open("SELECT * FROM Bancos WHERE Codigo = 'x'");
  EXPECT_EQ(errorOf([&] { rows->CurrentRow(); }), errors::kNoCurrentRecord);
}

// ---- Many at once

TEST_F(Rows, ComeAsListsOfValuesFromTheCurrentOneOn) {
  const auto rows = openBanks();
  rows->MoveNext();
  const auto values = rows->GetRows(-1, {}, {"Codigo", 5});
  ASSERT_EQ(values.size(), 2U);
  EXPECT_THAT(values[0], ElementsAre(Variant("002"), Variant("003")));
  EXPECT_EQ(values[1].size(), 2U);
  EXPECT_TRUE(rows->Eof());
  EXPECT_THAT(rows->GetRows(2)[0], ElementsAre());
}

TEST_F(Rows, ThatWereNotAskedForAreNext) {
  const auto rows = openBanks();
  const auto values = rows->GetRows(1);
  EXPECT_EQ(values.size(), 10U);
  EXPECT_EQ(textAt(*rows, "Codigo"), "002");
  EXPECT_THAT(rows->GetRows(1, bookmark::kFirst, {"Codigo"})[0], ElementsAre(Variant("001")));
  EXPECT_EQ(errorOf([&] { rows->GetRows(-2); }), errors::kInvalidArgument);
  EXPECT_EQ(errorOf([&] { rows->GetRows(1, {}, {"Nada"}); }), errors::kItemNotFound);
  EXPECT_EQ(textAt(*rows, "Codigo"), "002") << "a refused call moves nothing";
}

// ---- By where they stand

TEST_F(Rows, AreListedByTheirBookmarksAndReadByThem) {
  const auto rows = openBanks();
  EXPECT_THAT(rows->shownRows(), ElementsAre(1U, 2U, 3U));
  rows->Sort("Codigo DESC");
  EXPECT_THAT(rows->shownRows(), ElementsAre(3U, 2U, 1U));
  rows->Filter("Saldo <> 0");
  EXPECT_THAT(rows->shownRows(), ElementsAre(2U, 1U));
  EXPECT_EQ(rows->rowOf(3).text("Codigo"), "003") << "a row that does not show";
  EXPECT_EQ(textAt(*rows, "Codigo"), "002") << "the cursor stays";
  EXPECT_EQ(errorOf([&] { rows->rowOf(4); }), errors::kInvalidArgument);
  rows->Close();
  EXPECT_EQ(errorOf([&] { rows->shownRows(); }), errors::kObjectClosed);
}

TEST_F(Rows, TheirStampIsAnotherWheneverTheirListIs) {
  const auto rows = openBanks();
  const auto clone = rows->Clone();
  std::uint64_t before = rows->shownRowsStamp();
  const auto hasChanged = [&] {
    return std::exchange(before, rows->shownRowsStamp()) != rows->shownRowsStamp();
  };
  rows->MoveNext();
  rows->Field("Saldo").Value(3);
  EXPECT_FALSE(hasChanged()) << "moves and edits";
  rows->Update();
  rows->Sort("Codigo DESC");
  EXPECT_TRUE(hasChanged());
  rows->Filter("Saldo > 1");
  EXPECT_TRUE(hasChanged());
  rows->AddNew();
  EXPECT_TRUE(hasChanged());
  rows->CancelUpdate();
  EXPECT_TRUE(hasChanged());
  rows->Filter("");
  EXPECT_TRUE(hasChanged());
  rows->Delete();
  EXPECT_TRUE(hasChanged());
  clone->MoveLast();
  clone->Delete();
  EXPECT_TRUE(hasChanged()) << "a clone takes a row away";
  rows->CancelBatch();
  EXPECT_TRUE(hasChanged());
  rows->Requery();
  EXPECT_TRUE(hasChanged());
  rows->MoveLast();
  rows->Field("Codigo").Value("000");
  rows->Update();
  EXPECT_TRUE(hasChanged()) << "a row goes to its new place";
  rows->Close();
  rows->Open(Statement::trusted("SELECT * FROM Bancos ORDER BY Codigo"), clone->ActiveConnection());
  EXPECT_TRUE(hasChanged());
}

TEST_F(Rows, TellWhatIsPendingWhereverTheCursorIs) {
  const auto rows = openBanks();
  const Row first = rows->CurrentRow();
  EXPECT_EQ(first.status(), record_status::kUnmodified);
  rows->Field("Descripcion").Value("Otro");
  rows->MoveNext();
  rows->Delete();
  const Row deleted = rows->rowOf(2);
  rows->MoveLast();
  EXPECT_EQ(first.status(), record_status::kModified);
  EXPECT_EQ(first.text("Descripcion"), "Otro");
  EXPECT_NE(first.originalValue("Descripcion"), Variant("Otro"));
  EXPECT_EQ(first.underlyingValue("Descripcion"), first.originalValue("Descripcion"));
  EXPECT_EQ(deleted.status(), record_status::kDeleted);
  EXPECT_EQ(deleted.originalValue("Codigo"), Variant("002")) << "of a deleted row too";
  EXPECT_EQ(errorOf([&] { deleted.value("Codigo"); }), errors::kDeletedRow);
  rows->Requery();
  EXPECT_EQ(errorOf([&] { first.status(); }), errors::kObjectInvalid);
  EXPECT_EQ(errorOf([&] { deleted.originalValue("Codigo"); }), errors::kObjectInvalid);
}

// ---- Pages

TEST_F(Rows, ArePagedByThePageSize) {
  const auto rows = openBanks();
  EXPECT_EQ(rows->PageSize(), 10);
  EXPECT_EQ(rows->PageCount(), 1);
  rows->PageSize(2);
  EXPECT_EQ(rows->PageCount(), 2);
  rows->AbsolutePage(2);
  EXPECT_EQ(textAt(*rows, "Codigo"), "003");
  EXPECT_EQ(rows->AbsolutePage(), 2);
  rows->MovePrevious();
  EXPECT_EQ(rows->AbsolutePage(), 1);
  rows->MoveLast();
  rows->MoveNext();
  EXPECT_EQ(rows->AbsolutePage(), position::kEof);
  for (const std::int32_t page : {0, 3, -1}) {
    EXPECT_EQ(errorOf([&] { rows->AbsolutePage(page); }), errors::kInvalidArgument) << page;
  }
  EXPECT_EQ(errorOf([&] { rows->PageSize(0); }), errors::kInvalidArgument);
  rows->Filter("Codigo = 'x'");
  EXPECT_EQ(rows->PageCount(), 0);
}

// ---- What a set can do

TEST_F(Rows, SupportSaysWhatASetCanDo) {
  const auto rows = openBanks();
  EXPECT_TRUE(rows->Supports(cursor_option::kAddNew | cursor_option::kDelete |
                             cursor_option::kUpdate | cursor_option::kUpdateBatch |
                             cursor_option::kResync | cursor_option::kFind));
  EXPECT_FALSE(rows->Supports(cursor_option::kSeek));
  EXPECT_FALSE(rows->Supports(cursor_option::kFind | cursor_option::kIndex)) << "all or no";
  const auto reading = rows->Clone(LockType::kReadOnly);
  EXPECT_FALSE(reading->Supports(cursor_option::kUpdate));
  EXPECT_TRUE(reading->Supports(cursor_option::kBookmark));
  const auto sums = open("SELECT Count(*) AS n FROM Bancos");
  EXPECT_FALSE(sums->Supports(cursor_option::kAddNew));
  EXPECT_FALSE(sums->Supports(cursor_option::kResync));
  const auto alone = fabricate({{"a", 1}});
  EXPECT_TRUE(alone->Supports(cursor_option::kAddNew | cursor_option::kUpdateBatch));
  EXPECT_FALSE(alone->Supports(cursor_option::kResync));
}

}  // namespace
}  // namespace tavelor::test
