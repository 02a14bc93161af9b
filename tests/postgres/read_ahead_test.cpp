// SPDX-License-Identifier: MIT
// Reads that are asked for before somebody wants their rows.
#include "tests/postgres/server.hpp"

namespace tavelor::engine::test {
namespace {

using Ahead = Session::Ahead;

class PostgresReadAhead : public SessionTest {
 protected:
  void SetUp() override {
    SessionTest::SetUp();
    if (IsSkipped()) return;
    session->execute("CREATE TABLE " + schema->table("T") + " (a integer PRIMARY KEY, b integer)");
    session->execute("INSERT INTO " + schema->table("T") + " VALUES (1, 10), (2, 20)");
    read = session->prepare("SELECT b FROM " + schema->table("T") + " WHERE a = $1");
    session->begin();
  }
  void TearDown() override {
    read.reset();
    SessionTest::TearDown();
  }

  /// b where a is that; nothing where there is no row.
  std::optional<std::int64_t> valueOf(std::int64_t a) {
    read->bind(1, Value::ofInteger(a));
    RowStore rows({ColumnType::kInt32});
    read->fetch(rows);
    return rows.rows() == 0 ? std::nullopt : std::optional(rows.integer(0, 0));
  }
  void ask(std::initializer_list<std::int64_t> keys) {
    session->readAhead(Ahead::kAsk);
    for (const std::int64_t key : keys) EXPECT_EQ(valueOf(key), std::nullopt);
    session->readAhead(Ahead::kAnswer);
  }
  std::int64_t write(const std::string& text) { return session->prepare(text)->send(); }

