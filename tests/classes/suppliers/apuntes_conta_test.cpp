// SPDX-License-Identifier: MIT
// Suppliers' ledgers: what is written, and which balances move and which do not.
#include <algorithm>
#include <cmath>
#include <random>

#include "tavelor/services/clock.hpp"
#include "tavelor/suppliers/proveedores_apuntes_conta.hpp"
#include "tests/classes/corpus.hpp"
#include "tests/classes/report_path.hpp"
#include "tests/classes/running_account.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

template <typename Class>
concept HasFreeCodes = requires(Class& of) {
  of.CodigoLibre("1");
};

std::string ledgerStatement(const std::string& name) {
  return test::corpusStatement({"suppliers-proveedores_apuntes_conta"},
                               "ClsProveedoresApuntesConta." + name);
}

class ClsProveedoresApuntesContaTest : public test::RunningAccountTest<ClsProveedoresApuntesConta> {
 protected:
  void open(const std::string& supplier = "00012") { ledger.IniciaRs({}, "seleccion", supplier); }
  void totalAndWrite() {
    open();
    call("UpdateTotal");
    ledger.MoveFirst();
    call("Update");
  }
  Variant call(const char* member, std::vector<Variant> arguments = {}) {
    return ClsProveedoresApuntesConta::component().call(ledger, member, arguments);
  }
  std::vector<std::string> column(std::string_view name) {
    std::vector<std::string> found;
    for (ledger.MoveFirst(); !rows().Eof(); rows().MoveNext()) found.push_back(field(name));
    return found;
  }
};

// ---- The class

TEST_F(ClsProveedoresApuntesContaTest, TheSlotsStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsProveedoresApuntesConta::component().members()) {
    names.push_back(slot.name);
  }
  EXPECT_THAT(
      names,
      ElementsAre("GetConnectionStrToRpt", "sClassName", "GetConnection", "GetConnectionStr",
                  "DeleteAll", "Eliminar", "Insertar", "IniciaRs", "NuevoCodigo", "Saldo",
                  "SeguridadPermiso", "EditingRecord", "AbsolutePosition", "AddNew", "Delete",
                  "MoveToBookmark", "Requery", "UpdateId", "UpdateTotal", "Update",
                  "UpdateadAffectCurrent", "CnnBeginTrans", "CnnCommitTrans", "CnnRollbackTrans",
                  "Cancel", "CancelBatch", "MoveFirst", "MoveLast", "MoveNext", "MovePrevious",
                  "ExistenRegistros", "FindRecord", "ValidaDefinedSize", "ValidaKey", "ValidaValue",
                  "GetFilter", "AplyFilter", "CreateFilter", "SetFilter", "SetOrder", "GetOrder",
                  "GetHtmlFile", "ToHtmlGrid"));
}

TEST_F(ClsProveedoresApuntesContaTest, ItLacksWhatCorrectsAndShortensACustomersLedger) {
  for (const char* lacking :
       {"DeleteToDate", "Modificarnovale", "Saldo_actual", "GetId", "GetRptPath", "CodigoLibre"}) {
    EXPECT_EQ(errorOf([&] { ClsProveedoresApuntesConta::component().member(lacking); }),
              errors::kMemberNotFound)
        << lacking;
  }
  EXPECT_FALSE(test::HasReportPath<ClsProveedoresApuntesConta>);
  EXPECT_FALSE(HasFreeCodes<ClsProveedoresApuntesConta>);
}

