// SPDX-License-Identifier: MIT
// Databases of an older schema are brought up to date and lose nothing.
#include "tavelor/services/schema.hpp"

#include <set>

#include <gmock/gmock.h>

#include "tavelor/services/dialect/ddl.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/installation.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/services/faults.hpp"
#include "tests/support/engines.hpp"

namespace tavelor {
namespace {

using test::errorOf;
using test::raisedBy;
using ::testing::HasSubstr;

constexpr std::string_view kOld =
    "CREATE TABLE Bancos (Codigo TEXT(6) NOT NULL, Banco TEXT(100), CONSTRAINT PK PRIMARY KEY "
    "(Codigo));"
    "CREATE INDEX IX_Banco ON Bancos (Banco);";
constexpr std::string_view kNew =
    "CREATE TABLE Bancos (Codigo TEXT(6) NOT NULL, Banco TEXT(100), Saldo CURRENCY DEFAULT 0,"
    " Activo BIT NOT NULL DEFAULT 0, [Año] SHORT, Letra TEXT(1) DEFAULT 'x''y',"
    " CONSTRAINT PK PRIMARY KEY (Codigo));"
    "CREATE INDEX IX_Banco ON Bancos (Banco);"
    "CREATE UNIQUE INDEX IX_Letra ON Bancos (Letra, Codigo);"
    "CREATE TABLE Rutas (Id LONG NOT NULL, Nombre TEXT(50), CONSTRAINT PK2 PRIMARY KEY (Id));";

class Schema : public ::testing::Test {
 protected:
  Schema() {
    engine::OpenOptions options;
    options.path = (folder_.path() / "a.db").string();
    options.create = true;
    options.synchronous = false;
    session_ = engine::sqliteEngine().open(options);
  }
  void bring(std::string_view ddl, int version, bool mayBeEmpty = true) {
    schema::bringUpToDate(*session_, {std::string(ddl), version, mayBeEmpty, "a.db"},
                          dialect::sqliteWriter());
  }
  std::string one(std::string_view query) {
    engine::RowStore rows({engine::ColumnType::kMemo});
    session_->prepare(query)->fetch(rows);
    return rows.rows() == 0 ? "none" : rows.isNull(0, 0) ? "Null" : std::string(rows.text(0, 0));
  }

