// SPDX-License-Identifier: MIT
// Record sets over joins: which table an edited, added or deleted row is written to.
#include "tests/recordset/support.hpp"

namespace tavelor::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr std::string_view kStock = R"(
CREATE TABLE Articulos (Codigo TEXT(10) NOT NULL, Nombre TEXT(40), Precio CURRENCY,
  PRIMARY KEY (Codigo));
CREATE TABLE Almacenes (Codigo TEXT(5) NOT NULL, Nombre TEXT(40), PRIMARY KEY (Codigo));
CREATE TABLE Movimientos (Id LONG NOT NULL, Codigo TEXT(10), Almacen TEXT(5), Cantidad DOUBLE,
  Estado LONG DEFAULT 7, PRIMARY KEY (Id));
CREATE TABLE Fichas (Codigo TEXT(10) NOT NULL, Texto TEXT(40), PRIMARY KEY (Codigo));
CREATE TABLE Precios (Codigo TEXT(10) NOT NULL, Lista TEXT(3) NOT NULL, Precio CURRENCY,
  PRIMARY KEY (Codigo, Lista));
CREATE TABLE Sueltos (Codigo TEXT(10), Texto TEXT(40));
)";

constexpr std::string_view kLedger =
    "SELECT Movimientos.Id, Movimientos.Codigo, Articulos.Nombre AS Artículo, Almacenes.Nombre AS "
    "Almacén, Movimientos.Cantidad, Movimientos.Estado FROM (Articulos INNER JOIN Movimientos ON "
    "Articulos.Codigo = Movimientos.Codigo) INNER JOIN Almacenes ON Movimientos.Almacen = "
    "Almacenes.Codigo ORDER BY Movimientos.Id";
constexpr std::string_view kBothKeys =
    "SELECT Articulos.Codigo, Articulos.Nombre, Articulos.Precio, Movimientos.Id, "
    "Movimientos.Cantidad, Movimientos.Codigo AS De FROM Articulos INNER JOIN Movimientos ON "
    "Articulos.Codigo = Movimientos.Codigo ORDER BY Movimientos.Id";

class Joined : public ShopTest {
 protected:
  Joined() {
    lease->create(kStock);
    for (const char* text : {"INSERT INTO Articulos VALUES ('A1', 'Pan', 1.5)",
                             "INSERT INTO Articulos VALUES ('A2', 'Sal', 0.5)",
                             "INSERT INTO Almacenes VALUES ('T', 'Tienda')",
                             "INSERT INTO Movimientos VALUES (1, 'A1', 'T', 10, 0)",
                             "INSERT INTO Movimientos VALUES (2, 'A1', 'T', 3, 0)",
                             "INSERT INTO Movimientos VALUES (3, 'A2', 'T', 4, 0)",
                             "INSERT INTO Fichas VALUES ('A1', 'ficha')",
                             "INSERT INTO Precios VALUES ('A1', 'PRC', 1)",
                             "INSERT INTO Precios VALUES ('A1', 'TDS', 2)",
                             "INSERT INTO Sueltos VALUES ('A1', 'x')"}) {
      run(text);
    }
    journal->lines.clear();
  }
  RecordsetPtr openLogged(std::string_view text) {
    auto set = open(text);
    journal->lines.clear();
    return set;
  }
};

TEST_F(Joined, AnEditIsWrittenToTheTableOfItsColumn) {
  const auto set = openLogged(kLedger);
  set->Field("Estado").Value(2);
  set->UpdateBatch(Affect::kCurrent);
  EXPECT_THAT(journal->texts(), ElementsAre("UPDATE \"Movimientos\" SET \"Estado\"=? WHERE "
                                            "\"Id\"=? AND \"Estado\"=?"));
  EXPECT_EQ(scalar("SELECT Sum(Estado) FROM Movimientos"), "2");
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
}

TEST_F(Joined, RowsAreDeletedFromTheTableThatHasEachOnce) {
  const auto set = openLogged(kLedger);
  set->MoveNext();
  set->Delete();
  set->UpdateBatch();
  EXPECT_THAT(journal->texts(), ElementsAre("DELETE FROM \"Movimientos\" WHERE \"Id\"=?"));
  EXPECT_EQ(scalar("SELECT Count(*) FROM Movimientos"), "2");
  EXPECT_EQ(scalar("SELECT Count(*) FROM Articulos"), "2");
  EXPECT_EQ(scalar("SELECT Count(*) FROM Almacenes"), "1");
}

