// SPDX-License-Identifier: MIT
// A long work that a person may stop between two of its steps.
#include "tools/interrupt.hpp"

#include <atomic>

namespace tavelor::tools {

namespace {

std::atomic<bool> signalled{false};

}  // namespace

Interruptible::Interruptible() {
  struct sigaction action = {};
  action.sa_handler = [](int) { signalled = true; };
  action.sa_flags = static_cast<int>(SA_RESETHAND | SA_RESTART);
  sigaction(SIGINT, &action, &oldInterrupt_);
  sigaction(SIGTERM, &action, &oldTerminate_);
}

Interruptible::~Interruptible() {
  sigaction(SIGINT, &oldInterrupt_, nullptr);
  sigaction(SIGTERM, &oldTerminate_, nullptr);
}

bool Interruptible::interrupted() {
  return signalled;
}

}  // namespace tavelor::tools
