// SPDX-License-Identifier: MIT
// What the dialect does not do, by name.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace tavelor::dialect {

enum class Rule : std::uint8_t {
  kDefinitionInStatement,
  kTopWithTies,
  kPercentOfRows,
  kLogicalOperators,
  kTooDeep,
  kTooManyValues,
  kUpdateOfTwoTables,
  kDeleteFromTwoTables,
  kDistinctRowOfJoin,
  kOrderOfDistinctGroups,
  kDerivedTable,
  kUnknownFunction
};

/// The sentence that tells the user what is not done, and what to write instead.
std::string_view sentence(Rule rule);

/// Raises kNotSupported (kSyntax for kDefinitionInStatement) with the rule's sentence, and with
/// `detail` behind it when there is one.
[[noreturn]] void refuse(Rule rule, std::string_view statement, std::size_t offset,
                         std::string_view detail = {});

}  // namespace tavelor::dialect
