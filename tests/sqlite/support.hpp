// SPDX-License-Identifier: MIT
// What the tests of the embedded engine share.
#pragma once

#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"
#include "tests/support/engine.hpp"

namespace tavelor::engine::test {

inline OpenOptions creating(const std::string& path) {
  OpenOptions options;
  options.path = path;
  options.create = true;
  options.synchronous = false;
  return options;
}

inline std::unique_ptr<Session> openNew(const std::string& path) {
  return sqliteEngine().open(creating(path));
}

inline std::unique_ptr<Session> openInMemory() {
  return openNew(":memory:");
}

inline std::unique_ptr<Session> openExisting(const std::string& path, int busyTimeoutMs = 5000) {
  OpenOptions options;
  options.path = path;
  options.synchronous = false;
  options.busyTimeoutMs = busyTimeoutMs;
  return sqliteEngine().open(options);
}

/// All rows of a SELECT, hidden columns included.
inline RowStore fetched(dialect::PlanCache& plans, const Statement& statement) {
  std::vector<ColumnType> types;
  for (const auto& column : plans.plan(statement)->columns) types.push_back(column.type);
  RowStore rows(types);
  EXPECT_TRUE(plans.fetch(statement, rows));
  return rows;
}

inline bool isNull(Session& session, std::string_view sql) {
  return fetchAll(session, sql, {ColumnType::kMemo}).isNull(0, 0);
}

inline std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace tavelor::engine::test
