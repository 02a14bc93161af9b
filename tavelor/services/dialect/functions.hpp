// SPDX-License-Identifier: MIT
// The functions of the dialect.
#pragma once

#include <cstdint>
#include <string_view>

#include "tavelor/services/dialect/plan.hpp"

namespace tavelor::dialect {

/// What becomes of a call.
enum class FunctionKind : std::uint8_t {
  kPlain,       ///< a function of the engine with the same arguments
  kTyped,       ///< the same, with the type of the first argument behind the others
  kDatePart,    ///< the part named by `engineName` of a date
  kConversion,  ///< a cast to the result type
  kClock,       ///< what the time is; bound by an engine that has a clock of its own
  kTotal,       ///< over rows, exact where the numbers have decimals
  kCount,
  kIIf,
  kIsNull,
  kNz
};

enum class ResultType : std::uint8_t {
  kFixed,  ///< `type`
  kFirst,  ///< as the first argument
  kSum,    ///< money stays money, all else becomes double
  kCommon  ///< what the last two arguments have in common; they are made that
};

struct Function {
  std::string_view name;  ///< lower case
  std::string_view engineName;
  FunctionKind kind = FunctionKind::kPlain;
  std::uint8_t leastArguments = 1;
  /// A letter for each argument, the optional ones too: t text, n number, d date, v any value,
  /// c condition.
  std::string_view arguments;
  ResultType result = ResultType::kFixed;
  ColumnType type = ColumnType::kText;
  bool aggregate = false;
  /// The engine's function where the first argument is money, which must stay within its limits;
  /// "" where the one for all numbers does.
  std::string_view ofMoney = {};
};

/// Whether it gives one of the values that it is called with, of many rows.
inline bool takesOneValue(const Function& function) {
  return function.aggregate && function.result == ResultType::kFirst;
}

/// Without regard to case; null when there is none. Of several functions of one name the first one
/// that takes as many arguments, or the one that takes the most.
const Function* findFunction(std::string_view name, std::size_t arguments);
/// The name nearest to an unknown one, or "".
std::string nearestFunction(std::string_view name);

}  // namespace tavelor::dialect
