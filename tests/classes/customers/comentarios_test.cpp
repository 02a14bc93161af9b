// SPDX-License-Identifier: MIT
// The comments of customers.
#include <filesystem>
#include <iterator>

#include "tavelor/customers/clientes_comentarios.hpp"
#include "tavelor/services/clock.hpp"
#include "tests/classes/catalogue.hpp"
#include "tests/frame/approved.hpp"

namespace tavelor {
namespace {

using test::bytesOf;
using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;

const std::string kTodos = "SELECT Id, Codigo AS Código, Comentarios FROM Clientes_Comentarios";
const std::string kSeam = "  #.---\\\\\\Restaurado///-----.# ";

class ClsClientesComentariosTest : public test::CatalogueTest<ClsClientesComentarios> {
 protected:
  ClsClientesComentariosTest() { shop.apartment().clock().fix(Date::of({2026, 3, 5, 8, 5, 9})); }
  void add(int id, const std::string& customer, const std::string& literal) {
    shop.run("INSERT INTO Clientes_Comentarios (Id, Codigo, Comentarios) VALUES (" +
             std::to_string(id) + ", '" + customer + "', " + literal + ")");
  }
  std::string comment(const std::string& customer) {
    return shop.text("SELECT Comentarios FROM Clientes_Comentarios WHERE Id = 1 AND Codigo = '" +
                     customer + "'");
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Clientes_Comentarios"); }

  ClsClientesComentarios& comments = catalogue;
};

TEST_F(ClsClientesComentariosTest, TheSlotsStandInOrder) {
  EXPECT_THAT(firstSlots(),
              ElementsAre("GetRptPath", "GetConnectionStrToRpt", "sClassName", "GetConnection",
                          "GetConnectionStr", "ReparaComentarios", "DeleteAll", "IniciaRs",
                          "NuevoCodigo", "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ToTxt");
}

TEST_F(ClsClientesComentariosTest, TheModes) {
  add(1, "00012", "'uno'");
  add(2, "00012", "'sobra'");
  add(1, "00013", "'dos'");
  const Opened one = open("seleccion", "00012");
  EXPECT_EQ(one.statement, kTodos + " WHERE  Codigo =  '00012' And Id = 1");
  EXPECT_EQ(rows().RecordCount(), 1) << "rows of a higher Id are not shown";
  EXPECT_EQ(field("Comentarios"), "uno");
  EXPECT_EQ(open("ninguno").statement, kTodos + " Where Id = 0");
  EXPECT_FALSE(comments.ExistenRegistros());
  const Opened all = open("loquesea");
  EXPECT_EQ(all.statement, kTodos);
  EXPECT_EQ(all.word, "todos");
}

TEST_F(ClsClientesComentariosTest, DeleteAllDeletesTheCommentsOfOneCustomer) {
  add(1, "00012", "'uno'");
  add(1, "00013", "'dos'");
  shop.statements();
  comments.DeleteAll("00012");
  EXPECT_EQ(statement(), "DELETE  FROM Clientes_Comentarios WHERE (Codigo = '00012')");
  EXPECT_EQ(count(), "1");
}

// Comments have no column of suppliers.
TEST_F(ClsClientesComentariosTest, CodigoLibreIsRefusedWhateverIsAsked) {
  EXPECT_NE(errorOf([&] { comments.CodigoLibre("P1", "00012"); }), 0);
  EXPECT_EQ(statement(),
            "SELECT proveedor, Codigo FROM Clientes_Comentarios where ( proveedor ='P1' and "
            "Codigo='00012')");
}

// ---- UpdateId

TEST_F(ClsClientesComentariosTest, UpdateIdMakesTheNewRowTheCustomersComment) {
  add(1, "00012", "'uno'");
  comments.IniciaRs({}, "seleccion", "00013");
  comments.AddNew(true);
  EXPECT_EQ(field("Id"), "2") << "the next key of the table";
  rows().Field("Comentarios").Value("dos");
  shop.statements();
  comments.UpdateId("00013");
  EXPECT_THAT(shop.statements(), testing::IsEmpty());
  EXPECT_EQ(count(), "1") << "nothing is written yet";
  comments.Update();
  EXPECT_EQ(comment("00013"), "dos");
  open("seleccion", "00013");
  EXPECT_EQ(field("Comentarios"), "dos");
}

TEST_F(ClsClientesComentariosTest, UpdateIdOfACommentThatIsThereChangesNothingOfItsKey) {
  add(1, "00012", "'uno'");
  comments.IniciaRs({}, "seleccion", "00012");
  rows().Field("Comentarios").Value("otro");
  comments.UpdateId("00012");
  comments.Update();
  EXPECT_EQ(comment("00012"), "otro");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsClientesComentariosTest, ASecondCommentOfACustomerIsRefusedByTheKey) {
  add(1, "00012", "'uno'");
  comments.IniciaRs({}, "ninguno");
  comments.AddNew();
  rows().Field("Comentarios").Value("dos");
  comments.UpdateId("00012");
  EXPECT_EQ(errorOf([&] { comments.Update(); }), errors::kIntegrityViolation);
  EXPECT_EQ(comment("00012"), "uno");
}

TEST_F(ClsClientesComentariosTest, UpdateIdOnNoRowsDoesNothing) {
  comments.IniciaRs({}, "ninguno");
  comments.UpdateId("00012");
  EXPECT_FALSE(comments.ExistenRegistros());
}

// ---- ReparaComentarios

TEST_F(ClsClientesComentariosTest, ReparaComentariosFoldsSurplusRowsIntoTheCommentBehindASeam) {
  add(1, "00012", "'Cerrado los lunes'");
  add(2, "00012", "'Prefiere la mañana'");
  add(1, "00013", "'otro'");
  shop.statements();
  comments.ReparaComentarios();
  EXPECT_THAT(
      shop.statements(),
      ElementsAre(
          "SELECT Clientes_Comentarios.Codigo, Clientes_Comentarios.Comentarios From "
          "Clientes_Comentarios WHERE (((Clientes_Comentarios.Id)>1));",
          "UPDATE Clientes_Comentarios SET Clientes_Comentarios.Comentarios = "
          "[Clientes_Comentarios].[Comentarios] &'" +
              kSeam +
              "' &  'Prefiere la mañana' WHERE (((Clientes_Comentarios.Id)=1) AND "
              "((Clientes_Comentarios.Codigo)= '00012'));",
          "DELETE Clientes_Comentarios.Id, Clientes_Comentarios.* From Clientes_Comentarios WHERE "
          "(((Clientes_Comentarios.Id)>1));"));
  EXPECT_EQ(comment("00012"), "Cerrado los lunes" + kSeam + "Prefiere la mañana");
  EXPECT_EQ(comment("00013"), "otro");
  EXPECT_EQ(count(), "2");
}

TEST_F(ClsClientesComentariosTest, ANullOrEmptySurplusCommentAddsTheSeamAndADot) {
  add(1, "00012", "'uno'");
  add(2, "00012", "Null");
  add(1, "00013", "Null");
  add(2, "00013", "''");
  comments.ReparaComentarios();
  EXPECT_EQ(comment("00012"), "uno" + kSeam + ".");
  EXPECT_EQ(comment("00013"), kSeam + ".") << "a Null comment counts as empty";
}

TEST_F(ClsClientesComentariosTest, TheTextOfACustomerWithoutACommentIsLost) {
  add(2, "00012", "'solo'");
  comments.ReparaComentarios();
  EXPECT_EQ(count(), "0");
}

TEST_F(ClsClientesComentariosTest, AnApostropheLeavesWhatIsFoldedAndASecondRunAppendsItAgain) {
  add(1, "00012", "'uno'");
  add(2, "00012", "'dos'");
  add(3, "00012", "'d''abril'");
  EXPECT_EQ(errorOf([&] { comments.ReparaComentarios(); }), errors::kSyntax);
  EXPECT_EQ(comment("00012"), "uno" + kSeam + "dos");
  EXPECT_EQ(count(), "3") << "no row is deleted";
  shop.run("UPDATE Clientes_Comentarios SET Comentarios = 'abril' WHERE Id = 3");
  comments.ReparaComentarios();
  EXPECT_EQ(comment("00012"), "uno" + kSeam + "dos" + kSeam + "dos" + kSeam + "abril");
  EXPECT_EQ(count(), "1");
}

TEST_F(ClsClientesComentariosTest, ATransactionOfTheCallerUndoesAFailedRepair) {
  add(1, "00012", "'uno'");
  add(2, "00012", "'dos'");
  add(3, "00012", "'d''abril'");
  ConnectionPtr connection = DataSession().OpenConnection(1);
  connection->BeginTrans();
  EXPECT_EQ(errorOf([&] { comments.ReparaComentarios(connection); }), errors::kSyntax);
  connection->RollbackTrans();
  EXPECT_EQ(comment("00012"), "uno");
}

TEST_F(ClsClientesComentariosTest, ReparaComentariosWithoutSurplusRowsOnlyDeletesNone) {
  add(1, "00012", "'uno'");
  shop.statements();
  comments.ReparaComentarios();
  EXPECT_EQ(shop.statements().size(), 2U);
  EXPECT_EQ(comment("00012"), "uno");
}

// ---- Pages

TEST_F(ClsClientesComentariosTest, ToHtmlShowsTheRowsRecordByRecord) {
  add(1, "00012", "'Cerrado los lunes'");
  comments.IniciaRs({}, "seleccion", "00012");
  comments.ToHtml();
  const std::string page = bytesOf(comments.GetHtmlFile());
  EXPECT_THAT(page, HasSubstr("<H1><font size=4>Clientes_Comentarios</Font></H1>"));
  EXPECT_THAT(page, HasSubstr("<td><font size=1>Cerrado los lunes"));
  EXPECT_THAT(page, HasSubstr("1 registros. - jueves, 5 de marzo de 2026"));
}

TEST_F(ClsClientesComentariosTest, ToTxtWritesCaptionsValuesAndTheStoredFiltersRowsOnly) {
  add(1, "00012", "'Mañanas'");
  add(1, "00013", "'tardes'");
  comments.IniciaRs();
  comments.SetFilter("Código = '00012'", "Filter");
  comments.ToTxt(true, "todos", true);
  const auto file =
      std::filesystem::path(shop.installation().folder()) / "rpt" / "Clientes_Comentarios.txt";
  EXPECT_EQ(bytesOf(file),
            "Clientes_Comentarios\r\n\r\n"
            "Id: 1\r\nC\xF3"
            "digo: 00012\r\nComentarios: Ma\xF1"
            "anas\r\n\r\n"
            "1 registros. - jueves, 5 de marzo de 2026\r\n");
}

TEST_F(ClsClientesComentariosTest, HostileTextInEveryValueChangesNothing) {
  add(1, "00012", "'uno'");
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { comments.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { comments.CodigoLibre("P1", attack); }), 0);
    EXPECT_NE(errorOf([&] { comments.IniciaRs({}, "seleccion", attack); }), 0);
  }
  EXPECT_EQ(count(), "1");
}

}  // namespace
}  // namespace tavelor
