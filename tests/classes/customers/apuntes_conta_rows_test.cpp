// SPDX-License-Identifier: MIT
// The rows of a customer's ledger in a grid: new ones, their keys, and balances computed anew.
#include <cmath>

#include "tavelor/services/clock.hpp"
#include "tests/classes/customers/apuntes_conta.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

class LedgerRowsTest : public test::LedgerTest {
 protected:
  void open(const std::string& customer = "00012") { ledger.IniciaRs({}, "seleccion", customer); }
  /// An entry whose balance is wrong.
  void put(int id, const Variant& date, const std::string& amounts, double balance = 0) {
    const std::string literal = date.isNull() ? "Null" : DataSession().DateLiteral(1, date);
    shop.run(
        "INSERT INTO Clientes_Apuntes_Contables (Id, Codigo, Fecha, Debe, Haber, Saldo) "
        "VALUES (" +
        std::to_string(id) + ", '00012', " + literal + ", " + amounts + ", " +
        std::to_string(balance) + ")");
  }
  std::vector<std::string> column(std::string_view name) {
    std::vector<std::string> found;
    for (ledger.MoveFirst(); !rows().Eof(); rows().MoveNext()) found.push_back(field(name));
    return found;
  }
  void totalAndWrite() {
    ledger.UpdateTotal();
    ledger.Update();
  }
};

// ---- AddNew

TEST_F(LedgerRowsTest, AddNewGivesKeyCustomerTodayAndZeros) {
  shop.apartment().clock().fix(Date::of({2026, 3, 5, 8, 5, 9}));
  insert(day(1), 0, 1);
  ledger.IniciaRs({}, "ninguno");
  Variant customer = "00012";
  ledger.AddNew(customer, true);
  for (const auto& [name, value] :
       std::vector<std::pair<std::string, std::string>>{{"Id", "2"},
                                                        {"Codigo", "00012"},
                                                        {"Fecha", "05/03/2026"},
                                                        {"Tipo", "H"},
                                                        {"Serie", "A"},
                                                        {"Debe", "0"},
                                                        {"Haber", "0"},
                                                        {"Saldo", "0"},
                                                        {"Estado", "0"},
                                                        {"Documento", "0"},
                                                        {"Concepto", "Empty"}}) {
    EXPECT_EQ(field(name), value) << name;
  }
  EXPECT_EQ(customer, Variant("00012"));
  EXPECT_TRUE(ledger.EditingRecord());
}

TEST_F(LedgerRowsTest, AddNewWithoutDefaultsLeavesTheRowEmptyAndAsksNothing) {
  ledger.IniciaRs({}, "ninguno");
  shop.statements();
  ledger.AddNew("00012");
  EXPECT_THAT(shop.statements(), IsEmpty());
  for (const char* name : {"Id", "Codigo", "Fecha", "Debe"}) EXPECT_EQ(field(name), "Empty");
}

// ---- What stays pending

TEST_F(LedgerRowsTest, UpdateWritesAllRowsAndDeleteOnlyMarks) {
  insert(day(1), 0, 1);
  insert(day(2), 0, 2);
  open();
  rows().Field("Concepto").Value("uno");
  ledger.MoveNext();
  ledger.Delete();
  EXPECT_EQ(count(), "2");
  ledger.MoveFirst();
  ledger.Update();
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(shop.text("SELECT Concepto FROM Clientes_Apuntes_Contables"), "uno");
}

TEST_F(LedgerRowsTest, UpdateOfNoRowsDoesNothing) {
  ledger.IniciaRs({}, "ninguno");
  shop.statements();
  ledger.Update();
  EXPECT_THAT(shop.statements(), IsEmpty());
}

TEST_F(LedgerRowsTest, CancelBatchDropsAllThatIsPending) {
  insert(day(1), 0, 1);
  insert(day(2), 0, 2);
  open();
  ledger.Delete();
  ledger.MoveNext();
  rows().Field("Concepto").Value("dos");
  rows().Update();
  ledger.CancelBatch();
  EXPECT_THAT(column("Concepto"), ElementsAre("Factura", "Factura"));
  ledger.Update();
  EXPECT_EQ(count(), "2");
}

