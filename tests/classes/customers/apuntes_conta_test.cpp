// SPDX-License-Identifier: MIT
// The entries of customers' ledgers: what is written, and which balances move.
#include "tests/classes/customers/apuntes_conta.hpp"

#include <cmath>
#include <limits>

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kTable = "Clientes_Apuntes_Contables";
const std::string kTodos =
    "SELECT   Fecha, Concepto, Debe_Haber as Tipo , Debe, Haber, Saldo, Estado, Documento_E as "
    "Documento, Id, Serie, Codigo FROM Clientes_Apuntes_Contables";

class ClsClientesApuntesContaTest : public test::LedgerTest {};

// ---- The class

TEST_F(ClsClientesApuntesContaTest, TheSlotsStandInOrder) {
  std::vector<std::string> names;
  for (const Member& slot : ClsClientesApuntesConta::component().members()) {
    names.push_back(slot.name);
  }
  EXPECT_THAT(
      names,
      ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                  "GetConnectionStr", "DeleteAll", "DeleteToDate", "Eliminar", "Modificarnovale",
                  "Insertar", "IniciaRs", "NuevoCodigo", "Saldo", "Saldo_actual", "GetId",
                  "SeguridadPermiso", "EditingRecord", "AbsolutePosition", "AddNew", "Delete",
                  "MoveToBookmark", "Requery", "UpdateId", "UpdateTotal", "Update",
                  "UpdateadAffectCurrent", "CnnBeginTrans", "CnnCommitTrans", "CnnRollbackTrans",
                  "Cancel", "CancelBatch", "MoveFirst", "MoveLast", "MoveNext", "MovePrevious",
                  "ExistenRegistros", "FindRecord", "ValidaDefinedSize", "ValidaKey", "ValidaValue",
                  "GetFilter", "AplyFilter", "CreateFilter", "SetFilter", "SetOrder", "GetOrder",
                  "GetHtmlFile", "ToHtmlGrid"));
}

TEST_F(ClsClientesApuntesContaTest, TheStateIsByReferenceOnlyWhereAnEntryIsCorrected) {
  EXPECT_EQ(signature("Insertar"),
            "Insertar(sSerie As String, sCodigo As String, dtFecha As Variant, sConcepto As "
            "String, sD_H As String, dDebe As Double, dHaber As Double, iEstado As Integer, vDoc_E "
            "As Variant, [inout objCn As Connection])");
  EXPECT_THAT(signature("Modificarnovale"), HasSubstr("inout iEstado As Integer, vDoc_E"));
  EXPECT_EQ(signature("AddNew"), "AddNew(inout vId As Variant, [bDefVal As Boolean])");
}

TEST_F(ClsClientesApuntesContaTest, TheModes) {
  insert(day(1), 0, 1, 0, "00012");
  insert(day(1), 0, 2, 0, "00013");
  insert(day(1), 0, 3, 0, "0");
  const Opened one = open("seleccion", "00012");
  EXPECT_EQ(one.statement, kTodos + " WHERE Codigo =  '00012'");
  EXPECT_EQ(one.word, "seleccion");
  EXPECT_EQ(rows().RecordCount(), 1);
  EXPECT_THAT(fieldNames(), ElementsAre("Fecha", "Concepto", "Tipo", "Debe", "Haber", "Saldo",
                                        "Estado", "Documento", "Id", "Serie", "Codigo"));
  const Opened all = open("loquesea");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
  EXPECT_EQ(rows().RecordCount(), 3);
}

TEST_F(ClsClientesApuntesContaTest, NingunoShowsNothingUnlessACustomerHasTheCodeZero) {
  insert(day(1), 0, 1, 0, "00012");
  EXPECT_EQ(open("ninguno").statement, kTodos + " Where (Codigo = '0')");
  EXPECT_FALSE(ledger.ExistenRegistros());
  insert(day(1), 0, 3, 0, "0");
  open("ninguno");
  EXPECT_EQ(rows().RecordCount(), 1);
}

TEST_F(ClsClientesApuntesContaTest, TheRecordSetRidesOnTheCallersConnection) {
  ConnectionPtr connection = DataSession().OpenConnection(1);
  ledger.IniciaRs(connection, "todos");
  EXPECT_EQ(ledger.GetConnection(), connection);
  EXPECT_EQ(ledger.sClassName(), kTable);
}

