// SPDX-License-Identifier: MIT
// Hostile values in the places where classes put values, on both engines: what one refuses the
// other refuses, and where one takes it as a value so does the other.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/ddl.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/dialect/corpus_case.hpp"
#include "tests/postgres/server.hpp"
#include "tests/support/hostile_values.hpp"

namespace tavelor::engine::test {
namespace {

constexpr std::string_view kTables =
    "CREATE TABLE Bancos (Codigo TEXT(20) NOT NULL, Banco TEXT(50), Saldo CURRENCY, Fecha DATETIME,"
    " Activo BIT, Notas MEMO, Veces LONG, CONSTRAINT K PRIMARY KEY (Codigo));";

/// One engine with two rows in its table.
struct Side {
  std::unique_ptr<Session> session;
  std::unique_ptr<const dialect::Writer> writer;
  std::unique_ptr<dialect::PlanCache> plans;

  void make() {
    for (const std::string& text : dialect::translateSchema(kTables, *writer)) {
      session->execute(text);
    }
    plans = std::make_unique<dialect::PlanCache>(
        *session, std::make_shared<const Catalogue>(dialect::parseSchema(kTables)),
        Locale::spanish(), *writer);
    plans->run(
        Statement("INSERT INTO Bancos (Codigo, Banco, Saldo, Fecha, Activo, Notas, Veces) "
                  "VALUES ('1', 'Uno', 1.5, #03/04/2025#, True, 'a', 1)"));
    plans->run(
        Statement("INSERT INTO Bancos (Codigo, Banco, Saldo, Activo, Veces) "
                  "VALUES ('2', 'Dos', -2, False, 2)"));
  }
};

/// What a statement did: its error, or how many rows it read or wrote.
std::string outcomeOf(const Side& side, const Statement& statement) {
  side.session->begin();
  std::string outcome;
  try {
    const auto plan = side.plans->plan(statement);
    if (plan->kind == dialect::StatementKind::kSelect) {
      std::vector<ColumnType> types;
      for (const dialect::OutputColumn& column : plan->columns) types.push_back(column.type);
      RowStore rows(std::move(types));
      if (!side.plans->fetch(statement, rows)) return "the tables have changed";
      outcome = std::to_string(rows.rows()) + " rows";
    } else {
      outcome = std::to_string(side.plans->run(statement)) + " written";
    }
  } catch (const Error& error) {
    outcome = "error " + std::to_string(error.number());
  }
  EXPECT_EQ(side.session->depth(), 1) << "an error leaves the transaction open";
  side.session->rollback();
  return outcome;
}

/// All that the table holds.
std::string contentOf(const Side& side) {
  std::string content;
  RowStore rows({ColumnType::kText, ColumnType::kText, ColumnType::kInt32});
  side.session
      ->prepare(side.writer->composed(
          "SELECT \"Codigo\", \"Banco\", \"Veces\" FROM \"Bancos\" ORDER BY \"Codigo\""))
      ->fetch(rows);
  for (std::size_t i = 0; i < rows.rows(); ++i) {
    content += std::string(rows.text(i, 0)) + "|" + std::string(rows.text(i, 1)) + "|" +
               std::to_string(rows.integer(i, 2)) + "\n";
  }
  return content;
}

struct Gap {
  Statement::Constant before;
  Statement::Constant behind;
};

const std::array kGaps{
    Gap{"SELECT Codigo FROM Bancos WHERE codigo = '", "'"},
    Gap{"SELECT Codigo FROM Bancos WHERE codigo = \"", "\" AND banco <> 'x'"},
    Gap{"SELECT Codigo FROM Bancos WHERE codigo = ", " AND banco = 'x'"},
    Gap{"SELECT Codigo FROM Bancos WHERE banco Like 'a", "*'"},
    Gap{"SELECT Codigo FROM Bancos WHERE Notas = '", "' OR Banco = 'Dos'"},
    Gap{"SELECT Codigo FROM Bancos WHERE Fecha = #", "#"},
    Gap{"SELECT Codigo FROM Bancos WHERE Veces = ", ""},
    Gap{"SELECT TOP ", " Codigo FROM Bancos"},
    Gap{"UPDATE Bancos SET Veces = Veces + ", " WHERE(Codigo ='1')"},
    Gap{"UPDATE Bancos SET Saldo = '", "' WHERE Codigo = '1'"},
    Gap{"UPDATE Bancos SET Notas = '", "'"},
    Gap{"INSERT INTO Bancos (Codigo, Banco, Activo) VALUES ('", "', 'b', False)"},
    Gap{"INSERT INTO Bancos (Codigo, Banco, Activo) VALUES (", ", 'b', False)"},
    Gap{"DELETE FROM Bancos WHERE Codigo = '", "';"}};

class HostileOnServer : public ServerTest {
 protected:
  void SetUp() override {
    ServerTest::SetUp();
    if (IsSkipped()) return;
    OpenOptions memory;
    memory.path = ":memory:";
    memory.create = true;
    embedded = {sqliteEngine().open(memory), dialect::sqliteWriter(""), nullptr};
    embedded.make();
    schema = std::make_unique<ServerSchema>();
    server = {schema->open(), dialect::postgresWriter(schema->name()), nullptr};
    server.make();
    before = contentOf(embedded);
    ASSERT_EQ(contentOf(server), before);
  }
  static Statement filled(const Gap& gap, std::string_view with) {
    Statement statement(gap.before);
    statement << spliced(with) << gap.behind;
    return statement;
  }

  std::unique_ptr<ServerSchema> schema;
  Side embedded;
  Side server;
  std::string before;
};

TEST_F(HostileOnServer, ValuesDoWhatTheyDoOnTheEmbeddedEngine) {
  for (const std::string& value : tavelor::test::hostileValues()) {
    for (const Gap& gap : kGaps) {
      const Statement statement = filled(gap, value);
      EXPECT_EQ(outcomeOf(server, statement), outcomeOf(embedded, statement))
          << statement.text().substr(0, 200);
    }
  }
  EXPECT_EQ(contentOf(server), before);
  EXPECT_EQ(contentOf(embedded), before);
}

// A file keeps them; the server has no such texts, and says so in place of cutting them.
TEST_F(HostileOnServer, TextsThatNoServerHoldsAreRefusedAndNotCut) {
  for (const std::string& value : {std::string("a\0b", 3), std::string("\xFF"), std::string("\xC3"),
                                   std::string("\xED\xA0\x80"), std::string("x\xF8y")}) {
    for (const Gap& gap : {kGaps[0], kGaps[4], kGaps[10], kGaps[11]}) {
      const std::string outcome = outcomeOf(server, filled(gap, value));
      EXPECT_TRUE(outcome == "error 13" || outcome == "error -2147217900")
          << outcome << " of " << filled(gap, value).text();
    }
  }
  EXPECT_EQ(contentOf(server), before);
}

}  // namespace
}  // namespace tavelor::engine::test
