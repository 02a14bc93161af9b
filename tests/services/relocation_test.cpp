// SPDX-License-Identifier: MIT
// Moving an installation to a server and back: nothing is lost, nothing happens twice, and whatever
// goes wrong on the way leaves a shop that works.
#include "tavelor/services/relocation.hpp"

#include <algorithm>
#include <array>
#include <cstdio>
#include <limits>
#include <map>
#include <optional>

#include <gmock/gmock.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/movable.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/registry_tree.hpp"
#include "tavelor/services/settings_file.hpp"
#include "tavelor/services/table_copy.hpp"
#include "tests/services/edge_values.hpp"
#include "tests/services/faults.hpp"

namespace tavelor {
namespace {

namespace fs = std::filesystem;
using engine::ColumnType;
using engine::RowStore;
using engine::Value;
using test::raisedBy;
using ::testing::AllOf;
using ::testing::HasSubstr;
using ::testing::Not;
using Kind = RelocationStep::Kind;

constexpr int kRowsOfEach = 70;  // more than a statement takes

/// A session of a database, and what writes its text.
struct Opened {
  std::shared_ptr<Installation> shop;
  std::unique_ptr<engine::Session> session;
  const dialect::Writer* writer;
};

Opened open(const std::shared_ptr<Installation>& shop, int selector, int busyTimeoutMs = 5000) {
  engine::OpenOptions options = shop->openOptions(selector);
  options.busyTimeoutMs = busyTimeoutMs;
  return {shop, shop->databaseEngine(selector).open(options), &shop->writer(selector)};
}

void run(const Opened& on, const std::string& text, const std::vector<Value>& values = {}) {
  const auto statement = on.session->prepare(on.writer->composed(text));
  for (std::size_t i = 0; i < values.size(); ++i) {
    statement->bind(static_cast<int>(i) + 1, values[i]);
  }
  statement->run();
}

std::int64_t whole(const Opened& on, const std::string& text) {
  const auto statement = on.session->prepare(on.writer->composed(text));
  RowStore rows({ColumnType::kInt32});
  statement->fetch(rows);
  return rows.integer(0, 0);
}

std::string cellText(const RowStore::Row& row, std::size_t place, ColumnType type) {
  if (row.isNull(place)) return "Null";
  switch (type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
    case ColumnType::kBinary:
      return "\"" + std::string(row.text(place)) + "\"";
    case ColumnType::kSingle:
    case ColumnType::kDouble:
    case ColumnType::kDate: {
      std::array<char, 64> digits{};
      // Both zeros print as one.
      std::snprintf(digits.data(), digits.size(), "%.17g", row.real(place) + 0.0);
      return digits.data();
    }
    default:
      return std::to_string(row.integer(place));
  }
}

/// All rows of all databases as text, a table's in the order in which they were stored.
using Content = std::map<std::string, std::vector<std::string>>;

Content contentOf(const std::shared_ptr<Installation>& shop) {
  Content content;
  for (const DatabaseSettings& database : shop->settings().databases) {
    const Opened on = open(shop, database.selector);
    const engine::Catalogue tables = on.session->describe();
    for (const engine::Table& table : tables.tables()) {
      std::vector<std::string>& rows = content[database.label + "." + table.name];
      TableSource(*on.session, *on.writer, table, database.label)
          .each([&](const RowStore::Row& row) {
            std::string text;
            for (std::size_t i = 0; i < table.columns.size(); ++i) {
              text += cellText(row, 1 + i, table.columns[i].type) + "|";
            }
            rows.push_back(std::move(text));
          });
    }
  }
  return content;
}

/// Rows of edge values in every table of every database.
void fill(const std::shared_ptr<Installation>& shop) {
  const test::EdgeValues edges;
  for (const DatabaseSettings& database : shop->settings().databases) {
    const Opened on = open(shop, database.selector);
    engine::Transaction transaction(*on.session);
    std::vector<engine::Index> unique = dynamic_cast<engine::Movable&>(*on.session).indexes();
    std::erase_if(unique, [](const engine::Index& index) { return !index.isUnique; });
    const engine::Catalogue tables = on.session->describe();
    for (const engine::Table& table : tables.tables()) {
      if (table.name == "Tavelor_Schema") continue;
      std::vector<ColumnType> types{ColumnType::kDouble};
      for (const engine::Column& column : table.columns) types.push_back(column.type);
      RowStore page(types);
      for (int number = 0; number < kRowsOfEach; ++number) {
        RowStore::Cells cells = page.cells(page.append());
        for (std::size_t i = 0; i < table.columns.size(); ++i) {
          const engine::Column& column = table.columns[i];
          const bool isOfKey =
              std::find(table.key.begin(), table.key.end(), i) != table.key.end() ||
              std::any_of(unique.begin(), unique.end(), [&](const engine::Index& index) {
                return index.table == table.name && index.columns.front() == column.name;
              });
          edges.put(cells, 1 + i, column, number, isOfKey);
        }
      }
      TableTarget(*on.session, *on.writer, table).add(page);
    }
    transaction.commit();
  }
}

class Relocating : public ::testing::Test {
 protected:
  void SetUp() override {
    if (!test::runsOnServer()) GTEST_SKIP() << "moves to a server and back: TAVELOR_TEST_ENGINE";
    server_ = test::emptyDatabase();
  }

