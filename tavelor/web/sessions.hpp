// SPDX-License-Identifier: MIT
// Who asks: by the cookie of a session, or by a program's key.
#pragma once

#include <string>
#include <string_view>

#include "tavelor/web/message.hpp"
#include "tavelor/web/rights.hpp"

namespace tavelor::web {

/// Nobody where there is neither cookie nor key, and for a session that has ended: 12 hours after
/// its beginning, 2 hours after its last use, with its PIN, or at sign-out. Sessions lie in the
/// main database, so that they outlive the server. Raises Failure 401 for a key that is none, 403
/// for a change over a session without its token, where that is needed, and for one that a page of
/// another site asks for.
Caller callerOf(const Request& request, bool needsToken = true);

/// Whose session a browser's secret is.
Caller callerOfSession(std::string_view secret);

/// Begins one; gives what the browser keeps. Of an employee's the oldest ones beyond 20 end.
std::string beginSession(std::string_view employee);
/// Ends the session of a caller.
void endSession(const Caller& caller);
/// What a page must send along with every change: made of what the browser keeps, which the page
/// itself cannot see.
std::string tokenOf(std::string_view secret);
/// The token of the session that a request comes with; "" for none.
std::string tokenOf(const Request& request);
/// For the header Set-Cookie; of "" one that ends the cookie.
std::string cookieOf(std::string_view secret, bool isSecure);

}  // namespace tavelor::web
