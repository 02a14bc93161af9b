// SPDX-License-Identifier: MIT
// Runs the statement of a single read.
#include "tavelor/frame/single_read.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

template <typename Result>
Result SingleReadOf<Result>::operator()(const Variant& id, ObjCn objCn) const {
  if (!what_.quiet) return ask(id, *objCn);
  try {
    return ask(id, *objCn);
  } catch (const Error&) {
    return Result(what_.nobody);
  }
}

template <typename Result>
Result SingleReadOf<Result>::ask(const Variant& id, ConnectionPtr& objCn) const {
  Statement statement(what_.select);
  statement << RecordClass::withId(what_.tail, id);
  const RecordsetPtr rows = owner_.read(statement, objCn);
  return rows->RecordCount() == 0 ? Result(what_.nobody) : what_.answer(*rows);
}

template class SingleReadOf<bool>;
template class SingleReadOf<double>;
template class SingleReadOf<std::string>;

}  // namespace tavelor