TEST_F(ClsProveedoresApuntesContaTest, TheModes) {
  insert(day(1), 0, 1, 0, "00012");
  insert(day(1), 0, 2, 0, "00013");
  const Opened one = RunningAccountTest::open("seleccion", "00012");
  EXPECT_EQ(one.statement, ledgerStatement("IniciaRs / seleccion"));
  EXPECT_EQ(one.word, "seleccion");
  EXPECT_EQ(rows().RecordCount(), 1);
  EXPECT_THAT(fieldNames(), ElementsAre("Fecha", "Concepto", "Tipo", "Debe", "Haber", "Saldo",
                                        "Estado", "Documento", "Id", "Serie", "Codigo"));
  EXPECT_EQ(RunningAccountTest::open("ninguno").statement, ledgerStatement("IniciaRs / ninguno"));
  EXPECT_FALSE(ledger.ExistenRegistros());
  const Opened all = RunningAccountTest::open("loquesea");
  EXPECT_EQ(all.statement, ledgerStatement("IniciaRs / todos"));
  EXPECT_EQ(all.word, "todos");
  EXPECT_EQ(rows().RecordCount(), 2);
  EXPECT_THAT(ledger.DataMembers(), ElementsAre("Primary"));
  EXPECT_EQ(ledger.sClassName(), "Proveedores_Apuntes_Contables");
}

TEST_F(ClsProveedoresApuntesContaTest, NuevoCodigoIsTheGreatestIdPlusOne) {
  EXPECT_EQ(shown(call("NuevoCodigo")), "1");
  EXPECT_EQ(statement(), ledgerStatement("NuevoCodigo"));
  insert(day(1), 0, 1);
  EXPECT_EQ(shown(ledger.NuevoCodigo()), "2");
}

// ---- Insertar and Saldo

TEST_F(ClsProveedoresApuntesContaTest, InsertarReadsTheBalanceWritesTheEntryAndMovesTheLaterOnes) {
  shop.run("INSERT INTO " + table() +
           " (Id, Codigo, Fecha, Debe, Haber, Saldo) VALUES (7, '00012', #3/5/2026#, 151.75, 0, "
           "-151.75)");
  insert(day(9), 0, 1);
  shop.run("UPDATE " + table() + " SET Id = 6 WHERE Id = 8");
  shop.statements();
  call("Insertar", {"A", "00012", day(5), "Factura 260001", "H", 0, 121.5, 3, 260001});
  EXPECT_THAT(shop.statements(),
              ElementsAre(ledgerStatement("NuevoCodigo"), ledgerStatement("Saldo"),
                          ledgerStatement("Insertar / entry"),
                          HasSubstr("SET Saldo = Saldo + 121.5 WHERE ((Fecha > #03/05/2026#)")));
  EXPECT_THAT(balances(), ElementsAre(-151.75, -30.25, -29.25));
}

TEST_F(ClsProveedoresApuntesContaTest, ADebitComesWithItsSignBehindThePlus) {
  insert(day(9), 0, 100);
  shop.statements();
  insert(day(5), 121.5, 0);
  EXPECT_EQ(shop.statements().back(), ledgerStatement("Insertar / later balances"));
  EXPECT_THAT(balances(), ElementsAre(-121.5, -21.5));
}

TEST_F(ClsProveedoresApuntesContaTest, AmountsAreStoredWithTheDecimalsOfTheStatement) {
  insert(day(5), 0, 0.1234567);
  insert(day(6), 0, 0.00005);
  EXPECT_EQ(shop.text("SELECT Haber FROM " + table() + " WHERE Id = 1"), "0,123457");
  EXPECT_THAT(balances(), ElementsAre(0.12, 0.12));
}

TEST_F(ClsProveedoresApuntesContaTest, SaldoSumsUpToTheDateAndIncludingItInTheFormatOfAmounts) {
  insert(day(5), 0, 100.005);
  insert(day(6), 30, 0);
  insert(day(6), 0, 5, 0, "00013");
  shop.statements();
  EXPECT_EQ(call("Saldo", {"00012", day(5)}), Variant(100.01));
  EXPECT_EQ(statement(), ledgerStatement("Saldo"));
  EXPECT_EQ(ledger.Saldo("00012", day(4)), 0);
  EXPECT_EQ(ledger.Saldo("00012", day(6)), 70.01);
}

