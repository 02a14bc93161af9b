// SPDX-License-Identifier: MIT
// The table of all addresses.
#include "tavelor/web/routes.hpp"

#include <algorithm>

#include <fmt/format.h>

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/text.hpp"
#include "tavelor/web/answer.hpp"

namespace tavelor::web {

namespace {

constexpr std::size_t kLongestTarget = 4096;

std::vector<std::string_view> split(std::string_view text, char separator) {
  std::vector<std::string_view> parts;
  for (std::size_t at = 0; at <= text.size();) {
    const std::size_t end = std::min(text.find(separator, at), text.size());
    parts.push_back(text.substr(at, end - at));
    at = end + 1;
  }
  return parts;
}

bool isPlace(std::string_view segment) {
  return segment.starts_with('{');
}

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

std::string decoded(std::string_view text, bool isQuery) {
  std::string made;
  made.reserve(text.size());
  for (std::size_t i = 0; i < text.size(); ++i) {
    char c = text[i];
    if (c == '+' && isQuery) {
      c = ' ';
    } else if (c == '%') {
      const int high = i + 2 < text.size() ? hexDigit(text[i + 1]) : -1;
      const int low = i + 2 < text.size() ? hexDigit(text[i + 2]) : -1;
      if (high < 0 || low < 0)
        throw Failure::input("A % in the address is not followed by two digits.");
      c = static_cast<char>(high * 16 + low);
      i += 2;
    }
    if (static_cast<unsigned char>(c) < 0x20 || c == 0x7F) {
      throw Failure::input("There is a control character in the address.");
    }
    made += c;
  }
  return made;
}

/// How many segments of a pattern are words, those further to the left counting more.
bool fits(const Route& route, const std::vector<std::string>& segments) {
  if (route.segments.size() != segments.size()) return false;
  return std::equal(segments.begin(), segments.end(), route.segments.begin(),
                    [](const std::string& given, const std::string& wanted) {
                      return isPlace(wanted) || given == wanted;
                    });
}

/// Whether the first has a word where the second takes anything, at the first place that differs.
bool isNearer(const Route& a, const Route& b) {
  for (std::size_t i = 0; i < a.segments.size(); ++i) {
    if (isPlace(a.segments[i]) != isPlace(b.segments[i])) return isPlace(b.segments[i]);
  }
  return false;
}

bool isSamePlace(const Route& a, const Route& b) {
  return !isNearer(a, b) && !isNearer(b, a);
}

}  // namespace

void Routes::add(Method method, std::string_view pattern, Right right, Handler handler,
                 Description description) {
  Route route{method, std::string(pattern), right, std::move(handler), std::move(description), {}};
  if (pattern != "/") {
    for (const std::string_view segment : split(pattern.substr(1), '/')) {
      route.segments.emplace_back(segment);
    }
  }
  for (const Route& each : routes_) {
    if (each.method == method && each.pattern == pattern) {
      raise(errors::kInvalidCall, "Routes",
            fmt::format("{} {} is there twice.", nameOf(method), pattern));
    }
  }
  routes_.push_back(std::move(route));
}

Match Routes::match(Method method, const std::vector<std::string>& segments) const {
  const Route* nearest = nullptr;
  for (const Route& route : routes_) {
    if (fits(route, segments) && (nearest == nullptr || isNearer(route, *nearest)))
      nearest = &route;
  }
  Match match;
  if (nearest == nullptr) return match;
  const Method wanted = method == Method::kHead ? Method::kGet : method;
  for (const Route& route : routes_) {
    if (!fits(route, segments) || !isSamePlace(route, *nearest)) continue;
    match.allowed.push_back(route.method);
    if (route.method == Method::kGet) match.allowed.push_back(Method::kHead);
    if (route.method == wanted) match.route = &route;
  }
  match.allowed.push_back(Method::kOptions);
  if (match.route == nullptr) return match;
  for (std::size_t i = 0; i < segments.size(); ++i) {
    const std::string& place = match.route->segments[i];
    if (isPlace(place)) match.path.emplace(place.substr(1, place.size() - 2), segments[i]);
  }
  return match;
}

Target Target::of(std::string_view target) {
  if (target.size() > kLongestTarget) throw Failure::limit(414, "The address is too long.");
  if (!target.starts_with('/')) throw Failure::input("An address begins with a slash.");
  Target made;
  const std::size_t mark = std::min(target.find('?'), target.size());
  const std::string_view path = target.substr(0, mark);
  if (path.size() > 1) {
    for (const std::string_view segment : split(path.substr(1), '/')) {
      made.segments.push_back(decoded(segment, false));
      const std::string& last = made.segments.back();
      if (last == "." || last == "..") throw Failure::input("An address has no segments of dots.");
      if (!text::isValidUtf8(last)) throw Failure::input("The address is no UTF-8.");
    }
  }
  if (mark >= target.size()) return made;
  for (const std::string_view pair : split(target.substr(mark + 1), '&')) {
    if (pair.empty()) continue;
    const std::size_t equals = std::min(pair.find('='), pair.size());
    std::string name = decoded(pair.substr(0, equals), true);
    std::string value = equals < pair.size() ? decoded(pair.substr(equals + 1), true) : "";
    if (!text::isValidUtf8(name) || !text::isValidUtf8(value))
      throw Failure::input("The address is no UTF-8.");
    made.parameters.emplace_back(std::move(name), std::move(value));
  }
  return made;
}

}  // namespace tavelor::web
