// SPDX-License-Identifier: MIT
// The row that a form stands on, for masters and what hangs from them.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "tavelor/platform/export.hpp"

namespace tavelor {

class Recordset;
class Variant;
/// A record set, shared.
using RecordsetPtr = std::shared_ptr<Recordset>;

/// Variables that take the current row of a list with addresses.
struct TAVELOR_API ActiveRow {
  Variant& code;
  std::string& name;
  std::string& company;
  std::string& street;
  std::string& postcode;
  std::string& town;
  std::string& province;
  std::string& telephone;
};

/// The parameters of ObtenerRegistroActivo, which hands them on.
inline constexpr std::string_view kActiveRowParameters =
    "out vId, out sNombre, out sEmpresa, out sDireccion, out sCp, out sPoblacion, out sProvincia, "
    "out sTelefono";

/// A Null leaves its variable as it came. Raises 3021 without a row and 3265 for a field that the
/// list does not show: the variables before it are written then.
TAVELOR_API void takeActiveRow(Recordset& rows, const ActiveRow& to);
/// The same for each variable by itself: one that cannot be read stays as it came and keeps none of
/// the others from it. Never raises.
TAVELOR_API void takeActiveRowIfThere(const RecordsetPtr& rows, const ActiveRow& to);

}  // namespace tavelor