TEST_F(ClsClientesApuntesContaTest, NuevoCodigoIsTheGreatestIdPlusOne) {
  EXPECT_EQ(shown(ledger.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Clientes_Apuntes_Contables");
  shop.run("INSERT INTO Clientes_Apuntes_Contables (Id) VALUES (123456)");
  EXPECT_EQ(shown(ledger.NuevoCodigo()), "123457");
}

// ---- Insertar

TEST_F(ClsClientesApuntesContaTest, InsertarReadsTheBalanceWritesTheEntryAndMovesTheLaterOnes) {
  insert(day(1), 0, 100);
  shop.statements();
  ledger.Insertar({.sSerie = "B",
                   .sCodigo = "00012",
                   .dtFecha = day(5),
                   .sConcepto = "Factura 12",
                   .sD_H = "H",
                   .dDebe = 0,
                   .dHaber = 120.5,
                   .iEstado = 3,
                   .vDoc_E = 260000012});
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          "SELECT MAX(Id) AS Nuevo_Codigo FROM Clientes_Apuntes_Contables",
          "SELECT  Sum(Debe) AS SumaDeDebe, Sum(Haber) AS SumaDeHaber From "
          "Clientes_Apuntes_Contables WHERE ((Fecha <= #03/05/2026#) AND (Codigo='00012'));",
          "INSERT INTO Clientes_Apuntes_Contables ( Id, Serie, Codigo, Fecha, Concepto, "
          "Debe_Haber, Debe, Haber, Saldo, Estado, Documento_E ) Values ( 2 , 'B', '00012', "
          "#03/05/2026#, 'Factura 12', 'H', 0, 120.5, 220.5, 3, 260000012 );",
          "UPDATE Clientes_Apuntes_Contables SET Saldo = Saldo + 120.5 WHERE ((Fecha > "
          "#03/05/2026#) AND (Codigo='00012'));"));
  EXPECT_EQ(
      shop.text("SELECT Serie & Debe_Haber & Concepto & Estado FROM " + kTable + " WHERE Id = 2"),
      "BHFactura 123");
}

TEST_F(ClsClientesApuntesContaTest, ADebitOfThePastTakesTheLaterBalanceDown) {
  insert(day(10), 0, 100);
  insert(day(5), 50, 0);
  EXPECT_THAT(balances(), ElementsAre(-50, 50));
}

TEST_F(ClsClientesApuntesContaTest, EntriesOfOneDateFollowEachOtherByTheirId) {
  insert(day(5), 0, 100);
  insert(day(5), 30, 0);
  EXPECT_THAT(balances(), ElementsAre(100, 70));
  insert(day(5), 0, 1);
  EXPECT_THAT(balances(), ElementsAre(100, 70, 71));
}

TEST_F(ClsClientesApuntesContaTest, ATimeOfTheDayOrdersEntriesToo) {
  insert(Date::of({2026, 3, 5, 18, 0, 0}), 0, 100);
  insert(Date::of({2026, 3, 5, 9, 30, 0}), 0, 7);
  EXPECT_THAT(balances(), ElementsAre(7, 107));
}

TEST_F(ClsClientesApuntesContaTest, OtherCustomersStayAsTheyAre) {
  insert(day(10), 0, 100, 0, "00013");
  insert(day(5), 0, 50);
  EXPECT_THAT(balances("00013"), ElementsAre(100));
  EXPECT_THAT(balances(), ElementsAre(50));
}

TEST_F(ClsClientesApuntesContaTest, ADateAsTextIsReadByTheLocale) {
  insert("5/3/2026", 0, 10);
  EXPECT_EQ(shop.text("SELECT Fecha FROM " + kTable), "05/03/2026");
}

// Only the balance of Insertar goes through the shop's format of amounts: amounts keep six
// decimals, and what moves later balances too.
TEST_F(ClsClientesApuntesContaTest, AmountsBelowACentStayInTheAmountsAndLeaveTheNewBalance) {
  insert(day(10), 0, 100);
  insert(day(5), 0, 0.1234567);
  EXPECT_EQ(shop.text("SELECT Haber FROM " + kTable + " WHERE Id = 2"), "0,123457");
  EXPECT_THAT(balances(), ElementsAre(0.12, 100.123457));
}

