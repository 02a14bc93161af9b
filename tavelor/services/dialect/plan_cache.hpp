// SPDX-License-Identifier: MIT
// Prepared plans by the shape of a statement.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <span>
#include <string_view>

#include "tavelor/platform/callback.hpp"
#include "tavelor/services/dialect/plan.hpp"

namespace tavelor {
class Statement;
struct Locale;
}  // namespace tavelor

namespace tavelor::engine {
class RowStore;
class Session;
struct Value;
}  // namespace tavelor::engine

namespace tavelor::dialect {

class Writer;

/// Runs statements of one session at the speed of prepared ones. The key of a plan is the statement
/// with its literals lifted out; rows and settings are never cached.
///
/// Two roads lead to a plan. A Statement knows which bytes are values: its own text between them is
/// the key, and each value is checked against the literal that it stands in (no lexer runs). A
/// value that fails that check goes through the lexer, and so does a text without values until it
/// has come twice.
///
/// Plans are made for the tables as they are. Whoever changes them, another program included: a
/// statement that is new here is translated for the tables of that moment, and one that is known is
/// run by the plan of before at most once.
class PlanCache {
 public:
  /// The tables as they are now; the same pointer as before if nothing has changed.
  using Tables = Callback<std::shared_ptr<const engine::Catalogue>()>;

  /// `session` and `writer` must outlive it.
  PlanCache(engine::Session& session, Tables tables, std::shared_ptr<const Locale> locale,
            const Writer& writer);
  /// Over tables that stay as they are.
  PlanCache(engine::Session& session, std::shared_ptr<const engine::Catalogue> catalogue,
            std::shared_ptr<const Locale> locale, const Writer& writer);
  ~PlanCache();

  /// Whose statements these are.
  engine::Session& session();

  /// Runs a statement that gives no rows; the number of rows written by its last step. Several
  /// steps run in one transaction: after an error nothing of the statement is left.
  std::int64_t run(const Statement& statement);
  /// The same without waiting to know how many, where the engine can: see engine::Prepared::send().
  std::int64_t send(const Statement& statement);

  /// The plan of a SELECT; record sets keep it for their fields.
  std::shared_ptr<const Plan> plan(const Statement& statement);
  /// Runs a SELECT and appends its first `most` rows, hidden columns included, to `rows`, which
  /// must have the column types of plan(). False: the tables have changed meanwhile, and what was
  /// appended is of the plan of before; ask for plan() and fetch again.
  [[nodiscard]] bool fetch(const Statement& statement, engine::RowStore& rows,
                           std::size_t most = std::numeric_limits<std::size_t>::max());

  /// Runs a text with `?` placeholders that the library itself composed (a record set's batch).
  /// RETURNING gives its rows to `returned` when that is not null.
  std::int64_t run(std::string_view withPlaceholders, std::span<const engine::Value> values,
                   engine::RowStore* returned = nullptr);
  /// The same without waiting for `rows` and `returned`: see engine::Prepared::sendFor().
  void send(std::string_view withPlaceholders, std::span<const engine::Value> values,
            std::int64_t& rows, engine::RowStore* returned);

  /// How statements were served.
  struct Counters {
    std::uint64_t translated = 0;  ///< statements that had to be translated
    std::uint64_t shapeHits = 0;   ///< served by the ranges of a Statement
    std::uint64_t lexedHits = 0;   ///< served after lexing
  };
  /// Since it was made.
  Counters counters() const;

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace tavelor::dialect
