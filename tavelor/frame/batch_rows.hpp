// SPDX-License-Identifier: MIT
// Rows that a grid holds back until they are stored together.
#pragma once

#include <cstdint>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Recordset;
class Variant;

/// What stands in the key column of a row that was added and not stored yet.
inline constexpr std::int32_t kUnstoredId = -1;

/// Gives the rows whose ID is kUnstoredId, those hidden by a filter included, the code `vId` and
/// their keys, consecutive from `next` on in the order of the set, and posts them; they stay
/// pending. The set stands on its first row afterwards. After an error the rows before the failing
/// one have their keys.
TAVELOR_API void numberNewRows(Recordset& rows, const Variant& next, const Variant& vId,
                               std::string_view codeColumn = "Código");

/// The same with all rows; the set stands at EOF afterwards.
TAVELOR_API void numberAllRows(Recordset& rows, const Variant& next, const Variant& vId,
                               std::string_view codeColumn = "Código");

/// Gives all rows keys, consecutive from `next` on, and posts them; they stay pending, and the set
/// stands on the first one. The set must have rows. After an error the rows before the failing one
/// have their keys.
TAVELOR_API void keyAllRows(Recordset& rows, const Variant& next);

/// Gives the current row the code `vId` and posts it.
TAVELOR_API void keyCurrentRow(Recordset& rows, const Variant& vId,
                               std::string_view codeColumn = "Código");

}  // namespace tavelor
