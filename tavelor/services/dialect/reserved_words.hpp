// SPDX-License-Identifier: MIT
// The words that the dialect takes for itself.
#pragma once

#include <string_view>

#include "tavelor/services/dialect/lexer.hpp"

namespace tavelor::dialect {

/// Without regard to case; kNone for a name.
Word reservedWord(std::string_view name);

}  // namespace tavelor::dialect
