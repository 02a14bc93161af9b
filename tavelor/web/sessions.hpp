// SPDX-License-Identifier: MIT
// Who asks: by the cookie of a session, or by a program's key.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/web/message.hpp"
#include "tavelor/web/rights.hpp"

namespace tavelor::web {

inline constexpr std::string_view kSessionCookie = "tavelor_session";

/// Nobody where there is neither cookie nor key, or the session has ended. Raises Failure 401 for a
/// key that is none, 403 for a change over a session without its token or of another site's page.
Caller callerOf(const Request& request);

}  // namespace tavelor::web
