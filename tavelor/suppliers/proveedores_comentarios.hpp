// SPDX-License-Identifier: MIT
// The comments on suppliers.
#pragma once

#include "tavelor/companions/comments.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The comments on suppliers, as many to a supplier as there are. A list for one supplier shows all
/// of them.
class TAVELOR_API ClsProveedoresComentarios final : public Comments {
 public:
  ClsProveedoresComentarios();
  std::string typeName() const override { return "ClsProveedoresComentarios"; }
  static const Component& component();

  void GetRptPath(InOut<std::string> sRptPath) const = delete;
};

}  // namespace tavelor
