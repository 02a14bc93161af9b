// SPDX-License-Identifier: MIT
// What all functions share, and the aggregates.
#include "tavelor/services/sqlite/functions.hpp"

#include <cmath>
#include <type_traits>

#include "tavelor/platform/decimal_arithmetic.hpp"
#include "tavelor/platform/number_text.hpp"

namespace tavelor::engine::sqlite {

double Call::real(int i) const {
  if (isNumber(i)) return sqlite3_value_double(arguments_[i]);
  const std::string_view written = text(i);
  const auto number = parseNumber(written, locale());
  if (!number) refuse(errors::kTypeMismatch, "'" + std::string(written) + "' is no number");
  return *number;
}

std::int64_t Call::rounded(int i) const {
  if (isWhole(i)) return integer(i);
  const double whole = roundHalfEven(real(i));
  if (!(std::abs(whole) < 9.2e18)) refuse(errors::kOverflow);
  return static_cast<std::int64_t>(whole);
}

void Call::fail(std::int32_t number, std::string_view description) const noexcept {
  Database& shared = database();
  try {
    shared.functionErrorText = description;
    shared.functionError = number;
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(context_);
    return;
  }
  sqlite3_result_error(context_, description.data(), static_cast<int>(description.size()));
}

void addFunctions(Database& database, const Function* first, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const int code =
        sqlite3_create_function_v2(database.handle, first[i].name, first[i].arguments,
                                   SQLITE_UTF8 | SQLITE_INNOCUOUS | first[i].flags, &database,
                                   first[i].entry, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) database.fail(code);
  }
}

namespace {

/// The state of tv_first and tv_last: a copy of a value, made by the engine in zeroed memory.
struct Kept {
  sqlite3_value* value;
};

void keepFirst(sqlite3_context* context, int, sqlite3_value** arguments) noexcept {
  auto* const kept = static_cast<Kept*>(sqlite3_aggregate_context(context, sizeof(Kept)));
  if (kept == nullptr) return sqlite3_result_error_nomem(context);
  if (kept->value == nullptr) kept->value = sqlite3_value_dup(arguments[0]);
}

void keepLast(sqlite3_context* context, int, sqlite3_value** arguments) noexcept {
  auto* const kept = static_cast<Kept*>(sqlite3_aggregate_context(context, sizeof(Kept)));
  if (kept == nullptr) return sqlite3_result_error_nomem(context);
  sqlite3_value_free(kept->value);
  kept->value = sqlite3_value_dup(arguments[0]);
}

void giveKept(sqlite3_context* context) noexcept {
  auto* const kept = static_cast<Kept*>(sqlite3_aggregate_context(context, 0));
  if (kept == nullptr || kept->value == nullptr) return sqlite3_result_null(context);
  sqlite3_result_value(context, kept->value);
  sqlite3_value_free(kept->value);
  kept->value = nullptr;
}

/// The state of a total, made by the engine in zeroed memory: of tv_sum and tv_avg that of numbers,
/// of tv_money_sum that of amounts.
template <typename Sum>
struct Total {
  Sum sum;
  std::int64_t count;
};

template <typename Sum>
void addToTotal(sqlite3_context* context, int count, sqlite3_value** arguments) noexcept {
  Call call(context, count, arguments);
  if (call.isNull(0)) return;
  constexpr int kSize = sizeof(Total<Sum>);
  auto* const total = static_cast<Total<Sum>*>(sqlite3_aggregate_context(context, kSize));
  if (total == nullptr) return sqlite3_result_error_nomem(context);
  guarded(call, [total](const Call& added) {
    if constexpr (std::is_same_v<Sum, CurrencySum>) {
      total->sum.add(added.money(0));
    } else {
      total->sum.add(added.real(0));
    }
    ++total->count;
  });
}

/// Of no number at all there is neither a sum nor a mean.
template <typename Sum, bool mean = false>
void giveTotal(sqlite3_context* context) noexcept {
  const auto* const total = static_cast<Total<Sum>*>(sqlite3_aggregate_context(context, 0));
  if (total == nullptr || total->count == 0) return sqlite3_result_null(context);
  Call call(context, 0, nullptr);
  guarded(call, [total](const Call& given) {
    if constexpr (mean) {
      given.give(decimalQuotient(total->sum.total(), static_cast<double>(total->count)));
    } else {
      given.give(total->sum.total());
    }
  });
}

}  // namespace

void addAggregates(Database& database) {
  using Step = void (*)(sqlite3_context*, int, sqlite3_value**);
  const auto add = [&](const char* name, Step step, void (*give)(sqlite3_context*)) {
    const int code =
        sqlite3_create_function_v2(database.handle, name, 1, SQLITE_UTF8 | SQLITE_INNOCUOUS,
                                   &database, nullptr, step, give, nullptr);
    if (code != SQLITE_OK) database.fail(code);
  };
  add("tv_first", keepFirst, giveKept);
  add("tv_last", keepLast, giveKept);
  add("tv_sum", addToTotal<DecimalSum>, giveTotal<DecimalSum>);
  add("tv_avg", addToTotal<DecimalSum>, giveTotal<DecimalSum, true>);
  add("tv_money_sum", addToTotal<CurrencySum>, giveTotal<CurrencySum>);
}

}  // namespace tavelor::engine::sqlite
