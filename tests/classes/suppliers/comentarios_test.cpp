// SPDX-License-Identifier: MIT
// The comments on suppliers.
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tavelor/services/clock.hpp"
#include "tavelor/suppliers/proveedores_comentarios.hpp"
#include "tests/classes/catalogue.hpp"
#include "tests/classes/corpus.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

template <typename Class>
concept HasReportPath = requires(Class& of) {
  of.GetRptPath({});
};

std::string corpus(const std::string& name) {
  return test::corpusStatement({"suppliers-proveedores_comentarios"},
                               "ClsProveedoresComentarios." + name);
}

std::string bytesOf(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

class ClsProveedoresComentariosTest : public test::CatalogueTest<ClsProveedoresComentarios> {
 protected:
  ClsProveedoresComentariosTest() { shop.apartment().clock().fix(Date::of({2026, 3, 5, 8, 5, 9})); }
  void add(int id, const std::string& supplier, const std::string& text) {
    shop.run("INSERT INTO Proveedores_Comentarios (Id, Codigo, Comentarios) VALUES (" +
             std::to_string(id) + ", '" + supplier + "', '" + text + "')");
  }
  /// The comments of a supplier in the order of their keys: "1 uno, 2 dos".
  std::string stored(const std::string& supplier) {
    RecordsetPtr found;
    ConnectionPtr connection;
    DataSession().OpenRecordset(
        1,
        Statement("SELECT Id, Comentarios FROM Proveedores_Comentarios WHERE Codigo = ")
            << sqlText(supplier) << " ORDER BY Id",
        found, connection);
    std::string all;
    for (; !found->Eof(); found->MoveNext()) {
      if (!all.empty()) all += ", ";
      all += shown(found->Field(0).Value()) + " " + shown(found->Field(1).Value());
    }
    return all;
  }
  std::string count() { return shop.text("SELECT Count(*) FROM Proveedores_Comentarios"); }

  ClsProveedoresComentarios& comments = catalogue;
};

// ---- The class

TEST_F(ClsProveedoresComentariosTest, TheSlotsStandInOrderWithoutAReportPathAndARepair) {
  EXPECT_THAT(firstSlots(), ElementsAre("GetConnectionStrToRpt", "sClassName", "GetConnection",
                                        "GetConnectionStr", "DeleteAll", "IniciaRs", "NuevoCodigo",
                                        "SeguridadPermiso", "CodigoLibre"));
  EXPECT_EQ(lastSlot(), "ToTxt");
  EXPECT_FALSE(HasReportPath<ClsProveedoresComentarios>);
  for (const char* lacking : {"GetRptPath", "ReparaComentarios"}) {
    EXPECT_EQ(errorOf([&] { ClsProveedoresComentarios::component().member(lacking); }),
              errors::kMemberNotFound)
        << lacking;
  }
}

TEST_F(ClsProveedoresComentariosTest, TheModes) {
  add(1, "00012", "uno");
  add(2, "00013", "otro");
  add(3, "00012", "dos");
  EXPECT_EQ(open("seleccion", "00012").statement, corpus("IniciaRs / seleccion"));
  EXPECT_THAT(codes(), ElementsAre("1", "3")) << "whatever the key is";
  const Opened none = open("ninguno");
  EXPECT_EQ(none.statement, corpus("IniciaRs / ninguno"));
  EXPECT_EQ(none.word, "ninguno");
  EXPECT_FALSE(comments.ExistenRegistros());
  const Opened all = open("loquesea");
  EXPECT_EQ(all.statement, corpus("IniciaRs / todos"));
  EXPECT_EQ(all.word, "todos");
  EXPECT_THAT(fieldNames(), ElementsAre("Id", "Código", "Comentarios"));
}

TEST_F(ClsProveedoresComentariosTest, TheDataMemberStandsOnceInItsList) {
  comments.IniciaRs();
  comments.IniciaRs();
  EXPECT_THAT(comments.DataMembers(), ElementsAre("Primary"));
  EXPECT_EQ(comments.sClassName(), "Proveedores_Comentarios");
}

TEST_F(ClsProveedoresComentariosTest, NuevoCodigoIsTheGreatestIdPlusOne) {
  EXPECT_EQ(shown(comments.NuevoCodigo()), "1");
  EXPECT_EQ(statement(), corpus("NuevoCodigo"));
  add(7, "00012", "uno");
  EXPECT_EQ(shown(comments.NuevoCodigo()), "8");
}

TEST_F(ClsProveedoresComentariosTest, DeleteAllDeletesTheCommentsOfOneSupplier) {
  add(1, "00012", "uno");
  add(2, "00012", "dos");
  add(3, "00013", "otro");
  shop.statements();
  std::vector<Variant> arguments = {"00012"};
  ClsProveedoresComentarios::component().call(comments, "DeleteAll", arguments);
  EXPECT_EQ(statement(), corpus("DeleteAll"));
  EXPECT_EQ(count(), "1");
}

// Even here, where it would make sense: the column is called Codigo.
TEST_F(ClsProveedoresComentariosTest, CodigoLibreIsRefusedWhateverIsAsked) {
  EXPECT_EQ(errorOf([&] { comments.CodigoLibre("00012", "1"); }), errors::kMissingParameter);
  EXPECT_EQ(statement(), corpus("CodigoLibre"));
}

// ---- UpdateId

TEST_F(ClsProveedoresComentariosTest, UpdateIdMakesTheNewRowTheSuppliersUnderTheNextKey) {
  add(4, "00012", "uno");
  comments.IniciaRs({}, "seleccion", "00013");
  comments.AddNew(true);
  EXPECT_EQ(field("Id"), "5") << "the next key of the table";
  rows().Field("Comentarios").Value("dos");
  shop.statements();
  std::vector<Variant> arguments = {"00013"};
  ClsProveedoresComentarios::component().call(comments, "UpdateId", arguments);
  EXPECT_THAT(shop.statements(), IsEmpty()) << "the key is there";
  EXPECT_EQ(count(), "1") << "nothing is written yet";
  comments.Update();
  EXPECT_EQ(stored("00013"), "5 dos");
}

TEST_F(ClsProveedoresComentariosTest, ASecondCommentOfASupplierIsTaken) {
  add(1, "00012", "uno");
  comments.IniciaRs({}, "seleccion", "00012");
  comments.AddNew(true);
  rows().Field("Comentarios").Value("dos");
  comments.UpdateId("00012");
  comments.Update();
  EXPECT_EQ(stored("00012"), "1 uno, 2 dos");
  open("seleccion", "00012");
  EXPECT_THAT(codes(), ElementsAre("1", "2"));
}

TEST_F(ClsProveedoresComentariosTest, ARowWithoutAKeyTakesTheNextOne) {
  add(4, "00012", "uno");
  comments.IniciaRs({}, "ninguno");
  comments.AddNew();
  rows().Field("Comentarios").Value("vacía");
  shop.statements();
  comments.UpdateId("00012");
  EXPECT_EQ(statement(), corpus("NuevoCodigo"));
  comments.Update();
  comments.AddNew();
  rows().Field("Id").Value(-1);  // as a grid marks a row that is not stored
  rows().Field("Comentarios").Value("de la tabla");
  comments.UpdateId("00012");
  comments.Update();
  EXPECT_EQ(stored("00012"), "4 uno, 5 vacía, 6 de la tabla");
}

TEST_F(ClsProveedoresComentariosTest, UpdateIdReadsTheNextKeyOnTheClasssConnection) {
  comments.IniciaRs({}, "ninguno");
  comments.CnnBeginTrans();
  ConnectionPtr own = comments.GetConnection();
  DataSession().Execute(
      1, Statement("INSERT INTO Proveedores_Comentarios (Id, Codigo) VALUES (9, '00013')"), own);
  comments.AddNew();
  comments.UpdateId("00012");
  EXPECT_EQ(field("Id"), "10") << "the comment of the open transaction counts";
  comments.CnnRollbackTrans();
}

TEST_F(ClsProveedoresComentariosTest, UpdateIdOfACommentThatIsThereKeepsItsKey) {
  add(4, "00012", "uno");
  comments.IniciaRs({}, "seleccion", "00012");
  rows().Field("Comentarios").Value("otro");
  comments.UpdateId("00012");
  comments.Update();
  EXPECT_EQ(stored("00012"), "4 otro");
}

TEST_F(ClsProveedoresComentariosTest, UpdateIdOnNoRowsDoesNothing) {
  comments.IniciaRs({}, "ninguno");
  shop.statements();
  comments.UpdateId("00012");
  EXPECT_THAT(shop.statements(), IsEmpty());
  EXPECT_EQ(errorOf([&] { ClsProveedoresComentarios().UpdateId("00012"); }), errors::kObjectNotSet);
}

// ---- Pages

TEST_F(ClsProveedoresComentariosTest, ToHtmlShowsTheRowsRecordByRecord) {
  add(1, "00012", "Cierra en agosto");
  comments.IniciaRs({}, "seleccion", "00012");
  std::vector<Variant> none;
  ClsProveedoresComentarios::component().call(comments, "ToHtml", none);
  const std::string page = bytesOf(comments.GetHtmlFile());
  EXPECT_THAT(page, HasSubstr("<H1><font size=4>Proveedores_Comentarios</Font></H1>"));
  EXPECT_THAT(page, HasSubstr("<td><font size=1>Cierra en agosto"));
  EXPECT_THAT(page, HasSubstr("1 registros. - jueves, 5 de marzo de 2026"));
}

TEST_F(ClsProveedoresComentariosTest, ToTxtWritesCaptionsAndValues) {
  add(1, "00012", "Mañanas");
  comments.IniciaRs();
  std::vector<Variant> none;
  ClsProveedoresComentarios::component().call(comments, "ToTxt", none);
  const auto file =
      std::filesystem::path(shop.installation().folder()) / "rpt" / "Proveedores_Comentarios.txt";
  EXPECT_EQ(bytesOf(file),
            "Proveedores_Comentarios\r\n\r\n"
            "Id: 1\r\nC\xF3"
            "digo: 00012\r\nComentarios: Ma\xF1"
            "anas\r\n\r\n"
            "1 registros. - jueves, 5 de marzo de 2026\r\n");
}

TEST_F(ClsProveedoresComentariosTest, HostileTextInEveryValueChangesNothing) {
  add(1, "00012", "uno");
  for (const std::string& attack : test::hostileTexts()) {
    EXPECT_NE(errorOf([&] { comments.DeleteAll(attack); }), 0);
    EXPECT_NE(errorOf([&] { comments.CodigoLibre("P1", attack); }), 0);
    EXPECT_NE(errorOf([&] { comments.IniciaRs({}, "seleccion", attack); }), 0);
  }
  EXPECT_EQ(count(), "1");
}

}  // namespace
}  // namespace tavelor
