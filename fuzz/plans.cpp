// SPDX-License-Identifier: MIT
// Any statement, run several times: translated anew, by the ranges of its values, and as plain
// text. The road to the plan makes no difference to what it does.
#include <string>

#include "fuzz/database.hpp"
#include "fuzz/input.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/row_store.hpp"

namespace tavelor::fuzz {

namespace {

using dialect::PlanCache;

/// Rows read or written and the error, all undone.
struct Outcome {
  std::int64_t rows = 0;
  std::int32_t error = 0;
  std::string text;
  bool operator==(const Outcome& other) const { return rows == other.rows && error == other.error; }
};

std::int64_t runOnce(PlanCache& cache, const Statement& statement) {
  const auto plan = cache.plan(statement);
  if (plan->kind != dialect::StatementKind::kSelect) return cache.run(statement);
  std::vector<engine::ColumnType> types;
  for (const auto& column : plan->columns) types.push_back(column.type);
  engine::RowStore rows(types);
  require(cache.fetch(statement, rows), "tables that stay as they are are not out of date", "");
  return static_cast<std::int64_t>(rows.rows());
}

Outcome outcomeOf(PlanCache& cache, const Statement& statement) {
  engine::Session& session = *database().session;
  Outcome outcome;
  session.begin();
  try {
    outcome.rows = runOnce(cache, statement);
  } catch (const Error& error) {
    outcome.error = error.number();
    outcome.text = error.what();
    require(session.depth() == 1, "an error leaves the transaction open", statement.text());
  }
  session.rollback();
  return outcome;
}

void check(PlanCache& cache, const Statement& statement) {
  const std::string text = statement.text();
  const Outcome first = outcomeOf(cache, statement);
  const Outcome again = outcomeOf(cache, statement);
  require(first == again, "a statement does the same when it runs again",
          text + "\n" + first.text + "\n" + again.text);
  if (first.error != 0) return;
  // A plain text takes the short road from its third time on.
  for (int times = 0; times < 3; ++times) {
    const Outcome plain = outcomeOf(cache, Statement::trusted(text));
    require(first == plain, "a statement does the same without the ranges of its values",
            text + "\n" + plain.text);
  }
}

}  // namespace

}  // namespace tavelor::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  using namespace tavelor;
  static dialect::PlanCache cache(*fuzz::database().session, fuzz::database().catalogue,
                                  Locale::spanish(), dialect::sqliteWriter());
  fuzz::check(cache, fuzz::statementOf({reinterpret_cast<const char*>(data), size}));
  return 0;
}
