// SPDX-License-Identifier: MIT
// What browsers are told, and what they tell.
#include "tavelor/web/headers.hpp"

#include <algorithm>
#include <array>

#include <arpa/inet.h>
#include <fmt/format.h>

#include "tavelor/platform/text.hpp"
#include "tavelor/web/answer.hpp"

namespace tavelor::web {

namespace {

constexpr std::string_view kPolicy =
    "default-src 'self'; object-src 'none'; frame-ancestors 'none'; base-uri 'none'; "
    "form-action 'none'; require-trusted-types-for 'script'";

/// Without its port.
std::string_view nameIn(std::string_view host) {
  if (host.starts_with('[')) return host.substr(0, host.find(']') + 1);
  return host.substr(0, host.find(':'));
}

bool isAddress(std::string_view host) {
  std::array<unsigned char, sizeof(in6_addr)> ignored{};
  if (host.starts_with('[') && host.ends_with(']')) {
    return inet_pton(AF_INET6, std::string(host.substr(1, host.size() - 2)).c_str(),
                     ignored.data()) == 1;
  }
  return inet_pton(AF_INET, std::string(host).c_str(), ignored.data()) == 1;
}

}  // namespace

void addHeaders(Answer& answer, const Request& request) {
  const auto add = [&](const char* name, std::string_view value) {
    if (answer.header(name).empty()) answer.headers.emplace_back(name, value);
  };
  add("Content-Security-Policy", kPolicy);
  add("X-Content-Type-Options", "nosniff");
  add("X-Frame-Options", answer.header("Content-Security-Policy").find("frame-ancestors 'self'") !=
                                 std::string_view::npos
                             ? "SAMEORIGIN"
                             : "DENY");
  add("Referrer-Policy", "no-referrer");
  add("Cross-Origin-Opener-Policy", "same-origin");
  add("Cross-Origin-Resource-Policy", "same-origin");
  add("Permissions-Policy", "camera=(), microphone=(), geolocation=(), payment=()");
  add("Cache-Control", "no-store");
  if (request.isSecure) add("Strict-Transport-Security", "max-age=31536000");
}

void mustBeOurHost(const Request& request, const std::vector<std::string>& names) {
  const std::string_view host = request.header("host");
  if (host.empty()) throw Failure::input("A request names its host.");
  const std::string_view name = nameIn(host);
  if (text::equalsIgnoreCase(name, "localhost") || isAddress(name)) return;
  const auto isThat = [&](const std::string& each) {
    return each == "*" || text::equalsIgnoreCase(each, name);
  };
  if (std::any_of(names.begin(), names.end(), isThat)) return;
  throw Failure{421, "input", "This server is not known by that name; --host makes it known."};
}

void mustBeOfOurPages(const Request& request) {
  const std::string_view site = request.header("sec-fetch-site");
  const std::string_view origin = request.header("origin");
  const std::string own =
      fmt::format("{}://{}", request.isSecure ? "https" : "http", request.header("host"));
  const bool isOwnSite = site.empty() || site == "same-origin" || site == "none";
  if (isOwnSite && (origin.empty() || text::equalsIgnoreCase(origin, own))) return;
  throw Failure::forbidden("A page of another site may not ask for this.");
}

}  // namespace tavelor::web
