// SPDX-License-Identifier: MIT
// Statements with the values of a caller.
#pragma once

#include <cstddef>

#include "tavelor/c/calls.hpp"
#include "tavelor/platform/statement.hpp"

namespace tavelor::c {

/// A statement, its question marks being values. Raises as splice().
Statement statementOf(const char* statement, const tavelor_value* values, std::size_t count,
                      const Room& room);

}  // namespace tavelor::c
