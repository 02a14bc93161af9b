// SPDX-License-Identifier: MIT
// Lends databases of a server to tests, each as fresh as a new installation is.
//
// To make an installation on a server takes seconds. So the first test of all makes one that stays
// as a template, each process copies it, and gives the copy to one test after the other: between
// two of them the rows and tables that a test has added are taken back. A copy in which it has
// changed more, such as one of the installation's tables, is thrown away.
#include "tests/support/engines.hpp"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <deque>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <libpq-fe.h>
#include <sys/stat.h>
#include <unistd.h>

#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/server_address.hpp"
#include "tavelor/services/postgres/functions.hpp"
#include "tavelor/services/schema.hpp"
#include "tests/support/temporary_folder.hpp"

namespace tavelor::test {

namespace {

/// Makes a database remember how it is now, so that fresh.again() can make it so again: that
/// answers false when it can't, as something other than rows was changed since.
constexpr const char* kRemember = R"sql(
CREATE SCHEMA fresh;

-- The tables and, of those that hold rows, a copy and what it amounts to.
CREATE TABLE fresh.tables (id regclass, copy text, content text);
CREATE FUNCTION fresh.content(id regclass) RETURNS text LANGUAGE plpgsql AS $$
DECLARE found text;
BEGIN
  EXECUTE format('SELECT md5(string_agg(t::text, '','' ORDER BY t::text)) FROM %s t', id) INTO found;
  RETURN found;
END $$;
-- The sequences, but not those that only tell in which order rows came.
CREATE TABLE fresh.sequences (id regclass, last bigint);

DO $$
DECLARE each record;
BEGIN
  FOR each IN SELECT c.oid, c.oid::regclass AS id FROM pg_class c
      JOIN pg_namespace n ON n.oid = c.relnamespace
      WHERE c.relkind = 'r' AND n.nspname NOT IN ('pg_catalog', 'information_schema', 'fresh') LOOP
    IF fresh.content(each.id) IS NULL THEN
      INSERT INTO fresh.tables VALUES (each.id, NULL, NULL);
    ELSE
      EXECUTE format('CREATE TABLE fresh.%I AS TABLE %s', 'copy_' || each.oid, each.id);
      INSERT INTO fresh.tables
        VALUES (each.id, format('fresh.%I', 'copy_' || each.oid), fresh.content(each.id));
    END IF;
  END LOOP;
  INSERT INTO fresh.sequences SELECT c.oid, pg_sequence_last_value(c.oid) FROM pg_class c
    WHERE c.relkind = 'S' AND NOT EXISTS (
      SELECT FROM pg_depend d JOIN pg_attribute a ON a.attrelid = d.refobjid AND a.attnum = d.refobjsubid
      WHERE d.objid = c.oid AND d.deptype = 'i' AND a.attname = 'tv_row');
END $$;

-- What a test has done to these tables, or to anything else but tables of its own.
CREATE TABLE fresh.changes (what text);
CREATE FUNCTION fresh.is_own(class oid, object oid) RETURNS boolean LANGUAGE sql AS $$
  SELECT class = 'pg_class'::regclass AND NOT EXISTS (SELECT FROM fresh.tables t WHERE t.id = object
    OR t.id = (SELECT i.indrelid FROM pg_index i WHERE i.indexrelid = object))
$$;
CREATE FUNCTION fresh.note() RETURNS event_trigger LANGUAGE plpgsql AS $$
BEGIN
  INSERT INTO fresh.changes SELECT tg_tag FROM pg_event_trigger_ddl_commands()
    WHERE NOT fresh.is_own(classid, objid);
END $$;
CREATE FUNCTION fresh.note_dropped() RETURNS event_trigger LANGUAGE plpgsql AS $$
BEGIN
  INSERT INTO fresh.changes SELECT tg_tag FROM pg_event_trigger_dropped_objects()
    WHERE original AND NOT fresh.is_own(classid, objid);
END $$;

CREATE FUNCTION fresh.again() RETURNS boolean LANGUAGE plpgsql AS $$
DECLARE
  names text;
  each record;
BEGIN
  IF EXISTS (SELECT FROM fresh.changes) THEN RETURN false; END IF;
  SELECT string_agg(c.oid::regclass::text, ', ') INTO names FROM pg_class c
    JOIN pg_namespace n ON n.oid = c.relnamespace
    WHERE c.relkind = 'r' AND n.nspname NOT IN ('pg_catalog', 'information_schema', 'fresh')
      AND c.oid NOT IN (SELECT id FROM fresh.tables);
  IF names IS NOT NULL THEN EXECUTE 'DROP TABLE ' || names || ' CASCADE'; END IF;
  SELECT string_agg(id::text, ', ') INTO names
    FROM fresh.tables WHERE copy IS NULL AND pg_relation_size(id) > 0;
  IF names IS NOT NULL THEN EXECUTE 'TRUNCATE ' || names || ' RESTART IDENTITY'; END IF;
  FOR each IN SELECT * FROM fresh.tables
      WHERE copy IS NOT NULL AND content IS DISTINCT FROM fresh.content(id) LOOP
    EXECUTE format('DELETE FROM %s', each.id);
    EXECUTE format('INSERT INTO %s OVERRIDING SYSTEM VALUE TABLE %s', each.id, each.copy);
  END LOOP;
  PERFORM setval(id, coalesce(last, 1), last IS NOT NULL)
    FROM fresh.sequences WHERE pg_sequence_last_value(id) IS DISTINCT FROM last;
  RETURN true;
END $$;

CREATE EVENT TRIGGER noted ON ddl_command_end EXECUTE FUNCTION fresh.note();
CREATE EVENT TRIGGER noted_dropped ON sql_drop EXECUTE FUNCTION fresh.note_dropped();
)sql";

/// How the server is reached, but for the database.
std::string conninfo() {
  const char* const told = std::getenv("TAVELOR_TEST_SERVER");
  return told == nullptr ? "" : told;
}

/// One word of it.
std::string conninfoWord(std::string_view word) {
  using Options = std::unique_ptr<PQconninfoOption, decltype(&PQconninfoFree)>;
  const Options options(PQconninfoParse(conninfo().c_str(), nullptr), &PQconninfoFree);
  for (const PQconninfoOption* each = options.get(); each != nullptr && each->keyword != nullptr;
       ++each) {
    if (each->keyword == word && each->val != nullptr) return each->val;
  }
  return "";
}

/// A connection of the test's own, beside those of the library.
class Line {
 public:
  explicit Line(const std::string& database)
      : connection_(PQconnectdb((conninfo() + " dbname=" + database).c_str()), &PQfinish) {
    if (PQstatus(connection_.get()) != CONNECTION_OK) fail();
    PQsetNoticeProcessor(
        connection_.get(), [](void*, const char*) {}, nullptr);
  }
  bool isNewEnoughForStrategies() const { return PQserverVersion(connection_.get()) >= 150000; }