  test::TemporaryFolder folder_;
  std::unique_ptr<engine::Session> session_;
};

TEST_F(Schema, EmptyDatabaseGetsAllTables) {
  bring(kNew, 2);
  EXPECT_EQ(schema::versionOf(*session_, dialect::sqliteWriter()), 2);
  EXPECT_NE(session_->describe().find("Bancos"), nullptr);
  EXPECT_NE(session_->describe().find("Rutas"), nullptr);
}

TEST_F(Schema, EmptyDatabaseIsRefusedWhereOneWithTablesIsExpected) {
  EXPECT_EQ(errorOf([&] { bring(kNew, 2, false); }), errors::kUnspecified);
  EXPECT_TRUE(session_->describe().tables().empty());
}

TEST_F(Schema, OlderOneGetsTablesColumnsAndIndexesAndKeepsItsRows) {
  bring(kOld, 1);
  session_->execute("INSERT INTO Bancos VALUES ('001', 'Uno')");
  bring(kNew, 2, false);

  EXPECT_EQ(schema::versionOf(*session_, dialect::sqliteWriter()), 2);
  const engine::Catalogue catalogue = session_->describe();
  ASSERT_NE(catalogue.find("Rutas"), nullptr);
  const engine::Table& bancos = *catalogue.find("Bancos");
  const auto column = [&](std::string_view name) {
    return bancos.columns.at(static_cast<std::size_t>(bancos.find(name)));
  };
  EXPECT_EQ(column("Saldo").type, engine::ColumnType::kCurrency);
  EXPECT_EQ(column("Activo").type, engine::ColumnType::kBoolean);
  EXPECT_FALSE(column("Activo").nullable);
  EXPECT_EQ(column("Año").type, engine::ColumnType::kInt16);
  EXPECT_EQ(column("Letra").size, 1);
  EXPECT_EQ(one("SELECT Banco || '|' || Saldo || '|' || Activo || '|' || Letra FROM Bancos"),
            "Uno|0|0|x'y");
  EXPECT_EQ(one("SELECT count(*) FROM sqlite_master WHERE name = 'IX_Letra'"), "1");
  EXPECT_EQ(one("SELECT count(*) FROM sqlite_master WHERE name = 'IX_Banco'"), "1");
}

TEST_F(Schema, UpgradedTableEqualsANewOne) {
  bring(kOld, 1);
  bring(kNew, 2);
  const engine::Catalogue upgraded = session_->describe();
  for (const engine::Table& declared : dialect::parseSchema(kNew)) {
    const engine::Table* const table = upgraded.find(declared.name);
    ASSERT_NE(table, nullptr);
    ASSERT_EQ(table->columns.size(), declared.columns.size());
    for (std::size_t i = 0; i < declared.columns.size(); ++i) {
      EXPECT_EQ(table->columns[i].name, declared.columns[i].name);
      EXPECT_EQ(table->columns[i].type, declared.columns[i].type) << declared.columns[i].name;
      EXPECT_EQ(table->columns[i].size, declared.columns[i].size) << declared.columns[i].name;
      EXPECT_EQ(table->columns[i].nullable, declared.columns[i].nullable)
          << declared.columns[i].name;
    }
  }
}

TEST_F(Schema, TablesAndColumnsOfTheShopsOwnStay) {
  bring(kOld, 1);
  session_->execute("CREATE TABLE Own (x INTEGER)");
  session_->execute("ALTER TABLE Bancos ADD COLUMN Extra TEXT");
  bring(kNew, 2);
  EXPECT_NE(session_->describe().find("Own"), nullptr);
  EXPECT_GE(session_->describe().find("Bancos")->find("Extra"), 0);
}

TEST_F(Schema, FailureLeavesTheOldSchema) {
  bring(kOld, 1);
  const std::string broken = std::string(kNew) + "CREATE INDEX IX_No ON Bancos (Nowhere);";
  EXPECT_NE(errorOf([&] { bring(broken, 2); }), 0);
  EXPECT_EQ(schema::versionOf(*session_, dialect::sqliteWriter()), 1);
  EXPECT_EQ(session_->describe().find("Rutas"), nullptr);
  EXPECT_EQ(session_->describe().find("Bancos")->columns.size(), 2U);
  EXPECT_EQ(session_->depth(), 0);
}

TEST_F(Schema, NewerOneIsRefusedAndLeftAlone) {
  bring(kNew, 3);
  const Error error = raisedBy([&] { bring(kOld, 2); });
  EXPECT_EQ(error.number(), errors::kUnspecified);
  EXPECT_THAT(error.description(), HasSubstr("a.db"));
  EXPECT_EQ(schema::versionOf(*session_, dialect::sqliteWriter()), 3);
}

TEST_F(Schema, CurrentOneIsOnlyRead) {
  bring(kOld, 1);
  engine::OpenOptions options;
  options.path = (folder_.path() / "a.db").string();
  options.busyTimeoutMs = 0;
  const auto other = engine::sqliteEngine().open(options);
  const engine::Transaction writing(*session_);
  EXPECT_NO_THROW(schema::bringUpToDate(*other, {std::string(kOld), 1, false, "a.db"},
                                        dialect::sqliteWriter()));
}

TEST(DeclaredSchema, EveryFamilyBelongsToADatabase) {
  std::set<std::string_view> assigned;
  for (const schema::Assignment& assignment : schema::assignments()) {
    for (const schema::Family& family : schema::families()) {
      if ((" " + std::string(assignment.families) + " ")
              .find(" " + std::string(family.name) + " ") != std::string::npos) {
        assigned.insert(family.name);
      }
    }
  }
  EXPECT_EQ(assigned.size(), schema::families().size());
  EXPECT_GT(schema::currentVersion(), 0);
}

TEST(DeclaredSchema, EveryNewInstallationHasTheDeclaredTables) {
  test::TemporaryFolder folder;
  const auto made = Installation::create(folder.path() / "shop", test::fastSettings());
  for (const schema::Assignment& assignment : schema::assignments()) {
    const auto catalogue = made->catalogue(assignment.selector);
    for (const engine::Table& table : dialect::parseSchema(schema::ddlOf(assignment.selector))) {
      const engine::Table* const there = catalogue->find(table.name);
      ASSERT_NE(there, nullptr) << table.name;
      EXPECT_EQ(there->columns.size(), table.columns.size()) << table.name;
      EXPECT_EQ(there->key, table.key) << table.name;
    }
  }
}

TEST(DeclaredSchema, AnOlderInstallationGetsTheIndexesThatItLacksWhenItIsOpened) {
  TAVELOR_ONLY_IN_FILES("it opens the database file");
  const test::TemporaryFolder folder;
  const auto path = folder.path() / "shop";
  Installation::create(path, test::fastSettings());
  const auto openMain = [&] {
    engine::OpenOptions options;
    options.path = (path / "main.db").string();
    options.synchronous = false;
    return engine::sqliteEngine().open(options);
  };
  {
    const auto session = openMain();
    session->execute("DROP INDEX IX_Cierres_Fecha");
    session->execute("DROP INDEX IX_Articulos_Referencia_Lista");
    session->execute("UPDATE Tavelor_Schema SET Version = 2");
  }
  Installation::open(path);
  engine::RowStore rows({engine::ColumnType::kInt32});
  openMain()
      ->prepare(
          "SELECT count(*) FROM sqlite_master WHERE name IN ('IX_Cierres_Fecha', "
          "'IX_Articulos_Referencia_Lista')")
      ->fetch(rows);
  EXPECT_EQ(rows.integer(0, 0), 2);
}

}  // namespace
}  // namespace tavelor
