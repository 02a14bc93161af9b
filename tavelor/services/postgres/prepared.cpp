// SPDX-License-Identifier: MIT
// Binding, running, sending and fetching.
#include "tavelor/services/postgres/prepared.hpp"

#include <algorithm>
#include <charconv>
#include <exception>
#include <optional>
#include <utility>

#include <fmt/format.h>

#include "tavelor/platform/locale.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/postgres/errors.hpp"
#include "tavelor/services/postgres/statement_text.hpp"

namespace tavelor::engine::postgres {

namespace {

// The server's own codes for what other types of placeholders mend.
constexpr std::int32_t kTypeUnknown = nativeCodeOf("42P18");  // of a placeholder
constexpr std::int32_t kTypeAmbiguous = nativeCodeOf("42P08");

StatementText mustBeOne(std::string_view text) {
  StatementText parts(text);
  const auto refuse = [&](std::string why) {
    Error error(errors::kSyntax, std::string(kSource), std::move(why));
    throw error.inStatement(text);
  };
  if (parts.body.empty()) refuse("No statement.");
  if (!parts.isOneStatement) refuse("More than one statement.");
  if (text.find('\0') != std::string_view::npos) refuse("A NUL character in the statement.");
  return parts;
}

}  // namespace

/// Puts rows into a store as they come.
class Fetching final : public RowSink {
 public:
  Fetching(RowStore& rows, std::size_t most, const Locale& locale)
      : rows_(rows), before_(rows.rows()), most_(most), locale_(locale) {}

  void take(const PGresult& result) noexcept override {
    if (failure_) return;  // the rest is only drained
    try {
      takeRows(result);
    } catch (...) {
      failure_ = std::current_exception();
    }
  }
  /// Forgets what it has taken.
  void startAgain() {
    while (rows_.rows() > before_) rows_.removeLast();
    reader_.reset();
    failure_ = nullptr;
  }
  /// Raises what it met.
  void finish() const {
    if (failure_) std::rethrow_exception(failure_);
    if (!reader_) refuseColumns();  // a statement that gives no rows at all
  }

 private:
  [[noreturn]] static void refuseColumns() {
    throw Error(errors::kUnspecified, std::string(kSource),
                "The statement does not give the columns that were asked for.");
  }
  void takeRows(const PGresult& result) {
    if (!reader_) {
      if (static_cast<std::size_t>(PQnfields(&result)) != rows_.columns()) refuseColumns();
      reader_.emplace(result, rows_, locale_);
    }
    const int count = PQntuples(&result);
    for (int row = 0; row < count && rows_.rows() - before_ < most_; ++row) {
      reader_->append(result, row, rows_);
    }
  }