  /// Runs statements, and gives the first column of what the last one gives.
  std::vector<std::string> run(const std::string& statements) {
    const std::unique_ptr<PGresult, decltype(&PQclear)> result(
        PQexec(connection_.get(), statements.c_str()), &PQclear);
    const ExecStatusType status = PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK) fail();
    std::vector<std::string> values;
    for (int row = 0; row < PQntuples(result.get()); ++row) {
      values.emplace_back(PQgetvalue(result.get(), row, 0));
    }
    return values;
  }

 private:
  [[noreturn]] void fail() const {
    throw std::runtime_error(std::string("the test server: ") + PQerrorMessage(connection_.get()));
  }

  std::unique_ptr<PGconn, decltype(&PQfinish)> connection_;
};

engine::ServerAddress addressOf(const std::string& database) {
  const std::string port = conninfoWord("port");
  engine::ServerAddress address;
  address.hosts = conninfoWord("host") + (port.empty() ? "" : ":" + port);
  address.user = conninfoWord("user");
  address.passwordFile = conninfoWord("passfile");
  address.database = database;
  return address;
}

class Databases {
 public:
  static Databases& get() {
    static Databases databases;
    return databases;
  }

  /// The name of a fresh one, lent until takeBack().
  const std::string& lend() {
    if (::getpid() != process_) {
      throw std::logic_error("a process that a test has made takes the test's installation");
    }
    if (free_.empty()) {
      lent_.push_back(copy());
    } else {
      lent_.push_back(std::move(free_.back()));
      free_.pop_back();
    }
    return lent_.back().name;
  }

  /// The name of one with nothing in it.
  const std::string& lendEmpty() {
    const std::string name = "test_" + std::to_string(process_) + "_" + std::to_string(++copies_);
    server_.run("CREATE DATABASE " + name + " TEMPLATE template0");
    return empty_.emplace_back(name);
  }

  void takeBack() {
    if (::getpid() != process_) return;
    for (const std::string& name : empty_) {
      server_.run("DROP DATABASE IF EXISTS " + name + " WITH (FORCE)");
    }
    empty_.clear();
    for (Database& each : lent_) {
      if (isFreshAgain(each)) {
        free_.push_back(std::move(each));
      } else {
        drop(each);
      }
    }
    lent_.clear();
  }

  void dropAll() {
    if (::getpid() != process_) return;
    takeBack();
    for (Database& each : free_) drop(each);
    free_.clear();
  }

 private:
  struct Database {
    std::string name;
    std::unique_ptr<Line> line;  // none before it was taken back once
  };

  Databases() : server_(conninfoWord("dbname")) { dropThoseOfTheDead(); }

