// SPDX-License-Identifier: MIT
// What goes wrong between a session and its server.
#include <thread>

#include <gmock/gmock.h>
#include <sys/wait.h>

#include "tavelor/services/postgres/connect.hpp"
#include "tests/postgres/server.hpp"
#include "tests/support/line_proxy.hpp"

namespace tavelor::engine::test {
namespace {

using testing::HasSubstr;
using testing::Not;

class PostgresFaults : public ServerTest {
 protected:
  void SetUp() override {
    ServerTest::SetUp();
    if (IsSkipped()) return;
    schema.emplace();
    session = schema->open();
    killer = schema->open();
    session->execute("CREATE TABLE " + schema->table("T") + " (a integer PRIMARY KEY, b text)");
  }
  void TearDown() override {
    session.reset();
    killer.reset();
    schema.reset();
  }

  static std::string backendOf(Session& of) {
    return std::to_string(wholeOf(of, "SELECT pg_backend_pid()"));
  }
  /// Ends a session's backend, and waits until it is gone.
  void kill(const std::string& backend) const {
    killer->prepare("SELECT pg_terminate_backend(" + backend + ", 5000)")->run();
  }
  std::unique_ptr<Prepared> insert(Session& into, int key) const {
    auto statement = into.prepare("INSERT INTO " + schema->table("T") + " VALUES ($1)");
    statement->bind(1, Value::ofInteger(key));
    return statement;
  }
  std::int64_t count() const {
    return wholeOf(*killer, "SELECT count(*) FROM " + schema->table("T"));
  }

