// SPDX-License-Identifier: MIT
// The way of a ticket, its header and its comments through closings to history and back.
#include "tavelor/sales/tickets_cabecera.hpp"
#include "tavelor/sales/tickets_comentarios.hpp"
#include "tests/classes/sales/tickets.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

class TicketHistoryTest : public testing::Test, protected test::TicketShop {
 protected:
  void addHeader(int id, int ticket, int closing = 0) {
    run("INSERT INTO Tickets_Cabecera (Id, Codigo, Nombre, Telefono, Cierre) VALUES (" +
        std::to_string(id) + ", " + std::to_string(ticket) + ", 'Ana', '91', " +
        std::to_string(closing) + ")");
  }
  void addComment(int id, int ticket, int closing = 0) {
    run("INSERT INTO Tickets_Comentarios (Id, Codigo, Comentarios, Cierre) VALUES (" +
        std::to_string(id) + ", " + std::to_string(ticket) + ", 'Nota', " +
        std::to_string(closing) + ")");
  }
  /// How many rows of a table are in that closing.
  std::string inClosing(const std::string& table, int closing) {
    return text("SELECT Count(*) FROM " + table + " WHERE Cierre = " + std::to_string(closing));
  }

  ClsTicketsCabecera headers;
  ClsTicketsComentarios comments;
};

TEST_F(TicketHistoryTest, CerrarTicketMarksTheRowsOfOneTicket) {
  add(1);
  add(2);
  addHeader(7, 1);
  addHeader(8, 2);
  addComment(9, 1);
  tickets.CerrarTicket(1, 5);
  headers.CerrarTicket(1, 5);
  comments.CerrarTicket(1, 5);
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE Tickets SET Cierre = 5 WHERE(Numero = 1)",
                          "UPDATE Tickets_Cabecera SET Cierre = 5 WHERE(Codigo = 1)",
                          "UPDATE Tickets_Comentarios SET Cierre = 5 WHERE(Codigo = 1)"));
  EXPECT_EQ(column("Cierre", 1), "5");
  EXPECT_EQ(column("Cierre", 2), "0");
  EXPECT_EQ(inClosing("Tickets_Cabecera", 5), "1");
  EXPECT_EQ(inClosing("Tickets_Comentarios", 5), "1");
}

TEST_F(TicketHistoryTest, ConvertirSerieTakesHeaderAndCommentsAlong) {
  addHeader(7, 1);
  addComment(9, 1);
  headers.ConvertirSerie(1, 10001, "B");
  comments.ConvertirSerie(1, 10001, "B");
  EXPECT_THAT(shop.statements(),
              ElementsAre("UPDATE Tickets_Cabecera SET Codigo = 10001 WHERE(Codigo = 1)",
                          "UPDATE Tickets_Comentarios SET Codigo = 10001 WHERE(Codigo = 1)"));
  EXPECT_EQ(text("SELECT Codigo FROM Tickets_Cabecera"), "10001");
  EXPECT_EQ(text("SELECT Codigo FROM Tickets_Comentarios"), "10001");
}

TEST_F(TicketHistoryTest, AWholeClosingMovesAndWhatIsOpenStays) {
  add(1, "Cierre = 5, Razon_Social = 'Ana', Total = 12.5");
  add(2, "Cierre = 5");
  add(3);
  add(4, "Cierre = 6");
  tickets.Mover_A_Historicos(5);
  EXPECT_THAT(shop.statements(),
              ElementsAre("INSERT INTO HTickets SELECT Tickets.* FROM Tickets WHERE(CIERRE = 5)",
                          "DELETE  FROM Tickets WHERE ((CIERRE = 5))"));
  EXPECT_EQ(count("HTickets"), "2");
  EXPECT_EQ(count("Tickets"), "2");
  EXPECT_EQ(text("SELECT Razon_Social FROM HTickets WHERE Total = 12.5"), "Ana");
}

TEST_F(TicketHistoryTest, HeadersAndCommentsMoveWithoutTheirKeys) {
  addHeader(70, 1, 5);
  addHeader(71, 2);
  addComment(90, 1, 5);
  headers.Mover_A_Historicos(5);
  comments.Mover_A_Historicos(5);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          "INSERT INTO HTickets_Cabecera ( Codigo, Nombre, Razon_Social, NIF, Direccion, "
          "Codigo_Postal, Poblacion, Provincia, Telefono, Cierre ) SELECT Codigo, Nombre, "
          "Razon_Social, NIF, Direccion, Codigo_Postal, Poblacion, Provincia, Telefono, Cierre  "
          "FROM Tickets_Cabecera WHERE(CIERRE = 5)",
          "DELETE  FROM Tickets_Cabecera WHERE ((CIERRE = 5))",
          "INSERT INTO HTickets_Comentarios ( Codigo, Comentarios, Cierre )  SELECT  Codigo, "
          "Comentarios, Cierre  FROM Tickets_Comentarios WHERE(CIERRE = 5)",
          "DELETE  FROM Tickets_Comentarios WHERE ((CIERRE = 5))"));
  EXPECT_EQ(text("SELECT Id FROM HTickets_Cabecera"), "1") << "history numbers by itself";
  EXPECT_EQ(text("SELECT Telefono FROM HTickets_Cabecera"), "91");
  EXPECT_EQ(text("SELECT Id FROM Tickets_Cabecera"), "71");
  EXPECT_EQ(text("SELECT Id FROM HTickets_Comentarios"), "1");
  EXPECT_EQ(text("SELECT Comentarios FROM HTickets_Comentarios"), "Nota");
  EXPECT_EQ(count("Tickets_Comentarios"), "0");
}

