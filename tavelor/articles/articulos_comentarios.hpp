// SPDX-License-Identifier: MIT
// Free comments on articles.
#pragma once

#include "tavelor/frame/record_class.hpp"

namespace tavelor {

class Component;

/// The comments of articles. AddNew writes 0 for a key of more than four digits.
class ClsArticulosComentarios final : public OpensOnConnection {
 public:
  ClsArticulosComentarios();
  std::string typeName() const override { return "ClsArticulosComentarios"; }
  static const Component& component();

  /// Deletes the comments of an article.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Always raises the database's error of an unknown column.
  bool CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;
  /// Gives rows whose ID is -1 the article `vId` and keys of their own; Update writes them.
  void UpdateId(const Variant& vId);
  /// The rows as a page, record by record; see ToHtmlGrid for the parameters.
  void ToHtml(bool bDoclone = true, std::string_view sSelecSql = "todos", bool bFilter = false);
  /// The same as plain text, in the report folder.
  void ToTxt(bool bDoclone = true, std::string_view sSelecSql = "todos", bool bFilter = false);
};

}  // namespace tavelor
