// SPDX-License-Identifier: MIT
// What browsers are told of every answer, and what a request must tell of where it comes from.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "tavelor/web/message.hpp"

namespace tavelor::web {

/// Content security policy and the like; those that an answer has already stay.
void addHeaders(Answer& answer, const Request& request);

/// A page of somebody else may make its own name lead to this machine, and would be of the same
/// origin then: so it must be asked by a name of ours. Raises Failure 421 for another, 400 where
/// there is none. localhost and addresses as such are always ours; "*" among the names takes all.
void mustBeOurHost(const Request& request, const std::vector<std::string>& names);

/// A change that a browser asks for on behalf of a page of somebody else raises Failure 403.
void mustBeOfOurPages(const Request& request);

}  // namespace tavelor::web