TEST_F(TicketHistoryTest, AClosingWithoutTicketsMovesNothingAndRaisesNothing) {
  add(1);
  tickets.Mover_A_Historicos(5);
  headers.Mover_A_Historicos(5);
  comments.Mover_A_Historicos(5);
  EXPECT_EQ(count("Tickets"), "1");
  EXPECT_EQ(count("HTickets"), "0");
}

TEST_F(TicketHistoryTest, AClosingComesBackOpen) {
  addToHistory(1, "Cierre = 5, Total = 12.5");
  addToHistory(2, "Cierre = 6");
  tickets.Mover_De_Historicos(5);
  EXPECT_THAT(
      shop.statements(),
      ElementsAre("INSERT INTO Tickets SELECT HTickets.* FROM HTickets WHERE(CIERRE = 5)",
                  "DELETE  FROM HTickets WHERE ((CIERRE = 5))", "UPDATE Tickets SET Cierre = 0"));
  EXPECT_EQ(column("Total"), "12,5");
  EXPECT_EQ(column("Cierre"), "0");
  EXPECT_EQ(count("HTickets"), "1");
}

// The reset has no condition, and callers know it: it must not get one.
TEST_F(TicketHistoryTest, AClosingThatComesBackOpensAllLiveRowsWhicheverClosingTheyHad) {
  addToHistory(1, "Cierre = 5");
  add(2, "Cierre = 6");
  addHeader(7, 2, 6);
  addComment(9, 2, 6);
  tickets.Mover_De_Historicos(5);
  headers.Mover_De_Historicos(5);
  comments.Mover_De_Historicos(5);
  EXPECT_EQ(inClosing("Tickets", 0), "2");
  EXPECT_EQ(inClosing("Tickets_Cabecera", 0), "1");
  EXPECT_EQ(inClosing("Tickets_Comentarios", 0), "1");
}

TEST_F(TicketHistoryTest, HeadersAndCommentsComeBackWithTheKeysOfHistory) {
  addHeader(70, 1, 5);
  addComment(90, 1, 5);
  headers.Mover_A_Historicos(5);
  comments.Mover_A_Historicos(5);
  shop.statements();
  headers.Mover_De_Historicos(5);
  comments.Mover_De_Historicos(5);
  EXPECT_THAT(shop.statements(),
              ElementsAre("INSERT INTO Tickets_Cabecera SELECT HTickets_Cabecera.* FROM "
                          "HTickets_Cabecera WHERE(CIERRE = 5)",
                          "DELETE  FROM HTickets_Cabecera WHERE ((CIERRE = 5))",
                          "UPDATE Tickets_Cabecera SET Cierre = 0",
                          "INSERT INTO Tickets_Comentarios SELECT HTickets_Comentarios.* FROM "
                          "HTickets_Comentarios WHERE(CIERRE = 5)",
                          "DELETE  FROM HTickets_Comentarios WHERE ((CIERRE = 5))",
                          "UPDATE Tickets_Comentarios SET Cierre = 0"));
  EXPECT_EQ(text("SELECT Id FROM Tickets_Cabecera"), "1");
  EXPECT_EQ(text("SELECT Id FROM Tickets_Comentarios"), "1");
  EXPECT_EQ(count("HTickets_Cabecera"), "0");
}

TEST_F(TicketHistoryTest, AClosingBroughtBackTwiceIsRefusedAndTheSecondOneStaysWhole) {
  addToHistory(1, "Cierre = 5");
  addToHistory(2, "Cierre = 5");
  add(2, "Cierre = 6");
  EXPECT_EQ(errorOf([&] { tickets.Mover_De_Historicos(5); }), errors::kIntegrityViolation);
  EXPECT_EQ(count("HTickets"), "2");
  EXPECT_EQ(count("Tickets"), "1");
  EXPECT_EQ(column("Cierre", 2), "6") << "nothing was opened either";
}

TEST_F(TicketHistoryTest, ANumberThatIsInHistoryAlreadyStopsItsClosing) {
  add(1, "Cierre = 5");
  addToHistory(1, "Cierre = 4");
  EXPECT_EQ(errorOf([&] { tickets.Mover_A_Historicos(5); }), errors::kIntegrityViolation);
  EXPECT_EQ(count("Tickets"), "1");
}

TEST_F(TicketHistoryTest, TheFirstCallFillsTheConnectionAndTheTransactionIsTheCallers) {
  add(1);
  addHeader(7, 1);
  ConnectionPtr connection;
  tickets.CerrarTicket(1, 5, connection);
  ASSERT_NE(connection, nullptr);
  connection->BeginTrans();
  headers.CerrarTicket(1, 5, connection);
  tickets.Mover_A_Historicos(5, connection);
  headers.Mover_A_Historicos(5, connection);
  connection->RollbackTrans();
  EXPECT_EQ(count("HTickets") + count("HTickets_Cabecera"), "00");
  EXPECT_EQ(column("Cierre", 1), "5") << "done before the transaction began";
}

TEST_F(TicketHistoryTest, AClosingThatIsNoNumberIsRefused) {
  add(1);
  for (const char* closing : {"", "5) OR (1=1", "x'"}) {
    EXPECT_EQ(errorOf([&] { tickets.Mover_A_Historicos(closing); }), errors::kSyntax) << closing;
    EXPECT_EQ(errorOf([&] { tickets.CerrarTicket(1, closing); }), errors::kSyntax) << closing;
  }
  EXPECT_EQ(count("Tickets"), "1");
}

}  // namespace
}  // namespace tavelor
