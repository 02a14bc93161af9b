// SPDX-License-Identifier: MIT
// Tables read back out of a database file.
#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

TEST(SqliteDescribe, TypesSizesAndFlagsComeBack) {
  const auto session = openInMemory();
  session->execute(
      "CREATE TABLE Artículos (\n"
      "  Id INTEGER PRIMARY KEY AUTOINCREMENT,\n"
      "  Codigo TEXT(20) NOT NULL,\n"
      "  Notas TEXT,\n"
      "  B TINYINT, S SMALLINT, L INTEGER DEFAULT 7,\n"
      "  F FLOAT, D DOUBLE, C DECIMAL(19,4) NOT NULL DEFAULT 0,\n"
      "  T DATETIME, V BOOLEAN NOT NULL DEFAULT -1, X BLOB, \"Precio unidad\" double,\n"
      "  P TEXT(5) DEFAULT 'x')");
  const Catalogue catalogue = session->describe();
  const Table* table = catalogue.find("ARTÍCULOS");
  ASSERT_NE(table, nullptr);
  EXPECT_EQ(table->name, "Artículos");
  const auto column = [&](std::string_view name) -> const Column& {
    return table->columns.at(static_cast<std::size_t>(table->find(name)));
  };
  EXPECT_EQ(column("id").type, ColumnType::kInt32);
  EXPECT_TRUE(column("Id").autoNumber);
  EXPECT_FALSE(column("Id").nullable);
  EXPECT_EQ(column("Codigo").type, ColumnType::kText);
  EXPECT_EQ(column("Codigo").size, 20);
  EXPECT_FALSE(column("Codigo").nullable);
  EXPECT_EQ(column("Notas").type, ColumnType::kMemo);
  EXPECT_TRUE(column("Notas").nullable);
  EXPECT_EQ(column("B").type, ColumnType::kByte);
  EXPECT_EQ(column("S").type, ColumnType::kInt16);
  EXPECT_EQ(column("L").type, ColumnType::kInt32);
  EXPECT_EQ(column("L").defaultText, "7");
  EXPECT_FALSE(column("L").autoNumber);
  EXPECT_EQ(column("F").type, ColumnType::kSingle);
  EXPECT_EQ(column("D").type, ColumnType::kDouble);
  EXPECT_EQ(column("C").type, ColumnType::kCurrency);
  EXPECT_EQ(column("C").defaultText, "0");
  EXPECT_EQ(column("T").type, ColumnType::kDate);
  EXPECT_EQ(column("V").type, ColumnType::kBoolean);
  EXPECT_EQ(column("V").defaultText, "-1");
  EXPECT_EQ(column("X").type, ColumnType::kBinary);
  EXPECT_EQ(column("Precio unidad").type, ColumnType::kDouble);
  EXPECT_EQ(column("P").defaultText, "'x'");
  EXPECT_EQ(table->key, (std::vector<std::size_t>{0}));
}

TEST(SqliteDescribe, AKeyOfSeveralColumnsComesInKeyOrder) {
  const auto session = openInMemory();
  session->execute(
      "CREATE TABLE T (A TEXT(3), B INTEGER NOT NULL, C INTEGER NOT NULL, PRIMARY KEY (C, A))");
  const Catalogue catalogue = session->describe();
  const Table& table = *catalogue.find("T");
  EXPECT_EQ(table.key, (std::vector<std::size_t>{2, 0}));
  EXPECT_FALSE(table.columns[0].nullable);
  EXPECT_FALSE(table.columns[2].autoNumber);
}

TEST(SqliteDescribe, TablesComeInTheOrderOfTheirCreationWithoutTheEnginesOwn) {
  const auto session = openInMemory();
  session->execute(
      "CREATE TABLE Z (Id INTEGER PRIMARY KEY AUTOINCREMENT); CREATE TABLE A (X INTEGER);"
      "CREATE INDEX I ON A (X); CREATE TABLE M (X INTEGER); INSERT INTO Z DEFAULT VALUES");
  std::vector<std::string> names;
  const Catalogue catalogue = session->describe();
  for (const Table& table : catalogue.tables()) names.push_back(table.name);
  EXPECT_EQ(names, (std::vector<std::string>{"Z", "A", "M"}));
}

TEST(SqliteDescribe, WordsOfOtherProgramsAreTakenByTheirAffinity) {
  const auto session = openInMemory();
  session->execute("CREATE TABLE T (A VARCHAR(30), B BIGINT, C NUMERIC, D NVARCHAR, E)");
  const Catalogue catalogue = session->describe();
  const Table& table = *catalogue.find("T");
  EXPECT_EQ(table.columns[0].type, ColumnType::kText);
  EXPECT_EQ(table.columns[0].size, 30);
  EXPECT_EQ(table.columns[1].type, ColumnType::kInt32);
  EXPECT_EQ(table.columns[2].type, ColumnType::kDouble);
  EXPECT_EQ(table.columns[3].type, ColumnType::kMemo);
  EXPECT_EQ(table.columns[4].type, ColumnType::kBinary);
}

}  // namespace
}  // namespace tavelor::engine::test
