// SPDX-License-Identifier: MIT
// Fuzzed bytes as statements, and what every target shares.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include "tavelor/platform/statement.hpp"
#include "tavelor/services/dialect/lexer.hpp"

namespace tavelor::fuzz {

/// Marks in the bytes where a value begins and ends. Bytes outside are the trusted text.
inline constexpr char kValueBegin = '\x01';
inline constexpr char kValueEnd = '\x02';

Statement statementOf(std::string_view bytes);

/// The same statement with each value replaced by another one of the kind that the lexer found; a
/// value that is not the whole of its literal, or is part of the shape, stays.
Statement withOtherValues(const Statement& statement, const dialect::Shape& shape);

/// A sentence on stderr, then an abort, when a rule of the library does not hold.
void require(bool holds, std::string_view rule, std::string_view detail = {});

}  // namespace tavelor::fuzz
