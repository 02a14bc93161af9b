// SPDX-License-Identifier: MIT
// Transactions, statements and their errors.
#include <gmock/gmock.h>

#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

using testing::HasSubstr;

class SqliteSession : public testing::Test {
 protected:
  void SetUp() override {
    session->execute("CREATE TABLE T (A INTEGER PRIMARY KEY, B TEXT(5) NOT NULL)");
  }
  std::int64_t count() { return wholeOf(*session, "SELECT count(*) FROM T"); }
  void insert(int key) {
    session->execute("INSERT INTO T VALUES (" + std::to_string(key) + ", 'x')");
  }

  std::unique_ptr<Session> session = openInMemory();
};

TEST_F(SqliteSession, CommitKeepsAndRollbackUndoes) {
  EXPECT_EQ(session->begin(), 1);
  insert(1);
  EXPECT_EQ(session->commit(), 0);
  session->begin();
  insert(2);
  EXPECT_EQ(session->rollback(), 0);
  EXPECT_EQ(count(), 1);
}

TEST_F(SqliteSession, AnInnerRollbackUndoesOnlyItsLevel) {
  session->begin();
  insert(1);
  EXPECT_EQ(session->begin(), 2);
  insert(2);
  EXPECT_EQ(session->begin(), 3);
  insert(3);
  EXPECT_EQ(session->commit(), 2);
  EXPECT_EQ(session->rollback(), 1);
  insert(4);
  session->commit();
  EXPECT_EQ(textOf(*session, "SELECT group_concat(A) FROM T"), "1,4");
}

TEST_F(SqliteSession, AnOuterRollbackUndoesCommittedInnerLevels) {
  session->begin();
  session->begin();
  insert(1);
  session->commit();
  session->rollback();
  EXPECT_EQ(count(), 0);
}

TEST_F(SqliteSession, CommitAndRollbackNeedATransaction) {
  EXPECT_EQ(errorNumber([&] { session->commit(); }), errors::kNotAllowedInContext);
  EXPECT_EQ(errorNumber([&] { session->rollback(); }), errors::kNotAllowedInContext);
  session->begin();
  session->commit();
  EXPECT_EQ(errorNumber([&] { session->commit(); }), errors::kNotAllowedInContext);
}

TEST_F(SqliteSession, ATransactionGuardRollsBackUnlessCommitted) {
  {
    Transaction transaction(*session);
    insert(1);
  }
  EXPECT_EQ(count(), 0);
  {
    Transaction outer(*session);
    {
      Transaction inner(*session);
      insert(2);
      inner.commit();
    }
    outer.commit();
  }
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(session->depth(), 0);
}

TEST_F(SqliteSession, AFailedStatementLeavesTheRestOfItsTransaction) {
  session->begin();
  insert(1);
  EXPECT_EQ(errorNumber([&] { insert(1); }), errors::kIntegrityViolation);
  EXPECT_EQ(session->depth(), 1);
  insert(2);
  session->commit();
  EXPECT_EQ(count(), 2);
}