TEST_F(LedgerRowsTest, UpdateadAffectCurrentGivesTheCurrentRowItsCustomerAndLeavesItPending) {
  insert(day(1), 0, 1);
  insert(day(2), 0, 2);
  open();
  ledger.MoveNext();
  Variant customer = "00013";
  ledger.UpdateadAffectCurrent(customer);
  EXPECT_THAT(column("Codigo"), ElementsAre("00012", "00013"));
  EXPECT_FALSE(ledger.EditingRecord());
  EXPECT_EQ(balances("00013").size(), 0U) << "nothing is written yet";
  ledger.MoveFirst();
  ledger.Update();
  EXPECT_EQ(balances("00013").size(), 1U);
}

// ---- UpdateId

TEST_F(LedgerRowsTest, UpdateIdGivesEveryRowANewKeyFromTheNextOneOn) {
  put(3, day(1), "0, 1");
  put(1, day(2), "0, 2");
  put(7, day(3), "0, 3");
  open();
  shop.statements();
  ledger.UpdateId();
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Clientes_Apuntes_Contables");
  EXPECT_EQ(ledger.AbsolutePosition(), 1);
  EXPECT_THAT(column("Id"), ElementsAre("8", "9", "10"));
  EXPECT_EQ(shop.text("SELECT Max(Id) FROM Clientes_Apuntes_Contables"), "7") << "still pending";
  ledger.MoveFirst();
  ledger.Update();
  EXPECT_EQ(shop.text("SELECT Min(Id) FROM Clientes_Apuntes_Contables"), "8");
  EXPECT_EQ(count(), "3");
}

TEST_F(LedgerRowsTest, UpdateIdReadsTheNextKeyOnTheClasssConnection) {
  insert(day(1), 0, 1);
  open();
  ledger.CnnBeginTrans();
  ConnectionPtr own = ledger.GetConnection();
  auto more = entry(day(2), 0, 2);
  *more.objCn = own;
  ledger.Insertar(more);
  ledger.UpdateId();
  EXPECT_EQ(field("Id"), "3") << "the entry of the open transaction counts";
  ledger.CancelBatch();
  ledger.CnnRollbackTrans();
}

TEST_F(LedgerRowsTest, UpdateIdOfNoRowsDoesNothing) {
  ledger.IniciaRs({}, "ninguno");
  shop.statements();
  ledger.UpdateId();
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_EQ(errorOf([&] { ClsClientesApuntesConta().UpdateId(); }), errors::kObjectNotSet);
}

// The rows take their keys in the order that is seen, so entries of one date change places.
TEST_F(LedgerRowsTest, UpdateIdUnderADescendingOrderTurnsTheEntriesRound) {
  insert(day(1), 0, 1);
  insert(day(2), 0, 2);
  open();
  ledger.SetOrder(0, " DESC", "seleccion");
  ledger.UpdateId();
  EXPECT_THAT(column("Haber"), ElementsAre("2", "1"));
  EXPECT_THAT(column("Id"), ElementsAre("3", "4"));
}

// ---- UpdateTotal

TEST_F(LedgerRowsTest, UpdateTotalSumsFromTheOldestEntryAndLeavesTheRowsPending) {
  put(1, day(5), "0, 100");
  put(2, day(6), "30, 0");
  put(3, day(7), "0, 5");
  open();
  shop.statements();
  ledger.UpdateTotal();
  EXPECT_THAT(shop.statements(), IsEmpty()) << "nothing is read and nothing written";
  EXPECT_TRUE(rows().Eof());
  EXPECT_THAT(column("Saldo"), ElementsAre("100", "70", "75"));
  EXPECT_THAT(balances(), ElementsAre(0, 0, 0));
  ledger.MoveFirst();
  ledger.Update();
  EXPECT_THAT(balances(), ElementsAre(100, 70, 75));
}

TEST_F(LedgerRowsTest, UpdateTotalWritesOnlyTheRowsThatDiffer) {
  put(1, day(5), "0, 100", 100);
  put(2, day(6), "30, 0", 71);
  open();
  ledger.UpdateTotal();
  rows().Filter(FilterGroup::kPending);
  EXPECT_EQ(rows().RecordCount(), 1);
  EXPECT_EQ(field("Saldo"), "70");
}

TEST_F(LedgerRowsTest, UpdateTotalInDescendingOrderWritesTheSameBalancesAsInAscendingOrder) {
  const auto fill = [&] {
    put(1, day(5), "0, 100");
    put(2, day(6), "30, 0");
    put(3, day(6), "0, 7");  // several of one day: their order is that of the Id
    put(4, day(6), "2, 0");
    put(5, day(7), "0, 5");
  };
  fill();
  open();
  totalAndWrite();
  const std::vector<double> ascending = balances();
  EXPECT_THAT(ascending, ElementsAre(100, 70, 77, 75, 80));

  shop.run("DELETE FROM Clientes_Apuntes_Contables");
  fill();
  open();
  ledger.SetOrder(0, " DESC", "seleccion");
  ledger.UpdateTotal();
  EXPECT_EQ(ledger.AbsolutePosition(), 1) << "back on the first row";
  EXPECT_EQ(field("Haber"), "5");
  ledger.Update();
  EXPECT_EQ(balances(), ascending);
}

