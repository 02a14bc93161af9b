// SPDX-License-Identifier: MIT
// The types of fields and how they are held.
#pragma once

#include <cstdint>
#include <optional>

#include "tavelor/services/engine/catalogue.hpp"
#include "tavelor/services/recordset/constants.hpp"

namespace tavelor {

/// Defined sizes of the types that have no limit of their own: 1 GiB of two-byte characters, and
/// the largest number of bytes that the size can tell.
inline constexpr std::int32_t kMemoSize = 536'870'910;
inline constexpr std::int32_t kBinarySize = 2'147'483'647;

/// How values of a type are held; nothing for a type that is not supported.
std::optional<engine::ColumnType> storageOf(DataType type);
/// Bytes of a number, date or flag; the limit of memo and binary; 0 for a sized text.
std::int32_t fixedSize(engine::ColumnType type);

}  // namespace tavelor
