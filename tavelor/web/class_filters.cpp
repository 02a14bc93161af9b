// SPDX-License-Identifier: MIT
// What narrows and orders a list.
#include "tavelor/web/class_filters.hpp"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>

#include <fmt/format.h>

#include "tavelor/platform/literal.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/web/answer.hpp"

namespace tavelor::web {

using engine::ColumnType;

namespace {

struct Operator {
  std::string_view word;
  std::string_view sign;
};
constexpr std::array kOperators = {
    Operator{"eq", "="}, Operator{"ne", "<>"}, Operator{"lt", "<"},     Operator{"le", "<="},
    Operator{"gt", ">"}, Operator{"ge", ">="}, Operator{"like", "Like"}};

Failure wrong(const ClassColumn& column, std::string_view why) {
  Failure failure = Failure::input(fmt::format("The filter on {} {}.", column.name, why));
  failure.faults = {{.field = column.name, .reason = std::string(why)}};
  return failure;
}

std::string likeOf(const std::string& field, std::string_view value) {
  const bool isPattern = value.find_first_of("*%") != std::string_view::npos;
  return fmt::format("{} Like {}", field,
                     sqlText(isPattern ? std::string(value) : fmt::format("*{}*", value)).text());
}

/// What has no value, or all that has one.
std::string emptyCriterion(const ClassColumn& column, const std::string& field,
                           std::string_view op) {
  const bool isText = engine::isText(column.type);
  if (op == "eq")
    return isText ? fmt::format("({0} = '' OR {0} = Null)", field) : field + " = Null";
  if (op == "ne") {
    return isText ? fmt::format("({0} <> '' AND {0} <> Null)", field) : field + " <> Null";
  }
  throw wrong(column, "has no value");
}

std::string numberCriterion(const ClassColumn& column, const std::string& field,
                            std::string_view sign, std::string_view value) {
  double number = 0;
  const char* const end = value.data() + value.size();
  const auto [stopped, fault] = std::from_chars(value.data(), end, number);
  if (fault != std::errc() || stopped != end || !(std::abs(number) < 1e300)) {
    throw wrong(column, "must be a number as 1234.5");
  }
  return fmt::format("{} {} {}", field, sign, sqlLiteral(number).text());
}

std::string flagCriterion(const ClassColumn& column, const std::string& field,
                          std::string_view sign, std::string_view value) {
  const bool isKnown = value == "true" || value == "false";
  if (!isKnown || (sign != "=" && sign != "<>")) {
    throw wrong(column, "must be eq or ne with true or false");
  }
  return fmt::format("{} {} {}", field, sign, sqlLiteral(value == "true").text());
}

std::string dateCriterion(const ClassColumn& column, const std::string& field, std::string_view op,
                          std::string_view sign, std::string_view value) {
  constexpr std::size_t kDay = 10;
  const std::optional<Date> moment = dayOf(value);
  if (!moment) throw wrong(column, "must be a day as 2026-11-20");
  const std::string at = sqlLiteral(*moment).text();
  if (value.size() > kDay) return fmt::format("{} {} {}", field, sign, at);
  const std::string next = sqlLiteral(Date(moment->days() + 1)).text();
  if (op == "eq") return fmt::format("({0} >= {1} AND {0} < {2})", field, at, next);
  if (op == "ne") return fmt::format("({0} < {1} OR {0} >= {2})", field, at, next);
  if (op == "le") return fmt::format("{} < {}", field, next);
  if (op == "gt") return fmt::format("{} >= {}", field, next);
  return fmt::format("{} {} {}", field, sign, at);
}

std::string criterionOf(std::string_view filter, const ClassColumns& columns) {
  const std::size_t first = filter.find(':');
  const std::size_t second = first == std::string_view::npos ? first : filter.find(':', first + 1);
  if (second == std::string_view::npos) {
    throw Failure::input(
        fmt::format("The filter {} is not COLUMN:OP:VALUE.", text::left(filter, 40)));
  }
  const ClassColumn& column = shownColumn(filter.substr(0, first), columns);
  const std::string_view op = filter.substr(first + 1, second - first - 1);
  const std::string_view value = filter.substr(second + 1);
  const auto found = std::find_if(kOperators.begin(), kOperators.end(),
                                  [&](const Operator& each) { return each.word == op; });
  if (found == kOperators.end()) {
    throw wrong(column, "knows eq, ne, lt, le, gt, ge and like");
  }
  if (column.type == ColumnType::kBinary) throw wrong(column, "cannot be: it holds bytes");
  const std::string field = fmt::format("[{}]", column.name);
  if (value.empty()) return emptyCriterion(column, field, op);
  if (op == "like") return likeOf(field, value);
  switch (column.type) {
    case ColumnType::kText:
    case ColumnType::kMemo:
      return fmt::format("{} {} {}", field, found->sign, sqlText(value).text());
    case ColumnType::kBoolean:
      return flagCriterion(column, field, found->sign, value);
    case ColumnType::kDate:
      return dateCriterion(column, field, op, found->sign, value);
    default:
      return numberCriterion(column, field, found->sign, value);
  }
}

}  // namespace

const ClassColumn& shownColumn(std::string_view name, const ClassColumns& columns) {
  const ClassColumn* const column = findColumn(columns, name);
  if (column != nullptr && !column->isHidden) return *column;
  std::vector<std::string> names;
  for (const ClassColumn& each : columns) names.push_back(each.name);
  const std::string nearest = text::nearest(name, names);
  throw Failure::input(fmt::format("There is no column {}{}.", text::left(name, 40),
                                   nearest.empty() ? "" : "; " + nearest + " is near"));
}

std::string criteriaOf(const std::vector<std::string>& filters, const ClassColumns& columns) {
  if (filters.size() > kMostFilters) {
    throw Failure::input(fmt::format("A list takes {} filters at most.", kMostFilters));
  }
  std::string criteria;
  for (const std::string& filter : filters) {
    if (!criteria.empty()) criteria += " AND ";
    criteria += criterionOf(filter, columns);
  }
  return criteria;
}

std::string orderOf(std::string_view order, const ClassColumns& columns) {
  if (order.empty()) return {};
  const std::size_t mark = std::min(order.rfind(':'), order.size());
  const std::string_view direction = mark < order.size() ? order.substr(mark + 1) : "asc";
  if (direction != "asc" && direction != "desc") {
    throw Failure::input("An order is COLUMN, COLUMN:asc or COLUMN:desc.");
  }
  const ClassColumn& column = shownColumn(order.substr(0, mark), columns);
  return fmt::format("[{}]{}", column.name, direction == "desc" ? " DESC" : "");
}

}  // namespace tavelor::web
