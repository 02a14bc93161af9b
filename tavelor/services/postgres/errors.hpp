// SPDX-License-Identifier: MIT
// What the server answers as errors of the library.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include <libpq-fe.h>

#include "tavelor/platform/error.hpp"

namespace tavelor::engine::postgres {

inline constexpr std::string_view kSource = "Database";

/// Of what would write while reads are only asked for.
[[noreturn]] void refuseWhileAsking();

/// An SQLSTATE, "42P01", read as a number in base 36; 0 for anything else.
constexpr std::int32_t nativeCodeOf(std::string_view sqlState) {
  if (sqlState.size() != 5) return 0;
  std::int32_t code = 0;
  for (const char c : sqlState) {
    const bool isDigit = c >= '0' && c <= '9';
    if (!isDigit && (c < 'A' || c > 'Z')) return 0;
    code = code * 36 + (isDigit ? c - '0' : c - 'A' + 10);
  }
  return code;
}

/// The error number of an SQLSTATE; kConnectionLost for none, as an error of the line has none.
std::int32_t numberOf(std::string_view sqlState);

/// The SQLSTATE of a result that is an error, or "".
std::string_view sqlStateOf(const PGresult& result);

/// The error of a result: what happened in a sentence, the statement's table or column, what the
/// server adds as notes, and where in the statement it was, which is `shift` bytes behind the
/// beginning of what was sent.
Error errorOf(const PGresult& result, std::string_view statement, std::size_t shift = 0);

/// A message of libpq or the server in one line, without a full stop at its end.
std::string oneLine(std::string_view message);

}  // namespace tavelor::engine::postgres
