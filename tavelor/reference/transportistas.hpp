// SPDX-License-Identifier: MIT
// Carriers.
#pragma once

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// Carriers with their commercial conditions, one of them the default.
class TAVELOR_API ClsTransportistas final : public OpensOnConnection {
 public:
  ClsTransportistas();
  std::string typeName() const override { return "ClsTransportistas"; }
  static const Component& component();

  /// Whether any row is the default one.
  bool ExistePredeterminada(ObjCn objCn = {}) const;
  /// Name of the default carrier, or Empty.
  Variant GetPredeterminada(ObjCn objCn = {}) const;
  /// Name of a carrier; "ND" for a code that is not there, "No" for a Null one.
  std::string GetDescripcion(const Variant& vId, ObjCn objCn = {}) const;

 private:
  void setDefaults(bool bDefVal) override;
};

}  // namespace tavelor
