// SPDX-License-Identifier: MIT
// The table of all addresses: what answers, who may ask, and what is told of it.
#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "tavelor/web/message.hpp"
#include "tavelor/web/rights.hpp"

namespace tavelor::web {

class Context;

/// Gives the answer, or throws: a Failure, or whatever the library raises.
using Handler = std::function<Answer(Context&)>;

/// A parameter of the query; those of the path stand in the pattern.
struct QueryParameter {
  std::string_view name;
  std::string_view text;             ///< what it does
  std::string_view type = "string";  ///< "string", "integer", "number", "boolean", "date"
  bool isRepeated = false;
};

/// What the description of the interface tells of a route. Texts live as long as the program.
struct Description {
  std::string_view summary;
  std::vector<QueryParameter> parameters = {};
  std::string_view body = {};    ///< JSON Schema of what is sent, as JSON; "" for nothing
  std::string_view answer = {};  ///< of what comes back; "" for whatever
};

struct Route {
  Method method;
  std::string pattern;  ///< "/api/v1/tickets/{number}"
  Right right;
  Handler handler;
  Description description;
  std::vector<std::string> segments;  ///< "tickets", "{number}"
};

/// What a path meets.
struct Match {
  const Route* route = nullptr;                          ///< null where no method fits
  std::map<std::string, std::string, std::less<>> path;  ///< decoded
  std::vector<Method> allowed;  ///< of that path, HEAD and OPTIONS among them; none: no such path
};

class Routes {
 public:
  /// A segment in braces takes one segment of any text. Raises 5 for a pattern that is there.
  void add(Method method, std::string_view pattern, Right right, Handler handler,
           Description description = {});

  /// `segments` are decoded. A word is preferred to a segment in braces. HEAD meets what GET does.
  Match match(Method method, const std::vector<std::string>& segments) const;

  const std::vector<Route>& all() const { return routes_; }

 private:
  std::vector<Route> routes_;
};

/// A target taken apart.
struct Target {
  std::vector<std::string> segments;                            ///< decoded; none for "/"
  std::vector<std::pair<std::string, std::string>> parameters;  ///< of the query, decoded

  /// Raises Failure 400 for what is no origin-form target: no "/" at its beginning, wrong "%",
  /// NUL, no UTF-8, segments "." and "..".
  static Target of(std::string_view target);
};

}  // namespace tavelor::web
