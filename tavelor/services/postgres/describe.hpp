// SPDX-License-Identifier: MIT
// Reads tables, columns and keys back out of a schema.
#pragma once

#include <string_view>

namespace tavelor::engine {
class Catalogue;
class Session;
}  // namespace tavelor::engine

namespace tavelor::engine::postgres {

/// The column by which rows come as they were stored; it is ours, and not shown.
inline constexpr std::string_view kRowColumn = "tv_row";

/// In the order in which the tables were made. Tables that other programs have made get the nearest
/// types.
Catalogue describeTables(Session& session, std::string_view schema);

}  // namespace tavelor::engine::postgres