  std::optional<ServerSchema> schema;
  std::unique_ptr<Session> session;
  std::unique_ptr<Session> killer;
};

TEST_F(PostgresFaults, ALineThatWasCutWhileIdleIsMadeAnew) {
  const auto prepared = insert(*session, 1);
  prepared->run();
  kill(backendOf(*session));
  prepared->bind(1, Value::ofInteger(2));
  EXPECT_EQ(prepared->run(), 1);
  EXPECT_TRUE(prepared->metOtherSchema());
  kill(backendOf(*session));
  session->begin();
  insert(*session, 3)->send();
  session->commit();
  EXPECT_EQ(count(), 3);
}

TEST_F(PostgresFaults, ALineLostInATransactionLosesItsLevelsAndTheNextUseBehindThemIsNew) {
  const std::string backend = backendOf(*session);
  session->begin();
  insert(*session, 1)->run();
  session->begin();
  kill(backend);
  EXPECT_EQ(errorNumber([&] { insert(*session, 2)->run(); }), errors::kConnectionLost);
  for (const int levels : {2, 1}) {
    EXPECT_EQ(session->depth(), levels);
    EXPECT_EQ(errorNumber([&] { insert(*session, 2)->run(); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { session->execute("SELECT 1"); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { session->begin(); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { session->commit(); }), errors::kTransactionLost);
    EXPECT_EQ(errorNumber([&] { session->mustNotBeLost(); }), errors::kTransactionLost);
    EXPECT_EQ(session->rollback(), levels - 1);
  }
  EXPECT_EQ(count(), 0);
  insert(*session, 3)->run();
  EXPECT_EQ(count(), 1);
}

TEST_F(PostgresFaults, ACommitWhoseLineIsLostSaysThatItsOutcomeIsNotKnown) {
  const std::string backend = backendOf(*session);
  session->begin();
  insert(*session, 1)->run();
  insert(*session, 2)->send();
  kill(backend);
  const auto error = errorOf([&] { session->commit(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kConnectionLost);
  EXPECT_THAT(error->description(), HasSubstr("is not known"));
  EXPECT_EQ(session->depth(), 0);
  EXPECT_EQ(session->rollback(), 0);
  EXPECT_EQ(count(), 0);
}

TEST_F(PostgresFaults, AReadWhoseLineIsLostInTheMiddleIsAskedAgainAndAWriteIsNot) {
  const std::string backend = backendOf(*session);
  // It ends its own line the first time; over the new one it is another backend.
  const std::string dies = "CASE WHEN pg_backend_pid() = " + backend +
                           " THEN pg_terminate_backend(pg_backend_pid()) ELSE true END";
  EXPECT_EQ(wholeOf(*session, "SELECT 7 WHERE " + dies), 7);
  EXPECT_NE(backendOf(*session), backend);

  const std::string next = backendOf(*session);
  const auto write = session->prepare("INSERT INTO " + schema->table("T") +
                                      " SELECT 1 WHERE pg_terminate_backend(" + next + ")");
  const auto error = errorOf([&] { write->run(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kConnectionLost);
  EXPECT_THAT(error->statement(), HasSubstr("INSERT INTO"));
  EXPECT_EQ(count(), 0);
}

TEST_F(PostgresFaults, AReadInsideATransactionIsNotAskedAgain) {
  session->begin();
  const auto read = session->prepare("SELECT pg_terminate_backend(pg_backend_pid())");
  EXPECT_EQ(errorNumber([&] { read->run(); }), errors::kConnectionLost);
  EXPECT_EQ(errorNumber([&] { read->run(); }), errors::kTransactionLost);
  session->rollback();
}

TEST_F(PostgresFaults, AStatementThatTakesTooLongIsToldSoAndLeavesItsTransaction) {
  session->begin();
  insert(*session, 1)->run();
  session->execute("SET LOCAL statement_timeout = '20ms'");
  EXPECT_EQ(errorNumber([&] { session->prepare("SELECT pg_sleep(30)")->run(); }), errors::kTimeout);
  session->execute("SET LOCAL statement_timeout = 0");
  insert(*session, 2)->run();
  session->commit();
  EXPECT_EQ(count(), 2);
}

TEST_F(PostgresFaults, AStatementThatIsCancelledFromOutsideIsATimeoutThread) {
  const std::string backend = backendOf(*session);
  std::optional<Error> error;
  std::thread waiting(
      [&] { error = errorOf([&] { session->prepare("SELECT pg_sleep(60)")->run(); }); });
  const std::string isAsleep =
      "SELECT count(*) FROM pg_stat_activity WHERE wait_event = 'PgSleep' AND pid = " + backend;
  while (wholeOf(*killer, isAsleep) == 0) std::this_thread::yield();
  killer->prepare("SELECT pg_cancel_backend(" + backend + ")")->run();
  waiting.join();
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kTimeout);
}

TEST_F(PostgresFaults, OfTwoThatWaitForEachOtherOneIsToldToTryAgainThread) {
  insert(*session, 1)->run();
  insert(*session, 2)->run();
  const auto touch = [&](Session& by, int key) {
    const auto update = by.prepare("UPDATE " + schema->table("T") + " SET b = 'x' WHERE a = $1");
    update->bind(1, Value::ofInteger(key));
    update->run();
  };
  const auto other = schema->open();
  session->begin();
  touch(*session, 1);
  other->begin();
  touch(*other, 2);
  std::optional<Error> first;
  std::thread waiting([&] { first = errorOf([&] { touch(*session, 2); }); });
  const auto second = errorOf([&] { touch(*other, 1); });
  waiting.join();
  ASSERT_NE(first.has_value(), second.has_value());
  EXPECT_EQ((first ? *first : *second).number(), errors::kTryAgain);
  Session& victim = first ? *session : *other;
  Session& winner = first ? *other : *session;
  EXPECT_EQ(errorNumber([&] { touch(victim, 1); }), errors::kTransactionLost);
  winner.commit();
  EXPECT_EQ(victim.rollback(), 0);
  touch(victim, 1);
}

TEST_F(PostgresFaults, NumbersThatAreHeldMakeOthersWait) {
  OpenOptions options = schema->options();
  options.busyTimeoutMs = 20;
  const auto other = ServerSchema::open(options);
  session->begin();
  session->holdNumbersOf("T");
  insert(*session, 1)->run();
  other->begin();
  insert(*other, 5)->run();
  other->holdNumbersOf("t");
  EXPECT_EQ(errorNumber([&] { insert(*other, 2)->run(); }), errors::kBusy);
  other->holdNumbersOf("U");
  insert(*other, 3)->run();
  session->commit();
  other->holdNumbersOf("T");
  insert(*other, 4)->run();
  other->commit();
  EXPECT_EQ(count(), 4);
}

TEST_F(PostgresFaults, WhatTheTypesOfTheServerDoNotTakeIsToldByItsNumber) {
  session->execute("CREATE TABLE " + schema->table("V") +
                   " (t varchar(3), b tavelor.byte, f tavelor.flag, c numeric(19,4), d timestamp, "
                   "l integer, r real)");
  const auto put = [&](const std::string& column, const Value& value) {
    return errorNumber([&] {
      const auto statement =
          session->prepare("INSERT INTO " + schema->table("V") + " (" + column + ") VALUES ($1)");
      statement->bind(1, value);
      statement->run();
    });
  };
  EXPECT_EQ(put("t", Value::ofText("four")), errors::kMultipleStep);
  EXPECT_EQ(put("t", Value::ofText(std::string_view("a\0b", 3))), errors::kTypeMismatch);
  EXPECT_EQ(put("t", Value::ofText("\xFF\xFE")), errors::kTypeMismatch);
  EXPECT_EQ(put("b", Value::ofInteger(256)), errors::kIntegrityViolation);
  EXPECT_EQ(put("f", Value::ofInteger(1)), errors::kIntegrityViolation);
  EXPECT_EQ(put("l", Value::ofInteger(2'147'483'648)), errors::kOverflow);
  EXPECT_EQ(put("l", Value::ofInteger(std::numeric_limits<std::int64_t>::min())),
            errors::kOverflow);
  EXPECT_EQ(put("r", Value::ofReal(1e300)), errors::kOverflow);
  EXPECT_EQ(put("c", Value::ofReal(1e300)), errors::kOverflow);
  EXPECT_EQ(put("d", Value::ofDate(Date(1e300))), errors::kOverflow);
  EXPECT_EQ(put("d", Value::ofDate(Date(std::nan("")))), errors::kOverflow);
  EXPECT_EQ(put("l", Value::ofText("12")), errors::kSyntax);
  EXPECT_EQ(errorNumber([&] { wholeOf(*session, "SELECT 1 / 0"); }), errors::kDivisionByZero);
  EXPECT_EQ(errorNumber([&] { wholeOf(*session, "SELECT 'x'::integer"); }), errors::kTypeMismatch);
  EXPECT_EQ(
      put("c", Value::ofCurrency(Currency::fromScaled(std::numeric_limits<std::int64_t>::min()))),
      0);
}

TEST_F(PostgresFaults, WhatAFunctionOfTheDialectRaisesKeepsItsNumberAndText) {
  const auto error = errorOf([&] { textOf(*session, "SELECT tv_raise(6, 'of all things')"); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kOverflow);
  EXPECT_THAT(error->description(), HasSubstr("of all things"));
}

TEST_F(PostgresFaults, ASyntaxErrorTellsThePlaceInBytes) {
  const auto error = errorOf([&] { session->prepare("SELECT 'añ', nothing")->run(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->offset(), 14);
  EXPECT_EQ(error->nativeCode(), 6'820'851);  // 42703 in base 36
}

TEST_F(PostgresFaults, ACommitThatTheServerRefusesLeavesNothingAndNoLevel) {
  session->execute("CREATE TABLE " + schema->table("D") +
                   " (a integer, UNIQUE (a) DEFERRABLE INITIALLY DEFERRED)");
  const auto add = session->prepare("INSERT INTO " + schema->table("D") + " VALUES (1)");
  session->begin();
  add->run();
  session->begin();
  add->run();
  session->commit();
  EXPECT_EQ(errorNumber([&] { session->commit(); }), errors::kIntegrityViolation);
  EXPECT_EQ(session->depth(), 0);
  EXPECT_EQ(session->rollback(), 0);
  EXPECT_EQ(errorNumber([&] { session->rollback(); }), errors::kNotAllowedInContext);
  EXPECT_EQ(add->run(), 1);
}

// Opening.

TEST_F(PostgresFaults, AHostThatDoesNotAnswerIsPassedOver) {
  OpenOptions options = schema->options();
  options.server.hosts = "/nowhere/at/all," + options.server.hosts;
  EXPECT_EQ(wholeOf(*ServerSchema::open(options), "SELECT 1"), 1);
  options.server.hosts = "/nowhere/at/all:99,[::1]:9,127.0.0.1:9";
  const auto error = errorOf([&] { ServerSchema::open(options); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kConnectionLost);
  EXPECT_THAT(error->description(), HasSubstr("/nowhere/at/all:99"));
  EXPECT_THAT(error->description(), HasSubstr("::1:9"));
  EXPECT_THAT(error->description(), HasSubstr("127.0.0.1:9"));
}

TEST_F(PostgresFaults, ADatabaseOrRoleThatIsNotThereIsNamed) {
  OpenOptions options = schema->options();
  options.server.database = "no such = database '";
  const auto missing = errorOf([&] { ServerSchema::open(options); });
  ASSERT_TRUE(missing);
  EXPECT_EQ(missing->number(), errors::kFileNotFound);
  EXPECT_THAT(missing->description(), HasSubstr("no such = database '"));
  options = schema->options();
  options.server.user = "nobody we know";
  const auto stranger = errorOf([&] { ServerSchema::open(options); });
  ASSERT_TRUE(stranger);
  EXPECT_EQ(stranger->number(), errors::kPathAccess);
  EXPECT_THAT(stranger->what(), HasSubstr("nobody we know"));
}

TEST_F(PostgresFaults, NoMessageShowsThePassword) {
  const std::string before = std::getenv("PGPASSWORD") == nullptr ? "" : std::getenv("PGPASSWORD");
  ::setenv("PGPASSWORD", "open sesame", 1);
  OpenOptions options = schema->options();
  for (const char* const database : {"no_such_database", "template0"}) {
    options.server.database = database;
    const auto error = errorOf([&] { ServerSchema::open(options); });
    ASSERT_TRUE(error);
    EXPECT_THAT(std::string(error->what()) + error->notes(), Not(HasSubstr("sesame")));
  }
  if (before.empty()) {
    ::unsetenv("PGPASSWORD");
  } else {
    ::setenv("PGPASSWORD", before.c_str(), 1);
  }
}

TEST_F(PostgresFaults, ASchemaThatIsNotThereSaysWhatToDo) {
  const ServerSchema missing;
  const auto error = errorOf([&] { ServerSchema::open(missing.options()); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kFileNotFound);
  EXPECT_THAT(error->description(), HasSubstr("make the installation first"));
}

TEST_F(PostgresFaults, ManyMayMakeTheSameSchemaAtOnceThread) {
  const ServerSchema made;
  std::vector<std::thread> makers;
  std::vector<std::optional<Error>> failed(6);
  for (auto& error : failed) {
    makers.emplace_back([&made, &error] { error = errorOf([&] { made.open(); }); });
  }
  for (std::thread& maker : makers) maker.join();
  for (const auto& error : failed) EXPECT_FALSE(error) << error->what();
}

TEST_F(PostgresFaults, ARoleThatMayNotMakeTheSchemaIsToldWhoMust) {
  const std::string role = schema->name() + "_role";
  session->execute("CREATE ROLE " + role + " LOGIN");
  OpenOptions options = ServerSchema().options();
  options.server.user = role;
  options.create = true;
  const auto error = errorOf([&] { ServerSchema::open(options); });
  session->execute("DROP ROLE " + role);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kPathAccess);
  EXPECT_THAT(error->description(), HasSubstr("let the owner of the database open it once"));
}

TEST_F(PostgresFaults, AServerThatTakesNoMoreConnectionsIsBusy) {
  const std::string role = schema->name() + "_role";
  session->execute("CREATE ROLE " + role + " LOGIN CONNECTION LIMIT 0");
  OpenOptions options = schema->options();
  options.server.user = role;
  const auto error = errorOf([&] { ServerSchema::open(options); });
  session->execute("DROP ROLE " + role);
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kBusy);
}

TEST_F(PostgresFaults, AnOpeningWithoutDatabaseSchemaOrWithANulIsRefused) {
  OpenOptions options = schema->options();
  options.schema.clear();
  EXPECT_EQ(errorNumber([&] { ServerSchema::open(options); }), errors::kFileNotFound);
  options = schema->options();
  options.server.database.clear();
  EXPECT_EQ(errorNumber([&] { ServerSchema::open(options); }), errors::kFileNotFound);
  options = schema->options();
  options.server.user = std::string("a\0b", 3);
  EXPECT_EQ(errorNumber([&] { ServerSchema::open(options); }), errors::kFileNotFound);
}

TEST_F(PostgresFaults, BothEndsNoticeWithinHalfAMinuteThatTheOtherMachineIsGone) {
  OpenOptions options = schema->options();
  // Over a local socket there is nothing to keep alive, and the server says 0: what was asked is
  // told by where it comes from.
  const auto asked = [&](const std::string& name) {
    return textOf(*ServerSchema::open(options),
                  "SELECT source FROM pg_settings WHERE name = '" + name + "'");
  };
  for (const char* const name : {"tcp_keepalives_idle", "tcp_keepalives_interval",
                                 "tcp_keepalives_count", "tcp_user_timeout"}) {
    EXPECT_EQ(asked(name), "session") << name;
  }
}

TEST(PostgresConnect, AServerThatIsTooOldIsToldWithItsVersion) {
  const auto told = [](int version) {
    const auto error = errorOf([&] { postgres::mustBeNewEnough(version, "shop"); });
    return error ? error->description() : std::string();
  };
  EXPECT_THAT(told(120017), HasSubstr("database shop is version 12.17; version 13 or later is"));
  EXPECT_THAT(told(90603), HasSubstr("version 9.6.3;"));
  EXPECT_EQ(told(130000), "");
  EXPECT_EQ(told(150018), "");
}

// Whoever waits for a server to come back must not take its death for a refusal.
TEST(PostgresConnect, AServerThatDiesInTheHandshakeIsLostAndACertificateIsRefused) {
  using postgres::numberOfUnreached;
  EXPECT_EQ(numberOfUnreached("SSL SYSCALL error: Connection reset by peer"),
            errors::kConnectionLost);
  EXPECT_EQ(numberOfUnreached("SSL connection has been closed unexpectedly"),
            errors::kConnectionLost);
  EXPECT_EQ(numberOfUnreached("connection to server at \"db1\" failed: Connection refused"),
            errors::kConnectionLost);
  EXPECT_EQ(numberOfUnreached("SSL error: certificate verify failed"), errors::kPathAccess);
  EXPECT_EQ(numberOfUnreached("server does not support SSL, but SSL was required"),
            errors::kPathAccess);
  EXPECT_EQ(numberOfUnreached("server certificate for \"db1\" does not match host name \"db2\""),
            errors::kPathAccess);
}

// Lines that break.

/// A line of the engine's own over a proxy.
class PostgresBrokenLine : public PostgresFaults {
 protected:
  void SetUp() override {
    PostgresFaults::SetUp();
    if (IsSkipped()) return;
    OpenOptions options = schema->options();
    line.emplace(options.server.hosts);
    options.server.hosts = "127.0.0.1:" + std::to_string(line->port());
    over = ServerSchema::open(options);
  }
  void TearDown() override {
    over.reset();
    line.reset();
    PostgresFaults::TearDown();
  }

  std::optional<tavelor::test::LineProxy> line;
  std::unique_ptr<Session> over;
};

TEST_F(PostgresBrokenLine, ACommitThatTheServerHasDoneAndNobodyHeardOfIsUnknownAndThere) {
  over->begin();
  insert(*over, 1)->send();
  line->loseAnswerTo("COMMIT");
  const auto error = errorOf([&] { over->commit(); });
  ASSERT_TRUE(error);
  EXPECT_EQ(error->number(), errors::kConnectionLost);
  EXPECT_THAT(error->description(), HasSubstr("is not known"));
  EXPECT_EQ(count(), 1);
  EXPECT_EQ(insert(*over, 2)->run(), 1) << "over a new line";
}

TEST_F(PostgresBrokenLine, AReadIsAskedAgainAndStatementsOfTheLostLineAreCompiledAnew) {
  const auto read = over->prepare("SELECT count(*) FROM " + schema->table("T"));
  RowStore rows({ColumnType::kInt32});
  read->fetch(rows);
  EXPECT_EQ(line->cut(), 1U);
  RowStore again({ColumnType::kInt32});
  read->fetch(again);
  EXPECT_EQ(again.integer(0, 0), 0);
  EXPECT_TRUE(read->metOtherSchema());
  line->down();
  EXPECT_EQ(errorNumber([&] { read->run(); }), errors::kConnectionLost);
  line->up();
  EXPECT_EQ(errorNumber([&] { read->run(); }), 0);
}

TEST_F(PostgresBrokenLine, StatementsThatAreSentWaitTwiceHoweverSlowTheLineIs) {
  line->delayBy(std::chrono::milliseconds(20));
  const std::int64_t before = over->waits();
  over->begin();
  for (int key = 0; key < 50; ++key) insert(*over, key)->send();
  over->commit();
  EXPECT_LE(over->waits() - before, 2);
  EXPECT_EQ(count(), 50);
}

// Forks.

TEST_F(PostgresFaults, AForkedProcessTakesALineOfItsOwnAndLeavesTheParents) {
  insert(*session, 1)->run();
  const std::string backend = backendOf(*session);
  const pid_t child = ::fork();
  if (child == 0) {
    bool isNew = false;
    try {
      isNew = backendOf(*session) != backend;
      session.reset();
      killer.reset();
    } catch (...) {
      isNew = false;
    }
    ::_exit(isNew ? 0 : 1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(backendOf(*session), backend);
}

TEST_F(PostgresFaults, AForkedProcessCanNotGoOnWithTheParentsTransaction) {
  session->begin();
  insert(*session, 1)->run();
  const pid_t child = ::fork();
  if (child == 0) {
    const std::int32_t number = errorNumber([&] { insert(*session, 2)->run(); });
    session.reset();
    killer.reset();
    ::_exit(number == errors::kConnectionLost ? 0 : 1);
  }
  int status = -1;
  ::waitpid(child, &status, 0);
  EXPECT_EQ(status, 0);
  insert(*session, 3)->run();
  session->commit();
  EXPECT_EQ(count(), 2);
}

}  // namespace
}  // namespace tavelor::engine::test
