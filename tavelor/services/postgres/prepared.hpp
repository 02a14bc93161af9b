// SPDX-License-Identifier: MIT
// A statement: binding, running, sending, fetching.
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/postgres/codecs.hpp"
#include "tavelor/services/postgres/session.hpp"

namespace tavelor::engine::postgres {

class Fetching;
struct StatementText;

/// The server compiles it once for each combination of kinds of values that it meets: their types
/// are those of the placeholders.
class PreparedStatement final : public Prepared {
 public:
  /// Raises kSyntax for a text without a statement, or with a NUL character.
  PreparedStatement(std::shared_ptr<SessionState> session, std::string_view engineText);
  PreparedStatement(const PreparedStatement&) = delete;
  PreparedStatement& operator=(const PreparedStatement&) = delete;
  ~PreparedStatement() override;

  int parameterCount() const override { return arguments_.count(); }
  /// Raises kMissingParameter for a place that the statement lacks, and as Arguments::set().
  void bind(int index, const Value& value) override;
  std::int64_t run() override;
  std::int64_t send() override;
  void sendFor(std::int64_t& rows, RowStore* returned) override;
  bool metOtherSchema() override;

 private:
  /// The statement for one combination of types.
  struct Variant {
    NamedPtr statement;
    std::size_t most;       // rows that it gives at most
    bool isProven = false;  // the server has compiled it
  };

  PreparedStatement(std::shared_ptr<SessionState> session, const StatementText& parts);
  void fetchRows(RowStore& rows, std::size_t most) override;
  /// False where it must be waited for.
  bool trySend(Outcome outcome);
  void mustBeReady() const;
  using Ahead = Session::Ahead;
  bool isAsking() const;
  static bool mayBeRefused(const Variant& chosen);
  /// The one that takes the values as they are bound.
  Variant& variant(std::size_t most);
  Variant& newVariant(const std::vector<Oid>& types, std::size_t most);
  std::string textFor(std::size_t most) const;
  /// Runs it and waits.
  ResultHandle await(std::size_t most, Fetching* rows);
  ResultHandle awaitOnce(std::size_t most, Fetching* rows);

  std::shared_ptr<SessionState> session_;
  std::string text_;
  bool isRead_;        // nothing is written by it: it may run twice
  bool isLocking_;     // it may lock rows
  bool isDefinition_;  // of tables or columns
  Arguments arguments_;
  std::vector<Oid> met_;  // by placeholder the type that came last
  std::vector<Variant> variants_;
  std::uint64_t seenChanges_;
};

}  // namespace tavelor::engine::postgres