  static Settings fast() {
    Settings settings;
    settings.synchronous = false;
    settings.busyTimeoutMs = 300;
    return settings;
  }
  std::shared_ptr<Installation> makeInFiles() const { return Installation::create(place_, fast()); }
  std::shared_ptr<Installation> makeOnServer() const {
    return Installation::create(place_, onServer(fast(), server_));
  }
  std::shared_ptr<Installation> shop() const { return Installation::open(place_); }
  bool isInFiles() const { return shop()->databaseEngine(1).isFile(); }
  fs::path settingsFile() const { return fs::path(place_) / Installation::kSettingsFile; }
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(place_))
      names.push_back(entry.path().filename());
    std::sort(names.begin(), names.end());
    return names;
  }

  test::TemporaryFolder folder_;
  std::string place_ = folder_.path() / "shop";
  engine::ServerAddress server_;
};

TEST_F(Relocating, ThereAndBackGivesEqualTables) {
  Content before;
  {
    const auto made = makeInFiles();
    fill(made);
    before = contentOf(made);
    RegistryTree(*made).set("SOFTWARE\\Añil\\Uno", "Nombre", "Värde\n2");
  }
  ASSERT_GT(before["main.Clientes"].size(), 0U);

  const Relocation there = moveToServer(place_, server_);
  EXPECT_FALSE(isInFiles());
  EXPECT_EQ(contentOf(shop()), before);
  EXPECT_EQ(RegistryTree(*shop()).get("software\\AÑIL\\uno", "nombre"), "Värde\n2");

  const Relocation back = moveToFiles(place_);
  EXPECT_TRUE(isInFiles());
  EXPECT_EQ(contentOf(shop()), before);
  EXPECT_EQ(RegistryTree(*shop()).get("software\\AÑIL\\uno", "nombre"), "Värde\n2");

  ASSERT_EQ(there.databases.size(), 6U);
  for (std::size_t i = 0; i < there.databases.size(); ++i) {
    SCOPED_TRACE(there.databases[i].label);
    EXPECT_EQ(there.databases[i].tables, back.databases[i].tables);
    EXPECT_EQ(there.databases[i].rows, back.databases[i].rows);
    EXPECT_EQ(there.databases[i].sum, back.databases[i].sum);
    EXPECT_GT(there.databases[i].rows, 0);
  }
}

