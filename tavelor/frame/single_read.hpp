// SPDX-License-Identifier: MIT
// One value of one row, as data.
#pragma once

#include <string>
#include <string_view>
#include <type_traits>

#include "tavelor/frame/class_info.hpp"
#include "tavelor/frame/record_class.hpp"

namespace tavelor {

/// A member that reads one value by a code: its statement and its answers, called like a function.
/// Texts must outlive it: they are literals.
template <typename Result>
struct SingleRead {
  using Literal = std::conditional_t<std::is_same_v<Result, std::string>, std::string_view, Result>;

  std::string_view select;
  std::string_view tail;              ///< behind `select`; {id} is the code, as text
  Literal nobody;                     ///< the answer where there is no row
  Result (*answer)(Recordset& rows);  ///< of the first row
  /// Any failure, the database's included, gives what no row gives.
  bool quiet = false;
  int selector = selector::kMain;

  /// Raises what the database, or the reading of a value, raises.
  Result operator()(const Variant& id, ObjCn objCn = {}) const;
};

extern template struct SingleRead<bool>;
extern template struct SingleRead<double>;
extern template struct SingleRead<std::string>;

}  // namespace tavelor
