// SPDX-License-Identifier: MIT
// What happens in the shop, told to those who listen.
#include "tavelor/web/events.hpp"

#include <fmt/format.h>

namespace tavelor::web {

std::string Events::message(std::string_view name, const Json& data) {
  return fmt::format("event: {}\ndata: {}\n\n", name, dumped(data));
}

void Events::publish(std::string_view name, const Json& data) {
  const auto text = std::make_shared<const std::string>(message(name, data));
  const std::lock_guard lock(mutex_);
  for (const auto& [id, listener] : listeners_) listener(text);
}

std::uint64_t Events::listen(Listener listener) {
  const std::lock_guard lock(mutex_);
  listeners_.emplace(++last_, std::move(listener));
  return last_;
}

void Events::forget(std::uint64_t listener) {
  const std::lock_guard lock(mutex_);
  listeners_.erase(listener);
}

}  // namespace tavelor::web