TEST_F(ClsProveedoresApuntesContaTest, DeleteAllDeletesTheEntriesOfOneSupplier) {
  insert(day(5), 0, 100, 0, "00012");
  insert(day(5), 0, 100, 0, "00013");
  shop.statements();
  call("DeleteAll", {"00012"});
  EXPECT_EQ(statement(), ledgerStatement("DeleteAll"));
  EXPECT_EQ(count(), "1");
}

// ---- Eliminar

TEST_F(ClsProveedoresApuntesContaTest, EliminarTakesTheLaterBalancesUpAndDownAgain) {
  for (int i = 0; i < 7; ++i) insert(day(1), 0, 0);
  auto invoice = entry(day(5), 0, 121.5, 260001);
  invoice.iEstado = 3;
  ledger.Insertar(invoice);
  shop.statements();
  call("Eliminar", {3, 260001});
  EXPECT_THAT(shop.statements(), ElementsAre(ledgerStatement("Eliminar / entries of a document"),
                                             ledgerStatement("Eliminar / entry"),
                                             ledgerStatement("Eliminar / first update"),
                                             ledgerStatement("Eliminar / second update")));
}

TEST_F(ClsProveedoresApuntesContaTest, ADeletedDebitComesWithItsSignBehindBothSigns) {
  insert(day(5), 121.5, 0, 1);
  shop.statements();
  ledger.Eliminar(1, 1);
  const std::vector<std::string> ran = shop.statements();
  ASSERT_EQ(ran.size(), 4U);
  EXPECT_EQ(ran[2], ledgerStatement("Insertar / later balances")) << "the same statement";
  EXPECT_EQ(ran[3], ledgerStatement("Eliminar / second update, negative movement"));
}

TEST_F(ClsProveedoresApuntesContaTest,
       DeletingAnEntryLeavesTheStoredBalancesOfItsDayAndOfLaterDaysUntilUpdateTotal) {
  insert(day(4), 0, 10);
  insert(day(5), 0, 100, 1);
  insert(day(5), 0, 7);
  insert(day(6), 2, 0);
  EXPECT_THAT(balances(), ElementsAre(10, 110, 117, 115));
  ledger.Eliminar(1, 1);
  EXPECT_THAT(balances(), ElementsAre(10, 117, 115));
  totalAndWrite();
  EXPECT_THAT(balances(), ElementsAre(10, 17, 15)) << "lower by 100";
}

// So a statement of account shows a step that no entry explains.
TEST_F(ClsProveedoresApuntesContaTest, TheNextEntryNoLongerCountsADeletedOne) {
  insert(day(5), 0, 100, 1);
  insert(day(6), 0, 7);
  ledger.Eliminar(1, 1);
  EXPECT_EQ(ledger.Saldo("00012", day(9)), 7);
  insert(day(8), 0, 1);
  EXPECT_THAT(balances(), ElementsAre(107, 8));
}

TEST_F(ClsProveedoresApuntesContaTest, EliminarTakesEveryEntryOfTheDocumentAndNoOther) {
  insert(day(5), 0, 100, 1);
  insert(day(6), 0, 50, 1);
  insert(day(6), 0, 3, 2);
  auto otherState = entry(day(7), 0, 1, 1);
  otherState.iEstado = 2;
  ledger.Insertar(otherState);
  ledger.Eliminar(1, 1);
  EXPECT_THAT(balances(), ElementsAre(153, 154));
}

TEST_F(ClsProveedoresApuntesContaTest, EliminarOfADocumentWithoutEntriesDoesNothing) {
  insert(day(5), 0, 100, 1);
  shop.statements();
  ConnectionPtr connection;
  ledger.Eliminar(1, 2, connection);
  EXPECT_EQ(shop.statements().size(), 1U);
  EXPECT_NE(connection, nullptr);
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsProveedoresApuntesContaTest, NullAmountsOfADeletedEntryCountAsZero) {
  insert(day(6), 0, 5, 2);
  shop.run("INSERT INTO " + table() +
           " (Id, Codigo, Fecha, Estado, Documento_E) VALUES (9, '00012', #3/5/2026#, 1, 1)");
  shop.statements();
  ledger.Eliminar(1, 1);
  EXPECT_THAT(shop.statements().back(), HasSubstr("Saldo = Saldo - 0 WHERE"));
  EXPECT_THAT(balances(), ElementsAre(5));
}

