// SPDX-License-Identifier: MIT
// A request as it came, and an answer as it goes, whatever carries them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tavelor::web {

enum class Method : std::uint8_t { kGet, kHead, kPost, kPut, kPatch, kDelete, kOptions, kOther };

/// "GET"; "" for kOther.
std::string_view nameOf(Method method);

/// In the order in which they came or go.
using Headers = std::vector<std::pair<std::string, std::string>>;

struct Request {
  Method method = Method::kGet;
  std::string target;    ///< "/api/v1/tickets?day=2026-11-20", as it came
  Headers headers = {};  ///< names in small letters
  std::string body = {};
  std::string address = "127.0.0.1";  ///< of who asks; behind a proxy, what that tells
  bool isSecure = false;              ///< came over TLS, here or at the proxy

  /// The first of that name, in small letters; "" where there is none.
  std::string_view header(std::string_view name) const;
};

struct Answer {
  int status = 200;
  std::string type = "application/json; charset=utf-8";  ///< "" for an answer without a body
  Headers headers = {};
  std::string body = {};
  bool isEventStream = false;  ///< the line stays open and takes what Events publishes

  /// The first of that name, as written; "" where there is none.
  std::string_view header(std::string_view name) const;
};

}  // namespace tavelor::web
