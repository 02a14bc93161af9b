// SPDX-License-Identifier: MIT
// The comments that a master has in a table beside it.
#include "tavelor/companions/comments.hpp"

#include "tavelor/frame/batch_rows.hpp"
#include "tavelor/frame/component.hpp"
#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

/// Key of the one comment that an owner has.
constexpr std::int32_t kTheComment = 1;

bool lacksKey(const Variant& id) {
  return id.isEmpty() || id.isNull() || asNumber(id) == kUnstoredId;
}

}  // namespace

void Comments::DeleteAll(const Variant& vId, ObjCn cnnActive) const {
  Statement statement("DELETE  FROM ");
  statement << info().table << " WHERE (Codigo = '" << spliced(joined(vId)) << "')";
  write(statement, *cnnActive);
}

// Comments have no suppliers: the statement is refused whatever is asked, and callers see that.
bool Comments::CodigoLibre(const Variant& vId, const Variant& vIdSec, ObjCn objCn) const {
  Statement statement("SELECT proveedor, Codigo FROM ");
  statement << info().table << " where ( proveedor ='" << spliced(joined(vId)) << "' and Codigo='"
            << spliced(joined(vIdSec)) << "')";
  return !anyRow(statement, *objCn);
}

void Comments::UpdateId(const Variant& vId) {
  Recordset& rows = primary();
  if (rows.RecordCount() == 0) return;
  if (keys_ == CommentKeys::kOfTable) {
    numberNewRows(rows, NuevoCodigo(GetConnection()), vId);
    return;
  }
  Field id = rows.Field("ID");
  if (keys_ == CommentKeys::kOneAnOwner) {
    id.Value(kTheComment);
  } else if (lacksKey(id.Value())) {
    id.Value(NuevoCodigo(GetConnection()));
  }
  keyCurrentRow(rows, vId);
}

void Comments::ToHtml(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  writeRecordPage(bDoclone, sSelecSql, bFilter);
}

void Comments::ToTxt(bool bDoclone, std::string_view sSelecSql, bool bFilter) {
  writeRecordText(bDoclone, sSelecSql, bFilter);
}

std::vector<Member> Comments::slots(std::vector<Member> own) {
  using C = Comments;
  constexpr std::string_view kExport = "[bDoclone = True], [sSelecSql = 'todos'], [bFilter]";
  std::vector<Member> first = {
      frameMember("GetRptPath"),    frameMember("GetConnectionStrToRpt"), frameMember("sClassName"),
      frameMember("GetConnection"), frameMember("GetConnectionStr"),
  };
  first.insert(first.end(), own.begin(), own.end());
  for (const Member& slot : {
           member("DeleteAll", &C::DeleteAll, "vId, [cnnActive]"),
           member("IniciaRs", &C::IniciaRs, "[inout cnnActive], [inout sSelecSql], [id]"),
           frameMember("NuevoCodigo"),
           frameMember("SeguridadPermiso"),
           member("CodigoLibre", &C::CodigoLibre, "vId, vIdSec, [objCn]"),
       }) {
    first.push_back(slot);
  }
  return withFrameTail(std::move(first), {
                                             member("UpdateId", &C::UpdateId, "vId"),
                                             member("ToHtml", &C::ToHtml, kExport),
                                             member("ToTxt", &C::ToTxt, kExport),
                                         });
}

}  // namespace tavelor
