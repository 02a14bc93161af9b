// SPDX-License-Identifier: MIT
// The floor: what a careful programmer writes over the engine's own calls, with nothing between.
#pragma once

#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

struct sqlite3;
struct sqlite3_stmt;

namespace tavelor::bench::driver {

using Cell = std::variant<std::monostate, std::int64_t, double, std::string>;
using Rows = std::vector<std::vector<Cell>>;

/// A statement, compiled once. Texts that are bound must live until it has run.
class Query {
 public:
  Query(sqlite3* database, std::string_view text);
  ~Query();
  Query(Query&& other) noexcept;
  Query(const Query&) = delete;
  Query& operator=(const Query&) = delete;
  Query& operator=(Query&&) = delete;

  Query& bindNull(int index);
  Query& bind(int index, std::int64_t value);
  Query& bind(int index, double value);
  Query& bind(int index, std::string_view value);
  /// Runs to the end and makes it ready for the next run; the rows written.
  std::int64_t run();
  /// Runs to the end and gives all rows.
  Rows fetch();
  /// Reads every cell and keeps none; how many rows there are.
  std::size_t readThrough();
  /// First column of the first row as text.
  std::string firstText();
  /// First column of the first row.
  double firstNumber();

 private:
  [[noreturn]] void fail() const;
  sqlite3_stmt* statement_ = nullptr;
  double seen_ = 0;  // keeps readThrough() from being left out
};

/// A database with the settings that the library's own sessions have.
class Database {
 public:
  explicit Database(const std::filesystem::path& file, bool synchronous = false);
  ~Database();
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;

  void execute(const std::string& text);
  Query prepare(std::string_view text) { return {handle_, text}; }
  sqlite3* handle() const { return handle_; }

 private:
  sqlite3* handle_ = nullptr;
};

}  // namespace tavelor::bench::driver
