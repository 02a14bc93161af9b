// SPDX-License-Identifier: MIT
// Functions on numbers: rounding, division, conversion.
#include <array>
#include <charconv>
#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include <fmt/format.h>

#include "tavelor/platform/currency.hpp"
#include "tavelor/platform/decimal_arithmetic.hpp"
#include "tavelor/platform/number_text.hpp"
#include "tavelor/services/sqlite/functions.hpp"

namespace tavelor::engine::sqlite {

namespace {

constexpr double kExactWhole = 9007199254740992.0;  // 2^53: from here on doubles skip whole numbers

/// Raises 6 for a number that the type does not hold.
std::int64_t inRange(std::int64_t number, ColumnType type) {
  const auto [least, most] = wholeRange(type);
  if (number < least || number > most) {
    refuse(errors::kOverflow, fmt::format("{} is not between {} and {}", number, least, most));
  }
  return number;
}

void give(const Call& call, double number, bool asWhole) {
  if (asWhole && std::abs(number) < kExactWhole) {
    call.give(static_cast<std::int64_t>(number));
  } else {
    call.give(number);
  }
}

/// The second argument of Round. Raises 5 below 0.
int decimalsOf(const Call& call) {
  const std::int64_t decimals = call.rounded(1);
  if (decimals < 0) refuse(errors::kInvalidCall, "Round to less than no decimals");
  return static_cast<int>(std::min<std::int64_t>(decimals, 30));
}

void roundTo(Call& call) {
  const int decimals = decimalsOf(call);
  if (call.isWhole(0)) return call.pass(0);
  call.give(roundHalfEven(call.real(0), decimals));
}

void number(Call& call) {
  if (call.isNumber(0)) return call.pass(0);
  const double read = call.real(0);
  give(call, read, read == std::trunc(read));
}

/// The first argument, and each of the others to what there is.
template <double (*operation)(double, double)>
void chain(Call& call) {
  double result = call.real(0);
  for (int i = 1; i < call.count(); ++i) result = operation(result, call.real(i));
  call.give(result);
}

void divide(Call& call) {
  const double divisor = call.real(1);
  if (divisor == 0) refuse(errors::kDivisionByZero);
  call.give(decimalQuotient(call.real(0), divisor));
}

/// The two whole operands of `\` and Mod.
struct Division {
  std::int64_t dividend;
  std::int64_t divisor;
};

Division divisionOf(const Call& call) {
  const Division division{call.rounded(0), call.rounded(1)};
  if (division.divisor == 0) refuse(errors::kDivisionByZero);
  return division;
}

void divideWhole(Call& call) {
  const auto [dividend, divisor] = divisionOf(call);
  if (divisor == -1 && dividend == std::numeric_limits<std::int64_t>::min()) {
    refuse(errors::kOverflow);
  }
  call.give(dividend / divisor);
}

void modulo(Call& call) {
  const auto [dividend, divisor] = divisionOf(call);
  call.give(divisor == -1 ? std::int64_t{0} : dividend % divisor);
}

/// A number whose bits are wanted: a LONG.
std::int64_t bitsOf(const Call& call, int i) {
  return inRange(call.rounded(i), ColumnType::kInt32);
}

/// A Null may be any number: with 0 it is 0.
void bitAnd(Call& call) {
  if (!call.isNull(0) && !call.isNull(1)) return call.give(bitsOf(call, 0) & bitsOf(call, 1));
  const int other = call.isNull(0) ? 1 : 0;
  if (!call.isNull(other) && bitsOf(call, other) == 0) call.give(std::int64_t{0});
}

/// And with -1, all of whose bits are set, it is -1.
void bitOr(Call& call) {
  if (!call.isNull(0) && !call.isNull(1)) return call.give(bitsOf(call, 0) | bitsOf(call, 1));
  const int other = call.isNull(0) ? 1 : 0;
  if (!call.isNull(other) && bitsOf(call, other) == -1) call.give(std::int64_t{-1});
}

void bitNot(Call& call) {
  call.give(~bitsOf(call, 0));
}

void power(Call& call) {
  const double result = std::pow(call.real(0), call.real(1));
  if (!std::isfinite(result)) refuse(errors::kOverflow);
  call.give(result);
}

void currency(Call& call) {
  call.give(call.money(0));
}

/// As chain(), of amounts.
template <typename Operation>
void moneyChain(Call& call) {
  Currency result = call.money(0);
  for (int i = 1; i < call.count(); ++i) result = Operation()(result, call.money(i));
  call.give(result);
}

void moneyNegative(Call& call) {
  call.give(-call.money(0));
}

void moneyAbsolute(Call& call) {
  call.give(absolute(call.money(0)));
}

void moneyRound(Call& call) {
  call.give(rounded(call.money(0), decimalsOf(call)));
}

void whole(Call& call) {
  call.give(inRange(call.rounded(0), call.columnType(1)));
}

void single(Call& call) {
  const auto narrowed = static_cast<float>(call.real(0));
  if (!std::isfinite(narrowed)) refuse(errors::kOverflow);
  call.give(static_cast<double>(narrowed));
}

void floorOf(Call& call) {
  if (call.isWhole(0)) return call.pass(0);
  call.give(decimalFloor(call.real(0)));
}

void truncate(Call& call) {
  if (call.isWhole(0)) return call.pass(0);
  call.give(decimalTruncate(call.real(0)));
}

/// What begins a text as a number with a point; blanks count nowhere, and the first character that
/// does not fit ends it. Raises 6 for a number that no double holds.
double leadingNumber(std::string_view text) {
  std::string digits;
  for (const char c : text) {
    if (c != ' ' && c != '\t' && c != '\n') digits += c;
  }
  if (const auto radix = readRadix(digits)) return static_cast<double>(radix->number);
  const char* first = digits.data();
  const char* const last = first + digits.size();
  if (first != last && *first == '+') ++first;
  // Letters that the reader would take for a number of its own.
  const char* const start = first != last && *first == '-' ? first + 1 : first;
  if (start == last || !((*start >= '0' && *start <= '9') || *start == '.')) return 0;
  double value = 0;
  const auto read = std::from_chars(first, last, value);
  if (read.ec == std::errc::result_out_of_range) {
    // Too small a number is 0.
    value = parseSqlNumber({first, static_cast<std::size_t>(read.ptr - first)})
                .value_or(std::numeric_limits<double>::infinity());
  }
  if (!std::isfinite(value)) refuse(errors::kOverflow);
  return value;
}

void val(Call& call) {
  if (call.isNumber(0)) return call.pass(0);
  const double value = leadingNumber(call.text(0));
  give(call, value, value == std::trunc(value));
}

constexpr std::array kFunctions{
    Function{"tv_round", 2, entry<roundTo, Nulls::kGiveNull>},
    Function{"tv_number", 1, entry<number, Nulls::kGiveNull>},
    Function{"tv_add", -1, entry<chain<decimalSum>, Nulls::kGiveNull>},
    Function{"tv_sub", -1, entry<chain<decimalDifference>, Nulls::kGiveNull>},
    Function{"tv_mul", -1, entry<chain<decimalProduct>, Nulls::kGiveNull>},
    Function{"tv_div", 2, entry<divide, Nulls::kGiveNull>},
    Function{"tv_intdiv", 2, entry<divideWhole, Nulls::kGiveNull>},
    Function{"tv_mod", 2, entry<modulo, Nulls::kGiveNull>},
    Function{"tv_and", 2, entry<bitAnd, Nulls::kTaken>},
    Function{"tv_or", 2, entry<bitOr, Nulls::kTaken>},
    Function{"tv_not", 1, entry<bitNot, Nulls::kGiveNull>},
    Function{"tv_power", 2, entry<power, Nulls::kGiveNull>},
    Function{"tv_currency", 1, entry<currency, Nulls::kGiveNull>},
    Function{"tv_money_add", -1, entry<moneyChain<std::plus<>>, Nulls::kGiveNull>},
    Function{"tv_money_sub", -1, entry<moneyChain<std::minus<>>, Nulls::kGiveNull>},
    Function{"tv_money_mul", -1, entry<moneyChain<std::multiplies<>>, Nulls::kGiveNull>},
    Function{"tv_money_neg", 1, entry<moneyNegative, Nulls::kGiveNull>},
    Function{"tv_money_abs", 1, entry<moneyAbsolute, Nulls::kGiveNull>},
    Function{"tv_money_round", 2, entry<moneyRound, Nulls::kGiveNull>},
    Function{"tv_whole", 2, entry<whole, Nulls::kGiveNull>},
    Function{"tv_single", 1, entry<single, Nulls::kGiveNull>},
    Function{"tv_int", 1, entry<floorOf, Nulls::kGiveNull>},
    Function{"tv_fix", 1, entry<truncate, Nulls::kGiveNull>},
    Function{"tv_val", 1, entry<val, Nulls::kGiveNull>}};

}  // namespace

void addNumberFunctions(Database& database) {
  addFunctions(database, kFunctions.data(), kFunctions.size());
}

}  // namespace tavelor::engine::sqlite
