// SPDX-License-Identifier: MIT
// Every statement of the corpus runs, or is refused, on a database with the whole schema.
#include <gtest/gtest.h>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tests/dialect/corpus_case.hpp"
#include "tests/sqlite/support.hpp"

namespace tavelor::engine::test {
namespace {

using tests::CorpusCase;

class CorpusRuns : public testing::TestWithParam<std::filesystem::path> {
 protected:
  CorpusRuns() {
    for (const std::string& text :
         dialect::translateSchema(tests::schemaText(), dialect::sqliteWriter())) {
      session->execute(text);
    }
  }

  /// What went wrong, or "".
  std::string run(const CorpusCase& sample) {
    const Statement statement = sample.statement();
    try {
      if (!text::equalsIgnoreCase(text::left(sample.marked, 6), "SELECT")) {
        plans.run(statement);
        return "";
      }
      fetched(plans, statement);
      return "";
    } catch (const Error& error) {
      return error.what();
    }
  }

  std::unique_ptr<Session> session = openInMemory();
  dialect::PlanCache plans{*session, std::make_shared<const Catalogue>(tests::schemaCatalogue()),
                           Locale::spanish(), dialect::sqliteWriter()};
};

TEST_P(CorpusRuns, AsTheCorpusTells) {
  for (const CorpusCase& sample : tests::readCorpus(GetParam())) {
    session->begin();
    const std::string failure = run(sample);
    EXPECT_EQ(failure.empty(), sample.runs) << sample.name << "\n" << failure;
    session->rollback();
  }
}

INSTANTIATE_TEST_SUITE_P(Files, CorpusRuns, testing::ValuesIn(tests::corpusFiles()),
                         [](const testing::TestParamInfo<std::filesystem::path>& sample) {
                           return tests::testName(sample.param);
                         });

TEST(SchemaInTheEngine, ReadsBackWithTheSameTypesSizesAndKeys) {
  const auto session = openInMemory();
  for (const std::string& text :
       dialect::translateSchema(tests::schemaText(), dialect::sqliteWriter())) {
    session->execute(text);
  }
  const Catalogue found = session->describe();
  ASSERT_EQ(found.tables().size(), tests::schemaCatalogue().tables().size());
  for (const Table& wanted : tests::schemaCatalogue().tables()) {
    const Table* table = found.find(wanted.name);
    ASSERT_NE(table, nullptr) << wanted.name;
    EXPECT_EQ(table->key, wanted.key) << wanted.name;
    ASSERT_EQ(table->columns.size(), wanted.columns.size()) << wanted.name;
    for (std::size_t i = 0; i < wanted.columns.size(); ++i) {
      const Column& column = table->columns[i];
      const Column& expected = wanted.columns[i];
      const std::string name = wanted.name + "." + expected.name;
      EXPECT_EQ(column.name, expected.name) << name;
      EXPECT_EQ(column.type, expected.type) << name;
      EXPECT_EQ(column.size, expected.size) << name;
      EXPECT_EQ(column.autoNumber, expected.autoNumber) << name;
    }
  }
}

}  // namespace
}  // namespace tavelor::engine::test
