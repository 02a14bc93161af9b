// SPDX-License-Identifier: MIT
// A long work that a person may stop between two of its steps.
#pragma once

#include <csignal>

namespace tavelor::tools {

/// While it lives, the first signal to interrupt or terminate only says so, that the step at hand
/// may end; a second one ends the program as usual.
class Interruptible {
 public:
  Interruptible();
  ~Interruptible();
  Interruptible(const Interruptible&) = delete;
  Interruptible& operator=(const Interruptible&) = delete;

  /// Whether a signal has come, in whichever of these.
  static bool interrupted();

 private:
  struct sigaction oldInterrupt_ = {};
  struct sigaction oldTerminate_ = {};
};

}  // namespace tavelor::tools
