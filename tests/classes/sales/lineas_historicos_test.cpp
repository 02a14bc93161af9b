// SPDX-License-Identifier: MIT
// ClsTicketsLineas: closing, history and back, the change of currency.
#include "tests/classes/sales/lineas.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;

class ClsTicketsLineasHistoricosTest : public testing::Test, protected test::LineShop {
 protected:
  ClsTicketsLineasHistoricosTest() = default;
  explicit ClsTicketsLineasHistoricosTest(const Settings& settings) : LineShop(settings) {}

  std::string summary(const std::string& name) {
    return text("SELECT " + name + " FROM HTickets_Lineas_Impuestos");
  }
  std::vector<std::string> statementsOf(bool taxIncluded) {
    shop.statements();
    lines.Mover_Impuestos_A_Historicos(std::int32_t{1234}, std::int32_t{5}, taxIncluded);
    return shop.statements();
  }
};

TEST_F(ClsTicketsLineasHistoricosTest, CerrarTicketPutsTheLinesIntoTheClosing) {
  store({.id = 1});
  store({.id = 2, .ticket = "9"});
  shop.statements();
  lines.CerrarTicket(std::int32_t{1234}, std::int32_t{5});
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE Tickets_Lineas SET Cierre = 5 WHERE(Numero = 1234)"));
  EXPECT_EQ(column("Cierre", 1), "5");
  EXPECT_EQ(column("Cierre", 2), "0");
}

TEST_F(ClsTicketsLineasHistoricosTest, ConvertirSerieGivesANewNumberAndLooksAtNoSeries) {
  store({});
  shop.statements();
  lines.ConvertirSerie(std::int32_t{1234}, std::int32_t{10001}, "B");
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE Tickets_Lineas SET Numero = 10001 WHERE(Numero = 1234)"));
  EXPECT_EQ(column("Numero", 1), "10001");
}

TEST_F(ClsTicketsLineasHistoricosTest, AClosingMovesToHistoryWithoutTheKeysOfItsLines) {
  store({.id = 40, .lot = "'L7'", .closing = 5});
  store({.id = 41, .closing = 0});
  shop.statements();
  lines.Mover_A_Historicos(std::int32_t{5});
  EXPECT_THAT(shop.statements(),
              ElementsAre("INSERT INTO HTickets_Lineas ( Numero, Codigo, Descripcion, Cantidad,  "
                          "Precio, DTO,  IVA, Importe, Lote, Cierre, Familia ) SELECT Numero, "
                          "Codigo, Descripcion, Cantidad,  Precio, DTO,  IVA, Importe, Lote, "
                          "Cierre, Familia  FROM Tickets_Lineas WHERE(CIERRE = 5)",
                          "DELETE  FROM Tickets_Lineas WHERE ((CIERRE = 5))"));
  EXPECT_EQ(count(), "1") << "what is open stays";
  EXPECT_EQ(text("SELECT Lote FROM HTickets_Lineas"), "L7");
  EXPECT_NE(text("SELECT ID FROM HTickets_Lineas"), "40");
}

TEST_F(ClsTicketsLineasHistoricosTest, AClosingWithoutLinesMovesNothing) {
  store({.closing = 4});
  lines.Mover_A_Historicos(std::int32_t{5});
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(count("HTickets_Lineas"), "0");
}

// Only the lines of this closing are opened, unlike in the other tables of a ticket.
TEST_F(ClsTicketsLineasHistoricosTest, AClosingComesBackOpenAndOtherClosingsStay) {
  store({.ticket = "1", .closing = 4}, "HTickets_Lineas");
  store({.ticket = "2", .closing = 5}, "HTickets_Lineas");
  store({.id = 90, .ticket = "3", .closing = 6});
  const std::string key = text("SELECT ID FROM HTickets_Lineas WHERE Cierre = 5");
  shop.statements();
  lines.Mover_De_Historicos(std::int32_t{5});
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("INSERT INTO Tickets_Lineas SELECT HTickets_Lineas.* FROM HTickets_Lineas "
                  "WHERE(CIERRE = 5)",
                  "UPDATE Tickets_Lineas SET Tickets_Lineas.Cierre = 0 WHERE(CIERRE = 5)",
                  "DELETE  FROM HTickets_Lineas WHERE ((CIERRE = 5))"));
  EXPECT_EQ(text("SELECT Cierre FROM Tickets_Lineas WHERE Numero = 2"), "0");
  EXPECT_EQ(text("SELECT ID FROM Tickets_Lineas WHERE Numero = 2"), key)
      << "the line takes the key that history gave it";
  EXPECT_EQ(column("Cierre", 90), "6");
  EXPECT_EQ(count("HTickets_Lineas"), "1");
}

