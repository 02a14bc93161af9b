// SPDX-License-Identifier: MIT
// Prepared plans by the shape of a statement.
#include "tavelor/services/dialect/plan_cache.hpp"

#include <array>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/dialect.hpp"
#include "tavelor/services/dialect/lexer.hpp"
#include "tavelor/services/dialect/literal_value.hpp"
#include "tavelor/services/dialect/splice.hpp"
#include "tavelor/services/dialect/two_generation_cache.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/engine/engine.hpp"
#include "tavelor/services/engine/row_store.hpp"
#include "tavelor/services/engine/value.hpp"

namespace tavelor::dialect {

namespace {

// Statements of a till and of a back office number some hundreds; lists of varying length add more.
constexpr std::size_t kCapacity = 512;
// Statements share a place that differ only in the kinds of their numbers. More than these few are
// not worth remembering.
constexpr std::size_t kMostAlike = 8;

/// Texts by text, found without making a string.
struct TextHash {
  using is_transparent = void;
  std::size_t operator()(std::string_view text) const {
    return std::hash<std::string_view>()(text);
  }
};
template <typename Value>
using ByText = std::unordered_map<std::string, Value, TextHash, std::equal_to<>>;

/// Splice::hash() is a hash as it stands.
struct AlreadyHashed {
  std::size_t operator()(std::uint64_t hash) const { return hash; }
};

/// A plan and its compiled steps.
struct Compiled {
  std::shared_ptr<const Plan> plan;
  std::vector<std::unique_ptr<engine::Prepared>> steps;
  std::unique_ptr<engine::Prepared> locking;  ///< the only step of a plan that locks
};

struct Spliced {
  Splice splice;
  std::shared_ptr<Compiled> compiled;
};

void appendNulls(engine::RowStore& rows) {
  const std::size_t row = rows.append();
  for (std::size_t column = 0; column < rows.columns(); ++column) rows.setNull(row, column);
}

/// By literal: true if all that it does is to be assigned to columns. Whether such a number is
/// written whole makes no difference to the plan.
std::vector<bool> eitherKindOf(const Shape& shape, const Plan& plan) {
  std::vector<bool> isAssigned(shape.literals.size(), false);
  std::vector<bool> isOther(shape.literals.size(), false);
  for (const Step& step : plan.steps) {
    for (const Parameter& parameter : step.parameters) {
      if (parameter.literal < 0) continue;
      (parameter.column.empty() ? isOther
                                : isAssigned)[static_cast<std::size_t>(parameter.literal)] = true;
    }
  }
  for (std::size_t i = 0; i < isAssigned.size(); ++i) isAssigned[i] = isAssigned[i] && !isOther[i];
  return isAssigned;
}

}  // namespace

struct PlanCache::State {
  State(engine::Session& theSession, Tables theTables, std::shared_ptr<const Locale> theLocale,
        const Writer& theWriter)
      : session(theSession),
        tables(std::move(theTables)),
        locale(std::move(theLocale)),
        writer(theWriter),
        reader(*locale) {}

  /// The plan of a statement; leaves its literals in `literals`.
  const std::shared_ptr<Compiled>& find(const Statement& statement) {
    // Where one is repeated, nothing has to be looked up.
    if (last != nullptr && last->splice.match(statement, literals)) {
      ++counters.shapeHits;
      return last->compiled;
    }
    const std::uint64_t hash = Splice::hash(statement);
    if (std::vector<Spliced>* const alike = spliced.find(hash)) {
      for (Spliced& candidate : *alike) {
        if (&candidate == last || !candidate.splice.match(statement, literals)) continue;
        last = &candidate;
        ++counters.shapeHits;
        return candidate.compiled;
      }
    }
    return findByLexing(statement, hash);
  }

  const std::shared_ptr<Compiled>& findByLexing(const Statement& statement, std::uint64_t hash) {
    shape = shapeOf(statement);
    std::shared_ptr<Compiled>* found = plans.find(std::string_view(shape.key));
    if (found != nullptr) {
      ++counters.lexedHits;
    } else {
      followTables();
      auto compiled = std::make_shared<Compiled>();
      Literals again;
      compiled->plan =
          std::make_shared<const Plan>(translate(statement, *catalogue, writer, again));
      compiled->steps.resize(compiled->plan->steps.size());
      ++counters.translated;
      found = &plans.put(shape.key, std::move(compiled));
    }
    if (isWorthRemembering(statement, hash)) remember(statement, hash, *found);
    takeLexed();
    return *found;
  }

