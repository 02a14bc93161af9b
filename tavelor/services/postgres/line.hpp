// SPDX-License-Identifier: MIT
// The line that the sessions of one apartment share: its statements, and the levels of transaction
// of all of them as one pile.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>
#include <vector>

#include "tavelor/platform/error.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/postgres/errors.hpp"
#include "tavelor/services/postgres/wire.hpp"

namespace tavelor::engine::postgres {

/// The levels of transaction of one session. The innermost ones may be lost: their transaction is
/// undone, or a session below them has rolled back what they began in.
struct Levels {
  int open = 0;
  int lost = 0;
  bool commitFailed = false;  ///< and neither a rollback nor a new transaction came since
  std::string lostBy;         ///< what ended them
};

/// A statement that the server compiles, for one list of types of its placeholders.
struct Named {
  std::string name{};  ///< "" for one that is compiled and planned anew for each run
  std::string text;
  std::vector<Oid> types;
  bool leavesNothing = false;    ///< nothing of it is to be undone, not even a lock
  std::string key;               ///< by which the line finds it
  std::uint64_t compiledOn = 0;  ///< the number of the wire that knows it; 0 for none
};
using NamedPtr = std::shared_ptr<Named>;

/// What a statement that was asked ahead has found; null until it has.
using AnswerPtr = std::shared_ptr<ResultHandle>;

/// Where what becomes of a sent statement is put, for whoever asks: the number of its rows, and the
/// rows themselves.
struct Outcome {
  std::int64_t* rows = nullptr;
  RowStore* returned = nullptr;
};

/// Where whatever fails stands: an error of the line itself ends every level that is open, and the
/// next use of the line behind that takes a new one.
class Line {
 public:
  /// Connects. Raises as Engine::open().
  explicit Line(LineSettings settings);
  Line(const Line&) = delete;
  Line& operator=(const Line&) = delete;

  const LineSettings& settings() const { return settings_; }
  /// Round trips.
  std::int64_t waits() const { return waits_; }
  /// Grows when somebody has changed tables or columns, or may have.
  std::uint64_t schemaChanges() const { return schemaChanges_; }

  /// As Session tells, of one session's levels. Nothing goes over the line by begin(), nor by
  /// anything else that the next statement can take along.
  void begin(Levels& of);
  void commit(Levels& of);
  void rollback(Levels& of);
  /// Rolls back all levels of a session that dies, without raising.
  void abandon(Levels& of) noexcept;
  /// Raises kTransactionLost, with what it was lost by.
  void mustNotBeLost(const Levels& of) const;
  /// Whether any session has a level open.
  bool isInTransaction() const { return !levels_.empty(); }

  /// The statement of that text and those types, shared by all that want it.
  NamedPtr named(const std::string& text, const std::vector<Oid>& types,
                 bool leavesNothing = false);
  /// Takes it back; the server forgets it when nobody else holds it.
  void release(NamedPtr&& statement) noexcept;
  /// True for an error of that code when compiling it once more mends it, which its next run does
  /// then.
  bool compilesAgain(Named& statement, std::int32_t nativeCode);

  /// Runs a statement and waits for its result, and for all that was sent before. When it fails its
  /// transaction is as it was before it, unless what was sent before failed or the error is
  /// kTryAgain: then it is lost.
  /// Rows go to the sink, if there is one, as they come.
  ResultHandle await(const NamedPtr& statement, const Arguments& arguments,
                     RowSink* rows = nullptr);
  /// Sends one inside a transaction. Its error comes from the next call that waits, and ends the
  /// level that it was sent in.
  void send(const NamedPtr& statement, const Arguments& arguments, Outcome outcome);
  /// Waits for all that was sent.
  void wait();

  /// As Session tells. Without a transaction nothing is asked.
  void readAhead(Session::Ahead how);
  Session::Ahead ahead() const { return ahead_; }
  /// While it lives what the engine itself reads is run and waited for.
  class Aside {
   public:
    explicit Aside(Line& line)
        : line_(line), was_(std::exchange(line.ahead_, Session::Ahead::kOff)) {}
    ~Aside() { line_.ahead_ = was_; }
    Aside(const Aside&) = delete;
    Aside& operator=(const Aside&) = delete;

   private:
    Line& line_;
    Session::Ahead was_;
  };
  /// Sends a SELECT inside a transaction; answer() has its rows.
  void ask(const NamedPtr& statement, const Arguments& arguments);
  /// The rows that a SELECT has found go to the sink, where they are here already. False when none
  /// are.
  bool answerAtHand(const NamedPtr& statement, const Arguments& arguments, RowSink& rows) const;
  /// What a SELECT that was asked has found goes to the sink, after a wait if it is not here yet.
  /// False when it was not asked with these values.
  bool answer(const NamedPtr& statement, const Arguments& arguments, RowSink& rows);
  /// Runs one or several statements that give no rows.
  void execute(std::string_view text);
  /// Takes an advisory lock for the rest of the transaction, together with the next statement.
  void hold(std::int64_t number);

