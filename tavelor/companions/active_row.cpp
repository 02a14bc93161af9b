// SPDX-License-Identifier: MIT
// The row that a form stands on, for masters and what hangs from them.
#include "tavelor/companions/active_row.hpp"

#include <string_view>

#include "tavelor/frame/reading.hpp"
#include "tavelor/platform/error.hpp"
#include "tavelor/services/recordset/recordset.hpp"

namespace tavelor {

void takeActiveRow(const RecordsetPtr& rows, const ActiveRow& to) {
  if (!rows) return;
  const auto takeIfThere = [&](std::string_view field, auto& variable) {
    try {
      takeColumn(*rows, field, variable);
    } catch (const Error&) {
    }
  };
  takeIfThere("Código", to.code);
  takeIfThere("Nombre", to.name);
  takeIfThere("Empresa", to.company);
  takeIfThere("Dirección", to.street);
  takeIfThere("Codigo_Postal", to.postcode);
  takeIfThere("Población", to.town);
  takeIfThere("Provincia", to.province);
  takeIfThere("Teléfono", to.telephone);
}

}  // namespace tavelor
