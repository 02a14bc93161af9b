// SPDX-License-Identifier: MIT
// A request on its way through its handler.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/platform/date.hpp"
#include "tavelor/web/json.hpp"
#include "tavelor/web/message.hpp"
#include "tavelor/web/rights.hpp"
#include "tavelor/web/routes.hpp"

namespace tavelor {
class Apartment;
class Connection;
namespace flows {
class Shop;
}
}  // namespace tavelor

namespace tavelor::web {

class Application;
class Events;
class Worker;

/// Parameters, body and caller, and what a handler works with. Whatever of the request does not
/// read raises Failure 400 and is named.
class Context {
 public:
  Context(Application& application, Worker& worker, const Request& request, Target target,
          Match match, Caller caller);

  const Request& request() const { return request_; }
  const Route& route() const { return *match_.route; }

  /// What stands in the place of "{name}".
  const std::string& path(std::string_view name) const;
  /// The same as a whole number above 0, of a ticket or a closing.
  double pathNumber(std::string_view name) const;
  /// The first of that name.
  std::optional<std::string> query(std::string_view name) const;
  std::string query(std::string_view name, std::string_view otherwise) const;
  std::vector<std::string> queries(std::string_view name) const;
  std::optional<Date> queryDay(std::string_view name) const;
  std::int64_t queryWhole(std::string_view name, std::int64_t least, std::int64_t most,
                          std::int64_t otherwise) const;
  /// The whole body, which must be an object and say that it is JSON. Raises Failure 415 too.
  const Json& body();

  const Caller& caller() const { return caller_; }
  /// Raises Failure 403, naming the right, where the caller has it not.
  void must(Right right) const;
  /// Whether the caller may do `what` ("read", "write", "call") with a class: neither the role
  /// denies "class.NAME.what" nor does the installation, to whom it is an identifier of its
  /// permissions.
  bool mayWithClass(std::string_view className, std::string_view what) const;

  Apartment& apartment() const;
  flows::Shop& shop();
  Worker& worker() { return worker_; }
  Events& events();
  Application& application() { return application_; }

  /// What was changed, for the log of changes: "ticket 17". A text; "" to begin with.
  void changed(std::string what) { changed_ = std::move(what); }
  const std::string& changed() const { return changed_; }
  /// No line in the log: what was sent is a question.
  void changedNothing() { isLogged_ = true; }
  /// Writes the line of the log over a connection of the main database, so that it is stored with
  /// the change itself or not at all. Else it is written right behind the handler.
  void logChangeIn(const std::shared_ptr<Connection>& main, int status = 200);
  bool isLogged() const { return isLogged_; }

 private:
  Application& application_;
  Worker& worker_;
  const Request& request_;
  Target target_;
  Match match_;
  Caller caller_;
  std::optional<Json> body_;
  std::string changed_;
  bool isLogged_ = false;
};

}  // namespace tavelor::web