TEST_F(ClsClientesApuntesContaTest, AMovementThatIsNotFiniteIsRefusedBeforeAnythingIsWritten) {
  constexpr double kLargest = std::numeric_limits<double>::max();
  EXPECT_EQ(errorOf([&] { insert(day(5), -kLargest, kLargest); }), errors::kOverflow);
  EXPECT_EQ(errorOf([&] { insert(day(5), 0, std::nan("")); }), errors::kOverflow);
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsClientesApuntesContaTest, ATextThatIsTooLongOrBreaksTheStatementLeavesNothingHalfDone) {
  insert(day(10), 0, 100);
  auto wide = entry(day(5), 0, 50);
  wide.sSerie = "ABCDEF";
  EXPECT_NE(errorOf([&] { ledger.Insertar(wide); }), 0);
  auto quoted = entry(day(5), 0, 50);
  quoted.sConcepto = "Factura d'abril";
  EXPECT_EQ(errorOf([&] { ledger.Insertar(quoted); }), errors::kSyntax);
  EXPECT_THAT(balances(), ElementsAre(100));
}

TEST_F(ClsClientesApuntesContaTest, ADateOrADocumentThatIsNoneIsRefused) {
  EXPECT_EQ(errorOf([&] { insert("ayer", 0, 50); }), errors::kTypeMismatch);
  EXPECT_EQ(errorOf([&] { insert(Null(), 0, 50); }), errors::kInvalidUseOfNull);
  auto none = entry(day(5), 0, 50);
  none.vDoc_E = Variant();
  EXPECT_EQ(errorOf([&] { ledger.Insertar(none); }), errors::kSyntax);
  EXPECT_EQ(count(), "0");
}

// Nobody looks for the customer: its ledger may be kept before and after it.
TEST_F(ClsClientesApuntesContaTest, AnEntryOfACustomerWhoIsNotThereIsWritten) {
  insert(day(5), 0, 50, 0, "nadie");
  EXPECT_THAT(balances("nadie"), ElementsAre(50));
}

TEST_F(ClsClientesApuntesContaTest, InsertarFillsAnEmptyConnectionAndRunsOnAGivenOne) {
  ConnectionPtr connection;
  ledger.Insertar({.sCodigo = "00012", .dtFecha = day(5), .vDoc_E = 0, .objCn = connection});
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  ledger.Insertar({.sCodigo = "00012", .dtFecha = day(6), .vDoc_E = 0, .objCn = connection});
  connection->RollbackTrans();
  EXPECT_EQ(count(), "1");
}

// ---- Saldo

TEST_F(ClsClientesApuntesContaTest, SaldoSumsUpToTheDateAndIncludingIt) {
  insert(day(5), 0, 100);
  insert(day(6), 30, 0);
  insert(day(6), 0, 5, 0, "00013");
  shop.statements();
  EXPECT_EQ(ledger.Saldo("00012", day(5)), 100);
  EXPECT_EQ(statement(),
            "SELECT  Sum(Debe) AS SumaDeDebe, Sum(Haber) AS SumaDeHaber From "
            "Clientes_Apuntes_Contables WHERE ((Fecha <= #03/05/2026#) AND (Codigo='00012'));");
  EXPECT_EQ(ledger.Saldo("00012", day(4)), 0);
  EXPECT_EQ(ledger.Saldo("00012", day(6)), 70);
  shop.statements();
  EXPECT_EQ(ledger.Saldo_actual("00012"), 70);
  EXPECT_EQ(statement(),
            "SELECT  Sum(Debe) AS SumaDeDebe, Sum(Haber) AS SumaDeHaber From "
            "Clientes_Apuntes_Contables WHERE ((Codigo='00012'));");
}

TEST_F(ClsClientesApuntesContaTest, ANullSumIsZero) {
  EXPECT_EQ(ledger.Saldo_actual("00012"), 0);
  shop.run("INSERT INTO " + kTable +
           " (Id, Codigo, Fecha, Haber) VALUES (1, '00012', #3/5/2026#, 9)");
  EXPECT_EQ(ledger.Saldo_actual("00012"), 9) << "Debe is Null in all entries";
}

TEST_F(ClsClientesApuntesContaTest, SaldoIsRoundedByTheShopsFormatOfAmounts) {
  insert(day(5), 0, 1.005);
  EXPECT_EQ(ledger.Saldo_actual("00012"), 1.01);
  EXPECT_EQ(ledger.Saldo("00012", day(5)), 1.01);
}

// ---- Eliminar

