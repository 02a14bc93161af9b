// SPDX-License-Identifier: MIT
// Errors of a record set tell whose rows they are about.
#include <optional>

#include "tests/recordset/support.hpp"

namespace tavelor {
namespace {

using test::ShopTest;

template <typename Action>
std::string notesOf(Action&& action) {
  try {
    action();
  } catch (const Error& error) {
    return error.notes();
  }
  return "no error";
}

class RowNotes : public ShopTest {};

TEST_F(RowNotes, NoCurrentRowTellsTheTable) {
  const auto set = openBanks();
  set->MoveLast();
  set->MoveNext();
  EXPECT_EQ(notesOf([&] { set->Field("Saldo").Value(); }), "rows of Bancos");
  EXPECT_EQ(notesOf([&] { set->MoveNext(); }), "rows of Bancos");
  EXPECT_EQ(notesOf([&] { set->Delete(); }), "rows of Bancos");
}

TEST_F(RowNotes, NoCurrentRowOfASumTellsItsTable) {
  const auto set = open("SELECT Texto, Count(*) AS n FROM Notas GROUP BY Texto");
  EXPECT_EQ(notesOf([&] { set->Field("n").Value(); }), "rows of Notas");
}

TEST_F(RowNotes, AConflictTellsTheTableAndTheKey) {
  const auto set = openBanks();
  set->MoveNext();
  set->Field("Descripcion").Value("x");
  run("UPDATE Bancos SET Descripcion = 'ajeno' WHERE Codigo = '002'");
  EXPECT_EQ(notesOf([&] { set->UpdateBatch(); }), "row of Bancos with Codigo '002'");
}

TEST_F(RowNotes, AKeyThatIsThereAlreadyIsTold) {
  const auto set = openBanks();
  set->AddNew();
  set->Field("Codigo").Value("001");
  EXPECT_EQ(notesOf([&] { set->UpdateBatch(); }), "row of Bancos with Codigo '001'");
}

TEST_F(RowNotes, TheKeyIsTheOneThatTheDatabaseKnows) {
  const auto set = openBanks();
  set->Field("Codigo").Value("002");
  EXPECT_EQ(notesOf([&] { set->UpdateBatch(); }), "row of Bancos with Codigo '001'");
}

TEST_F(RowNotes, AnUndoubledQuoteInAFilterTellsHowToWriteIt) {
  const auto set = openBanks();
  for (const char* filter :
       {"Descripcion = 'L'Hospitalet'", "Descripcion = 'O'Brien' AND Plazos = 1",
        "Descripcion = 'd'"
        "Or'",
        "Descripcion = 'Uno"}) {
    EXPECT_THAT(notesOf([&] { set->Filter(filter); }), testing::HasSubstr("sqlText()")) << filter;
  }
  EXPECT_EQ(notesOf([&] { set->Filter("Descripcion > = 3"); }), "");
}

TEST_F(RowNotes, AFilterTakesATextWithAQuote) {
  run("INSERT INTO Bancos (Codigo, Descripcion) VALUES ('004', 'L''Hospitalet')");
  const auto set = openBanks();
  set->Filter("Descripcion = " + sqlText("L'Hospitalet"));
  ASSERT_EQ(set->RecordCount(), 1);
  EXPECT_EQ(set->Field("Codigo").Value(), Variant("004"));
  set->Filter("Saldo > " + sqlLiteral(10.25) + " AND Alta = " + sqlLiteral(Date::of(2024, 1, 2)) +
              " AND Activo = " + sqlLiteral(true));
  EXPECT_EQ(set->RecordCount(), 1);
}

}  // namespace
}  // namespace tavelor
