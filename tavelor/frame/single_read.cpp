// SPDX-License-Identifier: MIT
// Runs the statement of a single read.
#include "tavelor/frame/single_read.hpp"

#include "tavelor/platform/error.hpp"
#include "tavelor/platform/statement.hpp"
#include "tavelor/services/apartment.hpp"
#include "tavelor/services/data_session.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

namespace {

constexpr std::string_view kIdMark = "{id}";

template <typename Result>
Result read(const SingleRead<Result>& what, const Variant& id, ConnectionPtr& objCn) {
  const std::string code = id.isNull() ? std::string() : id.toText(Apartment::current().locale());
  const std::size_t mark = what.tail.find(kIdMark);
  Statement statement(what.select);
  statement << what.tail.substr(0, mark) << value(code) << what.tail.substr(mark + kIdMark.size());
  RecordsetPtr rows;
  DataSession().OpenRecordset(what.selector, statement, rows, objCn);
  return rows->RecordCount() == 0 ? Result(what.nobody) : what.answer(*rows);
}

}  // namespace

template <typename Result>
Result SingleRead<Result>::operator()(const Variant& id, ObjCn objCn) const {
  if (!quiet) return read(*this, id, *objCn);
  try {
    return read(*this, id, *objCn);
  } catch (const Error&) {
    return Result(nobody);
  }
}

template struct SingleRead<bool>;
template struct SingleRead<double>;
template struct SingleRead<std::string>;

}  // namespace tavelor
