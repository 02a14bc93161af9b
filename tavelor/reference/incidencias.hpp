// SPDX-License-Identifier: MIT
// Incident types.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Incident types.
class TAVELOR_API clsIncidencias final : public OpensByWord {
 public:
  clsIncidencias();
  std::string typeName() const override { return "clsIncidencias"; }
  static const Component& component();

  /// Description of a type, or Empty.
  Variant GetValor(const Variant& vId, ObjCn objCn = {}) const;
};

}  // namespace tavelor
