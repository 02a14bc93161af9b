// SPDX-License-Identifier: MIT
// Tills.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Tills.
class TAVELOR_API ClsCajas final : public OpensByWord {
 public:
  ClsCajas();
  std::string typeName() const override { return "ClsCajas"; }
  static const Component& component();
};

}  // namespace tavelor
