// SPDX-License-Identifier: MIT
// What a session, its statements and its functions share: the handle and the state beside it.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <sqlite3.h>

#include "tavelor/platform/callback.hpp"
#include "tavelor/platform/error.hpp"

namespace tavelor {
struct Locale;
}

namespace tavelor::engine::sqlite {

inline constexpr std::string_view kSource = "Database";

/// An open handle. Statements share its ownership, so they may outlive their session.
struct Database {
  Database() = default;
  Database(const Database&) = delete;
  Database& operator=(const Database&) = delete;
  ~Database() { sqlite3_close_v2(handle); }

  /// Raises what the failed call left in the handle. `code` is what it answered.
  [[noreturn]] void fail(int code);
  /// Before anything is written outside of a transaction: raises 75 when the file was removed,
  /// moved or replaced since it was opened. The engine would go on writing to what is left of it,
  /// and all of that would be lost.
  void mustBeInPlace();
  /// The engine ends the transaction by itself after some errors: our count of levels follows.
  void followRollback() {
    if (depth > 0 && sqlite3_get_autocommit(handle) != 0) depth = 0;
  }

  sqlite3* handle = nullptr;
  std::string path;
  std::shared_ptr<const Locale> locale;
  int busyTimeoutMs = 0;
  int depth = 0;
  std::chrono::steady_clock::time_point waitSince;
  Callback<bool()> worthWaiting;  // may be empty
  bool waitsForItself = false;    // what worthWaiting said last

  // What a function raised last. The engine carries only a text through; the number waits here
  // until the statement that called the function fails.
  std::int32_t functionError = 0;
  std::string functionErrorText;
};

/// The error of an engine's (extended) result code.
Error errorOf(const Database& database, int code, std::string_view engineMessage);

struct StatementFinalizer {
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};
using StatementHandle = std::unique_ptr<sqlite3_stmt, StatementFinalizer>;

/// Compiles one statement. Raises kSyntax, with the text, for what the engine refuses and for more
/// than one statement.
StatementHandle compile(Database& database, std::string_view engineText);

}  // namespace tavelor::engine::sqlite
