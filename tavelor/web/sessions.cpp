// SPDX-License-Identifier: MIT
// Who asks.
#include "tavelor/web/sessions.hpp"

namespace tavelor::web {

Caller callerOf(const Request& /*request*/) {
  return {};
}

}  // namespace tavelor::web
