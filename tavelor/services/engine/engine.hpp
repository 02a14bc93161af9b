// SPDX-License-Identifier: MIT
// What a database engine must do. A new engine implements these three classes in a folder of its
// own.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include "tavelor/platform/callback.hpp"
#include "tavelor/platform/date.hpp"
#include "tavelor/services/engine/server_address.hpp"

namespace tavelor {
struct Locale;
}

namespace tavelor::engine {

class Catalogue;
class RowStore;
struct Value;

/// A statement in the engine's own text, compiled once and run many times by one session.
class Prepared {
 public:
  virtual ~Prepared() = default;
  /// Placeholders of the statement.
  virtual int parameterCount() const = 0;
  /// `index` from 1. Views in `value` must live until run() or fetch() returns; a text or bytes
  /// must be bound anew before the next run.
  virtual void bind(int index, const Value& value) = 0;
  /// Runs to the end and gives the number of rows written; rows that it would give are dropped.
  /// After an error the statement has changed nothing and may be run again.
  virtual std::int64_t run() = 0;
  /// On its way: it will have run when the next call that waits comes back.
  static constexpr std::int64_t kSent = -1;
  /// Runs it for a caller who does not need to know how many rows it writes: gives their number, or
  /// kSent. Inside a transaction an engine that is a line away need not wait for it: its error
  /// comes, with its statement, from the next call that waits, from commit() at the latest. Until
  /// the level of transaction in which it was sent is rolled back, everything raises
  /// kTransactionLost then. Everything else as run().
  virtual std::int64_t send() { return run(); }
  /// The same for a caller who asks later: `rows` becomes their number, kSent until then, and what
  /// the statement returns is appended to `returned` unless that is null. Both must live until
  /// Session::wait() has come back.
  virtual void sendFor(std::int64_t& rows, RowStore* returned) {
    rows = kSent;
    rows = returned == nullptr ? run() : fetchCounted(*returned);
  }
  /// every row
  static constexpr std::size_t kAllRows = std::numeric_limits<std::size_t>::max();
  /// Appends every row, or the first `most` of a SELECT and looks at no further one. The number of
  /// columns must be that of the store. A value that is not of the store's column type is converted
  /// as far as it can be: texts by the session's locale, numbers to whole ones by rounding halves
  /// to even. What cannot be converted raises 13, what does not fit 6. After an error `rows` holds
  /// what was fetched before it; a statement that writes and failed in reading its rows has
  /// written, unless its transaction is rolled back.
  void fetch(RowStore& rows, std::size_t most = kAllRows) { fetchRows(rows, most); }
  /// True once when a run has met other tables or columns than the one before it, or than the
  /// compiler did. It may be true without reason, and costs no look at the database.
  virtual bool metOtherSchema() = 0;

 private:
  virtual void fetchRows(RowStore& rows, std::size_t most) = 0;
  /// Every row; gives their number.
  std::int64_t fetchCounted(RowStore& rows);
};

/// One connection to a database, used by one thread.
///
/// Errors come as tavelor::Error, each with the engine's own code: errors::kBusy when another
/// writer did not finish within the wait, and at once when waiting would never end; kTryAgain when
/// the engine has chosen this transaction to give way; kTimeout for a statement that took longer
/// than the engine allows; kIntegrityViolation for a key or a null that the table refuses; kSyntax
/// for a text that the engine refuses; kPathAccess for what may not be written; the number that a
/// function of the dialect raised (13, 11, 6...); kConnectionLost when the line to a server is gone
/// (whatever was being committed may be there or not); kUnspecified for the rest (disk full, file
/// damaged).
///
/// Some of them, a full disk and a lost line above all, and a statement that was sent, make the
/// engine undo the whole transaction by itself. The levels stay open then, so that nothing that was
/// meant for the transaction is written singly: whatever is run, begun or committed raises
/// kTransactionLost until each level is rolled back. A session whose line is lost takes a new one
/// at its next use behind that.
class Session {
 public:
  virtual ~Session() = default;

  /// Compiles a statement. The session must outlive it.
  virtual std::unique_ptr<Prepared> prepare(std::string_view engineText) = 0;
  /// Runs one or several statements that give no rows, without keeping them.
  virtual void execute(std::string_view engineText) = 0;

  /// Transactions nest; the number of open levels is the result. The outermost one takes the right
  /// to write at once, so that it can't fail half way for want of it. Those who want it get it in
  /// the order in which they came; a wait that would never end, for a transaction of the same
  /// thread or for one that waits for us on another database, raises kBusy at once. Without an open
  /// level commit() and rollback() raise kNotAllowedInContext. When the outermost commit() fails
  /// nothing of the transaction is left, and no level is open; the rollback() that whoever meets
  /// the error may send after it does nothing. A session that dies rolls back.
  virtual int begin() = 0;
  /// Gives the number of levels that are left.
  virtual int commit() = 0;
  /// Gives the number of levels that are left.
  virtual int rollback() = 0;
  /// Open levels.
  virtual int depth() const = 0;
  /// Raises kTransactionLost when the open transaction is.
  virtual void mustNotBeLost() const = 0;

