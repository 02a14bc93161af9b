// SPDX-License-Identifier: MIT
// How the engine finds the rows of each statement of the corpus: a shop does not get slower with
// the years. The plans are those of the schema alone, since no statistics are kept.
#include <set>
#include <string>

#include <gmock/gmock.h>

#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tests/dialect/corpus_case.hpp"
#include "tests/dialect/scans.hpp"
#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

using tests::CorpusCase;

class Plans : public testing::Test {
 protected:
  Plans() {
    for (const std::string& text :
         dialect::translateSchema(tests::schemaText(), dialect::sqliteWriter())) {
      session->execute(text);
    }
  }

  std::vector<std::string> explain(const std::string& sql) { return tests::explain(*session, sql); }

  std::unique_ptr<Session> session = openInMemory();
  dialect::PlanCache plans{*session, std::make_shared<const Catalogue>(tests::schemaCatalogue()),
                           Locale::spanish(), dialect::sqliteWriter()};
};

TEST_F(Plans, OnlyTheStatementsThatAreNamedReadAWholeTable) {
  const tests::AllowedScans allowed;
  std::set<std::string> used;
  for (const auto& file : tests::corpusFiles()) {
    for (const CorpusCase& sample : tests::readCorpus(file)) {
      if (!sample.runs) continue;
      const std::string member = sample.name.substr(0, sample.name.find(" / "));
      for (const std::string& table :
           tests::scannedTables(*session, *plans.plan(sample.statement()))) {
        const bool isNamed = allowed.members.contains(member);
        if (allowed.tables.contains(table)) {
          used.insert("table " + table);
        } else if (isNamed) {
          used.insert(member);
        } else {
          ADD_FAILURE() << sample.name << " reads the whole of " << table << ":\n"
                        << sample.marked
                        << "\nGive it an index, or say in tests/sqlite/scans.txt why it may.";
        }
      }
    }
  }
  for (const std::string& table : allowed.tables) {
    EXPECT_TRUE(used.contains("table " + table))
        << "nothing reads the whole of " << table << " any more: take it out of scans.txt";
  }
  for (const std::string& member : allowed.members) {
    EXPECT_TRUE(used.contains(member))
        << member << " reads no whole table any more: take it out of scans.txt";
  }
}

TEST_F(Plans, TheOrderOfTheTableCostsNoIndex) {
  for (const char* where : {"Fecha >= #01/01/2026#", "Fecha = #01/01/2026#", "Codigo = 'A'",
                            "Fecha >= #01/01/2026# And Fecha < #01/02/2026#",
                            "Fecha Between #01/01/2026# And #01/02/2026#",
                            "Referencia In ('A', 'B')", "Codigo = 'A' Or Referencia = 'B'"}) {
    const std::string text = std::string("SELECT Numero FROM HTickets WHERE ") + where;
    const Statement statement(Statement::trusted(text));
    EXPECT_TRUE(tests::scannedTables(*session, *plans.plan(statement)).empty()) << where;
  }
}

TEST_F(Plans, AReferenceIsLookedForAmongThoseOfItsListNotInTheList) {
  EXPECT_THAT(
      explain(
          "SELECT Codigo FROM Articulos WHERE (Referencia = ?1 AND Lista = ?2 AND Activo <> 0)"),
      testing::ElementsAre(testing::HasSubstr("(Referencia=? AND Lista=?)")));
}

// The statement skips no closing but those of later days: the rows of other days are not read.
TEST_F(Plans, TheBalanceOfATillIsReadFromItsGreatestNumberDown) {
  EXPECT_THAT(explain("SELECT Max(Codigo) FROM Cierres WHERE (Fecha <= ?1 AND Caja = ?2)"),
              testing::ElementsAre(testing::AllOf(
                  testing::StartsWith("SEARCH"), testing::HasSubstr("COVERING INDEX"),
                  testing::HasSubstr("IX_Cierres_Caja_Codigo (Caja=?)"))));
}

}  // namespace
}  // namespace tavelor::engine::test
