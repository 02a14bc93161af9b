// SPDX-License-Identifier: MIT
// Statements of the dialect through the plan cache into a real database.
#include <utility>

#include <fmt/format.h>
#include <gmock/gmock.h>

#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

using dialect::PlanCache;
using testing::HasSubstr;

class PlanCacheRuns : public testing::Test {
 protected:
  void SetUp() override {
    for (const std::string& sql : dialect::translateSchema(
             "CREATE TABLE Lineas (Id COUNTER NOT NULL, Codigo TEXT(10), Cantidad DOUBLE, Importe "
             "CURRENCY DEFAULT 0, Unidades SHORT, Fecha DATETIME, Activa BIT NOT NULL DEFAULT 0, "
             "CONSTRAINT PK PRIMARY KEY (Id));"
             "CREATE UNIQUE INDEX IX_Codigo ON Lineas (Codigo)",
             dialect::sqliteWriter())) {
      session->execute(sql);
    }
    cache = std::make_unique<PlanCache>(
        *session,
        [this] {
          ++looks;
          const std::int64_t version = session->schemaVersion();
          if (std::exchange(seen, version) != version) {
            tables = std::make_shared<const Catalogue>(session->describe());
          }
          return tables;
        },
        Locale::spanish(), dialect::sqliteWriter());
  }

  static Statement insert(std::string_view code, std::string_view quantity,
                          std::string_view amount) {
    return Statement("INSERT INTO Lineas ( Codigo, Cantidad, Importe ) SELECT DISTINCTROW '")
           << spliced(code) << "' AS codigo, '" << spliced(quantity) << "' AS Cantidad , "
           << spliced(amount) << " AS Importe ";
  }
  RowStore fetch(const Statement& statement) { return fetched(*cache, statement); }
  std::int64_t count() { return wholeOf(*session, "SELECT count(*) FROM Lineas"); }

  std::unique_ptr<Session> session = openInMemory();
  std::int64_t seen = -1;
  std::shared_ptr<const Catalogue> tables;
  int looks = 0;  // for a change of tables
  std::unique_ptr<PlanCache> cache;
};

TEST_F(PlanCacheRuns, SplicedValuesArriveTyped) {
  EXPECT_EQ(cache->run(insert("A1", "2,5", "12.34565")), 1);
  EXPECT_EQ(cache->run(insert("añ''o", "-3", "7.25")), 1);
  EXPECT_EQ(
      textOf(*session,
             "SELECT group_concat(Codigo || ' ' || typeof(Cantidad) || ' ' || Cantidad || ' ' "
             "|| typeof(Importe) || ' ' || Importe, '; ') FROM Lineas"),
      "A1 real 2.5 real 12.3456; añ'o real -3.0 real 7.25");
  EXPECT_EQ(cache->counters().translated, 1U);
}

TEST_F(PlanCacheRuns, HostileValuesNeverChangeWhatAStatementDoes) {
  cache->run(insert("A1", "1", "1"));
  for (const char* code : {"x'", "x'); DELETE FROM Lineas; --", "' or '1'='1", "x', 0, 0 --"}) {
    EXPECT_EQ(errorNumber([&] { cache->run(insert(code, "1", "1")); }), errors::kSyntax) << code;
  }
  for (const char* amount : {"1 AS a, 2", "(SELECT 1)", "1; DELETE FROM Lineas", "Importe"}) {
    EXPECT_EQ(errorNumber([&] { cache->run(insert("B", "1", amount)); }), errors::kSyntax)
        << amount;
  }
  EXPECT_EQ(count(), 1);
  cache->run(insert("x'' or 1", "1", "1"));
  EXPECT_EQ(textOf(*session, "SELECT max(Codigo) FROM Lineas"), "x' or 1");
}

TEST_F(PlanCacheRuns, MoneyAndDatesOutOfRangeAreRefused) {
  const auto run = [&](std::string_view column, std::string_view number) {
    return errorNumber([&] {
      cache->run(Statement("INSERT INTO Lineas (")
                 << Statement::trusted(column) << ") VALUES (" << spliced(number) << ")");
    });
  };
  EXPECT_EQ(run("Importe", "-9223372036854775808"), errors::kMultipleStep);
  EXPECT_EQ(run("Importe", "922337203685478"), errors::kMultipleStep);
  EXPECT_EQ(run("Importe", "-922337203685477"), 0);
  EXPECT_EQ(run("Fecha", "1e300"), errors::kMultipleStep);
  EXPECT_EQ(run("Fecha", "2958466"), errors::kMultipleStep);
  EXPECT_EQ(run("Fecha", "-657435"), errors::kMultipleStep);
  EXPECT_EQ(run("Fecha", "2958465"), 0);
  EXPECT_EQ(count(), 2);
}

TEST_F(PlanCacheRuns, AQuotedWordOfTruthMeetsAFlag) {
  cache->run(Statement("INSERT INTO Lineas (Activa) VALUES (True)"));
  const auto found = [&](std::string_view word) {
    return fetch(Statement("SELECT Id FROM Lineas WHERE Activa = '") << spliced(word) << "'")
        .rows();
  };
  EXPECT_EQ(found("True"), 1U);
  EXPECT_EQ(found("verdadero"), 1U);
  EXPECT_EQ(found("-1"), 1U);
  EXPECT_EQ(found("Falso"), 0U);
  EXPECT_EQ(errorNumber([&] { found("si"); }), errors::kTypeMismatch);
}

