// SPDX-License-Identifier: MIT
// Free comments on tickets.
#include "tavelor/sales/tickets_comentarios.hpp"

#include <fstream>
#include <iterator>

#include "tests/classes/catalogue.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

const std::string kTodos = "SELECT Id, Codigo AS Código, Comentarios FROM Tickets_Comentarios";

class ClsTicketsComentariosTest : public test::CatalogueTest<ClsTicketsComentarios> {
 protected:
  void add(int id, int ticket, const std::string& comment) {
    shop.run("INSERT INTO Tickets_Comentarios (Id, Codigo, Comentarios) VALUES (" +
                 std::to_string(id) + ", " + std::to_string(ticket) + ", '" + comment + "')",
             selector::kDocuments);
  }
  std::string text(const std::string& statement) {
    return shop.text(statement, selector::kDocuments);
  }

  ClsTicketsComentarios& comments = catalogue;
};

TEST_F(ClsTicketsComentariosTest, TheSlotsStandInOrder) {
  EXPECT_THAT(
      firstSlots(),
      ElementsAre("GetConnectionStrToRpt", "sClassName", "GetConnectionStr", "sQComentario",
                  "Mover_De_Historicos", "Mover_A_Historicos", "CerrarTicket", "ConvertirSerie",
                  "GetConnection", "DeleteAll", "IniciaRs", "NuevoCodigo", "SeguridadPermiso"));
  EXPECT_EQ(lastSlot(), "ToTxt");
}

TEST_F(ClsTicketsComentariosTest, TheModes) {
  add(1, 10, "uno");
  add(2, 20, "dos");
  EXPECT_EQ(open("seleccion", 20).statement, kTodos + " WHERE  Codigo =  20");
  EXPECT_THAT(codes(), ElementsAre("2"));
  EXPECT_EQ(open("ninguno").statement, kTodos + " Where Id = 0");
  EXPECT_FALSE(comments.ExistenRegistros());
  const Opened all = open("loquesea");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
}

TEST_F(ClsTicketsComentariosTest, TheCommentOfTheRowIsReadWithoutEverRaising) {
  EXPECT_EQ(comments.sQComentario(), "");
  comments.IniciaRs();
  EXPECT_EQ(comments.sQComentario(), "");
  add(1, 10, "sin sal");
  comments.IniciaRs();
  EXPECT_EQ(comments.sQComentario(), "sin sal");
}

TEST_F(ClsTicketsComentariosTest, DeleteAllDeletesTheCommentsOfOneTicket) {
  add(1, 10, "uno");
  add(2, 20, "dos");
  shop.run("INSERT INTO Tickets_Comentarios (Id) VALUES (3)", selector::kDocuments);
  comments.DeleteAll(10);
  EXPECT_EQ(statement(), "DELETE  FROM Tickets_Comentarios WHERE (Codigo = 10)");
  EXPECT_EQ(text("SELECT Count(*) FROM Tickets_Comentarios"), "2");
}

TEST_F(ClsTicketsComentariosTest, AddNewGivesAKeyOfAnyLengthAndOnlyWhenAsked) {
  add(123456, 1, "uno");
  comments.IniciaRs({}, "ninguno");
  comments.AddNew(true);
  EXPECT_EQ(field("ID"), "123457");
  comments.Cancel();
  shop.statements();
  comments.AddNew();
  EXPECT_THAT(shop.statements(), IsEmpty());
}

// The next key is above the greatest already, and one more is added: the gap is to stay.
TEST_F(ClsTicketsComentariosTest, UpdateIdWithAGreatestIdOfTenGivesTwelve) {
  add(10, 1, "uno");
  comments.IniciaRs({}, "ninguno");
  comments.AddNew();
  rows().Field("Comentarios").Value("dos");
  comments.UpdateId(77);
  EXPECT_EQ(field("ID") + " " + field("Código"), "12 77");
  comments.Update();
  EXPECT_EQ(text("SELECT Comentarios FROM Tickets_Comentarios WHERE Id = 12"), "dos");
}

TEST_F(ClsTicketsComentariosTest, UpdateIdWithoutRowsDoesNothing) {
  comments.IniciaRs({}, "ninguno");
  shop.statements();
  comments.UpdateId(77);
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_EQ(errorOf([] { ClsTicketsComentarios().UpdateId(1); }), errors::kObjectNotSet);
}

TEST_F(ClsTicketsComentariosTest, TheRowsAreWrittenAsAPageAndAsText) {
  add(1, 10, "sin sal");
  comments.IniciaRs();
  comments.ToHtml();
  comments.ToTxt();
  const auto bytesOf = [&](const std::string& name) {
    std::ifstream in(shop.installation().reportFolder() + "/" + name, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
  };
  EXPECT_THAT(bytesOf("Tickets_Comentarios.htm"), HasSubstr("sin sal"));
  EXPECT_THAT(bytesOf("Tickets_Comentarios.txt"), HasSubstr("Comentarios: sin sal\r\n"));
  EXPECT_FALSE(comments.DataMember("Primary")->Eof()) << "a clone was walked";
}

}  // namespace
}  // namespace tavelor
