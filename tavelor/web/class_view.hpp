// SPDX-License-Identifier: MIT
// How a list of a class is shown, as the registry remembers it.
#pragma once

#include <string_view>

#include "tavelor/web/class_shape.hpp"
#include "tavelor/web/json.hpp"

namespace tavelor {
class RecordClass;
}

namespace tavelor::web {

/// {columns, order, filter} of a mode: order and filter are those that the class's own forms use.
/// What is stored and does not read, or names no column of the mode, is passed over.
Json viewOf(const RecordClass& record, std::string_view mode, const ClassColumns& columns);

}  // namespace tavelor::web
