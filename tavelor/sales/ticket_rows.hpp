// SPDX-License-Identifier: MIT
// What the component tables of a ticket's classes share.
#pragma once

#include <string_view>

namespace tavelor {

// Parameters of the members of the life cycle, as the component tables write them.
/// of members that work on a closing
inline constexpr std::string_view kOnClosing = "vId, [cnnActive]";
inline constexpr std::string_view kClosesTicket = "vId, vNewId, [cnnActive]";  ///< of CerrarTicket
/// of ConvertirSerie
inline constexpr std::string_view kRenumbersTicket = "vId, vNewId, sSerie, [cnnActive]";

}  // namespace tavelor