TEST_F(Joined, RowsAreAddedToTheSameTableAndItsDefaultsComeBack) {
  const auto set = openLogged(kLedger);
  set->AddNew({"Id", "Codigo", "Cantidad"}, {4, "A2", 9});
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Cantidad FROM Movimientos WHERE Id = 4"), "9");
  EXPECT_EQ(textAt(*set, "Estado"), "7");
  EXPECT_TRUE(set->Field("Artículo").Value().isNull()) << "looked up by Requery only";
  EXPECT_EQ(set->Status(), record_status::kUnmodified);
}

TEST_F(Joined, TheKeyOfTheRowsTableNeedNotBeInTheSelect) {
  const auto set = openLogged(
      "SELECT Articulos.Nombre, Movimientos.Cantidad FROM Articulos INNER JOIN Movimientos ON "
      "Articulos.Codigo = Movimientos.Codigo ORDER BY Movimientos.Id");
  EXPECT_EQ(set->Fields().Count(), 2);
  set->MoveLast();
  set->Field("Cantidad").Value(40);
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Cantidad FROM Movimientos WHERE Id = 3"), "40");
}

TEST_F(Joined, AColumnOfATableWhoseKeyIsNotInTheRowCannotBeWritten) {
  const auto set = openLogged(kLedger);
  EXPECT_EQ(set->Field("Artículo").Attributes() & field_attribute::kUpdatable, 0);
  EXPECT_NE(set->Field("Estado").Attributes() & field_attribute::kUpdatable, 0);
  set->Field("Artículo").Value("Otro");
  const auto write = [&] { set->UpdateBatch(); };
  EXPECT_EQ(errorOf(write), errors::kMultipleStep);
  EXPECT_THAT(
      sentenceOf(write),
      HasSubstr("Field 'Artículo' is one of Articulos, whose key is not among the columns"));
  EXPECT_THAT(journal->texts(), testing::IsEmpty());
  set->CancelBatch();
  EXPECT_EQ(textAt(*set, "Artículo"), "Pan");
}

TEST_F(Joined, ChangesInTwoTablesWhoseKeysAreInTheRowAreWrittenToBoth) {
  const auto set = openLogged(kBothKeys);
  set->Update({"Nombre", "Cantidad", "Precio"}, {"Pan de pueblo", 11, 2});
  set->UpdateBatch();
  EXPECT_THAT(journal->texts(),
              ElementsAre(testing::StartsWith("UPDATE \"Articulos\" SET \"Nombre\"=?,\"Precio\"=? "
                                              "WHERE \"Codigo\"=? AND \"Nombre\"=?"),
                          "UPDATE \"Movimientos\" SET \"Cantidad\"=? WHERE \"Id\"=? AND "
                          "\"Cantidad\"=?"));
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), "Pan de pueblo");
  EXPECT_EQ(scalar("SELECT Cantidad FROM Movimientos WHERE Id = 1"), "11");
}

TEST_F(Joined, AConflictInOneOfTwoTablesLeavesTheOtherUnwritten) {
  const auto set = openLogged(kBothKeys);
  set->Update({"Nombre", "Cantidad"}, {"Mío", 11});
  run("UPDATE Movimientos SET Cantidad = 99 WHERE Id = 1");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), "Pan");
  EXPECT_EQ(set->Status(), record_status::kModified | record_status::kConcurrencyViolation);
  EXPECT_EQ(connection->BeginTrans(), 1) << "no level of its own is left open";
  connection->RollbackTrans();
}

TEST_F(Joined, ANewRowTakesNoValueOfATableThatIsLookedUp) {
  const auto set = openLogged(kBothKeys);
  set->AddNew({"Id", "De", "Nombre"}, {4, "A2", "Otro"});
  const auto write = [&] { set->UpdateBatch(); };
  EXPECT_THAT(sentenceOf(write), HasSubstr("'Nombre' is one of Articulos, and a new row is added "
                                           "to Movimientos only"));
  set->CancelUpdate();
  EXPECT_EQ(errorOf(write), 0);
  EXPECT_EQ(scalar("SELECT Count(*) FROM Movimientos"), "3");
}

TEST_F(Joined, OfTwoTablesJoinedByTheirKeysTheFirstHasTheRows) {
  const auto set = openLogged(
      "SELECT Fichas.Codigo, Fichas.Texto, Articulos.Nombre FROM Fichas INNER JOIN Articulos ON "
      "Fichas.Codigo = Articulos.Codigo");
  set->Delete();
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Count(*) FROM Fichas"), "0");
  EXPECT_EQ(scalar("SELECT Count(*) FROM Articulos"), "2");
}