// The balance behind it is so wide that it cannot be taken up: no number holds both.
TEST_F(ClsProveedoresApuntesContaTest, AFailureBehindADeletionLeavesTheEntryDeleted) {
  insert(day(5), 0, 100, 1);
  insert(day(6), 0, 1);
  shop.run("UPDATE " + table() + " SET Haber = 1E308 WHERE Id = 1");
  shop.run("UPDATE " + table() + " SET Saldo = 1E308 WHERE Id = 2");
  ConnectionPtr connection = DataSession().OpenConnection(1);
  connection->BeginTrans();
  EXPECT_NE(errorOf([&] { ledger.Eliminar(1, 1, connection); }), 0);
  connection->RollbackTrans();
  EXPECT_EQ(count(), "2") << "a transaction of the caller's brings it back";

  EXPECT_NE(errorOf([&] { ledger.Eliminar(1, 1); }), 0);
  EXPECT_EQ(count(), "1");
  totalAndWrite();
  EXPECT_THAT(balances(), ElementsAre(1)) << "and UpdateTotal mends the rest";
}

// In any order, beside sums that are made without the class: an entry is right when it is written
// and moves with those written before it later on; deletions move nothing; UpdateTotal mends all.
TEST_F(ClsProveedoresApuntesContaTest, BalancesAfterRandomEntriesAndDeletions) {
  struct Entry {
    int id, day, document;
    long long movement, balance;
  };
  shop.apartment().trace().turn(false);
  std::mt19937 dice(20261122);
  const auto below = [&](int limit) { return std::uniform_int_distribution(0, limit - 1)(dice); };
  for (int sequence = 0; sequence < 20; ++sequence) {
    ledger.DeleteAll("00012");
    std::vector<Entry> book;
    const auto stored = [&] {
      std::vector<long long> cents;
      for (const double balance : balances()) cents.push_back(std::llround(balance * 100));
      return cents;
    };
    const auto expected = [&] {
      std::vector<long long> cents;
      for (const Entry& each : book) cents.push_back(each.balance);
      return cents;
    };
    for (int step = 0; step < 25; ++step) {
      const int document = below(8);
      if (below(4) == 0) {
        ledger.Eliminar(1, document);
        std::erase_if(book, [&](const Entry& each) { return each.document == document; });
      } else {
        const int id = static_cast<int>(ledger.NuevoCodigo().toInt32(shop.apartment().locale()));
        const int on = 1 + below(5);
        const long long cents = below(20'000) - 10'000;
        insert(day(on), cents < 0 ? static_cast<double>(-cents) / 100 : 0,
               cents > 0 ? static_cast<double>(cents) / 100 : 0, document);
        long long balance = cents;
        for (Entry& each : book) {
          if (each.day <= on) balance += each.movement;
          if (each.day > on) each.balance += cents;
        }
        book.push_back({id, on, document, cents, balance});
        std::stable_sort(book.begin(), book.end(), [](const Entry& a, const Entry& b) {
          return a.day != b.day ? a.day < b.day : a.id < b.id;
        });
      }
      ASSERT_EQ(stored(), expected()) << "sequence " << sequence << ", step " << step;
    }
    totalAndWrite();
    long long total = 0;
    for (Entry& each : book) each.balance = total += each.movement;
    ASSERT_EQ(stored(), expected()) << "sequence " << sequence;
  }
}

// ---- The rows in a grid

TEST_F(ClsProveedoresApuntesContaTest, AddNewGivesKeySupplierTodayAndZeros) {
  shop.apartment().clock().fix(Date::of({2026, 3, 5, 8, 5, 9}));
  insert(day(1), 0, 1);
  ledger.IniciaRs({}, "ninguno");
  call("AddNew", {"00012", true});
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
                                                        {"Documento", "0"}}) {
    EXPECT_EQ(field(name), value) << name;
  }
  call("Cancel");
  EXPECT_FALSE(ledger.ExistenRegistros());
}

