// SPDX-License-Identifier: MIT
// What a third engine takes: a folder with these classes, and its line among the engines.
#include <array>

#include <gtest/gtest.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/ddl.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tests/contract/skeleton_engine.hpp"

namespace tavelor::engine::skeleton {
namespace {

// What tavelor/services/engines.cpp knows of an engine; its line there is this one.
struct Entry {
  const Engine& (*engine)();
  dialect::WriterMaker writer;
};
constexpr std::array kEngines{
    // [line]
    Entry{skeletonEngine, skeletonWriter},
    // [line]
};

constexpr std::string_view kDdl =
    "CREATE TABLE Bancos (Codigo TEXT(2) NOT NULL, Saldo CURRENCY, CONSTRAINT K PRIMARY KEY "
    "(Codigo));";

class SkeletonOfAnEngine : public testing::Test {
 protected:
  std::unique_ptr<const dialect::Writer> writer = kEngines[0].writer("main");
  std::unique_ptr<Session> session = kEngines[0].engine().open({});
  dialect::PlanCache plans{*session, std::make_shared<const Catalogue>(dialect::parseSchema(kDdl)),
                           Locale::spanish(), *writer};
};

TEST_F(SkeletonOfAnEngine, TakesEveryStatementAndGivesNoRows) {
  EXPECT_EQ(plans.run(Statement("INSERT INTO Bancos (Codigo, Saldo) VALUES ('01', 1.5)")), 0);
  EXPECT_EQ(plans.run(Statement("UPDATE Bancos SET Saldo = Saldo * 2 WHERE Codigo = '01'")), 0);
  const Statement select("SELECT Codigo, Saldo FROM Bancos WHERE Saldo > 1 ORDER BY Codigo");
  RowStore rows({ColumnType::kText, ColumnType::kCurrency});
  EXPECT_TRUE(plans.fetch(select, rows));
  EXPECT_EQ(rows.rows(), 0U);
}

TEST_F(SkeletonOfAnEngine, ItsWriterSaysHowStatementsAreWrittenForIt) {
  const auto plan = plans.plan(Statement("SELECT Saldo FROM Bancos WHERE Codigo = '01'"));
  EXPECT_NE(plan->steps.front().sql.find("\"Codigo\""), std::string::npos);
  EXPECT_NE(plan->steps.front().sql.find(":1"), std::string::npos);
  EXPECT_EQ(dialect::translateSchema(kDdl, *writer).front(),
            "CREATE TABLE \"Bancos\" (\"Codigo\" TEXT, \"Saldo\" CURRENCY)");
}

TEST_F(SkeletonOfAnEngine, ItsLevelsOfTransactionAreCounted) {
  EXPECT_EQ(session->begin(), 1);
  EXPECT_EQ(session->begin(), 2);
  EXPECT_EQ(session->rollback(), 1);
  EXPECT_EQ(session->commit(), 0);
  EXPECT_THROW(session->commit(), Error);
}

}  // namespace
}  // namespace tavelor::engine::skeleton
