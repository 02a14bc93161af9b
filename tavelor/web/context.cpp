// SPDX-License-Identifier: MIT
// A request on its way through its handler.
#include "tavelor/web/context.hpp"

#include <charconv>

#include <fmt/format.h>

#include "tavelor/frame/permissions.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/web/answer.hpp"
#include "tavelor/web/application.hpp"
#include "tavelor/web/change_log.hpp"
#include "tavelor/web/worker.hpp"

namespace tavelor::web {

namespace {

constexpr std::int64_t kMostNumber = 999'999'999'999;

std::int64_t wholeOf(std::string_view name, std::string_view text, std::int64_t least,
                     std::int64_t most) {
  std::int64_t value = 0;
  const char* const end = text.data() + text.size();
  const auto [stopped, fault] = std::from_chars(text.data(), end, value);
  if (fault != std::errc() || stopped != end || value < least || value > most) {
    throw Failure::input(
        fmt::format("{} must be a whole number from {} to {}.", name, least, most));
  }
  return value;
}

}  // namespace

Context::Context(Application& application, Worker& worker, const Request& request, Target target,
                 Match match, Caller caller)
    : application_(application),
      worker_(worker),
      request_(request),
      target_(std::move(target)),
      match_(std::move(match)),
      caller_(std::move(caller)) {}

const std::string& Context::path(std::string_view name) const {
  return match_.path.find(name)->second;
}

double Context::pathNumber(std::string_view name) const {
  return static_cast<double>(wholeOf(name, path(name), 1, kMostNumber));
}

std::optional<std::string> Context::query(std::string_view name) const {
  for (const auto& [each, value] : target_.parameters) {
    if (each == name) return value;
  }
  return std::nullopt;
}

std::string Context::query(std::string_view name, std::string_view otherwise) const {
  return query(name).value_or(std::string(otherwise));
}

std::vector<std::string> Context::queries(std::string_view name) const {
  std::vector<std::string> values;
  for (const auto& [each, value] : target_.parameters) {
    if (each == name) values.push_back(value);
  }
  return values;
}

std::optional<Date> Context::queryDay(std::string_view name) const {
  const auto text = query(name);
  if (!text || text->empty()) return std::nullopt;
  const auto day = dayOf(*text);
  if (!day) throw Failure::input(fmt::format("{} must be a day as 2026-11-20.", name));
  return day;
}

std::int64_t Context::queryWhole(std::string_view name, std::int64_t least, std::int64_t most,
                                 std::int64_t otherwise) const {
  const auto text = query(name);
  return text && !text->empty() ? wholeOf(name, *text, least, most) : otherwise;
}

const Json& Context::body() {
  if (body_) return *body_;
  if (!request_.header("content-type").starts_with("application/json")) {
    throw Failure(415, "input",
                  "The body must be JSON, and say so: Content-Type: application/json.");
  }
  Json json = parsed(request_.body);
  if (!json.is_object()) throw Failure::input("The body must be an object.");
  return body_.emplace(std::move(json));
}

void Context::must(Right right) const {
  if (caller_.may(right)) return;
  throw Failure::forbidden(fmt::format("This needs the right {}.", nameOf(right)));
}

bool Context::mayWithClass(std::string_view className, std::string_view what) const {
  const std::string identifier = fmt::format("class.{}.{}", className, what);
  return !caller_.rights.denies(identifier) && isPermitted(identifier);
}

Apartment& Context::apartment() const {
  return Apartment::current();
}

flows::Shop& Context::shop() {
  return worker_.shop();
}

Events& Context::events() {
  return application_.events();
}

void Context::logChangeIn(const std::shared_ptr<Connection>& main, int status) {
  logChange(*this, status, main);
  isLogged_ = true;
}

}  // namespace tavelor::web
