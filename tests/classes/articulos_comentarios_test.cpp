// SPDX-License-Identifier: MIT
// Free comments on articles.
#include "tavelor/articles/articulos_comentarios.hpp"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "tavelor/services/clock.hpp"
#include "tests/classes/catalogue.hpp"
#include "tests/frame/approved.hpp"

namespace tavelor {
namespace {

using test::bytesOf;
using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::string_view kTodos =
    "SELECT Id, Codigo AS Código, Comentarios FROM Articulos_Comentarios";

class ClsArticulosComentariosTest : public test::CatalogueTest<ClsArticulosComentarios> {
 protected:
  ClsArticulosComentariosTest() { shop.apartment().clock().fix(Date::of({2026, 3, 5, 8, 5, 9})); }
  void add(int id, const std::string& article, const std::string& text) {
    shop.run("INSERT INTO Articulos_Comentarios (Id, Codigo, Comentarios) VALUES (" +
             std::to_string(id) + ", '" + article + "', '" + text + "')");
  }
  std::filesystem::path report(const std::string& name) {
    return std::filesystem::path(shop.installation().folder()) / "rpt" / name;
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Articulos_Comentarios"); }

  ClsArticulosComentarios& comments = catalogue;
};

TEST_F(ClsArticulosComentariosTest, TheModes) {
  add(1, "A1", "uno");
  add(2, "A2", "dos");
  const Opened one = open("seleccion", "A2");
  EXPECT_EQ(one.statement, std::string(kTodos) + " WHERE  Codigo =  'A2'");
  EXPECT_THAT(codes(), ElementsAre("2"));
  const Opened none = open("ninguno");
  EXPECT_EQ(none.statement, std::string(kTodos) + " Where Id = 0");
  EXPECT_EQ(none.word, "ninguno");
  EXPECT_FALSE(comments.ExistenRegistros());
  const Opened all = open("loquesea");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
}

// Comments have no column of suppliers.
TEST_F(ClsArticulosComentariosTest, CodigoLibreIsRefusedWhateverIsAsked) {
  EXPECT_NE(errorOf([&] { comments.CodigoLibre("P1", "A1"); }), 0);
  EXPECT_EQ(statement(),
            "SELECT proveedor, Codigo FROM Articulos_Comentarios where ( proveedor ='P1' and "
            "Codigo='A1')");
}

TEST_F(ClsArticulosComentariosTest, DeleteAllDeletesTheCommentsOfOneArticle) {
  add(1, "A1", "uno");
  add(2, "A2", "dos");
  comments.DeleteAll("A1");
  EXPECT_EQ(statement(), "DELETE  FROM Articulos_Comentarios WHERE (Codigo = 'A1')");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosComentariosTest, AddNewGivesTheNextId) {
  add(41, "A1", "uno");
  comments.IniciaRs({}, "ninguno");
  comments.AddNew(true);
  EXPECT_EQ(field("Id"), "42");
}

TEST_F(ClsArticulosComentariosTest, AddNewGivesKeysOfAnyLength) {
  add(9999, "A1", "uno");
  comments.IniciaRs({}, "ninguno");
  comments.AddNew(true);
  EXPECT_EQ(field("Id"), "10000");
}

TEST_F(ClsArticulosComentariosTest, UpdateIdNumbersTheRowsThatWait) {
  add(7, "A1", "uno");
  comments.IniciaRs({}, "seleccion", "A1");
  for (const char* text : {"dos", "tres"}) {
    comments.AddNew();
    rows().Field("Id").Value(std::int32_t{-1});
    rows().Field("Comentarios").Value(text);
    rows().Update();
  }
  shop.statements();
  comments.UpdateId("A1");
  EXPECT_EQ(statement(), "SELECT MAX(Id) AS Nuevo_Codigo FROM Articulos_Comentarios");
  EXPECT_EQ(comments.AbsolutePosition(), 1);
  EXPECT_THAT(codes(), ElementsAre("7", "8", "9"));
  EXPECT_EQ(count(), "1") << "nothing is written yet";
  for (comments.MoveFirst(); !rows().Eof(); rows().MoveNext()) {
    EXPECT_EQ(field("Código"), "A1");
  }
}

TEST_F(ClsArticulosComentariosTest, UpdateIdOnNoRowsDoesNothing) {
  comments.IniciaRs({}, "ninguno");
  shop.statements();
  comments.UpdateId("A1");
  EXPECT_THAT(shop.statements(), testing::IsEmpty());
  EXPECT_EQ(errorOf([&] { ClsArticulosComentarios().UpdateId("A1"); }), errors::kObjectNotSet);
}

// ---- Pages

TEST_F(ClsArticulosComentariosTest, ToHtmlShowsTheRowsRecordByRecord) {
  add(1, "A1", "Frágil");
  add(2, "A1", "No apilar");
  comments.IniciaRs({}, "seleccion", "A1");
  comments.ToHtml();
  const std::string page = bytesOf(comments.GetHtmlFile());
  EXPECT_THAT(page, HasSubstr("<H1><font size=4>Articulos_Comentarios</Font></H1>"));
  EXPECT_THAT(page, HasSubstr("No apilar"));
  EXPECT_THAT(page, HasSubstr("2 registros. - "));
}

TEST_F(ClsArticulosComentariosTest, ToTxtWritesCaptionsAndValues) {
  add(1, "A1", "Frágil");
  add(2, "A1", "No apilar");
  comments.IniciaRs({}, "seleccion", "A1");
  comments.MoveLast();
  comments.ToTxt();
  EXPECT_EQ(bytesOf(report("Articulos_Comentarios.txt")),
            "Articulos_Comentarios\r\n\r\n"
            "Id: 1\r\nC\xF3"
            "digo: A1\r\nComentarios: Fr\xE1gil\r\n\r\n"
            "Id: 2\r\nC\xF3"
            "digo: A1\r\nComentarios: No apilar\r\n\r\n"
            "2 registros. - jueves, 5 de marzo de 2026\r\n");
  EXPECT_EQ(comments.AbsolutePosition(), 2) << "a clone was walked";
}

TEST_F(ClsArticulosComentariosTest, ToTxtOfACloneWithoutRowsLeavesAnEarlierFile) {
  comments.IniciaRs({}, "ninguno");
  std::ofstream(report("Articulos_Comentarios.txt")) << "earlier";
  comments.ToTxt();
  EXPECT_EQ(bytesOf(report("Articulos_Comentarios.txt")), "earlier");
  comments.ToTxt(false);
  EXPECT_EQ(bytesOf(report("Articulos_Comentarios.txt")),
            "Articulos_Comentarios\r\n\r\n0 registros. - jueves, 5 de marzo de 2026\r\n");
}

TEST_F(ClsArticulosComentariosTest, ToTxtShowsTheRowsOfTheStoredFilter) {
  add(1, "A1", "Frágil");
  add(2, "A2", "No apilar");
  comments.IniciaRs();
  comments.SetFilter("Código = 'A2'", "Filter");
  comments.ToTxt(true, "todos", true);
  const std::string text = bytesOf(report("Articulos_Comentarios.txt"));
  EXPECT_THAT(text, HasSubstr("No apilar"));
  EXPECT_THAT(text, HasSubstr("1 registros. - "));
}

TEST_F(ClsArticulosComentariosTest, ToTxtThatCannotBeWrittenSaysWhere) {
  add(1, "A1", "Frágil");
  comments.IniciaRs();
  std::filesystem::create_directories(report("Articulos_Comentarios.txt") / "in the way");
  EXPECT_EQ(errorOf([&] { comments.ToTxt(); }), errors::kPathAccess);
}

// ---- Others

TEST_F(ClsArticulosComentariosTest, HostileTextInEveryValueChangesNothing) {
  add(1, "A1", "uno");
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { comments.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { comments.IniciaRs({}, "seleccion", attack); }), 0);
  }
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsArticulosComentariosTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "DeleteAll", "IniciaRs", "NuevoCodigo",
                          "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ToTxt");
  EXPECT_EQ(signature("ToTxt"),
            "ToTxt([bDoclone As Boolean = True], [sSelecSql As String = \"todos\"], [bFilter As "
            "Boolean])");
}

}  // namespace
}  // namespace tavelor