TEST_F(Joined, OfAnOuterJoinTheRowsAreThoseOfTheTableThatKeepsAll) {
  for (const char* text :
       {"SELECT Articulos.Codigo, Fichas.Texto FROM Articulos LEFT JOIN Fichas ON Articulos.Codigo "
        "= Fichas.Codigo ORDER BY Articulos.Codigo DESC",
        "SELECT Articulos.Codigo, Fichas.Texto FROM Fichas RIGHT JOIN Articulos ON "
        "Articulos.Codigo = Fichas.Codigo ORDER BY Articulos.Codigo DESC"}) {
    const auto set = openLogged(text);
    set->AddNew({"Codigo"}, {"A9"});
    set->UpdateBatch();
    EXPECT_EQ(scalar("SELECT Count(*) FROM Articulos"), "3") << text;
    set->Delete();
    set->UpdateBatch();
    EXPECT_EQ(scalar("SELECT Count(*) FROM Articulos"), "2") << text;
  }
}

// An article has several prices, and a price several movements: deleting "the row" could mean any.
TEST_F(Joined, WhereNoTableHasEachRowOnceRowsAreEditedButNeitherAddedNorDeleted) {
  const auto set = openLogged(
      "SELECT Movimientos.Id, Movimientos.Cantidad, Precios.Lista, Precios.Precio FROM Movimientos "
      "INNER JOIN Precios ON Movimientos.Codigo = Precios.Codigo ORDER BY Movimientos.Id, Lista");
  set->Field("Cantidad").Value(8);
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Cantidad FROM Movimientos WHERE Id = 1"), "8");
  set->Field("Precio").Value(8);
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kMultipleStep) << "half of its key";
  set->CancelBatch();
  set->Delete();
  EXPECT_THAT(sentenceOf([&] { set->UpdateBatch(); }), HasSubstr("none can be added or deleted"));
  set->CancelBatch();
  EXPECT_EQ(errorOf([&] {
              set->AddNew({"Id"}, {9});
              set->UpdateBatch();
            }),
            errors::kUnspecified);
}

// The outer condition gives the key of the article for the movements that have one; the others
// stand there too, so the movement's table has the rows.
TEST_F(Joined, TheConditionOfAnOuterJoinLooksUpItsOptionalSideOnly) {
  const auto set = openLogged(
      "SELECT Articulos.Codigo, Movimientos.Id FROM Articulos LEFT JOIN Movimientos ON "
      "Articulos.Codigo = Movimientos.Codigo");
  set->Delete();
  EXPECT_THAT(sentenceOf([&] { set->UpdateBatch(); }), HasSubstr("none can be added or deleted"));
}

TEST_F(Joined, OfATableJoinedToItselfOneAppearanceIsWritten) {
  const auto set = openLogged(
      "SELECT M.Id, M.Cantidad, Otro.Id AS Segundo, Otro.Cantidad AS Suya FROM Movimientos AS M "
      "INNER JOIN Movimientos AS Otro ON M.Estado = Otro.Id");
  EXPECT_NE(set->Field("Cantidad").Attributes() & field_attribute::kUpdatable, 0);
  EXPECT_EQ(set->Field("Suya").Attributes() & field_attribute::kUpdatable, 0);
}

TEST_F(Joined, TheOtherAppearanceIsRefusedForItsOwnReason) {
  const auto set = openLogged(
      "SELECT M.Id, M.Cantidad, Otro.Id AS Segundo, Otro.Cantidad AS Suya FROM Movimientos AS M "
      "INNER JOIN Movimientos AS Otro ON M.Id = Otro.Id");
  set->Field("Suya").Value(1);
  const auto write = [&] { set->UpdateBatch(); };
  EXPECT_EQ(errorOf(write), errors::kMultipleStep);
  EXPECT_THAT(sentenceOf(write),
              HasSubstr("Field 'Suya' is one of Movimientos, which the statement names more than "
                        "once and which is written through another of its places"));
  EXPECT_THAT(journal->texts(), testing::IsEmpty());
}

// ---- Rows that show one row of another table

TEST_F(Joined, TwoRowsThatChangeOneRowOfAnotherTableAreWrittenOneAfterTheOther) {
  const auto set = open(kBothKeys);
  set->Update({"Nombre", "Precio"}, {"Pan de pueblo", 2});
  set->MoveNext();
  set->Update({"Nombre", "Cantidad"}, {"Pan de molde", 33});
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), "Pan de molde")
      << "the later one";
  EXPECT_EQ(scalar("SELECT Precio FROM Articulos WHERE Codigo = 'A1'"), "2");
  EXPECT_EQ(scalar("SELECT Cantidad FROM Movimientos WHERE Id = 2"), "33");
  set->MoveFirst();
  EXPECT_EQ(textAt(*set, "Nombre"), "Pan de pueblo") << "read anew by Requery only";
}