// ---- The tax summary

TEST_F(ClsTicketsLineasHistoricosTest, TheSummaryOf121WithTaxIncludedIs100And21) {
  store({.amount = "121"});
  EXPECT_THAT(statementsOf(true),
              ElementsAre("SELECT IVA, Sum(Importe) AS SumaDeImporte From Tickets_Lineas GROUP BY "
                          "IVA, Numero HAVING (((Numero)=1234));",
                          "INSERT INTO HTickets_Lineas_Impuestos ( Numero, IVA, base, Importe, "
                          "Cierre ) Values (1234, '21', '100,00', 21, 5 ) ",
                          "DELETE  FROM Tickets_Lineas_Impuestos WHERE ((CIERRE = 5))"));
  EXPECT_EQ(summary("Base"), "100");
  EXPECT_EQ(summary("Importe"), "21");
  EXPECT_EQ(summary("Cierre"), "5");
}

TEST_F(ClsTicketsLineasHistoricosTest, ABaseThatHadToBeComputedIsRounded) {
  store({.rate = "5.2", .amount = "1298.76774"});
  EXPECT_EQ(statementsOf(true)[1],
            "INSERT INTO HTickets_Lineas_Impuestos ( Numero, IVA, base, Importe, Cierre ) Values "
            "(1234, '5,2', '1.234,57', 64.2, 5 ) ");
  EXPECT_EQ(summary("Base"), "1234,57") << "marks of thousands do not matter to the database";
  EXPECT_EQ(summary("Importe"), "64,2");
}

// The sum goes as it is, with all its decimals, and money has four of them.
TEST_F(ClsTicketsLineasHistoricosTest, ABaseThatIsASumIsNotRounded) {
  store({.amount = "9.9949"});
  EXPECT_EQ(statementsOf(false)[1],
            "INSERT INTO HTickets_Lineas_Impuestos ( Numero, IVA, base, Importe, Cierre ) Values "
            "(1234, '21', '9,9949', 2.1, 5 ) ");
  EXPECT_EQ(summary("Base"), "9,9949");
}

TEST_F(ClsTicketsLineasHistoricosTest, TheSummaryHasARowARate) {
  store({.id = 1, .rate = "21", .amount = "60"});
  store({.id = 2, .rate = "21", .amount = "61"});
  store({.id = 3, .rate = "10", .amount = "11"});
  store({.id = 4, .ticket = "9", .rate = "4", .amount = "1"});
  EXPECT_EQ(statementsOf(true).size(), 4U);
  EXPECT_EQ(count("HTickets_Lineas_Impuestos"), "2");
  EXPECT_EQ(text("SELECT Base FROM HTickets_Lineas_Impuestos WHERE IVA = 10"), "10");
}

TEST_F(ClsTicketsLineasHistoricosTest, TheLiveSummaryOfTheClosingIsEmptied) {
  run("INSERT INTO Tickets_Lineas_Impuestos (Numero, IVA, Cierre) VALUES (1, 21, 5)");
  run("INSERT INTO Tickets_Lineas_Impuestos (Numero, IVA, Cierre) VALUES (2, 21, 6)");
  statementsOf(true);
  EXPECT_EQ(text("SELECT Numero FROM Tickets_Lineas_Impuestos"), "2");
}

TEST_F(ClsTicketsLineasHistoricosTest, TheSummaryOfAClosingIsDroppedNotCarriedBack) {
  store({});
  statementsOf(true);
  shop.statements();
  lines.Mover_Impuestos_De_Historicos(std::int32_t{5});
  EXPECT_THAT(shop.statements(),
              ElementsAre("DELETE  FROM HTickets_Lineas_Impuestos WHERE ((CIERRE = 5))"));
  EXPECT_EQ(count("HTickets_Lineas_Impuestos"), "0");
  EXPECT_EQ(count("Tickets_Lineas_Impuestos"), "0");
}