TEST_F(SqliteSession, ATransactionThatTheEngineEndedTakesNothingButItsRollbacks) {
  session->begin();
  session->begin();
  insert(1);
  EXPECT_EQ(errorNumber([&] { session->execute("INSERT OR ROLLBACK INTO T VALUES (1, 'y')"); }),
            errors::kIntegrityViolation);
  for (const int levels : {2, 1}) {
    EXPECT_EQ(session->depth(), levels);
    EXPECT_EQ(errorNumber([&] { insert(1); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { session->execute("DELETE FROM T"); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { count(); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { session->begin(); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { session->commit(); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { session->mustNotBeLost(); }), errors::kTransactionLost);
    EXPECT_EQ(session->rollback(), levels - 1);
  }
  EXPECT_EQ(count(), 0);
  insert(1);
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(session->begin(), 1);
}

TEST_F(SqliteSession, AGuardRollsBackALevelThatTheEngineHasEnded) {
  EXPECT_EQ(errorNumber([&] {
              Transaction transaction(*session);
              insert(1);
              session->execute("INSERT OR ROLLBACK INTO T VALUES (1, 'y')");
            }),
            errors::kIntegrityViolation);
  EXPECT_EQ(session->depth(), 0);
  EXPECT_EQ(count(), 0);
}

TEST_F(SqliteSession, AGuardInsideALostTransactionLeavesTheOuterLevelLost) {
  session->begin();
  EXPECT_EQ(errorNumber([&] {
              Transaction transaction(*session);
              insert(1);
              session->execute("INSERT OR ROLLBACK INTO T VALUES (1, 'y')");
            }),
            errors::kIntegrityViolation);
  EXPECT_EQ(session->depth(), 1);
  EXPECT_EQ(errorNumber([&] { insert(2); }), errors::kTransactionLost);
  EXPECT_EQ(session->rollback(), 0);
  EXPECT_EQ(count(), 0);
}

TEST_F(SqliteSession, ASessionThatDiesRollsBackEvenWhileAStatementLives) {
  const TemporaryFolder folder;
  openNew(folder.file("a.db"))->execute("CREATE TABLE T (A INTEGER)");
  auto dying = openExisting(folder.file("a.db"));
  dying->begin();
  const auto statement = dying->prepare("INSERT INTO T VALUES (1)");
  statement->run();
  dying.reset();
  const auto other = openExisting(folder.file("a.db"), 0);
  EXPECT_EQ(wholeOf(*other, "SELECT count(*) FROM T"), 0);
  other->execute("INSERT INTO T VALUES (2)");
}

TEST_F(SqliteSession, ADuplicateKeyNamesItsColumnAndKeepsTheNativeCode) {
  insert(1);
  const auto error = errorOf([&] { insert(1); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kIntegrityViolation);
  EXPECT_EQ(error->nativeCode(), 1555);
  EXPECT_THAT(error->description(), HasSubstr("T.A"));
  EXPECT_THAT(error->statement(), HasSubstr("INSERT INTO T"));
}

TEST_F(SqliteSession, ANullWhereNoneIsTakenIsAnIntegrityViolation) {
  const auto error = errorOf([&] { session->execute("INSERT INTO T VALUES (1, NULL)"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kIntegrityViolation);
  EXPECT_THAT(error->description(), HasSubstr("T.B"));
}

TEST_F(SqliteSession, ATextInAnAutoNumberIsATypeMismatch) {
  EXPECT_EQ(errorNumber([&] { session->execute("INSERT INTO T VALUES ('uno', 'x')"); }),
            errors::kTypeMismatch);
}

TEST_F(SqliteSession, ABadTextIsASyntaxErrorWithTheText) {
  const auto error = errorOf([&] { session->prepare("SELEC 1"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kSyntax);
  EXPECT_EQ(error->statement(), "SELEC 1");
}

TEST_F(SqliteSession, PrepareTakesExactlyOneStatement) {
  EXPECT_EQ(errorNumber([&] { session->prepare("SELECT 1; SELECT 2"); }), errors::kSyntax);
  EXPECT_EQ(errorNumber([&] { session->prepare(""); }), errors::kSyntax);
  EXPECT_EQ(errorNumber([&] { session->prepare("  "); }), errors::kSyntax);
  EXPECT_EQ(errorNumber([&] { session->prepare(std::string_view("SELECT 1\0 x", 11)); }),
            errors::kSyntax);
  EXPECT_EQ(errorNumber([&] { session->prepare("SELECT 1; "); }), 0);
}

TEST_F(SqliteSession, RunGivesTheNumberOfRowsWritten) {
  const auto insertTwo = session->prepare("INSERT INTO T VALUES (?1, 'a'), (?1 + 1, 'b')");
  EXPECT_EQ(insertTwo->parameterCount(), 1);
  insertTwo->bind(1, Value::ofInteger(1));
  EXPECT_EQ(insertTwo->run(), 2);
  EXPECT_EQ(session->prepare("UPDATE T SET B = 'z' WHERE A = 9")->run(), 0);
  EXPECT_EQ(session->prepare("SELECT A FROM T")->run(), 0);
  EXPECT_EQ(session->prepare("CREATE TABLE U (A INTEGER)")->run(), 0);
  EXPECT_EQ(session->prepare("DELETE FROM T")->run(), 2);
}

TEST_F(SqliteSession, AStatementMayRunAgainAfterAnError) {
  const auto statement = session->prepare("INSERT INTO T VALUES (?1, ?2)");
  statement->bind(1, Value::ofInteger(1));
  statement->bind(2, Value::null());
  EXPECT_EQ(errorNumber([&] { statement->run(); }), errors::kIntegrityViolation);
  statement->bind(2, Value::ofText("x"));
  EXPECT_EQ(statement->run(), 1);
}

TEST_F(SqliteSession, ABindingThatTheStatementLacksIsAnError) {
  const auto statement = session->prepare("INSERT INTO T VALUES (?1, 'x')");
  EXPECT_EQ(errorNumber([&] { statement->bind(2, Value::ofInteger(1)); }),
            errors::kMissingParameter);
}

TEST_F(SqliteSession, AStatementFollowsAChangeOfSchema) {
  const auto statement = session->prepare("INSERT INTO T (A, B) VALUES (?1, 'x')");
  session->execute("ALTER TABLE T ADD COLUMN C INTEGER DEFAULT 5");
  statement->bind(1, Value::ofInteger(1));
  EXPECT_EQ(statement->run(), 1);
  EXPECT_EQ(wholeOf(*session, "SELECT C FROM T"), 5);
}

TEST_F(SqliteSession, ValuesAreStoredAsPlainTypes) {
  session->execute("CREATE TABLE V (V)");
  const auto typeOf = [&](const Value& value) {
    const auto statement = session->prepare("INSERT INTO V VALUES (?1)");
    statement->bind(1, value);
    statement->run();
    return textOf(*session,
                  "SELECT typeof(V) || ' ' || coalesce(V, '') FROM V ORDER BY rowid DESC LIMIT 1");
  };
  EXPECT_EQ(typeOf(Value::null()), "null ");
  EXPECT_EQ(typeOf(Value::ofBoolean(true)), "integer -1");
  EXPECT_EQ(typeOf(Value::ofBoolean(false)), "integer 0");
  EXPECT_EQ(typeOf(Value::ofInteger(-9'000'000'000)), "integer -9000000000");
  EXPECT_EQ(typeOf(Value::ofReal(1.5)), "real 1.5");
  EXPECT_EQ(typeOf(Value::ofCurrency(Currency::fromScaled(123'456))), "real 12.3456");
  EXPECT_EQ(typeOf(Value::ofDate(Date::of(2026, 11, 21))), "real 46347.0");
  EXPECT_EQ(typeOf(Value::ofText("año")), "text año");
  EXPECT_EQ(typeOf(Value::ofText(std::string_view())), "text ");
  EXPECT_EQ(typeOf(Value::ofBytes(std::string_view("\x01z", 2))), "blob \x01z");
  EXPECT_EQ(typeOf(Value::ofBytes(std::string_view())), "blob ");
}

}  // namespace
}  // namespace tavelor::engine::test
