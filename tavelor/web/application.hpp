// SPDX-License-Identifier: MIT
// Requests in, answers out, in the apartment of the calling thread.
#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "tavelor/web/events.hpp"
#include "tavelor/web/message.hpp"
#include "tavelor/web/rate_limit.hpp"
#include "tavelor/web/rights.hpp"
#include "tavelor/web/routes.hpp"

namespace tavelor {
class Installation;
}

namespace tavelor::web {

class Worker;

/// How an application is to answer.
struct ApplicationOptions {
  /// Names and addresses by which it may be asked, without a port; those of this machine's own
  /// interface are always taken, and "*" takes all.
  std::vector<std::string> hosts = {};
  std::size_t workers = 1;  ///< told by /health
};

/// What the server's log tells beside the answer.
struct Told {
  std::string who;    ///< code of the employee, name of the key; "" for nobody
  std::string fault;  ///< what was raised, with all that is known of it
};

/// All that a server does but for the lines. Any number of threads may ask it at a time, each in an
/// apartment of its own over the installation, with a worker of its own.
class Application {
 public:
  explicit Application(std::shared_ptr<Installation> installation, ApplicationOptions options = {});
  ~Application();
  Application(const Application&) = delete;
  Application& operator=(const Application&) = delete;

  /// The whole road: host, session or key, token, right, handler, headers, log. Never throws for
  /// what a request holds.
  Answer answer(const Request& request, Worker& worker);
  Answer answer(const Request& request, Worker& worker, Told& told);
  /// The same for a caller who is known: without session, token and limits of who may ask.
  Answer answerFor(const Request& request, Worker& worker, const Caller& caller);

  const Routes& routes() const { return routes_; }
  Events& events() { return events_; }
  RateLimit& signIns() { return signIns_; }
  const ApplicationOptions& options() const { return options_; }
  const std::shared_ptr<Installation>& installation() { return installation_; }
  std::chrono::steady_clock::time_point since() const { return since_; }

 private:
  using Authentication = std::function<Caller(const Request&, const Route&)>;
  Answer handled(const Request& request, Worker& worker, const Authentication& who, Told& told);

  std::shared_ptr<Installation> installation_;
  ApplicationOptions options_;
  Routes routes_;
  Events events_;
  RateLimit signIns_{0.5, 30};  ///< a shop full of tills signs in at once, and then for long not
  std::chrono::steady_clock::time_point since_ = std::chrono::steady_clock::now();
};

}  // namespace tavelor::web