 private:
  /// Levels that began without a statement between them share their savepoint: what undoes one
  /// undoes them all.
  struct Level {
    Levels* owner;
    int serial;  // of its savepoint; 0 for those that began with the transaction
  };
  /// A statement of the transaction's own.
  struct Control {
    enum class Kind : std::uint8_t {
      kBegin,
      kSavepoint,
      kRelease,
      kRollbackTo,
      kRollback,
      kCommit
    };
    Kind kind;
    int serial = 0;  // of the savepoint
    std::string text() const;
  };
  /// What is under way; results come in the same order.
  struct Sent {
    enum class Kind : std::uint8_t { kControl, kCompiled, kWrite, kAsked, kAwaited, kSync };
    Kind kind;
    bool isGuarded = false;  // its failure can be undone alone
    bool isDropped = false;  // its failure says nothing: it has been undone, or does not matter
    NamedPtr statement = nullptr;
    int serial = 0;  // of the level that it was sent in
    Outcome outcome = {};
    AnswerPtr answer = nullptr;
  };

  /// Gives it a name that no statement of this line has had, if it is to have one.
  void nameAnew(Named& statement);
  void forgetOnServer(const Named& statement);
  /// Makes the server compile it anew at its next run.
  void compileAgain(Named& statement);
  /// The same of all: somebody has made the server forget them.
  void compileAllAgain();
  /// A wire that stands, or an error that has ended the transaction.
  void beReady();
  void reconnect();
  /// Runs what uses the wire; whatever that raises is the wire's end.
  template <typename Use>
  auto onWire(Use use);
  void loseWire(const Error& error) noexcept;

  void put(Sent sent, const std::string& text);
  void put(const Control& control, bool isGuarded);
  /// The same of what opens or closes a guard, which the server keeps compiled.
  void putGuard(Control::Kind kind);
  void putStatement(Sent sent, const Arguments& arguments);
  /// All that waits to be taken along: names to be forgotten, controls, advisory locks.
  void putWaiting();
  void putSync();
  /// Waits for all that is under way, and gives what was awaited of it.
  ResultHandle collect();
  /// Puts it on its way inside a transaction.
  void putSent(Sent sent, const Arguments& arguments);
  /// Puts it off until the next statement goes.
  void later(const Control& control);

  void commitTransaction(Levels& of);
  /// Rolls the whole transaction back on the server without waiting for it.
  void dropTransaction() noexcept;
  /// The state behind a transaction.
  void endTransaction() noexcept;
  /// Takes the levels from that one on off the pile, and tells their sessions.
  void loseFrom(std::size_t level, std::string_view by) noexcept;
  /// Ends the level that a failed statement was sent in.
  void spoil(int serial, std::string_view by);
  void take(const PGresult& result, const Outcome& outcome) const;
  std::size_t innermostOf(const Levels& of) const;
  bool hasLevelOf(int serial) const;
  /// What began the state that is there, if nothing has run since.
  std::optional<Control> cleanSince() const;

  LineSettings settings_;
  std::optional<Wire> wire_;
  std::uint64_t wireNumber_ = 0;
  std::int64_t waits_ = 0;
  std::uint64_t schemaChanges_ = 0;

  std::vector<Level> levels_;  // of all sessions, the outermost first
  int lastSerial_ = 0;
  bool isBegun_ = false;           // on the server
  bool isChangingSchema_ = false;  // and may yet undo it
  std::vector<Control> later_;
  /// What opened the state that nothing has changed since: going back there needs no guard.
  std::optional<Control> mark_;
  std::vector<Control> undo_;  // what undoes the statement that is awaited
  RowSink* rows_ = nullptr;    // who takes the rows of it
  std::vector<std::int64_t> holds_;
  std::unordered_set<std::int64_t> held_;

  Session::Ahead ahead_ = Session::Ahead::kOff;
  std::unordered_map<std::string, AnswerPtr> answers_;  // by statement and values

  std::deque<Sent> underWay_;
  std::size_t unsettled_ = 0;
  std::size_t unsettledBytes_ = 0;

  std::unordered_map<std::string, NamedPtr> statements_;
  NamedPtr openGuard_;
  NamedPtr closeGuard_;
  std::uint64_t lastName_ = 0;
  std::vector<std::string> unused_;  // names that the server may forget
};

template <typename Use>
auto Line::onWire(Use use) {
  try {
    return use(*wire_);
  } catch (const Error& error) {
    loseWire(error);
    throw;
  } catch (...) {
    loseWire(Error(errors::kUnspecified, std::string(kSource), "There is not enough memory."));
    throw;
  }
}

}  // namespace tavelor::engine::postgres
