// SPDX-License-Identifier: MIT
// clsArticulos: lists, files, reports, planning, and the copy of the record before.
#include <filesystem>

#include "tests/classes/articulos.hpp"
#include "tests/support/engines.hpp"
#include "tests/support/form.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using testing::ElementsAre;
using testing::IsEmpty;

class ClsArticulosIntercambioTest : public testing::Test, protected test::ArticleShop {
 protected:
  explicit ClsArticulosIntercambioTest(const Settings& settings = test::fastSettings())
      : ArticleShop(settings) {}

  std::vector<std::string> texts(const std::vector<Variant>& values) {
    std::vector<std::string> all;
    for (const Variant& value : values) all.push_back(text(value));
    return all;
  }
  std::string file() { return shop.installation().exportFolder() + "/articulos.xml"; }
};

// ---- Lists

TEST_F(ClsArticulosIntercambioTest, TheArticlesThatAListSellsAreUsableAndNotInternal) {
  add("B1");
  add("A1");
  add("A2", "Interno = True");
  add("A3", "Activo = False");
  add("A4", "Lista = 'TDS'");
  EXPECT_THAT(texts(articles.ObtenerArticulosVentaActivos("PRC")), ElementsAre("A1", "B1"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo  FROM Articulos WHERE ( activo <> 0 and Interno = 0 and "
                          "Lista ='PRC' ) Order by Codigo"));
}

TEST_F(ClsArticulosIntercambioTest, ArticlesToImportAreThoseOfTheImportDatabase) {
  add("A1");
  EXPECT_THAT(articles.ObtenerArticulosImport(), IsEmpty());
  shop.run("INSERT INTO Articulos (Codigo) VALUES ('I2')", selector::kImport);
  shop.run("INSERT INTO Articulos (Codigo) VALUES ('I1')", selector::kImport);
  EXPECT_THAT(texts(articles.ObtenerArticulosImport()), ElementsAre("I1", "I2"));
  EXPECT_EQ(shop.statements().back(), "SELECT Codigo  FROM Articulos Order by Codigo");
}

TEST_F(ClsArticulosIntercambioTest, ATariffToImportIsBOrCAndElseA) {
  shop.run("INSERT INTO Articulos (Codigo, Tarifa_A, Tarifa_B, Tarifa_C) VALUES ('I1', 1, 2, 3)",
           selector::kImport);
  EXPECT_EQ(articles.ObtenerTarifaArticuloImport("I1", "A"), 1);
  EXPECT_EQ(articles.ObtenerTarifaArticuloImport("I1", "B"), 2);
  EXPECT_EQ(articles.ObtenerTarifaArticuloImport("I1", "C"), 3);
  EXPECT_EQ(articles.ObtenerTarifaArticuloImport("I1", "D"), 1);
  EXPECT_EQ(articles.ObtenerTarifaArticuloImport("x", "A"), 0);
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Tarifa_A as precio FROM Articulos WHERE ( Codigo = 'I1')",
                          "SELECT Tarifa_B as precio FROM Articulos WHERE ( Codigo = 'I1')",
                          "SELECT Tarifa_C as precio FROM Articulos WHERE ( Codigo = 'I1')",
                          "SELECT Tarifa_A as precio FROM Articulos WHERE ( Codigo = 'I1')",
                          "SELECT Tarifa_A as precio FROM Articulos WHERE ( Codigo = 'x')"));
}

TEST_F(ClsArticulosIntercambioTest, MaterialsAreStockedAndNoPackages) {
  add("A1", "Actualizar_Stock = True");
  add("A2", "Actualizar_Stock = True, Articulo_Compuesto = True");
  add("A3");
  EXPECT_THAT(texts(articles.ObtenerCol_Materiales()), ElementsAre("A1"));
  EXPECT_THAT(shop.statements(),
              ElementsAre("SELECT Codigo, Restar_Stock FROM Articulos WHERE (Articulo_Compuesto = "
                          "0 and Actualizar_Stock <> 0 and activo <> 0)"));
}

// ---- Planning

TEST_F(ClsArticulosIntercambioTest, PlanningIsAcceptedAndDeniedForAllArticlesOfTheShop) {
  for (const int database : {selector::kFurther, selector::kMain}) {
    shop.run("INSERT INTO Articulos (Codigo) VALUES ('A1')", database);
    shop.run("INSERT INTO Articulos (Codigo) VALUES ('A2')", database);
  }
  const auto planned = [&](int database) {
    return shop.text("SELECT Count(*) FROM Articulos WHERE Planificar <> 0", database);
  };
  articles.Aceptar_todos();
  EXPECT_EQ(planned(selector::kMain), "2");
  EXPECT_EQ(planned(selector::kFurther), "0") << "the shop's articles are in the main database";
  articles.Denegar_todos();
  EXPECT_EQ(planned(selector::kMain), "0");
  EXPECT_THAT(shop.statements(), ElementsAre("UPDATE Articulos SET Planificar = '1'",
                                             "UPDATE Articulos SET Planificar = '0'"));
}