TEST_F(PlanCacheRuns, AFailedStatementMayRunAgainWithOtherValues) {
  cache->run(insert("A1", "1", "1"));
  const auto error = errorOf([&] { cache->run(insert("A1", "1", "1")); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kIntegrityViolation);
  EXPECT_THAT(error->statement(), HasSubstr("DISTINCTROW 'A1'"));
  EXPECT_EQ(errorNumber([&] { cache->run(insert("12345678901", "1", "1")); }),
            errors::kMultipleStep);
  EXPECT_EQ(errorNumber([&] { cache->run(insert("B", "uno", "1")); }), errors::kTypeMismatch);
  EXPECT_EQ(cache->run(insert("B", "1", "1")), 1);
  EXPECT_EQ(count(), 2);
}

TEST_F(PlanCacheRuns, RowsComeBackInTheTypesOfThePlan) {
  cache->run(insert("A1", "2", "1.5"));
  cache->run(insert("A2", "3", "2.5"));
  const auto above = [](std::string_view amount) {
    return Statement("SELECT Codigo, Importe, Cantidad*Importe AS T FROM Lineas WHERE Importe > ")
           << spliced(amount) << " ORDER BY Codigo";
  };
  const RowStore rows = fetch(above("1"));
  ASSERT_EQ(rows.rows(), 2U);
  EXPECT_EQ(rows.text(1, 0), "A2");
  EXPECT_EQ(rows.integer(1, 1), 25'000);
  EXPECT_EQ(fetch(above("2")).rows(), 1U);
}

TEST_F(PlanCacheRuns, ADivisionByZeroInARowRaises11) {
  cache->run(insert("A1", "0", "1"));
  EXPECT_EQ(errorNumber([&] { fetch(Statement("SELECT Importe/Cantidad AS P FROM Lineas")); }),
            errors::kDivisionByZero);
}

TEST_F(PlanCacheRuns, ComposedTextsReturnWhatWasStored) {
  RowStore returned({ColumnType::kInt32, ColumnType::kText, ColumnType::kCurrency});
  const std::vector<Value> values{Value::ofText("A1")};
  const std::string_view sql =
      "INSERT INTO \"Lineas\" (\"Codigo\") VALUES (?) RETURNING \"Id\", \"Codigo\", \"Importe\"";
  EXPECT_EQ(cache->run(sql, values, &returned), 1);
  ASSERT_EQ(returned.rows(), 1U);
  EXPECT_EQ(returned.integer(0, 0), 1);
  EXPECT_EQ(returned.integer(0, 2), 0);
  const auto error = errorOf([&] { cache->run(sql, values, &returned); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kIntegrityViolation);
  EXPECT_EQ(error->statement(), sql);
}

TEST_F(PlanCacheRuns, AStatementThatIsNewIsBoundToTheTablesOfThatMoment) {
  const Statement select = Statement("SELECT Color FROM Lineas WHERE Codigo = '")
                           << spliced("a") << "'";
  EXPECT_EQ(errorNumber([&] { cache->plan(select); }), errors::kMissingParameter);
  session->execute("ALTER TABLE Lineas ADD COLUMN Color TEXT(5)");
  EXPECT_EQ(cache->plan(select)->columns.at(0).definedSize, 5);
}

TEST_F(PlanCacheRuns, AReadThatIsKnownTellsThatItsTablesHaveChanged) {
  const Statement all("SELECT * FROM Lineas");
  cache->run(insert("A1", "1", "1"));
  const std::size_t columns = cache->plan(all)->columns.size();
  EXPECT_EQ(fetch(all).rows(), 1U);
  session->execute("ALTER TABLE Lineas ADD COLUMN Color TEXT(5)");

  std::vector<ColumnType> types;
  for (const auto& column : cache->plan(all)->columns) types.push_back(column.type);
  RowStore rows(types);
  EXPECT_FALSE(cache->fetch(all, rows));
  EXPECT_EQ(cache->plan(all)->columns.size(), columns + 1);
  EXPECT_EQ(fetch(all).rows(), 1U);
}

TEST_F(PlanCacheRuns, AWriteThatIsKnownIsFollowedByTheTablesOfThatMoment) {
  const Statement all("SELECT * FROM Lineas");
  const std::size_t columns = cache->plan(all)->columns.size();
  cache->run(insert("A1", "1", "1"));
  session->execute("ALTER TABLE Lineas ADD COLUMN Color TEXT(5)");
  EXPECT_EQ(cache->run(insert("A2", "1", "1")), 1);
  EXPECT_EQ(cache->plan(all)->columns.size(), columns + 1);
}

TEST_F(PlanCacheRuns, AfterATableWasTakenAwayItsStatementsAreReadAnew) {
  const Statement all("SELECT * FROM Lineas");
  fetch(all);
  session->execute("DROP TABLE Lineas");
  EXPECT_EQ(errorNumber([&] { fetch(all); }), errors::kSyntax);
  EXPECT_EQ(errorNumber([&] { cache->plan(all); }), errors::kTableNotFound);
}

// A look at the database costs as much as a short read.
TEST_F(PlanCacheRuns, AStatementThatIsKnownAsksForNoTables) {
  cache->run(insert("A1", "1", "1"));
  fetch(Statement("SELECT Codigo FROM Lineas"));
  const int before = looks;
  for (int i = 2; i < 12; ++i) {
    cache->run(insert(fmt::format("A{}", i), "1", "1"));
    fetch(Statement("SELECT Codigo FROM Lineas"));
  }
  EXPECT_EQ(looks, before);
}

}  // namespace
}  // namespace tavelor::engine::test