TEST_F(ClsClientesApuntesContaTest, EliminarTakesEachEntryAndMovesTheOnesBehindIt) {
  insert(day(5), 0, 120.5, 260000012);
  insert(day(5), 20.5, 0, 260000012);
  shop.statements();
  ledger.Eliminar(1, 260000012);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT Id, Codigo, Fecha, Debe, Haber From Clientes_Apuntes_Contables WHERE "
                  "((Estado = 1 ) AND (Documento_E = 260000012 ));",
                  "DELETE  FROM Clientes_Apuntes_Contables WHERE (Id = 1)",
                  "UPDATE Clientes_Apuntes_Contables SET Saldo = Saldo - 120.5 WHERE ((Id > 1) and "
                  "(Fecha = #03/05/2026#) AND (Codigo='00012'));",
                  "UPDATE Clientes_Apuntes_Contables SET Saldo = Saldo - 120.5 WHERE ((Fecha > "
                  "#03/05/2026#) AND (Codigo='00012'));",
                  "DELETE  FROM Clientes_Apuntes_Contables WHERE (Id = 2)",
                  "UPDATE Clientes_Apuntes_Contables SET Saldo = Saldo - -20.5 WHERE ((Id > 2) and "
                  "(Fecha = #03/05/2026#) AND (Codigo='00012'));",
                  "UPDATE Clientes_Apuntes_Contables SET Saldo = Saldo - -20.5 WHERE ((Fecha > "
                  "#03/05/2026#) AND (Codigo='00012'));"));
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsClientesApuntesContaTest, DeletingAnEntryChangesTheSameDayBehindItAndNotBeforeIt) {
  for (const int id : {6, 7, 8}) {
    shop.run("INSERT INTO " + kTable +
             " (Id, Codigo, Fecha, Debe, Haber, Saldo, Estado, Documento_E) VALUES (" +
             std::to_string(id) + ", '00012', #3/5/2026#, 0, 10, " + std::to_string((id - 5) * 10) +
             ", 1, " + std::to_string(id) + ")");
  }
  insert(day(9), 0, 5);
  ledger.Eliminar(1, 7);
  EXPECT_THAT(balances(), ElementsAre(10, 20, 25));
}

TEST_F(ClsClientesApuntesContaTest, EliminarOfADocumentWithoutEntriesDoesNothing) {
  insert(day(5), 0, 100, 1);
  shop.statements();
  ledger.Eliminar(1, 2);
  ledger.Eliminar(2, 1);
  EXPECT_EQ(shop.statements().size(), 2U);
  EXPECT_THAT(balances(), ElementsAre(100));
}

TEST_F(ClsClientesApuntesContaTest, ADocumentMayHaveEntriesOfSeveralCustomers) {
  insert(day(5), 0, 100, 1, "00012");
  insert(day(5), 0, 50, 1, "00013");
  insert(day(6), 0, 1, 2, "00012");
  insert(day(6), 0, 2, 2, "00013");
  ledger.Eliminar(1, 1);
  EXPECT_THAT(balances("00012"), ElementsAre(1));
  EXPECT_THAT(balances("00013"), ElementsAre(2));
}

TEST_F(ClsClientesApuntesContaTest, NullAmountsOfADeletedEntryCountAsZero) {
  insert(day(6), 0, 5, 2);
  shop.run(
      "INSERT INTO " + kTable +
      " (Id, Codigo, Fecha, Saldo, Estado, Documento_E) VALUES (9, '00012', #3/5/2026#, 0, 1, 1)");
  shop.statements();
  ledger.Eliminar(1, 1);
  EXPECT_THAT(shop.statements().back(), HasSubstr("Saldo = Saldo - 0 WHERE ((Fecha > "));
  EXPECT_THAT(balances(), ElementsAre(5));
}

TEST_F(ClsClientesApuntesContaTest, AnEntryWithoutADateIsNotDeletedByItsDocument) {
  shop.run("INSERT INTO " + kTable +
           " (Id, Codigo, Haber, Estado, Documento_E) VALUES (9, '00012', 5, 1, 1)");
  EXPECT_EQ(errorOf([&] { ledger.Eliminar(1, 1); }), errors::kInvalidUseOfNull);
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsClientesApuntesContaTest, EliminarTakesAConnectionBeforeItReads) {
  ConnectionPtr connection;
  ledger.Eliminar(1, 1, connection);
  EXPECT_NE(connection, nullptr);
}

// ---- Modificarnovale

