// SPDX-License-Identifier: MIT
// A plan cache over a session that writes down what it is told.
#pragma once

#include <algorithm>

#include <gmock/gmock.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor::dialect::test {

using engine::Catalogue;
using engine::Column;
using engine::Table;
using engine::Value;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

/// Writes down what is run.
struct Journal {
  int prepared = 0;
  std::vector<std::string> bound;
  std::vector<std::string> runs;
  int depth = 0;
  int rollbacks = 0;
  int failAtRun = -1;
  int looksAtTheClock = 0;
  std::vector<std::string> numbersHeld;
  bool meetsOtherSchema = false;
};

inline std::string printed(const Value& value) {
  switch (value.kind) {
    case Value::Kind::kNull:
      return "null";
    case Value::Kind::kBoolean:
      return "flag " + std::to_string(value.integer);
    case Value::Kind::kInteger:
      return "whole " + std::to_string(value.integer);
    case Value::Kind::kReal:
      return "real " + std::to_string(value.real);
    case Value::Kind::kCurrency:
      return "money " + std::to_string(value.integer);
    case Value::Kind::kDate:
      return "date " + std::to_string(value.real);
    case Value::Kind::kText:
      return "text " + std::string(value.text);
    case Value::Kind::kBytes:
      return "bytes";
  }
  return "";
}

class FakePrepared final : public engine::Prepared {
 public:
  FakePrepared(Journal& journal, std::string text)
      : journal_(journal),
        text_(std::move(text)),
        count_(static_cast<int>(std::count_if(text_.begin(), text_.end(),
                                              [](char c) { return c == '?' || c == '$'; }))) {}
  int parameterCount() const override { return count_; }
  void bind(int index, const Value& value) override {
    if (index == 1) journal_.bound.clear();
    journal_.bound.push_back(printed(value));
  }
  std::int64_t run() override {
    if (journal_.failAtRun == static_cast<int>(journal_.runs.size())) {
      throw Error(errors::kUnspecified, "fake", "as asked");
    }
    journal_.runs.push_back(text_);
    return 1;
  }
  bool metOtherSchema() override { return journal_.meetsOtherSchema; }

 private:
  void fetchRows(engine::RowStore& rows, std::size_t /*most*/) override {
    journal_.runs.push_back(text_);
    rows.append();
  }

  Journal& journal_;
  std::string text_;
  int count_;
};

class FakeSession final : public engine::Session {
 public:
  explicit FakeSession(Journal& journal) : journal_(journal) {}
  std::unique_ptr<engine::Prepared> prepare(std::string_view text) override {
    ++journal_.prepared;
    return std::make_unique<FakePrepared>(journal_, std::string(text));
  }
  void execute(std::string_view) override {}
  int begin() override { return ++journal_.depth; }
  int commit() override { return --journal_.depth; }
  int rollback() override {
    ++journal_.rollbacks;
    return --journal_.depth;
  }
  int depth() const override { return journal_.depth; }
  void mustNotBeLost() const override {}
  Catalogue describe() override { return {}; }
  bool hasTable(std::string_view) override { return false; }
  std::int64_t schemaVersion() override { return 0; }
  Date now() const override {
    ++journal_.looksAtTheClock;
    return Date(45000.75);
  }
  void holdNumbersOf(std::string_view table) override { journal_.numbersHeld.emplace_back(table); }

 private:
  Journal& journal_;
};

inline Column column(std::string name, ColumnType type, std::int32_t size = 0) {
  Column made;
  made.name = std::move(name);
  made.type = type;
  made.size = size;
  return made;
}

inline std::shared_ptr<const Catalogue> shopCatalogue() {
  Table lines;
  lines.name = "Lineas";
  lines.columns = {
      column("Codigo", ColumnType::kText, 10),  column("Cantidad", ColumnType::kDouble),
      column("Importe", ColumnType::kCurrency), column("Unidades", ColumnType::kInt16),
      column("Fecha", ColumnType::kDate),       column("Activa", ColumnType::kBoolean),
      column("Nota", ColumnType::kMemo)};
  lines.key = {0};
  Table totals;
  totals.name = "Totales";
  totals.columns = {column("Codigo", ColumnType::kText, 10),
                    column("Total", ColumnType::kCurrency)};
  totals.key = {0};
  Table counters;
  counters.name = "Contadores";
  counters.columns = {column("Codigo", ColumnType::kText, 10),
                      column("Numero", ColumnType::kInt32)};
  counters.key = {0};
  counters.counter = true;
  return std::make_shared<const Catalogue>(std::vector<Table>{lines, totals, counters});
}

class PlanCacheTest : public testing::Test {
 protected:
  std::int64_t run(const Statement& statement) { return cache.run(statement); }
  std::int32_t errorOf(const Statement& statement) {
    try {
      cache.run(statement);
    } catch (const Error& error) {
      description = error.description();
      failedStatement = error.statement();
      return error.number();
    }
    return 0;
  }
  static Statement byCode(std::string_view code) {
    return Statement("DELETE FROM Lineas WHERE Codigo = '") << spliced(code) << "'";
  }
  static Statement insertBare(std::string_view quantity) {
    return Statement("INSERT INTO Lineas (Cantidad) VALUES (") << spliced(quantity) << ")";
  }
  static Statement insertQuoted(Statement::Constant name, std::string_view text) {
    return Statement("INSERT INTO Lineas (") << name << ") VALUES ('" << spliced(text) << "')";
  }

  Journal journal;
  FakeSession session{journal};
  std::shared_ptr<const Catalogue> tables = shopCatalogue();
  PlanCache cache{session, [this] { return tables; }, Locale::spanish(), sqliteWriter()};
  std::string description;
  std::string failedStatement;

  /// The same tables on an engine that tells types apart.
  std::unique_ptr<const Writer> server = postgresWriter("s");
  PlanCache onServer{session, [this] { return tables; }, Locale::spanish(), *server};
  /// The texts that were run for a SELECT.
  std::vector<std::string> fetched(PlanCache& plans, Statement::Constant text) {
    journal.runs.clear();
    const Statement statement(text);
    std::vector<ColumnType> types;
    for (const OutputColumn& found : plans.plan(statement)->columns) types.push_back(found.type);
    engine::RowStore rows(std::move(types));
    EXPECT_TRUE(plans.fetch(statement, rows));
    return journal.runs;
  }
};

}  // namespace tavelor::dialect::test