TEST_F(ClsArticulosIntercambioTest, PlanningRunsOnTheCallersConnection) {
  shop.run("INSERT INTO Articulos (Codigo) VALUES ('A1')", selector::kFurther);
  ConnectionPtr connection = DataSession().OpenConnection(selector::kFurther);
  articles.Aceptar_todos(connection);
  EXPECT_EQ(shop.text("SELECT Planificar FROM Articulos", selector::kFurther), "Verdadero");
  ConnectionPtr empty;
  articles.Denegar_todos(empty);
  EXPECT_NE(empty, nullptr);
}

// ---- Files

TEST_F(ClsArticulosIntercambioTest, ArticlesAreSavedAndBecomeThePrimaryRecordSet) {
  add("A1", "Descripcion = 'Piña ''extra'' <5 kg>', Tarifa_A = 1.25, Fecha = #03/05/2026#");
  add("A2");
  articles.Create_xml_Articulos(file());
  EXPECT_THAT(shop.statements(), ElementsAre("SELECT * FROM Articulos"));

  clsArticulos other;
  const RecordsetPtr rows = other.IniciaXML(file());
  EXPECT_EQ(rows, other.DataMember("Primary"));
  EXPECT_THAT(other.DataMembers(), ElementsAre("Primary"));
  EXPECT_EQ(rows->RecordCount(), 2);
  EXPECT_EQ(text(rows->Field("Descripcion").Value()), "Piña 'extra' <5 kg>");
  EXPECT_EQ(text(rows->Field("Tarifa_A").Value()), "1,25");
  EXPECT_EQ(text(rows->Field("Fecha").Value()), "05/03/2026");
  other.MoveNext();
  EXPECT_EQ(text(rows->Field("Codigo").Value()), "A2");
}

TEST_F(ClsArticulosIntercambioTest, ATableWithoutArticlesSavesNoFile) {
  articles.Create_xml_Articulos(file());
  EXPECT_FALSE(std::filesystem::exists(file()));
}

TEST_F(ClsArticulosIntercambioTest, TheInstallationsOwnFilesAreNotOverwritten) {
  TAVELOR_ONLY_IN_FILES("a server has no files of the installation");
  add("A1");
  const std::string folder = shop.installation().folder();
  for (const char* file : {"/main.db", "/tavelor.xml"}) {
    EXPECT_EQ(errorOf([&] { articles.Create_xml_Articulos(folder + file); }), errors::kPathAccess);
  }
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos"), "1");
}

TEST_F(ClsArticulosIntercambioTest, AFileThatIsNotThereLeavesThePrimaryRecordSet) {
  articles.IniciaRs();
  const RecordsetPtr before = articles.DataMember("Primary");
  EXPECT_EQ(errorOf([&] { articles.IniciaXML(file()); }), errors::kFileNotFound);
  EXPECT_EQ(articles.DataMember("Primary"), before);
}

TEST_F(ClsArticulosIntercambioTest, MovesOfASavedRecordSetAreTold) {
  struct Listener : RecordClassEvents {
    void MoveComplete() override { ++moves; }
    int moves = 0;
  } listener;
  add("A1");
  add("A2");
  articles.Create_xml_Articulos(file());
  articles.IniciaXML(file());
  articles.addListener(listener);
  articles.MoveNext();
  EXPECT_EQ(listener.moves, 1);
  articles.removeListener(listener);
}

TEST_F(ClsArticulosIntercambioTest, AnExportFileLiesInTheExportFolder) {
  std::string path = "articulos.xml";
  articles.GetExportPath(path);
  EXPECT_EQ(path, file());
}

// ---- Reports

TEST_F(ClsArticulosIntercambioTest, ReportTablesAreBroughtUpToDate) {
  add("A1");
  articles.UpdateTablesGeneralesToRpt();
  EXPECT_THAT(shop.statements(), IsEmpty());
}

class ReportFilterTest : public ClsArticulosIntercambioTest {
 protected:
  ReportFilterTest() { articles.IniciaRs(); }
  std::string filter(Control&& control, std::string_view type = {}) {
    return articles.CreateRptFilter(control, type);
  }
};