  /// A text that is known when running only may hold literals that never come again: where nothing
  /// in it is marked as a value, it has to come twice.
  bool isWorthRemembering(const Statement& statement, std::uint64_t hash) {
    bool hasTrusted = false;
    for (const Statement::Piece& piece : statement.pieces()) {
      if (piece.kind == Statement::Piece::Kind::kValue) return true;
      hasTrusted = hasTrusted || piece.kind == Statement::Piece::Kind::kTrusted;
    }
    return !hasTrusted || std::exchange(plainTexts[hash % plainTexts.size()], hash) == hash;
  }

  void remember(const Statement& statement, std::uint64_t hash,
                const std::shared_ptr<Compiled>& compiled) {
    last = nullptr;  // it may move, or be forgotten
    std::vector<Spliced>* alike = spliced.find(hash);
    if (alike != nullptr && alike->size() == kMostAlike) return;
    auto splice = Splice::of(statement, shape, eitherKindOf(shape, *compiled->plan));
    if (!splice) return;
    if (alike == nullptr) alike = &spliced.put(hash, {});
    // A value that only the lexer can judge brings a statement here that is known already.
    for (const Spliced& known : *alike) {
      if (known.splice == *splice) return;
    }
    alike->push_back({std::move(*splice), compiled});
  }

  void takeLexed() {
    literals.clear();
    for (std::size_t i = 0; i < shape.literals.size(); ++i) {
      literals.push_back(readLiteral(shape.literals[i], shape.kinds[i]));
    }
  }

  /// True if the tables are not those that the plans were made for: all of them are forgotten then.
  bool followTables() {
    std::shared_ptr<const engine::Catalogue> now = tables();
    if (now == catalogue) return false;
    last = nullptr;
    spliced.clear();
    plans.clear();
    composed.clear();
    catalogue = std::move(now);
    return true;
  }

  /// The same after a plan has run; it may be forgotten then.
  bool isOutOfDate(Compiled& compiled) {
    bool met = false;
    for (const auto& step : compiled.steps) met = (step && step->metOtherSchema()) || met;
    met = (compiled.locking && compiled.locking->metOtherSchema()) || met;
    return met && followTables();
  }

  /// What a plan names may be gone.
  void followTablesAfter(const Error& error) {
    if (error.number() != errors::kSyntax) return;
    try {
      followTables();
    } catch (const Error&) {
      // The first error tells more.
    }
  }

  engine::Prepared& ready(Compiled& compiled, std::size_t index) {
    const Step& step = compiled.plan->steps[index];
    std::unique_ptr<engine::Prepared>& prepared = compiled.steps[index];
    if (!prepared) prepared = session.prepare(step.sql);
    bind(*prepared, step);
    return *prepared;
  }

  /// The only step of a SELECT. What a transaction is going to write by what it reads, nobody else
  /// may read so meanwhile.
  engine::Prepared& readyToRead(Compiled& compiled) {
    const Plan& plan = *compiled.plan;
    if (session.depth() == 0) return ready(compiled, 0);
    if (!plan.numbersOf.empty()) session.holdNumbersOf(plan.numbersOf);
    const std::string_view lock = writer.words().lock;
    if (!plan.locks || lock.empty()) return ready(compiled, 0);
    const Step& step = plan.steps.front();
    if (!compiled.locking) compiled.locking = session.prepare(step.sql + std::string(lock));
    bind(*compiled.locking, step);
    return *compiled.locking;
  }

  /// All that asks for the clock in one step is told the same time.
  void bind(engine::Prepared& prepared, const Step& step) const {
    std::optional<Date> now;
    int place = 0;
    for (const Parameter& parameter : step.parameters) {
      if (parameter.literal < 0) {
        if (!now) now = session.now();
        prepared.bind(++place, readClock(*now, parameter.conversion));
        continue;
      }
      const LiteralValue& literal = literals[static_cast<std::size_t>(parameter.literal)];
      prepared.bind(++place, reader.read(literal, parameter));
    }
  }

  enum class Counted : std::uint8_t { kYes, kNo };

  std::int64_t run(const Statement& statement, Counted counted) {
    try {
      Compiled& compiled = *find(statement);
      const std::int64_t rows = runSteps(compiled, counted);
      isOutOfDate(compiled);
      return rows;
    } catch (Error& error) {
      followTablesAfter(error);
      error.inStatement(statement.text());
      throw;
    }
  }

  std::int64_t runSteps(Compiled& compiled, Counted counted) {
    if (compiled.steps.size() == 1) {
      engine::Prepared& only = ready(compiled, 0);
      return counted == Counted::kYes ? only.run() : only.send();
    }
    engine::Transaction transaction(session);
    std::int64_t rows = 0;
    for (std::size_t i = 0; i < compiled.steps.size(); ++i) rows = ready(compiled, i).run();
    transaction.commit();
    return rows;
  }