TEST_F(Relocating, TablesAndIndexesOfTheApplicationsOwnComeAlong) {
  {
    const auto made = makeInFiles();
    made->addToSchema(1,
                      "CREATE TABLE Own (Id LONG NOT NULL, Name TEXT(20), "
                      "CONSTRAINT PK_Own PRIMARY KEY (Id));"
                      "CREATE UNIQUE INDEX Own_Name ON Own (Name, Id)");
  }
  const auto indexes = [&] {
    const Opened on = open(shop(), 1);
    engine::Transaction transaction(*on.session);
    std::vector<std::string> found;
    for (const engine::Index& index : dynamic_cast<engine::Movable&>(*on.session).indexes()) {
      std::string text = index.table + "." + index.name + (index.isUnique ? " unique" : "");
      for (const std::string& column : index.columns) text += " " + column;
      found.push_back(std::move(text));
    }
    std::sort(found.begin(), found.end());
    return found;
  };
  const auto before = indexes();
  EXPECT_THAT(before, ::testing::Contains("Own.Own_Name unique Name Id"));
  moveToServer(place_, server_);
  EXPECT_EQ(indexes(), before);
  moveToFiles(place_);
  EXPECT_EQ(indexes(), before);
}

TEST_F(Relocating, CountersGoOnBehindTheLastNumberThatTheyGave) {
  const std::string add = "INSERT INTO \"Own\" (\"Name\") VALUES ('x')";
  const std::string last = "SELECT max(\"Id\") FROM \"Own\"";
  {
    const auto made = makeInFiles();
    made->addToSchema(
        1, "CREATE TABLE Own (Id COUNTER, Name TEXT(20), CONSTRAINT PK_Own PRIMARY KEY (Id))");
    const Opened on = open(made, 1);
    run(on, add);
    run(on, "INSERT INTO \"Own\" (\"Id\", \"Name\") VALUES (41, 'y')");
    run(on, "INSERT INTO \"Own\" (\"Name\") VALUES ('z')");
    run(on, "DELETE FROM \"Own\" WHERE \"Id\"=42");
  }
  moveToServer(place_, server_);
  {
    const Opened on = open(shop(), 1);
    run(on, add);
    EXPECT_EQ(whole(on, last), 43) << "42 was given once";
    run(on, "DELETE FROM \"Own\" WHERE \"Id\"=43");
  }
  moveToFiles(place_);
  const Opened on = open(shop(), 1);
  run(on, add);
  EXPECT_EQ(whole(on, last), 44);
}

TEST_F(Relocating, AServerThatHoldsTablesIsRefused) {
  makeInFiles();
  const std::string before = test::readFile(settingsFile());
  Installation::create(folder_.path() / "other", onServer(fast(), server_));
  const Error error = raisedBy([&] { moveToServer(place_, server_); });
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr("holds tables already"));
  EXPECT_EQ(test::readFile(settingsFile()), before);
  EXPECT_THAT(files(), Not(::testing::Contains("tavelor.xml.moving")));
  EXPECT_TRUE(isInFiles());
}

TEST_F(Relocating, AFileInTheWayIsRefusedAndStays) {
  makeOnServer();
  test::writeFile(fs::path(place_) / "historic.db", "mine");
  const Error error = raisedBy([&] { moveToFiles(place_); });
  EXPECT_EQ(error.number(), errors::kPathAccess);
  EXPECT_THAT(error.description(), HasSubstr("historic.db"));
  EXPECT_EQ(test::readFile(fs::path(place_) / "historic.db"), "mine");
  EXPECT_FALSE(fs::exists(fs::path(place_) / "main.db"));
  EXPECT_FALSE(isInFiles());
}

TEST_F(Relocating, WhereItIsAlreadyNothingIsMoved) {
  makeInFiles();
  EXPECT_EQ(raisedBy([&] { moveToFiles(place_); }).number(), errors::kInvalidCall);
  moveToServer(place_, server_);
  EXPECT_EQ(raisedBy([&] { moveToServer(place_, server_); }).number(), errors::kInvalidCall);
}

TEST_F(Relocating, AUserWhomTheServerRefusesChangesNothing) {
  makeInFiles();
  const std::vector<std::string> before = files();
  server_.user = "nobody_knows";
  EXPECT_EQ(raisedBy([&] { moveToServer(place_, server_); }).number(), errors::kPathAccess);
  EXPECT_EQ(files(), before);
  EXPECT_TRUE(isInFiles());
}

