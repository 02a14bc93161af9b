// SPDX-License-Identifier: MIT
// What the classes on the tables of a ticket share beside its life cycle.
#pragma once

#include <string_view>

namespace tavelor {

class Recordset;
class Variant;

/// Gives the current row to the ticket `vId` and posts it; it stays pending. Its ID becomes `next`
/// plus 1, and so leaves a gap, since `next` is above the table's greatest already.
void giveToTicket(Recordset& rows, const Variant& vId, const Variant& next);

// Parameters of the members of the life cycle, as the component tables write them.
inline constexpr std::string_view kOnClosing = "vId, [cnnActive]";
inline constexpr std::string_view kClosesTicket = "vId, vNewId, [cnnActive]";
inline constexpr std::string_view kRenumbersTicket = "vId, vNewId, sSerie, [cnnActive]";

}  // namespace tavelor
