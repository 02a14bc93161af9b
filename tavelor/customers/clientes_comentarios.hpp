// SPDX-License-Identifier: MIT
// The comments of customers.
#pragma once

#include "tavelor/companions/comments.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

class Component;

/// One long comment a customer, in its row of Id 1. Rows of a higher Id are left over from repeated
/// entries; lists for one customer do not show them.
class TAVELOR_API ClsClientesComentarios final : public Comments {
 public:
  ClsClientesComentarios();
  std::string typeName() const override { return "ClsClientesComentarios"; }
  static const Component& component();

  /// Appends the text of every row of a higher Id to the customer's comment, behind a seam that
  /// stays in the text, and deletes these rows. A Null or empty one adds ".". The text of a
  /// customer who has no row of Id 1 is lost.
  ///
  /// After an error (a comment with an apostrophe is a syntax error) what was appended stays and no
  /// row is deleted, so that the next run appends it again: run it in a transaction.
  void ReparaComentarios(ObjCn objCn = {}) const;
};

}  // namespace tavelor
