// SPDX-License-Identifier: MIT
// Sections of the shop.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Sections of the shop.
class TAVELOR_API ClsSecciones final : public OpensByWord {
 public:
  ClsSecciones();
  std::string typeName() const override { return "ClsSecciones"; }
  static const Component& component();

  /// "Sección" for a code that is not there, "No" for a Null one.
  std::string GetDescripcion(const Variant& vId, ObjCn objCn = {}) const;
  /// The first code that the database gives, or Empty.
  Variant GetFirst(ObjCn objCn = {}) const;
};

}  // namespace tavelor
