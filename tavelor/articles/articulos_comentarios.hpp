// SPDX-License-Identifier: MIT
// Free comments on articles.
#pragma once

#include "tavelor/companions/comments.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// The comments of articles, as many to an article as there are.
class TAVELOR_API ClsArticulosComentarios final : public Comments {
 public:
  ClsArticulosComentarios();
  std::string typeName() const override { return "ClsArticulosComentarios"; }
  static const Component& component();
};

}  // namespace tavelor
