// SPDX-License-Identifier: MIT
// What happens in the shop, told to those who listen.
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>

#include "tavelor/web/json.hpp"

namespace tavelor::web {

/// Any thread publishes; listeners are called by the thread that does, one at a time, and may not
/// wait.
class Events {
 public:
  /// Takes a whole message of the stream.
  using Listener = std::function<void(std::shared_ptr<const std::string>)>;

  /// "sale", "return", "closing", "change", and what belongs to it.
  void publish(std::string_view name, const Json& data);

  /// Until forget().
  std::uint64_t listen(Listener listener);
  void forget(std::uint64_t listener);

  /// "event: sale\ndata: {...}\n\n".
  static std::string message(std::string_view name, const Json& data);

 private:
  std::mutex mutex_;
  std::map<std::uint64_t, Listener> listeners_;
  std::uint64_t last_ = 0;
};

}  // namespace tavelor::web