  std::unique_ptr<Prepared> read;
};

TEST_F(PostgresReadAhead, AllThatWasAskedWaitsOnceAndIsAnsweredAsOftenAsItComes) {
  EXPECT_EQ(waitsOf([&] { ask({1, 2}); }), 0);
  EXPECT_EQ(waitsOf([&] {
              EXPECT_EQ(valueOf(2), 20);
              EXPECT_EQ(valueOf(1), 10);
              EXPECT_EQ(valueOf(2), 20);
            }),
            1);
}

TEST_F(PostgresReadAhead, WhatWasNotAskedIsRun) {
  ask({1});
  EXPECT_EQ(valueOf(2), 20);
  EXPECT_EQ(waitsOf([&] { EXPECT_EQ(valueOf(2), 20); }), 1);
  EXPECT_EQ(waitsOf([&] { EXPECT_EQ(valueOf(1), 10); }), 0);
}

TEST_F(PostgresReadAhead, AnAnswerSeesWhatWasWrittenBeforeItWasAskedFor) {
  write("UPDATE " + schema->table("T") + " SET b = 11 WHERE a = 1");
  ask({1});
  EXPECT_EQ(valueOf(1), 11);
}

TEST_F(PostgresReadAhead, NoRowIsAnsweredOnce) {
  ask({3});
  EXPECT_EQ(valueOf(3), std::nullopt);
  write("INSERT INTO " + schema->table("T") + " VALUES (3, 30)");
  EXPECT_EQ(valueOf(3), 30);
}

TEST_F(PostgresReadAhead, WhatIsAtHandIsGivenToWhoAsksAgain) {
  ask({1});
  valueOf(1);
  session->readAhead(Ahead::kAsk);
  EXPECT_EQ(valueOf(1), 10);
  session->readAhead(Ahead::kAnswer);
  EXPECT_EQ(waitsOf([&] { EXPECT_EQ(valueOf(1), 10); }), 0);
}

TEST_F(PostgresReadAhead, NoRowIsAskedAgain) {
  ask({3});
  session->wait();
  write("INSERT INTO " + schema->table("T") + " VALUES (3, 30)");
  ask({3});
  EXPECT_EQ(valueOf(3), 30);
}

TEST_F(PostgresReadAhead, AnswersGoWhenReadingAheadEnds) {
  ask({1});
  session->readAhead(Ahead::kOff);
  write("UPDATE " + schema->table("T") + " SET b = 11 WHERE a = 1");
  EXPECT_EQ(valueOf(1), 11);
}

TEST_F(PostgresReadAhead, AnswersGoWithTheTransaction) {
  ask({1});
  session->commit();
  session->begin();
  EXPECT_EQ(waitsOf([&] { valueOf(1); }), 1);
  EXPECT_EQ(waitsOf([&] { valueOf(1); }), 1);
}

TEST_F(PostgresReadAhead, AnswersGoWithTheLevelThatIsRolledBack) {
  valueOf(1);
  session->begin();
  write("UPDATE " + schema->table("T") + " SET b = 11 WHERE a = 1");
  ask({1});
  EXPECT_EQ(valueOf(1), 11);
  session->rollback();
  EXPECT_EQ(valueOf(1), 10);
}

TEST_F(PostgresReadAhead, OutsideATransactionNothingIsAsked) {
  session->commit();
  session->readAhead(Ahead::kAsk);
  EXPECT_EQ(session->ahead(), Ahead::kOff);
  EXPECT_EQ(valueOf(1), 10);
}

TEST_F(PostgresReadAhead, WhatTheEngineItselfReadsIsNotAsked) {
  const std::int64_t version = session->schemaVersion();
  session->readAhead(Ahead::kAsk);
  EXPECT_EQ(session->schemaVersion(), version);
  EXPECT_TRUE(session->hasTable("T"));
  EXPECT_NE(session->describe().find("T"), nullptr);
  EXPECT_EQ(session->ahead(), Ahead::kAsk);
}

TEST_F(PostgresReadAhead, NothingIsWrittenWhileReadsAreAskedFor) {
  const std::string insert = "INSERT INTO " + schema->table("T") + " VALUES (4)";
  const auto prepared = session->prepare(insert);
  session->readAhead(Ahead::kAsk);
  RowStore rows({ColumnType::kInt32});
  EXPECT_EQ(errorNumber([&] { prepared->run(); }), errors::kNotAllowedInContext);
  EXPECT_EQ(errorNumber([&] { prepared->send(); }), errors::kNotAllowedInContext);
  EXPECT_EQ(errorNumber([&] { prepared->fetch(rows); }), errors::kNotAllowedInContext);
  EXPECT_EQ(errorNumber([&] { session->execute(insert); }), errors::kNotAllowedInContext);
  session->readAhead(Ahead::kOff);
  EXPECT_EQ(valueOf(4), std::nullopt);
}

TEST_F(PostgresReadAhead, AnAskedReadThatFailsIsTheErrorOfTheNextWait) {
  const auto wrong = session->prepare("SELECT 1 / $1::integer");
  wrong->bind(1, Value::ofInteger(0));
  RowStore rows({ColumnType::kInt32});
  session->readAhead(Ahead::kAsk);
  wrong->fetch(rows);
  session->readAhead(Ahead::kAnswer);
  try {
    valueOf(1);
    FAIL();
  } catch (const Error& error) {
    EXPECT_EQ(error.number(), errors::kDivisionByZero);
    EXPECT_NE(error.statement().find("SELECT 1 / $1"), std::string::npos) << error.statement();
  }
  EXPECT_EQ(errorNumber([&] { valueOf(1); }), errors::kTransactionLost);
  session->rollback();
  EXPECT_EQ(valueOf(1), 10);
}

TEST_F(PostgresReadAhead, AnAskedReadOfAChangedTableIsToBeTriedAgain) {
  const auto all = session->prepare("SELECT * FROM " + schema->table("T") + " WHERE a = 1");
  RowStore two({ColumnType::kInt32, ColumnType::kInt32});
  all->fetch(two);
  session->commit();
  schema->open()->execute("ALTER TABLE " + schema->table("T") + " ALTER b TYPE bigint");
  const auto askAndRead = [&] {
    RowStore rows({ColumnType::kInt32, ColumnType::kInt32});
    session->begin();
    session->readAhead(Ahead::kAsk);
    all->fetch(rows);
    session->readAhead(Ahead::kAnswer);
    all->fetch(rows);
    session->readAhead(Ahead::kOff);
    return rows.integer(0, 1);
  };
  EXPECT_EQ(errorNumber(askAndRead), errors::kTryAgain);
  session->readAhead(Ahead::kOff);
  session->rollback();
  EXPECT_EQ(askAndRead(), 10);
}

TEST_F(PostgresReadAhead, ASessionOfTheSameLineFindsTheAnswersToo) {
  const auto other = schema->open(&shared);
  ask({1});
  valueOf(1);
  const auto same = other->prepare("SELECT b FROM " + schema->table("T") + " WHERE a = $1");
  same->bind(1, Value::ofInteger(1));
  RowStore rows({ColumnType::kInt32});
  EXPECT_EQ(waitsOf([&] { same->fetch(rows); }), 0);
  EXPECT_EQ(rows.integer(0, 0), 10);
}

TEST_F(PostgresReadAhead, ALimitOfRowsIsPartOfWhatIsAsked) {
  const auto all = session->prepare("SELECT a FROM " + schema->table("T") + " ORDER BY a");
  const auto count = [&](std::size_t most) {
    RowStore rows({ColumnType::kInt32});
    all->fetch(rows, most);
    return rows.rows();
  };
  session->readAhead(Ahead::kAsk);
  count(1);
  session->readAhead(Ahead::kAnswer);
  EXPECT_EQ(waitsOf([&] { EXPECT_EQ(count(1), 1U); }), 1);
  EXPECT_EQ(waitsOf([&] { EXPECT_EQ(count(1), 1U); }), 0);
  EXPECT_EQ(waitsOf([&] { EXPECT_EQ(count(Prepared::kAllRows), 2U); }), 1);
}

}  // namespace
}  // namespace tavelor::engine::test