  /// A test that was killed leaves its copies.
  void dropThoseOfTheDead() {
    for (const std::string& name :
         server_.run("SELECT datname FROM pg_database WHERE datname ~ '^test_[0-9]+_'")) {
      const auto process = static_cast<pid_t>(std::stol(name.substr(sizeof "test_" - 1)));
      if (::kill(process, 0) == 0 || errno != ESRCH) continue;
      server_.run("DROP DATABASE IF EXISTS " + name + " WITH (FORCE)");
    }
  }

  Database copy() {
    const std::string name = "test_" + std::to_string(process_) + "_" + std::to_string(++copies_);
    // Files are copied in a third of the time that the pages take through the log.
    server_.run("CREATE DATABASE " + name + " TEMPLATE " + templateName() +
                (server_.isNewEnoughForStrategies() ? " STRATEGY FILE_COPY" : ""));
    return {name, nullptr};
  }

  /// Made of an installation by the first process that comes.
  const std::string& templateName() {
    if (!template_.empty()) return template_;
    std::string made_of = kRemember + std::to_string(schema::currentVersion());
    for (const DatabaseSettings& each : Settings().databases)
      made_of += schema::ddlOf(each.selector);
    const std::string name = "template_" + std::to_string(std::hash<std::string>()(made_of));
    const std::string lock = std::to_string(std::hash<std::string>()(name) >> 1U);
    server_.run("SELECT pg_advisory_lock(" + lock + ")");
    if (server_.run("SELECT 1 FROM pg_database WHERE datname = '" + name + "'").empty()) {
      server_.run("DROP DATABASE IF EXISTS making WITH (FORCE)");
      server_.run("CREATE DATABASE making TEMPLATE template0");
      const TemporaryFolder folder;
      Installation::create(folder.path() / "shop", onServer({}, addressOf("making")));
      Line("making").run(kRemember);
      server_.run("ALTER DATABASE making RENAME TO " + name);
    }
    server_.run("SELECT pg_advisory_unlock(" + lock + ")");
    return template_ = name;
  }

  /// All that goes into the template: another program may have another one.
  static std::string contents() {
    std::string all = std::string(kRemember).append(engine::postgres::functionsDdl());
    for (const DatabaseSettings& each : Settings().databases) {
      const auto writer = dialect::postgresWriter(each.label);
      for (const std::string& text :
           dialect::translateSchema(schema::ddlOf(each.selector), *writer)) {
        all += text;
      }
    }
    return all;
  }

  static bool isFreshAgain(Database& database) {
    try {
      if (!database.line) {
        database.line = std::make_unique<Line>(database.name);
        // Somebody who still has the tables open is not waited for long.
        database.line->run("SET lock_timeout = 2000");
      }
      return database.line->run("SELECT fresh.again()") == std::vector<std::string>{"t"};
    } catch (const std::runtime_error&) {
      return false;
    }
  }

  void drop(Database& database) {
    database.line.reset();
    server_.run("DROP DATABASE IF EXISTS " + database.name + " WITH (FORCE)");
  }

  Line server_;
  const pid_t process_ = ::getpid();
  std::string template_;
  int copies_ = 0;
  std::vector<Database> free_;
  std::vector<Database> lent_;
  std::deque<std::string> empty_;
};

/// Why there is no server to test on, if so. One in a folder that answers not at all is a failure,
/// one that is not there was not started.
std::string missingServer() {
  const std::string host = conninfoWord("host");
  const std::string port = conninfoWord("port");
  struct stat found {};
  if (host.starts_with('/') &&
      ::stat((host + "/.s.PGSQL." + (port.empty() ? "5432" : port)).c_str(), &found) == 0) {
    return "";
  }
  return host.starts_with('/') || host.empty()
             ? "No server to test on: TAVELOR_TEST_SERVER is \"" + conninfo() +
                   "\"; ./scripts/server start starts one"
             : "";
}

class OnServer final : public testing::Environment {
 public:
  void SetUp() override {
    if (const std::string reason = missingServer(); !reason.empty()) GTEST_SKIP() << reason;
  }
  void TearDown() override {
    if (missingServer().empty()) Databases::get().dropAll();
  }
};

class TakesBack final : public testing::EmptyTestEventListener {
  void OnTestEnd(const testing::TestInfo& /*test*/) override {
    if (missingServer().empty()) Databases::get().takeBack();
  }
};

[[maybe_unused]] const bool kIsPrepared = [] {
  if (!runsOnServer()) return false;
  testing::AddGlobalTestEnvironment(std::make_unique<OnServer>().release());
  testing::UnitTest::GetInstance()->listeners().Append(std::make_unique<TakesBack>().release());
  return true;
}();

}  // namespace

bool runsOnServer() {
  const char* const told = std::getenv("TAVELOR_TEST_ENGINE");
  return told != nullptr && std::string_view(told) == "postgresql";
}

void putOnEngine(Settings& settings) {
  if (runsOnServer()) settings = onServer(std::move(settings), addressOf(Databases::get().lend()));
}

engine::ServerAddress emptyDatabase() {
  return addressOf(Databases::get().lendEmpty());
}

}  // namespace tavelor::test
