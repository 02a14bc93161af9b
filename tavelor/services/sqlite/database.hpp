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
#include "tavelor/platform/date.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/sqlite/write_queue.hpp"

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
  /// By the clock that it was opened with.
  Date time() const { return now ? now() : Date::now(); }
  /// Before anything is written outside of a transaction: raises 75 when the file was removed,
  /// moved or replaced since it was opened. The engine would go on writing to what is left of it,
  /// and all of that would be lost.
  void mustBeInPlace();
  void mustNotBeLost() const {
    if (lost) [[unlikely]]
      raise(errors::kTransactionLost, kSource);
  }
  /// Waits for the right to write, in the order of those who want it. Raises kBusy when it does not
  /// come, and what mustBeInPlace() raises.
  void takeTurn();
  void endTurn() noexcept {
    if (queue) queue->leave();
  }

  sqlite3* handle = nullptr;
  std::string path;
  std::shared_ptr<const Locale> locale;
  int busyTimeoutMs = 0;
  int depth = 0;      // levels of transaction that the caller has open
  bool lost = false;  // the engine has ended them by itself
  std::chrono::steady_clock::time_point waitSince;
  Callback<Date()> now;                                  // may be empty
  std::unique_ptr<WriteQueue> queue;                     // null where nobody else can write
  WriteQueue::Answer turn = WriteQueue::Answer::kFirst;  // what it said last

  // What a function raised last. The engine carries only a text through; the number waits here
  // until the statement that called the function fails.
  std::int32_t functionError = 0;
  std::string functionErrorText;
};

/// The right to write for one statement, unless the transaction around it has it already. Raises
/// when that one is lost.
class WriteTurn {
 public:
  explicit WriteTurn(Database& database) : database_(database), isOurs_(database.depth == 0) {
    if (isOurs_) {
      database.takeTurn();
    } else {
      database.mustNotBeLost();
    }
  }
  WriteTurn(const WriteTurn&) = delete;
  WriteTurn& operator=(const WriteTurn&) = delete;
  ~WriteTurn() {
    if (isOurs_) database_.endTurn();
  }

 private:
  Database& database_;
  bool isOurs_;
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
