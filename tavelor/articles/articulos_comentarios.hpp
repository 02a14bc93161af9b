// SPDX-License-Identifier: MIT
// Free comments on articles.
#pragma once

#include "tavelor/companions/comments.hpp"

namespace tavelor {

class Component;

/// The comments of articles, as many to an article as there are.
class ClsArticulosComentarios final : public Comments {
 public:
  ClsArticulosComentarios();
  std::string typeName() const override { return "ClsArticulosComentarios"; }
  static const Component& component();
};

}  // namespace tavelor
