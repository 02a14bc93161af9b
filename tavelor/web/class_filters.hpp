// SPDX-License-Identifier: MIT
// What narrows and orders a list, from an address to the record set's own words.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/web/class_shape.hpp"

namespace tavelor::web {

inline constexpr std::size_t kMostFilters = 20;

/// Criteria of "COLUMN:OP:VALUE" each, all of which a row must fit; "" for none. OP is eq, ne, lt,
/// le, gt, ge or like. A day without a time is the whole day; an empty value is what is Null or
/// empty; without a wildcard (* or %) like finds the value anywhere. No value can leave its quotes.
/// Raises Failure 400, naming the column, for what does not read.
std::string criteriaOf(const std::vector<std::string>& filters, const ClassColumns& columns);

/// "COLUMN", "COLUMN:asc" or "COLUMN:desc" as Sort takes it. Raises Failure 400 for other ones.
std::string orderOf(std::string_view order, const ClassColumns& columns);

/// A column that the rows show. Raises Failure 400 with the nearest name.
const ClassColumn& shownColumn(std::string_view name, const ClassColumns& columns);

}  // namespace tavelor::web