  engine::Prepared& readyComposed(std::string_view withPlaceholders,
                                  std::span<const engine::Value> values) {
    std::unique_ptr<engine::Prepared>* prepared = composed.find(withPlaceholders);
    if (prepared == nullptr) {
      prepared = &composed.put(std::string(withPlaceholders),
                               session.prepare(writer.composed(withPlaceholders)));
    }
    engine::Prepared& ready = **prepared;
    if (static_cast<std::size_t>(ready.parameterCount()) != values.size()) {
      raise(errors::kMissingParameter, "Statement",
            fmt::format("{} values for {} placeholders", values.size(), ready.parameterCount()));
    }
    int place = 0;
    for (const engine::Value& value : values) ready.bind(++place, value);
    return ready;
  }

  engine::Session& session;
  Tables tables;
  std::shared_ptr<const engine::Catalogue> catalogue;  // null until the first plan
  std::shared_ptr<const Locale> locale;
  const Writer& writer;
  LiteralReader reader;

  TwoGenerationCache<std::unordered_map<std::uint64_t, std::vector<Spliced>, AlreadyHashed>>
      spliced{kCapacity};
  Spliced* last = nullptr;                      // the one that was found last
  std::array<std::uint64_t, 256> plainTexts{};  // hashes of those that came last, by hash
  TwoGenerationCache<ByText<std::shared_ptr<Compiled>>> plans{kCapacity};
  TwoGenerationCache<ByText<std::unique_ptr<engine::Prepared>>> composed{kCapacity};

  // Of the statement at hand; kept for their room.
  Shape shape;
  std::vector<LiteralValue> literals;
  Counters counters;
};

PlanCache::PlanCache(engine::Session& session, Tables tables, std::shared_ptr<const Locale> locale,
                     const Writer& writer)
    : state_(std::make_unique<State>(session, std::move(tables), std::move(locale), writer)) {}

PlanCache::PlanCache(engine::Session& session, std::shared_ptr<const engine::Catalogue> catalogue,
                     std::shared_ptr<const Locale> locale, const Writer& writer)
    : PlanCache(
          session, [catalogue = std::move(catalogue)] { return catalogue; }, std::move(locale),
          writer) {}

PlanCache::~PlanCache() = default;

engine::Session& PlanCache::session() {
  return state_->session;
}

std::int64_t PlanCache::run(const Statement& statement) {
  return state_->run(statement, State::Counted::kYes);
}

std::int64_t PlanCache::send(const Statement& statement) {
  return state_->run(statement, State::Counted::kNo);
}

std::shared_ptr<const Plan> PlanCache::plan(const Statement& statement) {
  return state_->find(statement)->plan;
}

bool PlanCache::fetch(const Statement& statement, engine::RowStore& rows, std::size_t most) {
  try {
    Compiled& compiled = *state_->find(statement);
    if (compiled.plan->kind != StatementKind::kSelect) {
      raise(errors::kNotAllowedInContext, "Statement", "it gives no rows");
    }
    state_->readyToRead(compiled).fetch(rows, most);
    // A largest number is there without a row too.
    if (!compiled.plan->numbersOf.empty() &&
        state_->session.ahead() == engine::Session::Ahead::kAsk) {
      appendNulls(rows);
    }
    return !state_->isOutOfDate(compiled);
  } catch (Error& error) {
    state_->followTablesAfter(error);
    error.inStatement(statement.text());
    throw;
  }
}

std::int64_t PlanCache::run(std::string_view withPlaceholders,
                            std::span<const engine::Value> values, engine::RowStore* returned) {
  try {
    engine::Prepared& ready = state_->readyComposed(withPlaceholders, values);
    if (returned == nullptr) return ready.run();
    const std::size_t before = returned->rows();
    ready.fetch(*returned);
    return static_cast<std::int64_t>(returned->rows() - before);
  } catch (Error& error) {
    error.inStatement(withPlaceholders);
    throw;
  }
}

void PlanCache::send(std::string_view withPlaceholders, std::span<const engine::Value> values,
                     std::int64_t& rows, engine::RowStore* returned) {
  try {
    state_->readyComposed(withPlaceholders, values).sendFor(rows, returned);
  } catch (Error& error) {
    error.inStatement(withPlaceholders);
    throw;
  }
}

PlanCache::Counters PlanCache::counters() const {
  return state_->counters;
}

}  // namespace tavelor::dialect
