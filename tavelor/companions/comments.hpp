// SPDX-License-Identifier: MIT
// The comments that a master has in a table beside it.
#pragma once

#include <cstdint>
#include <vector>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

struct Member;

/// How the rows of a table of comments are told apart.
enum class CommentKeys : std::uint8_t {
  kOfTable,      ///< by a key of the whole table, which UpdateId gives to all rows of a batch
  kOneAnOwner,   ///< by the owner: its comment is the row of key 1
  kManyAnOwner,  ///< by a key of the whole table, which UpdateId gives to the current row
};

/// What the tables of comments share: Id, Codigo (the owner's code) and Comentarios.
class TAVELOR_API Comments : public OpensOnConnection {
 public:
  /// Deletes the comments of an owner.
  void DeleteAll(const Variant& vId, ObjCn cnnActive = {}) const;
  /// Always raises the database's error of an unknown column.
  bool CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn = {}) const;
  /// Gives new rows their owner `vId` and their keys, and posts them; Update writes them. Does
  /// nothing without rows.
  ///
  /// With keys of the table the new rows are those whose ID is -1, and the set stands on its first
  /// row afterwards. With one comment an owner it is the current row that becomes the owner's;
  /// where he has another one, Update raises the integrity error and both are as they were. With
  /// many it is the current row too, which keeps a key that it has: AddNew may have given it one.
  void UpdateId(const Variant& vId);
  /// The rows as a page, record by record; see ToHtmlGrid for the parameters.
  void ToHtml(bool bDoclone = true, std::string_view sSelecSql = "todos", bool bFilter = false);
  /// The same as plain text, in the report folder.
  void ToTxt(bool bDoclone = true, std::string_view sSelecSql = "todos", bool bFilter = false);

 protected:
  /// `keys` must outlive the object: they are literals.
  Comments(const ClassInfo& info, CommentKeys keys) : OpensOnConnection(info), keys_(keys) {}

  /// The slots of a class of comments; `own` are those before DeleteAll.
  static std::vector<Member> slots(std::vector<Member> own);

 private:
  const CommentKeys keys_;
};

}  // namespace tavelor