TEST_F(ClsClientesApuntesContaTest,
       ModificarnovaleWritesAmountsBetweenQuotesAsTheLocalePrintsThem) {
  insert(day(5), 0, 100, 260000012);
  shop.statements();
  correct(day(5), 0, 120.5, 260000012);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("SELECT  Id From Clientes_Apuntes_Contables WHERE ((Estado = 1 ) AND "
                  "(Documento_E = 260000012 ));",
                  "SELECT  Sum(Debe) AS SumaDeDebe, Sum(Haber) AS SumaDeHaber From "
                  "Clientes_Apuntes_Contables WHERE ((Fecha <= #03/05/2026#) AND "
                  "(Codigo='00012'));",
                  "UPDATE Clientes_Apuntes_Contables SET Saldo =  '220,5' , Debe = '0', Haber = "
                  "'120,5' WHERE ((Estado = 1 ) AND (Documento_E = 260000012 ));",
                  "UPDATE Clientes_Apuntes_Contables SET Saldo = Saldo + '120,5' WHERE ((Fecha >= "
                  "#03/05/2026# ) AND (Codigo='00012') And (ID > 1 ));"));
  EXPECT_EQ(shop.text("SELECT Haber FROM " + kTable), "120,5");
}

TEST_F(ClsClientesApuntesContaTest, ACorrectionAddsTheWholeNewMovementToTheLaterBalances) {
  insert(day(5), 0, 100, 1);
  insert(day(6), 0, 1, 2);
  correct(day(5), 0, 120, 1);
  EXPECT_THAT(balances(), ElementsAre(220, 221)) << "120, not 20, and the old 100 once more";
}

TEST_F(ClsClientesApuntesContaTest, ACorrectionPassesOverLaterEntriesOfALowerId) {
  insert(day(10), 0, 1, 1);
  insert(day(5), 0, 100, 2);
  insert(day(6), 0, 2, 3);
  EXPECT_THAT(balances(), ElementsAre(100, 102, 103));
  correct(day(5), 0, 120, 2);
  EXPECT_THAT(balances(), ElementsAre(220, 222, 103));
}

// The day of the literal has no time, so entries of that day are moved that lie before the moment.
TEST_F(ClsClientesApuntesContaTest, ACorrectionDropsTheTimeOfItsDate) {
  insert(Date::of({2026, 3, 5, 18, 0, 0}), 0, 100, 1);
  insert(Date::of({2026, 3, 5, 9, 0, 0}), 0, 7, 2);
  EXPECT_THAT(balances(), ElementsAre(7, 107));
  shop.statements();
  correct(Date::of({2026, 3, 5, 18, 0, 0}), 0, 10, 1);
  const std::vector<std::string> ran = shop.statements();
  EXPECT_THAT(ran[1], HasSubstr("Fecha <= #03/05/2026 18:00:00#"));
  EXPECT_THAT(ran[3], HasSubstr("Fecha >= #03/05/2026# )"));
  EXPECT_THAT(balances(), ElementsAre(17, 117));
}

TEST_F(ClsClientesApuntesContaTest, ACorrectionWritesNeitherSeriesNorTextNorSide) {
  insert(day(5), 0, 100, 1);
  std::int16_t state = 1;
  ledger.Modificarnovale({.sSerie = "C",
                          .sCodigo = "00012",
                          .dtFecha = day(5),
                          .sConcepto = "O'Hara",
                          .sD_H = "D",
                          .dDebe = 3,
                          .dHaber = 0,
                          .iEstado = state,
                          .vDoc_E = 1});
  EXPECT_EQ(state, 1);
  EXPECT_EQ(shop.text("SELECT Serie & Concepto & Debe_Haber & Debe FROM " + kTable), "AFacturaH3");
}

TEST_F(ClsClientesApuntesContaTest, ACorrectionWritesItsAmountsIntoAllEntriesOfTheDocument) {
  insert(day(5), 0, 100, 1);
  insert(day(6), 0, 50, 1);
  correct(day(5), 0, 7, 1);
  EXPECT_EQ(shop.text("SELECT Sum(Haber) FROM " + kTable), "14");
}

TEST_F(ClsClientesApuntesContaTest, ACorrectionOfADocumentWithoutEntriesChangesNothing) {
  insert(day(5), 0, 100, 1);
  shop.statements();
  EXPECT_EQ(errorOf([&] { correct(day(5), 0, 7, 2); }), errors::kNoCurrentRecord);
  EXPECT_EQ(shop.statements().size(), 1U);
  EXPECT_THAT(balances(), ElementsAre(100));
}

