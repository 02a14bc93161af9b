// SPDX-License-Identifier: MIT
// Tokens to tree.
#pragma once

#include "tavelor/services/dialect/arena.hpp"
#include "tavelor/services/dialect/tree.hpp"

namespace tavelor::dialect {

/// Reads one SELECT, INSERT, UPDATE or DELETE with at most one ';' behind it; nothing else passes.
/// The tree lies in the arena and views the statement.
///
/// Errors: kSyntax with the place; kNotSupported for a named rule (rules.hpp).
TreeStatement* parse(const TokenList& tokens, Arena& arena);

}  // namespace tavelor::dialect