TEST_F(ReportFilterTest, TextStandsBetweenQuotesAndIsCompleteUnlessAskedForByPattern) {
  EXPECT_EQ(filter(test::TextBox("Lista", "PRC")), "{Articulos.Lista} = 'PRC' ");
  EXPECT_EQ(filter(test::TextBox("Lista", "PRC"), ">="), "{Articulos.Lista} >= 'PRC' ");
  EXPECT_EQ(filter(test::TextBox("Lista", "PRC"), "<="), "{Articulos.Lista} <= 'PRC' ");
  EXPECT_EQ(filter(test::TextBox("Lista", "P"), "Like"), "{Articulos.Lista} Like 'P*' ");
  EXPECT_EQ(filter(test::TextBox("Lista", "PRC"), "other"), "{Articulos.Lista} = 'PRC' ");
}

TEST_F(ReportFilterTest, TheNumbersOfFormFiltersNameTheSameOperators) {
  EXPECT_EQ(filter(test::TextBox("Lista", "PRC"), "1"), "{Articulos.Lista} >= 'PRC' ");
  EXPECT_EQ(filter(test::TextBox("Lista", "PRC"), "2"), "{Articulos.Lista} <= 'PRC' ");
}

TEST_F(ReportFilterTest, ACheckBoxIsTickedOrNot) {
  EXPECT_EQ(filter(test::CheckBox("Activo", 1)), "{Articulos.Activo} <> 0 ");
  EXPECT_EQ(filter(test::CheckBox("Activo", 0)), "{Articulos.Activo} = 0 ");
  EXPECT_EQ(filter(test::CheckBox("Activo", 0), ">="), "{Articulos.Activo} = 0 ");
}

TEST_F(ReportFilterTest, ADateStandsBetweenItsMarks) {
  EXPECT_EQ(filter(test::TextBox("Fecha", "05/03/2026"), ">="),
            "{Articulos.Fecha} >= #05/03/2026# ");
  EXPECT_EQ(filter(test::TextBox("Fecha", "05/03/2026"), "Like"),
            "{Articulos.Fecha} = #05/03/2026# ");
}

TEST_F(ReportFilterTest, ANumberStandsAsItIs) {
  EXPECT_EQ(filter(test::TextBox("Existencia", "5"), "<="), "{Articulos.Existencia} <= 5 ");
  EXPECT_EQ(filter(test::TextBox("Tarifa_A", "5"), "Like"), "{Articulos.Tarifa_A} = 5 ");
}

TEST_F(ReportFilterTest, OtherControlsGiveTheirText) {
  EXPECT_EQ(filter(test::ComboBox("Familia", "MAT")), "{Articulos.Familia} = 'MAT' ");
  EXPECT_EQ(filter(test::BoundCombo("Familia", "Material", "MAT")), "{Articulos.Familia} = 'MAT' ");
  EXPECT_EQ(filter(test::ListBox("Familia", {"MAT", "FER"})),
            "{Articulos.Familia} = 'MAT' Or {Articulos.Familia} = 'FER' ");
  EXPECT_EQ(filter(test::ListBox("Familia", {})), "");
}

TEST_F(ReportFilterTest, AnEmptyControlIsNoCondition) {
  EXPECT_EQ(filter(test::TextBox("Lista", ""), "Like"), "");
  EXPECT_EQ(filter(test::TextBox("Fecha", "")), "");
}

TEST_F(ReportFilterTest, AControlOfAnUnknownFieldRaises) {
  EXPECT_EQ(errorOf([&] { filter(test::TextBox("Nada", "x")); }), errors::kItemNotFound);
}

// ---- The copy

TEST_F(ClsArticulosIntercambioTest, ANewRowIsFilledFromTheOneBefore) {
  add("1", "Descripcion = 'Uno'");
  add("2",
      "Descripcion = 'Dos', Familia = 'MAT', Tarifa_A = 7, Existencia = 9, Pendiente = 3, Fecha = "
      "#01/01/2020#, Lotes = True, Seccion = Null");
  articles.IniciaRs();
  articles.AddNew();
  articles.CopyPrevious();
  articles.Update();
  EXPECT_EQ(column("Descripcion", "3"), "Dos");
  EXPECT_EQ(column("Familia", "3"), "MAT");
  EXPECT_EQ(column("Tarifa_A", "3"), "7");
  EXPECT_EQ(column("Lotes", "3"), "Verdadero");
  EXPECT_EQ(column("Seccion", "3"), "Null");
}

