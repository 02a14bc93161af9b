// SPDX-License-Identifier: MIT
// Routes, which are also the phases of work.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Routes, which are also the phases of work. The code is a number.
class TAVELOR_API Rutas final : public OpensOnConnection {
 public:
  Rutas();
  std::string typeName() const override { return "Rutas"; }
  static const Component& component();

  /// "Fase" for a code that is not there, "No" for a Null one.
  std::string GetDescripcion(const Variant& vId, ObjCn objCn = {}) const;
  /// Folder of a route, or Empty. `vId` is a number: an empty one breaks the statement.
  Variant GetPath(const Variant& vId, ObjCn objCn = {}) const;
};

}  // namespace tavelor
