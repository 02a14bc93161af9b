// SPDX-License-Identifier: MIT
// The functions of the dialect.
//
// Names that begin with tv_ are functions that each engine gets from this library, because engines
// differ from the dialect in them: rounding halves to even, characters instead of bytes, case of
// all letters, the locale's printing, errors instead of silent nulls.
#include "tavelor/services/dialect/functions.hpp"

#include <algorithm>
#include <array>

#include "tavelor/platform/text.hpp"

namespace tavelor::dialect {

namespace {

using enum FunctionKind;
using enum ResultType;
constexpr ColumnType kText = ColumnType::kText;
constexpr ColumnType kWhole = ColumnType::kInt32;
constexpr ColumnType kDouble = ColumnType::kDouble;
constexpr ColumnType kDate = ColumnType::kDate;

/// Sorted by name, and those of one name by how many arguments they take.
constexpr std::array kFunctions{
    Function{"abs", "abs", kPlain, 1, "n", kFirst, kDouble, false, "tv_money_abs"},
    Function{"avg", "avg", kTotal, 1, "n", kSum, kDouble, true},
    Function{"ccur", "", kConversion, 1, "n", kFixed, ColumnType::kCurrency},
    Function{"cdate", "", kConversion, 1, "d", kFixed, kDate},
    Function{"cdbl", "", kConversion, 1, "n", kFixed, kDouble},
    Function{"cint", "", kConversion, 1, "n", kFixed, ColumnType::kInt16},
    Function{"clng", "", kConversion, 1, "n", kFixed, kWhole},
    Function{"count", "count", kCount, 1, "v", kFixed, kWhole, true},
    Function{"cstr", "", kConversion, 1, "t", kFixed, kText},
    Function{"date", "tv_today", kClock, 0, "", kFixed, kDate},
    Function{"dateserial", "tv_date_serial", kPlain, 3, "nnn", kFixed, kDate},
    Function{"day", "d", kDatePart, 1, "d", kFixed, kWhole},
    Function{"first", "tv_first", kPlain, 1, "v", kFirst, kText, true},
    Function{"fix", "tv_fix", kPlain, 1, "n", kFirst, kDouble},
    Function{"format", "tv_format", kTyped, 1, "vt", kFixed, kText},
    Function{"hour", "h", kDatePart, 1, "d", kFixed, kWhole},
    Function{"iif", "", kIIf, 3, "cvv", kCommon, kText},
    Function{"instr", "tv_instr", kPlain, 2, "tt", kFixed, kWhole},
    Function{"instr", "tv_instr", kPlain, 3, "nttn", kFixed, kWhole},
    Function{"int", "tv_int", kPlain, 1, "n", kFirst, kDouble},
    Function{"isnull", "", kIsNull, 1, "v", kFixed, ColumnType::kBoolean},
    Function{"last", "tv_last", kPlain, 1, "v", kFirst, kText, true},
    Function{"lcase", "tv_lcase", kPlain, 1, "t", kFixed, kText},
    Function{"left", "tv_left", kPlain, 2, "tn", kFixed, kText},
    Function{"len", "length", kPlain, 1, "t", kFixed, kWhole},
    Function{"ltrim", "ltrim", kPlain, 1, "t", kFixed, kText},
    Function{"max", "max", kPlain, 1, "v", kFirst, kText, true},
    Function{"mid", "tv_mid", kPlain, 2, "tnn", kFixed, kText},
    Function{"min", "min", kPlain, 1, "v", kFirst, kText, true},
    Function{"minute", "n", kDatePart, 1, "d", kFixed, kWhole},
    Function{"month", "m", kDatePart, 1, "d", kFixed, kWhole},
    Function{"now", "tv_now", kClock, 0, "", kFixed, kDate},
    Function{"nz", "", kNz, 2, "vv", kCommon, kText},
    Function{"right", "tv_right", kPlain, 2, "tn", kFixed, kText},
    Function{"round", "tv_round", kPlain, 1, "nn", kFirst, kDouble, false, "tv_money_round"},
    Function{"rtrim", "rtrim", kPlain, 1, "t", kFixed, kText},
    Function{"second", "s", kDatePart, 1, "d", kFixed, kWhole},
    Function{"sgn", "sign", kPlain, 1, "n", kFixed, kWhole},
    Function{"sum", "sum", kTotal, 1, "n", kSum, kDouble, true, "tv_money_sum"},
    Function{"time", "tv_clock", kClock, 0, "", kFixed, kDate},
    Function{"trim", "trim", kPlain, 1, "t", kFixed, kText},
    Function{"ucase", "tv_ucase", kPlain, 1, "t", kFixed, kText},
    Function{"val", "tv_val", kPlain, 1, "t", kFixed, kDouble},
    Function{"weekday", "w", kDatePart, 1, "dn", kFixed, kWhole},
    Function{"year", "yyyy", kDatePart, 1, "d", kFixed, kWhole}};

constexpr bool isSorted() {
  for (std::size_t i = 1; i < kFunctions.size(); ++i) {
    const Function& a = kFunctions[i - 1];
    const Function& b = kFunctions[i];
    if (a.name > b.name) return false;
    if (a.name == b.name && a.arguments.size() >= b.arguments.size()) return false;
  }
  return true;
}
static_assert(isSorted());

constexpr std::size_t kLongestName = 12;

}  // namespace

const Function* findFunction(std::string_view name, std::size_t arguments) {
  if (name.size() > kLongestName) return nullptr;
  std::array<char, kLongestName> lower{};
  std::transform(name.begin(), name.end(), lower.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c;
  });
  const std::string_view wanted(lower.data(), name.size());
  const auto* found =
      std::lower_bound(kFunctions.begin(), kFunctions.end(), wanted,
                       [](const Function& f, std::string_view n) { return f.name < n; });
  if (found == kFunctions.end() || found->name != wanted) return nullptr;
  while (found->arguments.size() < arguments && found + 1 != kFunctions.end() &&
         found[1].name == wanted) {
    ++found;
  }
  return found;
}

std::string nearestFunction(std::string_view name) {
  std::vector<std::string_view> names;
  names.reserve(kFunctions.size());
  for (const Function& function : kFunctions) names.push_back(function.name);
  return text::nearest(name, names);
}

}  // namespace tavelor::dialect
