// SPDX-License-Identifier: MIT
// What the dialect does not do, by name.
#include "tavelor/services/dialect/rules.hpp"

#include <string>

#include "tavelor/platform/error.hpp"

namespace tavelor::dialect {

std::string_view sentence(Rule rule) {
  switch (rule) {
    case Rule::kDefinitionInStatement:
      return "Tables are made and changed by the schema only, not by a statement.";
    case Rule::kTopWithTies:
      return "TOP together with ORDER BY, DISTINCT or UNION is not supported.";
    case Rule::kPercentOfRows:
      return "TOP n PERCENT is not supported; give a number of rows.";
    case Rule::kLogicalOperators:
      return "Xor, Eqv and Imp are not supported; write them with And, Or and Not.";
    case Rule::kTooDeep:
      return "The statement is too complex: its expressions nest too deeply.";
    case Rule::kTooManyValues:
      return "The statement has more values than the engine takes; write several statements.";
    case Rule::kUpdateOfTwoTables:
      return "An UPDATE sets columns of one table only; write one statement a table.";
    case Rule::kDeleteFromTwoTables:
      return "A DELETE takes rows from one table only; write one statement a table.";
    case Rule::kDistinctRowOfJoin:
      return "DISTINCTROW over several tables is not supported; write DISTINCT or GROUP BY.";
    case Rule::kOrderOfDistinctGroups:
      return "On this engine a SELECT DISTINCT over groups is sorted by what it shows only.";
    case Rule::kDerivedTable:
      return "A SELECT in the place of a table is not supported.";
    case Rule::kUnknownFunction:
      return "This function is not supported.";
  }
  return "";
}

void refuse(Rule rule, std::string_view statement, std::size_t offset, std::string_view detail) {
  std::string description(sentence(rule));
  if (!detail.empty()) description.append(" ").append(detail);
  const bool definition = rule == Rule::kDefinitionInStatement;
  Error error(definition ? errors::kSyntax : errors::kNotSupported, "Statement",
              std::move(description));
  error.inStatement(statement, static_cast<std::int64_t>(offset));
  throw error;
}

}  // namespace tavelor::dialect