TEST_F(ClsProveedoresApuntesContaTest, UpdateWritesAllRowsAndDeleteOnlyMarks) {
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
  EXPECT_EQ(shop.text("SELECT Concepto FROM " + table()), "uno");
}

TEST_F(ClsProveedoresApuntesContaTest, UpdateadAffectCurrentGivesTheCurrentRowItsSupplier) {
  insert(day(1), 0, 1);
  insert(day(2), 0, 2);
  open();
  ledger.MoveNext();
  call("UpdateadAffectCurrent", {"00013"});
  EXPECT_THAT(column("Codigo"), ElementsAre("00012", "00013"));
  EXPECT_EQ(balances("00013").size(), 0U) << "nothing is written yet";
  call("CancelBatch");
  EXPECT_THAT(column("Codigo"), ElementsAre("00012", "00012"));
}

TEST_F(ClsProveedoresApuntesContaTest, UpdateIdGivesEveryRowANewKeyFromTheNextOneOn) {
  insert(day(1), 0, 1);
  insert(day(2), 0, 2);
  open();
  shop.statements();
  call("UpdateId");
  EXPECT_EQ(statement(), ledgerStatement("NuevoCodigo"));
  EXPECT_EQ(ledger.AbsolutePosition(), 1);
  EXPECT_THAT(column("Id"), ElementsAre("3", "4"));
}

TEST_F(ClsProveedoresApuntesContaTest, UpdateTotalWritesTheSameBalancesInDescendingOrder) {
  for (const std::string mode : {"", " DESC"}) {
    shop.run("DELETE FROM " + table());
    insert(day(5), 0, 100);
    insert(day(5), 0, 7);
    insert(day(6), 30, 0);
    shop.run("UPDATE " + table() + " SET Saldo = Null");
    open();
    ledger.SetOrder(0, mode, "seleccion");
    shop.statements();
    ledger.UpdateTotal();
    EXPECT_THAT(shop.statements(), IsEmpty());
    EXPECT_EQ(rows().Eof(), mode.empty());
    ledger.MoveFirst();
    ledger.Update();
    EXPECT_THAT(balances(), ElementsAre(100, 107, 77)) << mode;
  }
}

// ---- Its apartment, and values that try to leave their place

TEST_F(ClsProveedoresApuntesContaTest, WorksInNoOtherApartmentThanItsOwn) {
  open();
  test::Shop other;
  ConnectionPtr connection;
  EXPECT_EQ(errorOf([&] { ledger.Eliminar(1, 1, connection); }), errors::kInvalidCall);
  EXPECT_EQ(connection, nullptr);
  EXPECT_EQ(errorOf([&] { ledger.Saldo("00012", day(1)); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { insert(day(1), 0, 1); }), errors::kInvalidCall);
  EXPECT_EQ(errorOf([&] { ledger.AddNew("00012", true); }), errors::kInvalidCall);
  EXPECT_FALSE(ledger.EditingRecord()) << "no row is left behind";
}

TEST_F(ClsProveedoresApuntesContaTest, HostileTextInEveryValueChangesNothing) {
  insert(day(5), 0, 100, 1);
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { ledger.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { ledger.Eliminar(1, attack); }), 0);
    EXPECT_NE(errorOf([&] { ledger.Saldo(attack, day(9)); }), 0);
    EXPECT_NE(errorOf([&] { ledger.IniciaRs({}, "seleccion", attack); }), 0);
    auto hostile = entry(day(5), 0, 1);
    hostile.sConcepto = attack;
    EXPECT_NE(errorOf([&] { ledger.Insertar(hostile); }), 0);
    EXPECT_NE(errorOf([&] { insert(day(5), 0, 1, 2, attack); }), 0);
  }
  EXPECT_THAT(balances(), ElementsAre(100));
  EXPECT_EQ(count(), "1");
}

}  // namespace
}  // namespace tavelor
