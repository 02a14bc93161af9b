// SPDX-License-Identifier: MIT
// The schema's definitions.
#include <gmock/gmock.h>

#include "tests/dialect/support.hpp"

namespace tavelor::dialect::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

std::vector<std::string> schema(std::string_view ddl) {
  return translateSchema(ddl, sqliteWriter());
}
std::string refusal(std::string_view ddl) {
  try {
    schema(ddl);
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errors::kSyntax);
    return error.description();
  }
  return "no error";
}

TEST(Schema, TablesCarryTheirTypesExactly) {
  EXPECT_THAT(
      schema(
          "-- Everything.\nCREATE TABLE T (\n  A TEXT(6) NOT NULL, -- the key\n  B MEMO, C BYTE, "
          "D SHORT, E LONG, F SINGLE, G DOUBLE, H CURRENCY DEFAULT 0, I DATETIME, "
          "J BIT NOT NULL DEFAULT 0, K LONGBINARY, L TEXT(5) DEFAULT 'x''y', M BIT DEFAULT True,"
          " N LONG DEFAULT -1, CONSTRAINT PK PRIMARY KEY (A));"),
      ElementsAre("CREATE TABLE T (A TEXT(6) NOT NULL, B TEXT, C TINYINT, D SMALLINT, E INT, "
                  "F FLOAT, G DOUBLE, H DECIMAL(19,4) DEFAULT 0, I DATETIME, "
                  "J BOOLEAN NOT NULL DEFAULT 0, K BLOB, L TEXT(5) DEFAULT 'x''y', "
                  "M BOOLEAN DEFAULT -1, N INT DEFAULT -1, PRIMARY KEY (A))"));
}

TEST(Schema, ACounterIsTheKeyOfItsTable) {
  EXPECT_THAT(schema("CREATE TABLE T (Id COUNTER, A LONG, PRIMARY KEY (Id))"),
              ElementsAre("CREATE TABLE T (Id INTEGER PRIMARY KEY AUTOINCREMENT, A INT)"));
  EXPECT_THAT(refusal("CREATE TABLE T (Id COUNTER, A LONG, PRIMARY KEY (A))"),
              HasSubstr("not the primary key"));
  EXPECT_THAT(refusal("CREATE TABLE T (Id COUNTER)"), HasSubstr("not the primary key"));
}

TEST(Schema, ColumnsOfTheKeyAreNeverNull) {
  EXPECT_THAT(schema("CREATE TABLE T (A LONG, B TEXT(3), PRIMARY KEY (B, A))"),
              ElementsAre("CREATE TABLE T (A INT NOT NULL, B TEXT(3) NOT NULL, "
                          "PRIMARY KEY (B, A))"));
}

TEST(Schema, IndexesChangesAndDrops) {
  EXPECT_THAT(
      schema("CREATE UNIQUE INDEX IX ON [Mi tabla] (A, [B c]); CREATE INDEX I2 ON T (A);"
             "ALTER TABLE T ADD COLUMN [Order] LONG NOT NULL DEFAULT 0; DROP INDEX I2 ON T;"
             "DROP TABLE T"),
      ElementsAre("CREATE UNIQUE INDEX IX ON \"Mi tabla\" (A, \"B c\")", "CREATE INDEX I2 ON T (A)",
                  "ALTER TABLE T ADD COLUMN \"Order\" INT NOT NULL DEFAULT 0", "DROP INDEX I2",
                  "DROP TABLE T"));
}

TEST(Schema, MistakesNameLineAndColumn) {
  EXPECT_THAT(refusal("CREATE TABLE T (\n  A TEX(3)\n)"),
              HasSubstr("a type is expected at line 2, column 5"));
  EXPECT_THAT(refusal("CREATE TABLE T (A TEXT(256))"), HasSubstr("a size from 1 to 255"));
  EXPECT_THAT(refusal("CREATE TABLE T (A LONG, a LONG)"), HasSubstr("a second column a"));
  EXPECT_THAT(refusal("CREATE TABLE T (A LONG, PRIMARY KEY (B))"), HasSubstr("unknown column 'B'"));
  EXPECT_THAT(refusal("CREATE TABLE T (A LONG) CREATE TABLE U (A LONG)"),
              HasSubstr("; is expected"));
  EXPECT_THAT(refusal("SELECT 1"), HasSubstr("CREATE, ALTER or DROP is expected"));
}

TEST(Schema, ReadsIntoTables) {
  const std::vector<engine::Table> tables = parseSchema(
      "CREATE TABLE T (Id COUNTER PRIMARY KEY, A TEXT(3)); CREATE INDEX I ON T (A);"
      "ALTER TABLE t ADD B CURRENCY; CREATE TABLE U (A LONG); DROP TABLE U;");
  ASSERT_EQ(tables.size(), 1U);
  EXPECT_EQ(tables[0].columns.size(), 3U);
  EXPECT_TRUE(tables[0].columns[0].autoNumber);
  EXPECT_THAT(tables[0].key, ElementsAre(0U));
  EXPECT_EQ(tables[0].find("b"), 2);
  EXPECT_EQ(tables[0].find("C"), -1);
}

TEST(Catalogue, FindsNamesInAnyCaseAccentsIncluded) {
  const engine::Catalogue catalogue(parseSchema("CREATE TABLE Año ([Número ñ] LONG, B LONG)"));
  const engine::Table* table = catalogue.find("AÑO");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->find("NÚMERO Ñ"), 0);
  EXPECT_EQ(table->find("b"), 1);
  EXPECT_EQ(catalogue.find("Ano"), nullptr);
}

}  // namespace
}  // namespace tavelor::dialect::test
