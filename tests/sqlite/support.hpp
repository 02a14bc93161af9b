// SPDX-License-Identifier: MIT
// What the tests of the embedded engine share.
#pragma once

#include <atomic>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/locale.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/plan_cache.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"
#include "tavelor/services/sqlite/sqlite_engine.hpp"

namespace tavelor::engine::test {

/// A folder that goes with the test.
class TempFolder {
 public:
  TempFolder() {
    static std::atomic<int> count = 0;
    path_ = std::filesystem::temp_directory_path() /
            ("tavelor-" + std::to_string(::getpid()) + "-" + std::to_string(++count));
    std::filesystem::create_directories(path_);
  }
  TempFolder(const TempFolder&) = delete;
  TempFolder& operator=(const TempFolder&) = delete;
  ~TempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  const std::filesystem::path& path() const { return path_; }
  std::string file(const std::string& name) const { return (path_ / name).string(); }

 private:
  std::filesystem::path path_;
};

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

/// The error that a call raises, if it does.
template <typename Call>
std::optional<Error> errorOf(Call call) {
  try {
    call();
  } catch (const Error& error) {
    return error;
  }
  return std::nullopt;
}

/// Its number; 0 when the call raises nothing.
template <typename Call>
std::int32_t errorNumber(Call call) {
  const auto error = errorOf(call);
  return error ? error->number() : 0;
}

inline RowStore fetchAll(Session& session, std::string_view sql, std::vector<ColumnType> types) {
  RowStore rows(std::move(types));
  session.prepare(sql)->fetch(rows);
  return rows;
}

inline std::int64_t wholeOf(Session& session, std::string_view sql) {
  return fetchAll(session, sql, {ColumnType::kInt32}).integer(0, 0);
}

inline double realOf(Session& session, std::string_view sql) {
  return fetchAll(session, sql, {ColumnType::kDouble}).real(0, 0);
}

inline std::string textOf(Session& session, std::string_view sql) {
  return std::string(fetchAll(session, sql, {ColumnType::kMemo}).text(0, 0));
}

inline bool isNull(Session& session, std::string_view sql) {
  return fetchAll(session, sql, {ColumnType::kMemo}).isNull(0, 0);
}

inline std::string contentOf(const std::string& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace tavelor::engine::test
