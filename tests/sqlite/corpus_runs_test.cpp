// SPDX-License-Identifier: MIT
// Every statement of the corpus runs, or is refused, on a database with the whole schema.
#include <gtest/gtest.h>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tests/dialect/corpus_case.hpp"
#include "tests/sqlite/support.hpp"
#include "tests/support/schema.hpp"

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
  expectTheSchema(session->describe());
}

}  // namespace
}  // namespace tavelor::engine::test