TEST_F(Joined, WhatAnEarlierBatchWroteThereIsExpectedByTheOtherRow) {
  const auto set = open(kBothKeys);
  set->Field("Nombre").Value("Uno");
  set->UpdateBatch(Affect::kCurrent);
  for (const char* name : {"Dos", "Tres", "Cuatro"}) {
    if (set->AbsolutePosition() == 1) {
      set->MoveNext();
    } else {
      set->MoveFirst();
    }
    set->Field("Nombre").Value(name);
    set->UpdateBatch(Affect::kCurrent);
    EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), name);
  }
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A2'"), "Sal");
}

TEST_F(Joined, WhatSomebodyElseWroteThereMeanwhileIsStillAConflict) {
  const auto set = open(kBothKeys);
  set->Field("Nombre").Value("Uno");
  set->UpdateBatch(Affect::kCurrent);
  run("UPDATE Articulos SET Nombre = 'Suyo' WHERE Codigo = 'A1'");
  set->MoveNext();
  set->Field("Nombre").Value("Dos");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), "Suyo");
  set->CancelBatch();
  set->Requery();
  set->Field("Nombre").Value("Dos");
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), "Dos");
}

TEST_F(Joined, ABatchThatFailedExpectsNothingOfWhatItHadWritten) {
  const auto set = open(kBothKeys);
  set->Field("Nombre").Value("Uno");
  set->MoveLast();
  set->Field("Id").Value(2);  // there is one
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kIntegrityViolation);
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), "Pan");
  set->CancelUpdate();
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), "Uno");
}

// A row of two tables that conflicts in one of them has written nothing to the other.
TEST_F(Joined, ARowThatConflictsLeavesNothingForTheNextOneToExpect) {
  const auto set = open(kBothKeys);
  set->Update({"Nombre", "Cantidad"}, {"Uno", 11});
  set->MoveNext();
  set->Field("Nombre").Value("Dos");
  run("UPDATE Movimientos SET Cantidad = 99 WHERE Id = 1");
  EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kRowNotLocated);
  EXPECT_EQ(scalar("SELECT Nombre FROM Articulos WHERE Codigo = 'A1'"), "Dos");
}

TEST_F(Joined, AKeylessTableIsWrittenByThePlaceOfItsRow) {
  const auto set = openLogged(
      "SELECT Sueltos.Texto, Articulos.Nombre FROM Sueltos INNER JOIN Articulos ON Sueltos.Codigo "
      "= Articulos.Codigo");
  set->Field("Texto").Value("y");
  set->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Texto FROM Sueltos"), "y");
}

TEST_F(Joined, GroupsAndDistinctRowsCannotBeWritten) {
  for (const char* text :
       {"SELECT DISTINCT Movimientos.Id, Movimientos.Cantidad FROM Movimientos INNER JOIN "
        "Articulos "
        "ON Movimientos.Codigo = Articulos.Codigo",
        "SELECT Movimientos.Id, Sum(Movimientos.Cantidad) AS Cantidad FROM Movimientos INNER JOIN "
        "Articulos ON Movimientos.Codigo = Articulos.Codigo GROUP BY Movimientos.Id"}) {
    const auto set = open(text);
    EXPECT_EQ(set->Field("Id").Attributes() & field_attribute::kUpdatable, 0);
    set->Field("Cantidad").Value(1);
    EXPECT_EQ(errorOf([&] { set->UpdateBatch(); }), errors::kUnspecified) << text;
  }
}

TEST_F(Joined, AJoinThatWentThroughXmlIsWrittenToTheSameTable) {
  const auto set = open(kLedger);
  set->Field("Estado").Value(3);
  set->Update();
  const auto loaded = Recordset::LoadXml(set->SaveXml(), Locale::spanish());
  for (std::int32_t i = 0; i < set->Fields().Count(); ++i) {
    EXPECT_EQ(loaded->Field(i).Attributes(), set->Field(i).Attributes()) << i;
  }
  loaded->ActiveConnection(connection);
  loaded->MoveLast();
  loaded->Delete();
  loaded->UpdateBatch();
  EXPECT_EQ(scalar("SELECT Count(*) FROM Movimientos"), "2");
  EXPECT_EQ(scalar("SELECT Estado FROM Movimientos WHERE Id = 1"), "3");
}

}  // namespace
}  // namespace tavelor::test
