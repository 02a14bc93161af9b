// SPDX-License-Identifier: MIT
// The dialect's functions on a server, and what a session tells them.
#pragma once

#include <span>
#include <string>
#include <string_view>

namespace tavelor {
struct Locale;
}

namespace tavelor::engine::postgres {

/// The statements that make all functions, aggregates and domains in the first schema of the
/// search path, which must be "tavelor, pg_catalog": then and whenever they are called. To be sent
/// as one text inside a transaction; where they are there already, of whatever version, they are
/// replaced.
std::string_view functionsDdl();
/// Raised with each change of what the functions do.
int functionsVersion();

/// SET statements that tell the functions how the session's country writes numbers, dates and
/// money; none for Spain, which they take a silent session for.
std::string localeSettings(const Locale& locale);

/// The files in tavelor/services/postgres/functions/, before the letters are put in.
std::span<const std::string_view> functionTexts();

}  // namespace tavelor::engine::postgres
