// SPDX-License-Identifier: MIT
// Statements that the library composes for all engines, as each engine gets them.
#include <gtest/gtest.h>

#include "tavelor/services/dialect/writer.hpp"
#include "tests/dialect/support.hpp"

namespace tavelor::dialect::test {

namespace {

std::string serverText(std::string_view neutral) {
  return postgresWriter("main")->composed(neutral);
}

TEST(Composed, StandsAsItIsForTheEmbeddedEngine) {
  const std::string_view neutral = "UPDATE \"Bancos\" SET \"Banco\"=? WHERE \"Codigo\"=?2";
  EXPECT_EQ(sqliteWriter().composed(neutral), neutral);
}

TEST(Composed, NumbersPlaceholdersAndPutsTheSchemaInFrontOfTheTable) {
  EXPECT_EQ(serverText("UPDATE \"Bancos\" SET \"Banco\"=?,\"Saldo\"=? WHERE \"Codigo\"=?"),
            "UPDATE \"main\".\"Bancos\" SET \"Banco\"=$1,\"Saldo\"=$2 WHERE \"Codigo\"=$3");
  EXPECT_EQ(serverText("INSERT INTO \"A b\" (\"x\") VALUES (?) RETURNING \"x\""),
            "INSERT INTO \"main\".\"A b\" (\"x\") VALUES ($1) RETURNING \"x\"");
  EXPECT_EQ(serverText("SELECT \"x\",\"y\" FROM \"A\" WHERE \"x\"=?"),
            "SELECT \"x\",\"y\" FROM \"main\".\"A\" WHERE \"x\"=$1");
}

TEST(Composed, LeavesNumberedPlaceholdersTheirNumbers) {
  EXPECT_EQ(serverText("DELETE FROM keys WHERE path=?1 OR (path>?1||'\\' AND path<?1||']')"),
            "DELETE FROM \"main\".keys WHERE path=$1 OR (path>$1||'\\' AND path<$1||']')");
}

TEST(Composed, AnUpsertNamesItsTableOnce) {
  EXPECT_EQ(serverText("INSERT INTO T (Id, V) VALUES (1, ?) ON CONFLICT (Id) DO UPDATE SET V=?"),
            "INSERT INTO \"main\".T (Id, V) VALUES (1, $1) ON CONFLICT (Id) DO UPDATE SET V=$2");
}

TEST(Composed, QuestionMarksAndWordsInQuotesStayWhatTheyAre) {
  EXPECT_EQ(serverText("UPDATE \"FROM ?\"\"x\" SET \"¿INTO?\"=? WHERE a='FROM ?''?' AND b=?"),
            "UPDATE \"main\".\"FROM ?\"\"x\" SET \"¿INTO?\"=$1 WHERE a='FROM ?''?' AND b=$2");
}

}  // namespace

}  // namespace tavelor::dialect::test
