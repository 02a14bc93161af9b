// SPDX-License-Identifier: MIT
// What flows tell while they wait for a server that does not let them through.
#pragma once

#include <chrono>
#include <string>

#include "tavelor/platform/callback.hpp"

namespace tavelor::flows {

class Patience;

/// A server whose line was lost, or on which somebody keeps what the flow needs locked.
struct Outage {
  std::string reason;                   ///< the first error's description
  std::chrono::milliseconds lasted{0};  ///< since that error
  bool isOver = false;                  ///< whether the flow has got through
};

/// Is told, while it lives, of each outage that a flow of this thread meets: when it begins, and
/// when the flow has got through. One that lasts too long ends with the flow's error in place of
/// the second. Another listener covers it until that one ends.
class OutageListener {
 public:
  /// `tell` must not raise, nor use the databases.
  explicit OutageListener(Callback<void(const Outage&)> tell);
  ~OutageListener();
  OutageListener(const OutageListener&) = delete;
  OutageListener& operator=(const OutageListener&) = delete;

 private:
  friend Patience;

  Callback<void(const Outage&)> tell_;
  OutageListener* covered_;
};

}  // namespace tavelor::flows
