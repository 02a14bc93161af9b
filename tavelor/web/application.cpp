// SPDX-License-Identifier: MIT
// The road of a request: host, caller, token, right, handler, headers, log.
#include "tavelor/web/application.hpp"

#include <algorithm>
#include <optional>

#include <fmt/format.h>
#include <fmt/ranges.h>

#include "tavelor/platform/text.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/change_log.hpp"
#include "tavelor/web/context.hpp"
#include "tavelor/web/endpoints.hpp"
#include "tavelor/web/headers.hpp"
#include "tavelor/web/sessions.hpp"
#include "tavelor/web/worker.hpp"

namespace tavelor::web {

namespace {

bool isChange(Method method) {
  return method == Method::kPost || method == Method::kPut || method == Method::kPatch ||
         method == Method::kDelete;
}

std::string allowText(const Match& match) {
  std::vector<std::string_view> names;
  for (const Method method : match.allowed) names.push_back(nameOf(method));
  return fmt::format("{}", fmt::join(names, ", "));
}

Answer run(Context& context, const Match& match, const Caller& caller) {
  const Route& route = *match.route;
  if (!caller.may(route.right)) {
    if (caller.isNobody()) throw Failure::signedOut("Nobody is signed in.");
    context.must(route.right);
  }
  Answer given = route.handler(context);
  if (isChange(route.method) && given.status < 300 && !context.isLogged()) {
    logChange(context, given.status, nullptr);
  }
  return given;
}

}  // namespace

Application::Application(std::shared_ptr<Installation> installation, ApplicationOptions options)
    : installation_(std::move(installation)), options_(std::move(options)) {
  addEndpoints(routes_);
}

Application::~Application() = default;

Answer Application::handled(const Request& request, Worker& worker, const Authentication& who,
                            Told& told) {
  try {
    mustBeOurHost(request, options_.hosts);
    Target target = Target::of(request.target);
    const Match match = routes_.match(request.method, target.segments);
    if (match.allowed.empty()) throw Failure::missing("There is nothing at this address.");
    if (request.method == Method::kOptions) {
      return {.status = 204, .type = "", .headers = {{"Allow", allowText(match)}}};
    }
    if (match.route == nullptr) {
      Failure failure{405, "input", "This address takes " + allowText(match) + "."};
      failure.headers = {{"Allow", allowText(match)}};
      throw failure;
    }
    const Caller caller = who(request, *match.route);
    told.who = caller.code;
    Context context(*this, worker, request, std::move(target), match, caller);
    return run(context, match, caller);
  } catch (...) {
    Answer made = answerOf(std::current_exception(), told.fault);
    if (made.status >= 500) worker.forget();
    return made;
  }
}

Answer Application::answer(const Request& request, Worker& worker) {
  Told told;
  return answer(request, worker, told);
}

Answer Application::answer(const Request& request, Worker& worker, Told& told) {
  const auto who = [](const Request& asked, const Route& route) {
    return callerOf(asked, route.right != Right::kAnyone);
  };
  Answer made = handled(request, worker, who, told);
  addHeaders(made, request);
  return made;
}

Answer Application::answerFor(const Request& request, Worker& worker, const Caller& caller) {
  Told told;
  Answer made = handled(
      request, worker, [&](const Request&, const Route&) { return caller; }, told);
  addHeaders(made, request);
  return made;
}

}  // namespace tavelor::web
