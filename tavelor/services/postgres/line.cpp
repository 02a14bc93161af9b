// SPDX-License-Identifier: MIT
// The line that the sessions of one apartment share.
#include "tavelor/services/postgres/line.hpp"

#include <algorithm>
#include <array>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/text.hpp"
#include "tavelor/services/postgres/codecs.hpp"
#include "tavelor/services/postgres/errors.hpp"

namespace tavelor::engine::postgres {

namespace {

// Beyond this what was sent is waited for, so that an error does not come too far behind its
// statement. Four hundred lines of a ticket stay below.
constexpr std::size_t kMostUnsettled = 2048;
constexpr std::size_t kMostUnsettledBytes = std::size_t{512} * 1024;

/// Around a statement whose failure must not undo what ran before it.
constexpr int kGuard = -1;

/// By which an answer is found: the same statement with the same values.
std::string keyOf(const Named& statement, const Arguments& arguments) {
  std::string key = statement.name;
  for (int i = 0; i < arguments.count(); ++i) {
    const char* const value = arguments.values()[i];
    if (value == nullptr) {
      key += ":Null";
      continue;
    }
    const auto length = static_cast<std::size_t>(arguments.lengths()[i]);
    key += fmt::format(":{}:", length);
    key.append(value, length);
  }
  return key;
}

// The server's own codes for what compiling once more mends.
constexpr std::int32_t kPlanIsOld = nativeCodeOf("0A000");  // "cached plan must not change..."
constexpr std::int32_t kStatementIsGone = nativeCodeOf("26000");  // somebody has discarded it

/// May be true without reason.
bool changesSchema(std::string_view text) {
  const std::string folded = text::foldCase(text);
  constexpr std::array<std::string_view, 4> kWords{"create", "alter", "drop", "comment"};
  return std::any_of(kWords.begin(), kWords.end(),
                     [&](std::string_view word) { return folded.find(word) != std::string::npos; });
}

}  // namespace

std::string Line::Control::text() const {
  const auto named = [this](std::string_view word) {
    return serial == kGuard ? fmt::format("{} tv", word) : fmt::format("{} tv{}", word, serial);
  };
  switch (kind) {
    case Kind::kBegin:
      return "BEGIN";
    case Kind::kSavepoint:
      return named("SAVEPOINT");
    case Kind::kRelease:
      return named("RELEASE");
    case Kind::kRollbackTo:
      return named("ROLLBACK TO");
    case Kind::kRollback:
      return "ROLLBACK";
    case Kind::kCommit:
      return "COMMIT";
  }
  return {};
}

Line::Line(LineSettings settings) : settings_(std::move(settings)) {
  reconnect();
}

// The wire.

void Line::reconnect() {
  wire_.reset();
  underWay_.clear();
  unused_.clear();
  wire_.emplace(connect(settings_));
  ++wireNumber_;
  ++schemaChanges_;  // nobody has told what happened meanwhile
}

void Line::beReady() {
  const bool isOurs = wire_ && wire_->isOurs();
  if (!isBegun_) {
    // What may still be under way is a transaction's rollback: of one that is gone nothing is left
    // either.
    if (!isOurs || wire_->wasCut()) reconnect();
    return;
  }
  if (isOurs) return;
  const Error error(errors::kConnectionLost, std::string(kSource),
                    "The transaction is on the line of the process that this one was forked off.");
  loseWire(error);
  throw error;
}

void Line::loseWire(const Error& error) noexcept {
  wire_.reset();
  underWay_.clear();
  if (!isBegun_) return;  // nothing of the levels that are open has got there
  loseFrom(0, error.description());
  endTransaction();
}

void Line::put(Sent sent, const std::string& text) {
  wire_->putText(text);
  underWay_.push_back(std::move(sent));
}

void Line::put(const Control& control, bool isGuarded) {
  put({Sent::Kind::kControl, isGuarded}, control.text());
}

void Line::putGuard(Control::Kind kind) {
  static const Arguments none(0);
  NamedPtr& statement = kind == Control::Kind::kSavepoint ? openGuard_ : closeGuard_;
  if (!statement) statement = named(Control{kind, kGuard}.text(), {});
  putStatement({Sent::Kind::kControl, true, false, statement}, none);
}

void Line::putStatement(Sent sent, const Arguments& arguments) {
  Named& statement = *sent.statement;
  if (statement.compiledOn != wireNumber_ || statement.name.empty()) {
    wire_->putPrepare(statement.name, statement.text, statement.types);
    underWay_.push_back(
        {Sent::Kind::kCompiled, sent.isGuarded, false, sent.statement, sent.serial});
    statement.compiledOn = wireNumber_;
  }
  wire_->putRun(statement.name, arguments);
  underWay_.push_back(std::move(sent));
}

void Line::putWaiting() {
  if (!isBegun_) {
    for (const std::string& name : unused_) {
      put({Sent::Kind::kControl, false, true}, "DEALLOCATE " + name);
    }
    unused_.clear();
  }
  for (const Control& control : later_) {
    put(control, false);
    if (control.kind == Control::Kind::kBegin || control.kind == Control::Kind::kSavepoint) {
      mark_ = control;
    } else if (control.kind == Control::Kind::kRollbackTo && control.serial != kGuard) {
      mark_ = Control{Control::Kind::kSavepoint, control.serial};
    } else {
      mark_.reset();
    }
    isBegun_ = true;
  }
  later_.clear();
  for (const std::int64_t number : holds_) {
    putGuard(Control::Kind::kSavepoint);
    put({Sent::Kind::kControl, true}, fmt::format("SELECT pg_advisory_xact_lock({})", number));
    putGuard(Control::Kind::kRelease);
    mark_.reset();
  }
  held_.insert(holds_.begin(), holds_.end());
  holds_.clear();
}

void Line::putSync() {
  wire_->putSync();
  underWay_.push_back({Sent::Kind::kSync});
}

ResultHandle Line::collect() {
  ++waits_;
  ResultHandle answer;
  std::optional<Error> failure;
  bool isUndone = true;  // by undo_, that is
  int serial = 0;        // of the level that what failed was sent in
  RowSink* const rows = std::exchange(rows_, nullptr);
  onWire([&](Wire& wire) {
    wire.flush();
    while (!underWay_.empty()) {
      const Sent sent = std::move(underWay_.front());
      underWay_.pop_front();
      const bool givesRows = sent.kind == Sent::Kind::kAwaited && rows != nullptr;
      ResultHandle result = givesRows ? wire.nextRows(*rows) : wire.next();
      const ExecStatusType status = PQresultStatus(result.get());
      if (status == PGRES_COMMAND_OK || status == PGRES_TUPLES_OK ||
          status == PGRES_PIPELINE_SYNC || status == PGRES_EMPTY_QUERY) {
        if (sent.kind == Sent::Kind::kAwaited) {
          answer = std::move(result);
          continue;
        }
        if (sent.kind == Sent::Kind::kAsked) {
          *sent.answer = std::move(result);
          continue;
        }
        try {
          if (!sent.isDropped) take(*result, sent.outcome);
        } catch (const Error& error) {  // a value that its column can't hold
          isUndone = false;
          if (!failure) serial = sent.serial;
          if (!failure) failure = error;
        }
        continue;
      }
      if (sent.kind == Sent::Kind::kCompiled) sent.statement->compiledOn = 0;
      if (sent.isDropped) continue;
      if (!sent.isGuarded) isUndone = false;
      if (failure) continue;  // this one has not run
      serial = sent.serial;
      failure = errorOf(*result, sent.statement ? sent.statement->text : std::string_view());
      // What was asked ahead can't be asked again alone.
      if (sent.kind == Sent::Kind::kAsked &&
          compilesAgain(*sent.statement, failure->nativeCode())) {
        failure = Error(errors::kTryAgain, failure->source(), failure->description());
      }
    }
    if (wire.takeNotifications()) ++schemaChanges_;
  });
  unsettled_ = 0;
  unsettledBytes_ = 0;
  const std::vector<Control> undo = std::exchange(undo_, {});
  if (!failure) return answer;
  if (isBegun_) {
    if (isUndone && failure->number() != errors::kTryAgain) {
      later_.insert(later_.end(), undo.begin(), undo.end());
      held_.clear();
    } else if (failure->number() == errors::kTryAgain) {
      dropTransaction();
      loseFrom(0, failure->description());
    } else {
      spoil(serial, failure->description());
    }
  }
  throw *failure;
}

/// The level may have been committed since: then what was sent belongs to the one below it.
void Line::spoil(int serial, std::string_view by) {
  const auto above = std::find_if(levels_.begin(), levels_.end(),
                                  [&](const Level& level) { return level.serial > serial; });
  const std::size_t place =
      above == levels_.begin() ? 0 : static_cast<std::size_t>(above - levels_.begin()) - 1;
  const int from = levels_.empty() ? 0 : levels_[place].serial;
  // One that began in the same place goes on from there.
  const bool isShared = place > 0 && levels_[place - 1].serial == from;
  if (from == 0) {
    dropTransaction();
    if (isShared) later_.push_back({Control::Kind::kBegin});
  } else {
    later_ = {{Control::Kind::kRollbackTo, from}};
    if (!isShared) later_.push_back({Control::Kind::kRelease, from});
    held_.clear();
    if (isChangingSchema_) ++schemaChanges_;
  }
  loseFrom(place, by);
}

void Line::take(const PGresult& result, const Outcome& outcome) const {
  if (outcome.returned != nullptr) {
    const RowReader reader(result, *outcome.returned, *settings_.locale);
    const int count = PQntuples(&result);
    for (int row = 0; row < count; ++row) reader.append(result, row, *outcome.returned);
    if (outcome.rows != nullptr) *outcome.rows = count;
  } else if (outcome.rows != nullptr) {
    *outcome.rows = writtenRows(result);
  }
}

// Statements.

NamedPtr Line::named(const std::string& text, const std::vector<Oid>& types, bool leavesNothing) {
  std::string key = text;
  key += '\0';
  for (const Oid type : types) key += fmt::format("{} ", type);
  NamedPtr& statement = statements_[key];
  if (!statement) {
    statement = std::make_shared<Named>();
    statement->text = text;
    statement->types = types;
    statement->leavesNothing = leavesNothing;
    statement->key = std::move(key);
    nameAnew(*statement);
  }
  return statement;
}

// A SELECT for a thousand keys is best answered by the index of a large table and by all rows of a
// small one. A plan that is kept stays what it was while the table was small: a file of articles
// that reads what is there of each thousand would read the whole table each time.
void Line::nameAnew(Named& statement) {
  constexpr std::size_t kMostInKeptPlan = 32;
  if (statement.leavesNothing && statement.types.size() > kMostInKeptPlan) return;
  statement.name = fmt::format("tv{}", ++lastName_);
}

void Line::release(NamedPtr&& statement) noexcept {
  constexpr int kOursAndTheirs = 2;
  const NamedPtr taken = std::move(statement);
  if (!taken || taken.use_count() > kOursAndTheirs) return;
  try {
    forgetOnServer(*taken);
    statements_.erase(taken->key);
  } catch (const std::bad_alloc&) {
    // The server remembers one statement more than it need.
  }
}

void Line::forgetOnServer(const Named& statement) {
  if (statement.compiledOn != wireNumber_ || statement.name.empty()) return;
  unused_.push_back(statement.name);
}

bool Line::compilesAgain(Named& statement, std::int32_t nativeCode) {
  if (nativeCode == kPlanIsOld) {
    compileAgain(statement);
  } else if (nativeCode == kStatementIsGone) {
    compileAllAgain();
  } else {
    return false;
  }
  return true;
}

void Line::compileAgain(Named& statement) {
  forgetOnServer(statement);
  statement.compiledOn = 0;
  nameAnew(statement);
  ++schemaChanges_;
}

void Line::compileAllAgain() {
  for (const auto& [key, statement] : statements_) {
    statement->compiledOn = 0;
    nameAnew(*statement);
  }
  unused_.clear();
}

ResultHandle Line::await(const NamedPtr& statement, const Arguments& arguments, RowSink* rows) {
  beReady();
  onWire([&](Wire&) {
    putWaiting();
    const bool needsGuard = isBegun_ && !mark_;
    if (needsGuard) {
      undo_ = {{Control::Kind::kRollbackTo, kGuard}, {Control::Kind::kRelease, kGuard}};
      putGuard(Control::Kind::kSavepoint);
    } else if (isBegun_ && mark_->kind == Control::Kind::kBegin) {
      undo_ = {{Control::Kind::kRollback}, *mark_};
    } else if (isBegun_) {
      undo_ = {{Control::Kind::kRollbackTo, mark_->serial}};
    }
    putStatement({Sent::Kind::kAwaited, true, false, statement}, arguments);
    if (needsGuard) putGuard(Control::Kind::kRelease);
    putSync();
  });
  rows_ = rows;
  ResultHandle answer = collect();
  // Who only reads sees one state in all of a transaction, which it would lose by going back.
  if (!statement->leavesNothing || settings_.readOnly) mark_.reset();
  return answer;
}

void Line::send(const NamedPtr& statement, const Arguments& arguments, Outcome outcome) {
  putSent({.kind = Sent::Kind::kWrite, .statement = statement, .outcome = outcome}, arguments);
}

void Line::putSent(Sent sent, const Arguments& arguments) {
  beReady();
  sent.serial = levels_.back().serial;
  onWire([&](Wire&) {
    putWaiting();
    putStatement(std::move(sent), arguments);
  });
  mark_.reset();
  unsettledBytes_ += arguments.bytes();
  if (++unsettled_ < kMostUnsettled && unsettledBytes_ < kMostUnsettledBytes) return;
  wait();
}

void Line::wait() {
  if (unsettled_ == 0) return;
  beReady();
  onWire([&](Wire&) { putSync(); });
  collect();
}

void Line::readAhead(Session::Ahead how) {
  ahead_ = how == Session::Ahead::kAsk && !isInTransaction() ? Session::Ahead::kOff : how;
  if (ahead_ == Session::Ahead::kOff) answers_.clear();
}

void Line::ask(const NamedPtr& statement, const Arguments& arguments) {
  const auto answer = std::make_shared<ResultHandle>();
  answers_.insert_or_assign(keyOf(*statement, arguments), answer);
  putSent({.kind = Sent::Kind::kAsked, .statement = statement, .answer = answer}, arguments);
}

bool Line::answerAtHand(const NamedPtr& statement, const Arguments& arguments,
                        RowSink& rows) const {
  if (answers_.empty()) return false;
  const auto found = answers_.find(keyOf(*statement, arguments));
  if (found == answers_.end() || !*found->second) return false;
  const PGresult& result = **found->second;
  if (PQntuples(&result) == 0) return false;
  rows.take(result);
  return true;
}

bool Line::answer(const NamedPtr& statement, const Arguments& arguments, RowSink& rows) {
  if (answers_.empty()) return false;
  const std::string key = keyOf(*statement, arguments);
  const auto found = answers_.find(key);
  if (found == answers_.end()) return false;
  const AnswerPtr answer = found->second;
  if (!*answer) wait();
  if (!*answer) return false;  // it never went
  rows.take(**answer);
  if (PQntuples(answer->get()) == 0) answers_.erase(key);
  return true;
}

void Line::execute(std::string_view text) {
  if (text.find('\0') != std::string_view::npos) {
    raise(errors::kSyntax, kSource, "A NUL character in the statement");
  }
  beReady();
  std::string all(text);
  if (!levels_.empty() || !underWay_.empty()) {
    // Several statements in one text go by a message of their own, which the guard can't share: of
    // a text that does not read the server runs nothing.
    onWire([&](Wire&) {
      putWaiting();
      if (isBegun_) {
        undo_ = {{Control::Kind::kRollbackTo, kGuard}, {Control::Kind::kRelease, kGuard}};
        putGuard(Control::Kind::kSavepoint);
      }
      putSync();
    });
    collect();
    mark_.reset();
    if (isBegun_) all += "\n;" + Control{Control::Kind::kRelease, kGuard}.text();
  }
  const bool isDefinition = changesSchema(text);
  if (isDefinition) all += "\n;NOTIFY tavelor";
  ++waits_;
  const ResultHandle result = onWire([&](Wire& wire) { return wire.run(all); });
  if (isDefinition) {
    ++schemaChanges_;
    isChangingSchema_ = isBegun_;
  }
  if (PQresultStatus(result.get()) != PGRES_FATAL_ERROR) return;
  const Error error = errorOf(*result, text);
  if (isBegun_) {
    if (error.number() == errors::kTryAgain) {
      dropTransaction();
      loseFrom(0, error.description());
    } else {
      later_ = {{Control::Kind::kRollbackTo, kGuard}, {Control::Kind::kRelease, kGuard}};
    }
  }
  throw error;
}

void Line::hold(std::int64_t number) {
  if (levels_.empty() || held_.contains(number)) return;
  if (std::find(holds_.begin(), holds_.end(), number) == holds_.end()) holds_.push_back(number);
}

}  // namespace tavelor::engine::postgres
