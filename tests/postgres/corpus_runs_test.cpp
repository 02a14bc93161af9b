// SPDX-License-Identifier: MIT
// The server plans every statement of the corpus on a database with the whole schema.
#include <gtest/gtest.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tests/dialect/corpus_case.hpp"
#include "tests/postgres/server.hpp"
#include "tests/support/schema.hpp"

namespace tavelor::engine::test {
namespace {

using tests::CorpusCase;

/// The whole schema, made once.
class Shop {
 public:
  Shop() {
    std::string ddl;
    for (const std::string& text : dialect::translateSchema(tests::schemaText(), *writer_)) {
      ddl += text + ";\n";
    }
    session_->execute(ddl);
  }

  Session& session() { return *session_; }
  dialect::PlanCache& plans() { return plans_; }

 private:
  ServerSchema schema_;
  std::unique_ptr<Session> session_ = schema_.open();
  std::unique_ptr<const dialect::Writer> writer_ = dialect::postgresWriter(schema_.name());
  dialect::PlanCache plans_{*session_, std::make_shared<const Catalogue>(tests::schemaCatalogue()),
                            Locale::spanish(), *writer_};
};

class CorpusOnServer : public ServerTest,
                       public testing::WithParamInterface<std::filesystem::path> {
 protected:
  static void TearDownTestSuite() { shop_.reset(); }
  void SetUp() override {
    ServerTest::SetUp();
    if (!IsSkipped() && shop_ == nullptr) shop_ = std::make_unique<Shop>();
  }

  /// What went wrong, or "".
  static std::string run(const CorpusCase& sample) {
    const Statement statement = sample.statement();
    dialect::PlanCache& plans = shop_->plans();
    try {
      const auto plan = plans.plan(statement);
      if (plan->kind != dialect::StatementKind::kSelect) {
        plans.run(statement);
        return "";
      }
      std::vector<ColumnType> types;
      for (const dialect::OutputColumn& column : plan->columns) types.push_back(column.type);
      RowStore rows(std::move(types));
      return plans.fetch(statement, rows) ? "" : "the tables have changed";
    } catch (const Error& error) {
      return error.what();
    }
  }

  static inline std::unique_ptr<Shop> shop_;
};

TEST_P(CorpusOnServer, RunsAsTheCorpusTells) {
  for (const CorpusCase& sample : tests::readCorpus(GetParam())) {
    shop_->session().begin();
    const std::string failure = run(sample);
    EXPECT_EQ(failure.empty(), sample.runs) << sample.name << "\n" << failure;
    shop_->session().rollback();
  }
}

INSTANTIATE_TEST_SUITE_P(Files, CorpusOnServer, testing::ValuesIn(tests::corpusFiles()),
                         [](const testing::TestParamInfo<std::filesystem::path>& sample) {
                           return tests::testName(sample.param);
                         });

class SchemaOnServer : public ServerTest {};

TEST_F(SchemaOnServer, ReadsBackWithTheSameTypesSizesAndKeys) {
  const ServerSchema schema;
  const auto session = schema.open();
  const auto writer = dialect::postgresWriter(schema.name());
  for (const std::string& text : dialect::translateSchema(tests::schemaText(), *writer)) {
    session->execute(text);
  }
  expectTheSchema(session->describe());
}

}  // namespace
}  // namespace tavelor::engine::test
