// SPDX-License-Identifier: MIT
// Customer types.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Customer types, each with an amount.
class TAVELOR_API ClsTiposCliente final : public OpensOnConnection {
 public:
  ClsTiposCliente();
  std::string typeName() const override { return "ClsTiposCliente"; }
  static const Component& component();

 private:
  void setDefaults(bool bDefVal) override;
};

}  // namespace tavelor
