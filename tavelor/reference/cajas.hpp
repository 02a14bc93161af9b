// SPDX-License-Identifier: MIT
// Tills.
#pragma once

#include "tavelor/frame/record_class.hpp"

namespace tavelor {

class Component;

/// Tills.
class ClsCajas final : public OpensByWord {
 public:
  ClsCajas();
  std::string typeName() const override { return "ClsCajas"; }
  static const Component& component();
};

}  // namespace tavelor
