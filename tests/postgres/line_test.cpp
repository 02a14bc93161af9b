// SPDX-License-Identifier: MIT
// What goes over the line: compiled statements, types of placeholders, notifications, much at once.
#include <gmock/gmock.h>

#include "tests/postgres/server.hpp"

namespace tavelor::engine::test {
namespace {

class PostgresLine : public SessionTest {
 protected:
  void SetUp() override {
    SessionTest::SetUp();
    if (IsSkipped()) return;
    session->execute("CREATE TABLE " + schema->table("T") +
                     " (a integer, b text, c numeric(19,4))");
  }
  std::int64_t compiled() const {
    return wholeOf(*session,
                   "SELECT count(*)::integer FROM pg_prepared_statements WHERE statement LIKE '%"
                   "' || '" +
                       schema->name() + "' || '%' AND statement NOT LIKE '%pg_prepared%'");
  }
};

TEST_F(PostgresLine, SessionsOfOneApartmentShareItAndOthersDoNot) {
  const auto same = schema->open(&shared);
  const auto own = schema->open();
  const std::string_view backend = "SELECT pg_backend_pid()";
  EXPECT_EQ(wholeOf(*session, backend), wholeOf(*same, backend));
  EXPECT_NE(wholeOf(*session, backend), wholeOf(*own, backend));
}

TEST_F(PostgresLine, ASessionThatWantsAnotherLineGetsOne) {
  OpenOptions options = schema->options(&shared);
  options.readOnly = true;
  const auto reader = ServerSchema::open(options);
  const auto second = ServerSchema::open(options);
  const std::string_view backend = "SELECT pg_backend_pid()";
  EXPECT_NE(wholeOf(*session, backend), wholeOf(*reader, backend));
  EXPECT_EQ(wholeOf(*second, backend), wholeOf(*reader, backend));
}

TEST_F(PostgresLine, NoStatementIsCompiledToMachineCode) {
  EXPECT_EQ(wholeOf(*session,
                    "SELECT (setting = 'off' AND source = 'session')::integer FROM pg_settings "
                    "WHERE name = 'jit'"),
            1);
}

TEST_F(PostgresLine, AStatementIsCompiledOnceHoweverManySessionsPrepareIt) {
  const auto same = schema->open(&shared);
  const std::string text = "SELECT a FROM " + schema->table("T");
  {
    const auto one = session->prepare(text);
    const auto other = same->prepare(text);
    one->run();
    other->run();
    one->run();
    EXPECT_EQ(compiled(), 1);
  }
  EXPECT_EQ(compiled(), 0);  // nobody has it any more
}

// A plan that was kept from when the table was small would look at all of its rows for each key.
TEST_F(PostgresLine, AReadOfManyKeysIsPlannedForTheTableAsItIs) {
  constexpr int kKeys = 200;
  std::string text = "SELECT a FROM " + schema->table("T") + " WHERE b IN ($1";
  for (int key = 2; key <= kKeys; ++key) text += ", $" + std::to_string(key);
  const auto read = session->prepare(text + ")");
  std::vector<std::string> keys;
  for (int key = 1; key <= kKeys; ++key) keys.push_back(std::to_string(key));
  for (int key = 1; key <= kKeys; ++key) {
    read->bind(key, Value::ofText(keys[static_cast<std::size_t>(key - 1)]));
  }
  session->execute("INSERT INTO " + schema->table("T") + " VALUES (1, '1', 1), (9999, '9999', 1)");
  for (int turn = 0; turn < 3; ++turn) {
    RowStore rows({ColumnType::kInt32});
    read->fetch(rows);
    EXPECT_EQ(rows.rows(), 1U);
  }
  EXPECT_EQ(compiled(), 0);
}

TEST_F(PostgresLine, NullsDoNotMakeItCompileAgain) {
  const auto insert =
      session->prepare("INSERT INTO " + schema->table("T") + " VALUES ($1, $2, $3)");
  const auto add = [&](const Value& a, const Value& b, const Value& c) {
    insert->bind(1, a);
    insert->bind(2, b);
    insert->bind(3, c);
    insert->run();
  };
  add(Value::ofInteger(1), Value::ofText("x"), Value::ofCurrency(Currency::fromScaled(1)));
  add(Value::null(), Value::ofText("x"), Value::null());
  add(Value::null(), Value::null(), Value::null());
  EXPECT_EQ(compiled(), 1);
  add(Value::ofInteger(1), Value::ofText("x"), Value::ofInteger(2));
  EXPECT_EQ(compiled(), 2);
}

TEST_F(PostgresLine, ANullWhoseTypeTheServerCanNotTellIsAText) {
  const auto statement = session->prepare("SELECT $1");
  statement->bind(1, Value::null());
  RowStore rows({ColumnType::kMemo});
  statement->fetch(rows);
  EXPECT_TRUE(rows.isNull(0, 0));
  const auto isNull = session->prepare("SELECT 1 WHERE $1 IS NULL");
  isNull->bind(1, Value::null());
  session->begin();
  isNull->send();
  RowStore one({ColumnType::kInt32});
  isNull->fetch(one);
  session->commit();
  EXPECT_EQ(one.rows(), 1U);
}

TEST_F(PostgresLine, AStatementWhoseResultHasAnotherTypeNowIsCompiledAgain) {
  const auto other = schema->open();
  const auto read = session->prepare("SELECT * FROM " + schema->table("T"));
  RowStore rows({ColumnType::kInt32, ColumnType::kMemo, ColumnType::kCurrency});
  read->fetch(rows);
  other->execute("ALTER TABLE " + schema->table("T") + " ALTER a TYPE double precision");
  read->fetch(rows);
  EXPECT_TRUE(read->metOtherSchema());
  other->execute("ALTER TABLE " + schema->table("T") + " ADD d integer");
  RowStore four({ColumnType::kInt32, ColumnType::kMemo, ColumnType::kCurrency, ColumnType::kInt32});
  session->begin();
  read->fetch(four);
  session->commit();
}

TEST_F(PostgresLine, AStatementThatSomebodyDiscardedIsCompiledAgain) {
  const auto read = session->prepare("SELECT a FROM " + schema->table("T"));
  read->run();
  session->execute("DEALLOCATE ALL");
  read->run();
  session->begin();
  read->run();
  read->run();
  session->commit();
}

TEST_F(PostgresLine, WhoeverChangesTablesIsHeardWithoutALook) {
  const auto read = session->prepare("SELECT a FROM " + schema->table("T"));
  read->run();
  read->metOtherSchema();
  EXPECT_EQ(waitsOf([&] { read->run(); }), 1);
  EXPECT_FALSE(read->metOtherSchema());
  const auto other = schema->open();
  other->begin();
  other->execute("CREATE TABLE " + schema->table("U") + " (a integer)");
  read->run();
  EXPECT_FALSE(read->metOtherSchema());
  other->commit();
  EXPECT_EQ(waitsOf([&] { read->run(); }), 1);
  EXPECT_TRUE(read->metOtherSchema());
}

TEST_F(PostgresLine, ADefinitionThatIsUndoneIsAChangeTwice) {
  const auto read = session->prepare("SELECT a FROM " + schema->table("T"));
  read->run();
  read->metOtherSchema();
  session->begin();
  session->execute("CREATE TABLE " + schema->table("U") + " (a integer)");
  EXPECT_TRUE(read->metOtherSchema());
  session->rollback();
  EXPECT_TRUE(read->metOtherSchema());
}

TEST_F(PostgresLine, WritesOfManyMegabytesDoNotStopEitherEnd) {
  const std::string large(3'000'000, 'x');
  const auto insert = session->prepare("INSERT INTO " + schema->table("T") +
                                       " VALUES ($1, $2) RETURNING b, b, b, b");
  session->begin();
  for (int i = 0; i < 10; ++i) {
    insert->bind(1, Value::ofInteger(i));
    insert->bind(2, Value::ofText(large));
    insert->send();
  }
  session->commit();
  EXPECT_EQ(
      wholeOf(*session, "SELECT (sum(length(b)) / 3000000)::integer FROM " + schema->table("T")),
      10);
}

TEST_F(PostgresLine, ThousandsOfSentWritesAreSettledOnTheWay) {
  const auto insert = session->prepare("INSERT INTO " + schema->table("T") + " (a) VALUES ($1)");
  const std::int64_t waits = waitsOf([&] {
    session->begin();
    for (int i = 0; i < 5'000; ++i) {
      insert->bind(1, Value::ofInteger(i));
      insert->send();
    }
    session->commit();
  });
  EXPECT_GT(waits, 1);
  EXPECT_LT(waits, 30);
  EXPECT_EQ(wholeOf(*session, "SELECT count(*)::integer FROM " + schema->table("T")), 5'000);
}

TEST_F(PostgresLine, AHoldAndTheStatementBehindItWaitOnce) {
  session->begin();
  EXPECT_EQ(waitsOf([&] {
              session->holdNumbersOf("T");
              wholeOf(*session, "SELECT coalesce(max(a), 0) + 1 FROM " + schema->table("T"));
            }),
            1);
  EXPECT_EQ(waitsOf([&] { session->holdNumbersOf("T"); }), 0);
  session->commit();
}

TEST_F(PostgresLine, ARollbackWaitsForNothing) {
  session->begin();
  session->prepare("DELETE FROM " + schema->table("T"))->run();
  EXPECT_EQ(waitsOf([&] { session->rollback(); }), 0);
  EXPECT_EQ(waitsOf([&] { session->prepare("SELECT 1")->run(); }), 1);
}

TEST_F(PostgresLine, TablesThatOtherProgramsHaveMadeGetTheNearestTypes) {
  session->execute("CREATE TABLE " + schema->table("F") +
                   " (a serial PRIMARY KEY, b bigint, c uuid, d date, e time, f timestamptz, "
                   "g boolean DEFAULT true, h numeric, i numeric(10,2), j char(3), k varchar, "
                   "l jsonb, m varchar(300), n numeric(30,10), o name, p interval)");
  const Catalogue catalogue = session->describe();
  const Table& table = *catalogue.find("F");
  std::vector<ColumnType> types;
  for (const Column& column : table.columns) types.push_back(column.type);
  using T = ColumnType;
  EXPECT_EQ(types, (std::vector{T::kInt32, T::kDouble, T::kMemo, T::kDate, T::kDate, T::kDate,
                                T::kBoolean, T::kDouble, T::kCurrency, T::kText, T::kMemo, T::kMemo,
                                T::kMemo, T::kDouble, T::kMemo, T::kMemo}));
  EXPECT_TRUE(table.columns[0].autoNumber);
  EXPECT_EQ(table.columns[0].defaultText, "");
  session->execute(
      "INSERT INTO " + schema->table("F") +
      " (b, c, d, e, f, g, h, i, j, k, l, m, n, o) VALUES (9000000000, "
      "'00112233-4455-6677-8899-aabbccddeeff', '2026-11-21', '06:00', "
      "'2026-11-21 12:00+00', true, 1.5, 12.34, 'ab', 'x', '{\"a\": 1}', 'm', 0.25, 'o')");
  types.pop_back();
  const RowStore rows = fetchAll(
      *session, "SELECT a, b, c, d, e, f, g, h, i, j, k, l, m, n, o FROM " + schema->table("F"),
      types);
  EXPECT_EQ(rows.real(0, 1), 9e9);
  EXPECT_EQ(rows.text(0, 2), "00112233-4455-6677-8899-aabbccddeeff");
  EXPECT_EQ(rows.real(0, 3), 46347);
  EXPECT_EQ(rows.real(0, 4), 0.25);
  EXPECT_EQ(rows.real(0, 5), 46347.5);
  EXPECT_EQ(rows.integer(0, 6), -1);
  EXPECT_EQ(rows.real(0, 7), 1.5);
  EXPECT_EQ(rows.integer(0, 8), 123'400);
  EXPECT_EQ(rows.text(0, 9), "ab ");
  EXPECT_EQ(rows.text(0, 11), "{\"a\": 1}");
  EXPECT_EQ(rows.real(0, 13), 0.25);
}

}  // namespace
}  // namespace tavelor::engine::test
