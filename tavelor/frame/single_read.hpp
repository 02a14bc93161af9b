// SPDX-License-Identifier: MIT
// Members that read one value of one row, as data.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "tavelor/frame/record_class.hpp"
#include "tavelor/platform/export.hpp"

namespace tavelor {

/// What such a member asks and answers. Texts must outlive it: they are literals.
template <typename Result>
struct TAVELOR_API SingleRead {
  /// A result that a constant may hold.
  using Literal = std::conditional_t<std::is_same_v<Result, std::string>, std::string_view, Result>;

  Statement::Constant select;
  Statement::Constant tail;           ///< behind `select`; {id} is the code, as text
  Literal nobody;                     ///< the answer where there is no row
  Result (*answer)(Recordset& rows);  ///< of the first row
  bool quiet = false;  ///< any failure, the database's included, gives what no row gives
};

/// One such member of an object: `customers.GetSerie(id)`.
template <typename Result>
class TAVELOR_API SingleReadOf {
 public:
  /// `owner` is the object that it is a member of.
  SingleReadOf(const RecordClass& owner, const SingleRead<Result>& what)
      : owner_(owner), what_(what) {}

  /// Raises what the database, or the reading of a value, raises.
  Result operator()(const Variant& id, ObjCn objCn = {}) const;

 private:
  Result ask(const Variant& id, ConnectionPtr& objCn) const;

  const RecordClass& owner_;
  SingleRead<Result> what_;
};

extern template class SingleReadOf<bool>;
extern template class SingleReadOf<double>;
extern template class SingleReadOf<std::string>;

}  // namespace tavelor