TEST_F(ClsTicketsLineasHistoricosTest, MembersFillAnEmptyConnection) {
  ConnectionPtr summaryConnection;
  lines.Mover_Impuestos_A_Historicos(std::int32_t{1}, std::int32_t{5}, true, summaryConnection);
  EXPECT_NE(summaryConnection, nullptr);
  ConnectionPtr moveConnection;
  lines.Mover_De_Historicos(std::int32_t{5}, moveConnection);
  EXPECT_NE(moveConnection, nullptr);
}

TEST_F(ClsTicketsLineasHistoricosTest, OneTransactionCarriesTheWholeMove) {
  store({.closing = 5});
  ConnectionPtr connection = DataSession().OpenConnection(kDocuments);
  connection->BeginTrans();
  lines.Mover_Impuestos_A_Historicos(std::int32_t{1234}, std::int32_t{5}, true, connection);
  lines.Mover_A_Historicos(std::int32_t{5}, connection);
  connection->RollbackTrans();
  EXPECT_EQ(count(), "1");
  EXPECT_EQ(count("HTickets_Lineas_Impuestos"), "0");
}

// ---- The change of currency

TEST_F(ClsTicketsLineasHistoricosTest, PesetasBecomeEurosInThreeStatements) {
  store({.id = 1, .price = "1000", .amount = "16638.6"});
  store({.id = 2, .price = "Null", .amount = "Null"});
  shop.statements();
  lines.ActualizarEuros();
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("UPDATE Tickets_Lineas SET Precio = 0 Where (((Precio) Is Null))",
                  "UPDATE Tickets_Lineas SET Importe = 0 Where (((Importe) Is Null))",
                  "UPDATE  Tickets_Lineas SET Precio = Format([Precio]/'166,386','Currency'), "
                  "Importe = Format([Importe]/'166,386','Currency');"));
  EXPECT_EQ(column("Precio", 1), "6,01");
  EXPECT_EQ(column("Importe", 1), "100");
  EXPECT_EQ(column("Precio", 2), "0");
}

// ---- The other locale

class ClsTicketsLineasHistoricosNeutralTest : public ClsTicketsLineasHistoricosTest {
 protected:
  ClsTicketsLineasHistoricosNeutralTest()
      : ClsTicketsLineasHistoricosTest(test::lineSettings("neutral")) {}
};

TEST_F(ClsTicketsLineasHistoricosNeutralTest, TheBaseIsWrittenByTheLocaleAndTheAmountIsNot) {
  store({.rate = "5.2", .amount = "1298.76774"});
  EXPECT_EQ(statementsOf(true)[1],
            "INSERT INTO HTickets_Lineas_Impuestos ( Numero, IVA, base, Importe, Cierre ) Values "
            "(1234, '5.2', '1,234.57', 64.2, 5 ) ");
  EXPECT_EQ(summary("Base"), "1234.57");
}

// In a shop without a decimal comma the divisor reads as a whole number. Amounts that were divided
// so are in its databases: the text must not become a number.
TEST_F(ClsTicketsLineasHistoricosNeutralTest, PesetasAreDividedByWhatTheTextReadsAs) {
  store({.id = 1, .price = "332772", .amount = "16638600"});
  lines.ActualizarEuros();
  EXPECT_EQ(column("Precio", 1), "2");
  EXPECT_EQ(column("Importe", 1), "100");
}

// ---- Masks that differ

class ClsTicketsLineasHistoricosMasksTest : public ClsTicketsLineasHistoricosTest {
 protected:
  ClsTicketsLineasHistoricosMasksTest() : ClsTicketsLineasHistoricosTest(settings()) {}
  static Settings settings() {
    Settings of = test::fastSettings();
    of.quantityFormat = "#,##0.0000";
    return of;
  }
};

TEST_F(ClsTicketsLineasHistoricosMasksTest, TheBaseHasTheMaskOfAmountsAndTheTaxThatOfQuantities) {
  store({.rate = "21", .amount = "9.99"});
  EXPECT_EQ(statementsOf(true)[1],
            "INSERT INTO HTickets_Lineas_Impuestos ( Numero, IVA, base, Importe, Cierre ) Values "
            "(1234, '21', '8,26', 1.7346, 5 ) ");
}

}  // namespace
}  // namespace tavelor