TEST_F(ClsArticulosIntercambioTest, WhatTellsAnArticleApartIsNotCopied) {
  add("1", "Referencia = '50', Existencia = 9, Pendiente = 3, Fecha = #01/01/2020#");
  articles.IniciaRs();
  articles.AddNew();
  articles.CopyPrevious();
  articles.Update();
  EXPECT_EQ(column("Referencia", "2"), "51");
  EXPECT_EQ(column("Existencia", "2"), "0");
  EXPECT_EQ(column("Pendiente", "2"), "0");
  EXPECT_EQ(column("Fecha", "2"), "05/03/2026");
  EXPECT_EQ(column("Existencia", "1"), "9");
}

TEST_F(ClsArticulosIntercambioTest, ACopiedRowIsBeingAddedStillAndCancelTakesAllOfIt) {
  add("1", "Descripcion = 'Uno'");
  articles.IniciaRs();
  articles.AddNew();
  articles.CopyPrevious();
  const RecordsetPtr rows = articles.DataMember("Primary");
  EXPECT_EQ(rows->EditMode(), EditMode::kAdd);
  articles.Cancel();
  EXPECT_EQ(rows->RecordCount(), 1);
  EXPECT_FALSE(rows->hasUnwrittenChanges());
}

TEST_F(ClsArticulosIntercambioTest, TheRowBeforeIsTheLastOneThatTheViewShows) {
  add("1", "Descripcion = 'Uno', Familia = 'MAT'");
  add("2", "Descripcion = 'Dos', Familia = 'MAT'");
  add("3", "Descripcion = 'Tres'");
  articles.IniciaRs();
  const RecordsetPtr rows = articles.DataMember("Primary");
  rows->Filter("Familia = 'MAT'");
  rows->Sort("Código DESC");
  articles.AddNew();
  articles.CopyPrevious();
  EXPECT_EQ(rows->Field("Descripción").Value(), Variant("Uno"));
}

TEST_F(ClsArticulosIntercambioTest, ThereIsNothingToCopyOnAnEmptyTable) {
  articles.IniciaRs();
  EXPECT_EQ(errorOf([&] { articles.CopyPrevious(); }), errors::kNoCurrentRecord);
  articles.AddNew();
  EXPECT_EQ(errorOf([&] { articles.CopyPrevious(); }), errors::kNoCurrentRecord);
  EXPECT_TRUE(articles.EditingRecord()) << "the new row is still being filled";
  articles.Cancel();
  articles.DataMember("Primary")->UpdateBatch();
  EXPECT_EQ(shop.text("SELECT Count(*) FROM Articulos"), "0") << "and was not left to be stored";
}

TEST_F(ClsArticulosIntercambioTest, AStoredArticleIsNotReplacedByTheOneBefore) {
  add("1", "Descripcion = 'Uno'");
  add("2", "Descripcion = 'Dos'");
  articles.IniciaRs();
  articles.MoveLast();
  EXPECT_EQ(errorOf([&] { articles.CopyPrevious(); }), errors::kNotAllowedInContext);
  articles.Update();
  EXPECT_EQ(column("Descripcion", "2"), "Dos");
}

// ---- A database server

Settings serverSettings() {
  Settings settings = test::fastSettings();
  for (DatabaseSettings& database : settings.databases) database.servesAsServer = true;
  return settings;
}

class ClsArticulosServerTest : public ClsArticulosIntercambioTest {
 protected:
  ClsArticulosServerTest() : ClsArticulosIntercambioTest(serverSettings()) {}
};

TEST_F(ClsArticulosServerTest, ReportEnginesReadAServerWithoutHelp) {
  // Bringing the file up to date would wait for this reader and raise.
  const ConnectionPtr writer = shop.apartment().openConnection(selector::kMain);
  writer->BeginTrans();
  writer->Execute(Statement("INSERT INTO Articulos (Codigo) VALUES ('A1')"));
  EXPECT_NO_THROW(articles.UpdateTablesGeneralesToRpt());
  writer->RollbackTrans();
}

TEST_F(ClsArticulosIntercambioTest, WhileAnotherWritesReportTablesCannotBeBroughtUpToDate) {
  TAVELOR_ONLY_IN_FILES("nothing has to be moved into a file");
  const ConnectionPtr writer = shop.apartment().openConnection(selector::kMain);
  writer->BeginTrans();
  writer->Execute(Statement("INSERT INTO Articulos (Codigo) VALUES ('A1')"));
  EXPECT_EQ(errorOf([&] { articles.UpdateTablesGeneralesToRpt(); }), errors::kBusy);
  writer->RollbackTrans();
}

}  // namespace
}  // namespace tavelor