TEST_F(LedgerRowsTest, UpdateTotalBeginsAtTheOldestEntryWhateverColumnOrdersTheView) {
  put(1, day(5), "0, 100");
  put(2, day(6), "30, 0");
  put(3, day(4), "0, 1");
  open();
  for (const auto& [index, mode] :
       std::vector<std::pair<std::int16_t, std::string>>{{4, ""}, {4, " DESC"}, {8, " DESC"}}) {
    ledger.SetOrder(index, mode, "seleccion");
    totalAndWrite();
    EXPECT_THAT(balances(), ElementsAre(1, 101, 71));
  }
}

TEST_F(LedgerRowsTest, UpdateTotalRoundsToTwoDecimalsAtEachStep) {
  for (int id = 1; id <= 3; ++id) put(id, day(5), "0, 0.004", 1);
  put(4, day(6), "0, 0.005", 1);
  open();
  totalAndWrite();
  EXPECT_THAT(balances(), ElementsAre(0, 0, 0, 0.01));
}

TEST_F(LedgerRowsTest, NullAmountsAndBalancesCountAsNothing) {
  put(1, day(5), "Null, 10");
  put(2, day(6), "Null, Null");
  shop.run("UPDATE Clientes_Apuntes_Contables SET Saldo = Null");
  open();
  totalAndWrite();
  EXPECT_THAT(balances(), ElementsAre(10, 10));
}

TEST_F(LedgerRowsTest, EntriesWithoutADateComeBeforeAllOthers) {
  put(1, day(5), "0, 10");
  put(2, Null(), "0, 1");
  open();
  totalAndWrite();
  EXPECT_THAT(balances(), ElementsAre(1, 11));
}

TEST_F(LedgerRowsTest, RowsThatAreNotStoredYetCountBehindTheOthersOfTheirDate) {
  insert(day(5), 0, 100);
  insert(day(6), 0, 1);
  open();
  rows().AddNew();
  rows().Field("Fecha").Value(day(5));
  rows().Field("Codigo").Value("00012");
  rows().Field("Haber").Value(7);
  rows().Update();
  ledger.UpdateTotal();
  ledger.UpdateId();
  ledger.Update();
  EXPECT_THAT(balances(), ElementsAre(100, 107, 108));
}

TEST_F(LedgerRowsTest, AFilterIsTrusted) {
  put(1, day(5), "0, 100", 100);
  put(2, day(6), "0, 10", 110);
  open();
  ledger.AplyFilter("Haber < 50");
  totalAndWrite();
  EXPECT_THAT(balances(), ElementsAre(100, 10));
}

TEST_F(LedgerRowsTest, UpdateTotalOfNoRowsDoesNothing) {
  ledger.IniciaRs({}, "ninguno");
  shop.statements();
  ledger.UpdateTotal();
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_EQ(errorOf([&] { ClsClientesApuntesConta().UpdateTotal(); }), errors::kObjectNotSet);
}

TEST_F(LedgerRowsTest, UpdateTotalMendsWhatDeleteToDateLeaves) {
  insert(day(5), 0, 100);
  insert(day(7), 0, 1);
  ledger.DeleteToDate("00012", day(6));
  EXPECT_THAT(balances(), ElementsAre(101));
  open();
  totalAndWrite();
  EXPECT_THAT(balances(), ElementsAre(1));
}

// Somebody else has written a balance meanwhile: what was read is not what is there.
TEST_F(LedgerRowsTest, ABalanceThatWasMovedMeanwhileIsAConflictOfItsRowOnly) {
  put(1, day(5), "0, 100");
  put(2, day(6), "0, 1");
  open();
  ledger.UpdateTotal();
  shop.run("UPDATE Clientes_Apuntes_Contables SET Saldo = 5 WHERE Id = 2");
  EXPECT_EQ(errorOf([&] {
              ledger.MoveFirst();
              ledger.Update();
            }),
            errors::kRowNotLocated);
  EXPECT_THAT(balances(), ElementsAre(100, 5));
}

}  // namespace
}  // namespace tavelor
