// SPDX-License-Identifier: MIT
// Statements: their errors, their rows, their tables.
#include "tests/contract/support.hpp"

namespace tavelor::engine::test {
namespace {

class ContractStatements : public Contract {
 protected:
  void SetUp() override {
    Contract::SetUp();
    if (IsSkipped()) return;
    define("CREATE TABLE T (A LONG PRIMARY KEY, B TEXT(5) NOT NULL)");
  }
  void fill(int rows) const {
    Transaction transaction(*session);
    const auto statement = prepare("INSERT INTO {T:A,B} VALUES (?1, 'x')");
    for (int key = 1; key <= rows; ++key) {
      statement->bind(1, Value::ofInteger(key));
      statement->send();
    }
    transaction.commit();
  }
};
TAVELOR_ON_EVERY_ENGINE(ContractStatements);

TEST_P(ContractStatements, RunGivesTheNumberOfRowsWritten) {
  EXPECT_EQ(run("INSERT INTO {T:A,B} VALUES (1, 'a'), (2, 'b')"), 2);
  EXPECT_EQ(run("UPDATE {T} SET \"B\" = 'z' WHERE \"A\" = 9"), 0);
  EXPECT_EQ(run("SELECT \"A\" FROM {T}"), 0);
  EXPECT_EQ(run("DELETE FROM {T}"), 2);
  EXPECT_EQ(session->prepare(place->definition("CREATE TABLE U (A LONG)"))->run(), 0);
}

TEST_P(ContractStatements, ADuplicateKeyNamesItsColumnAndKeepsTheStatement) {
  run("INSERT INTO {T:A,B} VALUES (1, 'x')");
  const auto error =
      errorOf([&] { run("INSERT INTO {T:A,B} VALUES (?1, 'x')", {Value::ofInteger(1)}); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kIntegrityViolation);
  EXPECT_NE(error->nativeCode(), 0);
  EXPECT_EQ(error->description(), "There is a row with this key already: T.A.");
  // The embedded engine leaves the statement of a run to its caller.
  if (isServer()) {
    EXPECT_THAT(error->statement(), testing::HasSubstr("INSERT INTO"));
  }
}

TEST_P(ContractStatements, ANullWhereNoneIsTakenNamesItsColumn) {
  const auto error = errorOf([&] { run("INSERT INTO {T:A,B} VALUES (1, NULL)"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kIntegrityViolation);
  EXPECT_EQ(error->description(), "This column takes no Null: T.B.");
}

TEST_P(ContractStatements, AStatementMayRunAgainAfterAnError) {
  const auto statement = prepare("INSERT INTO {T:A,B} VALUES (?1, ?2)");
  statement->bind(1, Value::ofInteger(1));
  statement->bind(2, Value::null());
  EXPECT_EQ(errorNumber([&] { statement->run(); }), errors::kIntegrityViolation);
  statement->bind(2, Value::ofText("x"));
  EXPECT_EQ(statement->run(), 1);
}

TEST_P(ContractStatements, WhatTheEngineRefusesIsASyntaxErrorWithTheText) {
  for (const std::string& text :
       {std::string("SELEC 1"), sql("SELECT \"Q\" FROM {T}"), sql("SELECT 1 FROM {Missing}"),
        sql("INSERT INTO {T} VALUES (1)"), std::string("SELECT nothing_like_it(1)"),
        std::string("SELECT 'open")}) {
    const auto error = errorOf([&] { session->prepare(text)->run(); });
    ASSERT_TRUE(error) << text;
    EXPECT_EQ(error->number(), errors::kSyntax) << text;
    EXPECT_EQ(error->statement(), text);
  }
}

TEST_P(ContractStatements, PrepareTakesExactlyOneStatement) {
  for (const std::string_view text :
       {std::string_view("SELECT 1; SELECT 2"), std::string_view(""), std::string_view("  "),
        std::string_view("SELECT 1\0 x", 11)}) {
    EXPECT_EQ(errorNumber([&] { session->prepare(text); }), errors::kSyntax) << text;
  }
  EXPECT_EQ(session->prepare("SELECT 1; ")->run(), 0);
}

TEST_P(ContractStatements, ABindingThatTheStatementLacksIsAnError) {
  const auto statement = prepare("INSERT INTO {T:A,B} VALUES (?1, 'a?2')");
  EXPECT_EQ(statement->parameterCount(), 1);
  EXPECT_EQ(errorNumber([&] { statement->bind(2, Value::ofInteger(1)); }),
            errors::kMissingParameter);
  EXPECT_EQ(errorNumber([&] { statement->bind(0, Value::ofInteger(1)); }),
            errors::kMissingParameter);
}

TEST_P(ContractStatements, AFetchOfOtherColumnsThanAskedForIsAnError) {
  EXPECT_EQ(errorNumber([&] { fetch("SELECT 1, 2", {ColumnType::kInt32}); }), errors::kUnspecified);
}

TEST_P(ContractStatements, TenThousandRowsCome) {
  fill(10'000);
  const RowStore rows =
      fetch("SELECT \"A\", \"B\" FROM {T} ORDER BY \"A\"", {ColumnType::kInt32, ColumnType::kText});
  ASSERT_EQ(rows.rows(), 10'000U);
  for (std::size_t i = 0; i < rows.rows(); ++i) {
    ASSERT_EQ(rows.integer(i, 0), static_cast<std::int64_t>(i) + 1);
    ASSERT_EQ(rows.text(i, 1), "x");
  }
}

TEST_P(ContractStatements, AFetchOfAFewTakesTheFirst) {
  fill(100);
  const auto statement =
      prepare("SELECT \"A\" FROM {T} WHERE \"A\" > ?1 ORDER BY \"A\" DESC -- the last ones\n");
  statement->bind(1, Value::ofInteger(10));
  for (const std::size_t most :
       {std::size_t{0}, std::size_t{1}, std::size_t{7}, std::size_t{500}}) {
    RowStore rows({ColumnType::kInt32});
    statement->fetch(rows, most);
    EXPECT_EQ(rows.rows(), std::min<std::size_t>(most, 90));
    if (most > 0) {
      EXPECT_EQ(rows.integer(0, 0), 100);
    }
  }
}

TEST_P(ContractStatements, AFetchThatFailsHalfWayKeepsWhatCameBefore) {
  define("CREATE TABLE N (A LONG, B TEXT(5))");
  run("INSERT INTO {N:A,B} VALUES (1, '1'), (2, '2'), (3, 'x'), (4, '4')");
  RowStore rows({ColumnType::kInt32});
  const auto statement = prepare("SELECT \"B\" FROM {N} ORDER BY \"A\"");
  EXPECT_EQ(errorNumber([&] { statement->fetch(rows); }), errors::kTypeMismatch);
  EXPECT_EQ(rows.rows(), 2U);
  run("DELETE FROM {N} WHERE \"A\" = 3");
  statement->fetch(rows);
  EXPECT_EQ(rows.rows(), 5U);
}

TEST_P(ContractStatements, AWriteMayGiveRows) {
  RowStore rows({ColumnType::kInt32});
  prepare("INSERT INTO {T:A,B} VALUES (1, 'a'), (2, 'b') RETURNING \"A\"")->fetch(rows);
  EXPECT_EQ(rows.rows(), 2U);
  EXPECT_EQ(count("T"), 2);
}

TEST_P(ContractStatements, AReadOnlySessionReadsAndDoesNotWrite) {
  run("INSERT INTO {T:A,B} VALUES (1, 'x')");
  OpenOptions options = place->options();
  options.readOnly = true;
  const auto reader = place->engine().open(options);
  EXPECT_EQ(count("T", *reader), 1);
  EXPECT_EQ(errorNumber([&] { run(*reader, "DELETE FROM {T}"); }), errors::kPathAccess);
  reader->begin();
  EXPECT_EQ(count("T", *reader), 1);
  EXPECT_EQ(errorNumber([&] { run(*reader, "DELETE FROM {T}"); }), errors::kPathAccess);
  run("INSERT INTO {T:A,B} VALUES (2, 'x')");
  EXPECT_EQ(count("T", *reader), 1);  // one state of the data
  reader->commit();
  EXPECT_EQ(count("T", *reader), 2);
}

TEST_P(ContractStatements, AMissingDatabaseIsMadeOnlyWhenAsked) {
  const auto missing = GetParam()->make();
  const auto error = errorOf([&] { missing->engine().open(missing->options()); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kFileNotFound);
  OpenOptions options = missing->options();
  options.create = true;
  EXPECT_TRUE(missing->engine().open(options)->describe().tables().empty());
  options.create = false;
  EXPECT_TRUE(missing->engine().open(options)->describe().tables().empty());
}

TEST_P(ContractStatements, StatementsFollowAChangeOfTables) {
  const auto statement = prepare("INSERT INTO {T} (\"A\", \"B\") VALUES (?1, 'x')");
  statement->bind(1, Value::ofInteger(1));
  EXPECT_EQ(statement->run(), 1);
  define("ALTER TABLE T ADD COLUMN C LONG DEFAULT 5");
  statement->bind(1, Value::ofInteger(2));
  EXPECT_EQ(statement->run(), 1);
  EXPECT_EQ(wholeOf(*session, sql("SELECT \"C\" FROM {T} WHERE \"A\" = 2")), 5);
}

TEST_P(ContractStatements, AStatementTellsOnceThatItMetOtherTables) {
  const auto other = open();
  const auto statement = prepare("SELECT \"A\" FROM {T}");
  statement->run();
  statement->metOtherSchema();
  statement->run();
  EXPECT_FALSE(statement->metOtherSchema());
  other->execute(place->definition("ALTER TABLE T ADD COLUMN C LONG"));
  statement->run();
  EXPECT_TRUE(statement->metOtherSchema());
  statement->run();
  EXPECT_FALSE(statement->metOtherSchema());
}

TEST_P(ContractStatements, TheSchemaVersionIsAnotherAfterEachChange) {
  std::int64_t last = session->schemaVersion();
  const auto isNew = [&] {
    const std::int64_t version = session->schemaVersion();
    return std::exchange(last, version) != version;
  };
  EXPECT_FALSE(isNew());
  run("INSERT INTO {T:A,B} VALUES (1, 'x')");
  EXPECT_FALSE(isNew());
  for (const char* const ddl :
       {"CREATE TABLE U (A LONG, B LONG)", "ALTER TABLE U ADD COLUMN C LONG", "DROP TABLE U",
        "CREATE TABLE U (A LONG, B LONG)"}) {
    const auto other = open();
    other->execute(place->definition(ddl));
    EXPECT_TRUE(isNew()) << ddl;
  }
  EXPECT_FALSE(isNew());
}

TEST_P(ContractStatements, DescribeGivesBackWhatTheDefinitionsDeclared) {
  const std::string ddl =
      "CREATE TABLE Artículos (Id COUNTER PRIMARY KEY, Codigo TEXT(20) NOT NULL, Notas MEMO, B "
      "BYTE, "
      "S SHORT DEFAULT -7, L LONG DEFAULT 7, F SINGLE, D DOUBLE DEFAULT 0.5, C CURRENCY NOT NULL "
      "DEFAULT 0, T DATETIME, V BIT NOT NULL DEFAULT -1, X LONGBINARY, [Precio unidad] DOUBLE, "
      "P TEXT(5) DEFAULT 'x y', Q TEXT(255) DEFAULT '')";
  const std::string second =
      "CREATE TABLE AAA (A TEXT(3), B LONG NOT NULL, C LONG, PRIMARY KEY (C, A))";
  define(ddl);
  define(second);
  const Catalogue catalogue = session->describe();
  std::vector<Table> expected = dialect::parseSchema(
      "CREATE TABLE T (A LONG PRIMARY KEY, B TEXT(5) NOT NULL);" + ddl + ";" + second);
  ASSERT_EQ(catalogue.tables().size(), expected.size());
  for (std::size_t t = 0; t < expected.size(); ++t) {
    Table& table = expected[t];
    const Table& found = catalogue.tables()[t];
    for (const std::size_t part : table.key) table.columns[part].nullable = false;
    EXPECT_EQ(found.name, table.name);
    EXPECT_EQ(found.key, table.key) << table.name;
    ASSERT_EQ(found.columns.size(), table.columns.size());
    for (std::size_t c = 0; c < table.columns.size(); ++c) {
      EXPECT_EQ(found.columns[c].name, table.columns[c].name);
      EXPECT_EQ(found.columns[c].type, table.columns[c].type) << table.columns[c].name;
      EXPECT_EQ(found.columns[c].size, table.columns[c].size) << table.columns[c].name;
      EXPECT_EQ(found.columns[c].nullable, table.columns[c].nullable) << table.columns[c].name;
      EXPECT_EQ(found.columns[c].autoNumber, table.columns[c].autoNumber) << table.columns[c].name;
      EXPECT_EQ(found.columns[c].defaultText, table.columns[c].defaultText)
          << table.columns[c].name;
    }
  }
}

TEST_P(ContractStatements, TheClockIsTheOneThatItWasOpenedWith) {
  OpenOptions options = place->options();
  options.now = [] { return Date::of(2031, 2, 3); };
  EXPECT_EQ(place->engine().open(options)->now(), Date::of(2031, 2, 3));
}

}  // namespace
}  // namespace tavelor::engine::test
