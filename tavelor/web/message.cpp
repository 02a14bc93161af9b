// SPDX-License-Identifier: MIT
// A request as it came, and an answer as it goes.
#include "tavelor/web/message.hpp"

#include <algorithm>
#include <array>

namespace tavelor::web {

namespace {

std::string_view firstOf(const Headers& headers, std::string_view name) {
  const auto found = std::find_if(headers.begin(), headers.end(),
                                  [&](const auto& each) { return each.first == name; });
  return found == headers.end() ? std::string_view() : std::string_view(found->second);
}

}  // namespace

std::string_view nameOf(Method method) {
  constexpr std::array<std::string_view, 8> kNames = {"GET",   "HEAD",   "POST",    "PUT",
                                                      "PATCH", "DELETE", "OPTIONS", ""};
  return kNames.at(static_cast<std::size_t>(method));
}

std::string_view Request::header(std::string_view name) const {
  return firstOf(headers, name);
}

std::string_view Answer::header(std::string_view name) const {
  return firstOf(headers, name);
}

}  // namespace tavelor::web
