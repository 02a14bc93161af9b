// SPDX-License-Identifier: MIT
// The types of fields and how they are held.
#pragma once

#include <cstdint>
#include <optional>

#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/recordset/constants.hpp"

namespace tavelor {

/// How values of a type are held; nothing for a type that is not supported.
std::optional<engine::ColumnType> storageOf(DataType type);

}  // namespace tavelor