TEST_F(Relocating, WhatAServerCannotHoldIsNamedBeforeAnythingIsWritten) {
  {
    const auto made = makeInFiles();
    const Opened on = open(made, 1);
    made->addToSchema(1,
                      "CREATE TABLE Own (Id LONG NOT NULL, Name TEXT(5), Day DATETIME, "
                      "CONSTRAINT PK_Own PRIMARY KEY (Id))");
    const std::string add = "INSERT INTO \"Own\" (\"Id\", \"Name\", \"Day\") VALUES (?, ?, ?)";
    run(on, add, {Value::ofInteger(1), Value::ofText(std::string_view("a\0b", 3)), Value::null()});
    run(on, add, {Value::ofInteger(2), Value::ofText("\xFF"), Value::null()});
    run(on, add, {Value::ofInteger(3), Value::ofText("señores"), Value::null()});
    run(on, add, {Value::ofInteger(4), Value::null(), Value::ofDate(Date(-0.25))});
    run(on, add, {Value::ofInteger(5), Value::ofText("señor"), Value::ofDate(Date(-1.25))});
  }
  const Error error = raisedBy([&] { moveToServer(place_, server_); });
  EXPECT_EQ(error.number(), errors::kTypeMismatch);
  EXPECT_THAT(error.description(), HasSubstr("4 values"));
  EXPECT_THAT(error.notes(), AllOf(HasSubstr("main, table Own, Id 1: Name holds a NUL character"),
                                   HasSubstr("Id 2: Name holds bytes that are no UTF-8"),
                                   HasSubstr("Id 3: Name has 7 characters, of 5 at most"),
                                   HasSubstr("Id 4: Day is day -0.25"), Not(HasSubstr("Id 5"))));
  EXPECT_TRUE(isInFiles());
  EXPECT_THAT(files(), Not(::testing::Contains("tavelor.xml.moving")));
}

TEST_F(Relocating, WhatDoesNotReadAsItsColumnIsToldByTheRowBeforeIt) {
  {
    const auto made = makeInFiles();
    made->addToSchema(1,
                      "CREATE TABLE Own (Id LONG NOT NULL, Number LONG, "
                      "CONSTRAINT PK_Own PRIMARY KEY (Id))");
    const Opened on = open(made, 1);
    const std::string add = "INSERT INTO \"Own\" (\"Id\", \"Number\") VALUES (?, ?)";
    run(on, add, {Value::ofInteger(7), Value::ofInteger(1)});
    run(on, add, {Value::ofInteger(8), Value::ofText("many")});
  }
  const Error error = raisedBy([&] { moveToServer(place_, server_); });
  EXPECT_EQ(error.number(), errors::kTypeMismatch);
  EXPECT_THAT(error.description(), HasSubstr("Number"));
  EXPECT_THAT(error.notes(), HasSubstr("main, table Own, in the row behind Id 7"));
  EXPECT_TRUE(isInFiles());
}