// Its balance is not formatted: only what Saldo gave is.
TEST_F(ClsClientesApuntesContaTest, TheBalanceOfACorrectionKeepsItsDecimals) {
  insert(day(5), 0, 100, 1);
  correct(day(5), 0, 0.125, 1);
  EXPECT_THAT(balances(), ElementsAre(100.125));
}

// ---- GetId, DeleteAll, DeleteToDate

TEST_F(ClsClientesApuntesContaTest, GetIdGivesTheFirstEntryOfADocument) {
  insert(day(5), 0, 100, 7);
  insert(day(5), 0, 100, 8);
  shop.statements();
  EXPECT_EQ(ledger.GetId(1, 8), 2);
  EXPECT_EQ(statement(),
            "SELECT  Id From Clientes_Apuntes_Contables WHERE ((Estado = 1 ) AND (Documento_E = 8 "
            "));");
}

TEST_F(ClsClientesApuntesContaTest, GetIdOfADocumentWithoutEntriesRaises) {
  EXPECT_EQ(errorOf([&] { ledger.GetId(1, 8); }), errors::kNoCurrentRecord);
}

TEST_F(ClsClientesApuntesContaTest, DocumentNumbersOutgrow32Bits) {
  insert(day(5), 0, 100);
  auto large = entry(day(5), 0, 1);
  large.vDoc_E = 20260000000012.0;
  ledger.Insertar(large);
  EXPECT_EQ(ledger.GetId(1, 20260000000012.0), 2);
  ledger.Eliminar(1, "20260000000012");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsClientesApuntesContaTest, DeleteAllDeletesTheEntriesOfOneCustomer) {
  insert(day(5), 0, 100, 0, "00012");
  insert(day(5), 0, 100, 0, "00013");
  shop.statements();
  ledger.DeleteAll("00012");
  EXPECT_EQ(statement(), "DELETE  FROM Clientes_Apuntes_Contables WHERE (Codigo = '00012')");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsClientesApuntesContaTest, DeleteToDateLeavesTheDeletedPastInTheStoredBalances) {
  insert(day(5), 0, 100);
  insert(day(6), 0, 10);
  insert(day(7), 0, 1);
  insert(day(5), 0, 1, 0, "00013");
  shop.statements();
  ledger.DeleteToDate("00012", day(6));
  EXPECT_EQ(statement(),
            "DELETE  FROM Clientes_Apuntes_Contables WHERE ((Fecha <= #03/06/2026#) AND (Codigo = "
            "'00012'))");
  EXPECT_THAT(balances(), ElementsAre(111));
  EXPECT_EQ(ledger.Saldo_actual("00012"), 1);
  EXPECT_THAT(balances("00013"), ElementsAre(1));
}

// ---- Values that try to leave their place

TEST_F(ClsClientesApuntesContaTest, HostileTextInEveryValueChangesNothing) {
  insert(day(5), 0, 100, 1);
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { ledger.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { ledger.DeleteToDate(attack, day(9)); }), 0);
    EXPECT_NE(errorOf([&] { ledger.DeleteToDate("00012", attack); }), 0);
    EXPECT_NE(errorOf([&] { ledger.Eliminar(1, attack); }), 0);
    EXPECT_NE(errorOf([&] { ledger.GetId(1, attack); }), 0);
    EXPECT_NE(errorOf([&] { ledger.Saldo(attack, day(9)); }), 0);
    EXPECT_NE(errorOf([&] { ledger.Saldo("00012", attack); }), 0);
    EXPECT_NE(errorOf([&] { ledger.Saldo_actual(attack); }), 0);
    EXPECT_NE(errorOf([&] { ledger.IniciaRs({}, "seleccion", attack); }), 0);
    auto hostile = entry(day(5), 0, 1);
    hostile.sConcepto = attack;
    EXPECT_NE(errorOf([&] { ledger.Insertar(hostile); }), 0);
    auto strange = entry(day(5), 0, 1);
    strange.vDoc_E = attack;
    EXPECT_NE(errorOf([&] { ledger.Insertar(strange); }), 0);
    EXPECT_NE(errorOf([&] { insert(day(5), 0, 1, 2, attack); }), 0);
    EXPECT_NE(errorOf([&] { correct(day(5), 0, 1, 1, attack); }), 0);
  }
  EXPECT_THAT(balances(), ElementsAre(100));
  EXPECT_EQ(count(), "1");
}

}  // namespace
}  // namespace tavelor
