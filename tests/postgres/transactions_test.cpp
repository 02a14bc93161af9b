// SPDX-License-Identifier: MIT
// The levels of several sessions over one line, and how often they wait for it.
#include <gmock/gmock.h>

#include "tests/postgres/server.hpp"

namespace tavelor::engine::test {
namespace {

class PostgresTransactions : public SessionTest {
 protected:
  void SetUp() override {
    SessionTest::SetUp();
    if (IsSkipped()) return;
    other = schema->open(&shared);
    session->execute("CREATE TABLE " + schema->table("T") + " (a integer PRIMARY KEY)");
  }
  void TearDown() override {
    other.reset();
    SessionTest::TearDown();
  }
  std::unique_ptr<Prepared> insert(Session& into, int key) {
    auto statement = into.prepare("INSERT INTO " + schema->table("T") + " VALUES ($1)");
    statement->bind(1, Value::ofInteger(key));
    return statement;
  }
  /// What is committed.
  std::string keys() {
    const auto reader = schema->open();
    return textOf(*reader, "SELECT coalesce(string_agg(a::text, ',' ORDER BY a), '') FROM " +
                               schema->table("T"));
  }
  /// How many there are inside the transaction; waits for all that was sent.
  std::int64_t keysSeen() {
    return wholeOf(*other, "SELECT count(*)::integer FROM " + schema->table("T"));
  }

