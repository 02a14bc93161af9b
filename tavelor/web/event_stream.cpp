// SPDX-License-Identifier: MIT
// /api/v1/events: the stream of what happens.
#include "tavelor/web/answer.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/events.hpp"

namespace tavelor::web {

void addEvents(Routes& routes) {
  routes.add(Method::kGet, "/api/v1/events", Right::kSignedIn,
             [](Context&) {
               return Answer{.type = "text/event-stream",
                             .body = Events::message("hello", {{"version", TAVELOR_VERSION}}),
                             .isEventStream = true};
             },
             {.summary = "What happens in the shop, as server-sent events"});
}

}  // namespace tavelor::web