  RowStore& rows_;
  std::size_t before_;
  std::size_t most_;
  const Locale& locale_;
  std::optional<RowReader> reader_;
  std::exception_ptr failure_;
};

PreparedStatement::PreparedStatement(std::shared_ptr<SessionState> session,
                                     std::string_view engineText)
    : PreparedStatement(std::move(session), mustBeOne(engineText)) {}

PreparedStatement::PreparedStatement(std::shared_ptr<SessionState> session,
                                     const StatementText& parts)
    : session_(std::move(session)),
      text_(parts.body),
      isRead_(parts.isRead),
      isLocking_(parts.isLocking),
      isDefinition_(parts.isDefinition),
      arguments_(parts.placeholders),
      met_(static_cast<std::size_t>(arguments_.count()), types::kNone),
      seenChanges_(session_->line->schemaChanges()) {}

PreparedStatement::~PreparedStatement() {
  for (Variant& variant : variants_) session_->line->release(std::move(variant.statement));
}

void PreparedStatement::bind(int index, const Value& value) {
  if (index < 1 || index > arguments_.count()) {
    Error error(errors::kMissingParameter, std::string(kSource),
                "The statement has no such parameter.");
    throw error.inStatement(text_);
  }
  const auto place = static_cast<std::size_t>(index - 1);
  arguments_.set(place, value);
  if (const Oid type = arguments_.valueTypes()[place]; type != types::kNone) met_[place] = type;
}

void PreparedStatement::mustBeReady() const {
  session_->line->mustNotBeLost(session_->levels);
  if (!isRead_ && isAsking()) refuseWhileAsking();
  if (arguments_.bytes() <= kMostBytes) return;
  raise(errors::kMultipleStep, kSource, "The values are longer than the database can take at once");
}

std::string PreparedStatement::textFor(std::size_t most) const {
  if (most == kAllRows) return text_;
  // The server stops when it has them, and plans for so few.
  return fmt::format("SELECT * FROM ({}\n) AS tv LIMIT {}", text_, most);
}

PreparedStatement::Variant& PreparedStatement::newVariant(const std::vector<Oid>& types,
                                                          std::size_t most) {
  variants_.push_back({session_->line->named(textFor(most), types, isRead_ && !isLocking_), most});
  return variants_.back();
}

PreparedStatement::Variant& PreparedStatement::variant(std::size_t most) {
  const std::vector<Oid>& bound = arguments_.valueTypes();
  for (Variant& variant : variants_) {
    // A Null is of any type.
    const auto takes = [](Oid value, Oid placeholder) {
      return value == types::kNone || value == placeholder;
    };
    if (variant.most == most &&
        std::equal(bound.begin(), bound.end(), variant.statement->types.begin(), takes)) {
      return variant;
    }
  }
  // For a Null what came there before; the server finds out else.
  return newVariant(met_, most);
}

ResultHandle PreparedStatement::awaitOnce(std::size_t most, Fetching* rows) {
  Line& line = *session_->line;
  Variant* chosen = &variant(most);
  for (bool isAgain = false;; isAgain = true) {
    try {
      ResultHandle result = line.await(chosen->statement, arguments_, rows);
      chosen->isProven = true;
      return result;
    } catch (const Error& error) {
      if (isAgain || session_->levels.lost > 0) throw;
      const std::int32_t code = error.nativeCode();
      if (line.compilesAgain(*chosen->statement, code)) continue;
      if (code == kTypeUnknown || code == kTypeAmbiguous) {
        std::vector<Oid> types = chosen->statement->types;
        if (std::find(types.begin(), types.end(), types::kNone) == types.end()) throw;
        std::replace(types.begin(), types.end(), types::kNone, types::kText);
        chosen = &newVariant(types, most);
      } else {
        throw;
      }
    }
  }
}

ResultHandle PreparedStatement::await(std::size_t most, Fetching* rows) {
  const bool isAlone = !session_->line->isInTransaction();
  try {
    return awaitOnce(most, rows);
  } catch (const Error& error) {
    // What only reads may be asked again, over a new line.
    if (error.number() != errors::kConnectionLost || !isRead_ || !isAlone) throw;
    if (rows != nullptr) rows->startAgain();
    return awaitOnce(most, rows);
  }
}

std::int64_t PreparedStatement::run() {
  mustBeReady();
  try {
    if (isDefinition_ && arguments_.count() == 0) {
      session_->line->execute(text_);
      return 0;
    }
    const ResultHandle result = await(kAllRows, nullptr);
    return isRead_ ? 0 : writtenRows(*result);
  } catch (Error& error) {
    throw error.inStatement(text_);
  }
}

bool PreparedStatement::isAsking() const {
  return session_->line->ahead() == Ahead::kAsk;
}

/// Whether the server can tell the type of a Null shows only in waiting for it.
bool PreparedStatement::mayBeRefused(const Variant& chosen) {
  const std::vector<Oid>& types = chosen.statement->types;
  return !chosen.isProven && std::find(types.begin(), types.end(), types::kNone) != types.end();
}

bool PreparedStatement::trySend(Outcome outcome) {
  Line& line = *session_->line;
  if (!line.isInTransaction() || isDefinition_) return false;
  mustBeReady();
  const Variant& chosen = variant(kAllRows);
  if (mayBeRefused(chosen)) return false;
  try {
    line.send(chosen.statement, arguments_, outcome);
  } catch (Error& error) {
    throw error.inStatement(text_);
  }
  return true;
}

std::int64_t PreparedStatement::send() {
  return trySend({}) ? kSent : run();
}

void PreparedStatement::sendFor(std::int64_t& rows, RowStore* returned) {
  rows = kSent;
  if (!trySend({&rows, returned})) Prepared::sendFor(rows, returned);
}

void PreparedStatement::fetchRows(RowStore& rows, std::size_t most) {
  mustBeReady();
  if (most == 0) return;
  Line& line = *session_->line;
  Fetching fetching(rows, most, *line.settings().locale);
  try {
    if (isAsking()) {
      // What decides what else is read, as a setting does, is as it was found.
      const Variant& chosen = variant(most);
      if (line.answerAtHand(chosen.statement, arguments_, fetching)) return fetching.finish();
      if (!mayBeRefused(chosen)) line.ask(chosen.statement, arguments_);
      return;
    }
    const bool isAnswered = isRead_ && line.ahead() == Ahead::kAnswer &&
                            line.answer(variant(most).statement, arguments_, fetching);
    if (!isAnswered) await(isRead_ ? most : kAllRows, &fetching);
  } catch (Error& error) {
    throw error.inStatement(text_);
  }
  fetching.finish();
}

bool PreparedStatement::metOtherSchema() {
  const std::uint64_t changes = session_->line->schemaChanges();
  return std::exchange(seenChanges_, changes) != changes;
}

}  // namespace tavelor::engine::postgres
