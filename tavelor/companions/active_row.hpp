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

/// Each variable for itself: one that cannot be read, since the list does not show it, it is Null
/// or there is no row, stays as it came and keeps none of the others from it. Never raises.
TAVELOR_API void takeActiveRow(const RecordsetPtr& rows, const ActiveRow& to);

}  // namespace tavelor
