// SPDX-License-Identifier: MIT
// Words of IniciaRs that no class knows: the whole table, or an error.
#include "tavelor/frame/strict_modes.hpp"

namespace tavelor {

namespace {

thread_local bool isStrict = false;

}  // namespace

StrictModes::StrictModes() : before_(isStrict) {
  isStrict = true;
}

StrictModes::~StrictModes() {
  isStrict = before_;
}

bool StrictModes::isOn() {
  return isStrict;
}

}  // namespace tavelor
