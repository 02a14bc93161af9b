// SPDX-License-Identifier: MIT
// What a plan cache does for an engine that tells types apart and lets many write at once.
#include "tests/dialect/plan_cache_fixture.hpp"

namespace tavelor::dialect::test {
namespace {

TEST_F(PlanCacheTest, TheClockIsTheSessionsAndTheSameForAllOfAStatement) {
  onServer.run(Statement("UPDATE Lineas SET Fecha = Now(), Nota = Date() & Time() & Now()"));
  EXPECT_THAT(journal.bound,
              ElementsAre("date 45000.750000", "date 45000.000000", "date 0.750000"));
  EXPECT_EQ(journal.looksAtTheClock, 1);
  journal.bound.clear();
  cache.run(Statement("UPDATE Lineas SET Fecha = Now()"));
  EXPECT_THAT(journal.bound, ElementsAre()) << "this engine looks at the clock itself";
  EXPECT_EQ(journal.looksAtTheClock, 1);
}

TEST_F(PlanCacheTest, CountersAreReadForWritingInATransactionOnly) {
  constexpr const char* kPlain = R"(SELECT "Numero", "Codigo" FROM "s"."Contadores" )"
                                 R"(WHERE "Codigo" = $1 ORDER BY "tv_row")";
  const auto read = [&](PlanCache& plans) {
    return fetched(plans, "SELECT Numero FROM Contadores WHERE Codigo = 'T'");
  };
  EXPECT_THAT(read(onServer), ElementsAre(kPlain));
  session.begin();
  EXPECT_THAT(read(onServer), ElementsAre(kPlain + std::string(" FOR UPDATE")));
  EXPECT_THAT(journal.bound, ElementsAre("text T"));
  const int prepared = journal.prepared;
  read(onServer);
  EXPECT_EQ(journal.prepared, prepared) << "once for all";
  EXPECT_THAT(read(cache), ElementsAre(HasSubstr("ORDER BY rowid"))) << "one writes at a time here";
  EXPECT_THAT(fetched(onServer, "SELECT Total FROM Totales"),
              ElementsAre(testing::EndsWith("ORDER BY \"tv_row\"")))
      << "no table of counters";
  for (const Statement::Constant text :
       {Statement::Constant("SELECT DISTINCT Numero FROM Contadores"),
        Statement::Constant("SELECT Count(*) FROM Contadores"),
        Statement::Constant("SELECT Numero FROM Contadores UNION SELECT Total FROM Totales"),
        Statement::Constant("SELECT Numero FROM Contadores, Totales")}) {
    EXPECT_THAT(fetched(onServer, text), ElementsAre(testing::Not(HasSubstr("FOR UPDATE"))));
  }
  session.rollback();
  EXPECT_THAT(read(onServer), ElementsAre(kPlain));
}

TEST_F(PlanCacheTest, WhoTakesTheLargestNumberInATransactionHoldsTheNumbersOfItsTable) {
  fetched(onServer, "SELECT Max(Unidades) FROM Lineas");
  EXPECT_THAT(journal.numbersHeld, ElementsAre()) << "nothing is going to be written";
  session.begin();
  fetched(onServer, "SELECT Max(Unidades) FROM Lineas WHERE Activa");
  fetched(cache, "SELECT Max(Codigo) AS Ultimo FROM Totales");
  EXPECT_THAT(journal.numbersHeld, ElementsAre("Lineas", "Totales"));
  journal.numbersHeld.clear();
  for (const Statement::Constant text :
       {Statement::Constant("SELECT Min(Unidades) FROM Lineas"),
        Statement::Constant("SELECT Max(Unidades) FROM Lineas GROUP BY Codigo"),
        Statement::Constant("SELECT Max(Unidades), Count(*) FROM Lineas"),
        Statement::Constant("SELECT Max(Unidades) FROM Lineas, Totales"),
        Statement::Constant("SELECT Max(Len(Codigo)) FROM Lineas")}) {
    fetched(onServer, text);
  }
  EXPECT_THAT(journal.numbersHeld, ElementsAre());
}

TEST_F(PlanCacheTest, WhatIsBoundForTypedColumnsIsOfTheirTypes) {
  const auto bound = [&](Statement::Constant where) {
    journal.bound.clear();
    onServer.run(Statement("DELETE FROM Lineas WHERE ") << where);
    return journal.bound;
  };
  EXPECT_THAT(bound("Importe = 0.5"), ElementsAre("money 5000"));
  EXPECT_THAT(bound("Importe = '1.000,25'"), ElementsAre("real 1000.250000"))
      << "a number with separators has no digits of its own";
  EXPECT_THAT(bound("Importe = '10,25'"), ElementsAre("money 102500"));
  EXPECT_THAT(bound("Importe = 0.00001"), ElementsAre("real 0.000010")) << "no amount is that";
  EXPECT_THAT(bound("Importe > 3"), ElementsAre("whole 3"));
  EXPECT_THAT(bound("Fecha = 46347"), ElementsAre("date 46347.000000"));
  EXPECT_THAT(bound("Fecha > 46347.5"), ElementsAre("date 46347.500000"));
  EXPECT_THAT(bound("Fecha < 1e12"), ElementsAre("date 2958466.000000")) << "behind all dates";
  EXPECT_THAT(bound("Fecha + 1 = 46347"), ElementsAre("whole 1", "whole 46347"));
  EXPECT_THAT(bound("Unidades = 3 And Activa = 'True'"), ElementsAre("whole 3", "flag -1"));
  onServer.run(Statement("UPDATE Lineas SET Fecha = 46347"));
  EXPECT_THAT(journal.bound, ElementsAre("date 46347.000000"));
}

}  // namespace
}  // namespace tavelor::dialect::test