  std::unique_ptr<Session> other;
};

TEST_F(PostgresTransactions, TwoSessionsOfOneLineAreOneTransaction) {
  session->begin();
  insert(*session, 1)->run();
  EXPECT_EQ(other->begin(), 1);
  insert(*other, 2)->run();
  EXPECT_EQ(wholeOf(*session, "SELECT count(*)::integer FROM " + schema->table("T")), 2);
  EXPECT_EQ(other->commit(), 0);
  EXPECT_EQ(keys(), "");
  EXPECT_EQ(session->commit(), 0);
  EXPECT_EQ(keys(), "1,2");
}

TEST_F(PostgresTransactions, ALevelThatEndsBelowOthersLeavesItsWritesToThem) {
  session->begin();
  insert(*session, 1)->run();
  other->begin();
  insert(*other, 2)->run();
  EXPECT_EQ(session->commit(), 0);
  EXPECT_EQ(keys(), "");
  EXPECT_EQ(other->rollback(), 0);
  EXPECT_EQ(keys(), "1");
}

TEST_F(PostgresTransactions, ARollbackLosesTheLevelsOfOthersAboveIt) {
  session->begin();
  other->begin();
  insert(*other, 2)->run();
  EXPECT_EQ(session->rollback(), 0);
  EXPECT_EQ(errorNumber([&] { insert(*other, 3)->run(); }), errors::kTransactionLost);
  EXPECT_EQ(errorNumber([&] { other->commit(); }), errors::kTransactionLost);
  insert(*session, 4)->run();
  EXPECT_EQ(other->rollback(), 0);
  insert(*other, 5)->run();
  EXPECT_EQ(keys(), "4,5");
}

TEST_F(PostgresTransactions, BeginAndSentWritesWaitForNothingAndACommitOnce) {
  EXPECT_EQ(waitsOf([&] {
              session->begin();
              for (int key = 1; key <= 20; ++key) insert(*session, key)->send();
              session->begin();
              insert(*session, 21)->send();
              session->commit();
              session->commit();
            }),
            1);
  EXPECT_EQ(wholeOf(*session, "SELECT count(*)::integer FROM " + schema->table("T")), 21);
}

TEST_F(PostgresTransactions, ATransactionThatSendsNothingWaitsForNothing) {
  EXPECT_EQ(waitsOf([&] {
              session->begin();
              session->begin();
              session->rollback();
              session->commit();
            }),
            0);
}

TEST_F(PostgresTransactions, AStatementInsideATransactionWaitsOnceEvenWhenItFails) {
  session->begin();
  EXPECT_EQ(waitsOf([&] { insert(*session, 1)->run(); }), 1);
  EXPECT_EQ(waitsOf([&] { insert(*session, 2)->run(); }), 1);
  EXPECT_EQ(waitsOf([&] {
              EXPECT_EQ(errorNumber([&] { insert(*session, 1)->run(); }),
                        errors::kIntegrityViolation);
            }),
            1);
  EXPECT_EQ(waitsOf([&] { insert(*session, 3)->run(); }), 1);
  EXPECT_EQ(waitsOf([&] { session->commit(); }), 1);
  EXPECT_EQ(keys(), "1,2,3");
}

TEST_F(PostgresTransactions, TheFirstStatementOfATransactionMayFailAndTheRestGoesOn) {
  insert(*session, 1)->run();
  session->begin();
  EXPECT_EQ(errorNumber([&] { insert(*session, 1)->run(); }), errors::kIntegrityViolation);
  insert(*session, 2)->run();
  session->begin();
  EXPECT_EQ(errorNumber([&] { insert(*session, 1)->run(); }), errors::kIntegrityViolation);
  insert(*session, 3)->run();
  session->commit();
  session->commit();
  EXPECT_EQ(keys(), "1,2,3");
}

TEST_F(PostgresTransactions, ReadsBeforeTheFirstWriteMayFailWithoutLosingALockOrALevel) {
  const auto fails = [&] {
    EXPECT_EQ(errorNumber([&] { wholeOf(*session, "SELECT 1 / 0"); }), errors::kDivisionByZero);
  };
  insert(*session, 1)->run();
  const auto lock =
      session->prepare("SELECT a FROM " + schema->table("T") + " WHERE a = 1 FOR UPDATE");
  const auto isLocked = [&] {
    const auto reader = schema->open();
    const auto tried =
        reader->prepare("SELECT a FROM " + schema->table("T") + " FOR UPDATE NOWAIT");
    return errorNumber([&] { tried->run(); }) == errors::kBusy;
  };
  session->begin();
  wholeOf(*session, "SELECT 1");
  fails();
  session->begin();
  wholeOf(*session, "SELECT 1");
  lock->run();
  fails();
  EXPECT_TRUE(isLocked());
  EXPECT_EQ(session->commit(), 1);
  fails();
  EXPECT_TRUE(isLocked());
  EXPECT_EQ(session->commit(), 0);
  EXPECT_FALSE(isLocked());
}

TEST_F(PostgresTransactions, ASentWriteThatFailsIsToldByTheNextWaitAndLosesAll) {
  session->begin();
  insert(*session, 1)->run();
  insert(*session, 1)->send();
  insert(*session, 2)->send();
  const auto error =
      errorOf([&] { wholeOf(*session, "SELECT count(*)::integer FROM " + schema->table("T")); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kIntegrityViolation);
  EXPECT_THAT(error->statement(), testing::StartsWith("INSERT INTO"));
  EXPECT_EQ(session->depth(), 1);
  const auto after = errorOf([&] { insert(*session, 5)->send(); });
  ASSERT_TRUE(after);
  EXPECT_EQ(after->number(), errors::kTransactionLost);
  EXPECT_THAT(after->notes(), testing::HasSubstr("There is a row with this key already: T.a"));
  EXPECT_EQ(session->rollback(), 0);
  insert(*session, 6)->run();
  EXPECT_EQ(keys(), "6");
}

TEST_F(PostgresTransactions, ASentWriteThatFailsLeavesTheLevelThatBeganInTheSamePlace) {
  session->begin();
  other->begin();
  insert(*other, 1)->send();
  insert(*other, 1)->send();
  EXPECT_EQ(errorNumber([&] { keysSeen(); }), errors::kIntegrityViolation);
  EXPECT_EQ(other->rollback(), 0);
  insert(*session, 2)->run();
  EXPECT_EQ(keys(), "") << "it is in no transaction";
  EXPECT_EQ(session->rollback(), 0);
  EXPECT_EQ(keys(), "");
}

TEST_F(PostgresTransactions, ASentWriteThatFailsLeavesTheLevelThatSharesItsSavepoint) {
  session->begin();
  insert(*session, 9)->run();
  session->begin();
  other->begin();
  insert(*other, 1)->send();
  insert(*other, 1)->send();
  EXPECT_EQ(errorNumber([&] { keysSeen(); }), errors::kIntegrityViolation);
  EXPECT_EQ(other->rollback(), 0);
  insert(*session, 2)->run();
  EXPECT_EQ(session->rollback(), 1);
  insert(*session, 3)->run();
  EXPECT_EQ(session->commit(), 0);
  EXPECT_EQ(keys(), "3,9");
}

TEST_F(PostgresTransactions, ASentWriteThatFailsAtTheCommitLeavesNothingAndNoLevel) {
  session->begin();
  insert(*session, 1)->send();
  insert(*session, 1)->send();
  EXPECT_EQ(errorNumber([&] { session->commit(); }), errors::kIntegrityViolation);
  EXPECT_EQ(session->depth(), 0);
  EXPECT_EQ(session->rollback(), 0);
  EXPECT_EQ(keys(), "");
}

}  // namespace
}  // namespace tavelor::engine::test
