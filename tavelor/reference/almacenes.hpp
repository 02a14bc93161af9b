// SPDX-License-Identifier: MIT
// Warehouses.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Warehouses.
class TAVELOR_API ClsAlmacenes final : public OpensOnConnection {
 public:
  ClsAlmacenes();
  std::string typeName() const override { return "ClsAlmacenes"; }
  static const Component& component();
};

}  // namespace tavelor