  /// The tables as they are now.
  virtual Catalogue describe() = 0;
  /// Whether there is a table of that name, by its letters in either case. No transaction suffers.
  virtual bool hasTable(std::string_view name) = 0;
  /// Waits for all that was sent, and raises the first error of it. Nothing to do in a process.
  virtual void wait() {}

  /// Another number after each change of tables or columns, whoever made it.
  virtual std::int64_t schemaVersion() = 0;

  /// Makes every other transaction that calls it for that table wait until this one ends: between
  /// reading the largest number of a table and adding a row with the next one, nobody else may do
  /// the same. Outside a transaction it does nothing. An engine that lets one transaction write at
  /// a time need not do anything.
  virtual void holdNumbersOf(std::string_view table) { static_cast<void>(table); }

  /// By the clock that the session was opened with: statements mean this one by Now(), whatever the
  /// computer that the engine runs on takes for the time.
  virtual Date now() const = 0;
  /// What becomes of SELECTs inside a transaction, in all sessions that share a line.
  enum class Ahead : std::uint8_t {
    kOff,    ///< each is run and waited for; what was found ahead is forgotten
    kAsk,    ///< each goes on its way and seems to find no row, and what writes raises
             ///< kNotAllowedInContext; the error of one that fails comes as that of a sent one
    kAnswer  ///< one that was asked for with the same values gives what was found then: as often as
             ///< it comes, but "no row" once, because whoever is told so adds it; other ones run
  };
  /// What was found ahead is forgotten with the transaction, and when one of its levels is rolled
  /// back. An engine that nobody waits for never reads ahead.
  virtual void readAhead(Ahead how) { static_cast<void>(how); }
  virtual Ahead ahead() const { return Ahead::kOff; }
  /// How often it has waited for the other end of a line since it was opened, with all sessions
  /// that share the line; 0 for an engine in the process.
  virtual std::int64_t waits() const { return 0; }

  /// Moves all that is committed into the database's own file, for whoever copies or reads that one
  /// alone. Raises kBusy while others read or write. Nothing to do for a server.
  virtual void settle() {}
};

/// What the sessions of one apartment share, if their engine has something to share: a line to a
/// server. Used by one thread.
class Shared {
 public:
  virtual ~Shared() = default;
};

/// How a session is opened.
struct OpenOptions {
  std::string path;      ///< of a file-based database; ":memory:" is one that dies with its session
  ServerAddress server;  ///< of any other
  std::string schema;    ///< its part of the server's database
  /// Of the apartment: empty until the first session puts there what the others share. Null for a
  /// session that shares nothing.
  std::shared_ptr<Shared>* shared = nullptr;
  bool create = false;  ///< make the file or schema if it is not there; else that is an error
  bool readOnly = false;
  bool synchronous = true;   ///< false: a power cut may lose the last transactions, never the file
  int busyTimeoutMs = 5000;  ///< how long to wait for one other writer to end
  std::shared_ptr<const Locale> locale;  ///< by which texts in columns read as numbers
  Callback<Date()> now;  ///< the clock of statements; the computer's when it is not set
};

/// A kind of database: it opens sessions and says how statements are written for it.
class Engine {
 public:
  virtual ~Engine() = default;
  /// "sqlite", "postgresql".
  virtual std::string_view name() const = 0;
  /// True if a database of this engine is one file.
  virtual bool isFile() const = 0;
  /// Errors: kFileNotFound for a missing file or folder, kPathAccess for one that may not be read
  /// or written and for a user whom the server refuses, kUnspecified for a file that is no
  /// database and for a server too old, kBusy, kConnectionLost where no host answers. Nothing is
  /// made or changed then.
  virtual std::unique_ptr<Session> open(const OpenOptions& options) const = 0;
};

/// One level of transaction that is rolled back unless it was committed.
class Transaction {
 public:
  /// Begins a level.
  explicit Transaction(Session& session) : session_(session), level_(session.begin()) {}
  Transaction(const Transaction&) = delete;
  Transaction& operator=(const Transaction&) = delete;
  ~Transaction() {
    if (level_ == 0 || session_.depth() < level_) return;
    try {
      session_.rollback();
    } catch (...) {
      // The error that brought us here tells more; the engine rolls back when the session ends.
    }
  }

  /// Keeps what was written, and ends the level.
  void commit() {
    level_ = 0;
    session_.commit();
  }

 private:
  Session& session_;
  int level_;
};

}  // namespace tavelor::engine
