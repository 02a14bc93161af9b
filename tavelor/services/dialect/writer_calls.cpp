// SPDX-License-Identifier: MIT
// Tree to text, as all engines have it: calls and casts.
#include <algorithm>
#include <string>
#include <utility>

#include "tavelor/services/dialect/functions.hpp"
#include "tavelor/services/dialect/rules.hpp"
#include "tavelor/services/dialect/types.hpp"
#include "tavelor/services/dialect/writer.hpp"
#include "tavelor/services/dialect/writer_parts.hpp"

namespace tavelor::dialect {

namespace {

/// The engine's function for a call.
std::string engineName(const Function& function, const Type& first) {
  if (isMoney(first) && !function.ofMoney.empty()) return std::string(function.ofMoney);
  const bool isExactTotal = function.kind == FunctionKind::kTotal && hasDecimals(first);
  return (isExactTotal ? "tv_" : "") + std::string(function.engineName);
}

std::int64_t typeNumber(const Type& type) {
  return static_cast<std::int64_t>(type.column);
}

}  // namespace

void StepText::call(const Expr& expr) {
  const Function& function = *expr.function;
  const Expr* first = expr.arguments;
  switch (function.kind) {
    case FunctionKind::kIsNull:
      expression(*first, kCompareLevel + 1);
      *this << " IS NULL";
      return;
    case FunctionKind::kNz:
      return this->function("coalesce", *first, *first->next);
    case FunctionKind::kIIf:
      *this << "CASE WHEN ";
      nested(*first, 0, kCaseOpen);
      *this << " THEN ";
      nested(*first->next, 0, kCaseOpen, Form::kCalculated);
      *this << " ELSE ";
      nested(*first->next->next, 0, kCaseOpen, Form::kCalculated);
      *this << " END";
      return;
    case FunctionKind::kClock:
      if (words_.isTyped) return clock(function);
      *this << function.engineName << "()";
      return;
    default:
      break;
  }
  const std::string name = engineName(function, first->type);
  const Around result = resultOf(function, name);
  *this << result.before;
  if (function.aggregate) {
    aggregate(expr, name);
  } else {
    plainCall(expr, name);
  }
  *this << result.behind;
}

void StepText::plainCall(const Expr& expr, std::string_view name) {
  const Function& function = *expr.function;
  const Expr* first = expr.arguments;
  if (function.kind == FunctionKind::kDatePart) {
    *this << "tv_part('" << function.engineName << "', ";
    open_ += kOperatorOpen;  // behind the name of a part
    list(first, Form::kCalculated);
    open_ -= kOperatorOpen;
  } else {
    *this << name << "(";
    list(first, Form::kCalculated);
  }
  if (function.kind == FunctionKind::kTyped) {
    if (first->next == nullptr) *this << ", NULL";
    *this << ", " << typeNumber(first->type);
  } else if (function.engineName == "tv_round" && first->next == nullptr) {
    *this << ", 0";
  }
  *this << ")";
}

void StepText::aggregate(const Expr& expr, std::string_view name) {
  const Function& function = *expr.function;
  const Expr& argument = *expr.arguments;
  const Select* const group = std::exchange(group_, nullptr);
  const bool isByRow = name == "tv_first" || name == "tv_last";
  *this << name << "(";
  open_ += kFirstArgumentOpen;
  if (open_ > kMostOpen) refuse(Rule::kTooDeep, statement_, argument.offset);
  if (takesOneValue(function) && !isByRow) {
    sorted(argument, 0);
  } else {
    nested(argument, 0, 0,
           function.kind == FunctionKind::kTotal ? Form::kCalculated : Form::kStored);
  }
  open_ -= kFirstArgumentOpen;
  if (isByRow && group != nullptr && group->sources != nullptr) {
    *this << " ORDER BY ";
    rowOrder(group->sources);
  }
  *this << ")";
  group_ = group;
}

void StepText::truth(const Expr& condition) {
  *this << words_.truth.before;
  nested(condition, 0, kOperatorOpen);
  *this << words_.truth.behind;
}

void StepText::cast(const Expr& expr) {
  std::string_view function;
  std::int64_t second = -1;
  switch (expr.cast) {
    case Cast::kNone:
      return expression(*expr.left);
    case Cast::kNumberOfPredicate:
      return truth(*expr.left);
    case Cast::kPredicateOfNumber:
      expression(*expr.left, kCompareLevel + 1);
      *this << " <> 0";
      return;
    case Cast::kFlag:
      *this << words_.truth.before;
      nested(*expr.left, kCompareLevel + 1, kOperatorOpen, Form::kCalculated);
      *this << " <> 0" << words_.truth.behind;
      return;
    case Cast::kNumber:
      function = "tv_number(";
      break;
    case Cast::kDate:
      function = "tv_date(";
      break;
    case Cast::kDay:
      function = "tv_day(";
      break;
    case Cast::kText:
      function = "tv_text(";
      second = typeNumber(expr.left->type);
      break;
    case Cast::kCurrency:
      function = "tv_currency(";
      break;
    case Cast::kWhole:
      function = "tv_whole(";
      second = typeNumber(expr.type);
      break;
    case Cast::kSingle:
      function = "tv_single(";
      break;
    case Cast::kFit:
      function = "tv_fit(";
      second = expr.size;
      break;
  }
  *this << function;
  nested(*expr.left, 0, kFirstArgumentOpen, Form::kCalculated);
  if (second >= 0) *this << ", " << second;
  *this << ")";
}

/// One for each part of the clock, however often a statement asks for it.
void StepText::clock(const Function& function) {
  const Conversion conversion = function.engineName == "tv_now"     ? Conversion::kNow
                                : function.engineName == "tv_today" ? Conversion::kToday
                                                                    : Conversion::kTimeOfDay;
  std::vector<Parameter>& parameters = step_.parameters;
  const auto known = std::find_if(parameters.begin(), parameters.end(),
                                  [&](const Parameter& p) { return p.conversion == conversion; });
  const auto number = static_cast<std::int32_t>(known - parameters.begin()) + 1;
  const bool isNew = known == parameters.end();
  if (isNew) {
    parameters.push_back(
        {.literal = -1, .conversion = conversion, .columnType = ColumnType::kDate, .column = {}});
  }
  writer_.placeholder(step_.sql, number, isNew);
}

}  // namespace tavelor::dialect
