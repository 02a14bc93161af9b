// SPDX-License-Identifier: MIT
// The dialect's functions that the engine lacks.
#pragma once

#include <cstdint>
#include <string_view>

#include <sqlite3.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/platform/variant.hpp"
#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/sqlite/cells.hpp"
#include "tavelor/services/sqlite/database.hpp"

namespace tavelor::engine::sqlite {

/// One call of a function: its arguments and its result. Arguments count from 0.
class Call {
 public:
  Call(sqlite3_context* context, int count, sqlite3_value** arguments)
      : context_(context), count_(count), arguments_(arguments) {}

  Database& database() const { return *static_cast<Database*>(sqlite3_user_data(context_)); }
  const Locale& locale() const { return *database().locale; }
  sqlite3_context* context() const { return context_; }

  int count() const { return count_; }
  sqlite3_value* argument(int i) const { return arguments_[i]; }
  int storedType(int i) const { return sqlite3_value_type(arguments_[i]); }
  bool isNull(int i) const { return storedType(i) == SQLITE_NULL; }
  bool isWhole(int i) const { return storedType(i) == SQLITE_INTEGER; }
  bool isNumber(int i) const { return storedType(i) <= SQLITE_FLOAT; }
  std::string_view text(int i) const { return textOf(arguments_[i]); }
  std::int64_t integer(int i) const { return sqlite3_value_int64(arguments_[i]); }
  /// A text reads by the locale; raises 13 when it is no number.
  double real(int i) const;
  /// Rounded halves to even. Raises 6 when it does not fit.
  std::int64_t rounded(int i) const;
  /// An amount, rounded halves to even. Raises 13 as real(), and 6 when it does not fit.
  Currency money(int i) const { return Currency::fromDouble(real(i)); }
  ColumnType columnType(int i) const { return static_cast<ColumnType>(integer(i)); }

  void give(std::string_view text) const {
    sqlite3_result_text64(context_, text.data() == nullptr ? "" : text.data(), text.size(),
                          SQLITE_TRANSIENT, SQLITE_UTF8);
  }
  void give(std::int64_t whole) const { sqlite3_result_int64(context_, whole); }
  void give(double real) const { sqlite3_result_double(context_, real); }
  void give(Currency amount) const { give(amount.toDouble()); }
  /// The argument itself.
  void pass(int i) const { sqlite3_result_value(context_, arguments_[i]); }

  /// Makes the statement fail with this error.
  void fail(std::int32_t number, std::string_view description) const noexcept;

 private:
  sqlite3_context* context_;
  int count_;
  sqlite3_value** arguments_;
};

[[noreturn]] inline void refuse(std::int32_t number, std::string_view detail = {}) {
  raise(number, kSource, detail);
}

/// What a function does with a null among its arguments.
enum class Nulls { kGiveNull, kTaken };

using Body = void (*)(Call&);

/// No exception may cross the engine's own frames.
template <typename Action>
void guarded(Call& call, Action action) noexcept {
  try {
    action(call);
  } catch (const Error& error) {
    call.fail(error.number(), error.description());
  } catch (const std::bad_alloc&) {
    sqlite3_result_error_nomem(call.context());
  } catch (const std::exception& error) {
    call.fail(errors::kUnspecified, error.what());
  }
}

template <Body body, Nulls nulls>
void entry(sqlite3_context* context, int count, sqlite3_value** arguments) noexcept {
  Call call(context, count, arguments);
  if constexpr (nulls == Nulls::kGiveNull) {
    for (int i = 0; i < count; ++i) {
      if (call.isNull(i)) return sqlite3_result_null(context);
    }
  }
  guarded(call, body);
}

struct Function {
  const char* name;
  int arguments;
  void (*entry)(sqlite3_context*, int, sqlite3_value**);
  int flags = SQLITE_DETERMINISTIC;
};

void addFunctions(Database& database, const Function* first, std::size_t count);

void addTextFunctions(Database& database);
void addNumberFunctions(Database& database);
void addDateFunctions(Database& database);
/// tv_first, tv_last, tv_sum, tv_avg, tv_money_sum.
void addAggregates(Database& database);

inline void addFunctions(Database& database) {
  addTextFunctions(database);
  addNumberFunctions(database);
  addDateFunctions(database);
  addAggregates(database);
}

}  // namespace tavelor::engine::sqlite
