// SPDX-License-Identifier: MIT
// Warehouses.
#pragma once

#include "tavelor/frame/record_class.hpp"

namespace tavelor {

class Component;

/// Warehouses.
class ClsAlmacenes final : public OpensOnConnection {
 public:
  ClsAlmacenes();
  std::string typeName() const override { return "ClsAlmacenes"; }
  static const Component& component();
};

}  // namespace tavelor