TEST_F(Relocating, WhatAFileCannotHoldIsNamedBeforeAnythingIsWritten) {
  {
    const auto made = makeOnServer();
    made->addToSchema(1,
                      "CREATE TABLE Own (Id LONG NOT NULL, Amount CURRENCY, "
                      "CONSTRAINT PK_Own PRIMARY KEY (Id))");
    const Opened on = open(made, 1);
    const std::string add = "INSERT INTO \"Own\" (\"Id\", \"Amount\") VALUES (?, ?)";
    const auto amount = [](std::int64_t scaled) {
      return Value::ofCurrency(Currency::fromScaled(scaled));
    };
    run(on, add, {Value::ofInteger(1), amount(9'223'372'036'854'770'001)});
    run(on, add, {Value::ofInteger(2), amount(9'007'199'254'740'991)});
  }
  const Error error = raisedBy([&] { moveToFiles(place_); });
  EXPECT_EQ(error.number(), errors::kTypeMismatch);
  EXPECT_THAT(error.notes(), AllOf(HasSubstr("main, table Own, Id 1: Amount is an amount"),
                                   Not(HasSubstr("Id 2"))));
  EXPECT_FALSE(isInFiles());
  EXPECT_FALSE(fs::exists(fs::path(place_) / "main.db"));
}

TEST_F(Relocating, WhoeverIsWritingIsWaitedForAndThenTheMoveIsRefused) {
  for (const bool toServer : {true, false}) {
    SCOPED_TRACE(toServer);
    const std::string place = place_ + (toServer ? "1" : "2");
    const auto made = Installation::create(place, toServer ? fast() : onServer(fast(), server_));
    const Opened till = open(made, 3);
    engine::Transaction selling(*till.session);
    run(till, "DELETE FROM \"Tickets\" WHERE 1=2");
    const Error error = raisedBy([&] {
      if (toServer) {
        moveToServer(place, server_);
      } else {
        moveToFiles(place);
      }
    });
    EXPECT_EQ(error.number(), errors::kBusy) << error.what();
    selling.commit();
    EXPECT_EQ(Installation::open(place)->databaseEngine(1).isFile(), toServer);
  }
}

TEST_F(Relocating, AProgramThatHasTheOldDatabasesOpenIsRefusedAtItsNextWrite) {
  const std::string add = "INSERT INTO \"Bancos\" (\"Codigo\") VALUES ('B')";
  {
    const auto made = makeInFiles();
    const Opened till = open(made, 1);
    run(till, "DELETE FROM \"Bancos\"");
    moveToServer(place_, server_);
    EXPECT_EQ(raisedBy([&] { run(till, add); }).number(), errors::kPathAccess);
  }
  const Opened till = open(shop(), 1);
  run(till, "DELETE FROM \"Bancos\"");
  moveToFiles(place_);
  EXPECT_NE(raisedBy([&] { run(till, add); }).number(), 0);
  EXPECT_EQ(whole(open(shop(), 1), "SELECT count(*) FROM \"Bancos\""), 0);
}

TEST_F(Relocating, AWriterWhoWaitedForTheMoveIsRefusedToo) {
  const auto made = makeInFiles();
  const Opened till = open(made, 1, 60'000);
  std::optional<test::Child> writer;
  int waits = 0;
  moveToServer(place_, server_, [&](const RelocationStep& step) {
    if (step.kind != Kind::kCompare || waits++ != 0) return;
    writer.emplace([this] {
      const Opened other = open(Installation::open(place_), 1, 60'000);
      const Error error = raisedBy([&] { run(other, "DELETE FROM \"Bancos\""); });
      if (error.number() != errors::kPathAccess) throw error;
    });
    std::this_thread::sleep_for(std::chrono::milliseconds(200));  // most often it waits by now
  });
  EXPECT_TRUE(writer->wait());
}

TEST_F(Relocating, InterruptedAnywhereItIsFinishedByTheNextRun) {
  const auto dieAt = [](Kind kind, int count) {
    return [kind, count, seen = 0](const RelocationStep& step) mutable {
      if (step.kind == kind && ++seen == count) ::_exit(1);
    };
  };
  struct Moment {
    Kind kind;
    int count;
  };
  run(open(makeInFiles(), 1), "INSERT INTO \"Bancos\" (\"Codigo\") VALUES ('B')");
  const Content before = contentOf(shop());
  for (const Moment moment :
       {Moment{Kind::kCopy, 70}, Moment{Kind::kCompare, 100}, Moment{Kind::kSwitch, 1}}) {
    SCOPED_TRACE(testing::Message() << static_cast<int>(moment.kind) << " " << moment.count);
    for (const bool toServer : {true, false}) {
      SCOPED_TRACE(toServer);
      const auto move = [&](const RelocationListener& listener) {
        return toServer ? moveToServer(place_, server_, listener) : moveToFiles(place_, listener);
      };
      if (!toServer) server_ = shop()->settings().server;
      test::Child child([&] { move(dieAt(moment.kind, moment.count)); });
      ASSERT_FALSE(child.wait());
      ASSERT_EQ(isInFiles(), toServer);
      ASSERT_EQ(contentOf(shop()), before) << "the source works on";

      const Relocation done = move({});
      EXPECT_EQ(done.wasThere, toServer && moment.kind == Kind::kSwitch);
      ASSERT_EQ(isInFiles(), !toServer);
      ASSERT_EQ(contentOf(shop()), before);
    }
  }
}

TEST_F(Relocating, WhatAnInterruptedMoveLeftIsRefusedOnceTheShopHasGoneOn) {
  makeInFiles();
  test::Child child([&] {
    moveToServer(place_, server_, [](const RelocationStep& step) {
      if (step.kind == Kind::kSwitch) ::_exit(1);
    });
  });
  ASSERT_FALSE(child.wait());
  run(open(shop(), 1), "INSERT INTO \"Bancos\" (\"Codigo\") VALUES ('B')");
  const Error error = raisedBy([&] { moveToServer(place_, server_); });
  EXPECT_EQ(error.number(), errors::kUnspecified);
  EXPECT_THAT(error.description(), HasSubstr("The table Bancos of main has 0 rows of 1"));
  EXPECT_THAT(error.notes(), HasSubstr("drop the target's schemas"));
  EXPECT_TRUE(isInFiles());
}

TEST_F(Relocating, OldFilesThatAnInterruptedMoveLeftInTheirPlaceArePutAwayByTheNext) {
  const auto made = makeInFiles();
  const Opened till = open(made, 1);
  test::Child child([&] {
    moveToServer(place_, server_, [](const RelocationStep& step) {
      if (step.kind == Kind::kPutAway) ::_exit(1);
    });
  });
  ASSERT_FALSE(child.wait());
  ASSERT_FALSE(isInFiles());
  ASSERT_TRUE(fs::exists(fs::path(place_) / "main.db"));
  const Relocation done = moveToServer(place_, server_);
  EXPECT_TRUE(done.wasThere);
  EXPECT_FALSE(fs::exists(fs::path(place_) / "main.db"));
  EXPECT_FALSE(fs::exists(fs::path(place_) / "registry.db"));
  EXPECT_TRUE(fs::exists(place_ + "/main.db" + done.ending));
  EXPECT_EQ(raisedBy([&] { run(till, "DELETE FROM \"Bancos\""); }).number(), errors::kPathAccess);
}

TEST_F(Relocating, TheOldSettingsAndDatabasesAreKept) {
  makeInFiles();
  const Relocation done = moveToServer(place_, server_);
  const Settings kept = readSettings(done.keptSettings);
  EXPECT_EQ(kept.databases.front().file, "main.db");
  EXPECT_EQ(kept.registryFile, "registry.db");
  for (const char* file : {"main.db", "documents.db", "registry.db"}) {
    EXPECT_TRUE(fs::exists(place_ + "/" + file + done.ending)) << file;
    EXPECT_FALSE(fs::exists(place_ + "/" + file)) << file;
  }
  // A name that a program may still have open is not used again.
  moveToFiles(place_);
  EXPECT_EQ(shop()->database(1).file, "main-2.db");
}

TEST_F(Relocating, WhatFailsInTheMiddleLeavesTheShopAsItWas) {
  makeInFiles();
  for (const Kind kind : {Kind::kLook, Kind::kCopy, Kind::kCompare, Kind::kKeep}) {
    EXPECT_NE(raisedBy([&] {
                moveToServer(place_, server_, [kind](const RelocationStep& step) {
                  if (step.kind == kind) raise(errors::kUnspecified, "Test");
                });
              }).number(),
              0);
    EXPECT_TRUE(isInFiles());
  }
  EXPECT_FALSE(moveToServer(place_, server_).wasThere);
}

TEST_F(Relocating, TheRegistryOnAServerIsSharedByAllItsTills) {
  const auto office = makeOnServer();
  const auto till = Installation::create(folder_.path() / "till", onServer(fast(), server_));
  RegistryTree written(*office);
  RegistryTree read(*till);
  written.set("SOFTWARE\\Uno", "Nombre", "eins");
  EXPECT_EQ(read.get("SOFTWARE\\Uno", "nombre"), "eins");
  read.set("SOFTWARE\\Uno", "Nombre", "zwei");
  EXPECT_EQ(written.get("SOFTWARE\\Uno", "Nombre"), "zwei");
  EXPECT_TRUE(written.removeKey("SOFTWARE\\Uno"));
  EXPECT_FALSE(read.has("SOFTWARE\\Uno", "Nombre"));
}

}  // namespace
}  // namespace tavelor
