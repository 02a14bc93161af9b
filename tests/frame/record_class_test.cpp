// SPDX-License-Identifier: MIT
// The frame's rules: opening, codes and editing, on classes that differ in one value each.
#include "tavelor/frame/record_class.hpp"

#include <array>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tavelor/services/recordset/connection.hpp"
#include "tests/frame/any_class.hpp"
#include "tests/support/shop.hpp"

namespace tavelor {
namespace {

using test::AnyClass;
using test::errorOf;
using test::kBase;
using test::kNumbered;
using testing::ElementsAre;
using testing::IsEmpty;

class RecordClassTest : public test::AnyClassTest {};

// ---- Opening

TEST_F(RecordClassTest, AnUnknownModeWordOpensTheFullSelectAndBecomesTodos) {
  add("1");
  std::string word = "Seleccion";  // words compare by exact case
  banks.IniciaRs(word);
  EXPECT_EQ(word, "todos");
  EXPECT_EQ(rows(banks).Fields().Count(), 3);

  word.clear();
  banks.IniciaRs(word);
  EXPECT_EQ(word, "todos");
}

TEST_F(RecordClassTest, AKnownModeWordStaysAndPicksItsStatement) {
  std::string word = "seleccion";
  banks.IniciaRs(word);
  EXPECT_EQ(word, "seleccion");
  EXPECT_EQ(rows(banks).Fields().Count(), 2);
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo AS Código, Banco AS Descripción FROM Bancos"));
}

TEST_F(RecordClassTest, RegistroWithAnIdThatIsNotThereOpensAnEmptyRecordSetAndStoresNoOrder) {
  add("1");
  banks.IniciaRs("registro", "nada");
  EXPECT_FALSE(banks.ExistenRegistros());
  std::int16_t index = 9;
  std::string mode = "x";
  banks.GetOrder(index, mode, "registro");
  EXPECT_EQ(index, 0);
  EXPECT_EQ(mode, "");
}

TEST_F(RecordClassTest, TheIdIsSplicedAsTextWithoutEscaping) {
  add("O''1");
  EXPECT_EQ(errorOf([&] { banks.IniciaRs("registro", "O'1"); }), errors::kSyntax);
  banks.IniciaRs("registro", "O''1");
  EXPECT_EQ(code(banks), "O'1");
}

TEST_F(RecordClassTest, AHostileIdNeverReachesMoreThanItsPlace) {
  add("1");
  for (const char* hostile :
       {"'; DELETE FROM Bancos", "' or '1'='1", "1' UNION SELECT '2", "\xff"}) {
    EXPECT_EQ(errorOf([&] { banks.IniciaRs("registro", hostile); }), errors::kSyntax) << hostile;
  }
  EXPECT_EQ(errorOf([&] { banks.IniciaRs("registro", std::string("1\0x", 3)); }), errors::kSyntax);
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Bancos"), "1");
}

TEST_F(RecordClassTest, EachIniciaRsMakesAFreshRecordSet) {
  banks.IniciaRs();
  const RecordsetPtr first = banks.DataMember("Primary");
  banks.IniciaRs();
  EXPECT_NE(first, banks.DataMember("Primary"));
  EXPECT_EQ(first->State(), ObjectState::kOpen) << "the old one stays with whoever holds it";
}

TEST_F(RecordClassTest, CnnPrimaryIsTheConnectionOfTheRecordSet) {
  banks.IniciaRs();
  EXPECT_EQ(banks.GetConnection(), rows(banks).ActiveConnection());
}

TEST_F(RecordClassTest, TheConnectionShapesRideOnTheCallersConnection) {
  const ConnectionPtr own = DataSession().OpenConnection(selector::kMain);
  ConnectionPtr given = own;
  AnyClass<OpensOnConnection> first(kBase);
  first.IniciaRs(given, "seleccion");
  EXPECT_EQ(first.GetConnection(), own);
  AnyClass<OpensByWordOnConnection> second(kBase);
  second.IniciaRs("seleccion", {}, given);
  EXPECT_EQ(second.GetConnection(), own);
}

TEST_F(RecordClassTest, TheConnectionShapesFillAnEmptyVariable) {
  ConnectionPtr empty;
  AnyClass<OpensOnConnection> sample(kBase);
  sample.IniciaRs(empty);
  ASSERT_NE(empty, nullptr);
  EXPECT_EQ(sample.GetConnection(), empty);
}

TEST_F(RecordClassTest, PrimaryJoinsTheDataMembersOnceIniciaRsHasRun) {
  EXPECT_THAT(banks.DataMembers(), IsEmpty());
  banks.IniciaRs();
  EXPECT_THAT(banks.DataMembers(), ElementsAre("Primary"));
}

TEST_F(RecordClassTest, AClassThatClearsItsDataMembersEndsWithOnePrimary) {
  ClassInfo clearing = kBase;
  clearing.clearsDataMembers = true;
  AnyClass<OpensByWord> sample(clearing);
  sample.IniciaRs();
  sample.IniciaRs();
  EXPECT_THAT(sample.DataMembers(), ElementsAre("Primary"));
}

// Bound forms count on the list as it is: the second entry looks like a slip, and stays.
TEST_F(RecordClassTest, AClassThatDoesNotClearItsDataMembersAddsPrimaryAgain) {
  banks.IniciaRs();
  banks.IniciaRs();
  EXPECT_THAT(banks.DataMembers(), ElementsAre("Primary", "Primary"));
  EXPECT_EQ(banks.DataMember("Primary"), banks.DataMember("Primary"));
}

TEST_F(RecordClassTest, TheDataMemberAnswersPrimaryExactlyAndNothingElse) {
  banks.IniciaRs();
  EXPECT_NE(banks.DataMember("Primary"), nullptr);
  EXPECT_EQ(banks.DataMember("primary"), nullptr);
  EXPECT_EQ(banks.DataMember(""), nullptr);
}

TEST_F(RecordClassTest, EveryModeReopensInTheOrderLastChosenForIt) {
  add("1", "b");
  add("2", "a");
  banks.IniciaRs("seleccion");
  banks.SetOrder(1, "", "seleccion");
  EXPECT_EQ(code(banks), "2");

  AnyClass<OpensByWord> later(kBase);
  later.IniciaRs("seleccion");
  EXPECT_EQ(code(later), "2");
  later.IniciaRs("todos");
  EXPECT_EQ(code(later), "1") << "another mode has an order of its own";
}

TEST_F(RecordClassTest, SetOrderAddsNoBlankBeforeTheMode) {
  add("1", "b");
  add("2", "a");
  banks.IniciaRs("seleccion");
  banks.SetOrder(0, " DESC", "seleccion");
  EXPECT_EQ(rows(banks).Sort(), "Código DESC");
  EXPECT_EQ(code(banks), "2");
  EXPECT_EQ(errorOf([&] { banks.SetOrder(0, "DESC", "seleccion"); }), errors::kItemNotFound)
      << "the name and the mode run together";
}

TEST_F(RecordClassTest, SetOrderOnAnEmptyRecordSetKeepsTheSavedOrder) {
  add("1");
  banks.IniciaRs("seleccion");
  banks.SetOrder(1, " DESC", "seleccion");
  shop.run("DELETE FROM Bancos");
  banks.IniciaRs("seleccion");
  banks.SetOrder(0, "", "seleccion");
  std::int16_t index = 0;
  std::string mode;
  banks.GetOrder(index, mode, "seleccion");
  EXPECT_EQ(index, 1);
  EXPECT_EQ(mode, " DESC");
}

// ---- Before IniciaRs

TEST_F(RecordClassTest, BeforeIniciaRsEditingRecordIsFalseAndAbsolutePositionZero) {
  EXPECT_FALSE(banks.EditingRecord());
  EXPECT_EQ(banks.AbsolutePosition(), 0);
}

TEST_F(RecordClassTest, BeforeIniciaRsTheOthersRaiseObjectNotSet) {
  EXPECT_EQ(errorOf([&] { banks.AddNew(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { banks.MoveNext(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { banks.Update(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { banks.Delete(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { banks.Requery(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { banks.ExistenRegistros(); }), errors::kObjectNotSet);
  EXPECT_EQ(errorOf([&] { banks.FindRecord("1"); }), errors::kObjectNotSet);
}

TEST_F(RecordClassTest, BeforeIniciaRsTheConnectionIsAClosedOneAndTransactionsFailInThePlatform) {
  const ConnectionPtr closed = banks.GetConnection();
  ASSERT_NE(closed, nullptr);
  EXPECT_EQ(closed->State(), ObjectState::kClosed);
  EXPECT_EQ(banks.GetConnection(), closed) << "created once";
  EXPECT_NE(errorOf([&] { banks.CnnBeginTrans(); }), 0);
  EXPECT_NE(errorOf([&] { banks.CnnCommitTrans(); }), 0);
  EXPECT_NE(errorOf([&] { banks.CnnRollbackTrans(); }), 0);
}

// ---- Its apartment

TEST_F(RecordClassTest, WorksInNoOtherApartmentThanTheOneThatItWasMadeIn) {
  banks.IniciaRs();
  test::Shop other;
  EXPECT_EQ(errorOf([&] { banks.NuevoCodigo(); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { banks.CodigoLibre("1"); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { banks.AddNew(true); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { banks.IniciaRs(); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { banks.Requery(); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { banks.SetFilter("Codigo = '1'", "x"); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { banks.GetFilter("x"); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { banks.SeguridadPermiso("x"); }), errors::kInvalidCall);
  EXPECT_EQ(other.text("SELECT Count(*) AS n FROM Bancos"), "0");

  const Apartment::Scope scope(shop.apartment());
  banks.IniciaRs();
  EXPECT_NO_THROW(banks.AddNew(true));
}

TEST_F(RecordClassTest, RefusesToWorkOnceItsApartmentHasEnded) {
  auto apartment = std::make_unique<Apartment>(shop.installationPtr());
  AnyClass<OpensByWord> left(kBase);
  left.IniciaRs();
  apartment.reset();
  EXPECT_EQ(errorOf([&] { left.NuevoCodigo(); }), errors::kObjectNotSet);
  EXPECT_FALSE(left.ExistenRegistros()) << "the rows are there";
}

// ---- Codes

TEST_F(RecordClassTest, SecondAddNewInsideOneTransactionGetsTheNextCode) {
  banks.IniciaRs();
  banks.CnnBeginTrans();
  for (const char* code : {"1", "2", "3"}) {
    banks.AddNew(true);
    EXPECT_EQ(rows(banks).Field(0).Value(), Variant(code));
    banks.Update();
  }
  banks.CnnCommitTrans();
  EXPECT_EQ(shop.text("SELECT Count(*) AS n FROM Bancos"), "3");
}

TEST_F(RecordClassTest, NuevoCodigoOnAnEmptyTableIsTheNumberOne) {
  EXPECT_EQ(banks.NuevoCodigo(), Variant(std::int32_t{1}));
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT MAX(Codigo) AS Nuevo_Codigo FROM Bancos"));
}

TEST_F(RecordClassTest, NuevoCodigoGivesAMaximumThatIsNoNumberBackAsItIs) {
  add("ABC");
  EXPECT_EQ(banks.NuevoCodigo(), Variant("ABC"));
}

TEST_F(RecordClassTest, NuevoCodigoLosesLeadingZeros) {
  add("00012");
  EXPECT_EQ(banks.NuevoCodigo().toText(shop.apartment().locale()), "13");
}

// The maximum of a text column is the greatest text. It looks wrong and is relied on: shops with
// codes of equal length never see it, and the others know their own.
TEST_F(RecordClassTest, NuevoCodigoTakesTheGreatestTextSoNineBeatsTen) {
  add("9");
  add("10");
  EXPECT_EQ(banks.NuevoCodigo().toText(shop.apartment().locale()), "10");
}

TEST_F(RecordClassTest, NuevoCodigoThatWouldNotFitTheColumnIsTheOldMaximumAgain) {
  add("9999999999");
  EXPECT_EQ(banks.NuevoCodigo(), Variant("9999999999"));
}

// The size of a number is that of its bytes: four of them hold more than four digits.
TEST_F(RecordClassTest, NuevoCodigoOfANumberIsTheMaximumPlusOneHoweverManyDigitsItHas) {
  AnyClass<OpensByWord> issuers(kNumbered);
  for (const std::int32_t last : {9999, 99999, 2147483646}) {
    shop.run("INSERT INTO Emisores (Id) VALUES (" + std::to_string(last) + ")");
    EXPECT_EQ(issuers.NuevoCodigo(), Variant(last + 1));
  }
}

TEST_F(RecordClassTest, AddNewKeepsACodeThatIsANumberHoweverManyDigitsItHas) {
  shop.run("INSERT INTO Emisores (Id) VALUES (99999)");
  AnyClass<OpensByWord> issuers(kNumbered);
  issuers.IniciaRs();
  issuers.AddNew(true);
  EXPECT_EQ(code(issuers), "100000");
}

TEST_F(RecordClassTest, NuevoCodigoBehindTheLastNumberThatADoubleTellsFromTheNextRaisesOverflow) {
  ClassInfo tickets = kNumbered;
  tickets.table = "Tickets";
  tickets.selector = selector::kDocuments;
  tickets.codeColumn = "Numero";
  const AnyClass<OpensByWord> documents(tickets);
  shop.run("INSERT INTO Tickets (Numero) VALUES (9007199254740990)", selector::kDocuments);
  EXPECT_EQ(documents.NuevoCodigo(), Variant(9007199254740991.0));
  shop.run("UPDATE Tickets SET Numero = 1e19", selector::kDocuments);
  EXPECT_EQ(errorOf([&] { documents.NuevoCodigo(); }), errors::kOverflow);
}

TEST_F(RecordClassTest, NuevoCodigoKeepsTheFractionOfANumber) {
  ClassInfo tickets = kNumbered;
  tickets.table = "Tickets";
  tickets.selector = selector::kDocuments;
  tickets.codeColumn = "Numero";
  shop.run("INSERT INTO Tickets (Numero) VALUES (12.5)", selector::kDocuments);
  EXPECT_EQ(AnyClass<OpensByWord>(tickets).NuevoCodigo(), Variant(13.5));
}

TEST_F(RecordClassTest, NothingReservesACode) {
  add("7");
  EXPECT_EQ(banks.NuevoCodigo(), banks.NuevoCodigo());
}

TEST_F(RecordClassTest, CodigoLibreIsTrueWhereNoRowHasTheCode) {
  add("1");
  EXPECT_FALSE(banks.CodigoLibre("1"));
  EXPECT_TRUE(banks.CodigoLibre("2"));
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT Codigo FROM Bancos where codigo ='1'",
                                             "SELECT Codigo FROM Bancos where codigo ='2'"));
}

TEST_F(RecordClassTest, AReadFillsAnEmptyConnectionVariableAndTheNextCallUsesIt) {
  ConnectionPtr connection;
  banks.NuevoCodigo(connection);
  ASSERT_NE(connection, nullptr);
  const ConnectionPtr filled = connection;
  banks.CodigoLibre("1", connection);
  EXPECT_EQ(connection, filled);
}

// ---- Editing

TEST_F(RecordClassTest, AddNewWithDefaultsWritesTheNextCodeToTheFirstField) {
  add("4");
  banks.IniciaRs();
  banks.AddNew(true);
  EXPECT_TRUE(banks.EditingRecord());
  EXPECT_EQ(code(banks), "5");
}

TEST_F(RecordClassTest, AddNewFalseLeavesTheFirstFieldEmptyThoughTheCodeWasComputed) {
  banks.IniciaRs();
  shop.statements();
  banks.AddNew(false);
  EXPECT_TRUE(rows(banks).Field(0).Value().isEmpty());
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT MAX(Codigo) AS Nuevo_Codigo FROM Bancos"));
}

TEST_F(RecordClassTest, AddNewReplacesACodeThatIsTooLongForTheFirstFieldByZero) {
  add("99999");
  ClassInfo wide = kBase;
  constexpr std::array modes = {Mode{kAnyOtherWord, "SELECT DC, Codigo FROM Bancos"}};
  wide.modes = modes;
  AnyClass<OpensByWord> general(wide);
  general.IniciaRs();
  general.AddNew(true);
  EXPECT_EQ(code(general), "0");

  wide.addNew = AddNewForm::kShort;
  AnyClass<OpensByWord> brief(wide);
  brief.IniciaRs();
  EXPECT_EQ(errorOf([&] { brief.AddNew(true); }), errors::kMultipleStep)
      << "the short form has no test of the length, so the field refuses the code";
}

TEST_F(RecordClassTest, UpdateWritesTheCurrentRowOnly) {
  add("1");
  add("2");
  banks.IniciaRs();
  rows(banks).Field("Banco").Value("uno");
  banks.MoveNext();
  rows(banks).Field("Banco").Value("dos");
  banks.Update();
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos WHERE Codigo = '1'"), "X");
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos WHERE Codigo = '2'"), "dos");
}

TEST_F(RecordClassTest, UpdateOfAllRowsWritesWhateverIsPending) {
  ClassInfo all = kBase;
  all.update = UpdateForm::kAllRows;
  AnyClass<OpensByWord> sample(all);
  sample.IniciaRs();
  sample.Update();  // no rows: nothing to do
  add("1");
  add("2");
  sample.IniciaRs();
  rows(sample).Field("Banco").Value("uno");
  sample.MoveNext();
  rows(sample).Field("Banco").Value("dos");
  sample.Update();
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos WHERE Codigo = '1'"), "uno");
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos WHERE Codigo = '2'"), "dos");
}

TEST_F(RecordClassTest, DeleteWritesAtOnceOrLeavesItToUpdate) {
  add("1");
  add("2");
  banks.IniciaRs();
  banks.Delete();
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Bancos"), "1");

  ClassInfo marks = kBase;
  marks.remove = DeleteForm::kMarks;
  marks.update = UpdateForm::kAllRows;
  add("3");
  AnyClass<OpensByWord> sample(marks);
  sample.IniciaRs();
  sample.Delete();
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Bancos"), "2") << "only marked";
  sample.Update();
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Bancos"), "1");
}

TEST_F(RecordClassTest, CancelTakesAnAddedRowBack) {
  add("1");
  banks.IniciaRs();
  banks.AddNew(true);
  banks.Cancel();
  EXPECT_FALSE(banks.EditingRecord());
  EXPECT_EQ(rows(banks).RecordCount(), 1);
}

TEST_F(RecordClassTest, AConflictSurfacesFromUpdate) {
  add("1");
  banks.IniciaRs();
  rows(banks).Field("Banco").Value("mine");
  shop.run("UPDATE Bancos SET Banco = 'theirs'");
  EXPECT_EQ(errorOf([&] { banks.Update(); }), errors::kRowNotLocated);
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos"), "theirs");
}

TEST_F(RecordClassTest, TransactionsOfTheClassWrapItsUpdates) {
  add("1");
  banks.IniciaRs();
  banks.CnnBeginTrans();
  rows(banks).Field("Banco").Value("new");
  banks.Update();
  banks.CnnRollbackTrans();
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos"), "X");
  banks.IniciaRs();
  banks.CnnBeginTrans();
  rows(banks).Field("Banco").Value("new");
  banks.Update();
  banks.CnnCommitTrans();
  EXPECT_EQ(shop.text("SELECT Banco FROM Bancos"), "new");
}

}  // namespace
}  // namespace tavelor
