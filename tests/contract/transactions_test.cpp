// SPDX-License-Identifier: MIT
// Levels of transaction.
#include "tests/contract/support.hpp"

namespace tavelor::engine::test {
namespace {

class ContractTransactions : public Contract {
 protected:
  void SetUp() override {
    Contract::SetUp();
    if (IsSkipped()) return;
    define("CREATE TABLE T (A LONG PRIMARY KEY, B TEXT(5) NOT NULL)");
  }
  void insert(int key) const { insert(*session, key); }
  void insert(Session& into, int key) const {
    run(into, "INSERT INTO {T:A,B} VALUES (?1, 'x')", {Value::ofInteger(key)});
  }
  std::string keys() const {
    const RowStore rows = fetch("SELECT \"A\" FROM {T} ORDER BY \"A\"", {ColumnType::kInt32});
    std::string keys;
    for (std::size_t i = 0; i < rows.rows(); ++i) keys += std::to_string(rows.integer(i, 0)) + " ";
    return keys;
  }
};
TAVELOR_ON_EVERY_ENGINE(ContractTransactions);

TEST_P(ContractTransactions, CommitKeepsAndRollbackUndoes) {
  EXPECT_EQ(session->begin(), 1);
  insert(1);
  EXPECT_EQ(session->commit(), 0);
  session->begin();
  insert(2);
  EXPECT_EQ(session->rollback(), 0);
  EXPECT_EQ(keys(), "1 ");
}

TEST_P(ContractTransactions, AnInnerRollbackUndoesOnlyItsLevel) {
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
  EXPECT_EQ(keys(), "1 4 ");
}

TEST_P(ContractTransactions, AnOuterRollbackUndoesCommittedInnerLevels) {
  session->begin();
  session->begin();
  insert(1);
  session->commit();
  session->rollback();
  EXPECT_EQ(keys(), "");
}

TEST_P(ContractTransactions, CommitAndRollbackNeedATransaction) {
  EXPECT_EQ(errorNumber([&] { session->commit(); }), errors::kNotAllowedInContext);
  EXPECT_EQ(errorNumber([&] { session->rollback(); }), errors::kNotAllowedInContext);
  session->begin();
  session->commit();
  EXPECT_EQ(errorNumber([&] { session->commit(); }), errors::kNotAllowedInContext);
}

TEST_P(ContractTransactions, AGuardRollsBackUnlessCommitted) {
  {
    const Transaction transaction(*session);
    insert(1);
  }
  EXPECT_EQ(keys(), "");
  {
    Transaction outer(*session);
    {
      Transaction inner(*session);
      insert(2);
      inner.commit();
    }
    outer.commit();
  }
  EXPECT_EQ(keys(), "2 ");
  EXPECT_EQ(session->depth(), 0);
}

TEST_P(ContractTransactions, AFailedStatementLeavesTheRestOfItsTransaction) {
  session->begin();
  insert(1);
  EXPECT_EQ(errorNumber([&] { insert(1); }), errors::kIntegrityViolation);
  EXPECT_EQ(errorNumber([&] { execute("INSERT INTO {T:A,B} VALUES (1, 'y')"); }),
            errors::kIntegrityViolation);
  EXPECT_EQ(errorNumber([&] { prepare("SELEC 1")->run(); }), errors::kSyntax);
  EXPECT_EQ(errorNumber([&] { execute("SELEC 1"); }), errors::kSyntax);
  EXPECT_EQ(session->depth(), 1);
  insert(2);
  EXPECT_EQ(keys(), "1 2 ");
  session->commit();
  EXPECT_EQ(keys(), "1 2 ");
}

TEST_P(ContractTransactions, AFailedFirstStatementOfALevelLeavesTheLevel) {
  insert(1);
  session->begin();
  EXPECT_EQ(errorNumber([&] { insert(1); }), errors::kIntegrityViolation);
  session->begin();
  EXPECT_EQ(errorNumber([&] { insert(1); }), errors::kIntegrityViolation);
  insert(2);
  session->rollback();
  insert(3);
  session->commit();
  EXPECT_EQ(keys(), "1 3 ");
}

TEST_P(ContractTransactions, SentWritesAreThereForTheNextRead) {
  session->begin();
  const auto statement = prepare("INSERT INTO {T:A,B} VALUES (?1, ?2)");
  for (int key = 1; key <= 1000; ++key) {
    const std::string text = std::to_string(key);
    statement->bind(1, Value::ofInteger(key));
    statement->bind(2, Value::ofText(text));
    statement->send();
  }
  EXPECT_EQ(count("T"), 1000);
  session->rollback();
  EXPECT_EQ(count("T"), 0);
}

TEST_P(ContractTransactions, ASentWriteOutsideATransactionIsAwaited) {
  const auto statement = prepare("INSERT INTO {T:A,B} VALUES (?1, 'x')");
  statement->bind(1, Value::ofInteger(1));
  statement->send();
  statement->bind(1, Value::ofInteger(1));
  EXPECT_EQ(errorNumber([&] { statement->send(); }), errors::kIntegrityViolation);
  EXPECT_EQ(keys(), "1 ");
}

TEST_P(ContractTransactions, ASentWriteThatFailsIsToldByTheCommitAtTheLatest) {
  session->begin();
  const auto fails = [&] {
    insert(1);
    const auto statement = prepare("INSERT INTO {T:A,B} VALUES (?1, 'x')");
    statement->bind(1, Value::ofInteger(1));
    statement->send();
    session->commit();
  };
  const auto error = errorOf(fails);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kIntegrityViolation);
  if (session->depth() > 0) session->rollback();
  EXPECT_EQ(keys(), "");
  insert(2);
  EXPECT_EQ(keys(), "2 ");
}

TEST_P(ContractTransactions, ASessionThatDiesRollsBackEvenWhileAStatementLives) {
  auto dying = open();
  dying->begin();
  const auto statement = dying->prepare(sql("INSERT INTO {T:A,B} VALUES (1, 'x')"));
  statement->run();
  dying.reset();
  EXPECT_EQ(keys(), "");
  insert(1);
}

TEST_P(ContractTransactions, OthersSeeNothingBeforeTheCommit) {
  const auto other = open();
  session->begin();
  insert(1);
  EXPECT_EQ(count("T", *other), 0);
  session->commit();
  EXPECT_EQ(count("T", *other), 1);
}

TEST_P(ContractTransactions, WhoWantsWhatAnotherHasLockedIsBusy) {
  insert(1);
  const auto other = open(20);
  session->begin();
  run("UPDATE {T} SET \"B\" = 'y' WHERE \"A\" = 1");
  EXPECT_EQ(errorNumber([&] { run(*other, "UPDATE {T} SET \"B\" = 'z' WHERE \"A\" = 1"); }),
            errors::kBusy);
  session->commit();
  EXPECT_EQ(run(*other, "UPDATE {T} SET \"B\" = 'z' WHERE \"A\" = 1"), 1);
}

TEST_P(ContractTransactions, TenThousandLevelsNest) {
  constexpr int kLevels = 10'000;
  for (int level = 1; level <= kLevels; ++level) ASSERT_EQ(session->begin(), level);
  insert(1);
  for (int level = kLevels; level > 5'000; --level) ASSERT_EQ(session->commit(), level - 1);
  EXPECT_EQ(keys(), "1 ");
  for (int level = 5'000; level > 0; --level) ASSERT_EQ(session->rollback(), level - 1);
  EXPECT_EQ(keys(), "");
}

TEST_P(ContractTransactions, NumbersAreHeldOnlyInsideATransaction) {
  session->holdNumbersOf("T");
  session->begin();
  session->holdNumbersOf("T");
  session->holdNumbersOf("t");
  insert(1);
  session->commit();
  EXPECT_EQ(keys(), "1 ");
}

TEST_P(ContractTransactions, ADefinitionIsUndoneWithItsTransaction) {
  session->begin();
  define("CREATE TABLE U (A LONG)");
  run("INSERT INTO {U:A} VALUES (1)");
  EXPECT_NE(session->describe().find("U"), nullptr);
  session->rollback();
  EXPECT_EQ(session->describe().find("U"), nullptr);
}

}  // namespace
}  // namespace tavelor::engine::test
